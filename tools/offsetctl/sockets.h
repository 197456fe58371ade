// The few socket calls that the client needs, the same on every system. No call blocks longer than it says.
// Main thread and the network client's receive thread, each on sockets of its own.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace ctl {

using SocketHandle = intptr_t;
constexpr SocketHandle noSocket = -1;

// 127.0.0.1 is 0x7F000001.
struct NetAddress {
  uint32_t ip;
  uint16_t port;
};

std::string IpText(uint32_t ip);

// Starts the system's socket library. Returns true, or false with a line in `error`. Every true needs a
// StopSockets.
bool StartSockets(std::string* error);
void StopSockets();
void CloseSocket(SocketHandle socket);

// A name or dotted address. Returns true, or false with a line in `error`; a resolver that takes longer than
// the time is given up.
bool ResolveHost(const std::string& host, int timeoutMs, uint32_t* ip, std::string* error);

// A datagram socket with a large receive buffer on any free port, which goes to `port`. noSocket on failure.
SocketHandle OpenDatagramSocket(uint16_t* port);
enum class Connecting { Done, PortTaken, Refused, TimedOut, Failed };
// Connects a stream socket from that local port (0: any). Segments leave at once, and a peer that has vanished
// is noticed within about half a minute.
Connecting ConnectStream(uint16_t localPort, const NetAddress& server, int timeoutMs, SocketHandle* socket,
                         std::string* reason);
// Returns true, or false when the connection has gone or does not take it in time.
bool SendStream(SocketHandle socket, const void* data, size_t size, int timeoutMs);
// No more will be sent; the other side reads to the end and closes.
void FinishSending(SocketHandle socket);

// Waits until one of two sockets can be read or is closed; noSocket is passed over. Bit 0: the first, bit 1:
// the second, 0: time-out.
unsigned WaitReadable(SocketHandle first, SocketHandle second, int timeoutMs);
// Takes one datagram that has come. Returns its size, or -1 when there is none.
int ReceiveDatagram(SocketHandle socket, void* buffer, size_t size, NetAddress* from);
// Takes what has come on a stream: bytes taken, 0 closed, -1 broken.
int ReceiveStream(SocketHandle socket, void* buffer, size_t size);

// A datagram socket that hears the multicast group on every interface of this computer. noSocket with a line
// in `error` on failure.
SocketHandle OpenGroupSocket(const NetAddress& group, std::string* error);

// --- The side of a server ------------------------------------------------------------------------------

// Listens on a port of that address of this computer. noSocket with the system's reason in `error` on failure.
SocketHandle OpenListener(const NetAddress& address, std::string* error);
// A connection that has come, with who made it; it does not block. noSocket when there is none.
SocketHandle AcceptStream(SocketHandle listener, NetAddress* peer);
// A socket that sends datagrams from that port, and multicast through the interface of that address. noSocket
// with the system's reason in `error` on failure.
SocketHandle OpenSender(const NetAddress& address, std::string* error);
// Sends one datagram; what the system has no room for is lost, as on any network.
void SendDatagram(SocketHandle socket, const NetAddress& peer, const void* data, size_t size);
// Waits until one of many sockets can be read or is closed. noSocket is passed over.
void WaitAnyReadable(const std::vector<SocketHandle>& sockets, int timeoutMs);
// Closes a connection so that the other side notices a failure, not an orderly end.
void ResetStream(SocketHandle socket);
// IPv4 addresses of this computer, in the order of its interfaces.
std::vector<uint32_t> OwnAddresses();

}  // namespace ctl
