// Wind at the aircraft and in three layers: surface, middle, high. Each layer has a settable block and a
// copy of it 0x82 bytes lower that clients only read.
#include <algorithm>
#include <array>

#include "bridge/catalogue.h"
#include "bridge/catalogue/angles.h"

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
      ReadSource(Float<"sim/weather/wind_altitude_msl_m[0]">))
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

// One quantity of a layer: the settable offset. `factor` turns the dataref into the stored number.
struct Quantity {
  const char* name;
  const char* meaning;
  const char* unit;
  double factor;
};
constexpr Quantity speed = {"wind_speed", "wind speed", "kt", 1};
constexpr Quantity turbulence = {"turbulence", "turbulence, 0 to 255", "", turbulenceUnits};
constexpr Quantity gust = {"gust", "gust", "kt", 1};

constexpr OffsetRow Settable(uint32_t offset, Source source, const Quantity& quantity, int layer, Cycle cycle) {
  return {.offset = offset,
          .type = Stored::U16,
          .name = quantity.name,
          .member = layer + 1,
          .meaning = quantity.meaning,
          .unit = quantity.unit,
          .cycle = cycle,
          .source = source,
          .factor = quantity.factor,
          .write = {.target = source, .factor = 1 / quantity.factor}};
}
// The same value at another place, read only.
constexpr OffsetRow Copy(OffsetRow row, uint32_t offset, bool readOnly = false) {
  row.offset = offset;
  row.name = "";
  row.member = 0;
  row.write = {};
  row.note = "copy";
  row.readOnly = readOnly;
  return row;
}

constexpr OffsetRow SurfaceDirection(uint32_t offset) {
  return {.offset = offset,
          .type = Stored::U16,
          .name = "wind_direction",
          .member = 1,
          .meaning = "surface wind direction, magnetic",
          .unit = "deg",
          .unitScale = 1 / angle16,
          .cycle = Cycle::C59,
          .read = ReadSurfaceDirection,
          .write = {.apply = ApplySurfaceDirection}};
}

constexpr OffsetRow Altitude(uint32_t offset, const char* name, int layer, const char* meaning, double factor,
                             Source source) {
  return {.offset = offset,
          .type = Stored::U16,
          .name = name,
          .member = layer + 1,
          .meaning = meaning,
          .unit = "m",
          .cycle = Cycle::C157,
          .source = source,
          .factor = factor};
}

// --- Upper layers --------------------------------------------------------------------------------------
// The simulator gives one altitude a layer, which is taken as its centre; half of it lies on either side.
struct UpperLayer {
  uint32_t block;  // offset of its settable block
  Source altitude, speed, direction, turbulence, gust;
  bool readOnlyCopy[6];  // of ceiling, base, speed, direction, turbulence, gust
};
constexpr UpperLayer upperLayers[2] = {
    {0x0F64,
     Float<"sim/weather/wind_altitude_msl_m[1]">,
     Float<"sim/weather/wind_speed_kt[1]">,
     Float<"sim/weather/wind_direction_degt[1]">,
     Float<"sim/weather/turbulence[1]">,
     Float<"sim/weather/shear_speed_kt[1]">,
     {true, true, true, true, true, false}},
    {0x0F58,
     Float<"sim/weather/wind_altitude_msl_m[2]">,
     Float<"sim/weather/wind_speed_kt[2]">,
     Float<"sim/weather/wind_direction_degt[2]">,
     Float<"sim/weather/turbulence[2]">,
     Float<"sim/weather/shear_speed_kt[2]">,
     {false, false, true, true, true, false}},
};

constexpr std::array<OffsetRow, 12> UpperRows(int layer) {
  const UpperLayer& from = upperLayers[layer - 1];
  const uint32_t block = from.block;
  const OffsetRow settable[6] = {
      Altitude(block, "wind_ceiling", layer, "ceiling of the wind layer", 1.5, from.altitude),
      Altitude(block + 2, "wind_base", layer, "base of the wind layer", 0.5, from.altitude),
      Settable(block + 4, from.speed, speed, layer, Cycle::C157),
      {.offset = block + 6,
       .type = Stored::U16,
       .name = "wind_direction",
       .member = layer + 1,
       .meaning = "wind direction, true",
       .unit = "deg",
       .unitScale = 1 / angle16,
       .cycle = Cycle::C157,
       .source = from.direction,
       .convert = AngleOf,
       .write = {.target = from.direction, .factor = 1 / angle16}},
      Settable(block + 8, from.turbulence, turbulence, layer, Cycle::C157),
      Settable(block + 10, from.gust, gust, layer, Cycle::C157),
  };
  std::array<OffsetRow, 12> rows = {};
  for (size_t n = 0; n < std::size(settable); ++n) {
    rows[2 * n] = settable[n];
    rows[2 * n + 1] = Copy(settable[n], settable[n].offset - copyBelow, from.readOnlyCopy[n]);
  }
  return rows;
}

constexpr OffsetRow surfaceSpeed =
    Settable(0x0F72, Float<"sim/weather/wind_speed_kt[0]">, speed, 0, Cycle::C13);
constexpr OffsetRow surfaceDirectionRow = SurfaceDirection(0x0F74);
constexpr OffsetRow surfaceTop = Altitude(0x0F70, "wind_ceiling", 0, "top of the surface wind layer", 1,
                                          Float<"sim/weather/wind_altitude_msl_m[0]">);
constexpr OffsetRow surfaceTurbulence =
    Settable(0x0F76, Float<"sim/weather/turbulence[0]">, turbulence, 0, Cycle::C157);
constexpr OffsetRow surfaceGust =
    Settable(0x0F78, Float<"sim/weather/shear_speed_kt[0]">, gust, 0, Cycle::C157);

constexpr OffsetRow nearRows[] = {
    {.offset = 0x0E90,
     .type = Stored::U16,
     .name = "wind",
     .meaning = "wind speed at the aircraft",
     .unit = "kt",
     .cycle = Cycle::C1,
     .source = Float<"sim/weather/wind_speed_kt">},
    {.offset = 0x3488,
     .type = Stored::F64,
     .name = "wind_exact",
     .meaning = "wind speed at the aircraft, unrounded",
     .unit = "kt",
     .cycle = Cycle::C1,
     .source = Float<"sim/weather/wind_speed_kt">},
    {.offset = 0x3490,
     .type = Stored::F64,
     .name = "wind_from_true",
     .meaning = "wind direction at the aircraft, true",
     .unit = "deg",
     .cycle = Cycle::C1,
     .source = Float<"sim/weather/wind_direction_degt">},
    {.offset = 0x0E92,
     .type = Stored::U16,
     .name = "wind_from",
     .meaning = "wind direction at the aircraft",
     .unit = "deg",
     .unitScale = 1 / angle16,
     .cycle = Cycle::C1,
     .read = ReadLocalDirection,
     .inputs = sourcesOf<Float<"sim/weather/wind_altitude_msl_m[0]">, magneticVariation>,
     .note = "magnetic inside the surface layer, true above it"},

    surfaceSpeed,
    Copy(surfaceSpeed, 0x0EF0),
    Copy(surfaceSpeed, 0x04D8, true),

    surfaceDirectionRow,
    Copy(surfaceDirectionRow, 0x0EF2),
    Copy(surfaceDirectionRow, 0x04DA, true),

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
