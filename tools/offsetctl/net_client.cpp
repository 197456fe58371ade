#include "net_client.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <thread>

#include "base/bytes.h"
#include "confirm.h"
#include "numbers.h"
#include "picture.h"
#include "sockets.h"

namespace ctl {

namespace {

using Clock = std::chrono::steady_clock;

constexpr uint16_t requestPort = 65000;
constexpr NetAddress announceGroup = {0xEFC0000A, 54942};  // 239.192.0.10
constexpr size_t largestDatagram = 65536;
constexpr int sliceMs = 50;         // how soon a thread notices that it shall end
constexpr int framePauseMs = 10;    // between two frames, so that segments do not grow together
constexpr int renewPauseMs = 1000;  // without the missing datagrams, before the server is made to repeat
constexpr int portAttempts = 100;
constexpr uint32_t folderOffset = 0x3E00;  // filled in only when a client asks for it
constexpr uint32_t folderSize = 0x100;
constexpr int folderWaitMs = 500;

// Shared with the receive thread, under `lock`.
struct Session {
  std::mutex lock;
  std::condition_variable news;
  Picture picture;
  Echo echo;
  std::vector<WriteCheck>* checks = nullptr;  // while a write waits for its confirmation
  std::vector<RecordedFrame> frames;
  bool gone = false;          // the server has closed the connection
  Clock::time_point heardAt;  // when its last datagram came
};

NetSettings net;
std::string title;
Session session;
NetAddress server;
SocketHandle stream = noSocket;     // main thread sends, receive thread receives
SocketHandle datagrams = noSocket;  // receive thread
std::thread receiver;
std::atomic<bool> receiving;
Clock::time_point opened;
int timeoutMs;

int MillisecondsLeft(Clock::time_point deadline) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
  return static_cast<int>(std::clamp<long long>(left, 0, 3600 * 1000));
}

Clock::time_point In(int milliseconds) { return Clock::now() + std::chrono::milliseconds(milliseconds); }

uint64_t MicrosecondsSince(Clock::time_point time) {
  const auto length = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - time);
  return static_cast<uint64_t>(length.count());
}

// What stands in the picture is only for a moment what was written: every frame is looked at. The session's
// lock is held.
void UpdateChecks() {
  if (session.checks == nullptr) return;
  for (WriteCheck& check : *session.checks) {
    const Item& wanted = check.wanted;
    const uint8_t* shown = session.picture.bytes.data() + wanted.offset;
    check.shown.assign(shown, shown + wanted.size);
    const auto missing = session.echo.lower_bound(wanted.offset);
    const bool echoed = missing == session.echo.end() || missing->first >= wanted.offset + wanted.size;
    check.done = check.done || echoed || Follows(check, shown);
  }
}

void TakeDatagrams(std::vector<uint8_t>* buffer) {
  NetAddress from = {};
  int size = 0;
  while ((size = ReceiveDatagram(datagrams, buffer->data(), buffer->size(), &from)) >= 0) {
    if (from.ip != server.ip) continue;  // anybody can send to an open port
    const NetFrame frame = ReadFrame(buffer->data(), static_cast<size_t>(size));
    const std::lock_guard<std::mutex> hold(session.lock);
    ApplyFrame(frame, &session.picture);
    session.heardAt = Clock::now();
    TakeEcho(frame, &session.echo);
    UpdateChecks();
    if (net.keepsFrames && frame.kind != FrameKind::None) {
      session.frames.push_back({MicrosecondsSince(opened), {buffer->begin(), buffer->begin() + size}});
    }
    session.news.notify_all();
  }
}

void ReceiveUntilClosed() {
  std::vector<uint8_t> buffer(largestDatagram);
  SocketHandle watched = stream;
  while (receiving) {
    const unsigned ready = WaitReadable(datagrams, watched, sliceMs);
    if (ready & 1) TakeDatagrams(&buffer);
    // The server sends nothing on the connection: it can only end.
    if ((ready & 2) && ReceiveStream(watched, buffer.data(), buffer.size()) <= 0) {
      watched = noSocket;
      const std::lock_guard<std::mutex> hold(session.lock);
      session.gone = true;
      session.news.notify_all();
    }
  }
}

