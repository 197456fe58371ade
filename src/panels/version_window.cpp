// "TAVRIX Version and Info": who we are, who serves whom, what is loaded.
#include "base/version.h"
#include "net/net.h"
#include "panels/layout.h"
#include "panels/panels.h"
#include "platform/clock.h"

namespace {

std::string Simulator(int) { return simulatorVersionLabel + std::to_string(simulatorVersion); }

std::string Network(int) {
  if (networkStatusText[0] != '\0') return std::string("TAVFARNET") + networkStatusText;
  return "Network clients: " + std::to_string(ConnectedClients());
}

constexpr Row rows[] = {
    {{{.kind = CellKind::Label, .label = pluginTitle}}},
    {{{.kind = CellKind::Label, .label = networkTitle}}},
    {{{.kind = CellKind::Value, .width = 40, .text = Simulator}}},
    {{{.kind = CellKind::Value, .width = 40, .text = Network}}},
};
constexpr WindowPlan plan = {.title = versionWindowTitle, .rows = rows};

uint32_t shownClients;

}  // namespace

void OpenVersionWindow() { OpenWindow(plan); }

void FollowPanels() {
  FollowWindows(MonotonicNanoseconds());
  const uint32_t clients = ConnectedClients();
  if (clients == shownClients) return;
  shownClients = clients;
  RefreshWindow(plan);
}
