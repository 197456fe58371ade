#include "offsets/window_server.h"

#include <windows.h>
// The order matters: the multimedia header needs the one above.
#include <mmsystem.h>

#include <algorithm>
#include <atomic>
#include <iterator>
#include <string>

#include "base/log.h"
#include "base/log_quiet.h"
#include "offsets/request_walk.h"
#include "platform/clock.h"
#include "platform/event.h"
#include "platform/system.h"
#include "platform/thread.h"

namespace {

constexpr char windowName[] = "KORLMAIN";  // class and window alike
constexpr char callMessageName[] = "KELDOMAR:IPC";
constexpr DWORD mappingAccess = FILE_MAP_WRITE;

constexpr UINT retryMs = 1000;  // between two attempts to make a lost window anew

Thread serverThread;
std::atomic<uint32_t> serverRun;
Event queueReady;

// All of these belong to the server thread.
UINT callMessage;   // 0 while the message is not registered
HWND serverWindow;  // null while there is none
std::atomic<bool> windowAnswers;
bool windowLooksLost;  // the loop has been told to look after the window
bool tellsWindow;      // the lines about a new window are due
bool windowLost;       // it is gone and not yet made anew
bool closing;          // the window is on its way out
UINT_PTR retryTimer;   // 0 while none is set
DWORD triedAt;         // tick count of the last attempt to make it anew
RequestScratch scratch;

// Bytes from the view's start that can be read and written. A mapping may be larger than the part of it
// that is committed, and touching the rest would fault.
size_t UsableSize(const void* view) {
  MEMORY_BASIC_INFORMATION region;
  if (VirtualQuery(view, &region, sizeof region) == 0) return 0;
  if (region.State != MEM_COMMIT) return 0;
  const DWORD protection = region.Protect & 0xFF;
  if ((region.Protect & PAGE_GUARD) != 0) return 0;
  if (protection != PAGE_READWRITE && protection != PAGE_EXECUTE_READWRITE) return 0;
  return region.RegionSize;
}

// --- What a user is told about blocks that cannot be had ------------------------------------------------
// Reasons that were told already, and when. Clients ask many times a second and may alternate between two
// reasons: each is told at most once a minute.
struct ToldReason {
  DWORD error;
  DWORD toldAt;  // tick count in milliseconds, which wraps
};
constexpr DWORD tellAgainMs = 60000;
ToldReason toldReasons[8];
size_t toldCount;

bool MayTell(DWORD error) {
  const DWORD now = GetTickCount();
  ToldReason* const end = toldReasons + toldCount;
  ToldReason* known =
      std::find_if(toldReasons, end, [error](const ToldReason& told) { return told.error == error; });
  if (known != end && now - known->toldAt < tellAgainMs) return false;
  if (known == end) {
    if (toldCount < std::size(toldReasons)) {
      ++toldCount;
    } else {  // the one that was told longest ago makes room, unless all are fresh
      known = std::max_element(toldReasons, end, [now](const ToldReason& a, const ToldReason& b) {
        return now - a.toldAt < now - b.toldAt;
      });
      if (now - known->toldAt < tellAgainMs) return false;
    }
  }
  *known = {error, now};
  return true;
}

// Called right after the failing call, with its error still standing.
void TellUnreachableBlock(const char* name) {
  const DWORD error = GetLastError();
  if (!MayTell(error)) return;
  const char* remedy = "its name or size is at fault, tell the client's author";
  if (error == ERROR_ACCESS_DENIED) {
    remedy = "start the simulator and the client as the same user, both as administrator or both not";
  } else if (error == ERROR_FILE_NOT_FOUND) {
    remedy = "the client has ended or closed it too early, or it runs in another Windows session";
  }
  SetLastError(error);
  const std::string reason = SystemErrorText();
  LogOwn("TAVRIX->The shared memory %s of a local client cannot be opened (%s): %s\n",
         EscapedForLog(name).c_str(), reason.c_str(), remedy);
}

LRESULT ServeCall(WPARAM atom) {
  const uint32_t request = CountRequest();
  char name[260] = "";
  if (GlobalGetAtomNameA(static_cast<ATOM>(atom), name, sizeof name) == 0) return 0;
  HANDLE mapping = OpenFileMappingA(mappingAccess, FALSE, name);
  if (mapping == nullptr) {
    TellUnreachableBlock(name);
    return 0;
  }
  LRESULT result = 0;
  void* view = MapViewOfFile(mapping, mappingAccess, 0, 0, 0);
  if (view != nullptr) {
    const bool served =
        ServeRecords(static_cast<uint8_t*>(view), UsableSize(view), PathSource::Local, request, &scratch);
    result = served ? 1 : 0;
    UnmapViewOfFile(view);
  } else {
    TellUnreachableBlock(name);
  }
  CloseHandle(mapping);
  return result;
}

// --- The window's life ----------------------------------------------------------------------------------
// From the loop, or from the window procedure: the system hands over messages that others send one after the
// other without ever returning to the loop, for as long as there are any. Without the window there are none.
void CloseServerWindow() {
  if (closing) return;
  closing = true;
  windowAnswers = false;
  LogLine("TAVRIX->Closing Window\n");
  if (serverWindow == nullptr) return;
  joyReleaseCapture(JOYSTICKID1);
  DestroyWindow(serverWindow);
  serverWindow = nullptr;
  // The window took its messages along, and the quit message may have found the queue full.
  PostQuitMessage(0);
}

// Messages whose default handling would destroy or rename the window, or would enter a loop of its own until a
// mouse button goes up. Nobody sees the window: they are no user's.
bool IsMeddling(UINT message) {
  switch (message) {
    case WM_CLOSE:
    case WM_SYSCOMMAND:
    case WM_NCLBUTTONDOWN:
    case WM_SETTEXT:
      return true;
    case WM_NCCREATE:  // not while the window is being made
      return serverWindow != nullptr;
    case WM_NCDESTROY:  // takes the name away; the system's own has no sender
      return InSendMessage() != FALSE;
    default:
      return false;
  }
}

// Makes the loop look whether the window is still there.
void AskForLook() {
  if (windowLooksLost) return;
  windowLooksLost = true;
  PostThreadMessageA(GetCurrentThreadId(), WM_NULL, 0, 0);  // a full queue wakes the loop as well
}

LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (serverWindow != nullptr && serverRun.load() == 0) {
    CloseServerWindow();  // nothing on the way out
    if (message != WM_DESTROY && message != WM_NCDESTROY) return 0;
  }
  if (message == WM_NCDESTROY) AskForLook();
  if (callMessage == 0 || message != callMessage) {
    return IsMeddling(message) ? 0 : DefWindowProcA(window, message, wParam, lParam);
  }
  try {
    return ServeCall(wParam);
  } catch (...) {
    return 0;
  }
}

