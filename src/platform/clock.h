// Wall clock, monotonic clock and sleeping. Any thread.
#pragma once
#include <cstdint>

struct UtcTime {
  int hour, minute, second, millisecond;
};

UtcTime ReadUtcTime();
// Monotonic time in nanoseconds from an arbitrary start.
int64_t MonotonicNanoseconds();
void SleepMilliseconds(int milliseconds);
// Lets other threads run first, when there are any that want to.
void GiveWay();
