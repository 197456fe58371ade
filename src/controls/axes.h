// Joystick axes that write offsets: the user assigns an axis to a control (axis_settings.h), its reading
// becomes a deflection (axis_pipeline.h), and the control's offset gets it as a client would write it.
//
// Where the system has joysticks (platform/joystick.h) the joystick thread reads them once a frame; elsewhere
// the simulator's thread takes the simulator's list of axes. The rest is the same: a round of the joystick
// thread makes deflections of the readings and writes what is news, through the dispatcher, once a frame at
// most. A frame only wakes it. Nothing happens in a frame while nothing is assigned and no window looks.
//
// An axis takes over when it is first moved, by a hundredth of its way, after enable or after it has been
// assigned. When its device stops answering, the last value stays; when it is back, the axis takes over again
// when it is moved, and catches up, from rest to full within a second. With the first value of a control the
// simulator's own joystick is taken off it by the bits of offset 0x310A; a bit that a client clears later stays
// clear until the next enable. Bits that were off before are given back when the last axis that needs them is
// no longer assigned (but for one that a client has cleared meanwhile), and at disable.
//
// The room's own lock for axes is never held together with another one.
#pragma once
#include <cstdint>
#include <span>
#include <string>

#include "controls/axis_settings.h"

// --- Simulator's thread, no lock held -----------------------------------------------------------------
// At enable, after the program's locks, and at disable, after StopButtonThread.
bool CreateAxes();
void DeleteAxes();
// From now on no axis writes any more. At disable, before overrides are given back.
void StopAxisWrites();
// Takes the assignments from the settings file, also those of the flap detents. Controls that stay as they were
// go on; others take over when they are moved.
void LoadAxisAssignments();
// The windows' save: writes what differs and loads again. Returns true, or false (a log line tells why).
bool SaveAxisSettings(size_t control, const AxisSettings& changed);
// What stands in the file for a control.
const AxisSettings& AxisSettingsOf(size_t control);

// Whether anybody wants to know the axes in this frame. Every frame; while it says no, the simulator need not
// be asked for anything.
bool WantsAxes();
// Whether the simulator's overrides are to be told in this frame: a control may take over.
bool WantsAxisOverrides();
// One frame: takes the readings of the simulator's list (none where the system has joysticks) and, when they
// are wanted, which overrides are on (bits as at 0x310A). Returns whether the joystick thread is to be woken
// for a round.
constexpr int overridesNotTold = -1;
bool WatchAxes(std::span<const float> readings, int overridesOn);

// How an axis stands, for windows; NaN when it is not there. Asking keeps the axes watched for the next two
// seconds or so.
double AxisReading(const AxisInput& input);
// The axis that was last moved by a quarter of its way, and how many such moves were seen since the module was
// loaded.
struct AxisMove {
  AxisInput input;
  uint32_t count = 0;
};
AxisMove LastAxisMove();
// The same, and from now on moves count from where the axes stand.
AxisMove WatchForAxisMove();
// From now on the least and the largest of all readings of an axis are kept; of one that is not assigned
// nothing is. NaN before the first reading.
void FollowAxisEnds(const AxisInput& input);
struct AxisEnds {
  double low, high;
};
AxisEnds FollowedAxisEnds();

// --- The joystick thread -------------------------------------------------------------------------------
// One round, if a frame has asked for one since the last.
void RunAxisRound();
