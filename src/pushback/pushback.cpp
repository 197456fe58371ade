#include "pushback/pushback.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "XPLMDataAccess.h"
#include "XPLMProcessing.h"
#include "base/log.h"
#include "bridge/catalogue/reposition.h"
#include "bridge/slew.h"
#include "bridge/sources.h"
#include "settings/settings.h"
#include "settings/settings_text.h"

int pushbackMode = pushbackOff;

namespace {

constexpr char section[] = "PUSHBACK SETTINGS";
constexpr double radians = std::numbers::pi / 180;
constexpr double rampStep = 0.009;          // m/s a frame, towards the wanted speed
constexpr double rollOutStep = 0.05;        // m/s a frame, back to standing
constexpr float turnShare = 0.25F;          // of the wanted speed, in a turn
constexpr double turnRateStep = 0.005;      // degrees a frame, a frame
constexpr double monitoredDistance = 39.5;  // metres

struct Handles {
  XPLMDataRef parkingBrake, localVx, localVz, heading, pitch, bank;
  XPLMDataRef overrideJoystick, overrideGearBrake, overrideStability;
  XPLMDataRef yokeHeading, leftBrake, rightBrake, distance;
};
Handles handles;

// Settings.
double maxSpeed;     // m/s, negative is backwards
float maxTurnSpeed;  // degrees a frame, never negative
float turnSpeed;     // m/s

bool active;
float speed;     // m/s
bool turning;    // a turn step has run: the turn speed counts
bool hasTurned;  // since the module was loaded
float turnRate;  // degrees a frame; kept from one turn to the next until a crash or the next enable
double turnedAngle;
bool distanceReached;
bool monitored;           // the distance monitor is registered
BrakeEffect brakeEffect;  // on the last command

double ReadFloat(XPLMDataRef handle) { return ReadNumber(handle, Accessor::Float, 0); }

void SetFloat(XPLMDataRef handle, float value) {
  if (handle != nullptr) XPLMSetDataf(handle, value);
}

void SetInt(XPLMDataRef handle, int value) {
  if (handle != nullptr) XPLMSetDatai(handle, value);
}

bool ParkingBrakeSet() { return ReadFloat(handles.parkingBrake) > 0; }

void SetOverrides(bool on) {
  SetInt(handles.overrideJoystick, on);
  SetInt(handles.overrideStability, on);
  SetInt(handles.overrideGearBrake, on);
}

void Stop() {
  pushbackMode = pushbackOff;
  active = false;
  SetOverrides(false);
}

// No roll-out. The turn rate stays for the next turn.
void StandStill() {
  speed = 0;
  turning = false;
}

void Start(int mode) {
  distanceReached = false;
  SetFloat(handles.distance, 0);
  pushbackMode = mode;
  SetOverrides(true);
  SetFloat(handles.yokeHeading, 0);
  SetFloat(handles.leftBrake, 0);
  SetFloat(handles.rightBrake, 0);
  active = true;
}

double AppliedSpeed() { return static_cast<double>(turning ? turnSpeed : speed); }

void ApplyVelocity() {
  const double along = AppliedSpeed();
  const double heading = ReadFloat(handles.heading) * radians;
  SetFloat(handles.localVx, static_cast<float>(along * std::sin(heading)));
  SetFloat(handles.localVz, static_cast<float>(-(along * std::cos(heading))));
}

void Turn() {
  if (!hasTurned) {
    hasTurned = true;
    turnedAngle = 0;
    turnRate = 0;
  }
  turning = true;
  turnRate = std::min(static_cast<float>(static_cast<double>(turnRate) + turnRateStep), maxTurnSpeed);
  turnedAngle += static_cast<double>(turnRate);
  double heading = ReadFloat(handles.heading);
  if (pushbackMode == pushbackTurnUp) {
    heading += static_cast<double>(turnRate);
    if (heading > 360) heading = 0;
  } else {
    heading -= static_cast<double>(turnRate);
    if (heading < 0) heading = 360;
  }
  SetQuaternion(EulerToQuaternion({ReadFloat(handles.pitch), ReadFloat(handles.bank), heading}));
}

// Towards the wanted speed by one step; once there, one step around it.
void Ramp() {
  const auto now = static_cast<double>(speed);
  if (maxSpeed < 0 && now > maxSpeed) {
    speed = static_cast<float>(now - rampStep);
  } else if (now < maxSpeed) {
    speed = static_cast<float>(now + rampStep);
  }
}

float DistanceMonitor(float, float, int, void*) {
  if (active && !distanceReached && pushbackMode > pushbackStraight &&
      ReadFloat(handles.distance) > monitoredDistance) {
    distanceReached = true;
  }
  return 1.0F;
}

double ReadOrComplete(const char* key, const char* byDefault) {
  char value[maxSettingValue + 1];
  if (ReadSetting(section, key, value, sizeof value) < 0) {
    WriteSetting(section, key, byDefault);
    if (ReadSetting(section, key, value, sizeof value) < 0) return ParseNumber(byDefault);  // not writable
  }
  return ParseNumber(value);
}

// Far beyond what the window takes; a number that no float holds would reach the simulator as infinity.
constexpr double mostSpeed = 100, mostTurnSpeed = 360;

double Limited(const char* key, double value, double low, double high) {
  if (value >= low && value <= high) return value;
  LogOwn("TAVRIX->\"%s\" in TAVRIX.ini is a number from %g to %g, not %g: it is limited\n", key, low, high,
         value);
  return std::clamp(value, low, high);
}

}  // namespace

