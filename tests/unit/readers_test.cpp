// Readers and the offset lock: what finds it busy is tried once more, then dropped.
#include <cstring>
#include <string>

#include "bridge/reader_groups.h"
#include "core/more_api.h"
#include "row_harness.h"
#include "test_tools.h"

namespace {

constexpr uint32_t identText = 0x303E, titleText = 0x3C00, windWord = 0x04DA;

// A dataref whose owner lets the holder of the lock go at its `releasing`-th call, 0 never.
tools::LockHolder holder;
int calls, releasing;

// A text, which a cycle asks for after it has tried to store its numbers.
int ReadIdent(void*, void* text, int offset, int size) {
  if (++calls == releasing) holder.LetGo();
  if (text != nullptr && offset == 0 && size >= 4) std::memcpy(text, "IDNT", 4);
  return 4;
}

struct Readers : rows::Harness {
  void SetUp() override {
    rows::Start();
    const char* name = "sim/cockpit2/radios/indicators/adf1_nav_id";
    sim::Withdraw(sim::FindLive(name));
    owned =
        XPLMRegisterDataAccessor(name, xplmType_Data, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                 nullptr, nullptr, nullptr, nullptr, ReadIdent, nullptr, nullptr, nullptr);
    rows::LookUp();
    rows::Set("sim/weather/wind_direction_degt[0]", 90);
    calls = releasing = 0;
    RunReaders(Cycle::C59);
  }
  void TearDown() override {
    holder.LetGo();
    XPLMUnregisterDataAccessor(owned);
    rows::Stop();
  }
  // As if nothing had been stored yet.
  static void Wipe() {
    const LockScope lock(&offsetLock);
    std::memset(offsetMemory.bytes, 0, offsetMemorySize);
  }
  // A run of the cycle that finds the lock busy until the text is asked for, or to its end.
  static RefreshCounters BusyRun(int releasedAt) {
    Wipe();
    const RefreshCounters before = refreshCounters;
    calls = 0;
    releasing = releasedAt;
    holder.Take(&offsetLock);
    RunReaders(Cycle::C59);
    const RefreshCounters run = {refreshCounters.stored - before.stored,
                                 refreshCounters.dropped - before.dropped};
    holder.LetGo();
    return run;
  }
  static void ExpectStored(bool stored) {
    EXPECT_EQ(rows::ReadString(identText, 4), stored ? "IDNT" : "");
    EXPECT_NE(rows::ReadString(titleText, 200).empty(), stored);
    EXPECT_EQ(rows::Read<uint16_t>(windWord) != 0, stored);
  }

  XPLMDataRef owned = nullptr;
};

TEST_F(Readers, BusyLockIsTriedOnceMoreAfterEverythingElseThread) {
  const RefreshCounters before = refreshCounters;
  RunReaders(Cycle::C59);
  const uint64_t stores = refreshCounters.stored - before.stored;
  RefreshCounters run = BusyRun(1);
  EXPECT_EQ(run.dropped, 0U) << "it was free at the second try";
  EXPECT_EQ(run.stored, stores) << "each group and text once";
  ExpectStored(true);
  // Busy to the end: all of it is dropped, once each, and the next run is as good as ever.
  run = BusyRun(0);
  EXPECT_EQ(run.dropped, stores);
  EXPECT_EQ(run.stored, 0U);
  ExpectStored(false);
  RunReaders(Cycle::C59);
  ExpectStored(true);
}

// Each store costs a lock: rows share one, but for those that overlap.
TEST_F(Readers, RowsShareFewStores) {
  for (const Cycle cycle : {Cycle::C1, Cycle::C3, Cycle::C7, Cycle::C13, Cycle::C31, Cycle::C59, Cycle::C313}) {
    uint64_t numbers = 0, texts = 0;
    for (const RowTable* table : Catalogue()) {
      for (const OffsetRow& row : table->rows) {
        if (row.cycle == cycle) ++(row.type == Stored::Text ? texts : numbers);
      }
    }
    const uint64_t before = refreshCounters.stored;
    RunReaders(cycle);
    EXPECT_LE(refreshCounters.stored - before, texts + numbers / 32 + 2) << static_cast<int>(cycle);
  }
}

// What the first cycle was told counts for the others of its frame, until handles change or the next frame
// comes.
TEST_F(Readers, OneFrameAsksOnce) {
  const std::string name = "sim/flightmodel/position/magnetic_variation";
  const auto variation = [] { return rows::Read<int16_t>(0x02A0); };
  rows::Set(name, 0);
  RunReaders(Cycle::C1);
  rows::Set(name, -90);
  RunReaders(Cycle::C313, true);
  EXPECT_EQ(variation(), 0);
  BindReaders();
  RunReaders(Cycle::C313, true);
  EXPECT_EQ(variation(), 16384);
  rows::Set(name, 90);
  RunReaders(Cycle::C313, true);
  EXPECT_EQ(variation(), 16384);
  RunReaders(Cycle::C313);
  EXPECT_EQ(variation(), -16384);
}

}  // namespace
