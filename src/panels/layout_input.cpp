// What the user does in a window: the mouse on its close boxes, buttons and boxes, keys in its fields.
#include <algorithm>

#include "XPLMDisplay.h"
#include "XPStandardWidgets.h"
#include "panels/layout_window.h"

namespace {

XPWidgetID AsWidget(intptr_t parameter) { return reinterpret_cast<XPWidgetID>(parameter); }

std::string Refusal(const CellWidgets& field, const std::string& text) {
  const Cell& cell = *field.cell;
  return cell.check == nullptr ? "" : cell.check(cell.index, text);
}

// Takes a field's text over if the user has changed it. Returns false when it is refused; the reason stands in
// the window then and the text is still there.
bool AcceptField(Window* window, CellWidgets* field) {
  if (!IsEdited(*field)) return true;
  const std::string text = TextOf(field->body);
  const std::string reason = Refusal(*field, text);
  if (!reason.empty()) {
    ShowMessage(window, reason);
    return false;
  }
  field->shown = text;  // it is no longer an open change, whatever the function does
  const std::string message = field->cell->accept(field->cell->index, text);
  RefreshNow(window);
  ShowMessage(window, message);
  return true;
}

// Accepts the text of the field that has the keyboard, before anything else is done.
bool AcceptOpenField(Window* window) {
  CellWidgets* field = CellOf(window, XPGetWidgetWithFocus());
  return field == nullptr || field->cell->kind != CellKind::Field || AcceptField(window, field);
}

// The user has clicked in the window: a field of another one that has the keyboard is left.
void LeaveOtherWindows(const Window* window) {
  const XPWidgetID focus = XPGetWidgetWithFocus();
  const Window* owner = focus == nullptr ? nullptr : WindowOf(focus);
  if (owner != nullptr && owner != window) GiveKeyboardBack(owner);
}

void PressButton(Window* window, const CellWidgets& button) {
  LeaveOtherWindows(window);
  if (!button.enabled || (!button.cell->isExit && !AcceptOpenField(window))) return;
  const std::string message = button.cell->press(button.cell->index);
  RefreshNow(window);
  ShowMessage(window, message);
}

// A refused text keeps no box from turning; its reason goes on standing in the window.
void TurnBox(Window* window, const CellWidgets& box, bool on) {
  LeaveOtherWindows(window);
  const bool accepted = AcceptOpenField(window);
  const std::string message = box.cell->turn(box.cell->index, on);
  RefreshNow(window);
  if (accepted || !message.empty()) ShowMessage(window, message);
}

void SelectAll(XPWidgetID field) {
  XPSetWidgetProperty(field, xpProperty_EditFieldSelStart, 0);
  XPSetWidgetProperty(field, xpProperty_EditFieldSelEnd, static_cast<intptr_t>(TextOf(field).size()));
}

// To the next field that can be used, or the one before, round the end.
void GoToNeighbour(const Window& window, const CellWidgets& field, bool back) {
  std::vector<XPWidgetID> fields;
  for (const CellWidgets& cell : window.cells) {
    if (cell.cell->kind == CellKind::Field && cell.enabled) fields.push_back(cell.body);
  }
  const auto self = std::find(fields.begin(), fields.end(), field.body);
  if (self == fields.end()) return;
  const size_t at = static_cast<size_t>(self - fields.begin());
  const XPWidgetID next = fields[(at + (back ? fields.size() - 1 : 1)) % fields.size()];
  if (next != field.body && XPSetKeyboardFocus(next) == next) SelectAll(next);
}

bool HasFields(const Window& window, int row) {
  return std::any_of(window.cells.begin(), window.cells.end(), [row](const CellWidgets& cell) {
    return cell.row == row && cell.cell->kind == CellKind::Field;
  });
}

// The default button for a field: one beside fields is theirs alone.
const CellWidgets* DefaultButton(const Window& window, const CellWidgets& field) {
  for (const CellWidgets& cell : window.cells) {
    const bool serves = cell.row == field.row || !HasFields(window, cell.row);
    if (cell.cell->kind == CellKind::Button && cell.cell->isDefault && serves) return &cell;
  }
  return nullptr;
}

void PressEnter(Window* window, CellWidgets* field) {
  if (!AcceptField(window, field)) return;
  XPLoseKeyboardFocus(field->body);
  if (const CellWidgets* button = DefaultButton(*window, *field)) PressButton(window, *button);
}

void PressEscape(Window* window, CellWidgets* field) {
  if (!IsEdited(*field)) return HideWindow(window);
  ResetField(field);
  SelectAll(field->body);
  ShowMessage(window, "");
}

// Returns whether the key is one that the layout acts on.
bool HandleKey(Window* window, CellWidgets* field, const XPKeyState_t& key) {
  if (key.key != XPLM_KEY_RETURN && key.key != XPLM_KEY_ESCAPE && key.key != XPLM_KEY_TAB) return false;
  if ((key.flags & xplm_UpFlag) != 0) return true;
  if (key.key == XPLM_KEY_RETURN) PressEnter(window, field);
  if (key.key == XPLM_KEY_ESCAPE) PressEscape(window, field);
  if (key.key == XPLM_KEY_TAB && AcceptField(window, field)) {
    GoToNeighbour(*window, *field, (key.flags & xplm_ShiftFlag) != 0);
  }
  return true;
}

// Each key shows whether the text is good as it stands.
void ShowRefusal(Window* window, const CellWidgets& field) {
  ShowMessage(window, IsEdited(field) ? Refusal(field, TextOf(field.body)) : "");
}

// The keyboard goes elsewhere: a refused text cannot stay behind as if it counted.
void LeaveField(Window* window, CellWidgets* field) {
  if (!AcceptField(window, field)) ResetField(field);
}

}  // namespace

