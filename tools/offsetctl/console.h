// The terminal: Ctrl-C, waiting, and drawing in place. Main thread, except as said.
#pragma once
#include <cstddef>

namespace ctl {

// From here on Ctrl-C asks for a clean end instead of killing the program.
void WatchForStop();
// Whether Ctrl-C was pressed. Any thread.
bool StopRequested();
// Waits that long, at most a million seconds, or until Ctrl-C; not at all when it is zero or less. Returns
// StopRequested().
bool WaitForStop(double seconds);
// Whether standard output is a terminal that CursorHome works on.
bool StdoutIsTerminal();
// Columns and lines that are visible at the moment; 80 and 24 when the terminal does not tell.
struct TerminalSize {
  size_t columns, lines;
};
TerminalSize SizeOfTerminal();
// Clears what is visible and hides the cursor; RestoreTerminal shows it again.
void ClearTerminal();
void CursorHome();
void RestoreTerminal();

}  // namespace ctl
