#include "sockets.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <memory>
#include <mutex>
#include <thread>

#if defined(_WIN32)
#include <winsock2.h>
#include <ws2tcpip.h>
#else
#include <arpa/inet.h>
#include <fcntl.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace ctl {

namespace {

constexpr int receiveBufferSize = 4 * 1024 * 1024;  // bursts that come while the thread is not scheduled
constexpr int sendBufferSize = 1 << 20;             // a round of blocks to all clients
constexpr int keepAliveSeconds = 10;
constexpr int listenBacklog = 6;

// --- Where the systems differ --------------------------------------------------------------------------
#if defined(_WIN32)

using SystemSocket = SOCKET;
using Length = int;

int LastError() { return WSAGetLastError(); }
bool IsPending(int error) { return error == WSAEWOULDBLOCK; }
bool IsPortTaken(int error) { return error == WSAEADDRINUSE || error == WSAEACCES; }
bool IsRefused(int error) { return error == WSAECONNREFUSED; }
std::string ErrorText(int error) { return "system error " + std::to_string(error); }
void CloseSystemSocket(SystemSocket socket) { closesocket(socket); }

void SetBlocking(SystemSocket socket, bool blocking) {
  u_long flag = blocking ? 0 : 1;
  ioctlsocket(socket, static_cast<long>(FIONBIO), &flag);
}

// Programs that we start shall not hold our ports.
void KeepPrivate(SystemSocket socket) {
  SetHandleInformation(reinterpret_cast<HANDLE>(socket), HANDLE_FLAG_INHERIT, 0);
}

void KeepAlive(SystemSocket socket) {
  // The record that SIO_KEEPALIVE_VALS takes: on, first probe and interval in milliseconds.
  u_long values[3] = {1, keepAliveSeconds * 1000, 1000};
  DWORD returned = 0;
  WSAIoctl(socket, _WSAIOW(IOC_VENDOR, 4), values, sizeof values, nullptr, 0, &returned, nullptr, nullptr);
}

std::vector<uint32_t> InterfaceAddresses(SystemSocket socket) {
  std::vector<uint32_t> addresses;
  INTERFACE_INFO list[64];
  DWORD size = 0;
  if (WSAIoctl(socket, SIO_GET_INTERFACE_LIST, nullptr, 0, list, sizeof list, &size, nullptr, nullptr) == 0) {
    for (size_t i = 0; i < size / sizeof list[0]; ++i) {
      addresses.push_back(ntohl(list[i].iiAddress.AddressIn.sin_addr.s_addr));
    }
  }
  return addresses;
}

// SO_REUSEADDR would let us take a port that somebody listens on.
constexpr int ownsPort = SO_EXCLUSIVEADDRUSE;

// Windows filters a group by the membership: any address will do.
uint32_t GroupBindAddress(uint32_t) { return 0; }

#else

using SystemSocket = int;
using Length = socklen_t;

int LastError() { return errno; }
bool IsPending(int error) { return error == EINPROGRESS || error == EAGAIN || error == EINTR; }
bool IsPortTaken(int error) { return error == EADDRINUSE || error == EADDRNOTAVAIL; }
bool IsRefused(int error) { return error == ECONNREFUSED; }
std::string ErrorText(int error) { return std::strerror(error); }
void CloseSystemSocket(SystemSocket socket) { close(socket); }

void SetBlocking(SystemSocket socket, bool blocking) {
  const int flags = fcntl(socket, F_GETFL);
  fcntl(socket, F_SETFL, blocking ? flags & ~O_NONBLOCK : flags | O_NONBLOCK);
}

void KeepPrivate(SystemSocket socket) { fcntl(socket, F_SETFD, FD_CLOEXEC); }

void KeepAlive(SystemSocket socket) {
  const int on = 1, idle = keepAliveSeconds, interval = 5, probes = 4;
  setsockopt(socket, SOL_SOCKET, SO_KEEPALIVE, &on, sizeof on);
  setsockopt(socket, IPPROTO_TCP, TCP_KEEPIDLE, &idle, sizeof idle);
  setsockopt(socket, IPPROTO_TCP, TCP_KEEPINTVL, &interval, sizeof interval);
  setsockopt(socket, IPPROTO_TCP, TCP_KEEPCNT, &probes, sizeof probes);
}

std::vector<uint32_t> InterfaceAddresses(SystemSocket) {
  std::vector<uint32_t> addresses;
  ifaddrs* list = nullptr;
  if (getifaddrs(&list) != 0) return addresses;
  for (const ifaddrs* one = list; one != nullptr; one = one->ifa_next) {
    if (one->ifa_addr == nullptr || one->ifa_addr->sa_family != AF_INET || !(one->ifa_flags & IFF_UP)) continue;
    sockaddr_in address;
    std::memcpy(&address, one->ifa_addr, sizeof address);
    addresses.push_back(ntohl(address.sin_addr.s_addr));
  }
  freeifaddrs(list);
  return addresses;
}

constexpr int ownsPort = SO_REUSEADDR;

// Bound to the group itself the socket hears nothing else, and a server on this computer keeps its port.
uint32_t GroupBindAddress(uint32_t group) { return group; }

#endif
// --- The same everywhere -------------------------------------------------------------------------------

#if !defined(MSG_NOSIGNAL)
#define MSG_NOSIGNAL 0
#endif

SystemSocket Native(SocketHandle socket) { return static_cast<SystemSocket>(socket); }

sockaddr_in SystemAddress(const NetAddress& address) {
  sockaddr_in result = {};
  result.sin_family = AF_INET;
  result.sin_port = htons(address.port);
  result.sin_addr.s_addr = htonl(address.ip);
  return result;
}

bool Bind(SocketHandle socket, const NetAddress& address) {
  const sockaddr_in local = SystemAddress(address);
  return bind(Native(socket), reinterpret_cast<const sockaddr*>(&local), sizeof local) == 0;
}

void SetOption(SocketHandle socket, int level, int option, int value) {
  setsockopt(Native(socket), level, option, reinterpret_cast<const char*>(&value), sizeof value);
}

SocketHandle Open(int type) {
  const auto opened = static_cast<SocketHandle>(socket(AF_INET, type, 0));
  if (opened != noSocket) KeepPrivate(Native(opened));
  return opened;
}

timeval Duration(int milliseconds) {
  timeval time = {};
  time.tv_sec = milliseconds / 1000;
  time.tv_usec = milliseconds % 1000 * 1000;
  return time;
}

// Waits until a connect has ended or a send can go on. Returns true, or false after the time.
bool WaitWritable(SocketHandle socket, int timeoutMs) {
  fd_set writable, failed;
  FD_ZERO(&writable);
  FD_ZERO(&failed);
  FD_SET(Native(socket), &writable);
  FD_SET(Native(socket), &failed);  // where Windows tells that a connect has failed
  timeval time = Duration(timeoutMs);
  return select(static_cast<int>(socket) + 1, nullptr, &writable, &failed, &time) > 0;
}

int PendingError(SocketHandle socket) {
  int error = 0;
  Length size = sizeof error;
  getsockopt(Native(socket), SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &size);
  return error;
}

Connecting Classify(int error) {
  return IsPortTaken(error) ? Connecting::PortTaken
         : IsRefused(error) ? Connecting::Refused
                            : Connecting::Failed;
}

// Connects a socket that is open. Returns Done or why not, with the system's error.
Connecting ConnectWithin(SocketHandle socket, const NetAddress& server, int timeoutMs, int* error) {
  SetBlocking(Native(socket), false);
  const sockaddr_in peer = SystemAddress(server);
  *error = 0;
  if (connect(Native(socket), reinterpret_cast<const sockaddr*>(&peer), sizeof peer) != 0) {
    *error = LastError();
    if (!IsPending(*error)) return Classify(*error);
    if (!WaitWritable(socket, timeoutMs)) return Connecting::TimedOut;
    *error = PendingError(socket);
  }
  return *error == 0 ? Connecting::Done : Classify(*error);
}

// What the resolver's thread leaves; it may outlive the wait.
struct Lookup {
  std::mutex lock;
  std::condition_variable done;
  bool ended = false;
  uint32_t ip = 0;
};

void LookUp(const std::shared_ptr<Lookup>& lookup, const std::string& host) {
  addrinfo hints = {};
  hints.ai_family = AF_INET;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  uint32_t ip = 0;
  if (getaddrinfo(host.c_str(), nullptr, &hints, &found) == 0 && found != nullptr) {
    sockaddr_in address;
    std::memcpy(&address, found->ai_addr, sizeof address);
    ip = ntohl(address.sin_addr.s_addr);
    freeaddrinfo(found);
  }
  const std::lock_guard<std::mutex> hold(lookup->lock);
  lookup->ip = ip;
  lookup->ended = true;
  lookup->done.notify_all();
}

}  // namespace

