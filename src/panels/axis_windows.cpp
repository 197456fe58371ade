// "Joystick Calibration Assignments" and "Joystick Axis Combining Assignments": which axis moves a control, and
// how. A control is chosen by stepping through them, an axis by moving it, its ends by moving it to and fro.
// What is edited is a draft, which takes effect when it is saved; both windows edit the same one, and it lasts
// until another control is chosen or both are closed.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "controls/axes.h"
#include "controls/buttons.h"
#include "panels/layout.h"
#include "panels/panels.h"
#include "settings/settings.h"

namespace {

constexpr char unsaved[] = "Not saved yet";

size_t chosen;  // control
AxisSettings draft;
bool editsCombined;  // calibration and inversion are those of the combined axis

// What a moved axis is taken for, if anything.
enum class Choosing { Nothing, Assigned, Combined };
Choosing choosing = Choosing::Nothing;
uint32_t seenMoves;

bool calibrates;       // minimum and maximum follow the axis
Calibration formerly;  // before that

extern const WindowPlan calibration, combining;

void Choose(size_t control) {
  chosen = control;
  draft = AxisSettingsOf(control);
  choosing = Choosing::Nothing;
  calibrates = false;
  FollowAxisEnds({});
}

// The axis whose calibration is edited.
size_t Edited() { return editsCombined ? 1 : 0; }
AxisInput EditedInput() { return editsCombined ? draft.inputs[1] : InputsOf(draft).inputs[0]; }

// As many places as the bars show.
constexpr double places = 1000;
double Placed(double reading) { return std::round(reading * places) / places; }

// The ends that the axis has been moved to so far.
void TakeEnds() {
  const AxisEnds seen = FollowedAxisEnds();
  if (!calibrates || std::isnan(seen.low)) return;
  Calibration& ends = draft.calibrations[Edited()];
  ends.low = std::min(ends.low, std::clamp(seen.low, 0.0, 1.0));
  ends.high = std::max(ends.high, std::clamp(seen.high, 0.0, 1.0));
  ends.centre = (ends.low + ends.high) / 2;
}

// Calibrating by moving comes to its end, by whatever the user does next. Returns whether the axis was moved
// far enough; else the old ends are back.
bool FinishCalibrating() {
  constexpr double leastWay = 0.05;
  if (!calibrates) return true;
  TakeEnds();
  calibrates = false;
  FollowAxisEnds({});
  Calibration& ends = draft.calibrations[Edited()];
  if (ends.high - ends.low < leastWay) {
    ends = formerly;
    return false;
  }
  // To three places, inwards: the axis must come to its ends.
  constexpr double noise = 0.01;
  ends.low = std::ceil(ends.low * places - noise) / places + 0.0;  // not "-0"
  ends.high = std::floor(ends.high * places + noise) / places;
  ends.centre = Placed((ends.low + ends.high) / 2);
  return true;
}

std::string Step(int by) {
  Choose((chosen + (by < 0 ? axisControlCount - 1 : 1)) % axisControlCount);
  return "";
}

std::string Control(int) { return NameOfControl(chosen); }

// Asked at every refresh: takes up a move.
std::string Prompt(int) {
  const AxisMove move = LastAxisMove();
  const bool isNew = move.count != seenMoves;
  seenMoves = move.count;
  if (choosing == Choosing::Nothing) return "";
  if (!isNew || !IsAssigned(move.input)) return "Move the axis from one end to the other";
  FinishCalibrating();
  draft.inputs[choosing == Choosing::Combined ? 1 : 0] = move.input;
  choosing = Choosing::Nothing;
  return "Taken, not saved yet";
}

std::string Thread(int) {
  if (settings.clientMode) return "In client mode axes write nothing.";
  return ButtonThreadRuns() ? ""
                            : "Axes act again when the plug-in is reloaded: their thread starts once a load.";
}

// --- Bars
// -----------------------------------------------------------------------------------------------------

constexpr int barLength = 40;

// A number and as many strokes as it is large.
std::string Bar(double number, double low, double high) {
  if (std::isnan(number)) return "-";
  if (std::fabs(number) < 0.0005) number = 0;  // not "-0.000"
  char text[16];
  std::snprintf(text, sizeof text, "%.3f ", number);
  const double share = std::clamp((number - low) / (high - low), 0.0, 1.0);
  return text + std::string(static_cast<size_t>(std::lround(share * barLength)), '|');
}

std::string Reading(int) {
  TakeEnds();
  return Bar(AxisReading(EditedInput()), 0, 1);
}

// What the draft makes of it.
std::string Moves(int) {
  const Travel travel = TravelOf(chosen, draft);
  const AxisPair pair = InputsOf(draft);
  double deflection = NAN;
  for (size_t which = 0; which < 2; ++which) {
    const double reading = AxisReading(pair.inputs[which]);
    if (!IsReading(reading)) continue;
    const double other = Deflect(TuneOf(draft, which), travel, reading);
    deflection = std::isnan(deflection) ? other : Combine(travel, deflection, other);
  }
  return Bar(deflection, travel == Travel::OneSided ? 0 : -1, 1);
}

// --- Fields of the draft, all alike
// ---------------------------------------------------------------------------

AxisKey KeyOf(int index) {
  const auto key = static_cast<AxisKey>(index);
  if (!editsCombined) return key;
  if (key == AxisKey::Invert) return AxisKey::InvertCombined;
  return key == AxisKey::Calibrate ? AxisKey::CalibrateCombined : key;
}

bool IsThere(int index) { return HasKey(chosen, KeyOf(index)); }
std::string FieldText(int index) { return IsThere(index) ? AxisKeyText(KeyOf(index), draft) : ""; }

std::string CheckField(int index, const std::string& text) {
  AxisSettings candidate = draft;
  std::string fault = TakeAxisKey(KeyOf(index), text, &candidate);
  if (fault.starts_with("it is ")) fault.replace(0, 2, "It");
  return fault;
}

std::string AcceptField(int index, const std::string& text) {
  FinishCalibrating();
  TakeAxisKey(KeyOf(index), text, &draft);
  return unsaved;
}

constexpr Cell KeyField(const char* label, AxisKey key, int width) {
  return {.kind = CellKind::Field,
          .label = label,
          .index = static_cast<int>(key),
          .width = width,
          .limit = 80,
          .text = FieldText,
          .check = CheckField,
          .accept = AcceptField,
          .isEnabled = IsThere};
}

bool IsInverted(int which) { return draft.inverted[which < 0 ? Edited() : static_cast<size_t>(which)]; }
std::string TurnInverted(int which, bool on) {
  draft.inverted[which < 0 ? Edited() : static_cast<size_t>(which)] = on;
  return unsaved;
}

bool EditsCombined(int) { return editsCombined; }
std::string TurnCombined(int, bool on) {
  FinishCalibrating();
  editsCombined = on;
  return "";
}

bool IsChoosing(int which) { return choosing == static_cast<Choosing>(which); }
std::string TurnChoosing(int which, bool on) {
  choosing = on ? static_cast<Choosing>(which) : Choosing::Nothing;
  if (on) FinishCalibrating();
  seenMoves = WatchForAxisMove().count;  // only from here on
  return "";
}

constexpr Cell ChooseBox(const char* label, Choosing which) {
  return {.kind = CellKind::Box,
          .label = label,
          .index = static_cast<int>(which),
          .isOn = IsChoosing,
          .turn = TurnChoosing};
}

// --- Calibration
// ----------------------------------------------------------------------------------------------

bool Calibrates(int) { return calibrates; }

// The ends begin where the axis stands, and follow it as it is moved.
std::string TurnCalibrates(int, bool on) {
  if (!on) {
    return FinishCalibrating() ? "Let the axis go and press CENTRE, or save"
                               : "The axis was hardly moved: the old ends stay";
  }
  const double reading = AxisReading(EditedInput());
  if (!IsReading(reading)) return "The axis gives no reading";
  const double at = std::clamp(reading, 0.0, 1.0);
  Calibration& ends = draft.calibrations[Edited()];
  formerly = ends;
  ends = {at, at, at};
  calibrates = true;
  FollowAxisEnds(EditedInput());
  return "Move the axis to both ends, then switch this off";
}

std::string Centre(int) {
  const double reading = AxisReading(EditedInput());
  Calibration& ends = draft.calibrations[Edited()];
  if (!IsReading(reading)) return "The axis gives no reading";
  TakeEnds();
  if (!(reading - ends.low >= 0.01 && ends.high - reading >= 0.01))
    return "The axis stands at an end, or the ends are not known yet";
  FinishCalibrating();
  ends.centre = Placed(reading);
  return unsaved;
}

// --- Saving
// ---------------------------------------------------------------------------------------------------

std::string Told(const char* deed) {
  return std::string(deed) + ' ' + NameOfControl(chosen) +
         (ButtonThreadRuns() ? ", in force now" : ", in force after a reload of the plug-in");
}

std::string Save(int) {
  FinishCalibrating();
  const bool needsTarget = AxisControls()[chosen].role == AxisRole::Free;
  if (needsTarget && draft.target.size == 0) return "Enter the offset that the axis is to move";
  const std::string fault = FaultOfAxisSettings(chosen, draft);
  if (!fault.empty()) return "Not saved: " + fault;
  return SaveAxisSettings(chosen, draft) ? Told("Saved") : NotSaved();
}

std::string ClearChosen(int) {
  const bool written = SaveAxisSettings(chosen, DefaultAxisSettings(chosen));
  Choose(chosen);
  return written ? Told("Cleared") : NotSaved();
}

std::string Exit(int combines) {
  CloseWindow(combines != 0 ? combining : calibration);
  return "";
}

// In client mode nobody has read the assignments yet.
void Opened() {
  if (settings.clientMode) LoadAxisAssignments();
  // The other window shows the draft: it stays. Neither is open yet when it is the first of them.
  if (IsWindowOpen(calibration) || IsWindowOpen(combining)) return;
  seenMoves = LastAxisMove().count;
  editsCombined = false;
  Choose(chosen);
}

// --- The windows
// ----------------------------------------------------------------------------------------------

constexpr Row ControlRow() {
  return {{{.kind = CellKind::Value, .label = "Control", .width = 18, .text = Control},
           {.kind = CellKind::Button, .label = "PREVIOUS", .index = -1, .press = Step},
           {.kind = CellKind::Button, .label = "NEXT", .index = 1, .press = Step}}};
}
constexpr Row PromptRow() { return {{{.kind = CellKind::Value, .width = 48, .text = Prompt}}}; }
constexpr Row MovesRow() {
  return {{{.kind = CellKind::Value, .label = "Control moves to", .width = 48, .text = Moves}}};
}
constexpr Row SaveRow(int combines) {
  return {{{.kind = CellKind::Button, .label = "SAVE", .press = Save},
           {.kind = CellKind::Button, .label = "CLEAR", .press = ClearChosen},
           {.kind = CellKind::Button, .label = "EXIT", .index = combines, .press = Exit, .isExit = true}}};
}
constexpr Row ThreadRow() { return {{{.kind = CellKind::Value, .width = 56, .lines = 2, .text = Thread}}}; }

constexpr Row calibrationRows[] = {
    ControlRow(),
    {{KeyField("Axis (joystick,axis)", AxisKey::Assign, 14),
      ChooseBox("Choose by moving an axis", Choosing::Assigned)}},
    PromptRow(),
    {},
    {{{.kind = CellKind::Value, .label = "Axis stands at", .width = 48, .text = Reading}}},
    MovesRow(),
    {},
    {{KeyField("Minimum,centre,maximum", AxisKey::Calibrate, 20),
      {.kind = CellKind::Box, .label = "Calibrate by moving", .isOn = Calibrates, .turn = TurnCalibrates},
      {.kind = CellKind::Button, .label = "CENTRE", .press = Centre}}},
    {{{.kind = CellKind::Box, .label = "Inverted", .index = -1, .isOn = IsInverted, .turn = TurnInverted},
      {.kind = CellKind::Box,
       .label = "Both of the combined axis",
       .isOn = EditsCombined,
       .turn = TurnCombined}}},
    {},
    {{KeyField("Null zone", AxisKey::NullZone, 10), KeyField("Curve", AxisKey::Curve, 10)}},
    {{KeyField("Engines", AxisKey::Engines, 10), KeyField("Reverse below", AxisKey::Reverse, 10)}},
    {{KeyField("Offset,size,type,low,high", AxisKey::Target, 34)}},
    {},
    SaveRow(0),
    ThreadRow(),
};
const WindowPlan calibration = {
    .title = calibrationWindowTitle, .rows = calibrationRows, .opened = Opened, .isLively = true};

constexpr Row combiningRows[] = {
    ControlRow(),
    {{KeyField("Axis (joystick,axis)", AxisKey::Assign, 14),
      ChooseBox("Choose it by moving", Choosing::Assigned)}},
    {{KeyField("Combined with", AxisKey::Combine, 14), ChooseBox("Choose this by moving", Choosing::Combined)}},
    {{{.kind = CellKind::Box,
       .label = "Combined axis inverted",
       .index = 1,
       .isOn = IsInverted,
       .turn = TurnInverted}}},
    PromptRow(),
    {},
    MovesRow(),
    {},
    SaveRow(1),
    ThreadRow(),
};
const WindowPlan combining = {
    .title = combiningWindowTitle, .rows = combiningRows, .opened = Opened, .isLively = true};

}  // namespace

void OpenCalibrationWindow() { OpenWindow(calibration); }
void OpenCombiningWindow() { OpenWindow(combining); }
