// Scenery: objects that plug-ins load and draw, and the scenery's own loading. An object is there when its file
// is; what stands in the file is not looked at. The library of objects is empty.
#include <algorithm>
#include <filesystem>
#include <utility>

#include "XPLMPlanes.h"
#include "XPLMPlugin.h"
#include "XPLMScenery.h"
#include "XPLMUtilities.h"
#include "core/core.h"

namespace sim {
namespace {

struct Object {
  int owner;
  std::string path;
  int loads;
};
std::vector<std::unique_ptr<Object>> objects;

struct Load {
  int owner;
  std::string path;
  XPLMObjectLoaded_f fn;
  void* ref;
};
std::vector<Load> loads;  // asked for and not told yet
bool sceneryWanted = false;

Object* LoadObject(int owner, const std::string& path) {
  std::error_code failure;
  if (!std::filesystem::is_regular_file(std::filesystem::path(SystemFolder()) / path, failure)) return nullptr;
  for (auto& object : objects) {
    if (object->owner == owner && object->path == path) return ++object->loads, object.get();
  }
  objects.push_back(std::make_unique<Object>(Object{owner, path, 1}));
  return objects.back().get();
}

// The record of a handle. One that is none crashes the real simulator.
Object* Known(const char* function, XPLMObjectRef handle) {
  for (auto& object : objects) {
    if (object.get() == handle) return object.get();
  }
  Breach(function, "no such object");
  return nullptr;
}

}  // namespace

void FinishLoads() {
  std::vector<Load> now;
  now.swap(loads);
  for (Load& load : now) {
    if (!MayCall(load.owner)) {
      loads.push_back(std::move(load));  // while it is disabled it is not told
      continue;
    }
    Object* object = LoadObject(load.owner, load.path);
    NothingThrown(load.owner, "an object's callback", [&] { load.fn(object, load.ref); });
  }
  if (!std::exchange(sceneryWanted, false)) return;
  SendPluginMessage(XPLM_PLUGIN_XPLANE, XPLM_NO_PLUGIN_ID, XPLM_MSG_SCENERY_LOADED, 0);
}

void DropObjects(int owner) {
  std::erase_if(objects, [&](auto& object) { return object->owner == owner; });
  std::erase_if(loads, [&](auto& load) { return load.owner == owner; });
}

void ResetObjects() {
  objects.clear();
  loads.clear();
  sceneryWanted = false;
}

}  // namespace sim

XPLMObjectRef XPLMLoadObject(const char* path) {
  sim::Check("XPLMLoadObject");
  return path ? sim::LoadObject(sim::CallingPlugin(), path) : nullptr;
}

void XPLMLoadObjectAsync(const char* path, XPLMObjectLoaded_f fn, void* ref) {
  sim::Check("XPLMLoadObjectAsync");
  if (path && fn) sim::loads.push_back({sim::CallingPlugin(), path, fn, ref});
}

void XPLMDrawObjects(XPLMObjectRef object, int, XPLMDrawInfo_t*, int, int) {
  sim::CheckDrawing("XPLMDrawObjects");
  sim::Known("XPLMDrawObjects", object);
}

void XPLMUnloadObject(XPLMObjectRef handle) {
  sim::Check("XPLMUnloadObject");
  sim::Object* object = sim::Known("XPLMUnloadObject", handle);
  if (!object || --object->loads > 0) return;
  std::erase_if(sim::objects, [&](auto& other) { return other.get() == object; });
}

int XPLMLookupObjects(const char*, float, float, XPLMLibraryEnumerator_f, void*) {
  sim::Check("XPLMLookupObjects");
  return 0;
}

void XPLMReloadScenery(void) {
  sim::Check("XPLMReloadScenery");
  sim::sceneryWanted = true;
}

void XPLMDrawAircraft(int, float, float, float, float, float, float, int, XPLMPlaneDrawState_t*) {
  sim::CheckDrawing("XPLMDrawAircraft");
}