// This module's instance, from the address of a function of its own: the loader gives the handle to
// DllMain only, which the plug-in does not have.
HINSTANCE ModuleInstance() {
  HMODULE module = nullptr;
  GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<LPCSTR>(&WindowProcedure), &module);
  return module;
}

void CaptureJoystick(HWND window) {
  const MMRESULT result = joySetCapture(window, JOYSTICKID1, 50, TRUE);
  const char* text = "Invalid Other !";
  switch (result) {
    case 0:
      text = "OK!";
      break;
    case 6:
      text = "NODRIVER!";
      break;
    case 11:
    case 165:
      text = "Invalid joystick ID or hwnd is NULL!";
      break;
    case 166:
      text =
          "Cannot capture joystick input because a required service (such as a Windows timer) is "
          "unavailable!";
      break;
    case 167:
      text = "The specified joystick is not connected to the system!";
      break;
    default:
      break;
  }
  if (tellsWindow) LogLine("Register of joystickcapturewindow %s\n", text);
  joySetThreshold(JOYSTICKID1, 10);
}

ATOM RegisterWindowClass(HINSTANCE instance) {
  WNDCLASSEXA windowClass = {};
  windowClass.cbSize = sizeof windowClass;
  windowClass.style = CS_HREDRAW | CS_VREDRAW;
  windowClass.lpfnWndProc = WindowProcedure;
  windowClass.hInstance = instance;
  windowClass.hCursor = LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));
  windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
  windowClass.lpszClassName = windowName;
  return RegisterClassExA(&windowClass);
}

// Newer systems keep the messages of programs with fewer rights from the windows of an administrator's program.
// Asks them to let ours through. The functions are looked up: Vista has the second one only, and older systems
// have none and keep nothing back.
void AdmitClientsWithFewerRights(HWND window) {
  constexpr DWORD allow = 1;  // the same for both functions
  using FilterOfWindow = BOOL(WINAPI*)(HWND, UINT, DWORD, void*);
  using FilterOfProcess = BOOL(WINAPI*)(UINT, DWORD);
  HMODULE user = GetModuleHandleA("user32.dll");
  BOOL admitted = TRUE;
  if (FARPROC found = GetProcAddress(user, "ChangeWindowMessageFilterEx")) {
    admitted =
        reinterpret_cast<FilterOfWindow>(reinterpret_cast<void*>(found))(window, callMessage, allow, nullptr);
  } else if (FARPROC older = GetProcAddress(user, "ChangeWindowMessageFilter")) {
    admitted = reinterpret_cast<FilterOfProcess>(reinterpret_cast<void*>(older))(callMessage, allow);
  }
  if (admitted) return;
  LogOwn(
      "TAVRIX->Windows does not let clients with fewer rights reach the window %s (%s): start the simulator "
      "and "
      "its clients as the same user, all as administrator or all not\n",
      windowName, SystemErrorText().c_str());
}

