// A plug-in beside the one under test: its dataref and its command throw while thrower/on is 1, as a careless
// plug-in's do.
#include <cstdio>
#include <stdexcept>

#include "XPLMUtilities.h"
#include "core/more_api.h"

namespace {

int on;
float value;
XPLMDataRef offered[2];
XPLMCommandRef command;

void Throw() {
  if (on != 0) throw std::runtime_error("thrown by thrower");
}
int GetOn(void*) { return on; }
void SetOn(void*, int wanted) { on = wanted; }
float GetValue(void*) { return Throw(), value; }
void SetValue(void*, float wanted) { Throw(), value = wanted; }
int Handle(XPLMCommandRef, XPLMCommandPhase, void*) { return Throw(), 1; }

}  // namespace

PLUGIN_API int XPluginStart(char* name, char* signature, char* description) {
  std::snprintf(name, 256, "Thrower");
  std::snprintf(signature, 256, "test.thrower");
  std::snprintf(description, 256, "throws from its accessors");
  const auto none = nullptr;
  offered[0] = XPLMRegisterDataAccessor("thrower/on", xplmType_Int, 1, GetOn, SetOn, none, none, none, none,
                                        none, none, none, none, none, none, none, none);
  offered[1] = XPLMRegisterDataAccessor("thrower/value", xplmType_Float, 1, none, none, GetValue, SetValue,
                                        none, none, none, none, none, none, none, none, none, none);
  command = XPLMCreateCommand("thrower/act", "throws");
  XPLMRegisterCommandHandler(command, Handle, 1, nullptr);
  return 1;
}
PLUGIN_API void XPluginStop() {
  for (XPLMDataRef ref : offered) XPLMUnregisterDataAccessor(ref);
  XPLMUnregisterCommandHandler(command, Handle, 1, nullptr);
}
PLUGIN_API int XPluginEnable() { return 1; }
PLUGIN_API void XPluginDisable() {}
PLUGIN_API void XPluginReceiveMessage(XPLMPluginID, int, void*) {}
