// The commands as data: their words, options, number of items and help. Pure; any thread.
#pragma once
#include <cstddef>
#include <span>

#include "options.h"

namespace ctl {

// Options that a command takes, as bits. `server` stands for the ways to a server and the time-out.
enum : unsigned {
  takesJson = 1,
  takesRate = 2,
  takesSeconds = 4,
  takesCount = 8,
  takesServer = 16,
  takesConfirm = 32,
  takesTimeout = 64,
  takesLog = 128,
  takesFolder = 256,
  takesListen = 512,
  takesSpeed = 1024,
  takesLoop = 2048,
  takesWay = 4096,  // the ways to a server alone
  takesWeb = 8192,
  takesNote = 16384,
};

struct CommandLine {
  const char* word;
  Command command;
  unsigned options;
  size_t fewest, most;  // items
  const char* usage;
  const char* about;
};

std::span<const CommandLine> CommandLines();
// Null for Command::None.
const CommandLine* LineOf(Command command);

}  // namespace ctl