std::string IpText(uint32_t ip) {
  return std::to_string(ip >> 24) + "." + std::to_string(ip >> 16 & 255) + "." + std::to_string(ip >> 8 & 255) +
         "." + std::to_string(ip & 255);
}

bool StartSockets(std::string* error) {
#if defined(_WIN32)
  WSADATA data;
  if (const int failed = WSAStartup(MAKEWORD(2, 2), &data)) {
    *error = "no network (" + ErrorText(failed) + ")";
    return false;
  }
#else
  (void)error;
#endif
  return true;
}

void StopSockets() {
#if defined(_WIN32)
  WSACleanup();
#endif
}

void CloseSocket(SocketHandle socket) {
  if (socket != noSocket) CloseSystemSocket(Native(socket));
}

bool ResolveHost(const std::string& host, int timeoutMs, uint32_t* ip, std::string* error) {
  const auto lookup = std::make_shared<Lookup>();
  std::thread(LookUp, lookup, host).detach();
  std::unique_lock<std::mutex> hold(lookup->lock);
  const bool ended =
      lookup->done.wait_for(hold, std::chrono::milliseconds(timeoutMs), [&] { return lookup->ended; });
  *ip = lookup->ip;
  if (ended && *ip != 0) return true;
  *error = "no computer \"" + host + "\" is known" + (ended ? "" : " (the name server does not answer)") +
           ": give its address, as in --net 192.168.0.1";
  return false;
}

