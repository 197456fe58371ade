// Flight loops, time and the frame count.
//
// Times are kept in double from the start of the run. Intervals come in single precision and times of
// frames are multiples of 1/60, so a due time lies a hair before or behind the frame that is meant: it is
// compared with a tolerance that is far below a frame and above both errors.
#include <algorithm>
#include <chrono>
#include <mutex>

#include "core/core.h"
#include "core/more_api.h"

namespace sim {

double elapsed = 0;
int cycle = 0;

namespace {

struct Loop {
  XPLMFlightLoop_f fn;
  void* refcon;
  int owner;
  int phase;
  bool created;  // by XPLMCreateFlightLoop
  bool gone = false;
  enum { Off, Seconds, Frames } mode = Off;
  double dueTime = 0;
  double slack = 0;  // tolerance of the comparison
  int dueCycle = 0;
  double lastTime;  // of the last run, else of the registration
  int lastCycle;
};

std::vector<std::unique_ptr<Loop>> loops;  // in order of registration
bool dispatching = false;                  // then loops are marked as gone and removed afterwards
const Loop* inside = nullptr;              // whose callback is running

struct Request {
  Loop* loop;
  float interval;
  bool relativeToNow;
};
std::mutex requestLock;  // XPLMScheduleFlightLoop may come from any thread
std::vector<Request> requests;

using PerfClock = std::chrono::steady_clock;

// Since the last TakePerf.
struct Perf {
  uint64_t frames, callbacks;
  PerfClock::duration time, frameTime, longestFrame;  // frameTime is that of the frame that runs
  uint64_t callsBefore;                               // callsMade when it began
};
Perf perf;

// Since the last TakeLate.
struct Late {
  uint64_t frames, over, late;
  double latest;  // seconds
};
Late late;

// Seconds from a frame to the next one.
double Period() { return 1 / (running.rate > 0 ? running.rate : 60); }

void ResetPerf() {
  perf = {};
  perf.callsBefore = callsMade;
}

std::string Nanoseconds(PerfClock::duration time) {
  return FormatInt(std::chrono::duration_cast<std::chrono::nanoseconds>(time).count());
}

void Schedule(Loop* loop, float interval, bool relativeToNow) {
  double fromTime = relativeToNow ? elapsed : loop->lastTime;
  int fromCycle = relativeToNow ? cycle : loop->lastCycle;
  if (interval > 0) {
    double seconds = static_cast<double>(interval);
    loop->mode = Loop::Seconds;
    loop->dueTime = fromTime + seconds;
    loop->slack = std::min(1e-6 + seconds * 1e-7, 1e-3);
  } else if (interval < 0) {
    loop->mode = Loop::Frames;
    double frames = std::min(static_cast<double>(-interval), 1e9);
    loop->dueCycle = fromCycle + std::max(1, static_cast<int>(frames));
  } else {
    loop->mode = Loop::Off;
  }
}

Loop* Find(XPLMFlightLoop_f fn, void* refcon) {
  for (auto& loop : loops) {
    if (!loop->gone && !loop->created && loop->fn == fn && loop->refcon == refcon) return loop.get();
  }
  return nullptr;
}

Loop* FindCreated(void* id) {
  for (auto& loop : loops) {
    if (!loop->gone && loop->created && loop.get() == id) return loop.get();
  }
  return nullptr;
}

Loop* Add(XPLMFlightLoop_f fn, void* refcon, int phase, bool created) {
  auto loop = std::make_unique<Loop>();
  loop->fn = fn;
  loop->refcon = refcon;
  loop->owner = CallingPlugin();
  loop->phase = phase;
  loop->created = created;
  loop->lastTime = elapsed;
  loop->lastCycle = cycle;
  loops.push_back(std::move(loop));
  return loops.back().get();
}

void Sweep() {
  if (!dispatching) std::erase_if(loops, [](auto& loop) { return loop->gone; });
}

void TakeRequests() {
  std::vector<Request> now;
  {
    std::lock_guard<std::mutex> lock(requestLock);
    now.swap(requests);
  }
  for (const Request& request : now) {
    if (FindCreated(request.loop)) Schedule(request.loop, request.interval, request.relativeToNow);
  }
}

bool Due(const Loop& loop) {
  return !loop.gone && ((loop.mode == Loop::Seconds && elapsed + loop.slack >= loop.dueTime) ||
                        (loop.mode == Loop::Frames && cycle >= loop.dueCycle));
}

}  // namespace

uint64_t callsMade = 0;

void CountFrame() {
  ++perf.frames;
  perf.time += perf.frameTime;
  perf.longestFrame = std::max(perf.longestFrame, perf.frameTime);
  ++late.frames;
  late.over += std::chrono::duration<double>(perf.frameTime).count() > Period();
  perf.frameTime = {};
}

void CountLateness(double seconds) {
  late.late += seconds > Period();
  late.latest = std::max(late.latest, seconds);
}

std::string TakePerf() {
  std::string text = "frames " + FormatInt(static_cast<int64_t>(perf.frames)) + " callbacks " +
                     FormatInt(static_cast<int64_t>(perf.callbacks)) + " calls " +
                     FormatInt(static_cast<int64_t>(callsMade - perf.callsBefore)) + " ns " +
                     Nanoseconds(perf.time) + " max-ns " + Nanoseconds(perf.longestFrame);
  ResetPerf();
  return text;
}

std::string TakeLate() {
  std::string text = "frames " + FormatInt(static_cast<int64_t>(late.frames)) + " over " +
                     FormatInt(static_cast<int64_t>(late.over)) + " late " +
                     FormatInt(static_cast<int64_t>(late.late)) + " latest-ns " +
                     FormatInt(static_cast<int64_t>(late.latest * 1e9));
  late = {};
  return text;
}

void ResetLoops() {
  loops.clear();
  ResetPerf();
  late = {};
  elapsed = 0;
  cycle = 0;
  std::lock_guard<std::mutex> lock(requestLock);
  requests.clear();
}

void RunLoops(int phase, double sinceLastFrame) {
  TakeRequests();
  dispatching = true;
  for (size_t i = 0; i < loops.size(); ++i) {  // the list may grow meanwhile
    Loop* loop = loops[i].get();
    if (loop->phase != phase || !Due(*loop) || !MayCall(loop->owner)) continue;
    float since = static_cast<float>(elapsed - loop->lastTime);
    loop->mode = Loop::Off;
    loop->lastTime = elapsed;
    loop->lastCycle = cycle;
    PerfClock::time_point began = PerfClock::now();
    inside = loop;
    float next = -1;  // one that throws runs again in the next frame
    NothingThrown(loop->owner, "a flight loop",
                  [&] { next = loop->fn(since, static_cast<float>(sinceLastFrame), cycle, loop->refcon); });
    inside = nullptr;
    perf.frameTime += PerfClock::now() - began;
    ++perf.callbacks;
    // What the callback returns counts; only a loop of the newer kind may have scheduled itself instead.
    if (!loop->created || next != 0) Schedule(loop, next, true);
  }
  dispatching = false;
  Sweep();
}

int DropLoops(int owner, std::string* which) {
  int dropped = 0;
  for (auto& loop : loops) {
    if (loop->gone || loop->owner != owner) continue;
    loop->gone = true;
    *which = DescribeAddress(reinterpret_cast<void*>(loop->fn));
    ++dropped;
  }
  Sweep();
  return dropped;
}

std::string DescribeLoops() {
  std::string list;
  for (auto& loop : loops) {
    if (loop->gone) continue;
    std::string next = "off";
    if (loop->mode == Loop::Frames) next = "next=" + FormatInt(std::max(0, loop->dueCycle - cycle)) + 'f';
    if (loop->mode == Loop::Seconds) {
      next = "next=" + FormatFloat(static_cast<float>(std::max(0.0, loop->dueTime - elapsed)));
    }
    Join(&list, DescribeAddress(reinterpret_cast<void*>(loop->fn)) + ' ' + next);
  }
  return list;
}

}  // namespace sim

