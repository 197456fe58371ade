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
#include "bridge/catalogue/units.h"

namespace {

constexpr Source autopilotMode = Int<"sim/cockpit/autopilot/autopilot_mode">;  // 0 off, 1 flight director, 2 on

// Bits of the simulator's autopilot state. A bit that is set acts as a press of that button.
constexpr int autothrottleSpeed = 0x1, headingSelect = 0x2, wingLeveler = 0x4, verticalSpeedHold = 0x10,
              levelChange = 0x40, navArmed = 0x100, navEngaged = 0x200, glideslopeArmed = 0x400,
              glideslopeEngaged = 0x800, altitudeHold = 0x4000, lateralToga = 0x8000, verticalToga = 0x10000;

// --- Master switch and flight director ------------------------------------------------------------

bool ReadMaster(const OffsetRow&, double* value) {
  *value = ReadInt(autopilotMode) == 2;
  return true;
}

void ApplyMaster(const OffsetRow&, const Staged& staged) {
  if (staged.integer != 0) {
    SetSource(autopilotMode, 2);
    return;
  }
  uint32_t director = 0;
  CopyFromMemory(0x2EE0, sizeof(director), &director);
  SetSource(autopilotMode, director != 0);
}

void ApplyMasterX737(const OffsetRow&, const Staged& staged) {
  const bool wanted = staged.integer != 0;
  SetSource(wanted ? Int<"x737/systems/afds/CMD_A"> : Int<"x737/systems/afds/APengaged">, wanted);
}

void ApplyMasterB738(const OffsetRow& row, const Staged& staged) {
  const bool wanted = staged.integer != 0;
  if (wanted == IsSwitchOn(ActiveVariant(row))) return;
  const bool disconnected = IsLit(Float<"laminar/B738/autopilot/disconnect_pos">);
  if (disconnected == wanted) FireCommand(commandOf<"laminar/B738/autopilot/disconnect_toggle">);
  if (wanted) FireCommand(commandOf<"laminar/B738/autopilot/cmd_a_press">);
}

// Its panel tells by four lights whether one of its autopilots flies; what switches it is the simulator's own.
void ApplyMasterIxeg(const OffsetRow& row, const Staged& staged) {
  const bool lit = IsLit(Fitting<"ixeg/733/MCP/mcp_a_comm_ann">) ||
                   IsLit(Fitting<"ixeg/733/MCP/mcp_b_comm_ann">) ||
                   IsLit(Fitting<"ixeg/733/MCP/mcp_a_cws_ann">) || IsLit(Fitting<"ixeg/733/MCP/mcp_b_cws_ann">);
  if ((staged.integer != 0) != lit) ApplyMaster(row, staged);
}

bool ReadDirector(const OffsetRow&, double* value) {
  *value = ReadInt(autopilotMode) >= 1;
  return true;
}

// An autopilot that flies is not thrown out with its bars.
void ApplyDirector(const OffsetRow&, const Staged& staged) {
  const bool wanted = staged.integer != 0;
  const int mode = ReadInt(autopilotMode);
  if (wanted ? mode == 0 : mode == 1) SetSource(autopilotMode, wanted);
}

void ApplyDirectorX737(const OffsetRow&, const Staged& staged) {
  SetSource(Int<"x737/systems/afds/fdA_status">, staged.integer != 0);
  SetSource(Int<"x737/systems/afds/fdB_status">, staged.integer != 0);
}

// --- Selected values ------------------------------------------------------------------------------

// A full turn starts again at 0. The step to a whole word is taken here, in single precision as for all 16-bit
// words, before the turn is taken off.
double HeadingWordOf(double degrees) {
  const double word = std::fmod(std::trunc(static_cast<float>(degrees * angle16)), 65536);
  return word < 0 ? word + 65536 : word;
}

double DegreesOf(double headingWord) {
  const double degrees = headingWord / 182;
  return degrees >= 360 ? degrees - 360 : degrees;
}

double FeetOf(double altitude) { return altitude / 65536 * 3.2808; }

// One selected speed with a mark for its unit; clients see both forms.
struct SpeedSelector {
  Source isMach, mach, knots, set;
};
constexpr SpeedSelector stockSpeed = {
    Int<"sim/cockpit/autopilot/airspeed_is_mach">, Float<"sim/cockpit/autopilot/airspeed">,
    Float<"sim/cockpit/autopilot/airspeed">, Float<"sim/cockpit/autopilot/airspeed">};
constexpr SpeedSelector x737Speed = {
    Fitting<"x737/systems/athr/MCPSPD_ismach">, Fitting<"x737/systems/athr/MCPSPD_spdmach">,
    Fitting<"x737/systems/athr/MCPSPD_spdkias">, Float<"x737/systems/athr/MCPSPD_spd">};

// Indicated knots of Mach 1 here and now.
double KnotsPerMach() {
  return knotsPerMetre * ReadSource(Float<"sim/weather/speed_sound_ms">) *
         std::sqrt(ReadSource(Float<"sim/weather/sigma">));
}

template <const SpeedSelector& selector>
bool ReadKnots(const OffsetRow&, double* value) {
  *value = IsOn(selector.isMach) ? ReadSource(selector.mach) * KnotsPerMach() : ReadSource(selector.knots);
  return true;
}

template <const SpeedSelector& selector>
bool ReadMach(const OffsetRow&, double* value) {
  double mach = 0;
  if (IsOn(selector.isMach)) {
    mach = ReadSource(selector.mach);
  } else if (const double knotsPerMach = KnotsPerMach(); knotsPerMach != 0) {
    mach = ReadSource(selector.knots) / knotsPerMach;
  }
  *value = mach * 65536;
  return true;
}

template <const SpeedSelector& selector>
void ApplyKnots(const OffsetRow&, const Staged& staged) {
  if (!IsOn(selector.isMach)) {
    SetSource(selector.set, staged.number);
  } else if (const double knotsPerMach = KnotsPerMach(); knotsPerMach != 0) {
    SetSource(selector.set, staged.number / knotsPerMach);
  }
}

template <const SpeedSelector& selector>
void ApplyMach(const OffsetRow&, const Staged& staged) {
  const double mach = staged.number / 65536;
  SetSource(selector.set, IsOn(selector.isMach) ? mach : mach * KnotsPerMach());
}

void ApplyClimbX737(const OffsetRow&, const Staged& staged) {
  if (staged.integer != 0) SetSource(Int<"x737/systems/afds/VS">, 1);
  SetSource(Float<"x737/systems/afds/VS_vvi">, staged.number);
}

// --- Back course, yaw damper, thrust --------------------------------------------------------------

void ApplyBackCourse(const OffsetRow&, const Staged&) { FireCommand(commandOf<"sim/autopilot/back_course">); }

// The add-on's light is the amber one that says off.
bool IsYawDamperOnB738() { return !IsLit(Float<"laminar/B738/annunciator/yaw_damp">); }

bool ReadYawDamperB738(const OffsetRow&, double* value) {
  *value = IsYawDamperOnB738();
  return true;
}

void ApplyYawDamperB738(const OffsetRow&, const Staged& staged) {
  if ((staged.integer != 0) != IsYawDamperOnB738()) {
    FireCommand(commandOf<"laminar/B738/toggle_switch/yaw_dumper">);
  }
}

void ApplyGoAroundX737(const OffsetRow&, const Staged& staged) {
  for (const Source& button : {Int<"x737/cockpit/tq/left_TOGA_btn">, Int<"x737/cockpit/tq/right_TOGA_btn">,
                               Int<"x737/systems/athr/toggle_TOGA">}) {
    SetSource(button, staged.integer != 0);
  }
}

// The simulator's own command is what these aircraft's buttons are mapped to.
void ApplyGoAround(const OffsetRow& row, const Staged& staged) {
  if (staged.integer != 0 && !IsSwitchOn(ActiveVariant(row))) {
    FireCommand(commandOf<"sim/autopilot/take_off_go_around">);
  }
}

void ApplyAutothrottleX737(const OffsetRow&, const Staged& staged) {
  SetSource(Int<"x737/systems/athr/athr_armed">, staged.integer != 0);
  if (staged.integer == 0 && IsOn(Int<"x737/systems/PFD/PFD_TOGA_mode_on">)) {
    SetSource(Int<"x737/systems/athr/toggle_TOGA">, 1);
  }
}

void ApplyAutothrottleIxeg(const OffsetRow&, const Staged& staged) {
  if ((staged.integer != 0) != IsLit(Fitting<"ixeg/733/MCP/mcp_at_arm_ann">)) {
    FireCommand(commandOf<"sim/autopilot/autothrottle_toggle">);
  }
}

// --- Rows -----------------------------------------------------------------------------------------

// What the rows of switches have in common; the rest of the row stands where it is used.
constexpr OffsetRow Switch(OffsetRow row) {
  row.type = Stored::U32;
  row.show = Show::Flag;
  return row;
}

constexpr OffsetRow rows[] = {
    {.offset = 0x2EE8,
     .type = Stored::F64,
     .name = "fd_pitch",
     .meaning = "flight director pitch",
     .unit = "deg",
     .cycle = Cycle::C1,
     .variants = variantsOf<[] {
       return std::array{Variant{.addOn = AddOn::X737, .source = Float<"x737/systems/afds/AP_A_pitch">},
                         Variant{.source = Float<"sim/cockpit/autopilot/flight_director_pitch">}};
     }>},
    {.offset = 0x2EF0,
     .type = Stored::F64,
     .name = "fd_bank",
     .meaning = "flight director bank",
     .unit = "deg",
     .cycle = Cycle::C1,
     .variants = variantsOf<[] {
       return std::array{Variant{.addOn = AddOn::X737, .source = Float<"x737/systems/afds/AP_A_roll">},
                         Variant{.source = Float<"sim/cockpit/autopilot/flight_director_roll">}};
     }>},
    Switch({.offset = 0x07BC,
            .name = "ap",
            .meaning = "autopilot master",
            .cycle = Cycle::C13,
            .variants = variantsOf<[] {
              return std::array{
                  Variant{.addOn = AddOn::X737,
                          .marks = {Int<"x737/systems/afds/CMD_A">, Int<"x737/systems/afds/CMD_B">},
                          .apply = ApplyMasterX737},
                  Variant{.addOn = AddOn::B738Extended,
                          .lights = {Float<"laminar/B738/autopilot/cmd_a_status">,
                                     Float<"laminar/B738/autopilot/cmd_b_status">,
                                     Float<"laminar/B738/autopilot/cws_a_status">,
                                     Float<"laminar/B738/autopilot/cws_b_status">},
                          .apply = ApplyMasterB738},
                  Variant{.addOn = AddOn::Ixeg733, .read = ReadMaster, .apply = ApplyMasterIxeg},
                  Variant{.read = ReadMaster, .apply = ApplyMaster}};
            }>,
            .lossy = flagLoss}),
    Switch({.offset = 0x2EE0,
            .name = "fd",
            .meaning = "flight director",
            .cycle = Cycle::C13,
            .variants = variantsOf<[] {
              return std::array{Variant{.addOn = AddOn::X737,
                                        .marks = {Int<"x737/systems/afds/fd_master">},
                                        .apply = ApplyDirectorX737},
                                Variant{.read = ReadDirector, .apply = ApplyDirector}};
            }>,
            .lossy = flagLoss}),
    Switch(
        {.offset = 0x07C0,
         .name = "ap_wing_leveler",
         .meaning = "wing leveler",
         .cycle = Cycle::C13,
         .variants =
             variantsOf<[] { return std::array{Variant{.stateBits = wingLeveler, .stateBit = wingLeveler}}; }>,
         .lossy = flagLoss}),
    // Armed counts, else a second write would disarm it.
    Switch({.offset = 0x07C4,
            .name = "ap_nav",
            .meaning = "navigation hold, armed or engaged",
            .cycle = Cycle::C7,
            .variants = variantsOf<[] {
              return std::array{Variant{.addOn = AddOn::X737,
                                        .marks = {Int<"x737/systems/afds/VORLOC">},
                                        .target = Int<"x737/systems/afds/VORLOC">},
                                Variant{.addOn = AddOn::B738Extended,
                                        .lights = {Float<"laminar/B738/autopilot/vorloc_status">},
                                        .press = &commandOf<"laminar/B738/autopilot/vorloc_press">},
                                Variant{.stateBits = navArmed | navEngaged, .key = xplm_key_otto_hnav}};
            }>,
            .lossy = flagLoss}),
    Switch({.offset = 0x07C8,
            .name = "ap_heading",
            .meaning = "heading hold",
            .cycle = Cycle::C7,
            .variants = variantsOf<[] {
              return std::array{Variant{.addOn = AddOn::X737,
                                        .marks = {Int<"x737/systems/afds/HDG">},
                                        .target = Int<"x737/systems/afds/HDG">},
                                Variant{.addOn = AddOn::B738Extended,
                                        .lights = {Float<"laminar/B738/autopilot/hdg_sel_status">},
                                        .key = xplm_key_otto_hdg},
                                Variant{.stateBits = headingSelect, .key = xplm_key_otto_hdg}};
            }>,
            .lossy = flagLoss}),
    Switch({.offset = 0x07D0,
            .name = "ap_altitude",
            .meaning = "altitude hold",
            .cycle = Cycle::C7,
            .variants = variantsOf<[] {
              return std::array{Variant{.addOn = AddOn::X737,
                                        .marks = {Int<"x737/systems/afds/ALTHLD">},
                                        .target = Int<"x737/systems/afds/ALTHLD">},
                                Variant{.addOn = AddOn::B738Extended,
                                        .lights = {Float<"laminar/B738/autopilot/alt_hld_status">},
                                        .press = &commandOf<"laminar/B738/autopilot/alt_hld_press">},
                                Variant{.stateBits = altitudeHold, .key = xplm_key_otto_alt}};
            }>,
            .lossy = flagLoss}),
    Switch({.offset = 0x07DC,
            .name = "ap_speed",
            .meaning = "airspeed hold",
            .cycle = Cycle::C7,
            .variants = variantsOf<[] {
              return std::array{
                  Variant{.addOn = AddOn::X737,
                          .marks = {Int<"x737/systems/athr/MCPSPD_mode">, Int<"x737/systems/MCP/LED_VNAV_on">},
                          .target = Int<"x737/systems/athr/MCPSPD_mode">},
                  Variant{.addOn = AddOn::B738Extended,
                          .lights = {Float<"laminar/B738/autopilot/speed_status1">,
                                     Float<"laminar/B738/autopilot/lvl_chg_status">,
                                     Float<"laminar/B738/autopilot/vnav_status1">},
                          .key = xplm_key_otto_atr},
                  Variant{.stateBits = autothrottleSpeed, .key = xplm_key_otto_atr}};
            }>,
            .lossy = flagLoss}),
    Switch({.offset = 0x07E4,
            .name = "ap_mach",
            .meaning = "Mach hold",
            .cycle = Cycle::C7,
            .variants = variantsOf<[] {
              return std::array{Variant{.addOn = AddOn::X737,
                                        .marks = {Int<"x737/systems/athr/MCPSPD_mode">},
                                        .target = Int<"x737/systems/athr/MCPSPD_mode">},
                                Variant{.stateBits = autothrottleSpeed, .stateBit = autothrottleSpeed}};
            }>,
            .lossy = flagLoss}),
    Switch({.offset = 0x07EC,
            .name = "ap_vertical_speed",
            .meaning = "vertical speed hold",
            .cycle = Cycle::C7,
            .variants = variantsOf<[] {
              return std::array{Variant{.addOn = AddOn::X737,
                                        .marks = {Int<"x737/systems/afds/VS_arm">, Int<"x737/systems/afds/VS">},
                                        .target = Int<"x737/systems/afds/VS">},
                                Variant{.addOn = AddOn::B738Extended,
                                        .lights = {Float<"laminar/B738/autopilot/vs_status">},
                                        .press = &commandOf<"laminar/B738/autopilot/vs_press">},
                                Variant{.stateBits = verticalSpeedHold, .key = xplm_key_otto_vvi}};
            }>,
            .lossy = flagLoss}),
    Switch({.offset = 0x07F4,
            .name = "ap_thrust",
            .meaning = "thrust hold",
            .cycle = Cycle::C7,
            .variants = variantsOf<[] {
              return std::array{
                  Variant{
                      .addOn = AddOn::X737,
                      .marks = {Fitting<"x737/systems/athr/N1_mode">, Int<"x737/systems/MCP/LED_LVLCHG_on">}},
                  Variant{.addOn = AddOn::B738Extended, .lights = {Float<"laminar/B738/autopilot/n1_status">}},
                  Variant{.stateBits = levelChange}};
            }>}),
    Switch({.offset = 0x0800,
            .name = "ap_approach",
            .meaning = "approach hold, armed or engaged",
            .cycle = Cycle::C7,
            .variants = variantsOf<[] {
              return std::array{Variant{.addOn = AddOn::X737,
                                        .marks = {Int<"x737/systems/afds/APP">},
                                        .target = Int<"x737/systems/afds/APP">},
                                Variant{.addOn = AddOn::B738Extended,
                                        .lights = {Float<"laminar/B738/autopilot/app_status">},
                                        .press = &commandOf<"sim/autopilot/approach">},
                                Variant{.stateBits = glideslopeArmed | glideslopeEngaged,
                                        .press = &commandOf<"sim/autopilot/approach">}};
            }>,
            .lossy = flagLoss}),
    Switch({.offset = 0x080C,
            .name = "toga",
            .meaning = "take-off and go-around",
            .cycle = Cycle::C7,
            .variants = variantsOf<[] {
              return std::array{
                  Variant{.addOn = AddOn::X737,
                          .marks = {Int<"x737/systems/athr/toggle_TOGA">},
                          .apply = ApplyGoAroundX737},
                  Variant{.addOn = AddOn::B738Extended,
                          .lights = {Float<"laminar/B738/autopilot/n1_status">},
                          .apply = ApplyGoAround},
                  Variant{
                      .addOn = AddOn::Ixeg733, .stateBits = lateralToga | verticalToga, .apply = ApplyGoAround},
                  Variant{.stateBits = lateralToga | verticalToga}};
            }>,
            .lossy = "can be written with add-on aircraft only"}),
    Switch({.offset = 0x0810,
            .name = "autothrottle",
            .meaning = "autothrottle armed",
            .cycle = Cycle::C7,
            .variants = variantsOf<[] {
              return std::array{Variant{.addOn = AddOn::X737,
                                        .marks = {Int<"x737/systems/athr/athr_armed">},
                                        .apply = ApplyAutothrottleX737},
                                Variant{.addOn = AddOn::B738Extended,
                                        .lights = {Float<"laminar/B738/autopilot/autothrottle_status">,
                                                   Float<"laminar/B738/autopilot/speed_status1">},
                                        .press = &commandOf<"laminar/B738/autopilot/autothrottle_arm_toggle">},
                                Variant{.addOn = AddOn::Ixeg733,
                                        .lights = {Int<"sim/cockpit2/autopilot/autothrottle_enabled">},
                                        .apply = ApplyAutothrottleIxeg},
                                Variant{.lights = {Int<"sim/cockpit2/autopilot/autothrottle_enabled">},
                                        .target = Int<"sim/cockpit2/autopilot/autothrottle_enabled">}};
            }>,
            .lossy = flagLoss}),
    {.offset = 0x07CC,
     .type = Stored::U16,
     .name = "ap_heading_bug",
     .meaning = "selected heading",
     .unit = "deg",
     .unitScale = 360.0 / 65536,
     .cycle = Cycle::C7,
     .convert = HeadingWordOf,
     .variants = variantsOf<[] {
       return std::array{Variant{.addOn = AddOn::X737,
                                 .source = Float<"x737/systems/afds/HDG_magnhdg">,
                                 .target = Float<"x737/systems/afds/HDG_magnhdg">},
                         Variant{.source = Float<"sim/cockpit/autopilot/heading_mag">,
                                 .target = Float<"sim/cockpit/autopilot/heading_mag">}};
     }>,
     .write = {.convert = DegreesOf},
     .lossy = "written at 182 per degree: reads back up to 16 higher, and from 65520 on begins again at 0"},
    {.offset = 0x07D4,
     .type = Stored::S32,
     .name = "ap_altitude_set",
     .meaning = "selected altitude",
     .unit = "m",
     .unitScale = 1.0 / 65536,
     .cycle = Cycle::C7,
     .source = Float<"sim/cockpit/autopilot/altitude">,
     .factor = metresPerFoot * 65536,
     .variants = variantsOf<[] {
       return std::array{Variant{.addOn = AddOn::X737, .target = Float<"x737/systems/afds/ALTHLD_baroalt">},
                         Variant{.target = Float<"sim/cockpit/autopilot/altitude">}};
     }>,
     .write = {.convert = FeetOf},
     .lossy = "written at 3.2808 feet per metre: reads back 0.0012 % lower"},
    {.offset = 0x07E2,
     .type = Stored::U16,
     .name = "ap_ias_set",
     .meaning = "selected airspeed",
     .unit = "kt",
     .cycle = Cycle::C7,
     .variants = variantsOf<[] {
       return std::array{
           Variant{.addOn = AddOn::X737, .read = ReadKnots<x737Speed>, .apply = ApplyKnots<x737Speed>},
           Variant{.read = ReadKnots<stockSpeed>, .apply = ApplyKnots<stockSpeed>}};
     }>,
     .note = "knots also while the selector stands at Mach"},
    {.offset = 0x07E8,
     .type = Stored::S32,
     .name = "ap_mach_set",
     .meaning = "selected Mach number",
     .unitScale = 1.0 / 65536,
     .cycle = Cycle::C7,
     .variants = variantsOf<[] {
       return std::array{
           Variant{.addOn = AddOn::X737, .read = ReadMach<x737Speed>, .apply = ApplyMach<x737Speed>},
           Variant{.read = ReadMach<stockSpeed>, .apply = ApplyMach<stockSpeed>}};
     }>,
     .lossy = "held in single precision: off by more than one step from Mach 100 on",
     .note = "Mach also while the selector stands at knots"},
    {.offset = 0x07F2,
     .type = Stored::S16,
     .name = "ap_vertical_speed_set",
     .meaning = "selected vertical speed",
     .unit = "ft/min",
     .cycle = Cycle::C7,
     .variants = variantsOf<[] {
       return std::array{
           Variant{.addOn = AddOn::X737, .source = Float<"x737/systems/afds/VS_vvi">, .apply = ApplyClimbX737},
           Variant{.source = Float<"sim/cockpit/autopilot/vertical_velocity">,
                   .target = Float<"sim/cockpit/autopilot/vertical_velocity">}};
     }>},
    Switch({.offset = 0x0804,
            .name = "ap_back_course",
            .meaning = "back course",
            .write = {.apply = ApplyBackCourse}}),
    Switch({.offset = 0x0808,
            .name = "yaw_damper",
            .meaning = "yaw damper",
            .cycle = Cycle::C31,
            .variants = variantsOf<[] {
              return std::array{
                  Variant{.addOn = AddOn::B738Extended, .read = ReadYawDamperB738, .apply = ApplyYawDamperB738},
                  Variant{.marks = {Int<"sim/cockpit/switches/yaw_damper_on">},
                          .target = Int<"sim/cockpit/switches/yaw_damper_on">}};
            }>,
            .lossy = flagLoss}),
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
