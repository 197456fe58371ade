// Engines: levers become power, power becomes thrust, indications and burnt fuel.
#include <algorithm>
#include <cmath>

#include "flight/flight.h"
#include "world/refs.h"

namespace sim {

namespace {

constexpr int mostEngines = 16;             // places in the longest age's arrays
constexpr int feathered = 0, reversed = 3;  // values of ENGN_propmode
constexpr double idleN1 = 22, idleN2 = 60;  // percent
double power[mostEngines];                  // 0 idle .. 1 full, what the engine has reached
double turning[mostEngines];                // 0 still .. 1 at least idle speed
bool starterHeld[mostEngines];
double starterLeft[mostEngines];

bool IsJet() { return aircraft->engineType == 4 || aircraft->engineType == 5; }

double TotalFuel() {
  double total = 0;
  for (double kg : flight.fuel) total += kg;
  return total;
}

// Share of the full thrust at a power setting; never quite nothing.
double ThrustShare(double setting) { return 0.02 + 0.98 * std::pow(std::clamp(setting, 0.0, 1.0), 1.5); }

// Thrust of one engine at full power, here and now.
double FullThrust() {
  double density = std::pow(flight.air.rho / 1.225, 0.8);
  double speed = flight.indicated / (aircraft->vne * ktToMs);
  double fade = IsJet() ? 0.25 * speed : aircraft->thrustFade * speed;
  return aircraft->maxThrust * density * std::max(1 - fade, 0.05);
}

bool CanRun(int i) {
  if (TotalFuel() <= 0.01 || F(refs.mixture, i) < 0.05F) return false;
  if (i < 4 && I(refs.failEngine[i]) == 6) return false;
  bool piston = aircraft->engineType == 0 || aircraft->engineType == 1;
  return !piston || I(refs.ignition, i) != 0;
}

void Start(int i, double dt) {
  starterLeft[i] = std::max(starterLeft[i], static_cast<double>(F(refs.starter, i)));
  if (starterHeld[i]) starterLeft[i] = std::max(starterLeft[i], 0.5);
  bool cranking = starterLeft[i] > 0;
  starterLeft[i] = std::max(0.0, starterLeft[i] - dt);
  F(refs.starter, i) = static_cast<float>(starterLeft[i]);
  bool runs = I(refs.running, i) != 0;
  if (runs && !CanRun(i)) runs = false;
  if (!runs && cranking && turning[i] > 0.25 && CanRun(i)) runs = true;
  I(refs.running, i) = runs ? 1 : 0;
  double goal = runs ? 1 : cranking ? 0.4 : 0;
  turning[i] += (goal - turning[i]) * std::min(1.0, dt / 2.5);
  if (turning[i] < 1e-4) turning[i] = 0;
}

void Burn(double kg) {
  // Evenly from every tank that still holds something.
  for (int pass = 0; pass < 3 && kg > 1e-12; pass++) {
    int filled = 0;
    for (double tank : flight.fuel) filled += tank > 0 ? 1 : 0;
    if (filled == 0) return;
    double each = kg / filled;
    for (double& tank : flight.fuel) {
      double taken = std::min(tank, each);
      tank -= taken;
      kg -= taken;
    }
  }
}

// Power and thrust; returns the fuel flow, kg/s.
double StepEngine(int i, double fullThrust, double dt) {
  double lever = ReadThrottle(i);
  if (I(refs.overrideThrottles) == 0) F(refs.throttleUse, i) = static_cast<float>(lever);
  Start(i, dt);
  double lag = IsJet() ? 1.8 : 0.5;
  bool runs = I(refs.running, i) != 0;
  power[i] += ((runs ? lever : 0) - power[i]) * std::min(1.0, dt / lag);
  double thrust = runs ? fullThrust * ThrustShare(power[i]) * turning[i] : 0;
  if (I(refs.propMode, i) == reversed) {
    thrust *= -0.4;
  } else if (I(refs.propMode, i) == feathered && !IsJet()) {
    thrust = 0;
  }
  flight.thrust += thrust;
  F(refs.thrust, i) = static_cast<float>(thrust);
  double flow = runs ? aircraft->fuelFlow * (0.1 + 0.9 * power[i]) : 0;
  F(refs.fuelFlow, i) = static_cast<float>(flow);
  return flow;
}

void Show(int i, double dt) {
  bool jet = IsJet();
  double spin = turning[i], set = power[i];
  double n1 = spin * (idleN1 + (100 - idleN1) * set);
  double n2 = spin * (idleN2 + (100 - idleN2) * std::sqrt(set));
  F(refs.n1, i) = static_cast<float>(n1);
  F(refs.n2, i) = static_cast<float>(n2);
  bool runs = I(refs.running, i) != 0;
  double egt = runs ? 390 + 330 * set : flight.air.temperature;
  auto follow = [dt](DataRef* ref, int element, double goal, double seconds) {
    double now = static_cast<double>(F(ref, element));
    double share = dt > 0 ? std::min(1.0, dt / seconds) : 1;
    F(ref, element) = static_cast<float>(now + (goal - now) * share);
  };
  follow(refs.egt, i, egt, 4);
  follow(refs.itt, i, runs ? egt + 90 : flight.air.temperature, 4);
  follow(refs.oilTemperature, i, runs ? 78 + 22 * set : flight.air.temperature, 60);
  F(refs.oilPressure, i) = static_cast<float>(spin * (28 + 24 * set));
  F(refs.epr, i) = static_cast<float>(jet ? 1 + 0.62 * set * spin : 1);
  F(refs.manifold, i) = static_cast<float>(
      aircraft->engineType <= 1 ? (runs ? 10 + (flight.air.pressureInHg - 10.5) * set : flight.air.pressureInHg)
                                : 0);
  double rotor = aircraft->redlineRad * spin;
  bool governed = aircraft->redlineRad < 50 || aircraft->engineType == 2;
  double rad =
      governed ? rotor * (aircraft->redlineRad < 50 ? 1 : 0.75 + 0.25 * set) : rotor * (0.26 + 0.72 * set);
  F(refs.torque, i) = static_cast<float>(aircraft->torqueMaxNm * spin * (0.06 + 0.9 * set));
  F(refs.propRad, i) = static_cast<float>(rad);
  F(refs.propRpm, i) = static_cast<float>(rad * 60 / (2 * pi));
  F(refs.engineRpm, i) = static_cast<float>(rad * 60 / (2 * pi));
  F(refs.propPitch, i) = static_cast<float>(jet ? 0 : 12 + 18 * flight.indicated / (aircraft->vne * ktToMs));
}

void Clear(int i) {
  DataRef* all[] = {refs.n1,          refs.n2,        refs.egt,      refs.itt,      refs.oilTemperature,
                    refs.oilPressure, refs.epr,       refs.manifold, refs.torque,   refs.propRad,
                    refs.propRpm,     refs.engineRpm, refs.thrust,   refs.fuelFlow, refs.throttleUse};
  for (DataRef* ref : all) F(ref, i) = 0;
  I(refs.running, i) = 0;
}

void StepApu(double dt) {
  if (I(refs.apuSwitch) == 0) I(refs.apuRunning) = 0;
  if (I(refs.apuSwitch) == 2 && F(refs.apuN1) > 95) {
    I(refs.apuRunning) = 1;
    I(refs.apuSwitch) = 1;
  }
  double goal = I(refs.apuSwitch) == 2 || I(refs.apuRunning) != 0 ? 100 : 0;
  double now = static_cast<double>(F(refs.apuN1));
  F(refs.apuN1) = static_cast<float>(now + std::clamp(goal - now, -10 * dt, 10 * dt));
}

}  // namespace

void HoldStarter(int engine, bool held) {
  if (engine >= 0 && engine < mostEngines) starterHeld[engine] = held;
}

double ReadThrottle(int engine) {
  DataRef* lever = I(refs.overrideThrottles) != 0 ? refs.throttleUse : refs.engineThrottle;
  double ratio = static_cast<double>(F(lever, engine));
  return std::isfinite(ratio) ? std::clamp(ratio, 0.0, 1.0) : 0;
}

void SetThrottles(double ratio) {
  float value = static_cast<float>(std::clamp(ratio, 0.0, 1.0));
  for (int i = 0; i < aircraft->engines; i++) F(refs.throttle, i) = F(refs.engineThrottle, i) = value;
}

double ThrottleForThrust(double newtons) {
  double share = newtons / (FullThrust() * aircraft->engines);
  return std::pow(std::clamp((share - 0.02) / 0.98, 0.0, 1.0), 1 / 1.5);
}

void StartEngines() {
  for (int i = 0; i < mostEngines; i++) {
    bool fitted = i < aircraft->engines;
    I(refs.running, i) = fitted ? 1 : 0;
    power[i] = fitted ? ReadThrottle(i) : 0;
    turning[i] = fitted ? 1 : 0;
    starterHeld[i] = false;
    starterLeft[i] = 0;
    F(refs.starter, i) = 0;
    F(refs.thrust, i) = F(refs.fuelFlow, i) = F(refs.throttleUse, i) = 0;
    F(refs.throttle, i) = F(refs.engineThrottle, i) = fitted ? F(refs.engineThrottle, i) : 0;
  }
}

void StepEngines(double dt) {
  double full = FullThrust();
  double burnt = 0;
  int reversers = 0;
  flight.thrust = 0;
  for (int i = 0; i < mostEngines; i++) {
    if (i >= aircraft->engines) {
      Clear(i);
      continue;
    }
    double flow = StepEngine(i, full, dt);
    burnt += flow * dt;
    if (I(refs.propMode, i) == reversed) reversers |= 1 << i;
    Show(i, dt);
  }
  I(refs.reverse) = reversers;
  Burn(burnt);
  for (int i = 0; i < 9; i++) F(refs.fuel, i) = static_cast<float>(flight.fuel[i]);
  double total = TotalFuel();
  F(refs.fuelTotal) = static_cast<float>(total);
  F(refs.massTotal) = static_cast<float>(EmptyMass() + total);
  StepApu(dt);
}

}  // namespace sim
