// A second host beside the stand-in, as small as it can be: the plug-in must not depend on how one host works.
// This one answers 0 for an unknown plug-in, runs every loop in every frame, and its datarefs and commands
// throw when they are told to. Nothing is checked here; a function that the plug-in needs and that is missing
// below keeps the plug-in from being loaded.
//
//   tiny_host PLUGIN FOLDER   reads lines: define NAME VALUE, throw NAME on|set|off (set: at writes alone), get
//   NAME,
//                             frames N, memory on|off (off: a loop gets none), start, enable, disable, message
//                             (aircraft loaded), quit; answers each with one line
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "XPLMDataAccess.h"
#include "XPLMGraphics.h"
#include "XPLMMenus.h"
#include "XPLMNavigation.h"
#include "XPLMPlanes.h"
#include "XPLMPlugin.h"
#include "XPLMProcessing.h"
#include "XPLMScenery.h"
#include "XPLMUtilities.h"
#include "XPWidgets.h"

namespace {

struct Foreign : std::runtime_error {
  using runtime_error::runtime_error;
};

// A dataref of one float, or a command whose value counts what was done to it.
struct Thing {
  std::string name;
  float value = 0;
  std::string throws = "off";
};
std::map<std::string, Thing, std::less<>> things;  // found without a copy of the name: see `refusing`
struct Loop {
  XPLMFlightLoop_f call;
  void* reference;
  bool active;
};
std::vector<Loop> loops;
std::string folder;
bool noMemory;
thread_local bool refusing;  // malloc has nothing: nothing here may need it meanwhile

float* Use(void* handle, const char* how) {
  static float nothing;
  if (handle == nullptr) return &(nothing = 0);
  auto* thing = static_cast<Thing*>(handle);
  if (thing->throws == "on" || thing->throws == how) throw Foreign(thing->name);
  return &thing->value;
}

void* Find(const char* name) {
  const auto found = things.find(name);
  return found == things.end() ? nullptr : &found->second;
}

template <typename F>
F* Entry(void* module, const char* name) {
  void* found = dlsym(module, name);
  if (found == nullptr) std::exit((std::fprintf(stderr, "tiny_host: %s is not exported\n", name), 1));
  return reinterpret_cast<F*>(found);
}

std::string Frames(int count) {
  int caught = 0;
  for (int frame = 1; frame <= count; ++frame) {
    for (size_t i = 0; i < loops.size(); ++i) {
      if (!loops[i].active) continue;
      try {
        refusing = noMemory;
        const float next = loops[i].call(1.0F / 60, 1.0F / 60, frame, loops[i].reference);
        refusing = false;
        loops[i].active = next != 0;
      } catch (const Foreign&) {
        refusing = false;
        ++caught;
      }
    }
  }
  return "caught " + std::to_string(caught);
}

}  // namespace

extern "C" void* __libc_malloc(size_t size);
extern "C" void* malloc(size_t size) noexcept { return refusing ? nullptr : __libc_malloc(size); }

