// Requests to the window server, as any client program makes them: the records lie in a shared block whose
// name is a global atom, and a registered message hands the atom to the server's hidden window.
#include "transport.h"

#if defined(_WIN32)

#include <windows.h>

#include <algorithm>
#include <chrono>

#include "console.h"
#include "request_block.h"

namespace ctl {

namespace {

using Clock = std::chrono::steady_clock;

constexpr char serverWindow[] = "KORLMAIN";  // class and window name
constexpr char callMessage[] = "KELDOMAR:IPC";
constexpr size_t pageSize = 4096;
constexpr size_t largestBlock = 256 * 1024;
constexpr int attemptMs = 1000;  // of a read, so that Ctrl-C is heard while the server is busy

struct SharedBlock {
  HANDLE mapping;
  uint8_t* view;
  size_t size;
  ATOM atom;
};

HWND window;
UINT message;
int requestTimeoutMs;
uint32_t blockCounter;
// The last one is in use. The others belong to requests that timed out: the server may still read and
// write them, so they stay until the end.
std::vector<SharedBlock> blocks;
bool lastAbandoned;

void FreeBlock(const SharedBlock& block) {
  if (block.atom != 0) GlobalDeleteAtom(block.atom);
  if (block.view != nullptr) UnmapViewOfFile(block.view);
  if (block.mapping != nullptr) CloseHandle(block.mapping);
}

// A mapping under a name that nobody else has. Returns its handle or null.
HANDLE MakeMapping(size_t size, std::string* name) {
  for (int attempt = 0; attempt < 100; ++attempt) {
    *name = "OFFSETCTL:" + std::to_string(GetCurrentProcessId()) + ":" + std::to_string(++blockCounter);
    HANDLE mapping = CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                        static_cast<DWORD>(size), name->c_str());
    if (mapping == nullptr || GetLastError() != ERROR_ALREADY_EXISTS) return mapping;
    CloseHandle(mapping);
  }
  return nullptr;
}

// Makes `blocks.back()` a block of at least that size that no earlier request can touch.
bool PrepareBlock(size_t size, std::string* error) {
  size = std::min((size + pageSize - 1) / pageSize * pageSize, largestBlock);
  if (!blocks.empty() && !lastAbandoned) {
    if (blocks.back().size >= size) return true;
    FreeBlock(blocks.back());
    blocks.pop_back();
  }
  SharedBlock block = {};
  std::string name;
  block.size = size;
  block.mapping = MakeMapping(size, &name);
  if (block.mapping != nullptr) {
    block.view = static_cast<uint8_t*>(MapViewOfFile(block.mapping, FILE_MAP_WRITE, 0, 0, 0));
  }
  if (block.view != nullptr) block.atom = GlobalAddAtomA(name.c_str());
  if (block.atom == 0) {
    *error = "no shared memory for a request (system error " + std::to_string(GetLastError()) + ")";
    FreeBlock(block);
    return false;
  }
  blocks.push_back(block);
  lastAbandoned = false;
  return true;
}

int RemainingMs(Clock::time_point deadline) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
  return static_cast<int>(std::max<long long>(left, 0));
}

enum class Answer { Served, Refused, TimedOut, Gone };

Answer SendBlock(int timeoutMs) {
  DWORD_PTR result = 0;
  SetLastError(0);
  const LRESULT sent = SendMessageTimeoutA(window, message, blocks.back().atom, 0, SMTO_BLOCK,
                                           static_cast<UINT>(std::max(timeoutMs, 1)), &result);
  if (sent != 0) return result == 1 ? Answer::Served : Answer::Refused;
  const DWORD reason = GetLastError();
  if (reason != 0 && reason != ERROR_TIMEOUT) return Answer::Gone;
  lastAbandoned = true;
  return Answer::TimedOut;
}

bool Explain(Answer answer, std::string* error) {
  switch (answer) {
    case Answer::Refused:
      *error = "the server refused the request";
      break;
    case Answer::Gone:
      *error = "the server has gone";
      break;
    default:
      *error = "no answer from the server within " + std::to_string(requestTimeoutMs) + " ms";
      break;
  }
  return false;
}

// Sends the transfers in as few requests as the block allows. Reads are repeated until the deadline;
// a write is sent once, because the server may still apply one whose answer did not come in time.
bool Transact(RecordKind kind, const std::vector<Transfer>& transfers, std::string* error) {
  const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(requestTimeoutMs);
  for (size_t first = 0; first < transfers.size();) {
    if (!PrepareBlock(BlockSize(kind, transfers, first), error)) return false;
    const SharedBlock& block = blocks.back();
    const size_t last = PackRecords(kind, transfers, first, block.view, block.size);
    const int remaining = RemainingMs(deadline);
    const Answer answer = SendBlock(kind == RecordKind::Read ? std::min(remaining, attemptMs) : remaining);
    if (answer == Answer::TimedOut && kind == RecordKind::Read && RemainingMs(deadline) > 0 &&
        !StopRequested()) {
      continue;
    }
    if (answer != Answer::Served) return Explain(answer, error);
    if (kind == RecordKind::Read) UnpackReads(transfers, first, last, block.view);
    first = last;
  }
  return true;
}

bool OpenLocal(int timeoutMs, std::string* error) {
  requestTimeoutMs = timeoutMs;
  window = FindWindowA(serverWindow, serverWindow);
  if (window == nullptr) {
    *error = "no server: no window KORLMAIN on this computer; is the simulator running with TAVRIX?";
    return false;
  }
  message = RegisterWindowMessageA(callMessage);
  if (message == 0) {
    *error = "the system registers no message (error " + std::to_string(GetLastError()) + ")";
    return false;
  }
  return true;
}

bool ReadLocal(const std::vector<Transfer>& transfers, std::string* error) {
  return Transact(RecordKind::Read, transfers, error);
}

bool WriteLocal(const std::vector<Transfer>& transfers, std::string* error) {
  return Transact(RecordKind::Write, transfers, error);
}

void CloseLocal() {
  for (const SharedBlock& block : blocks) FreeBlock(block);
  blocks.clear();
  lastAbandoned = false;
}

constexpr Transport localTransport = {
    "local window server", OpenLocal, ReadLocal, WriteLocal, nullptr, nullptr, CloseLocal};

}  // namespace

const Transport* LocalTransport() { return &localTransport; }

}  // namespace ctl

#else

namespace ctl {

const Transport* LocalTransport() { return nullptr; }

}  // namespace ctl

#endif
