// The windows for joystick axes as a person uses them, with the simulator's list of axes.
#include "controls/axes.h"
#include "panels_harness.h"

namespace {

using namespace panels;

constexpr char assigned[] = "Axis (joystick,axis)", combinedWith[] = "Combined with", nullZone[] = "Null zone",
               ends[] = "Minimum,centre,maximum", target[] = "Offset,size,type,low,high";

struct AxisPanels : Panels {
  const char* title = calibrationWindowTitle;
  // A text typed, or a button or box pressed, and what the last line says then.
  void Do(const char* label, const char* text, const char* message) {
    const std::string where = '"' + std::string(title) + "\" \"" + label + '"';
    EXPECT_EQ(SimCommand(text == nullptr ? "press " + where : "type " + where + " \"" + text + '"'), "ok")
        << label;
    EXPECT_EQ(Message(title), message) << label << ' ' << (text != nullptr ? text : "");
    if (text != nullptr && sim::keyboardFocus != nullptr) Key(XPLM_KEY_ESCAPE);
  }
  void ChooseControl(const char* name) {
    for (int i = 0; i < 30 && Shown(title, "Control") != name; ++i) Do("NEXT", nullptr, "");
    EXPECT_EQ(Shown(title, "Control"), name);
  }
  // The axis is where it is put, as the window sees it; to and fro on its way there.
  void Stick(int axis, double value, const std::string& label, const std::string& shown, double by = 0) {
    EXPECT_TRUE(tools::WaitUntil([&] {
      for (const double at : {value + by, value}) {
        SimCommand("axis " + std::to_string(axis) + ' ' + std::to_string(at));
        sim::SimFrames(1);
      }
      return Shown(title, label).starts_with(shown);
    })) << axis
        << ' ' << Shown(title, label);
  }
  std::string Key(const char* name) const { return Setting("TAVRIX AXIS SETTINGS", name); }
  using Panels::Setting;
  static void Key(char key) { panels::Key(key); }
};

TEST_F(AxisPanels, CalibratesALeverThread) {
  Open(title);
  ChooseControl("Elevator");
  Do("PREVIOUS", nullptr, "");
  EXPECT_EQ(Shown(title, "Control"), "Free 8");
  Do("SAVE", nullptr, "Enter the offset that the axis is to move");
  Do(target, "3304,4,0,1", "the offset cannot be written");
  Do(target, "66F0,2,0,1000", "Not saved yet");
  EXPECT_EQ(Shown(title, target), "66F0,2,U,0,1000");
  Do(assigned, "1,0", "It is \"Not assigned\" or joystick,axis: joystick 0, axis 0 to 511");
  Do(nullZone, "2", "It is a share of full travel, 0 to 0.9");
  Do("Calibrate by moving", nullptr, "The axis gives no reading");
  Do(assigned, "0,7", "Not saved yet");
  Stick(7, 0.5, "Axis stands at", "0.500 |");
  Do("CENTRE", nullptr, "Not saved yet");
  Do("Calibrate by moving", nullptr, "Move the axis to both ends, then switch this off");
  Do("Calibrate by moving", nullptr, "The axis was hardly moved: the old ends stay");
  Do("Calibrate by moving", nullptr, "Move the axis to both ends, then switch this off");
  Stick(7, 0.25, "Axis stands at", "0.250 |");
  Stick(7, 0.25, "Minimum,centre,maximum", "0.25,0.375,0.5");
  Stick(7, 0.75, "Axis stands at", "0.750 |");
  Do("CENTRE", nullptr, "The axis stands at an end, or the ends are not known yet");
  Do("Calibrate by moving", nullptr, "Let the axis go and press CENTRE, or save");
  Stick(7, 0.375, "Control moves to", "0.250 ||||||||||");
  Do(nullZone, "0.5", "Not saved yet");
  Stick(7, 0.45, "Control moves to", "0.000 ");
  EXPECT_EQ(Key("Assign Free 8 Axis"), "missing") << "nothing of it is saved";
  Do("SAVE", nullptr, "Saved Free 8, in force now");
  EXPECT_EQ(Key("Assign Free 8 Axis") + ' ' + Key("Calibrate Free 8 Axis") + ' ' + Key("Nullzone Free 8 Axis") +
                ' ' + Key("Target Free 8 Axis"),
            "0,7 0.25,0.5,0.75 0.5 66F0,2,U,0,1000");
  EXPECT_EQ(FaultsOf(1024, 768), "");
  // In force: it takes over once it is moved.
  EXPECT_TRUE(tools::WaitUntil([] { return sim::SimFrames(1), !WantsAxisOverrides(); }));
  Stick(7, 0.75, "Control moves to", "1.000 ");
  EXPECT_TRUE(tools::WaitUntil([] { return rows::Read<uint16_t>(0x66F0) == 1000; }));
  Do("CLEAR", nullptr, "Cleared Free 8, in force now");
  EXPECT_EQ(Key("Assign Free 8 Axis") + ' ' + Key("Target Free 8 Axis"), "Not assigned ");
  EXPECT_EQ(SimCommand("press \"EXIT\""), "ok");
  EXPECT_EQ(Find(title), nullptr);
}

// A calibration is finished by whatever comes next, and knows the ends that were touched between two looks.
TEST_F(AxisPanels, CalibrationEndsProperlyThread) {
  Open(title);
  ChooseControl("Throttle 1");
  Do(assigned, "0,5", "Not saved yet");
  const auto sweep = [&] {
    Stick(5, 0.5, "Axis stands at", "0.500 |");
    Do("Calibrate by moving", nullptr, "Move the axis to both ends, then switch this off");
    for (const char* at : {"0", "0.875", "0.5"}) {
      SimCommand(std::string("axis 5 ") + at);
      sim::SimFrames(1);
    }
  };
  sweep();
  Do(nullZone, "0.03", "Not saved yet");
  EXPECT_EQ(Shown(title, ends), "0,0.438,0.875");
  sweep();
  Do("Both of the combined axis", nullptr, "");
  Do("Both of the combined axis", nullptr, "");
  EXPECT_EQ(Shown(title, ends), "0,0.438,0.875");
  // The draft stays while the other window is opened beside it.
  Open(combiningWindowTitle);
  EXPECT_EQ(Shown(combiningWindowTitle, "Control"), "Throttle 1");
  EXPECT_EQ(Shown(title, nullZone), "0.03");
  Do("SAVE", nullptr, "Saved Throttle 1, in force now");
  EXPECT_EQ(Key("Calibrate Throttle 1 Axis") + ' ' + Key("Nullzone Throttle 1 Axis"), "0,0.438,0.875 0.03");
}

TEST_F(AxisPanels, CombinesByMovingThread) {
  title = combiningWindowTitle;
  Open(title);
  ChooseControl("Rudder");
  Do("Choose it by moving", nullptr, "");
  Stick(2, 0.9, assigned, "0,2", -0.4);
  Do("Choose this by moving", nullptr, "");
  Stick(9, 0.1, combinedWith, "0,9", 0.4);
  Do("Combined axis inverted", nullptr, "Not saved yet");
  Stick(2, 0.6, "Control moves to", "1.000 ");
  Stick(9, 0.6, "Control moves to", "0.000 |");
  Do("SAVE", nullptr, "Saved Rudder, in force now");
  EXPECT_EQ(
      Key("Assign Rudder Axis") + ' ' + Key("Combine Rudder Axis") + ' ' + Key("Invert Combined Rudder Axis"),
      "0,2 0,9 Yes");
  EXPECT_EQ(FaultsOf(1024, 768), "");
  Stop(), Begin();
  title = calibrationWindowTitle;
  Open(title);
  ChooseControl("Rudder");
  EXPECT_EQ(Shown(title, assigned), "0,2");
  Do(ends, "0.1,0.5,0.9", "Not saved yet");
  Do("Both of the combined axis", nullptr, "");
  EXPECT_EQ(Shown(title, ends), "0,0.5,1");
  Do(ends, "0.2,0.5,0.8", "Not saved yet");
  Do("SAVE", nullptr, "Saved Rudder, in force now");
  EXPECT_EQ(Key("Calibrate Rudder Axis") + ' ' + Key("Calibrate Combined Rudder Axis"),
            "0.1,0.5,0.9 0.2,0.5,0.8");
  Talk("disable | enable");
  sim::SimFrames(70);
  Follow();
  EXPECT_TRUE(Shows("Axes act again when the plug-in is reloaded: their")) << SimCommand("widgets");
}

}  // namespace
