// Commands, paths, versions, data files, debug string.
#pragma once
#include "XPLMDefs.h"

typedef void* XPLMCommandRef;
typedef int XPLMCommandPhase;
enum { xplm_CommandBegin = 0, xplm_CommandContinue = 1, xplm_CommandEnd = 2 };
typedef int (*XPLMCommandCallback_f)(XPLMCommandRef command, XPLMCommandPhase phase, void* refcon);

typedef int XPLMHostApplicationID;
enum { xplm_Host_Unknown = 0, xplm_Host_XPlane = 1 };
typedef int XPLMLanguageCode;
enum { xplm_Language_Unknown = 0, xplm_Language_English = 1 };
typedef int XPLMDataFileType;
enum { xplm_DataFile_Situation = 1, xplm_DataFile_ReplayMovie = 2 };

// Commands by number: each presses a key or button of the simulator, whatever it is mapped to.
typedef int XPLMCommandKeyID;
enum {
  xplm_key_pause = 0,
  xplm_key_otto_atr = 10,
  xplm_key_otto_asi = 11,
  xplm_key_otto_hdg = 12,
  xplm_key_otto_gps = 13,
  xplm_key_otto_lev = 14,
  xplm_key_otto_hnav = 15,
  xplm_key_otto_alt = 16,
  xplm_key_otto_vvi = 17,
  xplm_key_otto_vnav = 18,
  xplm_key_max = 94,
};
typedef int XPLMCommandButtonID;
enum {
  xplm_joy_nothing = 0,
  xplm_joy_start_all = 1,
  xplm_joy_start_0 = 2,
  xplm_joy_start_1 = 3,
  xplm_joy_start_2 = 4,
  xplm_joy_start_3 = 5,
  xplm_joy_gear_up = 52,
  xplm_joy_gear_down = 53,
  xplm_joy_fail_now = 84,
  xplm_joy_max = 94,
};

XPLM_API XPLMCommandRef XPLMFindCommand(const char* name);
XPLM_API void XPLMCommandOnce(XPLMCommandRef command);
XPLM_API void XPLMCommandBegin(XPLMCommandRef command);
XPLM_API void XPLMCommandEnd(XPLMCommandRef command);
XPLM_API XPLMCommandRef XPLMCreateCommand(const char* name, const char* description);
XPLM_API void XPLMRegisterCommandHandler(XPLMCommandRef command, XPLMCommandCallback_f fn, int before,
                                         void* refcon);
XPLM_API void XPLMUnregisterCommandHandler(XPLMCommandRef command, XPLMCommandCallback_f fn, int before,
                                           void* refcon);
XPLM_API void XPLMCommandKeyStroke(XPLMCommandKeyID key);
XPLM_API void XPLMCommandButtonPress(XPLMCommandButtonID button);
XPLM_API void XPLMCommandButtonRelease(XPLMCommandButtonID button);

XPLM_API void XPLMGetSystemPath(char* out);  // at least 512 bytes, ends in a separator
XPLM_API void XPLMGetPrefsPath(char* out);   // at least 512 bytes
XPLM_API const char* XPLMGetDirectorySeparator(void);
XPLM_API char* XPLMExtractFileAndPath(char* path);
XPLM_API int XPLMGetDirectoryContents(const char* directory, int first, char* names, int namesSize,
                                      char** indices, int indexCount, int* total, int* returned);
XPLM_API void XPLMGetVersions(int* host, int* xplm, XPLMHostApplicationID* hostId);
XPLM_API XPLMLanguageCode XPLMGetLanguage(void);
XPLM_API void XPLMDebugString(const char* text);
XPLM_API void* XPLMFindSymbol(const char* name);
XPLM_API void XPLMSetErrorCallback(void (*fn)(const char* message));
XPLM_API void XPLMSpeakString(const char* text);
XPLM_API const char* XPLMGetVirtualKeyDescription(char vkey);
XPLM_API int XPLMLoadDataFile(XPLMDataFileType type, const char* path);
XPLM_API int XPLMSaveDataFile(XPLMDataFileType type, const char* path);
