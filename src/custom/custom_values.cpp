#include "custom/custom_values.h"

#include <cstring>
#include <limits>

#include "base/bytes.h"
#include "custom/expression.h"

namespace {

template <typename T>
double Get(const uint8_t* bytes) {
  return static_cast<double>(LoadFrom<T>(bytes));
}

uint64_t IntegerBits(CustomType type, double value) {
  constexpr double twoTo63 = 9223372036854775808.0;
  if (type == CustomType::U64 && value >= twoTo63) {
    return value >= 2 * twoTo63 ? std::numeric_limits<uint64_t>::max() : static_cast<uint64_t>(value);
  }
  return static_cast<uint64_t>(TruncateTo64(value));
}

}  // namespace

double DecodeCustomValue(CustomType type, const uint8_t* bytes) {
  switch (type) {
    case CustomType::U8:
      return Get<uint8_t>(bytes);
    case CustomType::S8:
      return Get<int8_t>(bytes);
    case CustomType::U16:
      return Get<uint16_t>(bytes);
    case CustomType::S16:
      return Get<int16_t>(bytes);
    case CustomType::U32:
      return Get<uint32_t>(bytes);
    case CustomType::S32:
      return Get<int32_t>(bytes);
    case CustomType::U64:
      return Get<uint64_t>(bytes);
    case CustomType::S64:
      return Get<int64_t>(bytes);
    case CustomType::F32:
      return Get<float>(bytes);
    case CustomType::F64:
      return Get<double>(bytes);
  }
  return 0;
}

void EncodeCustomValue(CustomType type, double value, uint8_t bytes[8]) {
  if (type == CustomType::F64) {
    StoreTo(bytes, value);
  } else if (type == CustomType::F32) {
    const auto single = static_cast<float>(value);
    StoreTo(bytes, single);
    std::memset(bytes + sizeof single, 0, 8 - sizeof single);
  } else {
    StoreTo(bytes, IntegerBits(type, value));
  }
}
