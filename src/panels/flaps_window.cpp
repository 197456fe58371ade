// "Flaps settings": the detents of a flap lever on a joystick axis, which the calibration window assigns.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "controls/axes.h"
#include "panels/layout.h"
#include "panels/numbers.h"
#include "panels/panels.h"
#include "settings/settings.h"
#include "settings/settings_text.h"

namespace {

constexpr char section[] = "TAVRIX FLAPS SETTINGS";

bool IsActive(int) { return settings.flapsActive; }

// Detents that cannot be used are written as they are, as the user may be in the midst of several; the reason
// is told, and the lever has even spacing until then.
std::string Took() {
  LoadAxisAssignments();
  DetentBounds bounds[maxFlapDetents];
  const char* fault = PlaceDetents({settings.flapDetent, static_cast<size_t>(settings.flapDetents)}, bounds);
  return fault == nullptr ? saved : std::string("Written, but spaced evenly: ") + fault;
}

std::string TurnActive(int, bool on) {
  if (!WriteSetting(section, "Flap Settings", on ? "Active" : "Inactive")) return NotSaved();
  settings.flapsActive = on;
  const std::string took = Took();
  return on ? took : saved;
}

std::string Detents(int) { return std::to_string(settings.flapDetents); }

std::string CheckDetents(int, const std::string& text) {
  int count = 0;
  const bool good = ReadNumberText(text, &count) && count >= 2 && count <= maxFlapDetents;
  return good ? "" : "The number of detents is 2 to 10";
}

std::string AcceptDetents(int, const std::string& text) {
  int count = 0;
  ReadNumberText(text, &count);
  char value[16];
  std::snprintf(value, sizeof value, "%02d", count);
  if (!WriteSetting(section, "Number of Detends", value)) return NotSaved();
  settings.flapDetents = count;
  return Took();
}

bool IsUsed(int detent) { return detent < settings.flapDetents; }

std::string DetentText(const FlapDetent& detent) {
  std::string text;
  for (int i = 0; i < detent.count; ++i) {
    if (i > 0) text += ',';
    if (!std::isnan(detent.values[i])) text += NumberText(detent.values[i]);
  }
  return text;
}

std::string Detent(int detent) { return DetentText(settings.flapDetent[detent]); }

std::string CheckDetent(int, const std::string& text) {
  std::string_view rest = text;
  for (int count = 1; !rest.empty() || count > 1; ++count) {
    const size_t comma = rest.find(',');
    double value = 0;
    std::string_view number = rest.substr(0, comma);
    number.remove_prefix(std::min(number.find_first_not_of(' '), number.size()));
    const bool isLeftOut = number.empty() && comma != std::string_view::npos;
    if (count > 3 || !(isLeftOut || ReadNumberText(number, &value)))
      return "A detent is up to three numbers, with a point: 0.25,1,2";
    if (comma == std::string_view::npos) break;
    rest.remove_prefix(comma + 1);
  }
  return "";
}

std::string AcceptDetent(int detent, const std::string& text) {
  const FlapDetent taken = ParseFlapDetent(text);
  const std::string key = "Flap detend " + std::to_string(detent + 1);
  if (!WriteSetting(section, key.c_str(), DetentText(taken).c_str())) return NotSaved();
  settings.flapDetent[detent] = taken;
  return Took();
}

constexpr Cell DetentField(const char* label, int detent) {
  return {.kind = CellKind::Field,
          .label = label,
          .index = detent,
          .width = 18,
          .limit = 96,
          .text = Detent,
          .check = CheckDetent,
          .accept = AcceptDetent,
          .isEnabled = IsUsed};
}

constexpr Row rows[] = {
    {{{.kind = CellKind::Label, .label = "Detents of the joystick axis that moves the flaps,"}}},
    {{{.kind = CellKind::Label, .label = "which the window Joystick Calibration Assignments assigns."}}},
    {},
    {{{.kind = CellKind::Box, .label = "Flap detents active", .isOn = IsActive, .turn = TurnActive}}},
    {{{.kind = CellKind::Field,
       .label = "Number of detents",
       .width = 4,
       .limit = 2,
       .text = Detents,
       .check = CheckDetents,
       .accept = AcceptDetents}}},
    {{{.kind = CellKind::Heading, .label = "Position of the lever (0 to 1), and its lower and upper bound"}}},
    {{DetentField("Detent 1", 0), DetentField("Detent 6", 5)}},
    {{DetentField("Detent 2", 1), DetentField("Detent 7", 6)}},
    {{DetentField("Detent 3", 2), DetentField("Detent 8", 7)}},
    {{DetentField("Detent 4", 3), DetentField("Detent 9", 8)}},
    {{DetentField("Detent 5", 4), DetentField("Detent 10", 9)}},
};
constexpr WindowPlan plan = {.title = flapsWindowTitle, .rows = rows};

}  // namespace

void OpenFlapsWindow() { OpenWindow(plan); }
