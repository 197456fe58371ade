#include "controls/axis_settings.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <vector>

#include "base/log.h"
#include "offsets/memory.h"
#include "platform/clock.h"
#include "settings/settings_text.h"

namespace {

constexpr char section[] = "TAVRIX AXIS SETTINGS";
constexpr char notAssigned[] = "Not assigned";
constexpr size_t keyCount = static_cast<size_t>(AxisKey::Count);

// --- Controls
// -------------------------------------------------------------------------------------------------

constexpr unsigned pitch = 1, roll = 2, heading = 4, throttles = 8;
constexpr double full = 16383;

constexpr AxisTarget Signed(uint32_t offset, double low, double high) {
  return {.offset = offset, .size = 2, .type = NumberType::Signed, .low = low, .high = high};
}
constexpr AxisTarget Lever(uint32_t offset) {
  return {.offset = offset, .size = 4, .type = NumberType::Unsigned, .low = 0, .high = full};
}
constexpr uint32_t throttleOffsets[engineOffsets] = {0x088C, 0x0924, 0x09BC, 0x0A54};
constexpr double forwardFull = 16384, reverseFull = -4096;
constexpr AxisControl Throttle(int member) {
  return {.name = "Throttle",
          .role = AxisRole::Engines,
          .target = Signed(throttleOffsets[0], 0, forwardFull),
          .overrides = throttles,
          .member = member};
}
constexpr AxisControl Free(int member) { return {.name = "Free", .role = AxisRole::Free, .member = member}; }

constexpr AxisControl controls[] = {
    {.name = "Elevator", .travel = Travel::Centred, .target = Signed(0x0BB2, -full, full), .overrides = pitch},
    {.name = "Aileron", .travel = Travel::Centred, .target = Signed(0x0BB6, -full, full), .overrides = roll},
    {.name = "Rudder", .travel = Travel::Centred, .target = Signed(0x0BBA, -full, full), .overrides = heading},
    {.name = "Tiller", .role = AxisRole::Free},
    {.name = "Left Toebrake", .target = Signed(0x0BC4, 0, full)},
    {.name = "Right Toebrake", .target = Signed(0x0BC6, 0, full)},
    Throttle(1),
    Throttle(2),
    Throttle(3),
    Throttle(4),
    {.name = "Speedbrake", .target = Lever(0x0BD0)},
    {.name = "Flaps", .role = AxisRole::Flaps, .target = Lever(0x0BDC)},
    Free(1),
    Free(2),
    Free(3),
    Free(4),
    Free(5),
    Free(6),
    Free(7),
    Free(8),
};
static_assert(std::size(controls) == axisControlCount);

bool IsToeBrake(size_t control) {
  return controls[control].target.offset == 0x0BC4 || controls[control].target.offset == 0x0BC6;
}

// --- Texts of keys
// --------------------------------------------------------------------------------------------

constexpr size_t mostNumbers = 5;
struct Fields {
  size_t count = 0;
  std::string_view texts[mostNumbers] = {};
};

std::string_view Trim(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

// The parts between commas; more than fit count, and are not kept.
Fields Split(std::string_view text) {
  Fields fields;
  for (;;) {
    const size_t comma = text.find(',');
    if (fields.count < mostNumbers) fields.texts[fields.count] = Trim(text.substr(0, comma));
    ++fields.count;
    if (comma == std::string_view::npos) return fields;
    text.remove_prefix(comma + 1);
  }
}

// The whole text as a number.
template <typename Number, typename... Base>
bool Whole(std::string_view text, Number* number, Base... base) {
  Number read = {};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), read, base...);
  if (error != std::errc() || end != text.data() + text.size()) return false;
  *number = read;
  return true;
}

bool Within(std::string_view text, double least, double most, double* number) {
  double read = 0;
  if (!Whole(Trim(text), &read) || !(read >= least && read <= most)) return false;
  *number = read;
  return true;
}

std::string Text(double number) {
  char text[32];
  return {text, std::to_chars(text, text + sizeof text, number).ptr};
}

