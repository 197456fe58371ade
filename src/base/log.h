// Main log "TAVRIX.txt" and trace log "TAVRIX.log" in the plug-in's folder.
//
// The main log takes start-up, shutdown and error lines from every thread; each line is one formatted
// write, flushed at once. A line may be logged with any lock held: the log's own lock is the last in every
// order. The trace log takes the version banner and, while a
// trace switch is on, every record that clients read or write; it is written under the trace lock only,
// so that a record's header and bytes stay together, and flushed once per request.
// Neither file grows beyond largestLog: a full one is renamed ("TAVRIX.txt.old", "TAVRIX.log.old", in the place
// of an older one) and begun anew with a line that says so. A record's header and bytes never part. A file that
// cannot be renamed is begun anew all the same.
//
// Lines that an open file does not take are lost; the simulator's own log is told (ReportLostLines), and the
// file where they are missing. A folder or file that cannot be written, also one that is no plain file (a
// folder, a pipe, a device), makes one line in the simulator's own log, and every call here does nothing from
// then on, until the logs are opened again.
//
// Lines end in a single line feed on every system. Numbers are printed with a decimal point whatever
// locale another plug-in has set.
#pragma once
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// GCC takes "printf" for the C library's own conversions, which are other ones on Windows.
#if defined(__clang__)
#define TAVRIX_PRINTF(formatIndex, firstIndex) __attribute__((format(printf, formatIndex, firstIndex)))
#else
#define TAVRIX_PRINTF(formatIndex, firstIndex) __attribute__((format(gnu_printf, formatIndex, firstIndex)))
#endif

constexpr uint64_t largestLog = 20u << 20;  // bytes
constexpr size_t timeStampSize = 13;        // "hh:mm:ss:mmm" and the terminator

// Trace switches, 0 or 1; any thread reads them, only the simulator's thread sets them (SwitchTrace).
extern std::atomic<uint32_t> readTrace;
extern std::atomic<uint32_t> writeTrace;

// Sets the folder that holds both files (full path with trailing separator), makes it when missing, and
// opens both files empty. `report` gets one line for the simulator's log when that fails; it is called on
// the simulator's thread only. Returns whether both are open.
bool OpenLogs(const char* folder, void (*report)(const char* line));
// Reopens the main log for appending (at enable). False when there is no log or it cannot be opened
// again (the open file goes on taking lines then). Simulator's thread, others may log meanwhile.
bool ReopenMainLog();
// Flushes both files. Simulator's thread with no lock held (takes the trace lock).
void FlushLogs();
// When lines could not be written (a full disk, say) `report` gets one line for the simulator's log; once until
// they can be written again. Simulator's thread, every second or so.
void ReportLostLines(void (*report)(const char* line));
// Closes both files (at stop). Simulator's thread, when all other threads have ended.
void CloseLogs();

// One line to the main log; the format carries the line end. Any thread.
void LogLine(const char* format, ...) TAVRIX_PRINTF(1, 2);
// A line that helps the user, in words of our own choice: "hh:mm:ss:mmm " and the text. Any thread.
void LogOwn(const char* format, ...) TAVRIX_PRINTF(1, 2);
// One line to the trace log. The caller holds the trace lock, or is the only thread (start).
void TraceLine(const char* format, ...) TAVRIX_PRINTF(1, 2);
// One line to both logs (start-up banner). Simulator's thread before threads exist.
void LogBoth(const char* format, ...) TAVRIX_PRINTF(1, 2);
// Writes the trace lines of a request out. The caller holds the trace lock.
void FlushTrace();

// A text that came from a client, as a log may show it: "\\n", "\\r", "\\t", "\\\\", and "\\xHH" for every
// other byte that is not printable ASCII, so that it can neither begin a line of its own nor steer a terminal.
// Pure.
std::string EscapedForLog(std::string_view text);

// A text of the user's own files, or a path: only control characters are escaped, all else stands as it is.
// Pure.
std::string EscapedControls(std::string_view text);

// Writes "hh:mm:ss:mmm" (UTC) into a buffer of at least timeStampSize characters and returns it.
char* TimeStamp(char* buffer);

// Trace of one record that was served: header line with the published simulator time, then the bytes
// (size of them, already copied under the offset lock), 16 a line. Nothing while the switch of its kind is
// off. The header line begins with `mark`: a blank for local clients, '*' for those on the network. The caller
// holds the trace lock.
void TraceRecord(bool isWrite, uint32_t request, uint32_t offset, uint32_t size, const uint8_t* bytes,
                 char mark = ' ');
// Switches read or write tracing; when both were off the trace log is reopened for appending, so that a user
// may have moved or deleted the file.
// Writes "Start Readlogging %f sec\n" and its kin. Takes the trace lock. Simulator's thread. Returns "", or why
// the trace log cannot be written: nothing is switched on then.
std::string SwitchTrace(bool isWrite, bool on);
// When OpenLogs began the main log, monotonic nanoseconds; 0: never. Any thread.
int64_t LogsOpenedAt();
// Whether the main log is open, so that somebody may be sent there. Any thread.
bool MainLogIsOpen();

// Simulator's running time in seconds as the last frame published it; any thread.
float PublishedRunningTime();
void PublishRunningTime(float seconds);
