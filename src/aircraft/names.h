// The names that add-ons publish and this program uses, and how sure each is: the recognition looks them up,
// the log tells which of them are not there, and the page of the aircraft shows them.
#pragma once
#include <cstdint>
#include <span>

#include "bridge/add_ons.h"

// Sure: seen in at least two independent public sources. Likely: in one, or its meaning follows from a pattern.
// Defined: part of what this program is defined to use, and seen in no public source.
enum class Certainty : uint8_t { Sure, Likely, Defined };

struct AddOnName {
  const char* name;
  Certainty certainty;
};
struct AddOnNames {
  std::span<const AddOnName> dataRefs, commands;
};

// All names of an add-on, by the alphabet; some of the simulator's own are among them that only this add-on's
// rows use. Any thread; empty for AddOn::None.
AddOnNames NamesOf(AddOn addOn);

// Looks the datarefs or commands of an add-on up; whether one of its own is there. Simulator's thread, as is
// what follows; NamesFoundOf (aircraft/adapters.h) tells what was found.
bool LookUpDataRefsOf(AddOn addOn);
bool LookUpCommandsOf(AddOn addOn);
// Looks up again what was not there: an add-on may publish some of its names after it was recognised. Whether
// one more is there.
bool LookUpMissingOf(AddOn addOn);
// Forgets the handles of its names, but for those that a loaded relative has, too, and what was found.
void DropNamesOf(AddOn addOn);
