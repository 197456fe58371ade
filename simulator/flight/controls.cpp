// Levers and surfaces: twins of one lever under two names, hands that touch levers, flaps, gear, speed
// brake and brakes on their way to where the lever wants them.
#include <algorithm>
#include <cmath>

#include "flight/flight.h"
#include "world/distance.h"
#include "world/refs.h"

namespace sim {

Hands hands;

namespace {

// One lever, two names: a value set under one shows under the other.
struct Twin {
  const char* first;
  const char* second;
};
const Twin twins[] = {
    {"sim/cockpit2/engine/actuators/throttle_ratio", "sim/flightmodel/engine/ENGN_thro"},
    {"sim/cockpit2/engine/actuators/mixture_ratio", "sim/flightmodel/engine/ENGN_mixt"},
    {"sim/flightmodel/controls/ail_trim", "sim/cockpit2/controls/aileron_trim"},
    {"sim/flightmodel/controls/rud_trim", "sim/cockpit2/controls/rudder_trim"},
    {"sim/joystick/yolk_pitch_ratio", "sim/joystick/yoke_pitch_ratio"},
    {"sim/joystick/yolk_heading_ratio", "sim/joystick/yoke_heading_ratio"},
    {"sim/cockpit/electrical/generator_apu_on", "sim/cockpit2/electrical/APU_generator_on"},
};
constexpr int twinCount = static_cast<int>(sizeof twins / sizeof twins[0]);
DataRef* twinRefs[twinCount][2];

void CopyToTwin(DataRef* self, int first, int touched) {
  for (DataRef*(&pair)[2] : twinRefs) {
    if (pair[0] == nullptr || pair[1] == nullptr || (self != pair[0] && self != pair[1])) continue;
    DataRef* other = self == pair[0] ? pair[1] : pair[0];
    for (int i = first; i < first + touched; i++) {
      F(other, i) = F(self, i);
      I(other, i) = I(self, i);
    }
  }
}

void ThrottleTouched(DataRef* self, int first, int touched) {
  hands.throttle = true;
  CopyToTwin(self, first, touched);
}

void FlapsTouched(DataRef*, int, int) { hands.flaps = true; }
void GearTouched(DataRef*, int, int) { hands.gear = true; }
void TrimTouched(DataRef*, int, int) { hands.trim = true; }

void IceTouched(DataRef* self, int, int) {
  for (const char* name :
       {"sim/cockpit/switches/anti_ice_surf_heat_left", "sim/cockpit/switches/anti_ice_surf_heat_right"}) {
    if (DataRef* side = FindLive(name)) I(side) = I(self);
  }
}

double Ratio(DataRef* ref, double low, double high) {
  double value = static_cast<double>(F(ref));
  return std::isfinite(value) ? std::clamp(value, low, high) : 0;
}

double Towards(double now, double goal, double most) { return now + std::clamp(goal - now, -most, most); }

void ShowSurfaces() {
  F(refs.flapRatio) = static_cast<float>(flight.flap);
  F(refs.slats) = static_cast<float>(std::min(1.0, flight.flap * 3));
  float degrees = static_cast<float>(flight.flap * aircraft->flapDegrees);
  F(refs.flapLeft1) = F(refs.flapRight1) = F(refs.flapLeft2) = F(refs.flapRight2) = degrees;
  for (int i = 0; i < refs.gearDeploy->count; i++)
    F(refs.gearDeploy, i) = static_cast<float>(i < 3 ? flight.gear : 0);
  F(refs.speedBrakeRatio) = static_cast<float>(flight.speedBrake);
  // Nose up and right wing down show as negative deflections, nose right as a positive one.
  F(refs.elevatorDeg) = static_cast<float>(-flight.elevator * 15);
  F(refs.aileronDeg) = static_cast<float>(-flight.aileron * 30);
  F(refs.rudderDeg) = static_cast<float>(flight.rudder * 30);
}

}  // namespace

void HookControls() {
  for (int i = 0; i < twinCount; i++) {
    twinRefs[i][0] = FindStock(twins[i].first);
    twinRefs[i][1] = FindStock(twins[i].second);
  }
  if (!circuitFlight) return;
  for (DataRef*(&pair)[2] : twinRefs) {
    for (DataRef* ref : pair) {
      if (ref != nullptr) ref->onSet = CopyToTwin;
    }
  }
  refs.throttle->onSet = refs.engineThrottle->onSet = refs.throttleUse->onSet = ThrottleTouched;
  refs.flapRequest->onSet = FlapsTouched;
  refs.gearHandle->onSet = GearTouched;
  refs.elevatorTrim->onSet = TrimTouched;
  if (DataRef* ice = FindLive("sim/cockpit/switches/anti_ice_surf_heat")) ice->onSet = IceTouched;
}

void RequestFlaps(double ratio) {
  F(refs.flapRequest) = static_cast<float>(std::clamp(ratio, 0.0, 1.0));
  hands.flaps = true;
}

void RequestGear(bool down) {
  I(refs.gearHandle) = down ? 1 : 0;
  hands.gear = true;
}

void StepLevers(double dt) {
  flight.flap = Towards(flight.flap, Ratio(refs.flapRequest, 0, 1), dt / 6);
  double wanted = !aircraft->retractable || I(refs.gearHandle) != 0 ? 1 : 0;
  if (flight.ground) wanted = std::max(wanted, flight.gear);  // the weight on the wheels locks them
  flight.gear = Towards(flight.gear, wanted, dt / 7);
  double request = Ratio(refs.speedBrakeRequest, -0.5, 1);
  // Armed (below 0): the speed brake comes out by itself when the wheels touch.
  if (request < 0 && flight.ground && flight.airspeed > 15) F(refs.speedBrakeRequest) = 1;
  flight.speedBrake = Towards(flight.speedBrake, std::max(request, 0.0), dt / 1.5);
  double left = Ratio(refs.brakeLeft, 0, 1), right = Ratio(refs.brakeRight, 0, 1);
  if (flight.keyBrake[0] || flight.keyBrake[2]) left = 1;
  if (flight.keyBrake[1] || flight.keyBrake[2]) right = 1;
  flight.brake = std::max({(left + right) / 2, Ratio(refs.parkBrake, 0, 1), flight.pilotBrake});
  F(refs.distance) += static_cast<float>(Distance(flight.velocity.n, flight.velocity.e) * dt);
  ShowSurfaces();
}

}  // namespace sim
