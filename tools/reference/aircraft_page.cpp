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

// Names of one cell, in the groups in which they count.
struct NameList {
  AddOn addOn;
  std::string text;
  std::vector<std::string> group = {}, known = {};

  void Add(const std::string& cell) {
    if (std::find(known.begin(), known.end(), cell) != known.end()) return;
    group.push_back(cell);
    known.push_back(cell);
  }
  std::string Cell(const Source& source) const {
    std::string cell = NameCell(source.ref->name, addOn);
    const size_t length = std::strlen(source.ref->name);
    cell.insert(1 + length, SourceName(source).substr(length));
    for (const char* other : source.ref->otherNames) cell += ", else " + NameCell(other, addOn);
    return cell;
  }
  void Add(const Source& source) {
    if (source.ref != nullptr) Add(Cell(source));
  }
  void AddLamp(const Button& button) {
    if (button.light.ref == nullptr) return;
    Add(Cell(button.light) + (button.standIn.ref == nullptr ? "" : ", else " + Cell(button.standIn)));
  }
  void Add(const Command* command) {
    if (command != nullptr) Add(NameCell(command->name, addOn));
  }
  // Ends a group; `word` says how several of them count. `isElse`: only where those before are not published.
  void End(const char* word, bool isElse) {
    if (group.empty()) return;
    std::string lead = isElse ? "else" : "";
    if (group.size() > 1) lead += (lead.empty() ? "" : " ") + std::string(word);
    if (!lead.empty()) lead += group.size() > 1 ? ":<br>" : " ";
    for (const std::string& cell : group) {
      const bool isFirst = &cell == &group.front();
      text += (text.empty() ? "" : isFirst ? "<br>" : ",<br>") + (isFirst ? lead : "") + cell;
    }
    group.clear();
  }
};

void AddReads(const Variant& variant, bool isElse, NameList* reads) {
  reads->Add(variant.source);
  // Functions that only write look at these to see what has to change.
  if (variant.read != nullptr) {
    for (const Source& source : variant.reads) reads->Add(source);
  }
  reads->End("from", isElse);
  for (const Source& light : variant.lights) {
    if (light.ref != nullptr) reads->Add((variant.dark ? "not " : "") + reads->Cell(light));
  }
  for (const Source& mark : variant.marks) reads->Add(mark);
  if (variant.lights[0].ref != nullptr) reads->End("any of", isElse);
  for (const Button& button : variant.buttons) reads->AddLamp(button);
  reads->End("any of", isElse || variant.lights[0].ref != nullptr);
}

void AddWrites(const Variant& variant, NameList* writes) {
  for (const Button& button : variant.buttons) writes->Add(button.press);
  writes->End(variant.everyButton ? "each that differs" : "on the first, off each that is on", false);
  for (const Command* command : variant.places) writes->Add(command);
  writes->End("by place", false);
  const bool isElse = variant.buttons[0].press != nullptr || !variant.places.empty();
  writes->Add(variant.target);
  for (const Source& source : variant.together) writes->Add(source);
  if (variant.apply == nullptr && variant.fires.empty()) {
    for (const Source& source : variant.sets) writes->Add(source);
    writes->End("all of", isElse);
  }
  for (const Command* command : variant.fires) writes->Add(command);
  for (const Source& source : variant.sets) writes->Add(source);
  writes->End("as needed", isElse);
}

std::string AircraftRow(const OffsetRow& row, AddOn addOn) {
  NameList reads = {addOn, {}}, writes = {addOn, {}};
  bool isServed = false, isSilent = false, readsOwn = false, writesOwn = false;
  bool isWhole = true;  // nothing of it is the simulator's
  const auto addAll = [&](std::span<const Variant> variants, bool isPart) {
    bool isElse = false;
    for (const Variant& variant : variants) {
      if (variant.addOn != addOn && variant.alsoFor != addOn) continue;
      AddReads(variant, isElse && !isPart, &reads);
      AddWrites(variant, &writes);
      isServed = isElse = true;
      isSilent |= variant.silent;
      readsOwn |= variant.read != nullptr || variant.convert != nullptr;
      writesOwn |= variant.apply != nullptr || variant.targetConvert != nullptr;
    }
    isWhole &= isElse || !isPart;
  };
  addAll(row.variants, false);
  for (const std::span<const Variant>& part : row.parts) addAll(part, true);
  if (!isServed) return "";
  const std::string rest = isWhole ? "" : "<br>and the simulator's";
  const std::string read = !reads.text.empty()    ? reads.text + rest
                           : readsOwn && isSilent ? "always 0"
                           : readsOwn             ? "the simulator's, in a scale of its own"
                                                  : "the simulator's";
  const std::string write = !HasWriter(row)        ? "-"
                            : !writes.text.empty() ? writes.text + rest
                            : isSilent             ? "nothing: no such control, or none known"
                            : writesOwn            ? "the simulator's, in a scale of its own"
                                                   : "the simulator's";
  return "| " + Hex(row.offset) + " | " + TableCell(row.meaning) + " | " + read + " | " + write + " |\n";
}

}  // namespace

std::string MakeAircraftPart() {
  std::string text = aircraftMark;
  text +=
      "\n## What follows which add-on\n\nNames are sure (seen in at least two public sources) unless they are "
      "marked: likely (seen in one, or of a\nmeaning that follows from a pattern), unseen (defined for this "
      "program, seen in no public source). Names that no\noffset uses are looked up for the log alone.\n\n"
      "How several names of a cell count: *any of* is on while one of them is, *not* while a lamp is dark; "
      "*from* is "
      "reckoned\nfrom them; *all of* are set together; *on the first, off each that is on* and *each that "
      "differs* "
      "are pressed so;\n*as needed* are pressed or set as the value asks for; *by place* is one command for "
      "each place "
      "of the lever. A name\nbehind *else* counts where those before it are not published.\n";
  for (const AddOn addOn : {AddOn::B738Extended, AddOn::B738Stock, AddOn::Ixeg733, AddOn::X737, AddOn::Ec135}) {
    text += std::string("\n### ") + NameOf(addOn) +
            "\n\n| Offset | Meaning | Read | A write moves |\n|---|---|---|---|\n";
    for (const RowTable* table : ListedTables()) {
      for (const OffsetRow& row : table->rows) text += AircraftRow(row, addOn);
    }
  }
  return text;
}
