// Data access: datarefs are found once by name and then read and written through handles.
// Simulator's thread only. A null handle reads 0 and ignores writes.
#pragma once
#include "XPLMDefs.h"

typedef void* XPLMDataRef;
typedef int XPLMDataTypeID;
enum {
  xplmType_Unknown = 0,
  xplmType_Int = 1,
  xplmType_Float = 2,
  xplmType_Double = 4,
  xplmType_FloatArray = 8,
  xplmType_IntArray = 16,
  xplmType_Data = 32,
};

XPLM_API XPLMDataRef XPLMFindDataRef(const char* name);
XPLM_API int XPLMCanWriteDataRef(XPLMDataRef ref);
XPLM_API int XPLMIsDataRefGood(XPLMDataRef ref);
XPLM_API XPLMDataTypeID XPLMGetDataRefTypes(XPLMDataRef ref);
XPLM_API int XPLMGetDatai(XPLMDataRef ref);
XPLM_API void XPLMSetDatai(XPLMDataRef ref, int value);
XPLM_API float XPLMGetDataf(XPLMDataRef ref);
XPLM_API void XPLMSetDataf(XPLMDataRef ref, float value);
XPLM_API double XPLMGetDatad(XPLMDataRef ref);
XPLM_API void XPLMSetDatad(XPLMDataRef ref, double value);
XPLM_API int XPLMGetDatavi(XPLMDataRef ref, int* out, int offset, int max);
XPLM_API void XPLMSetDatavi(XPLMDataRef ref, int* values, int offset, int count);
XPLM_API int XPLMGetDatavf(XPLMDataRef ref, float* out, int offset, int max);
XPLM_API void XPLMSetDatavf(XPLMDataRef ref, float* values, int offset, int count);
XPLM_API int XPLMGetDatab(XPLMDataRef ref, void* out, int offset, int maxBytes);
XPLM_API void XPLMSetDatab(XPLMDataRef ref, void* value, int offset, int length);
