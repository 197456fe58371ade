// The change scan with nothing changed against one comparison of the whole area, for the Windows builds, which
// have no benchmark library; bench/net_bench.cpp is the native one. Prints the medians of both.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <vector>

#include "bridge/registry.h"
#include "net/change_scan.h"
#include "offsets/dispatcher.h"
#include "offsets/memory.h"

namespace {

constexpr int turns = 4000;
uint8_t entries[changeEntriesSize];
uint8_t reference[offsetMemorySize];
volatile int sink;

using Clock = std::chrono::steady_clock;

double MedianNanoseconds(std::vector<Clock::duration>* times) {
  std::sort(times->begin(), times->end());
  return std::chrono::duration<double, std::nano>((*times)[times->size() / 2]).count();
}

}  // namespace

int main() {
  CreateLocks();
  InitMemoryBlocks();
  ResetDispatchTable();
  for (uint32_t i = 0; i < offsetMemorySize; ++i) offsetMemory.bytes[i] = static_cast<uint8_t>(i * 7);
  std::memcpy(reference, offsetMemory.bytes, sizeof reference);
  while (ScanChanges(entries) != 0) {
  }
  // Both in every turn, so that they meet the same clock rate and the same neighbours.
  std::vector<Clock::duration> comparing, scanning;
  for (int turn = 0; turn < turns; ++turn) {
    const Clock::time_point start = Clock::now();
    sink = std::memcmp(offsetMemory.bytes, reference, offsetMemorySize);
    const Clock::time_point middle = Clock::now();
    sink = static_cast<int>(ScanChanges(entries));
    scanning.push_back(Clock::now() - middle);
    comparing.push_back(middle - start);
  }
  std::printf("scan %.0f ns, memcmp %.0f ns\n", MedianNanoseconds(&scanning), MedianNanoseconds(&comparing));
  DeleteLocks();
}
