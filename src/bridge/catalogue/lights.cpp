// Lights: the word of all lights, and the bytes and words of single ones.
#include <algorithm>
#include <cmath>
#include <span>

#include "bridge/catalogue.h"
#include "bridge/catalogue/conversions.h"
#include "bridge/catalogue/losses.h"

namespace {

// Bits of the light word.
enum Light { navigation, beacon, landing, taxi, strobe, instruments, lightCount };
constexpr int allLights = (1 << lightCount) - 1;

// The position light knob of the extended 737-800: steady, off, strobe and steady.
constexpr Source b738Position = Float<"laminar/B738/toggle_switch/position_light_pos">;
double IsNotCentred(double position) { return std::lround(position) != 0; }
double IsStrobing(double position) { return position > 0.5; }

constexpr Variant navigationSwitch[] = {{.addOn = AddOn::B738Extended,
                                         .source = b738Position,
                                         .convert = IsNotCentred,
                                         .fires = commandsOf<"laminar/B738/toggle_switch/position_light_up",
                                                             "laminar/B738/toggle_switch/position_light_down">},
                                        {.addOn = AddOn::Ixeg733,
                                         .source = Fitting<"ixeg/733/lighting/position_lt_act">,
                                         .convert = IsNotCentred,
                                         .target = Fitting<"ixeg/733/lighting/position_lt_act">},
                                        {.source = Int<"sim/cockpit2/switches/navigation_lights_on">}};
constexpr Variant beaconSwitch[] = {{.addOn = AddOn::X737,
                                     .source = Int<"x737/systems/exteriorLights/beaconLightSwitch">,
                                     .target = Int<"x737/systems/exteriorLights/beaconLightSwitch">},
                                    {.addOn = AddOn::Ixeg733,
                                     .source = Fitting<"ixeg/733/lighting/anti_col_lt_act">,
                                     .target = Fitting<"ixeg/733/lighting/anti_col_lt_act">},
                                    {.source = Int<"sim/cockpit2/switches/beacon_on">}};
// The commands of the extended 737-800 are fired by ApplyLightsB738.
constexpr Variant landingSwitch[] = {
    {.addOn = AddOn::B738Extended,
     .fires =
         commandsOf<"laminar/B738/switch/land_lights_left_on", "laminar/B738/switch/land_lights_right_on",
                    "laminar/B738/switch/land_lights_ret_left_dn",
                    "laminar/B738/switch/land_lights_ret_right_dn", "laminar/B738/switch/land_lights_left_off",
                    "laminar/B738/switch/land_lights_right_off", "laminar/B738/switch/land_lights_ret_left_up",
                    "laminar/B738/switch/land_lights_ret_right_up">},
    {.addOn = AddOn::Ixeg733,
     .source = Fitting<"ixeg/733/lighting/l_inboard_ll_act">,
     .target = Fitting<"ixeg/733/lighting/l_inboard_ll_act">,
     .together = sourcesOf<Fitting<"ixeg/733/lighting/r_inboard_ll_act">>,
     .sets = sourcesOf<Fitting<"ixeg/733/lighting/l_outboard_ll_act">,
                       Fitting<"ixeg/733/lighting/r_outboard_ll_act">>},
    {.source = Int<"sim/cockpit2/switches/landing_lights_on">}};
constexpr Variant taxiSwitch[] = {{.addOn = AddOn::B738Extended,
                                   .source = Float<"laminar/B738/toggle_switch/taxi_light_brightness_pos">,
                                   .silent = true},
                                  {.addOn = AddOn::Ixeg733,
                                   .source = Fitting<"ixeg/733/lighting/taxi_lt_act">,
                                   .target = Fitting<"ixeg/733/lighting/taxi_lt_act">},
                                  {.source = Int<"sim/cockpit2/switches/taxi_light_on">}};
constexpr Variant strobeSwitch[] = {{.addOn = AddOn::B738Extended,
                                     .source = b738Position,
                                     .convert = IsStrobing,
                                     .fires = commandsOf<"laminar/B738/toggle_switch/position_light_up",
                                                         "laminar/B738/toggle_switch/position_light_down">},
                                    {.addOn = AddOn::Ixeg733,
                                     .source = Fitting<"ixeg/733/lighting/strobe_lt_act">,
                                     .target = Fitting<"ixeg/733/lighting/strobe_lt_act">},
                                    {.source = Int<"sim/cockpit/electrical/strobe_lights_on">}};
constexpr Variant instrumentSwitch[] = {{.source = Int<"sim/cockpit/electrical/cockpit_lights_on">}};

// The switches, in the order of the bits.
constexpr std::span<const Variant> switches[lightCount] = {navigationSwitch, beaconSwitch, landingSwitch,
                                                           taxiSwitch,       strobeSwitch, instrumentSwitch};

template <int... lights>
constexpr std::span<const Variant> partsOf[] = {switches[lights]...};

// One word for all rows, because most of them show several lights.
int lightWord;  // the lights that are on

// What shows each light, found anew only when something has come or gone.
const Variant* shownLights[lightCount];
uint32_t shownSince;

bool IsLightOn(int light) {
  if (shownSince != readerBindings) {
    shownSince = readerBindings;
    for (int i = 0; i < lightCount; i++) shownLights[i] = &ShowingVariant(switches[i]);
  }
  const Variant& variant = *shownLights[light];
  return variant.convert == nullptr ? IsOn(variant.source) : variant.convert(ReadSource(variant.source)) != 0;
}

void TakeLights() {
  lightWord = 0;
  for (int light = 0; light < lightCount; light++) lightWord |= IsLightOn(light) << light;
}

template <int bits>
bool ReadLights(const OffsetRow&, double* value) {
  *value = bits == allLights ? lightWord : (lightWord & bits) != 0;
  return true;
}

// Navigation and strobe lights are one knob, turned step by step.
void TurnPositionKnobB738(uint32_t offset, bool navigationWanted, bool strobeWanted) {
  const Command& up = commandOf<"laminar/B738/toggle_switch/position_light_up">;
  const Command& down = commandOf<"laminar/B738/toggle_switch/position_light_down">;
  if (up.handle == nullptr || down.handle == nullptr) {
    TellUnserved(AddOn::B738Extended, offset, up.handle == nullptr ? up.name : down.name);
    return;
  }
  const long wanted = strobeWanted ? 1 : navigationWanted ? -1 : 0;
  const long position = std::clamp(std::lround(ReadSource(b738Position)), -1L, 1L);
  for (long i = position; i < wanted; ++i) FireCommand(up);
  for (long i = position; i > wanted; --i) FireCommand(down);
}

// The fixed lights have a command for each place, the retractable ones two steps from one end to the other.
constexpr const Command* const b738LandingOn[] = {&commandOf<"laminar/B738/switch/land_lights_left_on">,
                                                  &commandOf<"laminar/B738/switch/land_lights_right_on">,
                                                  &commandOf<"laminar/B738/switch/land_lights_ret_left_dn">,
                                                  &commandOf<"laminar/B738/switch/land_lights_ret_left_dn">,
                                                  &commandOf<"laminar/B738/switch/land_lights_ret_right_dn">,
                                                  &commandOf<"laminar/B738/switch/land_lights_ret_right_dn">};
constexpr const Command* const b738LandingOff[] = {&commandOf<"laminar/B738/switch/land_lights_left_off">,
                                                   &commandOf<"laminar/B738/switch/land_lights_right_off">,
                                                   &commandOf<"laminar/B738/switch/land_lights_ret_left_up">,
                                                   &commandOf<"laminar/B738/switch/land_lights_ret_left_up">,
                                                   &commandOf<"laminar/B738/switch/land_lights_ret_right_up">,
                                                   &commandOf<"laminar/B738/switch/land_lights_ret_right_up">};

// Returns the lights among `bits` that are still to be switched one by one.
int ApplyLightsB738(uint32_t offset, int bits, int wanted) {
  constexpr int knob = 1 << navigation | 1 << strobe;
  int shown = 0;
  for (const int light : {navigation, strobe, landing}) shown |= IsLightOn(light) << light;
  const int after = (shown & ~bits) | (wanted & bits);
  if ((bits & knob) != 0 && (after & knob) != (shown & knob)) {
    TurnPositionKnobB738(offset, (after >> navigation & 1) != 0, (after >> strobe & 1) != 0);
  }
  if (((after ^ shown) >> landing & 1) != 0) {
    for (const Command* command : (after >> landing & 1) != 0 ? b738LandingOn : b738LandingOff) {
      FireCommand(*command);
    }
  }
  return bits & ~(knob | 1 << landing);
}

// Those of the IXEG 737 that are switched beside the landing lights of the same side.
void ApplyRetractableIxeg(bool wanted) {
  SetSource(Fitting<"ixeg/733/lighting/l_outboard_ll_act">, wanted ? 2 : 0);
  SetSource(Fitting<"ixeg/733/lighting/r_outboard_ll_act">, wanted ? 2 : 0);
}

void SwitchLight(uint32_t offset, int light, bool wanted) {
  const Variant& variant = ActingVariant(switches[light]);
  if (ActsOn(variant)) {
    if (!variant.silent || wanted != IsLightOn(light)) TurnSwitch(switches[light], offset, wanted);
    if (light == landing) ApplyRetractableIxeg(wanted);
  } else {
    SetSource(variant.source, wanted);
  }
}

void SwitchLights(uint32_t offset, int bits, int wanted) {
  if (IsLoaded(AddOn::B738Extended)) bits = ApplyLightsB738(offset, bits, wanted);
  for (int light = 0; light < lightCount; light++) {
    if ((bits >> light & 1) != 0) SwitchLight(offset, light, (wanted >> light & 1) != 0);
  }
}

template <int bits>
void ApplyAnyOf(const OffsetRow& row, const Staged& staged) {
  SwitchLights(row.offset, bits, OnOff(staged.number) != 0 ? bits : 0);
}

void ApplyLights(const OffsetRow& row, const Staged& staged) {
  SwitchLights(row.offset, allLights, static_cast<int>(staged.integer & allLights));
}

constexpr Choice lightBits[] = {{0, "navigation"}, {1, "beacon"}, {2, "landing"},
                                {3, "taxi"},       {4, "strobe"}, {5, "instruments"}};

constexpr OffsetRow rows[] = {
    {.offset = 0x0D0C,
     .type = Stored::U16,
     .name = "lights",
     .meaning = "all lights",
     .choices = lightBits,
     .show = Show::Bits,
     .cycle = Cycle::C7,
     .read = ReadLights<allLights>,
     .inputs =
         sourcesOf<Int<"sim/cockpit2/switches/navigation_lights_on">, Int<"sim/cockpit2/switches/beacon_on">,
                   Int<"sim/cockpit2/switches/landing_lights_on">, Int<"sim/cockpit2/switches/taxi_light_on">,
                   Int<"sim/cockpit/electrical/strobe_lights_on">>,
     .prepare = TakeLights,
     .parts = switches,
     .write = {.apply = ApplyLights},
     .lossy = "the simulator has no switches for bits 6-15, and bit 5 is read-only there"},
    {.offset = 0x0280,
     .type = Stored::U8,
     .name = "nav_lights",
     .meaning = "navigation lights",
     .show = Show::Flag,
     .cycle = Cycle::C7,
     .read = ReadLights<1 << navigation>,
     .inputs = sourcesOf<Int<"sim/cockpit2/switches/navigation_lights_on">>,
     .prepare = TakeLights,
     .parts = partsOf<navigation>},
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
     .parts = partsOf<beacon, strobe>,
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
     .parts = partsOf<landing>,
     .write = {.apply = ApplyAnyOf<1 << landing>},
     .lossy = flagLoss},
};

}  // namespace

const RowTable lightRows = {"Lights", rows};
