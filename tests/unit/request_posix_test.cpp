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

// Serves the record of these words, whose data or answer stands at the beginning of a page of which the system
// refuses these accesses at first.
void ServeSlowly(std::initializer_list<uint32_t> words, uint32_t headerSize, int allowed) {
  const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  void* mapped = mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(mapped, MAP_FAILED);
  block = static_cast<uint8_t*>(mapped) + page;
  blockSize = page;
  uint8_t* const record = block - headerSize;
  std::memcpy(record, words.begin(), words.size() * sizeof *words.begin());
  ASSERT_EQ(mprotect(block, page, allowed), 0);

  struct sigaction action = {}, before = {};
  action.sa_sigaction = OnFault;
  action.sa_flags = SA_SIGINFO;
  faults = looked = 0;
  int busy = 0;
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
  const bool done = ServeRecords(record, headerSize + page, PathSource::Local, CountRequest(), &scratch);
  sigaction(SIGSEGV, &before, nullptr);
  ends = true;
  other.join();
  EXPECT_TRUE(done);
  EXPECT_EQ(faults, 1) << "the page was to be fetched";
  EXPECT_EQ(busy, 0) << "the page was waited for with the lock held";
}

TEST(RequestMemory, PageThatIsFetchedHoldsNobodyUp) {
  rows::Start();
  const uint32_t content = 0x50000008;
  CopyToMemory(0x66C0, sizeof content, &content);
  ServeSlowly({recordRead, 0x66C0, 4, 0, 0xEEEEEEEE, recordEnd}, readHeaderSize, PROT_READ);
  EXPECT_EQ(LoadFrom<uint32_t>(block), content);
  ServeSlowly({recordWrite, 0x66C0, 4, 0x12345678, recordEnd}, writeHeaderSize, PROT_NONE);
  {
    const LockScope lock(&offsetLock);
    EXPECT_EQ(Load<uint32_t>(0x66C0), 0x12345678U);
  }
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
