// Once a second: the override switches of the axes, and the crash word at 0x0840, which shows 1 for a few
// seconds after a crash. Simulator's thread, no lock held.
#pragma once

// Flight-loop callback with the simulator's signature; returns its next interval. Clears the crash word when
// its time is over; a busy lock is left for the next call.
float OverrideWatch(float, float, int, void*);

// The four override switches of the axes as the watch saw them last.
struct OverrideState {
  bool pitch, roll, heading, throttles;
};
extern OverrideState overrideState;
// The same as they are now: bits in the order of offset 0x310A (elevator, aileron, rudder, throttles).
int OverridesOn();

// The crash word is put to 0 in a few seconds, whatever it holds. At enable.
void BeginCrashCountdown();
// The simulator's crash message: the word is 1 at once, and 0 again in a few seconds.
void SetCrashed();
