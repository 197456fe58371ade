// Auto-reset events: a signal wakes one waiter, or the next one that waits.
#pragma once
#include <cstdint>

struct Event {
  void* handle;  // null while it does not exist
};

// Creates an event, not signalled. Returns true, or false when the system refuses.
bool CreateAutoEvent(Event* event);
void CloseEvent(Event* event);
// Any thread, while the event exists.
void SignalEvent(Event* event);
// Waits for the signal: true signalled, false timed out. timeoutMs < 0 waits without limit.
// For an event that does not exist the time-out passes (false at once without limit). A wait without limit that
// fails leaves its reason as the last system error.
bool WaitEvent(Event* event, int timeoutMs);
