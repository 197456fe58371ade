// Looking up the simulator's datarefs and commands, and which offsets clients may not write.
//
// Handles stand in one object a name (bridge/sources.h). Start fills those of the simulator itself, the
// recognition of an add-on those of its names. Handles are never released; the access bytes do
// not change after start and may be read by any thread.
#pragma once
#include <cstdint>
#include <span>

#include "bridge/sources.h"
#include "offsets/memory.h"

// The names that start asks for, in their order.
extern const std::span<const char* const> startDataRefs;
extern const std::span<const char* const> startCommands;

// Types of datarefs are asked of the simulator anew (Fitting). Simulator's thread; readers are to be bound
// again.
void ForgetTypes();

// The three steps of start, in this order; each logs its line. Simulator's thread.
void InitMemoryBlocks();
void LookUpDataRefs();
void LookUpCommands();

// The same for one name of an add-on: fills its handle and returns whether the simulator knows it.
bool LookUpDataRef(const char* name);
bool LookUpCommand(const char* name);
// Sets the handles of this name to null again, unless it is one of the simulator's own.
void DropName(const char* name);
