// Sockets that are waited on are used without blocking: the wait is a poll on socket and waker together.
#include "platform/socket.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "platform/clock.h"

namespace {

constexpr size_t largestReceive = 65535;

int Fd(const Socket* socket) { return static_cast<int>(socket->handle); }

sockaddr_in SystemAddress(const SocketAddress& address) {
  sockaddr_in result{};
  result.sin_family = AF_INET;
  result.sin_port = htons(address.port);
  result.sin_addr.s_addr = htonl(address.ip);
  return result;
}

bool SetInt(const Socket* socket, int level, int option, int value) {
  return setsockopt(Fd(socket), level, option, &value, sizeof value) == 0;
}

int64_t Milliseconds() { return MonotonicNanoseconds() / 1000000; }

// Waits for the socket or the waker: 1 readable, 0 woken, receiveTimedOut, -1 failure.
int WaitReadable(int fd, const SocketWaker* waker, int timeoutMs) {
  const int64_t deadline = Milliseconds() + timeoutMs;
  pollfd waits[2] = {{static_cast<int>(waker->handle), POLLIN, 0}, {fd, POLLIN, 0}};
  for (;;) {
    const int64_t left = timeoutMs < 0 ? -1 : std::max<int64_t>(deadline - Milliseconds(), 0);
    const int ready = poll(waits, fd < 0 ? 1 : 2, static_cast<int>(left));
    if (ready < 0 && errno == EINTR) continue;
    if (ready < 0) return -1;
    if (ready == 0) return receiveTimedOut;
    return (waits[0].revents & POLLIN) != 0 ? 0 : 1;
  }
}

// Whether a datagram was sent to the address or to a broadcast address: the system answers for the latter with
// another address of its own than the one the datagram was sent to. Multicast is neither.
bool IsMeantForUs(const msghdr& message, uint32_t address) {
  for (const cmsghdr* part = CMSG_FIRSTHDR(&message); part != nullptr;
       part = CMSG_NXTHDR(const_cast<msghdr*>(&message), const_cast<cmsghdr*>(part))) {
    if (part->cmsg_level != IPPROTO_IP || part->cmsg_type != IP_PKTINFO) continue;
    in_pktinfo info;
    std::memcpy(&info, CMSG_DATA(part), sizeof info);
    const uint32_t sentTo = ntohl(info.ipi_addr.s_addr);
    return sentTo == address || sentTo == (address | 0xFF) ||
           (info.ipi_addr.s_addr != info.ipi_spec_dst.s_addr && !IN_MULTICAST(sentTo));
  }
  return false;
}

}  // namespace

bool OpenSocketLibrary() { return true; }
void CloseSocketLibrary() {}

bool CreateWaker(SocketWaker* waker) {
  waker->handle = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  return waker->handle >= 0;
}

void CloseWaker(SocketWaker* waker) {
  if (waker->handle >= 0) close(static_cast<int>(waker->handle));
  waker->handle = -1;
}

void WakeSocket(SocketWaker* waker) {
  if (waker->handle < 0) return;
  const uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = write(static_cast<int>(waker->handle), &one, sizeof one);
}

bool WaitWaker(SocketWaker* waker, int timeoutMs) { return WaitReadable(-1, waker, timeoutMs) == 0; }

bool OpenSocket(Socket* socket, Transport transport) {
  const int type = transport == Transport::Stream ? SOCK_STREAM : SOCK_DGRAM;
  socket->handle = ::socket(AF_INET, type | SOCK_CLOEXEC, 0);
  return socket->handle >= 0;
}

void CloseSocket(Socket* socket) {
  if (socket->handle >= 0) close(Fd(socket));
  socket->handle = -1;
}

bool BindSocket(Socket* socket, const SocketAddress& address, PortClaim) {
  int type = 0;
  socklen_t length = sizeof type;
  getsockopt(Fd(socket), SOL_SOCKET, SO_TYPE, &type, &length);
  // For streams only: it passes over closing connections there, but shares the port of datagrams.
  if (type == SOCK_STREAM) SetInt(socket, SOL_SOCKET, SO_REUSEADDR, 1);
  const sockaddr_in target = SystemAddress(address);
  return bind(Fd(socket), reinterpret_cast<const sockaddr*>(&target), sizeof target) == 0;
}

// A socket that is bound to one address gets no broadcasts here: the address is tried for the error alone,
// then all addresses are bound.
bool OpenBroadcastReceiver(Socket* socket, const SocketAddress& address) {
  for (const uint32_t ip : {address.ip, 0U}) {
    CloseSocket(socket);
    if (!OpenSocket(socket, Transport::Datagram)) return false;
    // Each datagram tells where it was sent to.
    if (SetInt(socket, IPPROTO_IP, IP_PKTINFO, 1) && BindSocket(socket, {ip, address.port})) continue;
    const int error = errno;
    CloseSocket(socket);
    errno = error;
    return false;
  }
  return true;
}

bool ListenSocket(Socket* socket, int backlog) {
  // A connection may be gone between poll and accept: the accept must not block then.
  const int flags = fcntl(Fd(socket), F_GETFL, 0);
  if (flags < 0 || fcntl(Fd(socket), F_SETFL, flags | O_NONBLOCK) != 0) return false;
  return listen(Fd(socket), backlog) == 0;
}

