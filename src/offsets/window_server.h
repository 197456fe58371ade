// Local server: client programs on this computer send a registered message to the hidden window
// "KORLMAIN"; it names a shared block with records, which are served in place. A Windows mechanism: on
// other systems it does not exist, and nobody calls the functions.
//
// Starting and stopping is for the simulator's thread. The window, its message loop and every request run
// on the server's own thread.
#pragma once
#include "platform/system.h"

constexpr bool windowServerExists = onWindows;

// Starts the thread and waits until its message queue exists. False when no thread could be made.
bool StartWindowServer();
// Whether the window is there and clients of this computer are served. Any thread.
bool WindowServerAnswers();
// Tells the thread to quit and waits for its end; nothing happens when it was not started. The window goes at
// its next message, whatever else waits there; a request that is being served ends with 0 at its next record,
// those that wait are refused with the window.
void StopWindowServer();
