// The room offsets/: the offset memory, 131,072 bytes that every client reads and writes, its companions, and
// the ways in: requests (request_walk.h), the dispatcher, which every client's write passes (dispatcher.h), and
// the local server (window_server.h). It knows neither datarefs nor the catalogue.
//
// Standard offsets 0x0000-0xFFFF have a fixed meaning and encoding that clients know, extended offsets
// 0x10000-0x1FFFF hold the plug-in's own records. Values are little-endian at their offset's own width.
// Beside the memory lie the staged values of client writes, one pending flag per offset, and the request
// counters. The arrays live as long as the module.
//
// All of it is touched only with the offset lock held (locks.h), except before enable and after disable,
// when there is one thread only. Lock-checking builds assert that in every typed accessor.
#pragma once
#include <atomic>
#include <cassert>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "base/bytes.h"
#include "base/locks.h"
#include "platform/system.h"

constexpr uint32_t offsetMemorySize = 0x20000;

struct OffsetMemory {
  uint8_t bytes[offsetMemorySize];
};
// Client values that wait for the write cycle, at the same offsets.
struct PendingValues {
  uint8_t bytes[offsetMemorySize];
};
// Not 0: a client's value at this offset (its first byte) waits for the write cycle, or one of our own
// (dispatcher.h tells them apart).
struct PendingFlags {
  uint32_t flags[offsetMemorySize];
};
struct RequestCounters {
  uint32_t requests;      // request messages, local and network
  uint32_t bytesRead;     // sum of the sizes of read records
  uint32_t bytesWritten;  // sum of the sizes of applied write records
};

// What clients may do at an offset, by the offset where their record begins. Filled at start, constant
// afterwards: any thread may read it without a lock.
constexpr uint8_t accessReadWrite = 1;
constexpr uint8_t accessReadOnly = 2;
extern uint8_t VariablesAccessMemBlock[offsetMemorySize];

extern OffsetMemory offsetMemory;
extern PendingValues pendingValues;
extern PendingFlags pendingFlags;
extern RequestCounters requestCounters;

// Raised (under the offset lock) whenever a flag is set, taken by the write cycle: frames without client
// writes pass all writers without entering the lock once for each.
extern std::atomic<uint32_t> anythingPending;

// Typed access, little-endian at any alignment. Call with the offset lock held.
template <typename T>
T Load(uint32_t offset) {
  assert(offset <= offsetMemorySize - sizeof(T));
  assert(HoldsLock(&offsetLock));
  return LoadFrom<T>(offsetMemory.bytes + offset);
}
template <typename T>
void Store(uint32_t offset, T value) {
  assert(offset <= offsetMemorySize - sizeof(T));
  assert(HoldsLock(&offsetLock));
  StoreTo(offsetMemory.bytes + offset, value);
}
template <typename T>
T LoadPending(uint32_t offset) {
  assert(offset <= offsetMemorySize - sizeof(T));
  assert(HoldsLock(&offsetLock));
  return LoadFrom<T>(pendingValues.bytes + offset);
}

// Clears memory, staged values, flags, counters and request marks. Simulator's thread, at start only.
void ClearOffsetMemory();
// Places the values that stand from start on (0x3304, 0x3308, 0x6F03, 0x3BFA). Simulator's thread, start.
void PlaceStartValues();

// --- The path block 0x3E00-0x3EFF ---------------------------------------------------------------------
enum class PathSource : uint32_t { Local = 0, Network = 1 };

// Takes the simulator's folder for local clients and derives the form for clients on other machines from
// the folders that this computer shares. Simulator's thread, at start.
void PrepareFolders(const char* systemFolder);
// Walks the range block by block and puts the source's folder into 0x3E00 when the walk comes there. Any
// thread, offset lock held, before a read record's bytes are copied out. Returns whether the range was made of
// the recognised blocks only (callers ignore it).
bool FillPathBlock(uint32_t offset, uint32_t length, PathSource source);

// The network form of a folder: pure function of the folder, the computer's name and the shares (name and
// folder pairs). `isDirectory` decides whether a candidate exists. Cut to 255 characters.
std::string NetworkFolder(const std::string& folder, const std::string& computer,
                          const std::vector<SharedFolder>& shares, bool (*isDirectory)(const char*));
