// "Performance settings": tracing, counters, the user's offsets file, the tune value.
#include <charconv>

#include "base/log.h"
#include "controls/buttons.h"
#include "custom/custom.h"
#include "panels/layout.h"
#include "panels/live_texts.h"
#include "panels/panels.h"
#include "settings/settings.h"

namespace {

constexpr int readSwitch = 0, writeSwitch = 1;

bool IsTraced(int which) { return (which == writeSwitch ? writeTrace : readTrace).load() != 0; }

std::string TurnTrace(int which, bool on) {
  const std::string reason = SwitchTrace(which == writeSwitch, on);
  return reason.empty() ? "" : "Not switched on: TAVRIX.log cannot be written (" + reason + ")";
}

std::string Buttons(int) {
  const std::string status = ButtonStatus();
  return status.empty() ? "" : "Joystick buttons: " + status.substr(0, status.find('\n'));
}

std::string Loaded(int) {
  const CustomSummary summary = SummariseCustomOffsets();
  const std::string entries = CustomEntriesText(0);
  if (summary.fault[0] != '\0') return entries;
  return entries + "; names not found: " + std::to_string(summary.unresolved.size());
}

std::string Clear(int) {
  ClearCustomOffsetsByUser();
  return "Gone until the file is loaded again";
}

std::string Reload(int) {
  ReloadCustomOffsets();
  const CustomSummary summary = SummariseCustomOffsets();
  if (summary.fault[0] != '\0') return std::string("Not loaded: ") + summary.fault;
  const size_t entries = summary.offsets + summary.datarefs + summary.commands;
  const std::string text = "Loaded: " + std::to_string(entries) + " entries";
  if (summary.faultyLines == 0) return text;
  return text + ", lines with faults: " + std::to_string(summary.faultyLines) +
         (MainLogIsOpen() ? "; TAVRIX.txt tells of them" : "");
}

std::string TuneValue(int) { return std::to_string(settings.tuneValue); }

std::string CheckTuneValue(int, const std::string& text) {
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size() ? "" : "The tune value is a whole number";
}

std::string AcceptTuneValue(int, const std::string& text) {
  if (!WriteSetting("TAVRIX SETTINGS", "Tune value", text.c_str())) return NotSaved();
  std::from_chars(text.data(), text.data() + text.size(), settings.tuneValue);
  return saved;
}

constexpr Cell TraceBox(const char* label, int which) {
  return {.kind = CellKind::Box, .label = label, .index = which, .isOn = IsTraced, .turn = TurnTrace};
}

constexpr Row rows[] = {
    {{{.kind = CellKind::Heading, .label = "What clients read and write, into TAVRIX.log"}}},
    {{TraceBox("Log reads", readSwitch), TraceBox("Log writes", writeSwitch)}},
    {{{.kind = CellKind::Heading, .label = "Since the start"}}},
    {{{.kind = CellKind::Value, .width = 60, .text = RequestsText}}},
    {{{.kind = CellKind::Value, .width = 60, .text = RefreshesText}}},
    {{{.kind = CellKind::Value, .width = 60, .text = Buttons}}},
    {{{.kind = CellKind::Heading, .label = "The user's own offsets"}}},
    {{{.kind = CellKind::Value, .label = "Loaded", .width = 60, .lines = 2, .text = Loaded}}},
    {{{.kind = CellKind::Button, .label = "Clear TAVRIXOffsets.cfg", .press = Clear},
      {.kind = CellKind::Button, .label = "Reload TAVRIXOffsets.cfg", .press = Reload}}},
    {{{.kind = CellKind::Heading, .label = "Settings"}}},
    {{{.kind = CellKind::Field,
       .label = "Tune value",
       .width = 12,
       .limit = 11,
       .text = TuneValue,
       .check = CheckTuneValue,
       .accept = AcceptTuneValue}}},
};
constexpr WindowPlan plan = {.title = performanceWindowTitle, .rows = rows};

}  // namespace

void OpenPerformanceWindow() { OpenWindow(plan); }
