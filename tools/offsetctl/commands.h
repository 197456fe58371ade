// The commands. Main thread. Each returns the program's exit status and has printed a line on standard error
// when that is not 0.
#pragma once
#include <string>

#include "options.h"
#include "transport.h"

namespace ctl {

constexpr int exitDone = 0;
constexpr int exitNoAnswer = 1;  // no server, refused, or no answer in time
constexpr int exitUsage = 2;

// One line on standard error; returns the status.
int Report(int status, const std::string& text);
// exitNoAnswer, with that line or one that says that the user has stopped it before it was done.
int ReportFailure(const std::string& error);
// The same for what goes on until it is stopped, and has begun: 0 then.
int ReportEnd(const std::string& error);
// The line when nothing has come from the server for longer than the time-out; "" before. Never for a way
// without `silence`.
std::string SilenceText(const Options& options, const Transport& transport);

// Commands with a server take an open transport.
int RunRead(const Options& options, const Transport& transport);
int RunWrite(const Options& options, const Transport& transport);
int RunWatch(const Options& options, const Transport& transport);
int RunDump(const Options& options, const Transport& transport);
int RunMonitor(const Options& options, const Transport& transport);
int RunRecord(const Options& options, const Transport& transport);
// Opens the transport itself, several times.
int RunMap(const Options& options, const Transport& transport);
// Commands without a server.
int RunList(const Options& options);
int RunCheck(const Options& options);
int RunDoctor(const Options& options);
int RunReplay(const Options& options);
int RunConform(const Options& options);
// Items and values without a server: exitDone when a read, watch or write may go on.
int CheckItems(const Options& options);

}  // namespace ctl
