#include "platform/event.h"

#include <windows.h>

#include "platform/clock.h"

int CreateAutoEvent(Event* event) {
  event->handle = CreateEventA(nullptr, FALSE, FALSE, nullptr);
  return event->handle ? 1 : 0;
}

void CloseEvent(Event* event) {
  if (event->handle) CloseHandle(event->handle);
  event->handle = nullptr;
}

void SignalEvent(Event* event) {
  if (event->handle) SetEvent(event->handle);
}

int WaitEvent(Event* event, int timeoutMs) {
  if (!event->handle) {
    SleepMilliseconds(timeoutMs);
    SetLastError(ERROR_INVALID_HANDLE);
    return 0;
  }
  const DWORD limit = timeoutMs < 0 ? INFINITE : static_cast<DWORD>(timeoutMs);
  return WaitForSingleObject(event->handle, limit) == WAIT_OBJECT_0 ? 1 : 0;
}
