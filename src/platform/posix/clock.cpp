#include "platform/clock.h"

#include <sched.h>

#include <cerrno>
#include <ctime>

UtcTime ReadUtcTime() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  const int64_t second = static_cast<int64_t>(now.tv_sec) % 86400;
  return {.hour = static_cast<int>(second / 3600),
          .minute = static_cast<int>(second / 60 % 60),
          .second = static_cast<int>(second % 60),
          .millisecond = static_cast<int>(now.tv_nsec / 1000000)};
}

int64_t MonotonicNanoseconds() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec;
}

void SleepMilliseconds(int milliseconds) {
  if (milliseconds <= 0) return;
  timespec left{.tv_sec = milliseconds / 1000, .tv_nsec = milliseconds % 1000 * 1000000L};
  while (clock_nanosleep(CLOCK_MONOTONIC, 0, &left, &left) == EINTR) {
  }
}

void GiveWay() { sched_yield(); }
