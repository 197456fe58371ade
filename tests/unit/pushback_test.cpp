// Pushback: commands, speeds, turns, roll-out, parking brake, settings, overrides given back.
#include "pushback/pushback.h"

#include <cmath>
#include <filesystem>
#include <functional>
#include <numbers>
#include <tuple>

#include "bridge/catalogue/reposition.h"
#include "row_harness.h"
#include "settings/settings.h"
#include "test_tools.h"

#define POSITION "sim/flightmodel/position/"

namespace {

using rows::Get;
using rows::Set;

constexpr const char* parkingBrake = "sim/flightmodel/controls/parkbrake";
constexpr uint32_t stopped = 3;
constexpr const char* overrides[] = {"sim/operation/override/override_joystick",
                                     "sim/operation/override/override_gearbrake",
                                     "sim/operation/override/override_artstab"};

class Pushback : public testing::Test {
 protected:
  void SetUp() override {
    rows::Start();
    folder = std::filesystem::temp_directory_path() / "tavrix pushback test";
    std::filesystem::create_directories(folder);
    file = folder / "TAVRIX.ini";
    Begin("MaxSpeed = -1.5\nMaxTurnSpeed = 0.15\n");
    rows::SetAll({{parkingBrake, 0}, {POSITION "psi", 0}});
  }
  void TearDown() override {
    StopPushback();
    rows::Stop();
    std::filesystem::remove_all(folder);
  }
  void Begin(const std::string& keys) {
    StopPushback();
    WriteSettings(keys);
    InitPushback();
  }
  void WriteSettings(const std::string& keys) {
    tools::WriteFile(file, "[PUSHBACK SETTINGS]\n" + keys);
    SetSettingsPath(file.string().c_str());
  }
  std::string File() const { return tools::ReadFile(file); }
  static void Frames(int count) {
    for (int i = 0; i < count; ++i) PushbackStep();
  }
  static double Vx() { return Get(POSITION "local_vx"); }
  static double Vz() { return Get(POSITION "local_vz"); }
  static void SetHeading(double psi) { Set(POSITION "psi", psi); }
  static double QuaternionHeading() {
    const double heading = QuaternionToEuler(ReadQuaternion()).heading;
    return heading < -1e-4 ? heading + 360 : heading;
  }
  static void ExpectOverrides(int on) {
    for (const char* name : overrides) EXPECT_EQ(Get(name), on) << name;
  }
  // A turn leaves its mark on the speed that is applied; only the brake takes it away.
  static void EndTurn() {
    Set(parkingBrake, 1);
    CommandPushback(0);
    Set(parkingBrake, 0);
  }

