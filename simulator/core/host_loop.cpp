// The host program: options, the reader of standard input, frames in real time.
//
// Standard input is read by a thread of its own, because a pipe cannot be waited for together with the
// next frame on every system. It does nothing but hand over lines.
#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <deque>
#include <mutex>
#include <thread>

#include "core/core.h"

namespace sim {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kSignalCheck{20};              // how late a stop signal may be noticed while waiting
constexpr std::chrono::duration<double> kLate{0.25};  // further behind than this, frames are left out

// Lines from standard input. Never destroyed: the reader may be blocked in it when the program ends.
struct Input {
  std::mutex lock;
  std::condition_variable arrived;
  std::deque<std::string> lines;
  bool ended = false;
};
Input* input = nullptr;

Clock::time_point runBegan, lastFrame, nextFrame;

Clock::duration Seconds(double seconds) {
  return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

void ReadLines() {
  std::string line;
  char buffer[4096];
  for (;;) {
    int got = ReadStandardInput(buffer, sizeof buffer);
    std::lock_guard<std::mutex> lock(input->lock);
    for (int i = 0; i < got; ++i) {
      if (buffer[i] != '\n') {
        line += buffer[i];
        continue;
      }
      input->lines.push_back(line);
      line.clear();
    }
    if (got == 0) {
      if (!line.empty()) input->lines.push_back(line);
      input->ended = true;
    }
    input->arrived.notify_one();
    if (got == 0) return;
  }
}

// Takes a line that has arrived, or waits for one until `until`.
bool TakeLine(Clock::time_point until, std::string* line, bool* ended) {
  std::unique_lock<std::mutex> lock(input->lock);
  bool wait = !input->ended || running.seconds >= 0;
  if (input->lines.empty() && wait && until > Clock::now()) {
    input->arrived.wait_until(lock, until, [] { return !input->lines.empty(); });
  }
  *ended = input->ended && input->lines.empty();
  if (input->lines.empty()) return false;
  *line = std::move(input->lines.front());
  input->lines.pop_front();
  return true;
}

bool TimeIsUp() { return running.seconds >= 0 && Clock::now() - runBegan >= Seconds(running.seconds); }

// One frame of real time, if it is due.
bool FrameIfDue() {
  Clock::time_point now = Clock::now();
  if (running.rate <= 0 || now < nextFrame) return false;
  double dt = std::chrono::duration<double>(now - lastFrame).count();
  CountLateness(std::chrono::duration<double>(now - nextFrame).count());
  lastFrame = now;
  nextFrame += Seconds(1 / running.rate);
  if (now - nextFrame > kLate) nextFrame = now;
  Frame(elapsed + dt);
  return true;
}

constexpr char kUsage[] =
    "usage: standin --plugin FILE [--plugin FILE ...] --root DIR [--rate N] [--flight circuit|none]\n"
    "               [--aircraft NAME] [--planes N] [--version N] [--define FILE] [--seconds N]\n"
    "               [--tolerant]\n";

// --- Options ---------------------------------------------------------------------------------------
// Each takes its value; an empty text means success, else why not.

std::string TakePlugin(const std::string& value, Options* options) {
  options->plugins.push_back(value);
  return "";
}

template <std::string Options::*Text>
std::string TakeText(const std::string& value, Options* options) {
  options->*Text = value;
  return "";
}

std::string TakeRate(const std::string& value, Options* options) {
  bool good = ParseDouble(value, &options->rate) && options->rate >= 0 && options->rate <= 1000;
  return good ? "" : "--rate is 0 to 1000, not " + value;
}

std::string TakeSeconds(const std::string& value, Options* options) {
  bool good = ParseDouble(value, &options->seconds) && options->seconds >= 0 && options->seconds <= 1e8;
  return good ? "" : "--seconds is a number of seconds, not " + value;
}

std::string TakeFlight(const std::string& value, Options* options) {
  options->circuit = value == "circuit";
  return options->circuit || value == "none" ? "" : "--flight is circuit or none, not " + value;
}

std::string TakeAircraft(const std::string& value, Options* options) {
  options->aircraft = value;
  return WorldKnowsAircraft(value) ? "" : "unknown aircraft: " + value;
}

std::string TakePlanes(const std::string& value, Options* options) {
  int64_t planes = 0;
  if (!ParseInt(value, &planes) || planes < 1 || planes > 128) return "--planes is 1 to 128, not " + value;
  options->planes = static_cast<int>(planes);
  return "";
}

std::string TakeVersion(const std::string& value, Options* options) {
  int64_t version = 0;
  if (!ParseInt(value, &version) || version < 1 || version > 9999 || !FindVersion(static_cast<int>(version))) {
    return "--version is one of " + ListVersions() + ", not " + value;
  }
  options->version = static_cast<int>(version);
  return "";
}

std::string TakeTolerant(const std::string&, Options* options) {
  options->tolerant = true;
  return "";
}

struct OptionRow {
  const char* name = "";
  const char* value = "";  // what follows the name; empty: nothing does
  std::string (*take)(const std::string& value, Options* options) = nullptr;
  const char* about = "";
};
constexpr OptionRow optionRows[] = {
    {.name = "--plugin", .value = "FILE", .take = TakePlugin, .about = "plug-in to load, may be repeated"},
    {.name = "--root",
     .value = "DIR",
     .take = TakeText<&Options::root>,
     .about = "system folder that plug-ins see; made when it is missing"},
    {.name = "--rate",
     .value = "N",
     .take = TakeRate,
     .about = "frames a second, 60 by default; 0: frames run only with the line \"frames N\""},
    {.name = "--flight",
     .value = "WHAT",
     .take = TakeFlight,
     .about = "circuit (default): a flight model flies; none: every value stays as it is set"},
    {.name = "--aircraft",
     .value = "NAME",
     .take = TakeAircraft,
     .about = "the user's aircraft, jet by default"},
    {.name = "--planes",
     .value = "N",
     .take = TakePlanes,
     .about = "active aircraft, 1 to 128, the user's own included"},
    {.name = "--version",
     .value = "N",
     .take = TakeVersion,
     .about = "age of the simulator: 860, 920, 955, 1004, 1042, 1110, 1140, 1200 or 1210, with exactly the\n"
              "                    datarefs of that age; without it 1042 with those of every age"},
    {.name = "--define",
     .value = "FILE",
     .take = TakeText<&Options::define>,
     .about = "lines \"define\" and \"command\" that are run before the plug-ins start"},
    {.name = "--seconds",
     .value = "N",
     .take = TakeSeconds,
     .about = "ends after N seconds; without it the end of standard input does"},
    {.name = "--tolerant", .take = TakeTolerant, .about = "tells of broken rules of the interface and goes on"},
};

int Usage(const std::string& why) {
  std::fprintf(stderr, "standin: %s\n%s       standin --help explains them\n", why.c_str(), kUsage);
  return 2;
}

int Help() {
  std::printf("A simulator that loads plug-ins and flies, driven by lines on standard input.\n\n%s\n", kUsage);
  for (const OptionRow& row : optionRows) {
    std::printf("  %-17s %s\n", (row.name + std::string(" ") + row.value).c_str(), row.about);
  }
  std::printf(
      "\nExit status: 0 done; 1 a plug-in could not be loaded or started; 2 usage; 3 a rule was broken.\n"
      "\nConsole: a command a line, one answer line each: ok, ok ANSWER or error: WHY.\n\n%s",
      ConsoleHelp().c_str());
  return 0;
}

// Empty when the options make sense, else why not.
std::string ParseOptions(int argc, char** argv, Options* options) {
  for (int i = 1; i < argc; ++i) {
    const std::string name = argv[i];
    const OptionRow* row = std::find_if(std::begin(optionRows), std::end(optionRows),
                                        [&](const OptionRow& each) { return name == each.name; });
    if (row == std::end(optionRows)) return "unknown option: " + name;
    std::string value;
    if (*row->value) {
      if (i + 1 < argc) value = argv[++i];
      if (value.empty()) return name + " needs a value";
    }
    std::string why = row->take(value, options);
    if (!why.empty()) return why;
  }
  if (options->plugins.empty()) return "--plugin is missing";
  return options->root.empty() ? "--root is missing" : "";
}

// Until somebody wants an end.
void Live() {
  std::string line;
  bool ended = false;
  while (!quitWanted && !StopWanted() && !TimeIsUp()) {
    FrameIfDue();
    Clock::time_point until = Clock::now() + kSignalCheck;
    if (running.rate > 0) until = std::min(until, nextFrame);
    if (running.seconds >= 0) until = std::min(until, runBegan + Seconds(running.seconds));
    if (TakeLine(until, &line, &ended)) {
      std::string answer = SimCommand(line) + '\n';
      std::fwrite(answer.data(), 1, answer.size(), stdout);
      std::fflush(stdout);
    } else if (ended && running.seconds < 0) {
      return;
    }
  }
}

}  // namespace

void ResetPace() {
  runBegan = lastFrame = nextFrame = Clock::now();
  if (running.rate > 0) nextFrame += Seconds(1 / running.rate);
}

void ConsoleFrames(int count) {
  if (running.rate <= 0) {
    SimFrames(count);
    return;
  }
  for (int done = 0; done < count && !StopWanted() && !TimeIsUp();) {
    if (FrameIfDue()) {
      ++done;
    } else {
      std::this_thread::sleep_until(std::min(nextFrame, Clock::now() + kSignalCheck));
    }
  }
}

int SimMain(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--help") == 0 || std::strcmp(argv[i], "-h") == 0) return Help();
  }
  Options options;
  std::string why = ParseOptions(argc, argv, &options);
  if (!why.empty()) return Usage(why);
  PrepareProgram();
  int status = SimStart(options);
  if (status != 0) return status;
  input = new Input;
  std::thread(ReadLines).detach();
  Live();
  return SimStop();
}

}  // namespace sim
