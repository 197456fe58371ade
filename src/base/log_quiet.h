// Lines that somebody else could cause without end.
#pragma once
#include <atomic>
#include <cstdint>

// Told once a minute for each key (a client's address, say).
struct QuietTable {
  struct Entry {
    uint64_t key;
    int64_t time;  // monotonic, nanoseconds
    bool used;
  };
  Entry entries[64];
};

// Whether a line for this key is due; it counts as told then. With all places taken within a minute, further
// keys are passed over in silence. Any thread; the caller guards the table.
bool TakeLogTurn(QuietTable* table, uint64_t key);

// Told so many times a minute; then one line says that the rest of the minute is left out. Program-wide.
struct QuietMinute {
  const char* what;  // happens so often: the beginning of that line
  uint32_t most;
  std::atomic<int64_t> began;  // monotonic, nanoseconds; 0: never
  std::atomic<uint32_t> turns;
};

// Whether the lines about this one time are due. A main log that was begun anew begins a new minute, too. Any
// thread, not with the offset lock held.
bool TakeLogTurn(QuietMinute* minute);
