// Joystick buttons: settings section, actions, edges, thread.
#include "controls/buttons.h"

#include <functional>

#include "custom_harness.h"
#include "settings/settings.h"

namespace {

constexpr uint32_t free4 = 0x66F0;  // no fixed meaning

struct Buttons : testing::Test {
  void SetUp() override {
    custom::Start();
    SetSettingsPath((custom::Folder() + "TAVRIX.ini").c_str());
    ASSERT_TRUE(CreateButtons());
  }
  void TearDown() override {
    StopButtonThread();
    DeleteButtons();
    custom::Stop();
  }
  void Settings(const std::string& lines) {
    std::ofstream(custom::Folder() + "TAVRIX.ini", std::ios::binary) << lines;
    LoadButtonAssignments();
  }
};

std::string Fields(const ButtonAssignment& a) {
  std::string text = std::to_string(a.offset);
  for (const int32_t field :
       {a.size, a.pressedValue, a.releasedValue, a.setOnPress, a.setOnRelease, a.clearOnPress, a.clearOnRelease,
        a.nothingOnPress, a.nothingOnRelease, a.toggleOnPress, a.toggleOnRelease}) {
    text += "," + std::to_string(field);
  }
  return text;
}

TEST_F(Buttons, SettingsSection) {
  constexpr char none[] = "-1,-1,-1,-1,0,0,0,0,0,0,0,0";
  Settings(
      "[OTHER]\n3 = 66F0,1,1,0,0,0,0,0,0,0,0,0\n[Joystick Button Settings]\n"
      "0 = 0BC8,2,32767,0,0,0,0,0,0,0,0,0\n1599 = 0x66f0, 4 ,5,-1,1,2,3,4,5,6,7,8\n1600 = "
      "66F0,1,1,0,0,0,0,0,0,0,0,0\n"
      "1 = 66F0,3,1,0,0,0,0,0,0,0,0,0\n2 = 1FFFD,4,1,0,0,0,0,0,0,0,0,0\n4 = 3304,4,1,0,0,0,0,0,0,0,0,0\n"
      "5 = 66F0,1,1\n6 = 0,0,0,0,0,0,0,0,0,0,0,0\n7 = FFFFFFFFF,1,1,0,0,0,0,0,0,0,0,0\n8 = "
      "1FFFC,4,1,0,0,0,0,0,0,0,0,0\n"
      "8 = 66F0,1,1,0,0,0,0,0,0,0,0,0\n");
  EXPECT_EQ(Fields(AssignmentOfButton(0)), "3016,2,32767,0,0,0,0,0,0,0,0,0");
  EXPECT_EQ(Fields(AssignmentOfButton(1599)), "26352,4,5,-1,1,2,3,4,5,6,7,8");
  EXPECT_EQ(AssignmentOfButton(8).offset, 0x1FFFC);
  for (const int button : {-1, 1, 2, 3, 4, 5, 6, 7, 1600})
    EXPECT_EQ(Fields(AssignmentOfButton(button)), none) << button;
  const std::string log = custom::Log();
  for (const char* told : {"button 1 is", "button 2 is", "button 4 is", "button 5 is", "button 7 is"}) {
    EXPECT_NE(log.find(told), std::string::npos) << told;
  }
  EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 5);

  EXPECT_TRUE(SaveButtonAssignment(9, {0x66F0, 4, 17, -1, 1, 0, 0, 0, 0, 1, 0, 0}));
  EXPECT_EQ(Fields(AssignmentOfButton(9)), "26352,4,17,-1,1,0,0,0,0,1,0,0");
  const auto file = [] { return tools::ReadFile(custom::Folder() + "TAVRIX.ini"); };
  EXPECT_NE(file().find("9 = 66F0,4,17,-1,1,0,0,0,0,1,0,0\n"), std::string::npos) << file();
  EXPECT_TRUE(ClearButtonAssignment(9));
  EXPECT_NE(file().find("9 = 0,0,0,0,0,0,0,0,0,0,0,0\n"), std::string::npos) << file();
  EXPECT_EQ(Fields(AssignmentOfButton(9)), none);
  EXPECT_EQ(AssignmentOfButton(0).offset, 0x0BC8) << "the others stay";
  EXPECT_FALSE(SaveButtonAssignment(1600, noAssignment));
}