template <size_t which>
std::string TakeInput(std::string_view text, AxisSettings* into) {
  AxisInput& input = into->inputs[which];
  if (text.empty() || text == notAssigned || text == "NOT ASSIGNED") {
    input = {};
    return "";
  }
  const Fields fields = Split(text);
  AxisInput read;
  if (fields.count == 2 && Whole(fields.texts[0], &read.joystick) && Whole(fields.texts[1], &read.axis) &&
      read.joystick >= 0 && read.joystick < axisJoysticks && read.axis >= 0 && read.axis < axesOfJoystick) {
    input = read;
    return "";
  }
  return "it is \"Not assigned\" or joystick,axis: joystick " +
         (axisJoysticks > 1 ? "0 to " + std::to_string(axisJoysticks - 1) : "0") + ", axis 0 to " +
         std::to_string(axesOfJoystick - 1);
}
template <size_t which>
std::string InputText(const AxisSettings& from) {
  const AxisInput& input = from.inputs[which];
  if (!IsAssigned(input)) return notAssigned;
  return std::to_string(input.joystick) + "," + std::to_string(input.axis);
}

template <size_t which>
std::string TakeInversion(std::string_view text, AxisSettings* into) {
  const bool isYes = ParseYesNo(text);
  if (!isYes && !text.empty() && text != "No" && text != "NO" && text != "no") return "it is Yes or No";
  into->inverted[which] = isYes;
  return "";
}
template <size_t which>
std::string InversionText(const AxisSettings& from) {
  return from.inverted[which] ? "Yes" : "No";
}

template <size_t which>
std::string TakeCalibration(std::string_view text, AxisSettings* into) {
  constexpr double leastWay = 0.001;
  const Fields fields = Split(text);
  double ends[3] = {};
  bool good = fields.count == 3;
  for (size_t i = 0; good && i < 3; ++i) {
    good = Within(fields.texts[i], 0, 1, &ends[i]) && (i == 0 || ends[i] - ends[i - 1] >= leastWay);
  }
  if (!good) return "it is minimum,centre,maximum, each larger than the one before, from 0 to 1";
  into->calibrations[which] = {ends[0], ends[1], ends[2]};
  return "";
}
template <size_t which>
std::string CalibrationText(const AxisSettings& from) {
  const Calibration& c = from.calibrations[which];
  return Text(c.low) + "," + Text(c.centre) + "," + Text(c.high);
}

std::string TakeNullZone(std::string_view text, AxisSettings* into) {
  return Within(text, 0, mostNullZone, &into->nullZone) ? "" : "it is a share of full travel, 0 to 0.9";
}
std::string NullZoneText(const AxisSettings& from) { return Text(from.nullZone); }

std::string TakeCurve(std::string_view text, AxisSettings* into) {
  return Within(text, leastCurve, mostCurve, &into->curve) ? "" : "it is from -0.5 to 1, 0 is straight";
}
std::string CurveText(const AxisSettings& from) { return Text(from.curve); }

std::string TakeReverse(std::string_view text, AxisSettings* into) {
  return Within(text, 0, mostReverse, &into->reverse) ? "" : "it is the share of travel in reverse, 0 to 0.9";
}
std::string ReverseText(const AxisSettings& from) { return Text(from.reverse); }

std::string TakeEngines(std::string_view text, AxisSettings* into) {
  const Fields fields = Split(text);
  unsigned engines = 0;
  bool good = fields.count <= engineOffsets;
  for (size_t i = 0; good && i < fields.count; ++i) {
    int engine = 0;
    good = Whole(fields.texts[i], &engine) && engine >= 1 && engine <= engineOffsets;
    if (good) engines |= 1u << (engine - 1);
  }
  if (!good) return "it is a list of engines, 1 to 4, separated by commas";
  into->engines = engines;
  return "";
}
std::string EnginesText(const AxisSettings& from) {
  std::string text;
  for (int engine = 0; engine < engineOffsets; ++engine) {
    if ((from.engines & 1u << engine) != 0) text += (text.empty() ? "" : ",") + std::to_string(engine + 1);
  }
  return text;
}

