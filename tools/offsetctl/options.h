// The command line. Pure; any thread.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace ctl {

enum class Command { None, Read, Write, Watch, Dump, Monitor, List, Find };

struct Options {
  Command command = Command::None;
  std::vector<std::string> items;  // what is no option
  bool help = false;
  bool json = false;
  bool local = false;    // the window server on this computer
  bool find = false;     // the first server that announces itself
  bool confirm = false;  // a write waits for its echo
  std::string net = {};  // the computer that runs the server; "" when none was named
  double timeout = 5;    // seconds for every answer
  double rate = 10;      // samples a second
  double seconds = 0;    // 0: without end
  uint32_t count = 0;    // printed values, 0: without end
};

// Reads the words behind the program's name. Returns true, or false with a sentence in `error`.
bool ParseOptions(const std::vector<std::string>& words, Options* options, std::string* error);
// The page for `offsetctl --help`, or for one command.
std::string HelpText(Command command);

}  // namespace ctl
