// The air at a height: wind between three layers, standard lapse rates around the sea-level values.
#include <algorithm>
#include <cmath>

#include "world/distance.h"
#include "world/refs.h"
#include "world/world.h"

namespace sim {

namespace {

// What a wind speed's unit is in metres per second.
double WindUnit() { return age >= metricWindFrom ? 1 : ktToMs; }

// Wind of one layer as a vector towards which it blows, m/s.
void LayerWind(int layer, double* east, double* north) {
  double speed = Number(refs.windSpeed[layer]) * WindUnit();
  double from = Number(refs.windDirection[layer]) * degToRad;
  *east = -speed * std::sin(from);
  *north = -speed * std::cos(from);
}

void WindAt(double altitude, double* east, double* north) {
  // Layers in whatever order a client has set them: the nearest below and above.
  int below = -1, above = -1;
  for (int i = 0; i < 3; i++) {
    double height = Number(refs.windAltitude[i]);
    if (height <= altitude && (below < 0 || height > Number(refs.windAltitude[below]))) below = i;
    if (height > altitude && (above < 0 || height < Number(refs.windAltitude[above]))) above = i;
  }
  if (below < 0 && above < 0) {  // no layer has a height that is a number: calm
    *east = *north = 0;
    return;
  }
  if (below < 0 || above < 0) {
    LayerWind(below < 0 ? above : below, east, north);
    return;
  }
  double low = Number(refs.windAltitude[below]);
  double share = (altitude - low) / (Number(refs.windAltitude[above]) - low);
  double east2, north2;
  LayerWind(below, east, north);
  LayerWind(above, &east2, &north2);
  *east += share * (east2 - *east);
  *north += share * (north2 - *north);
}

// A client may set any number, not-a-number included; the flight model must survive it.
double Within(double value, double low, double high, double otherwise) {
  return std::isfinite(value) ? std::clamp(value, low, high) : otherwise;
}

}  // namespace

Air AirAt(double altitude) {
  Air air;
  WindAt(altitude, &air.windEast, &air.windNorth);
  if (!std::isfinite(air.windEast) || !std::isfinite(air.windNorth)) air.windEast = air.windNorth = 0;
  double height = std::clamp(altitude, -500.0, 20000.0);
  air.temperature = Within(Number(refs.temperatureSea), -60, 60, 15) - 0.0065 * std::min(height, 11000.0);
  double kelvin = air.temperature + 273.15;
  double ratio = height < 11000 ? std::pow(1 - 2.25577e-5 * height, 5.25588)
                                : 0.22336 * std::exp(-(height - 11000) / 6341.6);
  air.pressureInHg = Within(Number(refs.barometerSea), 20, 35, 29.92) * ratio;
  air.rho = air.pressureInHg * 3386.389 / (287.05 * kelvin);
  air.sound = std::sqrt(1.4 * 287.05 * kelvin);
  F(refs.temperatureHere) = static_cast<float>(air.temperature);
  F(refs.rho) = static_cast<float>(air.rho);
  F(refs.sigma) = static_cast<float>(air.rho / 1.225);
  F(refs.soundSpeed) = static_cast<float>(air.sound);
  double from = std::atan2(-air.windEast, -air.windNorth) * radToDeg;
  F(refs.windHere) = static_cast<float>(Distance(air.windEast, air.windNorth) / WindUnit());
  F(refs.windFromHere) = static_cast<float>(from < 0 ? from + 360 : from);
  return air;
}

}  // namespace sim
