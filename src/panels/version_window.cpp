// "TAVRIX Version and Info": who we are, who serves whom, what is loaded.
#include <algorithm>
#include <utility>
#include <vector>

#include "aircraft/adapters.h"
#include "base/log.h"
#include "base/version.h"
#include "bridge/add_ons.h"
#include "custom/custom.h"
#include "net/address.h"
#include "net/net.h"
#include "net/relay.h"
#include "offsets/window_server.h"
#include "panels/layout.h"
#include "panels/live_texts.h"
#include "panels/panels.h"
#include "platform/addresses.h"
#include "settings/settings.h"
#include "status/status_page.h"

namespace {

constexpr int wide = 60;         // characters of a long line
constexpr size_t mostNames = 4;  // lines of a list

// As they were when the window was opened: asking the system takes long.
std::vector<uint32_t> ownAddresses;

bool threadsWait;

void TakeAddresses() { ownAddresses = ListAddresses(); }

std::string Plugin(int) { return std::string(pluginTitle) + " " + buildWord; }
std::string Network(int) { return std::string(networkTitle) + " " + buildWord; }
std::string Simulator(int) { return simulatorVersionLabel + std::to_string(simulatorVersion); }

// --- Servers -------------------------------------------------------------------------------------------
std::string ServerAddress(int) { return settings.serverAddress; }
std::string OwnAddresses(int) {
  std::string text;
  for (const uint32_t ip : ownAddresses) text += (text.empty() ? "" : ", ") + AddressText(ip);
  return text.empty() ? "none" : text;
}
std::string ClientLine(int) { return std::string("offsetctl monitor --net ") + settings.serverAddress; }
// The line is there to be copied: whatever is typed into it gives way.
std::string KeepClientLine(int, const std::string&) { return ""; }

std::string LocalServer(int) {
  if constexpr (!windowServerExists) return "on Windows only";
  if (settings.clientMode) return "off in client mode";
  if (WindowServerAnswers()) return "ready";
  return MainLogIsOpen() ? "not running: TAVRIX.txt tells why" : "not running";
}

std::string NetworkServer(int) {
  if (settings.clientMode) {
    if (relayReasonText[0] == '\0') return "client mode: receives from the other simulator";
    return std::string("client mode, receives nothing: ") + relayReasonText;
  }
  if (networkStatusText[0] != '\0')
    return std::string("TAVFARNET") + networkStatusText + "\n" + networkReasonText;
  if (!NetworkServerRuns()) return "not running";
  return "ready, Network clients: " + std::to_string(ConnectedClients());
}

std::string Announcement(int) { return AnnouncementRuns() ? "once a second" : "off"; }

// An address at which it answers: of this computer's the one in the settings, else the first.
uint32_t PageAddress() {
  constexpr uint32_t loopback = 0x7F000001;
  if (settings.statusPage == PageAccess::Local || ownAddresses.empty()) return loopback;
  uint32_t ip = 0;
  const bool isOwn =
      ParseAddress(settings.serverAddress, &ip) &&
      (ip == loopback || std::find(ownAddresses.begin(), ownAddresses.end(), ip) != ownAddresses.end());
  return isOwn ? ip : ownAddresses.front();
}

std::string StatusPage(int) {
  if (StatusPageAnswers()) {
    const bool local = settings.statusPage == PageAccess::Local;
    return "http://" + AddressText(PageAddress()) + ":" + std::to_string(statusPort) +
           (local ? ", this computer only" : "");
  }
  return settings.statusPage == PageAccess::Off ? "off in the settings" : "not running";
}

std::string ThreadsWait(int) {
  return threadsWait ? "The servers start once a load: reload the plug-in to start them again" : "";
}

std::vector<std::string> clients;  // as they were when their table was free last

std::string Clients(int) {
  TryListClients(&clients);
  std::string text;
  for (const std::string& client : clients) text += (text.empty() ? "" : "\n") + EscapedForLog(client);
  return text.empty() ? "none" : text;
}

// --- What is loaded ---------------------------------------------------------------------------------------
constexpr AddOn addOns[] = {AddOn::X737,  AddOn::Ixeg733,    AddOn::B738Extended, AddOn::B738Stock,
                            AddOn::Ec135, AddOn::XSquawkBox, AddOn::PilotEdge};

// "Extended 737-800 (109 of 111 names, not: laminar/...)"; the log has all of the missing ones.
std::string AddOns(int) {
  std::string list;
  for (const AddOn addOn : addOns) {
    if (!IsLoaded(addOn)) continue;
    const NamesFound& names = NamesFoundOf(addOn);
    list += (list.empty() ? "" : ", ") + std::string(NameOf(addOn)) + " (" + std::to_string(names.found) +
            " of " + std::to_string(names.total) + " names";
    const char* separator = ", not: ";
    for (const char* name : names.missing) list += std::exchange(separator, ", ") + std::string(name);
    list += ")";
  }
  return list.empty() ? "none" : list;
}

std::string UnresolvedNames(int) {
  const CustomSummary summary = SummariseCustomOffsets();
  return summary.unresolved.empty() ? "none" : JoinLines(summary.unresolved, mostNames);
}

constexpr Row rows[] = {
    {{{.kind = CellKind::Value, .width = 40, .text = Plugin}}},
    {{{.kind = CellKind::Value, .width = 40, .text = Network}}},
    {{{.kind = CellKind::Value, .width = 40, .text = Simulator}}},
    {{{.kind = CellKind::Heading, .label = "Servers"}}},
    {{{.kind = CellKind::Value, .label = "Server address", .width = 20, .text = ServerAddress}}},
    {{{.kind = CellKind::Value,
       .label = "This computer's addresses",
       .width = 36,
       .lines = 2,
       .text = OwnAddresses}}},
    {{{.kind = CellKind::Field,
       .label = "Paste into a client",
       .width = 36,
       .text = ClientLine,
       .accept = KeepClientLine}}},
    {{{.kind = CellKind::Value, .label = "Local window", .width = 36, .text = LocalServer}}},
    {{{.kind = CellKind::Value, .label = "Network", .width = 46, .lines = 3, .text = NetworkServer}}},
    {{{.kind = CellKind::Value, .label = "Announcement", .width = 36, .text = Announcement}}},
    {{{.kind = CellKind::Value, .label = "Status page", .width = 46, .text = StatusPage}}},
    {{{.kind = CellKind::Value, .label = "Clients", .width = 46, .lines = 8, .text = Clients}}},
    {{{.kind = CellKind::Value, .width = wide, .lines = 2, .text = ThreadsWait}}},
    {{{.kind = CellKind::Heading, .label = "Since the start"}}},
    {{{.kind = CellKind::Value, .width = wide, .text = RequestsText}}},
    {{{.kind = CellKind::Value, .width = wide, .text = RefreshesText}}},
    {{{.kind = CellKind::Heading, .label = "Loaded"}}},
    {{{.kind = CellKind::Value, .label = "Add-ons", .width = 54, .lines = 2, .text = AddOns}}},
    {{{.kind = CellKind::Value,
       .label = "TAVRIXOffsets.cfg",
       .width = 54,
       .lines = 2,
       .text = CustomEntriesText}}},
    {{{.kind = CellKind::Value,
       .label = "Names not found",
       .width = 54,
       .lines = mostNames,
       .text = UnresolvedNames}}},
};
constexpr WindowPlan plan = {.title = versionWindowTitle, .rows = rows, .opened = TakeAddresses};

uint32_t shownClients;

}  // namespace

void OpenVersionWindow() { OpenWindow(plan); }

void TellThreadsWait(bool wait) { threadsWait = wait; }

void FollowPanels() {
  FollowWindows();
  const uint32_t connected = ConnectedClients();
  if (std::exchange(shownClients, connected) != connected) RefreshWindow(plan);
}
