// The host program: options, the reader of standard input, frames in real time.
//
// Standard input is read by a thread of its own, because a pipe cannot be waited for together with the
// next frame on every system. It does nothing but hand over lines.
#include <chrono>
#include <cmath>
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
      if (!line.empty()) input->lines.push_back(std::move(line));
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
  lastFrame = now;
  nextFrame += Seconds(1 / running.rate);
  if (now - nextFrame > kLate) nextFrame = now;
  Frame(elapsed + dt);
  return true;
}

constexpr char kUsage[] =
    "usage: standin --plugin FILE [--plugin FILE ...] --root DIR [--rate N] [--flight circuit|none]\n"
    "               [--aircraft NAME] [--planes N] [--define FILE] [--seconds N] [--tolerant]\n";

int Usage(const std::string& why) {
  std::fprintf(stderr, "standin: %s\n%s       standin --help explains them\n", why.c_str(), kUsage);
  return 2;
}

int Help() {
  std::printf(
      "A simulator that loads plug-ins and flies, driven by lines on standard input.\n\n%s\n"
      "  --plugin FILE     plug-in to load, may be repeated\n"
      "  --root DIR        system folder that plug-ins see; made when it is missing\n"
      "  --rate N          frames a second, 60 by default; 0: frames run only with the line \"frames N\"\n"
      "  --flight WHAT     circuit (default): a flight model flies; none: every value stays as it is set\n"
      "  --aircraft NAME   the user's aircraft, jet by default\n"
      "  --planes N        active aircraft, 1 to 128, the user's own included\n"
      "  --define FILE     lines \"define\" and \"command\" that are run before the plug-ins start\n"
      "  --seconds N       ends after N seconds; without it the end of standard input does\n"
      "  --tolerant        tells of broken rules of the interface and goes on\n"
      "\nExit status: 0 done; 1 a plug-in could not be loaded or started; 2 usage; 3 a rule was broken.\n"
      "\nConsole: a command a line, one answer line each: ok, ok ANSWER or error: WHY.\n\n%s",
      kUsage, ConsoleHelp().c_str());
  return 0;
}

// Empty when the options make sense, else why not.
std::string ParseOptions(int argc, char** argv, Options* options) {
  for (int i = 1; i < argc; ++i) {
    std::string name = argv[i];
    if (name == "--tolerant") {
      options->tolerant = true;
      continue;
    }
    bool known = false;
    for (const char* other :
         {"--plugin", "--root", "--rate", "--flight", "--aircraft", "--planes", "--define", "--seconds"}) {
      known |= name == other;
    }
    if (!known) return "unknown option: " + name;
    if (i + 1 >= argc) return name + " needs a value";
    std::string value = argv[++i];
    if (value.empty()) return name + " needs a value";
    double number = 0;
    int64_t planes = 0;
    if (name == "--plugin") {
      options->plugins.push_back(value);
    } else if (name == "--root") {
      options->root = value;
    } else if (name == "--define") {
      options->define = value;
    } else if (name == "--aircraft") {
      options->aircraft = value;
      if (!WorldKnowsAircraft(value)) return "unknown aircraft: " + value;
    } else if (name == "--flight") {
      options->circuit = value == "circuit";
      if (!options->circuit && value != "none") return "--flight is circuit or none, not " + value;
    } else if (name == "--planes") {
      if (!ParseInt(value, &planes) || planes < 1 || planes > 128) return "--planes is 1 to 128, not " + value;
      options->planes = static_cast<int>(planes);
    } else {
      bool rate = name == "--rate";
      bool good =
          ParseDouble(value, &number) && std::isfinite(number) && number >= 0 && number <= (rate ? 1000 : 1e8);
      if (!good) return name + (rate ? " is 0 to 1000, not " : " is a number of seconds, not ") + value;
      (rate ? options->rate : options->seconds) = number;
    }
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
