// Life of the network server and its accept thread.
#include "net/server.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

#include "base/log.h"
#include "base/log_format.h"
#include "base/log_quiet.h"
#include "net/address.h"
#include "net/change_scan.h"
#include "net/net.h"
#include "net/permissions.h"
#include "offsets/memory.h"
#include "platform/clock.h"
#include "platform/system.h"

char networkStatusText[32];
char networkReasonText[160];
char networkAlertText[200];
uint32_t serverIp;
char serverAddressText[20];
std::atomic<uint32_t> serverRunning;
std::atomic<uint32_t> clientThreadsRunning;
std::atomic<uint32_t> burstRunning;
std::atomic<uint32_t> newClient;

namespace {

constexpr int backlog = 6;
constexpr int fullPauseMs = 500;
constexpr int acceptedPauseMs = 50;
constexpr int noResourcesPauseMs = 500;
constexpr int stopPauseMs = 100;
constexpr uint32_t connectedOffset = 0x3520;  // tells that a client has connected
constexpr uint16_t connectedMark = 0x8123;

Thread serverThread;
SocketWaker serverWaker;
std::atomic<bool> shortOfResources;
QuietMinute clientLines = {.what = "TAVFARNET->Clients came and went", .most = 120, .began = 0, .turns = 0};
// At the edge every other client finds a handle.
QuietMinute shortageLines = {.what = "TAVFARNET->Handles or memory ran out", .most = 3, .began = 0, .turns = 0};
Socket listener;  // the simulator's thread until the accept thread runs, then that one's

enum class Listening { First, Again };

// How far the listener has come.
enum class Listener { NoSocket, NotBound, NotListening, Listening };

// Opens, binds and listens. Always a new socket: one that was closed cannot be bound again. In case of failure
// it is closed and the system's error in `error`.
Listener TryListener(Listening turn, int* error) {
  *error = 0;
  if (!OpenSocket(&listener, Transport::Stream)) {
    *error = SocketErrorNumber();
    return Listener::NoSocket;
  }
  if (turn == Listening::First) {
    LogLine("TAVFARNET->Receive Socket creation %08X OK\n", static_cast<unsigned>(listener.handle));
  }
  Listener state = Listener::Listening;
  if (serverIp == 0 || !BindSocket(&listener, {serverIp, requestPort}, PortClaim::Renewable)) {
    state = Listener::NotBound;
  } else if (!ListenSocket(&listener, backlog)) {
    state = Listener::NotListening;
  }
  if (state == Listener::Listening) return state;
  *error = serverIp == 0 ? 0 : SocketErrorNumber();
  CloseSocket(&listener);
  return state;
}

void LogListener(Listener state) {
  if (state == Listener::NoSocket || state == Listener::NotBound) {
    LogLine("TAVFARNET->Bind failed\n");
    return;
  }
  LogLine("TAVFARNET->Bind OK\n");
  if (state == Listener::NotListening) {
    LogLine("TAVFARNET->Listen rec failed\n");
    return;
  }
  LogLine("TAVFARNET->Listen OK\n");
  LogLine("TAVFARNET->Socket Thread Init OK\n");
}

// The process has run out of handles or threads, perhaps only for now: a line when it begins, none while it
// lasts. What was tried is tried again with the client's next attempt, but not at once.
void WaitForResources() {
  if (!shortOfResources.exchange(true) && TakeLogTurn(&shortageLines)) {
    LogOwn(
        "TAVFARNET->The system has no handles or memory left for another client: %s; new clients are "
        "accepted as soon as there are some\n",
        shortageRemedy);
  }
  WaitWaker(&serverWaker, noResourcesPauseMs);
}

// The table is full: nobody can connect until a client has left. Then the port may be taken, or no handle be
// left, for a while: it is tried again and told once.
void WaitForFreeSlot(uint32_t count) {
  const bool tells = MayTellClients();
  if (tells) {
    LogLine("%07.3f TAVFARNET->Maximum of clients reached %u\n", static_cast<double>(PublishedRunningTime()),
            count);
  }
  CloseSocket(&listener);
  while (serverRunning.load() != 0 && ConnectedClients() >= maxClients) WaitWaker(&serverWaker, fullPauseMs);
  if (serverRunning.load() == 0) return;
  int error = 0;
  Listener state = TryListener(Listening::Again, &error);
  if (tells || state != Listener::Listening) LogListener(state);
  if (state != Listener::Listening) {
    LogOwn("%s; TAVFARNET tries again until it can\n", AdviseOnFailure("TCP", requestPort, error).c_str());
    while (state != Listener::Listening) {
      WaitWaker(&serverWaker, fullPauseMs);
      if (serverRunning.load() == 0) return;
      state = TryListener(Listening::Again, &error);
    }
    LogListener(state);
  }
  if (tells) LogLine("%07.3f TAVFARNET->Release OK\n", static_cast<double>(PublishedRunningTime()));
}

// Sets the mark of the burst thread when it is time to start one. The client list lock is held.
bool TakeBurstMark() {
  if (burstRunning.load() != 0) return false;
  burstRunning = 1;
  return true;
}

// Gives the peer a slot. Only this thread gives slots away, so that one that is found free stays free while the
// thread of its previous client, which has nothing left to do, is joined without the lock. Returns the slot, or
// -1 when the table is full; `startsBursts` tells whether a burst thread is due.
int TakeSlot(const SocketAddress& peer, uint32_t* count, bool* startsBursts) {
  int slot = -1;
  {
    LockScope lock(&clientListLock);
    slot = FindFreeSlot();
    if (slot < 0) {
      PublishClientCount();
      return -1;
    }
  }
  JoinSession(static_cast<uint32_t>(slot));
  for (;;) {
    {
      LockScope lock(&clientListLock);
      // A burst thread that finds nobody clears its mark under this lock and ends: it is joined before another
      // one.
      if (burstRunning.load() != 0 || !BurstsNeedJoin()) {
        *startsBursts = TakeBurstMark();
        newClient = 1;
        AddClient(static_cast<uint32_t>(slot), peer);
        PublishClientCount();
        *count = CountClients();
        return slot;
      }
    }
    JoinBursts();
  }
}

void GiveUpSlot(int slot) {
  LockScope lock(&clientListLock);
  RemoveClient(static_cast<uint32_t>(slot));
  PublishClientCount();
}

// A connection becomes a client, or is closed when the system has no thread or handle for it. Nothing here
// waits with the client list lock held: bursts and other clients go on meanwhile.
void AdmitClient(Socket* connection, const SocketAddress& peer) {
  uint32_t count = 0;
  bool startsBursts = false;
  const int slot = TakeSlot(peer, &count, &startsBursts);
  if (slot < 0) {
    CloseSocket(connection);
    return;
  }
  if (startsBursts && !StartBursts()) {  // without bursts a client would wait for ever
    CloseSocket(connection);
    GiveUpSlot(slot);
    if (!shortOfResources && MayTellClients()) LogNetwork("TAVFARNET->Creating burst thread failed\n");
    return WaitForResources();
  }
  const bool tells = MayTellClients();
  if (startsBursts && tells) LogNetwork("TAVFARNET->Client Creating burst thread OK\n");
  const SessionStart session = StartSession(static_cast<uint32_t>(slot), connection);
  if (session != SessionStart::Done) {
    GiveUpSlot(slot);
    if (session == SessionStart::NoThread && !shortOfResources && MayTellClients()) {
      LogNetwork("TAVFARNET->Creating thread no. %i failed\n", static_cast<int>(count));
    }
    return WaitForResources();
  }
  shortOfResources = false;
  if (tells) {
    LogNetwork("TAVFARNET->Client Creating thread No. %u to client %s OK\n", count,
               AddressText(peer.ip).c_str());
  }
  {
    const ServerLockScope lock;
    Store<uint16_t>(connectedOffset, connectedMark);
  }
  WaitWaker(&serverWaker, acceptedPauseMs);
}

// Accepts clients until the server stops.
void AcceptClients() {
  bool announced = false;  // the line about waiting stands: connections that are refused do not repeat it
  while (serverRunning.load() != 0) {
    const uint32_t count = ConnectedClients();
    if (count >= maxClients) {
      announced = false;
      WaitForFreeSlot(count);
      continue;
    }
    if (!announced && MayTellClients()) {
      LogNetwork("TAVFARNET->Waiting for clients.....%i\n", static_cast<int>(count));
    }
    announced = true;
    Socket connection;
    SocketAddress peer;
    const int accepted = AcceptSocket(&listener, &serverWaker, &connection, &peer);
    if (accepted == acceptNoResources) {
      WaitForResources();
      continue;
    }
    if (accepted <= 0) {
      const int error = SocketErrorNumber();
      LogNetwork("TAVFARNET->Client accept failed\n");
      if (accepted < 0) {
        LogOwn("TAVFARNET->The server has ended and no client can connect (%s): reload the plug-in\n",
               SocketErrorText(error).c_str());
      }
      serverRunning = 0;
      break;
    }
    if (!IsClientAllowed(peer.ip)) {
      CloseSocket(&connection);
      LogRefusal(Refusal::Client, peer.ip);
      continue;
    }
    SetKeepAlive(&connection);
    announced = false;
    AdmitClient(&connection, peer);
  }
}

void ShutDownServer() {
  clientThreadsRunning = 0;
  burstRunning = 0;
  const uint32_t count = ConnectedClients();
  if (count > 0) LogNetwork("TAVFARNET->Closing Client threads count = %u\n", count);
  EndSessions();
  StopAnnouncement();
  CloseSocket(&listener);
  LogNetwork("TAVFARNET->Closed Socket serve thread!\n");
}

uint32_t ServerProcedure(void*) {
  if (!StartAnnouncement()) {
    LogOwn(
        "TAVFARNET->The system gives no thread or event to announce the server with, clients have to be told "
        "its "
        "address: %s, and reload the plug-in\n",
        shortageRemedy);
  }
  AcceptClients();
  ShutDownServer();
  return 0;
}

// The first failure counts for the alert window: the second is its consequence, as a rule.
void SetFailure(const char* transport, uint16_t port, int error) {
  LogOwn("%s\n", AdviseOnFailure(transport, port, error).c_str());
  std::snprintf(networkStatusText, sizeof networkStatusText, " FAILED ! Wrong IP address");
  if (networkAlertText[0] != '\0') return;
  std::snprintf(networkReasonText, sizeof networkReasonText, "%s", ShortReason(transport, port, error).c_str());
  if (serverIp != 0 && ClassifySocketError(error) == SocketFault::PortTaken) {
    std::snprintf(networkAlertText, sizeof networkAlertText,
                  "TAVFARNET FAILED ! %s port %u of %s is taken: close the other program, reload the plug-in",
                  transport, port, serverAddressText);
  } else {
    std::snprintf(
        networkAlertText, sizeof networkAlertText,
        "TAVFARNET FAILED ! Wrong IP address %s: change Server Address in TAVRIX.ini, reload the plug-in",
        serverAddressText);
  }
}

}  // namespace

