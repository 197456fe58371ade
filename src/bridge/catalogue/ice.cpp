// Ice protection and wipers.
#include "bridge/catalogue/engine_families.h"
#include "bridge/catalogue/switches.h"

namespace {

// One switch an engine, or in older versions one for all.
constexpr Source inletSwitch = FittingElement<"sim/cockpit2/ice/ice_inlet_heat_on_per_engine",
                                              "sim/cockpit/switches/anti_ice_inlet_heat_per_engine",
                                              "sim/cockpit/switches/anti_ice_inlet_heat">(0);

constexpr Family inletHeat = {
    .shape = {.type = Stored::U16,
              .name = "anti_ice_eng",
              .meaning = "engine anti-ice or carburettor heat",
              .show = Show::Flag,
              .cycle = Cycle::C59,
              .source = inletSwitch,
              .convert = OnOff,
              .write = {.target = inletSwitch, .convert = OnOff},
              .lossy = flagLoss,
              .note = "up to 10.1x one switch for all engines"},
    .offsets = {0x08B2, 0x094A, 0x09E2, 0x0A7A},
};

constexpr auto switches = std::to_array<OffsetRow>(
    {PlainSwitch({.offset = 0x029C,
                  .type = Stored::U8,
                  .name = "pitot_heat",
                  .meaning = "pitot heat",
                  .cycle = Cycle::C31Navigation,
                  .source = Int<"sim/cockpit/switches/pitot_heat_on">}),
     PlainSwitch({.offset = 0x337D,
                  .type = Stored::U8,
                  .name = "deice",
                  .meaning = "structural de-ice",
                  .cycle = Cycle::C59,
                  .source = Int<"sim/cockpit/switches/anti_ice_surf_heat">}),
     PlainSwitch(
         {.offset = 0x6F0B,
          .type = Stored::U8,
          .name = "deice_left",
          .meaning = "surface heat, left wing",
          .cycle = Cycle::C59,
          .source =
              Int<"sim/cockpit/switches/anti_ice_surf_heat_left", "sim/cockpit/switches/anti_ice_surf_heat">}),
     PlainSwitch(
         {.offset = 0x6F0C,
          .type = Stored::U8,
          .name = "deice_right",
          .meaning = "surface heat, right wing",
          .cycle = Cycle::C59,
          .source =
              Int<"sim/cockpit/switches/anti_ice_surf_heat_right", "sim/cockpit/switches/anti_ice_surf_heat">}),
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
