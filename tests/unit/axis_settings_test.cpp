// Joystick axes in the settings file: every kind of key, what is refused, and what saving writes.
#include "controls/axis_settings.h"

#include "controls/axes.h"
#include "custom_harness.h"

namespace {

struct AxisFile : testing::Test {
  std::string path;
  void SetUp() override {
    custom::Start();
    path = custom::Folder() + "TAVRIX.ini";
    SetSettingsPath(path.c_str());
    settings.toeBrakeNullZone = 0.1;
    settings.flapsActive = false;
    settings.flapDetents = 2;
    ASSERT_TRUE(CreateAxes());
  }
  void TearDown() override {
    DeleteAxes();
    custom::Stop();
  }
  void Read(const std::string& lines) {
    tools::WriteFile(path, "[TAVRIX AXIS SETTINGS]\n" + lines);
    LoadAxisAssignments();
  }
};

size_t Control(const std::string& name) {
  for (size_t i = 0; i < axisControlCount; ++i) {
    if (NameOfControl(i) == name) return i;
  }
  ADD_FAILURE() << name;
  return 0;
}

TEST_F(AxisFile, EveryKindOfKey) {
  struct Case {
    AxisKey key;
    const char *text, *back;  // back: null when it is refused
  };
  using enum AxisKey;
  const std::string furthest = std::to_string(axisJoysticks - 1) + "," + std::to_string(axesOfJoystick - 1);
  const Case cases[] = {{Assign, furthest.c_str(), furthest.c_str()},
                        {Assign, " 0 , 3 ", "0,3"},
                        {Assign, "NOT ASSIGNED", "Not assigned"},
                        {Assign, "", "Not assigned"},
                        {Assign, "16,0", nullptr},
                        {Assign, "0,512", nullptr},
                        {Assign, "0,-1", nullptr},
                        {Assign, "0", nullptr},
                        {Assign, "0,1,2", nullptr},
                        {Combine, "0,4", "0,4"},
                        {Invert, "Yes", "Yes"},
                        {InvertCombined, "no", "No"},
                        {Invert, "yes", nullptr},
                        {Calibrate, "0.1,0.5,0.9", "0.1,0.5,0.9"},
                        {CalibrateCombined, "0,0.25,1", "0,0.25,1"},
                        {Calibrate, "0.9,0.5,0.1", nullptr},
                        {Calibrate, "0,0,1", nullptr},
                        {Calibrate, "0,0.5,1.1", nullptr},
                        {Calibrate, "0,nan,1", nullptr},
                        {Calibrate, "0,0.5", nullptr},
                        {NullZone, "0.05", "0.05"},
                        {NullZone, "0.95", nullptr},
                        {NullZone, "5%", nullptr},
                        {Curve, "-0.5", "-0.5"},
                        {Curve, "1.5", nullptr},
                        {Reverse, "0.2", "0.2"},
                        {Reverse, "1", nullptr},
                        {Engines, "4, 1", "1,4"},
                        {Engines, "", nullptr},
                        {Engines, "5", nullptr},
                        {Engines, "1,2,3,4,1", nullptr},
                        {Target, "66f0,2,-16383,16383", "66F0,2,S,-16383,16383"},
                        {Target, "0x66F0,1,0,255", "66F0,1,U,0,255"},
                        {Target, "66F0,4,F,1,-0.5", "66F0,4,F,1,-0.5"},
                        {Target, "1FFFE,2,S,0,1", "1FFFE,2,S,0,1"},
                        {Target, "66F0,2,S,0,32768", nullptr},
                        {Target, "66F0,2,U,-1,1", nullptr},
                        {Target, "66F0,2,F,0,1", nullptr},
                        {Target, "66F0,2,S,0.5,1", nullptr},
                        {Target, "66F0,3,0,1", nullptr},
                        {Target, "66F0,2,7,7", nullptr},
                        {Target, "1FFFF,2,0,1", nullptr},
                        {Target, "3304,4,0,1", nullptr},  // clients may only read it
                        {Target, "66F0,2,0,1,2,3", nullptr},
                        {Target, "66F0,4,F,0,1e31", nullptr},
                        {Target, "66F0,4,F,0,inf", nullptr}};
  for (const Case& c : cases) {
    AxisSettings taken;
    const std::string fault = TakeAxisKey(c.key, c.text, &taken);
    EXPECT_EQ(fault.empty(), c.back != nullptr) << c.text << ": " << fault;
    if (c.back != nullptr) {
      EXPECT_EQ(AxisKeyText(c.key, taken), c.back);
    } else {
      EXPECT_EQ(taken, AxisSettings{}) << c.text;
    }
  }
}

TEST_F(AxisFile, AssignmentsOfAFile) {
  Read(
      "Assign Throttle 1 Axis = 0,2\nEngines Throttle 1 Axis = 1,2\nReverse Throttle 1 Axis = 0.25\n"
      "Combine Rudder Axis = 0,3\ninvert rudder axis = Yes\nAssign Left Toebrake Axis = 0,4\n"
      "Assign Right Toebrake Axis = 0,5\nNullzone Right Toebrake Axis = 0.02\nAssign Tiller Axis = 0,0\n"
      "Assign Free 8 Axis = 0,1\nTarget Free 8 Axis = 66F0,2,-100,100\nCurve Aileron Axis = 9\n"
      "Assign Throttle 4 Axis = 0,2\nEngines Throttle 4 Axis = 2\nAssign Free 1 Axis = 0,1\n"
      "Target Free 1 Axis = 66EF,2,0,1\n");
  const auto made = [](const char* name) {
    return MakeAssignment(Control(name), AxisSettingsOf(Control(name)));
  };
  const AxisAssignment throttle = made("Throttle 1"), rudder = made("Rudder"), free = made("Free 8");
  EXPECT_EQ(throttle.targetCount, 2);
  EXPECT_EQ(throttle.targets[1].offset, 0x0924u);
  EXPECT_EQ(throttle.targets[1].low, -4096);
  EXPECT_EQ(throttle.travel, Travel::Reversing);
  EXPECT_EQ(throttle.overrides, 8u);
  EXPECT_EQ(rudder.inputs[0], (AxisInput{0, 3})) << "one that is only combined is the control's axis";
  EXPECT_FALSE(IsAssigned(rudder.inputs[1]));
  EXPECT_TRUE(rudder.tunes[0].inverted);
  EXPECT_EQ(free.travel, Travel::Centred);
  EXPECT_EQ(made("Left Toebrake").tunes[0].nullZone, 0.1) << "the key that both have";
  EXPECT_EQ(made("Right Toebrake").tunes[0].nullZone, 0.02);
  for (const char* none : {"Elevator", "Aileron", "Tiller", "Throttle 2"}) EXPECT_EQ(made(none).targetCount, 0);
  const std::string log = custom::Log();
  for (const char* told : {"\"Curve Aileron Axis\" in TAVRIX.ini is not used, it holds 9: it is from -0.5 to 1",
                           "The axis Tiller moves nothing: \"Target Tiller Axis\"",
                           "The axes Throttle 1 and Throttle 4 move the same bytes",
                           "The axes Free 1 and Free 8 move the same bytes"}) {
    EXPECT_NE(log.find(told), std::string::npos) << told << '\n' << log;
  }
}

// Only keys that differ are written; an installation without axes keeps its file.
TEST_F(AxisFile, SavingWritesWhatDiffers) {
  const std::string before = "; mine\nInvert Elevator Axis = No\nNullzone Elevator Axis = 0.1\n";
  Read(before);
  AxisSettings changed = AxisSettingsOf(Control("Elevator"));
  EXPECT_FALSE(WantsAxes());
  EXPECT_TRUE(SaveAxisSettings(Control("Elevator"), changed));
  EXPECT_EQ(tools::ReadFile(path), "[TAVRIX AXIS SETTINGS]\n" + before);
  changed.inputs[0] = {0, 1};
  changed.calibrations[0] = {0.1, 0.4, 0.9};
  EXPECT_TRUE(SaveAxisSettings(Control("Elevator"), changed));
  EXPECT_EQ(tools::ReadFile(path), "[TAVRIX AXIS SETTINGS]\n" + before +
                                       "Assign Elevator Axis = 0,1\nCalibrate Elevator Axis = 0.1,0.4,0.9\n");
  EXPECT_EQ(AxisSettingsOf(Control("Elevator")), changed);
  EXPECT_TRUE(WantsAxes());
  // Lines that were edited by hand meanwhile, and such as are no good.
  tools::WriteFile(path, "[TAVRIX AXIS SETTINGS]\nAssign Elevator Axis = 0,7\nCurve Elevator Axis = garbage\n");
  EXPECT_TRUE(SaveAxisSettings(Control("Elevator"), changed));
  EXPECT_EQ(tools::ReadFile(path),
            "[TAVRIX AXIS SETTINGS]\nAssign Elevator Axis = 0,1\nCurve Elevator Axis = 0\n"
            "Calibrate Elevator Axis = 0.1,0.4,0.9\nNullzone Elevator Axis = 0.1\n");
  changed.calibrations[0] = {0, 0, 1};
  EXPECT_EQ(
      FaultOfAxisSettings(Control("Elevator"), changed),
      "Calibrate Elevator Axis: it is minimum,centre,maximum, each larger than the one before, from 0 to 1");
  SetSettingsPath("");
  EXPECT_FALSE(SaveAxisSettings(Control("Aileron"), changed));
}

}  // namespace
