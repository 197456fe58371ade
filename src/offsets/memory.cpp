#include "offsets/memory.h"

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
  Store<uint32_t>(0x3304, 0x50000008);
  Store<uint32_t>(0x3308, 0xFADE0008);
  std::memcpy(offsetMemory.bytes + 0x6F03, "2.0.", 4);
  std::memcpy(offsetMemory.bytes + 0x6F07, "5.25", 4);
  Store<uint16_t>(0x3BFA, 2047);
}