struct TypeLetter {
  const char* letter;
  NumberType type;
};
constexpr TypeLetter typeLetters[] = {
    {"U", NumberType::Unsigned}, {"S", NumberType::Signed}, {"F", NumberType::Float}};

// Why a client could not write there, or null.
const char* FaultOfPlace(uint32_t offset, uint32_t size) {
  if (offset == 0 || offset >= offsetMemorySize || offset + size > offsetMemorySize)
    return "the offset's bytes must lie from 1 to 1FFFF hexadecimal";
  for (uint32_t at = offset; at < offset + size; ++at) {
    if (VariablesAccessMemBlock[at] == accessReadOnly) return "the offset cannot be written";
  }
  return nullptr;
}

std::string TakeTarget(std::string_view text, AxisSettings* into) {
  constexpr char form[] =
      "it is offset,size,low,high or offset,size,type,low,high: the offset hexadecimal, the size 1, 2, 4 or 8 "
      "bytes, the type U, S or F";
  if (text.empty()) {
    into->target = {};
    return "";
  }
  const Fields fields = Split(text);
  if (fields.count != 4 && fields.count != 5) return form;
  AxisTarget target;
  std::string_view offset = fields.texts[0];
  if (offset.starts_with("0x") || offset.starts_with("0X")) offset.remove_prefix(2);
  const std::string_view *low = &fields.texts[fields.count - 2], *high = &fields.texts[fields.count - 1];
  if (!Whole(offset, &target.offset, 16) || !Whole(fields.texts[1], &target.size)) return form;
  if (!Whole(*low, &target.low) || !Whole(*high, &target.high)) return form;
  if (!std::isfinite(target.low) || !std::isfinite(target.high)) return form;
  if (target.size != 1 && target.size != 2 && target.size != 4 && target.size != 8) return form;
  target.type = target.low < 0 || target.high < 0 ? NumberType::Signed : NumberType::Unsigned;
  if (fields.count == 5) {
    const auto* found = std::find_if(std::begin(typeLetters), std::end(typeLetters),
                                     [&](const TypeLetter& each) { return fields.texts[2] == each.letter; });
    if (found == std::end(typeLetters)) return form;
    target.type = found->type;
  }
  if (const char* fault = FaultOfPlace(target.offset, target.size)) return fault;
  if (target.low == target.high) return "low and high are the same";
  if (target.type == NumberType::Float) {
    if (target.size < 4) return "a floating-point number has 4 or 8 bytes";
    constexpr double mostFloat = 1e30;
    if (std::max(std::fabs(target.low), std::fabs(target.high)) > mostFloat)
      return "low and high are too large";
  } else {
    // Of 8 bytes as much as a double holds exactly.
    const int bits = std::min(53, static_cast<int>(target.size) * 8 - (target.type == NumberType::Signed));
    const double most = std::ldexp(1, bits) - 1, least = target.type == NumberType::Signed ? -most - 1 : 0;
    for (const double end : {target.low, target.high}) {
      if (end < least || end > most || end != std::round(end))
        return "low and high are whole numbers that fit into the size";
    }
  }
  into->target = target;
  return "";
}
std::string TargetText(const AxisSettings& from) {
  const AxisTarget& target = from.target;
  if (target.size == 0) return "";
  char offset[16];
  char* end = std::to_chars(offset, offset + sizeof offset, target.offset, 16).ptr;
  std::transform(offset, end, offset,
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  return std::string(offset, end) + "," + std::to_string(target.size) + "," +
         typeLetters[static_cast<size_t>(target.type)].letter + "," + Text(target.low) + "," +
         Text(target.high);
}

// --- Keys
// -----------------------------------------------------------------------------------------------------

constexpr unsigned RoleBit(AxisRole role) { return 1u << static_cast<unsigned>(role); }
constexpr unsigned everyRole =
    RoleBit(AxisRole::Fixed) | RoleBit(AxisRole::Engines) | RoleBit(AxisRole::Flaps) | RoleBit(AxisRole::Free);

struct KeyRow {
  const char *before, *between;  // the key is before, the control's name, between
  unsigned roles;                // of the controls that have it
  std::string (*take)(std::string_view text, AxisSettings* into);
  std::string (*text)(const AxisSettings& from);
};
constexpr KeyRow keyRows[keyCount] = {
    {"Assign ", " Axis", everyRole, TakeInput<0>, InputText<0>},
    {"Combine ", " Axis", everyRole, TakeInput<1>, InputText<1>},
    {"Invert ", " Axis", everyRole, TakeInversion<0>, InversionText<0>},
    {"Invert Combined ", " Axis", everyRole, TakeInversion<1>, InversionText<1>},
    {"Calibrate ", " Axis", everyRole, TakeCalibration<0>, CalibrationText<0>},
    {"Calibrate Combined ", " Axis", everyRole, TakeCalibration<1>, CalibrationText<1>},
    {"Nullzone ", " Axis", everyRole, TakeNullZone, NullZoneText},
    {"Curve ", " Axis", everyRole, TakeCurve, CurveText},
    {"Reverse ", " Axis", RoleBit(AxisRole::Engines), TakeReverse, ReverseText},
    {"Engines ", " Axis", RoleBit(AxisRole::Engines), TakeEngines, EnginesText},
    {"Target ", " Axis", RoleBit(AxisRole::Free), TakeTarget, TargetText},
};

const KeyRow& RowOf(AxisKey key) { return keyRows[static_cast<size_t>(key)]; }

std::string NameOfKey(size_t control, const KeyRow& row) {
  return row.before + NameOfControl(control) + row.between;
}

}  // namespace

