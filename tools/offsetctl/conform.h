// offsetctl conform: a client program against a server that makes trouble. Main thread.
#pragma once
#include <chrono>
#include <span>
#include <string>
#include <vector>

#include "console.h"
#include "process.h"
#include "server.h"

namespace ctl {

// The two words of 16 bits that the client watches, one in each half of the memory.
constexpr uint32_t watchedLow = 0x66C0, watchedHigh = 0x126C0;
constexpr uint16_t firstLow = 1000, firstHigh = 2000;  // what stands there at first

// A line that the client has printed: it has seen this value.
struct Seen {
  uint32_t offset;
  uint16_t value;
};

struct Bench {
  Server server;
  Process client;
  std::vector<Seen> seen;  // in order
  std::string strange;     // the first line that is no OFFSET VALUE
  bool ended = false;      // the client has
  int status = 0;          // and how
};

struct Situation {
  const char* name;
  const char* about;        // what happens
  const char* rule;         // what a good client does
  void (*prepare)(Bench*);  // before the client starts; may be null
  // Returns "" when the client has done well, else what it did wrong.
  std::string (*run)(Bench*);
};

std::span<const Situation> Situations();

// Serves and listens to the client for that long, or until Ctrl-C.
void Run(Bench* bench, int milliseconds);
// The same until the condition holds. Returns it.
template <typename Condition>
bool RunUntil(Bench* bench, double seconds, Condition condition) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point end =
      Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
  while (!condition()) {
    if (Clock::now() >= end || StopRequested()) return false;
    Run(bench, 10);
  }
  return true;
}

}  // namespace ctl
