// Windows as records: made, shown, kept up to date, destroyed.
#include "panels/layout.h"

#include <algorithm>
#include <utility>

#include "XPLMUtilities.h"
#include "XPStandardWidgets.h"
#include "base/log.h"
#include "panels/layout_window.h"
#include "platform/clock.h"
#include "platform/exceptions.h"
#include "settings/settings.h"

std::vector<std::unique_ptr<Window>> madeWindows;
bool windowsEnabled;

namespace {

constexpr int64_t refreshPeriod = 250'000'000, livelyPeriod = 50'000'000;  // ns
constexpr int messageCharacters = 48;  // a line; longer reasons take a second one

constexpr char disabledText[] = "disabled";  // in the place of values
constexpr char disabledMessage[] = "TAVRIX is disabled: nothing can be changed";

int openWindows;  // so that a frame without any asks nothing

std::string MessageText(int) { return ""; }  // the line's text is the window's own
constexpr Cell messageLine = {
    .kind = CellKind::Value, .width = messageCharacters, .lines = 2, .text = MessageText};

Window* FindWindow(const WindowPlan& plan) {
  for (const auto& window : madeWindows) {
    if (window->plan == &plan) return window.get();
  }
  return nullptr;
}

// Whether the user can do something with it.
bool IsForUser(CellKind kind) {
  return kind == CellKind::Field || kind == CellKind::Box || kind == CellKind::Button;
}

bool HasActions(const WindowPlan& plan) {
  return std::any_of(plan.rows.begin(), plan.rows.end(), [](const Row& row) {
    return std::any_of(std::begin(row.cells), std::end(row.cells),
                       [](const Cell& cell) { return IsForUser(cell.kind); });
  });
}

// A widget of the window; its place comes later. Null when the simulator refuses.
XPWidgetID AddWidget(const Window& window, XPWidgetClass type, const char* text) {
  return XPCreateWidget(0, 1, 1, 0, 1, text, 0, window.widget, type);
}

bool StaysOpen(const CellWidgets& value) { return value.label != nullptr || value.cell == &messageLine; }

bool MakeBody(const Window& window, CellWidgets* made) {
  const Cell& cell = *made->cell;
  switch (cell.kind) {
    case CellKind::Field:
      made->body = AddWidget(window, xpWidgetClass_TextField, "");
      if (made->body == nullptr) return false;
      XPSetWidgetProperty(made->body, xpProperty_TextFieldType, xpTextEntryField);
      XPSetWidgetProperty(made->body, xpProperty_MaxCharacters, cell.limit);
      XPAddWidgetCallback(made->body, Guarded<HandleField, 0>::Call);
      return true;
    case CellKind::Box:
      // Simulators differ in whether they draw a box's own text: the label stands beside it.
      made->body = AddWidget(window, xpWidgetClass_Button, "");
      if (made->body == nullptr) return false;
      XPSetWidgetProperty(made->body, xpProperty_ButtonType, xpRadioButton);
      XPSetWidgetProperty(made->body, xpProperty_ButtonBehavior, xpButtonBehaviorCheckBox);
      return true;
    case CellKind::Button:
      made->body = AddWidget(window, xpWidgetClass_Button, cell.label);
      if (made->body != nullptr) XPSetWidgetProperty(made->body, xpProperty_ButtonType, xpPushButton);
      return made->body != nullptr;
    case CellKind::Value:
      made->body = AddWidget(window, xpWidgetClass_Caption, "");
      for (int line = 1; line < cell.lines && made->body != nullptr; ++line) {
        made->moreLines.push_back(AddWidget(window, xpWidgetClass_Caption, ""));
        if (made->moreLines.back() == nullptr) return false;
        XPHideWidget(made->moreLines.back());
      }
      if (made->body == nullptr) return false;
      made->usedLines = StaysOpen(*made) ? 1 : 0;
      if (made->usedLines == 0) XPHideWidget(made->body);
      return true;
    default:
      made->body = AddWidget(window, xpWidgetClass_Caption, cell.label);
      return made->body != nullptr;
  }
}

bool MakeCell(Window* window, const Cell& cell, int row, int column) {
  CellWidgets& made = window->cells.emplace_back();
  made.cell = &cell;
  made.row = row;
  made.column = column;
  const bool labelled =
      cell.kind == CellKind::Value || cell.kind == CellKind::Field || cell.kind == CellKind::Box;
  if (labelled && cell.label[0] != '\0') {
    made.label = AddWidget(*window, xpWidgetClass_Caption, cell.label);
    if (made.label == nullptr) return false;
  }
  return MakeBody(*window, &made);
}

bool MakeWidgets(Window* window) {
  const WindowPlan& plan = *window->plan;
  window->widget = XPCreateWidget(0, 1, 1, 0, 0, plan.title, 1, nullptr, xpWidgetClass_MainWindow);
  if (window->widget == nullptr) return false;
  XPSetWidgetProperty(window->widget, xpProperty_MainWindowHasCloseBoxes, 1);
  XPAddWidgetCallback(window->widget, Guarded<HandleWindow, 0>::Call);
  int row = 0;
  for (const Row& each : plan.rows) {
    int column = 0;
    for (const Cell& cell : each.cells) {
      if (cell.kind != CellKind::None && !MakeCell(window, cell, row, column++)) return false;
    }
    ++row;
  }
  window->hasMessageLine = HasActions(plan);
  return !window->hasMessageLine || MakeCell(window, messageLine, row, 0);
}

Window* MakeWindow(const WindowPlan& plan) {
  Window* window = madeWindows.emplace_back(std::make_unique<Window>()).get();
  window->plan = &plan;
  if (MakeWidgets(window)) return window;
  if (window->widget != nullptr) XPDestroyWidget(window->widget, 1);
  madeWindows.pop_back();
  LogOwn("TAVRIX->The simulator cannot make the window \"%s\": close other windows and try again\n",
         plan.title);
  return nullptr;
}

// Shows the first `used` lines of a value and hides the others.
void ShowUsedLines(CellWidgets* value, int used) {
  for (int line = 0; line <= static_cast<int>(value->moreLines.size()); ++line) {
    const bool isUsed = line < used;
    if (isUsed == (line < value->usedLines)) continue;
    const XPWidgetID widget = line == 0 ? value->body : value->moreLines[static_cast<size_t>(line) - 1];
    isUsed ? XPShowWidget(widget) : XPHideWidget(widget);
  }
}

// Puts a value's lines into its widgets. Returns whether it needs another number of them now.
bool ShowLines(CellWidgets* value, const std::string& text) {
  if (text == value->shown) return false;
  const std::vector<std::string> lines = BreakText(text, value->cell->width, value->cell->lines);
  const int used = std::max(StaysOpen(*value) ? 1 : 0, static_cast<int>(lines.size()));
  XPSetWidgetDescriptor(value->body, lines.empty() ? "" : lines[0].c_str());
  for (size_t i = 1; i < lines.size(); ++i) {
    XPSetWidgetDescriptor(value->moreLines[i - 1], lines[i].c_str());
  }
  ShowUsedLines(value, used);
  value->shown = text;
  return std::exchange(value->usedLines, used) != used;
}

void RefreshEnabled(CellWidgets* cell) {
  if (cell->cell->isEnabled == nullptr) return;
  const bool enabled = cell->cell->isEnabled(cell->cell->index);
  if (std::exchange(cell->enabled, enabled) != enabled) {
    XPSetWidgetProperty(cell->body, xpProperty_Enabled, enabled ? 1 : 0);
  }
}

// Returns whether the number of lines has changed.
bool RefreshCell(CellWidgets* cell) {
  RefreshEnabled(cell);
  switch (cell->cell->kind) {
    case CellKind::Box:
      RefreshBox(*cell);
      return false;
    case CellKind::Field:
      if (!IsEdited(*cell)) ResetField(cell);
      return false;
    case CellKind::Value:
      return cell->cell != &messageLine && ShowLines(cell, cell->cell->text(cell->cell->index));
    default:
      return false;
  }
}

}  // namespace

