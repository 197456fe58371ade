// Widget handles, messages, properties and structures common to all widget classes.
#pragma once
#include "XPLMDisplay.h"

typedef void* XPWidgetID;
typedef int XPWidgetPropertyID;
typedef int XPWidgetMessage;
typedef int XPDispatchMode;
typedef int XPWidgetClass;
typedef int (*XPWidgetFunc_t)(XPWidgetMessage message, XPWidgetID widget, intptr_t param1, intptr_t param2);

enum {
  xpProperty_Refcon = 0,
  xpProperty_Dragging = 1,
  xpProperty_DragXOff = 2,
  xpProperty_DragYOff = 3,
  xpProperty_Hilited = 4,
  xpProperty_Object = 5,
  xpProperty_Clip = 6,
  xpProperty_Enabled = 7,
  xpProperty_UserStart = 10000,
};
enum {
  xpMode_Direct = 0,
  xpMode_UpChain = 1,
  xpMode_Recursive = 2,
  xpMode_DirectAllCallbacks = 3,
  xpMode_Once = 4,
};
enum {
  xpMsg_None = 0,
  xpMsg_Create = 1,
  xpMsg_Destroy = 2,
  xpMsg_Paint = 3,
  xpMsg_Draw = 4,
  xpMsg_KeyPress = 5,
  xpMsg_KeyTakeFocus = 6,
  xpMsg_KeyLoseFocus = 7,
  xpMsg_MouseDown = 8,
  xpMsg_MouseDrag = 9,
  xpMsg_MouseUp = 10,
  xpMsg_Reshape = 11,
  xpMsg_ExposedChanged = 12,
  xpMsg_AcceptChild = 13,
  xpMsg_LoseChild = 14,
  xpMsg_AcceptParent = 15,
  xpMsg_Shown = 16,
  xpMsg_Hidden = 17,
  xpMsg_DescriptorChanged = 18,
  xpMsg_PropertyChanged = 19,
  xpMsg_MouseWheel = 20,
  xpMsg_CursorAdjust = 21,
  xpMsg_UserStart = 10000,
};

typedef struct {
  int x, y, button, delta;
} XPMouseState_t;
typedef struct {
  char key;
  XPLMKeyFlags flags;
  char vkey;
} XPKeyState_t;
typedef struct {
  int dx, dy, dwidth, dheight;
} XPWidgetGeometryChange_t;
