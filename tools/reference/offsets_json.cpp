#include "reference/offsets_json.h"

#include <cmath>
#include <cstdio>

#include "reference/areas.h"
#include "reference/facts.h"
#include "reference/page_text.h"
#include "reference/versions.h"

namespace {

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

std::string Whole(double number) {
  char text[32];
  std::snprintf(text, sizeof text, "%.0f", number);
  return text;
}

// The denominator in all its digits, pi as near as a double is.
std::string ScaleJson(const Scale& scale) {
  const bool isWhole = std::floor(scale.denominator) == scale.denominator;
  return "{\"fraction\": " + Quoted(scale.text) + ", \"numerator\": " + Number(scale.numerator) +
         ", \"denominator\": " + (isWhole ? Whole(scale.denominator) : Number(scale.denominator)) + "}";
}

std::string ChoicesJson(const OffsetRow& row, bool bits) {
  if ((row.show == Show::Bits) != bits || row.choices.empty()) return "null";
  std::string text = "[";
  for (const Choice& choice : row.choices) {
    text += (text.size() == 1 ? "{" : ", {") + std::string(bits ? "\"bit\": " : "\"value\": ") +
            std::to_string(choice.number) + (bits ? ", \"width\": " + std::to_string(choice.width) : "") +
            ", \"name\": " + Quoted(choice.name) + "}";
  }
  return text + "]";
}

std::string RangeJson(const OffsetRow& row) {
  const std::optional<UnitRange> range = RangeOf(row);
  if (!range) return "null";
  const auto number = [](const std::optional<double>& value) { return value ? Number(*value) : "null"; };
  return "{\"low\": " + number(range->low) + ", \"high\": " + number(range->high) +
         ", \"step\": " + number(range->step) + "}";
}

std::string ToleranceJson(const OffsetRow& row) {
  if (std::string(ReadBackOf(row)) != "near") return "null";
  const double size = row.unitScale < 0 ? -row.unitScale : row.unitScale;
  return "{\"absolute\": " + Number(row.tolerance.steps * size) +
         ", \"share\": " + Number(row.tolerance.share) +
         ", \"wraps\": " + (row.tolerance.wraps ? "true" : "false") + "}";
}

std::string ExampleJson(const OffsetRow& row) {
  const Example example = ExampleOf(row);
  std::string bytes;
  // The zeros that fill a text are left out.
  const size_t shown = row.type == Stored::Text ? example.text.size() + 1 : example.bytes.size();
  for (size_t i = 0; i < shown; ++i) {
    char text[4];
    std::snprintf(text, sizeof text, "%02X", example.bytes[i]);
    bytes += (i == 0 ? "" : " ") + std::string(text);
  }
  return "{\"bytes\": " + Quoted(bytes) +
         ", \"value\": " + (row.type == Stored::Text ? Quoted(example.text) : Number(example.number)) +
         ", \"meaning\": " + Quoted(example.meaning) + "}";
}

std::string JsonRow(const OffsetRow& row, const char* subject) {
  const int frames = CycleFrames(row.cycle);
  return "    {\"offset\": " + std::to_string(row.offset) + ", \"hex\": " + Quoted(Hex(row.offset)) +
         ", \"name\": " + Quoted(RowName(row)) + ", \"subject\": " + Quoted(subject) +
         ", \"type\": " + Quoted(TypeText(row)) + ", \"size\": " + std::to_string(StoredWidth(row)) +
         ", \"form\": " + Quoted(FormName(row)) + ", \"meaning\": " + Quoted(row.meaning) +
         ", \"unit\": " + Quoted(row.unit) + ", \"scale\": " + ScaleJson(ScaleOf(row)) +
         ", \"bias\": " + Number(row.unitBias) + ", \"positive\": " + Quoted(row.positive) +
         ", \"reference\": " + Quoted(row.reference) + ", \"values\": " + ChoicesJson(row, false) +
         ", \"bits\": " + ChoicesJson(row, true) + ", \"range\": " + RangeJson(row) +
         ", \"write\": " + Quoted(AccessText(row)) + ", \"readsBack\": " + Quoted(ReadBackOf(row)) +
         ", \"tolerance\": " + ToleranceJson(row) + ", \"lossy\": " + Quoted(row.lossy) +
         ", \"example\": " + ExampleJson(row) +
         ", \"frames\": " + (frames == 0 ? "null" : std::to_string(frames)) +
         ", \"versions\": " + VersionsJson(row) + ", \"elsewhere\": " + Quoted(ElsewhereText(row)) +
         ", \"source\": " + Quoted(SourceText(row)) + ", \"otherNames\": " + NamesJson(OtherNames(row)) +
         ", \"target\": " + Quoted(SourceName(row.write.target)) + ", \"note\": " + Quoted(row.note) + "}";
}

std::string AreaJson(const Area& area) {
  std::string fields;
  for (const AreaField& field : area.fields) {
    const uint32_t size = field.type == Stored::Text ? field.length : StoredWidth({.type = field.type});
    fields += std::string(fields.empty() ? "" : ",") + "\n      {\"at\": " + std::to_string(field.at) +
              ", \"type\": " + Quoted(TypeText(field.type, field.length)) +
              ", \"size\": " + std::to_string(size) + ", \"name\": " + Quoted(field.name) +
              ", \"meaning\": " + Quoted(field.meaning) + ", \"unit\": " + Quoted(field.unit) +
              ", \"scale\": " + ScaleJson(ScaleOf(field.scale, field.unit)) +
              ", \"positive\": " + Quoted(field.positive) + ", \"reference\": " + Quoted(field.reference) + "}";
  }
  return "    {\"name\": " + Quoted(area.name) + ", \"offset\": " + std::to_string(area.offset) +
         ", \"hex\": " + Quoted(Hex(area.offset)) + ", \"size\": " + std::to_string(area.size) +
         ", \"count\": " + std::to_string(area.count) + ", \"step\": " + std::to_string(area.step) +
         ", \"write\": " + Quoted(area.write) + ", \"meaning\": " + Quoted(area.meaning) + ", \"fields\": [" +
         fields + "]}";
}

std::string WordJson(const SpecialWord& word) {
  return "    {\"offset\": " + std::to_string(word.offset) + ", \"hex\": " + Quoted(Hex(word.offset)) +
         ", \"name\": " + Quoted(word.name) + ", \"type\": " + Quoted(TypeText(word.type, 0)) +
         ", \"write\": " + Quoted(word.write) + ", \"value\": " + Quoted(word.value) +
         ", \"meaning\": " + Quoted(word.meaning) + "}";
}

}  // namespace

std::string MakeOffsetsJson() {
  std::string rows, areas, words, ranges;
  const auto add = [](std::string* list, const std::string& item) {
    *list += (list->empty() ? "\n" : ",\n") + item;
  };
  for (const RowTable* table : ListedTables()) {
    for (const OffsetRow& row : table->rows) add(&rows, JsonRow(row, table->subject));
  }
  for (const Area& area : Areas()) add(&areas, AreaJson(area));
  for (const SpecialWord& word : SpecialWords()) add(&words, WordJson(word));
  for (const OffsetRange& range : ReadOnlyRanges()) {
    add(&ranges,
        "    {\"first\": " + std::to_string(range.first) + ", \"last\": " + std::to_string(range.last) + "}");
  }
  return "{\n  \"$schema\": \"offsets.schema.json\",\n  \"version\": 2,\n  \"memorySize\": 131072,\n  "
         "\"offsets\": [" +
         rows + "\n  ],\n  \"areas\": [" + areas + "\n  ],\n  \"words\": [" + words +
         "\n  ],\n  \"readOnly\": [" + ranges + "\n  ]\n}\n";
}
