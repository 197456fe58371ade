// The C library prints the decimal separator of the locale, which belongs to the process: any plug-in may
// set it. Lines without floating-point numbers go through vsnprintf as a whole; the others piece by piece,
// so that the separator can be put right within the numbers alone.
#include "base/log_format.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

constexpr size_t usualLine = 1024;  // longer lines are formatted in allocated memory

bool IsFloatKind(char kind) { return kind != '\0' && std::strchr("fFeEgGaA", kind) != nullptr; }

// End of the flags, width, precision and length that begin at `at` (behind the '%').
const char* SkipModifiers(const char* at) { return at + std::strspn(at, "-+ #0123456789.*hlLzjtq"); }

bool HasFloats(const char* format) {
  for (const char* at = std::strchr(format, '%'); at; at = std::strchr(at, '%')) {
    at = SkipModifiers(at + 1);
    if (IsFloatKind(*at)) return true;
    if (*at != '\0') ++at;
  }
  return false;
}

// 0, 'H' for "hh", 'q' for "ll", or the length modifier itself.
char LengthOf(const std::string& modifiers) {
  if (modifiers.find("hh") != std::string::npos) return 'H';
  if (modifiers.find("ll") != std::string::npos) return 'q';
  for (const char c : {'h', 'l', 'z', 'j', 't', 'L', 'q'}) {
    if (modifiers.find(c) != std::string::npos) return c;
  }
  return '\0';
}

template <typename Value>
void Append(std::string* line, const char* format, Value value) {
  char text[128];
  const int length = std::snprintf(text, sizeof text, format, value);
  if (length < 0) return;
  if (static_cast<size_t>(length) < sizeof text) {
    line->append(text, static_cast<size_t>(length));
    return;
  }
  const size_t start = line->size();
  line->resize(start + static_cast<size_t>(length) + 1);
  std::snprintf(&(*line)[start], static_cast<size_t>(length) + 1, format, value);
  line->pop_back();
}

// Puts a point in the place of whatever separates the decimals of the number that begins at `start`; the
// separator may be several bytes long.
void SetDecimalPoint(std::string* line, size_t start) {
  const size_t separator = line->find_first_not_of("0123456789+- ", start);
  if (separator == std::string::npos) return;
  const auto first = static_cast<unsigned char>((*line)[separator]);
  if ((first >= 'A' && first <= 'Z') || (first >= 'a' && first <= 'z')) return;  // inf, nan, an exponent
  size_t end = line->find_first_of("0123456789eE ", separator);
  if (end == std::string::npos) end = line->size();
  (*line)[separator] = '.';
  line->erase(separator + 1, end - separator - 1);
}

// Formats piece by piece; the argument list is read here alone, as it cannot be shared with a helper.
std::string FormatPieces(const char* format, va_list arguments) {
  std::string line;
  while (*format != '\0') {
    const size_t plain = std::strcspn(format, "%");
    line.append(format, plain);
    format += plain;
    if (*format == '\0') break;
    const char* end = SkipModifiers(format + 1);
    const char kind = *end;
    if (kind == '\0') break;
    std::string piece;
    for (const char* at = format; at <= end; ++at) {
      if (*at == '*') {
        piece += std::to_string(va_arg(arguments, int));
      } else {
        piece += *at;
      }
    }
    const char length = LengthOf(piece);
    format = end + 1;
    const char* text = piece.c_str();
    const size_t start = line.size();
    if (kind == '%') {
      line += '%';
    } else if (kind == 's') {
      Append(&line, text, va_arg(arguments, const char*));
    } else if (kind == 'p') {
      Append(&line, text, va_arg(arguments, const void*));
    } else if (IsFloatKind(kind)) {
      if (length == 'L') {
        Append(&line, text, va_arg(arguments, long double));
      } else {
        Append(&line, text, va_arg(arguments, double));
      }
      SetDecimalPoint(&line, start);
    } else if (std::strchr("diuxXoc", kind) != nullptr) {
      switch (length) {
        case 'l':
          Append(&line, text, va_arg(arguments, long));
          break;
        case 'q':
          Append(&line, text, va_arg(arguments, long long));
          break;
        case 'z':
        case 't':
          Append(&line, text, va_arg(arguments, ptrdiff_t));
          break;
        case 'j':
          Append(&line, text, va_arg(arguments, intmax_t));
          break;
        default:
          Append(&line, text, va_arg(arguments, int));
      }
    } else {
      break;  // not one of ours: what follows in the argument list is unknown
    }
  }
  return line;
}

void FormatWhole(const char* format, va_list arguments, void (*write)(const char* text, size_t length)) {
  char usual[usualLine];
  va_list once;
  va_copy(once, arguments);
  // The analyzer does not see that va_copy has filled `once`.
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
  const int length = std::vsnprintf(usual, sizeof usual, format, once);
  va_end(once);
  if (length >= 0 && static_cast<size_t>(length) < sizeof usual) {
    write(usual, static_cast<size_t>(length));
  } else if (length >= 0) {
    try {
      std::string line(static_cast<size_t>(length) + 1, '\0');
      std::vsnprintf(line.data(), line.size(), format, arguments);
      write(line.data(), static_cast<size_t>(length));
    } catch (...) {
      usual[sizeof usual - 2] = '\n';
      write(usual, sizeof usual - 1);  // no memory: its beginning
    }
  }
}

}  // namespace

void FormatLine(const char* format, va_list arguments, void (*write)(const char* text, size_t length)) {
  if (!HasFloats(format)) {
    FormatWhole(format, arguments, write);
    return;
  }
  try {
    const std::string line = FormatPieces(format, arguments);
    write(line.data(), line.size());
  } catch (...) {  // out of memory: the line is lost, the simulator goes on
    return;
  }
}
