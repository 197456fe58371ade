// The terminal: Ctrl-C, waiting, and drawing in place. Main thread, except as said.
#pragma once

namespace ctl {

// From here on Ctrl-C asks for a clean end instead of killing the program.
void WatchForStop();
// 1 after Ctrl-C. Any thread.
int StopRequested();
// Waits that long, or until Ctrl-C. Returns StopRequested().
int WaitForStop(int milliseconds);
// 1 when standard output is a terminal that CursorHome works on.
int StdoutIsTerminal();
// Clears the terminal and hides the cursor; RestoreTerminal shows it again.
void ClearTerminal();
void CursorHome();
void RestoreTerminal();

}  // namespace ctl