// Sets one button and carries out what that queued.
void Button(int button, int state) {
  static int states[maxButtons];
  states[button] = state;
  WatchButtons(states, maxButtons);
}

void WaitFor(const std::function<bool()>& condition) { EXPECT_TRUE(tools::WaitUntil(condition)); }

// Button 1599 writes a mark: when it is there, everything queued before is done.
void Drain() {
  for (const int state : {1, 0}) {
    Button(1599, state);
    WaitFor([state] { return rows::Read<uint8_t>(0x66FF) == state; });
  }
}

TEST_F(Buttons, ActionsOnPressAndReleaseThread) {
  struct Case {
    const char* line;
    uint32_t before, pressed, released;
  };
  // size, values, set/set, clear/clear, nothing/nothing, toggle/toggle (press, release)
  const Case cases[] = {
      {"1,258,7,0,0,0,0,0,0,0,0", 0xAABBCCDD, 0xAABBCC02, 0xAABBCC07},
      {"2,65537,-1,0,0,0,0,0,0,0,0", 0xAABBCCDD, 0xAABB0001, 0xAABB0001},
      {"4,-1,65536,0,0,0,0,0,0,0,0", 0xAABBCCDD, 0xAABBCCDD, 0x00010000},
      {"4,5,6,0,0,0,0,1,0,0,0", 1, 1, 6},
      {"4,5,6,0,0,0,0,0,2,0,0", 1, 5, 5},
      {"2,17,17,1,0,0,1,0,0,0,0", 0xFFFF0000, 0xFFFF0000, 0xFFFF0000},  // outside the word
      {"1,35,3,1,0,0,1,0,0,0,0", 0x80, 0x88, 0x80},                     // modulo 32
      {"2,3,3,0,0,0,0,0,0,1,1", 8, 0, 8},
      {"1,3,3,0,0,0,0,0,0,0,1", 8, 3, 0x0B},
      {"4,3,3,0,0,0,0,0,0,1,1", 0, 8, 8},  // four bytes: toggling on release always leaves the bit set
      {"4,3,3,0,0,0,0,0,0,1,1", 8, 0, 8},
      {"4,3,3,1,0,1,0,0,0,1,0", 0, 8, 3},  // set, clear, toggle in this order
      {"4,31,31,1,0,0,1,0,0,0,0", 0, 0x80000000, 0},
      {"2,4,4,2,2,2,2,0,0,2,2", 1, 4, 4}};
  ASSERT_TRUE(StartButtonThread());
  for (const Case& c : cases) {
    Settings("[JOYSTICK BUTTON SETTINGS]\n1599 = 66FF,1,1,0,0,0,0,0,0,0,0,0\n10 = 66F0," + std::string(c.line) +
             "\n");
    CopyToMemory(free4, 4, &c.before);
    Button(10, 1);
    Drain();
    EXPECT_EQ(rows::Read<uint32_t>(free4), c.pressed) << c.line;
    Button(10, 2);  // still held
    Button(10, 0);
    Drain();
    EXPECT_EQ(rows::Read<uint32_t>(free4), c.released) << c.line;
  }
  EXPECT_EQ(LastButtonPress().button, 1599);
}

// Presses between two wake-ups all act, through the dispatcher, and vanished buttons are released.
TEST_F(Buttons, EveryEdgeReachesTheSimulatorThread) {
  Settings(
      "[JOYSTICK BUTTON SETTINGS]\n0 = 0BC8,2,32767,-1,0,0,0,0,0,0,0,0\n1 = 66F0,4,0,0,0,0,0,0,0,0,1,1\n"
      "2 = 66F4,1,9,4,0,0,0,0,0,0,0,0\n3 = 0,1,1,1,0,0,0,0,0,0,0,0\n");
  ASSERT_TRUE(StartButtonThread());
  int states[maxButtons] = {};
  for (int i = 0; i < 7; ++i) {
    states[1] = 1 - states[1];
    WatchButtons(states, maxButtons);
  }
  states[0] = states[2] = states[3] = 1;
  WatchButtons(states, 1520);
  WaitFor([] { return rows::Read<uint8_t>(0x66F4) == 9; });
  custom::WriteFrame();
  EXPECT_EQ(rows::Get("sim/flightmodel/controls/parkbrake"), 1);
  WatchButtons(states, 2);  // older simulators have fewer: button 2 counts as released
  WaitFor([] { return rows::Read<uint8_t>(0x66F4) == 4; });
  EXPECT_EQ(rows::Read<uint32_t>(free4) & 1, 0u) << "four presses, three releases that set the bit: off again";
  StopButtonThread();
  states[2] = 0;
  WatchButtons(states, maxButtons);
  states[2] = 1;
  WatchButtons(states, maxButtons);
  EXPECT_EQ(rows::Read<uint8_t>(0x66F4), 4) << "nobody listens";
}

