#include "check.h"

#include <algorithm>
#include <limits>

#include "numbers.h"

namespace ctl {

namespace {

// Names of the lines "WORD NAME not found." behind the last line that begins a load.
std::vector<std::string_view> MissingNames(std::string_view log) {
  for (const std::string_view begin : {"Reading TAVRIXOffsets.cfg", "Reload TAVRIXOffsets.cfg"}) {
    const size_t at = log.rfind(begin);
    if (at != std::string_view::npos) log.remove_prefix(at);
  }
  constexpr std::string_view end = " not found.";
  std::vector<std::string_view> names;
  while (!log.empty()) {
    std::string_view line = log.substr(0, log.find('\n'));
    log.remove_prefix(std::min(line.size() + 1, log.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (!line.ends_with(end)) continue;
    for (const std::string_view word : {"Dataref ", "Command "}) {
      if (line.starts_with(word) && line.size() > word.size() + end.size()) {
        names.push_back(line.substr(word.size(), line.size() - word.size() - end.size()));
      }
    }
  }
  return names;
}

std::string FixedFault(const NameTable& names, uint32_t offset, uint32_t size) {
  for (const OffsetName& row : names.rows) {
    if (row.offset >= offset + size || offset >= row.offset + row.length) continue;
    return "hides the fixed offset " + HexText(row.offset, 4) + " (" + row.meaning +
           "): choose one that is free";
  }
  const uint32_t readOnly = FirstReadOnly(names, offset, size);
  if (readOnly >= offset + size) return "";
  return HexText(readOnly, 4) + " is read-only for clients: choose an offset that is free";
}

}  // namespace

std::vector<Finding> CheckOffsetsFile(std::string_view text, std::string_view log, const NameTable& names) {
  const std::vector<std::string_view> missing = MissingNames(log);
  const CustomCheckNeeds needs = {.missing = missing, .fixedFault = [&](uint32_t offset, uint32_t size) {
                                    return FixedFault(names, offset, size);
                                  }};
  return CheckCustomFile(text, needs, std::numeric_limits<size_t>::max()).findings;
}

}  // namespace ctl