// False when the system refuses; `report` says whether that makes a line.
bool OpenWindow(HINSTANCE instance, bool report) {
  HWND window = CreateWindowExA(WS_EX_CLIENTEDGE, windowName, windowName, WS_POPUP, 0, 0, 10, 10, nullptr,
                                nullptr, instance, nullptr);
  if (window == nullptr) {
    if (report) {
      LogOwn(
          "TAVRIX->The window %s cannot be created (%s): local clients cannot connect until it can, which is "
          "tried "
          "again every second; look whether the display is there and close other programs\n",
          windowName, SystemErrorText().c_str());
    }
    return false;
  }
  if (tellsWindow) LogLine("Create KORLMain Window OK!\n");
  callMessage = RegisterWindowMessageA(callMessageName);
  if (callMessage != 0) {
    if (tellsWindow) LogLine("Register KORLMain Call message OK!\n");
    AdmitClientsWithFewerRights(window);
  }
  serverWindow = window;
  windowAnswers = callMessage != 0;
  ShowWindow(window, SW_HIDE);
  UpdateWindow(window);
  CaptureJoystick(window);
  return true;
}

// Looks in a second whether the window can be made then.
void AwaitRetry() {
  triedAt = GetTickCount();
  retryTimer = SetTimer(nullptr, 0, retryMs, nullptr);
}

// Makes a lost window anew; while the system refuses, once a second. Other programs cannot take the window
// away, but what is loaded into this one can.
void KeepWindow(HINSTANCE instance) {
  if (windowLooksLost) {
    windowLooksLost = false;
    const HWND window = serverWindow;
    if (window == nullptr) return;
    if (IsWindow(window) && GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId()) return;
    serverWindow = nullptr;
    windowAnswers = false;
    windowLost = true;
    joyReleaseCapture(JOYSTICKID1);
    static QuietMinute lines = {
        .what = "TAVRIX->Another part of this program destroyed the window", .most = 5, .began = 0, .turns = 0};
    tellsWindow = TakeLogTurn(&lines);
    if (tellsWindow) {
      LogOwn("TAVRIX->The window %s was destroyed by another part of this program: a new one is made\n",
             windowName);
    }
  }
  if (!windowLost || (retryTimer != 0 && GetTickCount() - triedAt < retryMs / 2)) return;
  triedAt = GetTickCount();
  if (OpenWindow(instance, retryTimer == 0)) {
    windowLost = false;
    if (retryTimer != 0) KillTimer(nullptr, retryTimer);
    retryTimer = 0;
  } else if (retryTimer == 0) {
    AwaitRetry();
  }
}

// Ends when the run flag has fallen, at the next message whatever it is. A quit message counts only then:
// anybody can post one.
void RunMessageLoop(HINSTANCE instance) {
  constexpr int pauseMs = 100;
  MSG message;
  while (serverRun.load() != 0) {
    const BOOL got = GetMessageA(&message, nullptr, 0, 0);
    if (serverRun.load() == 0) break;
    if (got > 0 && message.message != WM_NCDESTROY) {  // as a posted message it is somebody's trick
      TranslateMessage(&message);
      DispatchMessageA(&message);
    } else if (got < 0) {
      SleepMilliseconds(pauseMs);  // the queue is out of order: do not spin
    }
    if (serverRun.load() != 0) KeepWindow(instance);
  }
}

uint32_t ServerProcedure(void*) {
  PrepareThreadMessages();
  LogLine("Starting KORLMain Thread!\n");
  const HINSTANCE instance = ModuleInstance();
  ATOM windowClass = 0;
  serverWindow = nullptr;
  tellsWindow = true;
  windowLooksLost = windowLost = closing = false;
  retryTimer = 0;
  toldCount = 0;
  scratch.run = &serverRun;
  if (FindWindowA(windowName, windowName) != nullptr) {
    LogOwn(
        "TAVRIX->The window class %s is taken by another simulator in this session: local clients reach that "
        "one; close it and reload the plug-in\n",
        windowName);
  } else {
    windowClass = RegisterWindowClass(instance);
    if (windowClass == 0) {
      LogOwn(
          "TAVRIX->The window class %s cannot be registered (%s): local clients cannot connect; close other "
          "programs "
          "and reload the plug-in\n",
          windowName, SystemErrorText().c_str());
    } else if (!OpenWindow(instance, true)) {
      windowLost = true;
      AwaitRetry();
    }
  }
  SignalEvent(&queueReady);

  RunMessageLoop(instance);

  CloseServerWindow();
  if (retryTimer != 0) KillTimer(nullptr, retryTimer);
  if (windowClass != 0) UnregisterClassA(windowName, instance);
  callMessage = 0;
  LogLine("TAVRIX->Closed KORLMain Thread!\n");
  return 1;
}

}  // namespace

bool StartWindowServer() {
  if (!CreateAutoEvent(&queueReady)) return false;
  serverRun = 1;
  if (!StartThread(&serverThread, ServerProcedure, nullptr)) {
    serverRun = 0;
    CloseEvent(&queueReady);
    return false;
  }
  // A quit message posted before the thread has its queue would be lost, and the join would hang.
  WaitEvent(&queueReady, -1);
  CloseEvent(&queueReady);
  return true;
}

bool WindowServerAnswers() { return windowAnswers.load(); }

void StopWindowServer() {
  serverRun = 0;
  if (!serverThread.started.load()) return;
  // Wakes an idle thread; one that is busy looks at its flag at every message, so a full queue does not matter.
  PostMessageToThread(&serverThread, messageQuit, 0);
  JoinThread(&serverThread);
}
