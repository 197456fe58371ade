// Keys, buttons and commands of the simulator itself, and what they do.
#include <algorithm>
#include <cmath>
#include <string>

#include "flight/flight.h"
#include "world/refs.h"

namespace sim {

namespace {

void TogglePause() {
  paused = !paused;
  I(refs.paused) = paused ? 1 : 0;
}

void Nudge(DataRef* ref, double by, double low, double high) {
  F(ref) = static_cast<float>(std::clamp(static_cast<double>(F(ref)) + by, low, high));
  if (circuitFlight && ref->onSet != nullptr) ref->onSet(ref, 0, 1);
}

void NudgeRound(DataRef* ref, double by) {
  double value = std::fmod(static_cast<double>(F(ref)) + by + 360, 360);
  F(ref) = static_cast<float>(value);
}

void NudgeThrottle(double by) {
  for (int i = 0; i < aircraft->engines; i++) {
    F(refs.throttle, i) = F(refs.engineThrottle, i) =
        static_cast<float>(std::clamp(static_cast<double>(F(refs.throttle, i)) + by, 0.0, 1.0));
  }
  hands.throttle = true;
}

void ToggleReverse() {
  for (int i = 0; i < aircraft->engines; i++) I(refs.propMode, i) = I(refs.propMode, i) == 3 ? 1 : 3;
}

void ToggleInt(const char* name) {
  if (DataRef* ref = FindLive(name)) I(ref) = I(ref) == 0 ? 1 : 0;
}

void CentreRudder() {
  F(refs.yokeYaw) = 0;
  F(refs.rudderTrim) = 0;
  for (const char* name : {"sim/joystick/yoke_heading_ratio", "sim/cockpit2/controls/rudder_trim"}) {
    if (DataRef* ref = FindLive(name)) F(ref) = 0;
  }
}

void Hold(int brake, bool held) { flight.keyBrake[brake] = held; }

enum Deed {
  Magnetos,  // number: engine * 4 + key position
  Starter,
  Modes,
  BackCourse,
  Toga,
  Nothing,
  Rudder,
  Pause,
  GearUp,
  GearDown,
  GearToggle,
  FlapsUp,
  FlapsDown,
  BrakesHeld,
  ParkBrake,
  ThrottleUp,
  ThrottleDown,
  FlightDirector,
  Servos,
  Disconnect,
};

struct CommandRow {
  const char* name;  // %d: engine 1 to 8
  Deed deed;
  int number = 0;
};
const CommandRow commandRows[] = {
    {"sim/magnetos/magnetos_off_%d", Magnetos, 0},
    {"sim/magnetos/magnetos_left_%d", Magnetos, 1},
    {"sim/magnetos/magnetos_right_%d", Magnetos, 2},
    {"sim/magnetos/magnetos_both_%d", Magnetos, 3},
    {"sim/starters/engage_starter_%d", Starter},
    {"sim/autopilot/back_course", BackCourse},
    {"sim/autopilot/approach", Modes, apNavArmed | apGlideArmed},
    {"sim/autopilot/autothrottle_toggle", Modes, apAutothrottle},
    {"sim/autopilot/take_off_go_around", Toga},
    {"sim/autopilot/heading", Modes, apHeading},
    {"sim/autopilot/NAV", Modes, apNavArmed},
    {"sim/autopilot/wing_leveler", Modes, apLeveler},
    {"sim/autopilot/altitude_hold", Modes, apAltitude},
    {"sim/autopilot/altitude_arm", Modes, apAltitudeArmed},
    {"sim/autopilot/vertical_speed", Modes, apVerticalSpeed},
    {"sim/autopilot/level_change", Modes, apLevelChange},
    {"sim/autopilot/airspeed_sync", Nothing},
    {"sim/autopilot/servos_toggle", Servos},
    {"sim/autopilot/fdir_toggle", FlightDirector},
    {"sim/autopilot/disconnect", Disconnect},
    {"sim/operation/contact_atc", Nothing},
    {"sim/operation/pause_toggle", Pause},
    {"sim/engines/TOGA_power", Toga},
    {"sim/engines/throttle_up", ThrottleUp},
    {"sim/engines/throttle_down", ThrottleDown},
    {"sim/flight_controls/rudder_ctr", Rudder},
    {"sim/flight_controls/landing_gear_up", GearUp},
    {"sim/flight_controls/landing_gear_down", GearDown},
    {"sim/flight_controls/landing_gear_toggle", GearToggle},
    {"sim/flight_controls/flaps_up", FlapsUp},
    {"sim/flight_controls/flaps_down", FlapsDown},
    {"sim/flight_controls/brakes_regular", BrakesHeld},
    {"sim/flight_controls/brakes_toggle_max", ParkBrake},
};

void Once(Deed deed, int number) {
  switch (deed) {
    case Magnetos:
      I(refs.ignition, number / 4) = number % 4;
      break;
    case Modes:
      // The two of an approach go on and off together.
      if (number == (apNavArmed | apGlideArmed) && (I(refs.apState) & (number | apNav | apGlide)) != 0) {
        I(refs.apState) &= ~(number | apNav | apGlide);
      } else {
        PressModes(number);
      }
      break;
    case BackCourse:
      PressBackCourse();
      break;
    case Toga:
      PressToga();
      break;
    case Rudder:
      CentreRudder();
      break;
    case Pause:
      TogglePause();
      break;
    case GearUp:
      RequestGear(false);
      break;
    case GearDown:
      RequestGear(true);
      break;
    case GearToggle:
      RequestGear(I(refs.gearHandle) == 0);
      break;
    case FlapsUp:
      RequestFlaps(static_cast<double>(F(refs.flapRequest)) - 0.125);
      break;
    case FlapsDown:
      RequestFlaps(static_cast<double>(F(refs.flapRequest)) + 0.125);
      break;
    case ParkBrake:
      F(refs.parkBrake) = F(refs.parkBrake) > 0 ? 0.0F : 1.0F;
      break;
    case ThrottleUp:
      NudgeThrottle(0.05);
      break;
    case ThrottleDown:
      NudgeThrottle(-0.05);
      break;
    case FlightDirector:
      I(refs.apMode) = I(refs.apMode) == 0 ? 1 : 0;
      break;
    case Servos:
      I(refs.apMode) = I(refs.apMode) == 2 ? 0 : 2;
      break;
    case Disconnect:
      DisconnectAutopilot();
      break;
    default:
      break;
  }
}

void RunCommand(int phase, int tag) {
  Deed deed = static_cast<Deed>(tag / 1000000);
  int number = tag % 1000000;
  if (deed == Starter) {
    HoldStarter(number, phase != 2);
  } else if (deed == BrakesHeld) {
    Hold(2, phase != 2);
  } else if (phase == 0) {
    Once(deed, number);
  }
}

int Mode(int key) {
  const int modes[] = {apAutothrottle, apSpeedByPitch, apHeading,       0,           apLeveler,
                       apNavArmed,     apAltitude,     apVerticalSpeed, apGlideArmed};
  return modes[key - 10];
}

}  // namespace

void PublishCommands() {
  for (const CommandRow& row : commandRows) {
    std::string name = row.name;
    size_t engine = name.find("%d");
    for (int i = 0; i < (engine == std::string::npos ? 1 : 8); i++) {
      std::string full = name;
      int number = row.number;
      if (engine != std::string::npos) {
        full.resize(engine);
        full.push_back(static_cast<char>('1' + i));
        number = row.deed == Magnetos ? i * 4 + row.number : i;
      }
      PublishCommand(full.c_str(), RunCommand, row.deed * 1000000 + number);
    }
  }
}

void WorldKey(int key) {
  switch (key) {
    case 0:
      TogglePause();
      break;
    case 1:
      ToggleReverse();
      break;
    case 3:
    case 4:
      F(refs.parkBrake) = F(refs.parkBrake) > 0 ? 0.0F : key == 3 ? 0.5F : 1.0F;
      break;
    case 5:
      RequestGear(I(refs.gearHandle) == 0);
      break;
    case 9:
      DisconnectAutopilot();
      break;
    case 10:
    case 11:
    case 12:
    case 13:
    case 14:
    case 15:
    case 16:
    case 17:
    case 18:
      PressModes(Mode(key));
      break;
    case 23:
      NudgeRound(refs.apHeading, -1);
      break;
    case 24:
      NudgeRound(refs.apHeading, 1);
      break;
    case 25:
      Nudge(refs.barometerSetting, -0.01, 27, 32);
      break;
    case 26:
      Nudge(refs.barometerSetting, 0.01, 27, 32);
      break;
    case 27:
      NudgeRound(refs.navObs[0], -1);
      break;
    case 28:
      NudgeRound(refs.navObs[0], 1);
      break;
    case 29:
      NudgeRound(refs.navObs[1], -1);
      break;
    case 30:
      NudgeRound(refs.navObs[1], 1);
      break;
    case 61:
      Once(FlapsUp, 0);
      break;
    case 62:
      Once(FlapsDown, 0);
      break;
    case 65:
      F(refs.speedBrakeRequest) = 0;
      break;
    case 66:
      F(refs.speedBrakeRequest) = 1;
      break;
    case 67:
      Nudge(refs.aileronTrim, -0.02, -1, 1);
      break;
    case 68:
      Nudge(refs.aileronTrim, 0.02, -1, 1);
      break;
    case 69:
      Nudge(refs.rudderTrim, -0.02, -1, 1);
      break;
    case 70:
      Nudge(refs.rudderTrim, 0.02, -1, 1);
      break;
    case 71:
      Nudge(refs.elevatorTrim, -0.02, -1, 1);
      break;
    case 72:
      Nudge(refs.elevatorTrim, 0.02, -1, 1);
      break;
    default:
      break;  // views, tuning wheels and the like change nothing that is simulated
  }
}

void WorldButton(int button, bool pressed) {
  if (button >= 1 && button <= 9) {  // all starters, then one by one
    for (int i = 0; i < 8; i++) {
      if (button == 1 || button == i + 2) HoldStarter(i, pressed);
    }
    return;
  }
  if (button >= 54 && button <= 57) {
    Hold(std::min(button - 54, 2), pressed);
    return;
  }
  if (!pressed) return;
  switch (button) {
    case 10:
      NudgeThrottle(0.05);
      break;
    case 11:
      NudgeThrottle(-0.05);
      break;
    case 19:
      ToggleReverse();
      break;
    case 20:
      Nudge(refs.elevatorTrim, 0.02, -1, 1);
      break;
    case 21:
      Nudge(refs.elevatorTrim, -0.02, -1, 1);
      break;
    case 25:
      CentreRudder();
      break;
    case 47:
      Once(FlapsUp, 0);
      break;
    case 48:
      Once(FlapsDown, 0);
      break;
    case 51:
      Once(GearToggle, 0);
      break;
    case 52:
      RequestGear(false);
      break;
    case 53:
      RequestGear(true);
      break;
    case 58:
      F(refs.speedBrakeRequest) = F(refs.speedBrakeRequest) > 0 ? 0.0F : 1.0F;
      break;
    case 59:
      DisconnectAutopilot();
      break;
    case 60:
      PressModes(apAutothrottle);
      break;
    case 61:
      PressModes(apSpeedByPitch);
      break;
    case 62:
      PressModes(apHeading);
      break;
    case 63:
      PressModes(apAltitude);
      break;
    case 64:
      PressModes(apVerticalSpeed);
      break;
    case 70:
      ToggleInt("sim/cockpit/switches/yaw_damper_on");
      break;
    case 81:
      PressToga();
      break;
    case 85:
      TogglePause();
      break;
    case 93:
      ToggleInt("sim/cockpit2/switches/landing_lights_on");
      break;
    default:
      break;
  }
}

}  // namespace sim
