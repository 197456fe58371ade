#include "panels/panels.h"

#include <cstdio>
#include <string>

#include "XPLMDisplay.h"
#include "XPStandardWidgets.h"
#include "XPWidgets.h"
#include "base/log.h"
#include "base/version.h"
#include "bridge/cycles.h"
#include "controls/buttons.h"
#include "custom/custom.h"
#include "net/net.h"
#include "offsets/memory.h"
#include "platform/exceptions.h"

namespace {

constexpr int lineHeight = 20;
constexpr int margin = 15;

// User message: the network line looks up what it shows.
constexpr XPWidgetMessage messageNetworkChanged = 10001;

XPWidgetID versionWindow;
XPWidgetID networkLine;
uint32_t shownClients;
XPWidgetID performanceWindow;
XPWidgetID readTraceBox;
XPWidgetID writeTraceBox;
XPWidgetID reloadButton;
XPWidgetID requestLine;
XPWidgetID droppedLine;
XPWidgetID buttonLine;

// A main window with close boxes, `lines` text lines high, near the screen's upper left corner.
XPWidgetID MakeWindow(const char* title, int width, int lines, XPWidgetFunc_t handler) {
  int screenWidth = 0;
  int screenHeight = 0;
  XPLMGetScreenSize(&screenWidth, &screenHeight);
  const int left = 80;
  const int top = screenHeight - 80;
  XPWidgetID window = XPCreateWidget(left, top, left + width, top - (lines + 2) * lineHeight, 0, title, 1,
                                     nullptr, xpWidgetClass_MainWindow);
  if (window == nullptr) return nullptr;
  XPSetWidgetProperty(window, xpProperty_MainWindowHasCloseBoxes, 1);
  XPAddWidgetCallback(window, handler);
  return window;
}

struct LinePlace {
  int left, top, right, bottom;
};

LinePlace LineOf(XPWidgetID window, int line) {
  LinePlace place = {};
  XPGetWidgetGeometry(window, &place.left, &place.top, &place.right, &place.bottom);
  const int top = place.top - (line + 1) * lineHeight;
  return {place.left + margin, top, place.right - margin, top - lineHeight + 2};
}

XPWidgetID AddCaption(XPWidgetID window, int line, const char* text) {
  const LinePlace place = LineOf(window, line);
  return XPCreateWidget(place.left, place.top, place.right, place.bottom, 1, text, 0, window,
                        xpWidgetClass_Caption);
}

XPWidgetID AddCheckBox(XPWidgetID window, int line, const char* label, bool on) {
  const LinePlace place = LineOf(window, line);
  XPWidgetID box = XPCreateWidget(place.left, place.top, place.left + 14, place.bottom, 1, label, 0, window,
                                  xpWidgetClass_Button);
  XPSetWidgetProperty(box, xpProperty_ButtonType, xpRadioButton);
  XPSetWidgetProperty(box, xpProperty_ButtonBehavior, xpButtonBehaviorCheckBox);
  XPSetWidgetProperty(box, xpProperty_ButtonState, on);
  XPCreateWidget(place.left + 22, place.top, place.right, place.bottom, 1, label, 0, window,
                 xpWidgetClass_Caption);
  return box;
}

XPWidgetID AddPushButton(XPWidgetID window, int line, const char* label) {
  const LinePlace place = LineOf(window, line);
  XPWidgetID button = XPCreateWidget(place.left, place.top, place.right, place.bottom, 1, label, 0, window,
                                     xpWidgetClass_Button);
  XPSetWidgetProperty(button, xpProperty_ButtonType, xpPushButton);
  return button;
}

std::string WithoutLineEnd(std::string text) {
  while (!text.empty() && text.back() == '\n') text.pop_back();
  return text;
}

std::string NetworkLineText() {
  if (networkStatusText[0] != '\0') return std::string("TAVFARNET") + networkStatusText;
  return "Network clients: " + std::to_string(shownClients);
}

int HandleNetworkLine(XPWidgetMessage message, XPWidgetID widget, intptr_t, intptr_t) {
  if (message != messageNetworkChanged) return 0;
  XPSetWidgetDescriptor(widget, NetworkLineText().c_str());
  return 1;
}

void RefreshNetworkLine() {
  if (networkLine != nullptr) {
    XPSendMessageToWidget(networkLine, messageNetworkChanged, xpMode_DirectAllCallbacks, 1, 0);
  }
}

int HandleVersion(XPWidgetMessage message, XPWidgetID widget, intptr_t, intptr_t) {
  if (message != xpMessage_CloseButtonPushed) return 0;
  XPHideWidget(widget);
  return 1;
}

int HandlePerformance(XPWidgetMessage message, XPWidgetID widget, intptr_t param1, intptr_t param2) {
  if (message == xpMessage_CloseButtonPushed) {
    XPHideWidget(widget);
    return 1;
  }
  XPWidgetID box = reinterpret_cast<XPWidgetID>(param1);
  if (message == xpMsg_PushButtonPressed && box == reloadButton) {
    ReloadCustomOffsets();
    return 1;
  }
  if (message != xpMsg_ButtonStateChanged) return 0;
  if (box != readTraceBox && box != writeTraceBox) return 0;
  SwitchTrace(box == writeTraceBox, param2 != 0);
  return 1;
}

void MakeVersionWindow() {
  versionWindow = MakeWindow(versionWindowTitle, 320, 4, Guarded<HandleVersion, 0>::Call);
  if (versionWindow == nullptr) return;
  AddCaption(versionWindow, 0, pluginTitle);
  AddCaption(versionWindow, 1, networkTitle);
  AddCaption(versionWindow, 2, (simulatorVersionLabel + std::to_string(simulatorVersion)).c_str());
  networkLine = AddCaption(versionWindow, 3, "");
  if (networkLine != nullptr) XPAddWidgetCallback(networkLine, Guarded<HandleNetworkLine, 0>::Call);
}

void MakePerformanceWindow() {
  performanceWindow = MakeWindow(performanceWindowTitle, 360, 6, Guarded<HandlePerformance, 0>::Call);
  if (performanceWindow == nullptr) return;
  readTraceBox = AddCheckBox(performanceWindow, 0, "Log reads", false);
  writeTraceBox = AddCheckBox(performanceWindow, 1, "Log writes", false);
  requestLine = AddCaption(performanceWindow, 2, "");
  droppedLine = AddCaption(performanceWindow, 3, "");
  reloadButton = AddPushButton(performanceWindow, 4, "Reload TAVRIXOffsets.cfg");
  buttonLine = AddCaption(performanceWindow, 5, "");
}

// The figures as they stand when the window is opened; switches are what disable left them.
void FillPerformanceWindow() {
  ShowTraceSwitches();
  RequestCounters counters = {};
  {
    LockScope lock(&offsetLock);
    counters = requestCounters;
  }
  XPSetWidgetDescriptor(requestLine, ("Requests: " + std::to_string(counters.requests) +
                                      ", bytes read: " + std::to_string(counters.bytesRead) +
                                      ", written: " + std::to_string(counters.bytesWritten))
                                         .c_str());
  XPSetWidgetDescriptor(droppedLine, ("Refreshes stored: " + std::to_string(refreshCounters.stored) +
                                      ", dropped: " + std::to_string(refreshCounters.dropped))
                                         .c_str());
  const std::string buttons = WithoutLineEnd(ButtonStatus());
  XPSetWidgetDescriptor(buttonLine, buttons.empty() ? "" : ("Joystick buttons: " + buttons).c_str());
}

void BringUp(XPWidgetID window) {
  if (window == nullptr) return;
  if (!XPIsWidgetVisible(window)) XPShowWidget(window);
  XPBringRootWidgetToFront(window);
}

}  // namespace

void OpenVersionWindow() {
  if (versionWindow == nullptr) MakeVersionWindow();
  RefreshNetworkLine();
  BringUp(versionWindow);
}

void OpenPerformanceWindow() {
  if (performanceWindow == nullptr) MakePerformanceWindow();
  if (performanceWindow != nullptr) FillPerformanceWindow();
  BringUp(performanceWindow);
}

void ShowTraceSwitches() {
  if (performanceWindow == nullptr) return;
  XPSetWidgetProperty(readTraceBox, xpProperty_ButtonState, static_cast<intptr_t>(readTrace.load()));
  XPSetWidgetProperty(writeTraceBox, xpProperty_ButtonState, static_cast<intptr_t>(writeTrace.load()));
}

void ShowClientCount() {
  const uint32_t clients = ConnectedClients();
  if (clients == shownClients) return;
  shownClients = clients;
  RefreshNetworkLine();
}

void CloseAllWindows() {
  for (XPWidgetID* window : {&versionWindow, &performanceWindow}) {
    if (*window != nullptr) XPDestroyWidget(*window, 1);
    *window = nullptr;
  }
  networkLine = nullptr;
  CloseAlertWindow();
}
