// The room bridge/: between the simulator's datarefs and commands and the offset memory.
//
// The catalogue (catalogue.h, one row an offset) says what every offset means; readers and writers are derived
// from it. A run of readers first reads the simulator with no lock held and converts; then it stores its rows
// in tight groups and only tries the offset lock for each: when the lock is busy a group is tried once more at
// the end of the run, then its values are dropped until the next run. A writer enters the lock only to take its
// staged value and calls the simulator after leaving it. Who calls what in which frame is the business of
// shell/frame_callbacks.h.
//
// All of it is for the simulator's thread, with no lock held, as it calls the simulator. Functions that are
// pure say so and are for any thread.
#pragma once
#include <cstdint>

#include "bridge/catalogue.h"

// Derives readers, writers and dispatch widths from the catalogue. At start, after the look-ups.
void BuildCycles();

// Runs the readers of one cycle once. In the same frame as the run before, what that one has read of the
// simulator counts on; else the simulator is asked anew.
void RunReaders(Cycle cycle, bool sameFrame = false);
// Runs all writers once, in their fixed order.
void RunWriters();

// Counters of refreshes that were stored and of those dropped because the lock was busy at both tries; those of
// the user's own offsets count too.
struct RefreshCounters {
  uint64_t stored, dropped;
};
extern RefreshCounters refreshCounters;
