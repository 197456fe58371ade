// Threads with join, and the thread messages by which one thread tells another to quit or to work.
//
// StartThread, JoinThread: the simulator's thread, or the thread that owns the record; never with a lock
// held that the thread needs. A thread that uses messages calls PrepareThreadMessages first and then
// signals its starter (PostThreadMessage to a thread without a queue is lost on Windows).
#pragma once
#include <atomic>
#include <cstdint>

using ThreadProc = uint32_t (*)(void* argument);

struct Thread {
  std::atomic<uint32_t> started;  // 1 from StartThread until JoinThread has returned
  uint32_t id;                    // the system's identifier
  void* handle;                   // platform's own
};

// The message that ends a message loop; the number is the system's own on Windows.
constexpr uint32_t messageQuit = 18;

// Starts a thread; an exception that leaves `proc` is swallowed at the thread's end. Returns true, or false
// when the system refuses (then `started` is 0) or an earlier thread of the record was not joined.
bool StartThread(Thread* thread, ThreadProc proc, void* argument);
// Waits without limit for the thread's end and gives its handle back. Nothing happens when it was not
// started. Returns the thread's exit code.
uint32_t JoinThread(Thread* thread);
// Makes the calling thread's message queue. Called by the thread itself before it signals readiness.
void PrepareThreadMessages();
// Puts a message into a started thread's queue. Returns true, or false when it has none. Only by the thread
// that joins it: the record must not be joined meanwhile.
bool PostMessageToThread(Thread* thread, uint32_t message, uintptr_t value);
// Waits for a message to the calling thread: 1 got one (other than quit), 0 quit, -1 failure or, with
// timeoutMs >= 0, time-out. Window messages that arrive meanwhile are dispatched on Windows.
int WaitThreadMessage(int timeoutMs, uint32_t* message, uintptr_t* value);
uint32_t CurrentThreadId();
// Number of threads of this process, or -1 when the system does not tell; for tests and diagnostics.
int CountProcessThreads();
