// The text field: a line of text (the descriptor) with a selection, edited by keys while it has the
// keyboard. Selection and caret are properties; positions count characters from 0.
#include <algorithm>

#include "widgets/widgets.h"

namespace sim {
namespace {

struct Selection {
  size_t start = 0, end = 0;
};

Selection GetSelection(const Widget* field) {
  const intptr_t length = static_cast<intptr_t>(field->text.size());
  const intptr_t start = std::clamp<intptr_t>(Property(field, xpProperty_EditFieldSelStart), 0, length);
  const intptr_t end = std::clamp<intptr_t>(Property(field, xpProperty_EditFieldSelEnd), start, length);
  return {static_cast<size_t>(start), static_cast<size_t>(end)};
}

// Selects, and scrolls so far that the active end can be seen.
void Select(Widget* field, size_t start, size_t end) {
  SetProperty(field, xpProperty_EditFieldSelStart, static_cast<intptr_t>(start));
  SetProperty(field, xpProperty_EditFieldSelEnd, static_cast<intptr_t>(end));
  const bool startActive = start != end && !Property(field, xpProperty_ActiveEditSide);
  const intptr_t caret = static_cast<intptr_t>(startActive ? start : end);
  const intptr_t room = VisibleLetters(field);
  const intptr_t first = Property(field, xpProperty_ScrollPosition);
  SetProperty(field, xpProperty_ScrollPosition,
              std::clamp<intptr_t>(first, std::max<intptr_t>(0, caret - room), caret));
}

// Puts `piece` in place of the characters from start to end, within the limit, and tells the parents.
void Replace(Widget* field, size_t start, size_t end, const std::string& piece) {
  std::string text = field->text;
  text.replace(start, end - start, piece);
  const intptr_t limit = Property(field, xpProperty_MaxCharacters);
  if (limit > 0 && text.size() > static_cast<size_t>(limit) && text.size() > field->text.size()) return;
  const bool changed = text != field->text;
  Select(field, start + piece.size(), start + piece.size());
  if (!changed || !IsLive(field)) return;
  SetText(field, text);
  if (IsLive(field)) Send(field, xpMsg_TextFieldChanged, xpMode_UpChain, AsParam(field), 0);
}

// Moves the caret; with shift the selection's active end (property 1: the right one).
void MoveCaret(Widget* field, size_t to, bool extend) {
  if (!extend) return Select(field, to, to);
  const Selection now = GetSelection(field);
  if (now.start == now.end) SetProperty(field, xpProperty_ActiveEditSide, to > now.start);
  const size_t fixed = Property(field, xpProperty_ActiveEditSide) ? now.start : now.end;
  SetProperty(field, xpProperty_ActiveEditSide, to >= fixed);
  Select(field, std::min(fixed, to), std::max(fixed, to));
}

void GatherFields(Widget* widget, std::vector<Widget*>* fields) {
  if (!widget->visible) return;
  if (widget->type == xpWidgetClass_TextField && IsEnabled(widget)) fields->push_back(widget);
  for (Widget* child : widget->children) GatherFields(child, fields);
}

// The keyboard goes to the next (or previous) field of the window, round its end.
void FocusNeighbour(Widget* field, bool back) {
  std::vector<Widget*> fields;
  if (Widget* window = RootOf(field)) GatherFields(window, &fields);
  const auto self = std::find(fields.begin(), fields.end(), field);
  if (self == fields.end()) return;
  const size_t at = static_cast<size_t>(self - fields.begin());
  Widget* next = fields[(at + (back ? fields.size() - 1 : 1)) % fields.size()];
  if (next != field && SetFocus(next) == next) Select(next, 0, next->text.size());
}

// A key on its way down, and the field that it goes to.
struct Stroke {
  Widget* field = nullptr;
  char character = 0;
  bool shift = false;
  Selection now = {};
  bool selected = false;  // something is, else the caret stands at now.start
  size_t caret = 0;       // the active end
  size_t length = 0;
};

void Leave(const Stroke& it) { LoseFocus(it.field); }
void Tab(const Stroke& it) { FocusNeighbour(it.field, it.shift); }
void DeleteForward(const Stroke& it) {
  Replace(it.field, it.now.start, it.selected ? it.now.end : std::min(it.now.end + 1, it.length), "");
}
void DeleteBack(const Stroke& it) {
  Replace(it.field, it.selected || it.now.start == 0 ? it.now.start : it.now.start - 1, it.now.end, "");
}
void GoLeft(const Stroke& it) {
  MoveCaret(it.field, it.selected && !it.shift ? it.now.start : it.caret - (it.caret > 0), it.shift);
}
void GoRight(const Stroke& it) {
  MoveCaret(it.field, it.selected && !it.shift ? it.now.end : it.caret + (it.caret < it.length), it.shift);
}
void GoHome(const Stroke& it) { MoveCaret(it.field, 0, it.shift); }
void GoEnd(const Stroke& it) { MoveCaret(it.field, it.length, it.shift); }
void Insert(const Stroke& it) { Replace(it.field, it.now.start, it.now.end, std::string(1, it.character)); }

// Keys by what they send: the character or the virtual key, 0 where they have none.
struct KeyRow {
  unsigned char key = 0, virtualKey = 0;
  void (*press)(const Stroke&) = nullptr;
};
constexpr KeyRow keyRows[] = {
    {.key = XPLM_KEY_RETURN, .press = Leave},
    {.key = XPLM_KEY_ESCAPE, .press = Leave},
    {.key = XPLM_KEY_TAB, .press = Tab},
    {.virtualKey = 0x2E, .press = DeleteForward},
    {.key = XPLM_KEY_DELETE, .press = DeleteBack},
    {.key = XPLM_KEY_LEFT, .virtualKey = 0x25, .press = GoLeft},
    {.key = XPLM_KEY_RIGHT, .virtualKey = 0x27, .press = GoRight},
    {.virtualKey = 0x24, .press = GoHome},
    {.virtualKey = 0x23, .press = GoEnd},
};

// What a key does to a field; null when the field does not want it.
void (*DeedOf(const XPKeyState_t& state))(const Stroke&) {
  const unsigned char key = static_cast<unsigned char>(state.key);
  const unsigned char virtualKey = static_cast<unsigned char>(state.vkey);
  for (const KeyRow& row : keyRows) {
    if ((row.key && key == row.key) || (row.virtualKey && virtualKey == row.virtualKey)) return row.press;
  }
  return key >= 32 && key != 127 && !(state.flags & xplm_ControlFlag) ? Insert : nullptr;
}

// Whether the field takes the key; its way up is taken and does nothing. Enter and tab are the parents' keys:
// they leave the field or go to the next one only when no parent has another use for them.
bool KeyPressed(Widget* field, XPKeyState_t* key) {
  const XPKeyState_t& state = *key;
  const auto press = DeedOf(state);
  if (!press) return false;
  const bool parents = state.key == XPLM_KEY_RETURN || state.key == XPLM_KEY_TAB;
  if (parents && field->parent && Send(field->parent, xpMsg_KeyPress, xpMode_UpChain, AsParam(key), 0))
    return true;
  if (!IsLive(field) || keyboardFocus != field) return true;
  if ((state.flags & xplm_UpFlag) && !(state.flags & xplm_DownFlag)) return true;
  Stroke stroke = {.field = field, .character = state.key};
  stroke.shift = (state.flags & xplm_ShiftFlag) != 0;
  stroke.now = GetSelection(field);
  stroke.selected = stroke.now.end > stroke.now.start;
  const bool rightActive = Property(field, xpProperty_ActiveEditSide) != 0;
  stroke.caret = stroke.selected && !rightActive ? stroke.now.start : stroke.now.end;
  stroke.length = field->text.size();
  press(stroke);
  return true;
}

size_t CharacterAt(const Widget* field, int x) {
  const intptr_t first = std::max<intptr_t>(0, Property(field, xpProperty_ScrollPosition));
  const intptr_t at = first + (x - field->box.left - kFieldMargin + kLetterWidth / 2) / kLetterWidth;
  return static_cast<size_t>(std::clamp<intptr_t>(at, 0, static_cast<intptr_t>(field->text.size())));
}

}  // namespace

int VisibleLetters(const Widget* field) {
  return std::max(0, field->box.Width() - 2 * kFieldMargin) / kLetterWidth;
}

int TextFieldFunction(XPWidgetMessage message, XPWidgetID id, intptr_t param1, intptr_t) {
  Widget* field = static_cast<Widget*>(id);
  switch (message) {
    case xpMsg_KeyPress:
      return KeyPressed(field, reinterpret_cast<XPKeyState_t*>(param1));
    case xpMsg_KeyTakeFocus:
      if (!IsEnabled(field)) return 0;
      Select(field, field->text.size(), field->text.size());
      return 1;
    case xpMsg_KeyLoseFocus:
      return 1;
    case xpMsg_MouseDown:
      if (SetFocus(field) == field) {
        const size_t at = CharacterAt(field, reinterpret_cast<const XPMouseState_t*>(param1)->x);
        SetProperty(field, xpProperty_EditFieldSelDragStart, static_cast<intptr_t>(at));
        Select(field, at, at);
      }
      return 1;
    case xpMsg_MouseDrag:
      if (keyboardFocus == field) {
        const size_t at = CharacterAt(field, reinterpret_cast<const XPMouseState_t*>(param1)->x);
        const size_t from = std::min(static_cast<size_t>(Property(field, xpProperty_EditFieldSelDragStart)),
                                     field->text.size());
        SetProperty(field, xpProperty_ActiveEditSide, at >= from);
        Select(field, std::min(at, from), std::max(at, from));
      }
      return 1;
    case xpMsg_MouseUp:
      return 1;
    default:
      return 0;
  }
}

}  // namespace sim
