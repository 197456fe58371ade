// Conversions that rows of several subjects use.
#pragma once
#include <cmath>

// Switches: 1 for anything but 0. A dataref that is not a number counts as 0.
inline double OnOff(double value) { return value != 0 && !std::isnan(value) ? 1 : 0; }
inline double Positive(double value) { return value > 0 ? 1 : 0; }
