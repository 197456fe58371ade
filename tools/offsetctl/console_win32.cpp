#if defined(_WIN32)

#include <windows.h>

#include <cstdio>

#include "console.h"

namespace ctl {

namespace {

HANDLE stopEvent;

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

int StopRequested() { return WaitForStop(0); }

int WaitForStop(int milliseconds) {
  return WaitForSingleObject(stopEvent, static_cast<DWORD>(milliseconds)) == WAIT_OBJECT_0;
}

int StdoutIsTerminal() {
  CONSOLE_SCREEN_BUFFER_INFO info;
  return GetConsoleScreenBufferInfo(Output(), &info) != 0;
}

// Through the console's own calls: consoles before Windows 10 know no escape sequences.
void ClearTerminal() {
  CONSOLE_SCREEN_BUFFER_INFO info;
  if (!GetConsoleScreenBufferInfo(Output(), &info)) return;
  const DWORD cells = static_cast<DWORD>(info.dwSize.X) * static_cast<DWORD>(info.dwSize.Y);
  DWORD done = 0;
  FillConsoleOutputCharacterA(Output(), ' ', cells, {0, 0}, &done);
  FillConsoleOutputAttribute(Output(), info.wAttributes, cells, {0, 0}, &done);
  ShowCursor(false);
  CursorHome();
}

void CursorHome() {
  std::fflush(stdout);
  SetConsoleCursorPosition(Output(), {0, 0});
}

void RestoreTerminal() {
  std::fflush(stdout);
  ShowCursor(true);
}

}  // namespace ctl

#endif
