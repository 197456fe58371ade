// How a dataref is read and set; bridge/dataref_codec.h does it. Needs nothing of the simulator.
#pragma once
#include <cstdint>

// Any: by the type that the simulator reports, for publishers that do not state it. Bytes: one byte of a
// text or data block.
enum class Accessor : uint8_t { None, Int, Float, Double, IntArray, FloatArray, Bytes, Any };

constexpr bool IsArray(Accessor accessor) {
  return accessor == Accessor::IntArray || accessor == Accessor::FloatArray;
}
