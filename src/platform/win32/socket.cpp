// Sockets that are waited on have a network event; the wait is one for that event or the waker's.
#include <winsock2.h>
// Winsock comes before everything that includes windows.h.
#include <mstcpip.h>
#include <ws2tcpip.h>

#include <algorithm>
#include <cstring>

#include "platform/clock.h"
#include "platform/socket.h"

namespace {

constexpr size_t largestReceive = 65535;
// Newer than the system that we are built for; older ones refuse it.
constexpr int keepAliveCountOption = 16;

SOCKET Handle(const Socket* socket) { return static_cast<SOCKET>(socket->handle); }

sockaddr_in SystemAddress(const SocketAddress& address) {
  sockaddr_in result{};
  result.sin_family = AF_INET;
  result.sin_port = htons(address.port);
  result.sin_addr.s_addr = htonl(address.ip);
  return result;
}

bool SetInt(const Socket* socket, int level, int option, DWORD value) {
  return setsockopt(Handle(socket), level, option, reinterpret_cast<const char*>(&value), sizeof value) == 0;
}

// Ties the socket to a network event of its own, once; the socket does not block from then on.
bool HasEvent(Socket* socket, long events) {
  if (socket->event != nullptr) return true;
  WSAEVENT event = WSACreateEvent();
  if (event == WSA_INVALID_EVENT) return false;
  if (WSAEventSelect(Handle(socket), event, events) != 0) {
    const int error = WSAGetLastError();
    WSACloseEvent(event);
    WSASetLastError(error);
    return false;
  }
  socket->event = event;
  return true;
}

int64_t Milliseconds() { return MonotonicNanoseconds() / 1000000; }

// Waits for the network event or the waker: 1 event (taken), 0 woken, receiveTimedOut, -1 failure.
int WaitNetwork(Socket* socket, const SocketWaker* waker, int64_t deadline) {
  HANDLE waits[2] = {reinterpret_cast<HANDLE>(waker->handle), socket->event};
  const int64_t left = deadline < 0 ? -1 : std::max<int64_t>(deadline - Milliseconds(), 0);
  const DWORD result = WaitForMultipleObjects(2, waits, FALSE, left < 0 ? INFINITE : static_cast<DWORD>(left));
  if (result == WAIT_OBJECT_0) return 0;
  if (result == WAIT_TIMEOUT) return receiveTimedOut;
  if (result != WAIT_OBJECT_0 + 1) return -1;
  WSANETWORKEVENTS events;
  return WSAEnumNetworkEvents(Handle(socket), socket->event, &events) == 0 ? 1 : -1;
}

// Sockets are handles that programs started by this process would get as well. Some layered providers do not
// have real handles: then there is nothing to hand on.
void KeepFromChildren(SOCKET socket) {
  SetHandleInformation(reinterpret_cast<HANDLE>(socket), HANDLE_FLAG_INHERIT, 0);
}

bool IsWoken(const SocketWaker* waker) {
  return WaitForSingleObject(reinterpret_cast<HANDLE>(waker->handle), 0) == WAIT_OBJECT_0;
}

}  // namespace

bool OpenSocketLibrary() {
  WSADATA data;
  return WSAStartup(MAKEWORD(2, 2), &data) == 0;
}

void CloseSocketLibrary() { WSACleanup(); }

bool CreateWaker(SocketWaker* waker) {
  HANDLE event = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  waker->handle = event == nullptr ? -1 : reinterpret_cast<intptr_t>(event);
  return event != nullptr;
}

void CloseWaker(SocketWaker* waker) {
  if (waker->handle != -1) CloseHandle(reinterpret_cast<HANDLE>(waker->handle));
  waker->handle = -1;
}

void WakeSocket(SocketWaker* waker) {
  if (waker->handle != -1) SetEvent(reinterpret_cast<HANDLE>(waker->handle));
}

bool WaitWaker(SocketWaker* waker, int timeoutMs) {
  return WaitForSingleObject(reinterpret_cast<HANDLE>(waker->handle), static_cast<DWORD>(timeoutMs)) ==
         WAIT_OBJECT_0;
}

