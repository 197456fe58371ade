#include "names.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

#include "numbers.h"

namespace ctl {

namespace {

#include "offset_table.inc"

constexpr size_t nearestShown = 4;

// How many letters must be put in, left out, changed or exchanged with their neighbour.
size_t Distance(const std::string& a, const std::string& b) {
  std::vector<size_t> before, last(b.size() + 1), row(b.size() + 1);
  for (size_t j = 0; j <= b.size(); ++j) last[j] = j;
  for (size_t i = 1; i <= a.size(); ++i) {
    row[0] = i;
    for (size_t j = 1; j <= b.size(); ++j) {
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (a[i - 1] != b[j - 1])});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        row[j] = std::min(row[j], before[j - 2] + 1);
      }
    }
    before = last;
    last = row;
  }
  return last[b.size()];
}

// The parts between "_", sorted: "com_active_1" and "com1_active" have much in common.
std::vector<std::string> PartsOf(const std::string& name) {
  std::vector<std::string> parts(1);
  for (const char letter : name) {
    if (letter == '_' || letter == '-' || letter == ' ' || letter == '.') {
      parts.emplace_back();
    } else {
      parts.back() += letter;
    }
  }
  std::erase(parts, "");
  return parts;
}

// Smaller is nearer; the largest value for a name that has nothing to do with the wanted one.
size_t Farness(const std::string& wanted, const std::vector<std::string>& parts, const std::string& name) {
  constexpr size_t unrelated = SIZE_MAX;
  const size_t distance = Distance(wanted, name);
  if (distance <= std::max<size_t>(1, wanted.size() / 3)) return distance * 4;
  if (wanted.size() >= 3 && (name.find(wanted) != std::string::npos || wanted.find(name) != std::string::npos))
    return distance * 2 + 8;
  size_t shared = 0;
  for (const std::string& part : parts) shared += part.size() >= 3 && name.find(part) != std::string::npos;
  return shared == 0 ? unrelated : 64 + distance - std::min<size_t>(shared * 16, 64);
}

}  // namespace

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  for (char& letter : lower) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return lower;
}

NameTable KnownOffsets() { return {offsetNames, readOnlyOffsets, offsetSubjects, offsetAreas}; }

const OffsetName* FindByName(const NameTable& names, std::string_view name) {
  const std::string wanted = LowerCase(name);
  for (const OffsetName& row : names.rows) {
    if (!wanted.empty() && wanted == row.name) return &row;
  }
  return nullptr;
}

const OffsetName* FindByOffset(const NameTable& names, uint32_t offset) {
  const OffsetName* found = nullptr;
  for (const OffsetName& row : names.rows) {
    if (row.offset != offset) continue;
    if (row.name[0] != 0) return &row;
    if (found == nullptr) found = &row;
  }
  return found;
}

std::vector<std::string> NearestNames(const NameTable& names, std::string_view wanted, size_t most) {
  const std::string word = LowerCase(wanted);
  const std::vector<std::string> parts = PartsOf(word);
  std::vector<std::pair<size_t, std::string>> found;
  for (const OffsetName& row : names.rows) {
    if (row.name[0] == 0) continue;
    const size_t farness = Farness(word, parts, row.name);
    if (farness != SIZE_MAX) found.emplace_back(farness, row.name);
  }
  const auto isNearer = [](const auto& a, const auto& b) { return a.first < b.first; };
  std::stable_sort(found.begin(), found.end(), isNearer);
  std::vector<std::string> nearest;
  for (size_t i = 0; i < std::min(most, found.size()); ++i) nearest.push_back(found[i].second);
  return nearest;
}

std::string NearestText(const NameTable& names, std::string_view wanted) {
  std::string text;
  for (const std::string& name : NearestNames(names, wanted, nearestShown)) {
    text += (text.empty() ? ": did you mean " : ", ") + name;
  }
  return text.empty() ? ": see offsetctl list" : text + "?";
}

uint32_t FirstReadOnly(const NameTable& names, uint32_t offset, uint32_t size) {
  uint32_t first = offsetMemorySize;
  for (const OffsetRange& range : names.readOnly) {
    const uint32_t candidate = std::max(range.first, offset);
    if (candidate <= range.last && candidate - offset < size) first = std::min(first, candidate);
  }
  return first;
}

std::vector<const OffsetName*> Search(const NameTable& names, const std::vector<std::string>& words) {
  std::vector<const OffsetName*> found;
  const char* subject = "";
  size_t nextSubject = 0, subjectEnd = 0;
  for (size_t i = 0; i < names.rows.size(); ++i) {
    while (i >= subjectEnd && nextSubject < names.subjects.size()) {
      subject = names.subjects[nextSubject].name;
      subjectEnd += names.subjects[nextSubject++].rows;
    }
    const OffsetName& row = names.rows[i];
    if (row.name[0] == 0) continue;
    // A line end between the parts: no word holds one, so none is found across two of them.
    const std::string text =
        LowerCase(std::string(row.name) + '\n' + row.meaning + '\n' + row.unit + '\n' + subject);
    const auto fits = [&row, &text](const std::string& word) {
      uint32_t offset = 0;
      return text.find(LowerCase(word)) != std::string::npos ||
             (ParseUnsigned(word, offsetMemorySize - 1, &offset) && offset == row.offset);
    };
    if (std::all_of(words.begin(), words.end(), fits)) found.push_back(&row);
  }
  return found;
}

}  // namespace ctl
