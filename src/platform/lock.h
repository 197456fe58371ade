// Locks. A real critical section on Windows, a plain (not recursive) mutex on POSIX; both with a try.
//
// A Lock is a program-wide record without constructor: CreateLock makes it usable, DeleteLock ends it.
// Any thread may enter, try and leave a lock that exists. Creating and deleting is for the simulator's
// thread alone, while no other thread uses the lock. Never enter a lock twice on one thread: it hangs on
// POSIX, and a lock-checking build ends the program there, as it does when a stranger leaves a lock.
// A lock that does not exist is passed without effect (entering and trying succeed): before enable and
// after disable there is only the simulator's thread.
#pragma once
#include <atomic>
#include <cstdint>

struct Lock {
  alignas(16) unsigned char storage[64];
  std::atomic<uint32_t> owner;  // thread that holds it, kept in lock-checking builds only
  std::atomic<uint32_t> exists;
};

// Makes the lock usable; one that exists stays as it is. False when the system refuses (nothing is created
// then).
bool CreateLock(Lock* lock);
// Ends the lock; nothing happens when it does not exist.
void DeleteLock(Lock* lock);
// Waits until the lock is ours.
void EnterLock(Lock* lock);
// Takes the lock when it is free; false: another thread holds it (nothing waits).
bool TryEnterLock(Lock* lock);
void LeaveLock(Lock* lock);
// Lock-checking builds: whether the calling thread holds the lock, or the lock does not exist (before enable
// and after disable there is only one thread). Other builds: always true.
bool HoldsLock(const Lock* lock);

// Holds a lock for a scope.
struct LockScope {
  explicit LockScope(Lock* held) : lock(held) { EnterLock(lock); }
  ~LockScope() { LeaveLock(lock); }
  LockScope(const LockScope&) = delete;
  LockScope& operator=(const LockScope&) = delete;
  Lock* lock;
};
