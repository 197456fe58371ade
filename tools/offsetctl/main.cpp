// offsetctl: reads, writes and watches the offsets of a running plug-in, as any client program does.
#include <cmath>
#include <cstdio>

#include "commands.h"
#include "console.h"

namespace {

using namespace ctl;

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
    default:
      return exitUsage;
  }
}

int RunWithServer(const Options& options) {
  if (const int status = CheckItems(options); status != exitDone) return status;
  const Transport* transport = LocalTransport();
  if (transport == nullptr) {
    return Report(exitUsage,
                  "the local window server is a Windows mechanism: run the Windows build of offsetctl");
  }
  WatchForStop();
  std::string error;
  const int timeoutMs = static_cast<int>(std::ceil(options.timeout * 1000));
  if (!transport->open(timeoutMs, &error)) return Report(exitNoAnswer, error);
  const int status = RunCommand(options, *transport);
  transport->close();
  return status;
}

}  // namespace

int main(int count, char** words) {
  Options options;
  std::string error;
  if (!ParseOptions(std::vector<std::string>(words + 1, words + count), &options, &error)) {
    return Report(exitUsage, error);
  }
  if (options.help) {
    std::fputs(HelpText(options.command).c_str(), stdout);
    return exitDone;
  }
  return options.command == Command::List ? RunList(options) : RunWithServer(options);
}
