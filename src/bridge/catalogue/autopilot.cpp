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

// The bar throws all autopilots out and has to be up again for one to engage.
void ApplyMasterB738(const OffsetRow& row, const Staged& staged) {
  const bool wanted = staged.integer != 0;
  if (wanted == IsSwitchOn(ShowingVariant(row))) return;
  const bool disconnected = IsLit(Float<"laminar/B738/autopilot/disconnect_pos">);
  if (disconnected == wanted) FireFor(row, commandOf<"laminar/B738/autopilot/disconnect_toggle">);
  if (wanted) FireFor(row, commandOf<"laminar/B738/autopilot/cmd_a_press">);
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
// Its window shows what the simulator's own selector of this name is set to.
constexpr SpeedSelector b738Speed = {Int<"sim/cockpit/autopilot/airspeed_is_mach">,
                                     Float<"laminar/B738/autopilot/mcp_speed_dial_kts_mach">,
                                     Float<"laminar/B738/autopilot/mcp_speed_dial_kts_mach">,
                                     Float<"sim/cockpit2/autopilot/airspeed_dial_kts_mach">};

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

// A climb is chosen together with its rate.
void ApplyClimbX737(const OffsetRow&, const Staged& staged) {
  constexpr Source mode = Int<"x737/systems/afds/VS">;
  const Command& button = commandOf<"x737/mcp/VS_TOGGLE">;
  if (staged.integer != 0 && !IsOn(mode)) {
    if (button.handle != nullptr) {
      FireCommand(button);
    } else {
      SetSource(mode, 1);
    }
  }
  SetSource(Float<"x737/systems/afds/VS_vvi">, staged.number);
}

// --- Back course, yaw damper, thrust --------------------------------------------------------------

void ApplyBackCourse(const OffsetRow&, const Staged&) { FireCommand(commandOf<"sim/autopilot/back_course">); }

void ApplyGoAroundX737(const OffsetRow&, const Staged& staged) {
  for (const Source& button : {Int<"x737/cockpit/tq/left_TOGA_btn">, Int<"x737/cockpit/tq/right_TOGA_btn">,
                               Int<"x737/systems/athr/toggle_TOGA">}) {
    SetSource(button, staged.integer != 0);
  }
}

void ApplyAutothrottleX737(const OffsetRow&, const Staged& staged) {
  SetSource(Int<"x737/systems/athr/athr_armed">, staged.integer != 0);
  if (staged.integer == 0 && IsOn(Int<"x737/systems/PFD/PFD_TOGA_mode_on">)) {
    SetSource(Int<"x737/systems/athr/toggle_TOGA">, 1);
  }
}

// The IXEG 737 counts from -1, rejected take-off, on.
double AutobrakePlace(double word) { return std::clamp(word, 0.0, 5.0); }
double AutobrakeOfIxeg(double position) { return position + 1; }
double IxegAutobrake(double word) { return AutobrakePlace(word) - 1; }

// --- Rows -----------------------------------------------------------------------------------------

// What the rows of switches have in common; the rest of the row stands where it is used.
constexpr OffsetRow Switch(OffsetRow row) {
  row.type = Stored::U32;
  row.show = Show::Flag;
  return row;
}

constexpr Choice autobrakePlaces[] = {{0, "rejected take-off"}, {1, "off"},       {2, "landing 1"},
                                      {3, "landing 2"},         {4, "landing 3"}, {5, "landing maximum"}};

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
                  Variant{
                      .addOn = AddOn::X737,
                      .apply = ApplyMasterX737,
                      .buttons = {{Int<"x737/systems/afds/CMD_A">, &commandOf<"x737/mcp/CMDA_TOGGLE">},
                                  {Int<"x737/systems/afds/CMD_B">, &commandOf<"x737/mcp/CMDB_TOGGLE">}},
                      .sets = sourcesOf<Int<"x737/systems/afds/CMD_A">, Int<"x737/systems/afds/APengaged">>},
                  Variant{.addOn = AddOn::B738Extended,
                          .alsoFor = AddOn::B738Stock,
                          .lights = {Float<"laminar/B738/autopilot/cmd_a_status">,
                                     Float<"laminar/B738/autopilot/cmd_b_status">,
                                     Float<"laminar/B738/autopilot/cws_a_status">,
                                     Float<"laminar/B738/autopilot/cws_b_status">},
                          .apply = ApplyMasterB738,
                          .reads = sourcesOf<Float<"laminar/B738/autopilot/disconnect_pos">>,
                          .fires = commandsOf<"laminar/B738/autopilot/cmd_a_press",
                                              "laminar/B738/autopilot/disconnect_toggle">},
                  Variant{.addOn = AddOn::Ixeg733,
                          .buttons = {{Fitting<"ixeg/733/MCP/mcp_a_comm_ann">,
                                       &commandOf<"ixeg/733/autopilot/AP_A_cmd_toggle">},
                                      {Fitting<"ixeg/733/MCP/mcp_b_comm_ann">,
                                       &commandOf<"ixeg/733/autopilot/AP_B_cmd_toggle">},
                                      {Fitting<"ixeg/733/MCP/mcp_a_cws_ann">,
                                       &commandOf<"ixeg/733/autopilot/AP_A_cws_toggle">},
                                      {Fitting<"ixeg/733/MCP/mcp_b_cws_ann">,
                                       &commandOf<"ixeg/733/autopilot/AP_B_cws_toggle">}}},
                  Variant{.addOn = AddOn::Ec135,
                          .buttons = {{FloatElement<"rotorsim/ec135/afcs_indications">(1),
                                       &commandOf<"ec135/autopilot/ap_on">}}},
                  Variant{.read = ReadMaster, .apply = ApplyMaster}};
            }>,
            .lossy = flagLoss}),
    Switch({.offset = 0x2EE0,
            .name = "fd",
            .meaning = "flight director",
            .cycle = Cycle::C13,
            .variants = variantsOf<[] {
              return std::array{
                  Variant{.addOn = AddOn::X737,
                          .marks = {Int<"x737/systems/afds/fd_master">},
                          .target = Int<"x737/systems/afds/fdA_status">,
                          .together = sourcesOf<Int<"x737/systems/afds/fdB_status">>},
                  Variant{.addOn = AddOn::B738Extended,
                          .alsoFor = AddOn::B738Stock,
                          .buttons = {{Float<"laminar/B738/autopilot/flight_director_pos">,
                                       &commandOf<"laminar/B738/autopilot/flight_director_toggle">},
                                      {Float<"laminar/B738/autopilot/flight_director_fo_pos">,
                                       &commandOf<"laminar/B738/autopilot/flight_director_fo_toggle">}},
                          .everyButton = true},
                  Variant{.addOn = AddOn::Ixeg733,
                          .marks = {Fitting<"ixeg/733/MCP/mcp_plt_fd_act">,
                                    Fitting<"ixeg/733/MCP/mcp_cplt_fd_act">},
                          .target = Fitting<"ixeg/733/MCP/mcp_plt_fd_act">,
                          .together = sourcesOf<Fitting<"ixeg/733/MCP/mcp_cplt_fd_act">>},
                  Variant{.read = ReadDirector, .apply = ApplyDirector}};
            }>,
            .lossy = flagLoss}),
    Switch({.offset = 0x07C0,
            .name = "ap_wing_leveler",
            .meaning = "wing leveler",
            .cycle = Cycle::C13,
            .variants = variantsOf<[] {
              return std::array{Variant{.addOn = AddOn::X737, .silent = true},
                                Variant{.addOn = AddOn::B738Extended, .silent = true},
                                Variant{.addOn = AddOn::Ixeg733, .silent = true},
                                Variant{.addOn = AddOn::Ec135, .silent = true},
                                Variant{.stateBits = wingLeveler, .stateBit = wingLeveler}};
            }>,
            .lossy = flagLoss}),
    // Armed counts, else a second write would disarm it.
    Switch({.offset = 0x07C4,
            .name = "ap_nav",
            .meaning = "navigation hold, armed or engaged",
            .cycle = Cycle::C7,
            .variants = variantsOf<[] {
              return std::array{
                  Variant{.addOn = AddOn::X737,
                          .target = Int<"x737/systems/afds/VORLOC">,
                          .buttons = {{Int<"x737/systems/afds/VORLOC">, &commandOf<"x737/mcp/VORLOC_TOGGLE">}}},
                  Variant{.addOn = AddOn::B738Extended,
                          .alsoFor = AddOn::B738Stock,
                          .buttons = {{Float<"laminar/B738/autopilot/vorloc_status">,
                                       &commandOf<"laminar/B738/autopilot/vorloc_press">}}},
                  Variant{.addOn = AddOn::Ixeg733,
                          .buttons = {{Fitting<"ixeg/733/MCP/mcp_vor_loc_ann">,
                                       &commandOf<"ixeg/733/autopilot/VORLOC_mode_toggle">}}},
                  Variant{.addOn = AddOn::Ec135,
                          .buttons = {{FloatElement<"rotorsim/ec135/afcs_indications">(6),
                                       &commandOf<"ec135/autopilot/nav">}}},
                  Variant{.stateBits = navArmed | navEngaged, .key = xplm_key_otto_hnav}};
            }>,
            .lossy = flagLoss}),
    Switch({.offset = 0x07C8,
            .name = "ap_heading",
            .meaning = "heading hold",
            .cycle = Cycle::C7,
            .variants = variantsOf<[] {
              return std::array{
                  Variant{.addOn = AddOn::X737,
                          .target = Int<"x737/systems/afds/HDG">,
                          .buttons = {{Int<"x737/systems/afds/HDG">, &commandOf<"x737/mcp/HDGSEL_TOGGLE">}}},
                  Variant{.addOn = AddOn::B738Extended,
                          .alsoFor = AddOn::B738Stock,
                          .buttons = {{Float<"laminar/B738/autopilot/hdg_sel_status">,
                                       &commandOf<"laminar/B738/autopilot/hdg_sel_press">}}},
                  Variant{.addOn = AddOn::Ixeg733,
                          .buttons = {{Fitting<"ixeg/733/MCP/mcp_hdg_ann">,
                                       &commandOf<"ixeg/733/autopilot/HDG_mode_toggle">}}},
                  Variant{.addOn = AddOn::Ec135,
                          .buttons = {{FloatElement<"rotorsim/ec135/afcs_indications">(5),
                                       &commandOf<"ec135/autopilot/hdg">}}},
                  Variant{.stateBits = headingSelect, .key = xplm_key_otto_hdg}};
            }>,
            .lossy = flagLoss}),
    Switch({.offset = 0x07D0,
            .name = "ap_altitude",
            .meaning = "altitude hold",
            .cycle = Cycle::C7,
            .variants = variantsOf<[] {
              return std::array{
                  Variant{.addOn = AddOn::X737,
                          .target = Int<"x737/systems/afds/ALTHLD">,
                          .buttons = {{Int<"x737/systems/afds/ALTHLD">, &commandOf<"x737/mcp/ALTHLD_TOGGLE">}}},
                  Variant{.addOn = AddOn::B738Extended,
                          .alsoFor = AddOn::B738Stock,
                          .buttons = {{Float<"laminar/B738/autopilot/alt_hld_status">,
                                       &commandOf<"laminar/B738/autopilot/alt_hld_press">}}},
                  Variant{.addOn = AddOn::Ixeg733,
                          .buttons = {{Fitting<"ixeg/733/MCP/mcp_alt_hold_ann">,
                                       &commandOf<"ixeg/733/autopilot/ALTHLD_mode_toggle">}}},
                  Variant{.addOn = AddOn::Ec135,
                          .buttons = {{FloatElement<"rotorsim/ec135/afcs_indications">(12),
                                       &commandOf<"ec135/autopilot/alt">}}},
                  Variant{.stateBits = altitudeHold, .key = xplm_key_otto_alt}};
            }>,
            .lossy = flagLoss}),
    Switch({.offset = 0x07DC,
            .name = "ap_speed",
            .meaning = "airspeed hold",
            .cycle = Cycle::C7,
            .variants = variantsOf<[] {
              return std::array{Variant{.addOn = AddOn::X737,
                                        .target = Int<"x737/systems/athr/MCPSPD_mode">,
                                        .buttons = {{Int<"x737/systems/athr/MCPSPD_mode">,
                                                     &commandOf<"x737/mcp/MCPSPD_MODE_TOGGLE">},
                                                    {Int<"x737/systems/MCP/LED_VNAV_on">,
                                                     &commandOf<"x737/mcp/VNAV_TOGGLE">}}},
                                Variant{.addOn = AddOn::B738Extended,
                                        .alsoFor = AddOn::B738Stock,
                                        .buttons = {{Float<"laminar/B738/autopilot/speed_status1">,
                                                     &commandOf<"laminar/B738/autopilot/speed_press">},
                                                    {Float<"laminar/B738/autopilot/lvl_chg_status">,
                                                     &commandOf<"laminar/B738/autopilot/lvl_chg_press">},
                                                    {Float<"laminar/B738/autopilot/vnav_status1">,
                                                     &commandOf<"laminar/B738/autopilot/vnav_press">}}},
                                Variant{.addOn = AddOn::Ixeg733,
                                        .buttons = {{Fitting<"ixeg/733/MCP/mcp_speed_ann">,
                                                     &commandOf<"ixeg/733/autopilot/SPEED_mode_toggle">},
                                                    {Fitting<"ixeg/733/MCP/mcp_level_change_ann">,
                                                     &commandOf<"ixeg/733/autopilot/LVLCHG_mode_toggle">},
                                                    {Fitting<"ixeg/733/MCP/mcp_vnav_ann">,
                                                     &commandOf<"ixeg/733/autopilot/VNAV_mode_toggle">}}},
                                Variant{.addOn = AddOn::Ec135,
                                        .buttons = {{FloatElement<"rotorsim/ec135/afcs_indications">(11),
                                                     &commandOf<"ec135/autopilot/ias">}}},
                                Variant{.stateBits = autothrottleSpeed, .key = xplm_key_otto_atr}};
            }>,
            .lossy = flagLoss}),
    Switch({.offset = 0x07E4,
            .name = "ap_mach",
            .meaning = "Mach hold",
            .cycle = Cycle::C7,
            .variants = variantsOf<[] {
              return std::array{Variant{.addOn = AddOn::X737,
                                        .target = Int<"x737/systems/athr/MCPSPD_mode">,
                                        .buttons = {{Int<"x737/systems/athr/MCPSPD_mode">,
                                                     &commandOf<"x737/mcp/MCPSPD_MODE_TOGGLE">}}},
                                Variant{.addOn = AddOn::B738Extended,
                                        .alsoFor = AddOn::B738Stock,
                                        .buttons = {{Float<"laminar/B738/autopilot/speed_status1">,
                                                     &commandOf<"laminar/B738/autopilot/speed_press">}}},
                                Variant{.addOn = AddOn::Ixeg733,
                                        .buttons = {{Fitting<"ixeg/733/MCP/mcp_speed_ann">,
                                                     &commandOf<"ixeg/733/autopilot/SPEED_mode_toggle">}}},
                                Variant{.addOn = AddOn::Ec135, .silent = true},
                                Variant{.stateBits = autothrottleSpeed, .stateBit = autothrottleSpeed}};
            }>,
            .lossy = flagLoss}),
    Switch({.offset = 0x07EC,
            .name = "ap_vertical_speed",
            .meaning = "vertical speed hold",
            .cycle = Cycle::C7,
            .variants = variantsOf<[] {
              return std::array{
                  Variant{.addOn = AddOn::X737,
                          .marks = {Int<"x737/systems/afds/VS_arm">, Int<"x737/systems/afds/VS">},
                          .target = Int<"x737/systems/afds/VS">,
                          .buttons = {{Int<"x737/systems/afds/VS">, &commandOf<"x737/mcp/VS_TOGGLE">}}},
                  Variant{.addOn = AddOn::B738Extended,
                          .alsoFor = AddOn::B738Stock,
                          .buttons = {{Float<"laminar/B738/autopilot/vs_status">,
                                       &commandOf<"laminar/B738/autopilot/vs_press">}}},
                  Variant{.addOn = AddOn::Ixeg733,
                          .buttons = {{Fitting<"ixeg/733/MCP/mcp_vs_ann">,
                                       &commandOf<"ixeg/733/autopilot/VS_mode_toggle">}}},
                  Variant{.addOn = AddOn::Ec135,
                          .buttons = {{FloatElement<"rotorsim/ec135/afcs_indications">(10),
                                       &commandOf<"ec135/autopilot/vs">}}},
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
                  Variant{.addOn = AddOn::B738Extended,
                          .alsoFor = AddOn::B738Stock,
                          .lights = {Float<"laminar/B738/autopilot/n1_status">}},
                  Variant{.addOn = AddOn::Ixeg733, .lights = {Fitting<"ixeg/733/MCP/mcp_n1_ann">}},
                  Variant{.stateBits = levelChange}};
            }>}),
    Switch({.offset = 0x0800,
            .name = "ap_approach",
            .meaning = "approach hold, armed or engaged",
            .cycle = Cycle::C7,
            .variants = variantsOf<[] {
              return std::array{
                  Variant{.addOn = AddOn::X737,
                          .target = Int<"x737/systems/afds/APP">,
                          .buttons = {{Int<"x737/systems/afds/APP">, &commandOf<"x737/mcp/APP_TOGGLE">}}},
                  Variant{.addOn = AddOn::B738Extended,
                          .alsoFor = AddOn::B738Stock,
                          .buttons = {{Float<"laminar/B738/autopilot/app_status">,
                                       &commandOf<"laminar/B738/autopilot/app_press">}}},
                  Variant{.addOn = AddOn::Ixeg733,
                          .buttons = {{Fitting<"ixeg/733/MCP/mcp_app_ann">,
                                       &commandOf<"ixeg/733/autopilot/APP_mode_toggle">}}},
                  Variant{.addOn = AddOn::Ec135,
                          .buttons = {{FloatElement<"rotorsim/ec135/afcs_indications">(4),
                                       &commandOf<"ec135/autopilot/app">}}},
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
                  Variant{
                      .addOn = AddOn::X737,
                      .marks = {Int<"x737/systems/athr/toggle_TOGA">},
                      .apply = ApplyGoAroundX737,
                      .sets =
                          sourcesOf<Int<"x737/cockpit/tq/left_TOGA_btn">, Int<"x737/cockpit/tq/right_TOGA_btn">,
                                    Int<"x737/systems/athr/toggle_TOGA">>},
                  Variant{.addOn = AddOn::B738Extended,
                          .lights = {Float<"laminar/B738/autopilot/n1_status">},
                          .buttons = {{{}, &commandOf<"laminar/B738/autopilot/left_toga_press">}},
                          .momentary = true,
                          .held = true},
                  Variant{.addOn = AddOn::Ixeg733,
                          .buttons = {{{}, &commandOf<"sim/engines/TOGA_power">}},
                          .momentary = true},
                  Variant{.addOn = AddOn::B738Stock,
                          .lights = {Float<"laminar/B738/autopilot/n1_status">},
                          .buttons = {{{}, &commandOf<"laminar/B738/autopilot/capt_toga_press">}},
                          .momentary = true,
                          .held = true},
                  Variant{.stateBits = lateralToga | verticalToga}};
            }>,
            .lossy = "can be written with some add-on aircraft only"}),
    Switch({.offset = 0x0810,
            .name = "autothrottle",
            .meaning = "autothrottle armed",
            .cycle = Cycle::C7,
            .variants = variantsOf<[] {
              return std::array{
                  Variant{
                      .addOn = AddOn::X737,
                      .marks = {Int<"x737/systems/athr/athr_armed">},
                      .apply = ApplyAutothrottleX737,
                      .reads = sourcesOf<Int<"x737/systems/PFD/PFD_TOGA_mode_on">>,
                      .sets =
                          sourcesOf<Int<"x737/systems/athr/athr_armed">, Int<"x737/systems/athr/toggle_TOGA">>},
                  Variant{.addOn = AddOn::B738Extended,
                          .alsoFor = AddOn::B738Stock,
                          .lights = {Float<"laminar/B738/autopilot/autothrottle_status">,
                                     Float<"laminar/B738/autopilot/speed_status1">},
                          .buttons = {{Float<"laminar/B738/autopilot/autothrottle_arm_pos">,
                                       &commandOf<"laminar/B738/autopilot/autothrottle_arm_toggle">}}},
                  Variant{.addOn = AddOn::Ixeg733,
                          .lights = {Fitting<"ixeg/733/MCP/mcp_at_arm_ann">},
                          .target = Fitting<"ixeg/733/MCP/mcp_at_arm_act">},
                  Variant{.addOn = AddOn::Ec135, .silent = true},
                  Variant{.lights = {Int<"sim/cockpit2/autopilot/autothrottle_enabled">},
                          .target = Int<"sim/cockpit2/autopilot/autothrottle_enabled">}};
            }>,
            .lossy = flagLoss}),
    {.offset = 0x07CC,
     .type = Stored::U16,
     .name = "ap_heading_bug",
     .meaning = "selected heading",
     .reference = "magnetic north",
     .unit = "deg",
     .unitScale = 360.0 / 65536,
     .cycle = Cycle::C7,
     .convert = HeadingWordOf,
     .variants = variantsOf<[] {
       return std::array{Variant{.addOn = AddOn::X737,
                                 .source = Float<"x737/systems/afds/HDG_magnhdg">,
                                 .target = Float<"x737/systems/afds/HDG_magnhdg">},
                         Variant{.addOn = AddOn::B738Extended,
                                 .source = Float<"laminar/B738/autopilot/mcp_hdg_dial">,
                                 .target = Float<"laminar/B738/autopilot/mcp_hdg_dial">},
                         Variant{.source = Float<"sim/cockpit/autopilot/heading_mag">,
                                 .target = Float<"sim/cockpit/autopilot/heading_mag">}};
     }>,
     .write = {.convert = DegreesOf},
     .tolerance = {.steps = 17, .wraps = true},
     .lossy = "written at 182 per degree: reads back up to 16 higher, and from 65520 on begins again at 0"},
    {.offset = 0x07D4,
     .type = Stored::S32,
     .name = "ap_altitude_set",
     .meaning = "selected altitude",
     .reference = "altimeter setting",
     .unit = "m",
     .unitScale = 1.0 / 65536,
     .cycle = Cycle::C7,
     .source = Float<"sim/cockpit/autopilot/altitude">,
     .factor = metresPerFoot * 65536,
     .variants = variantsOf<[] {
       return std::array{Variant{.addOn = AddOn::X737,
                                 .source = Float<"x737/systems/afds/ALTHLD_baroalt">,
                                 .target = Float<"x737/systems/afds/ALTHLD_baroalt">},
                         Variant{.addOn = AddOn::B738Extended,
                                 .source = Float<"laminar/B738/autopilot/mcp_alt_dial">,
                                 .target = Float<"laminar/B738/autopilot/mcp_alt_dial">},
                         Variant{.target = Float<"sim/cockpit/autopilot/altitude">}};
     }>,
     .write = {.convert = FeetOf},
     .tolerance = {.steps = 1, .share = 0.000013},
     .lossy = "written at 3.2808 feet per metre: reads back 0.0012 % lower"},
    {.offset = 0x07E2,
     .type = Stored::U16,
     .name = "ap_ias_set",
     .meaning = "selected airspeed",
     .unit = "kt",
     .cycle = Cycle::C7,
     .variants = variantsOf<[] {
       return std::array{Variant{.addOn = AddOn::X737,
                                 .read = ReadKnots<x737Speed>,
                                 .apply = ApplyKnots<x737Speed>,
                                 .reads = sourcesOf<x737Speed.isMach, x737Speed.mach, x737Speed.knots>,
                                 .sets = sourcesOf<x737Speed.set>},
                         Variant{.addOn = AddOn::B738Extended,
                                 .read = ReadKnots<b738Speed>,
                                 .apply = ApplyKnots<b738Speed>,
                                 .reads = sourcesOf<b738Speed.knots>,
                                 .sets = sourcesOf<b738Speed.set>},
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
       return std::array{Variant{.addOn = AddOn::X737,
                                 .read = ReadMach<x737Speed>,
                                 .apply = ApplyMach<x737Speed>,
                                 .reads = sourcesOf<x737Speed.isMach, x737Speed.mach, x737Speed.knots>,
                                 .sets = sourcesOf<x737Speed.set>},
                         Variant{.addOn = AddOn::B738Extended,
                                 .read = ReadMach<b738Speed>,
                                 .apply = ApplyMach<b738Speed>,
                                 .reads = sourcesOf<b738Speed.knots>,
                                 .sets = sourcesOf<b738Speed.set>},
                         Variant{.read = ReadMach<stockSpeed>, .apply = ApplyMach<stockSpeed>}};
     }>,
     .tolerance = {.steps = 1, .share = 1e-7},
     .lossy = "held in single precision: off by more than one step from Mach 100 on",
     .note = "Mach also while the selector stands at knots"},
    {.offset = 0x07F2,
     .type = Stored::S16,
     .name = "ap_vertical_speed_set",
     .meaning = "selected vertical speed",
     .positive = "climbing",
     .unit = "ft/min",
     .cycle = Cycle::C7,
     .variants = variantsOf<[] {
       return std::array{Variant{.addOn = AddOn::X737,
                                 .source = Float<"x737/systems/afds/VS_vvi">,
                                 .apply = ApplyClimbX737,
                                 .reads = sourcesOf<Int<"x737/systems/afds/VS">>,
                                 .sets = sourcesOf<Float<"x737/systems/afds/VS_vvi">>,
                                 .fires = commandsOf<"x737/mcp/VS_TOGGLE">},
                         Variant{.addOn = AddOn::B738Extended,
                                 .source = Float<"laminar/B738/autopilot/ap_vvi_pos">,
                                 .target = Float<"sim/cockpit2/autopilot/vvi_dial_fpm">},
                         Variant{.source = Float<"sim/cockpit/autopilot/vertical_velocity">,
                                 .target = Float<"sim/cockpit/autopilot/vertical_velocity">}};
     }>},
    Switch({.offset = 0x0804,
            .name = "ap_back_course",
            .meaning = "back course",
            .variants = variantsOf<[] {
              return std::array{Variant{.addOn = AddOn::X737, .silent = true},
                                Variant{.addOn = AddOn::B738Extended, .silent = true},
                                Variant{.addOn = AddOn::Ixeg733, .silent = true},
                                Variant{.addOn = AddOn::Ec135, .silent = true}};
            }>,
            .write = {.apply = ApplyBackCourse}}),
    Switch({.offset = 0x0808,
            .name = "yaw_damper",
            .meaning = "yaw damper",
            .cycle = Cycle::C31,
            .variants = variantsOf<[] {
              return std::array{Variant{.addOn = AddOn::B738Extended,
                                        .lights = {Float<"laminar/B738/annunciator/yaw_damp">},
                                        .dark = true,
                                        .buttons = {{Float<"laminar/B738/toggle_switch/yaw_dumper_pos">,
                                                     &commandOf<"laminar/B738/toggle_switch/yaw_dumper">}}},
                                Variant{.addOn = AddOn::Ixeg733,
                                        .marks = {Fitting<"ixeg/733/hydraulics/yaw_damper_act">},
                                        .target = Fitting<"ixeg/733/hydraulics/yaw_damper_act">},
                                Variant{.marks = {Int<"sim/cockpit/switches/yaw_damper_on">},
                                        .target = Int<"sim/cockpit/switches/yaw_damper_on">}};
            }>,
            .lossy = flagLoss}),
    {.offset = 0x2F80,
     .type = Stored::U8,
     .name = "autobrake",
     .meaning = "autobrake",
     .choices = autobrakePlaces,
     .cycle = Cycle::C31,
     .source = Int<"sim/cockpit/switches/auto_brake_settings">,
     .variants = variantsOf<[] {
       return std::array{Variant{.addOn = AddOn::B738Extended,
                                 .source = Float<"laminar/B738/autobrake/autobrake_pos">,
                                 .target = Float<"laminar/B738/autobrake/autobrake_pos">,
                                 .targetConvert = AutobrakePlace},
                         Variant{.addOn = AddOn::Ixeg733,
                                 .source = Fitting<"ixeg/733/hydraulics/hyd_auto_brake_act">,
                                 .convert = AutobrakeOfIxeg,
                                 .target = Fitting<"ixeg/733/hydraulics/hyd_auto_brake_act">,
                                 .targetConvert = IxegAutobrake}};
     }>,
     .write = {.target = Int<"sim/cockpit/switches/auto_brake_settings">, .low = 0, .high = 5},
     .lossy = "above 5 counts as 5"},
};

}  // namespace

const RowTable autopilotRows = {"Autopilot", rows};
