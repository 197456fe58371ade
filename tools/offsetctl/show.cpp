#include "show.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "encode.h"
#include "numbers.h"
#include "words.h"

namespace ctl {

namespace {

// Up to the first zero byte: what follows it is left over from longer texts.
std::string PlainText(const Item& item) {
  const auto end = std::find(item.bytes.begin(), item.bytes.end(), uint8_t{0});
  return std::string(item.bytes.begin(), end);
}

// In double quotes; characters that are not printable ASCII as `escape` and that many hexadecimal digits.
std::string Quoted(const std::u32string& text, const char* escape, int digits) {
  std::string quoted = "\"";
  for (const char32_t code : text) {
    if (code == '"' || code == '\\') quoted += '\\';
    if (code < 0x20 || code >= 0x7F) {
      quoted += escape + HexText(code, digits).substr(2);
    } else {
      quoted += static_cast<char>(code);
    }
  }
  return quoted + "\"";
}

// A character for each byte: Latin-1.
std::u32string CharactersOf(const std::string& bytes) {
  std::u32string text;
  for (const char letter : bytes) text += static_cast<uint8_t>(letter);
  return text;
}

std::string ShownText(const std::string& text) { return Quoted(CharactersOf(text), "\\x", 2); }

// UTF-8 as UTF-16, as JSON escapes it. Returns false when the bytes are none.
bool ReadUtf8(const std::string& bytes, std::u32string* text) {
  constexpr uint32_t least[] = {0, 0x80, 0x800, 0x10000};  // with that many more bytes
  constexpr uint32_t surrogates = 0xD800, behindSurrogates = 0xE000, beyond = 0x110000;
  text->clear();
  for (size_t at = 0; at < bytes.size();) {
    const auto first = static_cast<uint8_t>(bytes[at++]);
    const size_t more = first < 0x80   ? 0
                        : first < 0xC0 ? 4
                        : first < 0xE0 ? 1
                        : first < 0xF0 ? 2
                        : first < 0xF8 ? 3
                                       : 4;
    if (more > 3 || more > bytes.size() - at) return false;
    uint32_t code = more == 0 ? first : first & (0x3Fu >> more);
    for (size_t i = 0; i < more; ++i, ++at) {
      const auto next = static_cast<uint8_t>(bytes[at]);
      if ((next & 0xC0) != 0x80) return false;
      code = code << 6 | (next & 0x3Fu);
    }
    if (code < least[more] || code >= beyond || (code >= surrogates && code < behindSurrogates)) return false;
    if (code >= 0x10000) {
      *text += static_cast<char32_t>(surrogates + ((code - 0x10000) >> 10));
      code = 0xDC00 + ((code - 0x10000) & 0x3FF);
    }
    *text += static_cast<char32_t>(code);
  }
  return true;
}

bool HasScale(const Item& item) {
  return item.row != nullptr && item.row->show == Form::Number &&
         (item.row->unitScale != 1 || item.row->unitBias != 0);
}

// As many decimals as one step of the stored integer needs, six at most.
int Decimals(double step) {
  if (!(step > 0)) return 6;
  return std::clamp(static_cast<int>(std::ceil(-std::log10(step) - 1e-9)), 0, 6);
}

// How many decimals the value is shown with, and the step from one stored number to the next.
int ShownDecimals(const Item& item, double* step) {
  const OffsetName& row = *item.row;
  *step = std::fabs(row.unitScale);
  if (row.show == Form::Bcd) *step = std::strcmp(row.unit, "MHz") == 0 ? 0.01 : 1;
  return IsInteger(item.type) ? Decimals(*step) : 6;
}

std::string WithUnit(const std::string& text, const Item& item) {
  return item.row == nullptr || item.row->unit[0] == 0 ? text : text + " " + item.row->unit;
}

// "118.705 MHz asked: steps of 0.01 MHz", "400 deg asked, the same as 40 deg", when what is written is not what
// was asked for; "" else.
std::string RoundingText(const Item& item) {
  double stored = 0;
  if (item.row == nullptr || !std::isfinite(item.asked) || !EngineeringNumber(item, &stored)) return "";
  double step = 0;
  const int decimals = ShownDecimals(item, &step);
  const double unit = std::pow(10.0, -decimals);
  const double shown = std::round(stored / unit) * unit;
  constexpr double turn = 360;
  const double turns = IsDirection(item) ? std::round((item.asked - stored) / turn) * turn : 0;
  const double wanted = item.asked - turns;
  const bool isSame = std::fabs(shown - wanted) <= 1e-9 * std::fmax(1.0, std::fabs(wanted)) ||
                      std::fabs(stored - wanted) < 0.05 * unit;
  if (isSame && turns == 0) return "";
  const auto withUnit = [&item](double value) { return WithUnit(RealText(static_cast<float>(value)), item); };
  const std::string asked =
      withUnit(item.asked) + " asked" + (turns == 0 ? "" : ", the same as " + withUnit(wanted));
  return isSame ? asked : asked + ": steps of " + withUnit(step);
}

// What the simulator has made of the bytes that were written; "" when it shows them.
std::string DifferenceText(const Item& written, const std::string& shown) {
  if (EngineeringText(written) == shown) return "";
  const bool isKnown = written.row != nullptr && written.row->lossy[0] != 0;
  return WithUnit(EngineeringText(written), written) + " written, which the simulator changes" +
         (isKnown ? std::string(": ") + written.row->lossy : "");
}

std::string ScaledText(const Item& item) {
  const double value = StoredNumber(item) * item.row->unitScale + item.row->unitBias;
  if (!std::isfinite(value)) return RealText(value);
  std::string text = FixedText(value, IsInteger(item.type) ? Decimals(std::fabs(item.row->unitScale)) : 6);
  if (!IsInteger(item.type) && std::fabs(value) >= 1e15) text = RealText(value);
  return text.find_first_not_of("-0.") == std::string::npos && text[0] == '-' ? text.substr(1) : text;
}

std::string BcdText(const Item& item) {
  double value = 0;
  if (!EngineeringNumber(item, &value)) return "no decimal digits";
  if (std::strcmp(item.row->unit, "MHz") == 0) return FixedText(value, 2);
  std::string digits = FixedText(value, 0);
  const size_t width = item.row->unit[0] == 0 ? 2 * item.size : 1;
  return digits.size() < width ? std::string(width - digits.size(), '0') + digits : digits;
}

std::string JsonNumber(double value) { return std::isfinite(value) ? RealText(value) : "null"; }

}  // namespace

std::string StoredText(const Item& item) {
  switch (item.type) {
    case ValueType::Hex:
      return BytesText(item.bytes.data(), item.bytes.size());
    case ValueType::Text:
      return ShownText(PlainText(item));
    case ValueType::F32:
      return RealText(static_cast<float>(StoredNumber(item)));
    case ValueType::F64:
      return RealText(StoredNumber(item));
    default:
      break;
  }
  const uint64_t bits = StoredBits(item);
  return IsSigned(item.type) ? WholeText(static_cast<int64_t>(bits)) : WholeText(bits);
}

std::string EngineeringText(const Item& item) {
  if (item.row == nullptr || item.type == ValueType::Text) return StoredText(item);
  switch (item.row->show) {
    case Form::Flag:
      return StoredNumber(item) != 0 ? "on" : "off";
    case Form::Bcd:
      return BcdText(item);
    case Form::Bits: {
      const uint64_t bits = StoredBits(item);
      const uint64_t mask = item.size >= 8 ? ~uint64_t{0} : (uint64_t{1} << (8 * item.size)) - 1;
      return HexText(bits & mask, static_cast<int>(2 * item.size));
    }
    default:
      return HasScale(item) ? ScaledText(item) : StoredText(item);
  }
}

std::string ItemLine(const Item& item) {
  std::string line = item.shown + " = " + EngineeringText(item);
  if (item.type == ValueType::Hex) return line;
  if (item.row != nullptr && item.type != ValueType::Text) {
    if (item.row->unit[0] != 0) line += std::string(" ") + item.row->unit;
    if (item.row->show == Form::Bcd) {
      line += ", " + HexText(StoredBits(item), static_cast<int>(2 * item.size));
    } else if (HasScale(item) || item.row->show == Form::Flag) {
      line += ", " + StoredText(item);
    }
  }
  return line + " (" + BytesText(item.bytes.data(), item.bytes.size()) + ")";
}

std::string ChangeLine(const Item& item, const uint8_t* before, const uint8_t* after) {
  Item shown = item;
  std::string old = "?";
  if (before != nullptr) {
    shown.bytes.assign(before, before + item.size);
    old = EngineeringText(shown);
  }
  shown.bytes.assign(after, after + item.size);
  const bool hasWords = item.row != nullptr && IsInteger(item.type);
  const std::string word = hasWords ? WordFor(*item.row, static_cast<int64_t>(StoredBits(shown))) : "";
  const std::string now = EngineeringText(shown), rounded = RoundingText(item),
                    made = DifferenceText(item, now);
  const std::string why = rounded + (rounded.empty() || made.empty() ? "" : "; ") + made;
  return item.shown + ": " + old + " -> " + WithUnit(now, item) + (word.empty() ? "" : " (" + word + ")") +
         (why.empty() ? "" : " (" + why + ")");
}

std::string JsonString(const std::string& bytes) {
  std::u32string text;
  if (!ReadUtf8(bytes, &text)) text = CharactersOf(bytes);
  return Quoted(text, "\\u", 4);
}

std::string JsonValue(const Item& item) {
  if (item.type == ValueType::Hex) return JsonString(StoredText(item));
  if (item.type == ValueType::Text) return JsonString(PlainText(item));
  double value = 0;
  if (!EngineeringNumber(item, &value)) return "null";
  if (HasScale(item)) return JsonNumber(value);
  if (item.row != nullptr && item.row->show == Form::Bcd) return JsonNumber(value);
  if (item.type == ValueType::U64 || item.type == ValueType::S64) return JsonString(StoredText(item));
  return std::isfinite(value) ? StoredText(item) : "null";
}

std::string ItemJson(const Item& item) {
  return "{\"name\": " + JsonString(item.shown) + ", \"offset\": " + std::to_string(item.offset) +
         ", \"type\": " + JsonString(TypeText(item.type, item.size)) + ", \"value\": " + JsonValue(item) +
         ", \"raw\": " + JsonString(BytesText(item.bytes.data(), item.bytes.size())) +
         ", \"unit\": " + JsonString(item.row != nullptr ? item.row->unit : "") + "}";
}

}  // namespace ctl
