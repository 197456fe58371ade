#include "bridge/weather_area.h"

#include <algorithm>
#include <cstring>

#include "base/bytes.h"
#include "bridge/catalogue/versions.h"
#include "offsets/dispatcher.h"
#include "offsets/memory.h"

namespace {

constexpr uint32_t areaSize = 128;
constexpr int layerCount = 3;

struct CloudPlaces {
  Source base, tops, type;
};
constexpr CloudPlaces clouds[layerCount] = {
    {Fitting<"sim/weather/cloud_base_msl_m[0]">, Fitting<"sim/weather/cloud_tops_msl_m[0]">,
     Int<"sim/weather/cloud_type[0]">},
    {Fitting<"sim/weather/cloud_base_msl_m[1]">, Fitting<"sim/weather/cloud_tops_msl_m[1]">,
     Int<"sim/weather/cloud_type[1]">},
    {Fitting<"sim/weather/cloud_base_msl_m[2]">, Fitting<"sim/weather/cloud_tops_msl_m[2]">,
     Int<"sim/weather/cloud_type[2]">},
};

struct WindPlaces {
  Source altitude, speed, direction, gust, turbulence, shear;
  double degreesPerUnit;  // the surface layer counts a full turn as 65536, the others as 65535
};
constexpr WindPlaces winds[layerCount] = {
    {Fitting<"sim/weather/wind_altitude_msl_m[0]">, Fitting<"sim/weather/wind_speed_kt[0]">,
     Float<"sim/weather/wind_direction_degt[0]">, Fitting<"sim/weather/shear_speed_kt[0]">,
     Fitting<"sim/weather/turbulence[0]">, Fitting<"sim/weather/shear_direction_degt[0]">, 360.0 / 65536},
    {Fitting<"sim/weather/wind_altitude_msl_m[1]">, Fitting<"sim/weather/wind_speed_kt[1]">,
     Float<"sim/weather/wind_direction_degt[1]">, Fitting<"sim/weather/shear_speed_kt[1]">,
     Fitting<"sim/weather/turbulence[1]">, Fitting<"sim/weather/shear_direction_degt[1]">, 360.0 / 65535},
    {Fitting<"sim/weather/wind_altitude_msl_m[2]">, Fitting<"sim/weather/wind_speed_kt[2]">,
     Float<"sim/weather/wind_direction_degt[2]">, Fitting<"sim/weather/shear_speed_kt[2]">,
     Fitting<"sim/weather/turbulence[2]">, Fitting<"sim/weather/shear_direction_degt[2]">, 360.0 / 65535},
};

template <typename T>
T Field(const uint8_t* area, uint32_t at) {
  return LoadFrom<T>(area + at);
}

void ApplyClouds(const uint8_t* layer, const CloudPlaces& places) {
  SetSource(places.base, Field<uint16_t>(layer, 0));
  SetSource(places.tops, Field<uint16_t>(layer, 2));
  SetSource(places.type, std::min<int>(Field<uint16_t>(layer, 4), 5));
}

void ApplyWind(const uint8_t* layer, const WindPlaces& places) {
  constexpr double shearDegrees[] = {0, 45, 135, 180};
  const double direction = Field<uint16_t>(layer, 4) * places.degreesPerUnit;
  SetSource(places.altitude, Field<uint16_t>(layer, 0));
  SetSource(places.speed, InChangedUnit(Field<uint16_t>(layer, 2), windUnit));
  SetSource(places.direction, direction >= 360 ? 0 : direction);
  SetSource(places.gust, Field<uint16_t>(layer, 6));
  SetSource(places.turbulence, std::min(layer[8] * 2.5, 10.0));
  SetSource(places.shear, shearDegrees[std::min<int>(layer[9], 3)]);
}

}  // namespace

void ApplyWeatherArea() {
  // Looked at first: an exchange costs, and nearly all frames have nothing to take.
  if (weatherBlockReady.load(std::memory_order_relaxed) == 0 || weatherBlockReady.exchange(0) == 0) return;
  uint8_t area[areaSize];
  {
    LockScope lock(&offsetLock);
    const uint16_t selector = Load<uint16_t>(weatherAreaOffset);
    if (selector < 1 || selector > 4) return;
    std::memcpy(area, offsetMemory.bytes + weatherAreaOffset, areaSize);
    Store<uint16_t>(weatherAreaOffset, 0);
  }
  if (std::memcmp(area + 4, "GLOB", 4) != 0) return;

  const double pressure = Field<uint16_t>(area, 0x0A);
  const double visibility = Field<uint16_t>(area, 0x0C);
  SetSource(Float<"sim/weather/rate_change_percent">, std::min(Field<uint16_t>(area, 0x08) * 0.25, 1.0));
  if (pressure != 0) SetSource(Float<"sim/weather/barometer_sealevel_inhg">, pressure / (33.86 * 16));
  if (visibility != 0) SetSource(Float<"sim/weather/visibility_reported_m">, visibility * 18.52);
  SetSource(Fitting<"sim/weather/temperature_sealevel_c">, Field<int16_t>(area, 0x0E));
  SetSource(Fitting<"sim/weather/dewpoi_sealevel_c">, Field<int16_t>(area, 0x10));
  SetSource(Fitting<"sim/weather/rain_percent">, std::min(Field<uint16_t>(area, 0x12) * 0.25, 1.0));
  for (int n = 0; n < layerCount; ++n) {
    ApplyClouds(area + 0x20 + 8 * n, clouds[n]);
    ApplyWind(area + 0x40 + 16 * n, winds[n]);
  }
}
