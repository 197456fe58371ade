// The flight plan of the FMS: a hundred entries that plug-ins fill. Nothing is flown by it.
#include <algorithm>
#include <array>
#include <cstdio>

#include "XPLMNavigation.h"
#include "core/core.h"

namespace sim {
namespace {

struct Entry {
  XPLMNavType type = xplm_Nav_Unknown;  // an empty entry
  XPLMNavRef ref = XPLM_NAV_NOT_FOUND;
  std::string id;
  int altitude = 0;
  float lat = 0, lon = 0;
};
std::array<Entry, 100> entries;
int displayed = 0, destination = 0;

Entry* At(int index) {
  return index >= 0 && static_cast<size_t>(index) < entries.size() ? &entries[static_cast<size_t>(index)]
                                                                   : nullptr;
}

// Up to the last one that is not empty.
int Count() {
  const auto last = std::find_if(entries.rbegin(), entries.rend(),
                                 [](const Entry& entry) { return entry.type != xplm_Nav_Unknown; });
  return static_cast<int>(entries.rend() - last);
}

const Entry& Destination() { return *At(destination); }

}  // namespace

void ResetFlightPlan() {
  entries = {};
  displayed = destination = 0;
}

}  // namespace sim

int XPLMCountFMSEntries(void) {
  sim::Check("XPLMCountFMSEntries");
  return sim::Count();
}

int XPLMGetDisplayedFMSEntry(void) {
  sim::Check("XPLMGetDisplayedFMSEntry");
  return sim::displayed;
}

int XPLMGetDestinationFMSEntry(void) {
  sim::Check("XPLMGetDestinationFMSEntry");
  return sim::destination;
}

void XPLMSetDisplayedFMSEntry(int index) {
  sim::Check("XPLMSetDisplayedFMSEntry");
  if (sim::At(index)) sim::displayed = index;
}

void XPLMSetDestinationFMSEntry(int index) {
  sim::Check("XPLMSetDestinationFMSEntry");
  if (sim::At(index)) sim::destination = index;
}

void XPLMGetFMSEntryInfo(int index, XPLMNavType* type, char* id, XPLMNavRef* ref, int* altitude, float* lat,
                         float* lon) {
  sim::Check("XPLMGetFMSEntryInfo");
  const sim::Entry* entry = sim::At(index);
  const sim::Entry none;
  if (!entry) entry = &none;
  if (type) *type = entry->type;
  sim::CopyText(entry->id, id, 256);
  if (ref) *ref = entry->ref;
  if (altitude) *altitude = entry->altitude;
  if (lat) *lat = entry->lat;
  if (lon) *lon = entry->lon;
}

void XPLMSetFMSEntryInfo(int index, XPLMNavRef ref, int altitude) {
  sim::Check("XPLMSetFMSEntryInfo");
  sim::Entry* entry = sim::At(index);
  const std::vector<sim::NavAid>& aids = sim::NavAids();
  if (!entry || ref < 0 || static_cast<size_t>(ref) >= aids.size()) return;
  const sim::NavAid& aid = aids[static_cast<size_t>(ref)];
  *entry = {aid.type, ref, aid.id, altitude, aid.lat, aid.lon};
}

void XPLMSetFMSEntryLatLon(int index, float lat, float lon, int altitude) {
  sim::Check("XPLMSetFMSEntryLatLon");
  sim::Entry* entry = sim::At(index);
  if (!entry) return;
  char id[64];
  std::snprintf(id, sizeof id, "%+.3f_%+.3f", static_cast<double>(lat), static_cast<double>(lon));
  *entry = {xplm_Nav_LatLon, XPLM_NAV_NOT_FOUND, id, altitude, lat, lon};
}

// The plan ends with the last entry that is left.
void XPLMClearFMSEntry(int index) {
  sim::Check("XPLMClearFMSEntry");
  if (sim::Entry* entry = sim::At(index)) *entry = {};
}

XPLMNavType XPLMGetGPSDestinationType(void) {
  sim::Check("XPLMGetGPSDestinationType");
  return sim::Destination().type;
}

XPLMNavRef XPLMGetGPSDestination(void) {
  sim::Check("XPLMGetGPSDestination");
  return sim::Destination().ref;
}
