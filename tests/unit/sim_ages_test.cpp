// The stand-in's ages: what each of them publishes, the units of it, the traffic arrays of the newer ones, the
// messages that each knows, and that it flies in all of them. What is expected stands here once more, in the
// form of the public lists, and is not taken from the stand-in's own tables.
#include <XPLMDataAccess.h>
#include <XPLMPlanes.h>
#include <XPLMUtilities.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <functional>
#include <iterator>
#include <numbers>
#include <set>
#include <sstream>
#include <utility>

#include "core/more_api.h"
#include "core/sim.h"
#include "unit/sim_talk.h"

namespace {

constexpr int kAges[] = {860, 920, 955, 1004, 1042, 1110, 1140, 1200, 1210};
constexpr double kFeet = 0.3048, kKnot = 1852.0 / 3600;

std::vector<int> told;                       // messages and parameters that the plug-in got: 102, 0, 103, 0 ...
std::function<void(int message)> onMessage;  // what it does then
const sim::PluginEntry kEntry = {
    .start =
        [](char* name, char* signature, char* description) {
          for (char* text : {name, signature, description}) std::snprintf(text, 256, "test.ages");
          return 1;
        },
    .stop = [] {},
    .enable = [] { return 1; },
    .disable = [] {},
    .message =
        [](int, int message, void* parameter) {
          told.insert(told.end(), {message, static_cast<int>(reinterpret_cast<intptr_t>(parameter))});
          if (onMessage) onMessage(message);
        }};

struct SimAges : testing::Test {
  void TearDown() override {
    onMessage = nullptr;
    EXPECT_EQ(sim::SimStop(), 0);
  }
  static void Begin(int version, bool circuit = false, const char* aircraft = "jet", int planes = 1) {
    sim::SimStop();
    told.clear();
    sim::Options options;
    options.linked = &kEntry;
    options.root = testing::TempDir() + "sim_ages";
    options.rate = 0;
    options.circuit = circuit;
    options.aircraft = aircraft;
    options.planes = planes;
    options.version = version;
    ASSERT_EQ(sim::SimStart(options), 0);
  }
};

double Value(const std::string& name) {
  const std::string answer = sim::SimCommand("get " + name);
  EXPECT_EQ(answer.rfind("ok ", 0), 0U) << name << ": " << answer;
  return answer.size() > 3 ? std::strtod(answer.c_str() + 3, nullptr) : NAN;
}

// As the lists write it: "f[8]/w", "-" when there is none.
std::string Shape(const std::string& name) {
  const XPLMDataRef ref = XPLMFindDataRef(("sim/" + name).c_str());
  if (ref == nullptr) return "-";
  const std::string access = XPLMCanWriteDataRef(ref) != 0 ? "/w" : "/r";
  const auto array = [&](const char* kind, int length) {
    return kind + ('[' + std::to_string(length)) + ']' + access;
  };
  switch (XPLMGetDataRefTypes(ref)) {
    case xplmType_Int:
      return "i" + access;
    case xplmType_Float:
      return "f" + access;
    case xplmType_Float | xplmType_Double:
      return "d" + access;
    case xplmType_IntArray:
      return array("i", XPLMGetDatavi(ref, nullptr, 0, 0));
    case xplmType_FloatArray:
      return array("f", XPLMGetDatavf(ref, nullptr, 0, 0));
    case xplmType_Data:
      return array("b", XPLMGetDatab(ref, nullptr, 0, 0));
    default:
      return "?";
  }
}

TEST_F(SimAges, PublishesTheListOfTheAge) {
  // What the simulator says of itself, then name and shape in each age; "." is as in the age before.
  const int versions[][3] = {{860, 860, 199},    {920, 920, 200},    {955, 955, 200},
                             {1004, 1004, 210},  {1042, 1042, 210},  {1110, 11100, 300},
                             {1140, 11400, 302}, {1200, 12000, 400}, {1210, 12100, 410}};
  const char* const lists[] = {
      "flightmodel/position/latitude d/r . . . . . . . .",
      "aircraft/limits/red_hi_TRQ - f/r . . . . . . .",
      "aircraft/overflow/acf_has_nav i[6]/w . - . . . . . .",
      "aircraft/overflow/acf_num_tanks i/w . . . . . . . i/r",
      "aircraft/overflow/acf_tank_rat f[3]/w f[9]/w . . . . . . .",
      "aircraft/parts/acf_gear_deploy f[73]/w f[10]/w . . . . . . .",
      "aircraft/prop/acf_en_type i[8]/w . . . . i[8]/r . . i[16]/r",
      "aircraft/view/acf_descrip b[500]/w . b[260]/w . . . . . .",
      "aircraft/view/acf_livery_path - - b[1024]/r . . . . . .",
      "cockpit/pressure/cabin_altitude_actual_m_msl f/r . . . . . f/w . .",
      "cockpit/radios/nav_type i[6]/w i[6]/r . . . . . . .",
      "cockpit2/engine/actuators/throttle_ratio - f[8]/w . . . . . . f[16]/w",
      "cockpit2/ice/ice_inlet_heat_on_per_engine - . . . i[8]/w . . . i[16]/w",
      "cockpit2/radios/indicators/nav1_nav_id - . b[500]/r . . . b[150]/r . b[150]/w",
      "cockpit2/tcas/targets/position/lat - . . . . . . f[64]/r .",
      "cockpit2/tcas/targets/modeS_id - . . . . . . i[64]/w .",
      "cockpit2/tcas/indicators/tcas_num_acf - . . . . . . i/r .",
      "flightmodel/weight/m_fuel - f[9]/w . . . . . . .",
      "joystick/joystick_button_values i[160]/r i[1520]/r . i[1600]/r . i[3200]/r . . .",
      "joystick/joystick_axis_values f[32]/r f[100]/r . . . f[500]/r . . .",
      "multiplayer/position/plane9_lat d/r . . . . . . . .",
      "multiplayer/position/plane10_lat d/w . . . . . . . d/r",
      "multiplayer/position/plane19_x d/w . . . . . . . .",
      "operation/failures/failures i[564]/w . . i[564]/r . . . i[667]/r .",
      "operation/failures/rel_g_comrad1 i/w . . - i/w . . - .",
      "weather/cloud_coverage[2] - . . . f/w . . . .",
      "weather/cloud_type[0] i/w . . . . . . . .",
      "weather/rate_change_percent f/w . . - . . . . .",
      "weather/thunderstorm_percent f/w . . i/w f/w . . - .",
      "weather/use_real_weather_bool i/w . . . . . . i/r .",
      "weather/wind_speed_kt f/r . . . . . . . .",
      "weather/wind_speed_kt[1] f/w . . i/w f/w . . . .",
  };
  std::string shapes[std::size(lists)];
  for (size_t at = 0; at < std::size(versions); at++) {
    Begin(versions[at][0]);
    int host = 0, api = 0;
    XPLMGetVersions(&host, &api, nullptr);
    EXPECT_EQ(host, versions[at][1]);
    EXPECT_TRUE(api == versions[at][2] || (host == 860 && api >= 100 && api < 200)) << api;
    for (size_t i = 0; i < std::size(lists); i++) {
      std::istringstream line(lists[i]);
      std::string name, shape;
      line >> name;
      for (size_t skip = 0; skip <= at; skip++) line >> shape;
      if (shape != ".") shapes[i] = shape;
      EXPECT_EQ(Shape(name), shapes[i]) << name << " in " << host;
    }
  }
  // Without an age: every name, and 1042.
  Begin(0);
  int host = 0;
  XPLMGetVersions(&host, nullptr, nullptr);
  EXPECT_EQ(host, 1042);
  EXPECT_EQ(Shape("weather/rate_change_percent"), "f/w");
  EXPECT_EQ(Shape("weather/cloud_coverage[2]"), "f/w");
  sim::Options wrong;
  wrong.version = 1041;
  EXPECT_EQ(sim::SimStart(wrong), 2);
}

// The wind's unit changes; the cabin's never did, and is not what its name says.
TEST_F(SimAges, UnitsAreThePublishedOnes) {
  for (const int age : kAges) {
    SCOPED_TRACE(age);
    Begin(age, true, age < 1200 ? "jet" : "b738");
    const double unit = age >= 1140 ? 1 : kKnot;
    for (int layer = 0; layer < 3; layer++) {
      const std::string of = "[" + std::to_string(layer) + "] ";
      Talk("set sim/weather/wind_speed_kt" + of + "36 | set sim/weather/wind_direction_degt" + of + "270");
    }
    sim::SimFrames(60);
    EXPECT_NEAR(Value("sim/weather/wind_speed_kt"), 36, 0.01);
    // An aircraft pointing north at rest in the air drifts with the wind: ground speed less air speed.
    const double drift =
        Value("sim/flightmodel/position/local_vx") -
        Value("sim/flightmodel/position/true_airspeed") *
            std::sin((Value("sim/flightmodel/position/psi") + Value("sim/flightmodel/position/beta")) *
                     std::numbers::pi / 180);
    EXPECT_NEAR(drift, 36 * unit, 3);
    const double high = Value("sim/cockpit/pressure/cabin_altitude_actual_m_msl");
    const double outside = Value("sim/flightmodel/position/elevation") / kFeet;
    Talk(
        "set sim/cockpit/pressure/cabin_altitude_set_m_msl 5000 | set "
        "sim/cockpit/pressure/cabin_vvi_set_m_msec 600");
    sim::SimFrames(600);
    EXPECT_NEAR(Value("sim/cockpit/pressure/cabin_altitude_actual_m_msl"), std::min(high + 100, outside), 20);
    if (age >= 955) {
      EXPECT_EQ(Value("sim/cockpit2/hydraulics/indicators/hydraulic_pressure_1"), age < 1200 ? 1 : 3000);
    }
    Begin(age, false, "turboprop");
    EXPECT_EQ(Value("sim/aircraft/prop/acf_en_type[0]"), age < 1140 ? 2 : 8);
    EXPECT_NEAR(Value("sim/weather/wind_speed_kt[0]") * unit, 8 * kKnot, 0.01);  // the same start in every age
  }
}

TEST_F(SimAges, FliesInEachOfThem) {
  for (const int age : kAges) {
    SCOPED_TRACE(age);
    Begin(age, true, "jet", 30);
    const double fuel = Value("sim/flightmodel/weight/m_fuel_total"),
                 x = Value("sim/flightmodel/position/local_x");
    Talk("set sim/weather/temperature_sealevel_c 4 | set sim/weather/runway_friction 1");
    sim::SimFrames(60 * 60);
    EXPECT_GT(std::fabs(Value("sim/flightmodel/position/local_x") - x), 1000);
    EXPECT_NEAR(Value("sim/flightmodel/position/elevation") / kFeet, 3000, 400);
    EXPECT_NEAR(fuel - Value("sim/flightmodel/weight/m_fuel_total"), 38, 30);
    EXPECT_EQ(Value("sim/flightmodel/engine/ENGN_running[1]"), 1);
    EXPECT_NEAR(Value("sim/weather/temperature_ambient_c"), 4 - 0.0065 * 914, 1);
    for (const sim::DataRef* ref : sim::AllDataRefs()) {
      for (float value : ref->floats) ASSERT_TRUE(std::isfinite(value)) << ref->name;
      for (double value : ref->doubles) ASSERT_TRUE(std::isfinite(value)) << ref->name;
    }
    // A name that this age lacks and the console defines is one that the flight fills, of any shape.
    if (age == 860) {
      Talk(
          "define sim/cockpit2/gauges/indicators/altitude_ft_pilot float | define sim/joystick/yoke_roll_ratio "
          "int[2]");
      sim::SimFrames(2);
      EXPECT_GT(Value("sim/cockpit2/gauges/indicators/altitude_ft_pilot"), 100);
    }
  }
}

std::string TextAt(const char* name, int place) {
  char text[9] = "";
  XPLMGetDatab(XPLMFindDataRef(name), text, place * 8, 8);
  return text;
}

TEST_F(SimAges, TrafficArraysShowTheSameAircraft) {
  const std::string targets = "sim/cockpit2/tcas/targets/";
  for (const int age : {1200, 1210}) {
    Begin(age, true, "prop", 66);
    sim::SimFrames(30);
    EXPECT_EQ(Value("sim/cockpit2/tcas/indicators/tcas_num_acf"), 64);
    const auto at = [&](const std::string& name, int place) {
      return Value(targets + name + '[' + std::to_string(place) + ']');
    };
    std::set<double> addresses;
    std::set<std::string> flights;
    for (int place = 0; place < 64; place++) {
      SCOPED_TRACE(place);
      addresses.insert(at("modeS_id", place));
      flights.insert(TextAt("sim/cockpit2/tcas/targets/flight_id", place));
      EXPECT_NE(TextAt("sim/cockpit2/tcas/targets/icao_type", place), "");
      const bool parked = place == 20;
      EXPECT_EQ(at("position/weight_on_wheels", place), parked);
      EXPECT_EQ(at("position/V_msc", place) > 20, !parked);
      EXPECT_NEAR(at("position/vertical_speed", place), at("position/vy", place) / kFeet * 60, 0.1);
      if (place >= 1 && place <= 19) {
        const std::string plane = "sim/multiplayer/position/plane" + std::to_string(place) + '_';
        EXPECT_NEAR(at("position/lat", place), Value(plane + "lat"), 1e-5);
        EXPECT_NEAR(at("position/ele", place), Value(plane + "el"), 0.01);
        EXPECT_NEAR(at("position/psi", place), Value(plane + "psi"), 1e-3);
        EXPECT_NEAR(at("position/vz", place), Value(plane + "v_z"), 1e-3);
      }
    }
    EXPECT_EQ(addresses.size(), 64U);
    EXPECT_EQ(addresses.count(0), 0U);
    EXPECT_EQ(flights.size(), 64U);
    EXPECT_EQ(TextAt("sim/cockpit2/tcas/targets/flight_id", 1), "TVX001");
    EXPECT_EQ(TextAt("sim/cockpit2/tcas/targets/icao_type", 0), "C172");
    EXPECT_NEAR(at("position/lon", 0), Value("sim/flightmodel/position/longitude"), 1e-5);
    EXPECT_NEAR(at("position/V_msc", 0), Value("sim/flightmodel/position/true_airspeed"), 1e-3);
    Talk("planes 3 | aircraft ec135");
    EXPECT_EQ(Value("sim/cockpit2/tcas/indicators/tcas_num_acf"), 3);
    EXPECT_EQ(TextAt("sim/cockpit2/tcas/targets/icao_type", 0), "EC35");
    EXPECT_NE(at("position/lat", 2), 0);
    for (const char* name : {"modeS_id", "position/lat", "position/phi", "position/V_msc"})
      EXPECT_EQ(at(name, 3), 0);
    EXPECT_EQ(TextAt("sim/cockpit2/tcas/targets/flight_id", 3), "");
  }
}

TEST_F(SimAges, MessagesThatTheAgeKnows) {
  using List = std::vector<int>;
  const auto taken = [] { return std::exchange(told, {}); };
  for (const int age : {0, 860, 955, 1004, 1210}) {
    SCOPED_TRACE(age);
    const bool unloads = age != 860, liveries = age == 0 || age >= 1004;
    // What stands in the list but the messages that this age lacks, each with its parameter.
    const auto known = [&](const List& all) {
      List list;
      for (size_t i = 0; i < all.size(); i += 2) {
        if ((all[i] == 106 && !unloads) || ((all[i] == 107 || all[i] == 108) && !liveries)) continue;
        list.insert(list.end(), {all[i], all[i + 1]});
      }
      return list;
    };
    Begin(age, false, "jet", 3);
    EXPECT_EQ(taken(), known({102, 0, 103, 0, 104, 0, 108, 0}));
    // The user's aircraft is still the old one when it is unloaded.
    std::string title;
    onMessage = [&](int message) {
      if (message == 106) title = sim::SimCommand("get sim/aircraft/view/acf_descrip");
    };
    Talk("aircraft prop");
    EXPECT_EQ(taken(), known({106, 0, 102, 0, 108, 0}));
    EXPECT_EQ(title, unloads ? "ok \"Standin Twin Jet\"" : "");
    XPLMPlaceUserAtAirport("XTAE");
    EXPECT_EQ(taken(), List({103, 0, 104, 0}));
    ASSERT_EQ(XPLMAcquirePlanes(nullptr, nullptr, nullptr), 1);
    XPLMSetAircraftModel(2, "Aircraft/one.acf");
    EXPECT_EQ(taken(), known({106, 2, 102, 2, 108, 2}));
    XPLMSetAircraftModel(3, "Aircraft/two.acf");  // that place is not in use
    EXPECT_EQ(taken(), List());
    XPLMSetActiveAircraftCount(200);
    int total = 0, active = 0;
    XPLMCountAircraft(&total, &active, nullptr);
    EXPECT_EQ(taken(), List({105, 0}));
    EXPECT_EQ(active, 20);
    Talk("planes 129 -> error: the number of planes is 1 to 128 | planes 40");
    XPLMCountAircraft(&total, &active, nullptr);
    EXPECT_EQ(List({total, active}), List({40, 40}));
    Talk("planes 2");
    XPLMCountAircraft(&total, &active, nullptr);
    EXPECT_EQ(List({total, active}), List({20, 2}));
    taken();
    sim::SimStop();
    EXPECT_EQ(taken(), known({107, 0}));
  }
}

TEST_F(SimAges, DataFilesAreFiles) {
  Begin(0);
  const std::string root = testing::TempDir() + "sim_ages/";
  std::filesystem::remove(root + "a.sit");
  EXPECT_EQ(XPLMLoadDataFile(xplm_DataFile_Situation, "a.sit"), 0);
  EXPECT_EQ(XPLMLoadDataFile(xplm_DataFile_Situation, "Resources"), 0);
  EXPECT_EQ(XPLMLoadDataFile(xplm_DataFile_Situation, nullptr), 0);
  EXPECT_NE(XPLMLoadDataFile(xplm_DataFile_ReplayMovie, nullptr), 0);
  EXPECT_EQ(XPLMSaveDataFile(xplm_DataFile_Situation, "no such folder/a.sit"), 0);
  EXPECT_NE(XPLMSaveDataFile(xplm_DataFile_Situation, "a.sit"), 0);
  EXPECT_NE(XPLMLoadDataFile(xplm_DataFile_Situation, "a.sit"), 0);
  EXPECT_EQ(sim::SimCommand("calls"),
            "ok load 1 a.sit; load 1 Resources; load 1 ; load 2 ; "
            "save 1 no such folder/a.sit; save 1 a.sit; load 1 a.sit");
}

}  // namespace
