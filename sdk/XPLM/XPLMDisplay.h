// Screen, windows, drawing, keys. Places are screen pixels, origin at the lower left, y upwards.
#pragma once
#include "XPLMDefs.h"

typedef int XPLMKeyFlags;
enum { xplm_ShiftFlag = 1, xplm_OptionAltFlag = 2, xplm_ControlFlag = 4, xplm_DownFlag = 8, xplm_UpFlag = 16 };
enum { XPLM_KEY_RETURN = 13, XPLM_KEY_ESCAPE = 27, XPLM_KEY_TAB = 9, XPLM_KEY_DELETE = 8 };
enum { XPLM_KEY_LEFT = 28, XPLM_KEY_RIGHT = 29, XPLM_KEY_UP = 30, XPLM_KEY_DOWN = 31 };

XPLM_API void XPLMGetScreenSize(int* width, int* height);
XPLM_API void XPLMGetMouseLocation(int* x, int* y);

// Drawing, once a frame in the order of the phases: the world, the cockpit, windows; the maps when one is
// shown.
typedef int XPLMDrawingPhase;
enum {
  xplm_Phase_FirstScene = 0,
  xplm_Phase_Terrain = 5,
  xplm_Phase_Airports = 10,
  xplm_Phase_Vectors = 15,
  xplm_Phase_Objects = 20,
  xplm_Phase_Airplanes = 25,
  xplm_Phase_LastScene = 30,
  xplm_Phase_FirstCockpit = 35,
  xplm_Phase_Panel = 40,
  xplm_Phase_Gauges = 45,
  xplm_Phase_Window = 50,
  xplm_Phase_LastCockpit = 55,
  xplm_Phase_LocalMap3D = 100,
  xplm_Phase_LocalMap2D = 101,
  xplm_Phase_LocalMapProfile = 102,
};
// `before` the simulator draws its own: 0 keeps it from that. Behind it the answer does not count.
typedef int (*XPLMDrawCallback_f)(XPLMDrawingPhase phase, int before, void* ref);
XPLM_API int XPLMRegisterDrawCallback(XPLMDrawCallback_f fn, XPLMDrawingPhase phase, int before, void* ref);
XPLM_API int XPLMUnregisterDrawCallback(XPLMDrawCallback_f fn, XPLMDrawingPhase phase, int before, void* ref);

// Keys before (or behind) windows; 0 swallows the key.
typedef int (*XPLMKeySniffer_f)(char key, XPLMKeyFlags flags, char virtualKey, void* ref);
XPLM_API int XPLMRegisterKeySniffer(XPLMKeySniffer_f fn, int before, void* ref);
XPLM_API int XPLMUnregisterKeySniffer(XPLMKeySniffer_f fn, int before, void* ref);

// Windows: drawn by the plug-in, told of mouse and keys. The newest is in front.
typedef void* XPLMWindowID;
typedef int XPLMMouseStatus;
enum { xplm_MouseDown = 1, xplm_MouseDrag = 2, xplm_MouseUp = 3 };
typedef int XPLMCursorStatus;
enum { xplm_CursorDefault = 0, xplm_CursorHidden = 1, xplm_CursorArrow = 2, xplm_CursorCustom = 3 };
typedef void (*XPLMDrawWindow_f)(XPLMWindowID window, void* ref);
typedef void (*XPLMHandleKey_f)(XPLMWindowID window, char key, XPLMKeyFlags flags, char virtualKey, void* ref,
                                int losingFocus);
typedef int (*XPLMHandleMouseClick_f)(XPLMWindowID window, int x, int y, XPLMMouseStatus mouse, void* ref);
typedef XPLMCursorStatus (*XPLMHandleCursor_f)(XPLMWindowID window, int x, int y, void* ref);
typedef int (*XPLMHandleMouseWheel_f)(XPLMWindowID window, int x, int y, int wheel, int clicks, void* ref);
typedef struct {
  int structSize, left, top, right, bottom, visible;
  XPLMDrawWindow_f drawWindowFunc;
  XPLMHandleMouseClick_f handleMouseClickFunc;
  XPLMHandleKey_f handleKeyFunc;
  XPLMHandleCursor_f handleCursorFunc;
  XPLMHandleMouseWheel_f handleMouseWheelFunc;
  void* refcon;
} XPLMCreateWindow_t;
XPLM_API XPLMWindowID XPLMCreateWindow(int left, int top, int right, int bottom, int visible,
                                       XPLMDrawWindow_f draw, XPLMHandleKey_f key, XPLMHandleMouseClick_f mouse,
                                       void* ref);
XPLM_API XPLMWindowID XPLMCreateWindowEx(XPLMCreateWindow_t* params);
XPLM_API void XPLMDestroyWindow(XPLMWindowID window);
XPLM_API void XPLMGetWindowGeometry(XPLMWindowID window, int* left, int* top, int* right, int* bottom);
XPLM_API void XPLMSetWindowGeometry(XPLMWindowID window, int left, int top, int right, int bottom);
XPLM_API int XPLMGetWindowIsVisible(XPLMWindowID window);
XPLM_API void XPLMSetWindowIsVisible(XPLMWindowID window, int visible);
XPLM_API void* XPLMGetWindowRefCon(XPLMWindowID window);
XPLM_API void XPLMSetWindowRefCon(XPLMWindowID window, void* ref);
XPLM_API void XPLMTakeKeyboardFocus(XPLMWindowID window);  // null: back to the simulator
XPLM_API void XPLMBringWindowToFront(XPLMWindowID window);
XPLM_API int XPLMIsWindowInFront(XPLMWindowID window);

// Keys that call a plug-in; the user may give them another combination. Descriptions have up to 512 bytes.
typedef void* XPLMHotKeyID;
typedef void (*XPLMHotKey_f)(void* ref);
XPLM_API XPLMHotKeyID XPLMRegisterHotKey(char virtualKey, XPLMKeyFlags flags, const char* description,
                                         XPLMHotKey_f fn, void* ref);
XPLM_API void XPLMUnregisterHotKey(XPLMHotKeyID hotKey);
XPLM_API int XPLMCountHotKeys(void);
XPLM_API XPLMHotKeyID XPLMGetNthHotKey(int index);
XPLM_API void XPLMGetHotKeyInfo(XPLMHotKeyID hotKey, char* virtualKey, XPLMKeyFlags* flags, char* description,
                                XPLMPluginID* plugin);
XPLM_API void XPLMSetHotKeyCombination(XPLMHotKeyID hotKey, char virtualKey, XPLMKeyFlags flags);
