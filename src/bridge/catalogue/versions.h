// Versions of the simulator from which on something is published otherwise, as it tells them.
#pragma once
#include "bridge/catalogue.h"
#include "bridge/catalogue/units.h"

constexpr int version1140 = 11400;

// Wind speeds were knots and are metres a second; the datarefs' names still say knots.
constexpr UnitChange windUnit = {.since = version1140, .factor = knotsPerMetre};
