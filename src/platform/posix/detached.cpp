#include "platform/detached.h"

#include <dlfcn.h>
#include <pthread.h>

#include <cstring>
#include <new>

#include "platform/exceptions.h"
#include "platform/posix/deadline.h"

struct DetachedWork {
  DetachedProc proc;
  pthread_t thread;
  pthread_mutex_t mutex;  // guards the two flags
  pthread_cond_t ended;
  bool done;  // the data is the work's last word
  bool left;  // nobody waits any more: the thread frees the record
  size_t size;
  alignas(16) unsigned char data[maxDetachedData];
};

namespace {

void Free(DetachedWork* work) {
  pthread_cond_destroy(&work->ended);
  pthread_mutex_destroy(&work->mutex);
  delete work;
}

void* RunDetached(void* argument) {
  auto* work = static_cast<DetachedWork*>(argument);
  try {
    work->proc(work->data);
  } catch (...) {  // no thread may take the simulator down
    PassForeignException();
  }
  pthread_mutex_lock(&work->mutex);
  work->done = true;
  const bool left = work->left;
  pthread_cond_signal(&work->ended);
  pthread_mutex_unlock(&work->mutex);
  if (left) Free(work);
  return nullptr;
}

// The code that the thread will return into must not be unmapped. A thread cannot drop the last reference on
// its own code here, so that it is kept for good. In a program there is nothing to keep.
void KeepModule() {
  Dl_info info;
  if (dladdr(reinterpret_cast<void*>(&RunDetached), &info) == 0) return;
  dlopen(info.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
}

}  // namespace

DetachedWork* StartDetached(DetachedProc proc, const void* data, size_t size) {
  if (size > maxDetachedData) return nullptr;
  auto* work = new (std::nothrow) DetachedWork{};
  if (work == nullptr) return nullptr;
  work->proc = proc;
  work->size = size;
  std::memcpy(work->data, data, size);
  if (pthread_mutex_init(&work->mutex, nullptr) != 0) {
    delete work;
    return nullptr;
  }
  if (!InitCondition(&work->ended)) {
    pthread_mutex_destroy(&work->mutex);
    delete work;
    return nullptr;
  }
  if (pthread_create(&work->thread, nullptr, RunDetached, work) == 0) return work;
  Free(work);
  return nullptr;
}

bool FinishDetached(DetachedWork** work, int timeoutMs, void* data) {
  DetachedWork* finished = *work;
  if (finished == nullptr) return false;
  const timespec deadline = DeadlineAfter(timeoutMs);
  pthread_mutex_lock(&finished->mutex);
  int failure = 0;
  while (!finished->done && timeoutMs > 0 && failure == 0) {
    failure = pthread_cond_timedwait(&finished->ended, &finished->mutex, &deadline);
  }
  const bool done = finished->done;
  pthread_mutex_unlock(&finished->mutex);
  if (!done) return false;
  pthread_join(finished->thread, nullptr);
  std::memcpy(data, finished->data, finished->size);
  Free(finished);
  *work = nullptr;
  return true;
}

void LeaveDetached(DetachedWork** work) {
  DetachedWork* left = *work;
  if (left == nullptr) return;
  *work = nullptr;
  pthread_mutex_lock(&left->mutex);
  const bool done = left->done;
  if (!done) {
    KeepModule();
    pthread_detach(left->thread);
    left->left = true;
  }
  pthread_mutex_unlock(&left->mutex);
  if (!done) return;
  pthread_join(left->thread, nullptr);
  Free(left);
}
