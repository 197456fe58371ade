// The traffic arrays of newer ages: the aircraft around, each in one place of every array.
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>

#include "world/refs.h"
#include "world/world.h"

namespace sim {

namespace {

constexpr int arraysFrom = 1200;  // age
constexpr int textSize = 8;       // bytes of a place in an array of texts
constexpr int firstAddress = 0x3C6501;

struct TargetRefs {
  DataRef *count, *address, *flight, *type, *lat, *lon, *ele, *vx, *vy, *vz, *climb, *speed, *psi, *the, *phi,
      *wheels;
};
TargetRefs targets;
bool published = false;

struct ArrayRow {
  const char* name = "";
  Kind kind = Kind::FloatArray;
  int count = targetPlaces;
  bool writable = true;
  DataRef* TargetRefs::*slot = nullptr;
};
constexpr ArrayRow arrayRows[] = {
    {.name = "indicators/tcas_num_acf",
     .kind = Kind::Int,
     .count = 1,
     .writable = false,
     .slot = &TargetRefs::count},
    {.name = "targets/modeS_id", .kind = Kind::IntArray, .slot = &TargetRefs::address},
    {.name = "targets/flight_id",
     .kind = Kind::Bytes,
     .count = targetPlaces * textSize,
     .slot = &TargetRefs::flight},
    {.name = "targets/icao_type",
     .kind = Kind::Bytes,
     .count = targetPlaces * textSize,
     .slot = &TargetRefs::type},
    {.name = "targets/position/lat", .writable = false, .slot = &TargetRefs::lat},
    {.name = "targets/position/lon", .writable = false, .slot = &TargetRefs::lon},
    {.name = "targets/position/ele", .writable = false, .slot = &TargetRefs::ele},
    {.name = "targets/position/vx", .slot = &TargetRefs::vx},
    {.name = "targets/position/vy", .slot = &TargetRefs::vy},
    {.name = "targets/position/vz", .slot = &TargetRefs::vz},
    {.name = "targets/position/vertical_speed", .slot = &TargetRefs::climb},
    {.name = "targets/position/V_msc", .writable = false, .slot = &TargetRefs::speed},
    {.name = "targets/position/psi", .slot = &TargetRefs::psi},
    {.name = "targets/position/the", .slot = &TargetRefs::the},
    {.name = "targets/position/phi", .slot = &TargetRefs::phi},
    {.name = "targets/position/weight_on_wheels", .kind = Kind::IntArray, .slot = &TargetRefs::wheels},
};

// Text of place n, at most 7 characters.
void PutText(DataRef* ref, int n, const char* text) {
  const size_t from = static_cast<size_t>(n) * textSize;
  if (from + textSize > ref->bytes.size()) return;  // the console has redefined it
  char all[textSize] = "";
  std::snprintf(all, sizeof all, "%s", text);
  std::memcpy(ref->bytes.data() + from, all, sizeof all);
}

}  // namespace

void PublishTargets() {
  published = age >= arraysFrom;
  if (!published) return;
  for (const ArrayRow& row : arrayRows) {
    targets.*row.slot =
        Publish((std::string("sim/cockpit2/tcas/") + row.name).c_str(), row.kind, row.count, row.writable);
  }
}

void ShowTarget(int n, const char* icao, const Seen& seen) {
  if (!published || n < 0 || n >= targetPlaces) return;
  char flight[textSize];
  std::snprintf(flight, sizeof flight, "TVX%03d", n);
  PutText(targets.flight, n, flight);
  PutText(targets.type, n, icao);
  I(targets.address, n) = firstAddress + n;
  I(targets.wheels, n) = seen.ground ? 1 : 0;
  const std::pair<DataRef*, double> figures[] = {
      {targets.lat, seen.lat},
      {targets.lon, seen.lon},
      {targets.ele, seen.alt},
      {targets.vx, seen.vx},
      {targets.vy, seen.vy},
      {targets.vz, seen.vz},
      {targets.climb, seen.vy / ftToM * 60},
      {targets.speed, seen.speed},
      {targets.psi, seen.heading},
      {targets.the, seen.pitch},
      {targets.phi, seen.roll},
  };
  for (const auto& [ref, value] : figures) StoreElement(ref, n, value);
}

void ShowOwnTarget() {
  ShowTarget(0, aircraft->icao,
             {.lat = D(refs.latitude),
              .lon = D(refs.longitude),
              .alt = D(refs.elevation),
              .pitch = Number(refs.theta),
              .roll = Number(refs.phi),
              .heading = Number(refs.psi),
              .vx = Number(refs.vx),
              .vy = Number(refs.vy),
              .vz = Number(refs.vz),
              .speed = Number(refs.trueAirspeed),
              .ground = I(refs.onGround) != 0});
}

void CountTargets(int used) {
  if (!published) return;
  I(targets.count) = used;
  for (int n = used; n < targetPlaces; n++) {
    for (const ArrayRow& row : arrayRows) {
      if (row.kind == Kind::Bytes) PutText(targets.*row.slot, n, "");
      if (row.kind != Kind::Bytes && row.count > 1) StoreElement(targets.*row.slot, n, 0);
    }
  }
}

}  // namespace sim
