// Points in time on the monotonic clock, as condition variables want them.
#pragma once
#include <pthread.h>

#include <ctime>

inline timespec DeadlineAfter(int milliseconds) {
  timespec when{};
  clock_gettime(CLOCK_MONOTONIC, &when);
  when.tv_sec += milliseconds / 1000;
  when.tv_nsec += milliseconds % 1000 * 1000000L;
  if (when.tv_nsec >= 1000000000L) {
    when.tv_nsec -= 1000000000L;
    ++when.tv_sec;
  }
  return when;
}

// A condition whose deadlines are on the monotonic clock, so that setting the wall clock disturbs no wait.
// Returns true, or false when the system refuses.
inline bool InitCondition(pthread_cond_t* condition) {
  pthread_condattr_t attributes;
  if (pthread_condattr_init(&attributes) != 0) return false;
  pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
  const bool made = pthread_cond_init(condition, &attributes) == 0;
  pthread_condattr_destroy(&attributes);
  return made;
}
