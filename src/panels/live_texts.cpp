#include "panels/live_texts.h"

#include "bridge/cycles.h"
#include "custom/custom.h"
#include "offsets/memory.h"

std::string RequestsText(int) {
  RequestCounters counters = {};
  {
    const LockScope lock(&offsetLock);
    counters = requestCounters;
  }
  return "Requests: " + std::to_string(counters.requests) +
         ", bytes read: " + std::to_string(counters.bytesRead) +
         ", written: " + std::to_string(counters.bytesWritten);
}

std::string RefreshesText(int) {
  return "Refreshes stored: " + std::to_string(refreshCounters.stored) +
         ", dropped: " + std::to_string(refreshCounters.dropped);
}

std::string CustomEntriesText(int) {
  const CustomSummary summary = SummariseCustomOffsets();
  if (summary.fault[0] != '\0') return std::string("nothing: ") + summary.fault;
  const std::string entries = std::to_string(summary.offsets) + " offsets, " +
                              std::to_string(summary.datarefs) + " datarefs, " +
                              std::to_string(summary.commands) + " commands";
  return summary.faultyLines == 0 ? entries
                                  : entries + "; lines with faults: " + std::to_string(summary.faultyLines);
}

std::string JoinLines(std::span<const std::string_view> lines, size_t most) {
  const size_t shown = lines.size() <= most ? lines.size() : most - 1;
  std::string text;
  for (size_t i = 0; i < shown; ++i) text.append(i == 0 ? "" : "\n").append(lines[i]);
  if (shown < lines.size()) text += "\nand " + std::to_string(lines.size() - shown) + " more";
  return text;
}
