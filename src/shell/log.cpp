#include "shell/log.h"

#include <bit>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "offsets/locks.h"
#include "platform/clock.h"
#include "platform/lock.h"
#include "platform/system.h"
#include "shell/log_format.h"

std::atomic<uint32_t> readTrace;
std::atomic<uint32_t> writeTrace;

namespace {

constexpr char mainLogName[] = "TAVRIX.txt";
constexpr char traceLogName[] = "TAVRIX.log";
constexpr size_t longestPath = 1024;
constexpr size_t bytesPerLine = 16;

// Plain arrays, not strings: no destructor may run while a late line is still being written.
char mainLogPath[longestPath];
char traceLogPath[longestPath];
Lock logLock;              // guards mainLog; nothing else is entered while it is held
FILE* mainLog = nullptr;   // null: every line is dropped
FILE* traceLog = nullptr;  // guarded by the trace lock
std::atomic<float> runningTime;

// The files take text as it is, without the line-end conversion of Windows.
FILE* OpenEmpty(const char* path) { return std::fopen(path, "wb"); }
FILE* OpenAppending(const char* path) { return std::fopen(path, "ab"); }

void WriteMain(const char* text, size_t length) {
  const LockScope scope(&logLock);
  if (!mainLog) return;
  std::fwrite(text, 1, length, mainLog);
  std::fflush(mainLog);
}

void WriteTrace(const char* text, size_t length) {
#if defined(TAVRIX_CHECK_LOCKS)
  if (!HoldsLock(&traceLock)) {
    std::fputs("TAVRIX->The trace log was written without the trace lock\n", stderr);
    std::abort();
  }
#endif
  if (traceLog) std::fwrite(text, 1, length, traceLog);
}

void CloseFile(FILE** file) {
  if (*file) std::fclose(*file);
  *file = nullptr;
}

// Path of a log file in the folder. Returns 1, or 0 when it is too long.
int JoinPath(char* path, const char* folder, const char* name) {
  const int length = std::snprintf(path, longestPath, "%s%s", folder, name);
  return length >= 0 && static_cast<size_t>(length) < longestPath ? 1 : 0;
}

int ReportFailure(const char* what, const std::string& reason, void (*report)(const char* line)) {
  if (!report) return 0;
  try {
    const std::string line = std::string("TAVRIX->Can't write the log file ") + what + " (" + reason +
                             "): make the folder writable for your user and start the simulator again; TAVRIX "
                             "runs on without log files\n";
    report(line.c_str());
  } catch (...) {
    report("TAVRIX->Out of memory, no log files\n");
  }
  return 0;
}

int OpenBoth(const char* folder, void (*report)(const char* line)) {
  if (!JoinPath(mainLogPath, folder, mainLogName) || !JoinPath(traceLogPath, folder, traceLogName)) {
    return ReportFailure(folder, "its path is too long", report);
  }
  if (!CreateFolders(folder)) return ReportFailure(mainLogPath, SystemErrorText(), report);
  mainLog = OpenEmpty(mainLogPath);
  if (!mainLog) return ReportFailure(mainLogPath, SystemErrorText(), report);
  traceLog = OpenEmpty(traceLogPath);
  if (traceLog) return 1;
  const std::string reason = SystemErrorText();
  CloseFile(&mainLog);
  return ReportFailure(traceLogPath, reason, report);
}

char* TwoDigits(char* text, int value) {
  *text++ = static_cast<char>('0' + value / 10 % 10);
  *text++ = static_cast<char>('0' + value % 10);
  return text;
}

}  // namespace

int OpenLogs(const char* folder, void (*report)(const char* line)) {
  CloseLogs();
  if (!CreateLock(&logLock)) return ReportFailure(folder, "the system gives no lock", report);
  int opened = 0;
  try {
    opened = OpenBoth(folder, report);
  } catch (...) {
    ReportFailure(folder, "out of memory", report);
  }
  if (!opened) CloseLogs();
  return opened;
}

int ReopenMainLog() {
  if (!mainLog) return 0;  // written by this thread alone
  FILE* appending = OpenAppending(mainLogPath);
  if (!appending) return 0;
  const LockScope scope(&logLock);
  std::fclose(mainLog);
  mainLog = appending;
  return 1;
}

void FlushLogs() {
  {
    const LockScope scope(&logLock);
    if (mainLog) std::fflush(mainLog);
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
  FormatLine(format, arguments, WriteTrace);
  va_end(arguments);
}

void LogBoth(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  FormatLine(format, arguments, [](const char* text, size_t length) {
    WriteMain(text, length);
    const LockScope scope(&traceLock);
    WriteTrace(text, length);
    FlushTrace();
  });
  va_end(arguments);
}

void FlushTrace() {
  if (traceLog) std::fflush(traceLog);
}

std::string EscapedForLog(std::string_view text) {
  constexpr char digits[] = "0123456789ABCDEF";
  constexpr std::string_view special = "\n\r\t\\", letters = "nrt\\";
  std::string escaped;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (const size_t known = special.find(c); known != std::string_view::npos) {
      escaped += '\\';
      escaped += letters[known];
    } else if (byte >= 0x20 && byte < 0x7F) {
      escaped += c;
    } else {
      escaped += "\\x";
      escaped += digits[byte >> 4];
      escaped += digits[byte & 0x0F];
    }
  }
  return escaped;
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

void TraceRecord(int isWrite, uint32_t request, uint32_t offset, uint32_t size, const uint8_t* bytes,
                 char mark) {
  const std::atomic<uint32_t>& traced = isWrite ? writeTrace : readTrace;
  if (!traced.load(std::memory_order_relaxed)) return;
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

void SwitchTrace(int isWrite, int on) {
  const LockScope scope(&traceLock);
  if (!readTrace.load(std::memory_order_relaxed) && !writeTrace.load(std::memory_order_relaxed) && traceLog) {
    FILE* appending = OpenAppending(traceLogPath);
    if (appending) {
      std::fclose(traceLog);
      traceLog = appending;
    }
  }
  TraceLine("%s %s %f sec\n", on ? "Start" : "Stop", isWrite ? "Writelogging" : "Readlogging",
            static_cast<double>(PublishedRunningTime()));
  FlushTrace();
  (isWrite ? writeTrace : readTrace).store(on ? 1 : 0, std::memory_order_relaxed);
}

float PublishedRunningTime() { return runningTime.load(std::memory_order_relaxed); }

void PublishRunningTime(float seconds) { runningTime.store(seconds, std::memory_order_relaxed); }
