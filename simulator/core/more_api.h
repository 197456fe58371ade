// The rest of the public plug-in interface that plug-ins commonly use and the product does not: declared
// here so that other people's plug-ins load and run. Types and behaviour are those of level 2.1.
// Simulator's thread only, but for XPLMScheduleFlightLoop.
#pragma once
#include "XPLMDataAccess.h"
#include "XPLMDefs.h"
#include "XPLMDisplay.h"
#include "XPLMMenus.h"
#include "XPLMNavigation.h"
#include "XPLMPlanes.h"
#include "XPLMPlugin.h"
#include "XPLMProcessing.h"
#include "XPLMUtilities.h"

#if defined(_WIN32)
#define MORE_API extern "C" __attribute__((dllexport))
#else
#define MORE_API extern "C" __attribute__((visibility("default")))
#endif

// Datarefs that a plug-in offers. Accessors are those of XPLMGetData... with the reference in place of the
// handle; null where a type is not offered.
typedef int (*XPLMGetDatai_f)(void* ref);
typedef void (*XPLMSetDatai_f)(void* ref, int value);
typedef float (*XPLMGetDataf_f)(void* ref);
typedef void (*XPLMSetDataf_f)(void* ref, float value);
typedef double (*XPLMGetDatad_f)(void* ref);
typedef void (*XPLMSetDatad_f)(void* ref, double value);
typedef int (*XPLMGetDatavi_f)(void* ref, int* out, int offset, int max);
typedef void (*XPLMSetDatavi_f)(void* ref, int* values, int offset, int count);
typedef int (*XPLMGetDatavf_f)(void* ref, float* out, int offset, int max);
typedef void (*XPLMSetDatavf_f)(void* ref, float* values, int offset, int count);
typedef int (*XPLMGetDatab_f)(void* ref, void* out, int offset, int max);
typedef void (*XPLMSetDatab_f)(void* ref, void* value, int offset, int length);
typedef void (*XPLMDataChanged_f)(void* ref);
MORE_API XPLMDataRef XPLMRegisterDataAccessor(const char* name, XPLMDataTypeID types, int writable,
                                              XPLMGetDatai_f, XPLMSetDatai_f, XPLMGetDataf_f, XPLMSetDataf_f,
                                              XPLMGetDatad_f, XPLMSetDatad_f, XPLMGetDatavi_f, XPLMSetDatavi_f,
                                              XPLMGetDatavf_f, XPLMSetDatavf_f, XPLMGetDatab_f, XPLMSetDatab_f,
                                              void* readRef, void* writeRef);
MORE_API void XPLMUnregisterDataAccessor(XPLMDataRef ref);
// 1 when made or found, 0 when it exists with another type.
MORE_API int XPLMShareData(const char* name, XPLMDataTypeID type, XPLMDataChanged_f changed, void* ref);
MORE_API int XPLMUnshareData(const char* name, XPLMDataTypeID type, XPLMDataChanged_f changed, void* ref);

// Flight loops of the newer kind: made unscheduled, before (0) or after (1) the flight model.
typedef void* XPLMFlightLoopID;
typedef struct {
  int structSize;
  int phase;
  XPLMFlightLoop_f callbackFunc;
  void* refcon;
} XPLMCreateFlightLoop_t;
MORE_API XPLMFlightLoopID XPLMCreateFlightLoop(XPLMCreateFlightLoop_t* params);
MORE_API void XPLMDestroyFlightLoop(XPLMFlightLoopID id);
MORE_API void XPLMScheduleFlightLoop(XPLMFlightLoopID id, float interval, int relativeToNow);  // any thread

MORE_API void XPLMRemoveMenuItem(XPLMMenuID menu, int index);

MORE_API int XPLMEnablePlugin(XPLMPluginID id);
MORE_API void XPLMDisablePlugin(XPLMPluginID id);
MORE_API void XPLMReloadPlugins(void);
typedef void (*XPLMFeatureEnumerator_f)(const char* feature, void* ref);
MORE_API int XPLMHasFeature(const char* feature);
MORE_API int XPLMIsFeatureEnabled(const char* feature);
MORE_API void XPLMEnableFeature(const char* feature, int enable);
MORE_API void XPLMEnumerateFeatures(XPLMFeatureEnumerator_f fn, void* ref);

// Raw key presses reach nothing here: no key is mapped to a function.
MORE_API void XPLMSimulateKeyPress(int keyType, int key);

typedef void (*XPLMPlanesAvailable_f)(void* ref);
MORE_API void XPLMSetUsersAircraft(const char* path);  // by the file's name, one of the known aircraft
MORE_API void XPLMPlaceUserAtAirport(const char* icao);
MORE_API int XPLMAcquirePlanes(char** aircraft, XPLMPlanesAvailable_f available, void* ref);
MORE_API void XPLMReleasePlanes(void);
MORE_API void XPLMSetActiveAircraftCount(int count);
MORE_API void XPLMSetAircraftModel(int index, const char* path);
MORE_API void XPLMDisableAIForPlane(int index);
