#include "base/log.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

#include "base/locks.h"
#include "base/log_format.h"
#include "base/version.h"
#include "platform/clock.h"
#include "platform/exceptions.h"
#include "platform/lock.h"
#include "platform/system.h"

std::atomic<uint32_t> readTrace;
std::atomic<uint32_t> writeTrace;

namespace {

constexpr char mainLogName[] = "TAVRIX.txt";
constexpr char traceLogName[] = "TAVRIX.log";
constexpr char oldSuffix[] = ".old";
constexpr size_t longestPath = 1024;
constexpr size_t longestHeader = 128;  // of a trace record, more than its numbers need
constexpr size_t bytesPerLine = 16;

// Plain arrays, not strings: no destructor may run while a late line is still being written.
struct LogFile {
  char path[longestPath];
  char oldPath[longestPath];  // what a full file is renamed to
  FILE* file;                 // null: every line is dropped
  uint64_t size;              // bytes
  bool loses;                 // the last lines could not be written
};
LogFile mainLog;       // guarded by logLock
LogFile traceLog;      // guarded by the trace lock
Lock logLock;          // nothing else is entered while it is held
char lossReason[256];  // why the main log loses lines; logLock
std::atomic<bool> lossIsNews;
std::atomic<int64_t> openedAt;
std::atomic<float> runningTime;

void CloseFile(LogFile* log) {
  if (log->file) std::fclose(log->file);
  log->file = nullptr;
}

// Opens the file in the place of one that is open. On failure the one before is still open.
bool Open(LogFile* log, OpenMode mode, OpenFailure* failure) {
  FILE* opened = OpenPlainFile(log->path, mode, failure);
  if (!opened) return false;
  CloseFile(log);
  log->file = opened;
  log->loses = false;
  const long end = std::fseek(opened, 0, SEEK_END) == 0 ? std::ftell(opened) : -1;
  log->size = end < 0 ? largestLog : static_cast<uint64_t>(end);  // beyond what the system counts: it is full
  return true;
}

// Opens it for appending; the open one goes on taking lines when that fails. Returns "", or why.
std::string Reopen(LogFile* log) {
  if (!log->file) return "it could not be opened at the start";
  try {
    OpenFailure failure;
    return Open(log, OpenMode::Append, &failure) ? "" : failure.reason;
  } catch (...) {
    return "no memory";
  }
}

void Put(LogFile* log, const char* text, size_t length) {
  std::fwrite(text, 1, length, log->file);
  log->size += length;
}

// Whether everything has reached the file; `reason` gets the system's when it has not.
bool Flush(LogFile* log, const char** remedy, std::string* reason) {
  const bool flushed = std::fflush(log->file) == 0;
  if (flushed && std::ferror(log->file) == 0) return true;
  *remedy = SystemErrorRemedy();
  *reason = SystemErrorText();
  std::clearerr(log->file);
  return false;
}

// With the log's lock held.
void FlushMain() {
  std::string reason;
  const char* remedy = nullptr;
  const bool lost = !Flush(&mainLog, &remedy, &reason);
  if (lost == std::exchange(mainLog.loses, lost)) return;
  lossIsNews = lost;
  if (lost) {
    std::snprintf(lossReason, sizeof lossReason, "%s): %s", reason.c_str(),
                  remedy != nullptr ? remedy : "look after that disk");
    return;
  }
  char stamp[timeStampSize], line[128];
  const int length = std::snprintf(
      line, sizeof line, "%s TAVRIX->Lines before this one are missing: the file could not be written\n",
      TimeStamp(stamp));
  Put(&mainLog, line, static_cast<size_t>(length));
  std::fflush(mainLog.file);
}

// Renames a full file and begins it anew. When it cannot be renamed its lines are lost, the newest ones are
// worth more; when it cannot be opened again the log ends.
void BeginAnew(LogFile* log) {
  CloseFile(log);
  // What else stands under either name (a folder, a pipe) is the user's.
  const bool kept =
      IsFileOrNothing(log->oldPath) && IsFileOrNothing(log->path) && ReplaceFile(log->path, log->oldPath);
  OpenFailure failure;
  if (!Open(log, OpenMode::Empty, &failure)) return;
  char stamp[timeStampSize], line[longestPath + 256];
  const int length = std::snprintf(line, sizeof line, "%s TAVRIX->Version %s %s, the log goes on here: %s%s\n",
                                   TimeStamp(stamp), pluginVersion, buildWord,
                                   kept ? "the lines before are in " : "the lines before could not be kept as ",
                                   EscapedControls(log->oldPath).c_str());
  if (length > 0) Put(log, line, std::min(static_cast<size_t>(length), sizeof line - 1));
}

// Makes room for `length` more bytes that belong together.
void MakeRoom(LogFile* log, size_t length) {
  if (!log->file || log->size == 0 || log->size + length <= largestLog) return;
  try {
    BeginAnew(log);
  } catch (...) {
    return;  // out of memory: once more at the next line
  }
}

void WriteMain(const char* text, size_t length) {
  const LockScope scope(&logLock);
  MakeRoom(&mainLog, length);
  if (!mainLog.file) return;
  Put(&mainLog, text, length);
  try {
    FlushMain();
  } catch (...) {
    return;  // out of memory for the reason: once more at the next line
  }
}

void WriteTrace(const char* text, size_t length) {
#if defined(TAVRIX_CHECK_LOCKS)
  if (!HoldsLock(&traceLock)) {
    std::fputs("TAVRIX->The trace log was written without the trace lock\n", stderr);
    std::abort();
  }
#endif
  if (traceLog.file) Put(&traceLog, text, length);
}

// Sets the paths of a log file in the folder. False when they are too long.
bool SetPaths(LogFile* log, const char* folder, const char* name) {
  const int length = std::snprintf(log->path, longestPath, "%s%s", folder, name);
  const int oldLength = std::snprintf(log->oldPath, longestPath, "%s%s%s", folder, name, oldSuffix);
  return length >= 0 && oldLength >= 0 && static_cast<size_t>(oldLength) < longestPath;
}

bool ReportFailure(const char* what, const std::string& reason, void (*report)(const char* line),
                   const char* remedy = nullptr) {
  if (!report) return false;
  if (remedy == nullptr) {
    remedy =
        "rename what stands there if it is no plain file, else make it and its folder writable for your user";
  }
  try {
    const std::string line = "TAVRIX->Can't write the log file " + EscapedControls(what) + " (" + reason +
                             "): " + remedy +
                             ", and start the simulator again; TAVRIX runs on without log files\n";
    report(line.c_str());
  } catch (...) {
    PassForeignException();
    report("TAVRIX->Out of memory, no log files\n");
  }
  return false;
}

bool OpenBoth(const char* folder, void (*report)(const char* line)) {
  if (!SetPaths(&mainLog, folder, mainLogName) || !SetPaths(&traceLog, folder, traceLogName)) {
    return ReportFailure(folder, "its path is too long", report);
  }
  if (!CreateFolders(folder)) {
    const char* remedy = SystemErrorRemedy();
    return ReportFailure(mainLog.path, SystemErrorText(), report, remedy);
  }
  OpenFailure failure;
  for (LogFile* log : {&mainLog, &traceLog}) {
    if (Open(log, OpenMode::Empty, &failure)) continue;
    return ReportFailure(log->path, failure.reason, report, failure.remedy);
  }
  return true;
}

std::string Escaped(std::string_view text, bool (*isPlain)(unsigned char byte)) {
  constexpr char digits[] = "0123456789ABCDEF";
  constexpr std::string_view special = "\n\r\t\\", letters = "nrt\\";
  std::string escaped;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (isPlain(byte)) {
      escaped += c;
    } else if (const size_t known = special.find(c); known != std::string_view::npos) {
      escaped += '\\';
      escaped += letters[known];
    } else {
      escaped += "\\x";
      escaped += digits[byte >> 4];
      escaped += digits[byte & 0x0F];
    }
  }
  return escaped;
}

