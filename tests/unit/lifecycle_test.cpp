// The plug-in's life as the simulator drives it: what each enable begins with, what disable puts back, what a
// new aircraft changes, and what client mode leaves alone.
#include "shell/lifecycle.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <thread>
#include <utility>

#include "XPLMPlugin.h"
#include "base/log.h"
#include "bridge/catalogue/throttle_actions.h"
#include "bridge/weather_area.h"
#include "custom/custom.h"
#include "panels/panels.h"
#include "row_harness.h"
#include "shell/override_watch.h"
#include "shortage.h"
#include "test_tools.h"

namespace {

using rows::Calls;
using sim::SimCommand;

constexpr char xSquawkBox[] = "vatsim.protodev.clients.xsquawkbox";
const sim::PluginEntry entry = {StartPlugin, StopPlugin, EnablePlugin, DisablePlugin, ReceivePluginMessage};

struct Lifecycle : testing::Test {
  std::string root = testing::TempDir() + "tavrix_lifecycle";
  std::string folder = root + "/Resources/plugins/TAVRIX/";

  void SetUp() override {
    std::filesystem::remove_all(root);
    std::filesystem::create_directories(folder);
  }
  void TearDown() override {
    EXPECT_EQ(sim::SimStop(), 0);
    EXPECT_EQ(sim::TakeBreaches(), std::vector<std::string>{});
    std::filesystem::remove_all(root);
  }
  void Put(const char* name, const std::string& text) const { tools::WriteFile(folder + name, text); }
  void Begin(const char* aircraft = "jet") const {
    sim::Options options;
    options.root = root;
    options.rate = 0;
    options.circuit = false;
    options.aircraft = aircraft;
    options.linked = &entry;
    ASSERT_EQ(sim::SimStart(options), 0);
  }
  std::string Log() const { return tools::ReadFile(folder + "TAVRIX.txt"); }
  int Logged(const std::string& text) const { return tools::CountText(Log(), text); }
};

// What clients left in the last moment before a disable is not done after the next enable; values that they
// wrote are.
TEST_F(Lifecycle, RequestsOfTheLastEnableAreForgotten) {
  Put("TAVRIXOffsets.cfg", "Offset 66C0 UINT8 1 r 5\n");
  Begin();
  rows::Set("sim/flightmodel/controls/parkbrake", 0);
  sim::SimFrames(70);
  rows::Write<uint8_t>(customClearOffset, 1);
  uint8_t area[128] = {1, 0, 0, 0, 'G', 'L', 'O', 'B'};
  rows::WriteBytes(weatherAreaOffset, area, sizeof area);
  FinishRequest(std::exchange(rows::marks, {}));
  uint8_t record[relayRecordSize] = "sim/flightmodel/position/psi";
  record[110] = 0x42;
  rows::WriteBytes(relayRecordOffset, record, sizeof record);
  rows::WriteBytes(clientEntryOffset, area, clientEntrySize);
  rows::WriteBytes(0x3130, "AB1234\0\0\0\0\0\0", 12);
  rows::Write<int16_t>(0x0BC8, 32767);
  rows::Set("sim/flightmodel/position/psi", 77);
  SimCommand("disable");
  SimCommand("enable");
  EXPECT_EQ(weatherBlockReady, 0U);
  EXPECT_EQ(relayRecordStore.waiting, 0U);
  EXPECT_EQ(clientEntryWritten, 0U);
  EXPECT_EQ(atcTexts.changed, 0U);
  EXPECT_NE(FindCustomOffset(0x66C0), nullptr) << "loaded and in use";
  sim::SimFrames(70);
  EXPECT_EQ(Logged("Reload TAVRIXOffsets.cfg\n"), 0);
  EXPECT_EQ(rows::Get("sim/flightmodel/position/psi"), 77);
  EXPECT_EQ(rows::Get("sim/flightmodel/controls/parkbrake"), 1) << "a value that waited is applied";
}

TEST_F(Lifecycle, RudderIsCentredOnceALoad) {
  Begin();
  sim::SimFrames(5);
  EXPECT_EQ(tools::CountText(Calls(), "once sim/flight_controls/rudder_ctr"), 1);
  for (int round = 0; round < 2; ++round) {
    SimCommand("disable");
    SimCommand("enable");
    sim::SimFrames(5);
    EXPECT_EQ(tools::CountText(Calls(), "rudder_ctr"), 0) << "the pilot's rudder is left alone";
  }
}

TEST_F(Lifecycle, NetworkClientIsFoundAtEnable) {
  Begin();
  SimCommand("disable");
  SimCommand(std::string("plugin ") + xSquawkBox + " on");
  Calls();
  SimCommand("enable");
  EXPECT_TRUE(IsLoaded(AddOn::XSquawkBox));
  EXPECT_EQ(Calls(), "plugin-message 16777217 15");
  const std::string log = Log();
  const size_t found = log.find("XSB found pluginID=");
  ASSERT_NE(found, std::string::npos);
  EXPECT_LT(log.rfind("mode not active, init flightloops\n"), found);
  EXPECT_LT(found, log.rfind("TAVRIX->Init pushback functions\n"));
  sim::SimFrames(700);
  EXPECT_EQ(Logged("XSB found"), 1) << "not again in the cycles";
  SimCommand("disable");
  EXPECT_FALSE(IsLoaded(AddOn::XSquawkBox));
  EXPECT_EQ(tools::CountText(Calls(), "plugin-message 16777218 0"), 1);
}

TEST_F(Lifecycle, ClientModeRecognisesNothing) {
  Put("TAVRIX.ini", "[TAVRIX SETTINGS]\nTAVRIX2TAVRIX Client mode = Yes\n");
  Begin("x737");
  SimCommand(std::string("plugin ") + xSquawkBox + " on");
  SimCommand("disable");
  Calls();
  SimCommand("enable");
  SimCommand("aircraft b738-extended");
  sim::SimFrames(70);
  EXPECT_EQ(loadedAddOns, AddOnSet{});
  EXPECT_EQ(Calls(), "");
  EXPECT_EQ(Log().find(" found"), std::string::npos) << Log();
}

// A new aircraft shows in the next frame, the slow rows too, and a write in that very frame takes the branch of
// its engines.
TEST_F(Lifecycle, NewAircraftShowsAtOnce) {
  struct Case {
    const char* aircraft;
    int engineType;
    const char* calls;  // of magneto position 1
  };
  Begin("jet");
  sim::SimFrames(400);
  EXPECT_EQ(rows::Read<uint8_t>(0x0609), 1);
  const Case cases[] = {{"prop", 0, "once sim/magnetos/magnetos_right_1"},
                        {"jet", 1, "press 2"},
                        {"turboprop", 5, "press 2"},
                        {"prop", 0, "once sim/magnetos/magnetos_right_1"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.aircraft);
    SimCommand(std::string("aircraft ") + c.aircraft);
    Calls();
    rows::Write<uint16_t>(0x0892, 0x7FFF);  // no position: nothing, and the next write is a change
    rows::Write<uint16_t>(0x0892, 1);
    sim::SimFrames(1);
    EXPECT_EQ(Calls(), c.calls);
    EXPECT_EQ(rows::Read<uint8_t>(0x0609), c.engineType);
    ReleaseStarters();
  }
  // Nothing hangs on: without a change the slow rows keep their rates.
  SimCommand("set sim/aircraft/prop/acf_en_type[0] 4");
  sim::SimFrames(2);
  EXPECT_EQ(rows::Read<uint8_t>(0x0609), 0);
}

// Which cycle a row belongs to does not matter then.
TEST_F(Lifecycle, EveryCycleFollowsANewAircraft) {
  Put("TAVRIXOffsets.cfg", "Offset 0609 UINT8 8 r 99\n");
  Begin("jet");
  sim::SimFrames(400);
  {
    const LockScope lock(&offsetLock);
    std::memset(offsetMemory.bytes, 0x55, offsetMemorySize);
  }
  SimCommand("aircraft prop");
  sim::SimFrames(1);
  EXPECT_EQ(rows::Read<uint8_t>(0x0609), 99) << "the user's own offset stays on top";
  for (const RowTable* table : Catalogue()) {
    for (const OffsetRow& row : table->rows) {
      if (row.cycle == Cycle::None || row.read != nullptr || row.type == Stored::Text) continue;
      const uint32_t width = StoredWidth(row);
      uint8_t bytes[8] = {};
      CopyFromMemory(row.offset, width, bytes);
      EXPECT_FALSE(std::all_of(bytes, bytes + width, [](uint8_t byte) { return byte == 0x55; }))
          << "offset 0x" << std::hex << row.offset;
    }
  }
}

// What each loop waits for, in the order of their registration: at first, and whenever it has run; seconds, or
// frames with an f.
TEST_F(Lifecycle, LoopsKeepTheirPace) {
  using Waits = std::vector<std::string>;
  const auto waits = [] {
    std::istringstream loops(SimCommand("loops") + ';');
    Waits found;
    for (std::string word; loops >> word;) {
      if (word.back() == ';')
        found.push_back(word.substr(word.find('=') + 1, word.find(';') - word.find('=') - 1));
    }
    return found;
  };
  // Waiting only gets shorter.
  const auto hasRun = [](const std::string& now, const std::string& before) {
    if (now == "off" || now.ends_with('f') != before.ends_with('f')) return now != before;
    return std::stod(now) > std::stod(before);
  };
  const auto play = [&](int frames) {
    Waits all = waits(), before = all;
    for (int frame = 0; frame < frames; ++frame) {
      if (frame == 600) SimCommand("aircraft prop");
      sim::SimFrames(1);
      const Waits now = waits();
      for (size_t i = 0; i < all.size(); ++i) {
        const bool isNew = all[i] != now[i] && !all[i].ends_with(' ' + now[i]);
        if (hasRun(now[i], before[i]) && isNew) all[i] += ' ' + now[i];
      }
      before = now;
    }
    return all;
  };
  Begin();
  EXPECT_EQ(play(800),
            (Waits{"1f off", "1.0 1f", "0.5 1f", "0.5 3f", "0.6 7f", "0.5 13f", "1.0 0.5 31f 0.5 31f",
                   "1.0 31f", "1.0 59f", "1.0 157f", "1.0 313f", "1.0", "1.0 1f", "0.2 0.1", "1.0"}));
  SimCommand("disable");
  SimCommand("enable");
  EXPECT_EQ(play(100)[6], "1.0 0.5 31f") << "each enable begins so";
  EXPECT_EQ(sim::SimStop(), 0);
  Put("TAVRIX.ini", "[TAVRIX SETTINGS]\nTAVRIX2TAVRIX Client mode = Yes\n");
  Begin();
  EXPECT_EQ(play(70), (Waits{"1f off", "1.0 1f"}));
}

TEST_F(Lifecycle, CrashWordStandsForFiveCallsOfTheWatch) {
  constexpr uint32_t crashWord = 0x0840;
  const auto word = [] { return rows::Read<uint16_t>(crashWord); };
  const auto watch = [](int calls) {
    while (calls-- > 0) OverrideWatch(0, 0, 0, nullptr);
  };
  const auto put = [](uint16_t value) { CopyToMemory(crashWord, sizeof value, &value); };
  Begin();
  put(7);
  watch(4);
  EXPECT_EQ(word(), 7);
  watch(1);
  EXPECT_EQ(word(), 0) << "each enable begins without one";
  ReceivePluginMessage(XPLM_PLUGIN_XPLANE, XPLM_MSG_PLANE_CRASHED, nullptr);
  EXPECT_EQ(word(), 1);
  watch(4);
  ReceivePluginMessage(XPLM_PLUGIN_XPLANE, XPLM_MSG_PLANE_CRASHED, nullptr);
  watch(4);
  EXPECT_EQ(word(), 1) << "the second crash counts anew";
  tools::LockHolder holder;
  holder.Take(&offsetLock);
  watch(1);
  holder.LetGo();
  EXPECT_EQ(word(), 1) << "the lock was busy";
  watch(1);
  EXPECT_EQ(word(), 0);
  put(7);
  watch(6);
  EXPECT_EQ(word(), 7) << "cleared once";
}

TEST_F(Lifecycle, OverridesAreTold) {
  Begin();
  EXPECT_EQ(OverridesOn(), 0);
  int bit = 1;
  for (const char* name : {"joystick_pitch", "joystick_roll", "joystick_heading", "throttles"}) {
    const std::string override = std::string("sim/operation/override/override_") + name;
    rows::Set(override, 1);
    EXPECT_EQ(OverridesOn(), bit) << name;
    OverrideWatch(0, 0, 0, nullptr);
    const bool watched[] = {overrideState.pitch, overrideState.roll, overrideState.heading,
                            overrideState.throttles};
    for (int i = 0; i < 4; ++i) EXPECT_EQ(watched[i], bit == 1 << i) << name;
    rows::Set(override, 0);
    bit <<= 1;
  }
}

TEST_F(Lifecycle, WordsOfTheStart) {
  Begin();
  rows::ExpectShown(
      {{0x3304, rows::U32, 0x50000008}, {0x3308, rows::U32, 0xFADE0008}, {0x3BFA, rows::U16, 2047}});
  EXPECT_EQ(rows::ReadString(0x6F03, 9), "2.0.5.25") << "and no terminator behind it";
}

// The lines of a disable with a star for the time, without those of the network and of windows of the system.
TEST_F(Lifecycle, StoppingTellsItsSteps) {
  Begin();
  sim::SimFrames(3);
  SimCommand("disable");
  const std::string log = Log();
  std::istringstream end(log.substr(log.rfind(std::string(50, '-'))));
  std::string lines;
  for (std::string line; std::getline(end, line);) {
    if (line.find("TAVFAR") != std::string::npos || line.find("KORLMain") != std::string::npos) continue;
    if (line.find("Closing Window") != std::string::npos || line.find("capturewindow") != std::string::npos)
      continue;
    const bool isStamped = line.size() > 12 && line[2] == ':' && line[8] == ':';
    lines += (isStamped ? '*' + line.substr(12) : line) + '\n';
  }
  EXPECT_EQ(lines, std::string(50, '-') + R"(
* TAVRIX->Starting deinit
* TAVRIX->Stopping HTTP.....
* TAVRIX->Stopping pushback.....
* TAVRIX->Closing KORL main window.....
* TAVRIX->Closing Joystick Thread......
* TAVRIX->Closing ATC Thread......
TAVRIX->00 ATC Threads active......
Done
TAVRIX->Release critical sections
TAVRIX->Purging TAVRIXOffsets.cfg
* TAVRIX deinit OK!
* TAVRIX Disable !
)");
}

// What the system or the simulator refuses is told, and missing until it can be had.
TEST_F(Lifecycle, EachLockThatIsRefusedKeepsItDisabled) {
  constexpr char line[] = "TAVRIX->The system refuses the locks: the plug-in stays disabled; ";
  Put("TAVRIXOffsets.cfg", "Offset 66C0 UINT8 1 r 5\n");
  Begin();
  int refused = 0;
  for (;; ++refused) {
    SimCommand("disable");
    const shortage::Order order(SystemKind::Event, refused + 1);
    SimCommand("enable");
    if (Logged(line) == refused) break;
    ASSERT_EQ(Logged(line), refused + 1);
    EXPECT_EQ(FindCustomOffset(0x66C0), nullptr);
    EXPECT_EQ(SimCommand("enable"), "ok");
    EXPECT_NE(FindCustomOffset(0x66C0), nullptr);
    sim::SimFrames(2);
  }
  EXPECT_GE(refused, 10) << "of the program, of buttons, axes and traffic";
}

TEST_F(Lifecycle, WithoutThreadsEachServiceIsMissedByName) {
  Put("TAVRIX.ini", "[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\n");
  {
    const shortage::Order order(SystemKind::Thread, 1, 1000);
    Begin();
    sim::SimFrames(5);
  }
  for (const char* text : {"Create Joystick Thread failed!\n", "TAVFARNET->Create Socket thread failed!\n",
                           "Create ATC thread failed!\n",
                           "Create aircraft model thread failed! The simulator's own thread does its work: ",
                           "Create HTTP thread failed! There is no status page: ",
                           "assigned joystick buttons and axes do nothing: ",
                           "network clients cannot connect: ", "other aircraft are not shown: "}) {
    EXPECT_EQ(Logged(text), 1) << text;
  }
  EXPECT_EQ(Logged("Threads already started"), 0);
}

TEST_F(Lifecycle, WhatTheSimulatorRefusesIsTold) {
  const std::string menu = "refuses a part of the menu (";
  const std::pair<const char*, std::string> cases[] = {
      {"XPLMCreateProbe 1", "The simulator gives no terrain probe"},
      {"XPLMAppendMenuItem 1", menu + "TAVRIX): "},
      {"XPLMCreateMenu 1", menu + "TAVRIX): "},
      {"XPLMAppendMenuItem 2 2", menu + "TAVRIX Version and Info, ATC Menu): "},
      {"XPLMCreateMenu 2", menu + "TAVRIX+): "},
      {"XPLMCreateMenu 5", menu + "TAVRIX settings): "},
  };
  Begin();
  for (const auto& [fault, text] : cases) {
    EXPECT_EQ(SimCommand(std::string("fail ") + fault), "ok");
    EXPECT_EQ(SimCommand("reload"), "ok");
    EXPECT_EQ(Logged(text), 1) << fault;
    EXPECT_EQ(Logged("The simulator refuses a part"), text.starts_with(menu) ? 1 : 0) << fault;
    EXPECT_NE(SimCommand("menu").find("Push Back Settings") != std::string::npos, text == menu + "TAVRIX): ")
        << fault;
  }
  EXPECT_EQ(SimCommand("reload"), "ok");
  EXPECT_EQ(Logged("The simulator refuses") + Logged("terrain probe"), 0);
}

// Also when a thread of ours has the positions at that moment: the next call is early enough.
TEST_F(Lifecycle, PositionsOfOthersAreReadTenTimesASecond) {
  Begin();
  EXPECT_EQ(MultiplayerCycle(0, 0, 0, nullptr), 0.1F) << "nobody wants them yet";
  sim::SimFrames(5);
  EXPECT_EQ(MultiplayerCycle(0, 0, 0, nullptr), 0.1F);
  tools::LockHolder holder;
  holder.Take(&trafficLock);
  EXPECT_EQ(MultiplayerCycle(0, 0, 0, nullptr), 0.1F) << "busy";
}

TEST_F(Lifecycle, OpenWindowFollowsTheTraceSwitches) {
  Begin();
  const auto states = [] {
    const std::string widgets = SimCommand("widgets");
    return tools::CountText(widgets, "\" on;");
  };
  SimCommand("menu \"Performance settings\"");
  EXPECT_EQ(states(), 0);
  SimCommand("press \"Log reads\"");
  SimCommand("press \"Log writes\"");
  EXPECT_EQ(readTrace + writeTrace, 2U);
  EXPECT_EQ(states(), 2);
  SimCommand("disable");
  EXPECT_EQ(readTrace + writeTrace, 0U);
  EXPECT_EQ(states(), 0);
  SimCommand("enable");
  SimCommand("press \"Log reads\"");
  EXPECT_EQ(readTrace, 1U) << "the first press switches on";
}

}  // namespace
