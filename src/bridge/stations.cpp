#include "bridge/stations.h"

#include <cmath>
#include <cstring>

#include "XPLMNavigation.h"
#include "bridge/sources.h"

NavRadio navRadios[2];
AdfRadio adfRadios[2];

namespace {

// What the last search of a NAV radio was made for.
struct SearchKey {
  bool searched;
  int frequency, type;
  char ident[32];
  double latitude, longitude;
};
SearchKey lastSearch[2];

constexpr double searchAgainDegrees = 0.5;
constexpr Source ownLatitude = Double<"sim/flightmodel/position/latitude">;
constexpr Source ownLongitude = Double<"sim/flightmodel/position/longitude">;
constexpr Source navFrequency[2] = {Int<"sim/cockpit/radios/nav1_freq_hz">,
                                    Int<"sim/cockpit/radios/nav2_freq_hz">};
constexpr Source adfFrequency[2] = {Int<"sim/cockpit/radios/adf1_freq_hz">,
                                    Int<"sim/cockpit/radios/adf2_freq_hz">};
constexpr Source navIdent[2] = {Bytes<"sim/cockpit2/radios/indicators/nav1_nav_id">,
                                Bytes<"sim/cockpit2/radios/indicators/nav2_nav_id">};

XPLMNavType DatabaseType(int type) {
  switch (type) {
    case stationIls:
      return xplm_Nav_ILS;
    case stationLocalizer:
      return xplm_Nav_Localizer;
    case stationIlsDme:
    case stationDme:
      return xplm_Nav_DME;
    default:
      return xplm_Nav_VOR;
  }
}

// The transmitter nearest to the aircraft with this identifier, frequency and kind.
Transmitter FindTransmitter(const NavRadio& radio, double ownLat, double ownLon, XPLMNavType kind) {
  Transmitter result = {};
  float lat = static_cast<float>(ownLat);
  float lon = static_cast<float>(ownLon);
  int frequency = radio.frequency;
  const char* const ident = radio.ident[0] != 0 ? radio.ident : nullptr;
  const XPLMNavRef reference = XPLMFindNavAid(nullptr, ident, &lat, &lon, &frequency, kind);
  if (reference == XPLM_NAV_NOT_FOUND) return result;
  float height = 0;
  float heading = 0;
  char name[sizeof result.name] = {};
  XPLMGetNavAidInfo(reference, nullptr, &lat, &lon, &height, nullptr, &heading, result.ident, name, nullptr);
  name[sizeof name - 1] = 0;
  result.ident[sizeof result.ident - 1] = 0;
  result.found = true;
  result.latitude = static_cast<double>(lat);
  result.longitude = static_cast<double>(lon);
  result.height = static_cast<double>(height);
  result.heading = static_cast<double>(heading);
  std::strcpy(result.name, name);
  return result;
}

bool HasMoved(const SearchKey& key, double lat, double lon) {
  // Shortest way around: 179.9 west is 0.2 degrees from 179.9 east.
  const double eastward = std::remainder(lon - key.longitude, 360.0);
  return std::fabs(lat - key.latitude) > searchAgainDegrees || std::fabs(eastward) > searchAgainDegrees;
}

void FindStation(NavRadio* radio, bool identKnown, SearchKey* key) {
  if ((identKnown && radio->ident[0] == 0) || radio->type == stationNone) {
    radio->station = {};
    radio->glideSlope = {};
    *key = {};
    return;
  }
  const double lat = ReadSource(ownLatitude);
  const double lon = ReadSource(ownLongitude);
  const bool sameRadio = key->searched && key->frequency == radio->frequency && key->type == radio->type &&
                         std::strcmp(key->ident, radio->ident) == 0;
  if (sameRadio && radio->station.found && !HasMoved(*key, lat, lon)) return;

  radio->station = FindTransmitter(*radio, lat, lon, DatabaseType(radio->type));
  radio->glideSlope = {};
  if (radio->type == stationIls) {
    radio->glideSlope = FindTransmitter(*radio, lat, lon, xplm_Nav_GlideSlope);
  }
  *key = {1, radio->frequency, radio->type, {}, lat, lon};
  std::memcpy(key->ident, radio->ident, sizeof key->ident);
}

}  // namespace

void TuneStations() {
  // Order of the elements: NAV1, NAV2, ADF1, ADF2.
  int types[4] = {};
  if (XPLMDataRef handle = HandleOf(IntElement<"sim/cockpit/radios/nav_type">(0)); handle != nullptr) {
    XPLMGetDatavi(handle, types, 0, 4);
  }
  for (int n = 0; n < 2; ++n) {
    NavRadio& radio = navRadios[n];
    radio.frequency = ReadInt(navFrequency[n]);
    radio.type = types[n];
    std::memset(radio.ident, 0, sizeof radio.ident);
    ReadText(navIdent[n], radio.ident, sizeof radio.ident);
    adfRadios[n] = {ReadInt(adfFrequency[n]), types[2 + n]};
    const bool identKnown = HandleOf(navIdent[n]) != nullptr;
    FindStation(&radio, identKnown, &lastSearch[n]);
    if (!identKnown) std::memcpy(radio.ident, radio.station.ident, sizeof radio.ident);
  }
}

void ForgetStations() {
  for (int n = 0; n < 2; ++n) {
    navRadios[n] = {};
    adfRadios[n] = {};
    lastSearch[n] = {};
  }
}
