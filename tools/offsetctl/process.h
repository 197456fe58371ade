// A program that is started and talked to through its standard input and outputs. Main thread.
#pragma once
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace ctl {

struct Process {
  intptr_t id = -1;  // of the process; -1 when none was started
  intptr_t input = -1, output = -1, errors = -1;
  intptr_t group = -1;  // what ends it with everything that it has started
  std::string pending;  // of its output: a line that has begun
  std::string errorText;
};

using Environment = std::vector<std::pair<std::string, std::string>>;

// Starts a program (found as a shell finds it) with its words and more environment variables. Returns true, or
// false with a line in `error`.
bool StartProcess(const std::vector<std::string>& words, const Environment& environment, Process* process,
                  std::string* error);
// A line to its input; nothing happens when it does not read any more.
void SendLine(Process* process, const std::string& line);
void CloseInput(Process* process);
// Whole lines that it has printed since the last call; its error output goes to `errorText`. Does not wait.
std::vector<std::string> TakeLines(Process* process);
// Takes whole lines off the text, without their ends. Pure.
std::vector<std::string> CutLines(std::string* text);
// How much of its output is taken at once, so that a program that never stops printing does not keep us.
constexpr size_t mostAtOnce = size_t{1} << 16;
// Leaves the beginning of a text that has grown beyond all use, as a line without an end does. Pure.
void LimitText(std::string* text);
// Whether it has ended, with its exit status. Does not wait.
bool HasEnded(Process* process, int* status);
// Ends it, with what it has started, and gives everything back.
void EndProcess(Process* process);

}  // namespace ctl
