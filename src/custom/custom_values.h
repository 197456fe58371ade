// Conversion between the bytes of custom entries and floating point. Pure; any thread.
#pragma once
#include <cstdint>

#include "custom/custom_records.h"

// The number that the bytes of this type mean; reads as many as the type is wide.
double DecodeCustomValue(CustomType type, const uint8_t* bytes);
// The bytes of a number, low byte first: integers are truncated toward zero to 64 bits (saturated, NaN is 0)
// and their low bits kept, UINT64 reaches up to its own limit, floats are rounded.
void EncodeCustomValue(CustomType type, double value, uint8_t bytes[8]);
