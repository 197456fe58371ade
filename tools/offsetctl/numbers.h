// Numbers from and to text, with a decimal point whatever the system's locale says. Pure; any thread.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace ctl {

// A whole number as sign and magnitude: -9 is {true, 9}.
struct WholeNumber {
  bool negative;
  uint64_t magnitude;
};

// Decimal or 0x, with an optional sign. Returns true, or false when the text is anything else or has more than
// 64 bits.
bool ParseWhole(std::string_view text, WholeNumber* value);
// Decimal or 0x without sign, at most `limit`. Returns true, or false (then `value` is as before).
bool ParseUnsigned(std::string_view text, uint32_t limit, uint32_t* value);
// A decimal fraction (also nan, inf). Returns true, or false when it is none.
bool ParseReal(std::string_view text, double* value);

// The shortest text that reads back as the same number.
std::string RealText(double value);
std::string RealText(float value);
// With that many digits after the point.
std::string FixedText(double value, int decimals);
std::string WholeText(uint64_t value);
std::string WholeText(int64_t value);
// Upper case, padded with zeros to at least that many digits, with 0x before it.
std::string HexText(uint64_t value, int digits);
// In double quotes, for messages.
std::string Quote(std::string_view text);
// Bytes in memory order: "53 3F".
std::string BytesText(const uint8_t* bytes, size_t size);

}  // namespace ctl
