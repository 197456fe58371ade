// Writes what is derived from the catalogue: the reference page for client authors, the same as data, the
// tables in the page of the aircraft, and the name table of offsetctl. `offset_reference FOLDER` writes into a
// source tree, `offset_reference FOLDER --check` compares with what stands there and names the first stale
// file.
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include "bridge/catalogue.h"
#include "platform/system.h"
#include "reference/aircraft_page.h"
#include "reference/page_text.h"
#include "reference/versions.h"

namespace {

struct Output {
  const char* path;  // below the folder, with /
  std::string text;
};

struct TypeNames {
  const char* shown;  // on the page
  const char* code;   // enumerator of offsetctl
};

TypeNames NamesOf(Stored type) {
  switch (type) {
    case Stored::U8:
      return {"u8", "U8"};
    case Stored::S8:
      return {"s8", "S8"};
    case Stored::U16:
      return {"u16", "U16"};
    case Stored::S16:
      return {"s16", "S16"};
    case Stored::U32:
      return {"u32", "U32"};
    case Stored::S32:
      return {"s32", "S32"};
    case Stored::S64:
      return {"s64", "S64"};
    case Stored::F32:
      return {"f32", "F32"};
    case Stored::F64:
      return {"f64", "F64"};
    case Stored::Text:
      return {"text", "Text"};
  }
  return {"?", "?"};
}

const char* FormCode(const OffsetRow& row) {
  switch (row.show) {
    case Show::Number:
      return row.type == Stored::Text ? "Text" : "Number";
    case Show::Flag:
      return "Flag";
    case Show::Bcd:
      return "Bcd";
    case Show::Bits:
      return "Bits";
    case Show::Text:
      return "Text";
  }
  return "?";
}

int CycleFrames(Cycle cycle) {
  switch (cycle) {
    case Cycle::C1:
      return 1;
    case Cycle::C3:
      return 3;
    case Cycle::C7:
      return 7;
    case Cycle::C13:
      return 13;
    case Cycle::C31Navigation:
    case Cycle::C31:
      return 31;
    case Cycle::C59:
      return 59;
    case Cycle::C157:
      return 157;
    case Cycle::C313:
      return 313;
    default:
      return 0;
  }
}

std::string Number(double value) {
  char text[64];
  return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

// A string literal for C++ and JSON alike; the catalogue holds plain ASCII.
std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char letter : text) {
    if (letter == '"' || letter == '\\') quoted += '\\';
    quoted += letter;
  }
  return quoted + "\"";
}

struct Range {
  uint32_t first, last;
};

// The offsets that clients may not write, as stretches, from the rows.
std::vector<Range> ReadOnlyRanges() {
  std::set<uint32_t> offsets;
  for (const RowTable* table : Catalogue()) {
    for (const OffsetRow& row : table->rows) {
      for (uint32_t n = 0; row.readOnly && n < StoredWidth(row); ++n) offsets.insert(row.offset + n);
    }
  }
  std::vector<Range> ranges;
  for (const uint32_t offset : offsets) {
    if (ranges.empty() || ranges.back().last + 1 != offset) ranges.push_back({offset, offset});
    ranges.back().last = offset;
  }
  return ranges;
}

bool IsWritable(const OffsetRow& row) { return HasWriter(row) && !row.readOnly; }

std::string SourceText(const OffsetRow& row) {
  if (row.source.ref != nullptr) return SourceName(row.source);
  const bool hasStock = std::any_of(row.variants.begin(), row.variants.end(),
                                    [](const Variant& variant) { return variant.addOn == AddOn::None; });
  return row.read != nullptr || row.readText != nullptr || row.prepared != nullptr || hasStock ? "derived" : "";
}

std::string TypeText(const OffsetRow& row) {
  const std::string type = NamesOf(row.type).shown;
  return row.type == Stored::Text ? type + ":" + std::to_string(StoredWidth(row)) : type;
}

// How the stored number becomes the unit: "kt = stored x 0.0078125".
std::string UnitText(const OffsetRow& row) {
  const std::string unit = row.unit;
  if (row.show == Show::Flag) return "0 off, else on";
  if (row.show == Show::Bits) return "bits";
  if (row.show == Show::Bcd) return unit.empty() ? "BCD" : unit + ", BCD";
  if (row.unitScale == 1 && row.unitBias == 0) return unit;
  std::string text = (unit.empty() ? "value" : unit) + " = stored";
  if (row.unitScale != 1) text += " x " + Number(row.unitScale);
  if (row.unitBias > 0) text += " + " + Number(row.unitBias);
  if (row.unitBias < 0) text += " - " + Number(-row.unitBias);
  return text;
}

std::string AccessText(const OffsetRow& row) {
  if (row.readOnly) return "read-only";
  return HasWriter(row) ? "yes" : "no";
}

