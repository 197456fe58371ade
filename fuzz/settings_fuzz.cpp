// Fuzz target: the settings file as text. Whatever the file holds, reading stays inside it, a key that is
// set is found again with its value, and every other line survives.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "controls/axis_settings.h"
#include "require.h"
#include "settings/settings.h"
#include "settings/settings_text.h"

namespace {

size_t CountLines(std::string_view text) {
  size_t count = 0;
  std::string rebuilt;
  const std::string_view whole = text;
  SettingLine line{};
  while (NextSettingLine(&text, &line)) {
    ++count;
    rebuilt += line.whole;
  }
  Require(rebuilt == whole);
  return count;
}

std::string_view TrimBlanks(std::string_view text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return "";
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// A key of an axis takes the text or leaves everything as it was, and what it has taken reads back.
void CheckAxisKeys(std::string_view text) {
  for (uint8_t number = 0; number < static_cast<uint8_t>(AxisKey::Count); ++number) {
    const auto key = static_cast<AxisKey>(number);
    AxisSettings taken, again;
    if (!TakeAxisKey(key, text, &taken).empty()) {
      Require(taken == AxisSettings{});
      continue;
    }
    Require(TakeAxisKey(key, AxisKeyText(key, taken), &again).empty());
    Require(again == taken);
  }
}

}  // namespace

// The input is section, key and value in a line each, then the text of the file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string_view input(reinterpret_cast<const char*>(data), size);
  std::string_view parts[3];
  for (std::string_view& part : parts) {
    const size_t end = input.find('\n');
    part = input.substr(0, end);
    input.remove_prefix(end == std::string_view::npos ? input.size() : end + 1);
  }
  const auto [section, key, value] = parts;

  const size_t linesBefore = CountLines(input);
  std::string_view found;
  if (FindSetting(input, section, key, &found)) {
    ParseInteger(found);
    ParseNumber(found);
    ParseYesNo(found);
    Require(ParseFlapDetent(found).count <= 3);
    CheckAxisKeys(found);
  }
  if (!AreSettingNames(section, key)) return 0;

  const std::string changed = SetSettingInText(input, section, key, value);
  Require(FindSetting(changed, section, key, &found));
  Require(found == TrimBlanks(CutSettingValue(value)));
  Require(found.size() <= static_cast<size_t>(maxSettingValue));
  const size_t linesAfter = CountLines(changed);
  Require(linesAfter >= linesBefore && linesAfter <= linesBefore + 2);
  Require(SetSettingInText(changed, section, key, value) == changed);
  return 0;
}
