// Length of a vector in the plane. Not std::hypot: its symbol is newer than the oldest systems on which the
// stand-in has to run.
#pragma once
#include <cmath>

namespace sim {

inline double Distance(double a, double b) { return std::sqrt(a * a + b * b); }

}  // namespace sim