  std::filesystem::path folder, file;
};

TEST_F(Pushback, CommandsThroughTheOffset) {
  const std::string controls[] = {"sim/flightmodel/controls/l_brake_add",
                                  "sim/flightmodel/controls/r_brake_add", "sim/joystick/yoke_heading_ratio",
                                  "sim/flightmodel/controls/dist"};
  // Written, parking brake, mode, whether it takes the overrides.
  const std::tuple<uint32_t, double, int, bool> cases[] = {
      {0, 0, 0, true},          {1, 0, 1, true},    {2, 0, 2, true},  {7, 0, 0, true},
      {0xFFFFFFFF, 0, 0, true}, {0, 0.1, 3, false}, {2, 1, 3, false}, {7, 1, 3, false}};
  for (const auto& [written, brake, mode, overridden] : cases) {
    SCOPED_TRACE(written);
    Set(parkingBrake, brake);
    CopyToMemory(0x31F4, 4, &stopped);
    for (const std::string& name : controls) Set(name, 0.5);
    rows::WriteAndRun(0x31F4, written);
    EXPECT_EQ(pushbackMode, mode);
    ExpectOverrides(overridden);
    for (const std::string& name : controls) EXPECT_EQ(Get(name), overridden ? 0 : 0.5) << name;
    rows::Refresh(Cycle::C31Navigation);
    rows::ExpectShown({{0x31F0, rows::U32, double(mode)}, {0x31F4, rows::U32, double(mode)}});
    rows::WriteAndRun<uint32_t>(0x31F4, 3);
    EXPECT_EQ(pushbackMode, 3);
    ExpectOverrides(0);
  }
  // The same command twice starts once.
  Set(parkingBrake, 0);
  rows::WriteAndRun<uint32_t>(0x31F4, 2);
  Set("sim/flightmodel/controls/dist", 12);
  rows::WriteAndRun<uint32_t>(0x31F4, 2);
  EXPECT_EQ(Get("sim/flightmodel/controls/dist"), 12);
}

TEST_F(Pushback, SpeedRampsAndAlternatesAroundTheWantedOne) {
  CommandPushback(0);
  for (const auto& [frames, speed] : {std::pair{1, -0.009},
                                      {99, -0.9},
                                      {66, -1.494},
                                      {1, -1.503},
                                      {1, -1.494},
                                      {1, -1.503},
                                      {1001, -1.494}}) {
    Frames(frames);
    EXPECT_NEAR(Vz(), -speed, 1e-4) << frames;
    EXPECT_NEAR(Vx(), 0, 1e-6);
  }
  // Along the heading, whatever that is.
  for (const double psi : {0.0, 90.0, 135.0, 270.0, 359.5}) {
    SetHeading(psi);
    Frames(1);
    const double heading = psi * std::numbers::pi / 180;
    const double speed = std::hypot(Vx(), Vz());
    EXPECT_NEAR(Vx(), -speed * std::sin(heading), 1e-5) << psi;
    EXPECT_NEAR(Vz(), speed * std::cos(heading), 1e-5) << psi;
  }
}

TEST_F(Pushback, RollsOutAfterAStop) {
  CommandPushback(0);
  Frames(10);  // -0.09 m/s
  CommandPushback(3);
  Frames(1);
  EXPECT_NEAR(Vz(), 0.04, 1e-5);
  Frames(1);
  EXPECT_NEAR(Vz(), -0.01, 1e-5);  // past standing by less than a step
  Set(POSITION "local_vz", 0.7);
  Frames(1);
  EXPECT_FLOAT_EQ(static_cast<float>(Vz()), 0.7F);  // not ours any longer
}

TEST_F(Pushback, TurnsBothWaysWithTheRateKept) {
  SetHeading(100);
  CommandPushback(1);
  Frames(40);
  EXPECT_NEAR(QuaternionHeading(), 100.15, 1e-3);  // the rate has reached its limit by now
  EXPECT_NEAR(std::hypot(Vx(), Vz()), 0.375, 1e-5);
  CommandPushback(2);
  Frames(1);
  EXPECT_NEAR(QuaternionHeading(), 99.85, 1e-3);
  rows::SetAll({{POSITION "theta", 2}, {POSITION "phi", -1}});
  for (const auto& [mode, psi, heading] : std::initializer_list<std::tuple<uint32_t, double, double>>{
           {1, 359.95, 0}, {1, 359.5, 359.65}, {2, 0.05, 360}, {2, 0.5, 0.35}, {1, 0, 0.15}}) {
    CommandPushback(mode);
    SetHeading(psi);
    Frames(1);
    EXPECT_NEAR(std::remainder(QuaternionHeading() - heading, 360.0), 0, 1e-3) << psi;
    EXPECT_NEAR(QuaternionToEuler(ReadQuaternion()).pitch, 2, 1e-3);
    EXPECT_NEAR(QuaternionToEuler(ReadQuaternion()).bank, -1, 1e-3);
  }
  // The roll-out of a turn, and even a straight push after it, goes at the turn speed.
  SetHeading(0);
  CommandPushback(3);
  Frames(1);
  EXPECT_NEAR(Vz(), 0.375, 1e-5);
  EndTurn();
  CommandPushback(0);
  Frames(1);
  EXPECT_NEAR(Vz(), 0.009, 1e-5);
}

// However it ends: the overrides are given back. And which ends keep the rate for the next turn, and which let
// it begin slowly again.
TEST_F(Pushback, EveryEndGivesBackAndKeepsTheRateOrNot) {
  constexpr double limit = 0.15, step = 0.005;
  const auto brake = [](double set) { Set(parkingBrake, set), PushbackStep(); };
  // What ends it, the rate of the first frame of the next turn, whether it stands at once, without a roll-out.
  const std::tuple<const char*, std::function<void()>, double, bool> cases[] = {
      {"stop", [] { CommandPushback(3); }, limit, false},
      {"brake while it turns", [&] { brake(0.01); }, limit, true},
      {"start with the brake set", [] { Set(parkingBrake, 1), CommandPushback(1); }, limit, true},
      {"crash", AbortPushback, step, true},
      {"crash after a stop", [] { CommandPushback(3), AbortPushback(); }, step, true},
      {"disable", [] { StopPushback(), InitPushback(); }, step, true},
      {"the setting falls", [&] { WriteSettings("MaxTurnSpeed = 0.04\n"), LoadPushbackSettings(), brake(1); },
       0.04, true}};
  for (const auto& [what, end, next, stands] : cases) {
    SCOPED_TRACE(what);
    Set(parkingBrake, 0);
    SetHeading(100);
    CommandPushback(1);
    Frames(60);
    ExpectOverrides(1);
    EXPECT_NEAR(QuaternionHeading(), 100 + limit, 1e-4);
    end();
    ExpectOverrides(0);
    EXPECT_EQ(pushbackMode, 3);
    if (stands) {
      Set(POSITION "local_vz", 0.3);
      Frames(3);
      EXPECT_FLOAT_EQ(static_cast<float>(Vz()), 0.3F);
    }
    Set(parkingBrake, 0);
    CommandPushback(1);
    Frames(1);
    EXPECT_NEAR(QuaternionHeading(), 100 + next, 1e-4);
  }
}

TEST_F(Pushback, OverridesOfOthersAreLeftAloneWhileItNeverRan) {
  for (const char* name : overrides) Set(name, 1);
  AbortPushback();
  StopPushback();
  ExpectOverrides(1);
}

TEST_F(Pushback, SettingsAreReadAndCompleted) {
  Begin("");
  EXPECT_NE(File().find("MaxSpeed = -1.5\n"), std::string::npos);
  EXPECT_NE(File().find("MaxTurnSpeed = 0.15\n"), std::string::npos);
  Begin("MaxSpeed = 0.9\nMaxTurnSpeed = 0.01\n");  // forwards
  CommandPushback(0);
  Frames(200);
  EXPECT_NEAR(Vz(), -0.9, 0.01);
  EXPECT_EQ(File(), "[PUSHBACK SETTINGS]\nMaxSpeed = 0.9\nMaxTurnSpeed = 0.01\n");
  SetHeading(50);
  CommandPushback(1);
  Frames(50);
  EXPECT_NEAR(QuaternionHeading(), 50.01, 1e-3);
  EXPECT_NEAR(std::hypot(Vx(), Vz()), 0.225, 1e-5);
  EndTurn();
  StopPushback();
  SetSettingsPath("");  // cannot be read or written: the defaults
  InitPushback();
  SetHeading(0);
  CommandPushback(0);
  Frames(400);
  EXPECT_NEAR(Vz(), 1.5, 0.01);
  SetHeading(50);
  CommandPushback(1);
  Frames(50);
  EXPECT_NEAR(QuaternionHeading(), 50.15, 1e-3);
  EndTurn();
  Begin("MaxSpeed = fast\nMaxTurnSpeed = -1\n");  // nonsense moves nothing
  CommandPushback(1);
  Frames(10);
  EXPECT_EQ(std::hypot(Vx(), Vz()), 0);
  EXPECT_NEAR(QuaternionHeading(), 50, 1e-3);
  EndTurn();
  Begin("MaxSpeed = -1e300\nMaxTurnSpeed = 1e300\n");  // more than a float holds
  CommandPushback(1);
  Frames(10);
  EXPECT_NEAR(std::hypot(Vx(), Vz()), 25, 1e-3);
  EndTurn();
}

TEST_F(Pushback, MissingDatarefsDoNoHarm) {
  for (const char* name : overrides) sim::Withdraw(sim::FindLive(name));
  for (const char* name : {"parkbrake", "dist"}) {
    sim::Withdraw(sim::FindLive(std::string("sim/flightmodel/controls/") + name));
  }
  Begin("MaxSpeed = -1.5\n");
  CommandPushback(1);
  Frames(5);
  EXPECT_EQ(pushbackMode, 1);
}

}  // namespace
