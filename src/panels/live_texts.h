// Texts that several windows show. Simulator's thread, no lock held, while the locks exist.
#pragma once
#include <span>
#include <string>
#include <string_view>

// What clients have asked for since the start.
std::string RequestsText(int);
// Refreshes of the offset memory that were stored, and those dropped because its lock was busy.
std::string RefreshesText(int);

// What is loaded of TAVRIXOffsets.cfg, or why nothing is. No lock is needed.
std::string CustomEntriesText(int);

// One line each, at most `most` of them: the last one says then how many there are beyond those before it.
std::string JoinLines(std::span<const std::string_view> lines, size_t most);
