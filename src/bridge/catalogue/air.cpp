// Pressure, temperature, density.
#include <cmath>

#include "bridge/catalogue.h"

namespace {

// The altimeter's own conversion differs from that of the sea-level pressure in the third digit; clients
// are used to both.
constexpr double altimeterUnits = 33.8639 * 16;  // inHg to millibar x 16
constexpr double seaLevelMillibars = 33.86;
constexpr double seaLevelUnits = seaLevelMillibars * 16;
constexpr double celsiusUnits = 256;

// The nearest hundredth of an inch, so that 29.92 comes back as 29.92.
double SettingFromUnits(double units) { return std::round(units / altimeterUnits * 100) / 100; }

// What the temperatures have in common.
constexpr OffsetRow Temperature(OffsetRow row) {
  row.type = Stored::S16;
  row.unit = "degC";
  row.unitScale = 1 / celsiusUnits;
  row.factor = celsiusUnits;
  return row;
}

constexpr OffsetRow rows[] = {
    {.offset = 0x0330,
     .type = Stored::U16,
     .name = "altimeter_setting",
     .meaning = "altimeter setting",
     .unit = "mb",
     .unitScale = 1.0 / 16,
     .cycle = Cycle::C13,
     .source = Float<"sim/cockpit/misc/barometer_setting">,
     .factor = altimeterUnits,
     .write = {.target = Float<"sim/cockpit/misc/barometer_setting">, .convert = SettingFromUnits},
     .tolerance = {.steps = 3},
     .lossy = "set in hundredths of an inch: up to 3 sixteenths of a millibar off"},
    Temperature({.offset = 0x0E8C,
                 .name = "oat",
                 .meaning = "outside air temperature",
                 .cycle = Cycle::C13,
                 .source = Float<"sim/weather/temperature_ambient_c">}),
    Temperature({.offset = 0x11D0,
                 .name = "tat",
                 .meaning = "total air temperature, the same as the outside one",
                 .cycle = Cycle::C13,
                 .source = Float<"sim/weather/temperature_ambient_c">}),

    {.offset = 0x28C0,
     .type = Stored::F64,
     .name = "air_density",
     .meaning = "air density",
     .unit = "slug/ft3",
     .cycle = Cycle::C59,
     .source = Float<"sim/weather/rho">,
     .factor = 0.00194032,
     .readOnly = true},

    {.offset = 0x0F48,
     .type = Stored::U16,
     .name = "qnh",
     .meaning = "sea-level pressure, settable",
     .reference = "mean sea level",
     .unit = "mb",
     .unitScale = 1.0 / 16,
     .cycle = Cycle::C313,
     .source = Float<"sim/weather/barometer_sealevel_inhg">,
     .factor = seaLevelUnits,
     .write = {.target = Float<"sim/weather/barometer_sealevel_inhg">, .factor = 0.0625 * 0.02953},
     .tolerance = {.steps = 1, .share = 0.00012},
     .lossy = "0.02953 inches a millibar: reads back 0.011 % lower"},
    {.offset = 0x0EC6,
     .type = Stored::U16,
     .name = "sea_level_pressure",
     .meaning = "sea-level pressure",
     .unit = "mb",
     .unitScale = 1.0 / 16,
     .cycle = Cycle::C313,
     .source = Float<"sim/weather/barometer_sealevel_inhg">,
     .factor = seaLevelUnits},
    {.offset = 0x34A0,
     .type = Stored::F64,
     .name = "sea_level_pressure_exact",
     .meaning = "sea-level pressure, unrounded",
     .unit = "mb",
     .cycle = Cycle::C313,
     .source = Float<"sim/weather/barometer_sealevel_inhg">,
     .factor = seaLevelMillibars},
    Temperature({.offset = 0x0EC0,
                 .name = "sea_level_temperature",
                 .meaning = "sea-level temperature",
                 .cycle = Cycle::C313,
                 .source = Fitting<"sim/weather/temperature_sealevel_c">}),
    Temperature({.offset = 0x04C8,
                 .name = "dew_point",
                 .meaning = "dew point",
                 .cycle = Cycle::C313,
                 .source = Fitting<"sim/weather/dewpoi_sealevel_c">}),

    {.offset = 0x04D4,
     .type = Stored::S16,
     .name = "dew_point_set",
     .meaning = "dew point control",
     .unit = "degC",
     .unitScale = 1 / celsiusUnits,
     .write = {.target = Fitting<"sim/weather/dewpoi_sealevel_c">, .factor = 1 / celsiusUnits}},
};

}  // namespace

const RowTable airRows = {"Air", rows};
