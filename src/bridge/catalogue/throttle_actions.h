// What the throttle and starter rows need beyond one write. Simulator's thread, with no lock held.
#pragma once
#include "XPLMUtilities.h"

// Fuel lever commands of the extended 737-800, engines 1 and 2, filled by its recognition. While they are
// null a mixture write sets the aircraft's ratio instead.
struct LeverCommands {
  XPLMCommandRef idle, cutoff;
};
extern LeverCommands b738LeverCommands[2];

// Releases every starter button that a magneto write holds down. At disable; harmless when none is held.
void ReleaseStarters();
