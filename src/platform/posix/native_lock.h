// The system's part of a lock: a plain pthread mutex (the default kind: not recursive, and known to
// ThreadSanitizer). For platform/lock.cpp alone.
#pragma once
#include <pthread.h>

#include <new>

using NativeLock = pthread_mutex_t;

// Makes it in the storage; false when the system refuses.
inline bool CreateNative(void* storage) {
  return pthread_mutex_init(new (storage) pthread_mutex_t, nullptr) == 0;
}
inline void DeleteNative(NativeLock* lock) { pthread_mutex_destroy(lock); }
inline void EnterNative(NativeLock* lock) { pthread_mutex_lock(lock); }
inline bool TryEnterNative(NativeLock* lock) { return pthread_mutex_trylock(lock) == 0; }
inline void LeaveNative(NativeLock* lock) { pthread_mutex_unlock(lock); }
