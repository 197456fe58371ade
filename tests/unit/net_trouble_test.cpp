// The network server in trouble: numbers that wrap, senders that never pause, frames in pieces, no handles
// left, clients who may not come or may not write.
#include <algorithm>
#include <random>

#include "net/client_table.h"
#include "net/net.h"
#include "net/permissions.h"
#include "net/server.h"
#include "net_harness.h"
#include "offsets/memory.h"
#include "platform/clock.h"
#include "platform/thread.h"
#include "test_tools.h"

#ifndef _WIN32
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace {

using net::Bytes;
using net::Client;
using tools::CountText;

Bytes Memory(uint32_t offset, size_t size) {
  const LockScope lock(&offsetLock);
  return {offsetMemory.bytes + offset, offsetMemory.bytes + offset + size};
}

RequestCounters Counters() {
  const LockScope lock(&offsetLock);
  return requestCounters;
}

struct NetTroubleThreads : net::Network {
  void SetUp() override {
    net::Network::SetUp();
    PrepareNetwork("127.0.0.1");
    PreparePermissions("", true);
  }
  void TearDown() override {
    StopNetworkServer();
    PreparePermissions("", true);
    net::Network::TearDown();
  }
  void Start() {
    ASSERT_TRUE(OpenNetworkServer()) << Log();
    ASSERT_TRUE(StartNetworkServer());
  }
};

TEST_F(NetTroubleThreads, SlotsAreTakenInTheirOrder) {
  const LockScope lock(&clientListLock);
  ClearClients();
  nextClientNumber = 0xFFFE;
  for (uint32_t i = 0; i < maxClients; ++i) {
    EXPECT_EQ(FindFreeSlot(), static_cast<int>(i));
    AddClient(i, {net::loopback, static_cast<uint16_t>(i)});
    EXPECT_EQ(clientSlots[i].number, static_cast<uint16_t>(0xFFFE + i));
    EXPECT_EQ(CountClients(), i + 1);
  }
  EXPECT_EQ(FindFreeSlot(), -1);
  RemoveClient(3);
  RemoveClient(3);
  EXPECT_EQ(FindFreeSlot(), 3);
  EXPECT_EQ(CountClients(), maxClients - 1);
  ClearClients();
  EXPECT_EQ(FindFreeSlot(), 0);
}

TEST_F(NetTroubleThreads, ANumberThatWrapsTouchesNobodyElse) {
  Start();
  Client living, passing;
  ASSERT_TRUE(net::Connect(&living));
  ASSERT_TRUE(net::WaitUntil([] { return ConnectedClients() == 1; }));
  {
    const LockScope lock(&clientListLock);
    nextClientNumber = clientSlots[0].number;  // 65,536 clients have come and gone meanwhile
  }
  ASSERT_TRUE(net::Connect(&passing));
  ASSERT_TRUE(net::WaitUntil([] { return ConnectedClients() == 2; }));
  {
    const LockScope lock(&clientListLock);
    ASSERT_EQ(clientSlots[0].number, clientSlots[1].number);
  }
  net::Disconnect(&passing);
  ASSERT_TRUE(net::WaitUntil([] { return ConnectedClients() == 1; }));
  ASSERT_TRUE(net::SendAll(&living, net::Request({net::WriteRecord(0x66C0, {1})})));
  EXPECT_TRUE(net::WaitUntil([] { return Memory(0x66C0, 1)[0] == 1; }));
  EXPECT_FALSE(net::ReceiveType(&living, 103).empty());
  {
    const LockScope lock(&clientListLock);
    nextClientNumber = 65535;
  }
  Client last;
  ASSERT_TRUE(net::Connect(&last));
  EXPECT_FALSE(net::ReceiveType(&last, 6).empty());
  const int64_t started = MonotonicNanoseconds();
  StopNetworkServer();
  EXPECT_LT((MonotonicNanoseconds() - started) / 1000000, 1000 + 2 * 100 + 4 * 10);
  EXPECT_TRUE(net::WaitForClose(&living));
  net::Disconnect(&living);
  net::Disconnect(&last);
}

// One client that sends frames as fast as the connection takes them, in pieces that have nothing to do with
// them.
struct Sender {
  Client client;
  Thread thread;
  uint32_t offset;  // of its own 4 KiB
  uint32_t frames, records, bytes;
  bool large;
};

uint32_t SendWithoutPause(void* argument) {
  Sender& sender = *static_cast<Sender*>(argument);
  std::minstd_rand random(sender.offset);
  Bytes stream;
  for (uint32_t frame = 1; frame <= sender.frames; ++frame) {
    Bytes list;
    const uint32_t records = sender.large ? 40 : 1;
    for (uint32_t i = 0; i < records; ++i) {
      const auto size = static_cast<uint32_t>(sender.large ? 1 + random() % 90 : 4);
      Bytes data(size, static_cast<uint8_t>(frame));
      std::copy_n(reinterpret_cast<const uint8_t*>(&frame), std::min<size_t>(size, 4), data.begin());
      const Bytes record = net::WriteRecord(sender.offset + 100 * i, data);
      list.insert(list.end(), record.begin(), record.end());
      sender.bytes += size;
      ++sender.records;
    }
    // The last word of all, for who looks whether everything has come.
    const Bytes mark = net::WriteRecord(sender.offset + 0xFF0, net::Word32(frame));
    list.insert(list.end(), mark.begin(), mark.end());
    sender.bytes += 4;
    const Bytes whole = net::Request({list});
    stream.insert(stream.end(), whole.begin(), whole.end());
    if (stream.size() < 60000 && frame < sender.frames) continue;
    for (size_t at = 0; at < stream.size();) {
      const size_t piece = std::min<size_t>(1 + random() % 70000, stream.size() - at);
      const auto from = stream.begin() + static_cast<ptrdiff_t>(at);
      if (!net::SendAll(&sender.client, Bytes(from, from + static_cast<ptrdiff_t>(piece)))) return 0;
      at += piece;
    }
    stream.clear();
  }
  return 1;
}

TEST_F(NetTroubleThreads, EightClientsThatNeverPauseLoseNothing) {
  Start();
  static Sender senders[maxClients];
  for (uint32_t i = 0; i < maxClients; ++i) {
    Sender& sender = senders[i];
    sender.offset =
        0x12000 + 0x1000 * i;  // 0x16020 stands in none of them: 4 KiB behind 0x16000 is the fifth's
    if (sender.offset == 0x16000) sender.offset = 0x1A000;
    sender.large = i % 2 != 0;
    sender.frames = sender.large ? 400 : 6000;
    sender.records = sender.bytes = 0;
    ASSERT_TRUE(net::Connect(&sender.client));
  }
  ASSERT_TRUE(net::WaitUntil([] { return ConnectedClients() == maxClients; }));
  uint32_t frames = 0, bytes = 0;
  for (Sender& sender : senders) ASSERT_TRUE(StartThread(&sender.thread, SendWithoutPause, &sender));
  for (Sender& sender : senders) {
    EXPECT_EQ(JoinThread(&sender.thread), 1u);
    frames += sender.frames;
    bytes += sender.bytes;
  }
  for (const Sender& sender : senders) {
    EXPECT_TRUE(net::WaitUntil([&] { return Memory(sender.offset + 0xFF0, 4) == net::Word32(sender.frames); }))
        << "the last value of the client at " << sender.offset;
  }
  // Not only the last ones: each list was served, each record applied.
  EXPECT_EQ(Counters().requests, frames);
  EXPECT_EQ(Counters().bytesWritten, bytes);
  for (Sender& sender : senders) net::Disconnect(&sender.client);
}

TEST_F(NetTroubleThreads, PiecesOfAFrameMeetWhenTheyComeSoonAndAreNoneWhenTheyDoNot) {
  Start();
  Client client;
  ASSERT_TRUE(net::Connect(&client));
  const Bytes frame = net::Request({net::WriteRecord(0x66C0, {1, 2, 3, 4})});
  const auto send = [&](size_t from, size_t to) {
    return net::SendAll(&client, Bytes(frame.begin() + static_cast<ptrdiff_t>(from),
                                       frame.begin() + static_cast<ptrdiff_t>(to)));
  };
  for (size_t cut = 1; cut < frame.size(); ++cut) {
    // A pause that is too long for a loaded machine may turn up: only the whole row of tries must succeed.
    ASSERT_TRUE(net::WaitUntil([&] {
      {
        const LockScope lock(&offsetLock);
        Store<uint32_t>(0x66C0, 0);
      }
      return send(0, cut) && send(cut, frame.size()) &&
             net::WaitUntil(
                 [] {
                   return Memory(0x66C0, 4) == Bytes{1, 2, 3, 4};
                 },
                 1000);
    })) << "cut at "
        << cut;
  }
  // A first half that nothing follows is given up; its other half begins no frame then.
  const uint32_t served = Counters().requests;
  ASSERT_TRUE(send(0, 9));
  SleepMilliseconds(300);  // the rule itself is one of time
  ASSERT_TRUE(send(9, frame.size()));
  SleepMilliseconds(100);
  ASSERT_TRUE(net::SendAll(&client, net::Request({net::WriteRecord(0x66C8, {9})})));
  EXPECT_TRUE(net::WaitUntil([] { return Memory(0x66C8, 1)[0] == 9; }));
  EXPECT_EQ(Counters().requests, served + 1);
  net::Disconnect(&client);
}

// A client that sends a lot, or a frame of several segments, may be held up in the middle of a frame for longer
// than one that sends a small frame in pieces.
TEST_F(NetTroubleThreads, AStreamThatStallsForAMomentLosesNothing) {
  Start();
  Client client;
  ASSERT_TRUE(net::Connect(&client));
  const Bytes large = net::Request({net::WriteRecord(0x12000, Bytes(3000, 7))});
  ASSERT_TRUE(net::SendAll(&client, Bytes(large.begin(), large.begin() + 2000)));
  SleepMilliseconds(150);  // the rule itself is one of time
  ASSERT_TRUE(net::SendAll(&client, Bytes(large.begin() + 2000, large.end())));
  ASSERT_TRUE(net::WaitUntil([&] { return Counters().bytesWritten == 3000; }));
  Bytes stream;
  uint32_t frames = 0;
  for (; stream.size() < 60000; ++frames) {
    const Bytes frame = net::Request({net::WriteRecord(0x66C0, net::Word32(frames))});
    stream.insert(stream.end(), frame.begin(), frame.end());
  }
  const auto middle = stream.end() - 9;
  ASSERT_TRUE(net::SendAll(&client, Bytes(stream.begin(), middle)));
  ASSERT_TRUE(net::WaitUntil([&] { return Counters().requests == frames; }))
      << Counters().requests << " of " << frames;
  SleepMilliseconds(150);
  ASSERT_TRUE(net::SendAll(&client, Bytes(middle, stream.end())));
  EXPECT_TRUE(net::WaitUntil([&] { return Memory(0x66C0, 4) == net::Word32(frames - 1); }));
  net::Disconnect(&client);
}

// While the table is full nobody listens, and anything may happen to the port.
TEST_F(NetTroubleThreads, ListeningAgainIsTriedUntilItWorks) {
  Start();
  Client clients[maxClients];
  for (Client& client : clients) ASSERT_TRUE(net::Connect(&client));
  ASSERT_TRUE(net::WaitUntil([&] { return LogHas("Maximum of clients reached 8"); })) << Log();
  Socket other;
  ASSERT_TRUE(net::WaitUntil([&] {
    CloseSocket(&other);
    return OpenSocket(&other, Transport::Stream) && BindSocket(&other, {net::loopback, requestPort}) &&
           ListenSocket(&other, 1);
  }));
  net::Disconnect(&clients[5]);
  ASSERT_TRUE(net::WaitUntil([&] { return LogHas("the port is taken; close"); })) << Log();
  EXPECT_FALSE(LogHas("Release OK"));
  ASSERT_TRUE(net::SendAll(&clients[0], net::Request({net::WriteRecord(0x66C0, {1})})));
  EXPECT_TRUE(net::WaitUntil([] { return Memory(0x66C0, 1)[0] == 1; }));  // the others are served on
  CloseSocket(&other);
  ASSERT_TRUE(net::WaitUntil([&] { return LogHas("Release OK"); })) << Log();
  ASSERT_TRUE(net::Connect(&clients[5]));
  EXPECT_FALSE(net::ReceiveType(&clients[5], 6).empty());
  EXPECT_EQ(CountText(Log(), "TAVFARNET->Bind failed\n"), 1) << Log();
  for (Client& client : clients) net::Disconnect(&client);
}

#ifndef _WIN32
// Everything that connecting needs handles for.
bool Prepare(Client* client) {
  *client = {};
  return CreateWaker(&client->waker) && OpenSocket(&client->tcp, Transport::Stream) &&
         BindSocket(&client->tcp, {net::loopback, 0}) && OpenSocket(&client->udp, Transport::Datagram) &&
         BindSocket(&client->udp, {net::loopback, net::LocalPort(client->tcp)});
}

// Leaves this program so many handles while it lives.
struct FewHandles {
  explicit FewHandles(int left) {
    getrlimit(RLIMIT_NOFILE, &limit);
    const int lowest = dup(0);
    const rlimit few = {static_cast<rlim_t>(lowest) + 1 + static_cast<rlim_t>(left), limit.rlim_max};
    EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    spare.push_back(lowest);
    for (int fd = dup(0); fd >= 0; fd = dup(0)) spare.push_back(fd);  // the gaps below the limit as well
    for (; left > 0; --left, spare.pop_back()) close(spare.back());
  }
  ~FewHandles() {
    setrlimit(RLIMIT_NOFILE, &limit);
    for (const int fd : spare) close(fd);
  }
  rlimit limit{};
  std::vector<int> spare;
};

TEST_F(NetTroubleThreads, RunningOutOfHandlesIsWaitedOut) {
  Start();
  Client first, second;
  ASSERT_TRUE(net::Connect(&first));
  ASSERT_FALSE(net::ReceiveType(&first, 6).empty());
  ASSERT_TRUE(Prepare(&second));
  bool connected = false, told = false;
  {
    const FewHandles none(0);
    connected = net::ConnectTo(&second, {net::loopback, requestPort});
    told = net::WaitUntil([] { return serverRunning.load() == 0 || IsShortOfResources(); });
  }
  EXPECT_TRUE(connected);
  EXPECT_TRUE(told);
  EXPECT_TRUE(net::WaitUntil([] { return ConnectedClients() == 2; })) << Log();
  EXPECT_FALSE(net::ReceiveType(&second, 6).empty());
  EXPECT_EQ(CountText(Log(), "no handles or memory left"), 1) << Log();
  EXPECT_EQ(CountText(Log(), "accept failed"), 0);
  net::Disconnect(&first);
  net::Disconnect(&second);
}

// One handle is left: a connection can be accepted, but not served. However often somebody tries, one line.
TEST_F(NetTroubleThreads, AcceptedButWithoutHandlesToServe) {
  Start();
  Client first, others[3];
  ASSERT_TRUE(net::Connect(&first));
  ASSERT_FALSE(net::ReceiveType(&first, 6).empty());
  for (Client& other : others) ASSERT_TRUE(Prepare(&other));
  int turnedAway = 0;
  {
    const FewHandles one(1);
    for (Client& other : others) {
      uint8_t byte;
      if (net::ConnectTo(&other, {net::loopback, requestPort}) &&
          ReceiveSocket(&other.tcp, &other.waker, 10000, &byte, 1) == 0)
        ++turnedAway;
    }
  }
  EXPECT_EQ(turnedAway, 3);
  EXPECT_EQ(CountText(Log(), "no handles or memory left"), 1) << Log();
  Client last;
  EXPECT_TRUE(net::Connect(&last));
  EXPECT_FALSE(net::ReceiveType(&last, 6).empty());
  EXPECT_FALSE(IsShortOfResources());
  for (Client& other : others) net::Disconnect(&other);
  net::Disconnect(&first);
  net::Disconnect(&last);
}

TEST_F(NetTroubleThreads, AStartWithoutHandlesSaysSoAndFreesThePorts) {
  ASSERT_TRUE(OpenNetworkServer());
  {
    const FewHandles none(0);
    EXPECT_FALSE(StartNetworkServer());
  }
  EXPECT_FALSE(NetworkServerRuns());
  Start();
  Client client;
  EXPECT_TRUE(net::Connect(&client));
  EXPECT_FALSE(net::ReceiveType(&client, 6).empty());
  net::Disconnect(&client);
}
#endif

TEST(Permissions, AddressesAndNetworksByCommas) {
  const struct {
    const char* allowed;
    uint32_t ip;
    bool comes;
    const char* shown;
  } cases[] = {
      {"", 0x08080808, true, "everyone"},
      {" ", 0x08080808, true, "everyone"},
      {"192.168.0.10", 0xC0A8000A, true, "192.168.0.10"},
      {"192.168.0.10", 0xC0A8000B, false, "192.168.0.10"},
      {"192.168.0.77/24", 0xC0A800FF, true, "192.168.0.0/24"},
      {"192.168.0.0/24", 0xC0A80100, false, "192.168.0.0/24"},
      {"10.0.0.1, 192.168.0.0/16,127.0.0.1", 0xC0A8FFFF, true, "10.0.0.1, 192.168.0.0/16, 127.0.0.1"},
      {"0.0.0.0/0", 0xFFFFFFFF, true, "0.0.0.0/0"},
      {"10.0.0.0/31", 0x0A000001, true, "10.0.0.0/31"},
      {"10.0.0.0/31", 0x0A000002, false, "10.0.0.0/31"},
      // What is neither lets nobody in: a slip of the pen must not open the door.
      {"192.168.0.10/33", 0xC0A8000A, false, "nobody"},
      {"192.168.0.10/", 0xC0A8000A, false, "nobody"},
      {"192.168.0", 0xC0A80001, false, "nobody"},
      {"cockpit", 0x7F000001, false, "nobody"},
      {"cockpit, 10.0.0.1", 0x0A000001, true, "10.0.0.1"},
  };
  for (const auto& test : cases) {
    PreparePermissions(test.allowed, true);
    EXPECT_EQ(IsClientAllowed(test.ip), test.comes) << test.allowed;
    EXPECT_EQ(AllowedClientsText(), test.shown) << test.allowed;
  }
  PreparePermissions("", true);
}

TEST_F(NetTroubleThreads, AListOfAnyLengthMakesShortLines) {
  std::string words, networks;
  for (int i = 0; i < 5000; ++i) {
    words += std::string(200, 'x') + ',';
    networks += "10.0." + std::to_string(i / 250) + '.' + std::to_string(i % 250) + ' ';
  }
  PreparePermissions(words, true);
  EXPECT_LT(Log().size(), 3000u);
  EXPECT_TRUE(LogHas("4995 more entries"));
  PreparePermissions(networks, true);
  EXPECT_TRUE(AllowedClientsText().ends_with(", 10.0.0.19 and 4980 more")) << AllowedClientsText();
}

TEST_F(NetTroubleThreads, WhoIsNotAllowedIsTurnedAwayWithOneLine) {
  PreparePermissions("10.1.2.3", true);
  Start();
  for (int i = 0; i < 20; ++i) {
    Client client;
    ASSERT_TRUE(net::Connect(&client));
    EXPECT_TRUE(net::WaitForClose(&client));
    net::Disconnect(&client);
  }
  EXPECT_EQ(ConnectedClients(), 0u);
  EXPECT_EQ(CountText(Log(), "TAVFARNET->Refused 127.0.0.1: it is not among \"Allowed clients\""), 1) << Log();
  EXPECT_EQ(CountText(Log(), "Waiting for clients"), 1);
}

TEST_F(NetTroubleThreads, ClientsThatMayOnlyReadChangeNothing) {
  PreparePermissions("", false);
  Start();
  Client client;
  ASSERT_TRUE(net::Connect(&client));
  const Bytes mixed =
      net::Request({net::WriteRecord(0x66C0, {1}), net::ReadRecord(0x66C0, 8), net::WriteRecord(0x66C1, {1})});
  for (int i = 0; i < 5; ++i) ASSERT_TRUE(net::SendAll(&client, mixed));
  EXPECT_TRUE(net::WaitUntil([] { return Counters().requests == 5; }));
  EXPECT_TRUE(net::WaitUntil([&] { return LogHas("TAVFARNET->Refused what 127.0.0.1 writes"); })) << Log();
  EXPECT_EQ(CountText(Log(), "TAVFARNET->Refused"), 1);
  EXPECT_EQ(Memory(0x66C0, 2), (Bytes{0, 0}));
  EXPECT_EQ(Counters().bytesRead, 5 * 8u);
  EXPECT_EQ(Counters().bytesWritten, 0u);
  net::Disconnect(&client);
}

}  // namespace
