// The system's part of a lock: a critical section. For platform/lock.cpp alone.
#pragma once
#include <windows.h>

#include <new>

using NativeLock = CRITICAL_SECTION;

// Makes it in the storage; false when the system refuses.
inline bool CreateNative(void* storage) {
  // The form that tells a failure; the spinning is our own.
  return InitializeCriticalSectionAndSpinCount(new (storage) CRITICAL_SECTION, 0) != FALSE;
}
inline void DeleteNative(NativeLock* lock) { DeleteCriticalSection(lock); }
// Nearly nobody waits in the section's own queue: some systems hand a section that is left to the one who waits
// longest, and until he has a processor it is nobody's and yet busy, for the simulator's thread as well, which
// only tries. Locks are held for microseconds: a moment's spinning and giving way is enough, unless the holder
// has no processor either; then it may take milliseconds, and sleeping takes no longer than it must.
inline void EnterNative(NativeLock* lock) {
  constexpr int spins = 20, yields = 100;
  for (int turn = 0; turn < spins + yields; ++turn) {
    if (TryEnterCriticalSection(lock) != FALSE) return;
    if (turn < spins) {
      for (int i = 0; i < 50; ++i) YieldProcessor();
    } else {
      Sleep(0);
    }
  }
  EnterCriticalSection(lock);
}
inline bool TryEnterNative(NativeLock* lock) { return TryEnterCriticalSection(lock) != FALSE; }
inline void LeaveNative(NativeLock* lock) { LeaveCriticalSection(lock); }
