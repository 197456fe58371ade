// Local server: client programs on this computer send a registered message to the hidden window
// "KORLMAIN"; it names a shared block with records, which are served in place. A Windows mechanism: on
// other systems it does not exist.
//
// Starting and stopping is for the simulator's thread. The window, its message loop and every request run
// on the server's own thread.
#pragma once

#if defined(_WIN32)
constexpr bool windowServerExists = true;
#else
constexpr bool windowServerExists = false;
#endif

#if defined(_WIN32)
// Starts the thread and waits until its message queue exists. Returns 1, or 0 when no thread could be made.
int StartWindowServer();
// Tells the thread to quit and waits for its end; nothing happens when it was not started. The window goes at
// its next message, whatever else waits there; a request that is being served ends with 0 at its next record,
// those that wait are refused with the window.
void StopWindowServer();
#else
inline int StartWindowServer() { return 0; }
inline void StopWindowServer() {}
#endif