char* TwoDigits(char* text, int value) {
  *text++ = static_cast<char>('0' + value / 10 % 10);
  *text++ = static_cast<char>('0' + value % 10);
  return text;
}

}  // namespace

bool OpenLogs(const char* folder, void (*report)(const char* line)) {
  CloseLogs();
  openedAt = MonotonicNanoseconds();
  if (!CreateLock(&logLock)) return ReportFailure(folder, "the system gives no lock", report, shortageRemedy);
  bool opened = false;
  try {
    opened = OpenBoth(folder, report);
  } catch (...) {
    PassForeignException();
    ReportFailure(folder, "out of memory", report, shortageRemedy);
  }
  if (!opened) CloseLogs();
  return opened;
}

bool ReopenMainLog() {
  std::string fault;
  {
    const LockScope scope(&logLock);  // nobody renames the file while it is being opened
    if (!mainLog.file) return false;
    fault = Reopen(&mainLog);
  }
  if (fault.empty()) return true;
  LogOwn("TAVRIX->The log file cannot be opened again (%s): leave it where it is, the lines go on into it\n",
         fault.c_str());
  return false;
}

void FlushLogs() {
  {
    const LockScope scope(&logLock);
    if (mainLog.file) std::fflush(mainLog.file);
  }
  const LockScope scope(&traceLock);
  FlushTrace();
}

void CloseLogs() {
  {
    const LockScope scope(&logLock);
    CloseFile(&mainLog);
  }
  {
    const LockScope scope(&traceLock);
    CloseFile(&traceLog);
  }
  DeleteLock(&logLock);
}

void LogLine(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  FormatLine(format, arguments, WriteMain);
  va_end(arguments);
}

