// Lights: the word of all lights, and the bytes and words of single ones.
#include "aircraft/adapter_slots.h"
#include "bridge/aircraft_state.h"
#include "bridge/catalogue/engine_families.h"

namespace {

// Bits of the light word.
enum Light { navigation, beacon, landing, taxi, strobe, instruments, lightCount };

int lightWord;  // as the row of the word read it, for the single lights behind it

Source LightSource(int light) {
  switch (light) {
    case navigation:
      return AuxIntAt(0x0104);
    case beacon:
      return adapters.x737 ? x737BeaconLightSwitch : AuxIntAt(0x0105);
    case landing:
      return AuxIntAt(0x0106);
    case taxi:
      return AuxIntAt(0x0107);
    case strobe:
      return AuxIntAt(0x010C);
    default:
      return AuxIntAt(0x0108);
  }
}

int ReadLights(const OffsetRow&, double* value) {
  lightWord = 0;
  for (int light = 0; light < lightCount; light++) lightWord |= IsOn(LightSource(light)) << light;
  *value = lightWord;
  return 1;
}

template <int bits>
int ReadAnyOf(const OffsetRow&, double* value) {
  *value = (lightWord & bits) != 0;
  return 1;
}

template <int bits>
void SwitchAll(const OffsetRow&, const Staged& staged) {
  for (int light = 0; light < lightCount; light++) {
    if ((bits >> light & 1) != 0) SetSource(LightSource(light), OnOff(staged.number));
  }
}

void ApplyLights(const OffsetRow&, const Staged& staged) {
  for (int light = 0; light < lightCount; light++) {
    SetSource(LightSource(light), static_cast<double>(staged.integer >> light & 1));
  }
}

// The word comes first: the others are parts of what it has read.
constexpr OffsetRow rows[] = {
    {.offset = 0x0D0C,
     .type = Stored::U16,
     .name = "lights",
     .meaning = "all lights",
     .show = Show::Bits,
     .cycle = Cycle::C7,
     .read = ReadLights,
     .write = {.apply = ApplyLights},
     .lossy = "the simulator has no switches for bits 6-15, and bit 5 is read-only there",
     .note = "bits: 0 navigation, 1 beacon, 2 landing, 3 taxi, 4 strobe, 5 instruments"},
    {.offset = 0x0280,
     .type = Stored::U8,
     .name = "nav_lights",
     .meaning = "navigation lights",
     .show = Show::Flag,
     .cycle = Cycle::C7,
     .read = ReadAnyOf<1 << navigation>},
    {.offset = 0x0281,
     .type = Stored::U8,
     .name = "beacon_strobe",
     .meaning = "beacon or strobe lights",
     .show = Show::Flag,
     .cycle = Cycle::C7,
     .read = ReadAnyOf<1 << beacon | 1 << strobe>,
     .write = {.apply = SwitchAll<1 << beacon | 1 << strobe>},
     .lossy = flagLoss},
    {.offset = 0x028C,
     .type = Stored::U16,
     .name = "landing_lights",
     .meaning = "landing lights",
     .show = Show::Flag,
     .cycle = Cycle::C7,
     .read = ReadAnyOf<1 << landing>,
     .write = {.apply = SwitchAll<1 << landing>},
     .lossy = flagLoss},
};

}  // namespace

const RowTable lightRows = {"Lights", rows};
