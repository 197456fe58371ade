// Slew mode, position freeze, pushback, and what writes have taken from the simulator.
//
// While slew or freeze is on, the simulator's own flight path is switched off (its path override). The
// freeze holds the place over ground only: height and attitude stay free. Simulator's thread, no lock held.
#pragma once
#include <atomic>
#include <cstdint>

// What the rows of pushback ask of the room that tows, which stands above this one.
struct PushbackHooks {
  int (*state)();                     // 0 straight, 1 and 2 turning, 3 off
  void (*command)(uint32_t command);  // a client's: 0, 1, 2 start, 3 stops, anything above starts straight
};
// Connects that room; until then pushback is off and commands do nothing. At start.
void ConnectPushbackRows(const PushbackHooks& hooks);

// Every frame: puts a frozen aircraft back to its place when it has moved.
void SlewStep();
// A client moved the frozen aircraft itself: the new place (local metres) is the one to hold from now on.
void MoveFreeze(double x, double z);
// Ends slew and freeze, gives the flight path back when we have taken it, and stores 0 at both offsets so
// that the next 1 is taken again. At disable, while the locks still exist.
void ClearSlew();
// Switches off those joystick and throttle overrides that a client's write at 0x310A switched on, and
// stores 0 there. At disable, while the locks still exist.
void ReleaseOverrides();
// Bits that clients' writes to 0x310A have left off since whoever took them here last (the joystick axes, which
// must not give back what is no longer theirs). Any thread.
extern std::atomic<unsigned> overridesCleared;
