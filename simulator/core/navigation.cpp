// Navigation database, coordinates and the terrain probe, as plug-ins see them.
//
// A reference is a record's place in the database, which only grows, so it stays good; the order in which
// plug-ins walk through it is kept apart, like types together.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "XPLMGraphics.h"
#include "XPLMNavigation.h"
#include "XPLMScenery.h"
#include "core/core.h"

namespace sim {
namespace {

std::vector<NavAid> aids;
std::vector<int> walk;   // references in walking order
std::vector<int> place;  // place[reference] in `walk`

struct Probe {
  int owner;
};
std::vector<std::unique_ptr<Probe>> probes;

const std::vector<int>& Walk() {
  bool changed = walk.size() != aids.size();
  if (!changed) return walk;
  walk.resize(aids.size());
  for (size_t i = 0; i < walk.size(); ++i) walk[i] = static_cast<int>(i);
  auto type = [](int ref) { return aids[static_cast<size_t>(ref)].type; };
  std::stable_sort(walk.begin(), walk.end(), [&](int a, int b) { return type(a) < type(b); });
  place.resize(walk.size());
  for (size_t i = 0; i < walk.size(); ++i) place[static_cast<size_t>(walk[i])] = static_cast<int>(i);
  return walk;
}

const NavAid* Aid(XPLMNavRef ref) {
  return ref >= 0 && static_cast<size_t>(ref) < aids.size() ? &aids[static_cast<size_t>(ref)] : nullptr;
}

// Grows with the angle between two places; cheaper than the angle and as good for comparing.
double Apart(const NavAid& aid, float lat, float lon) {
  constexpr double kRadians = 3.14159265358979323846 / 180;
  double a = static_cast<double>(aid.lat) * kRadians, b = static_cast<double>(lat) * kRadians;
  double across = std::sin((static_cast<double>(aid.lon) - static_cast<double>(lon)) * kRadians / 2);
  double along = std::sin((a - b) / 2);
  return along * along + std::cos(a) * std::cos(b) * across * across;
}

bool Matches(const NavAid& aid, const char* namePart, const char* idPart, const int* freq, XPLMNavType types) {
  if (!(aid.type & types)) return false;
  if (namePart && aid.name.find(namePart) == std::string::npos) return false;
  if (idPart && aid.id.find(idPart) == std::string::npos) return false;
  bool tuned = aid.type != xplm_Nav_Airport && aid.type != xplm_Nav_Fix;
  return !freq || !tuned || aid.freq == *freq;
}

// The scenery that is loaded reaches about 150 km to each side of the reference point.
bool InScenery(const NavAid& aid) {
  double x = 0, y = 0, z = 0;
  WorldToLocal(static_cast<double>(aid.lat), static_cast<double>(aid.lon), static_cast<double>(aid.height), &x,
               &y, &z);
  return std::abs(x) < 150000 && std::abs(z) < 150000;
}

}  // namespace

std::vector<NavAid>& NavAids() { return aids; }

void ResetNavigation() {
  aids = {};
  walk = {};
  place = {};
  probes.clear();
}

void AddNavAid(const NavAid& aid) {
  aids.push_back(aid);
  WorldNavAidsChanged();
}

void ClearNavAids() {
  aids.clear();
  walk.clear();
  place.clear();
  WorldNavAidsChanged();
}

int DropProbes(int owner, std::string*) {
  return static_cast<int>(std::erase_if(probes, [&](auto& probe) { return probe->owner == owner; }));
}

}  // namespace sim

XPLMNavRef XPLMGetFirstNavAid(void) {
  sim::Check("XPLMGetFirstNavAid");
  if (sim::Fails("XPLMGetFirstNavAid")) return XPLM_NAV_NOT_FOUND;
  return sim::Walk().empty() ? XPLM_NAV_NOT_FOUND : sim::Walk().front();
}

XPLMNavRef XPLMGetNextNavAid(XPLMNavRef ref) {
  sim::Check("XPLMGetNextNavAid");
  const std::vector<int>& walk = sim::Walk();
  if (!sim::Aid(ref)) return XPLM_NAV_NOT_FOUND;
  size_t next = static_cast<size_t>(sim::place[static_cast<size_t>(ref)]) + 1;
  return next < walk.size() ? walk[next] : XPLM_NAV_NOT_FOUND;
}

