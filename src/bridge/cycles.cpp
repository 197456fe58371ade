#include "bridge/cycles.h"

#include <cstring>

#include "aircraft/adapters.h"
#include "base/log.h"
#include "bridge/reader_groups.h"
#include "bridge/slew.h"
#include "bridge/stations.h"
#include "bridge/weather_area.h"
#include "bridge/writer_list.h"
#include "controls/buttons.h"
#include "custom/custom.h"
#include "net/relay.h"
#include "offsets/dispatcher.h"
#include "offsets/memory.h"
#include "panels/panels.h"
#include "platform/clock.h"
#include "pushback/pushback.h"
#include "settings/settings.h"
#include "traffic/traffic.h"

int crashCountdown = -1;
int navigationPending;
int aircraftChanged;
OverrideState overrideState;
int joystickButtons[maxJoystickButtons];
int joystickButtonCount;

namespace {

constexpr Source runningTime = Float<"sim/time/total_running_time_sec">;
constexpr uint32_t crashOffset = 0x0840;
constexpr Source overrides[4] = {
    Int<"sim/operation/override/override_joystick_pitch">, Int<"sim/operation/override/override_joystick_roll">,
    Int<"sim/operation/override/override_joystick_heading">, Int<"sim/operation/override/override_throttles">};

uint16_t crashWord;
bool crashWordDue;  // not stored yet: the lock was busy

void StoreCrashWord() {
  if (TryEnterLock(&offsetLock) == 0) return;  // again at the next call
  Store<uint16_t>(crashOffset, crashWord);
  LeaveLock(&offsetLock);
  crashWordDue = false;
}

// Runs a recognition; when an adapter was loaded or has gone, the readers take their handles anew.
void WatchAdapters(void (*recognise)()) {
  const AddOnSet before = loadedAddOns;
  recognise();
  if (before != loadedAddOns) BindReaders();
}

// All cycles but the first, the slowest ones first: others look at what they store. The user's own offsets stay
// on top of the rows at the same places.
void RefreshSlowCycles() {
  struct Slow {
    Cycle cycle;
    int customGroup;  // 0: none
  };
  constexpr Slow slow[] = {{Cycle::C313, 8},          {Cycle::C157, 7}, {Cycle::C59, 6}, {Cycle::C31, 5},
                           {Cycle::C31Navigation, 4}, {Cycle::C13, 3},  {Cycle::C7, 2},  {Cycle::C3, 0}};
  aircraftChanged = 0;
  TuneStations();
  for (const Slow& each : slow) {
    RunReaders(each.cycle);
    if (each.customGroup != 0) RefreshCustomOffsets(each.customGroup);
  }
}

}  // namespace

void TakeAtcTexts(int64_t now) {
  if (atcTexts.changed.load(std::memory_order_relaxed) == 0) return;
  uint32_t changed = 0;
  char number[atcTextSize + 1];
  char tailNumber[atcTextSize + 1];
  {
    LockScope lock(&offsetLock);
    changed = atcTexts.changed.exchange(0);
    std::memcpy(number, atcTexts.number, sizeof number);
    std::memcpy(tailNumber, atcTexts.tailNumber, sizeof tailNumber);
  }
  constexpr char section[] = "TAVRIX ATC SETTINGS";
  if ((changed & 1) != 0) {
    std::memcpy(settings.atcNumber, number, sizeof number);
    KeepSetting(section, "ATC Number", number, now);
  }
  if ((changed & 2) != 0) {
    std::memcpy(settings.atcTailNumber, tailNumber, sizeof tailNumber);
    KeepSetting(section, "ATC Tail Number", tailNumber, now);
  }
}

int BuildCycles() {
  BuildReaders();
  BuildWriters();
  return 1;
}

float WriteCycle(float, float, int, void*) {
  PublishRunningTime(static_cast<float>(ReadSource(runningTime)));
  RunWriters();
  ApplyWeatherArea();
  SlewStep();
  ApplyPendingCustomWrites();
  TakeCustomReload();
  ApplyRelayRecord();
  if (atcTexts.changed.load(std::memory_order_relaxed) != 0 || SettingsWait()) {
    const int64_t now = MonotonicNanoseconds();
    TakeAtcTexts(now);
    SaveSettingsWhenDue(now);
  }
  ShowClientCount();
  return -1;
}

float RefreshCycle1(float, float, int, void*) {
  if (aircraftChanged != 0) RefreshSlowCycles();
  RunReaders(Cycle::C1);
  RefreshCustomOffsets(1);
  PushbackStep();
  return -1;
}

float RefreshCycle3(float, float, int, void*) {
  RunReaders(Cycle::C3);
  return -3;
}

float RefreshCycle7(float, float, int, void*) {
  RunReaders(Cycle::C7);
  RefreshCustomOffsets(2);
  return -7;
}

float RefreshCycle13(float, float, int, void*) {
  RunReaders(Cycle::C13);
  RefreshCustomOffsets(3);
  return -13;
}

float RefreshCycle31Navigation(float, float, int, void*) {
  TuneStations();
  RunReaders(Cycle::C31Navigation);
  RefreshCustomOffsets(4);
  // The radios of a new aircraft settle late: they are read again half a second later.
  if (navigationPending != 0) {
    navigationPending = 0;
    return 0.5F;
  }
  return -31;
}

float RefreshCycle31(float, float, int, void*) {
  RunReaders(Cycle::C31);
  RefreshCustomOffsets(5);
  return -31;
}

float RefreshCycle59(float, float, int, void*) {
  RunReaders(Cycle::C59);
  RefreshCustomOffsets(6);
  RunEc135Adapter();
  return -59;
}

float RefreshCycle157(float, float, int, void*) {
  RunReaders(Cycle::C157);
  RefreshCustomOffsets(7);
  return -157;
}

float RefreshCycle313(float, float, int, void*) {
  RunReaders(Cycle::C313);
  RefreshCustomOffsets(8);
  WatchAdapters(RecogniseAircraft);
  return -313;
}

float OverrideWatch(float, float, int, void*) {
  overrideState = {IsOn(overrides[0]), IsOn(overrides[1]), IsOn(overrides[2]), IsOn(overrides[3])};
  if (crashCountdown > 0 && --crashCountdown == 0) {
    crashCountdown = -1;
    crashWord = 0;
    crashWordDue = true;
  }
  if (crashWordDue) StoreCrashWord();
  return 1.0F;
}

float ButtonCycle(float, float, int, void*) {
  const XPLMDataRef buttons = HandleOf(IntElement<"sim/joystick/joystick_button_values">(0));
  joystickButtonCount = buttons == nullptr ? 0 : XPLMGetDatavi(buttons, joystickButtons, 0, maxJoystickButtons);
  WatchButtons(joystickButtons, joystickButtonCount);
  return -1;
}

float MultiplayerCycle(float, float, int, void*) {
  if (TrafficRuns() != 0) FillTrafficPositions();  // a busy lock: at the next call
  return 0.1F;
}

void SetCrashed() {
  crashWord = 1;
  crashCountdown = 5;
  LockScope lock(&offsetLock);
  Store<uint16_t>(crashOffset, crashWord);
  crashWordDue = false;
}
