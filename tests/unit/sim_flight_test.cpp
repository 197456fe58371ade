// The stand-in's world and flight model: measured, not believed. Every test flies the real thing, frame by
// frame, through the console and the plug-in interface.
#include <XPLMDataAccess.h>
#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <numbers>
#include <set>

#include "core/sim.h"

namespace {

using sim::SimCommand;
using sim::SimFrames;

constexpr char kPosition[] = "sim/flightmodel/position/";
constexpr double kFeet = 0.3048;

std::string Ask(const std::string& line) {
  std::string answer = SimCommand(line);
  EXPECT_EQ(answer.rfind("ok", 0), 0U) << line << ": " << answer;
  return answer.size() > 3 ? answer.substr(3) : "";
}

double Number(const std::string& name) {
  std::string text = Ask("get " + name);
  double value = NAN;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

double Own(const char* name) { return Number(kPosition + std::string(name)); }

void Seconds(int seconds) { SimFrames(seconds * 60); }

double AngleBetween(double a, double b) { return std::fabs(std::remainder(a - b, 360.0)); }

XPLMDataRef Find(const std::string& name) {
  XPLMDataRef ref = XPLMFindDataRef(name.c_str());
  EXPECT_NE(ref, nullptr) << name;
  return ref;
}

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
  const double lat = Own("latitude"), fuel = Number("sim/flightmodel/weight/m_fuel_total");
  SimFrames(1);
  EXPECT_NE(Own("latitude"), lat);
  EXPECT_LT(Number("sim/flightmodel/weight/m_fuel_total"), fuel);
  Seconds(60);
  for (const sim::DataRef* ref : sim::AllDataRefs()) {
    for (float value : ref->floats) EXPECT_TRUE(std::isfinite(value)) << ref->name;
    for (double value : ref->doubles) EXPECT_TRUE(std::isfinite(value)) << ref->name;
  }
}

// A lap by lap: back within a kilometre of the start, at the start's height, with the field overflown low.
TEST_F(SimFlight, LapCloses) {
  for (const char* aircraft : {"jet", "prop", "turboprop", "helicopter"}) {
    sim::SimStop();
    Start(aircraft);
    const double x = Own("local_x"), z = Own("local_z"), height = Own("elevation");
    double closest = 1e9, lowest = 1e9, heightThere = 0, flown = 0;
    bool away = false;
    const double fuel = Number("sim/flightmodel/weight/m_fuel_total");
    for (int second = 0; second < 700; second++) {
      Seconds(1);
      const double distance = std::hypot(Own("local_x") - x, Own("local_z") - z);
      flown += Own("groundspeed");
      away = away || distance > 3000;
      lowest = std::min(lowest, Own("y_agl"));
      if (away && flown > 15000 && distance < closest) closest = distance, heightThere = Own("elevation");
    }
    EXPECT_LT(closest, 1000) << aircraft;
    EXPECT_NEAR(heightThere, height, 60) << aircraft;
    EXPECT_GT(lowest, 40) << aircraft;
    EXPECT_LT(lowest, 150) << aircraft;
    EXPECT_LT(Number("sim/flightmodel/weight/m_fuel_total"), fuel) << aircraft;
  }
}

TEST_F(SimFlight, HeadingModeHolds) {
  for (double heading : {300.0, 5.0, 180.0}) {
    Ask("set sim/cockpit/autopilot/heading_mag " + std::to_string(static_cast<int>(heading)));
    Ask("set sim/cockpit/autopilot/autopilot_state 2");
    Seconds(100);  // half a circle at 2.4 degrees a second, and settling
    for (int i = 0; i < 60; i++) {
      Seconds(1);
      const double magnetic = Own("psi") + Own("magnetic_variation");
      ASSERT_LT(AngleBetween(magnetic, heading), 2) << "second " << i;
    }
  }
}

TEST_F(SimFlight, AltitudeModeClimbsDescendsAndHolds) {
  for (int feet : {5000, 3500}) {
    Ask("set sim/cockpit/autopilot/altitude " + std::to_string(feet));
    Ask("set sim/cockpit/autopilot/autopilot_state 16384");
    Seconds(120);
    for (int i = 0; i < 120; i++) {  // through turns as well: the circuit goes on
      Seconds(1);
      ASSERT_NEAR(Own("elevation") / kFeet, feet, 50) << "second " << i;
    }
  }
}

TEST_F(SimFlight, SpeedModeHoldsAndVerticalSpeedCaptures) {
  Ask("set sim/cockpit/autopilot/airspeed 240");
  Ask("set sim/cockpit2/autopilot/autothrottle_enabled 1");
  Ask("set sim/cockpit/autopilot/altitude 4500");
  Ask("set sim/cockpit/autopilot/vertical_velocity 1200");
  Ask("set sim/cockpit/autopilot/autopilot_state 51");  // speed, heading, vertical speed, altitude armed
  Seconds(40);
  EXPECT_NEAR(Own("vh_ind_fpm"), 1200, 100);
  Seconds(90);
  EXPECT_EQ(Number("sim/cockpit/autopilot/autopilot_state"), 1 + 2 + 16384);
  EXPECT_NEAR(Own("elevation") / kFeet, 4500, 50);
  EXPECT_NEAR(Own("indicated_airspeed"), 240, 3);
}

// Writing the state presses buttons: the same bit again ends the mode, another of the axis replaces it.
TEST_F(SimFlight, StateBitsArePresses) {
  const struct {
    int pressed, state;
  } presses[] = {{2, 2},         {2, 0},       {2, 2},        {4, 4},         {16, 20},
                 {16384, 16388}, {32, 16420},  {32, 16388},   {1, 16389},     {256, 16645},
                 {256, 16389},   {512, 16389}, {2048, 16389}, {4 | 16384, 1}, {1, 0}};
  const XPLMDataRef state = Find("sim/cockpit/autopilot/autopilot_state");
  for (const auto& press : presses) {
    XPLMSetDatai(state, press.pressed);
    EXPECT_EQ(XPLMGetDatai(state), press.state) << "after " << press.pressed;
  }
  sim::WorldKey(12);
  sim::WorldKey(16);
  EXPECT_EQ(XPLMGetDatai(state), 2 | 16384);
  sim::WorldKey(10);
  EXPECT_EQ(Number("sim/cockpit2/autopilot/autothrottle_enabled"), 1);
  sim::WorldKey(9);
  EXPECT_EQ(XPLMGetDatai(state), 0);
}

TEST_F(SimFlight, LeversChangeTheSpeedWithinFiveSeconds) {
  const struct {
    const char* what;
    const char* line;
    double low, high;  // change in knots
  } levers[] = {
      {"full throttle", "set sim/cockpit2/engine/actuators/throttle_ratio 1 1", 5, 60},
      {"throttle closed", "set sim/flightmodel/engine/ENGN_thro 0 0", -40, -2},
      {"flaps", "set sim/flightmodel/controls/flaprqst 1", -60, -4},
      {"speed brake", "set sim/flightmodel/controls/sbrkrqst 1", -60, -1},
  };
  for (const auto& lever : levers) {
    sim::SimStop();
    Start();
    Seconds(2);
    const double before = Own("indicated_airspeed");
    Ask(lever.line);
    Seconds(5);
    const double change = Own("indicated_airspeed") - before;
    EXPECT_GT(change, lever.low) << lever.what;
    EXPECT_LT(change, lever.high) << lever.what;
  }
}

TEST_F(SimFlight, YokeFliesUnderTheOverride) {
  Ask("set sim/operation/override/override_joystick 1");
  Ask("set sim/joystick/yoke_roll_ratio 0.5");
  Ask("set sim/joystick/yolk_pitch_ratio 0.0");
  Seconds(2);
  EXPECT_GT(Own("phi"), 15);
  Ask("set sim/joystick/yoke_roll_ratio 0.0");
  const double theta = Own("theta");
  Ask("set sim/joystick/yolk_pitch_ratio 0.3");
  Seconds(2);
  EXPECT_GT(Own("theta"), theta + 2);
  EXPECT_GT(Number("sim/flightmodel/forces/g_nrml"), 1.1);
  Ask("set sim/operation/override/override_joystick 0");
  Seconds(20);
  EXPECT_LT(std::fabs(Own("phi")), 27);
}

// Moved far away: exactly there, and flying on. The climb of one frame is allowed for.
TEST_F(SimFlight, RepositioningAndAttitude) {
  double x, y, z;
  sim::WorldToLocal(49.5, 11.25, 2400, &x, &y, &z);
  XPLMSetDatad(Find(kPosition + std::string("local_x")), x);
  XPLMSetDatad(Find(kPosition + std::string("local_y")), y);
  XPLMSetDatad(Find(kPosition + std::string("local_z")), z);
  float q[4] = {0.70710678F, 0, 0, 0.70710678F};  // level, east
  XPLMSetDatavf(Find(kPosition + std::string("q")), q, 0, 4);
  XPLMSetDataf(Find(kPosition + std::string("local_vx")), 110);
  XPLMSetDataf(Find(kPosition + std::string("local_vy")), 0);
  XPLMSetDataf(Find(kPosition + std::string("local_vz")), 0);
  SimFrames(1);
  EXPECT_NEAR(Own("latitude"), 49.5, 1e-4);
  EXPECT_NEAR(Own("longitude"), 11.25, 1e-4);
  EXPECT_NEAR(Own("elevation"), 2400, 2);
  EXPECT_NEAR(Own("psi"), 90, 1);
  EXPECT_NEAR(Own("groundspeed"), 110, 2);
  Seconds(120);
  EXPECT_NEAR(Own("elevation"), 2400, 100);  // circuits around the new place
  EXPECT_GT(Own("longitude"), 11.25);
}

TEST_F(SimFlight, PausedAndOverriddenStandStill) {
  Seconds(1);
  sim::WorldKey(0);
  EXPECT_EQ(Number("sim/time/paused"), 1);
  const double lat = Own("latitude"), zulu = Number("sim/time/zulu_time_sec");
  const double running = Number("sim/time/total_running_time_sec");
  Seconds(2);
  EXPECT_EQ(Own("latitude"), lat);
  EXPECT_EQ(Number("sim/time/zulu_time_sec"), zulu);
  EXPECT_GT(Number("sim/time/total_running_time_sec"), running + 1.9);
  sim::WorldKey(0);
  Ask("set sim/operation/override/override_planepath[0] 1");
  Ask("set sim/flightmodel/position/local_y 1234.5");
  Ask("set sim/flightmodel/position/psi 12.5");
  Seconds(2);
  EXPECT_EQ(Own("local_y"), 1234.5);
  EXPECT_EQ(Own("psi"), 12.5);
  EXPECT_EQ(Own("latitude"), lat);
  EXPECT_NEAR(Number("sim/time/zulu_time_sec"), zulu + 2, 0.1);
  Ask("set sim/operation/override/override_planepath[0] 0");
  Seconds(1);
  EXPECT_NE(Own("latitude"), lat);
  EXPECT_GT(AngleBetween(Own("psi"), 12.5), 20);  // q is the master again
}

TEST_F(SimFlight, SimSpeedMultiplies) {
  const double zulu = Number("sim/time/zulu_time_sec"), fuel = Number("sim/flightmodel/weight/m_fuel_total");
  Ask("set sim/time/sim_speed 4");
  Seconds(10);
  EXPECT_NEAR(Number("sim/time/zulu_time_sec"), zulu + 40, 0.1);
  EXPECT_NEAR(fuel - Number("sim/flightmodel/weight/m_fuel_total"), 38, 8);
  EXPECT_NEAR(Own("indicated_airspeed"), 200, 2);
}

// On the ground the aircraft follows a written velocity and attitude, backwards and turning, then stands.
TEST_F(SimFlight, PushedBackOnTheGround) {
  double x, y, z;
  sim::WorldToLocal(47.80, 9.29, 440, &x, &y, &z);
  y = sim::WorldGround(x, z) - 432 - 5;  // below the surface: put onto the wheels
  for (const auto& [name, value] : {std::pair{"local_x", x}, {"local_y", y}, {"local_z", z}}) {
    XPLMSetDatad(Find(kPosition + std::string(name)), value);
  }
  for (const char* name : {"local_vx", "local_vy", "local_vz"})
    XPLMSetDataf(Find(kPosition + std::string(name)), 0);
  Seconds(60);
  ASSERT_EQ(Number("sim/flightmodel/failures/onground_any"), 1);
  EXPECT_NEAR(Own("groundspeed"), 0, 0.01);
  EXPECT_NEAR(Own("y_agl"), 0, 0.1);
  const double startX = Own("local_x"), startZ = Own("local_z"), heading = Own("psi");
  for (int frame = 0; frame < 600; frame++) {
    const double psi = Own("psi"), half = (psi + 0.1) * std::numbers::pi / 360;
    XPLMSetDataf(Find(kPosition + std::string("local_vx")),
                 static_cast<float>(-1.5 * std::sin(psi * std::numbers::pi / 180)));
    XPLMSetDataf(Find(kPosition + std::string("local_vz")),
                 static_cast<float>(1.5 * std::cos(psi * std::numbers::pi / 180)));
    float q[4] = {static_cast<float>(std::cos(half)), 0, 0, static_cast<float>(std::sin(half))};
    XPLMSetDatavf(Find(kPosition + std::string("q")), q, 0, 4);
    SimFrames(1);
  }
  const double moved = std::hypot(Own("local_x") - startX, Own("local_z") - startZ);
  EXPECT_GT(moved, 9);  // 15 m along an arc of 60 degrees, less friction
  EXPECT_LT(moved, 15.5);
  EXPECT_NEAR(std::remainder(Own("psi") - heading, 360.0), 60, 3);
  EXPECT_EQ(Number("sim/flightmodel/failures/onground_any"), 1);
  Ask("set sim/flightmodel/controls/parkbrake 1");
  Seconds(3);
  EXPECT_NEAR(Own("groundspeed"), 0, 0.01);
}

TEST_F(SimFlight, EnginesGearAndFlapsObey) {
  sim::WorldButton(53, true);
  sim::WorldButton(53, false);
  Seconds(8);
  EXPECT_EQ(Number("sim/aircraft/parts/acf_gear_deploy[0]"), 1);
  Ask("set sim/flightmodel/engine/ENGN_mixt[1] 0");
  Seconds(10);
  EXPECT_EQ(Number("sim/flightmodel/engine/ENGN_running[1]"), 0);
  EXPECT_LT(Number("sim/flightmodel/engine/ENGN_N1_[1]"), 5);
  EXPECT_GT(Number("sim/flightmodel/engine/ENGN_N1_[0]"), 20);
  EXPECT_EQ(Number("sim/flightmodel/engine/ENGN_N1_[2]"), 0);
  EXPECT_EQ(Number("sim/cockpit2/engine/actuators/mixture_ratio[1]"), 0);  // one lever, two names
  Ask("set sim/flightmodel/engine/ENGN_mixt[1] 1");
  sim::WorldButton(3, true);
  Seconds(5);
  sim::WorldButton(3, false);
  EXPECT_EQ(Number("sim/flightmodel/engine/ENGN_running[1]"), 1);
  Ask("set sim/flightmodel/weight/m_fuel 0 0 0 0 0 0 0 0 0");
  Seconds(1);
  EXPECT_EQ(Number("sim/flightmodel/engine/ENGN_running[0]"), 0);
}

TEST_F(SimFlight, DerivedValuesAgree) {
  Seconds(63);  // in the turn to base: everything moves
  const double psi = Own("psi") * std::numbers::pi / 360, theta = Own("theta") * std::numbers::pi / 360,
               phi = Own("phi") * std::numbers::pi / 360;
  EXPECT_NEAR(Own("q[0]"), cos(psi) * cos(theta) * cos(phi) + sin(psi) * sin(theta) * sin(phi), 1e-3);
  EXPECT_NEAR(Own("q[3]"), sin(psi) * cos(theta) * cos(phi) - cos(psi) * sin(theta) * sin(phi), 1e-3);
  EXPECT_NEAR(Own("groundspeed"), std::hypot(Own("local_vx"), Own("local_vz")), 0.01);
  EXPECT_NEAR(Own("vh_ind_fpm"), Own("vh_ind") * 60 / kFeet, 0.1);
  EXPECT_NEAR(Own("P") * std::numbers::pi / 180, Own("Prad"), 1e-5);
  EXPECT_NEAR(Number("sim/flightmodel/misc/machno"),
              Own("true_airspeed") / Number("sim/weather/speed_sound_ms"), 1e-4);
  const double x = Own("local_x"), z = Own("local_z");
  SimFrames(60);
  EXPECT_NEAR(std::hypot(Own("local_x") - x, Own("local_z") - z), Own("groundspeed"), 1.5);
}

TEST_F(SimFlight, ConversionInvertsEverywhere) {
  for (double lat : {-85.0, -33.9, 0.0, 47.8, 51.2, 89.0}) {
    for (double lon : {-179.9, -122.3, 0.0, 9.3, 179.9}) {
      double x, y, z, lat2, lon2, alt2, x2, y2, z2;
      sim::WorldToLocal(lat, lon, 1234.5, &x, &y, &z);
      sim::LocalToWorld(x, y, z, &lat2, &lon2, &alt2);
      EXPECT_NEAR(lat2, lat, 1e-9);
      EXPECT_NEAR(std::remainder(lon2 - lon, 360.0), 0, 1e-9);
      EXPECT_NEAR(alt2, 1234.5, 1e-6);
      sim::WorldToLocal(lat2, lon2, alt2, &x2, &y2, &z2);
      EXPECT_NEAR(std::hypot(x2 - x, y2 - y, z2 - z), 0, 1e-3);
    }
  }
}

// Final approach on the tuned instrument landing system: needles near the middle, marker, distance.
TEST_F(SimFlight, RadiosSeeTheApproach) {
  EXPECT_EQ(Ask("get sim/cockpit2/radios/indicators/nav1_nav_id"), "\"ISF\"");
  EXPECT_EQ(Ask("get sim/cockpit2/radios/indicators/adf1_nav_id"), "\"SN\"");
  Seconds(185);
  EXPECT_EQ(Number("sim/cockpit/radios/nav_type[0]"), 4);
  EXPECT_EQ(Number("sim/cockpit/radios/nav1_CDI"), 1);
  EXPECT_LT(std::fabs(Number("sim/cockpit/radios/nav1_hdef_dot")), 1);
  EXPECT_LT(std::fabs(Number("sim/cockpit/radios/nav1_vdef_dot")), 1);
  EXPECT_LT(std::fabs(Number("sim/cockpit/radios/nav1_dir_degt")), 10);
  EXPECT_GT(Number("sim/cockpit/radios/nav1_dme_dist_m"), 0.5);
  EXPECT_LT(Number("sim/cockpit/radios/nav1_dme_dist_m"), 4);
  Ask("navaid clear");
  SimFrames(1);
  EXPECT_EQ(Ask("get sim/cockpit2/radios/indicators/nav1_nav_id"), "\"\"");
  EXPECT_EQ(Number("sim/cockpit/radios/nav_type[0]"), 0);
  Ask("set sim/operation/failures/rel_nav1 6");
  Ask("navaid vor NEW 10950 47.9 9.3 500 0 \"New\"");
  SimFrames(1);
  EXPECT_EQ(Ask("get sim/cockpit2/radios/indicators/nav1_nav_id"), "\"\"");
  Ask("set sim/operation/failures/rel_nav1 0");
  Seconds(2);
  EXPECT_EQ(Ask("get sim/cockpit2/radios/indicators/nav1_nav_id"), "\"NEW\"");
}

TEST_F(SimFlight, SameFramesSameFlight) {
  std::set<std::string> places;
  for (int run = 0; run < 2; run++) {
    sim::SimStop();
    Start("jet", true, 20);
    Seconds(100);
    places.insert(Ask("get sim/flightmodel/position/latitude") +
                  Ask("get sim/multiplayer/position/plane7_lat") +
                  Ask("get sim/flightmodel/weight/m_fuel_total"));
  }
  EXPECT_EQ(places.size(), 1U);
}

TEST_F(SimFlight, OthersFlyAndLeave) {
  Ask("planes 4");
  SimFrames(1);
  const double lat = Number("sim/multiplayer/position/plane3_lat");
  const double away = std::hypot(Number("sim/multiplayer/position/plane1_x") - Own("local_x"),
                                 Number("sim/multiplayer/position/plane1_z") - Own("local_z"));
  EXPECT_LT(away, 2000);  // one crosses close by
  SimFrames(1);
  EXPECT_NE(Number("sim/multiplayer/position/plane3_lat"), lat);
  EXPECT_EQ(Number("sim/multiplayer/position/plane4_lat"), 0);
  Ask("planes 2");
  EXPECT_EQ(Number("sim/multiplayer/position/plane3_lat"), 0);
}

TEST_F(SimFlight, AircraftBringTheirAddons) {
  const struct {
    const char *aircraft, *brings, *signature;
    int engines, type;
  } all[] = {{"prop", "", "", 1, 0},
             {"turboprop", "", "", 2, 2},
             {"helicopter", "", "", 1, 2},
             {"b738-extended", "laminar/B738/tab/power", "", 2, 5},
             {"b738", "laminar/B738/autopilot/cmd_a_status", "", 2, 5},
             {"x737", "x737/systems/afds/HDG", "bs.x737.plugin", 2, 5},
             {"ixeg733", "ixeg/733/misc/seatbelt_act", "", 2, 5},
             {"ec135", "", "rotorsim.ec135.management", 2, 2}};
  std::string previous;
  for (const auto& it : all) {
    Ask(std::string("aircraft ") + it.aircraft);
    EXPECT_EQ(sim::FindLive(previous), nullptr) << previous;
    previous = it.brings;
    EXPECT_EQ(sim::FindLive(previous) != nullptr, !previous.empty()) << previous;
    EXPECT_STREQ(sim::WorldAircraftPluginSignature(), it.signature);
    EXPECT_EQ(Number("sim/aircraft/engine/acf_num_engines"), it.engines) << it.aircraft;
    EXPECT_EQ(Number("sim/aircraft/prop/acf_en_type[0]"), it.type) << it.aircraft;
    Seconds(3);
    EXPECT_LT(std::fabs(Own("phi")), 30) << it.aircraft;
    EXPECT_GT(Own("y_agl"), 40) << it.aircraft;
  }
}

// Without a flight nothing is derived, yet buttons and keys work.
TEST_F(SimFlight, NothingIsDerivedWithoutAFlight) {
  sim::SimStop();
  Start("jet", false);
  EXPECT_EQ(Number("sim/flightmodel/failures/onground_any"), 1);
  Ask("set sim/flightmodel/position/theta 12.5");
  Ask("set sim/flightmodel/position/latitude 12.25");
  Ask("set sim/cockpit2/engine/actuators/throttle_ratio[0] 0.75");
  const double thrust = Number("sim/flightmodel/engine/ENGN_thro[0]");
  Seconds(2);
  EXPECT_EQ(Own("theta"), 12.5);
  EXPECT_EQ(Own("latitude"), 12.25);
  EXPECT_EQ(Number("sim/flightmodel/engine/ENGN_thro[0]"), thrust);
  XPLMSetDatai(Find("sim/cockpit/autopilot/autopilot_state"), 2);
  XPLMSetDatai(Find("sim/cockpit/autopilot/autopilot_state"), 2);
  EXPECT_EQ(Number("sim/cockpit/autopilot/autopilot_state"), 0);
  sim::WorldButton(52, true);
  EXPECT_EQ(Number("sim/cockpit/switches/gear_handle_status"), 0);
}

// Whatever a plug-in writes, the model goes on with numbers.
TEST_F(SimFlight, SurvivesNonsense) {
  for (const char* name : {"local_x", "local_y", "local_z"})
    XPLMSetDatad(Find(kPosition + std::string(name)), NAN);
  for (const char* name : {"local_vx", "local_vy", "P", "Qrad"}) {
    XPLMSetDataf(Find(kPosition + std::string(name)), INFINITY);
  }
  float q[4] = {NAN, 0, 0, 0};
  XPLMSetDatavf(Find(kPosition + std::string("q")), q, 0, 4);
  XPLMSetDataf(Find("sim/weather/wind_speed_kt[0]"), NAN);
  XPLMSetDataf(Find("sim/weather/temperature_sealevel_c"), NAN);
  XPLMSetDataf(Find("sim/cockpit/autopilot/heading_mag"), NAN);
  XPLMSetDatai(Find("sim/cockpit/autopilot/autopilot_state"), 2);
  Seconds(30);
  for (const char* name : {"latitude", "elevation", "psi", "theta", "indicated_airspeed", "local_vx"}) {
    EXPECT_TRUE(std::isfinite(Own(name))) << name;
  }
}

}  // namespace
