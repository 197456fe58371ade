// "Flaps settings".
#include "panels/layout.h"
#include "panels/panels.h"
#include "settings/settings.h"

namespace {

std::string Active(int) { return settings.flapsActive ? "Active" : "Inactive"; }
std::string Detents(int) { return std::to_string(settings.flapDetents); }

constexpr Row rows[] = {
    {{{.kind = CellKind::Value, .label = "Flap Settings", .width = 10, .text = Active}}},
    {{{.kind = CellKind::Value, .label = "Number of detents", .width = 10, .text = Detents}}},
};
constexpr WindowPlan plan = {.title = flapsWindowTitle, .rows = rows};

}  // namespace

void OpenFlapsWindow() { OpenWindow(plan); }
