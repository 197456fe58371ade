// "Joystick Button Assignments".
#include "controls/buttons.h"
#include "panels/layout.h"
#include "panels/panels.h"

namespace {

std::string Pressed(int) {
  const int button = LastPressedButton();
  return button < 0 ? "Press a joystick button" : std::to_string(button);
}

constexpr Row rows[] = {
    {{{.kind = CellKind::Value, .label = "Button pressed is:", .width = 24, .text = Pressed}}},
};
constexpr WindowPlan plan = {.title = buttonWindowTitle, .rows = rows};

}  // namespace

void OpenButtonWindow() { OpenWindow(plan); }
