#if defined(_WIN32)

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>

#include "console.h"

namespace ctl {

namespace {

using Clock = std::chrono::steady_clock;

constexpr double longestWait = 1e6;  // seconds; in milliseconds it is far below INFINITE

constexpr DWORD closingMs = 3000;  // the system ends the program when it takes longer than five seconds

HANDLE stopEvent;
std::atomic<bool> stopHeld;
bool keysWatched;
SHORT homeRow;  // of the buffer, which may be higher than the window

BOOL WINAPI OnConsoleEvent(DWORD event) {
  SetEvent(stopEvent);
  // The window is being closed: the program ends with this function, so the main thread gets its time here.
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(closingMs);
  return TRUE;
}

HANDLE Input() { return GetStdHandle(STD_INPUT_HANDLE); }

// Takes what the console has; whether q was among it.
bool IsEndPressed() {
  bool pressed = false;
  INPUT_RECORD record;
  DWORD count = 0;
  while (GetNumberOfConsoleInputEvents(Input(), &count) && count > 0 &&
         ReadConsoleInputA(Input(), &record, 1, &count)) {
    const char key = record.Event.KeyEvent.uChar.AsciiChar;
    pressed = pressed ||
              (record.EventType == KEY_EVENT && record.Event.KeyEvent.bKeyDown && (key == 'q' || key == 'Q'));
  }
  return pressed;
}

HANDLE Output() { return GetStdHandle(STD_OUTPUT_HANDLE); }

void ShowCursor(bool visible) {
  CONSOLE_CURSOR_INFO info = {};
  if (!GetConsoleCursorInfo(Output(), &info)) return;
  info.bVisible = visible;
  SetConsoleCursorInfo(Output(), &info);
}

}  // namespace

void WatchForStop() {
  stopEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  // A program started in a new process group has Ctrl-C switched off.
  SetConsoleCtrlHandler(nullptr, FALSE);
  SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

void WatchOutput() {}  // the next line that is printed tells of it

void HoldStop(bool isHeld) { stopHeld = isHeld; }

bool StopRequested() { return !stopHeld && WaitForSingleObject(stopEvent, 0) == WAIT_OBJECT_0; }

bool WaitForStop(double seconds) {
  if (!(seconds > 0)) return StopRequested();
  const auto length = std::chrono::duration<double>(std::min(seconds, longestWait));
  if (stopHeld) {
    Sleep(static_cast<DWORD>(std::ceil(length.count() * 1000)));
    return false;
  }
  const Clock::time_point end = Clock::now() + std::chrono::duration_cast<Clock::duration>(length);
  const HANDLE watched[] = {stopEvent, Input()};
  for (double left = length.count(); left > 0;) {
    const auto milliseconds = static_cast<DWORD>(std::ceil(left * 1000));
    const DWORD signalled = WaitForMultipleObjects(keysWatched ? 2 : 1, watched, FALSE, milliseconds);
    if (signalled != WAIT_OBJECT_0 + 1) break;
    if (IsEndPressed()) SetEvent(stopEvent);
    if (StopRequested()) break;
    left = std::chrono::duration<double>(end - Clock::now()).count();
  }
  return StopRequested();
}

void WatchKeys() {
  DWORD mode = 0;
  keysWatched = GetConsoleMode(Input(), &mode) != 0;
}

bool StdoutIsTerminal() {
  CONSOLE_SCREEN_BUFFER_INFO info;
  return GetConsoleScreenBufferInfo(Output(), &info) != 0;
}

TerminalSize SizeOfTerminal() {
  CONSOLE_SCREEN_BUFFER_INFO info;
  if (!GetConsoleScreenBufferInfo(Output(), &info)) return {80, 24};
  const int columns = std::min<int>(info.dwSize.X, info.srWindow.Right - info.srWindow.Left + 1);
  const int lines = info.srWindow.Bottom - info.srWindow.Top + 1;
  if (columns <= 0 || lines <= 0) return {80, 24};
  return {static_cast<size_t>(columns), static_cast<size_t>(lines)};
}

// Through the console's own calls: consoles before Windows 10 know no escape sequences.
void ClearTerminal() {
  CONSOLE_SCREEN_BUFFER_INFO info;
  if (!GetConsoleScreenBufferInfo(Output(), &info)) return;
  homeRow = info.srWindow.Top;
  const int lines = info.srWindow.Bottom - info.srWindow.Top + 1;
  const DWORD cells = static_cast<DWORD>(info.dwSize.X) * static_cast<DWORD>(std::max(lines, 0));
  DWORD done = 0;
  FillConsoleOutputCharacterA(Output(), ' ', cells, {0, homeRow}, &done);
  FillConsoleOutputAttribute(Output(), info.wAttributes, cells, {0, homeRow}, &done);
  ShowCursor(false);
  CursorHome();
}

void CursorHome() {
  std::fflush(stdout);
  SetConsoleCursorPosition(Output(), {0, homeRow});
}

bool TerminalWasAway() { return false; }

void RestoreTerminal() {
  keysWatched = false;
  std::fflush(stdout);
  ShowCursor(true);
}

}  // namespace ctl

#endif
