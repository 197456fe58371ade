// In which versions of the simulator a row of the catalogue has its source. Pure.
#pragma once
#include <string>
#include <vector>

#include "bridge/catalogue.h"

// Version numbers as people write them, "9.55"; empty: from the oldest list on, up to the newest.
struct ServedVersions {
  std::string from, to;
  bool never = false;
};
// A dataref by any of its names.
ServedVersions VersionsOf(const DataRef& ref);

// All names that some version does not have.
std::vector<const char*> LimitedNames();

// Every dataref of the simulator's own that a row reads or sets, each once.
std::vector<const DataRef*> DataRefsOf(const OffsetRow& row);
// When the row follows the simulator: its source is published or, where a function makes it of several, the
// first of them, without which it shows nothing.
ServedVersions VersionsOf(const OffsetRow& row);
// What the offset shows in the other versions, and what of it counts as 0 in some; "" when there is nothing to
// tell.
std::string ElsewhereText(const OffsetRow& row);
