#include "doctor.h"

#include <algorithm>

#include "net/address.h"
#include "settings/settings_text.h"

namespace ctl {

namespace {

constexpr char mainSection[] = "TAVRIX SETTINGS";
constexpr uint32_t loopback = 127;
constexpr size_t mostLogLines = 8;

std::string Value(std::string_view ini, std::string_view key, std::string_view otherwise) {
  std::string_view value;
  return std::string(FindSetting(ini, mainSection, key, &value) ? value : otherwise);
}

const char* NameOf(BinaryKind kind) {
  switch (kind) {
    case BinaryKind::Windows32:
      return "the Windows build of 32 bits";
    case BinaryKind::Windows64:
      return "the Windows build of 64 bits";
    case BinaryKind::Linux64:
      return "the Linux build";
    default:
      return "no plug-in";
  }
}

std::string ListOf(const std::vector<uint32_t>& addresses) {
  std::string list;
  for (const uint32_t ip : addresses) {
    if (ip >> 24 != loopback) list += (list.empty() ? "" : ", ") + AddressText(ip);
  }
  return list.empty() ? "127.0.0.1 alone" : list;
}

}  // namespace

std::vector<PlacedBinary> BinaryPlaces() {
  return {{"win.xpl", BinaryKind::Windows32, BinaryKind::Missing},
          {"32/win.xpl", BinaryKind::Windows32, BinaryKind::Missing},
          {"64/win.xpl", BinaryKind::Windows64, BinaryKind::Missing},
          {"64/lin.xpl", BinaryKind::Linux64, BinaryKind::Missing}};
}

std::vector<Diagnosis> DiagnoseLayout(const std::vector<PlacedBinary>& binaries) {
  std::vector<Diagnosis> told;
  std::string good;
  for (const PlacedBinary& binary : binaries) {
    if (binary.found == BinaryKind::Missing) continue;
    if (binary.found == binary.wanted) {
      good += (good.empty() ? "" : ", ") + std::string(binary.path);
      continue;
    }
    if (binary.found == BinaryKind::Damaged) {
      told.push_back({Health::Bad, std::string(binary.path) + " is damaged: a part of it is missing.",
                      "Copy it again, from a download that is whole: X-Plane cannot load it."});
      continue;
    }
    told.push_back(
        {Health::Bad, std::string(binary.path) + " is " + NameOf(binary.found) + ".",
         std::string("Put ") + NameOf(binary.wanted) + " there, or nothing: X-Plane does not load it."});
  }
  if (!good.empty()) {
    told.push_back({Health::Good, "The plug-in lies where X-Plane looks for it: " + good + ".", ""});
  } else if (told.empty()) {
    told.push_back(
        {Health::Bad, "There is no plug-in in the folder.",
         "Copy 64/win.xpl (Windows, 64 bits), 64/lin.xpl (Linux) or 32/win.xpl and win.xpl (Windows, 32 "
         "bits) into it."});
  }
  return told;
}

std::vector<Diagnosis> DiagnoseCopies(const std::vector<std::string>& copies) {
  std::vector<Diagnosis> told;
  told.reserve(copies.size());
  for (const std::string& path : copies) {
    told.push_back({Health::Bad, "There is a second copy of the plug-in: " + path + ".",
                    "Remove it: X-Plane loads both, and they take each other's ports and window."});
  }
  return told;
}

NetworkSettings ReadNetworkSettings(std::string_view ini) {
  NetworkSettings settings = {};
  settings.address = Value(ini, "Server Address", "192.168.0.1");
  if (!ParseAddress(settings.address.c_str(), &settings.ip)) settings.ip = 0;
  settings.allowed = Value(ini, "Allowed clients", "");
  settings.writes = !AreSameSettings("", Value(ini, "Network writes", "Yes"), "", "No");
  settings.clientMode = ParseYesNo(Value(ini, "TAVRIX2TAVRIX Client mode", "No"));
  settings.statusPage = Value(ini, "Status page", "All");
  return settings;
}

std::vector<Diagnosis> DiagnoseSettings(const NetworkSettings& settings, const std::vector<uint32_t>& own) {
  std::vector<Diagnosis> told;
  const std::string set = "\"Server Address\" in TAVRIX.ini is " + settings.address;
  const std::string choose = "Set it to one of this computer's addresses (" + ListOf(own) +
                             "), or to 127.0.0.1 for clients on this computer alone, and start X-Plane again.";
  if (settings.ip == 0) {
    told.push_back({Health::Bad, set + ", which is no address.", choose});
  } else if (settings.ip >> 24 == loopback) {
    told.push_back({Health::Good, set + ": clients on this computer alone can connect.", ""});
  } else if (std::find(own.begin(), own.end(), settings.ip) != own.end()) {
    told.push_back(
        {Health::Good, set + ", an address of this computer: clients on others can connect, too.", ""});
  } else {
    told.push_back({Health::Bad,
                    set + ", which this computer does not have: nobody can connect over the network.", choose});
  }
  if (!settings.allowed.empty()) {
    told.push_back({Health::Note, "Only these clients may connect: " + settings.allowed + ".",
                    "Add an address to \"Allowed clients\" in TAVRIX.ini when one is refused."});
  }
  if (!settings.writes) {
    told.push_back({Health::Note, "Clients on the network may read and not write.",
                    "Set \"Network writes = Yes\" in TAVRIX.ini to change that."});
  }
  if (settings.clientMode) {
    told.push_back({Health::Note, "The plug-in follows another simulator and shows little of its own.",
                    "Set \"TAVRIX2TAVRIX Client mode = No\" in TAVRIX.ini for an ordinary simulator."});
  }
  return told;
}

std::vector<Diagnosis> DiagnoseFirewall(const NetworkSettings& settings) {
  if (settings.ip == 0) return {};
  if (settings.ip >> 24 == loopback) {
    return {{Health::Good, "Clients on this computer need no rules of the firewall.", ""}};
  }
#if defined(_WIN32)
  const char* commands =
      "As administrator: netsh advfirewall firewall add rule name=TAVRIX dir=in action=allow protocol=TCP "
      "localport=65000; the clients' computers must let in UDP from this one, port 65100.";
#else
  const char* commands =
      "With ufw: sudo ufw allow 65000/tcp; with firewalld: sudo firewall-cmd --permanent --add-port=65000/tcp, "
      "then --reload; the clients' computers must let in UDP from this one, port 65100.";
#endif
  return {{Health::Note,
           "The firewall here must let TCP port 65000 in, and UDP from ports 65100 and 54942 out.", commands}};
}

std::vector<Diagnosis> DiagnoseLog(std::string_view log) {
  // Lines that tell of a fault, and what they mean; those of the plug-in's own words have the remedy in them.
  struct Sign {
    const char* text;
    const char* remedy;
  };
  constexpr Sign signs[] = {
      {"TAVFARNET->Tried address", ""},
      {"Refused ", "If that client should be served, look at \"Allowed clients\" and \"Network writes\"."},
      {"Out of memory", "Close other programs; X-Plane needs more memory."},
      {"Create KORL Thread failed", "Does another simulator run with the plug-in? Close it."},
      {"cannot be read", ""},
      {"cannot be written", "Make the plug-in's folder writable for your user."},
      {"is left out", ""},
      {": it reads 0", "Correct the kind or the element in TAVRIXOffsets.cfg."},
      {" not found.", "Correct the name in TAVRIXOffsets.cfg, unless it belongs to another aircraft."},
  };
  if (log.empty()) {
    return {
        {Health::Bad, "There is no log TAVRIX.txt: X-Plane has not loaded the plug-in yet.",
         "Start X-Plane; if no log comes, Log.txt in X-Plane's folder tells why the plug-in was not loaded."}};
  }
  std::vector<Diagnosis> told;
  const bool isServing = log.find("TAVFARNET->Waiting for clients") != std::string_view::npos;
  size_t more = 0;
  while (!log.empty()) {
    std::string_view line = log.substr(0, log.find('\n'));
    log.remove_prefix(std::min(line.size() + 1, log.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    for (const Sign& sign : signs) {
      if (line.find(sign.text) == std::string_view::npos || line == "Command  not found.") continue;
      if (told.size() < mostLogLines) {
        told.push_back({Health::Note, "The log says: " + std::string(line), sign.remedy});
      } else {
        ++more;
      }
      break;
    }
  }
  if (more > 0) {
    told.push_back({Health::Note, "The log has " + std::to_string(more) + " more lines like these.",
                    "Look into TAVRIX.txt."});
  }
  if (isServing) {
    told.push_back({Health::Good, "The log says that the network server was started.", ""});
  } else {
    told.push_back({Health::Bad, "The log does not say that the network server was started.",
                    "Look at \"Server Address\" above and at the log's last lines."});
  }
  return told;
}

}  // namespace ctl
