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

// A byte that stands for another inside quotes, after a backslash. Any other byte may be written \xHH.
struct Escape {
  char written = 0;
  char meant = 0;
};
constexpr Escape escapes[] = {
    {.written = '"', .meant = '"'},
    {.written = '\\', .meant = '\\'},
    {.written = 'n', .meant = '\n'},
};

// UTF-8 sequences by their first byte: how many bytes, and between which the second one lies. All bytes behind
// it are 0x80 to 0xBF.
struct Lead {
  unsigned first = 0, last = 0;
  size_t length = 0;
  unsigned low = 0x80, high = 0xBF;
};
constexpr Lead leads[] = {
    {.first = 0xC2, .last = 0xDF, .length = 2}, {.first = 0xE0, .last = 0xE0, .length = 3, .low = 0xA0},
    {.first = 0xE1, .last = 0xEC, .length = 3}, {.first = 0xED, .last = 0xED, .length = 3, .high = 0x9F},
    {.first = 0xEE, .last = 0xEF, .length = 3}, {.first = 0xF0, .last = 0xF0, .length = 4, .low = 0x90},
    {.first = 0xF1, .last = 0xF3, .length = 4}, {.first = 0xF4, .last = 0xF4, .length = 4, .high = 0x8F},
};

// Length of the valid UTF-8 sequence at `at`, 0 when the byte does not begin one.
size_t SequenceLength(const std::string& text, size_t at) {
  auto byte = [&](size_t i) -> unsigned { return static_cast<unsigned char>(text[at + i]); };
  for (const Lead& lead : leads) {
    if (byte(0) < lead.first || byte(0) > lead.last) continue;
    if (at + lead.length > text.size() || byte(1) < lead.low || byte(1) > lead.high) return 0;
    for (size_t i = 2; i < lead.length; ++i) {
      if ((byte(i) & 0xC0) != 0x80) return 0;
    }
    return lead.length;
  }
  return 0;
}

// The byte that the text behind a backslash stands for, and how many characters that takes; a lone backslash
// stands for itself.
char Unescape(const char* text, size_t* taken) {
  *taken = 1;
  for (const Escape& row : escapes) {
    if (*text == row.written) return row.meant;
  }
  if (text[0] == 'x' && HexDigit(text[1]) >= 0 && HexDigit(text[2]) >= 0) {
    *taken = 3;
    return static_cast<char>(HexDigit(text[1]) * 16 + HexDigit(text[2]));
  }
  *taken = 0;
  return '\\';
}

// The word inside the quote that *text stands behind; moves *text behind the closing quote. False when there is
// none.
bool TakeQuoted(const char** text, std::string* word) {
  const char* p = *text;
  while (*p != '"') {
    if (!*p) return false;
    const char c = *p++;
    size_t taken = 0;
    *word += c == '\\' ? Unescape(p, &taken) : c;
    p += taken;
  }
  *text = p + 1;
  return true;
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

bool SplitWords(const char* line, std::vector<std::string>* words, std::vector<bool>* quoted) {
  words->clear();
  quoted->clear();
  for (const char* p = line; *p;) {
    if (Blank(*p)) {
      ++p;
      continue;
    }
    std::string word;
    const bool inQuotes = *p == '"';
    if (inQuotes) {
      ++p;
      if (!TakeQuoted(&p, &word)) return false;
    } else {
      while (*p && !Blank(*p)) word += *p++;
    }
    words->push_back(word);
    quoted->push_back(inQuotes);
  }
  return true;
}

std::string Quote(const std::string& text) {
  static const char kHex[] = "0123456789ABCDEF";
  std::string out = "\"";
  for (size_t i = 0; i < text.size() && text[i];) {
    if (const size_t sequence = SequenceLength(text, i)) {
      out.append(text, i, sequence);
      i += sequence;
      continue;
    }
    const char c = text[i++];
    const unsigned char byte = static_cast<unsigned char>(c);
    const auto escape =
        std::find_if(std::begin(escapes), std::end(escapes), [c](const Escape& row) { return row.meant == c; });
    if (escape != std::end(escapes)) {
      out.append({'\\', escape->written});
    } else if (byte < 0x20 || byte >= 0x7F) {
      out.append({'\\', 'x', kHex[byte >> 4], kHex[byte & 15]});
    } else {
      out += c;
    }
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
