// The console's widget commands: what a user could see and do in the plug-ins' windows.
#include <algorithm>
#include <charconv>

#include "core/sim.h"
#include "widgets/picture.h"
#include "widgets/widgets.h"

namespace sim {
namespace {

// --- Looking ---------------------------------------------------------------------------------------

std::vector<Widget*> VisibleWindows() {
  std::vector<Widget*> windows;
  for (Widget* root : roots) {
    if (root->visible && root->type == xpWidgetClass_MainWindow) windows.push_back(root);
  }
  return windows;
}

// All visible descendants, parents before their children, children in order.
void GatherVisible(const Widget* widget, std::vector<Widget*>* list) {
  for (Widget* child : widget->children) {
    if (!child->visible) continue;
    list->push_back(child);
    GatherVisible(child, list);
  }
}

bool IsBox(const Widget* widget) {
  const intptr_t behaviour = Property(widget, xpProperty_ButtonBehavior);
  return widget->type == xpWidgetClass_Button &&
         (behaviour == xpButtonBehaviorCheckBox || behaviour == xpButtonBehaviorRadioButton);
}

const char* ClassWord(const Widget* widget) {
  switch (widget->type) {
    case xpWidgetClass_MainWindow:
      return "window";
    case xpWidgetClass_SubWindow:
      return "subwindow";
    case xpWidgetClass_Button:
      if (!IsBox(widget)) return "button";
      return Property(widget, xpProperty_ButtonBehavior) == xpButtonBehaviorCheckBox ? "checkbox" : "radio";
    case xpWidgetClass_TextField:
      return "textfield";
    case xpWidgetClass_ScrollBar:
      return "scrollbar";
    case xpWidgetClass_Caption:
      return "caption";
    case xpWidgetClass_GeneralGraphics:
      return "graphics";
    case xpWidgetClass_Progress:
      return "progress";
    default:
      return "custom";
  }
}

std::string Number(intptr_t value) {
  char text[24];
  return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

// What a box, a slider or a bar shows besides its text, "" for all others.
std::string State(const Widget* widget) {
  if (IsBox(widget)) return Property(widget, xpProperty_ButtonState) ? "on" : "off";
  if (widget->type == xpWidgetClass_ScrollBar)
    return Number(Property(widget, xpProperty_ScrollBarSliderPosition));
  if (widget->type == xpWidgetClass_Progress) return Number(Property(widget, xpProperty_ProgressPosition));
  return "";
}

std::string ListWidgets() {
  std::string answer = "ok";
  for (const Widget* window : VisibleWindows()) {
    answer += answer == "ok" ? " " : "; ";
    answer += "window " + Quote(window->text) + " {";
    std::vector<Widget*> list;
    GatherVisible(window, &list);
    for (size_t i = 0; i < list.size(); ++i) {
      answer += i ? "; " : "";
      answer += std::string(ClassWord(list[i])) + " " + Quote(list[i]->text);
      const std::string state = State(list[i]);
      if (!state.empty()) answer.append(" ").append(state);
    }
    answer += "}";
  }
  return answer;
}

// --- Labels ----------------------------------------------------------------------------------------

bool OnOneLine(const Widget* a, const Widget* b) {
  const int middleA = (a->box.top + a->box.bottom) / 2, middleB = (b->box.top + b->box.bottom) / 2;
  return (middleA >= b->box.bottom && middleA <= b->box.top) ||
         (middleB >= a->box.bottom && middleB <= a->box.top);
}

// The caption that labels a box without a text of its own: its left or right neighbour on the line. When
// it has both, a line that begins or ends with a box shows on which side the captions stand, else the
// nearer one counts.
const Widget* NeighbourCaption(const Widget* box, const std::vector<Widget*>& all) {
  std::vector<const Widget*> line;
  for (const Widget* other : all) {
    const bool counts = other->type == xpWidgetClass_Caption || other->type == xpWidgetClass_Button ||
                        other->type == xpWidgetClass_TextField || other->type == xpWidgetClass_ScrollBar;
    if (other == box || (counts && OnOneLine(box, other))) line.push_back(other);
  }
  std::stable_sort(line.begin(), line.end(),
                   [](const Widget* a, const Widget* b) { return a->box.left < b->box.left; });
  const auto at = std::find(line.begin(), line.end(), box);
  const auto captionAt = [&](auto it) { return (*it)->type == xpWidgetClass_Caption ? *it : nullptr; };
  const Widget* left = at == line.begin() ? nullptr : captionAt(at - 1);
  const Widget* right = at + 1 == line.end() ? nullptr : captionAt(at + 1);
  if (!left || !right) return left ? left : right;
  const bool boxFirst = IsBox(line.front()), boxLast = IsBox(line.back());
  if (boxFirst != boxLast) return boxFirst ? right : left;
  return box->box.left - left->box.right < right->box.left - box->box.right ? left : right;
}

bool HasLabel(const Widget* button, const std::string& label, const std::vector<Widget*>& all) {
  if (button->type != xpWidgetClass_Button) return false;
  if (!button->text.empty()) return button->text == label;
  const Widget* caption = IsBox(button) ? NeighbourCaption(button, all) : nullptr;
  return caption && caption->text == label;
}

// Buttons and boxes with this label.
std::vector<Widget*> ButtonsLabelled(const std::string& label, const std::vector<Widget*>& all) {
  std::vector<Widget*> found;
  for (Widget* widget : all) {
    if (HasLabel(widget, label, all)) found.push_back(widget);
  }
  return found;
}

// For each caption with this text the nearest text field right of it on the same line.
std::vector<Widget*> FieldsLabelled(const std::string& label, const std::vector<Widget*>& all) {
  std::vector<Widget*> found;
  for (const Widget* caption : all) {
    if (caption->type != xpWidgetClass_Caption || caption->text != label) continue;
    Widget* nearest = nullptr;
    for (Widget* field : all) {
      if (field->type != xpWidgetClass_TextField || field->box.left <= caption->box.left ||
          !OnOneLine(field, caption))
        continue;
      if (!nearest || field->box.left < nearest->box.left) nearest = field;
    }
    if (nearest && std::find(found.begin(), found.end(), nearest) == found.end()) found.push_back(nearest);
  }
  return found;
}

using Finder = std::vector<Widget*> (*)(const std::string& label, const std::vector<Widget*>& all);

// The one enabled widget with this label in the front most visible window that has any, or in the window
// named (null: any). Returns null with an error when there is none or more than one.
Widget* FindLabelled(const std::string* title, const std::string& label, Finder finder, const char* what,
                     std::string* error) {
  bool windowSeen = !title, disabledSeen = false;
  for (const Widget* window : VisibleWindows()) {
    if (title && window->text != *title) continue;
    windowSeen = true;
    std::vector<Widget*> all;
    GatherVisible(window, &all);
    std::vector<Widget*> found = finder(label, all);
    disabledSeen |= std::erase_if(found, [](const Widget* w) { return !IsEnabled(w); }) > 0;
    if (found.size() == 1) return found[0];
    if (!found.empty()) {
      *error = Quote(label) + " is ambiguous in window " + Quote(window->text);
      return nullptr;
    }
  }
  if (!windowSeen) {
    *error = "no visible window " + Quote(*title);
  } else if (disabledSeen) {
    *error = std::string(what) + " " + Quote(label) + " is disabled";
  } else {
    *error = std::string("no visible ") + what + " " + Quote(label);
  }
  return nullptr;
}

// --- Acting ----------------------------------------------------------------------------------------

std::string ClickOn(Widget* widget, const std::string& label) {
  int x = 0, y = 0;
  if (!ReachablePoint(widget, &x, &y)) return Quote(label) + " is covered or lies outside its window";
  Click(RootOf(widget), x, y);
  return "";
}

std::string Press(const std::vector<std::string>& words) {
  if (words.empty() || words.size() > 2) return "usage: press [\"WINDOW\"] \"LABEL\"";
  std::string error;
  const std::string& label = words.back();
  Widget* button =
      FindLabelled(words.size() == 2 ? &words[0] : nullptr, label, ButtonsLabelled, "button or box", &error);
  return button ? ClickOn(button, label) : error;
}

std::string Type(const std::vector<std::string>& words) {
  if (words.size() < 2 || words.size() > 3) return "usage: type [\"WINDOW\"] \"LABEL\" \"TEXT\"";
  std::string error;
  const std::string& label = words[words.size() - 2];
  Widget* field = FindLabelled(words.size() == 3 ? &words[0] : nullptr, label, FieldsLabelled,
                               "text field right of", &error);
  if (!field) return error;
  Hold hold;
  error = ClickOn(field, label);
  if (!error.empty()) return error;
  if (keyboardFocus != field) return "the field right of " + Quote(label) + " does not take the keyboard";
  SetProperty(field, xpProperty_EditFieldSelStart, 0);
  SetProperty(field, xpProperty_EditFieldSelEnd, static_cast<intptr_t>(field->text.size()));
  TypeKey(XPLM_KEY_DELETE, 0x08, 0);
  for (char character : words.back()) {
    if (keyboardFocus == field) TypeCharacter(character);
  }
  if (keyboardFocus == field) TypeKey(XPLM_KEY_RETURN, 0x0D, 0);
  return "";
}

std::string Close(const std::vector<std::string>& words) {
  if (words.size() != 1) return "usage: close \"WINDOW\"";
  for (Widget* window : VisibleWindows()) {
    if (window->text != words[0]) continue;
    if (!Property(window, xpProperty_MainWindowHasCloseBoxes))
      return "window " + Quote(words[0]) + " has no close box";
    for (int k = 0; k < 2; ++k) {
      const Rect box = CloseBox(window, k);
      const int x = (box.left + box.right) / 2, y = (box.top + box.bottom) / 2;
      if (WidgetAt(window, x, y, true, true) != window) continue;
      Click(window, x, y);
      return "";
    }
    return "the close boxes of window " + Quote(words[0]) + " are covered";
  }
  return "no visible window " + Quote(words[0]);
}

std::string Picture(const std::vector<std::string>& words) {
  if (words.size() != 1) return "usage: picture FILE";
  std::string error;
  DrawPicture(VisibleWindows(), words[0], &error);
  return error;
}

const WidgetHooks kHooks = {WidgetConsole, WidgetCount, PurgeWidgets};
// The core learns of the library as soon as it is loaded.
const bool hooked = (SetWidgetHooks(&kHooks), true);

}  // namespace

void WidgetConsole(const char* command, const char* arguments, std::string* answer) {
  Hold hold;
  const std::string word = command;
  std::vector<std::string> words;
  std::vector<bool> quoted;
  std::string error;
  *answer = "ok";
  if (!SplitWords(arguments, &words, &quoted)) {
    error = "a quote is not closed";
  } else if (word == "widgets") {
    *answer = words.empty() ? ListWidgets() : "error: usage: widgets";
  } else if (word == "press") {
    error = Press(words);
  } else if (word == "type") {
    error = Type(words);
  } else if (word == "close") {
    error = Close(words);
  } else if (word == "picture") {
    error = Picture(words);
  } else {
    error = "unknown command " + word;
  }
  if (!error.empty()) *answer = "error: " + error;
}

}  // namespace sim
