#include "encode.h"

#include <cmath>
#include <cstring>

#include "base/bytes.h"
#include "numbers.h"
#include "units.h"
#include "words.h"

namespace ctl {

namespace {

bool Fail(std::string* error, const std::string& text) {
  *error = text;
  return false;
}

int HexDigit(char letter) {
  if (letter >= '0' && letter <= '9') return letter - '0';
  if (letter >= 'a' && letter <= 'f') return letter - 'a' + 10;
  if (letter >= 'A' && letter <= 'F') return letter - 'A' + 10;
  return -1;
}

// Pairs of hexadecimal digits, with spaces between pairs or not.
bool ParseHexBytes(std::string_view text, std::vector<uint8_t>* bytes) {
  std::vector<uint8_t> parsed;
  for (size_t at = 0; at < text.size();) {
    if (text[at] == ' ') {
      ++at;
      continue;
    }
    const int high = HexDigit(text[at]);
    const int low = at + 1 < text.size() ? HexDigit(text[at + 1]) : -1;
    if (high < 0 || low < 0) return false;
    parsed.push_back(static_cast<uint8_t>(high * 16 + low));
    at += 2;
  }
  *bytes = std::move(parsed);
  return true;
}

bool ParseQuoted(std::string_view text, std::vector<uint8_t>* bytes) {
  if (text.size() < 2 || text.front() != '"' || text.back() != '"') return false;
  std::vector<uint8_t> parsed;
  text = text.substr(1, text.size() - 2);
  for (size_t at = 0; at < text.size(); ++at) {
    char letter = text[at];
    if (letter == '"') return false;
    if (letter == '\\') {
      if (++at == text.size()) return false;
      letter = text[at];
      if (letter == 'n') letter = '\n';
      if (letter == 'x') {
        std::vector<uint8_t> one;
        if (at + 2 >= text.size() || !ParseHexBytes(text.substr(at + 1, 2), &one) || one.size() != 1)
          return false;
        letter = static_cast<char>(one[0]);
        at += 2;
      }
    }
    parsed.push_back(static_cast<uint8_t>(letter));
  }
  *bytes = std::move(parsed);
  return true;
}

void PutBits(uint64_t bits, Item* item) {
  for (uint8_t& byte : item->bytes) {
    byte = static_cast<uint8_t>(bits);
    bits >>= 8;
  }
}

uint64_t LargestMagnitude(ValueType type, uint32_t size, bool negative) {
  const uint64_t all = size == 8 ? ~uint64_t{0} : (uint64_t{1} << (8 * size)) - 1;
  if (!IsSigned(type)) return negative ? 0 : all;
  return negative ? all / 2 + 1 : all / 2;
}

std::string RangeText(ValueType type, uint32_t size) {
  const std::string low = IsSigned(type) ? "-" : "";
  return low + WholeText(LargestMagnitude(type, size, true)) + " to " +
         WholeText(LargestMagnitude(type, size, false));
}

bool EncodeWhole(std::string_view text, Item* item, std::string* error) {
  WholeNumber value;
  if (!ParseWhole(text, &value)) return Fail(error, Quote(text) + " is no whole number");
  if (value.magnitude > LargestMagnitude(item->type, item->size, value.negative)) {
    return Fail(error, std::string(text) + " does not fit " + TypeText(item->type, item->size) +
                           ", which holds " + RangeText(item->type, item->size));
  }
  PutBits(value.negative ? uint64_t{0} - value.magnitude : value.magnitude, item);
  return true;
}

void PutReal(double value, Item* item) {
  if (item->type == ValueType::F64) {
    StoreTo(item->bytes.data(), value);
  } else {
    StoreTo(item->bytes.data(), static_cast<float>(value));
  }
}

bool EncodeReal(std::string_view text, double value, Item* item, std::string* error) {
  if (item->type == ValueType::F32 && std::isfinite(value) && std::isinf(static_cast<float>(value))) {
    return Fail(error, std::string(text) + " does not fit f32");
  }
  PutReal(value, item);
  return true;
}

// A number in the row's unit, or in one that converts to it. Keeps it as what was asked for.
bool ParseInUnit(std::string_view text, Item* item, std::string* error) {
  const OffsetName& row = *item->row;
  double number = 0;
  std::string_view unit;
  if (!SplitQuantity(text, &number, &unit)) {
    const std::string words = WordsText(row);
    return Fail(error, Quote(text) + " is no number" + (words.empty() ? "" : " and none of " + words));
  }
  if (unit.starts_with('x') || unit.starts_with('X')) {
    return Fail(error, "values are in engineering units here; for the stored number give the type too");
  }
  item->asked = number;
  if (unit.empty() || ConvertUnit(number, unit, row.unit, &item->asked)) return true;
  const std::string like = UnitsLike(row.unit);
  return Fail(error, row.unit[0] == 0 ? "it has no unit, leave \"" + std::string(unit) + "\" out"
                                      : "\"" + std::string(unit) + "\" does not convert to its unit, " +
                                            row.unit + (like.empty() ? "" : " (known: " + like + ")"));
}

std::string WithUnit(const std::string& number, const OffsetName& row) {
  return row.unit[0] != 0 ? number + " " + row.unit : number;
}

bool FailOutside(std::string_view text, double first, double last, const OffsetName& row, std::string* error) {
  return Fail(error, std::string(text) + " is outside " + RealText(static_cast<float>(std::fmin(first, last))) +
                         " to " + WithUnit(RealText(static_cast<float>(std::fmax(first, last))), row));
}

// Within a full turn. What rounds up to the whole turn is its beginning.
double WithinTurn(double degrees, const OffsetName& row) {
  constexpr double turn = 360;
  double within = std::fmod(degrees, turn);
  if (within < 0) within += turn;
  return std::round(within / row.unitScale) * row.unitScale >= turn ? 0 : within;
}

// Engineering units into the stored number, rounded to the nearest step.
bool EncodeScaled(std::string_view text, Item* item, std::string* error) {
  const OffsetName& row = *item->row;
  if (!ParseInUnit(text, item, error)) return false;
  // A number far beyond a turn is a slip of the hand, or was meant for something else.
  constexpr double leastDirection = -360, mostDirection = 720;
  const bool isDirection = IsDirection(*item);
  if (isDirection && !(item->asked >= leastDirection && item->asked <= mostDirection))
    return FailOutside(text, leastDirection, mostDirection, row, error);
  const double wanted = isDirection ? WithinTurn(item->asked, row) : item->asked;
  const double stored = (wanted - row.unitBias) / row.unitScale;
  if (!IsInteger(item->type)) return EncodeReal(text, stored, item, error);
  const double rounded = std::round(stored);
  const double high = std::ldexp(1.0, static_cast<int>(item->size) * 8 - (IsSigned(item->type) ? 1 : 0));
  const double low = IsSigned(item->type) ? -high : 0;
  // NaN fails both comparisons.
  if (!(rounded >= low && rounded < high)) {
    return FailOutside(text, low * row.unitScale + row.unitBias, (high - 1) * row.unitScale + row.unitBias, row,
                       error);
  }
  PutBits(IsSigned(item->type) ? static_cast<uint64_t>(static_cast<int64_t>(rounded))
                               : static_cast<uint64_t>(rounded),
          item);
  return true;
}

constexpr uint32_t transponderOffset = 0x0354;

bool HasOctalDigits(double count) {
  for (auto rest = static_cast<uint64_t>(count); rest > 0; rest /= 10) {
    if (rest % 10 > 7) return false;
  }
  return true;
}

bool IsMegahertz(const OffsetName& row) { return std::strcmp(row.unit, "MHz") == 0 && row.length == 2; }

// Decimal digits, four bits each. Megahertz drop the leading 1 and what does not fit behind the point: 118.705
// is 118.70, as radios show it.
bool EncodeBcd(std::string_view text, Item* item, std::string* error) {
  if (!ParseInUnit(text, item, error)) return false;
  const OffsetName& row = *item->row;
  const double first = IsMegahertz(row) ? 100 : 0;
  const double scale = IsMegahertz(row) ? 100 : 1;
  const double count = std::floor((item->asked - first) * scale + 1e-6);
  if (row.offset == transponderOffset && !(count >= 0 && count <= 7777 && HasOctalDigits(count))) {
    return Fail(error,
                std::string(text) + " is no transponder code: they are 0000 to 7777, of the digits 0 to 7");
  }
  const double limit = std::pow(10.0, 2 * item->size);
  if (!(count >= 0 && count < limit)) {
    return Fail(error, std::string(text) + " is outside " + RealText(first) + " to " +
                           WithUnit(RealText((limit - 1) / scale + first), row));
  }
  uint64_t rest = static_cast<uint64_t>(count);
  uint64_t bits = 0;
  for (uint32_t digit = 0; digit < 2 * item->size; ++digit, rest /= 10) bits |= (rest % 10) << (4 * digit);
  PutBits(bits, item);
  return true;
}

// A stored number that a word stands for. A hundred percent is "on" and "full" of a lever without words.
bool EncodeWord(std::string_view text, Item* item) {
  const OffsetName& row = *item->row;
  int64_t number = 0;
  if (!FindWord(row, text, &number)) {
    const bool isFull = text == "on" || text == "full";
    if (row.show != Form::Number || std::strcmp(row.unit, "%") != 0 || (!isFull && text != "off")) return false;
    number = static_cast<int64_t>(std::round(((isFull ? 100.0 : 0.0) - row.unitBias) / row.unitScale));
  }
  if (IsInteger(item->type)) {
    PutBits(static_cast<uint64_t>(number), item);
  } else {
    PutReal(static_cast<double>(number), item);
  }
  return true;
}

// What stands in its unit as it is stored. Whole numbers are taken to the last digit; others are rounded.
bool EncodeUnscaled(std::string_view text, Item* item, std::string* error) {
  WholeNumber whole;
  if (IsInteger(item->type) && ParseWhole(text, &whole)) return EncodeWhole(text, item, error);
  if (IsInteger(item->type) && item->row->show != Form::Number) {
    if (EncodeWhole(text, item, error)) return true;
    const std::string words = WordsText(*item->row);
    if (!words.empty() && !ParseWhole(text, &whole)) *error += " and none of " + words;
    return false;
  }
  return EncodeScaled(text, item, error);
}

bool EncodeText(std::string_view text, Item* item, std::string* error) {
  std::vector<uint8_t> bytes(text.begin(), text.end());
  if (text.starts_with('"') && !ParseQuoted(text, &bytes)) {
    return Fail(error, std::string(text) + " is no quoted text: inside use \\\" \\\\ \\n \\xHH");
  }
  if (bytes.size() > item->size) {
    return Fail(error,
                std::to_string(bytes.size()) + " characters do not fit into " + std::to_string(item->size));
  }
  std::copy(bytes.begin(), bytes.end(), item->bytes.begin());
  return true;
}

bool EncodeHex(std::string_view digits, Item* item, std::string* error) {
  std::vector<uint8_t> bytes;
  if (!ParseHexBytes(digits, &bytes)) return Fail(error, "hex: takes pairs of digits, like hex:533F");
  if (bytes.size() != item->size) {
    return Fail(error, std::to_string(bytes.size()) + " bytes given, " + TypeText(item->type, item->size) +
                           " has " + std::to_string(item->size));
  }
  item->bytes = std::move(bytes);
  return true;
}

}  // namespace

bool IsDirection(const Item& item) {
  if (item.row == nullptr || !IsInteger(item.type) || IsSigned(item.type)) return false;
  const double turn = std::fabs(item.row->unitScale) * std::ldexp(1.0, static_cast<int>(8 * item.size));
  return std::strcmp(item.row->unit, "deg") == 0 && std::fabs(turn - 360) < 1e-9;
}

bool IsSigned(ValueType type) {
  return type == ValueType::S8 || type == ValueType::S16 || type == ValueType::S32 || type == ValueType::S64;
}

bool IsInteger(ValueType type) { return type <= ValueType::S64; }

bool ParseBytes(std::string_view text, std::vector<uint8_t>* bytes) {
  if (text.starts_with("hex:")) return ParseHexBytes(text.substr(4), bytes);
  return ParseQuoted(text, bytes);
}

bool EncodeValue(std::string_view text, Item* item, std::string* error) {
  if (text.empty() && item->type != ValueType::Text) return Fail(error, "the value is missing");
  if (text.starts_with("hex:")) return EncodeHex(text.substr(4), item, error);
  if (item->type == ValueType::Hex) return EncodeHex(text, item, error);
  if (item->type == ValueType::Text) return EncodeText(text, item, error);
  if (item->row != nullptr) {
    const OffsetName& row = *item->row;
    if (EncodeWord(text, item)) return true;
    if (row.show == Form::Bcd) return EncodeBcd(text, item, error);
    if (row.unitScale != 1 || row.unitBias != 0) return EncodeScaled(text, item, error);
    return EncodeUnscaled(text, item, error);
  }
  if (IsInteger(item->type)) return EncodeWhole(text, item, error);
  double value = 0;
  if (!ParseReal(text, &value)) return Fail(error, Quote(text) + " is no number");
  return EncodeReal(text, value, item, error);
}

uint64_t StoredBits(const Item& item) {
  if (!IsInteger(item.type)) return 0;
  uint64_t bits = 0;
  for (uint32_t i = 0; i < item.size; ++i) bits |= uint64_t{item.bytes[i]} << (8 * i);
  if (IsSigned(item.type) && item.size > 0 && item.size < 8 && (bits >> (8 * item.size - 1)) != 0) {
    bits |= ~uint64_t{0} << (8 * item.size);
  }
  return bits;
}

double StoredNumber(const Item& item) {
  if (item.type == ValueType::F32) return static_cast<double>(LoadFrom<float>(item.bytes.data()));
  if (item.type == ValueType::F64) return LoadFrom<double>(item.bytes.data());
  const uint64_t bits = StoredBits(item);
  return IsSigned(item.type) ? static_cast<double>(static_cast<int64_t>(bits)) : static_cast<double>(bits);
}

bool EngineeringNumber(const Item& item, double* value) {
  if (item.type == ValueType::Hex || item.type == ValueType::Text) return false;
  if (item.row == nullptr || item.row->show == Form::Flag || item.row->show == Form::Bits) {
    *value = StoredNumber(item);
    return true;
  }
  if (item.row->show != Form::Bcd) {
    *value = StoredNumber(item) * item.row->unitScale + item.row->unitBias;
    return true;
  }
  uint64_t number = 0;
  const uint64_t bits = StoredBits(item);
  for (uint32_t digit = 2 * item.size; digit-- > 0;) {
    const uint64_t one = (bits >> (4 * digit)) & 15;
    if (one > 9) return false;
    number = number * 10 + one;
  }
  *value = IsMegahertz(*item.row) ? static_cast<double>(number + 10000) / 100 : static_cast<double>(number);
  return true;
}

}  // namespace ctl
