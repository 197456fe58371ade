// The system's joystick devices. Windows alone has them; elsewhere the simulator tells how its axes stand.
//
// One thread reads them, always the same, with no lock held: a device that is not plugged in may take some
// milliseconds to say so.
#pragma once
#include "platform/system.h"

constexpr bool systemHasJoysticks = onWindows;
constexpr int maxJoysticks = 16;
constexpr int joystickAxes = 6;  // X, Y, Z, R, U, V

// How the axes of a device (0 to maxJoysticks - 1) stand, each from 0 to 1 of the range that its driver gives;
// NaN for one that it does not have. Returns true, or false when the device is not there.
bool ReadJoystick(int joystick, float (&axes)[joystickAxes]);
