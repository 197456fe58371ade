// The system's part of a lock: a critical section, which spins for a moment before it waits, as locks are held
// for microseconds. For platform/lock.cpp alone.
#pragma once
#include <windows.h>

#include <new>

using NativeLock = CRITICAL_SECTION;

// Makes it in the storage; false when the system refuses.
inline bool CreateNative(void* storage) {
  constexpr DWORD spinRounds = 1000;
  return InitializeCriticalSectionAndSpinCount(new (storage) CRITICAL_SECTION, spinRounds) != FALSE;
}
inline void DeleteNative(NativeLock* lock) { DeleteCriticalSection(lock); }
inline void EnterNative(NativeLock* lock) { EnterCriticalSection(lock); }
inline bool TryEnterNative(NativeLock* lock) { return TryEnterCriticalSection(lock) != FALSE; }
inline void LeaveNative(NativeLock* lock) { LeaveCriticalSection(lock); }
