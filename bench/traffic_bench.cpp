// Traffic: processor share of 96 slot threads, how long they hold the offset lock, and what the positions
// cost the simulator's thread.
#include <benchmark/benchmark.h>

#include <ctime>
#include <string>

#include "bridge/registry.h"
#include "core/sim.h"
#include "offsets/memory.h"
#include "platform/clock.h"
#include "traffic/traffic.h"
#include "traffic/traffic_state.h"

namespace {

constexpr int64_t second = 1000000000;

void Begin(const char* planes) {
  sim::Options options;
  options.rate = 0;
  options.circuit = false;
  if (sim::SimStart(options) != 0) std::abort();
  CreateLocks();
  InitMemoryBlocks();
  LookUpDataRefs();
  InitTraffic();
  sim::SimCommand(planes);
  LoadAircraftList();
}

void End() {
  ReleaseTraffic();
  DeleteLocks();
  sim::SimStop();
}

// Processor time of this process, in seconds.
double ProcessorTime() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

void WaitForSlots(uint16_t count) {
  for (bool there = false; !there; SleepMilliseconds(10)) {
    const LockScope lock(&offsetLock);
    there = Load<uint16_t>(trafficHeaderOffset + 4) == count;
  }
}

// One iteration is two seconds of a simulator that does nothing else.
void ProcessorShareOf96Slots(benchmark::State& state) {
  Begin("planes 97");
  StartTrafficThread();
  WaitForSlots(maxSlots);
  double share = 0;
  for (auto _ : state) {
    const double before = ProcessorTime();
    const int64_t begun = MonotonicNanoseconds();
    SleepMilliseconds(2000);
    share = 100 * (ProcessorTime() - before) * static_cast<double>(second) /
            static_cast<double>(MonotonicNanoseconds() - begun);
  }
  state.counters["percent_of_a_core"] = share;
  StopTrafficThread();
  End();
}
BENCHMARK(ProcessorShareOf96Slots)->Iterations(2)->Unit(benchmark::kMillisecond);

// The offset lock is tried as a refresh reader does it: the share of refusals is the share of the time in
// which the slot threads and their manager hold it.
void OffsetLockHeldBy96Slots(benchmark::State& state) {
  Begin("planes 97");
  StartTrafficThread();
  WaitForSlots(maxSlots);
  double tries = 0, refused = 0;
  for (auto _ : state) {
    if (TryEnterLock(&offsetLock)) {
      LeaveLock(&offsetLock);
    } else {
      refused++;
    }
    tries++;
    // Leaves the lock free most of the time, so that the threads are not slowed by the measurement.
    const int64_t next = MonotonicNanoseconds() + 1000;
    while (MonotonicNanoseconds() < next) {
    }
  }
  state.counters["held_percent"] = 100 * refused / tries;
  // 96 slots and the manager (twice) come by five times a second.
  state.counters["held_ns_each"] = refused / tries * static_cast<double>(second) / (5 * (maxSlots + 2));
  StopTrafficThread();
  End();
}
BENCHMARK(OffsetLockHeldBy96Slots)->Iterations(4000000);  // five seconds

void PositionsOf19Aircraft(benchmark::State& state) {
  Begin("planes 20");
  for (auto _ : state) benchmark::DoNotOptimize(FillTrafficPositions());
  End();
}
BENCHMARK(PositionsOf19Aircraft);

// From the arrays of newer simulators.
void PositionsOf63Aircraft(benchmark::State& state) {
  Begin("planes 64");
  const std::string stem = "sim/cockpit2/tcas/targets/";
  for (const char* name : {"position/lat", "position/lon", "position/ele", "position/vx", "position/vy",
                           "position/vz", "position/psi", "position/the", "position/phi"}) {
    sim::SimCommand("define " + stem + name + " float[64]");
  }
  for (const char* name : {"position/weight_on_wheels", "modeS_id"}) {
    sim::SimCommand("define " + stem + name + " int[64]");
  }
  for (const char* name : {"flight_id", "icao_type"}) sim::SimCommand("define " + stem + name + " byte[512]");
  sim::SimCommand("define sim/cockpit2/tcas/indicators/tcas_num_acf int 64");
  for (int place = 1; place < 64; ++place) {
    sim::SimCommand("set " + stem + "modeS_id[" + std::to_string(place) + "] " + std::to_string(place));
  }
  LookUpDataRefs();
  for (auto _ : state) benchmark::DoNotOptimize(FillTrafficPositions());
  End();
}
BENCHMARK(PositionsOf63Aircraft);

}  // namespace