// Waits for a condition of the session, with its lock held in `hold`. Returns it as it is at the end, which
// also comes with Ctrl-C and when the server has gone.
template <typename Condition>
bool WaitFor(std::unique_lock<std::mutex>* hold, Clock::time_point deadline, Condition condition) {
  while (!condition() && !session.gone && !net.stopRequested() && Clock::now() < deadline) {
    session.news.wait_for(*hold, std::chrono::milliseconds(std::min(sliceMs, MillisecondsLeft(deadline) + 1)));
  }
  return condition();
}

// Every new connection makes the server send all blocks to all of its clients. When it has no place left for
// one more, the blocks that come around have to do.
void AskForBlocks() {
  SocketHandle extra = noSocket;
  std::string reason;
  if (ConnectStream(0, server, renewPauseMs / 2, &extra, &reason) == Connecting::Done) CloseSocket(extra);
}

// Like WaitFor, and has lost datagrams repeated.
template <typename Condition>
bool WaitWithRepeats(std::unique_lock<std::mutex>* hold, Clock::time_point deadline, Condition condition) {
  while (!WaitFor(hold, std::min(deadline, In(renewPauseMs)), condition)) {
    if (session.gone || net.stopRequested() || Clock::now() >= deadline) return false;
    hold->unlock();
    AskForBlocks();
    hold->lock();
  }
  return true;
}

bool Explain(const std::string& text, std::string* error) {
  *error = text;
  return false;
}

std::string Within() { return " within " + std::to_string(timeoutMs) + " ms"; }

bool ExplainGone(std::string* error) {
  return Explain("the server at " + net.host + " has closed the connection", error);
}

bool ExplainConnecting(Connecting result, const std::string& reason, std::string* error) {
  const std::string where = net.host + ", TCP port " + std::to_string(requestPort);
  switch (result) {
    case Connecting::Refused:
      return Explain("no server at " + where +
                         ": is the simulator running there with TAVRIX, is \"Server Address\" in its "
                         "TAVRIX.ini that address, and are fewer than eight clients connected?",
                     error);
    case Connecting::TimedOut:
      return Explain("no answer from " + where + Within() +
                         ": check the address, and that a firewall lets TCP port 65000 through",
                     error);
    default:
      return Explain("cannot connect to " + where + " (" + reason + ")", error);
  }
}

// The server sends datagrams to the connection's own port: that port is taken for datagrams first, so that
// none is missed.
bool ConnectBoth(std::string* error) {
  const Clock::time_point deadline = In(timeoutMs);
  std::string reason;
  for (int attempt = 0; attempt < portAttempts; ++attempt) {
    uint16_t port = 0;
    datagrams = OpenDatagramSocket(&port);
    if (datagrams == noSocket) return Explain("the system gives no datagram socket", error);
    const Connecting result = ConnectStream(port, server, MillisecondsLeft(deadline), &stream, &reason);
    if (result == Connecting::Done) return true;
    CloseSocket(datagrams);
    datagrams = noSocket;
    if (result != Connecting::PortTaken) return ExplainConnecting(result, reason, error);
  }
  return Explain("no port is free for datagrams and a connection at once", error);
}

bool OpenNet(int milliseconds, std::string* error) {
  timeoutMs = milliseconds;
  opened = Clock::now();
  if (!StartSockets(error)) return false;
  server.port = requestPort;
  if (!ResolveHost(net.host, timeoutMs, &server.ip, error) || !ConnectBoth(error)) {
    StopSockets();
    return false;
  }
  session.picture = {};
  session.echo.clear();
  session.frames.clear();
  session.gone = false;
  session.heardAt = opened;
  receiving = true;
  receiver = std::thread(ReceiveUntilClosed);
  return true;
}

void CloseNet() {
  if (!receiver.joinable()) return;
  receiving = false;
  receiver.join();
  CloseSocket(stream);
  CloseSocket(datagrams);
  stream = datagrams = noSocket;
  StopSockets();
}

