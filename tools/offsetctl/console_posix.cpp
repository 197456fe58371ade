#if !defined(_WIN32)

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdio>

#include "console.h"

namespace ctl {

namespace {

using Clock = std::chrono::steady_clock;

constexpr double longestWait = 1e6;  // seconds; in milliseconds it fits an int

volatile sig_atomic_t stopRequested;
int stopPipe[2] = {-1, -1};  // readable from the first signal on, so that none falls between test and wait

void OnSignal(int) {
  const int saved = errno;
  stopRequested = 1;
  if (write(stopPipe[1], "", 1) < 0) {  // full: readable anyway
  }
  errno = saved;
}

}  // namespace

void WatchForStop() {
  if (stopPipe[0] < 0 && pipe(stopPipe) == 0) {
    for (const int end : stopPipe) {
      fcntl(end, F_SETFD, FD_CLOEXEC);
      fcntl(end, F_SETFL, O_NONBLOCK);
    }
  }
  struct sigaction action = {};
  action.sa_handler = OnSignal;  // without SA_RESTART: waits end at once
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

bool StopRequested() { return stopRequested != 0; }

bool WaitForStop(double seconds) {
  if (!(seconds > 0)) return StopRequested();
  const auto length = std::chrono::duration<double>(std::min(seconds, longestWait));
  const Clock::time_point end = Clock::now() + std::chrono::duration_cast<Clock::duration>(length);
  while (!stopRequested) {
    const double left = std::chrono::duration<double>(end - Clock::now()).count();
    if (left <= 0) break;
    pollfd stop = {stopPipe[0], POLLIN, 0};
    poll(&stop, 1, static_cast<int>(std::ceil(left * 1000)));
  }
  return StopRequested();
}

bool StdoutIsTerminal() { return isatty(STDOUT_FILENO) != 0; }

TerminalSize SizeOfTerminal() {
  winsize size = {};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) return {80, 24};
  return {size.ws_col, size.ws_row};
}

void ClearTerminal() { std::fputs("\x1b[2J\x1b[?25l\x1b[H", stdout); }
void CursorHome() { std::fputs("\x1b[H", stdout); }

void RestoreTerminal() {
  std::fputs("\x1b[?25h", stdout);
  std::fflush(stdout);
}

}  // namespace ctl

#endif
