// The door of tavrix_faults for the stand-in, which says what fails and how the clock jumps. In another host it
// is an ordinary plug-in.
#include <atomic>

#include "core/fault_hooks.h"
#if defined(_WIN32)
#include <windows.h>
#define EXPORTED __declspec(dllexport)
#else
#include <ctime>
#define EXPORTED __attribute__((visibility("default")))
#endif

namespace {

std::atomic<const FaultHooks*> hooks{nullptr};

int64_t Jump() {
  const FaultHooks* given = hooks;
  return given != nullptr ? given->clockJump() : 0;
}

}  // namespace

extern "C" EXPORTED void UseFaultHooks(const FaultHooks* given) { hooks = given; }

bool SystemFails(SystemKind kind);
bool SystemFails(SystemKind kind) {
  const FaultHooks* given = hooks;
  return given != nullptr && given->fails(kind);
}

#if defined(_WIN32)
void ReadJumpedClock(SYSTEMTIME* now);
void ReadJumpedClock(SYSTEMTIME* now) {
  FILETIME file;
  GetSystemTimeAsFileTime(&file);
  ULARGE_INTEGER time;
  time.LowPart = file.dwLowDateTime;
  time.HighPart = file.dwHighDateTime;
  time.QuadPart += static_cast<ULONGLONG>(Jump() * 10000);  // 100 ns
  file = {time.LowPart, time.HighPart};
  FileTimeToSystemTime(&file, now);
}
#else
int ReadJumpedClock(clockid_t clock, timespec* now);
int ReadJumpedClock(clockid_t clock, timespec* now) {
  const int result = clock_gettime(clock, now);
  if (clock == CLOCK_REALTIME) now->tv_sec += Jump() / 1000;
  return result;
}
#endif
