// The plug-in's life as the simulator drives it: what each enable begins with, what disable puts back, what a
// new aircraft changes, and what client mode leaves alone.
#include "shell/lifecycle.h"

#include <filesystem>
#include <fstream>
#include <iterator>
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