void LoadPushbackSettings() {
  maxSpeed = Limited("MaxSpeed", ReadOrComplete("MaxSpeed", "-1.5"), -mostSpeed, mostSpeed);
  maxTurnSpeed =
      static_cast<float>(Limited("MaxTurnSpeed", ReadOrComplete("MaxTurnSpeed", "0.15"), 0, mostTurnSpeed));
  turnSpeed = static_cast<float>(maxSpeed) * turnShare;
}

void ConnectPushback() {
  ConnectPushbackRows({.state = [] { return pushbackMode; }, .command = CommandPushback});
}

void InitPushback() {
  handles = {.parkingBrake = XPLMFindDataRef("sim/flightmodel/controls/parkbrake"),
             .localVx = XPLMFindDataRef("sim/flightmodel/position/local_vx"),
             .localVz = XPLMFindDataRef("sim/flightmodel/position/local_vz"),
             .heading = XPLMFindDataRef("sim/flightmodel/position/psi"),
             .pitch = XPLMFindDataRef("sim/flightmodel/position/theta"),
             .bank = XPLMFindDataRef("sim/flightmodel/position/phi"),
             .overrideJoystick = XPLMFindDataRef("sim/operation/override/override_joystick"),
             .overrideGearBrake = XPLMFindDataRef("sim/operation/override/override_gearbrake"),
             .overrideStability = XPLMFindDataRef("sim/operation/override/override_artstab"),
             .yokeHeading = XPLMFindDataRef("sim/joystick/yoke_heading_ratio"),
             .leftBrake = XPLMFindDataRef("sim/flightmodel/controls/l_brake_add"),
             .rightBrake = XPLMFindDataRef("sim/flightmodel/controls/r_brake_add"),
             .distance = XPLMFindDataRef("sim/flightmodel/controls/dist")};
  LoadPushbackSettings();
  if (!monitored) XPLMRegisterFlightLoopCallback(DistanceMonitor, 1.0F, nullptr);
  monitored = true;
}

void StopPushback() {
  if (monitored) XPLMUnregisterFlightLoopCallback(DistanceMonitor, nullptr);
  monitored = false;
  AbortPushback();  // it does not roll on at the next enable
  handles = {};     // found anew at the next enable
}

void CommandPushback(uint32_t command) {
  if (command == pushbackOff) {
    distanceReached = false;
    brakeEffect = BrakeEffect::None;
    Stop();
    return;
  }
  const bool refused = ParkingBrakeSet();
  brakeEffect = refused ? BrakeEffect::Refused : BrakeEffect::None;
  if (refused) {
    StandStill();
    distanceReached = false;
    Stop();
    return;
  }
  Start(command < pushbackOff ? static_cast<int>(command) : pushbackStraight);
}

PushbackView LookAtPushback() {
  return {.begun = monitored,
          .mode = pushbackMode,
          .speed = active || speed < 0 ? AppliedSpeed() : 0,
          .brake = ParkingBrakeSet() ? brakeEffect : BrakeEffect::None,
          .maxSpeed = maxSpeed,
          .maxTurnSpeed = maxTurnSpeed};
}

void PushbackStep() {
  if (!active) {
    if (speed >= 0) return;
    speed = static_cast<float>(static_cast<double>(speed) + rollOutStep);
    ApplyVelocity();
    return;
  }
  Ramp();
  ApplyVelocity();
  if (pushbackMode == pushbackTurnUp || pushbackMode == pushbackTurnDown) Turn();
  if (!ParkingBrakeSet()) return;
  brakeEffect = BrakeEffect::Ended;
  Stop();
  StandStill();
}

void AbortPushback() {
  if (active) Stop();
  brakeEffect = BrakeEffect::None;
  StandStill();
  turnRate = 0;
}
