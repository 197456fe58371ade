// Words, quoted text and numbers of the console. Nothing here depends on the locale.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

#include "core/core.h"

namespace sim {
namespace {

bool Blank(char c) { return c == ' ' || c == '\t'; }

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Length of the valid UTF-8 sequence at `at`, 0 when the byte does not begin one.
size_t SequenceLength(const std::string& text, size_t at) {
  auto byte = [&](size_t i) -> unsigned { return static_cast<unsigned char>(text[i]); };
  unsigned lead = byte(at);
  size_t length = lead >= 0xC2 && lead < 0xE0   ? 2
                  : lead >= 0xE0 && lead < 0xF0 ? 3
                  : lead >= 0xF0 && lead < 0xF5 ? 4
                                                : 0;
  if (length == 0 || at + length > text.size()) return 0;
  for (size_t i = 1; i < length; ++i) {
    if ((byte(at + i) & 0xC0) != 0x80) return 0;
  }
  if ((lead == 0xE0 && byte(at + 1) < 0xA0) || (lead == 0xED && byte(at + 1) >= 0xA0)) return 0;
  if ((lead == 0xF0 && byte(at + 1) < 0x90) || (lead == 0xF4 && byte(at + 1) >= 0x90)) return 0;
  return length;
}

template <class T>
std::string FormatReal(T value) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
  // Written out in full as long as that stays readable, so 100000.0 and not 1.0e+05.
  T size = std::abs(value);
  bool readable = size == 0 || (size >= T(1e-4) && size < T(1e16));
  char digits[64];
  std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, value,
                                           readable ? std::chars_format::fixed : std::chars_format::scientific);
  std::string text(digits, end.ptr);
  if (text.find('.') == std::string::npos) {
    size_t exponent = text.find('e');
    text.insert(exponent == std::string::npos ? text.size() : exponent, ".0");
  }
  return text;
}

}  // namespace

int SplitWords(const char* line, std::vector<std::string>* words, std::vector<bool>* quoted) {
  words->clear();
  quoted->clear();
  for (const char* p = line; *p;) {
    if (Blank(*p)) {
      ++p;
      continue;
    }
    std::string word;
    bool inQuotes = *p == '"';
    if (!inQuotes) {
      while (*p && !Blank(*p)) word += *p++;
    } else {
      for (++p; *p != '"';) {
        if (!*p) return 0;
        if (*p != '\\') {
          word += *p++;
        } else if (p[1] == '"' || p[1] == '\\') {
          word += p[1];
          p += 2;
        } else if (p[1] == 'n') {
          word += '\n';
          p += 2;
        } else if (p[1] == 'x' && HexDigit(p[2]) >= 0 && HexDigit(p[3]) >= 0) {
          word += static_cast<char>(HexDigit(p[2]) * 16 + HexDigit(p[3]));
          p += 4;
        } else {
          word += *p++;  // a lone backslash stands for itself
        }
      }
      ++p;
    }
    words->push_back(word);
    quoted->push_back(inQuotes);
  }
  return 1;
}

std::string Quote(const std::string& text) {
  static const char kHex[] = "0123456789ABCDEF";
  std::string out = "\"";
  for (size_t i = 0; i < text.size() && text[i];) {
    unsigned char c = static_cast<unsigned char>(text[i]);
    size_t sequence = c >= 0x80 ? SequenceLength(text, i) : 0;
    if (sequence > 0) {
      out.append(text, i, sequence);
      i += sequence;
      continue;
    }
    if (c == '"' || c == '\\') {
      out += '\\';
      out += text[i];
    } else if (c == '\n') {
      out += "\\n";
    } else if (c < 0x20 || c >= 0x7F) {
      out += "\\x";
      out += kHex[c >> 4];
      out += kHex[c & 15];
    } else {
      out += text[i];
    }
    ++i;
  }
  return out + '"';
}

std::string FormatInt(int64_t value) { return std::to_string(value); }
std::string FormatFloat(float value) { return FormatReal(value); }
std::string FormatDouble(double value) { return FormatReal(value); }

bool ParseInt(const std::string& text, int64_t* value) {
  const char* begin = text.data();
  const char* end = begin + text.size();
  bool negative = begin != end && *begin == '-';
  if (begin != end && (*begin == '-' || *begin == '+')) ++begin;
  int base = 10;
  if (end - begin > 2 && begin[0] == '0' && (begin[1] == 'x' || begin[1] == 'X')) {
    base = 16;
    begin += 2;
  }
  uint64_t size = 0;
  std::from_chars_result result = std::from_chars(begin, end, size, base);
  if (begin == end || result.ec != std::errc() || result.ptr != end) return false;
  if (size > static_cast<uint64_t>(INT64_MAX)) return false;
  *value = negative ? -static_cast<int64_t>(size) : static_cast<int64_t>(size);
  return true;
}

bool ParseDouble(const std::string& text, double* value) {
  const char* begin = text.data();
  const char* end = begin + text.size();
  if (end - begin > 1 && *begin == '+' && begin[1] != '-') ++begin;
  std::from_chars_result result = std::from_chars(begin, end, *value);
  return begin != end && result.ec == std::errc() && result.ptr == end;
}

void CopyText(const std::string& text, char* out, size_t size) {
  if (!out) return;
  size_t length = std::min(text.size(), size - 1);
  std::memcpy(out, text.data(), length);
  out[length] = 0;
}

void Join(std::string* list, const std::string& item) {
  if (!list->empty()) *list += "; ";
  *list += item;
}

}  // namespace sim
