#include "controls/button_settings.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>

#include "base/log.h"
#include "offsets/memory.h"
#include "settings/settings.h"
#include "settings/settings_text.h"

namespace {

constexpr char section[] = "JOYSTICK BUTTON SETTINGS";
constexpr size_t fieldCount = 12;

constexpr int32_t ButtonAssignment::*fields[fieldCount] = {
    &ButtonAssignment::offset,           &ButtonAssignment::size,           &ButtonAssignment::pressedValue,
    &ButtonAssignment::releasedValue,    &ButtonAssignment::setOnPress,     &ButtonAssignment::setOnRelease,
    &ButtonAssignment::clearOnPress,     &ButtonAssignment::clearOnRelease, &ButtonAssignment::nothingOnPress,
    &ButtonAssignment::nothingOnRelease, &ButtonAssignment::toggleOnPress,  &ButtonAssignment::toggleOnRelease,
};

int32_t ParseHexadecimal(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
  if (text.starts_with("0x") || text.starts_with("0X")) text.remove_prefix(2);
  int32_t value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value, 16);
  return result.ec == std::errc::result_out_of_range ? static_cast<int32_t>(offsetMemorySize) : value;
}

// Returns how many fields the line has.
size_t ParseLine(std::string_view line, ButtonAssignment* assignment) {
  size_t count = 0;
  for (;;) {
    const size_t comma = line.find(',');
    const std::string_view field = line.substr(0, comma);
    if (count < fieldCount)
      assignment->*fields[count] = count == 0 ? ParseHexadecimal(field) : ParseInteger(field);
    ++count;
    if (comma == std::string_view::npos) return count;
    line.remove_prefix(comma + 1);
  }
}

// The number of a button, or -1.
int ButtonOf(std::string_view key) {
  int button = -1;
  const auto [end, error] = std::from_chars(key.data(), key.data() + key.size(), button);
  return error == std::errc() && end == key.data() + key.size() && button >= 0 && button < maxButtons ? button
                                                                                                      : -1;
}

bool IsSection(std::string_view name) {
  return std::equal(name.begin(), name.end(), section, section + sizeof section - 1,
                    [](char a, char b) { return (a >= 'a' && a <= 'z' ? a - 'a' + 'A' : a) == b; });
}

const char* refusals[maxButtons];  // of the lines read last; simulator's thread

void Take(int button, std::string_view line, ButtonAssignment* target) {
  ButtonAssignment read = noAssignment;
  const size_t given = ParseLine(line, &read);
  if (read.offset <= 0) return;
  const char* fault =
      given < fieldCount ? "its line needs twelve numbers separated by commas" : FaultOfAssignment(read);
  refusals[button] = fault;
  if (fault != nullptr) {
    LogOwn("TAVRIX->Joystick button %i is not used, see [%s] in TAVRIX.ini: %s\n", button, section, fault);
    return;
  }
  *target = read;
}

}  // namespace

const char* FaultOfAssignment(const ButtonAssignment& assignment) {
  const int32_t size = assignment.size;
  if (size != 1 && size != 2 && size != 4) return "the size must be 1, 2 or 4";
  const auto begin = static_cast<uint32_t>(assignment.offset), end = begin + static_cast<uint32_t>(size);
  if (begin >= offsetMemorySize || end > offsetMemorySize)
    return "the offset's bytes must lie below 20000 hexadecimal";
  for (uint32_t at = begin; at < end; ++at) {
    if (VariablesAccessMemBlock[at] == accessReadOnly) return "the offset cannot be written";
  }
  return nullptr;
}

void ReadButtonSettings(ButtonAssignment (&assignments)[maxButtons]) {
  std::fill_n(assignments, maxButtons, noAssignment);
  std::fill_n(refusals, maxButtons, nullptr);
  std::string text;
  if (ReadSettingsText(&text) <= 0) return;
  bool seen[maxButtons] = {};  // of several lines for a button the first one counts
  std::string_view rest = text;
  SettingLine line = {};
  bool inside = false;
  while (NextSettingLine(&rest, &line)) {
    if (line.kind == SettingLineKind::section) inside = IsSection(line.name);
    if (line.kind != SettingLineKind::key || !inside) continue;
    const int button = ButtonOf(line.name);
    if (button < 0 || seen[button]) continue;
    seen[button] = true;
    Take(button, line.value, &assignments[button]);
  }
}

const char* RefusalOfButton(int button) {
  return button >= 0 && button < maxButtons ? refusals[button] : nullptr;
}

bool WriteButtonSetting(int button, const ButtonAssignment& assignment) {
  char line[fieldCount * 12];
  char* at = line;
  for (size_t i = 0; i < fieldCount; ++i) {
    if (i > 0) *at++ = ',';
    at = std::to_chars(at, line + sizeof line - 1, assignment.*fields[i], i == 0 ? 16 : 10).ptr;
  }
  *at = '\0';
  std::transform(line, at, line,
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  return WriteSetting(section, std::to_string(button).c_str(), line);
}
