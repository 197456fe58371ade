#include "settings/settings_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

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

// How well two names agree. A better agreement has the larger value.
enum class Match : uint8_t { none, folded, exact };

Match Compare(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return Match::none;
  if (a == b) return Match::exact;
  return SameIgnoringCase(a, b) ? Match::folded : Match::none;
}

std::string_view LineEnd(std::string_view line) { return line.ends_with("\r\n") ? "\r\n" : "\n"; }

std::string KeyLine(std::string_view key, std::string_view value, std::string_view lineEnd) {
  std::string line(key);
  line += " = ";
  line += CutSettingValue(value);
  line += lineEnd;
  return line;
}

// What becomes of one change, found out in a first walk over the text.
struct Plan {
  Match section = Match::none;  // of the line's section, during a walk
  Match key = Match::none;      // best agreement of a key within sections that agree as well
  Match home = Match::none;     // best agreement of a section
  bool atHome = false;          // the walk is within the section that a new key would go to
  size_t insertAt = 0;          // where it would go there
};

// Agreement of a key line: exact only when its section is, too.
Match MatchKey(Match section, std::string_view a, std::string_view b) {
  return section == Match::none ? Match::none : std::min(section, Compare(a, b));
}

std::vector<Plan> MakePlans(std::string_view text, std::span<const SettingChange> changes) {
  std::vector<Plan> plans(changes.size());
  const size_t whole = text.size();
  size_t end = 0;  // of the last line that is not blank
  SettingLine line{};
  while (NextSettingLine(&text, &line)) {
    if (line.kind == SettingLineKind::section) {
      for (size_t i = 0; i < plans.size(); ++i) {
        Plan& plan = plans[i];
        if (plan.atHome) plan.insertAt = end;
        plan.section = Compare(line.name, changes[i].section);
        plan.atHome = plan.section > plan.home;  // the first of the best ones
        plan.home = std::max(plan.home, plan.section);
      }
    } else if (line.kind == SettingLineKind::key) {
      for (size_t i = 0; i < plans.size(); ++i) {
        plans[i].key = std::max(plans[i].key, MatchKey(plans[i].section, line.name, changes[i].key));
      }
    }
    if (!IsBlankLine(line.whole)) end = whole - text.size();
  }
  for (Plan& plan : plans) {
    if (plan.atHome) plan.insertAt = end;
  }
  return plans;
}

