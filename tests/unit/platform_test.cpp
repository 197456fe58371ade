// Locks, threads, events and file operations, on whichever system the tests run.
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "base/locks.h"
#include "platform/clock.h"
#include "platform/event.h"
#include "platform/lock.h"
#include "platform/system.h"
#include "platform/thread.h"

namespace {

constexpr int patienceMs = 20000;  // a wait that takes longer has hung

struct Held {
  Lock lock;
  Event taken, release;
};

uint32_t HoldUntilReleased(void* argument) {
  auto* held = static_cast<Held*>(argument);
  const LockScope scope(&held->lock);
  SignalEvent(&held->taken);
  return static_cast<uint32_t>(WaitEvent(&held->release, patienceMs));
}

TEST(Locks, TryFailsWhileAnotherThreadHoldsAndSucceedsAfter) {
  static Held held;
  Thread thread{};
  ASSERT_TRUE(CreateLock(&held.lock) && CreateAutoEvent(&held.taken) && CreateAutoEvent(&held.release));
  ASSERT_TRUE(StartThread(&thread, HoldUntilReleased, &held));
  ASSERT_TRUE(WaitEvent(&held.taken, patienceMs));
  EXPECT_FALSE(TryEnterLock(&held.lock));
  SignalEvent(&held.release);
  EXPECT_EQ(JoinThread(&thread), 1u);
  EXPECT_TRUE(TryEnterLock(&held.lock));
  EXPECT_TRUE(HoldsLock(&held.lock));
  LeaveLock(&held.lock);
  DeleteLock(&held.lock);
  CloseEvent(&held.taken);
  CloseEvent(&held.release);
}

TEST(Locks, AbsentLocksLetTheOnlyThreadPass) {
  static Lock lock;
  EnterLock(&lock);
  EXPECT_TRUE(TryEnterLock(&lock));
  LeaveLock(&lock);
  EXPECT_TRUE(HoldsLock(&lock));
  DeleteLock(&lock);
}

struct Counter {
  Lock lock;
  int value;  // plain on purpose: the lock alone keeps it right
};

uint32_t CountUp(void* argument) {
  auto* counter = static_cast<Counter*>(argument);
  for (int i = 0; i < 5000; ++i) {
    if (i % 2 == 0) {
      EnterLock(&counter->lock);
    } else {
      while (!TryEnterLock(&counter->lock)) SleepMilliseconds(0);
    }
    ++counter->value;
    LeaveLock(&counter->lock);
  }
  return 0;
}

TEST(Locks, MixedEntriesLoseNoUpdate) {
  static Counter counter;
  counter.value = 0;
  ASSERT_TRUE(CreateLock(&counter.lock));
  Thread threads[4]{};
  for (Thread& thread : threads) ASSERT_TRUE(StartThread(&thread, CountUp, &counter));
  for (Thread& thread : threads) JoinThread(&thread);
  EXPECT_EQ(counter.value, 20000);
  DeleteLock(&counter.lock);
}

TEST(Events, OneSignalWakesOneWaitAndIsKeptUntilThen) {
  Event event{};
  ASSERT_TRUE(CreateAutoEvent(&event));
  EXPECT_FALSE(WaitEvent(&event, 0));
  SignalEvent(&event);
  SignalEvent(&event);
  EXPECT_TRUE(WaitEvent(&event, -1));
  const int64_t start = MonotonicNanoseconds();
  EXPECT_FALSE(WaitEvent(&event, 30));
  EXPECT_GE(MonotonicNanoseconds() - start, 15 * 1000000);  // Windows rounds to its tick
  CloseEvent(&event);
  CloseEvent(&event);
  SignalEvent(&event);
  EXPECT_FALSE(WaitEvent(&event, 0));
}

struct PingPong {
  Event ping, pong;
  int rounds;
};

uint32_t AnswerPings(void* argument) {
  auto* game = static_cast<PingPong*>(argument);
  for (int i = 0; i < game->rounds; ++i) {
    if (!WaitEvent(&game->ping, patienceMs)) return 0;
    SignalEvent(&game->pong);
  }
  return 1;
}

TEST(Events, NoWakeUpIsLost) {
  PingPong game{.ping = {}, .pong = {}, .rounds = 3000};
  ASSERT_TRUE(CreateAutoEvent(&game.ping) && CreateAutoEvent(&game.pong));
  Thread thread{};
  ASSERT_TRUE(StartThread(&thread, AnswerPings, &game));
  for (int i = 0; i < game.rounds; ++i) {
    SignalEvent(&game.ping);
    ASSERT_TRUE(WaitEvent(&game.pong, i % 2 == 0 ? -1 : patienceMs)) << "round " << i;
  }
  EXPECT_EQ(JoinThread(&thread), 1u);
  CloseEvent(&game.ping);
  CloseEvent(&game.pong);
}

struct Reader {
  Event ready, go;
  std::atomic<uint32_t> sum;
};

uint32_t SumMessagesUntilQuit(void* argument) {
  auto* reader = static_cast<Reader*>(argument);
  PrepareThreadMessages();
  SignalEvent(&reader->ready);
  WaitEvent(&reader->go, patienceMs);
  uint32_t message = 0;
  uintptr_t value = 0;
  int result = 0;
  while ((result = WaitThreadMessage(-1, &message, &value)) > 0) {
    reader->sum = reader->sum * 10 + message % 1000 + static_cast<uint32_t>(value);
  }
  return result == 0 ? 1 : 0;
}

TEST(ThreadMessages, ArriveInOrderWhetherPostedBeforeOrDuringTheWait) {
  constexpr uint32_t first = 1001 + 0x8000 / 1000 * 1000;  // the private range of Windows begins at 0x8000
  for (const bool before : {true, false}) {
    Reader reader{};
    ASSERT_TRUE(CreateAutoEvent(&reader.ready) && CreateAutoEvent(&reader.go));
    Thread thread{};
    EXPECT_FALSE(PostMessageToThread(&thread, messageQuit, 0)) << "not started";
    ASSERT_TRUE(StartThread(&thread, SumMessagesUntilQuit, &reader));
    EXPECT_NE(thread.id, 0u);
    ASSERT_TRUE(WaitEvent(&reader.ready, patienceMs));
    if (!before) SignalEvent(&reader.go);
    EXPECT_TRUE(PostMessageToThread(&thread, first, 0));
    EXPECT_TRUE(PostMessageToThread(&thread, first, 2));
    EXPECT_TRUE(PostMessageToThread(&thread, messageQuit, 0));
    if (before) SignalEvent(&reader.go);
    EXPECT_EQ(JoinThread(&thread), 1u);
    EXPECT_EQ(reader.sum, 13u);
    EXPECT_EQ(thread.started, 0u);
    CloseEvent(&reader.ready);
    CloseEvent(&reader.go);
  }
}

uint32_t WaitInVain(void*) {
  PrepareThreadMessages();
  uint32_t message = 0;
  uintptr_t value = 0;
  const int64_t began = MonotonicNanoseconds();
  const int result = WaitThreadMessage(20, &message, &value);
  const bool waited = MonotonicNanoseconds() - began > 15'000'000;  // the system's clock ticks coarsely
  return result == -1 && waited ? 7 : 0;
}

uint32_t Throw(void*) { throw std::runtime_error("thrown by the test"); }

TEST(Threads, TimeOutsExitCodesAndExceptions) {
  Thread thread{};
  EXPECT_EQ(JoinThread(&thread), 0u) << "not started";
  ASSERT_TRUE(StartThread(&thread, WaitInVain, nullptr));
  EXPECT_FALSE(StartThread(&thread, WaitInVain, nullptr)) << "started and not joined";
  EXPECT_EQ(JoinThread(&thread), 7u);
  ASSERT_TRUE(StartThread(&thread, Throw, nullptr));
  EXPECT_EQ(JoinThread(&thread), 0u);
}

TEST(Threads, RoundsLeaveNoHandleOrThreadBehind) {
  const auto round = [] {
    ASSERT_TRUE(CreateLocks());
    Event event{};
    Thread thread{};
    ASSERT_TRUE(CreateAutoEvent(&event));
    ASSERT_TRUE(StartThread(&thread, WaitInVain, nullptr));
    JoinThread(&thread);
    CloseEvent(&event);
    DeleteLocks();
  };
  round();
  const int handles = CountProcessHandles(), threads = CountProcessThreads();
  ASSERT_GT(handles, 0);
  ASSERT_GT(threads, 0);
  for (int i = 0; i < 30; ++i) round();
  EXPECT_LE(CountProcessHandles(), handles);
  EXPECT_LE(CountProcessThreads(), threads);
}

TEST(System, MemoryGrowsWithUse) {
  const int64_t before = ProcessMemoryBytes();
  std::vector<char> block(64u << 20);   // more than an allocator serves from what was freed before
  volatile char* bytes = block.data();  // else an optimiser does without the block
  for (size_t at = 0; at < block.size(); at += 1024) bytes[at] = 'x';
  const int64_t after = ProcessMemoryBytes();
  EXPECT_GE(after, before + (48 << 20));
  EXPECT_LE(after, before + (96 << 20));
}

TEST(System, FoldersAndReplacedFiles) {
  const std::filesystem::path root = std::filesystem::path(testing::TempDir()) / "tavrix_platform_test";
  std::filesystem::remove_all(root);
  const std::string folder = (root / "a" / "b").string() + pathSeparator;
  ASSERT_TRUE(CreateFolders(folder.c_str()));
  EXPECT_TRUE(CreateFolders(folder.c_str()));
  EXPECT_TRUE(IsDirectory(folder.c_str()));

  const std::string from = folder + "new", to = folder + "old";
  std::ofstream(from) << "new";
  std::ofstream(to) << "old";
  EXPECT_FALSE(CreateFolders((from + pathSeparator + "c").c_str())) << "below a file";
  EXPECT_FALSE(SystemErrorText().empty());
  EXPECT_TRUE(ReplaceFile(from.c_str(), to.c_str()));
  EXPECT_FALSE(std::filesystem::exists(from));
  std::string content;
  std::ifstream(to) >> content;
  EXPECT_EQ(content, "new");
  EXPECT_FALSE(ReplaceFile(from.c_str(), to.c_str())) << "nothing to put there";
  EXPECT_TRUE(std::filesystem::is_regular_file(to));
  EXPECT_LE(ComputerName().size(), 16u);
  EXPECT_FALSE(ComputerName().empty());
  std::filesystem::remove_all(root);
}

}  // namespace
