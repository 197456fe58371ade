// Frame cost: all flight-loop callbacks of one frame against the very simulator calls that they make.
//
// The calls are recorded while the callbacks run (the linker routes them through the wrappers below) and
// then replayed bare, through the same wrappers, in the same order, on the same handles, in the same frame.
// Time of the flight model is not measured. Figures of one run belong together: look at the ratio.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "XPLMDataAccess.h"
#include "bridge/cycles.h"
#include "core/sim.h"
#include "offsets/dispatcher.h"
#include "offsets/memory.h"
#include "platform/clock.h"

namespace {

enum class Call : uint8_t { GetInt, GetFloat, GetDouble, GetInts, GetFloats, GetBytes, Types };
struct Recorded {
  Call call;
  XPLMDataRef ref;
  int offset, max;
};

bool recording;
std::vector<Recorded> recorded;
uint8_t sink[16384];

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
  for (const Recorded& r : recorded) {
    switch (r.call) {
      case Call::GetInt:
        benchmark::DoNotOptimize(XPLMGetDatai(r.ref));
        break;
      case Call::GetFloat:
        benchmark::DoNotOptimize(XPLMGetDataf(r.ref));
        break;
      case Call::GetDouble:
        benchmark::DoNotOptimize(XPLMGetDatad(r.ref));
        break;
      case Call::GetInts:
        XPLMGetDatavi(r.ref, reinterpret_cast<int*>(sink), r.offset, r.max);
        break;
      case Call::GetFloats:
        XPLMGetDatavf(r.ref, reinterpret_cast<float*>(sink), r.offset, r.max);
        break;
      case Call::GetBytes:
        XPLMGetDatab(r.ref, sink, r.offset, r.max);
        break;
      case Call::Types:
        benchmark::DoNotOptimize(XPLMGetDataRefTypes(r.ref));
        break;
    }
    benchmark::ClobberMemory();
  }
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

// Mean without the slowest twentieth, in which another process had the processor.
double TrimmedMean(std::vector<int64_t>* samples) {
  std::sort(samples->begin(), samples->end());
  const size_t kept = samples->size() - samples->size() / 20;
  double sum = 0;
  for (size_t i = 0; i < kept; i++) sum += static_cast<double>((*samples)[i]);
  return kept == 0 ? 0 : sum / static_cast<double>(kept);
}

// One loop, or all that are due (loop null), over frames of the circuit flight.
void MeasureFrames(benchmark::State& state, Loop single) {
  StartAll();
  std::vector<int64_t> ours;
  std::vector<int64_t> bare;
  int64_t calls = 0;
  int frame = 0;
  for (auto _ : state) {
    frame++;
    sim::WorldStep(1.0 / 60);
    std::vector<Loop> due;
    for (const Timed& timed : loops) {
      if (single != nullptr ? timed.loop == single : frame % timed.frames == 0) due.push_back(timed.loop);
    }
    recorded.clear();
    recorded.reserve(2048);
    // Once to record (and to warm the caches for both), then once each on the clock with fresh values.
    recording = true;
    for (Loop loop : due) loop(0, 0, 0, nullptr);
    recording = false;
    sim::WorldStep(1.0 / 60);
    // Whoever runs first finds the simulator's values in a colder cache: they take turns.
    int64_t spent[2] = {};
    for (int turn = 0; turn < 2; turn++) {
      const bool callbacks = (turn == 0) == (frame % 2 == 0);
      const int64_t begin = MonotonicNanoseconds();
      if (callbacks) {
        for (Loop loop : due) loop(0, 0, 0, nullptr);
      } else {
        Replay();
      }
      spent[callbacks ? 0 : 1] = MonotonicNanoseconds() - begin;
    }
    ours.push_back(spent[0]);
    bare.push_back(spent[1]);
    calls += static_cast<int64_t>(recorded.size());
    state.SetIterationTime(static_cast<double>(spent[0]) / 1e9);
  }
  const double frames = static_cast<double>(frame);
  state.counters["calls"] = static_cast<double>(calls) / frames;
  state.counters["ours_ns"] = TrimmedMean(&ours);
  state.counters["bare_ns"] = TrimmedMean(&bare);
  state.counters["ratio"] = TrimmedMean(&ours) / TrimmedMean(&bare);
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

// One dispatched 2-byte write, lock included: compared, staged and copied as a request does it.
void BM_DispatchWrite(benchmark::State& state) {
  StartAll();
  uint16_t value = 0;
  for (auto _ : state) {
    value++;
    LockScope lock(&offsetLock);
    DispatchWrite(0x07CC, 2, reinterpret_cast<const uint8_t*>(&value));
    Store<uint16_t>(0x07CC, value);
    NoteMemoryChanged();
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
