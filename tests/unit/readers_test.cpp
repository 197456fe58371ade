// Readers and the offset lock: what finds it busy is tried once more, then dropped.
#include <cstring>
#include <string>
#include <thread>

#include "core/more_api.h"
#include "row_harness.h"

namespace {

constexpr uint32_t clockText = 0x0C20, distanceText = 0x0C33, distanceNumber = 0x0306;

// A dataref whose owner lets the holder of the lock go at its `releasing`-th call.
std::atomic<int> stage;
std::thread holder;
int calls, releasing;

void HoldTheLock() {
  stage = 0;
  holder = std::thread([] {
    const LockScope lock(&offsetLock);
    stage = 1;
    while (stage != 2) std::this_thread::yield();
  });
  while (stage != 1) std::this_thread::yield();
}

void LetItGo() {
  stage = 2;
  if (holder.joinable()) holder.join();
}

float ReadDistance(void*) {
  if (++calls == releasing) LetItGo();
  return 12.5F;
}

struct Readers : testing::Test {
  void SetUp() override {
    rows::Start();
    const char* name = "sim/cockpit/radios/nav2_dme_dist_m";
    sim::Withdraw(sim::FindLive(name));
    owned = XPLMRegisterDataAccessor(name, xplmType_Float, 0, nullptr, nullptr, ReadDistance, nullptr, nullptr,
                                     nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                     nullptr);
    rows::LookUp();
    calls = releasing = 0;
    RunReaders(Cycle::C13);
    perRun = calls;
    calls = 0;
  }
  void TearDown() override {
    LetItGo();
    XPLMUnregisterDataAccessor(owned);
    rows::Stop();
  }
  // As if nothing had been stored yet.
  static void Wipe() {
    const LockScope lock(&offsetLock);
    std::memset(offsetMemory.bytes, 0, offsetMemorySize);
  }
  static std::string Text(uint32_t offset) {
    char text[5] = {};
    CopyFromMemory(offset, 4, text);
    return text;
  }

  XPLMDataRef owned = nullptr;
  int perRun = 0;  // calls of the dataref in one run
};

TEST_F(Readers, BusyLockIsTriedOnceMoreAfterEverythingElseThread) {
  const RefreshCounters before = refreshCounters;
  Wipe();
  RunReaders(Cycle::C13);
  const uint64_t stores = refreshCounters.stored - before.stored;
  ASSERT_GT(perRun, 1) << "a number and a text";
  for (const int at : {1, perRun}) {  // before the first group is stored, and before the last text is
    SCOPED_TRACE(at);
    Wipe();
    const RefreshCounters run = refreshCounters;
    calls = 0;
    releasing = at;
    HoldTheLock();
    RunReaders(Cycle::C13);
    EXPECT_EQ(refreshCounters.dropped, run.dropped) << "it was free at the second try";
    EXPECT_EQ(refreshCounters.stored, run.stored + stores) << "each group and text once";
    EXPECT_EQ(Text(distanceText), "12.5");
    EXPECT_EQ(Text(clockText)[2], ':');
    EXPECT_EQ(rows::Read<uint16_t>(distanceNumber), 125);
  }
  // Busy to the end: all of it is dropped, once each, and the next run is as good as ever.
  Wipe();
  const RefreshCounters run = refreshCounters;
  calls = releasing = 0;
  HoldTheLock();
  RunReaders(Cycle::C13);
  EXPECT_EQ(refreshCounters.dropped, run.dropped + stores);
  EXPECT_EQ(refreshCounters.stored, run.stored);
  LetItGo();
  EXPECT_EQ(Text(distanceText), "");
  RunReaders(Cycle::C13);
  EXPECT_EQ(Text(distanceText), "12.5");
  EXPECT_EQ(refreshCounters.dropped, run.dropped + stores);
}

}  // namespace
