// What the joystick axes (axes.h) write, through the dispatcher: their values, and the overrides at 0x310A that
// keep the simulator's own joystick away. A value always arrives: it is staged whatever stands in the memory,
// and where the user's own offsets take one write a frame it waits for its turn.
#pragma once
#include <cstdint>

#include "controls/axis_settings.h"

// --- Simulator's thread, no lock held ---
// At enable: axes write from now on, and no override is theirs. StopAxisWrites (axes.h) is the opposite.
void BeginAxisWrites();

// --- The joystick thread, no lock held ---
struct AxisOutput {
  double number = 0;  // what the control's targets get, rounded
  unsigned due = 0;   // bit n: target n has not got it
  uint32_t tickets[engineOffsets] = {};
};
// Bits as at 0x310A.
struct OverrideChange {
  bool isDue = false;    // anything is to be switched on or given back
  unsigned taken = 0;    // to be switched on
  unsigned needed = 0;   // of those that we have switched on; the others are given back
  unsigned present = 0;  // on in the simulator
};
// Writes what is due, overrides first. Returns whether something is left that wants another round.
bool WriteAxes(const AxisAssignment (&controls)[axisControlCount], AxisOutput (&outputs)[axisControlCount],
               const OverrideChange& change);
