// Small things that many tests need.
#pragma once
#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <thread>

#include "platform/lock.h"
#include "platform/thread.h"

namespace tools {

inline std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}
inline void WriteFile(const std::filesystem::path& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

inline int CountText(const std::string& text, const std::string& part) {
  int count = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

// Threads of this program, with the one that a sanitizer makes for itself when the first is started.
inline int CountThreads() {
  std::thread([] {}).join();
  return CountProcessThreads();
}

// Calls `condition` until it is true; false when it never was.
constexpr int patienceMs = 20000;  // a wait that takes longer has hung
inline bool WaitUntil(const std::function<bool()>& condition, int timeoutMs = patienceMs) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

// Another thread that holds a lock from Take to LetGo.
class LockHolder {
 public:
  void Take(Lock* lock) {
    stage = 0;
    thread = std::thread([this, lock] {
      const LockScope scope(lock);
      stage = 1;
      while (stage != 2) std::this_thread::yield();
    });
    while (stage != 1) std::this_thread::yield();
  }
  void LetGo() {
    stage = 2;
    if (thread.joinable()) thread.join();
  }
  ~LockHolder() { LetGo(); }

 private:
  std::atomic<int> stage = 0;
  std::thread thread;
};

}  // namespace tools
