// Screen size in pixels, for placing windows. Origin at the lower left, y upwards.
#pragma once
#include "XPLMDefs.h"

typedef int XPLMKeyFlags;
enum { xplm_ShiftFlag = 1, xplm_OptionAltFlag = 2, xplm_ControlFlag = 4, xplm_DownFlag = 8, xplm_UpFlag = 16 };
enum { XPLM_KEY_RETURN = 13, XPLM_KEY_ESCAPE = 27, XPLM_KEY_TAB = 9, XPLM_KEY_DELETE = 8 };

XPLM_API void XPLMGetScreenSize(int* width, int* height);
