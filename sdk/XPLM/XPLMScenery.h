// Terrain probe and scenery objects.
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

// Objects: files relative to the simulator's folder; each load needs its unload.
typedef void* XPLMObjectRef;
typedef struct {
  int structSize;
  float x, y, z, pitch, heading, roll;
} XPLMDrawInfo_t;
typedef void (*XPLMObjectLoaded_f)(XPLMObjectRef object, void* ref);  // null: it could not be loaded
typedef void (*XPLMLibraryEnumerator_f)(const char* path, void* ref);
XPLM_API XPLMObjectRef XPLMLoadObject(const char* path);
XPLM_API void XPLMLoadObjectAsync(const char* path, XPLMObjectLoaded_f fn, void* ref);
XPLM_API void XPLMDrawObjects(XPLMObjectRef object, int count, XPLMDrawInfo_t* places, int lighting,
                              int earthRelative);
XPLM_API void XPLMUnloadObject(XPLMObjectRef object);
XPLM_API int XPLMLookupObjects(const char* path, float lat, float lon, XPLMLibraryEnumerator_f fn, void* ref);
