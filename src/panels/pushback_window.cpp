// "Push Back Settings": how fast the aircraft is towed, and the tow itself.
#include <cstdio>
#include <cstring>

#include "base/bytes.h"
#include "base/locks.h"
#include "offsets/dispatcher.h"
#include "offsets/memory.h"
#include "panels/layout.h"
#include "panels/numbers.h"
#include "panels/panels.h"
#include "pushback/pushback.h"
#include "settings/settings.h"

namespace {

// --- Settings --------------------------------------------------------------------------------------------
struct Speed {
  const char* key;
  double least, most;
  const char* refusal;
};
constexpr int maxSpeed = 0, maxTurnSpeed = 1;
constexpr Speed speeds[] = {
    {"MaxSpeed", -10, 10, "MaxSpeed is a number from -10 to 10, with a point: -1.5"},
    {"MaxTurnSpeed", 0, 1, "MaxTurnSpeed is a number from 0 to 1, with a point: 0.15"},
};

std::string SpeedInForce(int which) {
  const PushbackView view = LookAtPushback();
  return which == maxSpeed ? NumberText(view.maxSpeed) : NumberText(view.maxTurnSpeed);
}

std::string CheckSpeed(int which, const std::string& text) {
  const Speed& speed = speeds[which];
  double value = 0;
  const bool good = ReadNumberText(text, &value) && value >= speed.least && value <= speed.most;
  return good ? "" : speed.refusal;
}

std::string AcceptSpeed(int which, const std::string& text) {
  if (!WriteSetting("PUSHBACK SETTINGS", speeds[which].key, text.c_str())) return NotSaved();
  LoadPushbackSettings();
  return saved;
}

constexpr Cell SpeedField(int which) {
  return {.kind = CellKind::Field,
          .label = speeds[which].key,
          .index = which,
          .width = 10,
          .limit = 12,
          .text = SpeedInForce,
          .check = CheckSpeed,
          .accept = AcceptSpeed};
}

// --- The tow ---------------------------------------------------------------------------------------------
constexpr uint32_t commandOffset = 0x31F4;

bool IsBegun(int) { return LookAtPushback().begun; }

// As if a client had written the command.
std::string Command(int command) {
  uint8_t bytes[sizeof(uint32_t)];
  StoreTo(bytes, static_cast<uint32_t>(command));
  RequestMarks marks = {};
  {
    const LockScope lock(&offsetLock);
    DispatchWrite(commandOffset, sizeof bytes, bytes, &marks);
    std::memcpy(offsetMemory.bytes + commandOffset, bytes, sizeof bytes);
  }
  FinishRequest(marks);
  return "";
}

std::string State(int) {
  constexpr const char* words[] = {"straight", "turning, nose right", "turning, nose left", "off"};
  const PushbackView view = LookAtPushback();
  if (!view.begun) return "off: in client mode the other simulator tows";
  if (view.brake == BrakeEffect::Refused) return "refused: the parking brake is set";
  if (view.brake == BrakeEffect::Ended) return "ended: the parking brake is set";
  return view.mode == pushbackOff && view.speed != 0 ? "off, rolling out" : words[view.mode];
}

std::string SpeedNow(int) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f m/s", LookAtPushback().speed);
  return text;
}

constexpr Cell CommandButton(const char* label, int command) {
  return {.kind = CellKind::Button, .label = label, .index = command, .press = Command, .isEnabled = IsBegun};
}

constexpr Row rows[] = {
    {{SpeedField(maxSpeed), {.kind = CellKind::Label, .label = "m/s, negative is backwards"}}},
    {{SpeedField(maxTurnSpeed), {.kind = CellKind::Label, .label = "degrees a frame in a turn"}}},
    {{{.kind = CellKind::Heading, .label = "Tow the aircraft"}}},
    {{CommandButton("Straight", pushbackStraight), CommandButton("Nose left", pushbackTurnDown),
      CommandButton("Nose right", pushbackTurnUp), CommandButton("Stop", pushbackOff)}},
    {},
    {{{.kind = CellKind::Value, .label = "State", .width = 46, .text = State}}},
    {{{.kind = CellKind::Value, .label = "Speed", .width = 16, .text = SpeedNow}}},
};

// In client mode nobody has read them yet.
void Opened() {
  if (!LookAtPushback().begun) LoadPushbackSettings();
}
constexpr WindowPlan plan = {.title = pushbackWindowTitle, .rows = rows, .opened = Opened};

}  // namespace

void OpenPushbackWindow() { OpenWindow(plan); }