XPLMNavRef XPLMFindFirstNavAidOfType(XPLMNavType type) {
  sim::Check("XPLMFindFirstNavAidOfType");
  for (int ref : sim::Walk()) {
    if (sim::Aid(ref)->type == type) return ref;
  }
  return XPLM_NAV_NOT_FOUND;
}

XPLMNavRef XPLMFindLastNavAidOfType(XPLMNavType type) {
  sim::Check("XPLMFindLastNavAidOfType");
  XPLMNavRef last = XPLM_NAV_NOT_FOUND;
  for (int ref : sim::Walk()) {
    if (sim::Aid(ref)->type == type) last = ref;
  }
  return last;
}

XPLMNavRef XPLMFindNavAid(const char* namePart, const char* idPart, float* lat, float* lon, int* freq,
                          XPLMNavType types) {
  sim::Check("XPLMFindNavAid");
  if (sim::Fails("XPLMFindNavAid")) return XPLM_NAV_NOT_FOUND;
  XPLMNavRef best = XPLM_NAV_NOT_FOUND;
  double bestApart = 0;
  for (int ref : sim::Walk()) {
    const sim::NavAid& aid = *sim::Aid(ref);
    if (!sim::Matches(aid, namePart, idPart, freq, types)) continue;
    double apart = lat && lon ? sim::Apart(aid, *lat, *lon) : 0;
    if (best != XPLM_NAV_NOT_FOUND && lat && lon && apart >= bestApart) continue;
    best = ref;
    bestApart = apart;
  }
  return best;
}

void XPLMGetNavAidInfo(XPLMNavRef ref, XPLMNavType* type, float* lat, float* lon, float* height, int* freq,
                       float* heading, char* id, char* name, char* reg) {
  sim::Check("XPLMGetNavAidInfo");
  const sim::NavAid* aid = sim::Aid(ref);
  if (!aid) return;
  if (type) *type = aid->type;
  if (lat) *lat = aid->lat;
  if (lon) *lon = aid->lon;
  if (height) *height = aid->height;
  if (freq) *freq = aid->freq;
  if (heading) *heading = aid->heading;
  sim::CopyText(aid->id, id, 32);
  sim::CopyText(aid->name, name, 256);
  if (reg) *reg = sim::InScenery(*aid);
}

void XPLMWorldToLocal(double lat, double lon, double alt, double* x, double* y, double* z) {
  sim::Check("XPLMWorldToLocal");
  sim::WorldToLocal(lat, lon, alt, x, y, z);
}

void XPLMLocalToWorld(double x, double y, double z, double* lat, double* lon, double* alt) {
  sim::Check("XPLMLocalToWorld");
  sim::LocalToWorld(x, y, z, lat, lon, alt);
}

XPLMProbeRef XPLMCreateProbe(XPLMProbeType type) {
  sim::Check("XPLMCreateProbe");
  if (sim::Fails("XPLMCreateProbe")) return nullptr;
  if (type != xplm_ProbeY) return nullptr;
  sim::probes.push_back(std::make_unique<sim::Probe>(sim::Probe{sim::CallingPlugin()}));
  return sim::probes.back().get();
}

void XPLMDestroyProbe(XPLMProbeRef handle) {
  sim::Check("XPLMDestroyProbe");
  std::erase_if(sim::probes, [&](auto& probe) { return probe.get() == handle; });
}

XPLMProbeResult XPLMProbeTerrainXYZ(XPLMProbeRef handle, float x, float, float z, XPLMProbeInfo_t* info) {
  sim::Check("XPLMProbeTerrainXYZ");
  if (sim::Fails("XPLMProbeTerrainXYZ")) return xplm_ProbeError;
  bool known =
      std::any_of(sim::probes.begin(), sim::probes.end(), [&](auto& probe) { return probe.get() == handle; });
  if (!known || !info || info->structSize != static_cast<int>(sizeof *info)) return xplm_ProbeError;
  double ground = sim::WorldGround(static_cast<double>(x), static_cast<double>(z));
  // The earth falls away below the local plane: the height above sea level belongs to the point's own place.
  double lat = 0, lon = 0, alt = 0, atX = 0, atY = 0, atZ = 0;
  sim::LocalToWorld(static_cast<double>(x), 0, static_cast<double>(z), &lat, &lon, &alt);
  sim::WorldToLocal(lat, lon, ground, &atX, &atY, &atZ);
  *info = {};
  info->structSize = sizeof *info;
  info->locationX = x;
  info->locationY = static_cast<float>(atY);
  info->locationZ = z;
  info->normalY = 1;
  return xplm_ProbeHitTerrain;
}
