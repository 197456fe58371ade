// Threads with a message queue of their own in the record that starter and thread share; the starter frees
// it when it has joined.
#include "platform/thread.h"

#include <dirent.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <deque>
#include <memory>

#include "platform/clock.h"
#include "platform/exceptions.h"
#include "platform/posix/deadline.h"

namespace {

struct Message {
  uint32_t number;
  uintptr_t value;
};

struct ThreadState {
  ThreadProc proc;
  void* argument;
  pthread_t thread;
  uint32_t exitCode;       // written by the thread, read after the join
  pthread_mutex_t mutex;   // guards all that follows
  pthread_cond_t changed;  // `id` set, or a message came
  uint32_t id;             // 0 until the thread runs
  bool hasQueue;           // from PrepareThreadMessages to the thread's end
  std::deque<Message> queue;
};

thread_local ThreadState* self = nullptr;  // null on threads that we did not start
thread_local uint32_t ownId = 0;

void* RunThread(void* argument) {
  auto* state = static_cast<ThreadState*>(argument);
  self = state;
  pthread_mutex_lock(&state->mutex);
  state->id = CurrentThreadId();
  pthread_cond_broadcast(&state->changed);
  pthread_mutex_unlock(&state->mutex);
  try {
    state->exitCode = state->proc(state->argument);
  } catch (...) {  // no thread may take the simulator down
    PassForeignException();
    state->exitCode = 0;
  }
  pthread_mutex_lock(&state->mutex);
  state->hasQueue = false;
  pthread_mutex_unlock(&state->mutex);
  return nullptr;
}

void FreeState(ThreadState* state) {
  pthread_cond_destroy(&state->changed);
  pthread_mutex_destroy(&state->mutex);
  delete state;
}

ThreadState* MakeState(ThreadProc proc, void* argument) {
  auto* state = new (std::nothrow) ThreadState{};
  if (!state) return nullptr;
  state->proc = proc;
  state->argument = argument;
  if (pthread_mutex_init(&state->mutex, nullptr) != 0) {
    delete state;
    return nullptr;
  }
  if (!InitCondition(&state->changed)) {
    pthread_mutex_destroy(&state->mutex);
    delete state;
    return nullptr;
  }
  return state;
}

}  // namespace

bool StartThread(Thread* thread, ThreadProc proc, void* argument) {
  if (thread->started.load(std::memory_order_acquire)) return false;  // the old one was not joined
  ThreadState* state = nullptr;
  try {
    state = MakeState(proc, argument);  // the queue's first block may not be had
  } catch (...) {
    return false;
  }
  if (!state) return false;
  if (pthread_create(&state->thread, nullptr, RunThread, state) != 0) {
    FreeState(state);
    return false;
  }
  pthread_mutex_lock(&state->mutex);
  while (state->id == 0) pthread_cond_wait(&state->changed, &state->mutex);
  thread->id = state->id;
  pthread_mutex_unlock(&state->mutex);
  thread->handle = state;
  thread->started.store(1, std::memory_order_release);
  return true;
}

uint32_t JoinThread(Thread* thread) {
  if (!thread->started.load(std::memory_order_acquire)) return 0;
  auto* state = static_cast<ThreadState*>(thread->handle);
  pthread_join(state->thread, nullptr);
  const uint32_t exitCode = state->exitCode;
  FreeState(state);
  thread->handle = nullptr;
  thread->id = 0;
  thread->started.store(0, std::memory_order_release);
  return exitCode;
}

void PrepareThreadMessages() {
  if (!self) return;
  pthread_mutex_lock(&self->mutex);
  self->hasQueue = true;
  pthread_mutex_unlock(&self->mutex);
}

bool PostMessageToThread(Thread* thread, uint32_t message, uintptr_t value) {
  if (!thread->started.load(std::memory_order_acquire)) return false;
  auto* state = static_cast<ThreadState*>(thread->handle);
  pthread_mutex_lock(&state->mutex);
  bool posted = false;
  if (state->hasQueue) {
    try {
      state->queue.push_back({message, value});
      pthread_cond_broadcast(&state->changed);
      posted = true;
    } catch (...) {  // as good as none
    }
  }
  pthread_mutex_unlock(&state->mutex);
  return posted;
}

int WaitThreadMessage(int timeoutMs, uint32_t* message, uintptr_t* value) {
  if (!self) {
    SleepMilliseconds(timeoutMs);
    return -1;
  }
  const timespec deadline = DeadlineAfter(timeoutMs < 0 ? 0 : timeoutMs);
  pthread_mutex_lock(&self->mutex);
  self->hasQueue = true;
  int failure = 0;
  while (self->queue.empty() && failure == 0) {
    failure = timeoutMs < 0 ? pthread_cond_wait(&self->changed, &self->mutex)
                            : pthread_cond_timedwait(&self->changed, &self->mutex, &deadline);
  }
  int result = -1;
  if (!self->queue.empty()) {
    const Message first = self->queue.front();
    self->queue.pop_front();
    *message = first.number;
    *value = first.value;
    result = first.number == messageQuit ? 0 : 1;
  }
  pthread_mutex_unlock(&self->mutex);
  return result;
}

uint32_t CurrentThreadId() {
  if (ownId == 0) ownId = static_cast<uint32_t>(syscall(SYS_gettid));
  return ownId;
}

int CountProcessThreads() {
  DIR* folder = opendir("/proc/self/task");
  if (!folder) return -1;
  int count = 0;
  while (const dirent* entry = readdir(folder)) {
    if (entry->d_name[0] != '.') ++count;
  }
  closedir(folder);
  return count;
}
