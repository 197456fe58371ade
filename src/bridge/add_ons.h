// Which add-ons are loaded, as the rows ask it. Set by the recognition (aircraft/) on the simulator's thread;
// read there only.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>

// Aircraft, and network clients.
enum class AddOn : uint8_t {
  None,
  X737,
  B738Extended,
  B738Stock,
  Ixeg733,
  Ec135,
  XSquawkBox,
  PilotEdge,
  Count
};

using AddOnSet = std::array<bool, static_cast<size_t>(AddOn::Count)>;
extern AddOnSet loadedAddOns;  // that of None stays false

// A client's throttle write has taken over the IXEG 737's throttles. Set by the throttle writers.
extern bool ixegThrottleTaken;

inline bool IsLoaded(AddOn addOn) { return loadedAddOns[static_cast<size_t>(addOn)]; }
