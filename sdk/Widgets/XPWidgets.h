// Creating, placing and talking to widgets. Simulator's thread only.
#pragma once
#include "XPWidgetDefs.h"

XPLM_API XPWidgetID XPCreateWidget(int left, int top, int right, int bottom, int visible,
                                   const char* descriptor, int isRoot, XPWidgetID container,
                                   XPWidgetClass widgetClass);
XPLM_API XPWidgetID XPCreateCustomWidget(int left, int top, int right, int bottom, int visible,
                                         const char* descriptor, int isRoot, XPWidgetID container,
                                         XPWidgetFunc_t fn);
XPLM_API void XPDestroyWidget(XPWidgetID widget, int destroyChildren);
XPLM_API int XPSendMessageToWidget(XPWidgetID widget, XPWidgetMessage message, XPDispatchMode mode,
                                   intptr_t param1, intptr_t param2);
XPLM_API void XPPlaceWidgetWithin(XPWidgetID sub, XPWidgetID container);
XPLM_API int XPCountChildWidgets(XPWidgetID widget);
XPLM_API XPWidgetID XPGetNthChildWidget(XPWidgetID widget, int index);
XPLM_API XPWidgetID XPGetParentWidget(XPWidgetID widget);
// The window that a widget is drawn in; null for one without a root.
XPLM_API XPLMWindowID XPGetWidgetUnderlyingWindow(XPWidgetID widget);
XPLM_API void XPShowWidget(XPWidgetID widget);
XPLM_API void XPHideWidget(XPWidgetID widget);
XPLM_API int XPIsWidgetVisible(XPWidgetID widget);
XPLM_API XPWidgetID XPFindRootWidget(XPWidgetID widget);
XPLM_API void XPBringRootWidgetToFront(XPWidgetID widget);
XPLM_API int XPIsWidgetInFront(XPWidgetID widget);
XPLM_API void XPGetWidgetGeometry(XPWidgetID widget, int* left, int* top, int* right, int* bottom);
XPLM_API void XPSetWidgetGeometry(XPWidgetID widget, int left, int top, int right, int bottom);
XPLM_API void XPGetWidgetExposedGeometry(XPWidgetID widget, int* left, int* top, int* right, int* bottom);
XPLM_API XPWidgetID XPGetWidgetForLocation(XPWidgetID container, int x, int y, int recursive, int visibleOnly);
XPLM_API void XPSetWidgetDescriptor(XPWidgetID widget, const char* text);
XPLM_API int XPGetWidgetDescriptor(XPWidgetID widget, char* out, int max);
XPLM_API void XPSetWidgetProperty(XPWidgetID widget, XPWidgetPropertyID id, intptr_t value);
XPLM_API intptr_t XPGetWidgetProperty(XPWidgetID widget, XPWidgetPropertyID id, int* exists);
XPLM_API XPWidgetID XPSetKeyboardFocus(XPWidgetID widget);
XPLM_API void XPLoseKeyboardFocus(XPWidgetID widget);
XPLM_API XPWidgetID XPGetWidgetWithFocus(void);
XPLM_API void XPAddWidgetCallback(XPWidgetID widget, XPWidgetFunc_t fn);
XPLM_API XPWidgetFunc_t XPGetWidgetClassFunc(XPWidgetClass widgetClass);
