// Auto-reset events: a signal wakes one waiter, or the next one that waits.
#pragma once
#include <cstdint>

struct Event {
  void* handle;  // null while it does not exist
};

// Creates an event, not signalled. Returns 1, or 0 when the system refuses.
int CreateAutoEvent(Event* event);
void CloseEvent(Event* event);
// Any thread, while the event exists.
void SignalEvent(Event* event);
// Waits for the signal: 1 signalled, 0 timed out. timeoutMs < 0 waits without limit.
// For an event that does not exist the time-out passes (0 at once without limit). A wait without limit that
// fails leaves its reason as the last system error.
int WaitEvent(Event* event, int timeoutMs);
