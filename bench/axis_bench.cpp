// Joystick axes: what they cost the simulator's thread in a frame, against the one call that reads the
// simulator's list of axes, and how long a move takes to its dataref.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <vector>

#include "XPLMDataAccess.h"
#include "bridge/cycles.h"
#include "bridge/registry.h"
#include "controls/axes.h"
#include "controls/buttons.h"
#include "core/sim.h"
#include "offsets/memory.h"
#include "platform/clock.h"
#include "settings/settings.h"
#include "shell/frame_callbacks.h"

namespace {

constexpr char throttles[] = "sim/cockpit2/engine/actuators/throttle_ratio";
// Two quadrants for four engines, a yoke, pedals with toe brakes.
constexpr char quadrants[] =
    "[TAVRIX AXIS SETTINGS]\nAssign Throttle 1 Axis = 0,3\nEngines Throttle 1 Axis = 1,2\n"
    "Assign Throttle 2 Axis = 0,4\nEngines Throttle 2 Axis = 3,4\nAssign Elevator Axis = 0,0\n"
    "Assign Aileron Axis = 0,1\nAssign Rudder Axis = 0,2\nAssign Left Toebrake Axis = 0,6\n"
    "Assign Flaps Axis = 0,5\n";

struct Running {
  std::filesystem::path file = std::filesystem::temp_directory_path() / "tavrix_axis_bench.ini";

  explicit Running(const char* keys) {
    sim::Options options;
    options.rate = 0;
    options.circuit = false;
    if (sim::SimStart(options) != 0) std::abort();
    CreateLocks();
    InitMemoryBlocks();
    LookUpDataRefs();
    LookUpCommands();
    BuildCycles();
    std::ofstream(file) << keys;
    SetSettingsPath(file.string().c_str());
    CreateButtons();
    CreateAxes();
    LoadAxisAssignments();
    StartButtonThread();
  }
  ~Running() {
    StopAxisWrites();
    StopButtonThread();
    DeleteAxes();
    DeleteButtons();
    DeleteLocks();
    sim::SimStop();
    std::filesystem::remove(file);
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
};

void Move(int axis, double value) {
  sim::SimCommand("axis " + std::to_string(axis) + ' ' + std::to_string(value));
}

// Until the thread has seen where the axes stand.
void Settle() {
  for (int i = 0; i < 1000 && (i < 10 || WantsAxisOverrides()); ++i) {
    ButtonCycle(0, 0, 0, nullptr);
    WriteCycle(0, 0, 0, nullptr);
    for (int axis = 0; axis < 7; ++axis) Move(axis, i % 2 == 0 ? 0.3 : 0.5);
    SleepMilliseconds(2);
  }
}

// ours: the callback; bare: the call that it makes. Both are measured in every frame, the median counts.
void MeasureFrame(benchmark::State& state, bool moves, bool assigned) {
  const Running running(assigned ? quadrants : "");
  if (assigned) Settle();
  XPLMDataRef axes = XPLMFindDataRef("sim/joystick/joystick_axis_values");
  static float readings[maxAxes];
  std::vector<double> ours, bare;
  int turn = 0;
  for (auto _ : state) {
    state.PauseTiming();
    if (moves) {
      Move(3, 0.2 + 0.6 * (turn++ % 100) / 100);
      SleepMilliseconds(1);  // the thread waits again
    }
    state.ResumeTiming();
    const int64_t start = MonotonicNanoseconds();
    ButtonCycle(0, 0, 0, nullptr);
    const int64_t between = MonotonicNanoseconds();
    if (assigned) XPLMGetDatavf(axes, readings, 0, maxAxes);
    const int64_t end = MonotonicNanoseconds();
    ours.push_back(static_cast<double>(between - start));
    bare.push_back(static_cast<double>(end - between));
  }
  const auto median = [](std::vector<double>& times) {
    std::nth_element(times.begin(), times.begin() + static_cast<long>(times.size() / 2), times.end());
    return times[times.size() / 2];
  };
  state.counters["ours_ns"] = median(ours);
  state.counters["bare_ns"] = median(bare);
  state.counters["calls"] = assigned ? 1 : 0;
}
void BM_AxesUnassigned(benchmark::State& state) { MeasureFrame(state, false, false); }
void BM_AxesAtRest(benchmark::State& state) { MeasureFrame(state, false, true); }
void BM_AxesMoving(benchmark::State& state) { MeasureFrame(state, true, true); }
BENCHMARK(BM_AxesUnassigned)->Iterations(20000);
BENCHMARK(BM_AxesAtRest)->Iterations(20000);
BENCHMARK(BM_AxesMoving)->Iterations(1000);

// A lever is moved somewhere within a frame of 60 a second; how many frames, and how many milliseconds beyond
// two whole frames, until its dataref has the value: the median, and what one in twenty moves exceeds.
void BM_AxisLatency(benchmark::State& state) {
  const Running running(quadrants);
  Settle();
  constexpr double frameMs = 1000.0 / 60;
  XPLMDataRef levers = XPLMFindDataRef(throttles);
  std::vector<double> milliseconds, frames;
  int turn = 0;
  for (auto _ : state) {
    const double goal = 0.1 + 0.8 * (turn % 50) / 50;
    SleepMilliseconds(turn++ % 16);
    Move(3, goal);
    const int64_t moved = MonotonicNanoseconds();
    SleepMilliseconds(16 - turn % 16);
    int count = 0;
    for (bool there = false; !there && count < 100;) {
      const int64_t start = MonotonicNanoseconds();
      WriteCycle(0, 0, 0, nullptr);
      float ratio = 0;
      XPLMGetDatavf(levers, &ratio, 0, 1);
      there = std::abs(static_cast<double>(ratio) - goal) < 1e-3;
      ButtonCycle(0, 0, 0, nullptr);
      ++count;
      while (!there && static_cast<double>(MonotonicNanoseconds() - start) / 1e6 < frameMs)
        SleepMilliseconds(1);
    }
    milliseconds.push_back(static_cast<double>(MonotonicNanoseconds() - moved) / 1e6);
    frames.push_back(count);
  }
  const auto share = [](std::vector<double>& all, double part) {
    std::sort(all.begin(), all.end());
    return all[static_cast<size_t>(part * static_cast<double>(all.size() - 1))];
  };
  state.counters["frames"] = share(frames, 0.5);
  state.counters["frames_95"] = share(frames, 0.95);
  state.counters["ms"] = share(milliseconds, 0.5);
  state.counters["ms_95"] = share(milliseconds, 0.95);
  state.counters["ms_past_two_frames_95"] = std::max(0.0, share(milliseconds, 0.95) - 2 * frameMs);
}
BENCHMARK(BM_AxisLatency)->Iterations(200)->Unit(benchmark::kMillisecond);

}  // namespace
