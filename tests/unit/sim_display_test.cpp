// What other people's plug-ins import of the stand-in and ours does not: windows, drawing, keys, camera, flight
// plan, objects; what must not be left at stop; exceptions that come out of plug-ins.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>

#include "XPLMCamera.h"
#include "XPLMDisplay.h"
#include "XPLMGraphics.h"
#include "XPLMNavigation.h"
#include "XPLMPlanes.h"
#include "XPLMScenery.h"
#include "XPUIGraphics.h"
#include "core/more_api.h"
#include "core/sim.h"

namespace {

std::string events;
std::function<void()> onDisable, onMessage;

const sim::PluginEntry kEntry = {
    .start = [](char*, char* signature, char*) { return std::strcpy(signature, "test.display"), 1; },
    .stop = [] {},
    .enable = [] { return 1; },
    .disable = [] { onDisable ? onDisable() : void(); },
    .message =
        [](int, int message, void*) {
          events += std::to_string(message) + ' ';
          if (onMessage) onMessage();
        }};

struct SimDisplay : testing::Test {
  void SetUp() override {
    root = std::filesystem::path(testing::TempDir()) / "display";
    sim::Options options;
    options.linked = &kEntry;
    options.root = root.string();
    options.rate = 0;
    options.circuit = false;
    options.tolerant = true;
    ASSERT_EQ(sim::SimStart(options), 0);
    events.clear();
  }
  void TearDown() override {
    onDisable = onMessage = nullptr;
    sim::SimStop();
    EXPECT_EQ(sim::TakeBreaches(), leftOver);
    std::filesystem::remove_all(root);
  }
  std::filesystem::path root;
  std::vector<std::string> leftOver;  // breaches that the stop shall tell
};

void* Name(const char* text) { return const_cast<char*>(text); }
const char* Text(void* ref) { return static_cast<const char*>(ref); }

int Hook(XPLMDrawingPhase phase, int before, void* ref) {
  events += Text(ref) + std::to_string(phase) + (before ? "b " : "a ");
  return 1;
}
void DrawWindow(XPLMWindowID, void* ref) { events += Text(ref) + std::string(" "); }
void Key(XPLMWindowID, char, XPLMKeyFlags, char, void* ref, int losing) {
  events += Text(ref) + std::string(losing ? " loses " : " key ");
}
XPLMWindowID MakeWindow(const char* name, int visible = 1) {
  return XPLMCreateWindow(1, 40, 30, 2, visible, DrawWindow, Key, nullptr, Name(name));
}

TEST_F(SimDisplay, DrawsPhasesInOrderWithWindowsBackToFront) {
  constexpr XPLMDrawingPhase phases[] = {xplm_Phase_LastCockpit, xplm_Phase_Window, xplm_Phase_Terrain,
                                         xplm_Phase_LocalMap2D};
  for (const XPLMDrawingPhase phase : phases) {
    for (const int before : {0, 1}) EXPECT_EQ(XPLMRegisterDrawCallback(Hook, phase, before, Name("")), 1);
  }
  const XPLMWindowID back = MakeWindow("back"), front = MakeWindow("front"), hidden = MakeWindow("hidden", 0);
  sim::SimFrames(1);
  EXPECT_EQ(events, "5b 5a 50b back front 50a 55b 55a ");

  events.clear();
  for (const XPLMDrawingPhase phase : phases) {
    for (const int before : {0, 1}) EXPECT_EQ(XPLMUnregisterDrawCallback(Hook, phase, before, Name("")), 1);
  }
  EXPECT_EQ(XPLMUnregisterDrawCallback(Hook, xplm_Phase_Window, 1, Name("")), 0);
  EXPECT_TRUE(XPLMIsWindowInFront(hidden));
  XPLMBringWindowToFront(back);
  XPLMSetWindowIsVisible(hidden, 7);
  EXPECT_EQ(XPLMGetWindowIsVisible(hidden), 1);
  XPLMSetWindowRefCon(hidden, Name("shown"));
  XPLMTakeKeyboardFocus(front);
  XPLMTakeKeyboardFocus(back);
  XPLMDestroyWindow(back);
  XPLMTakeKeyboardFocus(nullptr);  // nobody is left to be told
  sim::SimCommand("disable");
  sim::SimFrames(1);
  EXPECT_EQ(events, "front loses ");
  sim::SimCommand("enable");
  sim::SimFrames(1);
  EXPECT_EQ(events, "front loses front shown ");
  EXPECT_EQ(Text(XPLMGetWindowRefCon(hidden)), std::string("shown"));

  XPLMSetWindowGeometry(front, 10, 20, 30, 5);
  int left = 0, bottom = 0;
  XPLMGetWindowGeometry(front, &left, nullptr, nullptr, &bottom);
  EXPECT_EQ(left * 100 + bottom, 1005);
  XPLMCreateWindow_t early = {};
  early.structSize = sizeof early - 1;
  EXPECT_EQ(XPLMCreateWindowEx(&early), nullptr);
  for (const XPLMWindowID window : {front, hidden}) XPLMDestroyWindow(window);
  EXPECT_EQ(XPLMGetWindowRefCon(front), nullptr);
  EXPECT_EQ(sim::TakeBreaches(), std::vector<std::string>{"XPLMGetWindowRefCon: no such window"});
}

TEST_F(SimDisplay, DrawingBelongsIntoDrawingCallbacks) {
  static float white[3] = {1, 1, 1};
  const XPLMDrawCallback_f draw = [](XPLMDrawingPhase, int, void*) {
    XPLMDrawString(white, 1, 1, static_cast<char*>(Name("text")), nullptr, xplmFont_Basic);
    XPDrawElement(0, 0, 10, 10, xpElement_PushButton, 1);
    return 1;
  };
  XPLMRegisterDrawCallback(draw, xplm_Phase_Window, 0, nullptr);
  sim::SimFrames(1);
  XPLMUnregisterDrawCallback(draw, xplm_Phase_Window, 0, nullptr);
  EXPECT_EQ(sim::TakeBreaches(), std::vector<std::string>{});
  XPLMDrawNumber(white, 1, 1, 2.5, 3, 1, 0, xplmFont_Basic);
  XPDrawWindow(0, 0, 9, 9, xpWindow_Help);
  EXPECT_EQ(sim::TakeBreaches(),
            (std::vector<std::string>{"XPLMDrawNumber: called outside of the drawing callbacks",
                                      "XPDrawWindow: called outside of the drawing callbacks"}));
  int numbers[2] = {}, width = 0;
  XPLMGenerateTextureNumbers(numbers, 2);
  EXPECT_NE(numbers[0], numbers[1]);
  XPLMGetFontDimensions(xplmFont_Basic, &width, nullptr, nullptr);
  EXPECT_EQ(XPLMMeasureString(xplmFont_Basic, "four", 4), static_cast<float>(4 * width));
  int vertical = 0, down = 0, below = 0, thumb = 0, above = 0, up = 0;
  XPGetTrackMetrics(0, 0, 17, 200, 0, 100, 25, xpTrack_ScrollBar, &vertical, &down, &below, &thumb, &above,
                    &up);
  EXPECT_EQ(vertical, 1);
  EXPECT_EQ(down + below + thumb + above + up, 200);
  EXPECT_NEAR(below, (below + above) / 4, 1);
}

TEST_F(SimDisplay, HotKeysAreListed) {
  const XPLMHotKeyID key = XPLMRegisterHotKey(
      0x70, xplm_ShiftFlag, "help", [](void*) {}, nullptr);
  const XPLMHotKeyID other = XPLMRegisterHotKey(
      0x71, 0, "other", [](void*) {}, nullptr);
  ASSERT_EQ(XPLMCountHotKeys(), 2);
  XPLMSetHotKeyCombination(key, 0x72, xplm_ControlFlag);
  char virtualKey = 0, description[512];
  XPLMKeyFlags flags = 0;
  XPLMPluginID owner = 0;
  XPLMGetHotKeyInfo(XPLMGetNthHotKey(0), &virtualKey, &flags, description, &owner);
  EXPECT_EQ(std::to_string(virtualKey) + description + std::to_string(flags) + std::to_string(owner),
            "114help4" + std::to_string(XPLMGetMyID()));
  XPLMUnregisterHotKey(key);
  EXPECT_EQ(XPLMGetNthHotKey(0), other);
  EXPECT_EQ(XPLMGetNthHotKey(1), nullptr);
  XPLMUnregisterHotKey(other);
}

int Camera(XPLMCameraPosition_t* place, int losing, void* ref) {
  events += Text(ref) + std::string(losing ? " loses " : " places ");
  if (place) place->x += 10;
  return std::strcmp(Text(ref), "once") != 0;
}

TEST_F(SimDisplay, CameraFollowsWhoHasIt) {
  XPLMCameraPosition_t place = {};
  XPLMCameraControlDuration howLong = 0;
  sim::SimCommand("set sim/flightmodel/position/local_x 100");
  XPLMControlCamera(xplm_ControlCameraUntilViewChanges, Camera, Name("first"));
  sim::SimFrames(2);
  XPLMReadCameraPosition(&place);
  EXPECT_EQ(place.x, 120);
  XPLMControlCamera(xplm_ControlCameraForever, Camera, Name("second"));
  XPLMCommandKeyStroke(xplm_key_chase);
  EXPECT_EQ(XPLMIsCameraBeingControlled(&howLong), 1);
  EXPECT_EQ(howLong, xplm_ControlCameraForever);
  XPLMDontControlCamera();
  EXPECT_EQ(XPLMIsCameraBeingControlled(nullptr), 0);
  XPLMControlCamera(xplm_ControlCameraUntilViewChanges, Camera, Name("once"));
  sim::SimFrames(2);
  XPLMControlCamera(xplm_ControlCameraUntilViewChanges, Camera, Name("last"));
  XPLMCommandKeyStroke(xplm_key_tower);
  EXPECT_EQ(events, "first places first places first loses once places last loses ");
  XPLMReadCameraPosition(&place);
  EXPECT_EQ(place.x, 100);
}

TEST_F(SimDisplay, FlightPlan) {
  sim::SimCommand("navaid vor ABC 11370 48.5 11.5 500 0 \"ALPHA\"");
  const int vor = static_cast<int>(sim::NavAids().size()) - 1;
  XPLMSetFMSEntryInfo(0, vor, 9000);
  XPLMSetFMSEntryLatLon(2, -36.5F, 174.25F, 3000);
  XPLMSetFMSEntryLatLon(100, 1, 1, 1);  // beyond the plan
  EXPECT_EQ(XPLMCountFMSEntries(), 3);
  XPLMSetDestinationFMSEntry(0);
  XPLMSetDisplayedFMSEntry(100);
  EXPECT_EQ(XPLMGetDisplayedFMSEntry(), 0);
  EXPECT_EQ(XPLMGetGPSDestination(), vor);
  EXPECT_EQ(XPLMGetGPSDestinationType(), xplm_Nav_VOR);
  struct Row {
    int index;
    XPLMNavType type;
    const char* id;
    XPLMNavRef ref;
    int altitude;
    float lat;
  };
  const Row rows[] = {{0, xplm_Nav_VOR, "ABC", vor, 9000, 48.5F},
                      {1, xplm_Nav_Unknown, "", XPLM_NAV_NOT_FOUND, 0, 0},
                      {2, xplm_Nav_LatLon, "-36.500_+174.250", XPLM_NAV_NOT_FOUND, 3000, -36.5F}};
  for (const Row& row : rows) {
    Row got = {row.index, 0, "", 0, 0, 0};
    char id[256];
    XPLMGetFMSEntryInfo(row.index, &got.type, id, &got.ref, &got.altitude, &got.lat, nullptr);
    EXPECT_EQ(std::tie(got.type, got.ref, got.altitude, got.lat),
              std::tie(row.type, row.ref, row.altitude, row.lat))
        << row.index;
    EXPECT_STREQ(id, row.id);
  }
  XPLMClearFMSEntry(2);
  EXPECT_EQ(XPLMCountFMSEntries(), 1);
}

TEST_F(SimDisplay, ObjectsAreLoadedOnceAndTold) {
  std::ofstream(root / "thing.obj") << "A\n800\nOBJ\n";
  const XPLMObjectRef object = XPLMLoadObject("thing.obj");
  ASSERT_NE(object, nullptr);
  EXPECT_EQ(XPLMLoadObject("nothing.obj"), nullptr);
  static std::vector<XPLMObjectRef> told;
  told.clear();
  for (const char* path : {"thing.obj", "nothing.obj"})
    XPLMLoadObjectAsync(
        path, [](XPLMObjectRef loaded, void*) { told.push_back(loaded); }, nullptr);
  EXPECT_TRUE(told.empty());
  sim::SimFrames(2);
  EXPECT_EQ(told, (std::vector<XPLMObjectRef>{object, nullptr}));
  XPLMUnloadObject(object);
  XPLMUnloadObject(object);
  EXPECT_EQ(sim::TakeBreaches(), std::vector<std::string>{});
  XPLMUnloadObject(object);
  EXPECT_EQ(sim::TakeBreaches(), std::vector<std::string>{"XPLMUnloadObject: no such object"});
  XPLMReloadScenery();
  EXPECT_EQ(events, "");
  sim::SimFrames(2);
  EXPECT_EQ(events, "104 ");
}

TEST_F(SimDisplay, WhatIsLeftAtStopIsABreach) {
  XPLMRegisterDrawCallback(Hook, xplm_Phase_Window, 0, Name(""));
  XPLMRegisterKeySniffer([](char, XPLMKeyFlags, char, void*) { return 1; }, 0, nullptr);
  XPLMRegisterHotKey(
      1, 0, "left", [](void*) {}, nullptr);
  XPLMControlCamera(xplm_ControlCameraForever, Camera, Name("left"));
  MakeWindow("left");
  leftOver = {"XPluginStop: windows left: 1", "XPluginStop: drawing callbacks left: 1",
              "XPluginStop: key sniffers left: 1", "XPluginStop: hot keys left: 1 (left)",
              "XPluginStop: camera control left: 1"};
}

TEST_F(SimDisplay, ExceptionsOfPluginsEndAtTheHost) {
  static int runs;
  runs = 0;
  const XPLMFlightLoop_f throws = [](float, float, int, void*) -> float {
    if (++runs < 3) throw std::runtime_error("thrown by the test");
    return 0;
  };
  XPLMRegisterFlightLoopCallback(throws, -1, nullptr);
  testing::internal::CaptureStderr();
  sim::SimFrames(5);
  onMessage = onDisable = [] { throw 7; };
  EXPECT_EQ(sim::SimCommand("message 101 0"), "ok");
  EXPECT_EQ(sim::SimCommand("disable"), "ok");
  onDisable = nullptr;
  const std::string told = testing::internal::GetCapturedStderr();
  EXPECT_EQ(runs, 3);
  for (const char* line : {"an exception came out of a flight loop: thrown by the test\n",
                           "came out of XPluginReceiveMessage: something that is no standard exception\n",
                           "came out of XPluginDisable: something"})
    EXPECT_NE(told.find(line), std::string::npos) << line << told;
  XPLMUnregisterFlightLoopCallback(throws, nullptr);
}

TEST_F(SimDisplay, ALoopDoesNotUnregisterItself) {
  const XPLMFlightLoop_f loop = [](float, float, int, void* self) -> float {
    XPLMUnregisterFlightLoopCallback(*static_cast<XPLMFlightLoop_f*>(self), self);
    return 0;
  };
  XPLMFlightLoop_f self = loop;
  XPLMRegisterFlightLoopCallback(loop, -1, &self);
  sim::SimFrames(2);
  EXPECT_EQ(sim::TakeBreaches(),
            std::vector<std::string>{"XPLMUnregisterFlightLoopCallback: called from inside the callback"});
}

}  // namespace
