#include "platform/joystick.h"

#include <windows.h>
// The order matters: the multimedia header needs the one above.
#include <mmsystem.h>

#include <limits>

namespace {

struct Range {
  UINT low, high;  // equal: the device has no such axis
};
struct Device {
  bool known;  // its ranges were asked for since it came
  Range ranges[joystickAxes];
};
Device devices[maxJoysticks];

bool AskRanges(UINT joystick, Device* device) {
  JOYCAPSA caps{};
  if (joyGetDevCapsA(joystick, &caps, sizeof caps) != JOYERR_NOERROR) return false;
  const auto having = [&caps](UINT flag, UINT low, UINT high) {
    return (caps.wCaps & flag) != 0 && high > low ? Range{low, high} : Range{0, 0};
  };
  device->ranges[0] = {caps.wXmin, caps.wXmax};
  device->ranges[1] = {caps.wYmin, caps.wYmax};
  device->ranges[2] = having(JOYCAPS_HASZ, caps.wZmin, caps.wZmax);
  device->ranges[3] = having(JOYCAPS_HASR, caps.wRmin, caps.wRmax);
  device->ranges[4] = having(JOYCAPS_HASU, caps.wUmin, caps.wUmax);
  device->ranges[5] = having(JOYCAPS_HASV, caps.wVmin, caps.wVmax);
  return true;
}

}  // namespace

bool ReadJoystick(int joystick, float (&axes)[joystickAxes]) {
  Device& device = devices[joystick];
  JOYINFOEX info{};
  info.dwSize = sizeof info;
  info.dwFlags = JOY_RETURNX | JOY_RETURNY | JOY_RETURNZ | JOY_RETURNR | JOY_RETURNU | JOY_RETURNV;
  const auto id = static_cast<UINT>(joystick);
  device.known = joyGetPosEx(id, &info) == JOYERR_NOERROR && (device.known || AskRanges(id, &device));
  if (!device.known) return false;
  const DWORD positions[joystickAxes] = {info.dwXpos, info.dwYpos, info.dwZpos,
                                         info.dwRpos, info.dwUpos, info.dwVpos};
  for (int axis = 0; axis < joystickAxes; ++axis) {
    const double low = device.ranges[axis].low, high = device.ranges[axis].high;
    axes[axis] = high > low ? static_cast<float>((positions[axis] - low) / (high - low))
                            : std::numeric_limits<float>::quiet_NaN();
  }
  return true;
}
