// How a dataref is read and set; bridge/dataref_codec.h does it. Needs nothing of the simulator.
#pragma once
#include <cstdint>

// Any: asks the simulator for the type each time, for publishers that do not state it. Bytes: one byte of a
// text or data block.
enum class Accessor : uint8_t { None, Int, Float, Double, IntArray, FloatArray, Bytes, Any };
