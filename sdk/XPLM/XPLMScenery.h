// Terrain probe.
#pragma once
#include "XPLMDefs.h"

typedef void* XPLMProbeRef;
typedef int XPLMProbeType;
enum { xplm_ProbeY = 0 };
typedef int XPLMProbeResult;
enum { xplm_ProbeHitTerrain = 0, xplm_ProbeError = 1, xplm_ProbeMissed = 2 };
typedef struct {
  int structSize;
  float locationX, locationY, locationZ;
  float normalX, normalY, normalZ;
  float velocityX, velocityY, velocityZ;
  int is_wet;
} XPLMProbeInfo_t;

XPLM_API XPLMProbeRef XPLMCreateProbe(XPLMProbeType type);
XPLM_API void XPLMDestroyProbe(XPLMProbeRef probe);
XPLM_API XPLMProbeResult XPLMProbeTerrainXYZ(XPLMProbeRef probe, float x, float y, float z,
                                             XPLMProbeInfo_t* info);
