// Angles of the radio, navigation and weather rows.
#pragma once
#include <cmath>

constexpr double angle16 = 65536.0 / 360;  // 16-bit angle: full turn 65536

// The angle within 0 <= x < 360. Applied before scaling, so that 360 degrees become 0 and never saturate.
inline double Wrapped(double degrees) {
  double turn = std::fmod(degrees, 360.0);
  if (turn < 0) turn += 360;
  return turn >= 360 ? 0 : turn;  // a tiny negative angle plus a full turn is a full turn
}
