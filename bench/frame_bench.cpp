// Frame cost: all flight-loop callbacks of one frame against the very simulator calls that they make.
//
// The calls are recorded while the callbacks run (the linker routes them through the wrappers below) and
// replayed bare: through the same wrappers, in the same order, on the same handles, in the same frame, from
// a list that is as hot as the callbacks' own tables, and with every answer kept, as a plug-in must. What
// goes for both sides:
// - The flight model runs before each turn, so that both find values which it has just written, in whatever
//   cache that leaves them; it is not measured itself.
// - Each side is measured several times per frame and its median counts, so that another process' turn on
//   the processor does not, but frames in which the rare, long cycles are due do. Who is first is drawn.
// - The cost of reading the clock is taken off, else it would bring short cycles' ratios near 1.
// Figures of one run belong together: look at the ratio.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <vector>

#include "XPLMDataAccess.h"
#include "bridge/cycles.h"
#include "bridge/registry.h"
#include "core/sim.h"
#include "custom/custom.h"
#include "offsets/dispatcher.h"
#include "offsets/memory.h"
#include "platform/clock.h"
#include "pushback/pushback.h"
#include "shell/frame_callbacks.h"
#include "shell/override_watch.h"

namespace {

enum class Call : uint8_t { GetInt, GetFloat, GetDouble, GetInts, GetFloats, GetBytes, Types };
struct Recorded {
  Call call;
  XPLMDataRef ref;
  int offset, max;
};

bool recording;
std::vector<Recorded> recorded;
// What the bare calls answered.
constexpr size_t maxCalls = 4096;
double kept[maxCalls];
uint8_t keptBytes[16384];

void Note(Call call, XPLMDataRef ref, int offset = 0, int max = 0) {
  if (recording) recorded.push_back({call, ref, offset, max});
}

}  // namespace

extern "C" {
int __real_XPLMGetDatai(XPLMDataRef ref);
float __real_XPLMGetDataf(XPLMDataRef ref);
double __real_XPLMGetDatad(XPLMDataRef ref);
int __real_XPLMGetDatavi(XPLMDataRef ref, int* out, int offset, int max);
int __real_XPLMGetDatavf(XPLMDataRef ref, float* out, int offset, int max);
int __real_XPLMGetDatab(XPLMDataRef ref, void* out, int offset, int max);
XPLMDataTypeID __real_XPLMGetDataRefTypes(XPLMDataRef ref);

int __wrap_XPLMGetDatai(XPLMDataRef ref) {
  Note(Call::GetInt, ref);
  return __real_XPLMGetDatai(ref);
}
float __wrap_XPLMGetDataf(XPLMDataRef ref) {
  Note(Call::GetFloat, ref);
  return __real_XPLMGetDataf(ref);
}
double __wrap_XPLMGetDatad(XPLMDataRef ref) {
  Note(Call::GetDouble, ref);
  return __real_XPLMGetDatad(ref);
}
int __wrap_XPLMGetDatavi(XPLMDataRef ref, int* out, int offset, int max) {
  Note(Call::GetInts, ref, offset, max);
  return __real_XPLMGetDatavi(ref, out, offset, max);
}
int __wrap_XPLMGetDatavf(XPLMDataRef ref, float* out, int offset, int max) {
  Note(Call::GetFloats, ref, offset, max);
  return __real_XPLMGetDatavf(ref, out, offset, max);
}
int __wrap_XPLMGetDatab(XPLMDataRef ref, void* out, int offset, int max) {
  Note(Call::GetBytes, ref, offset, max);
  return __real_XPLMGetDatab(ref, out, offset, max);
}
XPLMDataTypeID __wrap_XPLMGetDataRefTypes(XPLMDataRef ref) {
  Note(Call::Types, ref);
  return __real_XPLMGetDataRefTypes(ref);
}
}

