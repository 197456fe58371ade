// Units that rows of several subjects convert, as clients know them.
#pragma once
#include <numbers>

constexpr double metresPerFoot = 0.3048;
constexpr double knotsPerMetre = 1.94384;  // of one metre a second
constexpr double poundsPerKg = 2.2046;
constexpr double kgPerPound = 0.453592;  // of what clients write; not quite the inverse

constexpr double radians = std::numbers::pi / 180;  // of one degree
constexpr double angle16 = 65536.0 / 360;           // 16-bit angle: full turn 65536
constexpr double twoTo32 = 4294967296.0;
constexpr double twoTo64 = twoTo32 * twoTo32;
constexpr double quarterMeridian = 10001750.0;  // metres from the equator to a pole
