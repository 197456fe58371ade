// Threads of the C runtime (so that its per-thread data is freed) and the system's thread messages.
#include "platform/thread.h"

#include <process.h>
#include <windows.h>
// windows.h first
#include <tlhelp32.h>

#include <memory>

#include "platform/clock.h"

namespace {

static_assert(messageQuit == WM_QUIT);

struct StartArguments {
  ThreadProc proc;
  void* argument;
};

unsigned __stdcall RunThread(void* argument) {
  const std::unique_ptr<StartArguments> arguments(static_cast<StartArguments*>(argument));
  try {
    return arguments->proc(arguments->argument);
  } catch (...) {  // no thread may take the simulator down
    return 0;
  }
}

// Takes a message that was removed from the queue: 1 for the caller, 0 quit, -1 a window's, dispatched.
int TakeMessage(const MSG* got, uint32_t* message, uintptr_t* value) {
  if (got->message == WM_QUIT) return 0;
  if (got->hwnd) {
    TranslateMessage(got);
    DispatchMessageA(got);
    return -1;
  }
  *message = got->message;
  *value = got->wParam;
  return 1;
}

}  // namespace

bool StartThread(Thread* thread, ThreadProc proc, void* argument) {
  if (thread->started.load(std::memory_order_acquire)) return false;  // the old one was not joined
  std::unique_ptr<StartArguments> arguments(new (std::nothrow) StartArguments{proc, argument});
  if (!arguments) return false;
  // Suspended until the record is complete, so that the new thread may read it.
  unsigned id = 0;
  const uintptr_t begun = _beginthreadex(nullptr, 0, RunThread, arguments.get(), CREATE_SUSPENDED, &id);
  if (begun == 0) return false;
  auto handle = reinterpret_cast<HANDLE>(begun);
  thread->id = id;
  thread->handle = handle;
  thread->started.store(1, std::memory_order_release);
  if (ResumeThread(handle) == static_cast<DWORD>(-1)) {
    TerminateThread(handle, 0);  // it has not run a single instruction
    CloseHandle(handle);
    thread->id = 0;
    thread->handle = nullptr;
    thread->started.store(0, std::memory_order_release);
    return false;
  }
  (void)arguments.release();  // the thread frees it
  return true;
}

uint32_t JoinThread(Thread* thread) {
  if (!thread->started.load(std::memory_order_acquire)) return 0;
  WaitForSingleObject(thread->handle, INFINITE);
  DWORD exitCode = 0;
  GetExitCodeThread(thread->handle, &exitCode);
  CloseHandle(thread->handle);
  thread->handle = nullptr;
  thread->id = 0;
  thread->started.store(0, std::memory_order_release);
  return exitCode;
}

void PrepareThreadMessages() {
  MSG message;
  PeekMessageA(&message, nullptr, WM_USER, WM_USER, PM_NOREMOVE);  // the first call makes the queue
}

bool PostMessageToThread(Thread* thread, uint32_t message, uintptr_t value) {
  if (!thread->started.load(std::memory_order_acquire)) return false;
  return PostThreadMessageA(thread->id, message, value, 0) != 0;
}

int WaitThreadMessage(int timeoutMs, uint32_t* message, uintptr_t* value) {
  MSG got;
  if (timeoutMs < 0) {
    for (;;) {
      const BOOL result = GetMessageA(&got, nullptr, 0, 0);
      if (result == -1) return -1;
      const int taken = TakeMessage(&got, message, value);
      if (taken >= 0) return taken;
    }
  }
  const int64_t deadline = MonotonicNanoseconds() + static_cast<int64_t>(timeoutMs) * 1000000;
  for (;;) {
    // Empty the queue before waiting: the wait below answers to new messages only.
    while (PeekMessageA(&got, nullptr, 0, 0, PM_REMOVE)) {
      const int taken = TakeMessage(&got, message, value);
      if (taken >= 0) return taken;
    }
    const int64_t left = deadline - MonotonicNanoseconds();
    if (left <= 0) return -1;
    const auto wait = static_cast<DWORD>((left + 999999) / 1000000);
    if (MsgWaitForMultipleObjects(0, nullptr, FALSE, wait, QS_ALLINPUT) == WAIT_FAILED) return -1;
  }
}

uint32_t CurrentThreadId() { return GetCurrentThreadId(); }

int CountProcessThreads() {
  HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  if (snapshot == INVALID_HANDLE_VALUE) return -1;
  const DWORD process = GetCurrentProcessId();
  THREADENTRY32 entry{};
  entry.dwSize = sizeof entry;
  int count = 0;
  for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry)) {
    if (entry.th32OwnerProcessID == process) ++count;
  }
  CloseHandle(snapshot);
  return count;
}
