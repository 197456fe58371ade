#include "net_harness.h"

#ifdef _WIN32
#include <winsock2.h>
#else
#include <arpa/inet.h>
#include <fcntl.h>
#include <sys/socket.h>
#endif

#include <algorithm>
#include <cerrno>

#include "base/locks.h"
#include "base/log.h"
#include "bridge/cycles.h"
#include "bridge/registry.h"
#include "offsets/dispatcher.h"
#include "platform/clock.h"
#include "platform/system.h"
#include "test_tools.h"

namespace net {

namespace {

#ifdef _WIN32
using Length = int;
SOCKET System(const Socket& socket) { return static_cast<SOCKET>(socket.handle); }
#else
using Length = socklen_t;
int System(const Socket& socket) { return static_cast<int>(socket.handle); }
#endif

}  // namespace

Bytes Word16(uint32_t value) { return {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8)}; }
Bytes Word32(uint32_t value) { return Join({Word16(value), Word16(value >> 16)}); }

Bytes Join(std::initializer_list<Bytes> parts) {
  Bytes all;
  for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

Bytes WriteRecord(uint32_t offset, const Bytes& data) {
  return Join({Word32(2), Word32(offset), Word32(static_cast<uint32_t>(data.size())), data});
}

Bytes ReadRecord(uint32_t offset, uint32_t size) {
  return Join({Word32(1), Word32(offset), Word32(size), Word32(0xDEADBEEF), Bytes(size)});
}

Bytes Frame(uint8_t type, uint16_t auxiliary, const Bytes& payload, uint16_t endMarker) {
  const Bytes length = Word16(static_cast<uint32_t>(payload.size()));
  return Join({{type, 0}, length, Word16(auxiliary), payload, length, Word16(endMarker)});
}

Bytes Request(std::initializer_list<Bytes> records) {
  return Frame(18, 0, Join({Join(records), Word32(0)}), 0xAFFE);
}

uint16_t LocalPort(const Socket& socket) {
  sockaddr_in address{};
  Length length = sizeof address;
  getsockname(System(socket), reinterpret_cast<sockaddr*>(&address), &length);
  return ntohs(address.sin_port);
}

bool Connect(Client* client, uint16_t port) {
  *client = {};
  EXPECT_TRUE(CreateWaker(&client->waker));
  // The stream first: its port must not be one that an earlier connection still occupies.
  EXPECT_TRUE(OpenSocket(&client->tcp, Transport::Stream) && BindSocket(&client->tcp, {loopback, 0}));
  EXPECT_TRUE(OpenSocket(&client->udp, Transport::Datagram));
  EXPECT_TRUE(BindSocket(&client->udp, {loopback, LocalPort(client->tcp)}));
  if (ConnectTo(client, {loopback, port})) return true;
  Disconnect(client);
  return false;
}

bool ConnectTo(Client* client, const SocketAddress& server) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(server.port);
  address.sin_addr.s_addr = htonl(server.ip);
  return connect(System(client->tcp), reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
}

void BeginConnect(Client* client, const SocketAddress& server) {
#ifdef _WIN32
  u_long on = 1;
  ioctlsocket(System(client->tcp), static_cast<long>(FIONBIO), &on);
#else
  fcntl(System(client->tcp), F_SETFL, fcntl(System(client->tcp), F_GETFL, 0) | O_NONBLOCK);
#endif
  ConnectTo(client, server);
}

void Disconnect(Client* client) {
  CloseSocket(&client->tcp);
  CloseSocket(&client->udp);
  CloseWaker(&client->waker);
}

bool SendAll(Client* client, const Bytes& data) {
  for (size_t at = 0; at < data.size();) {
    const auto* from = reinterpret_cast<const char*>(data.data() + at);
    const auto sent =
        ::send(System(client->tcp), from, static_cast<int>(std::min<size_t>(data.size() - at, 1 << 20)),
#ifdef _WIN32
               0);
    const bool full = sent < 0 && WSAGetLastError() == WSAEWOULDBLOCK;
#else
               MSG_NOSIGNAL);
    const bool full = sent < 0 && errno == EAGAIN;
#endif
    if (full) {
      SleepMilliseconds(1);
    } else if (sent <= 0) {
      return false;
    } else {
      at += static_cast<size_t>(sent);
    }
  }
  return true;
}

Bytes Receive(Client* client, int timeoutMs) {
  Bytes bytes(65535);
  const int size = ReceiveSocket(&client->udp, &client->waker, timeoutMs, bytes.data(), bytes.size());
  bytes.resize(size > 0 ? static_cast<size_t>(size) : 0);
  return bytes;
}

std::string ReceiveText(Client* client) {
  std::string text;
  char part[1000];
  int size = 0;
  while ((size = ReceiveSocket(&client->tcp, &client->waker, patienceMs, part, sizeof part)) > 0) {
    text.append(part, static_cast<size_t>(size));
  }
  return size == 0 ? text : text + "(no orderly end)";
}

bool WaitForClose(Client* client) {
  char part[16];
  const int size = ReceiveSocket(&client->tcp, &client->waker, patienceMs, part, sizeof part);
  return size == 0 || size == receiveFailed;
}

Bytes ReceiveType(Client* client, uint8_t type) {
  const int64_t deadline = MonotonicNanoseconds() + patienceMs * INT64_C(1000000);
  while (MonotonicNanoseconds() < deadline) {
    Bytes frame = Receive(client, 1000);
    if (!frame.empty() && frame[0] == type) return frame;
  }
  return {};
}

void Network::SetUp() {
  std::filesystem::remove_all(root);
  ASSERT_TRUE(OpenSocketLibrary());
  ASSERT_TRUE(CreateLocks());
  ASSERT_TRUE(OpenLogs(Folder().c_str(), nullptr));
  InitMemoryBlocks();
  BuildCycles();
  relayRecordStore.waiting = 0;
  readTrace = writeTrace = 0;
}

void Network::TearDown() {
  CloseLogs();
  DeleteLocks();
  CloseSocketLibrary();
  std::filesystem::remove_all(root);
}

std::string Network::Folder() const { return root.string() + pathSeparator; }

std::string Network::Log(const char* name) const { return tools::ReadFile(root / name); }

}  // namespace net
