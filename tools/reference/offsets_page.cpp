#include "reference/offsets_page.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "reference/areas.h"
#include "reference/facts.h"
#include "reference/page_text.h"
#include "reference/versions.h"

namespace {

// How the stored number becomes the unit: "kt = stored / 128", "deg = stored x 360/2^32".
std::string ScaleText(const Scale& scale, double bias, const char* unit) {
  if (scale.text == "1" && bias == 0) return unit;
  std::string text = (unit[0] == 0 ? "value" : std::string(unit)) + " = stored";
  if (scale.text.starts_with("1/")) {
    text += " / " + scale.text.substr(2);
  } else if (scale.text != "1") {
    text += " x " + scale.text;
  }
  if (bias > 0) text += " + " + Number(bias);
  if (bias < 0) text += " - " + Number(-bias);
  return text;
}

std::string UnitText(const OffsetRow& row) {
  const std::string unit = row.unit;
  if (row.show == Show::Flag) return "0 off, else on";
  if (row.show == Show::Bits) return "bits";
  if (row.show == Show::Bcd) return unit.empty() ? "BCD" : unit + ", BCD";
  return ScaleText(ScaleOf(row), row.unitBias, row.unit);
}

std::string DirectionText(const char* positive, const char* reference) {
  return (positive[0] != 0 ? std::string(", positive ") + positive : "") +
         (reference[0] != 0 ? std::string(", from ") + reference : "");
}

// "9.00-", "-11.40", "9.00-9.20"; "all" or "none".
std::string VersionsText(const OffsetRow& row) {
  const ServedVersions versions = VersionsOf(row);
  if (versions.never) return "none";
  return versions.from.empty() && versions.to.empty() ? "all" : versions.from + "-" + versions.to;
}

std::string NoteText(const OffsetRow& row) {
  std::string text = row.lossy[0] != 0 ? "Lossy: " + std::string(row.lossy) : "";
  const auto add = [&](const std::string& more) { text += (text.empty() ? "" : "; ") + more; };
  if (row.note[0] != 0) add(row.note);
  for (const char* name : OtherNames(row)) add("also called `" + std::string(name) + "`");
  if (const std::string elsewhere = ElsewhereText(row); !elsewhere.empty()) add(elsewhere);
  const std::string target = SourceName(row.write.target);
  if (!target.empty() && target != SourceName(row.source)) add("a write sets `" + target + "`");
  return text;
}

constexpr char pageHead[] =
    "# Offsets\n\n"
    "<!-- Written by offset_reference from the catalogue in src/bridge/catalogue; do not edit. -->\n\n"
    "Every offset that the plug-in keeps current or acts on, by subject; at the end the\n"
    "[layouts of the larger areas](#areas) and the indexes [by offset](#by-offset) and [by name](#by-name). "
    "The same\n"
    "as data is in [offsets.json](offsets.json), whose form [offsets.schema.json](offsets.schema.json) tells: "
    "with a\n"
    "worked example, the range and what a written value becomes for each offset. Values are little-endian.\n\n"
    "- **Type**: u unsigned, s signed, f floating point, with the number of bits; text:N is N bytes, padded\n"
    "  with zeros.\n"
    "- **Unit**: the unit of the stored number, or how to compute it. BCD holds one decimal digit in four\n"
    "  bits; with MHz the leading 1 is left out, 0x1870 is 118.70.\n"
    "- **Write**: \"yes\" when a written value has an effect; \"no\" when it only stands in the memory until "
    "the\n"
    "  next refresh; \"read-only\" when the server drops it.\n"
    "- **Frames**: the offset is refreshed once in so many frames; \"-\" when nothing refreshes it.\n"
    "- **X-Plane**: the versions, from 8.60 to 12.10, in which the simulator has what the offset follows. In\n"
    "  the others what is missing counts as 0, and setting it changes nothing; the remarks say what that\n"
    "  shows. Offsets without a source of the simulator's are served in all.\n"
    "- **Name** is what `offsetctl` and the [client libraries](clients.md) call it.\n"
    "- Lossy: a written value does not read back within one step of the encoding, for the reason given.\n\n"
    "**Is the simulator there?** `activity` (0x337E) counts its frames: when it has not changed for a second, "
    "no\n"
    "frames run (a loading screen, the simulator's end, a network that has gone), and what else you read is "
    "old.\n";

std::string PageRow(const OffsetRow& row) {
  const int frames = CycleFrames(row.cycle);
  const std::string source = SourceText(row);
  const bool isDataref = row.source.ref != nullptr && !source.empty();
  return "| " + Hex(row.offset) + " | " + TypeText(row) + " | " + TableCell(UnitText(row)) + " | " +
         TableCell(row.meaning + DirectionText(row.positive, row.reference)) + " | `" + RowName(row) + "` | " +
         AccessText(row) + " | " + (frames == 0 ? "-" : std::to_string(frames)) + " | " + VersionsText(row) +
         " | " + (isDataref ? "`" + source + "`" : source) + " | " + TableCell(NoteText(row)) + " |\n";
}

// What the numbers and bits of a subject's rows stand for, rows with the same list together.
std::string LegendPart(const RowTable& table) {
  std::vector<std::pair<std::string, std::string>> legends;  // names, legend
  for (const OffsetRow& row : table.rows) {
    const std::string legend = LegendOf(row);
    if (legend.empty()) continue;
    const std::string name = "`" + RowName(row) + "`";
    const auto same =
        std::find_if(legends.begin(), legends.end(), [&](const auto& one) { return one.second == legend; });
    if (same == legends.end()) {
      legends.emplace_back(name, legend);
    } else {
      same->first += ", " + name;
    }
  }
  std::string text;
  for (const auto& [names, legend] : legends) text += "\n- " + names + ": " + legend;
  return text.empty() ? "" : text + "\n";
}

std::string AreaPart(const Area& area) {
  std::string text = "\n### " + std::string(area.name) + "\n\n";
  text += Hex(area.offset) + ", " + std::to_string(area.size) + " bytes";
  if (area.count > 1) {
    text += "; " + std::to_string(area.count) + " of them, one each " + std::to_string(area.step) + " bytes";
  }
  text += ": " + std::string(area.meaning) + ". " +
          (std::strcmp(area.write, "yes") == 0 ? "Clients write it" : "Clients only read it") +
          ".\n\n| Byte | Type | Unit | Meaning | Field |\n|---|---|---|---|---|\n";
  for (const AreaField& field : area.fields) {
    text += "| " + std::to_string(field.at) + " | " + TypeText(field.type, field.length) + " | " +
            TableCell(ScaleText(ScaleOf(field.scale, field.unit), 0, field.unit)) + " | " +
            TableCell(field.meaning + DirectionText(field.positive, field.reference)) + " | `" + field.name +
            "` |\n";
  }
  return text;
}

std::string WordsPart() {
  std::string text =
      "\n## Special words\n\n| Offset | Type | Write | Content | Meaning |\n|---|---|---|---|---|\n";
  for (const SpecialWord& word : SpecialWords()) {
    text += "| " + Hex(word.offset) + " | " + TypeText(word.type, 0) + " | " + word.write + " | " + word.value +
            " | " + TableCell(word.meaning) + " |\n";
  }
  return text;
}

// The address of a heading in the page, as its readers make it.
std::string Anchor(const std::string& heading) {
  std::string anchor;
  for (const char letter : heading) {
    if (letter == ',') continue;
    anchor += letter == ' '                    ? '-'
              : letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a')
                                               : letter;
  }
  return anchor;
}

struct IndexEntry {
  uint32_t offset;
  std::string name;
  std::string place;
};

std::string IndexPart() {
  std::vector<IndexEntry> entries;
  for (const RowTable* table : ListedTables()) {
    for (const OffsetRow& row : table->rows) entries.push_back({row.offset, RowName(row), table->subject});
  }
  for (const Area& area : Areas()) entries.push_back({area.offset, area.name, area.name});
  const auto line = [](const IndexEntry& entry) {
    return "| " + Hex(entry.offset) + " | `" + entry.name + "` | [" + entry.place + "](#" +
           Anchor(entry.place) + ") |\n";
  };
  constexpr char head[] = "| Offset | Name | Where |\n|---|---|---|\n";
  std::string text = std::string("\n## By offset\n\n") + head;
  std::stable_sort(entries.begin(), entries.end(),
                   [](const auto& a, const auto& b) { return a.offset < b.offset; });
  for (const IndexEntry& entry : entries) text += line(entry);
  text += std::string("\n## By name\n\n") + head;
  std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
  for (const IndexEntry& entry : entries) text += line(entry);
  return text;
}

}  // namespace

std::string MakeOffsetsPage() {
  std::string page = pageHead;
  for (const RowTable* table : ListedTables()) {
    page += std::string("\n## ") + table->subject + "\n\n";
    page += "| Offset | Type | Unit | Meaning | Name | Write | Frames | X-Plane | Source | Remarks |\n";
    page += "|---|---|---|---|---|---|---|---|---|---|\n";
    for (const OffsetRow& row : table->rows) page += PageRow(row);
    page += LegendPart(*table);
  }
  page +=
      "\n## Areas\n\nThe traffic table is told in full in [traffic.md](traffic.md), the relay in\n"
      "[network-protocol.md](network-protocol.md).\n";
  for (const Area& area : Areas()) page += AreaPart(area);
  page += WordsPart();
  page +=
      "\n## Read-only offsets\n\nWrites that start at one of these are dropped by the server; the rest of the\n"
      "request goes on.\n\n";
  for (const OffsetRange& range : ReadOnlyRanges()) {
    page +=
        "- " + Hex(range.first) + (range.last != range.first ? std::string("-") + Hex(range.last) : "") + "\n";
  }
  return page + IndexPart();
}
