// Keyboard focus, and the mouse and keys of the user whom the console stands for.

#include "widgets/widgets.h"

namespace sim {
namespace {

// What the named keys send: a character (0: none), a virtual key, modifiers.
struct NamedKey {
  const char* name;
  char key;
  unsigned char virtualKey;
  int modifiers = 0;
};
constexpr NamedKey namedKeys[] = {{"enter", XPLM_KEY_RETURN, 0x0D},
                                  {"escape", XPLM_KEY_ESCAPE, 0x1B},
                                  {"tab", XPLM_KEY_TAB, 0x09},
                                  {"backtab", XPLM_KEY_TAB, 0x09, xplm_ShiftFlag},
                                  {"backspace", XPLM_KEY_DELETE, 0x08},
                                  {"delete", 0, 0x2E},
                                  {"insert", 0, 0x2D},
                                  {"space", ' ', 0x20},
                                  {"left", XPLM_KEY_LEFT, 0x25},
                                  {"right", XPLM_KEY_RIGHT, 0x27},
                                  {"up", XPLM_KEY_UP, 0x26},
                                  {"down", XPLM_KEY_DOWN, 0x28},
                                  {"home", 0, 0x24},
                                  {"end", 0, 0x23},
                                  {"pageup", 0, 0x21},
                                  {"pagedown", 0, 0x22}};
constexpr int functionKeys = 24;

}  // namespace

Widget* SetFocus(Widget* widget) {
  Hold hold;
  if (widget == keyboardFocus) return keyboardFocus;
  if (widget) {
    if (!Send(widget, xpMsg_KeyTakeFocus, xpMode_Direct, 0, 0) || !IsLive(widget)) return keyboardFocus;
    if (widget->dying) return keyboardFocus;
  }
  Widget* old = keyboardFocus;
  keyboardFocus = widget;
  if (old && old != widget) Send(old, xpMsg_KeyLoseFocus, xpMode_Direct, widget != nullptr, 0);
  return keyboardFocus;
}

void LoseFocus(Widget* widget) {
  if (keyboardFocus != widget) return;
  Hold hold;
  keyboardFocus = nullptr;
  Send(widget, xpMsg_KeyLoseFocus, xpMode_Direct, 0, 0);
  // The callback may have placed the focus itself, or have destroyed the family.
  for (Widget* at = widget->parent; at && IsLive(at) && !keyboardFocus; at = at->parent) {
    if (Send(at, xpMsg_KeyTakeFocus, xpMode_Direct, 1, 0) && IsLive(at)) {
      if (!keyboardFocus) keyboardFocus = at;
      return;
    }
  }
}

bool OnScreen(int x, int y) {
  Rect screen;
  GetScreen(&screen.right, &screen.top);
  return screen.Holds(x, y);
}

bool ReachablePoint(Widget* widget, int* x, int* y) {
  Widget* window = RootOf(widget);
  if (!window || !IsVisible(widget)) return false;
  const Rect box = Exposed(widget);
  // The centre first, then a grid: something may lie on top of a part of it.
  static const int kSixths[] = {3, 1, 2, 4, 5};
  for (int down : kSixths) {
    for (int across : kSixths) {
      *x = box.left + box.Width() * across / 6;
      *y = box.bottom + box.Height() * down / 6;
      if (OnScreen(*x, *y) && WidgetAt(window, *x, *y, true, true) == widget) return true;
    }
  }
  return false;
}

void Click(Widget* window, int x, int y) {
  Hold hold;
  BringToFront(window);
  XPMouseState_t mouse = {x, y, 0, 0};
  Widget* target = WidgetAt(window, x, y, true, true);
  // Up the chain; the one that takes the click owns the rest of it.
  while (target && IsLive(target) && !Send(target, xpMsg_MouseDown, xpMode_Direct, AsParam(&mouse), 0))
    target = target->parent;
  if (target && IsLive(target)) Send(target, xpMsg_MouseUp, xpMode_Direct, AsParam(&mouse), 0);
}

void TypeKey(char key, unsigned char virtualKey, int modifiers) {
  for (int flag : {static_cast<int>(xplm_DownFlag), static_cast<int>(xplm_UpFlag)}) {
    XPKeyState_t state = {key, flag | modifiers, static_cast<char>(virtualKey)};
    if (keyboardFocus) Send(keyboardFocus, xpMsg_KeyPress, xpMode_UpChain, AsParam(&state), 0);
  }
}

bool PressKey(const std::string& name) {
  for (const NamedKey& key : namedKeys) {
    if (name == key.name) return TypeKey(key.key, key.virtualKey, key.modifiers), true;
  }
  for (int number = 1; number <= functionKeys; ++number) {
    if (name == "f" + std::to_string(number))
      return TypeKey(0, static_cast<unsigned char>(0x70 + number - 1), 0), true;
  }
  return false;
}

std::string KeyNames() {
  std::string names;
  for (const NamedKey& key : namedKeys) names += std::string(key.name) + ", ";
  return names + "f1 to f" + std::to_string(functionKeys);
}

void TypeCharacter(char character) {
  // Keys of a US keyboard: plain character, shifted character, virtual key.
  static const struct {
    char plain, shifted;
    unsigned char virtualKey;
  } kKeys[] = {{'=', '+', 0xB0}, {'-', '_', 0xB1},  {']', '}', 0xB2}, {'[', '{', 0xB3}, {'\'', '"', 0xB4},
               {';', ':', 0xB5}, {'\\', '|', 0xB6}, {',', '<', 0xB7}, {'/', '?', 0xB8}, {'.', '>', 0xB9},
               {'`', '~', 0xBA}, {'1', '!', 0x31},  {'2', '@', 0x32}, {'3', '#', 0x33}, {'4', '$', 0x34},
               {'5', '%', 0x35}, {'6', '^', 0x36},  {'7', '&', 0x37}, {'8', '*', 0x38}, {'9', '(', 0x39},
               {'0', ')', 0x30}, {' ', ' ', 0x20}};
  if ((character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z')) {
    const bool upper = character <= 'Z';
    const int letter = upper ? character : character - 'a' + 'A';
    TypeKey(character, static_cast<unsigned char>(letter), upper ? xplm_ShiftFlag : 0);
    return;
  }
  for (const auto& key : kKeys) {
    if (character == key.plain) return TypeKey(character, key.virtualKey, 0);
    if (character == key.shifted) return TypeKey(character, key.virtualKey, xplm_ShiftFlag);
  }
  TypeKey(character, 0, 0);
}

}  // namespace sim
