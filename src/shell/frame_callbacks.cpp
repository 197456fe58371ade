#include "shell/frame_callbacks.h"

#include <algorithm>

#include "XPLMUtilities.h"
#include "aircraft/adapters.h"
#include "base/log.h"
#include "bridge/cycles.h"
#include "bridge/slew.h"
#include "bridge/stations.h"
#include "bridge/weather_area.h"
#include "controls/axes.h"
#include "controls/buttons.h"
#include "custom/custom.h"
#include "net/relay.h"
#include "offsets/dispatcher.h"
#include "panels/panels.h"
#include "platform/clock.h"
#include "pushback/pushback.h"
#include "settings/settings.h"
#include "shell/atc_texts.h"
#include "shell/override_watch.h"
#include "traffic/traffic.h"

namespace {

constexpr Source runningTime = Float<"sim/time/total_running_time_sec">;

bool navigationDue;    // the navigation cycle runs again soon
bool aircraftChanged;  // the next frame runs all cycles
int buttonStates[maxButtons];
float axisReadings[maxAxes];
int lookedAt;  // the host's number of the frame in which the first cycle ran last

// Whether what the first cycle has read is of this very frame. A host that does not count says no.
bool IsLookedAt(int frame) { return frame != 0 && frame == lookedAt; }

// All cycles but the first, the slowest ones first: others look at what they store. The user's own offsets stay
// on top of the rows at the same places.
void RefreshSlowCycles() {
  struct Slow {
    Cycle cycle;
    int customGroup;  // 0: none
  };
  constexpr Slow slow[] = {{Cycle::C313, 8},          {Cycle::C157, 7}, {Cycle::C59, 6}, {Cycle::C31, 5},
                           {Cycle::C31Navigation, 4}, {Cycle::C13, 3},  {Cycle::C7, 2},  {Cycle::C3, 0}};
  aircraftChanged = false;
  TuneStations();
  bool sameFrame = false;
  for (const Slow& each : slow) {
    RunReaders(each.cycle, sameFrame);
    sameFrame = true;
    if (each.customGroup != 0) RefreshCustomOffsets(each.customGroup);
  }
}

void FollowAxes() {
  size_t count = 0;
  if constexpr (!systemHasJoysticks) {
    const XPLMDataRef axes = HandleOf(FloatElement<"sim/joystick/joystick_axis_values">(0));
    // Older simulators have fewer axes than the newest.
    if (axes != nullptr)
      count = static_cast<size_t>(std::max(0, XPLMGetDatavf(axes, axisReadings, 0, maxAxes)));
  }
  const int overridesOn = WantsAxisOverrides() ? OverridesOn() : overridesNotTold;
  if (WatchAxes({axisReadings, count}, overridesOn)) WakeButtonThread();
}

}  // namespace

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
  FollowPanels();
  ReportLostLines(XPLMDebugString);
  return -1;
}

float RefreshCycle1(float, float, int frame, void*) {
  if (aircraftChanged) RefreshSlowCycles();
  RunReaders(Cycle::C1);
  lookedAt = frame;
  RefreshCustomOffsets(1);
  PushbackStep();
  return -1;
}

float RefreshCycle3(float, float, int frame, void*) {
  RunReaders(Cycle::C3, IsLookedAt(frame));
  return -3;
}

float RefreshCycle7(float, float, int frame, void*) {
  RunReaders(Cycle::C7, IsLookedAt(frame));
  RefreshCustomOffsets(2);
  return -7;
}

float RefreshCycle13(float, float, int frame, void*) {
  RunReaders(Cycle::C13, IsLookedAt(frame));
  RefreshCustomOffsets(3);
  return -13;
}

float RefreshCycle31Navigation(float, float, int frame, void*) {
  TuneStations();
  RunReaders(Cycle::C31Navigation, IsLookedAt(frame));
  RefreshCustomOffsets(4);
  // The radios of a new aircraft settle late: they are read again half a second later.
  if (navigationDue) {
    navigationDue = false;
    return 0.5F;
  }
  return -31;
}

float RefreshCycle31(float, float, int frame, void*) {
  RunReaders(Cycle::C31, IsLookedAt(frame));
  RefreshCustomOffsets(5);
  return -31;
}

float RefreshCycle59(float, float, int frame, void*) {
  RunReaders(Cycle::C59, IsLookedAt(frame));
  RefreshCustomOffsets(6);
  RunEc135Adapter();
  return -59;
}

float RefreshCycle157(float, float, int frame, void*) {
  RunReaders(Cycle::C157, IsLookedAt(frame));
  RefreshCustomOffsets(7);
  return -157;
}

float RefreshCycle313(float, float, int frame, void*) {
  RunReaders(Cycle::C313, IsLookedAt(frame));
  RefreshCustomOffsets(8);
  RecogniseAircraft();
  return -313;
}

float ButtonCycle(float, float, int, void*) {
  if (WantsAxes()) FollowAxes();
  if (!WantsButtons()) return -1;
  const XPLMDataRef buttons = HandleOf(IntElement<"sim/joystick/joystick_button_values">(0));
  // Older simulators have fewer buttons than the newest.
  WatchButtons(buttonStates, buttons == nullptr ? 0 : XPLMGetDatavi(buttons, buttonStates, 0, maxButtons));
  return -1;
}

float MultiplayerCycle(float, float, int, void*) {
  if (TrafficRuns()) FillTrafficPositions();  // a busy lock: at the next call
  return 0.1F;
}

void AwaitFirstCycles() {
  navigationDue = true;
  aircraftChanged = false;
}

void RefreshForNewAircraft() {
  navigationDue = true;
  aircraftChanged = true;
}
