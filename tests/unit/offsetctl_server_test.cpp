// The server of replays and of `offsetctl conform`, as clients on this computer see it.
#include <gtest/gtest.h>

#include "net/frame.h"
#include "offsetctl/server.h"
#include "offsetctl/transport.h"
#include "test_tools.h"

namespace {

using namespace ctl;
using Bytes = std::vector<uint8_t>;

constexpr uint32_t address = 0x7F00004D;  // 127.0.0.77: no other test's

class OffsetctlServer : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(StartSockets(&error));
    ASSERT_TRUE(OpenServer(address, &server, &error)) << error;
  }
  void TearDown() override {
    for (const SocketHandle socket : open) CloseSocket(socket);
    CloseServer(&server);
    StopSockets();
  }
  // A client's connection, and its datagrams in `datagrams`.
  SocketHandle Connect(SocketHandle* datagrams) {
    uint16_t port = 0;
    std::string reason;
    SocketHandle stream = noSocket;
    *datagrams = OpenDatagramSocket(&port);
    ConnectStream(port, {address, 65000}, 1000, &stream, &reason);
    open.insert(open.end(), {stream, *datagrams});
    return stream;
  }
  bool ServeUntil(const std::function<bool()>& condition) {
    return tools::WaitUntil([&] {
      Serve(&server, 1);
      return condition();
    });
  }
  void Send(SocketHandle stream, const Bytes& bytes) { SendStream(stream, bytes.data(), bytes.size(), 1000); }

  Server server;
  std::vector<SocketHandle> open;
  std::string error;
};

Bytes WriteFrame(uint32_t offset, Bytes bytes) {
  return BuildRequestFrames(true, {{offset, static_cast<uint32_t>(bytes.size()), bytes.data()}})[0];
}

// What has come, put into a picture.
void Take(SocketHandle datagrams, Picture* picture) {
  Bytes buffer(65536);
  NetAddress from = {};
  for (int size = 0; (size = ReceiveDatagram(datagrams, buffer.data(), buffer.size(), &from)) >= 0;) {
    EXPECT_EQ(from.port, 65100);
    const NetFrame frame = ReadFrame(buffer.data(), static_cast<size_t>(size));
    EXPECT_NE(frame.kind, FrameKind::None);
    ApplyFrame(frame, picture);
  }
}

TEST_F(OffsetctlServer, ShowsMemoryAndEchoes) {
  SetWord(&server, 0x1FFFE, 0xBEEF);
  SocketHandle datagrams = noSocket;
  const SocketHandle stream = Connect(&datagrams);
  ASSERT_NE(stream, noSocket);
  static Picture picture;
  picture = {};
  const auto taken = [&] {
    Take(datagrams, &picture);
    return IsComplete(picture);
  };
  ASSERT_TRUE(ServeUntil(taken));
  EXPECT_EQ(picture.bytes[0x1FFFF], 0xBE);
  // Two frames of one send, then one in two pieces that come close together.
  Bytes frames = WriteFrame(0x12000, {1});
  const Bytes second = WriteFrame(0x12001, {2});
  frames.insert(frames.end(), second.begin(), second.end());
  Send(stream, frames);
  const Bytes third = WriteFrame(0x12002, {3});
  Send(stream, {third.begin(), third.begin() + 10});
  Serve(&server, 5);
  Send(stream, {third.begin() + 10, third.end()});
  Send(stream, WriteFrame(0x0238, {99}));  // read-only: passed over
  const auto echoed = [&] { return taken() && picture.bytes[0x12002] == 3; };
  ASSERT_TRUE(ServeUntil(echoed));
  EXPECT_EQ(picture.bytes[0x12000] + picture.bytes[0x12001], 3);
  EXPECT_EQ(server.writes.size(), 3u);
  EXPECT_EQ(server.brokenFrames, 0u);
  EXPECT_EQ(server.memory[0x0238], 0);
}

TEST_F(OffsetctlServer, DropsBrokenFramesAndServesOn) {
  SocketHandle datagrams = noSocket;
  const SocketHandle stream = Connect(&datagrams);
  const Bytes good = WriteFrame(0x12000, {1, 2, 3, 4});
  uint32_t expected = 0;
  for (const auto& [at, value] :
       {std::pair<size_t, uint8_t>{0, 19}, {good.size() - 1, 0}, {6, 7}, {9, 0xFF}, {12, 2}, {15, 1}}) {
    Bytes broken = good;
    broken[at] = value;
    Send(stream, broken);
    ++expected;
    EXPECT_TRUE(ServeUntil([&] { return server.brokenFrames == expected; })) << at;
  }
  Send(stream, good);
  EXPECT_TRUE(ServeUntil([&] { return server.writes.size() == 1; }));
  EXPECT_EQ(server.memory[0x12003], 4);
}

TEST_F(OffsetctlServer, MakesTheTroubleThatIsAskedFor) {
  SocketHandle datagrams = noSocket;
  const SocketHandle stream = Connect(&datagrams);
  server.trouble.replacesWrites = true;
  server.trouble.replacement = -2;
  server.trouble.writeDelayMs = 50;
  Send(stream, WriteFrame(0x12000, {10, 0}));
  ASSERT_TRUE(ServeUntil([&] { return server.writes.size() == 1; }));
  EXPECT_EQ(WordOf(server, 0x12000), 0) << "it is delayed";
  EXPECT_TRUE(ServeUntil([&] { return WordOf(server, 0x12000) == 8; }));
  for (size_t i = 1; i < mostServed; ++i) Connect(&datagrams);
  ASSERT_TRUE(ServeUntil([&] { return server.clients.size() == mostServed; }));
  EXPECT_EQ(Connect(&datagrams), noSocket) << "a ninth is refused";
  FinishSending(stream);
  ASSERT_TRUE(
      ServeUntil([&] { return server.clients.size() == mostServed - 1 && server.listener != noSocket; }));
  server.trouble.door = Door::Closing;
  EXPECT_NE(Connect(&datagrams), noSocket);
  EXPECT_TRUE(ServeUntil([&] { return server.turnedAway == 1; }));
  DropClients(&server);
  uint8_t byte = 0;
  EXPECT_EQ(ReceiveStream(stream, &byte, 1), 0) << "the connection has ended";
}

}  // namespace
