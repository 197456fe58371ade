// Readers and the offset lock: what finds it busy is tried once more, then dropped.
#include <cstring>
#include <string>
#include <thread>

#include "bridge/reader_groups.h"
#include "bridge/stations.h"
#include "core/more_api.h"
#include "row_harness.h"

namespace {

constexpr uint32_t distanceNumber = 0x0306, fileText = 0x3C00, identText = 0x02DC, signalNumber = 0x0C52;

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

int ReadIdent(void*, void* bytes, int, int size) {
  if (++calls == releasing) LetItGo();
  std::memcpy(bytes, "ABC", size > 3 ? 4 : 0);
  return size > 3 ? 4 : 0;
}

struct Readers : testing::Test {
  void SetUp() override {
    rows::Start();
    owned = XPLMRegisterDataAccessor("t/distance", xplmType_Float, 0, nullptr, nullptr, ReadDistance, nullptr,
                                     nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                     nullptr, nullptr);
    ident = XPLMRegisterDataAccessor("t/ident", xplmType_Data, 0, nullptr, nullptr, nullptr, nullptr, nullptr,
                                     nullptr, nullptr, nullptr, nullptr, nullptr, ReadIdent, nullptr, nullptr,
                                     nullptr);
    dataRefOf<"sim/cockpit/radios/nav2_dme_dist_m">.handle = owned;
    dataRefOf<"sim/cockpit2/radios/indicators/adf2_nav_id">.handle = ident;
    BindReaders();
    calls = releasing = 0;
  }
  void TearDown() override {
    LetItGo();
    XPLMUnregisterDataAccessor(owned);
    XPLMUnregisterDataAccessor(ident);
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

  XPLMDataRef owned = nullptr, ident = nullptr;
};

TEST_F(Readers, BusyLockIsTriedOnceMoreAfterEverythingElseThread) {
  struct Case {
    Cycle cycle;  // whose one call of ours lets the lock go
    uint32_t number;
    uint16_t value;
  };
  // Before the first group is stored; and after all groups, before the cycle's last text is.
  for (const Case& test : {Case{Cycle::C13, distanceNumber, 125}, Case{Cycle::C59, signalNumber, 256}}) {
    SCOPED_TRACE(static_cast<int>(test.cycle));
    navRadios[0].type = 4;  // a station is received
    releasing = 0;
    const RefreshCounters before = refreshCounters;
    RunReaders(test.cycle);
    const uint64_t stores = refreshCounters.stored - before.stored;
    Wipe();
    RefreshCounters run = refreshCounters;
    calls = 0;
    releasing = 1;
    HoldTheLock();
    RunReaders(test.cycle);
    EXPECT_EQ(refreshCounters.dropped, run.dropped) << "it was free at the second try";
    EXPECT_EQ(refreshCounters.stored, run.stored + stores) << "each group and text once";
    EXPECT_EQ(rows::Read<uint16_t>(test.number), test.value);
    if (test.cycle == Cycle::C59) {
      EXPECT_EQ(Text(identText), "ABC");
      EXPECT_NE(Text(fileText), "");
    }
    // Busy to the end: all of it is dropped, once each, and the next run is as good as ever.
    Wipe();
    run = refreshCounters;
    releasing = 0;
    HoldTheLock();
    RunReaders(test.cycle);
    EXPECT_EQ(refreshCounters.dropped, run.dropped + stores);
    EXPECT_EQ(refreshCounters.stored, run.stored);
    LetItGo();
    EXPECT_EQ(rows::Read<uint16_t>(test.number), 0);
    RunReaders(test.cycle);
    EXPECT_EQ(rows::Read<uint16_t>(test.number), test.value);
    EXPECT_EQ(refreshCounters.dropped, run.dropped + stores);
  }
}

}  // namespace