int AcceptSocket(Socket* listener, SocketWaker* waker, Socket* accepted, SocketAddress* peer) {
  for (;;) {
    const int ready = WaitReadable(Fd(listener), waker, -1);
    if (ready <= 0) return ready;
    sockaddr_in from{};
    socklen_t length = sizeof from;
    const int fd = accept4(Fd(listener), reinterpret_cast<sockaddr*>(&from), &length, SOCK_CLOEXEC);
    if (fd >= 0) {
      accepted->handle = fd;
      *peer = {ntohl(from.sin_addr.s_addr), ntohs(from.sin_port)};
      return 1;
    }
    switch (errno) {
      case EAGAIN:
      case EINTR:
      case ECONNABORTED:
      case EPROTO:
      case EPERM:
      case ENETDOWN:
      case ENETUNREACH:
      case EHOSTDOWN:
      case EHOSTUNREACH:
      case ENOPROTOOPT:
        break;
      case EMFILE:
      case ENFILE:
      case ENOBUFS:
      case ENOMEM:
        return acceptNoResources;
      default:
        return acceptFailed;
    }
  }
}

int ReceiveSocket(Socket* socket, SocketWaker* waker, int timeoutMs, void* buffer, size_t size) {
  for (;;) {
    const int ready = WaitReadable(Fd(socket), waker, timeoutMs);
    if (ready == 0) return receiveWoken;
    if (ready < 0) return ready;
    const ssize_t got = recv(Fd(socket), buffer, std::min(size, largestReceive), MSG_DONTWAIT);
    if (got >= 0) return static_cast<int>(got);
    if (errno != EAGAIN && errno != EINTR) return receiveFailed;
  }
}

int ReceiveBroadcast(Socket* socket, const BroadcastReceipt& receipt) {
  const int64_t deadline = Milliseconds() + receipt.timeoutMs;
  for (;;) {
    const int left =
        receipt.timeoutMs < 0 ? -1 : static_cast<int>(std::max<int64_t>(deadline - Milliseconds(), 0));
    const int ready = WaitReadable(Fd(socket), receipt.waker, left);
    if (ready == 0) return receiveWoken;
    if (ready < 0) return ready;
    sockaddr_in sender{};
    iovec place = {receipt.buffer, std::min(receipt.size, largestReceive)};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(in_pktinfo))];
    msghdr message{};
    message.msg_name = &sender;
    message.msg_namelen = sizeof sender;
    message.msg_iov = &place;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    const ssize_t got = recvmsg(Fd(socket), &message, MSG_DONTWAIT);
    if (got < 0 && errno != EAGAIN && errno != EINTR) return receiveFailed;
    if (got < 0 || !IsMeantForUs(message, receipt.address)) continue;
    *receipt.from = {ntohl(sender.sin_addr.s_addr), ntohs(sender.sin_port)};
    return static_cast<int>(got);
  }
}

bool SendStream(Socket* socket, const void* data, size_t size) {
  const auto* at = static_cast<const uint8_t*>(data);
  while (size > 0) {
    const ssize_t sent = send(Fd(socket), at, size, MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return false;
    at += sent;
    size -= static_cast<size_t>(sent);
  }
  return true;
}

bool SendDatagram(Socket* socket, const void* data, size_t size, const SocketAddress& to) {
  const auto* at = static_cast<const uint8_t*>(data);
  const sockaddr_in target = SystemAddress(to);
  while (size > 0) {
    const ssize_t sent =
        sendto(Fd(socket), at, size, MSG_DONTWAIT, reinterpret_cast<const sockaddr*>(&target), sizeof target);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return false;
    at += sent;
    size -= static_cast<size_t>(sent);
  }
  return true;
}

void ShutdownReceive(Socket* socket) { shutdown(Fd(socket), SHUT_RD); }
void ShutdownSend(Socket* socket) { shutdown(Fd(socket), SHUT_WR); }

bool SetSendQueue(Socket* socket, int bytes) { return SetInt(socket, SOL_SOCKET, SO_SNDBUF, bytes); }

bool AllowBroadcast(Socket* socket) { return SetInt(socket, SOL_SOCKET, SO_BROADCAST, 1); }

bool SetMulticastInterface(Socket* socket, uint32_t ip) {
  in_addr interface {};
  interface.s_addr = htonl(ip);
  if (!SetInt(socket, IPPROTO_IP, IP_MULTICAST_LOOP, 0)) return false;
  return setsockopt(Fd(socket), IPPROTO_IP, IP_MULTICAST_IF, &interface, sizeof interface) == 0;
}

bool SetKeepAlive(Socket* socket) {
  return SetInt(socket, SOL_SOCKET, SO_KEEPALIVE, 1) && SetInt(socket, IPPROTO_TCP, TCP_KEEPIDLE, 10) &&
         SetInt(socket, IPPROTO_TCP, TCP_KEEPINTVL, 5) && SetInt(socket, IPPROTO_TCP, TCP_KEEPCNT, 3);
}

bool LookUpPeerName(const SocketAddress& peer, char* name, size_t size) {
  const sockaddr_in address = SystemAddress(peer);
  char service[32];
  return getnameinfo(reinterpret_cast<const sockaddr*>(&address), sizeof address, name,
                     static_cast<socklen_t>(size), service, sizeof service, NI_NAMEREQD) == 0;
}

int SocketErrorNumber() { return errno; }

std::string SocketErrorText(int number) { return std::generic_category().message(number); }

SocketFault ClassifySocketError(int number) {
  switch (number) {
    case EADDRINUSE:
    case EACCES:
      return SocketFault::PortTaken;
    case EADDRNOTAVAIL:
      return SocketFault::AddressNotHere;
    case EMFILE:
    case ENFILE:
    case ENOBUFS:
    case ENOMEM:
      return SocketFault::NoResources;
    default:
      return SocketFault::Other;
  }
}