// The whole picture. Returns true, or false with a line in `error`.
bool WaitForPicture(std::unique_lock<std::mutex>* hold, Clock::time_point deadline, std::string* error) {
  if (WaitWithRepeats(hold, deadline, [] { return IsComplete(session.picture); })) return true;
  if (session.gone) return ExplainGone(error);
  return Explain("connected to " + net.host + ", but " + std::to_string(ArrivedBlocks(session.picture)) +
                     " of " + std::to_string(pictureBlocks) + " blocks have come" + Within() +
                     ": does a firewall keep UDP datagrams from the server's port 65100 away?",
                 error);
}

bool SendFrames(bool writing, const std::vector<Transfer>& transfers, std::string* error) {
  bool first = true;
  for (const std::vector<uint8_t>& frame : BuildRequestFrames(writing, transfers)) {
    if (!first) std::this_thread::sleep_for(std::chrono::milliseconds(framePauseMs));
    first = false;
    if (!SendStream(stream, frame.data(), frame.size(), timeoutMs)) return ExplainGone(error);
  }
  return true;
}

// The simulator's folder is put into the memory, in the form for other computers, when a client reads it.
bool AskForFolder(const std::vector<Transfer>& transfers, std::string* error) {
  const auto touches = [](const Transfer& transfer) {
    return transfer.offset < folderOffset + folderSize && transfer.offset + transfer.size > folderOffset;
  };
  if (std::none_of(transfers.begin(), transfers.end(), touches)) return true;
  uint8_t unused[folderSize];
  return SendFrames(false, {{folderOffset, folderSize, unused}}, error);
}

bool ReadNet(const std::vector<Transfer>& transfers, std::string* error) {
  const Clock::time_point deadline = In(timeoutMs);
  std::unique_lock<std::mutex> hold(session.lock);
  if (session.gone) return ExplainGone(error);
  if (!IsComplete(session.picture)) {
    const auto folder = [] { return session.picture.bytes[folderOffset] != 0; };
    hold.unlock();
    if (!AskForFolder(transfers, error)) return false;
    hold.lock();
    if (!WaitForPicture(&hold, deadline, error)) return false;
    const auto inFolder = [](const Transfer& transfer) { return transfer.offset == folderOffset; };
    if (std::any_of(transfers.begin(), transfers.end(), inFolder)) {
      WaitFor(&hold, std::min(deadline, In(folderWaitMs)), folder);
    }
  }
  for (const Transfer& transfer : transfers) {
    std::memcpy(transfer.bytes, session.picture.bytes.data() + transfer.offset, transfer.size);
  }
  return true;
}

// The server closes its side after it has taken everything, which shows that it got that far.
bool WaitUntilTaken(std::string* error) {
  FinishSending(stream);
  std::unique_lock<std::mutex> hold(session.lock);
  if (WaitFor(&hold, In(timeoutMs), [] { return session.gone; })) return true;
  return Explain("the server at " + net.host + " does not take the write" + Within(), error);
}

bool AllDone(const std::vector<WriteCheck>& checks) {
  return std::all_of(checks.begin(), checks.end(),
                     [](const WriteCheck& check) { return check.done || IsRequest(check); });
}

uint16_t ShownActivity() { return LoadFrom<uint16_t>(session.picture.bytes.data() + activityOffset); }

// Whether the checks are done and stay so when every refresh has come around. With the lock of the session held
// in `hold`; `error` is filled when frames do not run.
bool WaitForChecks(std::unique_lock<std::mutex>* hold, Clock::time_point deadline,
                   const std::vector<WriteCheck>& checks, std::string* error) {
  if (!WaitWithRepeats(hold, deadline, [&checks] { return AllDone(checks); })) return false;
  const auto now = [] { return static_cast<double>(MicrosecondsSince(opened)) / 1e6; };
  const double patience = timeoutMs / 1000.0;
  Settling settling = BeginSettling(checks, ShownActivity(), now());
  bool settled = false;
  // Lost datagrams need no repeating: the counter is told with every frame.
  while (!settled && !session.gone && !net.stopRequested()) {
    if (SecondsWithoutFrames(settling, now()) > patience) return Explain(StandstillText(patience), error);
    settled = WaitFor(hold, In(sliceMs), [&] { return Settle(&settling, ShownActivity(), now()); });
  }
  // It may still come, as a lever does that takes its time.
  return settled && WaitWithRepeats(hold, deadline, [&checks] { return FindFailed(checks) == nullptr; });
}

