// offsetctl check: tells authors of a TAVRIXOffsets.cfg what is wrong with it, line by line, through the very
// grammar and compiler of the plug-in. Needs neither plug-in nor simulator.
#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "custom/custom_check.h"
#include "names.h"

namespace ctl {

using Finding = CustomFinding;

// Examines the text of an offsets file, in the order of its lines. `log` is the text of the plug-in's log
// TAVRIX.txt ("" for none): datarefs and commands that the last load did not find are pointed at, too. `names`
// tells which offsets have a fixed meaning. Pure.
std::vector<Finding> CheckOffsetsFile(std::string_view text, std::string_view log, const NameTable& names);

// Reads a file of at most 64 MB as text. Returns true, or false when it cannot be read.
bool ReadTextFile(const std::string& path, std::string* text);

}  // namespace ctl
