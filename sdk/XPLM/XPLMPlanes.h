// The user's aircraft (index 0) and the others. Both counts include the user's own.
#pragma once
#include "XPLMDefs.h"

#define XPLM_USER_AIRCRAFT (0)

XPLM_API void XPLMCountAircraft(int* total, int* active, XPLMPluginID* controller);
XPLM_API void XPLMGetNthAircraftModel(int index, char* fileName, char* path);  // at least 256 and 512 bytes

// Drawing an aircraft; ratios and angles of its moving parts.
typedef struct {
  int structSize;
  float gearPosition, flapRatio, spoilerRatio, speedBrakeRatio, slatRatio, wingSweep, thrust;
  float yokePitch, yokeHeading, yokeRoll;
} XPLMPlaneDrawState_t;
XPLM_API void XPLMDrawAircraft(int index, float x, float y, float z, float pitch, float roll, float yaw,
                               int fullDraw, XPLMPlaneDrawState_t* state);
XPLM_API void XPLMReinitUsersPlane(void);