float XPLMGetElapsedTime(void) {
  sim::Check("XPLMGetElapsedTime");
  return static_cast<float>(sim::elapsed);
}

int XPLMGetCycleNumber(void) {
  sim::Check("XPLMGetCycleNumber");
  return sim::cycle;
}

void XPLMRegisterFlightLoopCallback(XPLMFlightLoop_f fn, float interval, void* refcon) {
  sim::Check("XPLMRegisterFlightLoopCallback");
  if (!fn) return;
  sim::Loop* loop = sim::Find(fn, refcon);
  if (loop) {
    std::string name = sim::DescribeAddress(reinterpret_cast<void*>(fn));
    sim::Breach("XPLMRegisterFlightLoopCallback", (name + " is registered already").c_str());
  } else {
    loop = sim::Add(fn, refcon, 0, false);
  }
  sim::Schedule(loop, interval, true);
}

void XPLMUnregisterFlightLoopCallback(XPLMFlightLoop_f fn, void* refcon) {
  sim::Check("XPLMUnregisterFlightLoopCallback");
  sim::Loop* loop = sim::Find(fn, refcon);
  if (loop && loop == sim::inside)
    sim::Breach("XPLMUnregisterFlightLoopCallback", "called from inside the callback");
  if (loop) loop->gone = true;
  sim::Sweep();
}

void XPLMSetFlightLoopCallbackInterval(XPLMFlightLoop_f fn, float interval, int relativeToNow, void* refcon) {
  sim::Check("XPLMSetFlightLoopCallbackInterval");
  if (sim::Loop* loop = sim::Find(fn, refcon)) sim::Schedule(loop, interval, relativeToNow != 0);
}

XPLMFlightLoopID XPLMCreateFlightLoop(XPLMCreateFlightLoop_t* params) {
  sim::Check("XPLMCreateFlightLoop");
  if (sim::Fails("XPLMCreateFlightLoop")) return nullptr;
  if (!params || params->structSize < static_cast<int>(sizeof *params) || !params->callbackFunc) return nullptr;
  return sim::Add(params->callbackFunc, params->refcon, params->phase == 1, true);
}

void XPLMDestroyFlightLoop(XPLMFlightLoopID id) {
  sim::Check("XPLMDestroyFlightLoop");
  if (sim::Loop* loop = sim::FindCreated(id)) loop->gone = true;
  sim::Sweep();
}

void XPLMScheduleFlightLoop(XPLMFlightLoopID id, float interval, int relativeToNow) {
  if (!id) return;
  if (sim::CurrentThread() == sim::callerThread.load(std::memory_order_relaxed)) {
    ++sim::callsMade;
    if (sim::Loop* loop = sim::FindCreated(id)) sim::Schedule(loop, interval, relativeToNow != 0);
    return;
  }
  std::lock_guard<std::mutex> lock(sim::requestLock);
  sim::requests.push_back({static_cast<sim::Loop*>(id), interval, relativeToNow != 0});
}
