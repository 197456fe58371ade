#include "status/status_page.h"

#include <charconv>
#include <cstdio>
#include <cstring>
#include <utility>

#include "base/log.h"
#include "base/log_quiet.h"
#include "base/version.h"
#include "offsets/memory.h"
#include "platform/clock.h"
#include "platform/socket.h"
#include "platform/system.h"
#include "platform/thread.h"

namespace {

constexpr int backlog = 5;
constexpr size_t requestSize = 1000;
constexpr int requestWaitMs = 1000;  // browsers hold spare connections open on which nothing ever comes
constexpr int drainMs = 100;
constexpr size_t largestLog = 1000000;
constexpr uint32_t loopback = 0x7F000001;

Thread pageThread;
std::atomic<uint32_t> pageRunning;
std::atomic<bool> pageAnswers;
SocketWaker pageWaker;
std::string logPath;  // written before the thread starts, as the next
bool pageLocal;
QuietTable loggedBrowsers;  // page thread

StatusValues ReadStatusValues() {
  const ServerLockScope lock;
  return {.framePeriod = Load<uint16_t>(0x0274),
          .groundElevation = Load<int32_t>(0x0020),
          .groundSpeed = Load<int32_t>(0x02B4),
          .verticalSpeed = Load<int32_t>(0x02C8),
          .pitch = Load<double>(0x2F70),
          .bank = Load<double>(0x2F78),
          .heading = Load<uint32_t>(0x0580)};
}

// As "%f" prints it, with a point in every locale.
std::string SixDecimals(double value) {
  char text[400];  // the largest double has 309 digits before the point
  const auto result = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 6);
  return {text, result.ptr};
}

std::string Line(const char* label, const std::string& value, const char* unit) {
  return std::string(label) + ": " + value + " " + unit + "<br/>";
}

// Truncated to a whole number of units.
std::string Whole(int32_t stored, int scale) { return std::to_string(stored / scale); }

uint16_t DataRate(uint16_t framePeriod) {
  return framePeriod == 0 ? uint16_t{0} : static_cast<uint16_t>(static_cast<uint32_t>(32768.0 / framePeriod));
}

// Null when it cannot be written: the page does without.
FILE* OpenPageLog() {
  OpenFailure failure;
  FILE* log = OpenPlainFile(logPath.c_str(), OpenMode::Empty, &failure);
  if (log == nullptr) {
    LogOwn("TAVRIX->Can't write the status page's log %s (%s): %s; the page works without it\n",
           EscapedControls(logPath).c_str(), failure.reason.c_str(),
           failure.remedy != nullptr ? failure.remedy : "make it a plain file that your user may write");
  }
  return log;
}

// The page's own log. Page thread.
struct PageLog {
  FILE* file;  // null: there is none
  size_t size;
};

void Write(PageLog* log, const std::string& text) {
  if (log->file == nullptr) return;
  if (log->size + text.size() > largestLog) {
    std::fclose(log->file);
    *log = {OpenPageLog(), 0};
    if (log->file == nullptr) return;
  }
  log->size += std::fwrite(text.data(), 1, text.size(), log->file);
  std::fflush(log->file);
}

void LogRequest(PageLog* log, const SocketAddress& peer, const char* request) {
  if (TakeLogTurn(&loggedBrowsers, peer.ip)) Write(log, "http command=" + EscapedForLog(request) + "\n");
}

// Sends the end of the answer and takes what the browser still sends: closing with unread bytes would take
// the answer away from it.
void FinishAnswer(Socket* connection) {
  ShutdownSend(connection);
  char rest[requestSize];
  const int64_t deadline = MonotonicNanoseconds() + drainMs * INT64_C(1000000);
  while (MonotonicNanoseconds() < deadline &&
         ReceiveSocket(connection, &pageWaker, drainMs, rest, sizeof rest) > 0) {
  }
}

void Answer(PageLog* log, Socket* connection, const SocketAddress& peer) {
  char request[requestSize + 1];
  const int size = ReceiveSocket(connection, &pageWaker, requestWaitMs, request, requestSize);
  if (size == receiveWoken) return;
  request[size > 0 ? size : 0] = '\0';
  LogRequest(log, peer, request);
  for (const std::string& piece : StatusPagePieces(ReadStatusValues())) {
    SendStream(connection, piece.data(), piece.size());
  }
  FinishAnswer(connection);
}

