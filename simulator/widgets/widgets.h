// The stand-in's widget library: windows, buttons, fields and the like, as plug-ins see them through the
// XPWidgets functions. Nothing is drawn on a screen; the console lists the windows, presses, types and
// closes with the very mouse and key messages that a user would cause, and draws pictures into files.
//
//   widget_tree.cpp     records, message dispatch, creation, destruction, families, places, properties
//   widget_input.cpp    keyboard focus, simulated mouse clicks and keys
//   widget_classes.cpp  behaviour of windows, buttons and scroll bars; text_field.cpp that of fields
//   widget_utils.cpp    the helpers that export as XPU...
//   widget_labels.cpp   what a user reads: words for classes and states, which caption or field belongs to what
//   widget_console.cpp  console commands; picture.h and its files draw
//
// Everything belongs to the simulator's own thread. Coordinates are screen pixels, y upwards.
#pragma once
#include <map>
#include <string>
#include <vector>

#include "XPStandardWidgets.h"
#include "XPWidgetUtils.h"
#include "XPWidgets.h"
#include "core/sim.h"

namespace sim {

struct Rect {
  int left = 0, top = 0, right = 0, bottom = 0;
  bool operator==(const Rect&) const = default;
  // Edges belong to the rectangle.
  bool Holds(int x, int y) const { return x >= left && x <= right && y >= bottom && y <= top; }
  int Width() const { return right - left; }
  int Height() const { return top - bottom; }
};

// One widget. The handle that plug-ins hold is the address of its record.
struct Widget {
  XPWidgetClass type = xpWidgetClass_None;  // None for custom widgets
  bool root = false;
  bool visible = false;  // its own flag; IsVisible asks the parents too
  bool dying = false;    // inside its destruction
  Rect box;
  std::string text;
  Widget* parent = nullptr;
  std::vector<Widget*> children;          // the last one lies on top
  std::vector<XPWidgetFunc_t> callbacks;  // oldest first: the class function
  std::map<XPWidgetPropertyID, intptr_t> properties;
};

// Root widgets, front one first, hidden ones included.
extern std::vector<Widget*> roots;
// Who has the keyboard, null when the simulator has.
extern Widget* keyboardFocus;

// Records that are destroyed while a Hold exists stay readable until the outermost one ends, so that code
// that sends messages may go on looking at its widget (and ask IsLive) afterwards.
struct Hold {
  Hold();
  ~Hold();
  Hold(const Hold&) = delete;
  Hold& operator=(const Hold&) = delete;
};

bool IsLive(const Widget* widget);
int WidgetCount();
// Frees every record without telling anyone: the owners are gone.
void PurgeWidgets();

int Send(Widget* widget, XPWidgetMessage message, XPDispatchMode mode, intptr_t param1, intptr_t param2);
// Value of a property, 0 when it was never set.
intptr_t Property(const Widget* widget, XPWidgetPropertyID id);
// A new value is announced to the widget; setting the value it has is silent.
void SetProperty(Widget* widget, XPWidgetPropertyID id, intptr_t value);
void SetText(Widget* widget, const std::string& text);
void SetBox(Widget* widget, const Rect& box);
// Enabled unless the property says 0.
bool IsEnabled(const Widget* widget);
bool IsVisible(const Widget* widget);
Widget* RootOf(Widget* widget);
bool IsWithin(const Widget* widget, const Widget* ancestor);
void BringToFront(Widget* widget);
// No other visible window lies before the widget's own, which is visible.
bool IsInFront(Widget* widget);
// The part that lies inside all parents; all zero when nothing does.
Rect Exposed(const Widget* widget);
Widget* WidgetAt(Widget* container, int x, int y, bool recursive, bool visibleOnly);

// Moves the keyboard (null: to the simulator) and returns who has it then; a widget may refuse.
Widget* SetFocus(Widget* widget);
// The widget gives the keyboard to the nearest parent that wants it, else to the simulator.
void LoseFocus(Widget* widget);
// Whether the mouse could be there.
bool OnScreen(int x, int y);
// A point of the screen where the mouse would really meet this widget, its window being in front. False when
// there is none.
bool ReachablePoint(Widget* widget, int* x, int* y);
// Left button down and up at a point of a window.
void Click(Widget* window, int x, int y);
// One key down and up for whoever has the keyboard; nobody wants it when the simulator has.
void TypeKey(char key, unsigned char virtualKey, int modifiers);
// The key that produces a character, with shift where a keyboard needs it.
void TypeCharacter(char character);
// A key by its name: "enter", "f1". False when there is none of that name.
bool PressKey(const std::string& name);
std::string KeyNames();

// A class of the public interface.
struct ClassRow {
  XPWidgetClass type = xpWidgetClass_None;
  const char* word = "";              // as the console calls it
  XPWidgetFunc_t function = nullptr;  // the oldest callback of its widgets; null: there are none of the class
};
// The row of None (custom widgets) for a class that does not exist.
const ClassRow& ClassOf(XPWidgetClass type);
int TextFieldFunction(XPWidgetMessage message, XPWidgetID id, intptr_t param1, intptr_t param2);
// Characters of a text field that are shown at once, kFieldMargin pixels from its edges.
int VisibleLetters(const Widget* field);
constexpr int kFieldMargin = 3;
// The k-th close box (0 left, 1 right) of a main window.
Rect CloseBox(const Widget* window, int k);
// Where the parts of a scroll bar lie, in pixels from the end with the lowest value. A bar lies down when it is
// wider than high (lowest value left) and stands else (lowest value below). Arrows take a square at either end;
// the thumb is a square too.
struct BarLayout {
  bool lying = false;
  int size = 0;    // side of the squares
  int length = 0;  // of the whole bar
  bool arrows = false;
  int arrow = 0;  // what they take at either end, 0 for a slider without
  int Travel() const { return length - 2 * arrow - size; }  // that the thumb can move
};
BarLayout LayoutOf(const Widget* bar);
constexpr int kTitleHeight = 20;

// Visible main windows, the front one first.
std::vector<Widget*> VisibleWindows();
// All visible descendants, parents before their children, children in order.
std::vector<Widget*> VisibleWithin(const Widget* widget);
// A check box or radio button.
bool IsBox(const Widget* widget);
// As the console calls it.
const char* ClassWord(const Widget* widget);
// What a box, a slider or a bar shows besides its text, "" for all others.
std::string StateOf(const Widget* widget);
// What a user would call it: its own text or, of a box without one, that of the caption beside it on the same
// line. `all` are the visible widgets of its window.
const std::string& LabelOf(const Widget* widget, const std::vector<Widget*>& all);
// Buttons and boxes with this label.
std::vector<Widget*> ButtonsLabelled(const std::string& label, const std::vector<Widget*>& all);
// For each caption with this text the nearest text field right of it on the same line.
std::vector<Widget*> FieldsLabelled(const std::string& label, const std::vector<Widget*>& all);

// The console's words; the answer is the whole line.
void WidgetConsole(const char* command, const char* arguments, std::string* answer);

inline Widget* AsWidget(intptr_t param) { return reinterpret_cast<Widget*>(param); }
inline intptr_t AsParam(const void* pointer) { return reinterpret_cast<intptr_t>(pointer); }

}  // namespace sim
