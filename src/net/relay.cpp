#include "net/relay.h"

#include <cstdio>
#include <cstring>
#include <string>

#include "XPLMDataAccess.h"
#include "base/bytes.h"
#include "base/locks.h"
#include "bridge/dataref_codec.h"
#include "net/address.h"
#include "net/frame.h"
#include "net/permissions.h"
#include "net/server.h"
#include "platform/clock.h"
#include "platform/system.h"

char relayReasonText[160];

namespace {

constexpr size_t receiveSize = 65535;
constexpr int failurePauseMs = 100;
constexpr int stopPauseMs = 200;

Thread relayThread;
std::atomic<uint32_t> relayRunning;
SocketWaker relayWaker;
Socket relaySocket;             // the simulator's thread; in client mode the relay thread's while that one runs
SocketAddress destination;      // ip 0: nobody to send to
uint8_t datagram[receiveSize];  // relay thread

// What takes a value, by the exact types that the simulator reports: no other combination does.
Accessor RelayAccessor(XPLMDataTypeID types) {
  switch (types) {
    case xplmType_Int:
      return Accessor::Int;
    case xplmType_Float:
      return Accessor::Float;
    case xplmType_Double:
    case xplmType_Float | xplmType_Double:
      return Accessor::Double;
    case xplmType_FloatArray:
      return Accessor::FloatArray;
    case xplmType_IntArray:
      return Accessor::IntArray;
    default:
      return Accessor::None;
  }
}

// The record's number for such a dataref; a double holds each of them exactly.
double RelayNumber(const uint8_t* record, Accessor accessor) {
  switch (accessor) {
    case Accessor::Int:
    case Accessor::IntArray:
      return LoadFrom<int32_t>(record + relayIntAt);
    case Accessor::Float:
    case Accessor::FloatArray:
      return static_cast<double>(LoadFrom<float>(record + relayFloatAt));
    default:
      return LoadFrom<double>(record + relayDoubleAt);
  }
}

void SetDataRef(const uint8_t* record) {
  const auto* text = reinterpret_cast<const char*>(record);
  const std::string name(text, strnlen(text, relayNameSize));
  XPLMDataRef ref = name.empty() ? nullptr : XPLMFindDataRef(name.c_str());
  if (ref == nullptr) return;
  const Accessor accessor = RelayAccessor(XPLMGetDataRefTypes(ref));
  WriteNumber(ref, accessor, record[relayIndexAt], RelayNumber(record, accessor));
}

void SendRelay(const uint8_t* record) {
  if (relaySocket.handle == -1 || destination.ip == 0) return;
  uint8_t frame[relayFrameSize];
  BuildRelayFrame(record, frame);
  SendDatagram(&relaySocket, frame, sizeof frame, destination);
}

void Receive() {
  SocketAddress from = {};
  const int size = ReceiveBroadcast(&relaySocket, {.waker = &relayWaker,
                                                   .timeoutMs = -1,
                                                   .address = serverIp,
                                                   .buffer = datagram,
                                                   .size = sizeof datagram,
                                                   .from = &from});
  if (size < 0) {
    WaitWaker(&relayWaker, failurePauseMs);  // nothing to receive for now: no spinning
    return;
  }
  uint8_t record[relayRecordSize];
  if (!ParseRelayFrame(datagram, static_cast<size_t>(size), record)) return;
  if (!IsClientAllowed(from.ip)) return LogRefusal(Refusal::Client, from.ip);
  if (!AreNetworkWritesAllowed()) return LogRefusal(Refusal::Write, from.ip);
  record[relayForwardAt] = 0;  // or two instances would pass it to and fro for ever
  const ServerLockScope lock;
  std::memcpy(relayRecordStore.bytes, record, relayRecordSize);
  relayRecordStore.waiting = 1;
}

uint32_t RelayProcedure(void*) {
  if (relaySocket.handle == -1) WaitWaker(&relayWaker, -1);
  while (relayRunning.load() != 0) Receive();
  return 0;
}

bool OpenSender() {
  if (serverIp == 0 || !OpenSocket(&relaySocket, Transport::Datagram)) return false;
  if (!AllowBroadcast(&relaySocket)) return false;
  destination = {BroadcastAddress(serverIp), relayPort};
  return true;
}

bool OpenReceiver() { return serverIp != 0 && OpenBroadcastReceiver(&relaySocket, {serverIp, relayPort}); }

}  // namespace

bool OpenRelay(RelayRole role) {
  destination = {};
  relayReasonText[0] = '\0';
  if (role == RelayRole::Sender ? OpenSender() : OpenReceiver()) {
    LogLine("TAVRIX->UDP Broadcast server init OK\n");
    return true;
  }
  const int error = SocketErrorNumber();
  CloseSocket(&relaySocket);
  LogLine("TAVRIX->UDP Broadcast server init FAILED\n");
  LogOwn("%s\n", AdviseOnFailure("UDP", relayPort, error).c_str());
  std::snprintf(relayReasonText, sizeof relayReasonText, "%s", ShortReason("UDP", relayPort, error).c_str());
  return false;
}

void CloseRelay() { CloseSocket(&relaySocket); }

bool StartRelayThread() {
  relayRunning = 1;
  if (CreateWaker(&relayWaker) && StartThread(&relayThread, RelayProcedure, nullptr)) return true;
  relayRunning = 0;
  CloseWaker(&relayWaker);
  std::snprintf(relayReasonText, sizeof relayReasonText, "the system gives no thread to receive with");
  LogOwn(
      "TAVRIX->The system gives no thread or event, nothing comes from the other simulator: %s, and reload the "
      "plug-in\n",
      shortageRemedy);
  return false;
}

void StopRelayThread() {
  relayRunning = 0;
  WakeSocket(&relayWaker);
  SleepMilliseconds(stopPauseMs);
  JoinThread(&relayThread);
  CloseWaker(&relayWaker);
}

void ApplyRelayRecord() {
  if (relayRecordStore.waiting.load(std::memory_order_relaxed) == 0) return;
  uint8_t record[relayRecordSize];
  {
    LockScope lock(&offsetLock);
    if (relayRecordStore.waiting.exchange(0) == 0) return;
    std::memcpy(record, relayRecordStore.bytes, relayRecordSize);
  }
  SetDataRef(record);
  if (record[relayForwardAt] != 0) SendRelay(record);
}

void BuildRelayFrame(const uint8_t* record, uint8_t* frame) {
  std::memcpy(frame + frameHeaderSize, record, relayRecordSize);
  FinishFrame(frame, frameRelay, relayRecordSize, endRelay);
}

bool ParseRelayFrame(const uint8_t* received, size_t size, uint8_t* record) {
  constexpr size_t copyAt = frameHeaderSize + relayRecordSize;
  std::memset(record, 0, relayRecordSize);
  if (size < copyAt + sizeof(uint16_t)) return false;
  if (LoadFrom<uint16_t>(received + 2) != relayRecordSize ||
      LoadFrom<uint16_t>(received + copyAt) != relayRecordSize)
    return false;
  std::memcpy(record, received + frameHeaderSize, relayRecordSize);
  return true;
}
