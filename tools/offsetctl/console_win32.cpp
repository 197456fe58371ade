#if defined(_WIN32)

#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "console.h"

namespace ctl {

namespace {

constexpr double longestWait = 1e6;  // seconds; in milliseconds it is far below INFINITE

HANDLE stopEvent;
SHORT homeRow;  // of the buffer, which may be higher than the window

BOOL WINAPI OnConsoleEvent(DWORD event) {
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) return FALSE;
  SetEvent(stopEvent);
  return TRUE;
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

bool StopRequested() { return WaitForSingleObject(stopEvent, 0) == WAIT_OBJECT_0; }

bool WaitForStop(double seconds) {
  if (!(seconds > 0)) return StopRequested();
  const double milliseconds = std::ceil(std::min(seconds, longestWait) * 1000);
  return WaitForSingleObject(stopEvent, static_cast<DWORD>(milliseconds)) == WAIT_OBJECT_0;
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

void RestoreTerminal() {
  std::fflush(stdout);
  ShowCursor(true);
}

}  // namespace ctl

#endif
