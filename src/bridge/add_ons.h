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

inline bool IsLoaded(AddOn addOn) { return loadedAddOns[static_cast<size_t>(addOn)]; }

// Those of them that publish nothing this program knows: a plug-in that stays loaded with another aircraft,
// which must not hide the adapter of that.
extern AddOnSet emptyAddOns;

// Whether rows follow it.
inline bool Serves(AddOn addOn) { return IsLoaded(addOn) && !emptyAddOns[static_cast<size_t>(addOn)]; }

// What a log line calls it: "Extended 737-800".
const char* NameOf(AddOn addOn);

// Says in the log, once while the add-on stays loaded, that clients' writes of this offset do nothing with it.
// `missing` is the name that it does not publish; empty when it has no such control at all. `part`: of an
// offset that moves several things, what it is that does not move; empty for all of it. `fault`: what is wrong
// with the name when it is published.
void TellUnserved(AddOn addOn, uint32_t offset, const char* missing, const char* part = "",
                  const char* fault = "");
// The add-on has come or gone: such lines may be said again.
void ForgetUnserved(AddOn addOn);