std::span<const AxisControl> AxisControls() { return controls; }

std::string NameOfControl(size_t control) {
  const AxisControl& row = controls[control];
  return row.member == 0 ? row.name : std::string(row.name) + " " + std::to_string(row.member);
}

bool HasKey(size_t control, AxisKey key) { return (RowOf(key).roles & RoleBit(controls[control].role)) != 0; }

std::string TakeAxisKey(AxisKey key, std::string_view text, AxisSettings* into) {
  return RowOf(key).take(Trim(text), into);
}

std::string AxisKeyText(AxisKey key, const AxisSettings& from) { return RowOf(key).text(from); }

AxisSettings DefaultAxisSettings(size_t control) {
  AxisSettings byDefault;
  const AxisControl& row = controls[control];
  if (row.role == AxisRole::Engines) byDefault.engines = 1u << (row.member - 1);
  // The key that the two toe brakes share.
  if (IsToeBrake(control)) byDefault.nullZone = std::clamp(settings.toeBrakeNullZone, 0.0, mostNullZone);
  return byDefault;
}

void ReadAxisSettings(AllAxisSettings& all) {
  struct Wanted {
    size_t control;
    const KeyRow* row;
    std::string key;
  };
  std::vector<Wanted> wanted;
  for (size_t control = 0; control < axisControlCount; ++control) {
    all[control] = DefaultAxisSettings(control);
    for (size_t key = 0; key < keyCount; ++key) {
      if (HasKey(control, static_cast<AxisKey>(key)))
        wanted.push_back({control, &keyRows[key], NameOfKey(control, keyRows[key])});
    }
  }
  std::string text;
  if (ReadSettingsText(&text) <= 0) return;
  std::vector<SettingQuery> queries;
  queries.reserve(wanted.size());
  for (const Wanted& each : wanted) queries.push_back({section, each.key, {}, false});
  FindSettings(text, queries);
  for (size_t i = 0; i < wanted.size(); ++i) {
    if (!queries[i].found) continue;
    const std::string fault = wanted[i].row->take(queries[i].value, &all[wanted[i].control]);
    if (fault.empty()) continue;
    LogOwn("TAVRIX->\"%s\" in TAVRIX.ini is not used, it holds %s: %s\n", wanted[i].key.c_str(),
           EscapedForLog(queries[i].value).c_str(), fault.c_str());
  }
  if (settings.toeBrakeNullZone < 0 || settings.toeBrakeNullZone > mostNullZone)
    LogOwn("TAVRIX->ToeBrakeNullZonePercent in TAVRIX.ini is a share of full travel, 0 to 0.9: %g is limited\n",
           settings.toeBrakeNullZone);
}

