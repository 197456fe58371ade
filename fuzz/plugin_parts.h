// The program's parts in a stand-in simulator without threads, sockets or logs, as far as targets need them.
#pragma once
#include <filesystem>
#include <string>

#include "base/locks.h"
#include "bridge/catalogue.h"
#include "bridge/cycles.h"
#include "bridge/registry.h"
#include "controls/axes.h"
#include "controls/buttons.h"
#include "core/sim.h"
#include "offsets/dispatcher.h"
#include "offsets/memory.h"
#include "platform/system.h"
#include "pushback/pushback.h"
#include "require.h"
#include "settings/settings.h"
#include "traffic/traffic.h"

// A folder of this process's own. It is small, and the system's to clean up when a finding ends the process.
inline const std::string& ScratchFolder() {
  static const std::string folder = [] {
    std::string made = (std::filesystem::temp_directory_path() / "tavrix_fuzz_XXXXXX").string();
    Require(mkdtemp(made.data()) != nullptr);
    return made + "/";
  }();
  return folder;
}

inline void StartSimulator() {
  sim::Options options;
  options.rate = 0;
  options.circuit = false;
  options.root = ScratchFolder();
  Require(sim::SimStart(options) == 0);
}

// Names, rows and locks, as at start and enable.
inline void StartParts() {
  Require(CreateLocks());
  ConnectPushback();
  InitMemoryBlocks();
  LookUpDataRefs();
  LookUpCommands();
  BuildCycles();
  Require(CreateButtons() && CreateAxes() && InitTraffic());
}

inline void WriteWhole(const std::string& path, std::string_view text) {
  FILE* file = std::fopen(path.c_str(), "wb");
  Require(file != nullptr && std::fwrite(text.data(), 1, text.size(), file) == text.size());
  std::fclose(file);
}