Window* WindowOf(XPWidgetID widget) {
  const XPWidgetID root = XPFindRootWidget(widget);
  for (const auto& window : madeWindows) {
    if (window->widget == root) return window.get();
  }
  return nullptr;
}

CellWidgets* CellOf(Window* window, XPWidgetID body) {
  for (CellWidgets& cell : window->cells) {
    if (cell.body == body) return &cell;
  }
  return nullptr;
}

bool IsOpen(const Window& window) { return XPIsWidgetVisible(window.widget) != 0; }

std::string TextOf(XPWidgetID widget) {
  const int length = XPGetWidgetDescriptor(widget, nullptr, 0);
  std::string text(static_cast<size_t>(std::max(length, 0)) + 1, '\0');
  XPGetWidgetDescriptor(widget, text.data(), static_cast<int>(text.size()));
  text.resize(text.find('\0'));
  return text;
}

bool IsEdited(const CellWidgets& field) { return TextOf(field.body) != field.shown; }

void ResetField(CellWidgets* field) {
  const std::string text = field->cell->text(field->cell->index);
  if (text != TextOf(field->body)) XPSetWidgetDescriptor(field->body, text.c_str());
  field->shown = TextOf(field->body);  // a limit may have cut it
}

void ResetFields(Window* window) {
  for (CellWidgets& cell : window->cells) {
    if (cell.cell->kind == CellKind::Field) ResetField(&cell);
  }
}

