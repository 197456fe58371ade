// A winmm.dll for the end-to-end tests under Wine, where no joystick exists: it plays the devices of a text
// file, which the variable TAVRIX_TEST_JOYSTICKS names and which is read anew at every question. A line is a
// device:
//   NUMBER LOW HIGH X Y Z R U V
// with the range that its driver gives and where its axes stand; "-" is an axis that it does not have.
#define _WINMM_
#include <windows.h>
// The order matters: the multimedia header needs the one above.
#include <mmsystem.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int axisCount = 6;
struct Device {
  UINT low, high;
  bool has[axisCount];
  DWORD axes[axisCount];
};

bool ReadLine(const char* line, UINT wanted, Device* device) {
  UINT number = 0;
  char axes[axisCount][16] = {};
  if (std::sscanf(line, "%u %u %u %15s %15s %15s %15s %15s %15s", &number, &device->low, &device->high, axes[0],
                  axes[1], axes[2], axes[3], axes[4], axes[5]) != 9 ||
      number != wanted) {
    return false;
  }
  for (int i = 0; i < axisCount; ++i) {
    device->has[i] = std::strcmp(axes[i], "-") != 0;
    device->axes[i] = device->has[i] ? std::strtoul(axes[i], nullptr, 10) : 0;
  }
  return true;
}

bool FindDevice(UINT number, Device* device) {
  const char* path = std::getenv("TAVRIX_TEST_JOYSTICKS");
  FILE* file = path != nullptr ? std::fopen(path, "r") : nullptr;
  if (file == nullptr) return false;
  char line[200];
  bool found = false;
  while (!found && std::fgets(line, sizeof line, file) != nullptr) found = ReadLine(line, number, device);
  std::fclose(file);
  return found;
}

}  // namespace

#define EXPORTED extern "C" __declspec(dllexport)

EXPORTED MMRESULT WINAPI joyGetPosEx(UINT number, LPJOYINFOEX info) {
  Device device = {};
  if (info->dwSize != sizeof *info) return JOYERR_PARMS;
  if (!FindDevice(number, &device)) return JOYERR_UNPLUGGED;
  DWORD* const places[axisCount] = {&info->dwXpos, &info->dwYpos, &info->dwZpos,
                                    &info->dwRpos, &info->dwUpos, &info->dwVpos};
  for (int i = 0; i < axisCount; ++i) *places[i] = device.axes[i];
  return JOYERR_NOERROR;
}

EXPORTED MMRESULT WINAPI joyGetDevCapsA(UINT_PTR number, LPJOYCAPSA caps, UINT size) {
  Device device = {};
  if (size != sizeof *caps) return JOYERR_PARMS;
  if (!FindDevice(static_cast<UINT>(number), &device)) return MMSYSERR_NODRIVER;
  std::memset(caps, 0, sizeof *caps);
  UINT* const ranges[axisCount][2] = {{&caps->wXmin, &caps->wXmax}, {&caps->wYmin, &caps->wYmax},
                                      {&caps->wZmin, &caps->wZmax}, {&caps->wRmin, &caps->wRmax},
                                      {&caps->wUmin, &caps->wUmax}, {&caps->wVmin, &caps->wVmax}};
  constexpr UINT flags[axisCount] = {0, 0, JOYCAPS_HASZ, JOYCAPS_HASR, JOYCAPS_HASU, JOYCAPS_HASV};
  for (int i = 0; i < axisCount; ++i) {
    *ranges[i][0] = device.low;
    *ranges[i][1] = device.high;
    if (device.has[i]) caps->wCaps |= flags[i];
  }
  return JOYERR_NOERROR;
}

// What the plug-in asks besides: answered as by a system without joystick.
EXPORTED MMRESULT WINAPI joySetCapture(HWND, UINT, UINT, WINBOOL) { return JOYERR_UNPLUGGED; }
EXPORTED MMRESULT WINAPI joyReleaseCapture(UINT) { return JOYERR_NOERROR; }
EXPORTED MMRESULT WINAPI joySetThreshold(UINT, UINT) { return JOYERR_NOERROR; }
