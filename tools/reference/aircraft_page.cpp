#include "reference/aircraft_page.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <string>
#include <vector>

#include "aircraft/names.h"
#include "bridge/catalogue.h"
#include "reference/page_text.h"

namespace {

// A name as the page has it, marked when it is not sure.
std::string NameCell(const char* name, AddOn addOn) {
  const auto certaintyIn = [&](std::span<const AddOnName> names) -> const char* {
    const auto entry = std::find_if(names.begin(), names.end(),
                                    [&](const AddOnName& each) { return std::strcmp(each.name, name) == 0; });
    if (entry == names.end()) return nullptr;
    return entry->certainty == Certainty::Sure     ? ""
           : entry->certainty == Certainty::Likely ? " (likely)"
                                                   : " (unseen)";
  };
  const AddOnNames all = NamesOf(addOn);
  const char* mark = certaintyIn(all.dataRefs);
  if (mark == nullptr) mark = certaintyIn(all.commands);
  return "`" + std::string(name) + "`" + (mark == nullptr ? "" : mark);
}

// Names of one cell, each once.
struct NameList {
  AddOn addOn;
  std::vector<std::string> cells;
  void Add(const std::string& cell) {
    if (std::find(cells.begin(), cells.end(), cell) == cells.end()) cells.push_back(cell);
  }
  void Add(const Source& source) {
    if (source.ref == nullptr) return;
    std::string cell = NameCell(source.ref->name, addOn);
    const std::string element = SourceName(source).substr(std::strlen(source.ref->name));
    cell.insert(1 + std::strlen(source.ref->name), element);
    Add(cell);
  }
  void Add(const Command* command) {
    if (command != nullptr) Add(NameCell(command->name, addOn));
  }
  std::string Text(const char* none) const {
    std::string text;
    for (const std::string& cell : cells) text += (text.empty() ? "" : "<br>") + cell;
    return text.empty() ? none : text;
  }
};

void AddVariant(const Variant& variant, NameList* reads, NameList* writes, bool* silent) {
  reads->Add(variant.source);
  for (const Source& light : variant.lights) reads->Add(light);
  for (const Source& mark : variant.marks) reads->Add(mark);
  // Functions that only write look at these to see what has to change.
  if (variant.read != nullptr) {
    for (const Source& source : variant.reads) reads->Add(source);
  }
  for (const Button& button : variant.buttons) {
    reads->Add(button.light);
    writes->Add(button.press);
  }
  for (const Command* command : variant.places) writes->Add(command);
  for (const Command* command : variant.fires) writes->Add(command);
  writes->Add(variant.target);
  for (const Source& source : variant.together) writes->Add(source);
  for (const Source& source : variant.sets) writes->Add(source);
  *silent |= variant.silent;
}

std::string AircraftRow(const OffsetRow& row, AddOn addOn) {
  NameList reads = {addOn, {}}, writes = {addOn, {}};
  bool silent = false, isServed = false;
  const auto addAll = [&](std::span<const Variant> variants) {
    for (const Variant& variant : variants) {
      if (variant.addOn != addOn && variant.alsoFor != addOn) continue;
      AddVariant(variant, &reads, &writes, &silent);
      isServed = true;
    }
  };
  addAll(row.variants);
  for (const std::span<const Variant>& part : row.parts) addAll(part);
  if (!isServed) return "";
  const bool isScale = reads.cells.empty() && writes.cells.empty() && !silent;
  return "| " + Hex(row.offset) + " | " + TableCell(row.meaning) + " | " +
         reads.Text(isScale ? "in a scale of its own" : "the simulator's") + " | " +
         writes.Text(silent           ? "nothing: no such control, or none known"
                     : isScale        ? "in a scale of its own"
                     : HasWriter(row) ? "the simulator's"
                                      : "-") +
         " |\n";
}

}  // namespace

std::string MakeAircraftPart() {
  std::string text = aircraftMark;
  text +=
      "\n## What follows which add-on\n\nNames are sure (seen in at least two public sources) unless they are "
      "marked: "
      "likely (seen in one, or of a\nmeaning that follows from a pattern), unseen (defined for this program, "
      "seen in no "
      "public source). Where\nseveral names stand, the plug-in uses what the add-on publishes. Names that no "
      "offset uses "
      "are looked up for\nthe log alone.\n";
  for (const AddOn addOn : {AddOn::B738Extended, AddOn::B738Stock, AddOn::Ixeg733, AddOn::X737, AddOn::Ec135}) {
    text += std::string("\n### ") + NameOf(addOn) +
            "\n\n| Offset | Meaning | Read | A write moves |\n|---|---|---|---|\n";
    for (const RowTable* table : ListedTables()) {
      for (const OffsetRow& row : table->rows) text += AircraftRow(row, addOn);
    }
  }
  return text;
}
