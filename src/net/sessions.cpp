// Sessions: the receive threads of connected clients and what they serve.
#include <algorithm>
#include <atomic>
#include <cstring>

#include "base/bytes.h"
#include "base/log.h"
#include "net/frame.h"
#include "net/permissions.h"
#include "net/server.h"
#include "offsets/memory.h"
#include "platform/clock.h"

namespace {

constexpr size_t receiveSize = 65535;
constexpr int closedPauseMs = 10;
constexpr int splitFrameMs = 50;
constexpr int patientMs = 500;
constexpr int longPauseMs = 1000;
constexpr size_t streamingBytes = 32768;
constexpr size_t segmentBytes = 1400;

// One for each slot of the client table. The thread owns the socket from its start to its end; the accept
// thread fills the record before and joins the thread after.
struct Session {
  Thread thread;
  SocketWaker waker;
  Socket socket;
  uint16_t number;
  uint32_t peerIp;
  uint8_t buffer[receiveSize];
  RequestScratch scratch;
};
Session sessions[maxClients];

std::atomic<uint32_t>
    subscriptions[offsetMemorySize];  // kept for clients that send them; bursts carry everything

void MarkOffsets(const ReceivedFrame& frame) {
  if (frame.auxiliary != subscribeMode && frame.auxiliary != unsubscribeMode) return;
  const uint32_t mark = frame.auxiliary == subscribeMode ? 1 : 0;
  for (uint32_t i = 0; i < frame.length / 2U; ++i) {
    subscriptions[LoadFrom<uint16_t>(frame.payload + i * 2)].store(mark, std::memory_order_relaxed);
  }
}

// How long the rest of a frame may take. A client that sends a lot without a pause may be held up for a while
// by a busy computer, its own or ours, and a frame of several segments by the way that each of them takes:
// neither must lose a frame by that.
struct Stream {
  int64_t lastReceive;  // monotonic, ms
  size_t bytes;         // so many have come without a long pause
};

int PatienceOf(const Stream& stream, size_t kept) {
  return stream.bytes >= streamingBytes || kept >= segmentBytes ? patientMs : splitFrameMs;
}

void Note(Stream* stream, size_t received) {
  const int64_t now = MonotonicNanoseconds() / 1000000;
  if (now - stream->lastReceive > longPauseMs) stream->bytes = 0;
  stream->bytes += received;
  stream->lastReceive = now;
}

// Serves what comes until the client leaves or the server stops. Where one receive ends says nothing about the
// client's frames when it sends faster than we receive: the beginning of a frame is kept until its end has
// come. When nothing more comes for a while, the client has sent it in pieces, and it is taken as it is.
void ServeClient(Session* session) {
  Stream stream = {};
  size_t kept = 0;
  while (clientThreadsRunning.load() != 0) {
    const int received =
        ReceiveSocket(&session->socket, &session->waker, kept == 0 ? -1 : PatienceOf(stream, kept),
                      session->buffer + kept, receiveSize - kept);
    if (received <= 0 && received != receiveTimedOut) return;
    size_t whole = kept;
    if (received > 0) {
      Note(&stream, static_cast<size_t>(received));
      kept += static_cast<size_t>(received);
      whole = ServableSize(session->buffer, kept, receiveSize);
    }
    session->scratch.refusedWrites = 0;
    ServeFrames(session->buffer, whole, &session->scratch);
    if (session->scratch.refusedWrites != 0) LogRefusal(Refusal::Write, session->peerIp);
    kept -= whole;
    std::memmove(session->buffer, session->buffer + whole, kept);
  }
}

uint32_t SessionProcedure(void* argument) {
  auto* session = static_cast<Session*>(argument);
  if (MayTellClients()) LogNetwork("SocketI->Client No: = %02u\n", session->number);
  ServeClient(session);
  {
    LockScope lock(&clientListLock);
    RemoveClient(static_cast<uint32_t>(session - sessions));
  }
  // The slot may be given to the next client from here on, once this thread was joined.
  ShutdownReceive(&session->socket);
  CloseSocket(&session->socket);
  SleepMilliseconds(closedPauseMs);
  LockScope lock(&clientListLock);
  PublishClientCount();
  return 0;
}

}  // namespace

void JoinSession(uint32_t slot) {
  Session& session = sessions[slot];
  JoinThread(&session.thread);
  CloseWaker(&session.waker);
  CloseSocket(&session.socket);
}

SessionStart StartSession(uint32_t slot, Socket* connection) {
  Session& session = sessions[slot];
  session.socket = *connection;
  *connection = {};
  {
    LockScope lock(&clientListLock);
    session.number = clientSlots[slot].number;
    session.peerIp = clientSlots[slot].peer.ip;
  }
  session.scratch.refusesWrites = !AreNetworkWritesAllowed();
  SessionStart result = SessionStart::NoHandle;
  if (CreateWaker(&session.waker)) {
    if (StartThread(&session.thread, SessionProcedure, &session)) return SessionStart::Done;
    result = SessionStart::NoThread;
  }
  CloseSocket(&session.socket);
  CloseWaker(&session.waker);
  return result;
}

void EndSessions() {
  bool connected[maxClients];
  {
    LockScope lock(&clientListLock);
    for (uint32_t i = 0; i < maxClients; ++i) connected[i] = clientSlots[i].inUse;
    ClearClients();
    PublishClientCount();
  }
  for (uint32_t i = 0; i < maxClients; ++i) {
    if (!connected[i]) continue;
    WakeSocket(&sessions[i].waker);
    SleepMilliseconds(closedPauseMs);
  }
  for (uint32_t i = 0; i < maxClients; ++i) JoinSession(i);
}

void ServeFrames(uint8_t* buffer, size_t size, RequestScratch* scratch) {
  size_t at = 0;
  while (at < size) {
    ReceivedFrame frame;
    if (!ParseFrame(buffer, size, at, &frame)) return;
    size_t consumed = frame.length;
    if (frame.type == frameRequestList) {
      // The list's own end counts, not the payload's.
      if (!ServeRecords(frame.payload, frame.length, PathSource::Network, CountRequest(), scratch, &consumed))
        return;
    } else {
      MarkOffsets(frame);
    }
    at += consumed + frameOverhead;
  }
}

void ClearSubscriptions() {
  for (std::atomic<uint32_t>& mark : subscriptions) mark.store(0, std::memory_order_relaxed);
}

bool IsSubscribed(uint32_t offset) { return subscriptions[offset].load(std::memory_order_relaxed) != 0; }
