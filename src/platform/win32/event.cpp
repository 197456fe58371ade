#include "platform/event.h"

#include <windows.h>

#include "platform/clock.h"

bool CreateAutoEvent(Event* event) {
  event->handle = CreateEventA(nullptr, FALSE, FALSE, nullptr);
  return event->handle != nullptr;
}

void CloseEvent(Event* event) {
  if (event->handle) CloseHandle(event->handle);
  event->handle = nullptr;
}

void SignalEvent(Event* event) {
  if (event->handle) SetEvent(event->handle);
}

bool WaitEvent(Event* event, int timeoutMs) {
  if (!event->handle) {
    SleepMilliseconds(timeoutMs);
    SetLastError(ERROR_INVALID_HANDLE);
    return false;
  }
  const DWORD limit = timeoutMs < 0 ? INFINITE : static_cast<DWORD>(timeoutMs);
  return WaitForSingleObject(event->handle, limit) == WAIT_OBJECT_0;
}
