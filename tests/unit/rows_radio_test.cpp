// Radios, navigation, weather, situation files and requests: what clients read, and what their writes do.
// Expected numbers are worked out by hand from the units, not by the rows' own formulas.
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <sstream>
#include <tuple>
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

using enum Cycle;

struct RadioRows : rows::Harness {
  static void Set(const std::string& name, double value) { rows::Set(name, value); }
  static void Poke(uint32_t offset, uint16_t value) { CopyToMemory(offset, sizeof value, &value); }
  // Which cycle shows an offset is the catalogue's to prove.
  static void RunAll(std::initializer_list<Cycle> cycles) {
    TuneStations();
    for (const Cycle cycle : cycles) RunReaders(cycle);
  }
};

TEST_F(RadioRows, BcdFrequencies) {
  // The last two, below 100 MHz and of five digits, show the nearest that there is.
  const std::tuple<std::string, int, uint32_t, uint16_t> cases[] = {
      {"com1_freq_hz", 12345, 0x034E, 0x2345},       {"com2_freq_hz", 11800, 0x3118, 0x1800},
      {"com1_stdby_freq_hz", 13697, 0x311A, 0x3697}, {"com2_stdby_freq_hz", 10000, 0x311C, 0x0000},
      {"nav1_freq_hz", 11030, 0x0350, 0x1030},       {"nav2_freq_hz", 11795, 0x0352, 0x1795},
      {"nav1_stdby_freq_hz", 10810, 0x311E, 0x0810}, {"nav2_stdby_freq_hz", 11111, 0x3120, 0x1111},
      {"adf1_freq_hz", 362, 0x034C, 0x0362},         {"adf2_freq_hz", 1030, 0x02D4, 0x1030},
      {"transponder_code", 7000, 0x0354, 0x7000},    {"transponder_code", 21, 0x0354, 0x0021},
      {"com2_stdby_freq_hz", 9999, 0x311C, 0x0000},  {"com2_stdby_freq_hz", 20000, 0x311C, 0x9999}};
  for (const auto& [radio, tuned, offset, word] : cases) {
    const std::string name = "sim/cockpit/radios/" + radio;
    Set(name, tuned);
    RunAll({C31Navigation, C31});
    EXPECT_EQ(Read<uint16_t>(offset), word) << name << " " << tuned;
    if (tuned == 9999 || tuned == 20000) continue;
    // The same word written over another tuned value brings the old one back; a bad digit changes nothing.
    Set(name, 11000);
    WriteAndRun<uint16_t>(offset, 0x1A00);
    EXPECT_EQ(Get(name), 11000) << name;
    WriteAndRun<uint16_t>(offset, word);
    EXPECT_EQ(Get(name), tuned) << name;
  }
}

TEST_F(RadioRows, AudioPanelAndExchange) {
  const char* const selectors[8] = {"selection_adf1", "dme_enabled", "marker_enabled", "selection_nav2",
                                    "selection_nav1", nullptr,       "selection_com2", "selection_com1"};
  for (const auto& [written, reads] :
       {std::pair{0x81, 0x81}, {0x20, 0xE0}, {0xC0, 0xE0}, {0x40, 0x40}, {0x1E, 0x1E}, {0xFF, 0xFF}}) {
    WriteAndRun(0x3122, static_cast<uint8_t>(written));
    for (int bit = 0; bit < 8; ++bit) {
      if (selectors[bit] == nullptr) continue;
      EXPECT_EQ(Get(std::string("sim/cockpit2/radios/actuators/audio_") + selectors[bit]), reads >> bit & 1)
          << selectors[bit] << " " << written;
    }
    RunReaders(C3);
    EXPECT_EQ(Read<uint8_t>(0x3122), reads);
  }

  for (int request = 1; request < 16; ++request) {
    for (const bool after : {false, true}) {
      int bit = 0;
      for (const std::string name : {"nav2", "nav1", "com2", "com1"}) {  // bits 0 to 3
        const std::string active = "sim/cockpit/radios/" + name + "_freq_hz";
        const std::string standby = "sim/cockpit/radios/" + name + "_stdby_freq_hz";
        const int swapped = after ? request >> bit & 1 : 0, a = 11000 + bit, b = 12000 + bit;
        ++bit;
        if (!after) rows::SetAll({{active, double(a)}, {standby, double(b)}});
        rows::ExpectAll({{active, double(swapped ? b : a)}, {standby, double(swapped ? a : b)}});
      }
      if (!after) WriteAndRun<uint8_t>(0x3123, static_cast<uint8_t>(request));
    }
    EXPECT_EQ(Read<uint8_t>(0x3123), 0) << "ready for the next request";
  }
}

