// The console's widget commands: what a user could see and do in the plug-ins' windows.
#include <algorithm>

#include "core/sim.h"
#include "widgets/picture.h"
#include "widgets/widgets.h"

namespace sim {
namespace {

// --- Looking ---------------------------------------------------------------------------------------

std::string List(const std::vector<std::string>&) {
  std::string answer = "ok";
  for (const Widget* window : VisibleWindows()) {
    answer += answer == "ok" ? " " : "; ";
    answer += "window " + Quote(window->text) + " {";
    const std::vector<Widget*> all = VisibleWithin(window);
    for (size_t i = 0; i < all.size(); ++i) {
      answer += i ? "; " : "";
      answer += std::string(ClassWord(all[i])) + " " + Quote(LabelOf(all[i], all));
      const std::string state = StateOf(all[i]);
      if (!state.empty()) answer.append(" ").append(state);
    }
    answer += "}";
  }
  return answer;
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
    std::vector<Widget*> found = finder(label, VisibleWithin(window));
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
  if (!ReachablePoint(widget, &x, &y))
    return Quote(label) + " is covered or lies outside its window or the screen";
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
      if (!OnScreen(x, y) || WidgetAt(window, x, y, true, true) != window) continue;
      Click(window, x, y);
      return "ok";
    }
    return "error: the close boxes of window " + Quote(words[0]) + " are covered or off the screen";
  }
  return "error: no visible window " + Quote(words[0]);
}

std::string Key(const std::vector<std::string>& words) {
  return PressKey(words[0]) ? "ok" : "error: the keys are " + KeyNames() + ", not " + words[0];
}

std::string Picture(const std::vector<std::string>& words) {
  std::string error;
  WritePicture(DrawScreen(VisibleWindows()), words[0], &error);
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
    {.word = "key", .usage = " NAME", .least = 1, .most = 1, .run = Key},
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