// What the row's source is called in other versions of the simulator.
std::span<const char* const> OtherNames(const OffsetRow& row) {
  const DataRef* const ref = row.source.ref != nullptr ? row.source.ref : row.write.target.ref;
  return ref != nullptr ? ref->otherNames : std::span<const char* const>{};
}

// "9.00-", "-11.40", "9.00-9.20"; "all" or "none".
std::string VersionsText(const OffsetRow& row) {
  const ServedVersions versions = VersionsOf(row);
  if (versions.never) return "none";
  return versions.from.empty() && versions.to.empty() ? "all" : versions.from + "-" + versions.to;
}

std::string NoteText(const OffsetRow& row) {
  std::string text = row.lossy[0] != 0 ? "Lossy: " + std::string(row.lossy) : "";
  if (row.note[0] != 0) text += (text.empty() ? "" : "; ") + std::string(row.note);
  const auto add = [&](const std::string& more) { text += (text.empty() ? "" : "; ") + more; };
  for (const char* name : OtherNames(row)) add("also called `" + std::string(name) + "`");
  if (const std::string elsewhere = ElsewhereText(row); !elsewhere.empty()) add(elsewhere);
  const std::string target = SourceName(row.write.target);
  if (!target.empty() && target != SourceName(row.source)) {
    add("a write sets `" + target + "`");
  }
  return text;
}

constexpr char pageHead[] =
    "# Offsets\n\n"
    "<!-- Written by offset_reference from the catalogue in src/bridge/catalogue; do not edit. -->\n\n"
    "Every offset that the plug-in keeps current or acts on, by subject. Values are little-endian.\n\n"
    "- **Type**: u unsigned, s signed, f floating point, with the number of bits; text:N is N bytes, padded\n"
    "  with zeros.\n"
    "- **Unit**: the unit of the stored number, or how to compute it. BCD holds one decimal digit in four\n"
    "  bits; with MHz the leading 1 is left out, 0x1870 is 118.70.\n"
    "- **Write**: \"yes\" when a written value reaches the simulator; \"no\" when it only stands in the "
    "memory\n"
    "  until the next refresh; \"read-only\" when the server drops it.\n"
    "- **Frames**: the offset is refreshed once in so many frames; \"-\" when nothing refreshes it.\n"
    "- **X-Plane**: the versions, from 8.60 to 12.10, in which the simulator has what the offset follows. In\n"
    "  the others what is missing counts as 0, and setting it changes nothing; the remarks say what that\n"
    "  shows. Offsets without a source of the simulator's are served in all.\n"
    "- **Name** is what `offsetctl` calls it.\n"
    "- Lossy: a written value does not read back within one step of the encoding, for the reason given.\n";

std::string PageRow(const OffsetRow& row) {
  const int frames = CycleFrames(row.cycle);
  const std::string name = RowName(row);
  const std::string source = SourceText(row);
  const bool isDataref = row.source.ref != nullptr && !source.empty();
  return "| " + Hex(row.offset) + " | " + TypeText(row) + " | " + TableCell(UnitText(row)) + " | " +
         TableCell(row.meaning) + " | " + (name.empty() ? "" : "`" + name + "`") + " | " + AccessText(row) +
         " | " + (frames == 0 ? "-" : std::to_string(frames)) + " | " + VersionsText(row) + " | " +
         (isDataref ? "`" + source + "`" : source) + " | " + TableCell(NoteText(row)) + " |\n";
}

std::string MakePage() {
  std::string page = pageHead;
  for (const RowTable* table : ListedTables()) {
    page += std::string("\n## ") + table->subject + "\n\n";
    page += "| Offset | Type | Unit | Meaning | Name | Write | Frames | X-Plane | Source | Remarks |\n";
    page += "|---|---|---|---|---|---|---|---|---|---|\n";
    for (const OffsetRow& row : table->rows) page += PageRow(row);
  }
  page +=
      "\n## Read-only offsets\n\nWrites that start at one of these are dropped by the server; the rest of the\n"
      "request goes on.\n\n";
  for (const Range& range : ReadOnlyRanges()) {
    page +=
        "- " + Hex(range.first) + (range.last != range.first ? std::string("-") + Hex(range.last) : "") + "\n";
  }
  return page;
}

// {"from": "9.00", "to": null}: null has no limit. Null for a source that no version has.
std::string VersionsJson(const OffsetRow& row) {
  const ServedVersions versions = VersionsOf(row);
  const auto limit = [](const std::string& version) { return version.empty() ? "null" : Quoted(version); };
  if (versions.never) return "null";
  return "{\"from\": " + limit(versions.from) + ", \"to\": " + limit(versions.to) + "}";
}