bool OpenSocket(Socket* socket, Transport transport) {
  const int type = transport == Transport::Stream ? SOCK_STREAM : SOCK_DGRAM;
  socket->event = nullptr;
  socket->handle = static_cast<intptr_t>(::socket(AF_INET, type, 0));
  if (socket->handle == -1) return false;
  KeepFromChildren(Handle(socket));
  u_long on = 1;
  if (transport == Transport::Datagram) ioctlsocket(Handle(socket), static_cast<long>(FIONBIO), &on);
  return true;
}

void CloseSocket(Socket* socket) {
  if (socket->handle != -1) closesocket(Handle(socket));
  if (socket->event != nullptr) WSACloseEvent(socket->event);
  *socket = {};
}

bool BindSocket(Socket* socket, const SocketAddress& address, PortClaim claim) {
  if (claim == PortClaim::Exclusive) SetInt(socket, SOL_SOCKET, SO_EXCLUSIVEADDRUSE, 1);
  const sockaddr_in target = SystemAddress(address);
  return bind(Handle(socket), reinterpret_cast<const sockaddr*>(&target), sizeof target) == 0;
}

// Not every system refuses datagrams an address that it does not have: a stream is tried first.
bool OpenBroadcastReceiver(Socket* socket, const SocketAddress& address) {
  if (!OpenSocket(socket, Transport::Stream)) return false;
  bool bound = BindSocket(socket, {address.ip, 0});
  if (bound) {
    CloseSocket(socket);
    bound = OpenSocket(socket, Transport::Datagram) && BindSocket(socket, address);
  }
  if (bound) return true;
  const int error = WSAGetLastError();
  CloseSocket(socket);
  WSASetLastError(error);
  return false;
}

bool ListenSocket(Socket* socket, int backlog) {
  return HasEvent(socket, FD_ACCEPT) && listen(Handle(socket), backlog) == 0;
}

int AcceptSocket(Socket* listener, SocketWaker* waker, Socket* accepted, SocketAddress* peer) {
  for (;;) {
    if (IsWoken(waker)) return 0;
    sockaddr_in from{};
    int length = sizeof from;
    const SOCKET handle = accept(Handle(listener), reinterpret_cast<sockaddr*>(&from), &length);
    if (handle != INVALID_SOCKET) {
      accepted->handle = static_cast<intptr_t>(handle);
      accepted->event = nullptr;
      KeepFromChildren(handle);
      *peer = {ntohl(from.sin_addr.s_addr), ntohs(from.sin_port)};
      // It has inherited the listener's event: an event of its own takes that one's place.
      if (HasEvent(accepted, FD_READ | FD_CLOSE)) return 1;
      CloseSocket(accepted);
      return acceptNoResources;
    }
    switch (WSAGetLastError()) {
      case WSAEWOULDBLOCK: {
        const int waited = WaitNetwork(listener, waker, -1);
        if (waited <= 0) return waited;
        break;
      }
      case WSAEINTR:
      case WSAECONNRESET:
      case WSAECONNABORTED:
      case WSAENOTCONN:  // reset already: it has no peer to name any more
        break;
      case WSAEMFILE:
      case WSAENOBUFS:
      case WSA_NOT_ENOUGH_MEMORY:
        return acceptNoResources;
      default:
        return acceptFailed;
    }
  }
}

// `from` may be null: who sends on a stream is known.
static int ReceiveFrom(Socket* socket, const BroadcastReceipt& receipt) {
  const auto& [waker, timeoutMs, address, buffer, size, from] = receipt;
  const int64_t deadline = timeoutMs < 0 ? -1 : Milliseconds() + timeoutMs;
  if (!HasEvent(socket, FD_READ | FD_CLOSE)) return receiveFailed;
  const int room = static_cast<int>(std::min(size, largestReceive));
  for (;;) {
    if (IsWoken(waker)) return receiveWoken;
    sockaddr_in sender{};
    int length = sizeof sender;
    const int got = from == nullptr ? recv(Handle(socket), static_cast<char*>(buffer), room, 0)
                                    : recvfrom(Handle(socket), static_cast<char*>(buffer), room, 0,
                                               reinterpret_cast<sockaddr*>(&sender), &length);
    if (got >= 0) {
      if (from != nullptr) *from = {ntohl(sender.sin_addr.s_addr), ntohs(sender.sin_port)};
      return got;
    }
    const int error = WSAGetLastError();
    if (error != WSAEWOULDBLOCK && error != WSAEINTR) return receiveFailed;
    const int waited = WaitNetwork(socket, waker, deadline);
    if (waited == 0) return receiveWoken;
    if (waited < 0) return waited;
  }
}

