// offsetctl: reads, writes and watches the offsets of a running plug-in, as any client program does.
#include <cmath>
#include <cstdio>

#include "base/version.h"
#include "cockpit/serve.h"
#include "commands.h"
#include "console.h"
#include "net_client.h"

namespace {

using namespace ctl;

constexpr char defaultHost[] = "127.0.0.1";
constexpr int settleMs = 2500;  // announcements come once a second

int Milliseconds(double seconds) { return static_cast<int>(std::ceil(seconds * 1000)); }

int RunFind(const Options& options) {
  WatchForStop();
  std::string error;
  const std::vector<std::string> found =
      FindServers(settleMs, Milliseconds(options.timeout), StopRequested, &error);
  if (found.empty()) return ReportFailure(error);
  if (options.json) std::fputs("[\n", stdout);
  for (size_t i = 0; i < found.size(); ++i) {
    const char* separator = i + 1 < found.size() ? "," : "";
    if (options.json) {
      std::printf("  {\"address\": \"%s\"}%s\n", found[i].c_str(), separator);
    } else {
      std::printf("%s\n", found[i].c_str());
    }
  }
  if (options.json) std::fputs("]\n", stdout);
  return exitDone;
}

// The way to the server that the options name. Null with a status when there is none.
const Transport* ChooseTransport(const Options& options, int* status) {
  const bool onlyNet = options.command == Command::Record;
  if (options.local && onlyNet) {
    *status = Report(exitUsage, "record takes what the network server sends: leave --local out");
    return nullptr;
  }
  const bool local =
      options.local || (LocalTransport() != nullptr && options.net.empty() && !options.find && !onlyNet);
  if (local && LocalTransport() == nullptr) {
    *status = Report(exitUsage,
                     "the local window server is a Windows mechanism: run the Windows build of offsetctl, or "
                     "use --net");
    return nullptr;
  }
  if (local) return LocalTransport();
  std::string host = options.net.empty() ? defaultHost : options.net;
  if (options.find) {
    std::string error;
    const std::vector<std::string> found = FindServers(0, Milliseconds(options.timeout), StopRequested, &error);
    if (found.empty()) {
      *status = ReportFailure(error);
      return nullptr;
    }
    host = found[0];
    std::fprintf(stderr, "offsetctl: server %s\n", host.c_str());
  }
  return NetTransport({host, StopRequested, options.command == Command::Record});
}

int RunCommand(const Options& options, const Transport& transport) {
  switch (options.command) {
    case Command::Read:
      return RunRead(options, transport);
    case Command::Write:
      return RunWrite(options, transport);
    case Command::Watch:
      return RunWatch(options, transport);
    case Command::Dump:
      return RunDump(options, transport);
    case Command::Monitor:
      return RunMonitor(options, transport);
    case Command::Record:
      return RunRecord(options, transport);
    default:
      return exitUsage;
  }
}

int RunWithServer(const Options& options) {
  if (const int status = CheckItems(options); status != exitDone) return status;
  WatchForStop();
  int status = exitUsage;
  const Transport* transport = ChooseTransport(options, &status);
  if (transport == nullptr) return status;
  if (options.command == Command::Map) return RunMap(options, *transport);
  std::string error;
  if (!transport->open(Milliseconds(options.timeout), &error)) return ReportFailure(error);
  status = RunCommand(options, *transport);
  transport->close();
  return status;
}

int RunWords(int count, char** words) {
  Options options;
  std::string error;
  if (!ParseOptions(std::vector<std::string>(words + 1, words + count), &options, &error)) {
    return Report(exitUsage, error);
  }
  if (options.help) {
    std::fputs(HelpText(options.command).c_str(), stdout);
    return exitDone;
  }
  switch (options.command) {
    case Command::Version:
      std::printf("offsetctl of %s, %s\n", pluginTitle, buildWord);
      return exitDone;
    case Command::List:
      return RunList(options);
    case Command::Find:
      return RunFind(options);
    case Command::Check:
      return RunCheck(options);
    case Command::Doctor:
      return RunDoctor(options);
    case Command::Replay:
      return RunReplay(options);
    case Command::Conform:
      return RunConform(options);
    case Command::Serve:
      return RunServe(options);
    default:
      return RunWithServer(options);
  }
}

}  // namespace

int main(int count, char** words) {
  const int status = RunWords(count, words);
  const bool isPrinted = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
  if (isPrinted || status != exitDone) return status;
  return Report(exitNoAnswer, "the output cannot be written: is the disk full?");
}
