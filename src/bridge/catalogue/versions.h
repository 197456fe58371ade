// Versions of the simulator from which on something is published otherwise, as it tells them.
#pragma once
#include "bridge/catalogue.h"

constexpr int version1140 = 11400;

// Wind speeds were knots and are metres a second; the datarefs' names still say knots. A little more than
// exact: the dataref's single precision must not let 21 knots become 20 when the rest is cut.
constexpr double knotsOfWind = 3600.0 / 1852 * (1 + 1.0 / (1 << 23));
constexpr UnitChange windUnit = {.since = version1140, .factor = knotsOfWind};