// The change that replaces a key line, or -1.
int ReplacementOf(const SettingLine& line, std::span<const Plan> plans,
                  std::span<const SettingChange> changes) {
  for (size_t i = 0; i < plans.size(); ++i) {
    if (plans[i].key != Match::none && MatchKey(plans[i].section, line.name, changes[i].key) == plans[i].key) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

void AddLine(std::string* text, std::string_view line) {
  if (!text->empty() && !text->ends_with('\n')) *text += '\n';
  *text += line;
}

// Behind the text: the keys whose sections stand nowhere, each under the header of the first of its section.
void AddSections(std::string* text, std::span<const Plan> plans, std::span<const SettingChange> changes) {
  std::vector<bool> done(plans.size());
  for (size_t i = 0; i < plans.size(); ++i) {
    if (plans[i].home != Match::none || done[i]) continue;
    const std::string lineEnd(LineEnd(*text));
    AddLine(text, "[" + std::string(changes[i].section) + "]" + lineEnd);
    for (size_t j = i; j < plans.size(); ++j) {
      if (plans[j].home != Match::none || done[j] ||
          !SameIgnoringCase(changes[j].section, changes[i].section)) {
        continue;
      }
      AddLine(text, KeyLine(changes[j].key, changes[j].value, lineEnd));
      done[j] = true;
    }
  }
}

bool IsPlainName(std::string_view name) {
  if (name.empty() || Trim(name).size() != name.size()) return false;
  return CutAtControl(name).size() == name.size();
}

}  // namespace

bool NextSettingLine(std::string_view* rest, SettingLine* line) {
  if (rest->empty()) return false;
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
  if (text.empty() || text.front() == ';' || text.front() == '#') return true;
  if (text.front() == '[') {
    const size_t close = text.find(']');
    if (close == std::string_view::npos) return true;
    line->kind = SettingLineKind::section;
    line->name = Trim(text.substr(1, close - 1));
    return true;
  }
  const size_t equals = text.find('=');
  if (equals == std::string_view::npos || equals == 0) return true;
  line->kind = SettingLineKind::key;
  line->name = Trim(text.substr(0, equals));
  line->value = Trim(CutAtControl(Trim(text.substr(equals + 1))));
  return true;
}

void FindSettings(std::string_view text, std::span<SettingQuery> queries) {
  for (SettingQuery& query : queries) {
    query.found = false;
    query.value = {};
  }
  std::vector<Match> sections(queries.size(), Match::none), best(queries.size(), Match::none);
  SettingLine line{};
  while (NextSettingLine(&text, &line)) {
    if (line.kind == SettingLineKind::section) {
      for (size_t i = 0; i < queries.size(); ++i) sections[i] = Compare(line.name, queries[i].section);
    }
    if (line.kind != SettingLineKind::key) continue;
    for (size_t i = 0; i < queries.size(); ++i) {
      const Match match = MatchKey(sections[i], line.name, queries[i].key);
      if (match <= best[i]) continue;
      best[i] = match;
      queries[i].found = true;
      queries[i].value = line.value;
    }
  }
}

bool FindSetting(std::string_view text, std::string_view section, std::string_view key,
                 std::string_view* value) {
  SettingQuery query = {section, key, {}, false};
  FindSettings(text, {&query, 1});
  if (!query.found) return false;
  *value = query.value;
  return true;
}

bool AreSettingNames(std::string_view section, std::string_view key) {
  if (!IsPlainName(section) || !IsPlainName(key)) return false;
  if (section.find(']') != std::string_view::npos || key.find('=') != std::string_view::npos) return false;
  if (key.starts_with(byteOrderMark)) return false;
  return key.front() != '[' && key.front() != ';' && key.front() != '#';
}

bool AreSameSettings(std::string_view section, std::string_view key, std::string_view otherSection,
                     std::string_view otherKey) {
  return SameIgnoringCase(section, otherSection) && SameIgnoringCase(key, otherKey);
}

std::string SetSettingsInText(std::string_view text, std::span<const SettingChange> changes) {
  std::vector<Plan> plans = MakePlans(text, changes);
  std::vector<size_t> inserts;  // changes with a new key in a section that is there, by place
  for (size_t i = 0; i < plans.size(); ++i) {
    if (plans[i].key == Match::none && plans[i].home != Match::none) inserts.push_back(i);
    plans[i].section = Match::none;
  }
  std::stable_sort(inserts.begin(), inserts.end(),
                   [&plans](size_t a, size_t b) { return plans[a].insertAt < plans[b].insertAt; });
  const size_t whole = text.size();
  std::string result;
  result.reserve(whole + changes.size() * static_cast<size_t>(maxSettingValue));
  size_t nextInsert = 0;
  SettingLine line{};
  while (NextSettingLine(&text, &line)) {
    if (line.kind == SettingLineKind::section) {
      for (size_t i = 0; i < plans.size(); ++i) plans[i].section = Compare(line.name, changes[i].section);
    }
    const int replacement = line.kind == SettingLineKind::key ? ReplacementOf(line, plans, changes) : -1;
    if (replacement < 0) {
      result += line.whole;
    } else {
      const SettingChange& change = changes[static_cast<size_t>(replacement)];
      result += KeyLine(change.key, change.value, LineEnd(line.whole));
    }
    for (; nextInsert < inserts.size() && plans[inserts[nextInsert]].insertAt == whole - text.size();
         ++nextInsert) {
      const SettingChange& change = changes[inserts[nextInsert]];
      AddLine(&result, KeyLine(change.key, change.value, LineEnd(line.whole)));
    }
  }
  AddSections(&result, plans, changes);
  return result;
}

std::string SetSettingInText(std::string_view text, std::string_view section, std::string_view key,
                             std::string_view value) {
  const SettingChange change = {section, key, value};
  return SetSettingsInText(text, {&change, 1});
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

bool ParseYesNo(std::string_view text) { return text == "Yes" || text == "YES"; }

FlapDetent ParseFlapDetent(std::string_view text, bool* isGood) {
  FlapDetent detent{};
  bool good = true;
  text = Trim(text);
  while (!text.empty() && detent.count < 3) {
    const size_t comma = text.find(',');
    const std::string_view number = TrimNumber(text.substr(0, comma));
    double value = std::numeric_limits<double>::quiet_NaN();
    if (!number.empty()) {
      const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
      good = good && error == std::errc() && end == number.data() + number.size() && std::isfinite(value);
    }
    detent.values[detent.count++] = value;
    text = comma == std::string_view::npos ? "" : text.substr(comma + 1);
  }
  if (isGood != nullptr) *isGood = good;
  return good ? detent : FlapDetent{};
}