void AnswerBrowsers(PageLog* log, Socket* listener) {
  // At the edge every other browser finds a handle.
  static QuietMinute lines = {
      .what = "TAVRIX->The status page could not answer", .most = 3, .began = 0, .turns = 0};
  bool told = false;
  while (pageRunning.load() != 0) {
    Socket connection;
    SocketAddress peer;
    const int accepted = AcceptSocket(listener, &pageWaker, &connection, &peer);
    if (accepted < 0) {  // out of handles, perhaps only for now
      const int error = SocketErrorNumber();
      if (!std::exchange(told, true) && TakeLogTurn(&lines)) {
        LogOwn("TAVRIX->The status page cannot answer (%s): %s; it answers as soon as it can\n",
               SocketErrorText(error).c_str(), shortageRemedy);
      }
      WaitWaker(&pageWaker, requestWaitMs);
    }
    if (accepted <= 0) continue;
    told = false;
    if (pageRunning.load() != 0) Answer(log, &connection, peer);
    CloseSocket(&connection);
  }
}

uint32_t PageProcedure(void*) {
  PageLog log = {OpenPageLog(), 0};
  loggedBrowsers = {};
  Write(&log, "http log\n");
  Socket listener;
  if (!OpenSocket(&listener, Transport::Stream)) {
    LogOwn("TAVRIX->The status page gets no socket (%s): %s, and reload the plug-in\n",
           SocketErrorText(SocketErrorNumber()).c_str(), shortageRemedy);
    Write(&log, "error socket\n");
    if (log.file != nullptr) std::fclose(log.file);
    return 0;
  }
  if (BindSocket(&listener, {pageLocal ? loopback : 0, statusPort}) && ListenSocket(&listener, backlog)) {
    pageAnswers = true;
    AnswerBrowsers(&log, &listener);
    pageAnswers = false;
  } else {
    const std::string reason = SocketErrorText(SocketErrorNumber());
    LogLine("error bind\n");
    LogOwn(
        "TAVRIX->The status page cannot use TCP port %u (%s): close the other program that uses it and reload "
        "the "
        "plug-in\n",
        statusPort, reason.c_str());
    WaitWaker(&pageWaker, -1);
  }
  Write(&log, "Closing http thread\n");
  if (log.file != nullptr) std::fclose(log.file);
  CloseSocket(&listener);
  return 0;
}

}  // namespace

bool StartStatusPage(const char* systemFolder, bool localOnly) {
  pageLocal = localOnly;
  logPath = std::string(systemFolder) + "httpLog.txt";
  pageRunning = 1;
  if (CreateWaker(&pageWaker) && StartThread(&pageThread, PageProcedure, nullptr)) return true;
  pageRunning = 0;
  CloseWaker(&pageWaker);
  return false;
}

bool StatusPageRuns() { return pageThread.started.load() != 0; }

bool StatusPageAnswers() { return pageAnswers.load(); }

void StopStatusPage() {
  pageRunning = 0;
  WakeSocket(&pageWaker);
  JoinThread(&pageThread);
  CloseWaker(&pageWaker);
}

std::vector<std::string> StatusPagePieces(const StatusValues& values) {
  constexpr float headingUnit = 360.0F / 4294967296.0F;
  const auto heading = static_cast<uint32_t>(static_cast<float>(values.heading) * headingUnit);
  return {
      "HTTP/1.1 200 OK\nContent-Type: text/html\nConnection: close\nRefresh: 1\n<!DOCTYPE HTML>\n",
      "\n<html>\n<body>\n",
      std::string("<h1>TAVRIX version: ") + pluginVersion + " </h1>\n",
      "\n<tr>\n",
      Line("TAVRIX Datarate", std::to_string(DataRate(values.framePeriod)), "1/sec"),
      Line("Ground elevation", Whole(values.groundElevation, 256), "m"),
      Line("Ground speed", Whole(values.groundSpeed, 65536), "m/sec"),
      Line("Vertical speed", Whole(values.verticalSpeed, 256), "m/sec"),
      Line("Aircraft pitch", SixDecimals(-values.pitch), "degrees"),
      Line("Aircraft bank", SixDecimals(values.bank), "degrees"),
      Line("Aircraft heading", std::to_string(heading), "degrees"),
      "\n</tr>\n",
      "\n</body>\n</html>\n",
  };
}
