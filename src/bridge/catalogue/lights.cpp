// Lights: the word of all lights, and the bytes and words of single ones.
#include <span>

#include "bridge/catalogue.h"
#include "bridge/catalogue/conversions.h"
#include "bridge/catalogue/losses.h"

namespace {

// Bits of the light word.
enum Light { navigation, beacon, landing, taxi, strobe, instruments, lightCount };
constexpr int allLights = (1 << lightCount) - 1;

// The switches, in the order of the bits.
constexpr std::span<const Variant> switches[lightCount] = {
    variantsOf<[] { return std::array{Variant{.source = Int<"sim/cockpit2/switches/navigation_lights_on">}}; }>,
    variantsOf<[] {
      return std::array{
          Variant{.addOn = AddOn::X737, .source = Int<"x737/systems/exteriorLights/beaconLightSwitch">},
          Variant{.source = Int<"sim/cockpit2/switches/beacon_on">}};
    }>,
    variantsOf<[] { return std::array{Variant{.source = Int<"sim/cockpit2/switches/landing_lights_on">}}; }>,
    variantsOf<[] { return std::array{Variant{.source = Int<"sim/cockpit2/switches/taxi_light_on">}}; }>,
    variantsOf<[] { return std::array{Variant{.source = Int<"sim/cockpit/electrical/strobe_lights_on">}}; }>,
    variantsOf<[] { return std::array{Variant{.source = Int<"sim/cockpit/electrical/cockpit_lights_on">}}; }>};
Source SwitchOf(int light) { return ActiveVariant(switches[light]).source; }

// One word for all rows, because most of them show several lights.
int lightWord;  // the lights that are on

void TakeLights() {
  lightWord = 0;
  for (int light = 0; light < lightCount; light++) lightWord |= IsOn(SwitchOf(light)) << light;
}

template <int bits>
bool ReadLights(const OffsetRow&, double* value) {
  *value = bits == allLights ? lightWord : (lightWord & bits) != 0;
  return true;
}

template <int bits>
void ApplyAnyOf(const OffsetRow&, const Staged& staged) {
  for (int light = 0; light < lightCount; light++) {
    if ((bits >> light & 1) != 0) SetSource(SwitchOf(light), OnOff(staged.number));
  }
}

void ApplyLights(const OffsetRow&, const Staged& staged) {
  for (int light = 0; light < lightCount; light++) {
    SetSource(SwitchOf(light), static_cast<double>(staged.integer >> light & 1));
  }
}

constexpr OffsetRow rows[] = {
    {.offset = 0x0D0C,
     .type = Stored::U16,
     .name = "lights",
     .meaning = "all lights",
     .show = Show::Bits,
     .cycle = Cycle::C7,
     .read = ReadLights<allLights>,
     .inputs =
         sourcesOf<Int<"sim/cockpit2/switches/navigation_lights_on">, Int<"sim/cockpit2/switches/beacon_on">,
                   Int<"sim/cockpit2/switches/landing_lights_on">, Int<"sim/cockpit2/switches/taxi_light_on">,
                   Int<"sim/cockpit/electrical/strobe_lights_on">>,
     .prepare = TakeLights,
     .write = {.apply = ApplyLights},
     .lossy = "the simulator has no switches for bits 6-15, and bit 5 is read-only there",
     .note = "bits: 0 navigation, 1 beacon, 2 landing, 3 taxi, 4 strobe, 5 instruments"},
    {.offset = 0x0280,
     .type = Stored::U8,
     .name = "nav_lights",
     .meaning = "navigation lights",
     .show = Show::Flag,
     .cycle = Cycle::C7,
     .read = ReadLights<1 << navigation>,
     .inputs = sourcesOf<Int<"sim/cockpit2/switches/navigation_lights_on">>,
     .prepare = TakeLights},
    {.offset = 0x0281,
     .type = Stored::U8,
     .name = "beacon_strobe",
     .meaning = "beacon or strobe lights",
     .show = Show::Flag,
     .cycle = Cycle::C7,
     .read = ReadLights<1 << beacon | 1 << strobe>,
     .inputs =
         sourcesOf<Int<"sim/cockpit2/switches/beacon_on">, Int<"sim/cockpit/electrical/strobe_lights_on">>,
     .prepare = TakeLights,
     .write = {.apply = ApplyAnyOf<1 << beacon | 1 << strobe>},
     .lossy = flagLoss},
    {.offset = 0x028C,
     .type = Stored::U16,
     .name = "landing_lights",
     .meaning = "landing lights",
     .show = Show::Flag,
     .cycle = Cycle::C7,
     .read = ReadLights<1 << landing>,
     .inputs = sourcesOf<Int<"sim/cockpit2/switches/landing_lights_on">>,
     .prepare = TakeLights,
     .write = {.apply = ApplyAnyOf<1 << landing>},
     .lossy = flagLoss},
};

}  // namespace

const RowTable lightRows = {"Lights", rows};
