#include "platform/detached.h"

#include <process.h>
#include <windows.h>

#include <atomic>
#include <cstring>
#include <new>

namespace {

enum class State { Running, Done, Left };

}  // namespace

struct DetachedWork {
  DetachedProc proc;
  HANDLE thread;
  std::atomic<State> state;  // Left: the thread frees the record and the reference below
  HMODULE module;
  size_t size;
  alignas(16) unsigned char data[maxDetachedData];
};

namespace {

void Free(DetachedWork* work) {
  CloseHandle(work->thread);
  delete work;
}

unsigned __stdcall RunDetached(void* argument) {
  auto* work = static_cast<DetachedWork*>(argument);
  try {
    work->proc(work->data);
  } catch (...) {  // no thread may take the simulator down
  }
  // Done: the record belongs to the waiting thread from here on.
  if (work->state.exchange(State::Done) != State::Left) return 0;
  HMODULE module = work->module;
  Free(work);
  FreeLibraryAndExitThread(module, 0);
}

}  // namespace

DetachedWork* StartDetached(DetachedProc proc, const void* data, size_t size) {
  if (size > maxDetachedData) return nullptr;
  auto* work = new (std::nothrow) DetachedWork{};
  if (work == nullptr) return nullptr;
  work->proc = proc;
  work->size = size;
  std::memcpy(work->data, data, size);
  // Suspended until the record is complete.
  const uintptr_t begun = _beginthreadex(nullptr, 0, RunDetached, work, CREATE_SUSPENDED, nullptr);
  if (begun == 0) {
    delete work;
    return nullptr;
  }
  work->thread = reinterpret_cast<HANDLE>(begun);
  ResumeThread(work->thread);
  return work;
}

bool FinishDetached(DetachedWork** work, int timeoutMs, void* data) {
  DetachedWork* finished = *work;
  if (finished == nullptr) return false;
  if (WaitForSingleObject(finished->thread, static_cast<DWORD>(timeoutMs)) != WAIT_OBJECT_0) return false;
  std::memcpy(data, finished->data, finished->size);
  Free(finished);
  *work = nullptr;
  return true;
}

void LeaveDetached(DetachedWork** work) {
  DetachedWork* left = *work;
  if (left == nullptr) return;
  *work = nullptr;
  GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCSTR>(&RunDetached),
                     &left->module);
  HMODULE module = left->module;
  State running = State::Running;
  if (left->state.compare_exchange_strong(running, State::Left)) return;  // with the reference
  WaitForSingleObject(left->thread, INFINITE);
  Free(left);
  FreeLibrary(module);  // not the last one: this code runs
}
