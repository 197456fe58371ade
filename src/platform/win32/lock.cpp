// Locks as critical sections, which spin for a moment before they wait: they are held for microseconds.
#include "platform/lock.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <new>

#include "platform/thread.h"

namespace {

constexpr DWORD spinRounds = 1000;

static_assert(sizeof(CRITICAL_SECTION) <= sizeof(Lock::storage));
static_assert(alignof(CRITICAL_SECTION) <= 16);

CRITICAL_SECTION* Section(Lock* lock) {
  return std::launder(reinterpret_cast<CRITICAL_SECTION*>(lock->storage));
}

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
  auto* section = new (lock->storage) CRITICAL_SECTION;
  if (!InitializeCriticalSectionAndSpinCount(section, spinRounds)) return 0;
  lock->owner.store(0, std::memory_order_relaxed);
  lock->exists.store(1, std::memory_order_release);
  return 1;
}

void DeleteLock(Lock* lock) {
  if (!lock->exists.load(std::memory_order_acquire)) return;
  lock->exists.store(0, std::memory_order_release);
  DeleteCriticalSection(Section(lock));
}

void EnterLock(Lock* lock) {
  if (!lock->exists.load(std::memory_order_acquire)) return;
#if defined(TAVRIX_CHECK_LOCKS)
  RefuseSecondEntry(lock);
#endif
  EnterCriticalSection(Section(lock));
#if defined(TAVRIX_CHECK_LOCKS)
  lock->owner.store(CurrentThreadId(), std::memory_order_relaxed);
#endif
}

int TryEnterLock(Lock* lock) {
  if (!lock->exists.load(std::memory_order_acquire)) return 1;
#if defined(TAVRIX_CHECK_LOCKS)
  RefuseSecondEntry(lock);
#endif
  if (!TryEnterCriticalSection(Section(lock))) return 0;
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
  LeaveCriticalSection(Section(lock));
}

int HoldsLock([[maybe_unused]] const Lock* lock) {
#if defined(TAVRIX_CHECK_LOCKS)
  if (!lock->exists.load(std::memory_order_acquire)) return 1;
  return lock->owner.load(std::memory_order_relaxed) == CurrentThreadId() ? 1 : 0;
#else
  return 1;
#endif
}
