// Harness for tests over real loopback sockets: the product's server within the test, and clients as programs
// on other computers are. The ports are fixed, so one such test runs at a time.
#pragma once
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "platform/socket.h"
#include "test_tools.h"

namespace net {

constexpr uint32_t loopback = 0x7F000001;
using tools::patienceMs;
using tools::WaitUntil;

using Bytes = std::vector<uint8_t>;

// Little-endian pieces for frames and records.
Bytes Word16(uint32_t value);
Bytes Word32(uint32_t value);
Bytes Join(std::initializer_list<Bytes> parts);
Bytes WriteRecord(uint32_t offset, const Bytes& data);
Bytes ReadRecord(uint32_t offset, uint32_t size);
Bytes Frame(uint8_t type, uint16_t auxiliary, const Bytes& payload, uint16_t endMarker);
// A request list with its end, framed.
Bytes Request(std::initializer_list<Bytes> records);

// A client: its UDP socket has the port number of its TCP connection, where the bursts go to.
struct Client {
  Socket tcp, udp;
  SocketWaker waker;
};
// Connects to a port of this computer; false when refused.
bool Connect(Client* client, uint16_t port = 65000);
// Connects an open stream to any address; false when refused. BeginConnect does not wait for the answer.
bool ConnectTo(Client* client, const SocketAddress& server);
void BeginConnect(Client* client, const SocketAddress& server);
void Disconnect(Client* client);
// Sends everything, waiting while the connection takes no more. Returns false when it has ended.
bool SendAll(Client* client, const Bytes& data);
// Next datagram, empty on time-out.
Bytes Receive(Client* client, int timeoutMs = patienceMs);
// Everything that the server sends on the TCP connection until it closes it.
std::string ReceiveText(Client* client);
// Waits until the server closes the connection; false when it does not.
bool WaitForClose(Client* client);
// Receives until a frame of this type comes; empty when none does.
Bytes ReceiveType(Client* client, uint8_t type);
uint16_t LocalPort(const Socket& socket);

// Fixture: empty offset memory, locks, log files in a scratch folder, the socket library.
struct Network : testing::Test {
  std::filesystem::path root = std::filesystem::path(testing::TempDir()) / "tavrix_net_test";
  void SetUp() override;
  void TearDown() override;
  std::string Log(const char* name = "TAVRIX.txt") const;
  bool LogHas(const std::string& text) const { return Log().find(text) != std::string::npos; }
  std::string Folder() const;
};

}  // namespace net
