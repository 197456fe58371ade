// The camera: local metres, degrees, zoom 1 is none.
#pragma once
#include "XPLMDefs.h"

typedef int XPLMCameraControlDuration;
enum { xplm_ControlCameraUntilViewChanges = 1, xplm_ControlCameraForever = 2 };
typedef struct {
  float x, y, z, pitch, heading, roll, zoom;
} XPLMCameraPosition_t;
// Called every frame: 1 with the place that is wanted, 0 gives the camera back. `place` may be null when the
// camera is being lost.
typedef int (*XPLMCameraControl_f)(XPLMCameraPosition_t* place, int isLosingControl, void* ref);

XPLM_API void XPLMControlCamera(XPLMCameraControlDuration howLong, XPLMCameraControl_f fn, void* ref);
XPLM_API void XPLMDontControlCamera(void);
XPLM_API int XPLMIsCameraBeingControlled(XPLMCameraControlDuration* howLong);
XPLM_API void XPLMReadCameraPosition(XPLMCameraPosition_t* place);
