// A cycle that finds the offset lock busy for a moment. The linker leads the tries through the function below
// (tests/CMakeLists.txt).
#include "bridge/reader_groups.h"
#include "row_harness.h"

namespace {

thread_local int busyTry = 0;  // the try that fails, counted from 1

}  // namespace

extern "C" {
bool __real__Z12TryEnterLockP4Lock(Lock* lock);
bool __wrap__Z12TryEnterLockP4Lock(Lock* lock);

bool __wrap__Z12TryEnterLockP4Lock(Lock* lock) {
  if (lock == &offsetLock && busyTry > 0 && --busyTry == 0) return false;
  return __real__Z12TryEnterLockP4Lock(lock);
}
}

namespace {

// Whichever group it is: it is stored at the second try, and those behind it once more, each with the lock held
// (lock-checking builds end the program when it is left by somebody who does not hold it).
TEST(ReadersBusyLock, NoGroupIsLostWhereverItIsBusy) {
  rows::Start();
  RunReaders(Cycle::C1);
  const RefreshCounters first = refreshCounters;
  RunReaders(Cycle::C1);
  const uint64_t groups = refreshCounters.stored - first.stored;
  ASSERT_GE(groups, 3U);
  std::vector<uint8_t> expected(offsetMemorySize), seen(offsetMemorySize);
  for (uint64_t busy = 0; busy <= groups + 1; ++busy) {  // a row looks at the memory, too
    std::fill_n(offsetMemory.bytes, offsetMemorySize, uint8_t{0});
    const RefreshCounters before = refreshCounters;
    busyTry = static_cast<int>(busy);
    RunReaders(Cycle::C1);
    EXPECT_EQ(busyTry, 0);
    EXPECT_EQ(refreshCounters.dropped, before.dropped);
    EXPECT_EQ(refreshCounters.stored, before.stored + groups);
    CopyFromMemory(0, offsetMemorySize, seen.data());
    std::fill_n(seen.begin() + 0x337E, 2, uint8_t{0});  // counts the runs
    if (busy == 0) expected = seen;
    const auto differs = std::mismatch(seen.begin(), seen.end(), expected.begin()).first;
    EXPECT_EQ(differs, seen.end()) << busy << ": offset " << differs - seen.begin();
  }
  rows::Stop();
}

}  // namespace
