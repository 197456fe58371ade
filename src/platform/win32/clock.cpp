#include "platform/clock.h"

#include <windows.h>

UtcTime ReadUtcTime() {
  SYSTEMTIME now{};
  GetSystemTime(&now);
  return {.hour = now.wHour, .minute = now.wMinute, .second = now.wSecond, .millisecond = now.wMilliseconds};
}

int64_t MonotonicNanoseconds() {
  // Both calls always succeed on the systems we run on. Whole seconds and the rest are scaled apart: the
  // counter times a thousand million would overflow after some minutes.
  LARGE_INTEGER frequency{}, counter{};
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&counter);
  const int64_t seconds = counter.QuadPart / frequency.QuadPart;
  const int64_t rest = counter.QuadPart % frequency.QuadPart;
  return seconds * 1000000000 + rest * 1000000000 / frequency.QuadPart;
}

void SleepMilliseconds(int milliseconds) {
  if (milliseconds > 0) Sleep(static_cast<DWORD>(milliseconds));
}

void GiveWay() { SwitchToThread(); }