void LogNetwork(const char* format, ...) {
  char text[200];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  char stamp[timeStampSize];
  LogLine("%s %s", TimeStamp(stamp), text);
}

bool MayTellClients() { return TakeLogTurn(&clientLines); }

std::string AdviseOnFailure(const char* transport, uint16_t port, int error) {
  const std::string tried = std::string("TAVFARNET->Tried address ") + serverAddressText + ", " + transport +
                            " port " + std::to_string(port) + ": ";
  constexpr char setting[] = "set \"Server Address\" in section [TAVRIX SETTINGS] of TAVRIX.ini to ";
  if (serverIp == 0) {
    return tried + "not an address like 192.168.0.1; " + setting +
           "this computer's address and reload the plug-in";
  }
  switch (ClassifySocketError(error)) {
    case SocketFault::AddressNotHere:
      return tried + "this computer does not have it; " + setting +
             "an address of this computer and reload the plug-in";
    case SocketFault::PortTaken:
      return tried + "the port is taken; close the other program that uses it and reload the plug-in";
    case SocketFault::NoResources:
      return tried + SocketErrorText(error) + "; " + shortageRemedy;
    default:
      return tried + SocketErrorText(error) + "; check \"Server Address\" in TAVRIX.ini and the network";
  }
}

std::string ShortReason(const char* transport, uint16_t port, int error) {
  const std::string name = std::string(transport) + " port " + std::to_string(port);
  if (serverIp == 0) return '"' + std::string(serverAddressText) + "\" is no address: change Server Address";
  switch (ClassifySocketError(error)) {
    case SocketFault::AddressNotHere:
      return std::string("this computer has no address ") + serverAddressText + ": change Server Address";
    case SocketFault::PortTaken:
      return name + " is taken: close the other program, reload the plug-in";
    default:
      return name + ": " + SocketErrorText(error);
  }
}

