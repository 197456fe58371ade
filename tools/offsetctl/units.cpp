#include "units.h"

#include <charconv>

namespace ctl {

namespace {

enum class Measure {
  Length,
  Speed,
  Angle,
  AngularSpeed,
  Pressure,
  Frequency,
  Weight,
  Volume,
  Temperature,
  Time,
  Flow,
  Force,
  Acceleration,
  Ratio
};

// In the measure's base unit a value is value x factor + bias.
struct Unit {
  const char* name;
  Measure measure;
  double factor;
  double bias = 0;
};

constexpr double pi = 3.14159265358979323846;
constexpr double pound = 0.45359237;  // kg
constexpr double foot = 0.3048;       // m

constexpr Unit units[] = {
    {"m", Measure::Length, 1},
    {"km", Measure::Length, 1000},
    {"cm", Measure::Length, 0.01},
    {"ft", Measure::Length, foot},
    {"nm", Measure::Length, 1852},
    {"mi", Measure::Length, 1609.344},
    {"m/s", Measure::Speed, 1},
    {"kt", Measure::Speed, 1852.0 / 3600},
    {"kts", Measure::Speed, 1852.0 / 3600},
    {"km/h", Measure::Speed, 1 / 3.6},
    {"mph", Measure::Speed, 0.44704},
    {"ft/s", Measure::Speed, foot},
    {"ft/min", Measure::Speed, foot / 60},
    {"fpm", Measure::Speed, foot / 60},
    {"m/min", Measure::Speed, 1.0 / 60},
    {"deg", Measure::Angle, 1},
    {"rad", Measure::Angle, 180 / pi},
    {"rad/s", Measure::AngularSpeed, 180 / pi},
    {"deg/s", Measure::AngularSpeed, 1},
    {"rpm", Measure::AngularSpeed, 6},
    {"mb", Measure::Pressure, 1},
    {"hPa", Measure::Pressure, 1},
    {"inHg", Measure::Pressure, 33.8638866667},
    {"psi", Measure::Pressure, 68.9475729318},
    {"MHz", Measure::Frequency, 1000},
    {"kHz", Measure::Frequency, 1},
    {"Hz", Measure::Frequency, 0.001},
    {"kg", Measure::Weight, 1},
    {"lb", Measure::Weight, pound},
    {"lbs", Measure::Weight, pound},
    {"t", Measure::Weight, 1000},
    {"US gal", Measure::Volume, 3.785411784},
    {"gal", Measure::Volume, 3.785411784},
    {"l", Measure::Volume, 1},
    {"degC", Measure::Temperature, 1},
    {"C", Measure::Temperature, 1},
    {"degF", Measure::Temperature, 5.0 / 9, -160.0 / 9},
    {"F", Measure::Temperature, 5.0 / 9, -160.0 / 9},
    {"K", Measure::Temperature, 1, -273.15},
    {"s", Measure::Time, 1},
    {"min", Measure::Time, 60},
    {"h", Measure::Time, 3600},
    {"lb/h", Measure::Flow, pound},
    {"kg/h", Measure::Flow, 1},
    {"lbf", Measure::Force, 4.4482216152605},
    {"N", Measure::Force, 1},
    {"kN", Measure::Force, 1000},
    {"ft/s2", Measure::Acceleration, foot},
    {"m/s2", Measure::Acceleration, 1},
    {"g", Measure::Acceleration, 9.80665},
    {"%", Measure::Ratio, 1},
    {"percent", Measure::Ratio, 1},
};

char Lower(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

// Letters in either case and blanks left out: "deg C" is "degC".
bool IsSame(std::string_view a, std::string_view b) {
  size_t i = 0, j = 0;
  for (;;) {
    while (i < a.size() && a[i] == ' ') ++i;
    while (j < b.size() && b[j] == ' ') ++j;
    if (i == a.size() || j == b.size()) return i == a.size() && j == b.size();
    if (Lower(a[i++]) != Lower(b[j++])) return false;
  }
}

const Unit* FindUnit(std::string_view name) {
  for (const Unit& unit : units) {
    if (IsSame(name, unit.name)) return &unit;
  }
  return nullptr;
}

}  // namespace

bool SplitQuantity(std::string_view text, double* number, std::string_view* unit) {
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  const size_t digit = text.starts_with('-') ? 1 : 0;
  if (digit >= text.size() || !((text[digit] >= '0' && text[digit] <= '9') || text[digit] == '.')) return false;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), *number);
  if (result.ec != std::errc()) return false;
  *unit = text.substr(static_cast<size_t>(result.ptr - text.data()));
  while (unit->starts_with(' ')) unit->remove_prefix(1);
  return true;
}

bool ConvertUnit(double value, std::string_view from, std::string_view to, double* converted) {
  const Unit* source = FindUnit(from);
  const Unit* target = FindUnit(to);
  if (source == nullptr || target == nullptr || source->measure != target->measure)
    return IsSame(from, to) && (*converted = value, true);
  // Units of one size are left exactly as they are.
  const bool isSame = source->factor == target->factor && source->bias == target->bias;
  *converted = isSame ? value : (value * source->factor + source->bias - target->bias) / target->factor;
  return true;
}

std::string UnitsLike(std::string_view unit) {
  const Unit* wanted = FindUnit(unit);
  std::string text;
  for (const Unit& other : units) {
    if (wanted != nullptr && other.measure == wanted->measure)
      text += (text.empty() ? "" : ", ") + std::string(other.name);
  }
  return text;
}

}  // namespace ctl
