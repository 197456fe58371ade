// Values from the command line into the bytes of the offset memory, and back into numbers. Pure; any thread.
#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "item.h"

namespace ctl {

// Reads hex:533F, hex:53 3F or text in double quotes (\" \\ \n \xHH inside) as bytes. Returns true, or false
// when the text is neither.
bool ParseBytes(std::string_view text, std::vector<uint8_t>* bytes);
// Encodes a value into `item->bytes` by the item's type and size; in engineering units when the item has a
// row. Returns true, or false with a sentence in `error` when the text is no such value or does not fit.
bool EncodeValue(std::string_view text, Item* item, std::string* error);

// The stored number; 0 for hex and text. Integers of 64 bits are rounded.
double StoredNumber(const Item& item);
// The stored integer, extended to 64 bits with its sign, as bits; 0 for other types.
uint64_t StoredBits(const Item& item);
// The number in the units of the item's row. Returns true, or false when there is none (text, broken BCD
// digits).
bool EngineeringNumber(const Item& item, double* value);

// Whether the item is a direction from 0 up to a full turn, which begins again behind it.
bool IsDirection(const Item& item);
bool IsSigned(ValueType type);
bool IsInteger(ValueType type);

}  // namespace ctl
