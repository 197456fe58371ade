#include "names.h"

#include <algorithm>
#include <string>

#include "numbers.h"

namespace ctl {

namespace {

#include "offset_table.inc"

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  for (char& letter : lower) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return lower;
}

}  // namespace

NameTable KnownOffsets() { return {offsetNames, readOnlyOffsets, offsetSubjects}; }

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
