// Every indication that follows from the movement: position, attitude, speeds, forces, altimeters, clocks.
#include <algorithm>
#include <cmath>

#include "flight/flight.h"
#include "world/distance.h"
#include "world/refs.h"

namespace sim {

namespace {

void Put(DataRef* ref, double value) { F(ref) = static_cast<float>(value); }

double Degrees360(double radians) {
  double degrees = std::fmod(radians * radToDeg, 360);
  if (degrees < 0) degrees += 360;
  // The float of 359.9999999 would be 360.
  return static_cast<float>(degrees) >= 360.0F ? 0 : degrees;
}

void ShowAttitude() {
  // An attitude has two quaternions: show the one that belongs to a heading of 0 to 360 degrees.
  double psi = Degrees360(flight.psi) * degToRad;
  double sign = std::cos(psi / 2) * flight.q[0] + std::sin(psi / 2) * flight.q[3] < 0 ? -1 : 1;
  for (int i = 0; i < 4; i++) F(refs.q, i) = static_cast<float>(sign * flight.q[i]);
  Put(refs.phi, flight.phi * radToDeg);
  Put(refs.theta, flight.theta * radToDeg);
  Put(refs.psi, Degrees360(flight.psi));
  Put(refs.rollRate, flight.rate.n * radToDeg);
  Put(refs.pitchRate, flight.rate.e * radToDeg);
  Put(refs.yawRate, flight.rate.d * radToDeg);
  Put(refs.rollRateRad, flight.rate.n);
  Put(refs.pitchRateRad, flight.rate.e);
  Put(refs.yawRateRad, flight.rate.d);
  Put(refs.rollAcceleration, flight.rateChange.n * radToDeg);
  Put(refs.pitchAcceleration, flight.rateChange.e * radToDeg);
  Put(refs.yawAcceleration, flight.rateChange.d * radToDeg);
}

void ShowForces() {
  Put(refs.vx, flight.velocity.e);
  Put(refs.vy, -flight.velocity.d);
  Put(refs.vz, -flight.velocity.n);
  Put(refs.ax, flight.acceleration.e);
  Put(refs.ay, -flight.acceleration.d);
  Put(refs.az, -flight.acceleration.n);
  // What a passenger feels: acceleration less gravity. Body axes of the datarefs: right, up, back.
  Vec felt = BodyOf(flight.q, {flight.acceleration.n, flight.acceleration.e, flight.acceleration.d - gravity});
  Put(refs.gNormal, -felt.d / gravity);
  Put(refs.gSide, felt.e / gravity);
  Put(refs.gAxial, -felt.n / gravity);
  Put(refs.slip, std::clamp(std::atan2(-felt.e, std::max(-felt.d, 0.5)) * radToDeg, -4.0, 4.0));
  double cosine = std::max(std::cos(flight.theta), 0.05);
  double turn = (flight.rate.e * std::sin(flight.phi) + flight.rate.d * std::cos(flight.phi)) / cosine;
  // The turn indicator stands at 20 degrees in a turn of 3 degrees per second.
  Put(refs.turnRate, std::clamp(turn * radToDeg / 3 * 20, -60.0, 60.0));
}

}  // namespace

void ShowMovement() {
  bool frozen = I(refs.overridePath) != 0;
  double lat, lon, altitude;
  LocalToWorld(D(refs.x), D(refs.y), D(refs.z), &lat, &lon, &altitude);
  D(refs.latitude) = std::clamp(lat, -90.0, 90.0);
  D(refs.longitude) = lon;
  D(refs.elevation) = altitude;
  double above = std::max(0.0, altitude - flight.groundHeight - aircraft->gearHeight);
  Put(refs.aboveGround, above);
  Put(refs.radioAltimeter, std::min(above / ftToM, 2500.0));
  if (!frozen) {
    ShowAttitude();
    ShowForces();
  }
  Vec body = BodyOf(flight.q, flight.velocity);
  Put(refs.bodyVx, body.e);
  Put(refs.bodyVy, -body.d);
  Put(refs.bodyVz, -body.n);
  double ground = Distance(flight.velocity.n, flight.velocity.e);
  Put(refs.groundspeed, ground);
  Put(refs.trueAirspeed, flight.airspeed);
  Put(refs.indicatedAirspeed, flight.indicated / ktToMs);
  Put(refs.mach, flight.airspeed / flight.air.sound);
  Put(refs.verticalSpeed, -flight.velocity.d);
  Put(refs.verticalSpeedFpm, -flight.velocity.d / ftToM * 60);
  Put(refs.alpha, flight.alpha * radToDeg);
  Put(refs.beta, flight.beta * radToDeg);
  I(refs.onGround) = flight.ground ? 1 : 0;
  I(refs.stallWarning) = !flight.ground && flight.alpha > AngleForLift(0.92 * flight.liftLimit) ? 1 : 0;
  Put(refs.nosewheel, flight.ground ? ground : 0);
  F(refs.tireSteer, 0) = flight.ground ? static_cast<float>(flight.rudder * 50) : 0.0F;
  // The altimeter shows the height in the standard atmosphere where the setting prevails at the bottom.
  double setting = std::clamp(static_cast<double>(F(refs.barometerSetting)), 20.0, 35.0);
  double height = 145442.16 * (1 - std::pow(flight.air.pressureInHg / setting, 0.190263));
  Put(refs.altimeter, height);
}

void ShowClocks(double simulated) {
  // A float of seconds since midnight resolves 8 ms: the day's time is kept here in full.
  double& zulu = flight.zulu;
  if (F(refs.zulu) != flight.shownZulu) zulu = static_cast<double>(F(refs.zulu));
  if (!std::isfinite(zulu)) zulu = 0;
  zulu += simulated;
  double offset = std::round(D(refs.longitude) / 15) * 3600;
  double localBefore = zulu - simulated + offset, local = zulu + offset;
  constexpr double day = 86400;
  if (std::floor(local / day) > std::floor(localBefore / day)) I(refs.date) = (I(refs.date) + 1) % 365;
  zulu = std::fmod(zulu, day);
  if (zulu < 0) zulu += day;
  local = std::fmod(local, day);
  if (local < 0) local += day;
  Put(refs.zulu, zulu);
  Put(refs.localTime, local);
  flight.shownZulu = F(refs.zulu);
  double cabin = static_cast<double>(F(refs.cabinAltitude));
  // Feet and feet a minute, whatever the names say.
  double outside = D(refs.elevation) / ftToM;
  double goal = std::min(outside, static_cast<double>(F(refs.cabinAltitudeSet)));
  double most = std::fabs(static_cast<double>(F(refs.cabinRateSet))) / 60 * simulated;
  Put(refs.cabinAltitude, cabin + std::clamp(goal - cabin, -most, most));
}

}  // namespace sim