void XPLMRegisterFlightLoopCallback(XPLMFlightLoop_f fn, float, void* ref) { loops.push_back({fn, ref, true}); }
void XPLMUnregisterFlightLoopCallback(XPLMFlightLoop_f fn, void* ref) {
  std::erase_if(loops, [&](const Loop& loop) { return loop.call == fn && loop.reference == ref; });
}
XPLMDataRef XPLMFindDataRef(const char* name) { return Find(name); }
XPLMDataTypeID XPLMGetDataRefTypes(XPLMDataRef) { return xplmType_Float; }
float XPLMGetDataf(XPLMDataRef ref) { return *Use(ref, "get"); }
void XPLMSetDataf(XPLMDataRef ref, float value) { *Use(ref, "set") = value; }
int XPLMGetDatai(XPLMDataRef) { return 0; }
void XPLMSetDatai(XPLMDataRef, int) {}
double XPLMGetDatad(XPLMDataRef) { return 0; }
void XPLMSetDatad(XPLMDataRef, double) {}
int XPLMGetDatavi(XPLMDataRef, int*, int, int) { return 0; }
void XPLMSetDatavi(XPLMDataRef, int*, int, int) {}
int XPLMGetDatavf(XPLMDataRef, float*, int, int) { return 0; }
void XPLMSetDatavf(XPLMDataRef, float*, int, int) {}
int XPLMGetDatab(XPLMDataRef, void*, int, int) { return 0; }
void XPLMSetDatab(XPLMDataRef, void*, int, int) {}
XPLMCommandRef XPLMFindCommand(const char* name) { return Find(name); }
void XPLMCommandOnce(XPLMCommandRef command) { *Use(command, "once") += 1; }
void XPLMCommandBegin(XPLMCommandRef command) { *Use(command, "begin") += 1; }
void XPLMCommandEnd(XPLMCommandRef command) { *Use(command, "end") -= 1; }
void XPLMCommandKeyStroke(XPLMCommandKeyID) {}
void XPLMCommandButtonPress(XPLMCommandButtonID) {}
void XPLMCommandButtonRelease(XPLMCommandButtonID) {}
void XPLMGetSystemPath(char* out) { std::snprintf(out, 512, "%s/", folder.c_str()); }
void XPLMGetVersions(int* host, int* xplm, XPLMHostApplicationID* id) { *host = 1042, *xplm = 210, *id = 1; }
void XPLMDebugString(const char* text) { std::fputs(text, stderr); }
void XPLMSpeakString(const char*) {}
int XPLMLoadDataFile(XPLMDataFileType, const char*) { return 0; }
int XPLMSaveDataFile(XPLMDataFileType, const char*) { return 0; }
void XPLMGetScreenSize(int* width, int* height) { *width = 1024, *height = 768; }
void XPLMWorldToLocal(double, double, double, double* x, double* y, double* z) { *x = *y = *z = 0; }
void XPLMCountAircraft(int* total, int* active, XPLMPluginID* id) { *total = 20, *active = 1, *id = -1; }
void XPLMGetNthAircraftModel(int, char* file, char* path) { *file = *path = 0; }
XPLMPluginID XPLMFindPluginBySignature(const char*) { return 0; }
void XPLMSendMessageToPlugin(XPLMPluginID, int, void*) {}
XPLMNavRef XPLMFindNavAid(const char*, const char*, float*, float*, int*, XPLMNavType) { return -1; }
void XPLMGetNavAidInfo(XPLMNavRef, XPLMNavType*, float*, float*, float*, int*, float*, char*, char*, char*) {}
XPLMProbeRef XPLMCreateProbe(XPLMProbeType) { return nullptr; }
void XPLMDestroyProbe(XPLMProbeRef) {}
XPLMMenuID XPLMFindPluginsMenu() { return &loops; }
XPLMMenuID XPLMCreateMenu(const char*, XPLMMenuID, int, XPLMMenuHandler_f, void*) { return &loops; }
void XPLMDestroyMenu(XPLMMenuID) {}
int XPLMAppendMenuItem(XPLMMenuID, const char*, void*, int) { return 0; }
void XPLMAppendMenuSeparator(XPLMMenuID) {}
XPWidgetID XPCreateWidget(int, int, int, int, int, const char*, int, XPWidgetID, XPWidgetClass) {
  return nullptr;
}
void XPDestroyWidget(XPWidgetID, int) {}
void XPAddWidgetCallback(XPWidgetID, XPWidgetFunc_t) {}
void XPBringRootWidgetToFront(XPWidgetID) {}
void XPGetWidgetGeometry(XPWidgetID, int*, int*, int*, int*) {}
void XPShowWidget(XPWidgetID) {}
void XPHideWidget(XPWidgetID) {}
int XPIsWidgetVisible(XPWidgetID) { return 0; }
int XPSendMessageToWidget(XPWidgetID, XPWidgetMessage, XPDispatchMode, intptr_t, intptr_t) { return 0; }
void XPSetWidgetDescriptor(XPWidgetID, const char*) {}
void XPSetWidgetProperty(XPWidgetID, XPWidgetPropertyID, intptr_t) {}
void XPSetWidgetGeometry(XPWidgetID, int, int, int, int) {}
int XPGetWidgetDescriptor(XPWidgetID, char*, int) { return 0; }
XPWidgetID XPFindRootWidget(XPWidgetID) { return nullptr; }
XPWidgetID XPSetKeyboardFocus(XPWidgetID) { return nullptr; }
XPWidgetID XPGetWidgetWithFocus() { return nullptr; }
void XPLoseKeyboardFocus(XPWidgetID) {}
float XPLMMeasureString(XPLMFontID, const char*, int) { return 0; }
void XPLMGetFontDimensions(XPLMFontID, int*, int*, int*) {}

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  folder = argv[2];
  void* module = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) return std::fprintf(stderr, "tiny_host: %s\n", dlerror()), 1;
  auto* const enable = Entry<int()>(module, "XPluginEnable");
  auto* const disable = Entry<void()>(module, "XPluginDisable");
  char name[256], signature[256], description[256];
  for (std::string line; std::getline(std::cin, line);) {
    std::istringstream words(line);
    std::string what, which, value, answer = "ok";
    words >> what >> which >> value;
    try {
      if (what == "define") things[which].value = std::stof(value), things[which].name = which;
      if (what == "throw") things.at(which).throws = value;
      if (what == "get") answer = std::to_string(static_cast<int>(things.at(which).value));
      if (what == "memory") noMemory = which == "off";
      if (what == "frames") answer = Frames(std::stoi(which));
      if (what == "start")
        answer = std::to_string(
            Entry<int(char*, char*, char*)>(module, "XPluginStart")(name, signature, description));
      if (what == "enable") answer = std::to_string(enable());
      if (what == "disable") disable();
      if (what == "message") Entry<void(int, int, void*)>(module, "XPluginReceiveMessage")(0, 102, nullptr);
    } catch (const Foreign& foreign) {
      answer = std::string("threw ") + foreign.what();
    }
    std::printf("%s\n", answer.c_str());
    std::fflush(stdout);
    if (what == "quit") break;
  }
  disable();
  Entry<void()>(module, "XPluginStop")();
  dlclose(module);
  const bool stays = dlopen(argv[1], RTLD_NOW | RTLD_NOLOAD) != nullptr;
  std::printf("%s, loops left: %zu\n", stays ? "stays in memory" : "unloaded", loops.size());
}
