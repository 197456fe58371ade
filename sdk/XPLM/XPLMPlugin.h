// Other plug-ins and messages. 0 is the simulator itself, so "none" must be tested against -1.
#pragma once
#include "XPLMDefs.h"

enum {
  XPLM_MSG_PLANE_CRASHED = 101,
  XPLM_MSG_PLANE_LOADED = 102,
  XPLM_MSG_AIRPORT_LOADED = 103,
  XPLM_MSG_SCENERY_LOADED = 104,
  XPLM_MSG_AIRPLANE_COUNT_CHANGED = 105,
};

XPLM_API XPLMPluginID XPLMGetMyID(void);
XPLM_API int XPLMCountPlugins(void);
XPLM_API XPLMPluginID XPLMGetNthPlugin(int index);
XPLM_API XPLMPluginID XPLMFindPluginByPath(const char* path);
XPLM_API XPLMPluginID XPLMFindPluginBySignature(const char* signature);
XPLM_API void XPLMGetPluginInfo(XPLMPluginID id, char* name, char* path, char* signature, char* description);
XPLM_API int XPLMIsPluginEnabled(XPLMPluginID id);
XPLM_API void XPLMSendMessageToPlugin(XPLMPluginID to, int message, void* param);
