// Keys, buttons and commands of the simulator itself, and what they do: one row each.
#include <algorithm>
#include <cmath>
#include <string>

#include "XPLMUtilities.h"
#include "core/table.h"
#include "flight/flight.h"
#include "world/refs.h"

namespace sim {

namespace {

// What happens on a key, a button or a command. Of the figures each function uses those that it names.
struct Deed {
  void (*act)(const Deed&) = nullptr;              // once, when it is pressed
  void (*hold)(const Deed&, bool held) = nullptr;  // when it is pressed, each frame of a command, when released
  DataRef** ref = nullptr;                         // the dial, lever or switch that is moved
  double by = 0;                                   // how far it is moved, or where to
  double low = 0, high = 0;                        // ends of a dial
  int number = 0;                                  // mode bits, position of a key, brake
  int engine = 0;                                  // from 0
};

constexpr int engineCount = 8;
constexpr double flapNotch = 0.125;
constexpr int toga = apTogaLateral | apTogaVertical;
enum : int { leftBrake, rightBrake, bothBrakes };

// --- The functions of the rows ---------------------------------------------------------------------

void TogglePause(const Deed&) {
  paused = !paused;
  I(refs.paused) = paused ? 1 : 0;
}

void ToggleReverse(const Deed&) {
  for (int i = 0; i < aircraft->engines; i++) I(refs.propMode, i) = I(refs.propMode, i) == 3 ? 1 : 3;
}

// Between off and on.
void ToggleSwitch(const Deed& it) { I(*it.ref) = I(*it.ref) == 0 ? 1 : 0; }

// Between 0 and `by`.
void ToggleLever(const Deed& it) { F(*it.ref) = F(*it.ref) > 0 ? 0 : static_cast<float>(it.by); }

void SetLever(const Deed& it) { F(*it.ref) = static_cast<float>(it.by); }

// By a step, as far as its ends.
void MoveDial(const Deed& it) {
  F(*it.ref) = static_cast<float>(std::clamp(static_cast<double>(F(*it.ref)) + it.by, it.low, it.high));
  if (circuitFlight && (*it.ref)->onSet != nullptr) (*it.ref)->onSet(*it.ref, 0, 1);
}

// By a step of degrees, round and round.
void TurnDial(const Deed& it) {
  F(*it.ref) = static_cast<float>(std::fmod(static_cast<double>(F(*it.ref)) + it.by + 360, 360));
}

void MoveThrottles(const Deed& it) {
  for (int i = 0; i < aircraft->engines; i++) {
    F(refs.throttle, i) = F(refs.engineThrottle, i) =
        static_cast<float>(std::clamp(static_cast<double>(F(refs.throttle, i)) + it.by, 0.0, 1.0));
  }
  hands.throttle = true;
}

void MoveFlaps(const Deed& it) { RequestFlaps(static_cast<double>(F(refs.flapRequest)) + it.by); }

// 1 is down.
void MoveGear(const Deed& it) { RequestGear(it.by > 0); }
void ToggleGear(const Deed&) { RequestGear(I(refs.gearHandle) == 0); }

void CentreRudder(const Deed&) {
  for (DataRef* ref : {refs.yokeYaw, refs.yokeYawTwin, refs.rudderTrim, refs.rudderTrimTwin}) F(ref) = 0;
}

void PressMode(const Deed& it) { PressModes(it.number); }

// The two modes of an approach go on and off together.
void PressApproach(const Deed&) {
  constexpr int armed = apNavArmed | apGlideArmed, engaged = apNav | apGlide;
  if ((I(refs.apState) & (armed | engaged)) != 0) {
    I(refs.apState) &= ~(armed | engaged);
  } else {
    PressModes(armed);
  }
}

void PressBackCourseButton(const Deed&) { PressBackCourse(); }
void Disconnect(const Deed&) { DisconnectAutopilot(); }
void ToggleServos(const Deed&) { I(refs.apMode) = I(refs.apMode) == 2 ? 0 : 2; }

void TurnMagneto(const Deed& it) { I(refs.ignition, it.engine) = it.number; }

void HoldOneStarter(const Deed& it, bool held) { HoldStarter(it.engine, held); }
void HoldAllStarters(const Deed&, bool held) {
  for (int i = 0; i < engineCount; i++) HoldStarter(i, held);
}

void HoldBrake(const Deed& it, bool held) { flight.keyBrake[it.number] = held; }

// --- The rows --------------------------------------------------------------------------------------

// A key or button by its public number. Views, tuning wheels and the like change nothing that is simulated.
struct PressRow {
  int id = -1;
  Deed does = {};
};

constexpr PressRow keyRows[] = {
    {.id = xplm_key_pause, .does = {.act = TogglePause}},
    {.id = xplm_key_revthrust, .does = {.act = ToggleReverse}},
    {.id = xplm_key_jettison},
    {.id = xplm_key_brakesreg, .does = {.act = ToggleLever, .ref = &refs.parkBrake, .by = 0.5}},
    {.id = xplm_key_brakesmax, .does = {.act = ToggleLever, .ref = &refs.parkBrake, .by = 1}},
    {.id = xplm_key_gear, .does = {.act = ToggleGear}},
    {.id = xplm_key_timedn},
    {.id = xplm_key_timeup},
    {.id = xplm_key_fadec},
    {.id = xplm_key_otto_dis, .does = {.act = Disconnect}},
    {.id = xplm_key_otto_atr, .does = {.act = PressMode, .number = apAutothrottle}},
    {.id = xplm_key_otto_asi, .does = {.act = PressMode, .number = apSpeedByPitch}},
    {.id = xplm_key_otto_hdg, .does = {.act = PressMode, .number = apHeading}},
    {.id = xplm_key_otto_gps},
    {.id = xplm_key_otto_lev, .does = {.act = PressMode, .number = apLeveler}},
    {.id = xplm_key_otto_hnav, .does = {.act = PressMode, .number = apNavArmed}},
    {.id = xplm_key_otto_alt, .does = {.act = PressMode, .number = apAltitude}},
    {.id = xplm_key_otto_vvi, .does = {.act = PressMode, .number = apVerticalSpeed}},
    {.id = xplm_key_otto_vnav, .does = {.act = PressMode, .number = apGlideArmed}},
    {.id = xplm_key_otto_nav1},
    {.id = xplm_key_otto_nav2},
    {.id = xplm_key_targ_dn},
    {.id = xplm_key_targ_up},
    {.id = xplm_key_hdgdn, .does = {.act = TurnDial, .ref = &refs.apHeading, .by = -1}},
    {.id = xplm_key_hdgup, .does = {.act = TurnDial, .ref = &refs.apHeading, .by = 1}},
    {.id = xplm_key_barodn,
     .does = {.act = MoveDial, .ref = &refs.barometerSetting, .by = -0.01, .low = 27, .high = 32}},
    {.id = xplm_key_baroup,
     .does = {.act = MoveDial, .ref = &refs.barometerSetting, .by = 0.01, .low = 27, .high = 32}},
    {.id = xplm_key_obs1dn, .does = {.act = TurnDial, .ref = &refs.navObs[0], .by = -1}},
    {.id = xplm_key_obs1up, .does = {.act = TurnDial, .ref = &refs.navObs[0], .by = 1}},
    {.id = xplm_key_obs2dn, .does = {.act = TurnDial, .ref = &refs.navObs[1], .by = -1}},
    {.id = xplm_key_obs2up, .does = {.act = TurnDial, .ref = &refs.navObs[1], .by = 1}},
    {.id = xplm_key_com1_1},
    {.id = xplm_key_com1_2},
    {.id = xplm_key_com1_3},
    {.id = xplm_key_com1_4},
    {.id = xplm_key_nav1_1},
    {.id = xplm_key_nav1_2},
    {.id = xplm_key_nav1_3},
    {.id = xplm_key_nav1_4},
    {.id = xplm_key_com2_1},
    {.id = xplm_key_com2_2},
    {.id = xplm_key_com2_3},
    {.id = xplm_key_com2_4},
    {.id = xplm_key_nav2_1},
    {.id = xplm_key_nav2_2},
    {.id = xplm_key_nav2_3},
    {.id = xplm_key_nav2_4},
    {.id = xplm_key_adf_1},
    {.id = xplm_key_adf_2},
    {.id = xplm_key_adf_3},
    {.id = xplm_key_adf_4},
    {.id = xplm_key_adf_5},
    {.id = xplm_key_adf_6},
    {.id = xplm_key_transpon_1},
    {.id = xplm_key_transpon_2},
    {.id = xplm_key_transpon_3},
    {.id = xplm_key_transpon_4},
    {.id = xplm_key_transpon_5},
    {.id = xplm_key_transpon_6},
    {.id = xplm_key_transpon_7},
    {.id = xplm_key_transpon_8},
    {.id = xplm_key_flapsup, .does = {.act = MoveFlaps, .by = -flapNotch}},
    {.id = xplm_key_flapsdn, .does = {.act = MoveFlaps, .by = flapNotch}},
    {.id = xplm_key_cheatoff},
    {.id = xplm_key_cheaton},
    {.id = xplm_key_sbrkoff, .does = {.act = SetLever, .ref = &refs.speedBrakeRequest, .by = 0}},
    {.id = xplm_key_sbrkon, .does = {.act = SetLever, .ref = &refs.speedBrakeRequest, .by = 1}},
    {.id = xplm_key_ailtrimL,
     .does = {.act = MoveDial, .ref = &refs.aileronTrim, .by = -0.02, .low = -1, .high = 1}},
    {.id = xplm_key_ailtrimR,
     .does = {.act = MoveDial, .ref = &refs.aileronTrim, .by = 0.02, .low = -1, .high = 1}},
    {.id = xplm_key_rudtrimL,
     .does = {.act = MoveDial, .ref = &refs.rudderTrim, .by = -0.02, .low = -1, .high = 1}},
    {.id = xplm_key_rudtrimR,
     .does = {.act = MoveDial, .ref = &refs.rudderTrim, .by = 0.02, .low = -1, .high = 1}},
    {.id = xplm_key_elvtrimD,
     .does = {.act = MoveDial, .ref = &refs.elevatorTrim, .by = -0.02, .low = -1, .high = 1}},
    {.id = xplm_key_elvtrimU,
     .does = {.act = MoveDial, .ref = &refs.elevatorTrim, .by = 0.02, .low = -1, .high = 1}},
    {.id = xplm_key_forward},
    {.id = xplm_key_down},
    {.id = xplm_key_left},
    {.id = xplm_key_right},
    {.id = xplm_key_back},
    {.id = xplm_key_tower},
    {.id = xplm_key_runway},
    {.id = xplm_key_chase},
    {.id = xplm_key_free1},
    {.id = xplm_key_free2},
    {.id = xplm_key_spot},
    {.id = xplm_key_fullscrn1},
    {.id = xplm_key_fullscrn2},
    {.id = xplm_key_tanspan},
    {.id = xplm_key_smoke},
    {.id = xplm_key_map},
    {.id = xplm_key_zoomin},
    {.id = xplm_key_zoomout},
    {.id = xplm_key_cycledump},
    {.id = xplm_key_replay},
    {.id = xplm_key_tranID},
};

constexpr PressRow buttonRows[] = {
    {.id = xplm_joy_nothing},
    {.id = xplm_joy_start_all, .does = {.hold = HoldAllStarters}},
    {.id = xplm_joy_start_0, .does = {.hold = HoldOneStarter, .engine = 0}},
    {.id = xplm_joy_start_1, .does = {.hold = HoldOneStarter, .engine = 1}},
    {.id = xplm_joy_start_2, .does = {.hold = HoldOneStarter, .engine = 2}},
    {.id = xplm_joy_start_3, .does = {.hold = HoldOneStarter, .engine = 3}},
    {.id = xplm_joy_start_4, .does = {.hold = HoldOneStarter, .engine = 4}},
    {.id = xplm_joy_start_5, .does = {.hold = HoldOneStarter, .engine = 5}},
    {.id = xplm_joy_start_6, .does = {.hold = HoldOneStarter, .engine = 6}},
    {.id = xplm_joy_start_7, .does = {.hold = HoldOneStarter, .engine = 7}},
    {.id = xplm_joy_throt_up, .does = {.act = MoveThrottles, .by = 0.05}},
    {.id = xplm_joy_throt_dn, .does = {.act = MoveThrottles, .by = -0.05}},
    {.id = xplm_joy_prop_up},
    {.id = xplm_joy_prop_dn},
    {.id = xplm_joy_mixt_up},
    {.id = xplm_joy_mixt_dn},
    {.id = xplm_joy_carb_tog},
    {.id = xplm_joy_carb_on},
    {.id = xplm_joy_carb_off},
    {.id = xplm_joy_trev, .does = {.act = ToggleReverse}},
    {.id = xplm_joy_trm_up,
     .does = {.act = MoveDial, .ref = &refs.elevatorTrim, .by = 0.02, .low = -1, .high = 1}},
    {.id = xplm_joy_trm_dn,
     .does = {.act = MoveDial, .ref = &refs.elevatorTrim, .by = -0.02, .low = -1, .high = 1}},
    {.id = xplm_joy_rot_trm_up},
    {.id = xplm_joy_rot_trm_dn},
    {.id = xplm_joy_rud_lft},
    {.id = xplm_joy_rud_cntr, .does = {.act = CentreRudder}},
    {.id = xplm_joy_rud_rgt},
    {.id = xplm_joy_ail_lft},
    {.id = xplm_joy_ail_cntr},
    {.id = xplm_joy_ail_rgt},
    {.id = xplm_joy_B_rud_lft},
    {.id = xplm_joy_B_rud_rgt},
    {.id = xplm_joy_look_up},
    {.id = xplm_joy_look_dn},
    {.id = xplm_joy_look_lft},
    {.id = xplm_joy_look_rgt},
    {.id = xplm_joy_glance_l},
    {.id = xplm_joy_glance_r},
    {.id = xplm_joy_v_fnh},
    {.id = xplm_joy_v_fwh},
    {.id = xplm_joy_v_tra},
    {.id = xplm_joy_v_twr},
    {.id = xplm_joy_v_run},
    {.id = xplm_joy_v_cha},
    {.id = xplm_joy_v_fr1},
    {.id = xplm_joy_v_fr2},
    {.id = xplm_joy_v_spo},
    {.id = xplm_joy_flapsup, .does = {.act = MoveFlaps, .by = -flapNotch}},
    {.id = xplm_joy_flapsdn, .does = {.act = MoveFlaps, .by = flapNotch}},
    {.id = xplm_joy_vctswpfwd},
    {.id = xplm_joy_vctswpaft},
    {.id = xplm_joy_gear_tog, .does = {.act = ToggleGear}},
    {.id = xplm_joy_gear_up, .does = {.act = MoveGear, .by = 0}},
    {.id = xplm_joy_gear_down, .does = {.act = MoveGear, .by = 1}},
    {.id = xplm_joy_lft_brake, .does = {.hold = HoldBrake, .number = leftBrake}},
    {.id = xplm_joy_rgt_brake, .does = {.hold = HoldBrake, .number = rightBrake}},
    {.id = xplm_joy_brakesREG, .does = {.hold = HoldBrake, .number = bothBrakes}},
    {.id = xplm_joy_brakesMAX, .does = {.hold = HoldBrake, .number = bothBrakes}},
    {.id = xplm_joy_speedbrake, .does = {.act = ToggleLever, .ref = &refs.speedBrakeRequest, .by = 1}},
    {.id = xplm_joy_ott_dis, .does = {.act = Disconnect}},
    {.id = xplm_joy_ott_atr, .does = {.act = PressMode, .number = apAutothrottle}},
    {.id = xplm_joy_ott_asi, .does = {.act = PressMode, .number = apSpeedByPitch}},
    {.id = xplm_joy_ott_hdg, .does = {.act = PressMode, .number = apHeading}},
    {.id = xplm_joy_ott_alt, .does = {.act = PressMode, .number = apAltitude}},
    {.id = xplm_joy_ott_vvi, .does = {.act = PressMode, .number = apVerticalSpeed}},
    {.id = xplm_joy_tim_start},
    {.id = xplm_joy_tim_reset},
    {.id = xplm_joy_ecam_up},
    {.id = xplm_joy_ecam_dn},
    {.id = xplm_joy_fadec},
    {.id = xplm_joy_yaw_damp, .does = {.act = ToggleSwitch, .ref = &refs.yawDamper}},
    {.id = xplm_joy_art_stab},
    {.id = xplm_joy_chute},
    {.id = xplm_joy_JATO},
    {.id = xplm_joy_arrest},
    {.id = xplm_joy_jettison},
    {.id = xplm_joy_fuel_dump},
    {.id = xplm_joy_puffsmoke},
    {.id = xplm_joy_prerotate},
    {.id = xplm_joy_UL_prerot},
    {.id = xplm_joy_UL_collec},
    {.id = xplm_joy_TOGA, .does = {.act = PressMode, .number = toga}},
    {.id = xplm_joy_shutdown},
    {.id = xplm_joy_con_atc},
    {.id = xplm_joy_fail_now},
    {.id = xplm_joy_pause, .does = {.act = TogglePause}},
    {.id = xplm_joy_rock_up},
    {.id = xplm_joy_rock_dn},
    {.id = xplm_joy_rock_lft},
    {.id = xplm_joy_rock_rgt},
    {.id = xplm_joy_rock_for},
    {.id = xplm_joy_rock_aft},
    {.id = xplm_joy_idle_hilo},
    {.id = xplm_joy_lanlights, .does = {.act = ToggleSwitch, .ref = &refs.landingLights}},
};

static_assert(IsTableOf<&PressRow::id>(keyRows, xplm_key_max - 1));
static_assert(IsTableOf<&PressRow::id>(buttonRows, xplm_joy_max - 1));

struct CommandRow {
  const char* name = "";
  bool perEngine = false;  // a command for each engine, the name ends in its number from 1
  Deed does = {};
};

constexpr CommandRow commandRows[] = {
    {.name = "sim/magnetos/magnetos_off_", .perEngine = true, .does = {.act = TurnMagneto, .number = 0}},
    {.name = "sim/magnetos/magnetos_left_", .perEngine = true, .does = {.act = TurnMagneto, .number = 1}},
    {.name = "sim/magnetos/magnetos_right_", .perEngine = true, .does = {.act = TurnMagneto, .number = 2}},
    {.name = "sim/magnetos/magnetos_both_", .perEngine = true, .does = {.act = TurnMagneto, .number = 3}},
    {.name = "sim/starters/engage_starter_", .perEngine = true, .does = {.hold = HoldOneStarter}},
    {.name = "sim/autopilot/back_course", .does = {.act = PressBackCourseButton}},
    {.name = "sim/autopilot/approach", .does = {.act = PressApproach}},
    {.name = "sim/autopilot/autothrottle_toggle", .does = {.act = PressMode, .number = apAutothrottle}},
    {.name = "sim/autopilot/take_off_go_around", .does = {.act = PressMode, .number = toga}},
    {.name = "sim/autopilot/heading", .does = {.act = PressMode, .number = apHeading}},
    {.name = "sim/autopilot/NAV", .does = {.act = PressMode, .number = apNavArmed}},
    {.name = "sim/autopilot/wing_leveler", .does = {.act = PressMode, .number = apLeveler}},
    {.name = "sim/autopilot/altitude_hold", .does = {.act = PressMode, .number = apAltitude}},
    {.name = "sim/autopilot/altitude_arm", .does = {.act = PressMode, .number = apAltitudeArmed}},
    {.name = "sim/autopilot/vertical_speed", .does = {.act = PressMode, .number = apVerticalSpeed}},
    {.name = "sim/autopilot/level_change", .does = {.act = PressMode, .number = apLevelChange}},
    {.name = "sim/autopilot/airspeed_sync"},
    {.name = "sim/autopilot/servos_toggle", .does = {.act = ToggleServos}},
    {.name = "sim/autopilot/fdir_toggle", .does = {.act = ToggleSwitch, .ref = &refs.apMode}},
    {.name = "sim/autopilot/disconnect", .does = {.act = Disconnect}},
    {.name = "sim/operation/contact_atc"},
    {.name = "sim/operation/pause_toggle", .does = {.act = TogglePause}},
    {.name = "sim/engines/TOGA_power", .does = {.act = PressMode, .number = toga}},
    {.name = "sim/engines/throttle_up", .does = {.act = MoveThrottles, .by = 0.05}},
    {.name = "sim/engines/throttle_down", .does = {.act = MoveThrottles, .by = -0.05}},
    {.name = "sim/flight_controls/rudder_ctr", .does = {.act = CentreRudder}},
    {.name = "sim/flight_controls/landing_gear_up", .does = {.act = MoveGear, .by = 0}},
    {.name = "sim/flight_controls/landing_gear_down", .does = {.act = MoveGear, .by = 1}},
    {.name = "sim/flight_controls/landing_gear_toggle", .does = {.act = ToggleGear}},
    {.name = "sim/flight_controls/flaps_up", .does = {.act = MoveFlaps, .by = -flapNotch}},
    {.name = "sim/flight_controls/flaps_down", .does = {.act = MoveFlaps, .by = flapNotch}},
    {.name = "sim/flight_controls/brakes_regular", .does = {.hold = HoldBrake, .number = bothBrakes}},
    {.name = "sim/flight_controls/brakes_toggle_max",
     .does = {.act = ToggleLever, .ref = &refs.parkBrake, .by = 1}},
};

void RunCommand(int phase, int tag) {
  Deed deed = commandRows[tag / engineCount].does;
  deed.engine = tag % engineCount;
  if (deed.hold != nullptr) deed.hold(deed, phase != xplm_CommandEnd);
  if (deed.act != nullptr && phase == xplm_CommandBegin) deed.act(deed);
}

}  // namespace

void PublishCommands() {
  int tag = 0;
  for (const CommandRow& row : commandRows) {
    for (int i = 0; i < (row.perEngine ? engineCount : 1); i++) {
      const std::string name = row.perEngine ? row.name + std::to_string(i + 1) : row.name;
      PublishCommand(name.c_str(), RunCommand, tag + i);
    }
    tag += engineCount;
  }
}

void WorldKey(int key) {
  if (key < 0 || key >= xplm_key_max) return;
  const Deed& deed = keyRows[key].does;
  if (deed.act != nullptr) deed.act(deed);
}

void WorldButton(int button, bool pressed) {
  if (button < 0 || button >= xplm_joy_max) return;
  const Deed& deed = buttonRows[button].does;
  if (deed.hold != nullptr) deed.hold(deed, pressed);
  if (deed.act != nullptr && pressed) deed.act(deed);
}

}  // namespace sim
