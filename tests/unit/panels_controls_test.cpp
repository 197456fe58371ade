// The windows for pushback, joystick buttons and flaps as a person uses them.
#include "base/log.h"
#include "controls/buttons.h"
#include "panels_harness.h"

namespace {

using namespace panels;

// What a person types and presses, and the message that the window's last line shows then; a text that is
// refused is given up again.
struct Deed {
  const char *label, *text;  // without a text: a button or box
  const char* message;
};
void Do(const char* title, const Deed& deed) {
  const std::string where = '"' + std::string(title) + "\" \"" + deed.label + '"';
  EXPECT_EQ(SimCommand(deed.text == nullptr ? "press " + where : "type " + where + " \"" + deed.text + '"'),
            "ok")
      << deed.label;
  EXPECT_EQ(Message(title), deed.message) << deed.label << ' ' << (deed.text != nullptr ? deed.text : "");
  if (sim::keyboardFocus != nullptr) Key(XPLM_KEY_ESCAPE);
}

void DoAll(const char* title, std::initializer_list<Deed> deeds) {
  for (const Deed& deed : deeds) Do(title, deed);
}

TEST_F(Panels, Pushback) {
  const auto shown = [](const char* label) { return Shown(pushbackWindowTitle, label); };
  const auto setting = [&](const char* key) { return Setting("PUSHBACK SETTINGS", key); };
  constexpr char speed[] = "MaxSpeed is a number from -10 to 10, with a point: -1.5",
                 turn[] = "MaxTurnSpeed is a number from 0 to 1, with a point: 0.15";
  Open(pushbackWindowTitle);
  EXPECT_EQ(shown("MaxSpeed") + ' ' + shown("MaxTurnSpeed"), "-1.5 0.15");
  DoAll(pushbackWindowTitle, {{"MaxSpeed", "-1,5", speed},
                              {"MaxSpeed", "fast", speed},
                              {"MaxSpeed", "", speed},
                              {"MaxSpeed", "-10.1", speed},
                              {"MaxTurnSpeed", "-0.1", turn},
                              {"MaxTurnSpeed", "nan", turn},
                              {"MaxTurnSpeed", "0.07", "Saved"},
                              {"MaxSpeed", "-0.9", "Saved"}});
  EXPECT_EQ(setting("MaxSpeed") + ' ' + setting("MaxTurnSpeed"), "-0.9 0.07");

  // Commands as clients write them: at the offset at once, carried out in the next frame.
  rows::Set("sim/flightmodel/controls/parkbrake", 0);
  struct Command {
    const char* button;
    uint32_t written;
    const char* state;
  };
  for (const Command& c :
       {Command{"Straight", 0, "straight"}, Command{"Nose right", 1, "turning, nose right"},
        Command{"Nose left", 2, "turning, nose left"}, Command{"Stop", 3, "off, rolling out"}}) {
    Do(pushbackWindowTitle, {c.button, nullptr, ""});
    EXPECT_EQ(rows::Read<uint32_t>(0x31F4), c.written);
    sim::SimFrames(c.written == 3 ? 1 : 120);
    EXPECT_EQ(pushbackMode, static_cast<int>(c.written));
    EXPECT_EQ(rows::Get("sim/operation/override/override_joystick"), c.written != 3);
    SleepMilliseconds(260);
    FollowPanels();
    EXPECT_EQ(shown("State"), c.state);
    if (c.written == 0) {
      EXPECT_EQ(shown("Speed"), "-0.90 m/s");
      Do(pushbackWindowTitle, {"MaxSpeed", "-2", "Saved"});  // while it goes
    }
    if (c.written == 1) {
      EXPECT_EQ(shown("Speed"), "-0.50 m/s");  // a quarter
    }
  }
  sim::SimFrames(100);
  rows::Set("sim/flightmodel/controls/parkbrake", 1);
  Do(pushbackWindowTitle, {"Straight", nullptr, ""});
  Follow();
  EXPECT_EQ(shown("State"), "refused: the parking brake is set");
  EXPECT_EQ(shown("Speed"), "0.00 m/s");
  rows::Set("sim/flightmodel/controls/parkbrake", 0);
  Follow();
  EXPECT_EQ(shown("State"), "off");
  sim::SimFrames(40);  // the offset shows the state again
  Do(pushbackWindowTitle, {"Nose left", nullptr, ""});
  sim::SimFrames(5);
  rows::Set("sim/flightmodel/controls/parkbrake", 1);
  sim::SimFrames(1);
  Follow();
  EXPECT_EQ(shown("State"), "ended: the parking brake is set");
  EXPECT_EQ(FaultsOf(1024, 768), "");
  Stop();
  Begin();
  Open(pushbackWindowTitle);
  EXPECT_EQ(shown("MaxSpeed") + ' ' + shown("MaxTurnSpeed"), "-2 0.07") << "after a restart";
}

TEST_F(Panels, Flaps) {
  const auto setting = [&](const char* key) { return Setting("TAVRIX FLAPS SETTINGS", key); };
  constexpr char count[] = "The number of detents is 2 to 10",
                 numbers[] = "A detent is up to three numbers, with a point: 0.25,1,2";
  Open(flapsWindowTitle);
  EXPECT_EQ(SimCommand("type \"Detent 3\" \"1\"").substr(0, 5), "error") << "two detents only";
  DoAll(flapsWindowTitle,
        {{"Flap detents active", nullptr, "Saved"},
         {"Number of detents", "1", count},
         {"Number of detents", "11", count},
         {"Number of detents", "4x", count},
         {"Number of detents", "9", "Saved"},
         {"Detent 1", "0, 5,-10.25", "Written, but spaced evenly: a detent's bounds enclose its position"},
         {"Detent 2", "1,", numbers},
         {"Detent 2", "1,2,3,4", numbers},
         {"Detent 2", ",", numbers},
         {"Detent 1", "0,,0.05", "Saved"},
         {"Detent 2", "0.125", "Saved"},
         {"Detent 9", "0.5", "Written, but spaced evenly: each detent lies at least 0.02 above the one before"},
         {"Detent 9", "", "Saved"},
         {"Detent 8", "40", "Written, but spaced evenly: a detent's position is from 0 to 1"}});
  EXPECT_EQ(setting("Flap Settings") + ' ' + setting("Number of Detends"), "Active 09");
  EXPECT_EQ(setting("Flap detend 1") + ' ' + setting("Flap detend 2") + ' ' + setting("Flap detend 9"),
            "0,,0.05 0.125 ");
  EXPECT_EQ(FaultsOf(1024, 768), "");
  Stop();
  Begin();
  EXPECT_TRUE(settings.flapsActive);
  Open(flapsWindowTitle);
  const auto shown = [](const char* label) { return Shown(flapsWindowTitle, label); };
  EXPECT_EQ(shown("Number of detents") + ' ' + shown("Detent 1") + ' ' + shown("Detent 8"), "9 0,,0.05 40");
  EXPECT_NE(SimCommand("widgets").find("checkbox \"Flap detents active\" on"), std::string::npos);
}

// --- Joystick buttons ----------------------------------------------------------------------------------------
constexpr char pressedIs[] = "Button pressed is:", offsetLabel[] = "Offset to assign to joystick button",
               sizeLabel[] = "Offset size", onPress[] = "Value or bit to send when pressed",
               onRelease[] = "Value or bit to send when released";

struct ButtonPanel : Panels {
  std::string Line(int button) const {
    return Setting("JOYSTICK BUTTON SETTINGS", std::to_string(button).c_str());
  }
  static void Do(const Deed& deed) { ::Do(buttonWindowTitle, deed); }
  static std::string Shows(const char* label) { return Shown(buttonWindowTitle, label); }
  // All four fields of the draft.
  static std::string Draft() {
    return Shows(offsetLabel) + ' ' + Shows(sizeLabel) + ' ' + Shows(onPress) + ' ' + Shows(onRelease);
  }
  static void Stick(int button, int state) {
    SimCommand("set sim/joystick/joystick_button_values[" + std::to_string(button) + "] " +
               std::to_string(state));
    sim::SimFrames(1);
  }
  static bool Waits(uint32_t offset, uint16_t value) {
    return tools::WaitUntil([&] { return rows::Read<uint16_t>(offset) == value; });
  }
};

TEST_F(ButtonPanel, AssignsWhatIsPressedThread) {
  tools::WriteFile(folder + "TAVRIX.ini", "[JOYSTICK BUTTON SETTINGS]\n7 = 66F4,4,3,-1,0,0,0,0,0,0,1,0\n");
  Stop(), Begin();
  Open(buttonMenuItem);
  constexpr char first[] = "Press a joystick button first, or enter its number";
  DoAll(buttonWindowTitle, {{"SAVE", nullptr, first}, {"CLEAR", nullptr, first}});
  Follow();
  Stick(7, 1);
  Follow();
  EXPECT_EQ(Shows(pressedIs) + ": " + Draft(), "7: 66F4 4 3 ");
  EXPECT_EQ(Shows("At present"), "66F4, 4 bytes; pressed: toggle bit 3; released: nothing");
  Stick(12, 1);
  Stick(12, 0);
  Follow();
  EXPECT_EQ(Shows(pressedIs) + ": " + Draft(), "12:    ");
  EXPECT_EQ(Shows("At present"), "not assigned");

  constexpr char hex[] = "The offset is hexadecimal, from 1 to 1FFFF",
                 whole[] = "A whole number from 0, or empty to send nothing",
                 bytes[] = "The offset's bytes must lie below 20000 hexadecimal", draft[] = "Not saved yet";
  DoAll(buttonWindowTitle, {{"SAVE", nullptr, hex},
                            {offsetLabel, "66FG", hex},
                            {offsetLabel, "0", hex},
                            {offsetLabel, "20000", bytes},
                            {offsetLabel, "3304", "The offset cannot be written"},
                            {offsetLabel, "0x1ffff", draft},
                            {"SAVE", nullptr, "The size is 1, 2 or 4 bytes"},
                            {sizeLabel, "3", "The size is 1, 2 or 4 bytes"},
                            {sizeLabel, "2", bytes},
                            {offsetLabel, "66f0", draft},
                            {sizeLabel, "2", draft},
                            {"SAVE", nullptr, "Neither pressing nor releasing would send anything"},
                            {onPress, "-1", whole},
                            {onPress, "70000", draft},
                            {"SAVE", nullptr, "70000 when pressed does not fit into 2 bytes"},
                            {onPress, "4661", draft},
                            {"Set Bit When Released", nullptr, draft},
                            {"SAVE", nullptr, "Enter the number of the bit to change when released"},
                            {onRelease, "16", draft},
                            {"SAVE", nullptr, "Bit 16 when released lies outside 2 bytes"},
                            {onRelease, "0", draft},
                            {"Clr Bit When Released", nullptr, draft}});
  EXPECT_EQ(Line(12), "missing") << "nothing of it is saved";
  EXPECT_EQ(AssignmentOfButton(12).offset, -1);
  Stick(12, 1), Stick(12, 0);
  Follow();
  EXPECT_EQ(Draft(), "66F0 2 4661 0") << "pressed once more: the draft stays";
  Do({"SAVE", nullptr, "Saved button 12, in force now"});
  EXPECT_EQ(Line(12), "66F0,2,4661,0,0,0,0,1,0,0,0,0");
  EXPECT_EQ(Line(7), "66F4,4,3,-1,0,0,0,0,0,0,1,0");
  EXPECT_EQ(Shows("At present"), "66F0, 2 bytes; pressed: write 4661; released: clear bit 0");
  EXPECT_EQ(FaultsOf(1024, 768), "");
  Stick(12, 1);
  EXPECT_TRUE(Waits(0x66F0, 4661));
  Stick(12, 0);
  EXPECT_TRUE(Waits(0x66F0, 4660));

  // The number typed instead, and a restart.
  Do({pressedIs, "1600", "Buttons have the numbers 0 to 1599"});
  Do({pressedIs, "7", ""});
  EXPECT_EQ(Draft(), "66F4 4 3 ");
  Do({"CLEAR", nullptr, "Cleared button 7, in force now"});
  EXPECT_EQ(Line(7), "0,0,0,0,0,0,0,0,0,0,0,0");
  EXPECT_EQ(Shows("At present") + Draft(), "not assigned   ");
  SimCommand("type \"Offset to assign to joystick button\" \"zzz\"");
  EXPECT_EQ(SimCommand("press \"EXIT\""), "ok");
  EXPECT_EQ(Find(buttonWindowTitle), nullptr) << "whatever stands in the fields";
  Stop(), Begin();
  Open(buttonMenuItem);
  EXPECT_EQ(Shows(pressedIs), "") << "a press of before";
  Do({pressedIs, "12", ""});
  EXPECT_EQ(Draft(), "66F0 2 4661 0");
  SimCommand("type \"" + std::string(sizeLabel) + "\" \"444\"");
  EXPECT_EQ(Shows(sizeLabel), "44") << "no more fits";
}

// What the user has changed is never given up by a press of another button, and a line that is refused says
// why.
TEST_F(ButtonPanel, DraftsAreNotLostThread) {
  tools::WriteFile(folder + "TAVRIX.ini", "[JOYSTICK BUTTON SETTINGS]\n9 = 66F4,3,3,-1,0,0,0,0,0,0,1,0\n");
  Stop(), Begin();
  Open(buttonMenuItem);
  Follow();
  const auto press = [](int button) { Stick(button, 1), Stick(button, 0), Follow(); };
  const auto told = [] { return panels::Shows("Button 9 was pressed, but button 5 has changes:"); };
  Do({offsetLabel, "66F0", "Not saved yet"});
  press(5);
  EXPECT_EQ(Shows(pressedIs) + ": " + Draft(), "5: 66F0   ") << "begun before a button was chosen";
  press(9);
  EXPECT_EQ(Shows(pressedIs) + ": " + Draft(), "5: 66F0   ");
  EXPECT_TRUE(told()) << SimCommand("widgets");
  EXPECT_EQ(FaultsOf(1024, 768), "");
  press(5);
  EXPECT_FALSE(told()) << "pressed once more";
  press(9);
  Do({pressedIs, "9", "The changes of button 5 are given up"});
  EXPECT_EQ(Shows(pressedIs) + ": " + Draft(), "9:    ");
  EXPECT_EQ(Shows("At present"), "its line in TAVRIX.ini is not used: the size must be 1, 2 or 4");
  press(5);
  EXPECT_EQ(Shows(pressedIs), "5") << "nothing was changed";
  SimCommand("type \"" + std::string(offsetLabel) + "\" \"zzz\"");  // refused: it stays
  press(9);
  EXPECT_EQ(Shows(pressedIs) + ": " + Shows(offsetLabel), "5: zzz");
  EXPECT_TRUE(told());
  Key(XPLM_KEY_ESCAPE);
  Key(XPLM_KEY_RETURN);
  Do({"Set Bit When Pressed", nullptr, "Not saved yet"});
  Do({"Set Bit When Pressed", nullptr, ""});
  press(9);
  EXPECT_EQ(Shows(pressedIs), "9");
}

TEST_F(ButtonPanel, Presets) {
  struct Preset {
    const char *label, *line;
  };
  Open(buttonMenuItem);
  Do({pressedIs, "3", ""});
  Do({"TO/GA", nullptr, "Filled in: enter the offset, then save"});
  EXPECT_EQ(Draft(), " 2 567 ");
  Do({offsetLabel, "66F0", "Not saved yet"});
  for (const Preset& preset : {Preset{"A/P Disconnect", "551,-1,0,0,0,0,0,1,0,0"},
                               {"A/T Disconnect", "563,-1,0,0,0,0,0,1,0,0"},
                               {"TO/GA", "567,-1,0,0,0,0,0,1,0,0"},
                               {"Fuel Cutoff L", "843,842,0,0,0,0,0,0,0,0"},
                               {"Fuel Cutoff R", "845,844,0,0,0,0,0,0,0,0"},
                               {"Parking Brake", "591,590,0,0,0,0,0,0,0,0"},
                               {"Reverser L", "994,995,0,0,0,0,0,0,0,0"},
                               {"Reverser R", "996,997,0,0,0,0,0,0,0,0"}}) {
    Do({"Toggle Bit When Pressed", nullptr, "Not saved yet"});  // goes out again
    Do({preset.label, nullptr, "Filled in, not saved yet"});
    Do({"SAVE", nullptr, "Saved button 3, in force now"});
    EXPECT_EQ(Line(3), std::string("66F0,2,") + preset.line) << preset.label;
  }
}

// One way for pressing and one for releasing, and the boxes show them.
TEST_F(ButtonPanel, BoxesExcludeEachOther) {
  constexpr char draft[] = "Not saved yet";
  Open(buttonMenuItem);
  DoAll(buttonWindowTitle, {{pressedIs, "5", ""},
                            {offsetLabel, "66F0", draft},
                            {sizeLabel, "4", draft},
                            {onPress, "9", draft},
                            {onRelease, "31", draft}});
  struct Case {
    const char *press, *line;
  };
  for (const Case& c : {Case{"Set Bit When Pressed", "1,0,0,0,0,0,0,0"},
                        {"Clr Bit When Pressed", "0,0,1,0,0,0,0,0"},
                        {"Toggle Bit When Released", "0,0,1,0,0,0,0,1"},
                        {"Toggle Bit When Pressed", "0,0,0,0,0,0,1,1"},
                        {"Send Nothing When Pressed", "0,0,0,0,1,0,0,1"},
                        {"Send Nothing When Pressed", "0,0,0,0,0,0,0,1"},
                        {"Set Bit When Released", "0,1,0,0,0,0,0,0"}}) {
    DoAll(buttonWindowTitle, {{c.press, nullptr, draft}, {"SAVE", nullptr, "Saved button 5, in force now"}});
    EXPECT_EQ(Line(5), std::string("66F0,4,9,31,") + c.line) << c.press;
  }
  EXPECT_EQ(tools::CountText(SimCommand("widgets"), "\" on;"), 1) << SimCommand("widgets");
}

// The button thread is started once a load; in client mode nothing is towed or written.
TEST_F(ButtonPanel, SayWhenTheyWaitThread) {
  Open(buttonMenuItem);
  Talk("disable | enable");
  sim::SimFrames(70);
  Follow();
  EXPECT_TRUE(panels::Shows("Buttons act again when the plug-in is reloaded: their")) << SimCommand("widgets");
  Do({pressedIs, "3", ""});
  DoAll(buttonWindowTitle, {{offsetLabel, "66F0", "Not saved yet"},
                            {"TO/GA", nullptr, "Filled in, not saved yet"},
                            {"SAVE", nullptr, "Saved button 3, in force after a reload of the plug-in"}});
  EXPECT_EQ(FaultsOf(1024, 768), "");
  ASSERT_TRUE(WriteSetting("TAVRIX SETTINGS", "TAVRIX2TAVRIX Client mode", "Yes"));
  ASSERT_TRUE(WriteSetting("PUSHBACK SETTINGS", "MaxSpeed", "-1.25"));
  Stop(), Begin();
  Open(buttonMenuItem);
  EXPECT_TRUE(panels::Shows("In client mode buttons write nothing."));
  Do({pressedIs, "3", ""});
  EXPECT_TRUE(panels::Shows("Pressing one selects none here: enter its number."));
  EXPECT_EQ(Draft(), "66F0 2 567 ");
  DoAll(buttonWindowTitle,
        {{"TO/GA", nullptr, ""}, {"SAVE", nullptr, "Saved button 3, in force when client mode is off"}});
  Open(pushbackWindowTitle);
  EXPECT_EQ(Shown(pushbackWindowTitle, "MaxSpeed"), "-1.25");
  EXPECT_EQ(Shown(pushbackWindowTitle, "State"), "off: in client mode the other simulator tows");
  EXPECT_EQ(SimCommand("press \"Straight\""), "error: button or box \"Straight\" is disabled");
}

}  // namespace
