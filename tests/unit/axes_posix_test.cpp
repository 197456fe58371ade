// Joystick axes from the simulator's list to the offsets: who takes over when, what is written and what not,
// unplugging, overrides. (Where the system has joysticks of its own, tests/e2e/test_axes.py plays them.)
#include <limits>
#include <random>

#include "controls/axes.h"
#include "controls/buttons.h"
#include "custom_harness.h"
#include "shell/override_watch.h"

namespace {

constexpr float absent = std::numeric_limits<float>::quiet_NaN();
constexpr char pitchOverride[] = "sim/operation/override/override_joystick_pitch",
               rollOverride[] = "sim/operation/override/override_joystick_roll",
               throttleOverride[] = "sim/operation/override/override_throttles";

struct Axes : testing::Test {
  float readings[8] = {};
  std::string path;

  void SetUp() override {
    custom::Start();
    path = custom::Folder() + "TAVRIX.ini";
    SetSettingsPath(path.c_str());
    settings.toeBrakeNullZone = 0.1;
    settings.flapsActive = false;
    settings.flapDetents = 2;
    ASSERT_TRUE(CreateButtons());
    ASSERT_TRUE(CreateAxes());
  }
  void TearDown() override {
    StopAxisWrites();
    ReleaseOverrides();
    StopButtonThread();
    DeleteAxes();
    DeleteButtons();
    custom::Stop();
  }
  void Assign(const std::string& lines) {
    tools::WriteFile(path, "[TAVRIX AXIS SETTINGS]\n" + lines);
    LoadAxisAssignments();
    Frame();
  }
  // One frame, its round on this very thread; returns whether a round ran.
  bool Frame() {
    const bool ran = WatchAxes(readings, WantsAxisOverrides() ? OverridesOn() : overridesNotTold);
    RunAxisRound();
    custom::WriteFrame();
    return ran;
  }
  void Move(int axis, float reading) {
    readings[axis] = reading;
    Frame();
  }
};

TEST_F(Axes, TwoLeversDriveFourEngines) {
  Assign(
      "Assign Throttle 1 Axis = 0,3\nEngines Throttle 1 Axis = 1,2\nAssign Throttle 2 Axis = 0,4\n"
      "Engines Throttle 2 Axis = 3,4\nReverse Throttle 2 Axis = 0.2\n");
  const auto levers = [] {
    return std::vector<int>{rows::Read<int16_t>(0x088C), rows::Read<int16_t>(0x0924),
                            rows::Read<int16_t>(0x09BC), rows::Read<int16_t>(0x0A54)};
  };
  rows::Set(throttleOverride, 0);
  Frame();
  EXPECT_EQ(rows::Get(throttleOverride), 0) << "nothing has been moved";
  custom::Writes();
  Move(3, 0.5F);
  EXPECT_EQ(levers(), (std::vector<int>{8192, 8192, 0, 0}));
  EXPECT_EQ(rows::Get(throttleOverride), 1);
  EXPECT_NEAR(rows::Get("sim/flightmodel/engine/ENGN_thro_use[1]"), 0.5, 1e-4) << "what counts with it";
  Move(4, 1);
  EXPECT_EQ(levers(), (std::vector<int>{8192, 8192, 16384, 16384}));
  for (int engine = 0; engine < 4; ++engine) {
    EXPECT_NEAR(rows::Get("sim/cockpit2/engine/actuators/throttle_ratio[" + std::to_string(engine) + "]"),
                engine < 2 ? 0.5 : 1, 1e-4);
  }
  Move(4, 0);
  EXPECT_EQ(levers(), (std::vector<int>{8192, 8192, -4096, -4096}));
  EXPECT_EQ(rows::Get("sim/flightmodel/engine/ENGN_propmode[2]"), 3) << "reverse";
  Move(4, 0.2F);
  EXPECT_EQ(levers(), (std::vector<int>{8192, 8192, 0, 0})) << "the idle gate";

  // At rest there is no round and no write, and tremble below half a step is none either.
  custom::Writes();
  for (int i = 0; i < 50; ++i) EXPECT_FALSE(Frame());
  std::mt19937 random(7);
  for (int i = 0; i < 200; ++i) {
    readings[3] = 0.5F + static_cast<float>(random() % 1000) * (0.49F / 1000 / 16384);
    Frame();
  }
  EXPECT_EQ(custom::Writes(), "");

  // The last one wins: a client's write, and then the lever again.
  EXPECT_TRUE(rows::Write<int16_t>(0x088C, 1000));
  Frame();
  EXPECT_NEAR(rows::Get("sim/cockpit2/engine/actuators/throttle_ratio[0]"), 1000.0 / 16384, 1e-4);
  Move(3, 0.75F);
  EXPECT_NEAR(rows::Get("sim/cockpit2/engine/actuators/throttle_ratio[0]"), 0.75, 1e-4);
}

TEST_F(Axes, EachKindOfControl) {
  settings.flapsActive = true;
  settings.flapDetents = 3;
  std::fill(std::begin(settings.flapDetent), std::end(settings.flapDetent), FlapDetent{});
  for (const int axis : {0, 1, 4}) readings[axis] = 0.5F;
  Assign(
      "Assign Elevator Axis = 0,0\nCombine Elevator Axis = 0,1\nInvert Combined Elevator Axis = Yes\n"
      "Assign Left Toebrake Axis = 0,2\nAssign Flaps Axis = 0,3\nAssign Free 1 Axis = 0,4\n"
      "Target Free 1 Axis = 66F0,4,F,-2,2\nCalibrate Free 1 Axis = 0.25,0.5,0.75\n"
      "Assign Speedbrake Axis = 0,5\n");
  struct Case {
    int axis;
    float reading;
    const char* dataref;
    double value;
  };
  for (const Case& c : {Case{0, 1, "sim/joystick/yolk_pitch_ratio", 1},
                        {1, 0.75F, "sim/joystick/yolk_pitch_ratio", 0.5},  // 1 and -0.5
                        {0, 0.25F, "sim/joystick/yolk_pitch_ratio", -1},
                        {2, 0.05F, "sim/flightmodel/controls/l_brake_add", 0},
                        {2, 0.55F, "sim/flightmodel/controls/l_brake_add", 0.5},
                        {2, 1, "sim/flightmodel/controls/l_brake_add", 1},
                        {3, 0.45F, "sim/flightmodel/controls/flaprqst", 0.5},
                        {3, 0.69F, "sim/flightmodel/controls/flaprqst", 0.5},
                        {3, 0.85F, "sim/flightmodel/controls/flaprqst", 1},
                        {5, 1, "sim/flightmodel/controls/sbrkrqst", 1}}) {
    Move(c.axis, c.reading);
    EXPECT_NEAR(rows::Get(c.dataref), c.value, 1e-3) << c.axis << ' ' << static_cast<double>(c.reading);
  }
  Move(4, 0.375F);
  EXPECT_FLOAT_EQ(rows::Read<float>(0x66F0), -1);
}

// What a refresh shows may be the very value of an axis: a parked brake shows full pedals.
TEST_F(Axes, AValueThatStandsThereAlreadyArrives) {
  Assign("Assign Right Toebrake Axis = 0,2\nAssign Throttle 1 Axis = 0,3\n");
  for (const float reading : {0.4F, 0.7F}) Move(2, reading), Move(3, reading);
  rows::Set("sim/flightmodel/controls/parkbrake", 1);
  rows::Refresh(Cycle::C3);
  EXPECT_EQ(rows::Read<int16_t>(0x0BC6), 16383);
  {
    const LockScope lock(&offsetLock);
    Store<int16_t>(0x088C, 16384);
  }
  readings[2] = 1;
  Move(3, 1);
  EXPECT_EQ(rows::Get("sim/flightmodel/controls/r_brake_add"), 1);
  EXPECT_EQ(rows::Get("sim/cockpit2/engine/actuators/throttle_ratio[0]"), 1);
  EXPECT_EQ(tools::CountText(custom::Log(), "tavrixWriteValue"), 0);
  EXPECT_TRUE(rows::Write<int16_t>(0x0BC6, 100));
  Frame();
  EXPECT_EQ(tools::CountText(custom::Log(), "tavrixWriteValue"), 1) << "a client's write has its line";
}

// The user's own offsets take one write a frame: axes wait for it in turn, and a client's write that took the
// turn of an axis does not swallow its value.
TEST_F(Axes, OwnOffsetsGetEveryLastValue) {
  custom::Load(
      "Dataref a sim/flightmodel/controls/parkbrake float\nDataref b sim/flightmodel/controls/flaprqst float\n"
      "Dataref c sim/flightmodel/controls/rud_trim float\nOffset 66C0 FLOAT32 0 w >a @\n"
      "Offset 66C4 FLOAT32 0 w >b @\nOffset 66C8 FLOAT32 0 w >c @\n");
  Assign(
      "Assign Free 1 Axis = 0,1\nTarget Free 1 Axis = 66C0,4,F,0,1\nAssign Free 2 Axis = 0,2\n"
      "Target Free 2 Axis = 66C4,4,F,0,1\n");
  const auto controls = [](const char* name) {
    return rows::Get(std::string("sim/flightmodel/controls/") + name);
  };
  for (const float reading : {0.25F, 1.0F, 0.5F}) {
    readings[1] = readings[2] = reading;
    for (int frame = 0; frame < 4; ++frame) Frame();
    EXPECT_EQ(controls("parkbrake"), reading);
    EXPECT_EQ(controls("flaprqst"), reading);
  }
  // Both move all the time: neither has to wait until the other rests.
  for (int frame = 0; frame < 8; ++frame) {
    readings[1] = readings[2] = 0.6F + static_cast<float>(frame) / 32;
    Frame();
  }
  EXPECT_GT(controls("parkbrake"), 0.7);
  EXPECT_GT(controls("flaprqst"), 0.7);
  readings[1] = 0.125F;
  for (int frame = 0; frame < 4; ++frame) Frame();
  readings[1] = 0.75F;
  WatchAxes(readings, overridesNotTold);
  RunAxisRound();
  EXPECT_TRUE(rows::Write<float>(0x66C8, 0.5F));
  for (int frame = 0; frame < 4; ++frame) Frame();
  EXPECT_EQ(controls("rud_trim"), 0.5);
  EXPECT_EQ(controls("parkbrake"), 0.75);
}

// The second lever of a pair counts as where it stands, not as at rest, after another key was changed.
TEST_F(Axes, ASaveKeepsWhereTheOtherAxisStands) {
  const std::string pair = "Assign Left Toebrake Axis = 0,1\nCombine Left Toebrake Axis = 0,2\n";
  Assign(pair + "Nullzone Left Toebrake Axis = 0\n");
  Move(1, 1);
  Move(2, 0.3F);
  Assign(pair + "Nullzone Left Toebrake Axis = 0\nCurve Left Toebrake Axis = 0.5\n");
  Frame();
  Move(2, 0.4F);
  EXPECT_EQ(rows::Read<int16_t>(0x0BC4), 16383) << "the first pedal is still down";
  Move(1, 0);
  EXPECT_LT(rows::Read<int16_t>(0x0BC4), 8000);
}

// What is no reading is passed over; a device that is gone for half a second is told once, its last value
// stays, and when it is back it takes over without a jump.
TEST_F(Axes, UnpluggedAndPluggedInAgain) {
  readings[2] = readings[3] = 0.5F;
  Assign("Assign Aileron Axis = 0,2\nAssign Rudder Axis = 0,3\n");
  const auto aileron = [] { return rows::Read<int16_t>(0x0BB6); };
  Move(2, 0.9F);
  const int16_t frozen = aileron();
  EXPECT_NEAR(frozen, 0.8 * 16383, 1);
  for (const float absurd : {absent, 1e30F, -7.0F, -std::numeric_limits<float>::infinity()}) {
    Move(2, absurd);
    EXPECT_EQ(aileron(), frozen);
  }
  Move(2, 0.9F);
  EXPECT_EQ(custom::Log(), "") << "a moment without readings is nothing";
  Move(2, absent);
  Move(2, 0.1F);
  EXPECT_GT(aileron(), frozen - 3300) << "no jump after it either";
  Move(2, 0.9F);
  EXPECT_TRUE(tools::WaitUntil([&] { return Frame(), aileron() == frozen; }));
  const auto gone = [&] {
    return custom::Log().find("Joystick 0 gives no readings (Aileron)") != std::string::npos;
  };
  readings[2] = absent;
  EXPECT_TRUE(tools::WaitUntil([&] { return Frame(), gone(); }));
  for (int i = 0; i < 20; ++i) Frame();
  EXPECT_EQ(aileron(), frozen);
  EXPECT_EQ(tools::CountText(custom::Log(), "gives no readings"), 1);

  Move(2, 0.1F);
  EXPECT_EQ(tools::CountText(custom::Log(), "Joystick 0 is there again (Aileron)"), 1);
  EXPECT_EQ(aileron(), frozen) << "it has not been moved";
  readings[2] = 0.13F;
  Frame();
  int16_t before = aileron(), largest = 0;
  EXPECT_EQ(before, frozen);
  const auto goal = static_cast<int16_t>(std::lround((0.13 - 0.5) * 2 * 16383));
  EXPECT_TRUE(tools::WaitUntil([&] {
    Frame();
    largest = std::max(largest, static_cast<int16_t>(before - aileron()));
    before = aileron();
    return std::abs(before - goal) <= 1;
  }));
  EXPECT_LE(largest, 1700) << "a tenth of its way in a frame at most";
  EXPECT_EQ(rows::Read<int16_t>(0x0BBA), 0) << "the other axis of the device";
}

// Overrides: taken with the first value, those of others stay, a client's word counts, given back.
TEST_F(Axes, OverridesAreTakenAndGivenBack) {
  rows::Set(rollOverride, 1);  // another plug-in's
  Assign("Assign Elevator Axis = 0,0\nAssign Throttle 1 Axis = 0,1\n");
  Frame();
  EXPECT_EQ(rows::Get(pitchOverride), 0);
  Move(0, 0.3F);
  EXPECT_EQ(rows::Get(pitchOverride) + 2 * rows::Get(rollOverride) + 4 * rows::Get(throttleOverride), 3);
  EXPECT_TRUE(rows::Write<uint8_t>(0x310A, 2));
  Frame();
  EXPECT_EQ(rows::Get(pitchOverride), 0);
  Move(0, 0.9F);
  EXPECT_EQ(rows::Get(pitchOverride), 0) << "a client wants it so";
  Move(1, 0.5F);
  EXPECT_EQ(rows::Get(pitchOverride) + 2 * rows::Get(rollOverride) + 4 * rows::Get(throttleOverride), 6);
  Assign("Assign Elevator Axis = 0,0\n");  // no lever any more
  Frame();
  EXPECT_EQ(rows::Get(rollOverride) + 4 * rows::Get(throttleOverride), 1);
  Assign("Assign Throttle 1 Axis = 0,1\n");
  Frame();
  Move(1, 0.9F);
  EXPECT_EQ(rows::Get(throttleOverride), 1);
  // What another plug-in has switched off does not come back, and what a program has set itself stays.
  rows::Set(rollOverride, 0);
  for (const uint8_t byte : {uint8_t{0}, uint8_t{8}}) {
    EXPECT_TRUE(rows::Write<uint8_t>(0x310A, byte));
    Frame();
  }
  Assign("Assign Elevator Axis = 0,0\n");
  Frame();
  EXPECT_EQ(rows::Get(throttleOverride), 1) << "the program's own";
  Move(0, 0.2F);
  EXPECT_EQ(rows::Get(pitchOverride) + 2 * rows::Get(rollOverride) + 4 * rows::Get(throttleOverride), 5);
  rows::Set(rollOverride, 1);
  Assign("Assign Throttle 1 Axis = 0,1\n");
  Frame();
  Move(1, 0.5F);
  EXPECT_EQ(rows::Get(pitchOverride) + 2 * rows::Get(rollOverride) + 4 * rows::Get(throttleOverride), 6);
  Move(1, 0.9F);
  StopAxisWrites();
  ReleaseOverrides();
  Move(1, 0.1F);
  EXPECT_EQ(rows::Get(throttleOverride), 0);
  EXPECT_EQ(rows::Get(rollOverride), 1);
  EXPECT_NEAR(rows::Read<int16_t>(0x088C), 0.9 * 16384, 1) << "no more writes";
}

// The real thread, woken by frames, while windows look and assignments change.
TEST_F(Axes, ThreadFollowsWhileSettingsChangeThread) {
  ASSERT_TRUE(StartButtonThread());
  sim::SimCommand("axis 3 0.5");
  ButtonCycle(0, 0, 0, nullptr);
  tools::WriteFile(path,
                   "[TAVRIX AXIS SETTINGS]\nAssign Free 1 Axis = 0,3\nTarget Free 1 Axis = 66F0,2,0,1000\n");
  LoadAxisAssignments();
  // Until the thread has seen where the axis stands.
  EXPECT_TRUE(tools::WaitUntil([] { return ButtonCycle(0, 0, 0, nullptr), !WantsAxisOverrides(); }));
  const uint32_t moves = LastAxisMove().count;
  uint16_t goal = 0;
  for (int round = 0; round < 40; ++round) {
    goal = static_cast<uint16_t>(100 + round * 20);
    sim::SimCommand("axis 3 " + std::to_string(goal) + "e-3");
    EXPECT_TRUE(tools::WaitUntil([&] {
      ButtonCycle(0, 0, 0, nullptr);
      AxisReading({0, 3});
      return rows::Read<uint16_t>(0x66F0) == goal;
    })) << goal;
    if (round % 10 == 9) LoadAxisAssignments();
  }
  EXPECT_EQ(LastAxisMove().input, (AxisInput{0, 3}));
  EXPECT_GT(LastAxisMove().count, moves);
  EXPECT_NEAR(AxisReading({0, 3}), 0.88, 1e-6);
}

// Without an assignment the simulator is not asked for anything, and nothing is woken.
TEST_F(Axes, CostNothingWithoutAssignment) {
  Assign("");
  const auto calls = [] {
    sim::SimCommand("perf");
    for (int frame = 0; frame < 10; ++frame) ButtonCycle(0, 0, 0, nullptr);
    const std::string perf = sim::SimCommand("perf");
    return std::stoi(perf.substr(perf.find(" calls ") + 7));
  };
  EXPECT_FALSE(WantsAxes());
  EXPECT_EQ(calls(), 0);
  AxisReading({0, 3});
  EXPECT_EQ(calls(), 10) << "one read of the list a frame";
  Assign("Assign Free 1 Axis = 0,3\nTarget Free 1 Axis = 66F0,2,0,1000\n");
  Frame();
  EXPECT_EQ(calls(), 10);
}

}  // namespace
