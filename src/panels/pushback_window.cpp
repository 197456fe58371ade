// "Push Back Settings".
#include "panels/layout.h"
#include "panels/panels.h"
#include "pushback/pushback.h"

namespace {

std::string Mode(int) {
  constexpr const char* words[] = {"straight", "turning right", "turning left", "off"};
  return words[pushbackMode];
}

constexpr Row rows[] = {
    {{{.kind = CellKind::Value, .label = "Pushback", .width = 16, .text = Mode}}},
};
constexpr WindowPlan plan = {.title = pushbackWindowTitle, .rows = rows};

}  // namespace

void OpenPushbackWindow() { OpenWindow(plan); }
