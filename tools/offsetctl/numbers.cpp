#include "numbers.h"

#include <charconv>

namespace ctl {

namespace {

template <typename T>
std::string Shortest(T value) {
  char text[64];
  const auto end = std::to_chars(text, text + sizeof text, value);
  return std::string(text, end.ptr);
}

}  // namespace

bool ParseWhole(std::string_view text, WholeNumber* value) {
  WholeNumber parsed = {};
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
    parsed.negative = text[0] == '-';
    text.remove_prefix(1);
  }
  int base = 10;
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    base = 16;
    text.remove_prefix(2);
  }
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, parsed.magnitude, base);
  if (text.empty() || result.ec != std::errc() || result.ptr != end) return false;
  *value = parsed;
  return true;
}

bool ParseUnsigned(std::string_view text, uint32_t limit, uint32_t* value) {
  WholeNumber whole;
  if (text.empty() || text[0] < '0' || text[0] > '9') return false;
  if (!ParseWhole(text, &whole) || whole.magnitude > limit) return false;
  *value = static_cast<uint32_t>(whole.magnitude);
  return true;
}

bool ParseReal(std::string_view text, double* value) {
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  const char* end = text.data() + text.size();
  double parsed = 0;
  const auto result = std::from_chars(text.data(), end, parsed);
  if (text.empty() || result.ec != std::errc() || result.ptr != end) return false;
  *value = parsed;
  return true;
}

std::string RealText(double value) { return Shortest(value); }
std::string RealText(float value) { return Shortest(value); }

std::string FixedText(double value, int decimals) {
  char text[512];
  const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals);
  return end.ec == std::errc() ? std::string(text, end.ptr) : RealText(value);
}

std::string WholeText(uint64_t value) { return std::to_string(value); }
std::string WholeText(int64_t value) { return std::to_string(value); }

std::string HexText(uint64_t value, int digits) {
  std::string text;
  for (; value != 0 || text.size() < static_cast<size_t>(digits); value >>= 4) {
    text.insert(text.begin(), "0123456789ABCDEF"[value & 15]);
  }
  return "0x" + text;
}

std::string Quote(std::string_view text) {
  std::string quoted = "\"";
  quoted += text;
  return quoted + "\"";
}

std::string BytesText(const uint8_t* bytes, size_t size) {
  std::string text;
  for (size_t i = 0; i < size; ++i) {
    if (i != 0) text += ' ';
    text += "0123456789ABCDEF"[bytes[i] >> 4];
    text += "0123456789ABCDEF"[bytes[i] & 15];
  }
  return text;
}

}  // namespace ctl