SocketHandle OpenDatagramSocket(uint16_t* port) {
  const SocketHandle socket = Open(SOCK_DGRAM);
  if (socket == noSocket) return noSocket;
  SetOption(socket, SOL_SOCKET, SO_RCVBUF, receiveBufferSize);
  sockaddr_in bound = {};
  Length size = sizeof bound;
  if (!Bind(socket, {0, 0}) || getsockname(Native(socket), reinterpret_cast<sockaddr*>(&bound), &size) != 0) {
    CloseSocket(socket);
    return noSocket;
  }
  SetBlocking(Native(socket), false);
  *port = ntohs(bound.sin_port);
  return socket;
}

Connecting ConnectStream(uint16_t localPort, const NetAddress& server, int timeoutMs, SocketHandle* socket,
                         std::string* reason) {
  *socket = Open(SOCK_STREAM);
  int error = 0;
  Connecting result = Connecting::Failed;
  if (*socket == noSocket || !Bind(*socket, {0, localPort})) {
    error = LastError();
    result = Classify(error);
  } else {
    result = ConnectWithin(*socket, server, timeoutMs, &error);
  }
  if (result != Connecting::Done) {
    *reason = ErrorText(error);
    CloseSocket(*socket);
    *socket = noSocket;
    return result;
  }
  SetOption(*socket, IPPROTO_TCP, TCP_NODELAY, 1);
  KeepAlive(Native(*socket));
  return result;
}

bool SendStream(SocketHandle socket, const void* data, size_t size, int timeoutMs) {
  const char* at = static_cast<const char*>(data);
  while (size > 0) {
    const auto sent = send(Native(socket), at, static_cast<Length>(size), MSG_NOSIGNAL);
    if (sent > 0) {
      at += sent;
      size -= static_cast<size_t>(sent);
    } else if (!IsPending(LastError()) || !WaitWritable(socket, timeoutMs)) {
      return false;
    }
  }
  return true;
}

void FinishSending(SocketHandle socket) { shutdown(Native(socket), 1); }

unsigned WaitReadable(SocketHandle first, SocketHandle second, int timeoutMs) {
  fd_set readable;
  FD_ZERO(&readable);
  const SocketHandle both[] = {first, second};
  for (const SocketHandle socket : both) {
    if (socket != noSocket) FD_SET(Native(socket), &readable);
  }
  timeval time = Duration(timeoutMs);
  if (select(static_cast<int>(std::max(first, second)) + 1, &readable, nullptr, nullptr, &time) <= 0) return 0;
  unsigned ready = 0;
  for (unsigned i = 0; i < 2; ++i) {
    if (both[i] != noSocket && FD_ISSET(Native(both[i]), &readable)) ready |= 1u << i;
  }
  return ready;
}

int ReceiveDatagram(SocketHandle socket, void* buffer, size_t size, NetAddress* from) {
  sockaddr_in peer = {};
  Length peerSize = sizeof peer;
  const auto received = recvfrom(Native(socket), static_cast<char*>(buffer), static_cast<Length>(size), 0,
                                 reinterpret_cast<sockaddr*>(&peer), &peerSize);
  *from = {ntohl(peer.sin_addr.s_addr), ntohs(peer.sin_port)};
  return static_cast<int>(received);
}

int ReceiveStream(SocketHandle socket, void* buffer, size_t size) {
  return static_cast<int>(recv(Native(socket), static_cast<char*>(buffer), static_cast<Length>(size), 0));
}

