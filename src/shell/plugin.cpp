// The five entry points that the simulator calls. No exception of our own leaves them.
#include "XPLMDefs.h"
#include "platform/exceptions.h"
#include "shell/lifecycle.h"

PLUGIN_API void XPluginDisable(void);
PLUGIN_API void XPluginStop(void);

PLUGIN_API int XPluginStart(char* name, char* signature, char* description) {
  try {
    return StartPlugin(name, signature, description);
  } catch (...) {
    XPluginStop();  // gives back what has been made
    PassForeignException();
    return 0;
  }
}

PLUGIN_API int XPluginEnable(void) {
  try {
    return EnablePlugin();
  } catch (...) {
    XPluginDisable();  // gives back what has been made
    PassForeignException();
    return 0;
  }
}

PLUGIN_API void XPluginReceiveMessage(XPLMPluginID from, int message, void* parameter) {
  try {
    ReceivePluginMessage(from, message, parameter);
  } catch (...) {
    PassForeignException();
  }
}

PLUGIN_API void XPluginDisable(void) {
  try {
    DisablePlugin();
  } catch (...) {
    PassForeignException();
  }
}

PLUGIN_API void XPluginStop(void) {
  try {
    StopPlugin();
  } catch (...) {
    PassForeignException();
  }
}
