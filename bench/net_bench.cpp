// Network costs: the change scan with nothing changed against one comparison of the whole area and against a
// byte-by-byte walk with the lock taken for each byte, the scan with changes, and a framed request.
// Figures of one run belong together: look at the ratios.
#include <benchmark/benchmark.h>

#include <cstring>

#include "bridge/registry.h"
#include "net/change_scan.h"
#include "net/frame.h"
#include "net/server.h"
#include "offsets/dispatcher.h"
#include "offsets/memory.h"
#include "platform/clock.h"

namespace {

uint8_t entries[changeEntriesSize];
uint8_t reference[offsetMemorySize];
RequestScratch scratch;

void Prepare() {
  CreateLocks();
  InitMemoryBlocks();
  ResetDispatchTable();
  for (uint32_t i = 0; i < offsetMemorySize; ++i) offsetMemory.bytes[i] = static_cast<uint8_t>(i * 7);
  std::memcpy(reference, offsetMemory.bytes, sizeof reference);
  while (ScanChanges(entries) != 0) {
  }
}

uint32_t PlainWalk() {
  uint32_t differing = 0;
  for (uint32_t i = 0; i < offsetMemorySize; ++i) {
    LockScope lock(&offsetLock);
    if (offsetMemory.bytes[i] != reference[i]) ++differing;
  }
  return differing;
}

// Both sides in every turn, so that they meet the same clock rate and the same neighbours.
void ScanUnchanged(benchmark::State& state) {
  Prepare();
  int64_t comparing = 0;
  int64_t scanning = 0;
  for (auto _ : state) {
    const int64_t start = MonotonicNanoseconds();
    benchmark::DoNotOptimize(std::memcmp(offsetMemory.bytes, reference, offsetMemorySize));
    const int64_t middle = MonotonicNanoseconds();
    benchmark::DoNotOptimize(ScanChanges(entries));
    scanning += MonotonicNanoseconds() - middle;
    comparing += middle - start;
  }
  state.counters["times_memcmp"] = static_cast<double>(scanning) / static_cast<double>(comparing);
}
BENCHMARK(ScanUnchanged);

void WalkPlainUnchanged(benchmark::State& state) {
  Prepare();
  for (auto _ : state) benchmark::DoNotOptimize(PlainWalk());
}
BENCHMARK(WalkPlainUnchanged)->Unit(benchmark::kMicrosecond);

// As many bytes as given change between two scans, spread over the area.
void ScanChanged(benchmark::State& state) {
  Prepare();
  const auto changes = static_cast<uint32_t>(state.range(0));
  for (auto _ : state) {
    for (uint32_t i = 0; i < changes; ++i) ++offsetMemory.bytes[i * (offsetMemorySize / changes)];
    benchmark::DoNotOptimize(ScanChanges(entries));
  }
}
BENCHMARK(ScanChanged)->Arg(1)->Arg(100)->Arg(1000);

// A received frame with one write of two bytes.
void ServeWriteFrame(benchmark::State& state) {
  Prepare();
  uint8_t frame[frameOverhead + writeHeaderSize + 2 + 4] = {};
  const uint32_t header[3] = {recordWrite, 0x66C0, 2};
  std::memcpy(frame + frameHeaderSize, header, sizeof header);
  const size_t size = FinishFrame(frame, frameRequestList, writeHeaderSize + 2 + 4, endRequestList);
  for (auto _ : state) {
    ++frame[frameHeaderSize + writeHeaderSize];
    ServeFrames(frame, size, &scratch);
  }
}
BENCHMARK(ServeWriteFrame);

}  // namespace
