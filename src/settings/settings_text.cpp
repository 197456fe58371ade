#include "settings/settings_text.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "settings/settings.h"

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

bool IsControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

bool IsBlankLine(std::string_view line) { return line.find_first_not_of(" \t\r\n") == std::string_view::npos; }

// Without the blanks before a number and its plus sign, which from_chars does not know.
std::string_view TrimNumber(std::string_view text) {
  text = Trim(text);
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  return text;
}

std::string_view CutAtControl(std::string_view text) {
  size_t length = 0;
  while (length < text.size() && !IsControl(text[length])) ++length;
  return text.substr(0, length);
}

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool SameIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (Lower(a[i]) != Lower(b[i])) return false;
  }
  return true;
}

using SameName = bool (*)(std::string_view, std::string_view);

bool SameExactly(std::string_view a, std::string_view b) { return a == b; }

bool FindWith(SameName same, std::string_view text, std::string_view section, std::string_view key,
              std::string_view* value) {
  bool inSection = false;
  SettingLine line{};
  while (NextSettingLine(&text, &line)) {
    if (line.kind == SettingLineKind::section) {
      inSection = same(line.name, section);
    } else if (line.kind == SettingLineKind::key && inSection && same(line.name, key)) {
      *value = line.value;
      return true;
    }
  }
  return false;
}

bool HasSection(SameName same, std::string_view text, std::string_view section) {
  SettingLine line{};
  while (NextSettingLine(&text, &line)) {
    if (line.kind == SettingLineKind::section && same(line.name, section)) return true;
  }
  return false;
}

std::string_view LineEnd(std::string_view line) { return line.ends_with("\r\n") ? "\r\n" : "\n"; }

std::string KeyLine(std::string_view key, std::string_view value, std::string_view lineEnd) {
  std::string line(key);
  line += " = ";
  line += CutSettingValue(value);
  line += lineEnd;
  return line;
}

std::string ReplaceKey(SameName same, std::string_view text, std::string_view section, std::string_view key,
                       std::string_view value) {
  std::string result;
  bool inSection = false;
  SettingLine line{};
  while (NextSettingLine(&text, &line)) {
    if (line.kind == SettingLineKind::section) inSection = same(line.name, section);
    if (line.kind == SettingLineKind::key && inSection && same(line.name, key)) {
      result += KeyLine(key, value, LineEnd(line.whole));
    } else {
      result += line.whole;
    }
  }
  return result;
}

// Adds the key to the first section of that name, which exists.
std::string AddKey(SameName same, std::string_view text, std::string_view section, std::string_view key,
                   std::string_view value) {
  const std::string_view whole = text;
  size_t insertAt = 0;
  std::string_view before;  // line that the new one follows
  bool inSection = false;
  SettingLine line{};
  while (NextSettingLine(&text, &line)) {
    if (line.kind == SettingLineKind::section) {
      if (inSection) break;
      inSection = same(line.name, section);
    }
    if (!inSection || IsBlankLine(line.whole)) continue;
    insertAt = whole.size() - text.size();
    before = line.whole;
  }
  std::string result(whole.substr(0, insertAt));
  if (!before.ends_with('\n')) result += '\n';
  result += KeyLine(key, value, LineEnd(before));
  result += whole.substr(insertAt);
  return result;
}

std::string AddSection(std::string_view text, std::string_view section, std::string_view key,
                       std::string_view value) {
  std::string result(text);
  const std::string_view lineEnd = LineEnd(text);
  if (!result.empty() && !text.ends_with('\n')) result += '\n';
  result += '[';
  result += section;
  result += ']';
  result += lineEnd;
  result += KeyLine(key, value, lineEnd);
  return result;
}

bool IsPlainName(std::string_view name) {
  if (name.empty() || Trim(name).size() != name.size()) return false;
  return CutAtControl(name).size() == name.size();
}

}  // namespace

int NextSettingLine(std::string_view* rest, SettingLine* line) {
  if (rest->empty()) return 0;
  const size_t end = rest->find('\n');
  line->whole = rest->substr(0, end == std::string_view::npos ? end : end + 1);
  rest->remove_prefix(line->whole.size());
  line->kind = SettingLineKind::other;
  line->name = {};
  line->value = {};

  // The mark belongs before the first line only, but no other line begins with it either.
  std::string_view text = line->whole;
  if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.remove_suffix(1);
  text = Trim(text);
  if (text.empty() || text.front() == ';' || text.front() == '#') return 1;
  if (text.front() == '[') {
    const size_t close = text.find(']');
    if (close == std::string_view::npos) return 1;
    line->kind = SettingLineKind::section;
    line->name = Trim(text.substr(1, close - 1));
    return 1;
  }
  const size_t equals = text.find('=');
  if (equals == std::string_view::npos || equals == 0) return 1;
  line->kind = SettingLineKind::key;
  line->name = Trim(text.substr(0, equals));
  line->value = Trim(CutAtControl(Trim(text.substr(equals + 1))));
  return 1;
}

int FindSetting(std::string_view text, std::string_view section, std::string_view key,
                std::string_view* value) {
  for (const SameName same : {SameExactly, SameIgnoringCase}) {
    if (FindWith(same, text, section, key, value)) return 1;
  }
  return 0;
}

int AreSettingNames(std::string_view section, std::string_view key) {
  if (!IsPlainName(section) || !IsPlainName(key)) return 0;
  if (section.find(']') != std::string_view::npos || key.find('=') != std::string_view::npos) return 0;
  if (key.starts_with(byteOrderMark)) return 0;
  return key.front() != '[' && key.front() != ';' && key.front() != '#' ? 1 : 0;
}

std::string SetSettingInText(std::string_view text, std::string_view section, std::string_view key,
                             std::string_view value) {
  std::string_view old;
  for (const SameName same : {SameExactly, SameIgnoringCase}) {
    if (FindWith(same, text, section, key, &old)) return ReplaceKey(same, text, section, key, value);
  }
  for (const SameName same : {SameExactly, SameIgnoringCase}) {
    if (HasSection(same, text, section)) return AddKey(same, text, section, key, value);
  }
  return AddSection(text, section, key, value);
}

std::string_view CutSettingValue(std::string_view value) {
  return CutAtControl(value).substr(0, static_cast<size_t>(maxSettingValue));
}

int ParseInteger(std::string_view text) {
  text = TrimNumber(text);
  int value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec == std::errc::result_out_of_range) {
    return text.starts_with('-') ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
  }
  return value;
}

double ParseNumber(std::string_view text) {
  text = TrimNumber(text);
  double value = 0.0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  return result.ec == std::errc{} && std::isfinite(value) ? value : 0.0;
}

int ParseYesNo(std::string_view text) { return text == "Yes" || text == "YES" ? 1 : 0; }

AxisCombination ParseAxis(std::string_view text) {
  text = Trim(text);
  if (text.empty() || text == "Not assigned" || text == "NOT ASSIGNED") return {};
  const size_t comma = text.find(',');
  const std::string_view axis = comma == std::string_view::npos ? "" : text.substr(comma + 1);
  return {.active = 1, .joystick = ParseInteger(text.substr(0, comma)), .axis = ParseInteger(axis)};
}

FlapDetent ParseFlapDetent(std::string_view text) {
  FlapDetent detent{};
  text = Trim(text);
  while (!text.empty() && detent.count < 3) {
    const size_t comma = text.find(',');
    detent.values[detent.count++] = ParseNumber(text.substr(0, comma));
    text = comma == std::string_view::npos ? "" : text.substr(comma + 1);
  }
  return detent;
}