void LogOwn(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  FormatLine(format, arguments, [](const char* text, size_t length) {
    char stamp[timeStampSize];
    TimeStamp(stamp);
    stamp[timeStampSize - 1] = ' ';
    try {
      const std::string line = std::string(stamp, timeStampSize).append(text, length);
      WriteMain(line.data(), line.size());
    } catch (...) {
      WriteMain(text, length);
    }
  });
  va_end(arguments);
}

void TraceLine(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  FormatLine(format, arguments, [](const char* text, size_t length) {
    MakeRoom(&traceLog, length);
    WriteTrace(text, length);
  });
  va_end(arguments);
}

void LogBoth(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  FormatLine(format, arguments, [](const char* text, size_t length) {
    WriteMain(text, length);
    const LockScope scope(&traceLock);
    MakeRoom(&traceLog, length);
    WriteTrace(text, length);
    FlushTrace();
  });
  va_end(arguments);
}

void FlushTrace() {
  if (!traceLog.file) return;
  try {
    std::string reason;
    const char* remedy = nullptr;
    const bool lost = !Flush(&traceLog, &remedy, &reason);
    if (lost == std::exchange(traceLog.loses, lost) || !lost) return;
    LogOwn("TAVRIX->The log %s cannot be written (%s): %s; what clients read and write is missing there\n",
           EscapedControls(traceLog.path).c_str(), reason.c_str(),
           remedy != nullptr ? remedy : "look after that disk");
  } catch (...) {
    return;
  }
}

void ReportLostLines(void (*report)(const char* line)) {
  if (!lossIsNews.load(std::memory_order_relaxed) || !lossIsNews.exchange(false)) return;
  char line[longestPath + 512];
  {
    const LockScope scope(&logLock);
    std::snprintf(line, sizeof line,
                  "TAVRIX->The log file %s cannot be written (%s; lines are lost until it can\n", mainLog.path,
                  lossReason);
  }
  report(line);
}

std::string EscapedForLog(std::string_view text) {
  return Escaped(text, [](unsigned char byte) { return byte >= 0x20 && byte < 0x7F && byte != '\\'; });
}

std::string EscapedControls(std::string_view text) {
  return Escaped(text, [](unsigned char byte) { return byte >= 0x20 && byte != 0x7F; });
}

char* TimeStamp(char* buffer) {
  const UtcTime now = ReadUtcTime();
  char* text = TwoDigits(buffer, now.hour);
  *text++ = ':';
  text = TwoDigits(text, now.minute);
  *text++ = ':';
  text = TwoDigits(text, now.second);
  *text++ = ':';
  *text++ = static_cast<char>('0' + now.millisecond / 100 % 10);
  text = TwoDigits(text, now.millisecond);
  *text = '\0';
  return buffer;
}

void TraceRecord(bool isWrite, uint32_t request, uint32_t offset, uint32_t size, const uint8_t* bytes,
                 char mark) {
  const std::atomic<uint32_t>& traced = isWrite ? writeTrace : readTrace;
  if (!traced.load(std::memory_order_relaxed)) return;
  MakeRoom(&traceLog, longestHeader + size * 3 + size / bytesPerLine + 1);  // header and bytes stay together
  TraceLine("%c%07.2f Req: %06i %s Offset: %04X Bytes: %03i value: ", mark,
            static_cast<double>(PublishedRunningTime()), static_cast<int>(request), isWrite ? "WRITE" : "READ ",
            offset, static_cast<int>(size));
  constexpr char digits[] = "0123456789ABCDEF";
  char line[bytesPerLine * 3 + 1];
  size_t length = 0;
  for (uint32_t i = 0; i < size; ++i) {
    line[length++] = digits[bytes[i] >> 4];
    line[length++] = digits[bytes[i] & 0x0F];
    line[length++] = ' ';
    if ((i + 1) % bytesPerLine != 0) continue;
    line[length++] = '\n';
    WriteTrace(line, length);
    length = 0;
  }
  line[length++] = '\n';
  WriteTrace(line, length);
}

std::string SwitchTrace(bool isWrite, bool on) {
  const LockScope scope(&traceLock);
  if (!readTrace.load(std::memory_order_relaxed) && !writeTrace.load(std::memory_order_relaxed)) {
    std::string reason = Reopen(&traceLog);
    if (on && !reason.empty()) return reason;
  }
  TraceLine("%s %s %f sec\n", on ? "Start" : "Stop", isWrite ? "Writelogging" : "Readlogging",
            static_cast<double>(PublishedRunningTime()));
  FlushTrace();
  (isWrite ? writeTrace : readTrace).store(on ? 1 : 0, std::memory_order_relaxed);
  return "";
}

int64_t LogsOpenedAt() { return openedAt.load(std::memory_order_relaxed); }

bool MainLogIsOpen() {
  const LockScope scope(&logLock);
  return mainLog.file != nullptr;
}

float PublishedRunningTime() { return runningTime.load(std::memory_order_relaxed); }

void PublishRunningTime(float seconds) { runningTime.store(seconds, std::memory_order_relaxed); }