std::string NamesJson(std::span<const char* const> names) {
  std::string text = "[";
  for (const char* name : names) text += (text.size() == 1 ? "" : ", ") + Quoted(name);
  return text + "]";
}

std::string JsonRow(const OffsetRow& row, const char* subject) {
  const int frames = CycleFrames(row.cycle);
  return "  {\"offset\": " + std::to_string(row.offset) + ", \"type\": " + Quoted(TypeText(row)) +
         ", \"size\": " + std::to_string(StoredWidth(row)) + ", \"subject\": " + Quoted(subject) +
         ", \"name\": " + Quoted(RowName(row)) + ", \"meaning\": " + Quoted(row.meaning) +
         ", \"unit\": " + Quoted(row.unit) + ", \"unitScale\": " + Number(row.unitScale) +
         ", \"unitBias\": " + Number(row.unitBias) + ", \"form\": " + Quoted(FormCode(row)) +
         ", \"readOnly\": " + (row.readOnly ? "true" : "false") +
         ", \"writable\": " + (IsWritable(row) ? "true" : "false") +
         ", \"frames\": " + (frames == 0 ? "null" : std::to_string(frames)) +
         ", \"versions\": " + VersionsJson(row) + ", \"elsewhere\": " + Quoted(ElsewhereText(row)) +
         ", \"source\": " + Quoted(SourceText(row)) + ", \"otherNames\": " + NamesJson(OtherNames(row)) +
         ", \"target\": " + Quoted(SourceName(row.write.target)) + ", \"lossy\": " + Quoted(row.lossy) +
         ", \"note\": " + Quoted(row.note) + "}";
}

std::string MakeJson() {
  std::string text = "[";
  for (const RowTable* table : ListedTables()) {
    for (const OffsetRow& row : table->rows) {
      text += (text.size() == 1 ? "\n" : ",\n") + JsonRow(row, table->subject);
    }
  }
  return text + "\n]\n";
}

std::string MakeNameTable() {
  std::string text =
      "// Written by offset_reference from the plug-in's catalogue; do not edit.\n"
      "// clang-format off\n"
      "constexpr OffsetName offsetNames[] = {\n";
  for (const RowTable* table : ListedTables()) {
    for (const OffsetRow& row : table->rows) {
      text += "    {.offset = " + Hex(row.offset) + ", .type = ValueType::" + NamesOf(row.type).code +
              ", .length = " + std::to_string(StoredWidth(row)) + ", .name = " + Quoted(RowName(row)) +
              ", .meaning = " + Quoted(row.meaning) + ", .unit = " + Quoted(row.unit) +
              ", .unitScale = " + Number(row.unitScale) + ", .unitBias = " + Number(row.unitBias) +
              ", .show = Form::" + FormCode(row) + ", .readOnly = " + (row.readOnly ? "true" : "false") +
              ", .writable = " + (IsWritable(row) ? "true" : "false") + "},\n";
    }
  }
  text += "};\nconstexpr OffsetRange readOnlyOffsets[] = {\n";
  for (const Range& range : ReadOnlyRanges()) {
    text += "    {.first = " + Hex(range.first) + ", .last = " + Hex(range.last) + "},\n";
  }
  text += "};\nconstexpr OffsetSubject offsetSubjects[] = {\n";
  for (const RowTable* table : ListedTables()) {
    text +=
        "    {.name = " + Quoted(table->subject) + ", .rows = " + std::to_string(table->rows.size()) + "},\n";
  }
  return text + "};\n// clang-format on\n";
}

// Two rows of one name would hide the second from offsetctl. Returns true, or false after naming the pair.
bool CheckNames() {
  std::map<std::string, uint32_t> offsets;
  bool unique = true;
  for (const RowTable* table : ListedTables()) {
    for (const OffsetRow& row : table->rows) {
      const std::string name = RowName(row);
      if (name.empty()) continue;
      const auto [place, isNew] = offsets.emplace(name, row.offset);
      if (isNew) continue;
      std::fprintf(stderr,
                   "offset_reference: %s and %s are both named %s: rename one in src/bridge/catalogue\n",
                   Hex(place->second).c_str(), Hex(row.offset).c_str(), name.c_str());
      unique = false;
    }
  }
  return unique;
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
  if (!CheckNames()) return 1;
  const Output outputs[] = {
      {.path = "docs/offsets.md", .text = MakePage()},
      {.path = "docs/offsets.json", .text = MakeJson()},
      {.path = "tools/offsetctl/offset_table.inc", .text = MakeNameTable()},
      {.path = "docs/aircraft.md", .text = MakeAircraftPage(words[1])},
  };
  for (const Output& output : outputs) {
    if (!(check ? CheckOutput(words[1], output) : WriteOutput(words[1], output))) return 1;
  }
  return 0;
}
