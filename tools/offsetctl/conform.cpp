#include "conform.h"

#include <algorithm>
#include <cstdio>

#include "commands.h"
#include "console.h"
#include "numbers.h"

namespace ctl {

namespace {

constexpr char defaultAddress[] = "127.0.0.1";
constexpr int resolveMs = 2000;

void TakeLine(Bench* bench, const std::string& line) {
  const size_t blank = line.find(' ');
  uint32_t offset = 0, value = 0;
  const bool isValue = blank != std::string::npos && ParseUnsigned(line.substr(0, blank), 0x1FFFF, &offset) &&
                       ParseUnsigned(line.substr(blank + 1), UINT16_MAX, &value) &&
                       (offset == watchedLow || offset == watchedHigh);
  if (isValue) {
    bench->seen.push_back({offset, static_cast<uint16_t>(value)});
  } else if (bench->strange.empty()) {
    bench->strange = line;
  }
}

std::string WatchedText() { return HexText(watchedLow, 4) + " " + HexText(watchedHigh, 4); }

// Runs one situation with a server and a client of its own. Returns "" or what the client did wrong; `error`
// when it could not be tried.
std::string Try(const Situation& situation, const Options& options, uint32_t ip, std::string* error) {
  Bench bench;
  SetWord(&bench.server, watchedLow, firstLow);
  SetWord(&bench.server, watchedHigh, firstHigh);
  bench.server.told = bench.server.memory;
  if (!OpenServer(ip, &bench.server, error)) return "";
  if (situation.prepare != nullptr) situation.prepare(&bench);
  Serve(&bench.server, 0);
  const Environment environment = {{"TAVRIX_HOST", IpText(ip)}, {"TAVRIX_WATCH", WatchedText()}};
  std::string wrong;
  if (StartProcess(options.client, environment, &bench.client, error)) wrong = situation.run(&bench);
  if (!wrong.empty() && !bench.strange.empty()) wrong += "; it printed \"" + bench.strange + "\"";
  EndProcess(&bench.client);
  CloseServer(&bench.server);
  return wrong;
}

const Situation* FindSituation(const std::string& name) {
  for (const Situation& situation : Situations()) {
    if (name == situation.name) return &situation;
  }
  return nullptr;
}

std::string AllNames() {
  std::string names;
  for (const Situation& situation : Situations())
    names += std::string(names.empty() ? "" : ", ") + situation.name;
  return names;
}

// Tries them one after the other. Returns the exit status.
int TryAll(const std::vector<const Situation*>& chosen, const Options& options, uint32_t ip) {
  size_t passed = 0;
  std::string error;
  for (const Situation* situation : chosen) {
    const std::string wrong = Try(*situation, options, ip, &error);
    if (StopRequested()) return Report(exitNoAnswer, "stopped");
    if (!error.empty()) return Report(exitNoAnswer, error);
    passed += wrong.empty();
    std::printf("%-6s  %-9s  %s\n", wrong.empty() ? "ok" : "FAILED", situation->name, situation->about);
    if (!wrong.empty()) {
      std::printf("                   %s\n                   a good client: %s\n", wrong.c_str(),
                  situation->rule);
    }
    std::fflush(stdout);
  }
  std::printf("%zu of %zu passed\n", passed, chosen.size());
  return passed == chosen.size() ? exitDone : exitNoAnswer;
}

}  // namespace

void Run(Bench* bench, int milliseconds) {
  constexpr int sliceMs = 10;
  using Clock = std::chrono::steady_clock;
  const Clock::time_point end = Clock::now() + std::chrono::milliseconds(milliseconds);
  for (auto now = Clock::now(); now < end && !StopRequested(); now = Clock::now()) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - now).count();
    Serve(&bench->server, std::min(static_cast<int>(left) + 1, sliceMs));
    // First whether it has ended: what it printed before is there then.
    bench->ended = bench->ended || HasEnded(&bench->client, &bench->status);
    for (const std::string& line : TakeLines(&bench->client)) TakeLine(bench, line);
  }
}

int RunConform(const Options& options) {
  std::vector<const Situation*> chosen;
  for (const std::string& name : options.items) {
    chosen.push_back(FindSituation(name));
    if (chosen.back() == nullptr) {
      return Report(exitUsage, "no situation \"" + name + "\": there are " + AllNames());
    }
  }
  if (chosen.empty()) {
    for (const Situation& situation : Situations()) chosen.push_back(&situation);
  }
  WatchForStop();
  std::string error;
  uint32_t ip = 0;
  if (!StartSockets(&error)) return Report(exitNoAnswer, error);
  const std::string address = options.listen.empty() ? defaultAddress : options.listen;
  int status = exitNoAnswer;
  if (ResolveHost(address, resolveMs, &ip, &error)) {
    status = TryAll(chosen, options, ip);
  } else {
    Report(status, error);
  }
  StopSockets();
  return status;
}

}  // namespace ctl
