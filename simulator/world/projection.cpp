// World and local coordinates, and the shape of the ground.
//
// The local frame lies flat on the field: x east, y up from the field's elevation, z south. Degrees are
// laid out evenly, so the conversion is its own exact inverse everywhere; scales are true along every
// meridian and along the reference parallel.
#include <cmath>

#include "world/distance.h"
#include "world/world.h"

namespace sim {

namespace {
constexpr double earthRadius = 6371000;  // metres
constexpr double metresPerDegree = earthRadius * degToRad;
const double metresPerDegreeEast = metresPerDegree * std::cos(refLat * degToRad);
}  // namespace

void WorldToLocal(double lat, double lon, double alt, double* x, double* y, double* z) {
  // The short way round: 179.9 E and 179.9 W are neighbours.
  double east = std::remainder(lon - refLon, 360.0);
  *x = east * metresPerDegreeEast;
  *y = alt - fieldElevation;
  *z = (refLat - lat) * metresPerDegree;
}

void LocalToWorld(double x, double y, double z, double* lat, double* lon, double* alt) {
  *lat = refLat - z / metresPerDegree;
  *lon = std::remainder(refLon + x / metresPerDegreeEast, 360.0);
  *alt = y + fieldElevation;
}

double WorldGround(double x, double z) {
  // Level ground around the field, gentle hills beyond 25 km.
  double away = Distance(x, z) - 25000;
  if (!(away > 0)) return fieldElevation;
  double rise = std::fmin(away / 20000, 1.0);
  return fieldElevation +
         rise * (120 * std::sin(x / 7300) * std::cos(z / 9100) + 60 * std::sin((x + z) / 15700));
}

}  // namespace sim
