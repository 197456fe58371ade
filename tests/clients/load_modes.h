// The modes of rude_client_win32 that run for a while: random blocks, a busy client, a block that changes
// while it is served, dying clients, floods of messages. Each prints its line and returns the exit status.
#pragma once
#include <tlhelp32.h>

#include <algorithm>
#include <random>

#include "client_block.h"

// Offsets from 0x18000 on have no meaning to the plug-in: 63 slots of 512 bytes for busy clients, and a word
// for single checks behind them.
constexpr uint32_t slotBase = 0x18000;
constexpr uint32_t slotSize = 512;
constexpr uint32_t slotCount = 63;
constexpr uint32_t scratchOffset = 0x1FF00;

inline int64_t CounterTicks() {
  LARGE_INTEGER ticks;
  QueryPerformanceCounter(&ticks);
  return ticks.QuadPart;
}

inline double Microseconds(int64_t ticks) {
  LARGE_INTEGER frequency;
  QueryPerformanceFrequency(&frequency);
  return static_cast<double>(ticks) * 1e6 / static_cast<double>(frequency.QuadPart);
}

inline void SpinMicroseconds(double duration) {
  const int64_t start = CounterTicks();
  while (Microseconds(CounterTicks() - start) < duration) {
  }
}

// Fills the block with 1,000-byte reads, so that serving it takes a while.
inline void FillWithReads(ClientBlock* block) {
  RecordWriter records = {block->view, 0};
  while (records.at + 16 + 1000 + 4 <= block->size) records.Read(0x100, 1000);
  records.End();
}

// --- A request on a thread of its own -------------------------------------------------------------------
struct AsyncCall {
  const Server* server;
  ATOM atom;
  int answer;
};

inline DWORD WINAPI AsyncProcedure(void* argument) {
  AsyncCall* call = static_cast<AsyncCall*>(argument);
  call->answer = Call(*call->server, call->atom);
  return 0;
}

inline HANDLE StartCall(AsyncCall* call) { return CreateThread(nullptr, 0, AsyncProcedure, call, 0, nullptr); }

// --- This program as another process --------------------------------------------------------------------
// Starts it with the given words. Returns its handle or null.
inline HANDLE StartSelf(const std::string& words) {
  char path[MAX_PATH] = "";
  GetModuleFileNameA(nullptr, path, sizeof path);
  std::string line = std::string("\"") + path + "\" " + words;
  STARTUPINFOA startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process = {};
  if (!CreateProcessA(path, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process)) {
    return nullptr;
  }
  CloseHandle(process.hThread);
  return process.hProcess;
}

// Waits for its end; one that does not end in time is ended. Returns true when it exited with 0.
inline bool FinishProcess(HANDLE process, DWORD timeoutMs) {
  DWORD status = 1;
  if (WaitForSingleObject(process, timeoutMs) != WAIT_OBJECT_0) {
    TerminateProcess(process, 1);
  } else {
    GetExitCodeProcess(process, &status);
  }
  CloseHandle(process);
  return status == 0;
}

inline bool RunSelf(const std::string& words, DWORD timeoutMs) {
  HANDLE process = StartSelf(words);
  return process != nullptr && FinishProcess(process, timeoutMs);
}

// Ends this process so many microseconds after its request was sent.
inline int DieDuringRequest(const Server& server, uint32_t delay) {
  ClientBlock block;
  if (!MakeBlock(256 * 1024, &block)) return 1;
  FillWithReads(&block);
  AsyncCall call = {&server, block.atom, noAnswer};
  if (StartCall(&call) == nullptr) return 1;
  SpinMicroseconds(delay);
  TerminateProcess(GetCurrentProcess(), 0);
  return 1;
}

// --- Random blocks --------------------------------------------------------------------------------------
// What serving this block must give: the answer, and in `image` its bytes afterwards, with `known` 0 where a
// read puts its data.
struct Forecast {
  int answer;
  std::vector<uint8_t> image;
  std::vector<uint8_t> known;
};

