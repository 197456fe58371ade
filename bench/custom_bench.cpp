// Custom offsets: what a frame pays for 1,000 of them, and what a client's write to one costs.
#include <benchmark/benchmark.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "base/bytes.h"
#include "bridge/cycles.h"
#include "bridge/registry.h"
#include "core/sim.h"
#include "custom/custom.h"
#include "custom/custom_state.h"
#include "offsets/dispatcher.h"
#include "offsets/memory.h"

namespace {

constexpr int entryCount = 1000;
constexpr uint32_t firstOffset = 0x8000;
constexpr char turning[] = "sim/flightmodel/position/psi";

// Eight tokens, one of them a dataref, and a write target; every entry 8 bytes wide.
std::string File(int entries) {
  std::string text = "Dataref psi sim/flightmodel/position/psi float\n";
  char line[128];
  for (int i = 0; i < entries; ++i) {
    std::snprintf(line, sizeof line, "Offset %X FLOAT64 1 rw $psi 3.28084 * 1000 / 0.5 + abs >psi @ 2 /\n",
                  (firstOffset + static_cast<uint32_t>(i) * 8) % 0x10000);
    text += line;
  }
  return text;
}

struct World {
  explicit World(const std::string& file) {
    const std::string root = (std::filesystem::temp_directory_path() / "tavrix_custom_bench").string();
    const std::string folder = root + "/Resources/plugins/TAVRIX";
    std::filesystem::create_directories(folder);
    std::ofstream(folder + "/TAVRIXOffsets.cfg") << file;
    sim::Options options;
    options.root = root;
    options.rate = 0;
    options.circuit = false;
    sim::SimStart(options);
    CreateLocks();
    ConnectCustomOffsets();
    InitMemoryBlocks();
    LookUpDataRefs();
    LookUpCommands();
    BuildCycles();
    LoadCustomOffsets();
  }
  ~World() {
    ClearCustomOffsets();
    DeleteLocks();
    sim::SimStop();
  }
};

// The dataref changes every frame, so that every entry is computed and stored. Microseconds a frame are
// nanoseconds an entry.
void CustomRefreshFrame(benchmark::State& state) {
  World world(File(entryCount));
  sim::DataRef* psi = sim::FindLive(turning);
  for (auto _ : state) {
    psi->floats[0] += 0.01F;
    RefreshCustomOffsets(1);
  }
  state.SetItemsProcessed(state.iterations() * entryCount);
}
BENCHMARK(CustomRefreshFrame)->Unit(benchmark::kMicrosecond);

// Look-up, comparison and staging of a client's write among 1,000 entries, lock and copy included.
void CustomWriteDispatch(benchmark::State& state) {
  World world(File(entryCount));
  uint32_t i = 0;
  RequestMarks marks = {};
  for (auto _ : state) {
    const double value = ++i;
    const uint32_t offset = firstOffset + i * 37 % entryCount * 8;
    uint8_t bytes[8];
    StoreTo(bytes, value);
    const LockScope lock(&offsetLock);
    benchmark::DoNotOptimize(DispatchWrite(offset, sizeof bytes, bytes, &marks));
    std::memcpy(offsetMemory.bytes + offset, bytes, sizeof bytes);
  }
}
BENCHMARK(CustomWriteDispatch);

// Loading a file with 5,000 entries.
void CustomLoad5000(benchmark::State& state) {
  World world(File(5000));
  for (auto _ : state) LoadCustomOffsets();
  state.counters["entries"] = static_cast<double>(loadedTables->offsets.size());
}
BENCHMARK(CustomLoad5000)->Unit(benchmark::kMillisecond);

}  // namespace
