#include "shell/menu.h"

#include <cstring>
#include <string>
#include <vector>

#include "XPLMMenus.h"
#include "base/log.h"
#include "panels/layout.h"
#include "panels/panels.h"
#include "platform/exceptions.h"

namespace {

enum class Entry { Item, Separator, Submenu, EndOfSubmenu };

// The menu as it is built, line by line. A row's `reference` is what the simulator hands back when the item
// is chosen; `open` shows the window. The rows stand in the menu as long as the module is loaded.
struct MenuRow {
  Entry entry;
  const char* label;
  const char* reference;
  void (*open)();
};
constexpr MenuRow rows[] = {
    {Entry::Item, versionWindowTitle, "Open Version", OpenVersionWindow},
    {Entry::Item, atcWindowTitle, "Open ATC", OpenAtcWindow},
    {Entry::Separator, "", "", nullptr},
    {Entry::Submenu, "TAVRIX+", "", nullptr},
    {Entry::Submenu, "Joystick functions", "", nullptr},
    {Entry::Item, buttonMenuItem, "Open Joystick Button Assignments", OpenButtonWindow},
    {Entry::Item, calibrationWindowTitle, "Open Joystick Calibration Assignments", OpenCalibrationWindow},
    {Entry::Item, combiningWindowTitle, "Open Axis combining Assignments", OpenCombiningWindow},
    {Entry::EndOfSubmenu, "", "", nullptr},
    {Entry::Submenu, "Misc. functions", "", nullptr},
    {Entry::Item, pushbackWindowTitle, "Open pushback", OpenPushbackWindow},
    {Entry::Item, flapsWindowTitle, "Open flaps", OpenFlapsWindow},
    {Entry::EndOfSubmenu, "", "", nullptr},
    {Entry::EndOfSubmenu, "", "", nullptr},
    {Entry::Separator, "", "", nullptr},
    {Entry::Submenu, "TAVRIX settings", "", nullptr},
    {Entry::Item, performanceWindowTitle, "Open performance", OpenPerformanceWindow},
    {Entry::EndOfSubmenu, "", "", nullptr},
};

XPLMMenuID rootMenu;
XPLMMenuID submenus[8];  // in the order in which they were made: parents before what lies in them
int submenuCount;

void MenuHandler(void*, void* itemReference) {
  try {
    if (itemReference == nullptr) return;
    const char* chosen = static_cast<const char*>(itemReference);
    for (const MenuRow& row : rows) {
      if (row.open != nullptr && std::strcmp(row.reference, chosen) == 0) row.open();
    }
  } catch (...) {
    PassForeignException();
  }
}

// Null when the simulator refuses it.
XPLMMenuID AddSubmenu(XPLMMenuID parent, const char* label) {
  const int item = XPLMAppendMenuItem(parent, label, nullptr, 1);
  return item < 0 ? nullptr : XPLMCreateMenu(label, parent, item, MenuHandler, nullptr);
}

void TellRefused(const std::string& what) {
  if (what.empty()) return;
  LogOwn(
      "TAVRIX->The simulator refuses a part of the menu (%s): windows cannot be opened or stand one level "
      "higher; "
      "reload the plug-in\n",
      what.c_str());
}

}  // namespace

void BuildMenu() {
  constexpr char rootLabel[] = "TAVRIX";
  rootMenu = AddSubmenu(XPLMFindPluginsMenu(), rootLabel);
  submenuCount = 0;
  if (rootMenu == nullptr) return TellRefused(rootLabel);
  std::vector<XPLMMenuID> open = {rootMenu};
  std::string refused;
  const auto refuse = [&refused](const char* label) {
    refused += (refused.empty() ? "" : ", ") + std::string(label);
  };
  for (const MenuRow& row : rows) {
    switch (row.entry) {
      case Entry::Item:
        // The simulator only hands the text back; it is never written to.
        if (XPLMAppendMenuItem(open.back(), row.label, const_cast<char*>(row.reference), 1) < 0)
          refuse(row.label);
        break;
      case Entry::Separator:
        XPLMAppendMenuSeparator(open.back());
        break;
      case Entry::Submenu: {
        const XPLMMenuID menu = AddSubmenu(open.back(), row.label);
        if (menu != nullptr) {
          submenus[submenuCount++] = menu;
        } else {
          refuse(row.label);
        }
        open.push_back(menu != nullptr ? menu : open.back());  // its items stay reachable
        break;
      }
      case Entry::EndOfSubmenu:
        open.pop_back();
        break;
    }
  }
  TellRefused(refused);
}

void DestroyMenuAndWindows() {
  DestroyWindows();
  while (submenuCount > 0) XPLMDestroyMenu(submenus[--submenuCount]);
  if (rootMenu != nullptr) XPLMDestroyMenu(rootMenu);
  rootMenu = nullptr;
}
