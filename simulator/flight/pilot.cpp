// Who flies: the autopilot's engaged modes first, then hands on an overridden yoke, then the built-in
// pilot, who flies left-hand circuits with a low pass over the runway. All of them end in the same inner
// loops, which know the wing and the engines: a bank to aileron, a climb to elevator, a speed to throttle.
#include <algorithm>
#include <cmath>

#include "flight/flight.h"
#include "world/distance.h"
#include "world/refs.h"

namespace sim {

namespace {

constexpr double mostBank = 25 * degToRad;

// The circuit: a rectangle, corners counted from the end of the upwind leg, flown anti-clockwise. `along`
// is metres in the direction of the runway, `left` metres to its left.
struct Circuit {
  bool atField = true;  // with an approach to the runway; else a level one around any place
  double x = 0, z = 0;  // origin, local metres
  double course = runwayCourse;
  double height = 0;  // above sea level, metres
  double up = 0, down = 0, width = 0;
  int leg = 2;  // 0 final and upwind, 1 crosswind, 2 downwind, 3 base
};
Circuit circuit;
bool lost = false;
double heldAltitude = 0;  // while somebody else has the vertical or the lateral axis
bool holding = false;
double bankIntegral = 0;

double Ias(double knots) { return knots * ktToMs; }

double TurnRadius(double knots) { return Ias(knots) * Ias(knots) / (gravity * std::tan(mostBank)); }

void SizeCircuit() {
  double radius = TurnRadius(aircraft->circuitKt);
  circuit.width = 2.6 * radius;
  circuit.up = runwayHalf + 1.5 * radius;
  circuit.down = -(runwayHalf + std::max(3 * radius, 4500.0));
}

// Local point in circuit terms.
void ToCircuit(double x, double z, double* along, double* left) {
  double c = circuit.course * degToRad, east = x - circuit.x, north = circuit.z - z;
  *along = east * std::sin(c) + north * std::cos(c);
  *left = north * std::sin(c) - east * std::cos(c);
}

// Bank that brings the path over the ground onto a track (radians).
double BankForTrack(double track) {
  double speed = std::max(Distance(flight.velocity.n, flight.velocity.e), 10.0);
  double own = std::atan2(flight.velocity.e, flight.velocity.n);
  return std::clamp(std::atan(speed * 0.12 * WrapPi(track - own) / gravity), -mostBank, mostBank);
}

double BankForHeading(double heading) {
  double error = WrapPi(heading - flight.psi);
  if (std::fabs(error) < 3 * degToRad) bankIntegral = std::clamp(bankIntegral + error * 0.0004, -0.05, 0.05);
  double speed = std::max(flight.airspeed, 10.0);
  return std::clamp(std::atan(speed * 0.12 * error / gravity) + bankIntegral, -mostBank, mostBank);
}

// Leg guidance: the bank to fly; advances to the next leg before its corner.
double CircuitBank() {
  double along, left;
  ToCircuit(D(refs.x), D(refs.z), &along, &left);
  double radius = TurnRadius(std::max(flight.airspeed, Ias(aircraft->approachKt)) / ktToMs);
  struct Leg {
    double turn;      // course against the runway, degrees
    double progress;  // metres flown along the leg's axis
    double end;
    double off;  // metres right of the leg's line
  };
  const Leg legs[4] = {{0, along, circuit.up, -left},
                       {-90, left, circuit.width, along - circuit.up},
                       {180, -along, -circuit.down, left - circuit.width},
                       {90, circuit.width - left, circuit.width, circuit.down - along}};
  const Leg& leg = legs[circuit.leg];
  double course = (circuit.course + leg.turn) * degToRad;
  double own = std::atan2(flight.velocity.e, flight.velocity.n);
  bool aligned = std::fabs(WrapPi(course - own)) < 45 * degToRad;
  if (leg.progress > leg.end - 0.95 * radius && (aligned || leg.progress > leg.end + radius)) {
    circuit.leg = (circuit.leg + 1) % 4;
    return CircuitBank();
  }
  double intercept = std::clamp(leg.off / (1.2 * radius), -1.0, 1.0) * 45 * degToRad;
  return BankForTrack(course - intercept);
}

// Where the approach path lies, metres above sea level, at a distance along the runway.
double SlopeHeight(double along) {
  return fieldElevation + std::max(0.0, -runwayHalf + 300 - along) * std::tan(3 * degToRad);
}

double MostClimb() { return aircraft->circuitKt > 160 ? 9 : aircraft->circuitKt > 120 ? 6 : 4; }

double ClimbForHeight(double metres) {
  return std::clamp((metres - D(refs.elevation)) / 7, -MostClimb(), MostClimb());
}

// Climb that the pilot wants on this leg.
double CircuitClimb() {
  if (!circuit.atField) return ClimbForHeight(circuit.height);
  double along, left;
  ToCircuit(D(refs.x), D(refs.z), &along, &left);
  double low = fieldElevation + 90;  // of the pass over the runway
  if (circuit.leg == 3) return ClimbForHeight(std::min(circuit.height, SlopeHeight(circuit.down) + 20));
  if (circuit.leg != 0 || along > 0) return ClimbForHeight(circuit.height);
  double slope = SlopeHeight(along);
  if (slope < low) return ClimbForHeight(low);
  if (slope > D(refs.elevation) + 40)
    return ClimbForHeight(D(refs.elevation));  // wait for the path to come down
  double ground = Distance(flight.velocity.n, flight.velocity.e);
  return std::clamp(ClimbForHeight(slope) - ground * std::tan(3 * degToRad), -MostClimb(), MostClimb());
}

// Elevator for a climb, m/s: the lift that bends the path there, from the known wing.
double ElevatorForClimb(double climb, double bank) {
  double speed = std::max(flight.airspeed, 15.0);
  double wanted = std::asin(std::clamp(climb / speed, -0.3, 0.3));
  double own = std::asin(std::clamp(-flight.velocity.d / speed, -0.9, 0.9));
  double load = std::cos(own) / std::max(std::cos(bank), 0.5) + speed * 0.7 * (wanted - own) / gravity;
  load = std::clamp(load, 0.4, 1.7);
  double pressure = 0.5 * flight.air.rho * speed * speed * aircraft->wingArea;
  double lift = std::min(load * flight.mass * gravity / pressure, 0.88 * flight.liftLimit);
  // The body lags the climb of the path; thrust carries part of the weight.
  lift -= flight.thrust * std::sin(flight.alpha) / pressure;
  double alpha = AngleForLift(lift);
  return (alpha - flight.alphaNeutral) / (14 * degToRad) - static_cast<double>(F(refs.elevatorTrim));
}

// Throttle for a speed (indicated, m/s), knowing drag and climb.
void HoldSpeed(double wanted, double dt) {
  double speed = std::max(flight.airspeed, 15.0);
  double pressure = 0.5 * flight.air.rho * speed * speed * aircraft->wingArea;
  double drag = pressure * DragCoefficient(flight.lift);
  double climb = -flight.velocity.d / speed;
  double error = (wanted - flight.indicated) * std::sqrt(1.225 / flight.air.rho);
  double force = drag + flight.mass * (gravity * climb + std::clamp(0.12 * error, -1.0, 1.5));
  double goal = ThrottleForThrust(force);
  double now = static_cast<double>(F(refs.engineThrottle));
  SetThrottles(now + std::clamp(goal - now, -0.4 * dt, 0.4 * dt));
}

double SelectedSpeed() {
  double selected = static_cast<double>(F(refs.apSpeed));
  if (!std::isfinite(selected)) return Ias(aircraft->circuitKt);
  if (I(refs.apSpeedIsMach) == 0) return Ias(std::clamp(selected, 0.0, aircraft->vne));
  return std::clamp(selected, 0.0, 0.95) * flight.air.sound * std::sqrt(flight.air.rho / 1.225);
}

double PilotSpeed() {
  // Slower with flaps, and never too close to the stall.
  double clean = Ias(aircraft->circuitKt), slow = Ias(aircraft->approachKt);
  return clean - (clean - slow) * std::sqrt(flight.flap);
}

// Climb that the engaged vertical mode asks for.
double ModeClimb(int modes) {
  double selected = static_cast<double>(F(refs.apAltitude)) * ftToM;
  if (!std::isfinite(selected)) selected = D(refs.elevation);
  if ((modes & apAltitude) != 0) return ClimbForHeight(selected);
  if ((modes & apVerticalSpeed) != 0) {
    double fpm = static_cast<double>(F(refs.apVerticalSpeed));
    return std::isfinite(fpm) ? std::clamp(fpm, -6000.0, 6000.0) * ftToM / 60 : 0;
  }
  if ((modes & (apSpeedByPitch | apLevelChange)) != 0) {
    // Too fast: climb the speed away.
    double climb = std::clamp((flight.indicated - SelectedSpeed()) * 0.8, -20.0, 20.0);
    if ((modes & apLevelChange) == 0) return climb;
    bool up = selected > D(refs.elevation);
    return up ? std::max(climb, 0.5) : std::min(climb, -0.5);
  }
  if ((modes & apGlide) != 0) {
    double slope = static_cast<double>(F(refs.navSlope[0])) * degToRad;
    double ground = Distance(flight.velocity.n, flight.velocity.e);
    return -ground * std::tan(slope) - static_cast<double>(F(refs.navVdef[0])) * 2;
  }
  if ((modes & apTogaVertical) != 0)
    return std::clamp((flight.indicated - Ias(aircraft->approachKt)) * 0.8, 1.0, 12.0);
  return ClimbForHeight(heldAltitude);
}

double ModeBank(int modes) {
  if ((modes & apHeading) != 0) {
    double heading = static_cast<double>(F(refs.apHeading));
    if (!std::isfinite(heading)) heading = 0;
    return BankForHeading((heading - magneticVariation) * degToRad);
  }
  bankIntegral = 0;
  if ((modes & apNav) != 0) {
    double course = static_cast<double>(F(refs.navObs[0])) - magneticVariation;
    if (I(refs.navType, 0) != 3 && circuit.atField) course = runwayCourse;
    double cut = std::clamp(NavDeflection() * 12, -30.0, 30.0);
    return BankForTrack((course + cut) * degToRad);
  }
  return 0;
}

bool Hand(DataRef* single) { return I(refs.overrideJoystick) != 0 || I(single) != 0; }

double Yoke(DataRef* ref) {
  double value = static_cast<double>(F(ref));
  return std::isfinite(value) ? std::clamp(value, -1.0, 1.0) : 0;
}

void ShowYoke() {
  if (!Hand(refs.overridePitch)) {
    F(refs.yokePitch) = F(refs.yokePitchTwin) = static_cast<float>(flight.elevator);
  }
  if (!Hand(refs.overrideRoll)) F(refs.yokeRoll) = static_cast<float>(flight.aileron);
  if (!Hand(refs.overrideYaw)) F(refs.yokeYaw) = F(refs.yokeYawTwin) = static_cast<float>(flight.rudder);
}

// Flaps and gear on the approach, up again on the climb.
void SetConfiguration() {
  double along, left;
  ToCircuit(D(refs.x), D(refs.z), &along, &left);
  bool approach = circuit.atField && (circuit.leg == 3 || (circuit.leg == 0 && along < 0));
  if (!hands.flaps) F(refs.flapRequest) = !approach ? 0.0F : circuit.leg == 3 ? 0.375F : 0.75F;
  if (!hands.gear && aircraft->retractable) I(refs.gearHandle) = approach && circuit.leg == 0 ? 1 : 0;
}

void FlyGround(double dt) {
  flight.aileron = Hand(refs.overrideRoll) ? Yoke(refs.yokeRoll) : 0;
  flight.rudder = Hand(refs.overrideYaw) ? Yoke(refs.yokeYaw) : 0;
  bool takeOff = ReadThrottle(0) > 0.5 && flight.indicated > 1.05 * Ias(aircraft->approachKt);
  flight.elevator = Hand(refs.overridePitch) ? Yoke(refs.yokePitch) : takeOff ? 0.7 : 0;
  if (!hands.gear) I(refs.gearHandle) = 1;
  bool landed = !hands.throttle && (I(refs.apState) & apAutothrottle) == 0;
  if (landed) {
    double now = static_cast<double>(F(refs.engineThrottle));
    SetThrottles(std::max(0.0, now - 0.5 * dt));
  }
  double speed = Distance(flight.velocity.n, flight.velocity.e);
  // The pilot stops a landing, not a taxi or a pushback that somebody else does.
  flight.pilotBrake = landed && speed > 4 && I(refs.overrideGearBrake) == 0 ? 0.5 : 0;
  holding = false;
}

// Where the flight director points: the bank and climb that are flown.
void ShowDirector(double bank, double climb) {
  F(refs.directorRoll) = static_cast<float>(bank * radToDeg);
  F(refs.directorPitch) = static_cast<float>(
      (std::asin(std::clamp(climb / std::max(flight.airspeed, 15.0), -0.5, 0.5)) + flight.alpha) * radToDeg);
}

void FlyThrottles(int modes, double dt) {
  bool autothrottle = (modes & apAutothrottle) != 0;
  if ((modes & apTogaVertical) != 0 && !hands.throttle) {
    SetThrottles(1);
  } else if (autothrottle && (modes & apLevelChange) == 0) {
    HoldSpeed(SelectedSpeed(), dt);
  } else if ((modes & apLevelChange) != 0 && (autothrottle || !hands.throttle)) {
    SetThrottles(static_cast<double>(F(refs.apAltitude)) * ftToM > D(refs.elevation) ? 0.9 : 0);
  } else if (!hands.throttle && I(refs.overrideThrottles) == 0) {
    HoldSpeed(PilotSpeed(), dt);
  }
}

void FlyAir(double dt) {
  flight.pilotBrake = 0;
  int modes = I(refs.apState);
  bool servos = I(refs.apMode) == 2;
  bool apRoll = (modes & apLateral) != 0 || servos;
  bool apElevator = (modes & apVertical) != 0 || servos;
  bool handRoll = !apRoll && Hand(refs.overrideRoll), handPitch = !apElevator && Hand(refs.overridePitch);
  bool circuits = !apRoll && !apElevator && !handRoll && !handPitch;
  if (!circuits && !holding) heldAltitude = D(refs.elevation);
  if (circuits && (holding || lost)) PilotStart(false);
  holding = !circuits;
  lost = false;

  double bank = apRoll ? ModeBank(modes) : handRoll ? flight.phi : CircuitBank();
  double climb = apElevator ? ModeClimb(modes) : circuits ? CircuitClimb() : ClimbForHeight(heldAltitude);
  if (!apElevator && climb > 0) {
    // Never climb the speed away.
    climb = std::min(climb, std::max((flight.indicated - 1.12 * Ias(aircraft->approachKt)) * 0.6 + 0.8, 0.0));
  }
  // Dive rather than stall.
  if (flight.indicated < 0.8 * Ias(aircraft->approachKt)) climb = std::min(climb, -2.0);
  double rollWanted = std::clamp(1.2 * (bank - flight.phi), -0.2, 0.2);
  flight.aileron = handRoll ? Yoke(refs.yokeRoll) : std::clamp(rollWanted / (35 * degToRad), -1.0, 1.0);
  flight.elevator =
      handPitch ? Yoke(refs.yokePitch) : std::clamp(ElevatorForClimb(climb, flight.phi), -1.0, 1.0);
  flight.rudder = Hand(refs.overrideYaw) ? Yoke(refs.yokeYaw) : 0;
  if (!handPitch && !hands.trim) {
    float& trim = F(refs.elevatorTrim);
    trim = static_cast<float>(
        std::clamp(static_cast<double>(trim) + std::clamp(flight.elevator, -1.0, 1.0) * 0.3 * dt, -0.9, 0.9));
  }
  ShowDirector(bank, climb);
  if (circuits) SetConfiguration();
  FlyThrottles(modes, dt);
}

}  // namespace

void PilotLost() { lost = true; }

void CircuitStart(double* x, double* z, double* heading) {
  circuit = Circuit{};
  SizeCircuit();
  double c = circuit.course * degToRad;
  *x = -circuit.width * std::cos(c);
  *z = -circuit.width * std::sin(c);
  *heading = circuit.course + 180;
}

void PilotStart(bool atField) {
  double away = Distance(D(refs.x), D(refs.z));
  double altitude = D(refs.elevation);
  bankIntegral = 0;
  holding = lost = false;
  if (atField || (away < 12000 && std::fabs(altitude - fieldElevation - aircraft->circuitHeight) < 600)) {
    circuit = Circuit{};
    circuit.height = fieldElevation + aircraft->circuitHeight;
    SizeCircuit();
    return;
  }
  // Somewhere else: level circuits from here, this being the downwind leg.
  circuit = Circuit{};
  SizeCircuit();
  circuit.atField = false;
  circuit.course = flight.psi * radToDeg + 180;
  circuit.height = std::max(altitude, flight.groundHeight + 200);
  double c = circuit.course * degToRad;
  circuit.x = D(refs.x) + circuit.width * std::cos(c);
  circuit.z = D(refs.z) + circuit.width * std::sin(c);
}

void StepPilot(double dt) {
  if (flight.ground) {
    FlyGround(dt);
  } else {
    FlyAir(dt);
  }
  ShowYoke();
}

}  // namespace sim
