// Which aircraft there are: the user's and the others, and who controls them.
#include <algorithm>
#include <map>

#include "core/core.h"
#include "core/more_api.h"

namespace sim {
namespace {

constexpr int kCapacity = 20;  // aircraft that exist at least, used or not
int total = kCapacity;         // that exist
int active = 1;
int controller = XPLM_NO_PLUGIN_ID;
std::map<int, std::string> models;  // set by the controlling plug-in: path by index

std::string StripFolder(const std::string& path) {
  size_t cut = path.find_last_of("/\\:");
  return cut == std::string::npos ? path : path.substr(cut + 1);
}

// Another model in place `index`; 0 is the user's.
void LoadModel(int index, const std::string& path) {
  if (index < active) TellPlugins(kPlaneUnloaded, index);
  models[index] = path;
  if (index < active) TellPlaneLoaded(index);
}

void Activate(int count) {
  active = count;
  WorldSetActivePlanes(count);
  TellPlugins(XPLM_MSG_AIRPLANE_COUNT_CHANGED, 0);
}

}  // namespace

void ResetPlanes(int count) {
  active = count;
  total = std::max(count, kCapacity);
  controller = XPLM_NO_PLUGIN_ID;
  models.clear();
}

void DropPlanes(int owner) {
  if (controller == owner) controller = XPLM_NO_PLUGIN_ID;
}

void SetActivePlanes(int count) {
  total = std::max(count, kCapacity);
  Activate(count);
}

bool ChangeAircraft(const std::string& name) {
  if (!WorldKnowsAircraft(name)) return false;
  TellPlugins(kPlaneUnloaded, XPLM_USER_AIRCRAFT);
  WorldSelectAircraft(name);
  FollowAircraftPlugin();
  TellPlaneLoaded(XPLM_USER_AIRCRAFT);
  return true;
}

}  // namespace sim

void XPLMCountAircraft(int* total, int* active, XPLMPluginID* controller) {
  sim::Check("XPLMCountAircraft");
  const bool fails = sim::Fails("XPLMCountAircraft");
  if (total) *total = fails ? 0 : sim::total;
  if (active) *active = fails ? 0 : sim::active;
  if (controller) *controller = sim::controller;
}

void XPLMGetNthAircraftModel(int index, char* fileName, char* path) {
  sim::Check("XPLMGetNthAircraftModel");
  std::string file, full;
  auto set = sim::models.find(index);
  if (set != sim::models.end()) {
    full = set->second;
    file = sim::StripFolder(full);
  } else if (!sim::WorldAircraftModel(index, &file, &full)) {
    file.clear();
    full.clear();
  }
  if (sim::Fails("XPLMGetNthAircraftModel")) file.clear(), full.clear();
  sim::CopyText(file, fileName, 256);
  if (path) sim::StorePath(full, path, 512);
}

void XPLMSetUsersAircraft(const char* path) {
  sim::Check("XPLMSetUsersAircraft");
  std::string name = sim::StripFolder(path ? path : "");
  sim::ChangeAircraft(name.substr(0, name.rfind('.')));
}

void XPLMPlaceUserAtAirport(const char*) {
  sim::Check("XPLMPlaceUserAtAirport");
  sim::TellPlugins(XPLM_MSG_AIRPORT_LOADED, 0);
  sim::TellPlugins(XPLM_MSG_SCENERY_LOADED, 0);
}

int XPLMAcquirePlanes(char** aircraft, XPLMPlanesAvailable_f, void*) {
  sim::Check("XPLMAcquirePlanes");
  if (sim::controller != XPLM_NO_PLUGIN_ID) return sim::controller == sim::CallingPlugin();
  sim::controller = sim::CallingPlugin();
  for (int i = 0; aircraft && aircraft[i] && *aircraft[i]; ++i) sim::LoadModel(i + 1, aircraft[i]);
  return 1;
}

void XPLMReleasePlanes(void) {
  sim::Check("XPLMReleasePlanes");
  sim::DropPlanes(sim::CallingPlugin());
}

void XPLMSetActiveAircraftCount(int count) {
  sim::Check("XPLMSetActiveAircraftCount");
  if (sim::controller == sim::CallingPlugin()) sim::Activate(std::clamp(count, 1, sim::total));
}

void XPLMSetAircraftModel(int index, const char* path) {
  sim::Check("XPLMSetAircraftModel");
  if (sim::controller == sim::CallingPlugin() && index > 0 && path) sim::LoadModel(index, path);
}

void XPLMDisableAIForPlane(int) { sim::Check("XPLMDisableAIForPlane"); }

void XPLMReinitUsersPlane(void) { sim::Check("XPLMReinitUsersPlane"); }
