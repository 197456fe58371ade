// Locks as plain pthread mutexes (the default kind: not recursive, and known to ThreadSanitizer).
#include "platform/lock.h"

#include <pthread.h>

#include <cstdio>
#include <cstdlib>
#include <new>

#include "platform/thread.h"

namespace {

static_assert(sizeof(pthread_mutex_t) <= sizeof(Lock::storage));
static_assert(alignof(pthread_mutex_t) <= 16);

pthread_mutex_t* Mutex(Lock* lock) { return std::launder(reinterpret_cast<pthread_mutex_t*>(lock->storage)); }

#if defined(TAVRIX_CHECK_LOCKS)
void RefuseSecondEntry(const Lock* lock) {
  if (lock->owner.load(std::memory_order_relaxed) == CurrentThreadId()) {
    std::fputs("TAVRIX->A thread entered a lock that it already holds\n", stderr);
    std::abort();
  }
}

void RefuseForeignLeave(const Lock* lock) {
  if (lock->owner.load(std::memory_order_relaxed) != CurrentThreadId()) {
    std::fputs("TAVRIX->A thread left a lock that it does not hold\n", stderr);
    std::abort();
  }
}
#endif

}  // namespace

int CreateLock(Lock* lock) {
  if (lock->exists.load(std::memory_order_acquire)) return 1;
  auto* mutex = new (lock->storage) pthread_mutex_t;
  if (pthread_mutex_init(mutex, nullptr) != 0) return 0;
  lock->owner.store(0, std::memory_order_relaxed);
  lock->exists.store(1, std::memory_order_release);
  return 1;
}

void DeleteLock(Lock* lock) {
  if (!lock->exists.load(std::memory_order_acquire)) return;
  lock->exists.store(0, std::memory_order_release);
  pthread_mutex_destroy(Mutex(lock));
}

void EnterLock(Lock* lock) {
  if (!lock->exists.load(std::memory_order_acquire)) return;
#if defined(TAVRIX_CHECK_LOCKS)
  RefuseSecondEntry(lock);
#endif
  pthread_mutex_lock(Mutex(lock));
#if defined(TAVRIX_CHECK_LOCKS)
  lock->owner.store(CurrentThreadId(), std::memory_order_relaxed);
#endif
}

int TryEnterLock(Lock* lock) {
  if (!lock->exists.load(std::memory_order_acquire)) return 1;
#if defined(TAVRIX_CHECK_LOCKS)
  RefuseSecondEntry(lock);
#endif
  if (pthread_mutex_trylock(Mutex(lock)) != 0) return 0;
#if defined(TAVRIX_CHECK_LOCKS)
  lock->owner.store(CurrentThreadId(), std::memory_order_relaxed);
#endif
  return 1;
}

void LeaveLock(Lock* lock) {
  if (!lock->exists.load(std::memory_order_acquire)) return;
#if defined(TAVRIX_CHECK_LOCKS)
  RefuseForeignLeave(lock);
  lock->owner.store(0, std::memory_order_relaxed);
#endif
  pthread_mutex_unlock(Mutex(lock));
}

int HoldsLock([[maybe_unused]] const Lock* lock) {
#if defined(TAVRIX_CHECK_LOCKS)
  if (!lock->exists.load(std::memory_order_acquire)) return 1;
  return lock->owner.load(std::memory_order_relaxed) == CurrentThreadId() ? 1 : 0;
#else
  return 1;
#endif
}
