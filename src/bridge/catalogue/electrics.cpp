// Battery, generators, auxiliary power unit, fuel pumps, suction and the sound switch.
#include <algorithm>

#include "aircraft/adapter_slots.h"
#include "bridge/aircraft_state.h"
#include "bridge/catalogue/engine_families.h"

namespace {

constexpr Source battery = IntAt(0x3102);
constexpr Source apuRunning = IntAt(0x0B58);
constexpr Source apuSwitch = AuxIntAt(0x0B58);

// One switch for all eight engines that the simulator knows, in one call.
void SwitchAllEngines(const OffsetRow& row, const Staged& staged) {
  const XPLMDataRef handle = HandleOf(IntAt(row.offset));
  if (handle == nullptr) return;
  int switches[8];
  std::fill(std::begin(switches), std::end(switches), staged.integer != 0);
  XPLMSetDatavi(handle, switches, 0, static_cast<int>(std::size(switches)));
}

int ReadBattery(const OffsetRow&, double* value) {
  *value = IsOn(adapters.x737 ? x737SwBatBusPowered : battery);
  return 1;
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

constexpr OffsetRow Switch(uint32_t offset, Stored type, const char* name, const char* meaning, Cycle cycle) {
  return {.offset = offset,
          .type = type,
          .name = name,
          .meaning = meaning,
          .show = Show::Flag,
          .cycle = cycle,
          .source = IntAt(offset),
          .convert = OnOff,
          .write = {.target = IntAt(offset), .convert = OnOff},
          .lossy = flagLoss};
}
constexpr OffsetRow EngineSwitch(uint32_t offset, const char* name, const char* meaning) {
  return {.offset = offset,
          .type = Stored::U8,
          .name = name,
          .meaning = meaning,
          .show = Show::Flag,
          .write = {.apply = SwitchAllEngines},
          .note = "keeps what a client wrote"};
}

constexpr OffsetRow rows[] = {
    EngineSwitch(0x3101, "generators", "generators of all engines"),
    {.offset = 0x3102,
     .type = Stored::U8,
     .name = "battery",
     .meaning = "battery switch",
     .show = Show::Flag,
     .cycle = Cycle::C31Navigation,
     .read = ReadBattery,
     .write = {.target = battery, .convert = OnOff},
     .lossy = flagLoss},
    Switch(0x3103, Stored::U8, "avionics", "avionics master switch", Cycle::C31Navigation),
    EngineSwitch(0x3104, "fuel_pumps", "fuel pumps of all engines"),
    Switch(0x0B51, Stored::U8, "apu_generator", "APU generator switch", Cycle::C7),
    {.offset = 0x0B52,
     .type = Stored::U8,
     .name = "apu_generator_active",
     .meaning = "APU generator active",
     .show = Show::Flag,
     .cycle = Cycle::C7,
     .source = IntAt(0x0B52),
     .convert = OnOff},
    {.offset = 0x0B54,
     .type = Stored::F32,
     .name = "apu_speed",
     .meaning = "APU speed",
     .unit = "%",
     .cycle = Cycle::C7,
     .source = FloatAt(0x0B54)},
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
     .source = IntAt(0x6DA9),
     .write = {.target = IntAt(0x6DA9)},
     .note = "0 off, 1 on, 2 start"},
    {.offset = 0x0B18,
     .type = Stored::F64,
     .name = "suction",
     .meaning = "gyro suction",
     .unit = "inHg",
     .cycle = Cycle::C157,
     .source = FloatAt(0x0B18)},
    Switch(0x0B20, Stored::U16, "sound", "sound on", Cycle::C7),
    {.offset = 0x0B24,
     .type = Stored::U16,
     .name = "sound_flag",
     .meaning = "sound on",
     .show = Show::Flag,
     .cycle = Cycle::C7,
     .source = IntAt(0x0B20),
     .convert = OnOff},
};

}  // namespace

const RowTable electricRows = {"Electrics, APU, vacuum, sound", rows};