bool ExplainNotFollowed(const std::vector<WriteCheck>& checks, std::string* error) {
  const WriteCheck* check = FindFailed(checks);
  const std::string what = check == nullptr ? "" : ": " + ShownText(*check, check->shown.data());
  return Explain("sent, but the simulator does not follow" + Within() + what, error);
}

bool WriteConfirmed(const std::vector<Transfer>& transfers, std::vector<WriteCheck>* checks,
                    std::string* error) {
  const Clock::time_point deadline = In(timeoutMs);
  std::unique_lock<std::mutex> hold(session.lock);
  if (!WaitForPicture(&hold, deadline, error)) return false;
  session.echo = ExpectEcho(transfers, session.picture);
  session.checks = checks;
  UpdateChecks();
  hold.unlock();
  const bool sent = SendFrames(true, transfers, error);
  hold.lock();
  std::string standstill;
  const bool followed = sent && WaitForChecks(&hold, deadline, *checks, &standstill);
  session.checks = nullptr;
  if (!sent) return false;
  if (!followed && session.gone) return ExplainGone(error);
  const bool isUnknown = !standstill.empty() && FindFailed(*checks) == nullptr;
  if (!followed) return !isUnknown ? ExplainNotFollowed(*checks, error) : Explain(standstill, error);
  hold.unlock();
  return WaitUntilTaken(error);
}

bool WriteNet(const std::vector<Transfer>& transfers, std::string* error) {
  return SendFrames(true, transfers, error) && WaitUntilTaken(error);
}

double SilenceOfNet() {
  const std::lock_guard<std::mutex> hold(session.lock);
  return static_cast<double>(MicrosecondsSince(session.heardAt)) / 1e6;
}

Transport netTransport = {"", OpenNet, ReadNet, WriteNet, WriteConfirmed, SilenceOfNet, CloseNet};

}  // namespace

const Transport* NetTransport(const NetSettings& settings) {
  net = settings;
  title = "network, " + settings.host;
  netTransport.title = title.c_str();
  return &netTransport;
}

bool TakeFrames(int milliseconds, std::vector<RecordedFrame>* frames, std::string* error) {
  std::unique_lock<std::mutex> hold(session.lock);
  WaitFor(&hold, In(milliseconds), [] { return !session.frames.empty(); });
  frames->clear();
  frames->swap(session.frames);
  return !session.gone || ExplainGone(error);
}

bool SendWrites(const std::vector<Transfer>& transfers, std::string* error) {
  return SendFrames(true, transfers, error);
}

std::vector<std::string> FindServers(int settleMs, int timeout, bool (*stopRequested)(), std::string* error) {
  std::vector<std::string> found;
  if (!StartSockets(error)) return found;
  const SocketHandle socket = OpenGroupSocket(announceGroup, error);
  if (socket == noSocket) {
    StopSockets();
    return found;
  }
  const Clock::time_point deadline = In(timeout);
  Clock::time_point settled = deadline;
  while (Clock::now() < std::min(deadline, settled) && !stopRequested()) {
    if (!WaitReadable(socket, noSocket, std::min(sliceMs, MillisecondsLeft(deadline)))) continue;
    uint8_t datagram[frameOverhead + 1];  // a longer one is no announcement
    NetAddress from = {};
    const int size = ReceiveDatagram(socket, datagram, sizeof datagram, &from);
    if (size < 0 || ReadFrame(datagram, static_cast<size_t>(size)).kind != FrameKind::Announce) continue;
    const std::string address = IpText(from.ip);
    if (std::find(found.begin(), found.end(), address) != found.end()) continue;
    found.push_back(address);
    settled = In(settleMs);
  }
  if (found.empty()) {
    *error = "no server announces itself within " + std::to_string(timeout) +
             " ms: they are not heard beyond routers; use --net with the server's address";
  }
  CloseSocket(socket);
  StopSockets();
  return found;
}

}  // namespace ctl
