// Radios, navigation, weather, situation files and requests: what clients read, and what their writes do.
// Expected numbers are worked out by hand from the units, not by the rows' own formulas.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

#include "base/log.h"
#include "bridge/catalogue/misc_actions.h"
#include "bridge/stations.h"
#include "bridge/weather_area.h"
#include "row_harness.h"
#include "test_tools.h"

namespace {

using rows::Get;
using rows::Read;
using rows::WriteAndRun;

struct RadioRows : rows::Harness {
  static void Set(const std::string& name, double value) { rows::Set(name, value); }
  static void Poke(uint32_t offset, uint16_t value) { CopyToMemory(offset, sizeof value, &value); }
};

TEST_F(RadioRows, BcdFrequencies) {
  struct Case {
    const char* dataRef;
    int tuned;
    Cycle cycle;
    uint32_t offset;
    uint16_t word;
  };
  const Case cases[] = {
      {"sim/cockpit/radios/com1_freq_hz", 12345, Cycle::C31Navigation, 0x034E, 0x2345},
      {"sim/cockpit/radios/com2_freq_hz", 11800, Cycle::C31, 0x3118, 0x1800},
      {"sim/cockpit/radios/com1_stdby_freq_hz", 13697, Cycle::C31Navigation, 0x311A, 0x3697},
      {"sim/cockpit/radios/com2_stdby_freq_hz", 10000, Cycle::C31, 0x311C, 0x0000},
      {"sim/cockpit/radios/com2_stdby_freq_hz", 9999, Cycle::C31, 0x311C, 0x0000},   // below 100 MHz
      {"sim/cockpit/radios/com2_stdby_freq_hz", 20000, Cycle::C31, 0x311C, 0x9999},  // five digits
      {"sim/cockpit/radios/nav1_freq_hz", 11030, Cycle::C31Navigation, 0x0350, 0x1030},
      {"sim/cockpit/radios/nav2_freq_hz", 11795, Cycle::C31, 0x0352, 0x1795},
      {"sim/cockpit/radios/nav1_stdby_freq_hz", 10810, Cycle::C31Navigation, 0x311E, 0x0810},
      {"sim/cockpit/radios/nav2_stdby_freq_hz", 11111, Cycle::C31, 0x3120, 0x1111},
      {"sim/cockpit/radios/adf1_freq_hz", 362, Cycle::C31Navigation, 0x034C, 0x0362},
      {"sim/cockpit/radios/adf2_freq_hz", 1030, Cycle::C31, 0x02D4, 0x1030},
      {"sim/cockpit/radios/transponder_code", 7000, Cycle::C31, 0x0354, 0x7000},
      {"sim/cockpit/radios/transponder_code", 21, Cycle::C31, 0x0354, 0x0021},
  };
  for (const Case& c : cases) {
    Set(c.dataRef, c.tuned);
    TuneStations();
    RunReaders(c.cycle);
    EXPECT_EQ(Read<uint16_t>(c.offset), c.word) << c.dataRef << " " << c.tuned;
    if (c.tuned < 10000 && c.word == 0) continue;
    if (c.tuned == 20000) continue;
    // The same word written over another tuned value brings the old one back; a bad digit changes nothing.
    Set(c.dataRef, 11000);
    WriteAndRun<uint16_t>(c.offset, 0x1A00);
    EXPECT_EQ(Get(c.dataRef), 11000) << c.dataRef;
    WriteAndRun<uint16_t>(c.offset, c.word);
    EXPECT_EQ(Get(c.dataRef), c.tuned) << c.dataRef;
  }
}

TEST_F(RadioRows, AudioPanelAndExchange) {
  const char* const selectors[8] = {"audio_selection_adf1", "audio_dme_enabled",    "audio_marker_enabled",
                                    "audio_selection_nav2", "audio_selection_nav1", nullptr,
                                    "audio_selection_com2", "audio_selection_com1"};
  const std::string folder = "sim/cockpit2/radios/actuators/";
  struct Case {
    uint8_t written, reads;
  };
  for (const Case& c :
       {Case{0x81, 0x81}, {0x20, 0xE0}, {0xC0, 0xE0}, {0x40, 0x40}, {0x1E, 0x1E}, {0xFF, 0xFF}}) {
    WriteAndRun<uint8_t>(0x3122, c.written);
    for (int bit = 0; bit < 8; ++bit) {
      if (selectors[bit] == nullptr) continue;
      EXPECT_EQ(Get(folder + selectors[bit]), c.reads >> bit & 1) << selectors[bit] << " " << +c.written;
    }
    RunReaders(Cycle::C3);
    EXPECT_EQ(Read<uint8_t>(0x3122), c.reads);
  }

  const std::string radio = "sim/cockpit/radios/";
  const char* const names[4] = {"nav2", "nav1", "com2", "com1"};  // bits 0 to 3
  for (int request = 1; request < 16; ++request) {
    for (int n = 0; n < 4; ++n) {
      Set(radio + names[n] + "_freq_hz", 11000 + n);
      Set(radio + names[n] + "_stdby_freq_hz", 12000 + n);
    }
    WriteAndRun<uint8_t>(0x3123, static_cast<uint8_t>(request));
    EXPECT_EQ(Read<uint8_t>(0x3123), 0) << "ready for the next request";
    for (int n = 0; n < 4; ++n) {
      const int swapped = request >> n & 1;
      EXPECT_EQ(Get(radio + names[n] + "_freq_hz"), (swapped ? 12000 : 11000) + n) << names[n];
      EXPECT_EQ(Get(radio + names[n] + "_stdby_freq_hz"), (swapped ? 11000 : 12000) + n) << names[n];
    }
  }
}

TEST_F(RadioRows, DmeNumberAndTextAgree) {
  struct Case {
    double miles;
    uint16_t tenths;
    const char* text;
  };
  const Case cases[] = {{0, 0, "00.0"},         {0.09, 0, "00.0"},     {5.25, 52, "05.2"},
                        {12.3125, 123, "12.3"}, {99.96, 999, "99.9"},  {100, 1000, "100."},
                        {123.96, 1239, "123."}, {999.9, 9999, "999."}, {1200, 12000, "999."},
                        {-1, 0, "00.0"}};
  for (const Case& c : cases) {
    for (int n = 0; n < 2; ++n) {
      Set(n == 0 ? "sim/cockpit/radios/nav1_dme_dist_m" : "sim/cockpit/radios/nav2_dme_dist_m", c.miles);
      Poke(n == 0 ? 0x0C2D : 0x0C37, 'X');
      RunReaders(Cycle::C13);
      EXPECT_EQ(Read<uint16_t>(n == 0 ? 0x0300 : 0x0306), c.tenths) << c.miles;
      EXPECT_EQ(rows::ReadString(n == 0 ? 0x0C29 : 0x0C33, 5), c.text) << c.miles;
    }
  }
}

struct Stations : RadioRows {
  void SetUp() override {
    RadioRows::SetUp();
    ForgetStations();
    sim::SimCommand("navaid clear");
    Place(45, 90);
  }
  void Place(double lat, double lon) {
    Set("sim/flightmodel/position/latitude", lat);
    Set("sim/flightmodel/position/longitude", lon);
  }
  // Tunes NAV1 (n 0) or NAV2 and runs the cycle that shows it.
  void Tune(int n, int type, const char* ident, int frequency) {
    const std::string radio = n == 0 ? "nav1" : "nav2";
    Set("sim/cockpit/radios/nav_type[" + std::to_string(n) + "]", type);
    sim::SimCommand("set sim/cockpit2/radios/indicators/" + radio + "_nav_id \"" + ident + "\"");
    Set("sim/cockpit/radios/" + radio + "_freq_hz", frequency);
    Refresh();
  }
  void Refresh() {
    TuneStations();
    RunReaders(Cycle::C31Navigation);
    RunReaders(Cycle::C31);
  }
};

// 45 degrees are half a quarter of the meridian, 90 degrees of longitude a quarter of 2^32.
constexpr int32_t lat45 = 5000875, lon90 = 1 << 30;

TEST_F(Stations, RecordsOfTheTunedStation) {
  sim::SimCommand("navaid vor ABC 11380 45 90 123.75 2 \"A station with a very long name\"");
  sim::SimCommand("navaid ils IXX 10950 -22.5 -90 50 70 \"FIELD 07 ILS\"");
  sim::SimCommand("navaid gs IXX 10950 -45 -45 61.5 300070 \"FIELD 07 GS\"");
  sim::SimCommand("navaid loc ILL 11090 22.5 45 -3.5 250 \"FIELD 25 LOC\"");
  struct Case {
    int type;
    const char* ident;
    int frequency;
    int32_t lat, lon, height;           // station or glide slope
    int32_t locLat, locLon, locHeight;  // localizer
    uint16_t reciprocal;
    uint8_t localizerBits, codeBits;
    const char* name;
  };
  const Case cases[] = {
      {3, "ABC", 11380, lat45, lon90, 123, 0, 0, 0, 0, 0x80, 0x00, "A station with a very lo"},
      // 250 degrees of 360 are 45511.1 of 65536, 70 degrees 12743.1.
      {4, "IXX", 10950, -lat45, -(1 << 29), 61, -2500437, -lon90, 50, 45511, 0x82, 0xC0, "FIELD 07 ILS"},
      {5, "ILL", 11090, 2500437, 1 << 29, -3, 2500437, 1 << 29, -3, 12743, 0x82, 0x80, "FIELD 25 LOC"},
      {5, "ILL", 11095, 0, 0, 0, 0, 0, 0, 0, 0x82, 0x80, ""},  // received, but not in the database
      {0, "ABC", 11380, 0, 0, 0, 0, 0, 0, 0, 0x00, 0x08, ""},
      {3, "", 11380, 0, 0, 0, 0, 0, 0, 0, 0x80, 0x00, ""},
  };
  struct Places {
    uint32_t lat, lon, height, locLat, locLon, locHeight, reciprocal, localizerBits, codeBits, ident, name;
  };
  const Places places[2] = {
      {0x085C, 0x0864, 0x086C, 0x0874, 0x0878, 0x087C, 0x0870, 0x0C4A, 0x0C4D, 0x3000, 0x3006},
      {0x0858, 0x0860, 0x0868, 0x084C, 0x0850, 0x0854, 0x0844, 0x0C5A, 0x0C70, 0x301F, 0x3025}};
  Set("sim/cockpit/radios/nav1_has_dme", 0);
  Set("sim/cockpit/radios/nav2_has_dme", 0);
  for (const Case& c : cases) {
    for (int n = 0; n < 2; ++n) {
      SCOPED_TRACE(std::string(c.ident) + " on NAV" + std::to_string(n + 1));
      const Places& at = places[n];
      Tune(n, c.type, c.ident, c.frequency);
      rows::ExpectShown({{at.lat, rows::S32, double(c.lat)},
                         {at.lon, rows::S32, double(c.lon)},
                         {at.height, rows::S32, double(c.height)},
                         {at.locLat, rows::S32, double(c.locLat)},
                         {at.locLon, rows::S32, double(c.locLon)},
                         {at.locHeight, rows::S32, double(c.locHeight)},
                         {at.reciprocal, rows::U16, double(c.reciprocal)},
                         {at.localizerBits, rows::U8, double(c.localizerBits)},
                         {at.codeBits, rows::U8, double(c.codeBits)}});
      EXPECT_EQ(rows::ReadString(at.ident, 6), c.ident);
      EXPECT_EQ(rows::ReadString(at.name, 25), c.name);
    }
  }
}

TEST_F(Stations, SearchedOnlyWhenSomethingChanged) {
  sim::SimCommand("navaid vor DUP 11380 45 90 100 0 \"NEAR\"");
  sim::SimCommand("navaid vor DUP 11380 50 90 200 0 \"FAR\"");
  Tune(0, 3, "DUP", 11380);
  EXPECT_EQ(Read<int32_t>(0x086C), 100) << "the nearest of two equal identifiers";

  sim::SimCommand("navaid clear");
  sim::SimCommand("navaid vor DUP 11380 45 90 300 0 \"OTHER\"");
  Refresh();
  EXPECT_EQ(Read<int32_t>(0x086C), 100) << "nothing changed: no search";
  Place(45.4, 90.4);
  Refresh();
  EXPECT_EQ(Read<int32_t>(0x086C), 100) << "moved less than half a degree";
  Place(45, 90.6);
  Refresh();
  EXPECT_EQ(Read<int32_t>(0x086C), 300) << "moved more than half a degree";

  Place(0, 179.9);
  Refresh();
  sim::SimCommand("navaid clear");
  Place(0, -179.9);
  Refresh();
  EXPECT_EQ(Read<int32_t>(0x086C), 300) << "across the antimeridian it is a short way";

  Tune(0, 3, "NEW", 11380);
  EXPECT_EQ(Read<int32_t>(0x086C), 0);
  sim::SimCommand("navaid vor NEW 11380 1 1 400 0 \"NEW\"");
  Refresh();
  EXPECT_EQ(Read<int32_t>(0x086C), 400) << "a station that was not found is searched for again";
}

TEST_F(RadioRows, BearingsAndNeedles) {
  struct Case {
    double heading, bearing, west;
    uint16_t radial;    // 65536 a turn
    uint16_t relative;  // degrees
  };
  // heading + bearing + west variation is the magnetic bearing to the station; the radial is opposite.
  const Case cases[] = {{90, 30, 10, 56433, 40}, {0, 180, 0, 0, 180},       {350, -20, -5, 26396, 335},
                        {0, 0, 0, 32768, 0},     {359, 0.5, 0.5, 32768, 1}, {180, 359.75, 0.25, 0, 0}};
  for (const Case& c : cases) {
    rows::SetAll({{"sim/flightmodel/position/psi", c.heading},
                  {"sim/flightmodel/position/magnetic_variation", c.west},
                  {"sim/cockpit/radios/nav1_dir_degt", c.bearing},
                  {"sim/cockpit/radios/nav2_dir_degt", c.bearing}});
    RunReaders(Cycle::C3);
    const double radial = c.radial, relative = c.relative;
    rows::ExpectShown({{0x0C50, rows::U16, radial}, {0x0C60, rows::U16, radial}});
    rows::ExpectShown({{0x0C56, rows::U16, relative}, {0x0C5C, rows::U16, relative}});
  }
  // Saturates, does not wrap to the other side.
  rows::CheckReads("sim/cockpit/radios/nav1_hdef_dot", Cycle::C1, {{0x0C48, rows::S8, 2.5, 127}});
  rows::CheckReads("sim/cockpit/radios/nav2_vdef_dot", Cycle::C1, {{0x0C6E, rows::S8, -3, -128}});
}

TEST_F(RadioRows, Wind) {
  Set("sim/flightmodel/position/magnetic_variation", 20);  // 20 west: magnetic is 20 more than true
  struct Case {
    const char* dataRef;
    double value;
    Cycle cycle;
    uint32_t offset;
    uint16_t word;
    uint32_t copy;
  };
  const Case cases[] = {
      {"sim/weather/wind_direction_degt[0]", 350, Cycle::C59, 0x0F74, 1820, 0x04DA},  // 10 degrees magnetic
      {"sim/weather/wind_direction_degt[0]", 340, Cycle::C59, 0x0F74, 0, 0x0EF2},
      {"sim/weather/wind_direction_degt[1]", 270, Cycle::C157, 0x0F6A, 49152, 0x0EE8},
      {"sim/weather/wind_direction_degt[2]", 360, Cycle::C157, 0x0F5E, 0, 0x0EDC},
      {"sim/weather/wind_speed_kt[0]", 12.75, Cycle::C13, 0x0F72, 12, 0x04D8},
      {"sim/weather/wind_speed_kt[2]", 99, Cycle::C157, 0x0F5C, 99, 0x0EDA},
      {"sim/weather/wind_altitude_msl_m[0]", 1000, Cycle::C157, 0x0F70, 1000, 0x0EEE},
      {"sim/weather/wind_altitude_msl_m[1]", 3001, Cycle::C157, 0x0F64, 4501, 0x0EE2},
      {"sim/weather/wind_altitude_msl_m[1]", 3001, Cycle::C157, 0x0F66, 1500, 0x0EE4},
      {"sim/weather/wind_altitude_msl_m[2]", 60000, Cycle::C157, 0x0F58, 65535, 0x0ED6},
      {"sim/weather/turbulence[1]", 9, Cycle::C157, 0x0F6C, 255, 0x0EEA},
      {"sim/weather/turbulence[0]", 10, Cycle::C157, 0x0F76, 283, 0x0EF4},
      {"sim/weather/shear_speed_kt[2]", 15, Cycle::C157, 0x0F62, 15, 0x0EE0},
  };
  for (const Case& c : cases) {
    Set(c.dataRef, c.value);
    RunReaders(c.cycle);
    EXPECT_EQ(Read<uint16_t>(c.offset), c.word) << c.dataRef;
    EXPECT_EQ(Read<uint16_t>(c.copy), c.word) << c.dataRef;
  }

  // 10.003 degrees magnetic are 350.003 true.
  rows::CheckWrites("sim/weather/wind_direction_degt[0]", {{0x0F74, rows::U16, 1821, 350.003, 0.001}});
  rows::CheckWrites("sim/weather/wind_direction_degt[1]", {{0x0F6A, rows::U16, 16384, 90}});
  rows::CheckWrites("sim/weather/turbulence[2]", {{0x0F60, rows::U16, 255, 9, 1e-6}});

  Set("sim/weather/wind_direction_degt", 350);
  Set("sim/weather/wind_altitude_msl_m[0]", 1000);
  for (const auto& [height, word] : {std::pair{999.0, 1820}, {1000.0, 63715}}) {  // 10 magnetic, 350 true
    Set("sim/flightmodel/position/elevation", height);
    RunReaders(Cycle::C1);
    EXPECT_EQ(Read<uint16_t>(0x0E92), word) << height;
  }
}

TEST_F(RadioRows, CloudsAndPrecipitation) {
  for (const auto& [offset, layer] : {std::pair{0x0EA6U, 0}, {0x6F13U, 1}, {0x0E9EU, 2}}) {
    const std::string type = "sim/weather/cloud_type[" + std::to_string(layer) + "]";
    rows::CheckWrites(type, {{offset, rows::U16, 0xFFFF, 5}, {offset, rows::U16, 3, 3}});
  }
  EXPECT_EQ(Get("sim/weather/cloud_coverage[1]"), 3);
  rows::CheckWrites("sim/weather/cloud_base_msl_m[1]", {{0x6F11, rows::U16, 2500, 2500}});
  rows::CheckWrites("sim/weather/visibility_reported_m",
                    {{0x0E8A, rows::U16, 1000, 16093.44, 0.01}});  // ten miles
  RunReaders(Cycle::C59);
  EXPECT_EQ(Read<uint16_t>(0x0E8A), 1000);

  struct Case {
    uint16_t written;
    double before, after;  // sea-level temperature
    int rate, kind;        // as they read back
    int cloud;
  };
  const Case cases[] = {{0x0103, 20, 20, 3, 1, 4}, {0x0105, -4, 1, 5, 1, 4},  {0x0101, 0, 1, 1, 1, 4},
                        {0x0202, 15, -1, 2, 2, 4}, {0x0204, -9, -9, 4, 2, 4}, {0x01FF, 9, 9, 5, 1, 4},
                        {0x0004, 9, 9, 0, 1, 0},   {0x0200, 9, 9, 0, 1, 0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.written);
    rows::SetAll({{"sim/weather/cloud_type[0]", 0},
                  {"sim/weather/rain_percent", 0.5},
                  {"sim/weather/temperature_sealevel_c", c.before}});
    WriteAndRun<uint16_t>(0x04D2, c.written);
    RunReaders(Cycle::C313);
    rows::ExpectShown({{0x04CB, rows::U8, double(c.rate)}, {0x04CC, rows::U8, double(c.kind)}});
    rows::ExpectAll(
        {{"sim/weather/temperature_sealevel_c", c.after}, {"sim/weather/cloud_type[0]", double(c.cloud)}});
  }
}

TEST_F(RadioRows, AltimeterAndPressure) {
  // 29.92 inches are 1013.2079 millibar or 16211.3 sixteenths; every hundredth comes back as written.
  WriteAndRun<uint16_t>(0x0330, 16211);
  EXPECT_NEAR(Get("sim/cockpit/misc/barometer_setting"), 29.92, 1e-5);
  for (int hundredths = 2800; hundredths <= 3100; ++hundredths) {
    Set("sim/cockpit/misc/barometer_setting", hundredths / 100.0);
    RunReaders(Cycle::C13);
    const uint16_t word = Read<uint16_t>(0x0330);
    Set("sim/cockpit/misc/barometer_setting", 1);
    Poke(0x0330, 0);
    WriteAndRun<uint16_t>(0x0330, word);
    EXPECT_NEAR(Get("sim/cockpit/misc/barometer_setting"), hundredths / 100.0, 1e-5);
  }
  // 1000 millibar at 0.02953 inches.
  rows::CheckWrites("sim/weather/barometer_sealevel_inhg", {{0x0F48, rows::U16, 16000, 29.53, 1e-4}});
  rows::CheckReads("sim/weather/dewpoi_sealevel_c", Cycle::C313, {{0x04C8, rows::S16, -12.5, -3200}});
}

struct WeatherArea : RadioRows {
  uint8_t area[128] = {};
  void Put16(uint32_t at, int value) {
    area[at] = static_cast<uint8_t>(value);
    area[at + 1] = static_cast<uint8_t>(value >> 8);
  }
  void Send() {
    rows::WriteBytes(0xC800, area, sizeof area);
    FinishRequest(std::exchange(rows::marks, {}));
    ApplyWeatherArea();
  }
  void Fill(int selector, const char* station) {
    Put16(0, selector);
    std::memcpy(area + 4, station, 4);
    const int fields[] = {2, 541 * 30, 540, -7, -10, 3};  // from 0x08
    for (int n = 0; n < 6; ++n) Put16(8 + 2U * static_cast<uint32_t>(n), fields[n]);
    for (uint32_t k = 0; k < 3; ++k) {
      const int layer = static_cast<int>(k);
      Put16(0x20 + 8 * k, 1000 * layer + 500);
      Put16(0x22 + 8 * k, 1000 * layer + 900);
      Put16(0x24 + 8 * k, layer + 3);
      Put16(0x40 + 16 * k, 2000 * layer + 1000);
      Put16(0x42 + 16 * k, 10 + layer);
      Put16(0x44 + 16 * k, layer == 2 ? 65535 : 16384);
      Put16(0x46 + 16 * k, 20 + layer);
      area[0x48 + 16 * k] = static_cast<uint8_t>(layer * 3);
      area[0x49 + 16 * k] = static_cast<uint8_t>(layer * 2 + 1);
    }
  }
};

TEST_F(WeatherArea, AppliedAfterTheWholeRequest) {
  Fill(1, "GLOB");
  rows::WriteBytes(0xC800, area, sizeof area);
  Set("sim/weather/rain_percent", 0);
  ApplyWeatherArea();
  EXPECT_EQ(Get("sim/weather/rain_percent"), 0) << "the request has not ended";
  FinishRequest(std::exchange(rows::marks, {}));
  ApplyWeatherArea();

  const std::string weather = "sim/weather/";
  rows::ExpectAll({{weather + "rate_change_percent", 0.5},
                   {weather + "barometer_sealevel_inhg", 29.9579, 1e-3},
                   {weather + "visibility_reported_m", 10000.8, 1e-3},
                   {weather + "temperature_sealevel_c", -7},
                   {weather + "dewpoi_sealevel_c", -10},
                   {weather + "rain_percent", 0.75}});
  const struct {
    const char* dataref;
    double layers[3];
  } cases[] = {{"cloud_base_msl_m", {500, 1500, 2500}},
               {"cloud_tops_msl_m", {900, 1900, 2900}},
               {"cloud_type", {3, 4, 5}},
               {"wind_altitude_msl_m", {1000, 3000, 5000}},
               {"wind_speed_kt", {10, 11, 12}},
               {"shear_speed_kt", {20, 21, 22}},
               {"wind_direction_degt", {90, 90.0014, 0}},
               {"turbulence", {0, 7.5, 10}},
               {"shear_direction_degt", {45, 180, 180}}};
  for (const auto& test : cases) {
    for (int layer = 0; layer < 3; ++layer) {
      const std::string name = weather + test.dataref + "[" + std::to_string(layer) + "]";
      EXPECT_NEAR(Get(name), test.layers[layer], 1e-4) << name;
    }
  }
  EXPECT_EQ(Read<uint16_t>(0xC800), 0) << "taken";
}

// Two server threads: the end of the one's request is not the end of the other's.
TEST_F(WeatherArea, WaitsForTheRequestThatWroteIt) {
  Fill(1, "GLOB");
  Set("sim/weather/rain_percent", 0);
  RequestMarks slow = {};
  RequestMarks other = {};
  const auto write = [](uint32_t offset, const uint8_t* bytes, uint32_t size, RequestMarks* marks) {
    const LockScope lock(&offsetLock);
    DispatchWrite(offset, size, bytes, marks);
    std::memcpy(offsetMemory.bytes + offset, bytes, size);
  };
  write(0xC800, area, 2, &slow);  // the selector; the area itself has not come yet
  write(0x66C0, area, 1, &other);
  FinishRequest(other);
  ApplyWeatherArea();
  EXPECT_EQ(Read<uint16_t>(0xC800), 1) << "taken before its request has ended";
  write(0xC802, area + 2, sizeof area - 2, &slow);
  FinishRequest(slow);
  ApplyWeatherArea();
  EXPECT_EQ(Read<uint16_t>(0xC800), 0);
  EXPECT_EQ(Get("sim/weather/rain_percent"), 0.75);
}

TEST_F(WeatherArea, LeftAlone) {
  struct Case {
    int selector;
    const char* station;
    int left;  // of the selector
  };
  for (const Case& c : {Case{0, "GLOB", 0}, {5, "GLOB", 5}, {2, "EDDF", 0}, {2, "glob", 0}}) {
    Fill(c.selector, c.station);
    Set("sim/weather/temperature_sealevel_c", 15);
    Send();
    EXPECT_EQ(Get("sim/weather/temperature_sealevel_c"), 15) << c.selector << c.station;
    EXPECT_EQ(Read<uint16_t>(0xC800), c.left);
  }
  Fill(4, "GLOB");
  Put16(0x0A, 0);
  Put16(0x0C, 0);
  rows::SetAll({{"sim/weather/barometer_sealevel_inhg", 29.5}, {"sim/weather/visibility_reported_m", 5000}});
  Send();  // neither of these two
  rows::ExpectAll({{"sim/weather/barometer_sealevel_inhg", 29.5},
                   {"sim/weather/visibility_reported_m", 5000},
                   {"sim/weather/temperature_sealevel_c", -7}});
}

TEST_F(RadioRows, SituationFiles) {
  struct Case {
    const char* name;
    uint16_t command;
    const char* calls;
  };
  const Case cases[] = {
      {"Output/situations/a long name.sit", 0, "load 1 Output/situations/a long name.sit"},
      {"b.sit", 1, "save 1 b.sit"},  // shorter: nothing of the longer name may be left
      {"b.sit", 7, "save 1 b.sit"},
      {"c.smo", 0, "load 2 c.smo"},
      {"c.smo", 2, "save 2 c.smo"},
      {"d.txt", 0, ""},
      {"", 0, ""},
  };
  for (const Case& c : cases) {
    rows::WriteBytes(0x3F04, c.name, static_cast<uint32_t>(std::strlen(c.name)));
    RunWriters();
    WriteAndRun<uint16_t>(0x3F00, c.command);
    EXPECT_EQ(rows::Calls(), c.calls) << c.name;
  }
  // Name and command of one request: the name is taken first.
  rows::WriteBytes(0x3F04, "e.sit", 6);
  WriteAndRun<uint16_t>(0x3F00, 0);
  EXPECT_EQ(rows::Calls(), "load 1 e.sit");
  const std::string longest = std::string(247, 'x') + ".sit";
  rows::WriteBytes(0x3F04, (longest + "x").c_str(), 252);  // the last byte is the terminator's
  WriteAndRun<uint16_t>(0x3F00, 0);
  EXPECT_EQ(rows::Calls(), "load 1 " + longest);
}

// Names that could reach a file elsewhere, or another kind of file.
TEST_F(RadioRows, SituationFilesStayBelowTheSimulatorsFolder) {
  const std::string folder = testing::TempDir() + "tavrix_situations/";
  ASSERT_TRUE(OpenLogs(folder.c_str(), nullptr));
  const char* const taken[] = {"Output/situations/one.sit", "Output\\situations\\two.sit", ".smo", "a.b.sit",
                               "caf\xC3\xA9.sit"};
  const char* const refused[] = {"/etc/x.sit",
                                 "\\Windows\\x.sit",
                                 "\\\\host\\share\\x.sit",
                                 "C:\\x.sit",
                                 "C:x.sit",
                                 "x.sit:stream.sit",
                                 "../x.sit",
                                 "Output/../../x.sit",
                                 "Output\\..\\x.smo",
                                 "..sit",
                                 "x.SIT",
                                 "x.sit ",
                                 "x.sit.",
                                 "x.sit.txt",
                                 "x.smo/y",
                                 "x\n.sit",
                                 "x\x1B[2J.smo",
                                 "x\x7F.sit",
                                 ""};
  const auto check = [](const std::string& name, bool isTaken) {
    for (const uint16_t command : {uint16_t{0}, uint16_t{1}}) {
      rows::WriteBytes(0x3F04, name.c_str(), static_cast<uint32_t>(name.size() + 1));
      WriteAndRun<uint16_t>(0x3F00, command);
      EXPECT_EQ(!rows::Calls().empty(), isTaken) << EscapedForLog(name) << ' ' << command;
    }
  };
  for (const char* name : taken) check(name, true);
  for (const char* name : refused) check(name, false);
  const auto log = [&] { return tools::ReadFile(folder + "TAVRIX.txt"); };
  // Dozens of refusals within moments: one line at most (another one where this took longer than a second).
  const std::string lines = log();
  EXPECT_LE(std::count(lines.begin(), lines.end(), '\n'), 3) << lines;
  rows::WriteBytes(0x3F04, "x\n.sit", 7);
  EXPECT_TRUE(tools::WaitUntil([&] {
    WriteAndRun<uint16_t>(0x3F00, 0);
    return log().find("TAVRIX->Situation file \"x\\n.sit\" of a client is refused: ") != std::string::npos;
  })) << log();
  CloseLogs();
  std::filesystem::remove_all(folder);
}

TEST_F(RadioRows, ContactAtcIsHeldInPairs) {
  const std::string begin = "begin sim/operation/contact_atc", end = "end sim/operation/contact_atc";
  for (const auto& [value, calls] :
       {std::pair<uint8_t, std::string>{1, begin}, {2, ""}, {0, end}, {0, ""}, {255, begin}}) {
    WriteAndRun<uint8_t>(0x6F16, value);
    EXPECT_EQ(rows::Calls(), calls) << +value;
  }
  ReleaseContactAtc();
  EXPECT_EQ(rows::Calls(), end);
  ReleaseContactAtc();
  WriteAndRun<uint8_t>(0x6F16, 0);
  EXPECT_EQ(rows::Calls(), "") << "nothing is held any longer";
}

TEST_F(RadioRows, RequestByteReturnsToZero) {
  Poke(0x6F0D, 1);
  RunReaders(Cycle::C1);
  EXPECT_EQ(Read<uint8_t>(0x6F0D), 0);
}

}  // namespace
