#include "reference/facts.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <numbers>
#include <set>

#include "base/bytes.h"
#include "bridge/catalogue/losses.h"
#include "bridge/catalogue/units.h"
#include "reference/page_text.h"

namespace {

struct TypeNames {
  const char* shown;
  const char* code;
  double low, high;  // both 0: floating point and texts
};

TypeNames NamesOf(Stored type) {
  switch (type) {
    case Stored::U8:
      return {"u8", "U8", 0, 0xFF};
    case Stored::S8:
      return {"s8", "S8", -0x80, 0x7F};
    case Stored::U16:
      return {"u16", "U16", 0, 0xFFFF};
    case Stored::S16:
      return {"s16", "S16", -0x8000, 0x7FFF};
    case Stored::U32:
      return {"u32", "U32", 0, 0xFFFFFFFF};
    case Stored::S32:
      return {"s32", "S32", -0x1p31, 0x1p31 - 1};
    case Stored::S64:
      return {"s64", "S64", -0x1p63, 0x1p63};
    case Stored::F32:
      return {"f32", "F32", 0, 0};
    case Stored::F64:
      return {"f64", "F64", 0, 0};
    case Stored::Text:
      return {"text", "Text", 0, 0};
  }
  return {"?", "?", 0, 0};
}

bool IsFloating(Stored type) { return type == Stored::F32 || type == Stored::F64; }

// "2^16" from 1024 on, with the metres of a quarter meridian as they are.
std::string DenominatorText(double number) {
  int twos = 0;
  double odd = number;
  for (; std::fmod(odd, 2) == 0; odd /= 2) ++twos;
  if (odd == 1 && twos >= 10) return "2^" + std::to_string(twos);
  if (number > quarterMeridian && std::fmod(number, quarterMeridian) == 0) {
    return "(10001750 x " + DenominatorText(number / quarterMeridian) + ")";
  }
  return Number(number);
}

bool IsPowerOfTwo(double number) { return std::fmod(std::log2(number), 1) == 0; }

// The denominator that makes the fraction, 0 when there is no whole one.
double DenominatorFor(double numerator, double scale) {
  const double denominator = std::round(numerator / scale);
  return denominator != 0 && std::abs(numerator / denominator - scale) <= std::abs(scale) * 0x1p-52
             ? denominator
             : 0;
}

double StoredLow(const OffsetRow& row) { return std::max(row.limits.low, NamesOf(row.type).low); }
double StoredHigh(const OffsetRow& row) { return std::min(row.limits.high, NamesOf(row.type).high); }

double InUnit(const OffsetRow& row, double stored) { return stored * row.unitScale + row.unitBias; }

double BcdNumber(const OffsetRow& row, uint32_t word) {
  double number = 0;
  for (int shift = 12; shift >= 0; shift -= 4) number = number * 10 + ((word >> shift) & 0xF);
  return std::strcmp(row.unit, "MHz") == 0 ? std::round(10000 + number) / 100 : number;
}

uint32_t BcdExample(const OffsetRow& row) {
  if (std::strcmp(row.unit, "kHz") == 0) return 0x0350;
  if (std::strcmp(row.unit, "MHz") != 0) return 0x7000;
  return std::strncmp(row.name, "nav", 3) == 0 ? 0x1030 : 0x1870;
}

// A round number of the unit that fits.
double NumberExample(const OffsetRow& row) {
  struct UnitExample {
    const char* unit;
    double number;
  };
  constexpr UnitExample ofUnits[] = {
      {"deg", 45},  {"kt", 120},  {"ft", 5000},  {"m", 250},      {"%", 50},   {"mb", 1013.25},
      {"degC", 15}, {"h", 5},     {"rad", 0.25}, {"rad/s", 0.25}, {"m/s", 10}, {"dots", 1.5},
      {"inHg", 29}, {"lb", 1000}, {"s", 0.02},   {"g", 1},        {"mi", 6}};
  const double low = IsFloating(row.type) ? row.limits.low : StoredLow(row);
  const double high = IsFloating(row.type) ? row.limits.high : StoredHigh(row);
  const auto fits = [&](double stored) { return stored >= low && stored <= high; };
  for (const UnitExample& example : ofUnits) {
    const double stored = (example.number - row.unitBias) / row.unitScale;
    if (std::strcmp(row.unit, example.unit) == 0 && fits(stored)) return stored;
  }
  for (const double number : {100.0, 10.0, 5.0, 2.0, 1.0, 0.5}) {
    const double stored = (number - row.unitBias) / row.unitScale;
    if (fits(stored)) return stored;
  }
  return high;
}

std::string ChosenText(const OffsetRow& row, int64_t number) {
  std::string text;
  for (const Choice& choice : row.choices) {
    const bool isMeant =
        row.show == Show::Bits ? ((number >> choice.number) & 1) != 0 : number == choice.number;
    if (isMeant) text += (text.empty() ? "" : ", ") + std::string(choice.name);
  }
  return text;
}

}  // namespace

