// Autopilot, autothrottle, flight director, autobrake.
//
// Add-on aircraft have their own panels: each row uses the first loaded add-on that has the function, else
// the simulator's own autopilot. Where a writer can only toggle (a key, a command, a pressed bit), it
// compares the wanted state with the aircraft's and acts only when they differ.
#include <algorithm>
#include <cmath>

#include "XPLMUtilities.h"
#include "bridge/catalogue.h"
#include "bridge/catalogue/losses.h"

namespace {

constexpr Source autopilotState = Int<"sim/cockpit/autopilot/autopilot_state">;
constexpr Source autopilotMode = Int<"sim/cockpit/autopilot/autopilot_mode">;  // 0 off, 1 flight director, 2 on

// Bits of the simulator's autopilot state. A bit that is set acts as a press of that button.
constexpr int autothrottleSpeed = 0x1, headingSelect = 0x2, wingLeveler = 0x4, verticalSpeedHold = 0x10,
              levelChange = 0x40, navArmed = 0x100, navEngaged = 0x200, glideslopeArmed = 0x400,
              glideslopeEngaged = 0x800, altitudeHold = 0x4000, lateralToga = 0x8000, verticalToga = 0x10000;

bool IsLit(const Source& source) { return ReadSource(source) > 0.5; }

// One mode: how each aircraft shows it, and what switches it. Empty fields: the aircraft has none.
struct Mode {
  Source x737Shown[2] = {};  // on when one is not 0
  Source b738Shown[3] = {};  // on when one is above 0.5
  int bits = 0;              // of the simulator's state, on when one is set
  Source x737Switch = {};    // set to 0 or 1
  const Command* b738Press = nullptr;
  const Command* command = nullptr;
  int key = -1;
  int press = 0;  // bit that is pressed
};

constexpr Mode leveler = {.bits = wingLeveler, .press = wingLeveler};
constexpr Mode nav = {.x737Shown = {Int<"x737/systems/afds/VORLOC">},
                      .b738Shown = {Float<"laminar/B738/autopilot/vorloc_status">},
                      .bits = navArmed | navEngaged,  // armed counts, else a second write would disarm it
                      .x737Switch = Int<"x737/systems/afds/VORLOC">,
                      .b738Press = &commandOf<"laminar/B738/autopilot/vorloc_press">,
                      .key = xplm_key_otto_hnav};
constexpr Mode heading = {.x737Shown = {Int<"x737/systems/afds/HDG">},
                          .b738Shown = {Float<"laminar/B738/autopilot/hdg_sel_status">},
                          .bits = headingSelect,
                          .x737Switch = Int<"x737/systems/afds/HDG">,
                          .key = xplm_key_otto_hdg};
constexpr Mode altitude = {.x737Shown = {Int<"x737/systems/afds/ALTHLD">},
                           .b738Shown = {Float<"laminar/B738/autopilot/alt_hld_status">},
                           .bits = altitudeHold,
                           .x737Switch = Int<"x737/systems/afds/ALTHLD">,
                           .b738Press = &commandOf<"laminar/B738/autopilot/alt_hld_press">,
                           .key = xplm_key_otto_alt};
constexpr Mode speed = {
    .x737Shown = {Int<"x737/systems/athr/MCPSPD_mode">, Int<"x737/systems/MCP/LED_VNAV_on">},
    .b738Shown = {Float<"laminar/B738/autopilot/speed_status1">, Float<"laminar/B738/autopilot/lvl_chg_status">,
                  Float<"laminar/B738/autopilot/vnav_status1">},
    .bits = autothrottleSpeed,
    .x737Switch = Int<"x737/systems/athr/MCPSPD_mode">,
    .key = xplm_key_otto_atr};
constexpr Mode mach = {.x737Shown = {Int<"x737/systems/athr/MCPSPD_mode">},
                       .bits = autothrottleSpeed,
                       .x737Switch = Int<"x737/systems/athr/MCPSPD_mode">,
                       .press = autothrottleSpeed};
constexpr Mode verticalSpeed = {.x737Shown = {Int<"x737/systems/afds/VS_arm">, Int<"x737/systems/afds/VS">},
                                .b738Shown = {Float<"laminar/B738/autopilot/vs_status">},
                                .bits = verticalSpeedHold,
                                .x737Switch = Int<"x737/systems/afds/VS">,
                                .b738Press = &commandOf<"laminar/B738/autopilot/vs_press">,
                                .key = xplm_key_otto_vvi};
constexpr Mode thrust = {
    .x737Shown = {Fitting<"x737/systems/athr/N1_mode">, Int<"x737/systems/MCP/LED_LVLCHG_on">},
    .b738Shown = {Float<"laminar/B738/autopilot/n1_status">},
    .bits = levelChange};
constexpr Mode approach = {.x737Shown = {Int<"x737/systems/afds/APP">},
                           .b738Shown = {Float<"laminar/B738/autopilot/app_status">},
                           .bits = glideslopeArmed | glideslopeEngaged,
                           .x737Switch = Int<"x737/systems/afds/APP">,
                           .command = &commandOf<"sim/autopilot/approach">};
constexpr Mode goAround = {.x737Shown = {Int<"x737/systems/athr/toggle_TOGA">},
                           .b738Shown = {Float<"laminar/B738/autopilot/n1_status">},
                           .bits = lateralToga | verticalToga};

bool IsModeOn(const Mode& mode, int state) {
  if (IsLoaded(AddOn::X737) && mode.x737Shown[0].ref != nullptr) {
    return IsOn(mode.x737Shown[0]) || IsOn(mode.x737Shown[1]);
  }
  if (IsLoaded(AddOn::B738Extended) && mode.b738Shown[0].ref != nullptr) {
    return IsLit(mode.b738Shown[0]) || IsLit(mode.b738Shown[1]) || IsLit(mode.b738Shown[2]);
  }
  return (state & mode.bits) != 0;
}

template <const Mode& mode>
bool ReadMode(const OffsetRow&, double* value) {
  *value = IsModeOn(mode, ReadInt(autopilotState));
  return true;
}

void SwitchMode(const Mode& mode, bool wanted) {
  if (IsLoaded(AddOn::X737) && mode.x737Switch.ref != nullptr) {
    SetSource(mode.x737Switch, wanted);
    return;
  }
  if (wanted == IsModeOn(mode, ReadInt(autopilotState))) return;
  if (mode.b738Press && IsLoaded(AddOn::B738Extended)) {
    FireCommand(*mode.b738Press);
  } else if (mode.command) {
    FireCommand(*mode.command);
  } else if (mode.key >= 0) {
    XPLMCommandKeyStroke(mode.key);
  } else if (mode.press) {
    SetSource(autopilotState, mode.press);
  }
}

template <const Mode& mode>
void ApplyMode(const OffsetRow&, const Staged& staged) {
  SwitchMode(mode, staged.integer != 0);
}

// --- Master switch and flight director ------------------------------------------------------------

bool IsMasterOn() {
  if (IsLoaded(AddOn::X737))
    return IsOn(Int<"x737/systems/afds/CMD_A">) || IsOn(Int<"x737/systems/afds/CMD_B">);
  if (IsLoaded(AddOn::B738Extended)) {
    return IsLit(Float<"laminar/B738/autopilot/cmd_a_status">) ||
           IsLit(Float<"laminar/B738/autopilot/cmd_b_status">) ||
           IsLit(Float<"laminar/B738/autopilot/cws_a_status">) ||
           IsLit(Float<"laminar/B738/autopilot/cws_b_status">);
  }
  return ReadInt(autopilotMode) == 2;
}

bool ReadMaster(const OffsetRow&, double* value) {
  *value = IsMasterOn();
  return true;
}

void WriteMasterB738(bool wanted) {
  if (wanted == IsMasterOn()) return;
  const bool disconnected = IsLit(Float<"laminar/B738/autopilot/disconnect_pos">);
  if (wanted) {
    if (disconnected) FireCommand(commandOf<"laminar/B738/autopilot/disconnect_toggle">);
    FireCommand(commandOf<"laminar/B738/autopilot/cmd_a_press">);
  } else if (!disconnected) {
    FireCommand(commandOf<"laminar/B738/autopilot/disconnect_toggle">);
  }
}

void ApplyMaster(const OffsetRow&, const Staged& staged) {
  const bool wanted = staged.integer != 0;
  if (IsLoaded(AddOn::X737)) {
    SetSource(wanted ? Int<"x737/systems/afds/CMD_A"> : Int<"x737/systems/afds/APengaged">, wanted);
    return;
  }
  if (IsLoaded(AddOn::B738Extended)) {
    WriteMasterB738(wanted);
    return;
  }
  if (IsLoaded(AddOn::Ixeg733)) {
    // Its panel tells by four lights whether one of its autopilots flies.
    const bool lit =
        IsLit(Fitting<"ixeg/733/MCP/mcp_a_comm_ann">) || IsLit(Fitting<"ixeg/733/MCP/mcp_b_comm_ann">) ||
        IsLit(Fitting<"ixeg/733/MCP/mcp_a_cws_ann">) || IsLit(Fitting<"ixeg/733/MCP/mcp_b_cws_ann">);
    if (wanted == lit) return;
  }
  if (wanted) {
    SetSource(autopilotMode, 2);
    return;
  }
  uint32_t director = 0;
  CopyFromMemory(0x2EE0, sizeof(director), &director);
  SetSource(autopilotMode, director != 0);
}

bool ReadDirector(const OffsetRow&, double* value) {
  *value = IsLoaded(AddOn::X737) ? IsOn(Int<"x737/systems/afds/fd_master">) : ReadInt(autopilotMode) >= 1;
  return true;
}

void ApplyDirector(const OffsetRow&, const Staged& staged) {
  const bool wanted = staged.integer != 0;
  if (IsLoaded(AddOn::X737)) {
    SetSource(Int<"x737/systems/afds/fdA_status">, wanted);
    SetSource(Int<"x737/systems/afds/fdB_status">, wanted);
    return;
  }
  // An autopilot that flies is not thrown out with its bars.
  const int mode = ReadInt(autopilotMode);
  if (wanted ? mode == 0 : mode == 1) SetSource(autopilotMode, wanted);
}

// --- Selected values ------------------------------------------------------------------------------

Source SelectedHeading() {
  return IsLoaded(AddOn::X737) ? Float<"x737/systems/afds/HDG_magnhdg">
                               : Float<"sim/cockpit/autopilot/heading_mag">;
}

bool ReadSelectedHeading(const OffsetRow&, double* value) {
  // A full turn starts again at 0. The step to a whole word is taken here, in single precision as for all
  // 16-bit words, before the turn is taken off.
  const double word =
      std::fmod(std::trunc(static_cast<float>(ReadSource(SelectedHeading()) * (65536.0 / 360))), 65536);
  *value = word < 0 ? word + 65536 : word;
  return true;
}

void ApplySelectedHeading(const OffsetRow&, const Staged& staged) {
  const double degrees = staged.number / 182;
  SetSource(SelectedHeading(), degrees >= 360 ? degrees - 360 : degrees);
}

void ApplySelectedAltitude(const OffsetRow&, const Staged& staged) {
  SetSource(IsLoaded(AddOn::X737) ? Float<"x737/systems/afds/ALTHLD_baroalt">
                                  : Float<"sim/cockpit/autopilot/altitude">,
            staged.number / 65536 * 3.2808);
}

// The simulator keeps one selected speed with a mark for its unit; clients see both forms.
bool SpeedIsMach() {
  return IsOn(IsLoaded(AddOn::X737) ? Fitting<"x737/systems/athr/MCPSPD_ismach">
                                    : Int<"sim/cockpit/autopilot/airspeed_is_mach">);
}

// Indicated knots of Mach 1 here and now.
double KnotsPerMach() {
  return 1.94384 * ReadSource(Float<"sim/weather/speed_sound_ms">) *
         std::sqrt(ReadSource(Float<"sim/weather/sigma">));
}

double SelectedSpeed(bool isMach) {
  return ReadSource(!IsLoaded(AddOn::X737) ? Float<"sim/cockpit/autopilot/airspeed">
                    : isMach               ? Fitting<"x737/systems/athr/MCPSPD_spdmach">
                                           : Fitting<"x737/systems/athr/MCPSPD_spdkias">);
}

bool ReadSelectedSpeed(const OffsetRow&, double* value) {
  const bool isMach = SpeedIsMach();
  *value = SelectedSpeed(isMach) * (isMach ? KnotsPerMach() : 1);
  return true;
}

bool ReadSelectedMach(const OffsetRow&, double* value) {
  const bool isMach = SpeedIsMach();
  const double knotsPerMach = isMach ? 1 : KnotsPerMach();
  *value = knotsPerMach == 0 ? 0 : SelectedSpeed(isMach) / knotsPerMach * 65536;
  return true;
}

void SetSelectedSpeed(double selected) {
  SetSource(
      IsLoaded(AddOn::X737) ? Float<"x737/systems/athr/MCPSPD_spd"> : Float<"sim/cockpit/autopilot/airspeed">,
      selected);
}

void ApplySelectedSpeed(const OffsetRow&, const Staged& staged) {
  if (!SpeedIsMach()) {
    SetSelectedSpeed(staged.number);
  } else if (const double knotsPerMach = KnotsPerMach(); knotsPerMach != 0) {
    SetSelectedSpeed(staged.number / knotsPerMach);
  }
}

void ApplySelectedMach(const OffsetRow&, const Staged& staged) {
  const double mach = staged.number / 65536;
  SetSelectedSpeed(SpeedIsMach() ? mach : mach * KnotsPerMach());
}

bool ReadSelectedClimb(const OffsetRow&, double* value) {
  *value = ReadSource(IsLoaded(AddOn::X737) ? Float<"x737/systems/afds/VS_vvi">
                                            : Float<"sim/cockpit/autopilot/vertical_velocity">);
  return true;
}

void ApplySelectedClimb(const OffsetRow&, const Staged& staged) {
  if (!IsLoaded(AddOn::X737)) {
    SetSource(Float<"sim/cockpit/autopilot/vertical_velocity">, staged.number);
    return;
  }
  if (staged.integer != 0) SetSource(Int<"x737/systems/afds/VS">, 1);
  SetSource(Float<"x737/systems/afds/VS_vvi">, staged.number);
}

// --- Back course, yaw damper, thrust --------------------------------------------------------------

void ApplyBackCourse(const OffsetRow&, const Staged&) { FireCommand(commandOf<"sim/autopilot/back_course">); }

bool IsYawDamperOn() {
  // The add-on's light is the amber one that says off.
  return IsLoaded(AddOn::B738Extended) ? !IsLit(Float<"laminar/B738/annunciator/yaw_damp">)
                                       : IsOn(Int<"sim/cockpit/switches/yaw_damper_on">);
}

bool ReadYawDamper(const OffsetRow&, double* value) {
  *value = IsYawDamperOn();
  return true;
}

void ApplyYawDamper(const OffsetRow&, const Staged& staged) {
  const bool wanted = staged.integer != 0;
  if (!IsLoaded(AddOn::B738Extended)) {
    SetSource(Int<"sim/cockpit/switches/yaw_damper_on">, wanted);
  } else if (wanted != IsYawDamperOn()) {
    FireCommand(commandOf<"laminar/B738/toggle_switch/yaw_dumper">);
  }
}

void ApplyGoAround(const OffsetRow&, const Staged& staged) {
  const bool wanted = staged.integer != 0;
  if (IsLoaded(AddOn::X737)) {
    SetSource(Int<"x737/cockpit/tq/left_TOGA_btn">, wanted);
    SetSource(Int<"x737/cockpit/tq/right_TOGA_btn">, wanted);
    SetSource(Int<"x737/systems/athr/toggle_TOGA">, wanted);
  } else if (wanted && (IsLoaded(AddOn::B738Extended) || IsLoaded(AddOn::Ixeg733)) &&
             !IsModeOn(goAround, ReadInt(autopilotState))) {
    // The simulator's own command is what these aircraft's buttons are mapped to.
    FireCommand(commandOf<"sim/autopilot/take_off_go_around">);
  }
}

bool IsAutothrottleArmed() {
  if (IsLoaded(AddOn::X737)) return IsOn(Int<"x737/systems/athr/athr_armed">);
  if (IsLoaded(AddOn::B738Extended))
    return IsLit(Float<"laminar/B738/autopilot/autothrottle_status">) ||
           IsLit(Float<"laminar/B738/autopilot/speed_status1">);
  return ReadInt(Int<"sim/cockpit2/autopilot/autothrottle_enabled">) > 0;
}

bool ReadAutothrottle(const OffsetRow&, double* value) {
  *value = IsAutothrottleArmed();
  return true;
}

void ApplyAutothrottle(const OffsetRow&, const Staged& staged) {
  const bool wanted = staged.integer != 0;
  if (IsLoaded(AddOn::X737)) {
    SetSource(Int<"x737/systems/athr/athr_armed">, wanted);
    if (!wanted && IsOn(Int<"x737/systems/PFD/PFD_TOGA_mode_on">))
      SetSource(Int<"x737/systems/athr/toggle_TOGA">, 1);
  } else if (IsLoaded(AddOn::B738Extended)) {
    if (wanted != IsAutothrottleArmed())
      FireCommand(commandOf<"laminar/B738/autopilot/autothrottle_arm_toggle">);
  } else if (IsLoaded(AddOn::Ixeg733)) {
    if (wanted != IsLit(Fitting<"ixeg/733/MCP/mcp_at_arm_ann">))
      FireCommand(commandOf<"sim/autopilot/autothrottle_toggle">);
  } else {
    SetSource(Int<"sim/cockpit2/autopilot/autothrottle_enabled">, wanted);
  }
}

// --- Rows -----------------------------------------------------------------------------------------

constexpr OffsetRow ModeRow(uint32_t offset, const char* name, const char* meaning, ReadRow read,
                            ApplyWrite apply, Cycle cycle = Cycle::C7, const char* lossy = flagLoss) {
  return {.offset = offset,
          .type = Stored::U32,
          .name = name,
          .meaning = meaning,
          .show = Show::Flag,
          .cycle = cycle,
          .read = read,
          .write = {.apply = apply},
          .lossy = lossy};
}

constexpr OffsetRow rows[] = {
    {.offset = 0x2EE8,
     .type = Stored::F64,
     .name = "fd_pitch",
     .meaning = "flight director pitch",
     .unit = "deg",
     .cycle = Cycle::C1,
     .variants = variantsOf<Variant{.addOn = AddOn::X737, .source = Float<"x737/systems/afds/AP_A_pitch">},
                            Variant{.source = Float<"sim/cockpit/autopilot/flight_director_pitch">}>},
    {.offset = 0x2EF0,
     .type = Stored::F64,
     .name = "fd_bank",
     .meaning = "flight director bank",
     .unit = "deg",
     .cycle = Cycle::C1,
     .variants = variantsOf<Variant{.addOn = AddOn::X737, .source = Float<"x737/systems/afds/AP_A_roll">},
                            Variant{.source = Float<"sim/cockpit/autopilot/flight_director_roll">}>},
    ModeRow(0x07BC, "ap", "autopilot master", ReadMaster, ApplyMaster, Cycle::C13),
    ModeRow(0x2EE0, "fd", "flight director", ReadDirector, ApplyDirector, Cycle::C13),
    ModeRow(0x07C0, "ap_wing_leveler", "wing leveler", ReadMode<leveler>, ApplyMode<leveler>, Cycle::C13),
    ModeRow(0x07C4, "ap_nav", "navigation hold, armed or engaged", ReadMode<nav>, ApplyMode<nav>),
    ModeRow(0x07C8, "ap_heading", "heading hold", ReadMode<heading>, ApplyMode<heading>),
    ModeRow(0x07D0, "ap_altitude", "altitude hold", ReadMode<altitude>, ApplyMode<altitude>),
    ModeRow(0x07DC, "ap_speed", "airspeed hold", ReadMode<speed>, ApplyMode<speed>),
    ModeRow(0x07E4, "ap_mach", "Mach hold", ReadMode<mach>, ApplyMode<mach>),
    ModeRow(0x07EC, "ap_vertical_speed", "vertical speed hold", ReadMode<verticalSpeed>,
            ApplyMode<verticalSpeed>),
    ModeRow(0x07F4, "ap_thrust", "thrust hold", ReadMode<thrust>, nullptr, Cycle::C7, ""),
    ModeRow(0x0800, "ap_approach", "approach hold, armed or engaged", ReadMode<approach>, ApplyMode<approach>),
    {.offset = 0x080C,
     .type = Stored::U32,
     .name = "toga",
     .meaning = "take-off and go-around",
     .show = Show::Flag,
     .cycle = Cycle::C7,
     .read = ReadMode<goAround>,
     .write = {.apply = ApplyGoAround},
     .lossy = "can be written with add-on aircraft only"},
    ModeRow(0x0810, "autothrottle", "autothrottle armed", ReadAutothrottle, ApplyAutothrottle),
    {.offset = 0x07CC,
     .type = Stored::U16,
     .name = "ap_heading_bug",
     .meaning = "selected heading",
     .unit = "deg",
     .unitScale = 360.0 / 65536,
     .cycle = Cycle::C7,
     .read = ReadSelectedHeading,
     .write = {.apply = ApplySelectedHeading},
     .lossy = "written at 182 per degree: reads back up to 16 higher, and from 65520 on begins again at 0"},
    {.offset = 0x07D4,
     .type = Stored::S32,
     .name = "ap_altitude_set",
     .meaning = "selected altitude",
     .unit = "m",
     .unitScale = 1.0 / 65536,
     .cycle = Cycle::C7,
     .source = Float<"sim/cockpit/autopilot/altitude">,
     .factor = 0.3048 * 65536,
     .write = {.apply = ApplySelectedAltitude},
     .lossy = "written at 3.2808 feet per metre: reads back 0.0012 % lower"},
    {.offset = 0x07E2,
     .type = Stored::U16,
     .name = "ap_ias_set",
     .meaning = "selected airspeed",
     .unit = "kt",
     .cycle = Cycle::C7,
     .read = ReadSelectedSpeed,
     .write = {.apply = ApplySelectedSpeed},
     .note = "knots also while the selector stands at Mach"},
    {
        .offset = 0x07E8,
        .type = Stored::S32,
        .name = "ap_mach_set",
        .meaning = "selected Mach number",
        .unitScale = 1.0 / 65536,
        .cycle = Cycle::C7,
        .read = ReadSelectedMach,
        .write = {.apply = ApplySelectedMach},
        .lossy = "held in single precision: off by more than one step from Mach 100 on",
        .note = "Mach also while the selector stands at knots",
    },
    {.offset = 0x07F2,
     .type = Stored::S16,
     .name = "ap_vertical_speed_set",
     .meaning = "selected vertical speed",
     .unit = "ft/min",
     .cycle = Cycle::C7,
     .read = ReadSelectedClimb,
     .write = {.apply = ApplySelectedClimb}},
    ModeRow(0x0804, "ap_back_course", "back course", nullptr, ApplyBackCourse, Cycle::None, ""),
    ModeRow(0x0808, "yaw_damper", "yaw damper", ReadYawDamper, ApplyYawDamper, Cycle::C31),
    {.offset = 0x2F80,
     .type = Stored::U8,
     .name = "autobrake",
     .meaning = "autobrake: 0 rejected take-off, 1 off, 2 to 5 landing",
     .cycle = Cycle::C31,
     .source = Int<"sim/cockpit/switches/auto_brake_settings">,
     .write = {.target = Int<"sim/cockpit/switches/auto_brake_settings">, .low = 0, .high = 5},
     .lossy = "above 5 counts as 5"},
};

}  // namespace

const RowTable autopilotRows = {"Autopilot", rows};
