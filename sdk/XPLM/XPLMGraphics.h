// Conversion between world coordinates (degrees, metres above sea level) and the simulator's local
// axes (metres: x east, y up, z south around a reference point that moves now and then).
#pragma once
#include "XPLMDefs.h"

XPLM_API void XPLMWorldToLocal(double lat, double lon, double alt, double* x, double* y, double* z);
XPLM_API void XPLMLocalToWorld(double x, double y, double z, double* lat, double* lon, double* alt);
