// Reading and setting datarefs by their place in the registry, with the accessor that fits the dataref.
//
// Simulator's thread only, never with a lock held. A null handle reads 0 and ignores a set without calling
// the simulator.
#pragma once
#include <cstdint>

#include "bridge/dataref_codec.h"
#include "bridge/registry.h"

// One number in the simulator: where the handle stands and how it is read. `element` counts from 0 and
// matters for the array accessors only.
struct Source {
  Block block = Block::None;
  uint32_t index = 0;
  Accessor accessor = Accessor::None;
  int element = 0;
};

// Short forms for tables: IntAt(0x0264), FloatAt(0x02B8), FloatElementAt(0x0898, 0), AuxFloatAt(0x0033) ...
constexpr Source IntAt(uint32_t index) { return {Block::Primary, index, Accessor::Int, 0}; }
constexpr Source FloatAt(uint32_t index) { return {Block::Primary, index, Accessor::Float, 0}; }
constexpr Source DoubleAt(uint32_t index) { return {Block::Primary, index, Accessor::Double, 0}; }
constexpr Source IntElementAt(uint32_t index, int element) {
  return {Block::Primary, index, Accessor::IntArray, element};
}
constexpr Source FloatElementAt(uint32_t index, int element) {
  return {Block::Primary, index, Accessor::FloatArray, element};
}
constexpr Source AuxIntAt(uint32_t index) { return {Block::Auxiliary, index, Accessor::Int, 0}; }
constexpr Source AuxFloatAt(uint32_t index) { return {Block::Auxiliary, index, Accessor::Float, 0}; }
constexpr Source AuxDoubleAt(uint32_t index) { return {Block::Auxiliary, index, Accessor::Double, 0}; }
constexpr Source AuxIntElementAt(uint32_t index, int element) {
  return {Block::Auxiliary, index, Accessor::IntArray, element};
}
constexpr Source AuxFloatElementAt(uint32_t index, int element) {
  return {Block::Auxiliary, index, Accessor::FloatArray, element};
}

inline XPLMDataRef HandleOf(const Source& source) {
  return source.block == Block::Primary     ? DataRefMemBlock[source.index]
         : source.block == Block::Auxiliary ? AuxDataRefMemBlock[source.index]
                                            : nullptr;
}

inline double ReadSource(const Source& source) {
  return ReadNumber(HandleOf(source), source.accessor, source.element);
}
inline int ReadInt(const Source& source) { return static_cast<int>(ReadSource(source)); }
inline int IsOn(const Source& source) { return ReadSource(source) != 0; }
// Sets it; int datarefs take the truncated value, saturated. NaN and infinity are not handed on.
void SetSource(const Source& source, double value);
// Text of a byte dataref, cut at the first NUL and to size - 1; returns its length.
int ReadText(Block block, uint32_t index, char* text, int size);
// Fires a command once; a null handle does nothing.
void FireCommand(XPLMCommandRef command);
// Button press and release in one.
void PushButton(XPLMCommandButtonID button);
