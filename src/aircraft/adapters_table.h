// Inner table of the aircraft room: the names of each add-on and the places of their handles.
#pragma once
#include <span>

#include "aircraft/adapter_commands.h"
#include "aircraft/adapter_slots.h"

struct AdapterDataRef {
  Source slot;
  const char* name;
};
struct AdapterCommand {
  XPLMCommandRef* handle;
  const char* name;
};
struct AdapterNames {
  std::span<const AdapterDataRef> dataRefs;
  std::span<const AdapterCommand> commands;
};
extern const AdapterNames x737Names, xSquawkBoxNames, pilotEdgeNames, ixegNames, b738Names;
