// "Joystick Button -> Offset Assignments": what a joystick button writes when it is pressed and released. The
// button is chosen by pressing it; its assignment is edited as a draft, which takes effect when it is saved.
#include <cstdio>

#include "controls/buttons.h"
#include "panels/layout.h"
#include "panels/numbers.h"
#include "panels/panels.h"
#include "settings/settings.h"

namespace {

int chosen = -1;  // button, -1 for none
ButtonAssignment draft = noAssignment;
uint32_t seenPresses;
int waiting = -1;  // a button that was pressed while the draft had changes, -1 for none

extern const WindowPlan plan;

bool IsChanged() { return draft != AssignmentOfButton(chosen); }

// A draft that was begun before any button was chosen is the button's then.
void Choose(int button) {
  if (chosen >= 0 || !IsChanged()) draft = AssignmentOfButton(button);
  chosen = button;
  waiting = -1;
}

// --- The button ------------------------------------------------------------------------------------------
// Asked before all other texts at every refresh, so it is the one that notices a press. Nothing that the user
// has changed is given up by a press.
std::string Prompt(int) {
  const ButtonPress press = LastButtonPress();
  const bool isNew = press.count != seenPresses && press.button >= 0;
  seenPresses = press.count;
  if (isNew && press.button == chosen) waiting = -1;  // pressed once more: the draft stays
  if (isNew && press.button != chosen) {
    if (chosen >= 0 && (IsChanged() || HasOpenText(plan))) {
      waiting = press.button;
    } else {
      Choose(press.button);
    }
  }
  return settings.clientMode ? "Enter a joystick button" : "Press a joystick button";
}

std::string Waiting(int) {
  if (waiting >= 0 && !IsChanged() && !HasOpenText(plan)) waiting = -1;
  if (waiting < 0) return "";
  const std::string number = std::to_string(waiting);
  return "Button " + number + " was pressed, but button " + std::to_string(chosen) +
         " has changes:\nSAVE them, or enter " + number + " above to give them up.";
}

std::string Button(int) { return chosen < 0 ? "" : std::to_string(chosen); }

std::string CheckButton(int, const std::string& text) {
  int button = 0;
  const bool good = ReadNumberText(text, &button) && button >= 0 && button < maxButtons;
  return good ? "" : "Buttons have the numbers 0 to " + std::to_string(maxButtons - 1);
}

std::string AcceptButton(int, const std::string& text) {
  int button = -1;
  ReadNumberText(text, &button);
  const bool givenUp = chosen >= 0 && button != chosen && IsChanged();
  const std::string before = std::to_string(chosen);
  Choose(button);
  seenPresses = LastButtonPress().count;  // a press of just before counts no more
  return givenUp ? "The changes of button " + before + " are given up" : "";
}

// --- Pressing and releasing, which are alike -----------------------------------------------------------------
constexpr int pressed = 0, released = 1;
constexpr const char* directionWords[] = {"pressed", "released"};

constexpr int32_t ButtonAssignment::*valueFields[] = {&ButtonAssignment::pressedValue,
                                                      &ButtonAssignment::releasedValue};

enum Way { Set, Clear, Toggle, Nothing, ways };  // without one of them the value itself is written
constexpr int32_t ButtonAssignment::*wayFields[ways][2] = {
    {&ButtonAssignment::setOnPress, &ButtonAssignment::setOnRelease},
    {&ButtonAssignment::clearOnPress, &ButtonAssignment::clearOnRelease},
    {&ButtonAssignment::toggleOnPress, &ButtonAssignment::toggleOnRelease},
    {&ButtonAssignment::nothingOnPress, &ButtonAssignment::nothingOnRelease}};
constexpr const char* wayWords[] = {"set bit ", "clear bit ", "toggle bit "};

bool Acts(const ButtonAssignment& assignment, int direction) {
  return assignment.*valueFields[direction] >= 0 && assignment.*wayFields[Nothing][direction] == 0;
}

bool ChangesBits(const ButtonAssignment& assignment, int direction) {
  bool any = false;
  for (const int way : {Set, Clear, Toggle}) any |= assignment.*wayFields[way][direction] == 1;
  return any;
}

std::string Deed(const ButtonAssignment& assignment, int direction) {
  if (!Acts(assignment, direction)) return "nothing";
  const int value = assignment.*valueFields[direction];
  std::string text;
  for (const int way : {Set, Clear, Toggle}) {
    if (assignment.*wayFields[way][direction] == 1)
      text += (text.empty() ? "" : ", ") + (wayWords[way] + std::to_string(value % 32));
  }
  return text.empty() ? "write " + std::to_string(value) : text;
}

std::string HexText(int32_t offset) {
  char text[16];
  std::snprintf(text, sizeof text, "%04X", static_cast<unsigned>(offset));
  return text;
}

std::string Present(int) {
  if (chosen < 0) return "";
  const ButtonAssignment now = AssignmentOfButton(chosen);
  const char* refusal = RefusalOfButton(chosen);
  if (refusal != nullptr) return std::string("its line in TAVRIX.ini is not used: ") + refusal;
  if (now.offset <= 0) return "not assigned";
  return HexText(now.offset) + ", " + std::to_string(now.size) + " bytes; pressed: " + Deed(now, pressed) +
         "; released: " + Deed(now, released);
}

std::string Thread(int) {
  if (settings.clientMode)
    return "In client mode buttons write nothing.\nPressing one selects none here: enter its number.";
  if (!ButtonThreadRuns())
    return "Buttons act again when the plug-in is reloaded: their thread starts once a load.";
  const std::string status = ButtonStatus();
  return status.empty() ? "" : "Joystick buttons: " + status;
}

// --- The draft's fields --------------------------------------------------------------------------------------
constexpr char offsetReason[] = "The offset is hexadecimal, from 1 to 1FFFF";
constexpr char sizeReason[] = "The size is 1, 2 or 4 bytes";
constexpr char valueReason[] = "A whole number from 0, or empty to send nothing";

std::string Unsaved() { return IsChanged() ? "Not saved yet" : ""; }

// What is wrong with offset and size together, as a sentence; nothing while one of them is missing.
std::string FaultOf(const ButtonAssignment& assignment) {
  if (assignment.offset <= 0 || assignment.size <= 0) return "";
  const char* fault = FaultOfAssignment(assignment);
  if (fault == nullptr) return "";
  std::string sentence = fault;
  if (sentence[0] >= 'a' && sentence[0] <= 'z') sentence[0] = static_cast<char>(sentence[0] - 'a' + 'A');
  return sentence;
}

bool ReadOffset(const std::string& text, int32_t* offset) {
  const bool prefixed = text.starts_with("0x") || text.starts_with("0X");
  return ReadNumberText(std::string_view(text).substr(prefixed ? 2 : 0), offset, 16) && *offset > 0;
}

std::string Offset(int) { return draft.offset > 0 ? HexText(draft.offset) : ""; }

std::string CheckOffset(int, const std::string& text) {
  ButtonAssignment candidate = draft;
  if (!ReadOffset(text, &candidate.offset)) return offsetReason;
  if (candidate.size <= 0) candidate.size = 1;
  return FaultOf(candidate);
}

std::string AcceptOffset(int, const std::string& text) {
  ReadOffset(text, &draft.offset);
  return Unsaved();
}

std::string Size(int) { return draft.size > 0 ? std::to_string(draft.size) : ""; }

std::string CheckSize(int, const std::string& text) {
  if (text != "1" && text != "2" && text != "4") return sizeReason;
  ButtonAssignment candidate = draft;
  ReadNumberText(text, &candidate.size);
  return FaultOf(candidate);
}

std::string AcceptSize(int, const std::string& text) {
  ReadNumberText(text, &draft.size);
  return Unsaved();
}

std::string Value(int direction) {
  const int32_t value = draft.*valueFields[direction];
  return value < 0 ? "" : std::to_string(value);
}

std::string CheckValue(int, const std::string& text) {
  int32_t value = 0;
  return text.empty() || (ReadNumberText(text, &value) && value >= 0) ? "" : valueReason;
}

std::string AcceptValue(int direction, const std::string& text) {
  int32_t value = -1;
  ReadNumberText(text, &value);
  draft.*valueFields[direction] = value;
  return Unsaved();
}

constexpr Cell ValueField(const char* label, int direction) {
  return {.kind = CellKind::Field,
          .label = label,
          .index = direction,
          .width = 12,
          .limit = 10,
          .text = Value,
          .check = CheckValue,
          .accept = AcceptValue};
}

// A box's index is its way and its direction.
bool IsWay(int index) { return draft.*wayFields[index / 2][index % 2] != 0; }

// One way a direction at most: the others go out.
std::string TurnWay(int index, bool on) {
  for (const auto& fields : wayFields) draft.*fields[index % 2] = 0;
  draft.*wayFields[index / 2][index % 2] = on ? 1 : 0;
  return Unsaved();
}

constexpr Cell WayBox(const char* label, Way way, int direction) {
  return {.kind = CellKind::Box, .label = label, .index = way * 2 + direction, .isOn = IsWay, .turn = TurnWay};
}

// --- Presets -------------------------------------------------------------------------------------------------
struct Preset {
  const char* label;
  int32_t pressed, released;  // -1: sends nothing
};
constexpr Preset presets[] = {{"A/P Disconnect", 551, -1}, {"A/T Disconnect", 563, -1},
                              {"TO/GA", 567, -1},          {"Fuel Cutoff L", 843, 842},
                              {"Fuel Cutoff R", 845, 844}, {"Parking Brake", 591, 590},
                              {"Reverser L", 994, 995},    {"Reverser R", 996, 997}};

// Fills the values; the offset, which the other program chooses, stays. The numbers need two bytes.
std::string FillIn(int index) {
  const Preset& preset = presets[index];
  const ButtonAssignment kept = draft;
  draft = {.offset = kept.offset,
           .size = kept.size < 2 ? 2 : kept.size,
           .pressedValue = preset.pressed,
           .releasedValue = preset.released,
           .nothingOnRelease = preset.released < 0 ? 1 : 0};
  if (!IsChanged()) return "";
  return kept.offset > 0 ? "Filled in, not saved yet" : "Filled in: enter the offset, then save";
}

constexpr Cell PresetButton(int index) {
  return {.kind = CellKind::Button, .label = presets[index].label, .index = index, .press = FillIn};
}

// --- Saving --------------------------------------------------------------------------------------------------
std::string DirectionFault(int direction) {
  const int32_t value = draft.*valueFields[direction];
  const std::string when = std::string(" when ") + directionWords[direction];
  const bool bits = ChangesBits(draft, direction);
  if (draft.*wayFields[Nothing][direction] != 0) return "";
  if (value < 0) return bits ? "Enter the number of the bit to change" + when : "";
  const std::string size = std::to_string(draft.size) + (draft.size == 1 ? " byte" : " bytes");
  if (bits && value >= draft.size * 8) return "Bit " + std::to_string(value) + when + " lies outside " + size;
  if (!bits && draft.size < 4 && value >> (draft.size * 8) != 0) {
    return std::to_string(value) + when + " does not fit into " + size;
  }
  return "";
}

std::string DraftFault() {
  if (chosen < 0) return "Press a joystick button first, or enter its number";
  if (draft.offset <= 0) return offsetReason;
  if (draft.size <= 0) return sizeReason;
  for (const std::string& fault : {FaultOf(draft), DirectionFault(pressed), DirectionFault(released)}) {
    if (!fault.empty()) return fault;
  }
  const bool acts = Acts(draft, pressed) || Acts(draft, released);
  return acts ? "" : "Neither pressing nor releasing would send anything";
}

// The file has been written and read again.
std::string Told(const char* done) {
  draft = AssignmentOfButton(chosen);
  const char* since = settings.clientMode  ? ", in force when client mode is off"
                      : ButtonThreadRuns() ? ", in force now"
                                           : ", in force after a reload of the plug-in";
  return std::string(done) + " button " + std::to_string(chosen) + since;
}

std::string Save(int) {
  const std::string fault = DraftFault();
  if (!fault.empty()) return fault;
  return SaveButtonAssignment(chosen, draft) ? Told("Saved") : NotSaved();
}

std::string ClearChosen(int) {
  if (chosen < 0) return "Press a joystick button first, or enter its number";
  return ClearButtonAssignment(chosen) ? Told("Cleared") : NotSaved();
}

std::string Exit(int) {
  CloseWindow(plan);
  return "";
}

// --- The window ----------------------------------------------------------------------------------------------
constexpr Row rows[] = {
    {{{.kind = CellKind::Value, .width = 24, .text = Prompt},
      {.kind = CellKind::Field,
       .label = "Button pressed is:",
       .width = 6,
       .limit = 4,
       .text = Button,
       .check = CheckButton,
       .accept = AcceptButton}}},
    {{{.kind = CellKind::Value, .label = "At present", .width = 64, .lines = 2, .text = Present}}},
    {{{.kind = CellKind::Value, .width = 64, .lines = 2, .text = Waiting}}},
    {},
    {{{.kind = CellKind::Field,
       .label = "Offset to assign to joystick button",
       .width = 12,
       .limit = 10,
       .text = Offset,
       .check = CheckOffset,
       .accept = AcceptOffset},
      {.kind = CellKind::Label, .label = "hexadecimal"}}},
    {{{.kind = CellKind::Field,
       .label = "Offset size",
       .width = 12,
       .limit = 2,
       .text = Size,
       .check = CheckSize,
       .accept = AcceptSize},
      {.kind = CellKind::Label, .label = "bytes: 1, 2 or 4"}}},
    {{ValueField("Value or bit to send when pressed", pressed)}},
    {{ValueField("Value or bit to send when released", released)}},
    {},
    {{WayBox("Set Bit When Pressed", Set, pressed), WayBox("Set Bit When Released", Set, released)}},
    {{WayBox("Clr Bit When Pressed", Clear, pressed), WayBox("Clr Bit When Released", Clear, released)}},
    {{WayBox("Toggle Bit When Pressed", Toggle, pressed),
      WayBox("Toggle Bit When Released", Toggle, released)}},
    {{WayBox("Send Nothing When Pressed", Nothing, pressed),
      WayBox("Send Nothing When Released", Nothing, released)}},
    {{{.kind = CellKind::Heading, .label = "Sim-Avionics Presets"}}},
    {{PresetButton(0), PresetButton(3), PresetButton(6), PresetButton(2)}},
    {{PresetButton(1), PresetButton(4), PresetButton(7), PresetButton(5)}},
    {},
    {{{.kind = CellKind::Button, .label = "SAVE", .press = Save},
      {.kind = CellKind::Button, .label = "CLEAR", .press = ClearChosen},
      {.kind = CellKind::Button, .label = "EXIT", .press = Exit, .isExit = true}}},
    {{{.kind = CellKind::Value, .width = 56, .lines = 2, .text = Thread}}},
};

// A press of before does not count. In client mode nobody has read the assignments yet.
void Opened() {
  if (settings.clientMode) LoadButtonAssignments();
  seenPresses = LastButtonPress().count;
  chosen = waiting = -1;
  draft = noAssignment;
}
const WindowPlan plan = {.title = buttonWindowTitle, .rows = rows, .opened = Opened};

}  // namespace

void OpenButtonWindow() { OpenWindow(plan); }