inline Forecast Foretell(const ClientBlock& block) {
  Forecast forecast = {0, std::vector<uint8_t>(block.view, block.view + block.size),
                       std::vector<uint8_t>(block.size, 1)};
  uint32_t at = 0;
  while (block.size - at >= 4) {
    const uint32_t type = LoadFrom<uint32_t>(&forecast.image[at]);
    if (type == 0) {
      forecast.answer = 1;
      break;
    }
    if (type > 2) {
      std::memset(&forecast.image[at], 0, 4);
      break;
    }
    const uint32_t header = type == 1 ? 16 : 12;
    if (block.size - at < header) break;
    const uint64_t offset = LoadFrom<uint32_t>(&forecast.image[at + 4]);
    const uint32_t size = LoadFrom<uint32_t>(&forecast.image[at + 8]);
    if (offset + size > 0x20000 || size > block.size - at - header) break;
    at += header;
    if (type == 1) std::memset(forecast.known.data() + at, 0, size);
    at += size;
  }
  return forecast;
}

// One block: plain noise, or records with fields that are right, just wrong, or anything.
inline void FillAtRandom(std::mt19937* random, ClientBlock* block) {
  const auto pick = [random](uint32_t limit) { return static_cast<uint32_t>((*random)() % limit); };
  for (uint32_t i = 0; i < block->size; ++i) block->view[i] = static_cast<uint8_t>((*random)());
  if (pick(10) == 0) return;
  const uint32_t offsets[] = {0, 0x3E00, 0x1FFFC, 0x1FFFF, 0x1FFFE, 0x20001, 0xFFFFFFFF, 0x80000000};
  const uint32_t sizes[] = {0, 1, 2, 4, 8, 12, 255, 0x20000, 0x20001, 0xFFFFFFFC};
  for (uint32_t at = 0; at + 20 < block->size;) {
    const uint32_t kind = pick(40);
    const uint32_t type = kind == 0 ? 0 : kind == 1 ? 3 + pick(1000) : 1 + kind % 2;
    const uint32_t offset = pick(12) == 0 ? offsets[pick(8)] : pick(0x20000);
    const uint32_t size = pick(12) == 0 ? sizes[pick(10)] : pick(300);
    StoreTo(block->view + at, type);
    StoreTo(block->view + at + 4, offset);
    StoreTo(block->view + at + 8, size);
    if (type == 0 || size > block->size) break;
    at += (type == 1 ? 16 : 12) + size;
  }
}

// Every block is answered as its content says, and nothing else of it changes.
inline int RunGarbage(const Server& server, uint32_t seed, uint32_t requests) {
  std::mt19937 random(seed);
  ClientBlock block;
  if (!MakeBlock(4096, &block)) return 1;
  uint32_t accepted = 0;
  for (uint32_t request = 0; request < requests; ++request) {
    FillAtRandom(&random, &block);
    const Forecast forecast = Foretell(block);
    const int answer = Call(server, block.atom);
    const char* problem = answer != forecast.answer ? "wrong answer" : nullptr;
    for (uint32_t i = 0; i < block.size && problem == nullptr; ++i) {
      if (forecast.known[i] && forecast.image[i] != block.view[i])
        problem = "bytes changed that are not its own";
    }
    if (problem != nullptr) {
      std::printf("garbage: FAILED: %s to request %u of seed %u (answer %d)\n", problem, request, seed, answer);
      FreeBlock(&block);
      return 1;
    }
    accepted += static_cast<uint32_t>(answer);
  }
  FreeBlock(&block);
  std::printf("garbage: ok, %u requests, %u of them accepted\n", requests, accepted);
  return 0;
}

