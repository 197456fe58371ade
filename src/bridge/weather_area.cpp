#include "bridge/weather_area.h"

#include <algorithm>
#include <cstring>

#include "base/bytes.h"
#include "bridge/sources.h"
#include "offsets/dispatcher.h"
#include "offsets/memory.h"

namespace {

constexpr uint32_t areaSize = 128;
constexpr int layerCount = 3;

struct CloudPlaces {
  Source base, tops, type;
};
constexpr CloudPlaces clouds[layerCount] = {
    {FloatAt(0x0EA4), FloatAt(0x0EA2), IntAt(0x0EA6)},
    {AuxFloatAt(0x0113), AuxFloatAt(0x0112), AuxIntAt(0x010D)},
    {FloatAt(0x0E9C), FloatAt(0x0E9A), IntAt(0x0E9E)},
};

struct WindPlaces {
  Source altitude, speed, direction, gust, turbulence, shear;
  double degreesPerUnit;  // the surface layer counts a full turn as 65536, the others as 65535
};
constexpr WindPlaces winds[layerCount] = {
    {FloatAt(0x0F70), FloatAt(0x0F72), FloatAt(0x0F74), FloatAt(0x0F78), FloatAt(0x0F76), AuxFloatAt(0x010E),
     360.0 / 65536},
    {FloatAt(0x0F64), FloatAt(0x0F68), FloatAt(0x0F6A), FloatAt(0x0F6E), FloatAt(0x0F6C), AuxFloatAt(0x010F),
     360.0 / 65535},
    {FloatAt(0x0F58), FloatAt(0x0F5C), FloatAt(0x0F5E), FloatAt(0x0F62), FloatAt(0x0F60), AuxFloatAt(0x0110),
     360.0 / 65535},
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
  SetSource(places.speed, Field<uint16_t>(layer, 2));
  SetSource(places.direction, direction >= 360 ? 0 : direction);
  SetSource(places.gust, Field<uint16_t>(layer, 6));
  SetSource(places.turbulence, std::min(layer[8] * 2.5, 10.0));
  SetSource(places.shear, shearDegrees[std::min<int>(layer[9], 3)]);
}

}  // namespace

void ApplyWeatherArea() {
  if (weatherBlockReady.exchange(0) == 0) return;
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
  SetSource(AuxFloatAt(0x003E), std::min(Field<uint16_t>(area, 0x08) * 0.25, 1.0));
  if (pressure != 0) SetSource(AuxFloatAt(0x0111), pressure / (33.86 * 16));
  if (visibility != 0) SetSource(FloatAt(0x0E8A), visibility * 18.52);
  SetSource(FloatAt(0x0EC0), Field<int16_t>(area, 0x0E));
  SetSource(FloatAt(0x04D4), Field<int16_t>(area, 0x10));
  SetSource(FloatAt(0x04CB), std::min(Field<uint16_t>(area, 0x12) * 0.25, 1.0));
  for (int n = 0; n < layerCount; ++n) {
    ApplyClouds(area + 0x20 + 8 * n, clouds[n]);
    ApplyWind(area + 0x40 + 16 * n, winds[n]);
  }
}
