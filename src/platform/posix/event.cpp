// An auto-reset event: a flag under a mutex, with a condition that wakes one waiter.
#include "platform/event.h"

#include <pthread.h>

#include <cerrno>
#include <new>

#include "platform/clock.h"
#include "platform/posix/deadline.h"

namespace {

struct EventState {
  pthread_mutex_t mutex;
  pthread_cond_t raised;
  bool signalled;
};

}  // namespace

bool CreateAutoEvent(Event* event) {
  event->handle = nullptr;
  auto* state = new (std::nothrow) EventState{};
  if (!state) return false;
  if (pthread_mutex_init(&state->mutex, nullptr) != 0) {
    delete state;
    return false;
  }
  if (!InitCondition(&state->raised)) {
    pthread_mutex_destroy(&state->mutex);
    delete state;
    return false;
  }
  event->handle = state;
  return true;
}

void CloseEvent(Event* event) {
  auto* state = static_cast<EventState*>(event->handle);
  if (!state) return;
  pthread_cond_destroy(&state->raised);
  pthread_mutex_destroy(&state->mutex);
  delete state;
  event->handle = nullptr;
}

void SignalEvent(Event* event) {
  auto* state = static_cast<EventState*>(event->handle);
  if (!state) return;
  pthread_mutex_lock(&state->mutex);
  state->signalled = true;
  pthread_cond_signal(&state->raised);
  pthread_mutex_unlock(&state->mutex);
}

bool WaitEvent(Event* event, int timeoutMs) {
  auto* state = static_cast<EventState*>(event->handle);
  if (!state) {
    SleepMilliseconds(timeoutMs);
    errno = EBADF;
    return false;
  }
  const timespec deadline = DeadlineAfter(timeoutMs < 0 ? 0 : timeoutMs);
  pthread_mutex_lock(&state->mutex);
  int failure = 0;
  while (!state->signalled && failure == 0) {
    failure = timeoutMs < 0 ? pthread_cond_wait(&state->raised, &state->mutex)
                            : pthread_cond_timedwait(&state->raised, &state->mutex, &deadline);
  }
  const bool got = state->signalled;
  state->signalled = false;
  pthread_mutex_unlock(&state->mutex);
  if (!got) errno = failure;
  return got;
}