void GiveKeyboardBack(const Window* window) {
  const XPWidgetID focus = XPGetWidgetWithFocus();
  Window* owner = focus == nullptr ? nullptr : WindowOf(focus);
  if (owner == nullptr || (window != nullptr && owner != window)) return;
  XPLoseKeyboardFocus(focus);
}

int HandleField(XPWidgetMessage message, XPWidgetID widget, intptr_t param1, intptr_t) {
  if (message != xpMsg_KeyPress && message != xpMsg_KeyLoseFocus) return 0;
  if (!windowsEnabled) {
    // Nothing could be done with what is typed: the simulator has the keyboard.
    if (message == xpMsg_KeyPress) XPLoseKeyboardFocus(widget);
    return message == xpMsg_KeyPress ? 1 : 0;
  }
  Window* window = WindowOf(widget);
  CellWidgets* field = window == nullptr ? nullptr : CellOf(window, widget);
  if (field == nullptr) return 0;
  if (message == xpMsg_KeyPress) {
    return HandleKey(window, field, *reinterpret_cast<const XPKeyState_t*>(param1)) ? 1 : 0;
  }
  LeaveField(window, field);
  return 0;  // the field's own class wants to know, too
}

int HandleWindow(XPWidgetMessage message, XPWidgetID widget, intptr_t param1, intptr_t param2) {
  // A window that is being made or destroyed is not in the list.
  Window* window = nullptr;
  for (const auto& made : madeWindows) {
    if (made->widget == widget) window = made.get();
  }
  if (window == nullptr) return 0;
  switch (message) {
    case xpMessage_CloseButtonPushed:
      GiveKeyboardBack(window);
      HideWindow(window);
      return 1;
    case xpMsg_MouseDown:
      if (windowsEnabled) LeaveOtherWindows(window);
      return 0;
    case xpMsg_Reshape:
      // What stands in it comes along. Cells that move report to the window, too.
      if (AsWidget(param1) == widget) PlaceCells(window);
      return 0;
    default:
      break;
  }
  const bool acts = message == xpMsg_PushButtonPressed || message == xpMsg_ButtonStateChanged ||
                    message == xpMsg_TextFieldChanged;
  const CellWidgets* cell = acts ? CellOf(window, AsWidget(param1)) : nullptr;
  if (cell == nullptr) return 0;
  if (!windowsEnabled) {
    // Nobody acts on it: a box goes back to what is in force.
    if (cell->cell->kind == CellKind::Box) RefreshBox(*cell);
    return 1;
  }
  if (message == xpMsg_PushButtonPressed && cell->cell->kind == CellKind::Button) PressButton(window, *cell);
  if (message == xpMsg_ButtonStateChanged && cell->cell->kind == CellKind::Box) {
    TurnBox(window, *cell, param2 != 0);
  }
  if (message == xpMsg_TextFieldChanged && cell->cell->kind == CellKind::Field) ShowRefusal(window, *cell);
  return 1;
}
