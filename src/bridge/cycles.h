// Refresh cycles and write cycle: the flight loops that keep the offset memory current and apply what
// clients wrote. All of it runs on the simulator's thread.
//
// A cycle first reads the simulator with no lock held and converts; then it stores its rows in tight groups
// and only tries the offset lock for each: when the lock is busy a group is tried once more at the end of the
// run, then its values are dropped until the next run. A writer enters the lock only to take its staged value
// and calls the simulator after leaving it.
#pragma once
#include <cstdint>

#include "bridge/catalogue.h"

// Derives readers, writers and dispatch widths from the catalogue. At start, after the look-ups. Returns 1.
int BuildCycles();

// Flight-loop callbacks, with the simulator's signature; each returns its next interval.
float WriteCycle(float, float, int, void*);
float RefreshCycle1(float, float, int, void*);
float RefreshCycle3(float, float, int, void*);
float RefreshCycle7(float, float, int, void*);
float RefreshCycle13(float, float, int, void*);
float RefreshCycle31Navigation(float, float, int, void*);
float RefreshCycle31(float, float, int, void*);
float RefreshCycle59(float, float, int, void*);
float RefreshCycle157(float, float, int, void*);
float RefreshCycle313(float, float, int, void*);
float OverrideWatch(float, float, int, void*);
float ButtonCycle(float, float, int, void*);
float MultiplayerCycle(float, float, int, void*);

// Runs the readers of one cycle once. In the same frame as the run before, what that one has read of the
// simulator counts on; else the simulator is asked anew.
void RunReaders(Cycle cycle, bool sameFrame = false);
// Runs all writers once, in their fixed order.
void RunWriters();

// Takes ATC texts that clients have written over into the settings, where they count at once and wait for being
// saved; `now` is monotonic time in ns. The write cycle does it every frame, disable once more at its end, when
// nobody writes any more and the offset lock is still there.
void TakeAtcTexts(int64_t now);

// Counters of refreshes that were stored and of those dropped because the lock was busy at both tries.
struct RefreshCounters {
  uint64_t stored, dropped;
};
extern RefreshCounters refreshCounters;

// The crash word at 0x0840: set by the simulator's crash message, cleared after `crashCountdown` calls of
// the override watch.
extern int crashCountdown;
void SetCrashed();
// The four override switches of the axes as the watch saw them last (pitch, roll, heading, throttles).
struct OverrideState {
  int pitch, roll, heading, throttles;
};
extern OverrideState overrideState;
// Joystick buttons as the button cycle read them; older simulators have fewer than the newest.
constexpr int maxJoystickButtons = 1600;
extern int joystickButtons[maxJoystickButtons];
extern int joystickButtonCount;

// The user's aircraft was loaded: the navigation cycle runs again soon after its next run, and the next frame
// refreshes the rows of every cycle, as nearly all of the slow ones hang on the aircraft.
extern int navigationPending;
extern int aircraftChanged;
