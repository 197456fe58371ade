// The command line. Pure; any thread.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace ctl {

enum class Command {
  None,
  Read,
  Write,
  Watch,
  Dump,
  Monitor,
  List,
  Find,
  Check,
  Map,
  Doctor,
  Record,
  Replay,
  Conform,
  Serve,
  Help,
  Version
};

struct Options {
  Command command = Command::None;
  std::vector<std::string> items;   // what is no option
  std::vector<std::string> client;  // conform: the command behind --
  bool help = false;
  bool json = false;
  bool local = false;       // the window server on this computer
  bool find = false;        // the first server that announces itself
  bool confirm = false;     // a write waits for its echo
  bool loop = false;        // a replay begins again at its end
  std::string net = {};     // the computer that runs the server; "" when none was named
  std::string log = {};     // check: the plug-in's log
  std::string folder = {};  // map: where the plug-in lies
  std::string listen = {};  // replay, conform, serve: the server's own address
  std::string note = {};    // monitor: a line below its head
  std::string token = {};   // serve: what other computers have to know
  std::string panels = {};  // serve: folders
  std::string recordings = {};
  double timeout = 5;    // seconds for every answer
  double rate = 10;      // samples a second
  double seconds = 0;    // 0: without end
  double speed = 1;      // of a replay
  uint32_t port = 8440;  // serve: 0 is any free one
  uint32_t count = 0;    // printed values, 0: without end
};

// Reads the words behind the program's name; options may stand anywhere among them. Returns true, or false with
// a sentence in `error`.
bool ParseOptions(const std::vector<std::string>& words, Options* options, std::string* error);
// The page for `offsetctl help`, or for one command.
std::string HelpText(Command command);

}  // namespace ctl
