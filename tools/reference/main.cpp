// Writes what is derived from the catalogue: the reference page for client authors, the same as data, the
// tables in the page of the aircraft, and the name table of offsetctl. `offset_reference FOLDER` writes into a
// source tree, `offset_reference FOLDER --check` compares with what stands there and names the first stale
// file.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include "bridge/catalogue.h"
#include "platform/system.h"
#include "reference/aircraft_page.h"
#include "reference/areas.h"
#include "reference/facts.h"
#include "reference/offsets_json.h"
#include "reference/offsets_page.h"
#include "reference/page_text.h"

namespace {

struct Output {
  const char* path;  // below the folder, with /
  std::string text;
};

// What offsetctl knows of a row whose values do not come back exactly.
std::string LossText(const OffsetRow& row) {
  std::string text = row.lossy[0] != 0 ? ", .lossy = " + Quoted(row.lossy) : "";
  if (row.tolerance.steps != 0) text += ", .lossSteps = " + Number(row.tolerance.steps);
  if (row.tolerance.share != 0) text += ", .lossShare = " + Number(row.tolerance.share);
  return text;
}

// A row's choices stand in a table of their own, before that of the rows.
bool HasChoices(const OffsetRow& row) {
  return (row.show == Show::Number || row.show == Show::Bits) && !row.choices.empty();
}

std::string FramesText(const OffsetRow& row) {
  const int frames = CycleFrames(row.cycle);
  return frames == 0 ? "" : ", .frames = " + std::to_string(frames);
}

std::string ChoicesName(const OffsetRow& row) { return "choices_" + RowName(row); }

std::string ChoicesText(const OffsetRow& row) {
  return HasChoices(row) ? ", .choices = " + ChoicesName(row) : "";
}

std::string MakeChoices() {
  std::string text;
  for (const RowTable* table : ListedTables()) {
    for (const OffsetRow& row : table->rows) {
      if (!HasChoices(row)) continue;
      std::string list;
      for (const Choice& choice : row.choices) {
        list += (list.empty() ? "{" : ", {") + std::to_string(choice.number) + ", " + Quoted(choice.name) +
                (choice.width != 1 ? ", " + std::to_string(choice.width) : "") + "}";
      }
      text += "constexpr NamedNumber " + ChoicesName(row) + "[] = {" + list + "};\n";
    }
  }
  return text;
}

std::string MakeNameTable() {
  std::string text =
      "// Written by offset_reference from the plug-in's catalogue; do not edit.\n"
      "// clang-format off\n" +
      MakeChoices() + "constexpr OffsetName offsetNames[] = {\n";
  for (const RowTable* table : ListedTables()) {
    for (const OffsetRow& row : table->rows) {
      text += "    {.offset = " + Hex(row.offset) + ", .type = ValueType::" + TypeCode(row.type) +
              ", .length = " + std::to_string(StoredWidth(row)) + ", .name = " + Quoted(RowName(row)) +
              ", .meaning = " + Quoted(FullMeaning(row)) + ", .unit = " + Quoted(row.unit) +
              ", .unitScale = " + Number(row.unitScale) + ", .unitBias = " + Number(row.unitBias) +
              ", .show = Form::" + FormName(row) + ", .readOnly = " + (row.readOnly ? "true" : "false") +
              ", .writable = " + (IsForWriting(row) ? "true" : "false") + FramesText(row) + LossText(row) +
              ChoicesText(row) + "},\n";
    }
  }
  text += "};\nconstexpr OffsetRange readOnlyOffsets[] = {\n";
  for (const OffsetRange& range : ReadOnlyRanges()) {
    text += "    {.first = " + Hex(range.first) + ", .last = " + Hex(range.last) + "},\n";
  }
  text += "};\nconstexpr OffsetArea offsetAreas[] = {\n";
  for (const Area& area : Areas()) {
    const uint32_t last = area.offset + (area.count - 1) * area.step + area.size - 1;
    text += "    {.name = " + Quoted(area.name) + ", .first = " + Hex(area.offset) + ", .last = " + Hex(last) +
            "},\n";
  }
  text += "};\nconstexpr OffsetSubject offsetSubjects[] = {\n";
  for (const RowTable* table : ListedTables()) {
    text +=
        "    {.name = " + Quoted(table->subject) + ", .rows = " + std::to_string(table->rows.size()) + "},\n";
  }
  return text + "};\n// clang-format on\n";
}

// Clients know rows by their names, each its own, and their scales as fractions. Returns true, or false after
// naming what is wrong.
bool CheckRows() {
  std::map<std::string, uint32_t> offsets;
  bool right = true;
  for (const RowTable* table : ListedTables()) {
    for (const OffsetRow& row : table->rows) {
      const std::string name = RowName(row);
      if (name.empty()) {
        std::fprintf(stderr, "offset_reference: %s has no name: name it in src/bridge/catalogue\n",
                     Hex(row.offset).c_str());
        right = false;
        continue;
      }
      if (!ScaleOf(row).isExact) {
        std::fprintf(stderr, "offset_reference: the scale of %s is no fraction that ScaleOf knows\n",
                     name.c_str());
        right = false;
      }
      const auto [place, isNew] = offsets.emplace(name, row.offset);
      if (isNew) continue;
      std::fprintf(stderr,
                   "offset_reference: %s and %s are both named %s: rename one in src/bridge/catalogue\n",
                   Hex(place->second).c_str(), Hex(row.offset).c_str(), name.c_str());
      right = false;
    }
  }
  return right;
}

// --- The page of the aircraft --------------------------------------------------------------------------

std::string FileText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
}

// What is written by hand stands above the mark and stays.
std::string MakeAircraftPage(const std::string& folder) {
  const std::string text = FileText(folder + "/docs/aircraft.md");
  return text.substr(0, text.find(aircraftMark)) + MakeAircraftPart();
}

bool WriteOutput(const std::string& folder, const Output& output) {
  const std::string path = folder + "/" + output.path;
  CreateFolders(path.substr(0, path.rfind('/')).c_str());
  std::ofstream file(path, std::ios::binary);
  file << output.text;
  file.close();
  if (!file.fail()) return true;
  std::fprintf(stderr, "offset_reference: cannot write %s\n", path.c_str());
  return false;
}

bool CheckOutput(const std::string& folder, const Output& output) {
  const std::string path = folder + "/" + output.path;
  if (FileText(path) == output.text) return true;
  std::fprintf(stderr, "offset_reference: %s is stale: run offset_reference on the tree and keep its result\n",
               output.path);
  return false;
}

}  // namespace

int main(int count, char** words) {
  const bool check = count == 3 && std::strcmp(words[2], "--check") == 0;
  if (count < 2 || (count > 2 && !check)) {
    std::fprintf(stderr, "usage: offset_reference FOLDER [--check]\n");
    return 2;
  }
  if (!CheckRows()) return 1;
  const Output outputs[] = {
      {.path = "docs/offsets.md", .text = MakeOffsetsPage()},
      {.path = "docs/offsets.json", .text = MakeOffsetsJson()},
      {.path = "tools/offsetctl/offset_table.inc", .text = MakeNameTable()},
      {.path = "docs/aircraft.md", .text = MakeAircraftPage(words[1])},
  };
  for (const Output& output : outputs) {
    if (!(check ? CheckOutput(words[1], output) : WriteOutput(words[1], output))) return 1;
  }
  return 0;
}