// --- A busy client --------------------------------------------------------------------------------------
// Writes its slot's words and reads each back within the same request.
inline int RunHammer(const Server& server, uint32_t seconds, uint32_t records, uint32_t slot) {
  const uint32_t pairs = std::clamp(records / 2, 1u, slotSize / 4);
  const uint32_t base = slotBase + slot % slotCount * slotSize;
  ClientBlock block;
  if (!MakeBlock(pairs * (12 + 4 + 16 + 4) + 4, &block)) return 1;
  uint32_t requests = 0;
  uint32_t errors = 0;
  std::vector<uint8_t*> echoes(pairs);
  const DWORD start = GetTickCount();
  while (GetTickCount() - start < seconds * 1000) {
    RecordWriter writer = {block.view, 0};
    for (uint32_t i = 0; i < pairs; ++i) {
      const uint32_t value = (requests + 1) * 2654435761u + i;
      writer.Write(base + 4 * i, 4, &value);
      echoes[i] = writer.Read(base + 4 * i, 4);
      std::memset(echoes[i], 0, 4);
    }
    writer.End();
    uint32_t wrong = Call(server, block.atom) != 1;
    for (uint32_t i = 0; i < pairs; ++i)
      wrong |= LoadFrom<uint32_t>(echoes[i]) != (requests + 1) * 2654435761u + i;
    errors += wrong;
    ++requests;
  }
  FreeBlock(&block);
  std::printf("hammer: %s, %u requests, %u errors\n", errors == 0 && requests > 0 ? "ok" : "FAILED", requests,
              errors);
  return errors == 0 && requests > 0 ? 0 : 1;
}

// --- A block that changes while it is served ------------------------------------------------------------
struct Changer {
  volatile LONG stop;
  uint8_t* sizeFields[2];
};

inline DWORD WINAPI ChangeSizes(void* argument) {
  Changer* changer = static_cast<Changer*>(argument);
  const uint32_t sizes[] = {8, 0xFFFFFFF0, 4096, 0x20000, 60000, 0};
  for (uint32_t i = 0; !changer->stop; ++i) {
    for (uint8_t* field : changer->sizeFields) {
      *reinterpret_cast<volatile uint32_t*>(field) = sizes[i % 6];
    }
  }
  return 0;
}

// Answers may be 1 or 0, but every request gets one.
inline int RunChangeWhileServed(const Server& server, uint32_t seconds) {
  ClientBlock block;
  if (!MakeBlock(64 * 1024, &block)) return 1;
  Changer changer = {};
  uint32_t answers[2] = {};
  int unanswered = 0;
  const auto build = [&] {
    std::memset(block.view, 0, block.size);
    RecordWriter records = {block.view, 0};
    for (int i = 0; i < 100; ++i) records.Read(0x100, 4);
    changer.sizeFields[0] = block.view + records.at + 8;
    records.Read(0x100, 8);
    changer.sizeFields[1] = block.view + records.at + 8;
    const uint64_t value = 0;
    records.Write(slotBase, 8, &value);
    records.End();
  };
  build();
  HANDLE thread = CreateThread(nullptr, 0, ChangeSizes, &changer, 0, nullptr);
  const DWORD start = GetTickCount();
  while (GetTickCount() - start < seconds * 1000 && !unanswered) {
    const int answer = Call(server, block.atom);
    unanswered = answer != 0 && answer != 1;
    if (!unanswered) ++answers[answer];
    build();
  }
  changer.stop = 1;
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
  FreeBlock(&block);
  std::printf("change-while-served: %s, answered 1: %u times, 0: %u times\n", unanswered ? "FAILED" : "ok",
              answers[1], answers[0]);
  return unanswered;
}

// --- Floods of messages ---------------------------------------------------------------------------------
// How the messages travel: put into the window's queue, put into the queue of every thread of the simulator
// that has one, or handed over like requests (the system gives these to the window before any other message).
enum class FloodWay { Posted, PostedToThreads, Sent };

