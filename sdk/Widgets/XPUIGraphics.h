// The widgets' own look for a plug-in's drawing: windows, elements, tracks. From drawing callbacks only, but
// for the measures. Lit elements have a second look.
#pragma once
#include "XPWidgetDefs.h"

typedef int XPWindowStyle;
enum {
  xpWindow_Help = 0,
  xpWindow_MainWindow = 1,
  xpWindow_SubWindow = 2,
  xpWindow_Screen = 4,
  xpWindow_ListView = 5,
};
typedef int XPElementStyle;
enum {
  xpElement_TextField = 6,
  xpElement_CheckBox = 9,
  xpElement_CheckBoxLit = 10,
  xpElement_WindowCloseBox = 14,
  xpElement_WindowCloseBoxPressed = 15,
  xpElement_PushButton = 16,
  xpElement_PushButtonLit = 17,
};
typedef int XPTrackStyle;
enum { xpTrack_ScrollBar = 0, xpTrack_Slider = 1, xpTrack_Progress = 2 };

XPLM_API void XPDrawWindow(int left, int bottom, int right, int top, XPWindowStyle style);
XPLM_API void XPGetWindowDefaultDimensions(XPWindowStyle style, int* width, int* height);
XPLM_API void XPDrawElement(int left, int bottom, int right, int top, XPElementStyle style, int lit);
XPLM_API void XPGetElementDefaultDimensions(XPElementStyle style, int* width, int* height, int* canBeLit);
XPLM_API void XPDrawTrack(int left, int bottom, int right, int top, int min, int max, int value,
                          XPTrackStyle style, int lit);
XPLM_API void XPGetTrackDefaultDimensions(XPTrackStyle style, int* width, int* canBeLit);
// Lengths along the track: the lower button, the page below the thumb, the thumb, the page above it, the upper
// button. Together they are the track's length.
XPLM_API void XPGetTrackMetrics(int left, int bottom, int right, int top, int min, int max, int value,
                                XPTrackStyle style, int* isVertical, int* downButton, int* downPage, int* thumb,
                                int* upPage, int* upButton);
