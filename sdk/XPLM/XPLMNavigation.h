// Navigation database. Frequencies: NDB in kHz, all others times 100 (110.30 MHz is 11030).
#pragma once
#include "XPLMDefs.h"

typedef int XPLMNavRef;
#define XPLM_NAV_NOT_FOUND (-1)
typedef int XPLMNavType;
enum {
  xplm_Nav_Unknown = 0,
  xplm_Nav_Airport = 1,
  xplm_Nav_NDB = 2,
  xplm_Nav_VOR = 4,
  xplm_Nav_ILS = 8,
  xplm_Nav_Localizer = 16,
  xplm_Nav_GlideSlope = 32,
  xplm_Nav_OuterMarker = 64,
  xplm_Nav_MiddleMarker = 128,
  xplm_Nav_InnerMarker = 256,
  xplm_Nav_Fix = 512,
  xplm_Nav_DME = 1024,
  xplm_Nav_LatLon = 2048,
};

XPLM_API XPLMNavRef XPLMGetFirstNavAid(void);
XPLM_API XPLMNavRef XPLMGetNextNavAid(XPLMNavRef ref);
XPLM_API XPLMNavRef XPLMFindFirstNavAidOfType(XPLMNavType type);
XPLM_API XPLMNavRef XPLMFindLastNavAidOfType(XPLMNavType type);
XPLM_API XPLMNavRef XPLMFindNavAid(const char* namePart, const char* idPart, float* lat, float* lon, int* freq,
                                   XPLMNavType types);
XPLM_API void XPLMGetNavAidInfo(XPLMNavRef ref, XPLMNavType* type, float* lat, float* lon, float* height,
                                int* freq, float* heading, char* id, char* name, char* reg);

// The flight plan: up to 100 entries, altitudes in feet; ids have up to 256 bytes.
XPLM_API int XPLMCountFMSEntries(void);
XPLM_API int XPLMGetDisplayedFMSEntry(void);
XPLM_API int XPLMGetDestinationFMSEntry(void);
XPLM_API void XPLMSetDisplayedFMSEntry(int index);
XPLM_API void XPLMSetDestinationFMSEntry(int index);
XPLM_API void XPLMGetFMSEntryInfo(int index, XPLMNavType* type, char* id, XPLMNavRef* ref, int* altitude,
                                  float* lat, float* lon);
XPLM_API void XPLMSetFMSEntryInfo(int index, XPLMNavRef ref, int altitude);
XPLM_API void XPLMSetFMSEntryLatLon(int index, float lat, float lon, int altitude);
XPLM_API void XPLMClearFMSEntry(int index);
XPLM_API XPLMNavType XPLMGetGPSDestinationType(void);
XPLM_API XPLMNavRef XPLMGetGPSDestination(void);
