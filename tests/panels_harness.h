// Harness for tests of the plug-in's windows: the whole plug-in in a stand-in simulator with files of its own,
// and what a person sees and does in the windows.
#pragma once
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "XPLMGraphics.h"
#include "panels/panels.h"
#include "platform/clock.h"
#include "row_harness.h"
#include "settings/settings.h"
#include "shell/lifecycle.h"
#include "test_tools.h"
#include "unit/sim_talk.h"
#include "widgets/widgets.h"

namespace panels {

using sim::SimCommand;

inline const sim::PluginEntry entry = {StartPlugin, StopPlugin, EnablePlugin, DisablePlugin,
                                       ReceivePluginMessage};

struct Panels : testing::Test {
  std::string root = testing::TempDir() + "tavrix_panels";
  std::string folder = root + "/Resources/plugins/TAVRIX/";

  void SetUp() override {
    std::filesystem::remove_all(root);
    std::filesystem::create_directories(folder);
    Begin();
  }
  void TearDown() override {
    Stop();
    std::filesystem::remove_all(root);
  }
  void Begin() {
    sim::Options options;
    options.root = root;
    options.rate = 0;
    options.circuit = false;
    options.linked = &entry;
    ASSERT_EQ(sim::SimStart(options), 0);
    sim::SimFrames(70);
  }
  void Stop() {
    EXPECT_EQ(sim::SimStop(), 0);
    EXPECT_EQ(sim::TakeBreaches(), std::vector<std::string>{});
    EXPECT_EQ(sim::WidgetCount(), 0);
  }
  std::string File(const char* name) const { return tools::ReadFile(folder + name); }
  std::string Setting(const char* section, const char* key) const {
    char value[200];
    return ReadSetting(section, key, value, sizeof value) < 0 ? "missing" : value;
  }
};

inline const sim::Widget* Find(const std::string& title) {
  for (const sim::Widget* root : sim::roots) {
    if (root->text == title && root->visible) return root;
  }
  return nullptr;
}
inline void Open(const char* title) { Talk("menu \"" + std::string(title) + '"'); }
// The text right of a label: of a value or a field.
inline std::string Shown(const char* title, const std::string& label) {
  const sim::Widget* window = Find(title);
  if (window == nullptr) return "(closed)";
  const sim::Widget* found = nullptr;
  for (const sim::Widget* at : window->children) {
    if (at->text != label || at->type != xpWidgetClass_Caption) continue;
    for (const sim::Widget* other : window->children) {
      const bool right = other->visible && other->box.top == at->box.top && other->box.left > at->box.left;
      if (right && (found == nullptr || other->box.left < found->box.left)) found = other;
    }
  }
  return found == nullptr ? "(none)" : found->text;
}
// The message in the last line, which may take two.
inline std::string Message(const char* title) {
  const sim::Widget* window = Find(title);
  if (window == nullptr) return "(closed)";
  const sim::Widget *first = window->children.end()[-2], *second = window->children.back();
  return first->text + (second->visible ? ' ' + second->text : "");
}
inline bool Shows(const std::string& text) {
  return SimCommand("widgets").find('"' + text + '"') != std::string::npos;
}
inline void Key(char key, int flags = 0) { sim::TypeKey(key, 0, flags); }
inline void TypeText(const char* text) {
  for (; *text != 0; ++text) sim::TypeCharacter(*text);
}
// Lets time pass, after which every open window follows what it shows.
inline void Follow() {
  SleepMilliseconds(260);
  sim::SimFrames(1);
}

// What is wrong with the open windows: texts that are drawn over each other, and what lies outside its window
// or the screen.
inline std::string FaultsOf(int width, int height) {
  std::string faults;
  for (const sim::Widget* window : sim::roots) {
    if (!window->visible) continue;
    const auto say = [&](const sim::Widget* widget, const char* what) {
      faults += window->text + ": \"" + widget->text + "\" " + what + "\n";
    };
    const auto drawn = [](const sim::Widget* widget) {
      sim::Rect box = widget->box;
      const int letters =
          static_cast<int>(XPLMMeasureString(18, widget->text.c_str(), int(widget->text.size())));
      if (widget->type == xpWidgetClass_Caption) box.right = box.left + letters;
      return box;
    };
    const sim::Rect& outer = window->box;
    if (outer.left < 0 || outer.right > width || outer.top > height || outer.bottom < 0) say(window, "is off");
    for (size_t i = 0; i < window->children.size(); ++i) {
      const sim::Widget* one = window->children[i];
      if (!one->visible) continue;
      const sim::Rect a = drawn(one);
      if (a.right > one->box.right || a.left < outer.left || a.right > outer.right || a.bottom < outer.bottom) {
        say(one, "does not fit");
      }
      for (size_t k = 0; k < i; ++k) {
        const sim::Widget* other = window->children[k];
        const sim::Rect b = drawn(other);
        const bool empty = other->type == xpWidgetClass_Caption && other->text.empty();
        if (!other->visible || empty || (one->type == xpWidgetClass_Caption && one->text.empty())) continue;
        if (a.left < b.right && b.left < a.right && a.bottom < b.top && b.bottom < a.top) {
          say(one, ("lies over \"" + other->text + '"').c_str());
        }
      }
    }
  }
  return faults;
}

// The items of the menu, and the title of the window that one opens.
constexpr const char* items[] = {versionWindowTitle,     atcWindowTitle,        buttonMenuItem,
                                 calibrationWindowTitle, combiningWindowTitle,  pushbackWindowTitle,
                                 flapsWindowTitle,       performanceWindowTitle};
inline std::string TitleOf(const char* item) {
  return std::string(item) == buttonMenuItem ? buttonWindowTitle : item;
}

}  // namespace panels
