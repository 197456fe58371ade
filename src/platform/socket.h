// IPv4 sockets behind plain functions, and the one way to end another thread's wait on a socket.
//
// A socket has one owner, the thread that opened it or took it over; only the owner uses and closes it.
// Another thread that wants the owner to stop waiting signals the owner's SocketWaker, never the socket:
// a handle closed under a waiting thread may already name another socket when the thread looks again.
// OpenSocketLibrary is called once before everything else and CloseSocketLibrary once after it, both on the
// simulator's thread; all other functions are for any thread.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

struct Socket {
  intptr_t handle = -1;   // -1: no socket
  void* event = nullptr;  // Windows: signalled when something can be received or accepted
};

struct SocketAddress {
  uint32_t ip;  // 127.0.0.1 is 0x7F000001
  uint16_t port;
};

// Wakes the thread that waits with it: once woken, every wait ends at once until the waker is made anew.
struct SocketWaker {
  intptr_t handle = -1;
};

enum class Transport { Stream, Datagram };

// What a failed call was about, for the line that tells the user what to do.
enum class SocketFault { PortTaken, AddressNotHere, NoResources, Other };

// Starts the system's socket library. Returns true, or false when it cannot be had.
bool OpenSocketLibrary();
void CloseSocketLibrary();

// Returns true, or false when the system refuses. Made before the waiting thread starts, closed after its join.
bool CreateWaker(SocketWaker* waker);
void CloseWaker(SocketWaker* waker);
// Any thread, while the waker exists.
void WakeSocket(SocketWaker* waker);
// Waits for the wake-up alone: true woken, false timed out.
bool WaitWaker(SocketWaker* waker, int timeoutMs);

// Returns true, or false and the record is without socket. No socket of ours is handed on to programs that the
// simulator or another plug-in starts.
bool OpenSocket(Socket* socket, Transport transport);
// Nothing happens without socket.
void CloseSocket(Socket* socket);

// Whether a port is ours alone. Windows lets another program of the same user bind a port that is taken, unless
// its owner forbids it; but a forbidden port stays closed to us, too, as long as a connection that was accepted
// on it lives. A listener that is closed and made anew beside its own connections cannot have it.
enum class PortClaim { Exclusive, Renewable };
// Binds to an address of this computer (ip 0: all of them). A stream port whose old connections are still
// closing can be bound. Returns true, or false when it cannot.
bool BindSocket(Socket* socket, const SocketAddress& address, PortClaim claim = PortClaim::Exclusive);
// Opens a datagram socket that receives what is sent to the address, broadcasts of its network included.
// Returns true, or false (no socket left) when the address is not this computer's or the port is taken.
bool OpenBroadcastReceiver(Socket* socket, const SocketAddress& address);
// Returns true, or false when the system refuses.
bool ListenSocket(Socket* socket, int backlog);
constexpr int acceptFailed = -1;
constexpr int acceptNoResources = -2;  // the process or the system has no handle or memory left for now
// Waits for a connection. Returns 1 with the accepted socket and its peer, 0 woken, or one of the values above;
// connections that are gone before they are accepted are passed over.
int AcceptSocket(Socket* listener, SocketWaker* waker, Socket* accepted, SocketAddress* peer);

constexpr int receiveFailed = -1;
constexpr int receiveWoken = -2;
constexpr int receiveTimedOut = -3;
// Waits for data and takes at most `size` bytes (at most 65,535) of it: a part of the stream, or one
// datagram. Returns the number of bytes (0: the peer has closed the stream, or an empty datagram) or one of
// the values above. timeoutMs < 0 waits without limit.
int ReceiveSocket(Socket* socket, SocketWaker* waker, int timeoutMs, void* buffer, size_t size);
// What to receive, and where to.
struct BroadcastReceipt {
  SocketWaker* waker;
  int timeoutMs;
  uint32_t address;  // of this computer
  void* buffer;
  size_t size;
  SocketAddress* from;  // gets the sender
};
// The same for a socket of OpenBroadcastReceiver: datagrams that were sent neither to `address` nor to a
// broadcast address are passed over.
int ReceiveBroadcast(Socket* socket, const BroadcastReceipt& receipt);
// Sends all of it, or as much as the connection takes without waiting. Returns true when all has gone.
bool SendStream(Socket* socket, const void* data, size_t size);
// Sends one datagram, the rest again when the system took a part only. Never waits: while the system's queue is
// full (a link that stands still) the datagram is dropped, as the network would. Returns true, or false when a
// call failed.
bool SendDatagram(Socket* socket, const void* data, size_t size, const SocketAddress& to);
void ShutdownReceive(Socket* socket);
void ShutdownSend(Socket* socket);

// Options. Each returns true, or false when the system refuses.
// Lets the system queue so many bytes of datagrams; it may grant less.
bool SetSendQueue(Socket* socket, int bytes);
bool AllowBroadcast(Socket* socket);
// Multicast datagrams leave through the interface with this address and do not come back to this computer.
bool SetMulticastInterface(Socket* socket, uint32_t ip);
// A peer that vanished without closing makes the receive fail within 30 s: first probe after 10 s of
// silence, then one every 5 s (closer where the system fixes the number of probes at ten).
bool SetKeepAlive(Socket* socket);

// Name of a peer by reverse lookup (may take seconds), cut to size - 1. Returns true, or false when it has
// none.
bool LookUpPeerName(const SocketAddress& peer, char* name, size_t size);
// About the calling thread's last failed call: the system's number, its text, and what to tell the user.
int SocketErrorNumber();
std::string SocketErrorText(int number);
SocketFault ClassifySocketError(int number);
