// The user's aircraft (index 0) and the others. Both counts include the user's own.
#pragma once
#include "XPLMDefs.h"

#define XPLM_USER_AIRCRAFT (0)

XPLM_API void XPLMCountAircraft(int* total, int* active, XPLMPluginID* controller);
XPLM_API void XPLMGetNthAircraftModel(int index, char* fileName, char* path);  // at least 256 and 512 bytes