void RefreshBox(const CellWidgets& box) {
  XPSetWidgetProperty(box.body, xpProperty_ButtonState, box.cell->isOn(box.cell->index) ? 1 : 0);
}

void HideWindow(Window* window) {
  ResetFields(window);  // before the keyboard leaves a field, which would accept its text
  GiveKeyboardBack(window);
  XPHideWidget(window->widget);
}

void ShowMessage(Window* window, const std::string& message) {
  if (!window->hasMessageLine) return;
  window->message = message;
  if (ShowLines(&window->cells.back(), message)) PlaceWindow(window);
}

void RefreshNow(Window* window) {
  bool moved = false;
  for (CellWidgets& cell : window->cells) moved |= RefreshCell(&cell);
  if (moved) PlaceWindow(window);
}

void EnableWindows() {
  if (std::exchange(windowsEnabled, true)) return;
  for (const auto& window : madeWindows) {
    XPSetWidgetDescriptor(window->widget, window->plan->title);
    for (const CellWidgets& cell : window->cells) {
      if (IsForUser(cell.cell->kind)) XPSetWidgetProperty(cell.body, xpProperty_Enabled, cell.enabled ? 1 : 0);
    }
    ResetFields(window.get());
    ShowMessage(window.get(), "");
    if (IsOpen(*window)) RefreshNow(window.get());
  }
}

void DisableWindows() {
  if (!std::exchange(windowsEnabled, false)) return;
  GiveKeyboardBack(nullptr);
  for (const auto& window : madeWindows) {
    ResetFields(window.get());
    XPSetWidgetDescriptor(window->widget, (std::string(window->plan->title) + " (disabled)").c_str());
    for (CellWidgets& cell : window->cells) {
      if (cell.cell->kind == CellKind::Box) RefreshBox(cell);
      if (IsForUser(cell.cell->kind)) XPSetWidgetProperty(cell.body, xpProperty_Enabled, 0);
      // What stands without a label is no state but a text.
      if (cell.cell->kind == CellKind::Value && cell.label != nullptr) ShowLines(&cell, disabledText);
    }
    ShowMessage(window.get(), disabledMessage);
    PlaceWindow(window.get());
  }
}

std::string NotSaved() {
  const std::string message = std::string("Not saved: ") + SettingsFault();
  if (!MainLogIsOpen()) XPLMDebugString(("TAVRIX->" + EscapedControls(message) + "\n").c_str());
  return message;
}

void OpenWindow(const WindowPlan& plan) {
  if (!windowsEnabled) return;
  Window* window = FindWindow(plan);
  if (window == nullptr) window = MakeWindow(plan);
  if (window == nullptr) return;
  if (!IsOpen(*window)) {
    if (plan.opened != nullptr) plan.opened();
    ResetFields(window);
    ShowMessage(window, "");
    RefreshNow(window);
    ++openWindows;
    Cascade(window);
    XPShowWidget(window->widget);
  }
  XPBringRootWidgetToFront(window->widget);
}

void CloseWindow(const WindowPlan& plan) {
  if (Window* window = FindWindow(plan)) HideWindow(window);
}

bool IsWindowOpen(const WindowPlan& plan) {
  const Window* window = FindWindow(plan);
  return window != nullptr && IsOpen(*window);
}

void RefreshWindow(const WindowPlan& plan) {
  Window* window = FindWindow(plan);
  if (window != nullptr && windowsEnabled && IsOpen(*window)) RefreshNow(window);
}

bool HasOpenText(const WindowPlan& plan) {
  const Window* window = FindWindow(plan);
  return window != nullptr && IsOpen(*window) &&
         std::any_of(window->cells.begin(), window->cells.end(), [](const CellWidgets& cell) {
           return cell.cell->kind == CellKind::Field && IsEdited(cell);
         });
}

void FollowWindows() {
  if (openWindows == 0) return;  // before anything else: nearly all frames end here
  const int64_t now = MonotonicNanoseconds();
  openWindows = static_cast<int>(std::count_if(madeWindows.begin(), madeWindows.end(),
                                               [](const auto& window) { return IsOpen(*window); }));
  const ScreenSize size = AskScreenSize();
  for (const auto& window : madeWindows) {
    if (!IsOpen(*window)) continue;
    FollowScreen(window.get(), size);
    if (now - window->refreshedAt < (window->plan->isLively ? livelyPeriod : refreshPeriod)) continue;
    window->refreshedAt = now;
    RefreshNow(window.get());
  }
}

void DestroyWindows() {
  windowsEnabled = false;  // what the keyboard leaves behind is accepted no more
  openWindows = 0;
  for (const auto& window : madeWindows) XPDestroyWidget(window->widget, 1);
  madeWindows.clear();
}
