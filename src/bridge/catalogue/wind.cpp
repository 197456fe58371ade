// Wind at the aircraft and in three layers: surface, middle, high. Each layer has a settable block and a
// copy of it 0x82 bytes lower that clients only read.
#include <algorithm>
#include <array>

#include "bridge/catalogue.h"
#include "bridge/catalogue/conversions.h"
#include "bridge/catalogue/units.h"
#include "bridge/catalogue/versions.h"

namespace {

constexpr uint32_t copyBelow = 0x82;
constexpr double turbulenceUnits = 255.0 / 9;  // 0 to 10 of the simulator; 10 gives 283
constexpr Source magneticVariation = Float<"sim/flightmodel/position/magnetic_variation">;
constexpr Source surfaceDirection = Float<"sim/weather/wind_direction_degt[0]">;  // degrees true

double AngleOf(double degrees) { return Wrapped(degrees) * angle16; }

// --- At the aircraft -----------------------------------------------------------------------------------
// Magnetic inside the surface layer, true above it, as the wind is reported there.
bool ReadLocalDirection(const OffsetRow&, double* value) {
  double direction = ReadSource(Float<"sim/weather/wind_direction_degt">);
  if (ReadSource(Double<"sim/flightmodel/position/elevation">) <
      ReadSource(Fitting<"sim/weather/wind_altitude_msl_m[0]">))
    direction += ReadSource(magneticVariation);
  *value = AngleOf(direction);
  return true;
}

// --- Surface layer -------------------------------------------------------------------------------------
bool ReadSurfaceDirection(const OffsetRow&, double* value) {
  *value = AngleOf(ReadSource(surfaceDirection) + ReadSource(magneticVariation));
  return true;
}
void ApplySurfaceDirection(const OffsetRow&, const Staged& staged) {
  SetSource(surfaceDirection, Wrapped(staged.number / angle16 - ReadSource(magneticVariation)));
}

// What the quantities of every layer have in common: clients set them where they read them.
constexpr OffsetRow Settable(OffsetRow row) {
  row.type = Stored::U16;
  row.write = {.target = row.source, .factor = 1 / row.factor};
  return row;
}
constexpr OffsetRow Speed(OffsetRow row) {
  row.name = "wind_speed";
  row.meaning = "wind speed";
  row.unit = "kt";
  row.unitChange = windUnit;
  return Settable(row);
}
constexpr OffsetRow Turbulence(OffsetRow row) {
  row.name = "turbulence";
  row.meaning = "turbulence, 0 to 255";
  row.factor = turbulenceUnits;
  return Settable(row);
}
constexpr OffsetRow Gust(OffsetRow row) {
  row.name = "gust";
  row.meaning = "gust";
  row.unit = "kt";
  return Settable(row);
}
// An end of a layer.
constexpr OffsetRow Altitude(OffsetRow row) {
  row.type = Stored::U16;
  row.unit = "m";
  row.cycle = Cycle::C157;
  return row;
}

// The same value at another place.
constexpr OffsetRow Copy(OffsetRow row, uint32_t offset) {
  row.offset = offset;
  row.copy = 1;
  row.write = {};
  row.note = "copy";
  return row;
}
// The same that clients' writes pass over.
constexpr OffsetRow ReadOnlyCopy(OffsetRow row, uint32_t offset) {
  row = Copy(row, offset);
  row.readOnly = true;
  return row;
}

// The surface's, which stand in a third place, too.
constexpr OffsetRow SecondCopy(OffsetRow row, uint32_t offset) {
  row = ReadOnlyCopy(row, offset);
  row.copy = 2;
  return row;
}

// --- Upper layers --------------------------------------------------------------------------------------
// The simulator gives one altitude a layer, which is taken as its centre; half of it lies on either side.
struct UpperLayer {
  uint32_t block;  // offset of its settable block
  Source altitude, speed, direction, turbulence, gust;
  bool readOnlyCopy[6];  // of ceiling, base, speed, direction, turbulence, gust
};
constexpr UpperLayer upperLayers[2] = {
    {.block = 0x0F64,
     .altitude = Fitting<"sim/weather/wind_altitude_msl_m[1]">,
     .speed = Fitting<"sim/weather/wind_speed_kt[1]">,
     .direction = Float<"sim/weather/wind_direction_degt[1]">,
     .turbulence = Fitting<"sim/weather/turbulence[1]">,
     .gust = Fitting<"sim/weather/shear_speed_kt[1]">,
     .readOnlyCopy = {true, true, true, true, true, false}},
    {.block = 0x0F58,
     .altitude = Fitting<"sim/weather/wind_altitude_msl_m[2]">,
     .speed = Fitting<"sim/weather/wind_speed_kt[2]">,
     .direction = Float<"sim/weather/wind_direction_degt[2]">,
     .turbulence = Fitting<"sim/weather/turbulence[2]">,
     .gust = Fitting<"sim/weather/shear_speed_kt[2]">,
     .readOnlyCopy = {false, false, true, true, true, false}},
};

constexpr std::array<OffsetRow, 12> UpperRows(int layer) {
  const UpperLayer& from = upperLayers[layer - 1];
  const int member = layer + 1;
  const OffsetRow settable[6] = {
      Altitude({.offset = from.block,
                .name = "wind_ceiling",
                .member = member,
                .meaning = "ceiling of the wind layer",
                .reference = "mean sea level",
                .source = from.altitude,
                .factor = 1.5}),
      Altitude({.offset = from.block + 2,
                .name = "wind_base",
                .member = member,
                .meaning = "base of the wind layer",
                .reference = "mean sea level",
                .source = from.altitude,
                .factor = 0.5}),
      Speed({.offset = from.block + 4, .member = member, .cycle = Cycle::C157, .source = from.speed}),
      {.offset = from.block + 6,
       .type = Stored::U16,
       .name = "wind_direction",
       .member = member,
       .meaning = "wind direction",
       .reference = "true north",
       .unit = "deg",
       .unitScale = 1 / angle16,
       .cycle = Cycle::C157,
       .source = from.direction,
       .convert = AngleOf,
       .write = {.target = from.direction, .factor = 1 / angle16}},
      Turbulence({.offset = from.block + 8, .member = member, .cycle = Cycle::C157, .source = from.turbulence}),
      Gust({.offset = from.block + 10, .member = member, .cycle = Cycle::C157, .source = from.gust}),
  };
  std::array<OffsetRow, 12> rows = {};
  for (size_t n = 0; n < std::size(settable); ++n) {
    const uint32_t copyAt = settable[n].offset - copyBelow;
    rows[2 * n] = settable[n];
    rows[2 * n + 1] = from.readOnlyCopy[n] ? ReadOnlyCopy(settable[n], copyAt) : Copy(settable[n], copyAt);
  }
  return rows;
}

// --- Surface layer, and the rows of all --------------------------------------------------------------
constexpr OffsetRow surfaceSpeed = Speed(
    {.offset = 0x0F72, .member = 1, .cycle = Cycle::C13, .source = Fitting<"sim/weather/wind_speed_kt[0]">});
constexpr OffsetRow surfaceDirectionRow = {.offset = 0x0F74,
                                           .type = Stored::U16,
                                           .name = "wind_direction",
                                           .member = 1,
                                           .meaning = "surface wind direction",
                                           .reference = "magnetic north",
                                           .unit = "deg",
                                           .unitScale = 1 / angle16,
                                           .cycle = Cycle::C59,
                                           .read = ReadSurfaceDirection,
                                           .write = {.apply = ApplySurfaceDirection}};
constexpr OffsetRow surfaceTop = Altitude({.offset = 0x0F70,
                                           .name = "wind_ceiling",
                                           .member = 1,
                                           .meaning = "top of the surface wind layer",
                                           .reference = "mean sea level",
                                           .source = Fitting<"sim/weather/wind_altitude_msl_m[0]">});
constexpr OffsetRow surfaceTurbulence = Turbulence(
    {.offset = 0x0F76, .member = 1, .cycle = Cycle::C157, .source = Fitting<"sim/weather/turbulence[0]">});
constexpr OffsetRow surfaceGust = Gust(
    {.offset = 0x0F78, .member = 1, .cycle = Cycle::C157, .source = Fitting<"sim/weather/shear_speed_kt[0]">});

constexpr OffsetRow nearRows[] = {
    {.offset = 0x0E90,
     .type = Stored::U16,
     .name = "wind",
     .meaning = "wind speed at the aircraft",
     .unit = "kt",
     .cycle = Cycle::C1,
     .source = Float<"sim/weather/wind_speed_kt">,
     .unitChange = windUnit},
    {.offset = 0x3488,
     .type = Stored::F64,
     .name = "wind_exact",
     .meaning = "wind speed at the aircraft, unrounded",
     .unit = "kt",
     .cycle = Cycle::C1,
     .source = Float<"sim/weather/wind_speed_kt">,
     .unitChange = windUnit},
    {.offset = 0x3490,
     .type = Stored::F64,
     .name = "wind_from_true",
     .meaning = "wind direction at the aircraft",
     .reference = "true north",
     .unit = "deg",
     .cycle = Cycle::C1,
     .source = Float<"sim/weather/wind_direction_degt">},
    {.offset = 0x0E92,
     .type = Stored::U16,
     .name = "wind_from",
     .meaning = "wind direction at the aircraft",
     .reference = "magnetic north in the surface layer, true north above it",
     .unit = "deg",
     .unitScale = 1 / angle16,
     .cycle = Cycle::C1,
     .read = ReadLocalDirection,
     .inputs = sourcesOf<Fitting<"sim/weather/wind_altitude_msl_m[0]">, magneticVariation>},

    surfaceSpeed,
    Copy(surfaceSpeed, 0x0EF0),
    SecondCopy(surfaceSpeed, 0x04D8),

    surfaceDirectionRow,
    Copy(surfaceDirectionRow, 0x0EF2),
    SecondCopy(surfaceDirectionRow, 0x04DA),

    surfaceTop,
    Copy(surfaceTop, 0x0EEE),
    surfaceTurbulence,
    Copy(surfaceTurbulence, 0x0EF4),
    surfaceGust,
    Copy(surfaceGust, 0x0EF6),
};

constexpr auto rows = [] {
  std::array<OffsetRow, std::size(nearRows) + 24> all = {};
  auto end = std::copy(std::begin(nearRows), std::end(nearRows), all.begin());
  for (int layer = 1; layer <= 2; ++layer) {
    const auto layerRows = UpperRows(layer);
    end = std::copy(layerRows.begin(), layerRows.end(), end);
  }
  return all;
}();

}  // namespace

const RowTable windRows = {"Wind", rows};
