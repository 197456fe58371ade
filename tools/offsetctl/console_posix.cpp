#if !defined(_WIN32)

#include <signal.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "console.h"

namespace ctl {

namespace {

volatile sig_atomic_t stopRequested;

void OnSignal(int) { stopRequested = 1; }

}  // namespace

void WatchForStop() {
  struct sigaction action = {};
  action.sa_handler = OnSignal;  // without SA_RESTART: waits end at once
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

int StopRequested() { return stopRequested != 0; }

int WaitForStop(int milliseconds) {
  timespec left = {milliseconds / 1000, (milliseconds % 1000) * 1000000L};
  while (!stopRequested && nanosleep(&left, &left) != 0 && errno == EINTR) {
  }
  return StopRequested();
}

int StdoutIsTerminal() { return isatty(STDOUT_FILENO); }

void ClearTerminal() { std::fputs("\x1b[2J\x1b[?25l\x1b[H", stdout); }
void CursorHome() { std::fputs("\x1b[H", stdout); }

void RestoreTerminal() {
  std::fputs("\x1b[?25h", stdout);
  std::fflush(stdout);
}

}  // namespace ctl

#endif
