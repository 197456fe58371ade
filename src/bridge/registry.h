// Looking up the simulator's datarefs and commands, and which offsets clients may not write.
//
// Handles stand in one object a name (bridge/sources.h). Start fills those of the simulator itself, the
// recognition of an add-on those that begin with its prefix. Handles are never released; the access bytes do
// not change after start and may be read by any thread.
#pragma once
#include <cstdint>
#include <span>

#include "bridge/sources.h"
#include "offsets/memory.h"

// The names that start asks for, in their order.
extern const std::span<const char* const> startDataRefs;
extern const std::span<const char* const> startCommands;

// The three steps of start, in this order; each logs its line. Simulator's thread.
void InitMemoryBlocks();
void LookUpDataRefs();
void LookUpCommands();

// The same for the names of an add-on, all that begin with `prefix`, in the order of the alphabet: fills their
// handles and returns how many of them the simulator knows. Simulator's thread.
uint32_t LookUpDataRefsOf(const char* prefix);
uint32_t LookUpCommandsOf(const char* prefix);
// Sets the handles of these names to null again.
void DropNamesOf(const char* prefix);
