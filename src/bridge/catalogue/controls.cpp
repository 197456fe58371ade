// Flight controls, trim, brakes, gear, flaps, speed brake, nose wheel.
#include <algorithm>
#include <atomic>
#include <charconv>
#include <cmath>
#include <numbers>
#include <span>

#include "XPLMUtilities.h"
#include "base/log.h"
#include "base/log_quiet.h"
#include "bridge/catalogue.h"
#include "bridge/catalogue/conversions.h"
#include "bridge/catalogue/losses.h"
#include "bridge/slew.h"

namespace {

constexpr double full = 16383;        // full travel of most controls
constexpr double parkedWord = 32767;  // parking brake set
// Trims and surfaces in radians at a tenth of the scale: full trim is 10 degrees.
constexpr double tenDegrees = std::numbers::pi / 18;

// --- Trim -----------------------------------------------------------------------------------------

// The 737's stabiliser travels further nose up than nose down: its words run from -6230 to 16270.
constexpr double stabiliserSteps = 11250, stabiliserZero = 5020;

double StabiliserWord(double trim) { return (trim + stabiliserZero / stabiliserSteps) * stabiliserSteps; }
double StabiliserTrim(double word) { return word / stabiliserSteps - stabiliserZero / stabiliserSteps; }

// --- Brakes ---------------------------------------------------------------------------------------

constexpr Source leftBrake = Float<"sim/flightmodel/controls/l_brake_add">,
                 rightBrake = Float<"sim/flightmodel/controls/r_brake_add">;
constexpr Source parkingLight = Fitting<"laminar/B738/annunciator/parking_brake">;

// All brake rows look at the parking brake, so that it is read with the snapshot.
constexpr Variant parkingBrake[] = {{.addOn = AddOn::B738Extended, .source = parkingLight},
                                    {.source = Float<"sim/flightmodel/controls/parkbrake">}};
constexpr Variant toeBrakes[] = {{.source = leftBrake}};
constexpr std::span<const Variant> parkingParts[] = {parkingBrake}, brakeParts[] = {parkingBrake, toeBrakes};

struct Brakes {
  double left, right, parking;
} brakes;  // of one look

void TakeBrakes() {
  brakes = {ReadSource(leftBrake), ReadSource(rightBrake), ReadSource(ShowingVariant(parkingBrake).source)};
}

// A toe brake; the parking brake holds both down.
template <double Brakes::*brake>
bool ReadToeBrake(const OffsetRow&, double* value) {
  *value = brakes.parking > 0.5 ? full : brakes.*brake * full;
  return true;
}

bool ReadBrakesApplied(const OffsetRow&, double* value) {
  *value = brakes.left > 0.2 || brakes.right > 0.2 || brakes.parking > 0.2 ? full : 0;
  return true;
}

void ApplyRightBrake(const OffsetRow&, const Staged& staged) {
  int16_t left = 0;
  CopyFromMemory(0x0BC4, sizeof(left), &left);
  const float ratio = static_cast<float>(staged.number * (1 / full));
  SetSource(rightBrake, ratio);
  // A pedal would fill the log.
  static QuietMinute lines = {.what = "TAVRIX->Offset 0x0BC6 was written", .most = 10, .began = 0, .turns = 0};
  if (staged.own || !TakeLogTurn(&lines)) return;
  // Formatted here: the line's decimal point must not follow the computer's locale.
  char number[32];
  *std::to_chars(number, number + sizeof(number) - 1, ratio, std::chars_format::fixed, 6).ptr = '\0';
  LogLine("Offset 0x0BC6 tavrixWriteValue = %i bc6Value = %i FSVar = %s\n", static_cast<int>(staged.integer),
          static_cast<int>(left), number);
}

// The extended 737-800 knows only off and on, and has a button that goes from one to the other; earlier
// versions listen to the simulator's. The light needs power, the lever does not.
constexpr Source parkingLever = Fitting<"laminar/B738/parking_brake_pos">;
bool IsParkedB738(double ratio) { return ratio > 0.2; }
double ParkingWordB738(double light) { return IsParkedB738(light) ? parkedWord : 0; }

void ApplyParkingBrakeB738(const OffsetRow& row, const Staged& staged) {
  const double set = ReadSource(HandleOf(parkingLever) != nullptr ? parkingLever : parkingLight);
  if (IsParkedB738(staged.number / parkedWord) == IsParkedB738(set)) return;
  const Command& button = commandOf<"laminar/B738/push_button/park_brake_on_off">;
  FireFor(row, button.handle != nullptr ? button : commandOf<"sim/flight_controls/brakes_toggle_max">);
}

// --- Speed brake ----------------------------------------------------------------------------------

// Clients know the lever as 0 down, 4800 armed, 5620 to 16383 deployed.
constexpr double armedWord = 4800, deployedWord = 5620;
constexpr double stockArmed = -0.5, x737Armed = 0.125, b738Armed = 0.0889, ixegArmed = 0.15;
constexpr Source x737SpeedBrake = Fitting<"x737/systems/speedbrake/spdbrkLeverPos">,
                 x737IsArmed = Fitting<"x737/systems/speedbrake/spdbrkIsArmed">;
constexpr Source b738SpeedBrake = Fitting<"laminar/B738/flt_ctrls/speedbrake_lever">,
                 ixegSpeedBrake = Fitting<"ixeg/733/hydraulics/speedbrake_act">;
constexpr Source speedBrakeRequest = Float<"sim/flightmodel/controls/sbrkrqst">;

// An add-on's lever: down, armed within a narrow stretch, else deployed in proportion. Compared in single
// precision, as the lever's detents are.
double LeverWord(double position, float down, float deployed) {
  const float lever = static_cast<float>(position);
  if (!(lever > down)) return 0;
  if (lever < deployed) return armedWord;
  return std::clamp(std::trunc(position * full), armedWord, full);
}
constexpr float x737Deployed = 0.15f;
double LeverWordX737(double position) { return LeverWord(position, 0.1f, x737Deployed); }
double LeverWordB738(double position) { return LeverWord(position, 0.07f, 0.145f); }
double LeverWordIxeg(double position) { return LeverWord(position, 0.1f, 0.2f); }
double RequestWord(double request) {
  if (request < 0) return armedWord;
  return request == 0 ? 0 : std::min(full, armedWord + request * (full - armedWord));
}

bool IsArmedWord(double word) { return word >= armedWord && word < deployedWord; }

template <const double& armed>
double LeverOf(double word) {
  if (IsArmedWord(word)) return armed;
  return word < armedWord ? 0 : std::min(1.0, word / full);
}
double RequestOf(double word) {
  if (IsArmedWord(word)) return stockArmed;
  return std::clamp((word - deployedWord) * (1 / (full - deployedWord)), 0.0, 1.0);
}

double IsArmedLight(double light) { return light != 0; }
double IsArmedRequest(double request) { return request < 0; }
double IsArmedB738(double position) {
  const float lever = static_cast<float>(position);
  return lever > 0.04f && lever < 0.15f;
}
double IsArmedIxeg(double position) { return LeverWordIxeg(position) == armedWord && position < 0.2; }

// Where the lever goes when it is armed; back to 0 when not.
template <const double& armed>
double ArmedOrDown(double wanted) {
  return wanted != 0 ? armed : 0;
}
// The same of an add-on's lever, which stays where it is deployed.
template <const Source& lever, const double& armed, Convert isArmed>
void ApplyArmed(const OffsetRow&, const Staged& staged) {
  if (staged.integer != 0 || isArmed(ReadSource(lever)) != 0)
    SetSource(lever, ArmedOrDown<armed>(staged.number));
}
// The x737 has commands for both; earlier versions a switch.
void ApplyArmedX737(const OffsetRow& row, const Staged& staged) {
  const bool wanted = staged.integer != 0;
  if (!wanted && static_cast<float>(ReadSource(x737SpeedBrake)) >= x737Deployed) return;
  const Command& command =
      wanted ? commandOf<"x737/speedbrakes/SPEEDBRAKES_ARM"> : commandOf<"x737/speedbrakes/SPEEDBRAKES_DOWN">;
  if (command.handle != nullptr) {
    FireCommand(command);
  } else if (HandleOf(x737IsArmed) != nullptr) {
    SetSource(x737IsArmed, wanted);
  } else {
    FireFor(row, command);  // says so
  }
}

// --- Flaps and gear -------------------------------------------------------------------------------

constexpr const Command* b738Flaps[] = {
    &commandOf<"laminar/B738/push_button/flaps_0">,  &commandOf<"laminar/B738/push_button/flaps_1">,
    &commandOf<"laminar/B738/push_button/flaps_2">,  &commandOf<"laminar/B738/push_button/flaps_5">,
    &commandOf<"laminar/B738/push_button/flaps_10">, &commandOf<"laminar/B738/push_button/flaps_15">,
    &commandOf<"laminar/B738/push_button/flaps_25">, &commandOf<"laminar/B738/push_button/flaps_30">,
    &commandOf<"laminar/B738/push_button/flaps_40">};

// Eight steps between the nine detents 0, 1, 2, 5, 10, 15, 25, 30, 40 of the 737s.
double FlapDetent(double word) { return std::min(8.0, std::round(word * 8 / full)); }
double FlapLever(double word) { return FlapDetent(word) / 8; }

constexpr Source gearHandle = Int<"sim/cockpit/switches/gear_handle_status">;

double GearWord(double handle) { return handle != 0 ? full : 0; }
double GearWordB738(double handle) { return handle > 0.5 ? full : 0; }
double GearDown(double word) { return word >= 8192; }

void ApplyGear(const OffsetRow&, const Staged& staged) {
  const bool down = GearDown(staged.number) != 0;
  if (down != IsOn(gearHandle)) PushButton(down ? xplm_joy_gear_down : xplm_joy_gear_up);
}

// --- Joystick disconnect --------------------------------------------------------------------------

// Overrides by bit: elevator, aileron, rudder, throttles.
constexpr Source overrides[4] = {
    Int<"sim/operation/override/override_joystick_pitch">, Int<"sim/operation/override/override_joystick_roll">,
    Int<"sim/operation/override/override_joystick_heading">, Int<"sim/operation/override/override_throttles">};
unsigned overridesTaken = 0;  // bits that were off before a client's write switched them on

void ApplyOverrides(const OffsetRow&, const Staged& staged) {
  if (!staged.own) overridesCleared.fetch_or(~static_cast<unsigned>(staged.integer));
  for (unsigned bit = 0; bit < 4; ++bit) {
    const unsigned mask = 1u << bit;
    const bool wanted = (static_cast<unsigned>(staged.integer) & mask) != 0;
    if (!wanted) {
      overridesTaken &= ~mask;
    } else if (!IsOn(overrides[bit])) {
      overridesTaken |= mask;
    }
    SetSource(overrides[bit], wanted);
  }
}

// --- Rows -----------------------------------------------------------------------------------------

// A control surface or lever in steps of full travel, by the row's own factor.
constexpr OffsetRow Position(OffsetRow row) {
  row.unit = "%";
  row.unitScale = 100 / full;
  return row;
}

// The same of a dataref that is a share of full travel.
constexpr OffsetRow Travel(OffsetRow row) {
  row.factor = full;
  return Position(row);
}

// The same when clients move it.
constexpr OffsetRow Axis(OffsetRow row) {
  row.type = Stored::S16;
  row.write = {.target = row.source, .factor = 1 / full};
  return Travel(row);
}

// Trim as an angle.
constexpr OffsetRow TrimAngle(OffsetRow row) {
  row.type = Stored::F64;
  row.unit = "deg";
  row.unitScale = 180 / std::numbers::pi;
  row.cycle = Cycle::C13;
  row.factor = tenDegrees;
  row.write = {.target = row.source, .factor = 1 / tenDegrees, .low = -1, .high = 1};
  row.limits = {-tenDegrees, tenDegrees};
  row.tolerance = {.share = 1e-6};
  row.lossy = "held in single precision, and limited to 10 degrees either way";
  return row;
}

// One flap panel, degrees x 256.
constexpr OffsetRow FlapAngle(OffsetRow row) {
  row.type = Stored::S16;
  row.unit = "deg";
  row.unitScale = 1.0 / 256;
  row.cycle = Cycle::C7;
  row.factor = 256;
  return row;
}

constexpr Source slats = Float<"sim/flightmodel2/controls/slat1_deploy_ratio">;

constexpr Choice joystickControls[] = {{0, "elevator"}, {1, "aileron"}, {2, "rudder"}, {3, "throttles"}};

constexpr OffsetRow rows[] = {
    Axis({.offset = 0x0BB2,
          .name = "elevator",
          .meaning = "elevator input",
          .positive = "pulled",
          .cycle = Cycle::C1,
          .source = Float<"sim/joystick/yolk_pitch_ratio">}),
    Travel({.offset = 0x584A,
            .type = Stored::S16,
            .name = "elevator_copy",
            .meaning = "elevator input, second copy",
            .positive = "pulled",
            .cycle = Cycle::C1,
            .source = Float<"sim/joystick/yolk_pitch_ratio">}),
    Position({.offset = 0x0BB4,
              .type = Stored::S16,
              .name = "elevator_position",
              .meaning = "elevator position",
              .cycle = Cycle::C1,
              .source = Float<"sim/flightmodel/controls/hstab1_elv1def">,
              .factor = -(16363.0 / 15)}),
    Position({.offset = 0x0BB8,
              .type = Stored::S16,
              .name = "aileron_position",
              .meaning = "aileron position",
              .cycle = Cycle::C1,
              .source = Float<"sim/flightmodel/controls/lail1def">,
              .factor = -(full / 30)}),
    {.offset = 0x2EA8,
     .type = Stored::F64,
     .name = "aileron_deflection",
     .meaning = "aileron deflection, ten times the angle in radians",
     .unit = "deg",
     .unitScale = 18 / std::numbers::pi,
     .cycle = Cycle::C1,
     .source = Float<"sim/flightmodel/controls/lail1def">,
     .factor = -tenDegrees},
    Axis({.offset = 0x0BBA,
          .name = "rudder",
          .meaning = "rudder input",
          .positive = "right",
          .cycle = Cycle::C1,
          .source = Float<"sim/joystick/yolk_heading_ratio">}),
    Position({.offset = 0x0BBC,
              .type = Stored::S16,
              .name = "rudder_position",
              .meaning = "rudder position",
              .cycle = Cycle::C1,
              .source = Float<"sim/flightmodel/controls/ldruddef">,
              .factor = full / 30}),
    {.offset = 0x2EB8,
     .type = Stored::F64,
     .name = "rudder_deflection",
     .meaning = "rudder deflection, ten times the angle in radians",
     .unit = "deg",
     .unitScale = 18 / std::numbers::pi,
     .cycle = Cycle::C1,
     .source = Float<"sim/flightmodel/controls/ldruddef">,
     .factor = tenDegrees},
    {.offset = 0x0BBE,
     .type = Stored::U16,
     .name = "blade_pitch",
     .meaning = "blade pitch of engine 1",
     .unit = "deg",
     .unitScale = 30.0 / 65536,
     .cycle = Cycle::C1,
     .source = FloatElement<"sim/flightmodel/engine/POINT_pitch_deg">(0),
     .factor = 65536.0 / 30,
     .write = {.target = FloatElement<"sim/flightmodel/engine/POINT_pitch_deg">(0), .factor = 30.0 / 65536}},
    Axis({.offset = 0x0BB6,
          .name = "aileron",
          .meaning = "aileron input",
          .positive = "right",
          .cycle = Cycle::C3,
          .source = Float<"sim/joystick/yoke_roll_ratio">}),
    Travel({.offset = 0x584C,
            .type = Stored::S16,
            .name = "aileron_copy",
            .meaning = "aileron input, second copy",
            .positive = "right",
            .cycle = Cycle::C3,
            .source = Float<"sim/joystick/yoke_roll_ratio">}),
    {.offset = 0x0BC0,
     .type = Stored::S16,
     .name = "elevator_trim",
     .meaning = "elevator trim control",
     .positive = "nose up",
     .unit = "%",
     .unitScale = 100 / full,
     .cycle = Cycle::C3,
     .source = Float<"sim/flightmodel/controls/elv_trim">,
     .factor = full,
     .variants = variantsOf<[] {
       return std::array{
           Variant{.addOn = AddOn::X737, .convert = StabiliserWord, .targetConvert = StabiliserTrim}};
     }>,
     .write = {.target = Float<"sim/flightmodel/controls/elv_trim">, .factor = 1 / full, .low = -1, .high = 1},
     .limits = {-full, full},
     .lossy = "limited to full trim either way",
     .note = "with the x737: -6230 full nose down, 5020 neutral, 16270 full nose up"},
    {.offset = 0x0BC2,
     .type = Stored::S16,
     .name = "elevator_trim_indicator",
     .meaning = "elevator trim indicator",
     .positive = "nose up",
     .unit = "%",
     .unitScale = 100 / full,
     .cycle = Cycle::C3,
     .source = Float<"sim/flightmodel/controls/elv_trim">,
     .factor = full,
     .variants =
         variantsOf<[] { return std::array{Variant{.addOn = AddOn::X737, .convert = StabiliserWord}}; }>},
    {.offset = 0x2E98,
     .type = Stored::F64,
     .name = "elevator_trim_indicator_angle",
     .meaning = "elevator trim indicator, radians",
     .positive = "nose up",
     .unit = "deg",
     .unitScale = 180 / std::numbers::pi,
     .cycle = Cycle::C3,
     .source = Float<"sim/flightmodel/controls/elv_trim">,
     .factor = tenDegrees},
    Axis({.offset = 0x0C02,
          .name = "aileron_trim",
          .meaning = "aileron trim",
          .positive = "right",
          .cycle = Cycle::C3,
          .source = Float<"sim/cockpit2/controls/aileron_trim", "sim/flightmodel/controls/ail_trim">}),
    Axis({.offset = 0x0C04,
          .name = "rudder_trim",
          .meaning = "rudder trim",
          .positive = "right",
          .cycle = Cycle::C3,
          .source = Float<"sim/cockpit2/controls/rudder_trim", "sim/flightmodel/controls/rud_trim">}),
    TrimAngle({.offset = 0x2EA0,
               .name = "elevator_trim_angle",
               .meaning = "elevator trim, radians",
               .positive = "nose up",
               .source = Float<"sim/flightmodel/controls/elv_trim">}),
    TrimAngle({.offset = 0x2EB0,
               .name = "aileron_trim_angle",
               .meaning = "aileron trim, radians",
               .positive = "right",
               .source = Float<"sim/flightmodel/controls/ail_trim">}),
    TrimAngle({.offset = 0x2EC0,
               .name = "rudder_trim_angle",
               .meaning = "rudder trim, radians",
               .positive = "right",
               .source = Float<"sim/flightmodel/controls/rud_trim">}),

    {.offset = 0x0BC4,
     .type = Stored::S16,
     .name = "left_brake",
     .meaning = "left toe brake",
     .unit = "%",
     .unitScale = 100 / full,
     .cycle = Cycle::C3,
     .read = ReadToeBrake<&Brakes::left>,
     .prepare = TakeBrakes,
     .parts = brakeParts,
     .write = {.target = leftBrake, .factor = 1 / full},
     .note = "16383 while the parking brake is set"},
    {.offset = 0x0BC6,
     .type = Stored::S16,
     .name = "right_brake",
     .meaning = "right toe brake",
     .unit = "%",
     .unitScale = 100 / full,
     .cycle = Cycle::C3,
     .read = ReadToeBrake<&Brakes::right>,
     .prepare = TakeBrakes,
     .parts = brakeParts,
     .write = {.apply = ApplyRightBrake},
     .note = "16383 while the parking brake is set"},
    {.offset = 0x0BC8,
     .type = Stored::U16,
     .name = "parking_brake",
     .meaning = "parking brake",
     .unit = "%",
     .unitScale = 100 / parkedWord,
     .cycle = Cycle::C3,
     .factor = parkedWord,
     .prepared = &brakes.parking,
     .prepare = TakeBrakes,
     .variants = variantsOf<[] {
       return std::array{Variant{.addOn = AddOn::B738Extended,
                                 .convert = ParkingWordB738,
                                 .apply = ApplyParkingBrakeB738,
                                 .reads = sourcesOf<parkingLight, parkingLever>,
                                 .fires = commandsOf<"laminar/B738/push_button/park_brake_on_off",
                                                     "sim/flight_controls/brakes_toggle_max">},
                         Variant{.target = Float<"sim/flightmodel/controls/parkbrake">}};
     }>,
     .parts = parkingParts,
     .write = {.factor = 1 / parkedWord, .high = 1},
     .limits = {0, parkedWord},
     .lossy = "above 32767 counts as 32767; the extended 737-800 knows only off and on"},
    {.offset = 0x0BCA,
     .type = Stored::U16,
     .name = "brakes_applied",
     .meaning = "16383 while a brake is above 20 %",
     .show = Show::Flag,
     .cycle = Cycle::C3,
     .read = ReadBrakesApplied,
     .prepare = TakeBrakes,
     .parts = brakeParts},
    {.offset = 0x3416,
     .type = Stored::S16,
     .name = "left_brake_axis",
     .meaning = "left brake axis input",
     .unit = "%",
     .unitScale = 100 / full,
     .cycle = Cycle::C3,
     .factor = full,
     .prepared = &brakes.left,
     .prepare = TakeBrakes},
    {.offset = 0x3418,
     .type = Stored::S16,
     .name = "right_brake_axis",
     .meaning = "right brake axis input",
     .unit = "%",
     .unitScale = 100 / full,
     .cycle = Cycle::C3,
     .factor = full,
     .prepared = &brakes.right,
     .prepare = TakeBrakes},

    {.offset = 0x0BCC,
     .type = Stored::U32,
     .name = "speed_brake_armed",
     .meaning = "speed brake armed",
     .show = Show::Flag,
     .cycle = Cycle::C13,
     .variants = variantsOf<[] {
       return std::array{
           Variant{
               .addOn = AddOn::X737,
               .source = Fitting<"x737/systems/speedbrake/spdbrkIsArmedLight">,
               .convert = IsArmedLight,
               .apply = ApplyArmedX737,
               .sets = sourcesOf<x737IsArmed>,
               .fires = commandsOf<"x737/speedbrakes/SPEEDBRAKES_DOWN", "x737/speedbrakes/SPEEDBRAKES_ARM">},
           Variant{.addOn = AddOn::B738Extended,
                   .alsoFor = AddOn::B738Stock,
                   .source = b738SpeedBrake,
                   .convert = IsArmedB738,
                   .apply = ApplyArmed<b738SpeedBrake, b738Armed, IsArmedB738>,
                   .sets = sourcesOf<b738SpeedBrake>},
           Variant{.addOn = AddOn::Ixeg733,
                   .source = ixegSpeedBrake,
                   .convert = IsArmedIxeg,
                   .apply = ApplyArmed<ixegSpeedBrake, ixegArmed, IsArmedIxeg>,
                   .sets = sourcesOf<ixegSpeedBrake>},
           Variant{.source = speedBrakeRequest,
                   .convert = IsArmedRequest,
                   .target = speedBrakeRequest,
                   .targetConvert = ArmedOrDown<stockArmed>}};
     }>,
     .lossy = flagLoss},
    {.offset = 0x0BD0,
     .type = Stored::U32,
     .name = "speed_brake",
     .meaning = "speed brake lever: 0 down, 4800 armed, 5620 to 16383 deployed",
     .cycle = Cycle::C13,
     .variants = variantsOf<[] {
       return std::array{Variant{.addOn = AddOn::X737,
                                 .source = x737SpeedBrake,
                                 .convert = LeverWordX737,
                                 .target = x737SpeedBrake,
                                 .targetConvert = LeverOf<x737Armed>},
                         Variant{.addOn = AddOn::B738Extended,
                                 .alsoFor = AddOn::B738Stock,
                                 .source = b738SpeedBrake,
                                 .convert = LeverWordB738,
                                 .target = b738SpeedBrake,
                                 .targetConvert = LeverOf<b738Armed>},
                         Variant{.addOn = AddOn::Ixeg733,
                                 .source = ixegSpeedBrake,
                                 .convert = LeverWordIxeg,
                                 .target = ixegSpeedBrake,
                                 .targetConvert = LeverOf<ixegArmed>},
                         Variant{.source = speedBrakeRequest,
                                 .convert = RequestWord,
                                 .target = speedBrakeRequest,
                                 .targetConvert = RequestOf}};
     }>,
     .limits = {0, full},
     .lossy = "everything below 4800 puts the lever down; between armed and full it reads up to 820 higher"},
    Travel({.offset = 0x0BD4,
            .type = Stored::U32,
            .name = "left_spoiler",
            .meaning = "left spoiler position",
            .cycle = Cycle::C13,
            .source = Float<"sim/flightmodel/controls/sbrkrat">}),
    Travel({.offset = 0x0BD8,
            .type = Stored::U32,
            .name = "right_spoiler",
            .meaning = "right spoiler position",
            .cycle = Cycle::C13,
            .source = Float<"sim/flightmodel/controls/sbrkrat">}),

    {.offset = 0x0BDC,
     .type = Stored::U32,
     .name = "flaps",
     .meaning = "flap lever",
     .unit = "%",
     .unitScale = 100 / full,
     .cycle = Cycle::C7,
     .source = Float<"sim/flightmodel/controls/flaprqst">,
     .factor = full,
     .variants = variantsOf<[] {
       return std::array{
           Variant{.addOn = AddOn::B738Extended, .targetConvert = FlapDetent, .places = b738Flaps},
           Variant{.addOn = AddOn::Ixeg733,
                   .source = Fitting<"ixeg/733/hydraulics/hyd_flap_lever_act">,
                   .target = Fitting<"ixeg/733/hydraulics/hyd_flap_lever_act">,
                   .targetConvert = FlapLever},
           Variant{.target = Float<"sim/flightmodel/controls/flaprqst">}};
     }>,
     .write = {.factor = 1 / full, .high = 1},
     .limits = {0, full},
     .lossy = "above 16383 counts as 16383; the extended 737-800 and the IXEG 737 go to the nearest of their "
              "nine detents"},
    Travel({.offset = 0x0BE0,
            .type = Stored::U32,
            .name = "left_flap_position",
            .meaning = "left flap position",
            .cycle = Cycle::C3,
            .source = Float<"sim/cockpit2/controls/flap_handle_deploy_ratio">}),
    Travel({.offset = 0x0BE4,
            .type = Stored::U32,
            .name = "right_flap_position",
            .meaning = "right flap position",
            .cycle = Cycle::C3,
            .source = Float<"sim/cockpit2/controls/flap_handle_deploy_ratio">}),
    Travel({.offset = 0x30E8,
            .type = Stored::S16,
            .name = "slat_left_inboard",
            .meaning = "leading edge, left inboard",
            .cycle = Cycle::C7,
            .source = slats}),
    Travel({.offset = 0x30EA,
            .type = Stored::S16,
            .name = "slat_left_outboard",
            .meaning = "leading edge, left outboard",
            .cycle = Cycle::C7,
            .source = slats}),
    Travel({.offset = 0x30EC,
            .type = Stored::S16,
            .name = "slat_right_inboard",
            .meaning = "leading edge, right inboard",
            .cycle = Cycle::C7,
            .source = slats}),
    Travel({.offset = 0x30EE,
            .type = Stored::S16,
            .name = "slat_right_outboard",
            .meaning = "leading edge, right outboard",
            .cycle = Cycle::C7,
            .source = slats}),
    FlapAngle({.offset = 0x30F0,
               .name = "flap_left_inboard",
               .meaning = "trailing edge, left inboard",
               .source = Float<"sim/flightmodel/controls/wing1l_fla1def">}),
    FlapAngle({.offset = 0x30F2,
               .name = "flap_left_outboard",
               .meaning = "trailing edge, left outboard",
               .source = Float<"sim/flightmodel/controls/wing2l_fla1def">}),
    FlapAngle({.offset = 0x30F4,
               .name = "flap_right_inboard",
               .meaning = "trailing edge, right inboard",
               .source = Float<"sim/flightmodel/controls/wing1r_fla1def">}),
    FlapAngle({.offset = 0x30F6,
               .name = "flap_right_outboard",
               .meaning = "trailing edge, right outboard",
               .source = Float<"sim/flightmodel/controls/wing2r_fla1def">}),

    {.offset = 0x0BE8,
     .type = Stored::U32,
     .name = "gear",
     .meaning = "gear lever: 0 up, 16383 down",
     .unit = "%",
     .unitScale = 100 / full,
     .cycle = Cycle::C3,
     .variants = variantsOf<[] {
       return std::array{Variant{.addOn = AddOn::B738Extended,
                                 .source = Fitting<"laminar/B738/controls/gear_handle_down">,
                                 .convert = GearWordB738,
                                 .target = Fitting<"laminar/B738/controls/gear_handle_down">,
                                 .targetConvert = GearDown},
                         Variant{.source = gearHandle, .convert = GearWord, .apply = ApplyGear}};
     }>,
     .limits = {0, full},
     .lossy = "a lever with two places: from 8192 on it is down"},
    Travel({.offset = 0x0BEC,
            .type = Stored::U32,
            .name = "nose_gear",
            .meaning = "nose gear",
            .cycle = Cycle::C3,
            .source = FloatElement<"sim/aircraft/parts/acf_gear_deploy">(0)}),
    Travel({.offset = 0x0BF0,
            .type = Stored::U32,
            .name = "right_gear",
            .meaning = "right main gear",
            .cycle = Cycle::C3,
            .source = FloatElement<"sim/aircraft/parts/acf_gear_deploy">(2)}),
    Travel({.offset = 0x0BF4,
            .type = Stored::U32,
            .name = "left_gear",
            .meaning = "left main gear",
            .cycle = Cycle::C3,
            .source = FloatElement<"sim/aircraft/parts/acf_gear_deploy">(1)}),
    {.offset = 0x6D8A,
     .type = Stored::S16,
     .name = "nose_wheel_angle",
     .meaning = "nose-wheel steering angle",
     .unit = "deg",
     .unitScale = 0.01,
     .cycle = Cycle::C3,
     .source = FloatElement<"sim/flightmodel/parts/tire_steer_act">(0),
     .factor = 100},
    {.offset = 0x6F00,
     .type = Stored::S16,
     .name = "nose_wheel_speed",
     .meaning = "nose-wheel speed",
     .unitScale = 0.1,
     .cycle = Cycle::C13,
     .source = Float<"sim/flightmodel/misc/nosewheel_speed">,
     .factor = 10},

    {.offset = 0x310A,
     .type = Stored::U8,
     .name = "joystick_disconnect",
     .meaning = "takes controls from the joystick",
     .choices = joystickControls,
     .show = Show::Bits,
     .write = {.apply = ApplyOverrides},
     .note = "all four are set with every write; given back when the program is switched off"},
};

}  // namespace

std::atomic<unsigned> overridesCleared;

const RowTable controlRows = {"Flight controls", rows};

void ReleaseOverrides() {
  for (unsigned bit = 0; bit < 4; ++bit) {
    if (overridesTaken & (1u << bit)) SetSource(overrides[bit], 0);
  }
  overridesTaken = 0;
  const uint8_t none = 0;
  CopyToMemory(0x310A, 1, &none);
}
