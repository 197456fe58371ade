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
  if (!IsBox(widget)) return ClassOf(widget->type).word;
  return Property(widget, xpProperty_ButtonBehavior) == xpButtonBehaviorCheckBox ? "checkbox" : "radio";
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

std::string List(const std::vector<std::string>&) {
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

// "ok", or "error: " and why not.
std::string Answer(const std::string& error) { return error.empty() ? "ok" : "error: " + error; }

// An empty text means success, else why not.
std::string ClickOn(Widget* widget, const std::string& label) {
  int x = 0, y = 0;
  if (!ReachablePoint(widget, &x, &y)) return Quote(label) + " is covered or lies outside its window";
  Click(RootOf(widget), x, y);
  return "";
}

std::string Press(const std::vector<std::string>& words) {
  std::string error;
  const std::string& label = words.back();
  Widget* button =
      FindLabelled(words.size() == 2 ? &words[0] : nullptr, label, ButtonsLabelled, "button or box", &error);
  return Answer(button ? ClickOn(button, label) : error);
}

std::string Type(const std::vector<std::string>& words) {
  std::string error;
  const std::string& label = words[words.size() - 2];
  Widget* field = FindLabelled(words.size() == 3 ? &words[0] : nullptr, label, FieldsLabelled,
                               "text field right of", &error);
  if (!field) return Answer(error);
  Hold hold;
  error = ClickOn(field, label);
  if (!error.empty()) return Answer(error);
  if (keyboardFocus != field)
    return "error: the field right of " + Quote(label) + " does not take the keyboard";
  SetProperty(field, xpProperty_EditFieldSelStart, 0);
  SetProperty(field, xpProperty_EditFieldSelEnd, static_cast<intptr_t>(field->text.size()));
  TypeKey(XPLM_KEY_DELETE, 0x08, 0);
  for (char character : words.back()) {
    if (keyboardFocus == field) TypeCharacter(character);
  }
  if (keyboardFocus == field) TypeKey(XPLM_KEY_RETURN, 0x0D, 0);
  return "ok";
}

std::string Close(const std::vector<std::string>& words) {
  for (Widget* window : VisibleWindows()) {
    if (window->text != words[0]) continue;
    if (!Property(window, xpProperty_MainWindowHasCloseBoxes))
      return "error: window " + Quote(words[0]) + " has no close box";
    for (int k = 0; k < 2; ++k) {
      const Rect box = CloseBox(window, k);
      const int x = (box.left + box.right) / 2, y = (box.top + box.bottom) / 2;
      if (WidgetAt(window, x, y, true, true) != window) continue;
      Click(window, x, y);
      return "ok";
    }
    return "error: the close boxes of window " + Quote(words[0]) + " are covered";
  }
  return "error: no visible window " + Quote(words[0]);
}

std::string Picture(const std::vector<std::string>& words) {
  std::string error;
  DrawPicture(VisibleWindows(), words[0], &error);
  return Answer(error);
}

// A word of the console; `run` returns the whole answer.
struct WordRow {
  const char* word = "";
  const char* usage = "";
  size_t least = 0, most = 0;  // words that follow
  std::string (*run)(const std::vector<std::string>& words) = nullptr;
};
constexpr WordRow wordRows[] = {
    {.word = "widgets", .run = List},
    {.word = "press", .usage = " [\"WINDOW\"] \"LABEL\"", .least = 1, .most = 2, .run = Press},
    {.word = "type", .usage = " [\"WINDOW\"] \"LABEL\" \"TEXT\"", .least = 2, .most = 3, .run = Type},
    {.word = "close", .usage = " \"WINDOW\"", .least = 1, .most = 1, .run = Close},
    {.word = "picture", .usage = " FILE", .least = 1, .most = 1, .run = Picture},
};

std::string Run(const std::string& word, const char* arguments) {
  std::vector<std::string> words;
  std::vector<bool> quoted;
  if (!SplitWords(arguments, &words, &quoted)) return "error: a quote is not closed";
  for (const WordRow& row : wordRows) {
    if (word != row.word) continue;
    if (words.size() < row.least || words.size() > row.most) return "error: usage: " + word + row.usage;
    return row.run(words);
  }
  return "error: unknown command " + word;
}

const WidgetHooks kHooks = {WidgetConsole, WidgetCount, PurgeWidgets};
// The core learns of the library as soon as it is loaded.
const bool hooked = (SetWidgetHooks(&kHooks), true);

}  // namespace

void WidgetConsole(const char* command, const char* arguments, std::string* answer) {
  Hold hold;
  *answer = Run(command, arguments);
}

}  // namespace sim
