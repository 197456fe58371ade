#include "offsets/memory.h"

#include "base/version.h"

uint8_t VariablesAccessMemBlock[offsetMemorySize];
OffsetMemory offsetMemory;
PendingValues pendingValues;
PendingFlags pendingFlags;
RequestCounters requestCounters;
std::atomic<uint32_t> anythingPending;

void ClearOffsetMemory() {
  offsetMemory = {};
  pendingValues = {};
  pendingFlags = {};
  requestCounters = {};
  anythingPending = 0;
}

void PlaceStartValues() {
  constexpr size_t versionSize = 8;  // bytes of the plug-in's version, without a terminator
  static_assert(std::char_traits<char>::length(pluginVersion) == versionSize);
  Store<uint32_t>(0x3304, 0x50000008);
  Store<uint32_t>(0x3308, 0xFADE0008);
  std::memcpy(offsetMemory.bytes + 0x6F03, pluginVersion, versionSize);
  Store<uint16_t>(0x3BFA, 2047);
}
