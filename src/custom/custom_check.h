// What is wrong with an offsets file, line by line, found through the grammar and the compiler that load it.
//
// Pure: no simulator, no files, no state; any thread. The plug-in logs the faults when it loads a file, and
// authors get them from `offsetctl check`.
#pragma once
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct CustomFinding {
  uint32_t line, column;  // from 1
  bool note;              // worth knowing, but the line works
  std::string text;       // what is wrong and what would be right
};

struct CustomCheckNeeds {
  std::span<const std::string_view> missing = {};  // datarefs and commands that the simulator did not find
  // What is wrong with an offset whose bytes have a fixed meaning, "" when nothing is. May be empty.
  std::function<std::string(uint32_t offset, uint32_t size)> fixedFault = {};
};

struct CustomReport {
  std::vector<CustomFinding> findings;  // in the order of their lines
  size_t faults;                        // findings that are no notes, also those that are not kept
  size_t faultyLines;                   // lines that have any
};

// Examines the text of a file; at most `mostFindings` are kept.
CustomReport CheckCustomFile(std::string_view text, const CustomCheckNeeds& needs, size_t mostFindings);
