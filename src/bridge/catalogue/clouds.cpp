// Visibility, precipitation, clouds. Three cloud layers: 0 low, 1 middle, 2 high.
#include <algorithm>
#include <array>

#include "bridge/catalogue.h"

namespace {

constexpr Choice cloudKinds[] = {{0, "clear"},  {1, "cirrus"},   {2, "scattered"},
                                 {3, "broken"}, {4, "overcast"}, {5, "stratus"}};
constexpr Choice precipitationKinds[] = {{1, "rain"}, {2, "snow"}};
constexpr Choice precipitationFields[] = {{0, "rate", 8}, {8, "kind", 8}};

constexpr double metresPerMile = 1609.344;
constexpr int cloudTypes = 5;  // clear, cirrus, scattered, broken, overcast, stratus

constexpr Source rain = Fitting<"sim/weather/rain_percent">;
constexpr Source seaLevelTemperature = Fitting<"sim/weather/temperature_sealevel_c">;

// --- Precipitation -------------------------------------------------------------------------------------
double RateOfRain(double share) {
  constexpr double thresholds[] = {0.16, 0.33, 0.5, 0.67, 0.84};
  int rate = 0;
  for (double threshold : thresholds) rate += share > threshold;
  return rate;
}
double KindOfPrecipitation(double seaLevelCelsius) { return seaLevelCelsius > 0 ? 1 : 2; }

// Low byte rate 0-5, high byte kind. The kind is not a dataref: what falls follows from the temperature,
// which is moved across the freezing point where needed, and no rain falls from a clear sky.
void ApplyPrecipitation(const OffsetRow&, const Staged& staged) {
  constexpr int rainKind = 1, snowKind = 2;
  constexpr double perRate = 0.17;  // just above the threshold at which the same rate reads back
  constexpr double overcast = 4;
  const int rate = std::min(static_cast<int>(staged.integer & 0xFF), 5);
  const int kind = static_cast<int>(staged.integer >> 8);
  SetSource(rain, kind == 0 ? 0 : rate * perRate);
  if (rate == 0 || kind == 0) return;
  SetSource(Int<"sim/weather/cloud_type[0]">, overcast);
  const double present = ReadSource(seaLevelTemperature);
  if (kind == rainKind && present <= 0) SetSource(seaLevelTemperature, 1);
  if (kind == snowKind && present > 0) SetSource(seaLevelTemperature, -1);
}

// --- Layers --------------------------------------------------------------------------------------------
// The middle layer has a coverage beside its type; both take the same number.
void ApplyMiddleType(const OffsetRow& row, const Staged& staged) {
  const double type = std::min(staged.number, static_cast<double>(cloudTypes));
  SetSource(row.source, type);
  SetSource(Float<"sim/weather/cloud_coverage[1]">, type);
}

struct Layer {
  uint32_t baseAt, topsAt, typeAt;  // offsets
  Source base, tops, type;
  const char *baseMeaning, *topsMeaning, *typeMeaning;
  ApplyWrite applyType = nullptr;  // instead of setting the type alone
};
constexpr Layer layers[3] = {
    {.baseAt = 0x0EA4,
     .topsAt = 0x0EA2,
     .typeAt = 0x0EA6,
     .base = Fitting<"sim/weather/cloud_base_msl_m[0]">,
     .tops = Fitting<"sim/weather/cloud_tops_msl_m[0]">,
     .type = Int<"sim/weather/cloud_type[0]">,
     .baseMeaning = "low cloud base",
     .topsMeaning = "low cloud tops",
     .typeMeaning = "low cloud type"},
    {.baseAt = 0x6F11,
     .topsAt = 0x6F0F,
     .typeAt = 0x6F13,
     .base = Fitting<"sim/weather/cloud_base_msl_m[1]">,
     .tops = Fitting<"sim/weather/cloud_tops_msl_m[1]">,
     .type = Int<"sim/weather/cloud_type[1]">,
     .baseMeaning = "middle cloud base",
     .topsMeaning = "middle cloud tops",
     .typeMeaning = "middle cloud type",
     .applyType = ApplyMiddleType},
    {.baseAt = 0x0E9C,
     .topsAt = 0x0E9A,
     .typeAt = 0x0E9E,
     .base = Fitting<"sim/weather/cloud_base_msl_m[2]">,
     .tops = Fitting<"sim/weather/cloud_tops_msl_m[2]">,
     .type = Int<"sim/weather/cloud_type[2]">,
     .baseMeaning = "high cloud base",
     .topsMeaning = "high cloud tops",
     .typeMeaning = "high cloud type"},
};

constexpr std::array<OffsetRow, 3> LayerRows(int index) {
  const Layer& layer = layers[index];
  const int member = index + 1;
  const WriteRule setType = {.target = layer.type, .high = cloudTypes};
  return {{
      {.offset = layer.baseAt,
       .type = Stored::U16,
       .name = "cloud_base",
       .member = member,
       .meaning = layer.baseMeaning,
       .reference = "mean sea level",
       .unit = "m",
       .cycle = Cycle::C59,
       .source = layer.base,
       .write = {.target = layer.base}},
      {.offset = layer.topsAt,
       .type = Stored::U16,
       .name = "cloud_tops",
       .member = member,
       .meaning = layer.topsMeaning,
       .reference = "mean sea level",
       .unit = "m",
       .cycle = Cycle::C59,
       .source = layer.tops,
       .write = {.target = layer.tops}},
      {.offset = layer.typeAt,
       .type = Stored::U16,
       .name = "cloud_type",
       .member = member,
       .meaning = layer.typeMeaning,
       .choices = cloudKinds,
       .cycle = Cycle::C59,
       .source = layer.type,
       .write = layer.applyType != nullptr ? WriteRule{.apply = layer.applyType} : setType,
       .lossy = "above 5 counts as 5",
       .elsewhere = layer.applyType != nullptr ? "before 10.25 a write sets no coverage" : ""},
  }};
}

constexpr OffsetRow otherRows[] = {
    {.offset = 0x04CB,
     .type = Stored::U8,
     .name = "precipitation_rate",
     .meaning = "precipitation rate, 0 to 5",
     .cycle = Cycle::C313,
     .source = rain,
     .convert = RateOfRain,
     .limits = {0, 5}},
    {.offset = 0x04CC,
     .type = Stored::U8,
     .name = "precipitation_kind",
     .meaning = "precipitation kind",
     .choices = precipitationKinds,
     .cycle = Cycle::C313,
     .source = seaLevelTemperature,
     .convert = KindOfPrecipitation,
     .note = "tells what would fall; look at the rate first"},
    {.offset = 0x04D2,
     .type = Stored::U16,
     .name = "precipitation_set",
     .meaning = "precipitation control",
     .choices = precipitationFields,
     .show = Show::Bits,
     .write = {.apply = ApplyPrecipitation},
     .note = "rate 0 to 5; kind as precipitation_kind, 0 none"},

    {.offset = 0x0E8A,
     .type = Stored::U16,
     .name = "visibility",
     .meaning = "visibility",
     .unit = "mi",
     .unitScale = 0.01,
     .cycle = Cycle::C59,
     .source = Float<"sim/weather/visibility_reported_m">,
     .factor = 100 / metresPerMile,
     .write = {.target = Float<"sim/weather/visibility_reported_m">, .factor = metresPerMile / 100}},
    {.offset = 0x6DAF,
     .type = Stored::U8,
     .name = "thunderstorm",
     .meaning = "thunderstorms",
     .unit = "%",
     .cycle = Cycle::C59,
     .source = Fitting<"sim/weather/thunderstorm_percent">,
     .factor = 100,
     .write = {.target = Fitting<"sim/weather/thunderstorm_percent">, .factor = 0.01}},
    {.offset = 0x6F15,
     .type = Stored::U8,
     .name = "real_weather",
     .meaning = "real weather in use",
     .show = Show::Flag,
     .cycle = Cycle::C59,
     .source = Int<"sim/weather/use_real_weather_bool">,
     .write = {.target = Int<"sim/weather/use_real_weather_bool">},
     .elsewhere = "from 12.00 on the simulator does not let it be set"},
};

constexpr auto rows = [] {
  std::array<OffsetRow, std::size(otherRows) + 9> all = {};
  auto end = std::copy(std::begin(otherRows), std::end(otherRows), all.begin());
  for (int layer = 0; layer < 3; ++layer) {
    const auto layerRows = LayerRows(layer);
    end = std::copy(layerRows.begin(), layerRows.end(), end);
  }
  return all;
}();

}  // namespace

const RowTable cloudRows = {"Visibility, precipitation, clouds", rows};
