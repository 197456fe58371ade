// What locks have in common on both systems: whether one exists, and who holds it.
#include "platform/lock.h"

#include <cstdio>
#include <cstdlib>
#include <new>

#include "platform/thread.h"
#if defined(_WIN32)
#include "platform/win32/native_lock.h"
#else
#include "platform/posix/native_lock.h"
#endif

namespace {

static_assert(sizeof(NativeLock) <= sizeof(Lock::storage));
static_assert(alignof(NativeLock) <= 16);

#if defined(TAVRIX_CHECK_LOCKS)
constexpr bool checks = true;
#else
constexpr bool checks = false;
#endif

NativeLock* Native(Lock* lock) { return std::launder(reinterpret_cast<NativeLock*>(lock->storage)); }

bool Exists(const Lock* lock) { return lock->exists.load(std::memory_order_acquire) != 0; }

bool IsOwner(const Lock* lock) { return lock->owner.load(std::memory_order_relaxed) == CurrentThreadId(); }

[[maybe_unused]] void Require(bool condition, const char* fault) {
  if (condition) return;
  std::fputs(fault, stderr);
  std::abort();
}

void RefuseSecondEntry(const Lock* lock) {
  if constexpr (checks) Require(!IsOwner(lock), "TAVRIX->A thread entered a lock that it already holds\n");
}

void RefuseForeignLeave(const Lock* lock) {
  if constexpr (checks) Require(IsOwner(lock), "TAVRIX->A thread left a lock that it does not hold\n");
}

void NoteOwner(Lock* lock, bool entered) {
  if constexpr (checks) lock->owner.store(entered ? CurrentThreadId() : 0, std::memory_order_relaxed);
}

}  // namespace

bool CreateLock(Lock* lock) {
  if (Exists(lock)) return true;
  if (!CreateNative(lock->storage)) return false;
  lock->owner.store(0, std::memory_order_relaxed);
  lock->exists.store(1, std::memory_order_release);
  return true;
}

void DeleteLock(Lock* lock) {
  if (!Exists(lock)) return;
  lock->exists.store(0, std::memory_order_release);
  DeleteNative(Native(lock));
}

void EnterLock(Lock* lock) {
  if (!Exists(lock)) return;
  RefuseSecondEntry(lock);
  EnterNative(Native(lock));
  NoteOwner(lock, true);
}

bool TryEnterLock(Lock* lock) {
  if (!Exists(lock)) return true;
  RefuseSecondEntry(lock);
  if (!TryEnterNative(Native(lock))) return false;
  NoteOwner(lock, true);
  return true;
}

void LeaveLock(Lock* lock) {
  if (!Exists(lock)) return;
  RefuseForeignLeave(lock);
  NoteOwner(lock, false);
  LeaveNative(Native(lock));
}

bool HoldsLock(const Lock* lock) { return !checks || !Exists(lock) || IsOwner(lock); }
