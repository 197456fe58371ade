// From the simulator's numbers to those of a slot's source. Inner header of the room. Pure.
#pragma once
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "traffic/traffic_state.h"

// Saturated at the type's limits; what is no number is 0.
template <typename T>
T Whole(double value) {
  if (!std::isfinite(value)) return 0;
  return static_cast<T>(std::clamp(value, static_cast<double>(std::numeric_limits<T>::min()),
                                   static_cast<double>(std::numeric_limits<T>::max())));
}

// What no float holds is 0, too.
inline float Single(double value) {
  const auto single = static_cast<float>(value);
  return std::isfinite(single) ? single : 0;
}

// Degrees, and metres a second.
struct Motion {
  double heading, east, south, climb, pitch, bank;
};
// The motion as a slot's source holds it, and its place from the position that stands there already.
inline void SetMotion(PlaneSource* plane, const Motion& motion) {
  constexpr double knotsPerMetre = 1.94384;
  const double heading = std::fmod(motion.heading, 360);
  plane->heading = static_cast<uint16_t>(Whole<uint16_t>(heading < 0 ? heading + 360 : heading) % 360);
  const double speed = std::sqrt(motion.east * motion.east + motion.south * motion.south);
  plane->groundSpeed = Whole<uint16_t>(speed * knotsPerMetre);
  plane->verticalSpeed = Whole<int16_t>(motion.climb);
  plane->pitch = Whole<int16_t>(motion.pitch);
  plane->bank = Whole<int16_t>(motion.bank);
  plane->place = {plane->latitude, plane->longitude, false};
}
