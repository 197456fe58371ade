#if !defined(_WIN32)

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <thread>

#include "console.h"

namespace ctl {

namespace {

using Clock = std::chrono::steady_clock;

constexpr double longestWait = 1e6;  // seconds; in milliseconds it fits an int

std::atomic<bool> stopRequested;  // set by a signal's handler, asked by any thread
static_assert(std::atomic<bool>::is_always_lock_free, "or a handler may not touch it");
volatile sig_atomic_t wasAway;
bool keysWatched, outputWatched;
std::atomic<bool> stopHeld;
termios settingsBefore;      // of the terminal, while keys are watched
int stopPipe[2] = {-1, -1};  // readable from the first signal on, so that none falls between test and wait

void OnSignal(int) {
  const int saved = errno;
  stopRequested = true;
  if (write(stopPipe[1], "", 1) < 0) {  // full: readable anyway
  }
  errno = saved;
}

void TakeKeys() {
  termios settings = settingsBefore;
  settings.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);  // signals stay
  settings.c_cc[VMIN] = 1;
  settings.c_cc[VTIME] = 0;
  tcsetattr(STDIN_FILENO, TCSANOW, &settings);
}

// Ctrl-Z: the terminal is given back as it was, and taken again afterwards. Only calls that a handler may make.
void OnSuspend(int) {
  const int saved = errno;
  constexpr char showCursor[] = "\x1b[?25h";
  tcsetattr(STDIN_FILENO, TCSANOW, &settingsBefore);
  if (write(STDOUT_FILENO, showCursor, sizeof showCursor - 1) < 0) {  // it has gone
  }
  raise(SIGSTOP);
  TakeKeys();
  wasAway = 1;
  errno = saved;
}

// Whether the key was pressed, or the terminal has gone.
bool IsEndPressed() {
  char key = 0;
  const ssize_t size = read(STDIN_FILENO, &key, 1);
  if (size < 0 && (errno == EINTR || errno == EAGAIN)) return false;
  return size <= 0 || key == 'q' || key == 'Q';
}

void Handle(int signal, void (*handler)(int)) {
  struct sigaction action = {}, before = {};
  action.sa_handler = handler;  // without SA_RESTART: waits end at once
  sigaction(signal, &action, &before);
  // Whoever started us wants us to go on without a terminal.
  if (signal == SIGHUP && before.sa_handler == SIG_IGN) sigaction(signal, &before, nullptr);
}

}  // namespace

void WatchForStop() {
  if (stopPipe[0] < 0 && pipe(stopPipe) == 0) {
    for (const int end : stopPipe) {
      fcntl(end, F_SETFD, FD_CLOEXEC);
      fcntl(end, F_SETFL, O_NONBLOCK);
    }
  }
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) Handle(signal, OnSignal);
}

void WatchKeys() {
  if (keysWatched || tcgetpgrp(STDIN_FILENO) != getpgrp() || tcgetattr(STDIN_FILENO, &settingsBefore) != 0)
    return;
  keysWatched = true;
  TakeKeys();
  Handle(SIGTSTP, OnSuspend);
}

void WatchOutput() { outputWatched = true; }

void HoldStop(bool isHeld) { stopHeld = isHeld; }

bool StopRequested() { return stopRequested && !stopHeld; }

bool WaitForStop(double seconds) {
  if (!(seconds > 0)) return StopRequested();
  const auto length = std::chrono::duration<double>(std::min(seconds, longestWait));
  if (stopHeld) {
    std::this_thread::sleep_for(length);
    return false;
  }
  const Clock::time_point end = Clock::now() + std::chrono::duration_cast<Clock::duration>(length);
  while (!stopRequested) {
    const double left = std::chrono::duration<double>(end - Clock::now()).count();
    if (left <= 0) break;
    // A negative descriptor is passed over; errors are told without being asked for.
    pollfd watched[] = {{stopPipe[0], POLLIN, 0},
                        {keysWatched ? STDIN_FILENO : -1, POLLIN, 0},
                        {outputWatched ? STDOUT_FILENO : -1, 0, 0}};
    poll(watched, std::size(watched), static_cast<int>(std::ceil(left * 1000)));
    if (watched[1].revents != 0 && IsEndPressed()) stopRequested = true;
    if (watched[2].revents != 0) stopRequested = true;
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

bool TerminalWasAway() {
  const bool away = wasAway != 0;
  wasAway = 0;
  return away;
}

void RestoreTerminal() {
  std::fputs("\x1b[?25h", stdout);
  std::fflush(stdout);
  if (keysWatched) tcsetattr(STDIN_FILENO, TCSANOW, &settingsBefore);
  keysWatched = false;
}

}  // namespace ctl

#endif
