// Forces and movement: a rigid body with a wing, damped towards the angle of attack that the elevator asks
// for and towards its own path through the air, and wheels that roll and steer on the ground.
#include <algorithm>
#include <cmath>

#include "flight/flight.h"
#include "world/distance.h"
#include "world/refs.h"

namespace sim {

Flight flight;

namespace {

constexpr double elevatorReach = 14 * degToRad;  // angle of attack either way of neutral, full elevator
constexpr double rudderReach = 12 * degToRad;
constexpr double rollReach = 35 * degToRad;  // per second, full aileron
constexpr double liftSlope = 5.5;            // per radian
constexpr double longestStep = 1.0 / 40;

// What the datarefs held after the last step: anything else was set from outside since then.
struct Shown {
  float vx = 0, vy = 0, vz = 0, q[4] = {}, rates[3] = {}, radians[3] = {}, fuel[9] = {};
  double x = 0, y = 0, z = 0;
};
Shown shown;

// Rates about the three body axes, as degrees and as radians.
DataRef** const rateRefs[3] = {&refs.rollRate, &refs.pitchRate, &refs.yawRate};
DataRef** const radianRefs[3] = {&refs.rollRateRad, &refs.pitchRateRad, &refs.yawRateRad};

void Normalise(double q[4]) {
  double length = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
  if (!(length > 1e-6) || !std::isfinite(length)) {
    q[0] = 1;
    q[1] = q[2] = q[3] = 0;
    return;
  }
  for (int i = 0; i < 4; i++) q[i] /= length;
}

double Finite(double value, double low, double high) {
  return std::isfinite(value) ? std::clamp(value, low, high) : 0;
}

void Remember() {
  shown.x = D(refs.x);
  shown.y = D(refs.y);
  shown.z = D(refs.z);
  shown.vx = F(refs.vx);
  shown.vy = F(refs.vy);
  shown.vz = F(refs.vz);
  for (int i = 0; i < 4; i++) shown.q[i] = F(refs.q, i);
  for (int i = 0; i < 3; i++) {
    shown.rates[i] = F(*rateRefs[i]);
    shown.radians[i] = F(*radianRefs[i]);
  }
  for (int i = 0; i < 9; i++) shown.fuel[i] = F(refs.fuel, i);
}

Vec Cross(const Vec& a, const Vec& b) {
  return {a.e * b.d - a.d * b.e, a.d * b.n - a.n * b.d, a.n * b.e - a.e * b.n};
}
double Dot(const Vec& a, const Vec& b) { return a.n * b.n + a.e * b.e + a.d * b.d; }

// Air data of the present attitude and velocity.
void FindAirData() {
  Vec through = {flight.velocity.n - flight.air.windNorth, flight.velocity.e - flight.air.windEast,
                 flight.velocity.d};
  Vec body = BodyOf(flight.q, through);
  flight.airspeed = std::sqrt(Dot(through, through));
  flight.indicated = flight.airspeed * std::sqrt(flight.air.rho / 1.225);
  bool moving = flight.airspeed > 2;
  flight.alpha = moving ? std::atan2(body.d, body.n) : 0;
  flight.beta = moving ? std::asin(std::clamp(body.e / flight.airspeed, -1.0, 1.0)) : 0;
}

// Air and engine force in world axes, newtons.
Vec AirForce() {
  double pressure = 0.5 * flight.air.rho * flight.airspeed * flight.airspeed * aircraft->wingArea;
  flight.lift = LiftAt(flight.alpha);
  double drag = pressure * (DragCoefficient(flight.lift) + 0.8 * flight.beta * flight.beta);
  double lift = pressure * flight.lift;
  double side = -pressure * 0.9 * std::sin(2 * flight.beta) / 2;
  // Lift stands on the path through the air, in the body's plane of symmetry.
  double ca = std::cos(flight.alpha), sa = std::sin(flight.alpha);
  Vec body = {lift * sa - drag * ca + flight.thrust, side, -lift * ca - drag * sa};
  return WorldOf(flight.q, body);
}

// Turns the body: towards the commanded angle of attack, the path and the commanded roll rate.
void Turn(double dt) {
  // Turning rate of the path itself, in body axes: what the body must do to keep its angles.
  Vec path;
  double square = Dot(flight.velocity, flight.velocity);
  if (square > 25) {
    Vec turn = Cross(flight.velocity, flight.acceleration);
    path = BodyOf(flight.q, {turn.n / square, turn.e / square, turn.d / square});
  }
  double dynamic = 0.5 * flight.air.rho * flight.airspeed * flight.airspeed;
  double slow = aircraft->approachKt * ktToMs;
  double grip = std::clamp(dynamic / (0.5 * 1.225 * slow * slow), 0.0, 2.0);
  double trim = static_cast<double>(F(refs.elevatorTrim));
  double aileronTrim = static_cast<double>(F(refs.aileronTrim)) * 0.3;
  double rudderTrim = static_cast<double>(F(refs.rudderTrim)) * 0.5;
  double wantedAlpha = flight.alphaNeutral + std::clamp(flight.elevator + trim, -1.2, 1.2) * elevatorReach;
  double wantedBeta = -std::clamp(flight.rudder + rudderTrim, -1.0, 1.0) * rudderReach;
  double wantedRoll = std::clamp(flight.aileron + aileronTrim, -1.0, 1.0) * rollReach * std::min(grip, 1.0);
  constexpr double stiffness = 2.2, damping = 0.85;  // rad/s at approach speed
  double w = stiffness * std::sqrt(grip);
  Vec change;
  change.n = (wantedRoll - flight.rate.n) / 0.25;
  change.e = w * w * (wantedAlpha - flight.alpha) - 2 * damping * w * (flight.rate.e - path.e);
  change.d = w * w * 0.5 * (flight.beta - wantedBeta) - 2 * damping * w * (flight.rate.d - path.d);
  flight.rateChange = change;
  flight.rate.n = Finite(flight.rate.n + change.n * dt, -3, 3);
  flight.rate.e = Finite(flight.rate.e + change.e * dt, -3, 3);
  flight.rate.d = Finite(flight.rate.d + change.d * dt, -3, 3);
  const double* q = flight.q;
  double p = flight.rate.n, r = flight.rate.e, y = flight.rate.d;
  double next[4] = {
      q[0] + 0.5 * dt * (-q[1] * p - q[2] * r - q[3] * y), q[1] + 0.5 * dt * (q[0] * p + q[2] * y - q[3] * r),
      q[2] + 0.5 * dt * (q[0] * r - q[1] * y + q[3] * p), q[3] + 0.5 * dt * (q[0] * y + q[1] * r - q[2] * p)};
  Normalise(next);
  std::copy(next, next + 4, flight.q);
}

// Wheels: no sinking, no sideways slip, rolling and braking friction, steering. Changes acceleration and
// velocity, and turns the body with the wheels.
void Roll(double dt) {
  Vec& a = flight.acceleration;
  if (a.d > 0) a.d = 0;
  if (flight.velocity.d > 0) flight.velocity.d = 0;
  double phi, theta, psi;
  AnglesOf(flight.q, &phi, &theta, &psi);
  double forwardN = std::cos(psi), forwardE = std::sin(psi);
  double along = flight.velocity.n * forwardN + flight.velocity.e * forwardE;
  double across = -flight.velocity.n * forwardE + flight.velocity.e * forwardN;
  double push = a.n * forwardN + a.e * forwardE;
  double slippery = Number(refs.friction);
  double grip = slippery >= 2 ? 0.25 : slippery >= 1 ? 0.6 : 1;
  double friction = gravity * (0.015 + 0.35 * grip * flight.brake);
  double before = along;
  along += push * dt;
  along = along > 0 ? std::max(0.0, along - friction * dt) : std::min(0.0, along + friction * dt);
  across *= std::exp(-8 * dt);
  double steer =
      (flight.rudder + static_cast<double>(F(refs.brakeRight)) - static_cast<double>(F(refs.brakeLeft))) *
      (std::fabs(along) > 20 ? 5 : 50) * degToRad;
  steer = std::clamp(steer, -60 * degToRad, 60 * degToRad);
  double turn = along * std::tan(steer) / aircraft->wheelBase;
  psi += turn * dt;
  phi *= std::exp(-4 * dt);
  bool rotate = flight.elevator > 0.2 && flight.indicated > 0.9 * aircraft->approachKt * ktToMs;
  double oldTheta = theta;
  theta = rotate ? std::min(theta + 3 * degToRad * dt, 12 * degToRad) : theta * std::exp(-2 * dt);
  flight.rate = {0, (theta - oldTheta) / dt, turn};
  flight.rateChange = {};
  QuaternionOf(phi, theta, psi, flight.q);
  flight.velocity.n = along * forwardN - across * forwardE;
  flight.velocity.e = along * forwardE + across * forwardN;
  a.n = (along - before) / dt * forwardN;
  a.e = (along - before) / dt * forwardE;
}

void Advance(double dt) {
  FindAirData();
  Vec force = AirForce();
  flight.acceleration = {force.n / flight.mass, force.e / flight.mass, force.d / flight.mass + gravity};
  double wheels = flight.groundHeight - fieldElevation + aircraft->gearHeight;
  flight.ground = D(refs.y) <= wheels + 0.02 && flight.velocity.d >= -0.01 && flight.acceleration.d > -0.05;
  Vec before = flight.velocity;
  if (flight.ground) {
    Roll(dt);
    if (flight.acceleration.d < 0) flight.velocity.d += flight.acceleration.d * dt;
    D(refs.y) = wheels;
  } else {
    flight.velocity.n = Finite(before.n + flight.acceleration.n * dt, -700, 700);
    flight.velocity.e = Finite(before.e + flight.acceleration.e * dt, -700, 700);
    flight.velocity.d = Finite(before.d + flight.acceleration.d * dt, -700, 700);
    Turn(dt);
  }
  D(refs.x) += flight.velocity.e * dt;
  D(refs.z) -= flight.velocity.n * dt;
  D(refs.y) -= flight.velocity.d * dt;
  flight.groundHeight = WorldGround(D(refs.x), D(refs.z));
  wheels = flight.groundHeight - fieldElevation + aircraft->gearHeight;
  if (D(refs.y) < wheels) {
    D(refs.y) = wheels;
    if (flight.velocity.d > 0) flight.velocity.d = 0;
  }
}

// --- What was set from outside since the last step ---------------------------------------------------

void TakeOverPlace() {
  double moved = Distance(D(refs.x) - shown.x, D(refs.z) - shown.z);
  double climbed = std::fabs(D(refs.y) - shown.y);
  if (!std::isfinite(moved) || !std::isfinite(climbed)) {
    D(refs.x) = shown.x;
    D(refs.y) = shown.y;
    D(refs.z) = shown.z;
  } else if (moved > 500 || climbed > 100) {
    PilotLost();
  }
}

void TakeOverVelocity() {
  if (F(refs.vx) != shown.vx) flight.velocity.e = Finite(static_cast<double>(F(refs.vx)), -700, 700);
  if (F(refs.vy) != shown.vy) flight.velocity.d = -Finite(static_cast<double>(F(refs.vy)), -700, 700);
  if (F(refs.vz) != shown.vz) flight.velocity.n = -Finite(static_cast<double>(F(refs.vz)), -700, 700);
}

void TakeOverAttitude() {
  bool turned = false;
  for (int i = 0; i < 4; i++) turned |= F(refs.q, i) != shown.q[i];
  if (turned) {
    for (int i = 0; i < 4; i++) flight.q[i] = static_cast<double>(F(refs.q, i));
    Normalise(flight.q);
  }
  double* own[3] = {&flight.rate.n, &flight.rate.e, &flight.rate.d};
  for (int i = 0; i < 3; i++) {
    float rate = F(*rateRefs[i]), radians = F(*radianRefs[i]);
    if (rate != shown.rates[i]) *own[i] = Finite(static_cast<double>(rate) * degToRad, -3, 3);
    if (radians != shown.radians[i]) *own[i] = Finite(static_cast<double>(radians), -3, 3);
  }
}

void TakeOverWeights() {
  for (int i = 0; i < 9; i++) {
    if (F(refs.fuel, i) != shown.fuel[i]) flight.fuel[i] = Finite(static_cast<double>(F(refs.fuel, i)), 0, 1e6);
  }
  flight.mass = EmptyMass();
  for (double kg : flight.fuel) flight.mass += kg;
  if (!(flight.mass > 100)) flight.mass = 100;
}

// --- An aircraft that has just been chosen ----------------------------------------------------------

void FillTanks() {
  for (int i = 0; i < 9; i++) {
    flight.fuel[i] = i < aircraft->tanks ? aircraft->fuelStartKg * aircraft->tankShare[i] : 0;
    F(refs.fuel, i) = static_cast<float>(flight.fuel[i]);
  }
}

// Where a run begins: on the circuit, or parked at the threshold.
void PlaceAtStart() {
  double course = runwayCourse * degToRad;
  double x = -runwayHalf * std::sin(course), z = runwayHalf * std::cos(course), heading = runwayCourse;
  D(refs.y) = aircraft->gearHeight;
  if (circuitFlight) {
    CircuitStart(&x, &z, &heading);
    D(refs.y) = aircraft->circuitHeight;
  }
  D(refs.x) = x;
  D(refs.z) = z;
  QuaternionOf(0, 0, heading * degToRad, flight.q);
}

// Gear, brake and velocity at the place and heading that it has.
void SetOut(bool flying) {
  flight.ground = !flying;
  flight.gear = flying && aircraft->retractable ? 0 : 1;
  I(refs.gearHandle) = flight.gear > 0 ? 1 : 0;
  F(refs.parkBrake) = flying ? 0.0F : 1.0F;
  AnglesOf(flight.q, &flight.phi, &flight.theta, &flight.psi);
  flight.air = AirAt(D(refs.y) + fieldElevation);
  double speed = flying ? aircraft->circuitKt * ktToMs / std::sqrt(flight.air.rho / 1.225) : 0;
  flight.velocity = {speed * std::cos(flight.psi) + (flying ? flight.air.windNorth : 0),
                     speed * std::sin(flight.psi) + (flying ? flight.air.windEast : 0), 0};
  flight.rate = flight.rateChange = flight.acceleration = {};
}

// Height and heading of a fresh run are those that it has.
void PresetAutopilot(bool fresh) {
  F(refs.apSpeed) = static_cast<float>(aircraft->circuitKt);
  if (!fresh) return;
  F(refs.apAltitude) = static_cast<float>(std::round((D(refs.y) + fieldElevation) / ftToM / 100) * 100);
  F(refs.apHeading) = static_cast<float>(std::fmod(flight.psi * radToDeg + magneticVariation + 360, 360));
}

// Level flight at once: the attitude that carries the weight, and the thrust for it.
void TrimLevel() {
  double pressure = 0.5 * flight.air.rho * flight.airspeed * flight.airspeed * aircraft->wingArea;
  double lift = flight.mass * gravity / pressure;
  QuaternionOf(0, AngleForLift(lift), flight.psi, flight.q);
  F(refs.elevatorTrim) = static_cast<float>((AngleForLift(lift) - flight.alphaNeutral) / elevatorReach);
  SetThrottles(ThrottleForThrust(pressure * DragCoefficient(lift)));
}

}  // namespace

double EmptyMass() {
  return static_cast<double>(F(refs.massEmpty)) + static_cast<double>(F(refs.massFixed)) +
         static_cast<double>(F(refs.massJettison));
}

double LiftAt(double alpha) {
  double lift = aircraft->liftZero + aircraft->flapLift * flight.flap * 0.6 + liftSlope * alpha;
  flight.liftLimit = aircraft->liftMax + aircraft->flapLift * flight.flap;
  double low = -0.8;
  if (lift > flight.liftLimit) lift = std::max(0.5 * flight.liftLimit, 2 * flight.liftLimit - lift);  // stalled
  return std::max(lift, low);
}

double AngleForLift(double lift) {
  return (lift - aircraft->liftZero - aircraft->flapLift * flight.flap * 0.6) / liftSlope;
}

double DragCoefficient(double lift) {
  return aircraft->dragZero + aircraft->dragLift * lift * lift + aircraft->flapDrag * flight.flap +
         aircraft->gearDrag * flight.gear + aircraft->brakeDrag * flight.speedBrake;
}

void QuaternionOf(double phi, double theta, double psi, double q[4]) {
  double ca = std::cos(psi / 2), sa = std::sin(psi / 2), cb = std::cos(theta / 2), sb = std::sin(theta / 2);
  double cc = std::cos(phi / 2), sc = std::sin(phi / 2);
  q[0] = ca * cb * cc + sa * sb * sc;
  q[1] = ca * cb * sc - sa * sb * cc;
  q[2] = ca * sb * cc + sa * cb * sc;
  q[3] = sa * cb * cc - ca * sb * sc;
}

void AnglesOf(const double q[4], double* phi, double* theta, double* psi) {
  *psi = std::atan2(2 * (q[0] * q[3] + q[1] * q[2]), 1 - 2 * (q[2] * q[2] + q[3] * q[3]));
  *theta = std::asin(std::clamp(2 * (q[0] * q[2] - q[3] * q[1]), -1.0, 1.0));
  *phi = std::atan2(2 * (q[0] * q[1] + q[2] * q[3]), 1 - 2 * (q[1] * q[1] + q[2] * q[2]));
}

Vec WorldOf(const double q[4], const Vec& b) {
  double w = q[0], x = q[1], y = q[2], z = q[3];
  return {(1 - 2 * (y * y + z * z)) * b.n + 2 * (x * y - w * z) * b.e + 2 * (x * z + w * y) * b.d,
          2 * (x * y + w * z) * b.n + (1 - 2 * (x * x + z * z)) * b.e + 2 * (y * z - w * x) * b.d,
          2 * (x * z - w * y) * b.n + 2 * (y * z + w * x) * b.e + (1 - 2 * (x * x + y * y)) * b.d};
}

Vec BodyOf(const double q[4], const Vec& world) {
  double back[4] = {q[0], -q[1], -q[2], -q[3]};
  return WorldOf(back, world);
}

double WrapPi(double angle) { return std::remainder(angle, 2 * pi); }

void TakeOverSetValues() {
  TakeOverPlace();
  TakeOverVelocity();
  TakeOverAttitude();
  TakeOverWeights();
  double lat, lon, altitude;
  LocalToWorld(D(refs.x), D(refs.y), D(refs.z), &lat, &lon, &altitude);
  D(refs.elevation) = altitude;  // the pilot looks at it
  flight.groundHeight = WorldGround(D(refs.x), D(refs.z));
  flight.air = AirAt(altitude);
  AnglesOf(flight.q, &flight.phi, &flight.theta, &flight.psi);
  FindAirData();
  bool frozen = I(refs.overridePath) != 0;
  if (frozen) flight.ground = altitude <= flight.groundHeight + aircraft->gearHeight + 0.02;
}

void Move(double dt) {
  if (I(refs.overridePath) == 0) {
    int steps = std::max(1, static_cast<int>(std::ceil(dt / longestStep)));
    for (int i = 0; i < steps; i++) Advance(dt / steps);
    AnglesOf(flight.q, &flight.phi, &flight.theta, &flight.psi);
    FindAirData();
  }
  ShowMovement();
  Remember();
}

double FlightTime() { return flight.time; }

void FlightStart() {
  flight = Flight{};
  hands = Hands{};
  HookControls();
  HookAutopilot();
}

void FlightAircraftChanged() {
  FillTanks();
  hands = Hands{};
  bool fresh = flight.time == 0 && RunningTime() <= 0;
  if (!circuitFlight && !fresh) {
    StartEngines();
    return;
  }
  if (fresh) PlaceAtStart();
  bool flying = circuitFlight && !(flight.ground && !fresh);
  SetOut(flying);
  PresetAutopilot(fresh);
  Remember();
  TakeOverSetValues();
  if (flying) {
    TrimLevel();
  } else {
    SetThrottles(0);
  }
  StartEngines();
  StepLevers(0);
  StepEngines(0);
  AnglesOf(flight.q, &flight.phi, &flight.theta, &flight.psi);
  FindAirData();
  flight.lift = LiftAt(flight.alpha);
  PilotStart(fresh);
  ShowMovement();
  Remember();
  StepRadios(flight.time);
}

void WorldStep(double dt) {
  if (!circuitFlight) StepAddon();
  if (!circuitFlight || !(dt > 0)) return;
  double simulated = dt * std::clamp(I(refs.simSpeed), 0, 64);
  ShowClocks(simulated);
  if (simulated <= 0) return;
  flight.time += simulated;
  TakeOverSetValues();
  StepLevers(simulated);
  StepModes();
  StepPilot(simulated);
  StepEngines(simulated);
  Move(simulated);
  StepPlanes(flight.time);
  StepRadios(flight.time);
  StepAddon();
}

}  // namespace sim
