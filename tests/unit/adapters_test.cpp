// Add-ons that come and go: flags, handles, log lines, and the rows that follow them.
#include "aircraft/adapters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <tuple>

#include "XPLMPlugin.h"
#include "adapters_harness.h"
#include "aircraft/names.h"
#include "bridge/catalogue/identity.h"

namespace {

TEST_F(Adapters, AircraftComeAndGo) {
  struct Case {
    const char* aircraft;
    AddOn addOn;
    const char* prefix;  // of its names
    int dataRefs, commands;
    std::initializer_list<const char*> lines;
  };
  const Case cases[] = {
      {"x737", AddOn::X737, "x737/", 49, 11, {"x737 found pluginID="}},
      {"ixeg733",
       AddOn::Ixeg733,
       "ixeg/733/",
       47,
       12,
       {" IXEG found, datarefs loaded\n", "\nIXEG found, commands loaded\n"}},
      {"b738-extended",
       AddOn::B738Extended,
       "laminar/B738/",
       46,
       59,
       {" Extended 737-800 found, datarefs loaded\n", " Extended 737-800 found, commands loaded\n"}},
      {"b738",
       AddOn::B738Stock,
       "laminar/B738/",
       23,
       18,
       {" Stock 737-800 found, datarefs loaded\n", " Stock 737-800 found, commands loaded\n"}},
      {"ec135", AddOn::Ec135, "rotorsim/ec135/", 4, 0, {" TAVRIX->EC135 found pluginID="}},
  };
  int round = 0;
  for (const Case& c : cases) {
    // Once by the message of the new aircraft, once by the cycles alone: the result is the same.
    for (const bool byMessage : {true, false}) {
      SCOPED_TRACE(testing::Message() << c.aircraft << (byMessage ? " by message" : " by cycle"));
      const int before = Logged(*c.lines.begin());
      ASSERT_EQ(sim::SimCommand(std::string("aircraft ") + c.aircraft), "ok");
      EXPECT_EQ(LoadedCount(), 0);
      if (byMessage)
        DetectLoadedAircraft();
      else
        RunCycles();
      EXPECT_TRUE(IsLoaded(c.addOn));
      EXPECT_EQ(LoadedCount(), 1);
      EXPECT_EQ(DataRefHandles(c.prefix), c.dataRefs);
      EXPECT_EQ(CommandHandles(c.prefix), c.commands);
      EXPECT_EQ(NamesFoundOf(c.addOn).missing.size(), 0u) << NamesFoundOf(c.addOn).missing.front();
      RunCycles();
      RunCycles();
      for (const char* line : c.lines) EXPECT_EQ(Logged(line), before + 1) << "looked up once: " << line;

      ASSERT_EQ(sim::SimCommand("aircraft jet"), "ok");
      if (byMessage)
        DetectLoadedAircraft();
      else
        RunCycles();
      EXPECT_EQ(LoadedCount(), 0);
      EXPECT_EQ(DataRefHandles(c.prefix) + CommandHandles(c.prefix), 0);
      ++round;
    }
  }
  EXPECT_EQ(round, 10);
}

TEST_F(Adapters, TheLoadedAircraftIsToldOnce) {
  const std::string none = ": no adapter of its own";
  EXPECT_EQ(Logged(" TAVRIX->Aircraft without a title" + none), 1) << "nothing has been read yet";
  ASSERT_EQ(sim::SimCommand("aircraft x737"), "ok");
  DetectLoadedAircraft();
  EXPECT_EQ(Logged(": served by the adapter for x737\n"), 1);
  const int told = Logged(" TAVRIX->Aircraft ");
  for (int i = 0; i < 5; ++i) RunCycles();
  DetectLoadedAircraft();
  EXPECT_EQ(Logged(" TAVRIX->Aircraft "), told) << "nothing has changed";
  ResetAdapters();  // disabled and enabled
  RunCycles();
  EXPECT_EQ(Logged(": served by the adapter for x737\n"), 2);
  ASSERT_EQ(sim::SimCommand("aircraft jet"), "ok");
  sim::DataRef* title = sim::FindLive("sim/aircraft/view/acf_descrip");
  ASSERT_NE(title, nullptr);
  const std::string text = "Jet\n12:00:00:000 TAVRIX->Forged\x1B[2J";
  title->bytes.assign(256, 0);
  std::copy(text.begin(), text.end(), title->bytes.begin());
  DetectLoadedAircraft();
  EXPECT_EQ(Logged(" TAVRIX->Aircraft \"Jet\\n12:00:00:000 TAVRIX->Forged\\x1B[2J\"" + none), 1);
  title->bytes.assign(256, 0);
  DetectLoadedAircraft();
  EXPECT_EQ(Logged(" TAVRIX->Aircraft without a title" + none), 2);
}

TEST_F(Adapters, RowsFollowTheAircraftAndReturn) {
  rows::Set("sim/cockpit/autopilot/autopilot_state", 0);
  sim::SimCommand("aircraft x737");
  DetectLoadedAircraft();
  rows::Set("x737/systems/afds/HDG", 1);
  rows::Refresh(Cycle::C7);
  EXPECT_EQ(rows::Read<uint32_t>(0x07C8), 1U);
  sim::SimCommand("aircraft jet");
  DetectLoadedAircraft();
  rows::Refresh(Cycle::C7);
  EXPECT_EQ(rows::Read<uint32_t>(0x07C8), 0U) << "back at the stock autopilot";
}

TEST_F(Adapters, TitleDecidesToTheLastCharacter) {
  struct Case {
    const char* title;
    bool stock;
  };
  for (const Case& c : {Case{"Boeing B737-800 ", true},
                        {"Boeing B737-800", false},
                        {"Boeing B737-800X", false},
                        {"boeing B737-800 x", false},
                        {" Boeing B737-800 ", false},
                        {"", false}}) {
    sim::SimCommand(std::string("set sim/aircraft/view/acf_descrip \"") + c.title + "\"");
    RunCycles();
    EXPECT_EQ(IsLoaded(AddOn::B738Stock), c.stock) << c.title;
  }
  sim::SimCommand("set sim/aircraft/view/acf_descrip \"" + std::string(255, 'a') + "\"");
  DetectLoadedAircraft();
  sim::SimCommand("set sim/aircraft/view/acf_descrip \"short\"");
  RunCycles();
  char title[aircraftTextSize];
  CopyFromMemory(aircraftTitleOffset, sizeof title, title);
  EXPECT_EQ(std::string(title, sizeof title), "short" + std::string(sizeof title - 5, '\0'));
}

TEST_F(Adapters, AircraftFileIsBelowTheSimulatorsFolder) {
  sim::SimCommand("aircraft x737");
  rows::Refresh(Cycle::C59);
  char file[aircraftTextSize];
  CopyFromMemory(0x3C00, sizeof file, file);
  std::string shown(file);
  for (char& c : shown) c = c == '\\' ? '/' : c;
  EXPECT_EQ(shown, "Aircraft/Heavy Metal/x737/x737_800.acf");
}

TEST_F(Adapters, NetworkClients) {
  const std::string signature = "vatsim.protodev.clients.xsquawkbox";
  sim::SimCommand("define xsquawkbox/text/from byte[32]");
  sim::SimCommand("define xsquawkbox/text/msg byte[64]");
  sim::SimCommand("define xsquawkbox/vers/number int 120");
  for (const char* name : {"atc/callsign", "weather/metar", "input/string"}) {
    sim::SimCommand(std::string("define xsquawkbox/") + name + " byte[32]");
    sim::SimCommand(std::string("set xsquawkbox/") + name + " \"" + name + "\"");
  }
  sim::SimCommand("plugin " + signature + " on");
  sim::SimCommand("plugin com.pilotedge.plugin.xplane on");
  RunCycles();
  RunCycles();
  EXPECT_EQ(LoadedCount(), 2);
  EXPECT_EQ(Logged("XSB found pluginID="), 1);
  EXPECT_EQ(Logged("Init pilotEdge dataref Block OK!\nInit pilotEdge command Block OK!\n"), 1);
  EXPECT_EQ(NamesFoundOf(AddOn::PilotEdge).found, 9);
  EXPECT_EQ(xSquawkBoxState.versionNumber, 120);
  const int id = XPLMFindPluginBySignature(signature.c_str());
  EXPECT_EQ(rows::Calls(), "plugin-message 16777217 15") << "subscribed once";

  struct Case {
    uint32_t message;
    intptr_t parameter;
    int connected, receiving, transmitting;
  };
  const Case cases[] = {{0x80000003, 1, 0, 1, 0}, {0x80000001, 0, 1, 1, 0}, {0x80000004, 1, 1, 1, 1},
                        {0x80000003, 0, 1, 0, 1}, {0x8000000A, 1, 1, 0, 1}, {0x80000002, 0, 0, 0, 0}};
  for (const Case& c : cases) {
    ReceiveAdapterMessage(id, static_cast<int>(c.message), reinterpret_cast<void*>(c.parameter));
    EXPECT_EQ(xSquawkBoxState.connected, c.connected) << c.message;
    EXPECT_EQ(xSquawkBoxState.receiving, c.receiving) << c.message;
    EXPECT_EQ(xSquawkBoxState.transmitting, c.transmitting) << c.message;
  }
  ReceiveAdapterMessage(id + 1000, static_cast<int>(0x80000001), nullptr);
  EXPECT_EQ(xSquawkBoxState.connected, 0) << "of another plug-in";
  sim::SimCommand("set xsquawkbox/text/from \"EDDF_TWR\"");
  sim::SimCommand("set xsquawkbox/text/msg \"" + std::string(64, 'm') + "\"");  // fills the dataref: no NUL
  ReceiveAdapterMessage(id, static_cast<int>(0x80000007), nullptr);
  EXPECT_STREQ(xSquawkBoxState.from, "EDDF_TWR");
  EXPECT_EQ(xSquawkBoxState.text, std::string(64, 'm'));

  const XSquawkBoxState& state = xSquawkBoxState;
  sim::SimCommand("set xsquawkbox/atc/freq 122800");
  const std::pair<uint32_t, const char*> texts[] = {
      {5, state.callsign}, {6, state.metar}, {8, state.command}, {9, state.command}, {10, state.command}};
  const char* const contents[] = {"atc/callsign", "weather/metar", "input/string", "input/string",
                                  "input/string"};
  for (size_t i = 0; i < std::size(texts); ++i) {
    EXPECT_STREQ(texts[i].second, i < 3 ? "" : contents[i]);
    for (size_t round = 0; round <= i; ++round) {
      ReceiveAdapterMessage(id, static_cast<int>(0x80000000 + texts[i].first), nullptr);
    }
    EXPECT_STREQ(texts[i].second, contents[i]);
  }
  EXPECT_EQ(state.frequency, 122800);
  const uint32_t counts[] = {state.frequencyChanges, state.metarsReceived, state.commandsTyped,
                             state.aboutShown, state.textsReceived};
  const uint32_t expected[] = {1, 2, 3, 4, 1};
  for (size_t i = 0; i < std::size(counts); ++i) EXPECT_EQ(counts[i], expected[i]) << i;

  sim::SimCommand("aircraft ec135");
  DetectLoadedAircraft();
  EXPECT_EQ(LoadedCount(), 3) << "another aircraft leaves the network clients alone";
  sim::SimCommand("plugin " + signature + " off");
  RunCycles();
  EXPECT_FALSE(IsLoaded(AddOn::XSquawkBox));
  EXPECT_EQ(xSquawkBoxState.textsReceived, 0U);
  EXPECT_EQ(DataRefHandles("xsquawkbox/"), 0);
  ReceiveAdapterMessage(id, static_cast<int>(0x80000001), nullptr);
  EXPECT_EQ(xSquawkBoxState.connected, 0) << "gone";
  ResetAdapters();
  EXPECT_EQ(LoadedCount(), 0);
  EXPECT_EQ(NamesFoundOf(AddOn::PilotEdge).total, 0);
}

TEST_F(Adapters, IxegThrottlesAreGivenBackWhereNobodyElseHasSetThem) {
  const std::string line = " disabling IXEG throttle overwrite OK!\n", input = "ixeg/733/hardware/tavrix_thro";
  sim::SimCommand("aircraft ixeg733");
  DetectLoadedAircraft();
  rows::Set(input + "1", 0.5);
  ReleaseIxegThrottleOverride();
  EXPECT_EQ(rows::Get(input + "1"), 0.5) << "no client has taken them";
  EXPECT_EQ(Logged(line), 0);
  rows::WriteNew(0x088C, Stored::S16, 16384);
  rows::WriteNew(0x0924, Stored::S16, 5000);
  rows::Set(input + "1", 0.25);  // somebody else
  for (int i = 0; i < 2; ++i) ReleaseIxegThrottleOverride();
  EXPECT_EQ(rows::Get(input + "1"), 0.25);
  EXPECT_EQ(rows::Get(input + "2"), 0);
  EXPECT_EQ(Logged(line), 1);
  // The aircraft is not recognised any more, and its inputs are still there.
  rows::WriteNew(0x088C, Stored::S16, 8192);
  ASSERT_EQ(rows::Get(input + "1"), 0.5);
  ASSERT_EQ(sim::SimCommand("undefine ixeg/733/misc/seatbelt_act"), "ok");
  RunCycles();
  EXPECT_EQ(rows::Get(input + "1"), 0);
  ReleaseIxegThrottleOverride();
  EXPECT_EQ(Logged(line), 1) << "nothing is left to give back";
}

TEST_F(Adapters, NamesThatAreNotThereAreTold) {
  const auto state = [](AddOn addOn) {
    const NamesFound& names = NamesFoundOf(addOn);
    return std::tuple(names.found, names.total, names.missing.size());
  };
  sim::SimCommand("aircraft ixeg733");
  sim::Withdraw(sim::FindLive("ixeg/733/fuel/fuel_1_aft_act"));
  sim::Withdraw(sim::FindLive("ixeg/733/MCP/mcp_vs_ann"));
  DetectLoadedAircraft();
  const auto [found, total, missing] = state(AddOn::Ixeg733);
  EXPECT_EQ(found, total - 2);
  EXPECT_EQ(missing, 2u);
  EXPECT_EQ(Logged(" TAVRIX->IXEG 737: " + std::to_string(found) + " of " + std::to_string(total) +
                   " names found; not found: ixeg/733/MCP/mcp_vs_ann, ixeg/733/fuel/fuel_1_aft_act\n"),
            1);
  // An aircraft with the title and no names of its own, as older simulators bring it: the simulator's own
  // controls.
  sim::SimCommand("aircraft jet");
  sim::SimCommand("set sim/aircraft/view/acf_descrip \"Boeing B737-800 \"");
  DetectLoadedAircraft();
  EXPECT_EQ(state(AddOn::Ixeg733), std::tuple(0, 0, 0u));
  EXPECT_EQ(Logged("Stock 737-800 found, datarefs loaded\n"), 1);
  EXPECT_EQ(std::get<0>(state(AddOn::B738Stock)), 0);
  EXPECT_EQ(Logged("Stock 737-800 found, commands loaded\n"), 0) << "none was";
  EXPECT_EQ(Logged(" more\n"), 1) << "the list is cut";
  rows::CheckCalls({{0x07D0, Stored::U32, 1, "key 16"}});
}

TEST_F(Adapters, ControlsWithoutACommandDoNothingAndSaySoOnce) {
  sim::SimCommand("aircraft ixeg733");
  DetectLoadedAircraft();
  commandOf<"ixeg/733/autopilot/VS_mode_toggle">.handle = nullptr;  // another version of the aircraft
  rows::Calls();
  sim::SimCommand("writes");
  for (const uint32_t value : {1u, 0u, 1u}) {
    for (const uint32_t offset : {0x07ECu, 0x0804u, 0x07C0u}) rows::WriteNew(offset, Stored::U32, value);
  }
  EXPECT_EQ(rows::Calls(), "");
  EXPECT_EQ(sim::SimCommand("writes"), "ok");
  EXPECT_EQ(
      Logged("IXEG 737: writes to 0x07EC do nothing, it does not publish ixeg/733/autopilot/VS_mode_toggle\n"),
      1);
  EXPECT_EQ(Logged(" do nothing, "), 3);
  DetectLoadedAircraft();  // loaded anew
  rows::WriteNew(0x0804, Stored::U32, 1);
  EXPECT_EQ(Logged(" do nothing, "), 4);
  // x737 of a version without commands: its switches are set.
  sim::SimCommand("aircraft x737");
  DetectLoadedAircraft();
  commandOf<"x737/mcp/VORLOC_TOGGLE">.handle = nullptr;
  rows::WriteNew(0x07C4, Stored::U32, 1);
  EXPECT_EQ(rows::Get("x737/systems/afds/VORLOC"), 1);
}

// What rows and functions name and what the table of names has must be the same, or a name is never looked up.
TEST_F(Adapters, EveryNameIsLookedUp) {
  const AddOn all[] = {AddOn::X737,  AddOn::B738Extended, AddOn::B738Stock, AddOn::Ixeg733,
                       AddOn::Ec135, AddOn::XSquawkBox,   AddOn::PilotEdge};
  std::set<std::string> listed;
  for (const AddOn addOn : all) {
    for (const auto& names : {NamesOf(addOn).dataRefs, NamesOf(addOn).commands}) {
      EXPECT_FALSE(names.empty() && addOn != AddOn::XSquawkBox);
      for (const AddOnName& name : names) listed.insert(name.name);
    }
  }
  const auto check = [&](const auto* entry) {
    for (; entry != nullptr; entry = entry->next) {
      const std::string name = entry->name;
      EXPECT_TRUE(name.starts_with("sim/") || listed.contains(name)) << name;
    }
  };
  check(firstDataRef);
  check(firstCommand);
}

TEST_F(Adapters, HeldPressesEndInALaterFrameAndWaitForEachOther) {
  const std::string name = "laminar/B738/spring_toggle_switch/APU_start_pos";
  sim::SimCommand("aircraft b738-extended");
  DetectLoadedAircraft();
  rows::WriteNew(0x0B58, Stored::F32, 1);
  EXPECT_EQ(rows::Calls(), "begin " + name + "_dn");
  std::string calls;
  for (int frame = 0; frame < 40; ++frame) {
    RunWriters();
    const std::string now = rows::Calls();
    if (!now.empty()) calls += std::to_string(frame) + ' ' + now + '\n';
  }
  EXPECT_EQ(calls, "9 end " + name + "_dn\n10 begin " + name + "_dn\n19 end " + name + "_dn\n");
  EXPECT_EQ(rows::Get(name), 1) << "sprung back from start";
  // Whatever is held when the aircraft goes is let go.
  rows::WriteNew(0x3101, Stored::U8, 1);
  rows::Calls();
  ResetAdapters();
  EXPECT_EQ(rows::Calls(), "end laminar/B738/toggle_switch/gen1_dn; end laminar/B738/toggle_switch/gen2_dn");
  RunWriters();
  EXPECT_EQ(rows::Calls(), "");
}

TEST_F(Adapters, NamesThatAppearLateAreFound) {
  // An add-on's plug-in without any of its names serves nothing, and hides no other add-on.
  ASSERT_EQ(sim::SimCommand("aircraft b738-extended"), "ok");
  ASSERT_EQ(sim::SimCommand("plugin bs.x737.plugin on"), "ok");
  RunCycles();
  EXPECT_TRUE(IsLoaded(AddOn::X737));
  EXPECT_FALSE(Serves(AddOn::X737));
  EXPECT_EQ(Logged("served by the adapter for Extended 737-800\n"), 1);
  rows::CheckCalls({{0x07C8, Stored::U32, 1, "once laminar/B738/autopilot/hdg_sel_press"}});
  ASSERT_EQ(sim::SimCommand("aircraft jet"), "ok");
  ASSERT_EQ(sim::SimCommand("plugin bs.x737.plugin on"), "ok");
  DetectLoadedAircraft();
  // The look-ups end: what is not there by then is asked for at growing distances.
  for (int run = 0; run < 40; ++run) RunCycles();
  uint64_t before = sim::LookUps();
  for (int run = 0; run < 20; ++run) RunCycles();
  const uint64_t names = static_cast<uint64_t>(NamesFoundOf(AddOn::X737).total), own = sim::LookUps() - before;
  EXPECT_LT(own, names + 20 * 8) << "at most one run of them, and the recognition's own";
  DetectLoadedAircraft();
  RunCycles();
  for (const char* line : {"define x737/systems/afds/CMD_A int 1", "define x737/systems/afds/APengaged int 1",
                           "define x737/systems/afds/HDG_magnhdg float 90"}) {
    ASSERT_EQ(sim::SimCommand(line), "ok");
  }
  RunCycles();
  RunCycles();
  rows::Refresh(Cycle::C13);
  EXPECT_EQ(rows::Read<uint32_t>(0x07BC), 1U);
  rows::WriteNew(0x07CC, Stored::U16, 0x8000);
  EXPECT_NEAR(rows::Get("x737/systems/afds/HDG_magnhdg"), 180, 0.05);
  // Without the buttons' commands the autopilot is set.
  rows::WriteNew(0x07BC, Stored::U32, 0);
  EXPECT_EQ(rows::Get("x737/systems/afds/APengaged"), 0);
  rows::Set("x737/systems/afds/CMD_A", 0);
  rows::WriteNew(0x07BC, Stored::U32, 1);
  EXPECT_EQ(rows::Get("x737/systems/afds/CMD_A"), 1);
  EXPECT_EQ(Logged(": served by the adapter for x737\n"), 1);
  // The simulator's commands are no add-on's, and nothing is nothing.
  ASSERT_EQ(sim::SimCommand("define ixeg/733/misc/seatbelt_act float 0"), "ok");
  ASSERT_EQ(sim::SimCommand("plugin rotorsim.ec135.management on"), "ok");
  RunCycles();
  EXPECT_EQ(Logged("IXEG found, datarefs loaded\n"), 1);
  EXPECT_EQ(Logged("IXEG found, commands loaded\n"), 0);
  EXPECT_EQ(Logged(", but none of its names\n"), 1);
  // The cycle that finds a plug-in is followed at once.
  ASSERT_EQ(sim::SimCommand("aircraft ec135"), "ok");
  DetectLoadedAircraft();
  ASSERT_EQ(sim::SimCommand("plugin rotorsim.ec135.management off"), "ok");
  RunEc135Adapter();
  ASSERT_EQ(sim::SimCommand("plugin rotorsim.ec135.management on"), "ok");
  rows::SetAll({{"rotorsim/ec135/battery", 2}, {"sim/cockpit/electrical/battery_on", 0}});
  RunEc135Adapter();
  rows::Refresh(Cycle::C31Navigation);
  EXPECT_EQ(rows::Read<uint8_t>(0x3102), 1);
}

}  // namespace