std::string FaultOfAxisSettings(size_t control, const AxisSettings& given) {
  for (const KeyRow& row : keyRows) {
    if ((row.roles & RoleBit(controls[control].role)) == 0) continue;
    AxisSettings read = given;
    const std::string fault = row.take(row.text(given), &read);
    if (!fault.empty()) return NameOfKey(control, row) + ": " + fault;
  }
  return "";
}

bool WriteAxisSettings(size_t control, const AxisSettings& before, const AxisSettings& now) {
  const int64_t time = MonotonicNanoseconds();
  const AxisSettings byDefault = DefaultAxisSettings(control);
  bool written = true;
  for (size_t key = 0; key < keyCount; ++key) {
    if (!HasKey(control, static_cast<AxisKey>(key))) continue;
    const KeyRow& row = keyRows[key];
    const std::string value = row.text(now), name = NameOfKey(control, row);
    char inFile[maxSettingValue + 1];
    if (ReadSetting(section, name.c_str(), inFile, sizeof inFile) >= 0) {
      AxisSettings read = byDefault;
      if (row.take(Trim(inFile), &read).empty() && row.text(read) == value) continue;
    } else if (value == row.text(byDefault) && value == row.text(before)) {
      continue;
    }
    written = KeepSetting(section, name.c_str(), value.c_str(), time) && written;
  }
  return SaveWaitingSettings() && written;
}

Travel TravelOf(size_t control, const AxisSettings& given) {
  if (given.reverse > 0) return Travel::Reversing;
  return given.target.low * given.target.high < 0 ? Travel::Centred : controls[control].travel;
}

AxisTune TuneOf(const AxisSettings& given, size_t which) {
  return {.calibration = given.calibrations[which],
          .inverted = given.inverted[which],
          .nullZone = given.nullZone,
          .curve = given.curve,
          .reverse = given.reverse};
}

AxisPair InputsOf(const AxisSettings& given) {
  if (!IsAssigned(given.inputs[0])) return {{given.inputs[1], {}}};
  return {{given.inputs[0], given.inputs[1]}};
}

AxisAssignment MakeAssignment(size_t control, const AxisSettings& given) {
  const AxisControl& row = controls[control];
  AxisAssignment made;
  std::copy_n(InputsOf(given).inputs, 2, made.inputs);
  if (!IsAssigned(made.inputs[0])) return {};
  AxisTarget target = row.target;
  if (row.role == AxisRole::Free) {
    target = given.target;
    if (target.size == 0) {
      const std::string name = NameOfControl(control);
      LogOwn("TAVRIX->The axis %s moves nothing: \"Target %s Axis\" in TAVRIX.ini is missing\n", name.c_str(),
             name.c_str());
      return {};
    }
  }
  made.travel = TravelOf(control, given);
  if (made.travel == Travel::Reversing) target.low = reverseFull;
  for (size_t which = 0; which < 2; ++which) made.tunes[which] = TuneOf(given, which);
  made.overrides = row.overrides;
  if (row.role == AxisRole::Engines) {
    for (int engine = 0; engine < engineOffsets; ++engine) {
      if ((given.engines & 1u << engine) == 0) continue;
      target.offset = throttleOffsets[engine];
      made.targets[made.targetCount++] = target;
    }
  } else {
    made.targets[made.targetCount++] = target;
  }
  if (row.role == AxisRole::Flaps && settings.flapsActive) {
    made.detents = settings.flapDetents;
    const char* fault =
        PlaceDetents({settings.flapDetent, static_cast<size_t>(settings.flapDetents)}, made.bounds);
    if (fault != nullptr)
      LogOwn("TAVRIX->The flap detents in TAVRIX.ini cannot be used, they are spaced evenly: %s\n", fault);
  }
  return made;
}
