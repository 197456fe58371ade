// The modes of rude_client_win32 that run for a while: random blocks, a busy client, a block that changes
// while it is served, dying clients, floods of messages. Each prints its line and returns the exit status.
#pragma once
#include <tlhelp32.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <random>
#include <thread>

#include "client_block.h"

// Offsets from 0x18000 on have no meaning to the plug-in: 63 slots of 512 bytes for busy clients, and a word
// for single checks behind them.
constexpr uint32_t slotBase = 0x18000;
constexpr uint32_t slotSize = 512;
constexpr uint32_t slotCount = 63;
constexpr uint32_t scratchOffset = 0x1FF00;

using Clock = std::chrono::steady_clock;

inline void SpinMicroseconds(int64_t duration) {
  const Clock::time_point end = Clock::now() + std::chrono::microseconds(duration);
  while (Clock::now() < end) {
  }
}

// Fills the block with 1,000-byte reads, so that serving it takes a while.
inline void FillWithReads(ClientBlock* block) {
  RecordWriter records = {block->view, 0};
  while (records.at + 16 + 1000 + 4 <= block->size) records.Read(0x100, 1000);
  records.End();
}

// A request on a thread of its own.
inline std::future<int> StartCall(const Server& server, ATOM atom) {
  return std::async(std::launch::async, [=] { return Call(server, atom); });
}

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
  const std::future<int> answer = StartCall(server, block.atom);
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
  for (const DWORD start = GetTickCount(); GetTickCount() - start < seconds * 1000; ++requests) {
    const uint32_t first = (requests + 1) * 2654435761u;
    RecordWriter writer = {block.view, 0};
    for (uint32_t i = 0; i < pairs; ++i) {
      const uint32_t value = first + i;
      writer.Write(base + 4 * i, 4, &value);
      echoes[i] = writer.Read(base + 4 * i, 4);
      std::memset(echoes[i], 0, 4);
    }
    writer.End();
    uint32_t wrong = Call(server, block.atom) != 1;
    for (uint32_t i = 0; i < pairs; ++i) wrong |= LoadFrom<uint32_t>(echoes[i]) != first + i;
    errors += wrong;
  }
  FreeBlock(&block);
  const bool fine = errors == 0 && requests > 0;
  std::printf("hammer: %s, %u requests, %u errors\n", fine ? "ok" : "FAILED", requests, errors);
  return fine ? 0 : 1;
}

// --- A block that changes while it is served ------------------------------------------------------------
// Answers may be 1 or 0, but every request gets one.
inline int RunChangeWhileServed(const Server& server, uint32_t seconds) {
  ClientBlock block;
  if (!MakeBlock(64 * 1024, &block)) return 1;
  std::memset(block.view, 0, block.size);
  uint8_t* sizeFields[2];
  const auto build = [&] {
    RecordWriter records = {block.view, 0};
    for (int i = 0; i < 100; ++i) records.Read(0x100, 4);
    sizeFields[0] = block.view + records.at + 8;
    records.Read(0x100, 8);
    sizeFields[1] = block.view + records.at + 8;
    const uint64_t value = 0;
    records.Write(slotBase, 8, &value);
    records.End();
  };
  build();
  std::atomic<bool> stop = false;
  std::thread changer([&stop, sizeFields] {
    const uint32_t sizes[] = {8, 0xFFFFFFF0, 4096, 0x20000, 60000, 0};
    for (uint32_t i = 0; !stop; ++i) {
      for (uint8_t* field : sizeFields) *reinterpret_cast<volatile uint32_t*>(field) = sizes[i % 6];
    }
  });
  uint32_t answers[2] = {};
  int unanswered = 0;
  for (const DWORD start = GetTickCount(); GetTickCount() - start < seconds * 1000 && !unanswered; build()) {
    const int answer = Call(server, block.atom);
    unanswered = answer != 0 && answer != 1;
    if (!unanswered) ++answers[answer];
    std::memset(block.view, 0, block.size);
  }
  stop = true;
  changer.join();
  FreeBlock(&block);
  std::printf("change-while-served: %s, answered 1: %u times, 0: %u times\n", unanswered ? "FAILED" : "ok",
              answers[1], answers[0]);
  return unanswered;
}

// --- Floods of messages ---------------------------------------------------------------------------------
// How the messages travel: put into the window's queue, put into the queue of every thread of the simulator
// that has one, or handed over like requests (the system gives these to the window before any other message).
enum class FloodWay { Posted, PostedToThreads, Sent };

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

// Says "flooding" when messages flow, and at the end how many the system took.
inline int RunFlood(const Server& server, FloodWay way, uint32_t seconds, uint32_t senders) {
  const std::vector<DWORD> threads = ThreadsOfWindowsProcess(server.window);
  const DWORD end = GetTickCount() + seconds * 1000;
  const auto time = [end] { return static_cast<LONG>(end - GetTickCount()) > 0; };
  std::atomic<long> delivered = 0;  // those that the system took
  const auto flood = [&] {
    constexpr UINT message = WM_APP + 77;
    while (time()) {
      long taken = 0;
      if (way == FloodWay::Sent) taken = SendNotifyMessageA(server.window, message, 0, 0) != 0;
      if (way == FloodWay::Posted) taken = PostMessageA(server.window, message, 0, 0) != 0;
      if (way == FloodWay::PostedToThreads) {
        for (const DWORD thread : threads) taken += PostThreadMessageA(thread, message, 0, 0) != 0;
      }
      delivered += taken;
      if (taken == 0) Sleep(1);  // the window is gone, or the queue is full
    }
  };
  std::vector<std::thread> floods;
  for (uint32_t i = 0; i < std::clamp(senders, 1u, 16u); ++i) floods.emplace_back(flood);
  while (delivered < 1000 && time()) Sleep(1);
  std::printf("flooding\n");
  std::fflush(stdout);
  for (std::thread& thread : floods) thread.join();
  std::printf("flood: %s, %ld messages\n", delivered >= 1000 ? "ok" : "FAILED", delivered.load());
  return delivered >= 1000 ? 0 : 1;
}

// One request with a block of so many MiB, filled with reads of a byte each, and three short ones that wait
// behind it. Says "sent" when all are on their way, and at the end what was answered.
inline int RunLongRequest(const Server& server, uint32_t megabytes) {
  std::vector<ClientBlock> blocks;
  std::vector<std::future<int>> calls;
  for (const uint32_t size : {std::clamp(megabytes, 1u, 1024u) << 20, 4096u, 4096u, 4096u}) {
    ClientBlock block;
    if (!MakeBlock(size, &block)) return 1;
    RecordWriter records = {block.view, 0};
    while (records.at + 16 + 1 + 4 <= block.size) records.Read(0x100, 1);
    records.End();
    blocks.push_back(block);
  }
  for (const ClientBlock& block : blocks) {
    calls.push_back(StartCall(server, block.atom));
    Sleep(50);
  }
  std::printf("sent\n");
  std::fflush(stdout);
  int answers[4];
  for (size_t i = 0; i < 4; ++i) answers[i] = calls[i].get();
  std::printf("long-request: answer %d, to those that waited %d %d %d\n", answers[0], answers[1], answers[2],
              answers[3]);
  return 0;
}