namespace {

void Replay() {
  double* to = kept;
  for (const Recorded& r : recorded) {
    switch (r.call) {
      case Call::GetInt:
        *to++ = XPLMGetDatai(r.ref);
        break;
      case Call::GetFloat:
        *to++ = static_cast<double>(XPLMGetDataf(r.ref));
        break;
      case Call::GetDouble:
        *to++ = XPLMGetDatad(r.ref);
        break;
      case Call::GetInts:
        XPLMGetDatavi(r.ref, reinterpret_cast<int*>(keptBytes), r.offset, r.max);
        break;
      case Call::GetFloats: {
        float* place = r.max == 1 ? reinterpret_cast<float*>(to++) : reinterpret_cast<float*>(keptBytes);
        XPLMGetDatavf(r.ref, place, r.offset, r.max);
        break;
      }
      case Call::GetBytes:
        XPLMGetDatab(r.ref, keptBytes, r.offset, r.max);
        break;
      case Call::Types:
        *to++ = XPLMGetDataRefTypes(r.ref);
        break;
    }
  }
  benchmark::ClobberMemory();
}

using Loop = float (*)(float, float, int, void*);
struct Timed {
  Loop loop;
  int frames;  // the loop is due every so many frames
};
constexpr Timed loops[] = {{WriteCycle, 1},        {RefreshCycle1, 1},   {RefreshCycle3, 3},
                           {RefreshCycle7, 7},     {RefreshCycle13, 13}, {RefreshCycle31Navigation, 31},
                           {RefreshCycle31, 31},   {RefreshCycle59, 59}, {RefreshCycle157, 157},
                           {RefreshCycle313, 313}, {OverrideWatch, 60},  {ButtonCycle, 1},
                           {MultiplayerCycle, 6}};

void StartAll() {
  sim::Options options;
  options.root = "/tmp/tavrix-bench/";
  options.rate = 0;
  sim::SimStart(options);
  ConnectCustomOffsets();
  ConnectPushback();
  InitMemoryBlocks();
  LookUpDataRefs();
  LookUpCommands();
  BuildCycles();
  CreateLocks();
  sim::SimFrames(400);
}

void StopAll() {
  DeleteLocks();
  sim::SimStop();
}

// A frame of its own, numbered as the simulator does.
int frameNumber = 0;

// One loop by itself runs in a frame in which the first cycle has run, as in the simulator. Not measured.
void BeginFrame(Loop single) {
  frameNumber++;
  if (single != nullptr && single != RefreshCycle1) RefreshCycle1(0, 0, frameNumber, nullptr);
}

void RunAll(const std::vector<Loop>& due) {
  for (Loop loop : due) loop(0, 0, frameNumber, nullptr);
}

// Nanoseconds of one run of `work`, the clock's own cost included.
template <typename Work>
int64_t Nanoseconds(Work work) {
  const int64_t begin = MonotonicNanoseconds();
  work();
  return MonotonicNanoseconds() - begin;
}

template <size_t count>
int64_t Median(std::array<int64_t, count> samples) {
  std::sort(samples.begin(), samples.end());
  return samples[count / 2];
}

int64_t ClockCost() {
  std::array<int64_t, 1001> samples;
  for (int64_t& sample : samples) sample = Nanoseconds([] {});
  return Median(samples);
}

// One loop, or all that are due (loop null), over frames of the circuit flight.
void MeasureFrames(benchmark::State& state, Loop single) {
  StartAll();
  const int64_t clockCost = ClockCost();
  constexpr size_t turns = 5;
  std::minstd_rand draw;
  int64_t ours = 0;
  int64_t bare = 0;
  int64_t calls = 0;
  int frame = 0;
  for (auto _ : state) {
    frame++;
    std::vector<Loop> due;
    for (const Timed& timed : loops) {
      if (single != nullptr ? timed.loop == single : frame % timed.frames == 0) due.push_back(timed.loop);
    }
    recorded.clear();
    recorded.reserve(maxCalls);
    BeginFrame(single);
    recording = true;
    RunAll(due);
    recording = false;
    std::array<int64_t, turns> ourTurns;
    std::array<int64_t, turns> bareTurns;
    for (size_t turn = 0; turn < turns; turn++) {
      sim::WorldStep(1.0 / (60 * turns));
      BeginFrame(single);
      const bool callbacksFirst = (draw() >> 8 & 1) != 0;
      if (callbacksFirst) ourTurns[turn] = Nanoseconds([&] { RunAll(due); });
      bareTurns[turn] = Nanoseconds(Replay);
      if (!callbacksFirst) ourTurns[turn] = Nanoseconds([&] { RunAll(due); });
    }
    const int64_t spent = Median(ourTurns) - clockCost;
    ours += spent;
    bare += Median(bareTurns) - clockCost;
    calls += static_cast<int64_t>(recorded.size());
    state.SetIterationTime(static_cast<double>(spent) / 1e9);
  }
  const double frames = static_cast<double>(frame);
  state.counters["calls"] = static_cast<double>(calls) / frames;
  state.counters["ours_ns"] = static_cast<double>(ours) / frames;
  state.counters["bare_ns"] = static_cast<double>(bare) / frames;
  state.counters["ratio"] = static_cast<double>(ours) / static_cast<double>(bare);
  StopAll();
}

void BM_WholeFrame(benchmark::State& state) { MeasureFrames(state, nullptr); }
BENCHMARK(BM_WholeFrame)->UseManualTime()->Iterations(20000);

template <Loop loop>
void BM_Cycle(benchmark::State& state) {
  MeasureFrames(state, loop);
}
BENCHMARK(BM_Cycle<WriteCycle>)->Name("BM_Cycle/write")->UseManualTime()->Iterations(5000);
BENCHMARK(BM_Cycle<RefreshCycle1>)->Name("BM_Cycle/1")->UseManualTime()->Iterations(5000);
BENCHMARK(BM_Cycle<RefreshCycle3>)->Name("BM_Cycle/3")->UseManualTime()->Iterations(5000);
BENCHMARK(BM_Cycle<RefreshCycle7>)->Name("BM_Cycle/7")->UseManualTime()->Iterations(5000);
BENCHMARK(BM_Cycle<RefreshCycle13>)->Name("BM_Cycle/13")->UseManualTime()->Iterations(5000);
BENCHMARK(BM_Cycle<RefreshCycle31Navigation>)
    ->Name("BM_Cycle/31_navigation")
    ->UseManualTime()
    ->Iterations(5000);
BENCHMARK(BM_Cycle<RefreshCycle31>)->Name("BM_Cycle/31")->UseManualTime()->Iterations(5000);
BENCHMARK(BM_Cycle<RefreshCycle59>)->Name("BM_Cycle/59")->UseManualTime()->Iterations(5000);
BENCHMARK(BM_Cycle<RefreshCycle157>)->Name("BM_Cycle/157")->UseManualTime()->Iterations(5000);
BENCHMARK(BM_Cycle<RefreshCycle313>)->Name("BM_Cycle/313")->UseManualTime()->Iterations(5000);
BENCHMARK(BM_Cycle<ButtonCycle>)->Name("BM_Cycle/buttons")->UseManualTime()->Iterations(5000);
BENCHMARK(BM_Cycle<MultiplayerCycle>)->Name("BM_Cycle/multiplayer")->UseManualTime()->Iterations(5000);

// One dispatched 2-byte write, lock included: compared, staged and copied as a request does it.
void BM_DispatchWrite(benchmark::State& state) {
  StartAll();
  uint16_t value = 0;
  RequestMarks marks = {};
  for (auto _ : state) {
    value++;
    LockScope lock(&offsetLock);
    DispatchWrite(0x07CC, 2, reinterpret_cast<const uint8_t*>(&value), &marks);
    Store<uint16_t>(0x07CC, value);
  }
  StopAll();
}
BENCHMARK(BM_DispatchWrite);

// The readers of one cycle with nothing changed since the frame before (a parked aircraft).
void BM_ReadersUnchanged(benchmark::State& state) {
  StartAll();
  for (auto _ : state) RunReaders(Cycle::C1);
  StopAll();
}
BENCHMARK(BM_ReadersUnchanged);

}  // namespace