void PrepareNetwork(const char* serverAddress) {
  std::snprintf(serverAddressText, sizeof serverAddressText, "%s", serverAddress);
  if (!ParseAddress(serverAddressText, &serverIp)) serverIp = 0;
  networkStatusText[0] = '\0';
  networkReasonText[0] = '\0';
  networkAlertText[0] = '\0';
  ClearShadow();
  ClearSubscriptions();
}

bool OpenNetworkServer() {
  int error = 0;
  const Listener state = TryListener(Listening::First, &error);
  LogListener(state);
  const bool listening = state == Listener::Listening;
  if (!listening) {
    LogNetwork("TAVFARNET->Can`t init TCP.....\n");
    SetFailure("TCP", requestPort, error);
  }
  const bool announcing = OpenAnnouncement();
  if (!announcing) {
    error = SocketErrorNumber();
    LogNetwork("TAVFARNET->Can`t init UDP multicast; tried %s.....\n", serverAddressText);
    SetFailure("UDP", announcePort, error);
  }
  if (listening && announcing) return true;
  CloseSocket(&listener);
  CloseAnnouncement();
  return false;
}

bool StartNetworkServer() {
  serverRunning = 1;
  clientThreadsRunning = 1;
  newClient = 0;
  shortOfResources = false;
  if (CreateWaker(&serverWaker) && StartThread(&serverThread, ServerProcedure, nullptr)) return true;
  serverRunning = 0;
  CloseWaker(&serverWaker);
  CloseSocket(&listener);
  CloseAnnouncement();
  return false;
}

void StopNetworkServer() {
  if (serverThread.started.load() == 0) return;
  LogNetwork("TAVFARNET->Closing Socket serve thread.....\n");
  serverRunning = 0;
  WakeSocket(&serverWaker);
  SleepMilliseconds(stopPauseMs);
  JoinThread(&serverThread);
  CloseWaker(&serverWaker);
  LogLine("TAVFARSERVER deinit OK!\n");
  LogLine("TAVFARSERVER Disable !\n");
  burstRunning = 0;
  SleepMilliseconds(stopPauseMs);
  JoinBursts();
  EndPeerNames();
}

bool IsShortOfResources() { return shortOfResources.load(); }

bool NetworkServerRuns() { return serverRunning.load() != 0; }

bool TryListClients(std::vector<std::string>* clients) {
  if (!TryEnterLock(&clientListLock)) return false;
  ClientSlot slots[maxClients];
  std::memcpy(slots, clientSlots, sizeof slots);
  LeaveLock(&clientListLock);
  clients->clear();
  for (const ClientSlot& slot : slots) {
    if (slot.inUse) clients->push_back(AddressText(slot.peer.ip) + " " + slot.name);
  }
  return true;
}

uint32_t ConnectedClients() { return publishedClientCount.load(); }
