#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "base/locks.h"
#include "bridge/catalogue.h"
#include "bridge/sources.h"
#include "traffic/targets.h"
#include "traffic/traffic.h"
#include "traffic/traffic_state.h"
#include "traffic/whole.h"

PlaneSource planeSources[maxSlots];
Place userPlace;

namespace {

constexpr Source userLatitude = Double<"sim/flightmodel/position/latitude">,
                 userLongitude = Double<"sim/flightmodel/position/longitude">;

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
  SetMotion(&plane, {.heading = ReadSource(from.heading),
                     .east = ReadSource(from.east),
                     .south = ReadSource(from.south),
                     .climb = ReadSource(from.climb),
                     .pitch = ReadSource(from.pitch),
                     .bank = ReadSource(from.bank)});
  return plane;
}

uint32_t ReadPlanes(PlaneSource (&planes)[targetPlanes]) {
  const uint32_t others = std::clamp(aircraftCount.load(), 1U, maxModels) - 1;
  const uint32_t positioned = std::min(others, positionedPlanes);
  for (uint32_t slot = 0; slot < positioned; ++slot) planes[slot] = ReadPlane(slot);
  return positioned;
}

}  // namespace

bool FillTrafficPositions() {
  PlaneSource planes[targetPlanes];
  const bool targets = TargetsExist();
  const uint32_t positioned = targets ? ReadTargets(planes) : ReadPlanes(planes);
  const Place user = {Single(ReadSource(userLatitude)), Single(ReadSource(userLongitude)), false};

  if (!TryEnterLock(&trafficLock)) return false;
  std::copy_n(planes, positioned, planeSources);
  // The slot of an aircraft that has gone shows its last place until it is removed, but is nowhere near.
  for (uint32_t slot = positioned; slot < targetPlanes; ++slot) planeSources[slot].known = false;
  userPlace = user;
  LeaveLock(&trafficLock);
  // Their number changes without a message of the simulator's.
  if (targets && aircraftCount.exchange(positioned + 1) != positioned + 1) countChanged = 1;
  return true;
}
