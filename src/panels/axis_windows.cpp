// Axis settings as the settings file holds them. They are for reading alone: the simulator's own axis settings
// are in force.
#include <cstdio>

#include "panels/layout.h"
#include "panels/panels.h"
#include "settings/settings.h"

namespace {

constexpr const bool* inversions[] = {&settings.invertElevator, &settings.invertAileron,
                                      &settings.invertRudder};
constexpr const AxisCombination* combinations[] = {
    &settings.combineRudder, &settings.combineAileron,      &settings.combineElevator,
    &settings.combineTiller, &settings.combineLeftToeBrake, &settings.combineRightToeBrake};

std::string Inversion(int index) { return *inversions[index] ? "Yes" : "No"; }

std::string NullZone(int) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", settings.toeBrakeNullZone);
  return text;
}

std::string Combination(int index) {
  const AxisCombination& axis = *combinations[index];
  return axis.active ? "joystick " + std::to_string(axis.joystick) + ", axis " + std::to_string(axis.axis)
                     : "Not assigned";
}

constexpr Cell inUse = {.kind = CellKind::Label, .label = "The simulator's own axis settings are in force."};
constexpr Cell inFile = {.kind = CellKind::Label, .label = "TAVRIX.ini holds, without effect on the axes:"};

constexpr Cell InversionCell(const char* label, int index) {
  return {.kind = CellKind::Value, .label = label, .index = index, .width = 8, .text = Inversion};
}
constexpr Cell CombinationCell(const char* label, int index) {
  return {.kind = CellKind::Value, .label = label, .index = index, .width = 32, .text = Combination};
}

constexpr Row calibrationRows[] = {
    {{inUse}},
    {{inFile}},
    {},
    {{InversionCell("Invert Elevator Axis", 0)}},
    {{InversionCell("Invert Aileron Axis", 1)}},
    {{InversionCell("Invert Rudder Axis", 2)}},
    {{{.kind = CellKind::Value, .label = "ToeBrakeNullZonePercent", .width = 12, .text = NullZone}}},
};
constexpr WindowPlan calibration = {.title = calibrationWindowTitle, .rows = calibrationRows};

constexpr Row combiningRows[] = {
    {{inUse}},
    {{inFile}},
    {},
    {{CombinationCell("Combine Rudder Axis", 0)}},
    {{CombinationCell("Combine Aileron Axis", 1)}},
    {{CombinationCell("Combine Elevator Axis", 2)}},
    {{CombinationCell("Combine Tiller Axis", 3)}},
    {{CombinationCell("Combine Left Toebrake Axis", 4)}},
    {{CombinationCell("Combine Right Toebrake Axis", 5)}},
};
constexpr WindowPlan combining = {.title = combiningWindowTitle, .rows = combiningRows};

}  // namespace

void OpenCalibrationWindow() { OpenWindow(calibration); }
void OpenCombiningWindow() { OpenWindow(combining); }
