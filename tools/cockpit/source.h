// Where the web cockpit's values come from: a server, or a recording. A thread of its own owns it, connects
// again each second, and hands over what has changed.
#pragma once
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "cockpit/mirror.h"

namespace ctl {

struct SourceSettings {
  bool local = false;                           // the window server
  bool find = false;                            // the first network server that announces itself
  std::string host;                             // else this one
  std::string replay;                           // a recording that is shown from the beginning on; "" for none
  std::string recordings;                       // folder
  std::chrono::steady_clock::time_point start;  // of the program: all times count from it
  // Takes a batch, on the source's thread; the first one comes within StartSource. The next one comes after
  // BatchTaken only; what changes meanwhile is merged.
  std::function<void(Batch batch)> deliver;
};

struct Source {
  SourceSettings settings;
  std::thread thread;
  std::mutex lock;
  std::condition_variable news;
  std::vector<SourceOrder> orders;  // under `lock`
  bool isEnding = false;            // under `lock`
  std::atomic<bool> isTaken = true;
};

// Returns true, or false with a line in `error` when the recording cannot be shown.
bool StartSource(const SourceSettings& settings, Source* source, std::string* error);
// Any thread; the result comes in a batch.
void GiveOrder(const SourceOrder& order, Source* source);
void BatchTaken(Source* source);
// Ends the thread, within a second; a recording is closed as it should be.
void StopSource(Source* source);

}  // namespace ctl
