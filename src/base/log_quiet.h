// Lines that somebody else could cause without end are told once a minute for each key (a client's address,
// say).
#pragma once
#include <cstdint>

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
