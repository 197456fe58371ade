// The stand-in's core: flight loop intervals, dataref rules, console grammar, the lists of what plug-ins
// did, commands, breaches, reload and restart. A small plug-in is linked in and driven by the console.
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <regex>
#include <thread>
#include <tuple>

#include "XPLMGraphics.h"
#include "XPLMScenery.h"
#include "core/more_api.h"
#include "core/sim.h"
#include "unit/sim_talk.h"

namespace {

std::vector<std::string> events;            // what the plug-in was told
std::function<void()> onDisable;            // what the test wants done there
std::map<intptr_t, std::vector<int>> runs;  // cycles in which the loop of this reference ran
std::map<intptr_t, float> answers;          // and what it returns

int Note(const char* event) { return events.emplace_back(event), 1; }
int Start(char* name, char* signature, char* description) {
  std::strcpy(name, "Test");
  std::strcpy(signature, "test.core");
  std::strcpy(description, "plug-in of the core's tests");
  return Note("start");
}
void Message(int from, int message, void* param) {
  const std::string value = std::to_string(reinterpret_cast<intptr_t>(param));
  events.push_back("message " + std::to_string(from) + ' ' + std::to_string(message) + ' ' + value);
}
const sim::PluginEntry kEntry = {.start = Start,
                                 .stop = [] { Note("stop"); },
                                 .enable = [] { return Note("enable"); },
                                 .disable = [] { Note("disable"), onDisable ? onDisable() : void(); },
                                 .message = Message};

float Loop(float, float, int counter, void* ref) {
  intptr_t key = reinterpret_cast<intptr_t>(ref);
  runs[key].push_back(counter);
  return answers[key];
}
void* Key(intptr_t key) { return reinterpret_cast<void*>(key); }

struct SimCore : testing::Test {
  void SetUp() override { Begin(); }
  void TearDown() override {
    onDisable = nullptr;
    EXPECT_EQ(sim::SimStop(), 0);
    EXPECT_EQ(sim::TakeBreaches(), std::vector<std::string>{});
  }
  void Begin() {
    events.clear();
    runs.clear();
    answers.clear();
    sim::Options options;
    options.linked = &kEntry;
    options.rate = 0;
    options.circuit = false;
    options.tolerant = true;
    ASSERT_EQ(sim::SimStart(options), 0);
  }
};

std::string Do(const std::string& line) { return sim::SimCommand(line); }

TEST_F(SimCore, StartsStopsAndStartsAgain) {
  const std::vector<std::string> started = {"start",           "enable",          "message 0 102 0",
                                            "message 0 103 0", "message 0 104 0", "message 0 108 0"};
  EXPECT_EQ(events, started);
  Do("define test/kept int 1");
  sim::SimFrames(3);
  EXPECT_EQ(sim::SimStop(), 0);
  Begin();
  EXPECT_EQ(events, started);
  EXPECT_EQ(XPLMFindDataRef("test/kept"), nullptr);
  EXPECT_EQ(XPLMGetCycleNumber(), 0);
}

TEST_F(SimCore, LoopIntervals) {
  // First interval, later ones, and the cycles of the first 200 in which the loop must run. 0.1 in single
  // precision lies behind the sixth frame.
  const std::tuple<float, float, std::vector<int>> rows[] = {{1.0f, 1.0f, {60, 120, 180}},
                                                             {0.1f, 3.0f, {6, 186}},
                                                             {0.7f, 0.7f, {42, 84, 126, 168}},
                                                             {-7, -50, {7, 57, 107, 157}},
                                                             {-1, 0, {1}},
                                                             {0, 1, {}},
                                                             {0.5f, 0, {30}},
                                                             {0.0001f, -199, {1, 200}}};
  intptr_t count = 0;
  for (const auto& [first, later, cycles] : rows) {
    answers[count] = later;
    XPLMRegisterFlightLoopCallback(Loop, first, Key(count++));
  }
  sim::SimFrames(200);
  for (intptr_t i = 0; i < count; ++i) EXPECT_EQ(runs[i], std::get<2>(rows[i])) << "row " << i;
  EXPECT_NE(Do("loops").find(" off; "), std::string::npos);
  // A loop that is off is still registered and comes back with an interval: from now, or from its last run
  // in cycle 30.
  XPLMSetFlightLoopCallbackInterval(Loop, -5, 1, Key(4));
  XPLMSetFlightLoopCallbackInterval(Loop, 3, 0, Key(6));
  sim::SimFrames(20);
  EXPECT_EQ(runs[4].back(), 205);
  EXPECT_EQ(runs[6].back(), 210);
  for (intptr_t i = 0; i < count; ++i) XPLMUnregisterFlightLoopCallback(Loop, Key(i));
  EXPECT_EQ(Do("loops"), "ok");
}

struct Cost {
  long long frames = -1, callbacks = -1, calls = -1, ns = -1, longest = -1;
};

Cost TakeCost() {
  Cost cost;
  const std::string answer = Do("perf");
  const char form[] = "ok frames %lld callbacks %lld calls %lld ns %lld max-ns %lld";
  const int got =
      std::sscanf(answer.c_str(), form, &cost.frames, &cost.callbacks, &cost.calls, &cost.ns, &cost.longest);
  EXPECT_EQ(got, 5) << answer;
  return cost;
}

// Makes four calls; of the frames that the reference names (bits), it takes 9 ms.
float CostlyLoop(float, float, int counter, void* ref) {
  XPLMGetCycleNumber();
  XPLMGetElapsedTime();
  XPLMGetDataf(XPLMFindDataRef("sim/time/total_running_time_sec"));
  if (reinterpret_cast<intptr_t>(ref) >> counter & 1) std::this_thread::sleep_for(std::chrono::milliseconds(9));
  return -2;
}

TEST_F(SimCore, CostOfPlugins) {
  constexpr int64_t sleep = 9000000;
  TakeCost();
  Do("late");
  XPLMRegisterFlightLoopCallback(CostlyLoop, -1, Key(0b1010));  // frames 1 and 3, in both 9 ms
  XPLMRegisterFlightLoopCallback(CostlyLoop, -1, Key(0b1000));  // the same frames, in the second one 9 ms
  sim::SimFrames(4);
  std::thread([] { XPLMGetElapsedTime(); }).join();  // refused, so no call
  EXPECT_EQ(sim::TakeBreaches().size(), 1u);
  // Calls: the registrations too. Then everything begins anew: the longest frame as well.
  for (const auto& [frames, callbacks, calls] : {std::array{4, 4, 2 + 4 * 4}, {1, 2, 8}}) {
    if (frames == 1) sim::SimFrames(1);
    const Cost cost = TakeCost();
    EXPECT_EQ(cost.frames, frames);
    EXPECT_EQ(cost.callbacks, callbacks);
    EXPECT_EQ(cost.calls, calls);
    if (frames == 4) {
      EXPECT_GE(cost.longest, 2 * sleep);
      EXPECT_GE(cost.ns, cost.longest + sleep);
      const std::string late = Do("late");  // 18 ms are more than 1/60 s, and two frames had none of it
      EXPECT_TRUE(std::regex_match(late, std::regex("ok frames 4 over [1-3] late 0 latest-ns 0"))) << late;
    } else {
      EXPECT_EQ(cost.longest, cost.ns);
    }
  }
  EXPECT_EQ(TakeCost().longest, 0);
  for (const intptr_t key : {0b1010, 0b1000}) XPLMUnregisterFlightLoopCallback(CostlyLoop, Key(key));
}

TEST_F(SimCore, StallTakesOneFrameAndNoSimulatedTime) {
  using Clock = std::chrono::steady_clock;
  TakeCost();
  EXPECT_EQ(Do("stall 0.2"), "ok");
  const auto before = Clock::now();
  sim::SimFrames(1);
  const auto stalled = Clock::now();
  sim::SimFrames(2);
  EXPECT_GE(stalled - before, std::chrono::milliseconds(200));
  EXPECT_LT(Clock::now() - stalled, stalled - before);
  EXPECT_EQ(Do("get sim/time/total_running_time_sec"), "ok 0.05");
  EXPECT_LT(TakeCost().ns, 200000000);  // a stall is no plug-in's cost
  Talk("stall 3600 | stall 0");         // thought better of it
  sim::SimFrames(1);
}

TEST_F(SimCore, NoCallbacksWhileDisabled) {
  answers[1] = -1;
  XPLMRegisterFlightLoopCallback(Loop, -1, Key(1));
  sim::SimFrames(2);
  EXPECT_EQ(Do("disable"), "ok");
  sim::SimFrames(3);
  Talk("message 200 7 -> error: disabled | enable");
  sim::SimFrames(1);
  EXPECT_EQ(runs[1], (std::vector<int>{1, 2, 6}));
  XPLMUnregisterFlightLoopCallback(Loop, Key(1));
}

TEST_F(SimCore, ArrayRanges) {
  Do("define test/a int[4] 10 11 12 13");
  XPLMDataRef ref = XPLMFindDataRef("test/a");
  const int ranges[][3] = {{0, 4, 4},  {0, 9, 4}, {1, 2, 2},  {3, 5, 1},        {4, 1, 0},
                           {-1, 2, 0}, {0, 0, 0}, {2, -1, 0}, {0, INT32_MAX, 4}};
  for (const auto& [offset, max, copied] : ranges) {
    int out[8] = {-1, -1, -1, -1, -1, -1, -1, -1};
    EXPECT_EQ(XPLMGetDatavi(ref, out, offset, max), copied) << offset << ' ' << max;
    EXPECT_EQ(out[copied], -1);
    EXPECT_EQ(out[std::max(copied, 1) - 1], copied > 0 ? 9 + offset + copied : -1);
  }
  EXPECT_EQ(XPLMGetDatavi(ref, nullptr, 99, 0), 4);
  int values[] = {1, 2, 3};
  XPLMSetDatavi(ref, values, 2, 3);
  XPLMSetDatavi(ref, values, -1, 1);
  Talk(R"(get test/a -> ok 10 11 1 2 |
         writes -> ok test/a[2]=1; test/a[3]=2; test/a[4]=3 (ignored); test/a[-1]=1 (ignored))");
  // Text is cut and copied raw.
  Do("define test/t byte[4] \"ab\"");
  ref = XPLMFindDataRef("test/t");
  char out[5] = "....";
  EXPECT_EQ(XPLMGetDatab(ref, out, 1, 9), 3);
  EXPECT_EQ(std::string(out, 5), std::string("b\0\0.\0", 5));
  XPLMSetDatab(ref, const_cast<char*>("wxyz!"), 2, 5);
  Talk(R"(get test/t -> ok "abwx" | writes -> ok test/t[2]="wxyz!")");
}

TEST_F(SimCore, TypesAreNotConverted) {
  Talk("define test/i int 5 | define test/d double 0.1 | define test/v float[2] 1 2");
  XPLMDataRef i = XPLMFindDataRef("test/i"), d = XPLMFindDataRef("test/d"), v = XPLMFindDataRef("test/v");
  EXPECT_EQ(XPLMGetDatad(i) + XPLMGetDatavi(i, nullptr, 0, 0), 0);
  EXPECT_EQ(XPLMGetDataf(i) + XPLMGetDataf(v), 0.0f);
  EXPECT_EQ(XPLMGetDataf(d), 0.1f);
  EXPECT_EQ(XPLMGetDataRefTypes(d), xplmType_Float | xplmType_Double);
  XPLMSetDataf(i, 2);
  XPLMSetDataf(d, 0.5f);
  XPLMSetDatad(v, 3);
  XPLMSetDatai(nullptr, 1);
  EXPECT_EQ(XPLMGetDatai(nullptr) + XPLMGetDatab(nullptr, nullptr, 0, 0) + XPLMCanWriteDataRef(nullptr), 0);
  Talk(R"(writes -> ok test/i=2.0 (ignored); test/d=0.5; test/v=3.0 (ignored) | get test/i -> ok 5 |
         get test/d -> ok 0.5)");
}

TEST_F(SimCore, WithdrawnHandlesRevive) {
  Do("define test/x int 5");
  XPLMDataRef ref = XPLMFindDataRef("test/x");
  Talk("undefine test/x | undefine test/x -> error: unknown name: test/x");
  EXPECT_EQ(XPLMFindDataRef("test/x"), nullptr);
  EXPECT_EQ(XPLMGetDatai(ref), 0);
  XPLMSetDatai(ref, 9);
  Talk(
      "writes -> ok test/x=9 (ignored) | define test/x float[3] 1 2 3");  // another shape under the same handle
  float out[3];
  EXPECT_EQ(XPLMGetDatavf(ref, out, 1, 5), 2);
  EXPECT_EQ(out[1], 3.0f);
  EXPECT_EQ(XPLMGetDatai(ref), 0);
}

TEST_F(SimCore, ConsoleAnswers) {
  EXPECT_EQ(Do("") + Do("  # nothing\r") + Do("define a/i int -3\r"), "okokok");
  Talk(R"(get a/i -> ok -3 | set a/i 0x10 | get a/i[0] -> ok 16 |
         define a/i int -> error: a/i exists already | define a/f[1] float 100000 | get a/f[1] -> ok 100000.0 |
         set a/f[1] 0.1 | get a/f[1] -> ok 0.1 | set a/f[1] 1e-30 | get a/f[1] -> ok 1.0e-30 |
         define a/d double -0.30000000000000004 | get a/d -> ok -0.30000000000000004 |
         set a/d 1,5 -> error: not a number: 1,5 | define a/v float[3] 1 | set a/v[2] 7 |
         get a/v -> ok 1.0 0.0 7.0 | get a/v[3] -> error: no such element |
         set a/v 1 2 3 4 -> error: more values than elements | set a/v 8 x -> error: not a number: x |
         get a/v[0] -> ok 1.0 | set a/i 3000000000 -> error: out of range: 3000000000 |
         define a/t byte[12] "a\"b\\c\n\x41\x01" | get a/t -> ok "a\"b\\c\nA\x01" | set a/t "Z" |
         get a/t -> ok "Z" | get a/t[0] -> ok 90 |
         set a/t "1234567890123" -> error: the text is longer than 12 bytes |
         set a/t "open -> error: a quote is not closed | set a/none 1 -> error: unknown name: a/none |
         get -> error: get NAME | frames -1 -> error: not a number of frames: -1 |
         planes 129 -> error: the number of planes is 1 to 128 | perf all -> error: perf takes no arguments |
         late x -> error: late takes no arguments |
         stall -0.1 -> error: not 0 to 3600 seconds: -0.1 | stall nan -> error: not 0 to 3600 seconds: nan |
         stall -> error: stall SECONDS | jump -> error: unknown command: jump)");
}

TEST_F(SimCore, NewestWritesAreKept) {
  Do("define test/n int");
  XPLMDataRef ref = XPLMFindDataRef("test/n");
  for (int i = 0; i < 100003; ++i) XPLMSetDatai(ref, i);
  std::string list = Do("writes");
  EXPECT_EQ(list.rfind("ok test/n=3; test/n=4; ", 0), 0u);
  EXPECT_EQ(list.substr(list.rfind(' ')), " test/n=100002");
  EXPECT_EQ(Do("writes"), "ok");
}

std::string phases;
int blockFrom = 99;  // a phase from which on the first handler passes nothing on
int OnCommand(XPLMCommandRef, XPLMCommandPhase phase, void* ref) {
  phases += static_cast<const char*>(ref) + std::to_string(phase) + ' ';
  return phase < blockFrom;
}

TEST_F(SimCore, CommandPhases) {
  phases.clear();
  Do("command test/c");
  XPLMCommandRef command = XPLMFindCommand("test/c");
  ASSERT_EQ(command, XPLMCreateCommand("test/c", "again"));
  sim::PublishCommand(
      "test/c", [](int phase, int tag) { phases += std::to_string(tag) + std::to_string(phase) + ' '; }, 7);
  XPLMRegisterCommandHandler(command, OnCommand, 0, const_cast<char*>("after"));
  XPLMRegisterCommandHandler(command, OnCommand, 1, const_cast<char*>("before"));
  blockFrom = 1;
  XPLMCommandBegin(command);
  XPLMCommandBegin(command);  // held twice: one begin is seen
  sim::SimFrames(2);
  XPLMCommandEnd(command);
  EXPECT_EQ(phases, "before0 70 after0 before1 before1 ");
  phases.clear();
  blockFrom = 99;
  XPLMCommandEnd(command);
  sim::SimFrames(1);
  XPLMCommandOnce(command);
  EXPECT_EQ(phases, "before2 72 after2 before0 70 after0 before2 72 after2 ");
  XPLMUnregisterCommandHandler(command, OnCommand, 0, const_cast<char*>("after"));
  XPLMUnregisterCommandHandler(command, OnCommand, 1, const_cast<char*>("before"));
  XPLMSpeakString("say \"it\"");
  Talk(
      R"(calls -> ok begin test/c; begin test/c; end test/c; end test/c; once test/c; speak "say \"it\"" | calls)");
}

TEST_F(SimCore, BreachesAreTold) {
  Do("command test/c");
  XPLMCommandRef command = XPLMFindCommand("test/c");
  const std::pair<std::string, std::function<void()>> rows[] = {
      {"XPLMCommandOnce: null command handle", [] { XPLMCommandOnce(nullptr); }},
      {"XPLMCommandEnd: test/c was not begun", [&] { XPLMCommandEnd(command); }},
      {"XPLMGetElapsedTime: called from another thread than the simulator's own",
       [] { std::thread([] { XPLMGetElapsedTime(); }).join(); }},
      {"XPluginStop: probes left: 1", [] { XPLMCreateProbe(xplm_ProbeY), Do("reload"); }},
      {"XPluginStop: begun commands left: 1 (test/c)", [&] { XPLMCommandBegin(command), Do("reload"); }},
      {"XPluginStop: command handlers left: 1 (test/c)",
       [&] { XPLMRegisterCommandHandler(command, OnCommand, 1, nullptr), Do("reload"); }},
      {"XPLMFindCommand: called after stop", [&] { sim::SimStop(), XPLMFindCommand("x"); }}};
  for (const auto& [told, act] : rows) {
    act();
    EXPECT_EQ(sim::TakeBreaches(), std::vector<std::string>{told});
  }
  Begin();
  for (const intptr_t key : {1, 2, 1}) {  // another reference is another loop
    EXPECT_TRUE(sim::TakeBreaches().empty());
    XPLMRegisterFlightLoopCallback(Loop, 1, Key(key));
  }
  EXPECT_EQ(sim::TakeBreaches().size(), 1u);
  onDisable = [] { XPLMUnregisterFlightLoopCallback(Loop, Key(1)); };
  EXPECT_EQ(Do("reload"), "ok");
  const std::vector<std::string> told = sim::TakeBreaches();
  ASSERT_EQ(told.size(), 1u);
  EXPECT_EQ(told[0].rfind("XPluginStop: flight loops left: 1 (", 0), 0u);
}

TEST_F(SimCore, MessagesAndReload) {
  events.clear();
  Talk("message 0x80000004 -1 from pretended.one -> error: no such sender | plugin pretended.one on");
  int other = XPLMFindPluginBySignature("pretended.one");
  EXPECT_GT(other, 0);
  Do("message 0x80000004 -1 from pretended.one");
  XPLMSendMessageToPlugin(other, 0x01000001, Key(15));
  Do("plugin pretended.one off");
  EXPECT_EQ(XPLMFindPluginBySignature("pretended.one"), XPLM_NO_PLUGIN_ID);
  Do("planes 5");
  int total = 0, active = 0;
  XPLMCountAircraft(&total, &active, nullptr);
  EXPECT_EQ(total * 100 + active, 2005);
  EXPECT_EQ(Do("reload"), "ok");
  EXPECT_EQ(events, (std::vector<std::string>{"message " + std::to_string(other) + " -2147483644 -1",
                                              "message 0 105 0", "disable", "stop", "start", "enable"}));
  EXPECT_EQ(Do("calls"), "ok plugin-message 16777217 15");
}

std::string chosen;
void OnMenu(void* menu, void* item) {
  chosen += std::string(static_cast<char*>(menu)) + static_cast<char*>(item);
}

TEST_F(SimCore, MenusAndNavigation) {
  chosen.clear();
  XPLMMenuID plugins = XPLMFindPluginsMenu();
  for (const char* name : {"A", "B"}) {
    int place = XPLMAppendMenuItem(plugins, name, nullptr, 1);
    XPLMMenuID menu = XPLMCreateMenu(name, plugins, place, OnMenu, const_cast<char*>(name));
    EXPECT_EQ(XPLMAppendMenuItem(menu, "Same", const_cast<char*>("1"), 1), 0);
    XPLMAppendMenuSeparator(menu);
    EXPECT_EQ(XPLMAppendMenuItem(menu, (std::string("Only ") + name).c_str(), const_cast<char*>("2"), 1), 2);
  }
  Talk(R"(menu -> ok A > Same; A > -; A > Only A; B > Same; B > -; B > Only B |
         menu "Same" -> error: ambiguous | menu "B > Same" | menu "Only A" | navaid clear |
         navaid vor NEAR 11030 47 8 400 0 "Near by" | navaid ndb ZZ 345 40 8 0 0 "Between" |
         navaid vor FAR 11030 10 8 400 0 "Far off")");
  EXPECT_EQ(chosen, "B1A2");
  float lat = 46, lon = 8;
  int freq = 11030;
  XPLMNavRef nearest = XPLMFindNavAid(nullptr, nullptr, &lat, &lon, &freq, xplm_Nav_VOR | xplm_Nav_NDB);
  XPLMNavRef last = XPLMFindNavAid(nullptr, "A", nullptr, nullptr, nullptr, xplm_Nav_VOR);
  for (const auto& [aid, expected] : {std::pair(nearest, "NEAR"), {last, "FAR"}}) {
    char id[32] = "";
    XPLMGetNavAidInfo(aid, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, id, nullptr, nullptr);
    EXPECT_STREQ(id, expected);
  }
  EXPECT_EQ(XPLMGetNextNavAid(nearest), last);  // like types lie together
  EXPECT_EQ(XPLMGetNextNavAid(last), XPLM_NAV_NOT_FOUND);
}

}  // namespace
