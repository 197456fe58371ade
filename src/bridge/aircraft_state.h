// Which add-on adapters are loaded, as readers and writers ask it. Set by the recognition in src/aircraft,
// on the simulator's thread; read there only.
#pragma once
#include <cstdint>

struct AdapterState {
  int x737, xSquawkBox, pilotEdge, ixeg733, b738Extended, b738Stock, ec135;  // 1: loaded
};
extern AdapterState adapters;

// Which aircraft variant serves a row that has several: the first loaded one in this order.
enum class Variant : uint8_t { X737, B738, Ixeg, Stock };
inline Variant ActiveVariant() {
  return adapters.x737           ? Variant::X737
         : adapters.b738Extended ? Variant::B738
         : adapters.ixeg733      ? Variant::Ixeg
                                 : Variant::Stock;
}
