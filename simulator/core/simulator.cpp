// Start, frames and end of a run, and the rules whose breach ends it.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <mutex>
#include <thread>

#include "XPLMPlanes.h"
#include "XPLMPlugin.h"
#include "core/core.h"
#include "core/display.h"

namespace sim {

std::atomic<uintptr_t> callerThread{0};
Options running;
bool paused = false;
bool quitWanted = false;
const WidgetHooks* widgetHooks = nullptr;
void (*errorCallback)(const char* message) = nullptr;

namespace {

bool started = false;
std::string systemFolder;
std::atomic<bool> tolerant{false};
std::mutex breachLock;
std::vector<std::string> breaches;
constexpr size_t kKeptBreaches = 1000;

double stallSeconds = 0;  // of the next frame

// Datarefs that follow the frames.
DataRef* runningTime = nullptr;
DataRef* framePeriod = nullptr;

void Forget() {
  ForgetPlugins();
  ResetMenus();
  ResetLoops();
  ResetCommands();
  ResetNavigation();
  ResetDisplay();
  ResetFlightPlan();
  ResetObjects();
  ResetData();
  runningTime = framePeriod = nullptr;
  paused = quitWanted = false;
  stallSeconds = 0;
}

bool Say(const std::string& text) {
  std::fprintf(stderr, "standin: %s\n", text.c_str());
  std::fflush(stderr);
  return false;
}

DataRef* FrameRef(const char* name) {
  DataRef* known = FindLive(name);
  return known ? known : Publish(name, Kind::Float, 1, true);
}

bool MakeSystemFolder(const std::string& root) {
  systemFolder = AbsolutePath(root.empty() ? "." : root);
  // A backslash is a separator on Windows alone.
  while (!systemFolder.empty() && (systemFolder.back() == '/' || systemFolder.back() == kSeparator))
    systemFolder.pop_back();
  if (systemFolder.size() > 1 && systemFolder.ends_with(std::string{kSeparator, '.'})) {
    systemFolder.resize(systemFolder.size() - 2);
  }
  systemFolder += kSeparator;
  if (root.empty()) return true;
  std::error_code failure;
  std::filesystem::create_directories(std::filesystem::path(systemFolder) / "Resources" / "plugins" / "TAVRIX",
                                      failure);
  return !failure || Say(systemFolder + ": cannot make its plug-in folder: " + failure.message());
}

// The thread does nothing else meanwhile, as when a real simulator loads scenery.
void Stall() {
  using Clock = std::chrono::steady_clock;
  constexpr std::chrono::milliseconds signalCheck{20};
  const auto end =
      Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(stallSeconds));
  stallSeconds = 0;
  while (Clock::now() < end && !StopWanted()) {
    std::this_thread::sleep_until(std::min(end, Clock::now() + signalCheck));
  }
}

// The exit status of a run that does not come about.
int End(int status) {
  StopPlugins();
  callerThread = 0;
  Forget();
  started = false;
  return status;
}

}  // namespace

double RunningTime() { return elapsed; }
const std::string& SystemFolder() { return systemFolder; }

void Breach(const char* function, const char* why) {
  std::string what = std::string(function) + ": " + why;
  Say("breach: " + what);
  if (!tolerant) EndAtOnce(3);
  {
    std::lock_guard<std::mutex> lock(breachLock);
    if (breaches.size() < kKeptBreaches) breaches.push_back(what);
  }
  if (errorCallback && CurrentThread() == callerThread) errorCallback(what.c_str());
}

std::vector<std::string> TakeBreaches() {
  std::lock_guard<std::mutex> lock(breachLock);
  return std::move(breaches);
}

void CallerBreach(const char* function) {
  bool over = callerThread == 0;
  Breach(function, over ? "called after stop" : "called from another thread than the simulator's own");
}

void CheckCaller(const char* function) {
  if (CurrentThread() != callerThread.load(std::memory_order_relaxed)) CallerBreach(function);
}

void StallNextFrame(double seconds) { stallSeconds = seconds; }

void SetWidgetHooks(const WidgetHooks* hooks) { widgetHooks = hooks; }

int SimStart(const Options& options) {
  if (started) SimStop();
  if (!WorldKnowsAircraft(options.aircraft)) return Say("unknown aircraft: " + options.aircraft), 2;
  if (options.planes < 1 || options.planes > 128) return Say("the number of planes is 1 to 128"), 2;
  if (!FindVersion(options.version)) return Say("the versions are " + ListVersions()), 2;
  TakeBreaches();
  Forget();
  running = options;
  tolerant = options.tolerant;
  callerThread = CurrentThread();
  started = true;
  if (!MakeSystemFolder(options.root)) return End(2);
  ResetPlanes(options.planes);
  WorldStart(options.circuit, options.planes, options.version);
  runningTime = FrameRef("sim/time/total_running_time_sec");
  framePeriod = FrameRef("sim/operation/misc/frame_rate_period");
  WorldSelectAircraft(options.aircraft);
  if (!options.define.empty()) {
    std::string why = RunDefinitions(options.define);
    if (!why.empty()) return Say(why), End(2);
  }
  if (!StartPlugins(options)) return End(1);
  TellPlugins(XPLM_MSG_PLANE_LOADED, XPLM_USER_AIRCRAFT);
  TellPlugins(XPLM_MSG_AIRPORT_LOADED, 0);
  TellPlugins(XPLM_MSG_SCENERY_LOADED, 0);
  TellPlugins(kLiveryLoaded, XPLM_USER_AIRCRAFT);
  ResetPace();
  return 0;
}

int SimStop() {
  if (!started) return 0;
  TellPlugins(kWillWritePrefs, 0);
  return End(0);
}

void Frame(double now) {
  double dt = now - elapsed;
  elapsed = now;
  ++cycle;
  StoreNumber(runningTime, now);
  StoreNumber(framePeriod, dt);
  FinishLoads();
  RunLoops(0, dt);
  ContinueHeldCommands();
  if (!paused && dt > 0) WorldStep(dt);
  RunLoops(1, dt);
  DrawFrame();
  CountFrame();
  if (stallSeconds > 0) Stall();
  std::string why;
  if (reloadWanted && !ReloadPlugins(&why)) Say("reload: " + why);
}

void SimFrames(int count) {
  for (int i = 0; i < count && !StopWanted(); ++i) {
    // At rate 0 frame n lies at exactly n/60 s, so that runs repeat; no sum of rounded steps.
    Frame(running.rate > 0 ? elapsed + 1.0 / 60 : (cycle + 1) / 60.0);
  }
}

}  // namespace sim
