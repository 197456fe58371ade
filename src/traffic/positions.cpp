#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <utility>

#include "base/locks.h"
#include "bridge/catalogue.h"
#include "bridge/sources.h"
#include "traffic/traffic.h"
#include "traffic/traffic_state.h"

PlaneSource planeSources[maxSlots];
Place userPlace;

namespace {

constexpr double knotsPerMetre = 1.94384;
constexpr Source userLatitude = Double<"sim/flightmodel/position/latitude">,
                 userLongitude = Double<"sim/flightmodel/position/longitude">;

// Saturated at the type's limits; what is no number is 0.
template <typename T>
T Whole(double value) {
  if (!std::isfinite(value)) return 0;
  return static_cast<T>(std::clamp(value, static_cast<double>(std::numeric_limits<T>::min()),
                                   static_cast<double>(std::numeric_limits<T>::max())));
}

float Single(double value) { return std::isfinite(value) ? static_cast<float>(value) : 0; }

// "sim/multiplayer/position/plane7_lat" for the name of a dataref of the 7th other aircraft.
template <size_t size>
consteval NameText<48> PlaneName(int plane, const char (&field)[size]) {
  constexpr char stem[] = "sim/multiplayer/position/plane";
  NameText<48> name;
  char* end = std::copy_n(stem, sizeof stem - 1, name.text);
  if (plane >= 10) *end++ = static_cast<char>('0' + plane / 10);
  *end++ = static_cast<char>('0' + plane % 10);
  *end++ = '_';
  std::copy_n(field, size, end);
  return name;
}

// Where the simulator tells of one other aircraft: degrees, metres, metres a second.
struct PlaneDataRefs {
  Source latitude, longitude, altitude, heading, east, south, climb, pitch, bank;
};
template <int plane>
constexpr PlaneDataRefs dataRefsOf = {.latitude = Double<PlaneName(plane, "lat")>,
                                      .longitude = Double<PlaneName(plane, "lon")>,
                                      .altitude = Double<PlaneName(plane, "el")>,
                                      .heading = Float<PlaneName(plane, "psi")>,
                                      .east = Float<PlaneName(plane, "v_x")>,
                                      .south = Float<PlaneName(plane, "v_z")>,
                                      .climb = Float<PlaneName(plane, "v_y")>,
                                      .pitch = Float<PlaneName(plane, "the")>,
                                      .bank = Float<PlaneName(plane, "phi")>};
constexpr auto planeDataRefs = []<int... slot>(std::integer_sequence<int, slot...>) {
  return std::array<PlaneDataRefs, sizeof...(slot)>{dataRefsOf<slot + 1>...};
}
(std::make_integer_sequence<int, positionedPlanes>{});

PlaneSource ReadPlane(uint32_t slot) {
  const PlaneDataRefs& from = planeDataRefs[slot];
  PlaneSource plane = {};
  if (HandleOf(from.latitude) == nullptr || HandleOf(from.longitude) == nullptr) return plane;
  plane.known = true;
  plane.latitude = Single(ReadSource(from.latitude));
  plane.longitude = Single(ReadSource(from.longitude));
  plane.altitude = Single(ReadSource(from.altitude));
  const double heading = std::fmod(ReadSource(from.heading), 360);
  plane.heading = static_cast<uint16_t>(Whole<uint16_t>(heading < 0 ? heading + 360 : heading) % 360);
  const double east = ReadSource(from.east);
  const double south = ReadSource(from.south);
  plane.groundSpeed = Whole<uint16_t>(std::sqrt(east * east + south * south) * knotsPerMetre);
  plane.verticalSpeed = Whole<int16_t>(ReadSource(from.climb));
  plane.pitch = Whole<int16_t>(ReadSource(from.pitch));
  plane.bank = Whole<int16_t>(ReadSource(from.bank));
  plane.place = {plane.latitude, plane.longitude, false};
  return plane;
}

}  // namespace

bool FillTrafficPositions() {
  const uint32_t others = std::clamp(aircraftCount.load(), 1U, maxModels) - 1;
  const uint32_t positioned = std::min(others, positionedPlanes);
  PlaneSource planes[positionedPlanes];
  for (uint32_t slot = 0; slot < positioned; ++slot) planes[slot] = ReadPlane(slot);
  const Place user = {Single(ReadSource(userLatitude)), Single(ReadSource(userLongitude)), false};

  if (!TryEnterLock(&trafficLock)) return false;
  std::copy_n(planes, positioned, planeSources);
  // The slot of an aircraft that has gone shows its last place until it is removed, but is nowhere near.
  for (uint32_t slot = positioned; slot < positionedPlanes; ++slot) planeSources[slot].known = false;
  userPlace = user;
  LeaveLock(&trafficLock);
  return true;
}
