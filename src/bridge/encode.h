// From a number to the stored bytes of an offset. Pure; inline because every refreshed value passes here in
// every frame.
#pragma once
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "bridge/catalogue.h"

// Truncates toward zero and saturates at the limits of T; NaN is 0.
template <typename T>
inline T Truncated(double value) {
  using Limits = std::numeric_limits<T>;
  // One comparison for nearly all values: what an int holds is truncated by the processor and then limited.
  if (std::abs(value) < 2147483648.0) {
    const auto whole = static_cast<int32_t>(value);
    if constexpr (sizeof(T) <= sizeof(int32_t)) {
      constexpr auto low = Limits::min() < 0 ? static_cast<int32_t>(Limits::min()) : 0;
      constexpr auto high = sizeof(T) < sizeof(int32_t) ? static_cast<int32_t>(Limits::max())
                                                        : std::numeric_limits<int32_t>::max();
      return static_cast<T>(whole < low ? low : whole > high ? high : whole);
    } else {
      return static_cast<T>(whole);
    }
  }
  if (value != value) return 0;
  // 2^63 and 2^64 are exact in double precision where the largest integers are not: hence >=.
  if (value >= static_cast<double>(Limits::max())) return Limits::max();
  if (value <= static_cast<double>(Limits::min())) return Limits::min();
  return static_cast<T>(value);
}

// For 8 and 16 bits. A control value that was written as v / 16383 into a float comes back as v only when the
// product is rounded to the float's own precision before it is truncated. Their limits are exact there, so
// that limiting comes first and nothing is left to decide.
template <typename T>
inline T TruncatedSingle(double value) {
  static_assert(sizeof(T) <= 2);
  constexpr auto low = static_cast<float>(std::numeric_limits<T>::min());
  constexpr auto high = static_cast<float>(std::numeric_limits<T>::max());
  const auto single = static_cast<float>(value);
  const float above = single > low ? single : low;
  const auto whole = static_cast<int32_t>(above < high ? above : high);
  return static_cast<T>(single == single ? whole : 0);
}

// The stored bytes in the word's low end, zero above them. NaN has no stored form and gives 0.
inline uint64_t EncodedWord(Stored type, double value) {
  switch (type) {
    case Stored::U8:
      return TruncatedSingle<uint8_t>(value);
    case Stored::S8:
      return static_cast<uint8_t>(TruncatedSingle<int8_t>(value));
    case Stored::U16:
      return TruncatedSingle<uint16_t>(value);
    case Stored::S16:
      return static_cast<uint16_t>(TruncatedSingle<int16_t>(value));
    case Stored::U32:
      return Truncated<uint32_t>(value);
    case Stored::S32:
      return static_cast<uint32_t>(Truncated<int32_t>(value));
    case Stored::S64:
      return static_cast<uint64_t>(Truncated<int64_t>(value));
    case Stored::F32:
      return value != value ? 0 : std::bit_cast<uint32_t>(static_cast<float>(value));
    case Stored::F64:
      return value != value ? 0 : std::bit_cast<uint64_t>(value);
    case Stored::Text:
      break;
  }
  return 0;
}
