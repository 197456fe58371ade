// The alert window: what went wrong at start.
#include "panels/layout.h"
#include "panels/panels.h"

namespace {

std::string alertText;

constexpr Row rows[] = {
    {{{.kind = CellKind::Value, .width = 64, .lines = 8, .text = [](int) { return alertText; }}}},
};
constexpr WindowPlan plan = {.title = "TAVRIX Alert", .rows = rows};

}  // namespace

void OpenAlertWindow(const char* text) {
  alertText = text;
  OpenWindow(plan);
  RefreshWindow(plan);
}