std::string TypeText(Stored type, uint32_t length) {
  const std::string name = NamesOf(type).shown;
  return type == Stored::Text ? name + ":" + std::to_string(length) : name;
}
std::string TypeText(const OffsetRow& row) { return TypeText(row.type, StoredWidth(row)); }

const char* TypeCode(Stored type) { return NamesOf(type).code; }

const char* FormName(const OffsetRow& row) {
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

Scale ScaleOf(double scale, const char* unit) {
  if (scale == 1) return {.text = "1"};
  const std::string sign = scale < 0 ? "-" : "";
  const double size = std::abs(scale);
  const auto made = [&](double numerator, double denominator, const std::string& below) {
    return Scale{.text = sign + Number(numerator) + (denominator == 1 ? "" : "/" + below),
                 .numerator = scale < 0 ? -numerator : numerator,
                 .denominator = denominator};
  };
  // Numbers that a reader looks for first: of a full turn, of a quarter meridian, of the whole.
  if (std::strcmp(unit, "deg") == 0) {
    const double ofTurn = DenominatorFor(360, size);
    if (ofTurn > 360 && IsPowerOfTwo(ofTurn)) return made(360, ofTurn, DenominatorText(ofTurn));
    const double ofQuarter = DenominatorFor(90, size);
    if (ofQuarter > 0 && std::fmod(ofQuarter, quarterMeridian) == 0) {
      return made(90, ofQuarter, DenominatorText(ofQuarter));
    }
  }
  if (std::strcmp(unit, "%") == 0) {
    if (const double whole = DenominatorFor(100, size); whole > 0)
      return made(100, whole, DenominatorText(whole));
  }
  for (int count = 1; count <= 5000; ++count) {
    const double numerator = count;
    if (const double below = DenominatorFor(numerator, size); below > 0) {
      return made(numerator, below, DenominatorText(below));
    }
    if (std::abs(numerator / std::numbers::pi - size) <= size * 0x1p-52) {
      return made(numerator, std::numbers::pi, "pi");
    }
  }
  return {.text = Number(scale), .numerator = scale, .isExact = false};
}
Scale ScaleOf(const OffsetRow& row) { return ScaleOf(row.unitScale, row.unit); }

std::optional<UnitRange> RangeOf(const OffsetRow& row) {
  if (row.type == Stored::Text || row.show == Show::Bits) return std::nullopt;
  if (row.show == Show::Flag) return UnitRange{0, 1, 1};
  if (row.show == Show::Bcd) {
    const auto most = static_cast<uint32_t>(std::fmin(row.limits.high, 0x9999));
    return UnitRange{BcdNumber(row, 0), BcdNumber(row, most), std::strcmp(row.unit, "MHz") == 0 ? 0.01 : 1};
  }
  if (!row.choices.empty()) {
    const auto [least, most] =
        std::minmax_element(row.choices.begin(), row.choices.end(),
                            [](const Choice& a, const Choice& b) { return a.number < b.number; });
    return UnitRange{least->number, most->number, 1};
  }
  if (!IsFloating(row.type)) {
    const double ends[] = {InUnit(row, StoredLow(row)), InUnit(row, StoredHigh(row))};
    return UnitRange{std::min(ends[0], ends[1]), std::max(ends[0], ends[1]), std::abs(row.unitScale)};
  }
  UnitRange range;
  if (std::isfinite(row.limits.low)) range.low = InUnit(row, row.limits.low);
  if (std::isfinite(row.limits.high)) range.high = InUnit(row, row.limits.high);
  return range.low || range.high ? std::optional(range) : std::nullopt;
}

const char* ReadBackOf(const OffsetRow& row) {
  const std::string lossy = row.lossy;
  const Tolerance& tolerance = row.tolerance;
  if (!IsForWriting(row)) return "none";
  if (lossy == requestLoss) return "request";
  if (lossy.empty()) return "same";
  if (lossy == flagLoss) return "switch";
  if (tolerance.steps != 0 || tolerance.share != 0) return "near";
  const bool isLimited =
      std::isfinite(row.limits.low) || std::isfinite(row.limits.high) || !row.choices.empty();
  const bool startsAbove =
      lossy.starts_with("above ") || lossy.starts_with("below ") || lossy.starts_with("limited");
  return lossy == digitLoss || (isLimited && startsAbove) ? "limited" : "own";
}

bool IsForWriting(const OffsetRow& row) {
  constexpr DispatchAction ofSimulator[] = {DispatchAction::Stage, DispatchAction::None};
  const bool isOurs =
      std::find(std::begin(ofSimulator), std::end(ofSimulator), row.dispatch) == std::end(ofSimulator);
  return !row.readOnly && (HasWriter(row) || isOurs || row.isInput);
}

std::string AccessText(const OffsetRow& row) {
  if (row.readOnly) return "read-only";
  return IsForWriting(row) ? "yes" : "no";
}

Example ExampleOf(const OffsetRow& row) {
  Example example;
  const uint32_t width = StoredWidth(row);
  example.bytes.resize(width);
  if (row.type == Stored::Text) {
    example.text = "ABC";
    std::memcpy(example.bytes.data(), example.text.data(), example.text.size());
    example.meaning = example.text;
    return example;
  }
  const Choice* const second = row.choices.size() > 1 ? &row.choices[1] : nullptr;
  double stored = 0;
  if (row.show == Show::Flag) {
    stored = 1;
  } else if (row.show == Show::Bcd) {
    stored = BcdExample(row);
  } else if (row.show == Show::Bits) {
    for (const Choice& choice : row.choices.first(std::min<size_t>(row.choices.size(), 2))) {
      stored += std::exp2(choice.number);
    }
    if (row.choices.empty()) stored = 1;
  } else {
    stored = second != nullptr ? second->number : NumberExample(row);
  }
  if (!IsFloating(row.type)) stored = std::round(stored);
  if (row.type == Stored::F32) {
    StoreTo(example.bytes.data(), static_cast<float>(stored));
  } else if (row.type == Stored::F64) {
    StoreTo(example.bytes.data(), stored);
  } else {
    const int64_t word = static_cast<int64_t>(stored);
    std::memcpy(example.bytes.data(), &word, width);
  }
  const double decoded = DecodeNumber(row.type, example.bytes.data());
  example.number = row.show == Show::Bcd    ? BcdNumber(row, static_cast<uint32_t>(stored))
                   : row.show == Show::Flag ? 1
                                            : InUnit(row, decoded);
  example.meaning = row.show == Show::Flag ? "on" : ChosenText(row, static_cast<int64_t>(decoded));
  if (example.meaning.empty()) {
    char rounded[32];
    std::snprintf(rounded, sizeof rounded, "%.6g", example.number);
    example.meaning = rounded + std::string(row.unit[0] != 0 ? " " : "") + row.unit;
  }
  return example;
}

std::string LegendOf(const OffsetRow& row) {
  std::string text;
  for (const Choice& choice : row.choices) {
    text += text.empty() ? "" : ", ";
    const int last = choice.number + choice.width - 1;
    if (row.show == Show::Bits) text += choice.width == 1 ? "bit " : "bits ";
    text += std::to_string(choice.number) + (choice.width == 1 ? "" : "-" + std::to_string(last)) + " " +
            choice.name;
  }
  return text;
}

std::string FullMeaning(const OffsetRow& row) {
  std::string text = row.meaning;
  if (row.positive[0] != 0) text += std::string(", positive ") + row.positive;
  if (const std::string legend = LegendOf(row); !legend.empty()) text += ": " + legend;
  return text;
}

std::string SourceText(const OffsetRow& row) {
  if (row.source.ref != nullptr) return SourceName(row.source);
  const bool hasStock = std::any_of(row.variants.begin(), row.variants.end(),
                                    [](const Variant& variant) { return variant.addOn == AddOn::None; });
  return row.read != nullptr || row.readText != nullptr || row.prepared != nullptr || hasStock ? "derived" : "";
}

std::span<const char* const> OtherNames(const OffsetRow& row) {
  const DataRef* const ref = row.source.ref != nullptr ? row.source.ref : row.write.target.ref;
  return ref != nullptr ? ref->otherNames : std::span<const char* const>{};
}

std::vector<OffsetRange> ReadOnlyRanges() {
  std::set<uint32_t> offsets;
  for (const RowTable* table : Catalogue()) {
    for (const OffsetRow& row : table->rows) {
      for (uint32_t n = 0; row.readOnly && n < StoredWidth(row); ++n) offsets.insert(row.offset + n);
    }
  }
  std::vector<OffsetRange> ranges;
  for (const uint32_t offset : offsets) {
    if (ranges.empty() || ranges.back().last + 1 != offset) ranges.push_back({offset, offset});
    ranges.back().last = offset;
  }
  return ranges;
}
