// Cabin pressure, doors, undercarriage type, runway condition.
#include "bridge/catalogue.h"
#include "bridge/catalogue/conversions.h"

namespace {

constexpr Source runwayFriction = Fitting<"sim/weather/runway_friction">;

constexpr Choice exits[] = {{0, "cabin door"}};
constexpr Choice runwayConditions[] = {{0, "good"}, {1, "fair"}, {2, "poor"}};

constexpr OffsetRow rows[] = {
    // The simulator's names say metres; the values are feet.
    {.offset = 0x0318,
     .type = Stored::S32,
     .name = "cabin_altitude",
     .meaning = "cabin altitude",
     .reference = "mean sea level",
     .unit = "ft",
     .cycle = Cycle::C1,
     .source = Float<"sim/cockpit/pressure/cabin_altitude_actual_m_msl">},
    {.offset = 0x031C,
     .type = Stored::S32,
     .name = "cabin_altitude_goal",
     .meaning = "cabin altitude goal",
     .reference = "mean sea level",
     .unit = "ft",
     .cycle = Cycle::C13,
     .source = Float<"sim/cockpit/pressure/cabin_altitude_set_m_msl">,
     .write = {.target = Float<"sim/cockpit/pressure/cabin_altitude_set_m_msl">},
     .tolerance = {.share = 1e-7},
     .lossy = "single precision above 16777216"},
    {.offset = 0x0320,
     .type = Stored::S32,
     .name = "cabin_rate",
     .meaning = "cabin rate of change",
     .cycle = Cycle::C13,
     .source = Float<"sim/cockpit/pressure/cabin_vvi_set_m_msec">,
     .write = {.target = Float<"sim/cockpit/pressure/cabin_vvi_set_m_msec">},
     .tolerance = {.share = 1e-7},
     .lossy = "single precision above 16777216"},
    {.offset = 0x3367,
     .type = Stored::U8,
     .name = "exits",
     .meaning = "exits open",
     .choices = exits,
     .show = Show::Bits,
     .cycle = Cycle::C59,
     .source = Int<"sim/cockpit2/annunciators/cabin_door_open">,
     .convert = OnOff,
     .readOnly = true},
    {.offset = 0x6DA8,
     .type = Stored::U8,
     .name = "runway_condition",
     .meaning = "runway condition",
     .choices = runwayConditions,
     .cycle = Cycle::C59,
     .source = runwayFriction,
     .write = {.target = runwayFriction, .high = 2},
     .limits = {0, 2},
     .lossy = "above 2 reads back 2",
     .note = "newer simulators have more steps"},
    {.offset = 0x6F02,
     .type = Stored::U8,
     .name = "skids",
     .meaning = "undercarriage has skids",
     .show = Show::Flag,
     .cycle = Cycle::C313,
     .source = Int<"sim/aircraft/gear/acf_gear_is_skid">,
     .convert = OnOff},
};

}  // namespace

const RowTable pressurisationRows = {"Pressurisation, doors, runway", rows};
