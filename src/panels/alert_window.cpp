// The alert window: one caption, and a close box that hides it.
#include <algorithm>
#include <cstring>

#include "XPLMDisplay.h"
#include "XPStandardWidgets.h"
#include "XPWidgets.h"
#include "panels/panels.h"

namespace {

constexpr int height = 60;
constexpr int characterWidth = 7;  // at most, in the simulator's caption font
constexpr int margin = 15;
constexpr int captionTop = 25;
constexpr int captionHeight = 18;

XPWidgetID alertWindow;

int HandleAlert(XPWidgetMessage message, XPWidgetID widget, intptr_t, intptr_t) {
  if (message != xpMessage_CloseButtonPushed) return 0;
  XPHideWidget(widget);
  return 1;
}

// In the middle of the screen, as wide as the text.
void MakeAlert(const char* text) {
  int screenWidth = 0;
  int screenHeight = 0;
  XPLMGetScreenSize(&screenWidth, &screenHeight);
  const int width = static_cast<int>(std::strlen(text)) * characterWidth + 2 * margin;
  const int left = std::max((screenWidth - width) / 2, 0);
  const int top = screenHeight * 2 / 3;
  alertWindow = XPCreateWidget(left, top, left + width, top - height, 0, "TAVRIX Alert", 1, nullptr,
                               xpWidgetClass_MainWindow);
  if (alertWindow == nullptr) return;
  XPSetWidgetProperty(alertWindow, xpProperty_MainWindowHasCloseBoxes, 1);
  XPAddWidgetCallback(alertWindow, HandleAlert);
  XPCreateWidget(left + margin, top - captionTop, left + width - margin, top - captionTop - captionHeight, 1,
                 text, 0, alertWindow, xpWidgetClass_Caption);
}

}  // namespace

void OpenAlertWindow(const char* text) {
  CloseAlertWindow();
  MakeAlert(text);
  if (alertWindow == nullptr) return;
  XPShowWidget(alertWindow);
  XPBringRootWidgetToFront(alertWindow);
}

void CloseAlertWindow() {
  if (alertWindow != nullptr) XPDestroyWidget(alertWindow, 1);
  alertWindow = nullptr;
}
