// A client's block whose page has to be fetched while its record is served; the simulator's folder as clients
// on other computers see it.
#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <thread>

#include "offsets/request_walk.h"
#include "platform/system.h"
#include "row_harness.h"

namespace {

bool hasShare;  // the computer shares a folder, which only Windows tells of

}  // namespace

extern "C" {
std::vector<SharedFolder> __real__Z17ListSharedFoldersv();
std::vector<SharedFolder> __wrap__Z17ListSharedFoldersv();
bool __real__Z11IsDirectoryPKc(const char* path);
bool __wrap__Z11IsDirectoryPKc(const char* path);

std::vector<SharedFolder> __wrap__Z17ListSharedFoldersv() {
  if (!hasShare) return __real__Z17ListSharedFoldersv();
  return {{"games", "C:\\Games"}};
}
bool __wrap__Z11IsDirectoryPKc(const char* path) { return hasShare || __real__Z11IsDirectoryPKc(path); }
}

namespace {

// The fault handler holds the serving thread until another thread has looked at the lock.
uint8_t* block;
size_t blockSize;
std::atomic<int> faults, looked;

void OnFault(int, siginfo_t* info, void*) {
  const auto* at = static_cast<const uint8_t*>(info->si_addr);
  if (at < block || at >= block + blockSize) _exit(99);
  const int fault = ++faults;
  while (looked < fault) continue;
  mprotect(block, blockSize, PROT_READ | PROT_WRITE);
}

TEST(RequestMemory, PageThatIsFetchedHoldsNobodyUp) {
  rows::Start();
  blockSize = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  void* mapped = mmap(nullptr, blockSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(mapped, MAP_FAILED);
  block = static_cast<uint8_t*>(mapped);
  const uint32_t content = 0x50000008;
  CopyToMemory(0x66C0, sizeof content, &content);
  const uint32_t words[] = {recordRead, 0x66C0, 4, 0, 0xEEEEEEEE, recordEnd};
  std::memcpy(block, words, sizeof words);
  ASSERT_EQ(mprotect(block, blockSize, PROT_READ), 0);

  struct sigaction action = {}, before = {};
  action.sa_sigaction = OnFault;
  action.sa_flags = SA_SIGINFO;
  faults = looked = 0;
  int busy = 0;
  bool done = false;
  std::atomic<bool> ends = false;
  std::thread other([&] {
    while (!ends) {
      if (looked == faults) {
        std::this_thread::yield();
        continue;
      }
      if (TryEnterLock(&offsetLock)) {
        LeaveLock(&offsetLock);
      } else {
        ++busy;
      }
      ++looked;
    }
  });
  ASSERT_EQ(sigaction(SIGSEGV, &action, &before), 0);
  static RequestScratch scratch;
  done = ServeRecords(block, blockSize, PathSource::Local, CountRequest(), &scratch);
  sigaction(SIGSEGV, &before, nullptr);
  ends = true;
  other.join();
  EXPECT_TRUE(done);
  EXPECT_EQ(faults, 1) << "the answer was to be written into the page";
  EXPECT_EQ(busy, 0) << "the page was waited for with the lock held";
  uint32_t answer = 0;
  std::memcpy(&answer, block + 16, sizeof answer);
  EXPECT_EQ(answer, content);
  munmap(block, blockSize);
  rows::Stop();
}

TEST(RequestPaths, ClientsOnOtherComputersGetTheNetworkPath) {
  rows::Start();
  hasShare = true;
  PrepareFolders("C:\\Games\\X-Plane 9\\");
  hasShare = false;
  const std::string network = "\\\\" + ComputerName() + "\\games\\X-Plane 9\\";
  static RequestScratch scratch;
  // In turns: each read finds what the one before has left.
  for (const auto& [source, folder] : {std::pair{PathSource::Local, std::string("C:\\Games\\X-Plane 9\\")},
                                       {PathSource::Network, network},
                                       {PathSource::Local, "C:\\Games\\X-Plane 9\\"}}) {
    uint32_t words[4 + 64 + 1] = {recordRead, 0x3E00, 256};
    auto* bytes = reinterpret_cast<uint8_t*>(words);
    EXPECT_TRUE(ServeRecords(bytes, sizeof words, source, CountRequest(), &scratch, nullptr));
    EXPECT_STREQ(reinterpret_cast<const char*>(words + 4), folder.c_str());
  }
  PrepareFolders("");
  rows::Stop();
}

}  // namespace
