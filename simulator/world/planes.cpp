// Other aircraft: up to 63 fly level circles around the field at different heights, each with a place of
// its own by the clock; the twentieth is parked. The position datarefs show 19 of them, the traffic arrays of
// newer ages all (targets.cpp). The first one's circle passes close to where the user's circuit starts.
#include <algorithm>
#include <cmath>
#include <string>

#include "flight/flight.h"
#include "world/refs.h"
#include "world/world.h"

namespace sim {

int activePlanes = 1;

namespace {

constexpr int otherPlanes = 19;
constexpr int positionsSealedFrom = 1210;  // age from which plug-ins set no latitude, longitude and elevation
constexpr int modelCount = 97;             // aircraft that can be active have a model

struct PlaneRefs {
  DataRef *x, *y, *z, *lat, *lon, *el, *the, *phi, *psi, *vx, *vy, *vz;
};
PlaneRefs planes[otherPlanes];
int shownPlanes = 1;  // active ones when the datarefs were last filled

struct Member {
  const char* name = "";
  Kind kind = Kind::Double;
  DataRef* PlaneRefs::*slot = nullptr;
  bool always = true;  // plug-ins may set it whatever the number of the aircraft (else from the tenth on)
};
constexpr Member members[] = {
    {.name = "x", .kind = Kind::Double, .slot = &PlaneRefs::x},
    {.name = "y", .kind = Kind::Double, .slot = &PlaneRefs::y},
    {.name = "z", .kind = Kind::Double, .slot = &PlaneRefs::z},
    {.name = "lat", .kind = Kind::Double, .slot = &PlaneRefs::lat, .always = false},
    {.name = "lon", .kind = Kind::Double, .slot = &PlaneRefs::lon, .always = false},
    {.name = "el", .kind = Kind::Double, .slot = &PlaneRefs::el, .always = false},
    {.name = "the", .kind = Kind::Float, .slot = &PlaneRefs::the},
    {.name = "phi", .kind = Kind::Float, .slot = &PlaneRefs::phi},
    {.name = "psi", .kind = Kind::Float, .slot = &PlaneRefs::psi},
    {.name = "v_x", .kind = Kind::Float, .slot = &PlaneRefs::vx},
    {.name = "v_y", .kind = Kind::Float, .slot = &PlaneRefs::vy},
    {.name = "v_z", .kind = Kind::Float, .slot = &PlaneRefs::vz},
};

// Circle of aircraft n (from 1): centre east and north of the field, radius, height above the field, speed,
// bearing from the centre at the start.
struct Circle {
  double east = 0, north = 0, radius = 0, height = 0, speed = 0, bearing = 0;
};

Circle CircleOf(int n) {
  double course = runwayCourse * degToRad;
  if (n == 1) {
    // Inside the jet's downwind leg (left of the runway), 150 m above it and 900 m abeam at the start.
    double side = 6030 - 900 - 1500;
    return {.east = -side * std::cos(course),
            .north = side * std::sin(course),
            .radius = 1500,
            .height = 632,
            .speed = 75,
            .bearing = runwayCourse - 90};
  }
  double bearing = 47.0 * n;
  double away = 3000.0 + 1900.0 * n;
  return {.east = away * std::sin(bearing * degToRad),
          .north = away * std::cos(bearing * degToRad),
          .radius = 1800.0 + 150.0 * n,
          .height = 500.0 + 180.0 * n,
          .speed = 70.0 + 4.0 * n,
          .bearing = 19.0 * n};
}

// The model of another aircraft, n from 1.
const Aircraft& ModelOf(int n) { return aircraftTable[static_cast<size_t>(n - 1) % 4]; }

// One more stands where it is: on the ground, beside the runway's middle.
constexpr int parkedPlane = 20;

Seen Parked() {
  double course = runwayCourse * degToRad;
  Seen seen = {.x = 200 * std::cos(course),
               .y = ModelOf(parkedPlane).gearHeight,
               .z = 200 * std::sin(course),
               .heading = runwayCourse,
               .ground = true};
  LocalToWorld(seen.x, seen.y, seen.z, &seen.lat, &seen.lon, &seen.alt);
  return seen;
}

Seen SeenAt(int n, double now) {
  if (n == parkedPlane) return Parked();
  Circle circle = CircleOf(n);
  double rate = circle.speed / circle.radius;  // clockwise, rad/s
  double bearing = circle.bearing * degToRad + rate * now;
  double x = circle.east + circle.radius * std::sin(bearing);
  double z = -(circle.north + circle.radius * std::cos(bearing));
  double heading = std::fmod(bearing * radToDeg + 90, 360);
  if (heading < 0) heading += 360;
  Seen seen = {.x = x,
               .y = circle.height,
               .z = z,
               .pitch = 3,
               .roll = std::atan(circle.speed * rate / gravity) * radToDeg,
               .heading = heading,
               .vx = circle.speed * std::cos(bearing),
               .vz = circle.speed * std::sin(bearing),
               .speed = circle.speed};
  LocalToWorld(x, seen.y, z, &seen.lat, &seen.lon, &seen.alt);
  return seen;
}

void Place(int n, double now) {
  Seen seen = SeenAt(n, now);
  ShowTarget(n, ModelOf(n).icao, seen);
  if (n > otherPlanes) return;
  PlaneRefs& plane = planes[n - 1];
  D(plane.x) = seen.x;
  D(plane.y) = seen.y;
  D(plane.z) = seen.z;
  D(plane.lat) = seen.lat;
  D(plane.lon) = seen.lon;
  D(plane.el) = seen.alt;
  F(plane.the) = static_cast<float>(seen.pitch);
  F(plane.phi) = static_cast<float>(seen.roll);
  F(plane.psi) = static_cast<float>(seen.heading);
  F(plane.vx) = static_cast<float>(seen.vx);
  F(plane.vy) = static_cast<float>(seen.vy);
  F(plane.vz) = static_cast<float>(seen.vz);
}

void Clear(int n) {
  if (n > otherPlanes) return;
  for (const Member& member : members) {
    D(planes[n - 1].*member.slot) = 0;
    F(planes[n - 1].*member.slot) = 0;
  }
}

}  // namespace

void PublishPlanes(int active) {
  for (int n = 1; n <= otherPlanes; n++) {
    for (const Member& member : members) {
      std::string name = "sim/multiplayer/position/plane";
      name.append(std::to_string(n)).append("_").append(member.name);
      const bool settable = member.always || (n >= 10 && age < positionsSealedFrom);
      DataRef* ref = Publish(name.c_str(), member.kind, 1, settable);
      planes[n - 1].*member.slot = ref != nullptr ? ref : FindLive(name);
    }
    Clear(n);
  }
  shownPlanes = 1;
  PublishTargets();
  WorldSetActivePlanes(active);
}

void WorldSetActivePlanes(int count) {
  activePlanes = std::clamp(count, 1, 128);
  int shown = std::min(activePlanes, targetPlaces);
  for (int n = shownPlanes; n < shown; n++) Place(n, FlightTime());
  for (int n = shown; n < shownPlanes; n++) Clear(n);
  shownPlanes = shown;
  CountTargets(shown);
}

void StepPlanes(double now) {
  ShowOwnTarget();
  for (int n = 1; n < shownPlanes; n++) Place(n, now);
}

bool WorldAircraftModel(int index, std::string* fileName, std::string* path) {
  if (index < 0 || index >= std::min(activePlanes, modelCount)) return false;
  const Aircraft& model = index == 0 ? *aircraft : ModelOf(index);
  *fileName = model.file;
  *path = SystemFolder();
  char separator = path->empty() ? '/' : path->back();
  for (const char* c = model.folder; *c != '\0'; c++) path->push_back(*c == '/' ? separator : *c);
  path->push_back(separator);
  path->append(model.file);
  return true;
}

}  // namespace sim
