// Work that may outlive whoever asked for it: calls into the system that can neither be bounded nor
// interrupted, such as asking a name server that does not answer.
//
// The work gets a copy of the asker's data and nothing else of this program: it must not touch locks, logs or
// tables, as it may run on when all of those are gone. Work that is left alone holds a reference on this
// module, so that its code stays where it is: on Windows until it ends, on POSIX for as long as the process
// lives.
#pragma once
#include <cstddef>

struct DetachedWork;  // null: none

using DetachedProc = void (*)(void* data);

constexpr size_t maxDetachedData = 2048;

// Starts `proc` on a thread of its own with a copy of `size` bytes of data (at most maxDetachedData). Returns
// null when the system refuses. Any thread; the result belongs to one thread at a time.
DetachedWork* StartDetached(DetachedProc proc, const void* data, size_t size);
// Waits up to timeoutMs for the work's end. Returns true with the data as the work has left it (the work is
// freed and the pointer null), or false when it is not done yet.
bool FinishDetached(DetachedWork** work, int timeoutMs, void* data);
// Leaves the work alone, or frees it when it is done; the pointer is null afterwards.
void LeaveDetached(DetachedWork** work);
