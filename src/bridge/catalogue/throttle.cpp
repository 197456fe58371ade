// Throttle, mixture, magnetos and starters of the four engines.
#include <algorithm>
#include <cmath>
#include <iterator>

#include "bridge/catalogue/conversions.h"
#include "bridge/catalogue/engine_families.h"
#include "bridge/catalogue/throttle_actions.h"

namespace {

constexpr Source reverserWord =
    Int<"sim/cockpit/warnings/annunciators/reverse">;  // bit n: reverser of engine n + 1 is out
constexpr Source throttleOverride = Int<"sim/operation/override/override_throttles">;

constexpr double forwardFull = 16384;
constexpr double reverseFull = 4096;
constexpr double cutoffFull = 16383;  // of the fuel levers of engines 1 and 2

bool starterHeld[engineCount];

int EngineOf(const OffsetRow& row) { return row.member - 1; }
constexpr Source LeverOf(int engine) {
  return FloatElement<"sim/cockpit2/engine/actuators/throttle_ratio", "sim/flightmodel/engine/ENGN_thro">(
      engine);
}
// What the engine gets; the simulator takes it instead of the lever while the override is on.
Source UsedThrottleOf(int engine) { return FloatElement<"sim/flightmodel/engine/ENGN_thro_use">(engine); }

// --- Throttles ----------------------------------------------------------------------------------------

double throttleWords[engineCount];  // as the simulator has the levers

void TakeThrottles() {
  const bool overridden = IsOn(throttleOverride);
  const int reversers = ReadInt(reverserWord);
  for (int engine = 0; engine < engineCount; engine++) {
    const double ratio = ReadSource(overridden && engine < 2 ? UsedThrottleOf(engine) : LeverOf(engine));
    throttleWords[engine] = ratio * ((reversers >> engine & 1) != 0 ? -reverseFull : forwardFull);
  }
}

// -1 full reverse ... 1 full forward.
double SignedRatio(double word) {
  return std::clamp(word >= 0 ? word / forwardFull : word / reverseFull, -1.0, 1.0);
}

// Propeller mode: normal or reverse. Feathered and beta propellers are not disturbed by forward thrust.
void SetPropMode(int engine, bool reverse) {
  constexpr int normalMode = 1;
  constexpr int reverseMode = 3;
  const Source mode = IntElement<"sim/flightmodel/engine/ENGN_propmode">(engine);
  const bool isReverse = ReadInt(mode) == reverseMode;
  if (isReverse != reverse) SetSource(mode, reverse ? reverseMode : normalMode);
}

void SetLever(const OffsetRow& row, double signedRatio) {
  SetSource(LeverOf(EngineOf(row)), std::abs(signedRatio));
}

// The IXEG 737 has inputs of its own for its two levers. When they are not there its levers are the
// simulator's.
constexpr Source ixegInputs[] = {Fitting<"ixeg/733/hardware/tavrix_thro1">,
                                 Fitting<"ixeg/733/hardware/tavrix_thro2">};
struct IxegLever {
  bool taken;   // by a client's write
  double last;  // what was set, as the input holds it
};
IxegLever ixegLevers[std::size(ixegInputs)];

void SetLeverIxeg(const OffsetRow& row, double signedRatio) {
  const auto engine = static_cast<size_t>(EngineOf(row));
  if (HandleOf(ixegInputs[engine]) == nullptr) {
    SetLever(row, signedRatio);
    return;
  }
  SetSource(ixegInputs[engine], signedRatio);
  ixegLevers[engine] = {true, ReadSource(ixegInputs[engine])};
}

template <void (*setLever)(const OffsetRow& row, double signedRatio)>
void ApplyThrottle(const OffsetRow& row, const Staged& staged) {
  const int engine = EngineOf(row);
  const double signedRatio = SignedRatio(staged.number);
  SetPropMode(engine, signedRatio < 0);
  setLever(row, signedRatio);
  if (IsOn(throttleOverride)) SetSource(UsedThrottleOf(engine), std::abs(signedRatio));
}

// Past the axis cut-off: straight to the place that counts at the moment.
void ApplyDirectThrottle(const OffsetRow& row, const Staged& staged) {
  const int engine = EngineOf(row);
  const double signedRatio = SignedRatio(staged.number);
  SetPropMode(engine, signedRatio < 0);
  SetSource(IsOn(throttleOverride) ? UsedThrottleOf(engine) : LeverOf(engine), std::abs(signedRatio));
}

constexpr Family throttle = {
    .shape = {.type = Stored::S16,
              .name = "throttle",
              .meaning = "throttle lever",
              .unit = "%",
              .unitScale = 100 / forwardFull,
              .cycle = Cycle::C1,
              .prepared = throttleWords,
              .inputs = sourcesOf<LeverOf(3), reverserWord, throttleOverride>,
              .prepare = TakeThrottles,
              .limits = {-reverseFull, forwardFull},
              .lossy = "limited to -4096..16384; a negative value reads back once the reverser is out",
              .note = "16384 full forward, -4096 full reverse"},
    .offsets = {0x088C, 0x0924, 0x09BC, 0x0A54},
    .variants =
        {variantsOf<[] {
           return std::array{Variant{.addOn = AddOn::Ixeg733,
                                     .apply = ApplyThrottle<SetLeverIxeg>,
                                     .sets = sourcesOf<ixegInputs[0], LeverOf(0)>},
                             Variant{.target = LeverOf(0), .apply = ApplyThrottle<SetLever>}};
         }>,
         variantsOf<[] {
           return std::array{Variant{.addOn = AddOn::Ixeg733,
                                     .apply = ApplyThrottle<SetLeverIxeg>,
                                     .sets = sourcesOf<ixegInputs[1], LeverOf(1)>},
                             Variant{.target = LeverOf(1), .apply = ApplyThrottle<SetLever>}};
         }>,
         variantsOf<[] { return std::array{Variant{.target = LeverOf(2), .apply = ApplyThrottle<SetLever>}}; }>,
         variantsOf<[] {
           return std::array{Variant{.target = LeverOf(3), .apply = ApplyThrottle<SetLever>}};
         }>},
};
constexpr Family leverInput = {
    .shape = {.type = Stored::S16,
              .name = "throttle_input",
              .meaning = "throttle lever input",
              .unit = "%",
              .unitScale = 100 / forwardFull,
              .cycle = Cycle::C1,
              .prepared = throttleWords,
              .inputs = sourcesOf<LeverOf(3), reverserWord, throttleOverride>,
              .prepare = TakeThrottles},
    .offsets = {0, 0, 0x3334, 0x3336},
};
constexpr Family directThrottle = {
    .shape = {.type = Stored::S16,
              .name = "throttle_direct",
              .meaning = "throttle past the axis cut-off",
              .unit = "%",
              .unitScale = 100 / forwardFull,
              .write = {.apply = ApplyDirectThrottle},
              .note = "16384 full forward, -4096 full reverse; keeps what a client wrote"},
    .offsets = {0x089A, 0x0932, 0, 0},
};
constexpr Family directThrust = {
    .shape = {.type = Stored::S16,
              .name = "throttle_direct",
              .meaning = "throttle past the axis cut-off",
              .unit = "%",
              .unitScale = 100 / forwardFull,
              .write = {.target = FloatElement<"sim/flightmodel/engine/ENGN_thro">(0), .convert = SignedRatio},
              .note = "16384 full forward, -4096 full reverse; keeps what a client wrote"},
    .offsets = {0, 0, 0x09CA, 0x0A62},
};

// --- Mixture and fuel valves --------------------------------------------------------------------------

double LeverRatio(double word) { return std::min(1.0, word / cutoffFull); }
// The x737's levers go to 16384 when they are set.
double CutoffOfX737(double word) { return std::min(1.0, word / 16384); }
// Levers that know only cut-off and idle.
double IsOpen(double word) { return word > 8191; }
// The EC135's engine main switches: off, idle, flight.
double MainSwitchWord(double position) { return position / 2 * cutoffFull; }
double MainSwitch(double word) { return std::min(2.0, std::round(word * 2 / cutoffFull)); }

struct FuelLever {
  Source ratio;
  const Command *idle, *cutoff;
};
constexpr FuelLever b738FuelLevers[] = {
    {Float<"laminar/B738/engine/mixture_ratio1">, &commandOf<"laminar/B738/engine/mixture1_idle">,
     &commandOf<"laminar/B738/engine/mixture1_cutoff">},
    {Float<"laminar/B738/engine/mixture_ratio2">, &commandOf<"laminar/B738/engine/mixture2_idle">,
     &commandOf<"laminar/B738/engine/mixture2_cutoff">}};

template <int engine>
void ApplyFuelLeverB738(const OffsetRow& row, const Staged& staged) {
  const FuelLever& lever = b738FuelLevers[engine];
  const bool open = IsOpen(staged.number) != 0;
  if (open != (ReadSource(lever.ratio) >= 0.5)) FireFor(row, open ? *lever.idle : *lever.cutoff, true);
}

constexpr Family cutoffLever = {
    .shape =
        {.type = Stored::U16,
         .name = "mixture",
         .meaning = "mixture or fuel cut-off lever",
         .unit = "%",
         .unitScale = 100 / cutoffFull,
         .cycle = Cycle::C7,
         .factor = cutoffFull,
         .write = {.factor = 1 / cutoffFull, .low = 0, .high = 1},
         .limits = {0, cutoffFull},
         .lossy =
             "above 16383 reads back 16383; the extended 737-800 and the IXEG 737 know only cut-off and idle",
         .note = "16383 full rich or open"},
    .offsets = {0x0890, 0x0928, 0, 0},
    .variants =
        {variantsOf<[] {
           return std::array{
               Variant{.addOn = AddOn::X737,
                       .source = Float<"x737/cockpit/tq/leftCutoffLeverPos">,
                       .target = Float<"x737/cockpit/tq/leftCutoffLeverPos">,
                       .targetConvert = CutoffOfX737},
               Variant{
                   .addOn = AddOn::B738Extended,
                   .source = Float<"laminar/B738/engine/mixture_ratio1">,
                   .apply = ApplyFuelLeverB738<0>,
                   .fires =
                       commandsOf<"laminar/B738/engine/mixture1_idle", "laminar/B738/engine/mixture1_cutoff">},
               Variant{.addOn = AddOn::B738Stock,
                       .source = Float<"laminar/B738/engine/slider/condition_lever1_target">,
                       .target = Float<"laminar/B738/engine/slider/condition_lever1_target">,
                       .targetConvert = LeverRatio},
               Variant{.addOn = AddOn::Ixeg733,
                       .source = Fitting<"ixeg/733/fuel/fuel_start_lever1_act">,
                       .target = Fitting<"ixeg/733/fuel/fuel_start_lever1_act">,
                       .targetConvert = IsOpen},
               Variant{.addOn = AddOn::Ec135,
                       .source = FloatElement<"rotorsim/ec135/main_switch">(0),
                       .convert = MainSwitchWord,
                       .target = FloatElement<"rotorsim/ec135/main_switch">(0),
                       .targetConvert = MainSwitch},
               Variant{.source = FloatElement<"sim/flightmodel/engine/ENGN_mixt">(0),
                       .target = FloatElement<"sim/flightmodel/engine/ENGN_mixt">(0)}};
         }>,
         variantsOf<[] {
           return std::array{
               Variant{.addOn = AddOn::X737,
                       .source = Float<"x737/cockpit/tq/rightCutoffLeverPos">,
                       .target = Float<"x737/cockpit/tq/rightCutoffLeverPos">,
                       .targetConvert = CutoffOfX737},
               Variant{
                   .addOn = AddOn::B738Extended,
                   .source = Float<"laminar/B738/engine/mixture_ratio2">,
                   .apply = ApplyFuelLeverB738<1>,
                   .fires =
                       commandsOf<"laminar/B738/engine/mixture2_idle", "laminar/B738/engine/mixture2_cutoff">},
               Variant{.addOn = AddOn::B738Stock,
                       .source = Float<"laminar/B738/engine/slider/condition_lever2_target">,
                       .target = Float<"laminar/B738/engine/slider/condition_lever2_target">,
                       .targetConvert = LeverRatio},
               Variant{.addOn = AddOn::Ixeg733,
                       .source = Fitting<"ixeg/733/fuel/fuel_start_lever2_act">,
                       .target = Fitting<"ixeg/733/fuel/fuel_start_lever2_act">,
                       .targetConvert = IsOpen},
               Variant{.addOn = AddOn::Ec135,
                       .source = FloatElement<"rotorsim/ec135/main_switch">(1),
                       .convert = MainSwitchWord,
                       .target = FloatElement<"rotorsim/ec135/main_switch">(1),
                       .targetConvert = MainSwitch},
               Variant{.source = FloatElement<"sim/flightmodel/engine/ENGN_mixt">(1),
                       .target = FloatElement<"sim/flightmodel/engine/ENGN_mixt">(1)}};
         }>},
};
constexpr Family mixture = {
    .shape = {.type = Stored::U16,
              .name = "mixture",
              .meaning = "mixture lever",
              .unit = "%",
              .unitScale = 100.0 / 16384,
              .cycle = Cycle::C7,
              .source = FloatElement<"sim/flightmodel/engine/ENGN_mixt">(0),
              .factor = 16384,
              .write = {.target = FloatElement<"sim/flightmodel/engine/ENGN_mixt">(0),
                        .factor = 1.0 / 16384,
                        .low = 0,
                        .high = 1},
              .limits = {0, forwardFull},
              .lossy = "above 16384 reads back 16384",
              .note = "16384 full rich"},
    .offsets = {0, 0, 0x09C0, 0x0A58},
};
constexpr Source mixtureLever =
    FloatElement<"sim/cockpit2/engine/actuators/mixture_ratio", "sim/flightmodel/engine/ENGN_mixt">(0);
constexpr Family fuelValve = {
    .shape = {.type = Stored::S32,
              .name = "fuel_valve",
              .meaning = "fuel valve open",
              .show = Show::Flag,
              .cycle = Cycle::C13,
              .source = mixtureLever,
              .convert = Positive,
              .write = {.target = mixtureLever, .convert = OnOff},
              .lossy = flagLoss},
    .offsets = {0x3590, 0x3594, 0, 0},
};

// --- Magnetos and starters ----------------------------------------------------------------------------

constexpr uint8_t pistonEngine = 0;  // every other engine type is a turbine to the starter switch

// As the simulator has it at this moment: right after a change of aircraft the offset memory may still show the
// type of the last one.
bool HasPistonEngines() { return PresentEngineType() == pistonEngine; }

void HoldStarter(int engine) {
  if (starterHeld[engine]) return;
  starterHeld[engine] = true;
  XPLMCommandButtonPress(xplm_joy_start_0 + engine);
}
void LetStarterGo(int engine) {
  if (!starterHeld[engine]) return;
  starterHeld[engine] = false;
  XPLMCommandButtonRelease(xplm_joy_start_0 + engine);
}

// The key counts off, left, right, both; clients count off, right, left, both.
double PistonSwitch(int key) {
  switch (key) {
    case 1:
      return 2;
    case 2:
      return 1;
    case 3:
      return 3;
    default:
      return 0;
  }
}

// Of one look: how the switches stand, and whether the starters turn.
double magnetoSwitches[engineCount], startersEngaged[engineCount];

void TakeStarters() {
  const bool pistons = HasPistonEngines();
  for (int engine = 0; engine < engineCount; engine++) {
    const bool engaged = ReadSource(FloatElement<"sim/cockpit/engine/starter_duration">(engine)) > 0;
    const int key = ReadInt(IntElement<"sim/cockpit/engine/ignition_on">(engine));
    startersEngaged[engine] = engaged;
    magnetoSwitches[engine] = pistons ? (engaged ? 4 : PistonSwitch(key)) : engaged ? 1 : key != 0 ? 2 : 0;
  }
}

struct PistonCommands {
  const Command* positions[5];  // off, right, left, both, start
};
constexpr PistonCommands pistonCommands[engineCount] = {
    {{&commandOf<"sim/magnetos/magnetos_off_1">, &commandOf<"sim/magnetos/magnetos_right_1">,
      &commandOf<"sim/magnetos/magnetos_left_1">, &commandOf<"sim/magnetos/magnetos_both_1">,
      &commandOf<"sim/magnetos/magnetos_both_1">}},
    {{&commandOf<"sim/magnetos/magnetos_off_2">, &commandOf<"sim/magnetos/magnetos_right_2">,
      &commandOf<"sim/magnetos/magnetos_left_2">, &commandOf<"sim/magnetos/magnetos_both_2">,
      &commandOf<"sim/magnetos/magnetos_both_2">}},
    {{&commandOf<"sim/magnetos/magnetos_off_3">, &commandOf<"sim/magnetos/magnetos_right_3">,
      &commandOf<"sim/magnetos/magnetos_left_3">, &commandOf<"sim/magnetos/magnetos_both_3">,
      &commandOf<"sim/magnetos/magnetos_both_3">}},
    {{&commandOf<"sim/magnetos/magnetos_off_4">, &commandOf<"sim/magnetos/magnetos_right_4">,
      &commandOf<"sim/magnetos/magnetos_left_4">, &commandOf<"sim/magnetos/magnetos_both_4">,
      &commandOf<"sim/magnetos/magnetos_both_4">}},
};

// Off, right, left, both, start: the key springs back from start when any other position is written.
void TurnPistonSwitch(int engine, int64_t position) {
  constexpr int64_t start = 4;
  const PistonCommands& commands = pistonCommands[engine];
  if (position != start) LetStarterGo(engine);
  if (position > start) return;
  FireCommand(*commands.positions[position]);
  if (position == start) HoldStarter(engine);
}

// Off, start, generator.
void TurnTurbineSwitch(int engine, int64_t position) {
  if (position > 2) return;
  const bool start = position == 1;
  if (!start) LetStarterGo(engine);
  SetSource(IntElement<"sim/cockpit/engine/igniters_on">(engine), start);
  if (start) HoldStarter(engine);
}

void ApplyMagnetoSwitch(const OffsetRow& row, const Staged& staged) {
  if (HasPistonEngines()) {
    TurnPistonSwitch(EngineOf(row), staged.integer);
  } else {
    TurnTurbineSwitch(EngineOf(row), staged.integer);
  }
}

// Start switches of the 737s: ground start, off, continuous, flight, counted from 0 or from -1. To clients they
// are those of a turbine.
double StarterWordB738(double position) { return position < 0.5 ? 1 : position < 1.5 ? 0 : 2; }
double StarterWordIxeg(double position) { return StarterWordB738(position + 1); }
double StarterWord(double word) { return std::min(word, 2.0); }
double StarterOfIxeg(double word) { return word == 1 ? -1 : word == 0 ? 0 : 1; }

constexpr Choice magnetoPlaces[] = {
    {0, "off"}, {1, "right or start"}, {2, "left or generator"}, {3, "both"}, {4, "start"}};

constexpr Family magneto = {
    .shape = {.type = Stored::U16,
              .name = "magneto",
              .meaning = "magneto or starter switch",
              .choices = magnetoPlaces,
              .cycle = Cycle::C13,
              .prepared = magnetoSwitches,
              .prepare = TakeStarters,
              .write = {.apply = ApplyMagnetoSwitch},
              .lossy = "shows what the engine does, so start reads back only while the starter turns",
              .note = "piston: off, right, left, both, start; turbine: off, start, generator"},
    .offsets = {0x0892, 0x092A, 0x09C2, 0x0A5A},
    .variants = {variantsOf<[] {
                   return std::array{Variant{.addOn = AddOn::B738Extended,
                                             .source = Float<"laminar/B738/engine/starter1_pos">,
                                             .convert = StarterWordB738,
                                             .targetConvert = StarterWord,
                                             .places = commandsOf<"laminar/B738/rotary/eng1_start_off",
                                                                  "laminar/B738/rotary/eng1_start_grd",
                                                                  "laminar/B738/rotary/eng1_start_cont">},
                                     Variant{.addOn = AddOn::Ixeg733,
                                             .source = Fitting<"ixeg/733/engine/eng1_start_act">,
                                             .convert = StarterWordIxeg,
                                             .target = Fitting<"ixeg/733/engine/eng1_start_act">,
                                             .targetConvert = StarterOfIxeg}};
                 }>,
                 variantsOf<[] {
                   return std::array{Variant{.addOn = AddOn::B738Extended,
                                             .source = Float<"laminar/B738/engine/starter2_pos">,
                                             .convert = StarterWordB738,
                                             .targetConvert = StarterWord,
                                             .places = commandsOf<"laminar/B738/rotary/eng2_start_off",
                                                                  "laminar/B738/rotary/eng2_start_grd",
                                                                  "laminar/B738/rotary/eng2_start_cont">},
                                     Variant{.addOn = AddOn::Ixeg733,
                                             .source = Fitting<"ixeg/733/engine/eng2_start_act">,
                                             .convert = StarterWordIxeg,
                                             .target = Fitting<"ixeg/733/engine/eng2_start_act">,
                                             .targetConvert = StarterOfIxeg}};
                 }>},
};
constexpr Family starter = {
    .shape = {.type = Stored::U8,
              .name = "starter",
              .meaning = "starter engaged",
              .show = Show::Flag,
              .cycle = Cycle::C13,
              .prepared = startersEngaged,
              .prepare = TakeStarters},
    .offsets = {0x0506, 0x0507, 0x0508, 0x0509},
};
constexpr Family ignition = {
    .shape = {.type = Stored::S32,
              .name = "ignition",
              .meaning = "ignition switch",
              .show = Show::Flag,
              .cycle = Cycle::C13,
              .source = IntElement<"sim/cockpit/engine/igniters_on">(0),
              .write = {.target = IntElement<"sim/cockpit/engine/igniters_on">(0), .convert = OnOff},
              .lossy = flagLoss},
    .offsets = {0x208C, 0x218C, 0x228C, 0x238C},
};
constexpr Family igniter = {
    .shape = {.type = Stored::U8,
              .name = "igniter",
              .meaning = "igniter switch",
              .show = Show::Flag,
              .write = {.target = IntElement<"sim/cockpit/engine/igniters_on">(0), .convert = OnOff},
              .note = "keeps what a client wrote"},
    .offsets = {0x6D8E, 0x6D8F, 0, 0},
};

constexpr auto rows = Joined(EngineRows<throttle, leverInput>(), EngineRows<directThrottle, directThrust>(),
                             EngineRows<cutoffLever, mixture>(), EngineRows<fuelValve>(),
                             EngineRows<magneto, starter>(), EngineRows<ignition>(), EngineRows<igniter>());

}  // namespace

const RowTable throttleRows = {"Throttle, mixture, starter", rows};

void ReleaseStarters() {
  for (int engine = 0; engine < engineCount; engine++) LetStarterGo(engine);
}

bool ReleaseIxegLevers() {
  bool wasTaken = false;
  for (size_t i = 0; i < std::size(ixegLevers); ++i) {
    wasTaken |= ixegLevers[i].taken;
    if (ixegLevers[i].taken && ReadSource(ixegInputs[i]) == ixegLevers[i].last) SetSource(ixegInputs[i], 0);
    ixegLevers[i] = {};
  }
  return wasTaken;
}

void ForgetIxegLevers() {
  for (IxegLever& lever : ixegLevers) lever = {};
}
