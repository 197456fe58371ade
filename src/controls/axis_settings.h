// Joystick axes in the settings file: what a control's keys in the section TAVRIX AXIS SETTINGS say. Keys that
// are missing do nothing and are not added. Simulator's thread, but for the checks, which are pure.
#pragma once
#include <span>
#include <string>
#include <string_view>

#include "controls/axis_pipeline.h"
#include "platform/joystick.h"

// One axis of one device. Where the simulator tells how the axes stand there is one device, 0.
struct AxisInput {
  int joystick = -1, axis = -1;
  bool operator==(const AxisInput&) const = default;
};
constexpr bool IsAssigned(const AxisInput& input) { return input.joystick >= 0; }
constexpr int axisJoysticks = systemHasJoysticks ? maxJoysticks : 1;
constexpr int axesOfJoystick = systemHasJoysticks ? joystickAxes : 512;
constexpr int maxAxes = axisJoysticks * axesOfJoystick;
// Its place among all axes.
constexpr int PlaceOf(const AxisInput& input) { return input.joystick * axesOfJoystick + input.axis; }

// What a control moves.
enum class AxisRole : uint8_t {
  Fixed,    // its own offset
  Engines,  // the offsets of the engines that it is for
  Flaps,    // its own offset, by detents when those are active
  Free,     // the offset that its Target key names
};
struct AxisControl {
  const char* name;  // in keys: "Assign Elevator Axis"
  AxisRole role = AxisRole::Fixed;
  Travel travel = Travel::OneSided;
  AxisTarget target = {};  // of an engine's lever: that of the first one
  unsigned overrides = 0;  // bits of offset 0x310A that keep the simulator's own joystick away
  int member = 0;          // of several alike, from 1
};
std::span<const AxisControl> AxisControls();
constexpr size_t axisControlCount = 20;
// Its name with its number: "Throttle 2".
std::string NameOfControl(size_t control);

constexpr int engineOffsets = 4;

// A control's keys as they stand in the file.
struct AxisSettings {
  AxisInput inputs[2];  // assigned, and combined with it
  Calibration calibrations[2];
  bool inverted[2] = {};
  double nullZone = 0, curve = 0;
  double reverse = 0;
  unsigned engines = 0;    // bit n: engine n + 1
  AxisTarget target = {};  // size 0: none
  bool operator==(const AxisSettings&) const = default;
};

enum class AxisKey : uint8_t {
  Assign,
  Combine,
  Invert,
  InvertCombined,
  Calibrate,
  CalibrateCombined,
  NullZone,
  Curve,
  Reverse,
  Engines,
  Target,
  Count
};

// Whether a control has such a key.
bool HasKey(size_t control, AxisKey key);
// Takes a key's text into the settings. Returns "", or what is wrong with it in words that follow a colon;
// they are untouched then.
std::string TakeAxisKey(AxisKey key, std::string_view text, AxisSettings* into);
// The text that reads back as what stands there.
std::string AxisKeyText(AxisKey key, const AxisSettings& from);
// What a control has without any key.
AxisSettings DefaultAxisSettings(size_t control);

using AllAxisSettings = AxisSettings[axisControlCount];
// Reads the keys of all controls; a text that cannot be used gets a log line, and the key its default.
void ReadAxisSettings(AllAxisSettings& all);
// Why settings would not be read back as they stand, in words for the user; "" when they would.
std::string FaultOfAxisSettings(size_t control, const AxisSettings& given);
// Makes the file hold what stands in `now`, in one rewrite, whatever it held; keys that say so already, or that
// are missing and at their default (and were so `before`, when the file was read), stay as they are. Returns
// true, or false (a log line tells why).
bool WriteAxisSettings(size_t control, const AxisSettings& before, const AxisSettings& now);

// What settings make of a reading: how the control moves, and the tune of each of its axes.
Travel TravelOf(size_t control, const AxisSettings& given);
AxisTune TuneOf(const AxisSettings& given, size_t which);
// The axes in use: one that is only combined is the control's axis.
struct AxisPair {
  AxisInput inputs[2];
};
AxisPair InputsOf(const AxisSettings& given);

// A control as it works, made of its settings.
struct AxisAssignment {
  AxisInput inputs[2];
  AxisTune tunes[2];
  Travel travel = Travel::OneSided;
  AxisTarget targets[engineOffsets];  // alike but for their offsets
  int targetCount = 0;                // 0: the control does nothing
  unsigned overrides = 0;
  int detents = 0;  // 0: none
  DetentBounds bounds[maxFlapDetents] = {};
  bool operator==(const AxisAssignment&) const = default;
};
// Nothing is assigned when neither of the two axes is; one that is only combined is the control's axis, and the
// keys of the first one hold for it. Settings that make no whole get a log line, and nothing is assigned.
AxisAssignment MakeAssignment(size_t control, const AxisSettings& given);
