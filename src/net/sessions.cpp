// Sessions: the receive threads of connected clients and what they serve.
#include <atomic>
#include <cstring>

#include "net/frame.h"
#include "net/server.h"
#include "offsets/memory.h"
#include "platform/clock.h"
#include "shell/log.h"

namespace {

constexpr size_t receiveSize = 65535;
constexpr int closedPauseMs = 10;

// One for each slot of the client table. The thread owns the socket from its start to its end; the accept
// thread fills the record before and joins the thread after.
struct Session {
  Thread thread;
  SocketWaker waker;
  Socket socket;
  uint16_t number;
  uint8_t buffer[receiveSize];
  RequestScratch scratch;
};
Session sessions[maxClients];

std::atomic<uint32_t>
    subscriptions[offsetMemorySize];  // kept for clients that send them; bursts carry everything

uint32_t FetchWord16(const uint8_t* from) {
  uint16_t word;
  std::memcpy(&word, from, sizeof word);
  return word;
}

void MarkOffsets(const ReceivedFrame& frame) {
  if (frame.auxiliary != subscribeMode && frame.auxiliary != unsubscribeMode) return;
  const uint32_t mark = frame.auxiliary == subscribeMode ? 1 : 0;
  for (uint32_t i = 0; i < frame.length / 2U; ++i) {
    subscriptions[FetchWord16(frame.payload + i * 2)].store(mark, std::memory_order_relaxed);
  }
}

uint32_t SessionProcedure(void* argument) {
  auto* session = static_cast<Session*>(argument);
  LogNetwork("SocketI->Client No: = %02u\n", session->number);
  int received = 1;
  while (clientThreadsRunning.load() != 0 && received > 0) {
    received = ReceiveSocket(&session->socket, &session->waker, -1, session->buffer, receiveSize);
    if (received > 0) ServeFrames(session->buffer, static_cast<size_t>(received), &session->scratch);
  }
  LockScope lock(&clientListLock);
  RemoveClient(session->number);
  ShutdownReceive(&session->socket);
  CloseSocket(&session->socket);
  SleepMilliseconds(closedPauseMs);
  PublishClientCount();
  return 0;
}

void JoinSession(Session* session) {
  JoinThread(&session->thread);
  CloseWaker(&session->waker);
  CloseSocket(&session->socket);
}

}  // namespace

int StartSession(uint32_t slot, Socket* connection) {
  Session& session = sessions[slot];
  // The slot's previous thread freed the slot as the last thing it needed the lock for.
  JoinSession(&session);
  session.socket = *connection;
  *connection = {};
  session.number = clientSlots[slot].number;
  if (CreateWaker(&session.waker) && StartThread(&session.thread, SessionProcedure, &session)) return 1;
  CloseSocket(&session.socket);
  CloseWaker(&session.waker);
  return 0;
}

void EndSessions() {
  {
    LockScope lock(&clientListLock);
    for (uint32_t i = 0; i < maxClients; ++i) {
      if (clientSlots[i].inUse == 0) continue;
      clientSlots[i].inUse = 0;
      WakeSocket(&sessions[i].waker);
      SleepMilliseconds(closedPauseMs);
    }
    ClearClients();
    PublishClientCount();
  }
  for (Session& session : sessions) JoinSession(&session);
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

int IsSubscribed(uint32_t offset) {
  return static_cast<int>(subscriptions[offset].load(std::memory_order_relaxed));
}