int ReceiveSocket(Socket* socket, SocketWaker* waker, int timeoutMs, void* buffer, size_t size) {
  return ReceiveFrom(
      socket,
      {.waker = waker, .timeoutMs = timeoutMs, .address = 0, .buffer = buffer, .size = size, .from = nullptr});
}

// The system itself delivers only what was sent to the bound address or as a broadcast.
int ReceiveBroadcast(Socket* socket, const BroadcastReceipt& receipt) { return ReceiveFrom(socket, receipt); }

bool SendStream(Socket* socket, const void* data, size_t size) {
  const auto* at = static_cast<const char*>(data);
  while (size > 0) {
    const int sent = send(Handle(socket), at, static_cast<int>(size), 0);
    if (sent <= 0) return false;
    at += sent;
    size -= static_cast<size_t>(sent);
  }
  return true;
}

bool SendDatagram(Socket* socket, const void* data, size_t size, const SocketAddress& to) {
  const auto* at = static_cast<const char*>(data);
  const sockaddr_in target = SystemAddress(to);
  while (size > 0) {
    const int sent = sendto(Handle(socket), at, static_cast<int>(size), 0,
                            reinterpret_cast<const sockaddr*>(&target), sizeof target);
    if (sent <= 0) return false;
    at += sent;
    size -= static_cast<size_t>(sent);
  }
  return true;
}

void ShutdownReceive(Socket* socket) { shutdown(Handle(socket), SD_RECEIVE); }
void ShutdownSend(Socket* socket) { shutdown(Handle(socket), SD_SEND); }

bool SetSendQueue(Socket* socket, int bytes) {
  return SetInt(socket, SOL_SOCKET, SO_SNDBUF, static_cast<DWORD>(bytes));
}

bool AllowBroadcast(Socket* socket) { return SetInt(socket, SOL_SOCKET, SO_BROADCAST, 1); }

bool SetMulticastInterface(Socket* socket, uint32_t ip) {
  return SetInt(socket, IPPROTO_IP, IP_MULTICAST_LOOP, 0) &&
         SetInt(socket, IPPROTO_IP, IP_MULTICAST_IF, htonl(ip));
}

bool SetKeepAlive(Socket* socket) {
  // Ten probes unless the system lets us choose: 10 s + 3 x 5 s, or 10 s + 10 x 1.5 s.
  const bool counted = SetInt(socket, IPPROTO_TCP, keepAliveCountOption, 3);
  tcp_keepalive values = {1, 10000, counted ? 5000U : 1500U};
  DWORD returned = 0;
  return WSAIoctl(Handle(socket), SIO_KEEPALIVE_VALS, &values, sizeof values, nullptr, 0, &returned, nullptr,
                  nullptr) == 0;
}

bool LookUpPeerName(const SocketAddress& peer, char* name, size_t size) {
  const sockaddr_in address = SystemAddress(peer);
  char service[32];
  return getnameinfo(reinterpret_cast<const sockaddr*>(&address), sizeof address, name,
                     static_cast<DWORD>(size), service, sizeof service, NI_NAMEREQD) == 0;
}

int SocketErrorNumber() { return WSAGetLastError(); }

std::string SocketErrorText(int number) {
  char text[256] = "";
  DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                static_cast<DWORD>(number), 0, text, sizeof text, nullptr);
  while (length > 0 && (text[length - 1] == '\n' || text[length - 1] == '\r' || text[length - 1] == '.'))
    --length;
  return length > 0 ? std::string(text, length) : "error " + std::to_string(number);
}

SocketFault ClassifySocketError(int number) {
  switch (number) {
    case WSAEADDRINUSE:
    case WSAEACCES:
      return SocketFault::PortTaken;
    case WSAEADDRNOTAVAIL:
      return SocketFault::AddressNotHere;
    case WSAEMFILE:
    case WSAENOBUFS:
    case WSA_NOT_ENOUGH_MEMORY:
      return SocketFault::NoResources;
    default:
      return SocketFault::Other;
  }
}
