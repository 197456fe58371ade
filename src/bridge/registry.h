// Registry of the simulator's datarefs and commands, by offset.
//
// Two arrays of dataref handles over the index space of the offset memory: entry N of DataRefMemBlock is
// the primary dataref of offset N; AuxDataRefMemBlock holds second datarefs of offsets and numbered slots
// for derived values. A name that the simulator does not publish leaves a null handle, which is never
// handed to the simulator (bridge/sources.h). Beside them one access byte per offset, and the fixed set of
// command handles.
//
// Filled once, at start, on the simulator's thread; the slots from 0x10000 up and those of recognised
// aircraft are filled later on the same thread. Handles are never released. The access bytes do not change
// after start and may be read by any thread.
#pragma once
#include <cstdint>

#include "XPLMDataAccess.h"
#include "XPLMUtilities.h"
#include "offsets/memory.h"

extern XPLMDataRef DataRefMemBlock[offsetMemorySize];
extern XPLMDataRef AuxDataRefMemBlock[offsetMemorySize];

// Command handles, in the order they are looked up.
struct EngineCommands {
  XPLMCommandRef magnetosOff, magnetosRight, magnetosLeft, magnetosBoth, engageStarter;
};
struct CommandBlock {
  EngineCommands engines[4];
  XPLMCommandRef backCourse, approach, autothrottleToggle, takeOffGoAround, contactAtc;
};
extern CommandBlock commandBlock;

enum class Block : uint8_t { None, Primary, Auxiliary };

// One look-up at start: a name and the place its handle goes to.
struct Binding {
  uint32_t index;
  Block block;
  const char* name;
};
// One stretch of offsets that clients may not write, both ends included.
struct ReadOnlyRange {
  uint32_t first, last;
};
extern const Binding bindings[];
extern const uint32_t bindingCount;
extern const ReadOnlyRange readOnlyRanges[];
extern const uint32_t readOnlyRangeCount;

// The three steps of start, in this order; each logs its line and returns 1. Simulator's thread.
int InitMemoryBlocks();
int LookUpDataRefs();
int LookUpCommands();