SocketHandle OpenGroupSocket(const NetAddress& group, std::string* error) {
  const SocketHandle socket = Open(SOCK_DGRAM);
  if (socket != noSocket) SetOption(socket, SOL_SOCKET, SO_REUSEADDR, 1);
  if (socket == noSocket || !Bind(socket, {GroupBindAddress(group.ip), group.port})) {
    *error = "cannot listen on UDP port " + std::to_string(group.port) + " (" + ErrorText(LastError()) + ")";
    CloseSocket(socket);
    return noSocket;
  }
  SetBlocking(Native(socket), false);
  int joined = 0;
  for (const uint32_t ip : InterfaceAddresses(Native(socket))) {
    ip_mreq request = {};
    request.imr_multiaddr.s_addr = htonl(group.ip);
    request.imr_interface.s_addr = htonl(ip);
    joined += setsockopt(Native(socket), IPPROTO_IP, IP_ADD_MEMBERSHIP, reinterpret_cast<const char*>(&request),
                         sizeof request) == 0;
  }
  if (joined > 0) return socket;
  *error =
      "no network interface takes part in multicast: connect this computer to the network, or give the "
      "server's address with --net";
  CloseSocket(socket);
  return noSocket;
}

SocketHandle OpenListener(const NetAddress& address, std::string* error) {
  const SocketHandle socket = Open(SOCK_STREAM);
  // A port whose last connections the system still remembers can be taken again, one that somebody listens on
  // cannot.
  if (socket != noSocket) SetOption(socket, SOL_SOCKET, ownsPort, 1);
  if (socket != noSocket && Bind(socket, address) && listen(Native(socket), listenBacklog) == 0) {
    SetBlocking(Native(socket), false);
    return socket;
  }
  *error = ErrorText(LastError());
  CloseSocket(socket);
  return noSocket;
}

SocketHandle AcceptStream(SocketHandle listener, NetAddress* peer) {
  sockaddr_in address = {};
  Length size = sizeof address;
  const auto accepted =
      static_cast<SocketHandle>(accept(Native(listener), reinterpret_cast<sockaddr*>(&address), &size));
  if (accepted == noSocket) return noSocket;
  *peer = {ntohl(address.sin_addr.s_addr), ntohs(address.sin_port)};
  KeepPrivate(Native(accepted));
  SetBlocking(Native(accepted), false);
  return accepted;
}

SocketHandle OpenSender(const NetAddress& address, std::string* error) {
  const SocketHandle socket = Open(SOCK_DGRAM);
  in_addr own = {};
  own.s_addr = htonl(address.ip);
  if (socket != noSocket && Bind(socket, address)) {
    SetOption(socket, SOL_SOCKET, SO_SNDBUF, sendBufferSize);
    setsockopt(Native(socket), IPPROTO_IP, IP_MULTICAST_IF, reinterpret_cast<const char*>(&own), sizeof own);
    SetBlocking(Native(socket), false);
    return socket;
  }
  *error = ErrorText(LastError());
  CloseSocket(socket);
  return noSocket;
}

void SendDatagram(SocketHandle socket, const NetAddress& peer, const void* data, size_t size) {
  const sockaddr_in address = SystemAddress(peer);
  sendto(Native(socket), static_cast<const char*>(data), static_cast<Length>(size), MSG_NOSIGNAL,
         reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

void WaitAnyReadable(const std::vector<SocketHandle>& sockets, int timeoutMs) {
  fd_set readable;
  FD_ZERO(&readable);
  SocketHandle last = noSocket;
  for (const SocketHandle socket : sockets) {
    if (socket == noSocket) continue;
    FD_SET(Native(socket), &readable);
    last = std::max(last, socket);
  }
  timeval time = Duration(timeoutMs);
  // Windows does not wait for nothing.
  if (last == noSocket) {
    std::this_thread::sleep_for(std::chrono::milliseconds(timeoutMs));
  } else {
    select(static_cast<int>(last) + 1, &readable, nullptr, nullptr, &time);
  }
}

void ResetStream(SocketHandle socket) {
  linger atOnce = {};
  atOnce.l_onoff = 1;
  setsockopt(Native(socket), SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&atOnce), sizeof atOnce);
  CloseSocket(socket);
}

std::vector<uint32_t> OwnAddresses() {
  const SocketHandle socket = Open(SOCK_DGRAM);
  const std::vector<uint32_t> addresses = InterfaceAddresses(Native(socket));
  CloseSocket(socket);
  return addresses;
}

}  // namespace ctl
