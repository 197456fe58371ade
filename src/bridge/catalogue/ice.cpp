// Ice protection and wipers.
#include "bridge/catalogue/conversions.h"
#include "bridge/catalogue/engine_families.h"

namespace {

constexpr Family inletHeat = {
    {.type = Stored::U16,
     .name = "anti_ice_eng",
     .meaning = "engine anti-ice or carburettor heat",
     .show = Show::Flag,
     .cycle = Cycle::C59,
     .source = IntElement<"sim/cockpit2/ice/ice_inlet_heat_on_per_engine">(0),
     .convert = OnOff,
     .write = {.target = IntElement<"sim/cockpit2/ice/ice_inlet_heat_on_per_engine">(0), .convert = OnOff},
     .lossy = flagLoss},
    {0x08B2, 0x094A, 0x09E2, 0x0A7A}};

constexpr OffsetRow Switch(uint32_t offset, Source source, const char* name, const char* meaning, Cycle cycle) {
  return {.offset = offset,
          .type = Stored::U8,
          .name = name,
          .meaning = meaning,
          .show = Show::Flag,
          .cycle = cycle,
          .source = source,
          .convert = OnOff,
          .write = {.target = source, .convert = OnOff},
          .lossy = flagLoss};
}

constexpr auto switches = std::to_array<OffsetRow>(
    {Switch(0x029C, Int<"sim/cockpit/switches/pitot_heat_on">, "pitot_heat", "pitot heat",
            Cycle::C31Navigation),
     Switch(0x337D, Int<"sim/cockpit/switches/anti_ice_surf_heat">, "deice", "structural de-ice", Cycle::C59),
     Switch(0x6F0B, Int<"sim/cockpit/switches/anti_ice_surf_heat_left">, "deice_left",
            "surface heat, left wing", Cycle::C59),
     Switch(0x6F0C, Int<"sim/cockpit/switches/anti_ice_surf_heat_right">, "deice_right",
            "surface heat, right wing", Cycle::C59),
     {.offset = 0x6D88,
      .type = Stored::U8,
      .name = "wiper",
      .meaning = "wiper speed",
      .cycle = Cycle::C31,
      .source = Int<"sim/cockpit2/switches/wiper_speed">,
      .write = {.target = Int<"sim/cockpit2/switches/wiper_speed">},
      .note = "0 off to 3 full"}});

constexpr auto rows = Joined(EngineRows<inletHeat>(), switches);

}  // namespace

const RowTable iceRows = {"Ice protection", rows};