struct Flood {
  FloodWay way;
  HWND window;
  const std::vector<DWORD>* threads;
  DWORD end;                // tick count
  volatile LONG delivered;  // counts those that the system took
};

inline std::vector<DWORD> ThreadsOfWindowsProcess(HWND window) {
  DWORD process = 0;
  std::vector<DWORD> threads;
  GetWindowThreadProcessId(window, &process);
  HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  THREADENTRY32 entry = {};
  entry.dwSize = sizeof entry;
  for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry)) {
    if (entry.th32OwnerProcessID == process) threads.push_back(entry.th32ThreadID);
  }
  CloseHandle(snapshot);
  return threads;
}

inline DWORD WINAPI FloodProcedure(void* argument) {
  Flood* flood = static_cast<Flood*>(argument);
  constexpr UINT message = WM_APP + 77;
  while (static_cast<LONG>(flood->end - GetTickCount()) > 0) {
    LONG taken = 0;
    if (flood->way == FloodWay::Sent) taken = SendNotifyMessageA(flood->window, message, 0, 0) != 0;
    if (flood->way == FloodWay::Posted) taken = PostMessageA(flood->window, message, 0, 0) != 0;
    if (flood->way == FloodWay::PostedToThreads) {
      for (const DWORD thread : *flood->threads) taken += PostThreadMessageA(thread, message, 0, 0) != 0;
    }
    InterlockedExchangeAdd(&flood->delivered, taken);
    if (taken == 0) Sleep(1);  // the window is gone, or the queue is full
  }
  return 0;
}

// Says "flooding" when messages flow, and at the end how many the system took.
inline int RunFlood(const Server& server, FloodWay way, uint32_t seconds, uint32_t senders) {
  const std::vector<DWORD> threads = ThreadsOfWindowsProcess(server.window);
  Flood flood = {way, server.window, &threads, GetTickCount() + seconds * 1000, 0};
  std::vector<HANDLE> handles;
  for (uint32_t i = 0; i < std::clamp(senders, 1u, 16u); ++i) {
    handles.push_back(CreateThread(nullptr, 0, FloodProcedure, &flood, 0, nullptr));
  }
  while (flood.delivered < 1000 && static_cast<LONG>(flood.end - GetTickCount()) > 0) Sleep(1);
  std::printf("flooding\n");
  std::fflush(stdout);
  for (HANDLE handle : handles) {
    WaitForSingleObject(handle, INFINITE);
    CloseHandle(handle);
  }
  std::printf("flood: %s, %ld messages\n", flood.delivered >= 1000 ? "ok" : "FAILED", flood.delivered);
  return flood.delivered >= 1000 ? 0 : 1;
}

// One request with a block of so many MiB, filled with reads of a byte each, and three short ones that wait
// behind it. Says "sent" when all are on their way, and at the end what was answered.
inline int RunLongRequest(const Server& server, uint32_t megabytes) {
  constexpr size_t count = 4;
  ClientBlock blocks[count];
  AsyncCall calls[count];
  HANDLE threads[count];
  for (size_t i = 0; i < count; ++i) {
    if (!MakeBlock(i == 0 ? std::clamp(megabytes, 1u, 1024u) << 20 : 4096, &blocks[i])) return 1;
    RecordWriter records = {blocks[i].view, 0};
    while (records.at + 16 + 1 + 4 <= blocks[i].size) records.Read(0x100, 1);
    records.End();
    calls[i] = {&server, blocks[i].atom, noAnswer};
  }
  for (size_t i = 0; i < count; ++i) {
    threads[i] = StartCall(&calls[i]);
    Sleep(50);
  }
  std::printf("sent\n");
  std::fflush(stdout);
  for (HANDLE thread : threads) {
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
  }
  std::printf("long-request: answer %d, to those that waited %d %d %d\n", calls[0].answer, calls[1].answer,
              calls[2].answer, calls[3].answer);
  return 0;
}
