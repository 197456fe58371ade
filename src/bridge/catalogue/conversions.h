// Conversions and numbers that rows of several subjects use.
#pragma once
#include <cmath>

// Switches: 1 for anything but 0. A dataref that is not a number counts as 0.
inline double OnOff(double value) { return value != 0 && !std::isnan(value) ? 1 : 0; }
inline double Positive(double value) { return value > 0 ? 1 : 0; }

// The angle within 0 <= x < 360. Applied before scaling, so that 360 degrees become 0 and never saturate.
inline double Wrapped(double degrees) {
  double turn = std::fmod(degrees, 360.0);
  if (turn < 0) turn += 360;
  return turn >= 360 ? 0 : turn;  // a tiny negative angle plus a full turn is a full turn
}

// What rows show that always read the same (OffsetRow::prepared).
inline constexpr double one = 1, zero = 0;
