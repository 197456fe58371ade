// Helpers for building and moving groups of widgets.
#pragma once
#include "XPWidgetDefs.h"

#define NO_PARENT (-1)
#define PARAM_PARENT (-2)

typedef struct {
  int left, top, right, bottom, visible;
  const char* descriptor;
  int isRoot, containerIndex;
  XPWidgetClass widgetClass;
} XPWidgetCreate_t;

XPLM_API void XPUCreateWidgets(const XPWidgetCreate_t* defs, int count, XPWidgetID paramParent,
                               XPWidgetID* ids);
XPLM_API void XPUMoveWidgetBy(XPWidgetID widget, int dx, int dy);
XPLM_API int XPUFixedLayout(XPWidgetMessage message, XPWidgetID widget, intptr_t param1, intptr_t param2);
XPLM_API int XPUSelectIfNeeded(XPWidgetMessage message, XPWidgetID widget, intptr_t param1, intptr_t param2,
                               int eatClick);
XPLM_API int XPUDefocusKeyboard(XPWidgetMessage message, XPWidgetID widget, intptr_t param1, intptr_t param2,
                                int eatClick);
XPLM_API int XPUDragWidget(XPWidgetMessage message, XPWidgetID widget, intptr_t param1, intptr_t param2,
                           int left, int top, int right, int bottom);
