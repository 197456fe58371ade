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

NameTable KnownOffsets() { return {offsetNames, readOnlyOffsets}; }

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

std::vector<const OffsetName*> Search(const NameTable& names, std::string_view text) {
  const std::string wanted = LowerCase(text);
  uint32_t offset = offsetMemorySize;
  ParseUnsigned(text, offsetMemorySize - 1, &offset);
  std::vector<const OffsetName*> found;
  for (const OffsetName& row : names.rows) {
    if (row.name[0] == 0) continue;
    if (row.offset == offset || LowerCase(row.name).find(wanted) != std::string::npos ||
        LowerCase(row.meaning).find(wanted) != std::string::npos) {
      found.push_back(&row);
    }
  }
  return found;
}

}  // namespace ctl
