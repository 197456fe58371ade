// Battery, generators, auxiliary power unit, fuel pumps, suction and the sound switch.
#include <algorithm>

#include "bridge/catalogue.h"
#include "bridge/catalogue/switches.h"

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

// The value is a 32-bit float by custom, but clients write the integer 1 too: every bit pattern but 0 is on.
void ApplyApu(const OffsetRow&, const Staged& staged) {
  constexpr double off = 0;
  constexpr double on = 1;
  constexpr double start = 2;
  const bool wanted =
      std::any_of(staged.bytes, staged.bytes + staged.width, [](uint8_t byte) { return byte != 0; });
  SetSource(apuSwitch, !wanted ? off : IsOn(apuRunning) ? on : start);
}

// A switch that serves all engines.
constexpr OffsetRow EngineSwitch(OffsetRow row) {
  row.type = Stored::U8;
  row.show = Show::Flag;
  row.note = "keeps what a client wrote";
  return row;
}

constexpr OffsetRow rows[] = {
    EngineSwitch({.offset = 0x3101,
                  .name = "generators",
                  .meaning = "generators of all engines",
                  .write = {.apply = ApplyToAllEngines<IntElement<"sim/cockpit/electrical/generator_on">(0)>}}),
    {.offset = 0x3102,
     .type = Stored::U8,
     .name = "battery",
     .meaning = "battery switch",
     .show = Show::Flag,
     .cycle = Cycle::C31Navigation,
     .convert = OnOff,
     .variants = variantsOf<[] {
       return std::array{Variant{.addOn = AddOn::X737, .source = Int<"x737/systems/electrics/swBatBusPowered">},
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
    EngineSwitch({.offset = 0x3104,
                  .name = "fuel_pumps",
                  .meaning = "fuel pumps of all engines",
                  .write = {.apply = ApplyToAllEngines<IntElement<"sim/cockpit/engine/fuel_pump_on">(0)>}}),
    PlainSwitch({.offset = 0x0B51,
                 .type = Stored::U8,
                 .name = "apu_generator",
                 .meaning = "APU generator switch",
                 .cycle = Cycle::C7,
                 .source = Int<"sim/cockpit2/electrical/APU_generator_on">}),
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
     .write = {.apply = ApplyApu},
     .lossy = "reads back what the APU does, which takes its time to start"},
    {.offset = 0x6DA9,
     .type = Stored::U8,
     .name = "apu_switch",
     .meaning = "APU switch",
     .cycle = Cycle::C31,
     .source = Int<"sim/cockpit/engine/APU_switch">,
     .write = {.target = Int<"sim/cockpit/engine/APU_switch">},
     .note = "0 off, 1 on, 2 start"},
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
