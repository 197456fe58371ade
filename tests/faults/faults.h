// Included ahead of every file of the platform layer and of the window server when they are built into
// tavrix_faults: what they create of the system's is asked for here first. The plug-in that users get is built
// without it.
#pragma once
#if defined(_WIN32)
#include <winsock2.h>
// winsock2.h first
#include <process.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <time.h>
#endif
#include <cerrno>
#include <cstdio>

#include "core/fault_hooks.h"

// Whether the creation that is about to be made fails. Any thread.
bool SystemFails(SystemKind kind);

#if defined(_WIN32)

template <typename Result>
Result FailWith(DWORD error, Result result) {
  SetLastError(error);  // the socket library's errors are kept in the same place
  return result;
}
void ReadJumpedClock(SYSTEMTIME* now);

// A macro's own name within it is the system's function.
#define FAULTY(kind, error, result, call) \
  (SystemFails(SystemKind::kind) ? FailWith<decltype(call)>(error, result) : (call))
#define _beginthreadex(...) FAULTY(Thread, ERROR_NOT_ENOUGH_MEMORY, 0, _beginthreadex(__VA_ARGS__))
#define CreateEventA(...) FAULTY(Event, ERROR_NO_SYSTEM_RESOURCES, nullptr, CreateEventA(__VA_ARGS__))
#define WSACreateEvent() FAULTY(Event, ERROR_NO_SYSTEM_RESOURCES, WSA_INVALID_EVENT, WSACreateEvent())
#define InitializeCriticalSectionAndSpinCount(...) \
  FAULTY(Event, ERROR_NO_SYSTEM_RESOURCES, FALSE, InitializeCriticalSectionAndSpinCount(__VA_ARGS__))
inline SOCKET FaultySocket(int family, int type, int protocol) {
  return FAULTY(Socket, WSAEMFILE, INVALID_SOCKET, socket(family, type, protocol));
}
#define socket(...) FaultySocket(__VA_ARGS__)
#define accept(...) FAULTY(Socket, WSAEMFILE, INVALID_SOCKET, accept(__VA_ARGS__))
#define RegisterClassExA(...) FAULTY(Window, ERROR_NOT_ENOUGH_MEMORY, 0, RegisterClassExA(__VA_ARGS__))
#define CreateWindowExA(...) FAULTY(Window, ERROR_NOT_ENOUGH_MEMORY, nullptr, CreateWindowExA(__VA_ARGS__))
#define CreateFileA(...) FAULTY(File, ERROR_TOO_MANY_OPEN_FILES, INVALID_HANDLE_VALUE, CreateFileA(__VA_ARGS__))
#define MoveFileExA(...) FAULTY(File, ERROR_DISK_FULL, FALSE, MoveFileExA(__VA_ARGS__))
#define CreateDirectoryA(...) FAULTY(File, ERROR_DISK_FULL, FALSE, CreateDirectoryA(__VA_ARGS__))
#define GetSystemTime(now) ReadJumpedClock(now)

#else

template <typename Result>
Result FailWith(int error, Result result) {
  errno = error;
  return result;
}
int ReadJumpedClock(clockid_t clock, timespec* now);

// A macro's own name within it is the system's function.
#define FAULTY(kind, error, result, call) \
  (SystemFails(SystemKind::kind) ? FailWith<decltype(call)>(error, result) : (call))
#define pthread_create(...) FAULTY(Thread, EAGAIN, EAGAIN, pthread_create(__VA_ARGS__))
#define pthread_cond_init(...) FAULTY(Event, EAGAIN, EAGAIN, pthread_cond_init(__VA_ARGS__))
#define pthread_mutex_init(...) FAULTY(Event, EAGAIN, EAGAIN, pthread_mutex_init(__VA_ARGS__))
#define eventfd(...) FAULTY(Event, EMFILE, -1, eventfd(__VA_ARGS__))
inline int FaultySocket(int family, int type, int protocol) {
  return FAULTY(Socket, EMFILE, -1, socket(family, type, protocol));
}
#define socket(...) FaultySocket(__VA_ARGS__)
#define accept4(...) FAULTY(Socket, EMFILE, -1, accept4(__VA_ARGS__))
#define open(...) FAULTY(File, EMFILE, -1, open(__VA_ARGS__))
#define fdopen(...) FAULTY(File, ENOMEM, nullptr, fdopen(__VA_ARGS__))
#define mkdir(...) FAULTY(File, ENOSPC, -1, mkdir(__VA_ARGS__))
#define rename(...) FAULTY(File, ENOSPC, -1, rename(__VA_ARGS__))
#define clock_gettime(...) ReadJumpedClock(__VA_ARGS__)

#endif
