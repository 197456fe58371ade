// How often the server sends what nobody has asked for: its pauses are counted instead of waited for. The
// linker leads them, and what is sent, through the functions below (tests/CMakeLists.txt).
#include <cstring>
#include <mutex>
#include <utility>

#include "net/frame.h"
#include "net/net.h"
#include "net/relay.h"
#include "net_harness.h"
#include "offsets/dispatcher.h"
#include "platform/event.h"

namespace {

using net::Bytes;

constexpr int changePauseMs = 20, announcePauseMs = 1000;
std::atomic<bool> counted;

// Of the time that is counted; under the lock.
struct Record {
  int changeCycles, pauses;
  std::vector<std::pair<int, int>> blocks;  // type of the frame, change cycles before it
  std::vector<int> announcements;           // pauses before each
  Bytes announcement;
  SocketAddress group;
};
Record record;
std::mutex recordLock;

bool ReadRecord(const std::function<bool(const Record&)>& isEnough) {
  const std::lock_guard lock(recordLock);
  return isEnough(record);
}

}  // namespace

extern "C" {
void __real__Z17SleepMillisecondsi(int milliseconds);
bool __real__Z9WaitEventP5Eventi(Event* event, int timeoutMs);
bool __real__Z12SendDatagramP6SocketPKvmRK13SocketAddress(Socket* socket, const void* data, size_t size,
                                                          const SocketAddress& to);
void __wrap__Z17SleepMillisecondsi(int milliseconds);
bool __wrap__Z9WaitEventP5Eventi(Event* event, int timeoutMs);
bool __wrap__Z12SendDatagramP6SocketPKvmRK13SocketAddress(Socket* socket, const void* data, size_t size,
                                                          const SocketAddress& to);

void __wrap__Z17SleepMillisecondsi(int milliseconds) {
  if (!counted || milliseconds != changePauseMs) return __real__Z17SleepMillisecondsi(milliseconds);
  const std::lock_guard lock(recordLock);
  ++record.changeCycles;
}

bool __wrap__Z9WaitEventP5Eventi(Event* event, int timeoutMs) {
  if (!counted || timeoutMs != announcePauseMs) return __real__Z9WaitEventP5Eventi(event, timeoutMs);
  {
    const std::lock_guard lock(recordLock);
    ++record.pauses;
  }
  return __real__Z9WaitEventP5Eventi(event, 1);
}

bool __wrap__Z12SendDatagramP6SocketPKvmRK13SocketAddress(Socket* socket, const void* data, size_t size,
                                                          const SocketAddress& to) {
  if (!counted) return __real__Z12SendDatagramP6SocketPKvmRK13SocketAddress(socket, data, size, to);
  const auto* bytes = static_cast<const uint8_t*>(data);
  const std::lock_guard lock(recordLock);
  if (bytes[0] == frameAnnounce) {
    record.announcements.push_back(record.pauses);
    record.announcement.assign(bytes, bytes + size);
    record.group = to;
  } else if (bytes[0] != frameChanges) {
    record.blocks.emplace_back(bytes[0], record.changeCycles);
  }
  return true;
}
}

namespace {

struct NetPaceThreads : net::Network {
  net::Client client;

  void SetUp() override {
    net::Network::SetUp();
    record = {};
    counted = true;
    PrepareNetwork("127.0.0.1");
    ASSERT_TRUE(OpenNetworkServer());
    ASSERT_TRUE(StartNetworkServer());
  }
  void TearDown() override {
    counted = false;
    net::Disconnect(&client);
    StopNetworkServer();
    net::Network::TearDown();
  }
};

// Every thousand change cycles one block, by turns: that behind the memory, which is empty, and the eight of
// it.
TEST_F(NetPaceThreads, RollingBlocks) {
  std::vector<std::pair<int, int>> expected;
  for (int round = 0; round < 2; ++round) {  // at first everything, and again as the client is new
    for (int block = 0; block < 8; ++block) expected.emplace_back(frameFirstBlock + block, round);
  }
  for (int n = 1; n <= 11; ++n) expected.emplace_back(frameFirstBlock + (n + 7) % 9, 1000 * n);
  ASSERT_TRUE(net::Connect(&client));
  ASSERT_TRUE(net::WaitUntil(
      [&] { return ReadRecord([&](const Record& now) { return now.blocks.size() >= expected.size(); }); }));
  const std::lock_guard lock(recordLock);
  record.blocks.resize(expected.size());
  EXPECT_EQ(record.blocks, expected);
}

TEST_F(NetPaceThreads, OneAnnouncementASecond) {
  ASSERT_TRUE(net::WaitUntil(
      [] { return ReadRecord([](const Record& now) { return now.announcements.size() >= 4; }); }));
  const std::lock_guard lock(recordLock);
  record.announcements.resize(4);
  EXPECT_EQ(record.announcements, (std::vector<int>{0, 1, 2, 3}));
  EXPECT_EQ(record.announcement, net::Frame(20, 0, {}, 0xDEFA));
  EXPECT_EQ(record.group.ip, 0xEFC0000AU) << "239.192.0.10";
  EXPECT_EQ(record.group.port, 54942);
}

struct RelayPace : net::Network {};

TEST_F(RelayPace, TheSenderAloneSends) {
  PrepareNetwork("127.0.0.1");
  for (const RelayRole role : {RelayRole::Receiver, RelayRole::Sender}) {
    ASSERT_TRUE(OpenRelay(role));
    record = {};
    counted = true;
    std::memset(relayRecordStore.bytes, 0, relayRecordSize);
    relayRecordStore.bytes[relayForwardAt] = 9;
    relayRecordStore.waiting = 1;
    ApplyRelayRecord();
    counted = false;
    EXPECT_EQ(record.blocks.size(), role == RelayRole::Sender ? 1U : 0U);
    CloseRelay();
  }
}

}  // namespace
