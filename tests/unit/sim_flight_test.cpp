// The stand-in's world and flight model: measured, not believed. Every test flies the real thing, frame by
// frame, through the console and the plug-in interface.
#include <XPLMDataAccess.h>
#include <XPLMUtilities.h>
#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <set>
#include <sstream>
#include <tuple>

#include "core/sim.h"

namespace {

using sim::SimCommand;
using sim::SimFrames;

constexpr double kFeet = 0.3048;
constexpr char kState[] = "sim/cockpit/autopilot/autopilot_state";
constexpr char kFuel[] = "sim/flightmodel/weight/m_fuel_total";
constexpr char kNav1[] = "get sim/cockpit2/radios/indicators/nav1_nav_id";

std::string Ask(const std::string& line) {
  std::string answer = SimCommand(line);
  EXPECT_EQ(answer.rfind("ok", 0), 0U) << line << ": " << answer;
  return answer.size() > 3 ? answer.substr(3) : "";
}

// A name without a slash is one of the position.
std::string Full(const std::string& name) {
  return name.find('/') == std::string::npos ? "sim/flightmodel/position/" + name : name;
}

double Value(const std::string& name) {
  std::string text = Ask("get " + Full(name));
  double value = NAN;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

void Seconds(int seconds) { SimFrames(seconds * 60); }

XPLMDataRef Find(const std::string& name) {
  XPLMDataRef ref = XPLMFindDataRef(Full(name).c_str());
  EXPECT_NE(ref, nullptr) << name;
  return ref;
}

// As a plug-in does it.
void Put(const std::string& name, double value) {
  const XPLMDataRef ref = Find(name);
  const bool wide = (XPLMGetDataRefTypes(ref) & xplmType_Double) != 0;
  wide ? XPLMSetDatad(ref, value) : XPLMSetDataf(ref, static_cast<float>(value));
}

// Statements between semicolons: "wait SECONDS", "key N", "press N", "release N", "once COMMAND", a console
// line, "DATAREF := NUMBER" as a plug-in sets it, or "DATAREF = LOW to HIGH" for what must lie in between (a
// single number: be it).
void Fly(const std::string& script) {
  std::istringstream all(script);
  for (std::string line; std::getline(all, line, ';');) {
    line.erase(0, line.find_first_not_of(" \n"));
    SCOPED_TRACE(line);
    char word[128] = "";
    double low = 0, high = 0;
    int number = 0;
    const auto is = [&](const char* form) { return std::sscanf(line.c_str(), form, &number) == 1; };
    if (const int got = std::sscanf(line.c_str(), "%127s = %lf to %lf", word, &low, &high); got >= 2) {
      const double value = Value(word);
      EXPECT_TRUE(value >= low && value <= (got == 2 ? low : high)) << value;
    } else if (std::sscanf(line.c_str(), "%127s := %lf", word, &low) == 2) {
      Put(word, low);
    } else if (is("wait %d")) {
      Seconds(number);
    } else if (is("key %d")) {
      XPLMCommandKeyStroke(number);
    } else if (is("press %d")) {
      XPLMCommandButtonPress(number);
    } else if (is("release %d")) {
      XPLMCommandButtonRelease(number);
    } else if (std::sscanf(line.c_str(), "once %127s", word) == 1) {
      XPLMCommandOnce(XPLMFindCommand(word));
    } else {
      Ask(line);
    }
  }
}

double AngleBetween(double a, double b) { return std::fabs(std::remainder(a - b, 360.0)); }

void PutAttitude(double w, double x, double y, double z) {
  float q[4] = {static_cast<float>(w), static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
  XPLMSetDatavf(Find("q"), q, 0, 4);
}
void PutPlace(double lat, double lon, double alt) {
  double place[3];
  sim::WorldToLocal(lat, lon, alt, &place[0], &place[1], &place[2]);
  for (int i = 0; i < 3; i++) Put(std::string("local_") + "xyz"[i], place[i]);
}

// A flight from its beginning; one that goes on is ended.
void Start(const char* aircraft = "jet", bool circuit = true, int planes = 1) {
  sim::Options options;
  options.root = testing::TempDir() + "sim_flight";
  options.rate = 0;
  options.circuit = circuit;
  options.aircraft = aircraft;
  options.planes = planes;
  ASSERT_EQ(sim::SimStart(options), 0);
}

struct SimFlight : testing::Test {
  void SetUp() override { Start(); }
  void TearDown() override { EXPECT_EQ(sim::SimStop(), 0); }
};

TEST_F(SimFlight, EverythingStaysANumberAndMovesFromTheFirstFrame) {
  const double lat = Value("latitude"), fuel = Value(kFuel);
  SimFrames(1);
  EXPECT_NE(Value("latitude"), lat);
  EXPECT_LT(Value(kFuel), fuel);
  Seconds(60);
  for (const sim::DataRef* ref : sim::AllDataRefs()) {
    for (float value : ref->floats) EXPECT_TRUE(std::isfinite(value)) << ref->name;
    for (double value : ref->doubles) EXPECT_TRUE(std::isfinite(value)) << ref->name;
  }
}

// A lap by lap: back within a kilometre of the start, at the start's height, with the field overflown low.
TEST_F(SimFlight, LapCloses) {
  for (const char* aircraft : {"jet", "prop", "turboprop", "helicopter"}) {
    SCOPED_TRACE(aircraft);
    Start(aircraft);
    const double x = Value("local_x"), z = Value("local_z"), height = Value("elevation"), fuel = Value(kFuel);
    double closest = 1e9, lowest = 1e9, heightThere = 0, flown = 0;
    bool away = false;
    for (int second = 0; second < 700; second++) {
      Seconds(1);
      const double distance = std::hypot(Value("local_x") - x, Value("local_z") - z);
      flown += Value("groundspeed");
      away = away || distance > 3000;
      lowest = std::min(lowest, Value("y_agl"));
      if (away && flown > 15000 && distance < closest) closest = distance, heightThere = Value("elevation");
    }
    EXPECT_LT(closest, 1000);
    EXPECT_NEAR(heightThere, height, 60);
    EXPECT_NEAR(lowest, 95, 55);
    EXPECT_LT(Value(kFuel), fuel);
  }
}

// Reached in time and held, altitude through turns as well: the circuit goes on.
TEST_F(SimFlight, ModesReachAndHold) {
  struct Mode {
    std::string dial;
    int mode, reach, hold;  // seconds
    double tolerance;
  };
  const Mode heading = {"heading_mag", 2, 100, 60, 2};  // half a circle at 2.4 degrees a second, and settling
  const Mode altitude = {"altitude", 16384, 120, 120, 50};
  for (const int goal : {300, 5, 180, 5000, 3500}) {
    const Mode& it = goal > 360 ? altitude : heading;
    Fly("set sim/cockpit/autopilot/" + it.dial + ' ' + std::to_string(goal) + ";set " + kState + ' ' +
        std::to_string(it.mode) + ";wait " + std::to_string(it.reach));
    for (int i = 0; i < it.hold; i++) {
      Seconds(1);
      const double off = goal > 360 ? std::fabs(Value("elevation") / kFeet - goal)
                                    : AngleBetween(Value("psi") + Value("magnetic_variation"), goal);
      ASSERT_LT(off, it.tolerance) << goal << ", second " << i;
    }
  }
}

TEST_F(SimFlight, SpeedModeHoldsAndVerticalSpeedCaptures) {
  Fly(R"(set sim/cockpit/autopilot/airspeed 240; set sim/cockpit2/autopilot/autothrottle_enabled 1;
         set sim/cockpit/autopilot/altitude 4500; set sim/cockpit/autopilot/vertical_velocity 1200;
         set sim/cockpit/autopilot/autopilot_state 51; wait 40; vh_ind_fpm = 1100 to 1300; wait 90;
         sim/cockpit/autopilot/autopilot_state = 16387; elevation = 1356 to 1387;
         indicated_airspeed = 237 to 243)");
}

// Writing the state presses buttons: the same bit again ends the mode, another of the axis replaces it.
TEST_F(SimFlight, StateBitsArePresses) {
  const XPLMDataRef state = Find(kState);
  const int presses[][2] = {{2, 2},         {2, 0},       {2, 2},        {4, 4},         {16, 20},
                            {16384, 16388}, {32, 16420},  {32, 16388},   {1, 16389},     {256, 16645},
                            {256, 16389},   {512, 16389}, {2048, 16389}, {4 | 16384, 1}, {1, 0}};
  for (const auto& [pressed, now] : presses) {
    XPLMSetDatai(state, pressed);
    EXPECT_EQ(XPLMGetDatai(state), now) << "after " << pressed;
  }
  Fly(R"(key 12; key 16; sim/cockpit/autopilot/autopilot_state = 16386; key 10;
         sim/cockpit2/autopilot/autothrottle_enabled = 1; key 9; sim/cockpit/autopilot/autopilot_state = 0)");
}

// One of each kind; the last two keys do nothing here.
TEST_F(SimFlight, KeysButtonsAndCommandsAct) {
  Fly(R"(set sim/cockpit/autopilot/heading_mag 0; key 23; sim/cockpit/autopilot/heading_mag = 359;
         set sim/cockpit/misc/barometer_setting 29.92; key 25; sim/cockpit/misc/barometer_setting = 29.91;
         set sim/cockpit/misc/barometer_setting 32; key 26; sim/cockpit/misc/barometer_setting = 32;
         key 3; sim/flightmodel/controls/parkbrake = 0.5; key 4; sim/flightmodel/controls/parkbrake = 0;
         key 66; sim/flightmodel/controls/sbrkrqst = 1; press 58; sim/flightmodel/controls/sbrkrqst = 0;
         release 58; sim/flightmodel/controls/sbrkrqst = 0;
         set sim/flightmodel/controls/flaprqst 0.5; press 47; sim/flightmodel/controls/flaprqst = 0.375;
         set sim/flightmodel/engine/ENGN_thro 0 0.5; set sim/cockpit2/engine/actuators/throttle_ratio 0 0.5;
         press 11; sim/flightmodel/engine/ENGN_thro[0] = 0; sim/flightmodel/engine/ENGN_thro[1] = 0.45;
         set sim/cockpit2/controls/rudder_trim 0.5; press 25; sim/cockpit2/controls/rudder_trim = 0;
         press 93; sim/cockpit2/switches/landing_lights_on = 1;
         press 81; sim/cockpit/autopilot/autopilot_state = 98304; press 81;
         set sim/cockpit/autopilot/autopilot_state 512; once sim/autopilot/approach;
         sim/cockpit/autopilot/autopilot_state = 0;
         set sim/cockpit/engine/ignition_on 3 3 3; once sim/magnetos/magnetos_left_3;
         sim/cockpit/engine/ignition_on[2] = 1; sim/cockpit/engine/ignition_on[1] = 3;
         once sim/flight_controls/landing_gear_toggle; sim/cockpit/switches/gear_handle_status = 1;
         key 93; key 94; press 94; sim/flightmodel/controls/sbrkrqst = 0)");
}

TEST_F(SimFlight, LeversChangeTheSpeedWithinFiveSeconds) {
  // Change in knots: from, to.
  const std::tuple<std::string, double, double> levers[] = {
      {"set sim/cockpit2/engine/actuators/throttle_ratio 1 1", 5, 60},
      {"set sim/flightmodel/engine/ENGN_thro 0 0", -40, -2},
      {"set sim/flightmodel/controls/flaprqst 1", -60, -4},
      {"set sim/flightmodel/controls/sbrkrqst 1", -60, -1}};
  for (const auto& [line, low, high] : levers) {
    Start();
    Seconds(2);
    const double before = Value("indicated_airspeed");
    Fly(line + "; wait 5");
    const double change = Value("indicated_airspeed") - before;
    EXPECT_TRUE(change > low && change < high) << line << ": " << change;
  }
}

TEST_F(SimFlight, YokeFliesUnderTheOverride) {
  Fly(R"(set sim/operation/override/override_joystick 1; set sim/joystick/yoke_roll_ratio 0.5;
         set sim/joystick/yolk_pitch_ratio 0.0; wait 2; phi = 15 to 90; set sim/joystick/yoke_roll_ratio 0.0)");
  const double theta = Value("theta");
  Fly("set sim/joystick/yolk_pitch_ratio 0.3; wait 2");
  EXPECT_GT(Value("theta"), theta + 2);
  Fly(R"(sim/flightmodel/forces/g_nrml = 1.1 to 5; set sim/operation/override/override_joystick 0; wait 20;
         phi = -27 to 27)");
}

// Moved far away: exactly there, and flying on. The climb of one frame is allowed for.
TEST_F(SimFlight, RepositioningAndAttitude) {
  PutPlace(49.5, 11.25, 2400);
  PutAttitude(std::sqrt(0.5), 0, 0, std::sqrt(0.5));  // level, east
  Fly(R"(local_vx := 110; local_vy := 5; local_vz := 0; frames 1; latitude = 49.4999 to 49.5001;
         longitude = 11.2499 to 11.2501; elevation = 2398 to 2402; psi = 89 to 91; groundspeed = 108 to 112;
         vh_ind = 4 to 6; wait 120; elevation = 2300 to 2500; longitude = 11.25 to 12)");
}

TEST_F(SimFlight, PausedAndOverriddenStandStill) {
  Fly("wait 1; key 0; sim/time/paused = 1");
  const double lat = Value("latitude"), zulu = Value("sim/time/zulu_time_sec");
  const double running = Value("sim/time/total_running_time_sec");
  Seconds(2);
  EXPECT_EQ(Value("latitude"), lat);
  EXPECT_EQ(Value("sim/time/zulu_time_sec"), zulu);
  EXPECT_GT(Value("sim/time/total_running_time_sec"), running + 1.9);
  Fly(R"(key 0; set sim/operation/override/override_planepath[0] 1;
         set sim/flightmodel/position/local_y 1234.5; set sim/flightmodel/position/psi 12.5; wait 2;
         local_y = 1234.5; psi = 12.5)");
  EXPECT_EQ(Value("latitude"), lat);
  EXPECT_NEAR(Value("sim/time/zulu_time_sec"), zulu + 2, 0.1);
  Fly("set sim/operation/override/override_planepath[0] 0; wait 1");
  EXPECT_NE(Value("latitude"), lat);
  EXPECT_GT(AngleBetween(Value("psi"), 12.5), 20);  // q is the master again
}

TEST_F(SimFlight, SimSpeedMultiplies) {
  const double zulu = Value("sim/time/zulu_time_sec"), fuel = Value(kFuel);
  Fly("set sim/time/sim_speed 4; wait 10; indicated_airspeed = 198 to 202");
  EXPECT_NEAR(Value("sim/time/zulu_time_sec"), zulu + 40, 0.1);
  EXPECT_NEAR(fuel - Value(kFuel), 38, 8);
}

// On the ground the aircraft follows a written velocity and attitude, backwards and turning, then stands.
TEST_F(SimFlight, PushedBackOnTheGround) {
  PutPlace(47.80, 9.29, 440);
  Put("local_y", sim::WorldGround(Value("local_x"), Value("local_z")) - 432 - 5);  // below: put onto the wheels
  Fly(R"(local_vx := 0; local_vy := 0; local_vz := 0; wait 60; sim/flightmodel/failures/onground_any = 1;
         groundspeed = 0 to 0.01; y_agl = 0 to 0.1)");
  const double startX = Value("local_x"), startZ = Value("local_z"), heading = Value("psi");
  for (int frame = 0; frame < 600; frame++) {
    const double psi = Value("psi") * std::numbers::pi / 180, half = psi / 2 + 0.1 * std::numbers::pi / 360;
    Put("local_vx", -1.5 * std::sin(psi));
    Put("local_vz", 1.5 * std::cos(psi));
    PutAttitude(std::cos(half), 0, 0, std::sin(half));
    SimFrames(1);
  }
  const double moved = std::hypot(Value("local_x") - startX, Value("local_z") - startZ);
  EXPECT_NEAR(moved, 12.25, 3.25);  // 15 m along an arc of 60 degrees, less friction
  EXPECT_NEAR(std::remainder(Value("psi") - heading, 360.0), 60, 3);
  Fly(R"(sim/flightmodel/failures/onground_any = 1; set sim/flightmodel/controls/parkbrake 1; wait 3;
         groundspeed = 0 to 0.01)");
}

TEST_F(SimFlight, EnginesGearAndFlapsObey) {
  Fly(R"(press 53; release 53; wait 8; sim/aircraft/parts/acf_gear_deploy[0] = 1;
         set sim/flightmodel/engine/ENGN_mixt[1] 0; wait 10; sim/flightmodel/engine/ENGN_running[1] = 0;
         sim/flightmodel/engine/ENGN_N1_[1] = 0 to 5; sim/flightmodel/engine/ENGN_N1_[0] = 20 to 110;
         sim/flightmodel/engine/ENGN_N1_[2] = 0; sim/cockpit2/engine/actuators/mixture_ratio[1] = 0;
         once sim/starters/engage_starter_2; wait 2; sim/cockpit/engine/starter_duration[1] = 0;
         set sim/flightmodel/engine/ENGN_mixt[1] 1; press 3; wait 5; release 3;
         sim/flightmodel/engine/ENGN_running[1] = 1;
         set sim/operation/failures/rel_engfai1 6; wait 1; sim/flightmodel/engine/ENGN_running[1] = 0;
         set sim/flightmodel/weight/m_fuel 0 0 0 0 0 0 0 0 0;
         wait 1; sim/flightmodel/engine/ENGN_running[0] = 0)");
}

TEST_F(SimFlight, DerivedValuesAgree) {
  Seconds(63);  // in the turn to base: everything moves
  const double psi = Value("psi") * std::numbers::pi / 360, theta = Value("theta") * std::numbers::pi / 360,
               phi = Value("phi") * std::numbers::pi / 360;
  EXPECT_NEAR(Value("q[0]"), cos(psi) * cos(theta) * cos(phi) + sin(psi) * sin(theta) * sin(phi), 1e-3);
  EXPECT_NEAR(Value("q[3]"), sin(psi) * cos(theta) * cos(phi) - cos(psi) * sin(theta) * sin(phi), 1e-3);
  EXPECT_NEAR(Value("groundspeed"), std::hypot(Value("local_vx"), Value("local_vz")), 0.01);
  EXPECT_NEAR(Value("vh_ind_fpm"), Value("vh_ind") * 60 / kFeet, 0.1);
  EXPECT_NEAR(Value("P") * std::numbers::pi / 180, Value("Prad"), 1e-5);
  EXPECT_NEAR(Value("sim/flightmodel/misc/machno"),
              Value("true_airspeed") / Value("sim/weather/speed_sound_ms"), 1e-4);
  const double x = Value("local_x"), z = Value("local_z");
  SimFrames(60);
  EXPECT_NEAR(std::hypot(Value("local_x") - x, Value("local_z") - z), Value("groundspeed"), 1.5);
}

TEST_F(SimFlight, ConversionInvertsEverywhere) {
  for (double lat : {-85.0, -33.9, 0.0, 47.8, 51.2, 89.0}) {
    for (double lon : {-179.9, -122.3, 0.0, 9.3, 179.9}) {
      double x, y, z, lat2, lon2, alt2;
      sim::WorldToLocal(lat, lon, 1234.5, &x, &y, &z);
      sim::LocalToWorld(x, y, z, &lat2, &lon2, &alt2);
      EXPECT_NEAR(lat2, lat, 1e-9);
      EXPECT_NEAR(std::remainder(lon2 - lon, 360.0), 0, 1e-9);
      EXPECT_NEAR(alt2, 1234.5, 1e-6);
    }
  }
}

// Final approach on the tuned instrument landing system: needles near the middle, marker, distance.
TEST_F(SimFlight, RadiosSeeTheApproach) {
  EXPECT_EQ(Ask(kNav1), "\"ISF\"");
  EXPECT_EQ(Ask("get sim/cockpit2/radios/indicators/adf1_nav_id"), "\"SN\"");
  Fly(R"(wait 185; sim/cockpit/radios/nav_type[0] = 4; sim/cockpit/radios/nav1_CDI = 1;
         sim/cockpit/radios/nav1_hdef_dot = -1 to 1; sim/cockpit/radios/nav1_vdef_dot = -1 to 1;
         sim/cockpit/radios/nav1_dir_degt = -10 to 10; sim/cockpit/radios/nav1_dme_dist_m = 0.5 to 4;
         navaid clear; frames 1; sim/cockpit/radios/nav_type[0] = 0)");
  EXPECT_EQ(Ask(kNav1), "\"\"");
  Fly(R"(set sim/operation/failures/rel_nav1 6; navaid vor NEW 10950 47.9 9.3 500 0 "New"; frames 1)");
  EXPECT_EQ(Ask(kNav1), "\"\"");
  Fly("set sim/operation/failures/rel_nav1 0; wait 2");
  EXPECT_EQ(Ask(kNav1), "\"NEW\"");
}

TEST_F(SimFlight, SameFramesSameFlight) {
  std::set<std::string> places;
  for (int run = 0; run < 2; run++) {
    Start("jet", true, 20);
    Seconds(100);
    places.insert(Ask("get sim/flightmodel/position/latitude") +
                  Ask("get sim/multiplayer/position/plane7_lat") + Ask(std::string("get ") + kFuel));
  }
  EXPECT_EQ(places.size(), 1U);
}

TEST_F(SimFlight, OthersFlyAndLeave) {
  const std::string plane = "sim/multiplayer/position/plane";
  Fly("planes 4; frames 1");
  const double lat = Value(plane + "3_lat");
  EXPECT_LT(std::hypot(Value(plane + "1_x") - Value("local_x"), Value(plane + "1_z") - Value("local_z")), 2000)
      << "one crosses close by";
  SimFrames(1);
  EXPECT_NE(Value(plane + "3_lat"), lat);
  Fly(plane + "4_lat = 0; planes 2;" + plane + "3_lat = 0");
}

TEST_F(SimFlight, AircraftBringTheirAddons) {
  // Aircraft, a dataref that it brings, its plug-in's signature, engines and their type.
  const std::tuple<std::string, std::string, const char*, int, int> all[] = {
      {"prop", "", "", 1, 0},
      {"turboprop", "", "", 2, 2},
      {"helicopter", "", "", 1, 2},
      {"b738-extended", "laminar/B738/tab/power", "", 2, 5},
      {"b738", "laminar/B738/autopilot/cmd_a_status", "", 2, 5},
      {"x737", "x737/systems/afds/HDG", "bs.x737.plugin", 2, 5},
      {"ixeg733", "ixeg/733/misc/seatbelt_act", "", 2, 5},
      {"ec135", "", "rotorsim.ec135.management", 2, 2}};
  std::string previous;
  for (const auto& [aircraft, brings, signature, engines, type] : all) {
    SCOPED_TRACE(aircraft);
    Ask("aircraft " + aircraft);
    EXPECT_EQ(sim::FindLive(previous), nullptr) << previous;
    previous = brings;
    EXPECT_EQ(sim::FindLive(brings) != nullptr, !brings.empty()) << brings;
    EXPECT_STREQ(sim::WorldAircraftPluginSignature(), signature);
    EXPECT_EQ(Value("sim/aircraft/engine/acf_num_engines"), engines);
    EXPECT_EQ(Value("sim/aircraft/prop/acf_en_type[0]"), type);
    Fly("wait 3; phi = -30 to 30; y_agl = 40 to 10000");
  }
}

// Without a flight nothing is derived, yet buttons and keys work.
TEST_F(SimFlight, NothingIsDerivedWithoutAFlight) {
  Start("jet", false);
  const double thrust = Value("sim/flightmodel/engine/ENGN_thro[0]");
  Fly(R"(sim/flightmodel/failures/onground_any = 1; set sim/flightmodel/position/theta 12.5;
         set sim/flightmodel/position/latitude 12.25; wait 2; theta = 12.5; latitude = 12.25;
         set sim/cockpit2/engine/actuators/throttle_ratio[0] 0.75; wait 2)");
  EXPECT_EQ(Value("sim/flightmodel/engine/ENGN_thro[0]"), thrust);
  for (int i = 0; i < 2; i++) XPLMSetDatai(Find(kState), 2);
  Fly(std::string(kState) + " = 0; press 52; sim/cockpit/switches/gear_handle_status = 0");
}

// Whatever a plug-in writes, the model goes on with numbers.
TEST_F(SimFlight, SurvivesNonsense) {
  PutAttitude(NAN, 0, 0, 0);
  Fly(R"(local_x := nan; local_y := nan; local_z := nan; sim/weather/wind_speed_kt[0] := nan;
         sim/weather/wind_altitude_msl_m[0] := nan; sim/weather/wind_altitude_msl_m[1] := nan;
         sim/weather/wind_altitude_msl_m[2] := nan;
         sim/weather/temperature_sealevel_c := nan; sim/cockpit/autopilot/heading_mag := nan; local_vx := inf;
         local_vy := inf; P := inf; Qrad := inf)");
  XPLMSetDatai(Find(kState), 2);
  Fly(R"(wait 30; latitude = -90 to 90; elevation = -1e9 to 1e9; psi = -1e9 to 1e9; theta = -1e9 to 1e9;
         indicated_airspeed = -1e9 to 1e9; local_vx = -1e9 to 1e9)");
}

}  // namespace
