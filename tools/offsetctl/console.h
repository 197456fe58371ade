// The terminal: Ctrl-C, keys, waiting, and drawing in place. Main thread, except as said.
#pragma once
#include <cstddef>

namespace ctl {

// From here on Ctrl-C, and the terminal's being closed, ask for a clean end instead of killing the program.
void WatchForStop();
// From here on the key q does, too, while WaitForStop waits; keys are not shown any more. RestoreTerminal ends
// that. Does nothing when standard input is no terminal, or belongs to another program at the moment.
void WatchKeys();
// From here on the end of whatever reads our standard output through a pipe does, too.
void WatchOutput();
// While true, nothing counts as asked for, until it is false again: for what must not be left half done.
void HoldStop(bool isHeld);
// Whether a clean end was asked for. Any thread.
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
// Whether the program was stopped and goes on since the last call: another one has used the terminal.
bool TerminalWasAway();
void RestoreTerminal();

}  // namespace ctl
