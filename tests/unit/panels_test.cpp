// The plug-in's windows as a person uses them: by the menu, with mouse and keys, over disable and restart.
#include "panels/panels.h"

#include <filesystem>
#include <set>
#include <string>

#include "XPLMGraphics.h"
#include "base/log.h"
#include "panels/layout.h"
#include "row_harness.h"
#include "settings/settings.h"
#include "shell/lifecycle.h"
#include "test_tools.h"
#include "unit/sim_talk.h"
#include "widgets/widgets.h"

namespace {

using sim::SimCommand;

const sim::PluginEntry entry = {StartPlugin, StopPlugin, EnablePlugin, DisablePlugin, ReceivePluginMessage};

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
};

// What is wrong with the open windows: texts that are drawn over each other, and what lies outside its window
// or the screen.
std::string FaultsOf(int width, int height) {
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

constexpr const char* titles[] = {versionWindowTitle,     atcWindowTitle,        buttonWindowTitle,
                                  calibrationWindowTitle, combiningWindowTitle,  pushbackWindowTitle,
                                  flapsWindowTitle,       performanceWindowTitle};

TEST_F(Panels, Menu) {
  const std::string top = "TAVRIX > ", plus = top + "TAVRIX+ > ", joystick = plus + "Joystick functions > ",
                    misc = plus + "Misc. functions > ";
  EXPECT_EQ(SimCommand("menu"),
            "ok " + top + "TAVRIX Version and Info; " + top + "ATC Menu; " + top + "-; " + joystick +
                "Joystick Button Assignments; " + joystick + "Joystick Calibration Assignments; " + joystick +
                "Joystick Axis Combining Assignments; " + misc + "Push Back Settings; " + misc +
                "Flaps settings; " + top + "-; " + top + "TAVRIX settings > Performance settings");
}

// All windows at once: each label can be read, the windows cascade, and a hundred rounds leave no more widgets
// than the first.
TEST_F(Panels, AllWindowsAtOnce) {
  OpenAlertWindow(std::string(200, 'x').c_str());
  for (const char* title : titles) Talk("menu \"" + std::string(title) + '"');
  sim::SimFrames(70);
  std::set<std::pair<int, int>> corners;
  for (const sim::Widget* window : sim::roots) corners.insert({window->box.left, window->box.top});
  EXPECT_EQ(corners.size(), std::size(titles) + 1);
  EXPECT_EQ(FaultsOf(1024, 768), "");
  const int widgets = sim::WidgetCount();
  for (int round = 0; round < 100; ++round) {
    for (const char* title : titles) {
      Talk("close \"" + std::string(title) + "\" | menu \"" + title + '"');
    }
  }
  EXPECT_EQ(sim::WidgetCount(), widgets);
}

}  // namespace
