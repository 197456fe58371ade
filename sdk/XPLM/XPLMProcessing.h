// Flight loops. Intervals: positive seconds, negative frames, 0 inactive (but still registered).
#pragma once
#include "XPLMDefs.h"

typedef float (*XPLMFlightLoop_f)(float sinceLastCall, float sinceLastLoop, int counter, void* refcon);

XPLM_API float XPLMGetElapsedTime(void);
XPLM_API int XPLMGetCycleNumber(void);
XPLM_API void XPLMRegisterFlightLoopCallback(XPLMFlightLoop_f fn, float interval, void* refcon);
XPLM_API void XPLMUnregisterFlightLoopCallback(XPLMFlightLoop_f fn, void* refcon);
XPLM_API void XPLMSetFlightLoopCallbackInterval(XPLMFlightLoop_f fn, float interval, int relativeToNow,
                                                void* refcon);
