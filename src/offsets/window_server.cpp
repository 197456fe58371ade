#include "offsets/window_server.h"

#include <windows.h>
// The order matters: the multimedia header needs the one above.
#include <mmsystem.h>

#include <atomic>

#include "offsets/request_walk.h"
#include "platform/event.h"
#include "platform/system.h"
#include "platform/thread.h"
#include "shell/log.h"

namespace {

constexpr char windowName[] = "KORLMAIN";  // class and window alike
constexpr char callMessageName[] = "KELDOMAR:IPC";
constexpr DWORD mappingAccess = FILE_MAP_WRITE;

Thread serverThread;
std::atomic<uint32_t> serverRun;
Event queueReady;
UINT callMessage;  // 0 while the message is not registered; set and read by the server thread
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

LRESULT ServeCall(WPARAM atom) {
  const uint32_t request = CountRequest();
  char name[260] = "";
  if (GlobalGetAtomNameA(static_cast<ATOM>(atom), name, sizeof name) == 0) return 0;
  HANDLE mapping = OpenFileMappingA(mappingAccess, FALSE, name);
  if (mapping == nullptr) return 0;
  LRESULT result = 0;
  void* view = MapViewOfFile(mapping, mappingAccess, 0, 0, 0);
  if (view != nullptr) {
    result = ServeRecords(static_cast<uint8_t*>(view), UsableSize(view), PathSource::Local, request, &scratch);
    UnmapViewOfFile(view);
  }
  CloseHandle(mapping);
  return result;
}

LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (callMessage == 0 || message != callMessage) return DefWindowProcA(window, message, wParam, lParam);
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
  LogLine("Register of joystickcapturewindow %s\n", text);
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

HWND OpenWindow(HINSTANCE instance) {
  HWND window = CreateWindowExA(WS_EX_CLIENTEDGE, windowName, windowName, WS_POPUP, 0, 0, 10, 10, nullptr,
                                nullptr, instance, nullptr);
  if (window == nullptr) {
    LogOwn("TAVRIX->The window %s cannot be created (%s): local clients cannot connect\n", windowName,
           SystemErrorText().c_str());
    return nullptr;
  }
  LogLine("Create KORLMain Window OK!\n");
  callMessage = RegisterWindowMessageA(callMessageName);
  if (callMessage != 0) LogLine("Register KORLMain Call message OK!\n");
  ShowWindow(window, SW_HIDE);
  UpdateWindow(window);
  CaptureJoystick(window);
  return window;
}

uint32_t ServerProcedure(void*) {
  PrepareThreadMessages();
  LogLine("Starting KORLMain Thread!\n");
  const HINSTANCE instance = ModuleInstance();
  ATOM windowClass = 0;
  HWND window = nullptr;
  if (FindWindowA(windowName, windowName) != nullptr) {
    LogOwn(
        "TAVRIX->The window class %s is taken by another simulator in this session: local clients reach that "
        "one; close it and reload the plug-in\n",
        windowName);
  } else {
    windowClass = RegisterWindowClass(instance);
    if (windowClass == 0) {
      LogOwn("TAVRIX->The window class %s cannot be registered (%s): local clients cannot connect\n",
             windowName, SystemErrorText().c_str());
    } else {
      window = OpenWindow(instance);
    }
  }
  SignalEvent(&queueReady);

  MSG message;
  while (GetMessageA(&message, nullptr, 0, 0) > 0 && serverRun.load() != 0) {
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }

  LogLine("TAVRIX->Closing Window\n");
  if (window != nullptr) {
    joyReleaseCapture(JOYSTICKID1);
    DestroyWindow(window);
  }
  if (windowClass != 0) UnregisterClassA(windowName, instance);
  callMessage = 0;
  LogLine("TAVRIX->Closed KORLMain Thread!\n");
  return 1;
}

}  // namespace

int StartWindowServer() {
  if (!CreateAutoEvent(&queueReady)) return 0;
  serverRun = 1;
  if (!StartThread(&serverThread, ServerProcedure, nullptr)) {
    serverRun = 0;
    CloseEvent(&queueReady);
    return 0;
  }
  // A quit message posted before the thread has its queue would be lost, and the join would hang.
  WaitEvent(&queueReady, -1);
  CloseEvent(&queueReady);
  return 1;
}

void StopWindowServer() {
  serverRun = 0;
  if (!serverThread.started.load()) return;
  PostMessageToThread(&serverThread, messageQuit, 0);
  JoinThread(&serverThread);
}
