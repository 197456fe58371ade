// Fuzz target: lines of the stand-in's console, among them what a person does in the plug-in's windows. Each
// has an answer of one line; what a dataref was set to is what it says then; and what the windows took into
// TAVRIX.ini is what is in force, within its limits.
#include <cmath>
#include <cstring>

#include "panels/layout.h"
#include "panels/panels.h"
#include "plugin_parts.h"
#include "widgets/widgets.h"

namespace {

void OpenAll() {
  EnableWindows();
  for (void (*open)() : {OpenVersionWindow, OpenAtcWindow, OpenButtonWindow, OpenCalibrationWindow,
                         OpenCombiningWindow, OpenPushbackWindow, OpenFlapsWindow, OpenPerformanceWindow}) {
    open();
  }
}

// Pictures write files, and too many frames or too long a pause would only take time.
bool IsHarmless(std::string_view line) {
  for (const std::string_view word : {"picture", "stall", "frames", "reload"}) {
    const size_t at = line.find(word);
    if (at != std::string_view::npos && line.substr(0, at).find_first_not_of(" \t") == std::string_view::npos) {
      return false;
    }
  }
  return true;
}

void CheckQuotes(std::string_view line) {
  std::vector<std::string> words;
  std::vector<bool> quoted;
  const std::string text(line.substr(0, line.find('\0')));
  Require(sim::SplitWords(sim::Quote(text).c_str(), &words, &quoted));
  Require(words.size() == 1 && quoted[0] && words[0] == text);
}

// A dataref says what it was set to, in words that set it again.
void CheckAgain(const std::string& line) {
  const std::string name = line.substr(4, line.find_first_of(" \t", 4) - 4);
  if (name.empty() || name.front() == '"') return;
  const std::string shown = sim::SimCommand("get " + name);
  if (!shown.starts_with("ok ")) return;
  Require(sim::SimCommand("set " + name + shown.substr(2)) == "ok");
  Require(sim::SimCommand("get " + name) == shown);
}

void Run(std::string_view line) {
  const std::string answer = sim::SimCommand(std::string(line));
  Require(answer == "ok" || answer.starts_with("ok ") || answer.starts_with("error: "));
  Require(answer.find_first_of(std::string_view("\n\r\0", 3)) == std::string::npos);
  if (answer == "ok" && line.starts_with("set ")) CheckAgain(std::string(line));
}

void CheckSettings() {
  const Settings taken = settings;
  Require(ReadAllSettings());
  Require(std::strcmp(taken.atcNumber, settings.atcNumber) == 0);
  Require(std::strcmp(taken.atcTailNumber, settings.atcTailNumber) == 0);
  Require(std::strcmp(taken.atcAirlineName, settings.atcAirlineName) == 0);
  Require(std::strcmp(taken.atcAircraftType, settings.atcAircraftType) == 0);
  Require(taken.flapsActive == settings.flapsActive && taken.flapDetents == settings.flapDetents);
  for (int i = 0; i < maxFlapDetents; ++i) {
    const FlapDetent &one = taken.flapDetent[i], &other = settings.flapDetent[i];
    Require(one.count == other.count);
    for (int k = 0; k < one.count; ++k) {
      Require(one.values[k] == other.values[k] || (std::isnan(one.values[k]) && std::isnan(other.values[k])));
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string path = ScratchFolder() + "TAVRIX.ini";
  StartSimulator();
  StartParts();
  WriteWhole(path, "");
  SetSettingsPath(path.c_str());
  Require(ReadAllSettings());
  LoadButtonAssignments();
  LoadAxisAssignments();
  OpenAll();
  std::string_view text = TextOf(data, size);
  for (int lines = 0; !text.empty() && lines < 100; ++lines) {
    const std::string_view line = Cut(&text, "\n");
    CheckQuotes(line);
    if (IsHarmless(line)) Run(line);
  }
  CheckSettings();
  DestroyWindows();
  ReleaseTraffic();
  DeleteAxes();
  DeleteButtons();
  DeleteLocks();
  Require(sim::SimStop() == 0 && sim::WidgetCount() == 0);
  return 0;
}
