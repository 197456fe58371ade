// The entry points in every order that a host may think of, the ones that none should think of included.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "XPLMDefs.h"
#include "XPLMPlugin.h"
#include "core/sim.h"
#include "platform/system.h"
#include "platform/thread.h"

PLUGIN_API int XPluginStart(char* name, char* signature, char* description);
PLUGIN_API void XPluginStop(void);
PLUGIN_API int XPluginEnable(void);
PLUGIN_API void XPluginDisable(void);
PLUGIN_API void XPluginReceiveMessage(XPLMPluginID from, int message, void* parameter);

namespace {

// The stand-in has a plug-in that does nothing of itself: the test calls the product in its place.
int StartNothing(char* name, char* signature, char* description) {
  *name = *description = 0;
  std::snprintf(signature, 256, "test");
  return 1;
}
void StopNothing() {}
int EnableNothing() { return 1; }
void DisableNothing() {}
void ReceiveNothing(int, int, void*) {}
constexpr sim::PluginEntry nothing = {StartNothing, StopNothing, EnableNothing, DisableNothing, ReceiveNothing};

#ifdef _WIN32
constexpr int systemsOwn = 4;  // the system makes a thread and a few handles for itself whenever it likes
#else
constexpr int systemsOwn = 0;
#endif

void SendMessages() {
  XPluginReceiveMessage(XPLM_PLUGIN_XPLANE, XPLM_MSG_PLANE_LOADED, nullptr);
  XPluginReceiveMessage(XPLM_PLUGIN_XPLANE, XPLM_MSG_PLANE_LOADED, reinterpret_cast<void*>(3));
  XPluginReceiveMessage(XPLM_PLUGIN_XPLANE, XPLM_MSG_AIRPLANE_COUNT_CHANGED, nullptr);
  XPluginReceiveMessage(XPLM_PLUGIN_XPLANE, XPLM_MSG_PLANE_CRASHED, nullptr);
  XPluginReceiveMessage(XPLM_PLUGIN_XPLANE, -1, reinterpret_cast<void*>(-1));
  for (int number = 1; number <= 9; ++number) {  // as a network client's plug-in sends them
    XPluginReceiveMessage(7, static_cast<int>(0x80000000U) + number, nullptr);
  }
}

// One letter a call: S start, E enable, D disable, P stop, F frames, M every message.
// Returns the answers of start and enable, in order.
std::string Play(const std::string& calls) {
  std::string answers;
  char texts[3][256] = {};
  for (const char call : calls) {
    switch (call) {
      case 'S':
        answers += XPluginStart(texts[0], texts[1], texts[2]) ? '1' : '0';
        EXPECT_STREQ(texts[0], "TAVRIX/TAVFARNET");
        EXPECT_STREQ(texts[1], "TAVRIX/TAVFARNET.");
        EXPECT_STREQ(texts[2], "A plugin that emulates morven.dll and FARNET.");
        break;
      case 'E':
        answers += XPluginEnable() ? '1' : '0';
        break;
      case 'D':
        XPluginDisable();
        break;
      case 'P':
        XPluginStop();
        break;
      case 'M':
        SendMessages();
        break;
      default:
        sim::SimFrames(3);
    }
  }
  return answers;
}

struct EntryPoints : testing::TestWithParam<const char*> {
  std::filesystem::path root = std::filesystem::path(testing::TempDir()) / "tavrix_lifecycle_test";

  void SetUp() override {
    const std::filesystem::path folder = root / "Resources" / "plugins" / "TAVRIX";
    std::filesystem::remove_all(root);
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "TAVRIX.ini")
        << "[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\nTAVRIX2TAVRIX Client mode = " << GetParam() << '\n';
  }
  void TearDown() override { std::filesystem::remove_all(root); }

  // In a simulator of its own; the breaches of its rules come back.
  std::vector<std::string> PlayInSimulator(const std::string& calls, std::string* answers) {
    sim::Options options;
    options.linked = &nothing;
    options.root = root.string();
    options.rate = 0;
    options.circuit = false;
    options.planes = 3;
    options.tolerant = true;
    EXPECT_EQ(sim::SimStart(options), 0);
    *answers = Play(calls);
    sim::SimStop();
    return sim::TakeBreaches();
  }
};

TEST_P(EntryPoints, InAnyOrderCrashNothingAndLeaveNothing) {
  const struct {
    const char* calls;
    const char* answers;
  } cases[] = {{"SEFDP", "11"},
               {"SEDP", "11"},
               {"SEMDP", "11"},
               {"SEMFMDP", "11"},
               {"SMEFDP", "11"},
               // while disabled, after stop, disable without enable
               {"SEFDMEFDP", "111"},
               {"SEFDPM", "11"},
               {"SDP", "1"},
               {"SDEFDP", "11"},
               {"SEFDDP", "11"},
               // enable twice, with the threads running too
               {"SEEDP", "111"},
               {"SEFEFDP", "111"},
               {"SEFEFDEFDP", "1111"},
               // stop without disable
               {"SEP", "11"},
               {"SEFP", "11"},
               {"SEFPDP", "11"},
               {"SP", "1"},
               {"SPP", "1"},
               // start twice, and after stop without unloading between them
               {"SSEFDP", "111"},
               {"SEFSFDP", "111"},
               {"SEFDPSEFDP", "1111"},
               // never started
               {"EDP", "0"},
               {"MDP", ""},
               {"SPEDSEFDP", "1011"}};
  std::string answers;
  int threads = 0, handles = 0;
  for (int round = 0; round < 4; ++round) {  // what the system makes in the first rounds and keeps is no loss
    PlayInSimulator("SEMFDP", &answers);
    threads = std::max(threads, CountProcessThreads());
    handles = std::max(handles, CountProcessHandles());
  }
  for (const auto& one : cases) {
    SCOPED_TRACE(one.calls);
    EXPECT_EQ(PlayInSimulator(one.calls, &answers), std::vector<std::string>{});
    EXPECT_EQ(answers, one.answers);
    EXPECT_LE(CountProcessThreads(), threads + systemsOwn);
    EXPECT_LE(CountProcessHandles(), handles + systemsOwn);
  }
}

INSTANTIATE_TEST_SUITE_P(Modes, EntryPoints, testing::Values("No", "Yes"), [](const auto& mode) {
  return std::string(mode.param) == "No" ? "Server" : "Client";
});

}  // namespace
