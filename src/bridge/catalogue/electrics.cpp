// Battery, generators, auxiliary power unit, fuel pumps, suction and the sound switch.
#include <algorithm>
#include <cmath>

#include "bridge/catalogue.h"
#include "bridge/catalogue/switches.h"
#include "bridge/held_presses.h"

namespace {

constexpr Source apuRunning = Int<"sim/cockpit/engine/APU_running">;
constexpr Source apuSwitch = Int<"sim/cockpit/engine/APU_switch">;

// One switch for all eight engines that the simulator knows, in one call.
template <Source source>
void ApplyToAllEngines(const OffsetRow&, const Staged& staged) {
  const XPLMDataRef handle = HandleOf(source);
  if (handle == nullptr) return;
  int switches[8];
  std::fill(std::begin(switches), std::end(switches), staged.integer != 0);
  XPLMSetDatavi(handle, switches, 0, static_cast<int>(std::size(switches)));
}

// Spring-loaded switches of an add-on, pressed to one side or the other: commands for on, then those for off.
struct SpringCommands {
  const Command *on[2], *off[2];
};
template <const SpringCommands& springs>
void PressSprings(const OffsetRow& row, const Staged& staged) {
  for (const Command* command : staged.integer != 0 ? springs.on : springs.off) FireFor(row, *command, true);
}
template <const SpringCommands& springs>
constexpr const Command* springsOf[] = {springs.on[0], springs.on[1], springs.off[0], springs.off[1]};
constexpr SpringCommands b738Generators = {
    {&commandOf<"laminar/B738/toggle_switch/gen1_dn">, &commandOf<"laminar/B738/toggle_switch/gen2_dn">},
    {&commandOf<"laminar/B738/toggle_switch/gen1_up">, &commandOf<"laminar/B738/toggle_switch/gen2_up">}};
constexpr SpringCommands b738StockGenerators = {
    {&commandOf<"laminar/B738/switch/gen1_dn">, &commandOf<"laminar/B738/switch/gen2_dn">},
    {&commandOf<"laminar/B738/switch/gen1_up">, &commandOf<"laminar/B738/switch/gen2_up">}};
constexpr SpringCommands b738ApuGenerators = {{&commandOf<"laminar/B738/toggle_switch/apu_gen1_dn">,
                                               &commandOf<"laminar/B738/toggle_switch/apu_gen2_dn">},
                                              {&commandOf<"laminar/B738/toggle_switch/apu_gen1_up">,
                                               &commandOf<"laminar/B738/toggle_switch/apu_gen2_up">}};

// The same where the switches are datarefs: 1 on, -1 off, back to 0.
template <const Source* springs>
void MoveSprings(const OffsetRow&, const Staged& staged) {
  for (int i = 0; i < 2; ++i) HoldSource(springs[i], staged.integer != 0 ? 1 : -1);
}
constexpr Source ixegGenerators[] = {Fitting<"ixeg/733/electrical/elec_gen1_onoff_act">,
                                     Fitting<"ixeg/733/electrical/elec_gen2_onoff_act">};
constexpr Source ixegApuGenerators[] = {Fitting<"ixeg/733/electrical/elec_apu_gen1_onoff_act">,
                                        Fitting<"ixeg/733/electrical/elec_apu_gen2_onoff_act">};

// The EC135's battery and generator switches: 0 reset, 1 off, 2 on.
double IsOnEc135(double position) { return position > 1.5; }
double SwitchOfEc135(double wanted) { return wanted != 0 ? 2 : 1; }

// The APU switch of the extended 737-800 goes one place on at each press, off, on, start, and springs back to
// on when the last one ends.
constexpr Source b738ApuSwitch = Float<"laminar/B738/spring_toggle_switch/APU_start_pos">;
void TurnApuB738(const OffsetRow& row, int wanted) {
  const int position = static_cast<int>(std::lround(ReadSource(b738ApuSwitch)));
  if (wanted == 0 && position != 0) {
    FireFor(row, commandOf<"laminar/B738/spring_toggle_switch/APU_start_pos_up">);
  }
  for (int i = position; i < wanted; ++i) {
    FireFor(row, commandOf<"laminar/B738/spring_toggle_switch/APU_start_pos_dn">, true);
  }
}
void ApplyApuSwitchB738(const OffsetRow& row, const Staged& staged) {
  TurnApuB738(row, static_cast<int>(std::clamp<int64_t>(staged.integer, 0, 2)));
}

// That of the IXEG 737: -1 off, 0 on, 1 start.
constexpr Source ixegApuSwitch = Fitting<"ixeg/733/apu/apu_start_switch_act">;
double ApuSwitchWordIxeg(double position) { return position + 1; }
double ApuSwitchOfIxeg(double word) { return std::min(word, 2.0) - 1; }

// The value is a 32-bit float by custom, but clients write the integer 1 too: every bit pattern but 0 is on.
// Returns the place of the switch that it asks for: off, on, start.
int WantedApu(const Staged& staged) {
  const bool wanted =
      std::any_of(staged.bytes, staged.bytes + staged.width, [](uint8_t byte) { return byte != 0; });
  return !wanted ? 0 : IsOn(apuRunning) ? 1 : 2;
}
void ApplyApu(const OffsetRow&, const Staged& staged) { SetSource(apuSwitch, WantedApu(staged)); }
void ApplyApuB738(const OffsetRow& row, const Staged& staged) { TurnApuB738(row, WantedApu(staged)); }
void ApplyApuIxeg(const OffsetRow&, const Staged& staged) {
  SetSource(ixegApuSwitch, ApuSwitchOfIxeg(WantedApu(staged)));
}

// A switch that serves all engines.
constexpr OffsetRow EngineSwitch(OffsetRow row) {
  row.type = Stored::U8;
  row.show = Show::Flag;
  row.note = "keeps what a client wrote";
  return row;
}

constexpr Choice apuPlaces[] = {{0, "off"}, {1, "on"}, {2, "start"}};

constexpr OffsetRow rows[] = {
    EngineSwitch(
        {.offset = 0x3101,
         .name = "generators",
         .meaning = "generators of all engines",
         .variants = variantsOf<[] {
           return std::array{
               Variant{.addOn = AddOn::B738Extended,
                       .apply = PressSprings<b738Generators>,
                       .fires = springsOf<b738Generators>},
               Variant{.addOn = AddOn::B738Stock,
                       .apply = PressSprings<b738StockGenerators>,
                       .fires = springsOf<b738StockGenerators>},
               Variant{.addOn = AddOn::Ixeg733, .apply = MoveSprings<ixegGenerators>, .sets = ixegGenerators},
               Variant{.addOn = AddOn::Ec135,
                       .target = FloatElement<"rotorsim/ec135/generator">(0),
                       .targetConvert = SwitchOfEc135,
                       .together = sourcesOf<FloatElement<"rotorsim/ec135/generator">(1)>}};
         }>,
         .write = {.apply = ApplyToAllEngines<IntElement<"sim/cockpit/electrical/generator_on">(0)>}}),
    {.offset = 0x3102,
     .type = Stored::U8,
     .name = "battery",
     .meaning = "battery switch",
     .show = Show::Flag,
     .cycle = Cycle::C31Navigation,
     .convert = OnOff,
     .variants = variantsOf<[] {
       return std::array{
           Variant{.addOn = AddOn::X737, .source = Int<"x737/systems/electrics/swBatBusPowered">},
           Variant{.addOn = AddOn::B738Extended,
                   .source = Float<"laminar/B738/electric/battery_pos">,
                   .places = commandsOf<"laminar/B738/switch/battery_up", "laminar/B738/switch/battery_dn">},
           Variant{.addOn = AddOn::Ixeg733,
                   .source = Fitting<"ixeg/733/electrical/elec_batt_on_act">,
                   .target = Fitting<"ixeg/733/electrical/elec_batt_on_act">},
           Variant{.addOn = AddOn::Ec135,
                   .source = Float<"rotorsim/ec135/battery">,
                   .convert = IsOnEc135,
                   .target = Float<"rotorsim/ec135/battery">,
                   .targetConvert = SwitchOfEc135},
           Variant{.source = Int<"sim/cockpit/electrical/battery_on">}};
     }>,
     .write = {.target = Int<"sim/cockpit/electrical/battery_on">, .convert = OnOff},
     .lossy = flagLoss},
    PlainSwitch({.offset = 0x3103,
                 .type = Stored::U8,
                 .name = "avionics",
                 .meaning = "avionics master switch",
                 .cycle = Cycle::C31Navigation,
                 .source = Int<"sim/cockpit/electrical/avionics_on">}),
    EngineSwitch(
        {.offset = 0x3104,
         .name = "fuel_pumps",
         .meaning = "fuel pumps of all engines",
         .variants = variantsOf<[] {
           return std::array{
               Variant{.addOn = AddOn::B738Extended,
                       .target = Float<"laminar/B738/fuel/fuel_tank_pos_lft1">,
                       .targetConvert = OnOff,
                       .together = sourcesOf<Float<"laminar/B738/fuel/fuel_tank_pos_lft2">,
                                             Float<"laminar/B738/fuel/fuel_tank_pos_ctr1">,
                                             Float<"laminar/B738/fuel/fuel_tank_pos_ctr2">,
                                             Float<"laminar/B738/fuel/fuel_tank_pos_rgt1">,
                                             Float<"laminar/B738/fuel/fuel_tank_pos_rgt2">>},
               Variant{.addOn = AddOn::Ixeg733,
                       .target = Fitting<"ixeg/733/fuel/fuel_1_aft_act">,
                       .targetConvert = OnOff,
                       .together = sourcesOf<
                           Fitting<"ixeg/733/fuel/fuel_1_fwd_act">, Fitting<"ixeg/733/fuel/fuel_2_aft_act">,
                           Fitting<"ixeg/733/fuel/fuel_2_fwd_act">, Fitting<"ixeg/733/fuel/fuel_ctr_left_act">,
                           Fitting<"ixeg/733/fuel/fuel_ctr_right_act">>}};
         }>,
         .write = {.apply = ApplyToAllEngines<IntElement<"sim/cockpit/engine/fuel_pump_on">(0)>}}),
    PlainSwitch(
        {.offset = 0x0B51,
         .type = Stored::U8,
         .name = "apu_generator",
         .meaning = "APU generator switch",
         .cycle = Cycle::C7,
         .source = Int<"sim/cockpit2/electrical/APU_generator_on", "sim/cockpit/electrical/generator_apu_on">,
         .variants = variantsOf<[] {
           return std::array{Variant{.addOn = AddOn::B738Extended,
                                     .apply = PressSprings<b738ApuGenerators>,
                                     .fires = springsOf<b738ApuGenerators>},
                             Variant{.addOn = AddOn::Ixeg733,
                                     .apply = MoveSprings<ixegApuGenerators>,
                                     .sets = ixegApuGenerators}};
         }>}),
    {.offset = 0x0B52,
     .type = Stored::U8,
     .name = "apu_generator_active",
     .meaning = "APU generator active",
     .show = Show::Flag,
     .cycle = Cycle::C7,
     .source = Int<"sim/cockpit/electrical/generator_apu_on">,
     .convert = OnOff},
    {.offset = 0x0B54,
     .type = Stored::F32,
     .name = "apu_speed",
     .meaning = "APU speed",
     .unit = "%",
     .cycle = Cycle::C7,
     .source = Float<"sim/cockpit2/electrical/APU_N1_percent">},
    {.offset = 0x0B58,
     .type = Stored::F32,
     .name = "apu",
     .meaning = "APU running, start",
     .show = Show::Flag,
     .cycle = Cycle::C7,
     .source = apuRunning,
     .convert = OnOff,
     .variants = variantsOf<[] {
       return std::array{
           Variant{.addOn = AddOn::B738Extended,
                   .apply = ApplyApuB738,
                   .reads = sourcesOf<b738ApuSwitch>,
                   .fires = commandsOf<"laminar/B738/spring_toggle_switch/APU_start_pos_dn",
                                       "laminar/B738/spring_toggle_switch/APU_start_pos_up">},
           Variant{.addOn = AddOn::Ixeg733, .apply = ApplyApuIxeg, .sets = sourcesOf<ixegApuSwitch>}};
     }>,
     .write = {.apply = ApplyApu},
     .lossy = "reads back what the APU does, which takes its time to start"},
    {.offset = 0x6DA9,
     .type = Stored::U8,
     .name = "apu_switch",
     .meaning = "APU switch",
     .choices = apuPlaces,
     .cycle = Cycle::C31,
     .source = Int<"sim/cockpit/engine/APU_switch">,
     .variants = variantsOf<[] {
       return std::array{Variant{.addOn = AddOn::B738Extended,
                                 .source = b738ApuSwitch,
                                 .apply = ApplyApuSwitchB738,
                                 .fires = commandsOf<"laminar/B738/spring_toggle_switch/APU_start_pos_dn",
                                                     "laminar/B738/spring_toggle_switch/APU_start_pos_up">},
                         Variant{.addOn = AddOn::Ixeg733,
                                 .source = ixegApuSwitch,
                                 .convert = ApuSwitchWordIxeg,
                                 .target = ixegApuSwitch,
                                 .targetConvert = ApuSwitchOfIxeg}};
     }>,
     .write = {.target = Int<"sim/cockpit/engine/APU_switch">}},
    {.offset = 0x0B18,
     .type = Stored::F64,
     .name = "suction",
     .meaning = "gyro suction",
     .unit = "inHg",
     .cycle = Cycle::C157,
     .source = Float<"sim/cockpit/misc/vacuum">},
    PlainSwitch({.offset = 0x0B20,
                 .type = Stored::U16,
                 .name = "sound",
                 .meaning = "sound on",
                 .cycle = Cycle::C7,
                 .source = Int<"sim/operation/sound/sound_on">}),
    {.offset = 0x0B24,
     .type = Stored::U16,
     .name = "sound_flag",
     .meaning = "sound on",
     .show = Show::Flag,
     .cycle = Cycle::C7,
     .source = Int<"sim/operation/sound/sound_on">,
     .convert = OnOff,
     .readOnly = true},
};

}  // namespace

const RowTable electricRows = {"Electrics, APU, vacuum, sound", rows};