TEST_F(RadioRows, DmeNumberAndTextAgree) {
  const std::tuple<double, uint16_t, const char*> cases[] = {
      {0, 0, "00.0"},        {0.09, 0, "00.0"},   {5.25, 52, "05.2"},     {12.3125, 123, "12.3"},
      {99.96, 999, "99.9"},  {100, 1000, "100."}, {123.96, 1239, "123."}, {999.9, 9999, "999."},
      {1200, 12000, "999."}, {-1, 0, "00.0"}};
  for (const auto& [miles, tenths, text] : cases) {
    for (int n = 0; n < 2; ++n) {
      Set(n == 0 ? "sim/cockpit/radios/nav1_dme_dist_m" : "sim/cockpit/radios/nav2_dme_dist_m", miles);
      Poke(n == 0 ? 0x0C2D : 0x0C37, 'X');
      RunReaders(C13);
      EXPECT_EQ(Read<uint16_t>(n == 0 ? 0x0300 : 0x0306), tenths) << miles;
      EXPECT_EQ(rows::ReadString(n == 0 ? 0x0C29 : 0x0C33, 5), text) << miles;
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
    rows::SetAll({{"sim/flightmodel/position/latitude", lat}, {"sim/flightmodel/position/longitude", lon}});
  }
  // Tunes NAV1 (n 0) or NAV2 and runs the cycle that shows it.
  void Tune(int n, int type, const char* ident, int frequency) {
    const std::string radio = n == 0 ? "nav1" : "nav2";
    Set("sim/cockpit/radios/nav_type[" + std::to_string(n) + "]", type);
    sim::SimCommand("set sim/cockpit2/radios/indicators/" + radio + "_nav_id \"" + ident + "\"");
    Set("sim/cockpit/radios/" + radio + "_freq_hz", frequency);
    RunAll({C31Navigation, C31});
  }
  // Height of the station on NAV1 after the frames of a cycle, from this place.
  int HeightAt(double lat, double lon) {
    Place(lat, lon);
    RunAll({C31Navigation, C31});
    return Read<int32_t>(0x086C);
  }
};

// 45 degrees are half a quarter of the meridian, 90 degrees of longitude a quarter of 2^32.
constexpr int32_t lat45 = 5000875, lon90 = 1 << 30;

TEST_F(Stations, RecordsOfTheTunedStation) {
  sim::SimCommand("navaid vor ABC 11380 45 90 123.75 2 \"A station with a very long name\"");
  sim::SimCommand("navaid ils IXX 10950 -22.5 -90 50 70 \"FIELD 07 ILS\"");
  sim::SimCommand("navaid gs IXX 10950 -45 -45 61.5 300070 \"FIELD 07 GS\"");
  sim::SimCommand("navaid loc ILL 11090 22.5 45 -3.5 250 \"FIELD 25 LOC\"");
  // Of the station or glide slope and of the localizer: latitude, longitude, height; reciprocal course (250
  // degrees of 360 are 45511.1 of 65536, 70 degrees 12743.1), localizer bits, code bits.
  const std::tuple<int, const char*, int, std::array<int, 9>, const char*> cases[] = {
      {3, "ABC", 11380, {lat45, lon90, 123, 0, 0, 0, 0, 0x80, 0x00}, "A station with a very lo"},
      {4, "IXX", 10950, {-lat45, -(1 << 29), 61, -2500437, -lon90, 50, 45511, 0x82, 0xC0}, "FIELD 07 ILS"},
      {5, "ILL", 11090, {2500437, 1 << 29, -3, 2500437, 1 << 29, -3, 12743, 0x82, 0x80}, "FIELD 25 LOC"},
      {5, "ILL", 11095, {0, 0, 0, 0, 0, 0, 0, 0x82, 0x80}, ""},  // received, but not in the database
      {0, "ABC", 11380, {0, 0, 0, 0, 0, 0, 0, 0x00, 0x08}, ""},
      {3, "", 11380, {0, 0, 0, 0, 0, 0, 0, 0x80, 0x00}, ""}};
  const Stored types[9] = {rows::S32, rows::S32, rows::S32, rows::S32, rows::S32,
                           rows::S32, rows::U16, rows::U8,  rows::U8};
  const uint32_t places[2][9] = {{0x085C, 0x0864, 0x086C, 0x0874, 0x0878, 0x087C, 0x0870, 0x0C4A, 0x0C4D},
                                 {0x0858, 0x0860, 0x0868, 0x084C, 0x0850, 0x0854, 0x0844, 0x0C5A, 0x0C70}};
  rows::SetAll({{"sim/cockpit/radios/nav1_has_dme", 0}, {"sim/cockpit/radios/nav2_has_dme", 0}});
  for (const auto& [type, ident, frequency, numbers, name] : cases) {
    for (int n = 0; n < 2; ++n) {
      SCOPED_TRACE(std::string(ident) + " on NAV" + std::to_string(n + 1));
      Tune(n, type, ident, frequency);
      for (size_t i = 0; i < 9; ++i) rows::ExpectShown({{places[n][i], types[i], double(numbers[i])}});
      EXPECT_EQ(rows::ReadString(n == 0 ? 0x3000 : 0x301F, 6), ident);
      EXPECT_EQ(rows::ReadString(n == 0 ? 0x3006 : 0x3025, 25), name);
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
  EXPECT_EQ(HeightAt(45, 90), 100) << "nothing changed: no search";
  EXPECT_EQ(HeightAt(45.4, 90.4), 100) << "moved less than half a degree";
  EXPECT_EQ(HeightAt(45, 90.6), 300) << "moved more than half a degree";
  HeightAt(0, 179.9);
  sim::SimCommand("navaid clear");
  EXPECT_EQ(HeightAt(0, -179.9), 300) << "across the antimeridian it is a short way";
  Tune(0, 3, "NEW", 11380);
  EXPECT_EQ(Read<int32_t>(0x086C), 0);
  sim::SimCommand("navaid vor NEW 11380 1 1 400 0 \"NEW\"");
  EXPECT_EQ(HeightAt(0, -179.9), 400) << "a station that was not found is searched for again";
}

TEST_F(RadioRows, BearingsAndNeedles) {
  // Heading + bearing + west variation is the magnetic bearing to the station; the radial (65536 a turn) is
  // opposite, the relative bearing in degrees.
  const std::tuple<double, double, double, double, double> cases[] = {
      {90, 30, 10, 56433, 40}, {0, 180, 0, 0, 180},       {350, -20, -5, 26396, 335},
      {0, 0, 0, 32768, 0},     {359, 0.5, 0.5, 32768, 1}, {180, 359.75, 0.25, 0, 0}};
  for (const auto& [heading, bearing, west, radial, relative] : cases) {
    rows::SetAll({{"sim/flightmodel/position/psi", heading},
                  {"sim/flightmodel/position/magnetic_variation", west},
                  {"sim/cockpit/radios/nav1_dir_degt", bearing},
                  {"sim/cockpit/radios/nav2_dir_degt", bearing}});
    RunReaders(C3);
    rows::ExpectShown({{0x0C50, rows::U16, radial}, {0x0C60, rows::U16, radial}});
    rows::ExpectShown({{0x0C56, rows::U16, relative}, {0x0C5C, rows::U16, relative}});
  }
  // Saturates, does not wrap to the other side.
  rows::CheckReads("sim/cockpit/radios/nav1_hdef_dot", C1, {{0x0C48, rows::S8, 2.5, 127}});
  rows::CheckReads("sim/cockpit/radios/nav2_vdef_dot", C1, {{0x0C6E, rows::S8, -3, -128}});
}

TEST_F(RadioRows, Wind) {
  Set("sim/flightmodel/position/magnetic_variation", 20);  // 20 west: magnetic is 20 more than true
  // Each word twice: the offset and its copy. The first direction is 10 degrees magnetic.
  const std::tuple<std::string, double, uint16_t, uint32_t, uint32_t> cases[] = {
      {"wind_direction_degt[0]", 350, 1820, 0x0F74, 0x04DA},
      {"wind_direction_degt[0]", 340, 0, 0x0F74, 0x0EF2},
      {"wind_direction_degt[1]", 270, 49152, 0x0F6A, 0x0EE8},
      {"wind_direction_degt[2]", 360, 0, 0x0F5E, 0x0EDC},
      {"wind_speed_kt[0]", 12.75, 12, 0x0F72, 0x04D8},
      {"wind_speed_kt[2]", 99, 99, 0x0F5C, 0x0EDA},
      {"wind_altitude_msl_m[0]", 1000, 1000, 0x0F70, 0x0EEE},
      {"wind_altitude_msl_m[1]", 3001, 4501, 0x0F64, 0x0EE2},
      {"wind_altitude_msl_m[1]", 3001, 1500, 0x0F66, 0x0EE4},
      {"wind_altitude_msl_m[2]", 60000, 65535, 0x0F58, 0x0ED6},
      {"turbulence[1]", 9, 255, 0x0F6C, 0x0EEA},
      {"turbulence[0]", 10, 283, 0x0F76, 0x0EF4},
      {"shear_speed_kt[2]", 15, 15, 0x0F62, 0x0EE0}};
  for (const auto& [name, value, word, offset, copy] : cases) {
    Set("sim/weather/" + name, value);
    RunAll({C13, C59, C157});
    EXPECT_EQ(Read<uint16_t>(offset), word) << name;
    EXPECT_EQ(Read<uint16_t>(copy), word) << name;
  }

  // 10.003 degrees magnetic are 350.003 true.
  rows::CheckWrites("sim/weather/wind_direction_degt[0]", {{0x0F74, rows::U16, 1821, 350.003, 0.001}});
  rows::CheckWrites("sim/weather/wind_direction_degt[1]", {{0x0F6A, rows::U16, 16384, 90}});
  rows::CheckWrites("sim/weather/turbulence[2]", {{0x0F60, rows::U16, 255, 9, 1e-6}});

  rows::SetAll({{"sim/weather/wind_direction_degt", 350}, {"sim/weather/wind_altitude_msl_m[0]", 1000}});
  rows::CheckReads("sim/flightmodel/position/elevation", C1,  // 10 magnetic, 350 true
                   {{0x0E92, rows::U16, 999, 1820}, {0x0E92, rows::U16, 1000, 63715}});
}

TEST_F(RadioRows, CloudsAndPrecipitation) {
  for (const auto& [offset, layer] : {std::pair{0x0EA6U, 0}, {0x6F13U, 1}, {0x0E9EU, 2}}) {
    const std::string type = "sim/weather/cloud_type[" + std::to_string(layer) + "]";
    rows::CheckWrites(type, {{offset, rows::U16, 0xFFFF, 5}, {offset, rows::U16, 3, 3}});
  }
  EXPECT_EQ(Get("sim/weather/cloud_coverage[1]"), 3);
  rows::CheckWrites("sim/weather/cloud_base_msl_m[1]", {{0x6F11, rows::U16, 2500, 2500}});
  rows::CheckWrites("sim/weather/visibility_reported_m", {{0x0E8A, rows::U16, 1000, 16093.44, 0.01}});
  RunReaders(C59);
  EXPECT_EQ(Read<uint16_t>(0x0E8A), 1000) << "hundredths of a mile";

  // Sea-level temperature before and after; rate and kind as they read back; cloud.
  const std::tuple<uint16_t, double, double, double, double, double> cases[] = {
      {0x0103, 20, 20, 3, 1, 4}, {0x0105, -4, 1, 5, 1, 4}, {0x0101, 0, 1, 1, 1, 4}, {0x0202, 15, -1, 2, 2, 4},
      {0x0204, -9, -9, 4, 2, 4}, {0x01FF, 9, 9, 5, 1, 4},  {0x0004, 9, 9, 0, 1, 0}, {0x0200, 9, 9, 0, 1, 0}};
  for (const auto& [written, before, after, rate, kind, cloud] : cases) {
    SCOPED_TRACE(written);
    rows::SetAll({{"sim/weather/cloud_type[0]", 0},
                  {"sim/weather/rain_percent", 0.5},
                  {"sim/weather/temperature_sealevel_c", before}});
    WriteAndRun<uint16_t>(0x04D2, written);
    RunReaders(C313);
    rows::ExpectShown({{0x04CB, rows::U8, rate}, {0x04CC, rows::U8, kind}});
    rows::ExpectAll({{"sim/weather/temperature_sealevel_c", after}, {"sim/weather/cloud_type[0]", cloud}});
  }
}

TEST_F(RadioRows, AltimeterAndPressure) {
  // 29.92 inches are 1013.2079 millibar or 16211.3 sixteenths; every hundredth comes back as written.
  WriteAndRun<uint16_t>(0x0330, 16211);
  EXPECT_NEAR(Get("sim/cockpit/misc/barometer_setting"), 29.92, 1e-5);
  for (int hundredths = 2800; hundredths <= 3100; ++hundredths) {
    Set("sim/cockpit/misc/barometer_setting", hundredths / 100.0);
    RunReaders(C13);
    const uint16_t word = Read<uint16_t>(0x0330);
    Set("sim/cockpit/misc/barometer_setting", 1);
    Poke(0x0330, 0);
    WriteAndRun<uint16_t>(0x0330, word);
    EXPECT_NEAR(Get("sim/cockpit/misc/barometer_setting"), hundredths / 100.0, 1e-5);
  }
  // 1000 millibar at 0.02953 inches.
  rows::CheckWrites("sim/weather/barometer_sealevel_inhg", {{0x0F48, rows::U16, 16000, 29.53, 1e-4}});
  rows::CheckReads("sim/weather/dewpoi_sealevel_c", C313, {{0x04C8, rows::S16, -12.5, -3200}});
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

TEST_F(WeatherArea, AppliedWhole) {
  Fill(1, "GLOB");
  Send();
  EXPECT_EQ(Read<uint16_t>(0xC800), 0) << "taken";
  const std::string weather = "sim/weather/";
  rows::ExpectAll({{weather + "rate_change_percent", 0.5},
                   {weather + "barometer_sealevel_inhg", 29.9579, 1e-3},
                   {weather + "visibility_reported_m", 10000.8, 1e-3},
                   {weather + "temperature_sealevel_c", -7},
                   {weather + "dewpoi_sealevel_c", -10},
                   {weather + "rain_percent", 0.75}});
  const std::pair<const char*, std::array<double, 3>> cases[] = {{"cloud_base_msl_m", {500, 1500, 2500}},
                                                                 {"cloud_tops_msl_m", {900, 1900, 2900}},
                                                                 {"cloud_type", {3, 4, 5}},
                                                                 {"wind_altitude_msl_m", {1000, 3000, 5000}},
                                                                 {"wind_speed_kt", {10, 11, 12}},
                                                                 {"shear_speed_kt", {20, 21, 22}},
                                                                 {"wind_direction_degt", {90, 90.0014, 0}},
                                                                 {"turbulence", {0, 7.5, 10}},
                                                                 {"shear_direction_degt", {45, 180, 180}}};
  for (const auto& [name, layers] : cases) {
    for (size_t layer = 0; layer < 3; ++layer) {
      rows::ExpectAll({{weather + name + "[" + std::to_string(layer) + "]", layers[layer], 1e-4}});
    }
  }
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
  // Selector, station, what is left of the selector.
  for (const auto& [selector, station, left] : std::initializer_list<std::tuple<int, const char*, int>>{
           {0, "GLOB", 0}, {5, "GLOB", 5}, {2, "EDDF", 0}, {2, "glob", 0}}) {
    Fill(selector, station);
    Set("sim/weather/temperature_sealevel_c", 15);
    Send();
    EXPECT_EQ(Get("sim/weather/temperature_sealevel_c"), 15) << selector << station;
    EXPECT_EQ(Read<uint16_t>(0xC800), left);
  }
  Fill(4, "GLOB");
  for (const uint32_t at : {0x0AU, 0x0CU}) Put16(at, 0);
  rows::SetAll({{"sim/weather/barometer_sealevel_inhg", 29.5}, {"sim/weather/visibility_reported_m", 5000}});
  Send();  // neither of these two
  rows::ExpectAll({{"sim/weather/barometer_sealevel_inhg", 29.5},
                   {"sim/weather/visibility_reported_m", 5000},
                   {"sim/weather/temperature_sealevel_c", -7}});
}

TEST_F(RadioRows, SituationFiles) {
  const std::string longest = std::string(247, 'x') + ".sit";
  // "b.sit" is shorter: nothing of the longer name may be left. The 252nd byte is the terminator's.
  const std::tuple<std::string, uint16_t, std::string> cases[] = {
      {"Output/situations/a long name.sit", 0, "load 1 Output/situations/a long name.sit"},
      {"b.sit", 1, "save 1 b.sit"},
      {"b.sit", 7, "save 1 b.sit"},
      {"c.smo", 0, "load 2 c.smo"},
      {"c.smo", 2, "save 2 c.smo"},
      {"d.txt", 0, ""},
      {"", 0, ""},
      {longest + "x", 0, "load 1 " + longest}};
  for (const auto& [name, command, calls] : cases) {
    rows::WriteBytes(0x3F04, name.data(), static_cast<uint32_t>(name.size()));
    RunWriters();
    WriteAndRun<uint16_t>(0x3F00, command);
    EXPECT_EQ(rows::Calls(), calls) << name;
  }
  // Name and command of one request: the name is taken first.
  rows::WriteBytes(0x3F04, "e.sit", 6);
  WriteAndRun<uint16_t>(0x3F00, 0);
  EXPECT_EQ(rows::Calls(), "load 1 e.sit");
}

TEST_F(RadioRows, SituationFilesThatFailAreTold) {
  const std::string folder = testing::TempDir() + "tavrix_failing_situations/";
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  rows::Stop();
  rows::Start("jet", {}, folder);
  ASSERT_EQ(OpenLogs(folder.c_str(), nullptr), 1);
  const struct {
    const char* name;
    uint16_t command;
    const char* told;
    uint16_t loads;
  } cases[] = {
      {"a.sit", 1, "", 0},
      {"a.sit", 0, "", 1},
      {"b.sit", 0, "could not load the situation file \"b.sit\" for a client: look whether it lies in", 1},
      {"no such folder/a.sit", 1,
       "could not save the situation file \"no such folder/a.sit\" for a client: look", 1},
      {"a.sit", 0, "", 2}};
  for (const auto& test : cases) {
    rows::WriteBytes(0x3F04, test.name, static_cast<uint32_t>(std::strlen(test.name) + 1));
    EXPECT_TRUE(tools::WaitUntil([&] {  // a line a second
      WriteAndRun<uint16_t>(0x3F00, test.command);
      return tools::ReadFile(folder + "TAVRIX.txt").find(test.told) != std::string::npos;
    })) << test.name;
    EXPECT_EQ(Read<uint16_t>(0x3F02), test.loads) << test.name;
  }
  EXPECT_LE(tools::CountText(tools::ReadFile(folder + "TAVRIX.txt"), "could not"), 2);
  CloseLogs();
  std::filesystem::remove_all(folder);
}

// Names that could reach a file elsewhere, or another kind of file.
TEST_F(RadioRows, SituationFilesStayBelowTheSimulatorsFolder) {
  const std::string folder = testing::TempDir() + "tavrix_situations/";
  ASSERT_EQ(OpenLogs(folder.c_str(), nullptr), 1);
  // Each name between bars; the first of those that are refused is empty.
  const char taken[] = "Output/situations/one.sit|Output\\situations\\two.sit|.smo|a.b.sit|caf\xC3\xA9.sit";
  const char refused[] =
      "|/etc/x.sit|\\Windows\\x.sit|\\\\host\\share\\x.sit|C:\\x.sit|C:x.sit|x.sit:stream.sit|../x.sit|"
      "Output/../../x.sit|Output\\..\\x.smo|..sit|x.SIT|x.sit |x.sit.|x.sit.txt|x.smo/y|x\n.sit|x\x1B[2J.smo|"
      "x\x7F.sit";
  for (const bool isTaken : {true, false}) {
    std::istringstream names(isTaken ? taken : refused);
    for (std::string name; std::getline(names, name, '|');) {
      for (const uint16_t command : {uint16_t{0}, uint16_t{1}}) {
        rows::WriteBytes(0x3F04, name.c_str(), static_cast<uint32_t>(name.size() + 1));
        WriteAndRun<uint16_t>(0x3F00, command);
        EXPECT_EQ(!rows::Calls().empty(), isTaken) << EscapedForLog(name) << ' ' << command;
      }
    }
  }
  const auto log = [&] { return tools::ReadFile(folder + "TAVRIX.txt"); };
  // Dozens of refusals within moments: one line at most (another one where this took longer than a second).
  EXPECT_LE(tools::CountText(log(), "\n"), 3) << log();
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
  RunReaders(C1);
  EXPECT_EQ(Read<uint8_t>(0x6F0D), 0);
}

}  // namespace