// Two buttons act within a frame, and a refresh shows the simulator's own value again in between.
TEST_F(Buttons, BitsOfTwoButtonsMeetInOneFrameThread) {
  Settings(
      "[JOYSTICK BUTTON SETTINGS]\n1599 = 66FF,1,1,0,0,0,0,0,0,0,0,0\n10 = 0D0C,2,0,-1,1,0,0,0,0,0,0,0\n"
      "11 = 0D0C,2,1,-1,1,0,0,0,0,0,0,0\n");
  ASSERT_TRUE(StartButtonThread());
  const uint16_t none = 0;
  CopyToMemory(0x0D0C, sizeof none, &none);
  Button(10, 1);
  Drain();
  CopyToMemory(0x0D0C, sizeof none, &none);
  Button(11, 1);
  Drain();
  const LockScope lock(&offsetLock);
  EXPECT_EQ(LoadPending<uint16_t>(0x0D0C), 3);
}

TEST_F(Buttons, FailingWaitIsToldOnceThread) {
  Settings("[JOYSTICK BUTTON SETTINGS]\n12 = 66F0,2,4660,0,0,0,0,0,0,0,0,0\n");
  OpenLogs(custom::Folder().c_str(), nullptr);
  EXPECT_EQ(ButtonStatus(), "");
  ASSERT_TRUE(StartButtonThread());
  StopButtonThread();
  Event none = {};
  for (int i = 0; i < 3; ++i) RunButtonRound(&none);
  const std::string told = ButtonStatus();
  EXPECT_EQ(told.rfind("Wait error (", 0), 0u) << told;
  EXPECT_EQ(told.find("(0)"), std::string::npos) << "the system's own number";
  EXPECT_EQ(custom::Log(), told) << "once";
}

TEST_F(Buttons, StandInPressesAButtonThread) {
  Settings("[JOYSTICK BUTTON SETTINGS]\n12 = 66F0,2,4660,0,0,0,0,0,0,0,0,0\n");
  ASSERT_TRUE(StartButtonThread());
  sim::SimCommand("set sim/joystick/joystick_button_values[12] 1");
  ButtonCycle(0, 0, 0, nullptr);
  WaitFor([] { return rows::Read<uint16_t>(free4) == 4660; });
  EXPECT_EQ(LastButtonPress().button, 12);
}

// The simulator is not asked for buttons that nobody wants; a window that asks for the last one sees what is
// pressed from then on.
TEST_F(Buttons, AreWatchedWhenAssignedOrAskedFor) {
  const auto press = [](int button) {
    sim::SimCommand("set sim/joystick/joystick_button_values[" + std::to_string(button) + "] 1");
    ButtonCycle(0, 0, 0, nullptr);
  };
  Settings("");
  EXPECT_FALSE(WantsButtons());
  press(5);
  EXPECT_EQ(LastButtonPress().button, -1);
  EXPECT_EQ(ButtonCycle(0, 0, 0, nullptr), -1) << "every frame";
  EXPECT_EQ(LastButtonPress().button, -1) << "was held before";
  press(6);
  EXPECT_EQ(LastButtonPress().button, 6);
  int frames = 0;
  while (WantsButtons() && frames < 1000) ++frames;
  EXPECT_GT(frames, 30);
  EXPECT_LT(frames, 1000) << "asked for once only";
  Settings("[JOYSTICK BUTTON SETTINGS]\n12 = 66F0,2,4660,0,0,0,0,0,0,0,0,0\n");
  EXPECT_TRUE(WantsButtons());
}

}  // namespace
