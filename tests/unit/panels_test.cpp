// The plug-in's windows as a person uses them: by the menu, with mouse and keys, over disable and restart.
#include "panels/panels.h"

#include <set>
#include <string>

#include "XPLMDisplay.h"
#include "base/log.h"
#include "net/relay.h"
#include "net_harness.h"
#include "panels/layout.h"
#include "panels/layout_window.h"
#include "panels_harness.h"

namespace {

using namespace panels;

std::string TextAt(uint32_t offset) {
  const char* text = reinterpret_cast<const char*>(offsetMemory.bytes + offset);
  return {text, strnlen(text, atcTextSize)};
}

TEST_F(Panels, Menu) {
  const std::string top = "TAVRIX > ", plus = top + "TAVRIX+ > ", joystick = plus + "Joystick functions > ",
                    misc = plus + "Misc. functions > ";
  const std::string menu = "ok " + top + "TAVRIX Version and Info; " + top + "ATC Menu; " + top + "-; " +
                           joystick + "Joystick Button Assignments; " + joystick +
                           "Joystick Calibration Assignments; " + joystick +
                           "Joystick Axis Combining Assignments; " + misc + "Push Back Settings; " + misc +
                           "Flaps settings; " + top + "-; " + top + "TAVRIX settings > Performance settings";
  EXPECT_EQ(SimCommand("menu"), menu);
  EXPECT_EQ(SimCommand("reload"), "ok");
  EXPECT_EQ(SimCommand("menu"), menu) << "once again, and no second time";
}

// Whichever widget of a window the simulator refuses: the window is not there, the line says so, and nothing is
// left.
TEST_F(Panels, AWindowIsMadeWholeOrNotAtAll) {
  for (const char* item : items) {
    const std::string title = TitleOf(item),
                      line = "TAVRIX->The simulator cannot make the window \"" + title + "\": ";
    const int before = sim::WidgetCount();
    int refused = 0;
    for (;; ++refused) {
      ASSERT_EQ(SimCommand("fail XPCreateWidget " + std::to_string(refused + 1)), "ok");
      Open(item);
      if (Find(title) != nullptr) break;
      ASSERT_EQ(tools::CountText(File("TAVRIX.txt"), line), refused + 1) << title;
      ASSERT_EQ(sim::WidgetCount(), before) << title;
    }
    EXPECT_GT(refused, 5) << title;
    EXPECT_EQ(SimCommand("fail off"), "ok");
    EXPECT_EQ(FaultsOf(1024, 768), "");
    EXPECT_EQ(SimCommand("reload"), "ok");
    sim::SimFrames(2);
  }
}

// All windows at once: each label can be read, the windows cascade, and a hundred rounds leave no more widgets
// than the first.
TEST_F(Panels, AllWindowsAtOnce) {
  OpenAlertWindow(std::string(200, 'x').c_str());
  for (const char* item : items) Open(item);
  sim::SimFrames(70);
  std::set<std::pair<int, int>> corners;
  for (const sim::Widget* window : sim::roots) corners.insert({window->box.left, window->box.top});
  EXPECT_EQ(corners.size(), std::size(items) + 1);
  EXPECT_EQ(FaultsOf(1024, 768), "");
  const int widgets = sim::WidgetCount();
  for (int round = 0; round < 100; ++round) {
    for (const char* item : items) {
      EXPECT_EQ(SimCommand("close \"" + TitleOf(item) + '"'), "ok");
      Open(item);
    }
  }
  EXPECT_EQ(sim::WidgetCount(), widgets);
}

// Counters, trace switches and the user's offsets file, each with its log lines.
TEST_F(Panels, Performance) {
  Open(performanceWindowTitle);
  struct Case {
    const char* press;
    uint32_t reads, writes;
    const char* line;  // in the trace log, once more than before
  };
  constexpr Case cases[] = {{"Log reads", 1, 0, "Start Readlogging "},
                            {"Log writes", 1, 1, "Start Writelogging "},
                            {"Log reads", 0, 1, "Stop Readlogging "},
                            {"Log writes", 0, 0, "Stop Writelogging "},
                            {"Log writes", 0, 1, "Start Writelogging "}};
  for (const Case& c : cases) {
    const int before = tools::CountText(File("TAVRIX.log"), c.line);
    Talk("press \"" + std::string(c.press) + '"');
    EXPECT_EQ(readTrace, c.reads) << c.press;
    EXPECT_EQ(writeTrace, c.writes) << c.press;
    EXPECT_EQ(tools::CountText(File("TAVRIX.log"), c.line), before + 1) << c.press;
  }
  tools::WriteFile(folder + "TAVRIXOffsets.cfg", "Dataref SEAT sim/none float\nOffset 66C0 UINT8 1 r 5\n");
  Talk("press \"Reload TAVRIXOffsets.cfg\"");
  EXPECT_EQ(Shown(performanceWindowTitle, "Loaded"), "1 offsets, 1 datarefs, 0 commands; names not found: 1");
  EXPECT_EQ(tools::CountText(File("TAVRIX.txt"), "Reload TAVRIXOffsets.cfg\n"), 1);
  Talk("press \"Clear TAVRIXOffsets.cfg\"");
  EXPECT_EQ(Shown(performanceWindowTitle, "Loaded"), "0 offsets, 0 datarefs, 0 commands; names not found: 0");
  EXPECT_EQ(tools::CountText(File("TAVRIX.txt"), "Clear TAVRIXOffsets.cfg by user\n"), 2);
  requestCounters = {.requests = 3, .bytesRead = 70, .bytesWritten = 8};
  Follow();
  EXPECT_TRUE(Shows("Requests: 3, bytes read: 70, written: 8"));
}

// What is refused says why and changes nothing; what is taken stands in the file and is there after a restart.
TEST_F(Panels, SettingsOfFields) {
  struct Case {
    const char *window, *label, *text, *section, *key;
    const char* message;
    bool taken;
  };
  static constexpr char general[] = "TAVRIX SETTINGS", atc[] = "TAVRIX ATC SETTINGS";
  constexpr Case cases[] = {
      {performanceWindowTitle, "Tune value", "12x", general, "Tune value", "The tune value is a whole number",
       false},
      {performanceWindowTitle, "Tune value", "-7", general, "Tune value", "Saved", true},
      {performanceWindowTitle, "Tune value", "", general, "Tune value", "The tune value is a whole number",
       false},
      {atcWindowTitle, "Number", "AB 1234", atc, "ATC Number", "Saved", true},
      {atcWindowTitle, "Tail number", "D-EXTRALONG-ABC", atc, "ATC Tail Number",
       "Saved; clients see the first 12 characters", true},
      {atcWindowTitle, "Airline", " x", atc, "ATC Airline name", "No blanks before or behind the text", false},
      {atcWindowTitle, "Aircraft type", "", atc, "ATC Aircraft type", "ATC Aircraft type must not be empty",
       false},
      {atcWindowTitle, "Aircraft type", "A 320", atc, "ATC Aircraft type", "Saved", true},
  };
  for (const Case& c : cases) {
    Open(c.window);
    const std::string before = Setting(c.section, c.key);
    Talk("type \"" + std::string(c.window) + "\" \"" + c.label + "\" \"" + c.text + '"');
    EXPECT_EQ(Message(c.window), c.message) << c.text;
    EXPECT_EQ(Setting(c.section, c.key), c.taken ? c.text : before) << c.text;
    if (!c.taken) {
      EXPECT_EQ(Shown(c.window, c.label), c.text) << "to be corrected";
      Key(XPLM_KEY_ESCAPE);
      EXPECT_EQ(Shown(c.window, c.label), before);
      EXPECT_EQ(Message(c.window), "");
    }
  }
  EXPECT_EQ(TextAt(0x3130), "AB 1234");
  EXPECT_EQ(TextAt(0x313C), "D-EXTRALONG-");
  Stop();
  Begin();
  for (const Case& c : cases) {
    Open(c.window);
    EXPECT_TRUE(!c.taken || Shown(c.window, c.label) == c.text) << "after a restart: " << c.text;
  }
}

// Keys, clicks elsewhere, and changes from elsewhere.
TEST_F(Panels, Keys) {
  Open(atcWindowTitle);
  const auto shown = [](const char* label) { return Shown(atcWindowTitle, label); };
  Talk("type \"Number\" \"A1\"");
  EXPECT_EQ(sim::keyboardFocus, nullptr) << "the simulator has the keyboard again";
  Talk("type \"Airline\" \" x\"");  // refused: the keyboard stays
  ASSERT_NE(sim::keyboardFocus, nullptr);
  Key(XPLM_KEY_TAB);
  EXPECT_EQ(sim::keyboardFocus->text, " x");
  Key(XPLM_KEY_ESCAPE);
  Key(XPLM_KEY_TAB);
  TypeText("B2");  // over the whole of the next field
  EXPECT_EQ(shown("Aircraft type"), "B2");
  EXPECT_STREQ(settings.atcAircraftType, "Boeing 737-800");
  Key(XPLM_KEY_TAB);
  EXPECT_STREQ(settings.atcAircraftType, "B2") << "round the end, past the reply that cannot be sent";
  EXPECT_EQ(sim::keyboardFocus->text, "A1");
  Key(XPLM_KEY_TAB, xplm_ShiftFlag);
  EXPECT_EQ(sim::keyboardFocus->text, "B2");
  TypeText("C3");
  rows::WriteBytes(0x3130, "CLIENT\0\0\0\0\0\0", 12);
  rows::WriteBytes(0x3130, "CLIENT\0\0\0\0\0\0", 12);
  Follow();
  EXPECT_EQ(shown("Number"), "CLIENT") << "follows a client";
  EXPECT_EQ(shown("Aircraft type"), "C3") << "stays while it is being typed";
  const auto clickElsewhere = [] {
    sim::Widget* window = const_cast<sim::Widget*>(Find(atcWindowTitle));
    sim::Click(window, window->box.left + 40, window->box.bottom + 2);
  };
  clickElsewhere();
  EXPECT_STREQ(settings.atcAircraftType, "C3") << "a click elsewhere accepts";
  Talk("type \"Tail number\" \" y\"");
  clickElsewhere();
  EXPECT_EQ(shown("Tail number"), "D-ABIB") << "what is refused does not stay";
  Talk("type \"Tail number\" \" y\"");
  Key(XPLM_KEY_ESCAPE);
  Key(XPLM_KEY_ESCAPE);
  EXPECT_EQ(shown("Tail number"), "(closed)");
  Open(atcWindowTitle);
  EXPECT_EQ(shown("Tail number"), "D-ABIB");
}

// Puts a text into a field without Enter; the keyboard stays there.
void TypeOnly(const char* title, const char* label, const char* text) {
  Talk("type \"" + std::string(title) + "\" \"" + label + "\" \" refused\"");
  ASSERT_NE(sim::keyboardFocus, nullptr);
  Key(XPLM_KEY_ESCAPE);  // all of the old text is selected then
  TypeText(text);
}

// What is typed and not entered counts when the keyboard leaves the field: by a click into another window, on a
// button there or on the close box.
TEST_F(Panels, LeavingAField) {
  Open(performanceWindowTitle);
  struct Case {
    const char *text, *leave;
  };
  for (const Case& c : {Case{"A1", "window"}, {"A2", "press \"Log reads\""}, {"A3", "close \"ATC Menu\""}}) {
    Open(atcWindowTitle);
    TypeOnly(atcWindowTitle, "Airline", c.text);
    if (std::string(c.leave) == "window") {
      sim::Widget* window = const_cast<sim::Widget*>(Find(performanceWindowTitle));
      sim::Click(window, window->box.left + 40, window->box.bottom + 2);
    } else {
      Talk(c.leave);
    }
    EXPECT_STREQ(settings.atcAirlineName, c.text) << c.leave;
    EXPECT_EQ(sim::keyboardFocus, nullptr) << c.leave;
  }
}

// A disable gives up what was typed, and open windows tell no more than that; an enable brings everything back.
TEST_F(Panels, Disabled) {
  for (const char* item : {versionWindowTitle, performanceWindowTitle, atcWindowTitle}) Open(item);
  EXPECT_EQ(Shown(versionWindowTitle, "Network"), "TAVFARNET FAILED ! Wrong IP address");
  EXPECT_TRUE(SimCommand("widgets").find("\"this computer has no address 192.168.0.1") != std::string::npos);
  const auto page = [] { return Follow(), Shown(versionWindowTitle, "Status page"); };
  EXPECT_TRUE(tools::WaitUntil([&] { return page().starts_with("http://"); }));
  EXPECT_NE(page(), "http://192.168.0.1:4321") << "which this computer does not have";
  TypeOnly(atcWindowTitle, "Airline", "LOST");
  Talk("disable");
  EXPECT_EQ(sim::keyboardFocus, nullptr);
  const std::string atc = std::string(atcWindowTitle) + " (disabled)";
  EXPECT_EQ(Shown(atc.c_str(), "Airline"), "Lufthansa");
  EXPECT_EQ(Shown(atc.c_str(), "Connection"), "disabled");
  EXPECT_EQ(Message(atc.c_str()), "TAVRIX is disabled: nothing can be changed");
  EXPECT_EQ(Shown((std::string(versionWindowTitle) + " (disabled)").c_str(), "Network"), "disabled");
  EXPECT_EQ(SimCommand("type \"Airline\" \"x\"").substr(0, 5), "error");
  EXPECT_EQ(SimCommand("press \"Log reads\"").substr(0, 5), "error");
  EXPECT_EQ(FaultsOf(1024, 768), "");
  Talk("enable");
  EXPECT_EQ(Shown(atcWindowTitle, "Connection"), "not loaded");
  EXPECT_EQ(Message(atcWindowTitle), "");
  EXPECT_EQ(SimCommand("press \"Send\""), "error: button or box \"Send\" is disabled") << "as before";
  Talk("type \"Airline\" \"NEW\"");
  EXPECT_STREQ(settings.atcAirlineName, "NEW");
}

// Files that cannot be written or read are told in the window, with the reason.
TEST_F(Panels, FilesThatRefuse) {
  Open(performanceWindowTitle);
  const auto message = [] { return Message(performanceWindowTitle); };
  const std::string cfg = folder + "TAVRIXOffsets.cfg", ini = folder + "TAVRIX.ini";
  const auto reload = [&] { return Talk("press \"Reload TAVRIXOffsets.cfg\""), message(); };
  EXPECT_EQ(reload(), "Not loaded: there is no file TAVRIXOffsets.cfg");
  EXPECT_EQ(Shown(performanceWindowTitle, "Loaded"), "nothing: there is no file TAVRIXOffsets.cfg");
  std::filesystem::create_directory(cfg);
  EXPECT_TRUE(reload().starts_with("Not loaded: TAVRIXOffsets.cfg cannot be read: it is a folder"))
      << message();
  std::filesystem::remove(cfg);
  tools::WriteFile(cfg, "Offset 66C0 UINT8 1 r 5\nOffset 66C1 UINT9 1 r 5\n");
  EXPECT_EQ(reload(), "Loaded: 2 entries, lines with faults: 1; TAVRIX.txt tells of them");
  // Removed while it is in force: made anew as it was, what stands in it beside our keys included.
  tools::WriteFile(
      ini, "; mine\n" + File("TAVRIX.ini") + "[JOYSTICK BUTTON SETTINGS]\n7 = 66F4,4,3,-1,0,0,0,0,0,0,1,0\n");
  Talk("type \"Tune value\" \"3\"");
  std::string before = File("TAVRIX.ini");
  std::filesystem::remove(ini);
  Talk("type \"Tune value\" \"4\"");
  EXPECT_EQ(message(), "Saved");
  before.replace(before.find("value = 3"), 9, "value = 4");
  EXPECT_EQ(File("TAVRIX.ini"), before);
  std::filesystem::remove(ini);
  std::filesystem::create_directory(ini);
  Talk("type \"Tune value\" \"5\"");
  EXPECT_EQ(message().substr(0, 32), "Not saved: TAVRIX.ini cannot be ") << message();
  EXPECT_EQ(settings.tuneValue, 4);
  Stop();
  std::filesystem::remove(folder + "TAVRIX.log");
  std::filesystem::create_directory(folder + "TAVRIX.log");
  Begin();
  Open(performanceWindowTitle);
  Talk("press \"Log reads\"");
  EXPECT_TRUE(message().starts_with("Not switched on: TAVRIX.log cannot be written (it could not be opened"))
      << message();
  EXPECT_EQ(readTrace, 0u);
  EXPECT_EQ(tools::CountText(SimCommand("widgets"), "\" on;"), 0);
}

TEST_F(Panels, XSquawkBox) {
  Open(atcWindowTitle);
  const auto shown = [](const char* label) { return Shown(atcWindowTitle, label); };
  EXPECT_EQ(shown("Connection"), "not loaded");
  EXPECT_EQ(SimCommand("press \"Send\""), "error: button or box \"Send\" is disabled");
  const std::string signature = "vatsim.protodev.clients.xsquawkbox";
  SimCommand("plugin " + signature + " on");
  SimCommand("set xsquawkbox/atc/freq 119900");
  SimCommand("set xsquawkbox/vers/string \"1.3\"");
  sim::SimFrames(320);
  SimCommand("set xsquawkbox/atc/callsign \"EDDF_TWR\"");
  SimCommand(
      "set xsquawkbox/weather/metar \"EDDF 231220Z 24012KT 9999 FEW030 12/08 Q1013 NOSIG RMK A LONG REMARK\"");
  SimCommand("set xsquawkbox/text/from \"EDDF_TWR\"");
  SimCommand("set xsquawkbox/text/msg \"cleared\\nto land\"");
  for (const uint32_t message : {0x80000001U, 0x80000003U, 0x80000005U, 0x80000006U, 0x80000007U}) {
    SimCommand("message " + std::to_string(static_cast<int>(message)) + " 1 from " + signature);
  }
  Follow();
  EXPECT_EQ(shown("Connection"), "connected, receiving (version 1.3)");
  EXPECT_EQ(shown("Controller"), "EDDF_TWR on 119.900");
  EXPECT_EQ(shown("METAR"), "EDDF 231220Z 24012KT 9999 FEW030 12/08 Q1013 NOSIG RMK A");
  EXPECT_TRUE(Shows("LONG REMARK")) << "in a second line";
  EXPECT_EQ(shown("Last text"), "EDDF_TWR: cleared");
  EXPECT_TRUE(Shows("to land"));
  EXPECT_EQ(FaultsOf(1024, 768), "");
  rows::Calls();
  Talk("type \"Number\" \"A2\"");
  EXPECT_EQ(rows::Calls(), "") << "its Enter sends nothing";
  Talk("type \"Reply\" \"roger\"");
  EXPECT_EQ(rows::Calls(), "plugin-message 16777225 0");
  EXPECT_EQ(SimCommand("get xsquawkbox/input/user_msg"), "ok \"roger\"");
  EXPECT_EQ(shown("Reply"), "");
  Talk("press \"Send\"");
  EXPECT_EQ(rows::Calls(), "") << "nothing to send";
}

// Who serves whom, live: a client that comes and goes, what is loaded, and a disable in between.
TEST_F(Panels, VersionAndServers) {
  Stop();
  tools::WriteFile(folder + "TAVRIX.ini",
                   "[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\nStatus page = Local\n");
  tools::WriteFile(folder + "TAVRIXOffsets.cfg",
                   "Dataref SEAT sim/none float\nCommand 66C4 UINT8 1 1 sim/no\n");
  Begin();
  Open(versionWindowTitle);
  const auto shown = [](const char* label) { return Shown(versionWindowTitle, label); };
  EXPECT_EQ(shown("Network"), "ready, Network clients: 0");
  EXPECT_EQ(shown("Clients"), "none");
  EXPECT_EQ(shown("Paste into a client"), "offsetctl monitor --net 127.0.0.1");
  EXPECT_EQ(shown("TAVRIXOffsets.cfg"), "0 offsets, 1 datarefs, 1 commands");
  EXPECT_EQ(shown("Names not found"), "sim/none");
  EXPECT_TRUE(Shows("sim/no"));
  Talk("type \"Paste into a client\" \"x\"");
  EXPECT_EQ(shown("Paste into a client"), "offsetctl monitor --net 127.0.0.1");
  const auto waitFor = [&](const char* label, const std::string& text) {
    return tools::WaitUntil([&] { return Follow(), shown(label).starts_with(text); });
  };
  EXPECT_TRUE(waitFor("Status page", "http://127.0.0.1:4321, this computer only"));
  EXPECT_TRUE(waitFor("Announcement", "once a second"));
  net::Client client;
  ASSERT_TRUE(net::Connect(&client));
  EXPECT_TRUE(waitFor("Network", "ready, Network clients: 1"));
  EXPECT_TRUE(waitFor("Clients", "127.0.0.1 "));
  net::Disconnect(&client);
  EXPECT_TRUE(waitFor("Clients", "none"));
  EXPECT_EQ(FaultsOf(1024, 768), "");
  Talk("disable | enable");
  sim::SimFrames(70);
  Follow();
  EXPECT_EQ(shown("Network"), "not running");
  EXPECT_TRUE(Shows("The servers start once a load: reload the plug-in to start")) << SimCommand("widgets");
}

// A smaller screen, one that changes while a window is closed, and a window dragged by its title.
TEST_F(Panels, Places) {
  for (const char* item : items) Open(item);
  Talk("screen 800 600");
  sim::SimFrames(1);
  EXPECT_EQ(FaultsOf(800, 600), "");
  const int below = 600 - Find(atcWindowTitle)->box.top;
  Talk("close \"ATC Menu\"");
  sim::SimFrames(1);
  Talk("screen 1024 2000");
  sim::SimFrames(1);
  Open(atcWindowTitle);
  EXPECT_EQ(2000 - Find(atcWindowTitle)->box.top, below) << "from the upper edge";
  const sim::Widget* window = Find(performanceWindowTitle);
  const sim::Rect before = window->box, inside = window->children[0]->box;
  XPSetWidgetGeometry(const_cast<sim::Widget*>(window), before.left - 5, before.top - 9, before.right - 5,
                      before.bottom - 9);
  EXPECT_EQ(window->children[0]->box.left, inside.left - 5);
  EXPECT_EQ(window->children[0]->box.top, inside.top - 9);
}

TEST_F(Panels, BrokenTexts) {
  struct Case {
    const char* text;
    int width, lines;
    std::vector<std::string> broken;
  };
  const Case cases[] = {
      {"", 10, 2, {}},
      {"fits", 4, 1, {"fits"}},
      {"one two three", 7, 3, {"one two", "three"}},
      {"one two three", 7, 1, {"one ..."}},
      {"one\ntwo\nthree", 20, 2, {"one", "two..."}},
      {"a\n\nb", 5, 3, {"a", "", "b"}},
      {"abcdefghij", 4, 2, {"abcd", "e..."}},
      {"\xC3\xA4\xC3\xA4\xC3\xA4", 3, 3, {"\xC3\xA4", "\xC3\xA4", "\xC3\xA4"}},  // two bytes a letter
      {"tab\tand\rmore", 20, 1, {"tab and more"}},
      {"abc", 0, 2, {"a", "b..."}},
  };
  for (const Case& c : cases) EXPECT_EQ(BreakText(c.text, c.width, c.lines), c.broken) << c.text;
}

// An instance that follows another simulator has no servers, and windows all the same.
TEST_F(Panels, ClientMode) {
  Stop();
  tools::WriteFile(folder + "TAVRIX.ini",
                   "[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\nTAVRIX2TAVRIX Client mode = Yes\n");
  Begin();
  Open(versionWindowTitle);
  EXPECT_EQ(Shown(versionWindowTitle, "Network"), "client mode: receives from the other simulator");
  Stop();
  {
    Socket other;
    ASSERT_TRUE(OpenSocketLibrary());
    ASSERT_TRUE(OpenSocket(&other, Transport::Datagram) && BindSocket(&other, {0x7F000001, relayPort}));
    Begin();
    Open(versionWindowTitle);
    EXPECT_EQ(Shown(versionWindowTitle, "Network"), "client mode, receives nothing: UDP port 54945");
    CloseSocket(&other);
    CloseSocketLibrary();
  }
  requestCounters.requests = 5;
  Follow();
  EXPECT_TRUE(Shows("Requests: 5, bytes read: 0, written: 0"));
}

// While no window is open the simulator is asked nothing for them.
TEST_F(Panels, ClosedWindowsCostNothing) {
  const auto calls = [] {
    SimCommand("perf");
    for (int frame = 0; frame < 10; ++frame) FollowPanels();
    const std::string perf = SimCommand("perf");
    return std::stoi(perf.substr(perf.find(" calls ") + 7));
  };
  EXPECT_GT(calls(), 0) << "the alert is open";
  Talk("close \"TAVRIX Alert\"");
  FollowPanels();  // sees that it is gone
  EXPECT_EQ(calls(), 0);
}

}  // namespace
