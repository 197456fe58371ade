#include "cockpit/serve.h"

#include <chrono>
#include <cstdio>

#include "cockpit/answers.h"
#include "cockpit/source.h"
#include "cockpit/web_files.h"
#include "cockpit/web_server.h"
#include "offsetctl/commands.h"
#include "offsetctl/console.h"
#include "offsetctl/files.h"
#include "offsetctl/sockets.h"

namespace ctl {

namespace {

constexpr char loopback[] = "127.0.0.1";

// Where to listen, and by which names the server may be asked. Returns true, or false with a line in `error`.
bool ReadAccess(const Options& options, Access* access, std::string* shownHost, std::string* error) {
  const std::string address = options.listen.empty() ? loopback : options.listen;
  bool isLoopback = false, isAny = false;
  if (!ReadAddress(address, &isLoopback, &isAny)) {
    *error =
        "--listen takes an address of this computer in digits, like 192.168.1.20, or 0.0.0.0 for all of them";
    return false;
  }
  if (!options.token.empty() && !IsToken(options.token)) {
    *error = "--token takes 8 to 128 of the characters A-Z a-z 0-9 . _ ~ -";
    return false;
  }
  if (!isLoopback && options.token.empty()) {
    *error = "other computers reach " + address + ": choose a --token, which they have to give";
    return false;
  }
  const auto hostOf = [](const std::string& text) {
    return text.find(':') == std::string::npos ? text : "[" + text + "]";
  };
  access->token = options.token;
  access->hosts = {"localhost", loopback, "[::1]", LowerText(hostOf(address))};
  *shownHost = !isAny ? hostOf(address) : address.find(':') == std::string::npos ? loopback : "[::1]";
  for (const uint32_t ip : OwnAddresses()) {
    access->hosts.push_back(IpText(ip));
    if (isAny && *shownHost == loopback) *shownHost = IpText(ip);
  }
  const std::string name = ComputerName();
  if (!name.empty()) access->hosts.push_back(name);
  if (name.find('.') != std::string::npos) access->hosts.push_back(name.substr(0, name.find('.')));
  return true;
}

}  // namespace

int RunServe(const Options& options) {
  const auto start = std::chrono::steady_clock::now();
  std::string error, host;
  Site site;
  if (options.local && LocalTransport() == nullptr) {
    return Report(
        exitUsage,
        "the local window server is a Windows mechanism: run the Windows build of offsetctl, or use --net");
  }
  if (!StartSockets(&error)) return Report(exitNoAnswer, error);
  if (!ReadAccess(options, &site.access, &host, &error)) return Report(exitUsage, error);
  site.panels = options.panels.empty() ? Joined(ProgramFolder(), "panels") : options.panels;
  site.recordings = options.recordings.empty() ? Joined(ProgramFolder(), "recordings") : options.recordings;
  site.names = KnownOffsets();
  if (!ReadOffsetsFile(OffsetsFile(), &site.offsets))
    return Report(exitNoAnswer, "its table of offsets is damaged");
  const auto web =
      OpenWeb(options.listen.empty() ? loopback : options.listen, static_cast<unsigned>(options.port), &error);
  if (web == nullptr) return Report(exitNoAnswer, error);
  site.access.port = PortOf(*web);
  WatchForStop();
  SourceSettings settings = {
      .local = options.local || (LocalTransport() != nullptr && options.net.empty() && !options.find),
      .find = options.find,
      .host = options.find          ? ""
              : options.net.empty() ? loopback
                                    : options.net,
      .replay = options.items.empty() ? "" : options.items[0],
      .recordings = site.recordings,
      .start = start,
      .deliver = [server = web.get()](Batch batch) { TakeBatch(server, std::move(batch)); }};
  Source source;
  if (!StartSource(settings, &source, &error)) return Report(exitUsage, error);
  std::printf("Web cockpit: http://%s:%u/%s%s\n", host.c_str(), site.access.port,
              options.token.empty() ? "" : "?token=", options.token.c_str());
  std::fflush(stdout);
  RunWeb(web.get(), site, &source, start, StopRequested);
  StopSource(&source);
  StopSockets();
  return exitDone;
}

}  // namespace ctl
