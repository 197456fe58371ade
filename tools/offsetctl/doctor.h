// What can be told of an installation from its texts, for `offsetctl doctor`. Pure; any thread.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "files.h"

namespace ctl {

enum class Health { Good, Note, Bad };

struct Diagnosis {
  Health health;
  std::string text;    // one plain sentence
  std::string remedy;  // what to do; "" when nothing
};

// What the settings file says of the network.
struct NetworkSettings {
  std::string address;
  uint32_t ip;  // 0 when the address is none
  std::string allowed;
  bool writes, clientMode;
  std::string statusPage;
};

// A program file's place within the plug-in's folder, and what lies there.
struct PlacedBinary {
  const char* path;
  BinaryKind wanted, found;
};

// Where program files belong.
std::vector<PlacedBinary> BinaryPlaces();
std::vector<Diagnosis> DiagnoseLayout(const std::vector<PlacedBinary>& binaries);
// `copies` are program files of the plug-in outside its folder.
std::vector<Diagnosis> DiagnoseCopies(const std::vector<std::string>& copies);
NetworkSettings ReadNetworkSettings(std::string_view ini);
// `own` are the addresses of this computer.
std::vector<Diagnosis> DiagnoseSettings(const NetworkSettings& settings, const std::vector<uint32_t>& own);
// Rules that a firewall needs for clients on other computers; nothing for 127.0.0.1.
std::vector<Diagnosis> DiagnoseFirewall(const NetworkSettings& settings);
// What the log's last start tells.
std::vector<Diagnosis> DiagnoseLog(std::string_view log);

}  // namespace ctl
