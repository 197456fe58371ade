// Menus. A submenu is an item of its parent first and a menu second.
#pragma once
#include "XPLMDefs.h"

typedef void* XPLMMenuID;
typedef int XPLMMenuCheck;
enum { xplm_Menu_NoCheck = 0, xplm_Menu_Unchecked = 1, xplm_Menu_Checked = 2 };
typedef void (*XPLMMenuHandler_f)(void* menuRef, void* itemRef);

XPLM_API XPLMMenuID XPLMFindPluginsMenu(void);
XPLM_API XPLMMenuID XPLMCreateMenu(const char* name, XPLMMenuID parent, int parentItem,
                                   XPLMMenuHandler_f handler, void* menuRef);
XPLM_API void XPLMDestroyMenu(XPLMMenuID menu);
XPLM_API void XPLMClearAllMenuItems(XPLMMenuID menu);
XPLM_API int XPLMAppendMenuItem(XPLMMenuID menu, const char* name, void* itemRef, int forceEnglish);
XPLM_API void XPLMAppendMenuSeparator(XPLMMenuID menu);
XPLM_API void XPLMSetMenuItemName(XPLMMenuID menu, int index, const char* name, int forceEnglish);
XPLM_API void XPLMCheckMenuItem(XPLMMenuID menu, int index, XPLMMenuCheck check);
XPLM_API void XPLMCheckMenuItemState(XPLMMenuID menu, int index, XPLMMenuCheck* out);
XPLM_API void XPLMEnableMenuItem(XPLMMenuID menu, int index, int enabled);
