// The network server over loopback: bursts, the ninth client, start failures, stopping under load.
#include <algorithm>

#include "net/client_table.h"
#include "net/net.h"
#include "net/relay.h"
#include "net/server.h"
#include "net_harness.h"
#include "offsets/memory.h"
#include "platform/clock.h"
#include "platform/system.h"
#include "status/status_page.h"
#include "test_tools.h"

namespace {

using net::Bytes;
using net::Client;
using tools::CountText;

int64_t Milliseconds() { return MonotonicNanoseconds() / 1000000; }

void Put(uint32_t offset, uint8_t value) {
  LockScope lock(&offsetLock);
  Store<uint8_t>(offset, value);
}

// Sends a write and waits until the server has applied it.
bool WritesArrive(Client* client, uint32_t offset, uint8_t value) {
  const Bytes request = net::Request({net::WriteRecord(offset, {value})});
  if (!SendStream(&client->tcp, request.data(), request.size())) return false;
  return net::WaitUntil([=] {
    LockScope lock(&offsetLock);
    return Load<uint8_t>(offset) == value;
  });
}

struct NetServerThreads : net::Network {
  Client clients[maxClients];

  void SetUp() override {
    net::Network::SetUp();
    PrepareNetwork("127.0.0.1");
  }
  void TearDown() override {
    for (Client& client : clients) net::Disconnect(&client);
    StopNetworkServer();
    net::Network::TearDown();
  }
  void Start() {
    ASSERT_TRUE(OpenNetworkServer()) << Log();
    ASSERT_TRUE(StartNetworkServer());
  }
  void ConnectAll() {
    for (Client& client : clients) ASSERT_TRUE(net::Connect(&client));
    ASSERT_TRUE(net::WaitUntil([] { return ConnectedClients() == maxClients; })) << Log();
  }
};

TEST_F(NetServerThreads, AClientGetsEverythingThenTheChangesAndMayWrite) {
  Put(0x00123, 0x11);
  Put(0x1FFFF, 0x99);
  Start();
  Client& client = clients[0];
  ASSERT_TRUE(net::Connect(&client));
  for (uint8_t block = 0; block < 8; ++block) {
    const Bytes frame = net::ReceiveType(&client, static_cast<uint8_t>(6 + block));
    ASSERT_EQ(frame.size(), 16394u);
    EXPECT_EQ(Bytes(frame.begin(), frame.begin() + 6),
              (Bytes{static_cast<uint8_t>(6 + block), 0, 0, 0x40, 0, 0}));
    EXPECT_EQ(Bytes(frame.end() - 4, frame.end()), (Bytes{0, 0x40, 0x2B, 0x1A}));
    if (block == 0) {
      EXPECT_EQ(frame[6 + 0x123], 0x11);
    }
    if (block == 7) {
      EXPECT_EQ(frame[6 + 0x3FFF], 0x99);
    }
  }
  ASSERT_TRUE(net::WaitUntil([&] { return LogHas("Client Creating thread No. 1 to client 127.0.0.1 OK\n"); }));
  {
    LockScope lock(&offsetLock);
    EXPECT_EQ(Load<uint16_t>(0x3520), 0x8123);
  }
  ASSERT_TRUE(WritesArrive(&client, 0x10123, 0x42));
  const Bytes entry = {1, 0, 0x23, 0x01, 0x42, 0};
  int seen = 0;
  while (!seen) {
    const Bytes frame = net::ReceiveType(&client, 103);
    ASSERT_FALSE(frame.empty());
    const size_t payload = frame.size() - 10;
    ASSERT_EQ(payload % 6, 0u);
    EXPECT_EQ(Bytes(frame.begin() + 2, frame.begin() + 4), net::Word16(static_cast<uint32_t>(payload)));
    EXPECT_EQ(Bytes(frame.end() - 4, frame.end()),
              net::Join({net::Word16(static_cast<uint32_t>(payload)), {0xDE, 0xFA}}));
    for (size_t at = 6; at < frame.size() - 4; at += 6)
      seen += std::equal(entry.begin(), entry.end(), frame.begin() + static_cast<ptrdiff_t>(at));
  }
  EXPECT_EQ(seen, 1);
}

TEST_F(NetServerThreads, TheLastClientEndsTheBurstsAndTheNextOneStartsThemAgain) {
  Start();
  for (int round = 1; round <= 3; ++round) {
    ASSERT_TRUE(net::Connect(&clients[0]));
    ASSERT_FALSE(net::ReceiveType(&clients[0], 13).empty()) << "round " << round;
    net::Disconnect(&clients[0]);
    ASSERT_TRUE(net::WaitUntil([&] { return CountText(Log(), " SocketI->Closing burst thread \n") == round; }));
    ASSERT_TRUE(net::WaitUntil([] { return ConnectedClients() == 0; }));
  }
  EXPECT_EQ(CountText(Log(), "Creating burst thread OK\n"), 3);
  EXPECT_EQ(CountText(Log(), "bind() failed"), 0);
}

TEST_F(NetServerThreads, ANinthClientWaitsUntilOneLeavesAgainAndAgain) {
  Start();
  ConnectAll();
  std::vector<std::string> listed;
  EXPECT_TRUE(net::WaitUntil([&] { return TryListClients(&listed); }));
  EXPECT_EQ(listed.size(), 8u);
  EXPECT_TRUE(listed[7].starts_with("127.0.0.1 ")) << listed[7];
  Client ninth;
  for (int round = 1; round <= 2; ++round) {
    ASSERT_TRUE(net::WaitUntil([&] { return CountText(Log(), "Maximum of clients reached 8\n") == round; }))
        << Log();
    ASSERT_TRUE(net::WaitUntil([&] {
      if (!net::Connect(&ninth)) return true;
      net::Disconnect(&ninth);
      return false;
    }));
    Client& leaving = clients[round * 3];
    net::Disconnect(&leaving);
    ASSERT_TRUE(net::WaitUntil([&] { return net::Connect(&ninth); })) << Log();
    EXPECT_FALSE(net::ReceiveType(&ninth, 6).empty());
    EXPECT_TRUE(WritesArrive(&ninth, 0x66C0, static_cast<uint8_t>(round)));
    EXPECT_EQ(CountText(Log(), "TAVFARNET->Release OK\n"), round) << Log();
    leaving = ninth;
  }
  // Numbers are never used again.
  LockScope lock(&clientListLock);
  std::vector<int> numbers;
  for (const ClientSlot& slot : clientSlots) numbers.push_back(slot.number);
  std::sort(numbers.begin(), numbers.end());
  EXPECT_EQ(std::adjacent_find(numbers.begin(), numbers.end()), numbers.end());
  EXPECT_EQ(numbers.back() - numbers.front(), 9);
}

TEST_F(NetServerThreads, StopEndsEverythingInTimeAndLeavesNothing) {
  int handles = 0;
  const int threads = tools::CountThreads();
  Client browser;
  for (int round = 0; round < 2; ++round) {  // the second finds the ports free
    Start();
    ASSERT_TRUE(StartStatusPage(Folder().c_str()));
    ConnectAll();
    const Bytes half = {18, 0, 200, 0, 0, 0, 2};
    ASSERT_TRUE(SendStream(&clients[3].tcp, half.data(), half.size()));
    ASSERT_TRUE(net::WaitUntil([&] { return net::Connect(&browser, statusPort); }));
    ASSERT_FALSE(net::ReceiveType(&clients[7], 6).empty());

    int64_t started = Milliseconds();
    StopStatusPage();
    EXPECT_LT(Milliseconds() - started, 1000);
    started = Milliseconds();
    StopNetworkServer();
    // Stated pauses: two of 100 ms, ten for each client, and as many where the client leaves by itself.
    EXPECT_LT(Milliseconds() - started, 1000 + 2 * 100 + 16 * 10);
    EXPECT_EQ(ConnectedClients(), 0u);
    for (Client& client : clients) EXPECT_TRUE(net::WaitForClose(&client));
    EXPECT_EQ(CountProcessThreads(), threads);
    for (Client& client : clients) net::Disconnect(&client);
    net::Disconnect(&browser);
    if (round == 0) handles = CountProcessHandles();  // what the system opens once is open now
    EXPECT_EQ(CountProcessHandles(), handles);
  }
  const std::string log = Log();
  EXPECT_EQ(CountText(log, " TAVFARNET->Closing Client threads count = 8\n"), 2);
  EXPECT_EQ(CountText(log, " TAVFARNET->Closed Socket serve thread!\n"), 2);
  EXPECT_EQ(CountText(log, "TAVFARSERVER deinit OK!\nTAVFARSERVER Disable !\n"), 2);
}

TEST_F(NetServerThreads, ClientsComeAndGoWhileFramesRun) {
  Start();
  std::atomic<uint32_t> frames{0};
  std::atomic<uint32_t> run{1};
  struct Shared {
    std::atomic<uint32_t>*frames, *run;
  } shared = {&frames, &run};
  Thread simulator{};
  ASSERT_TRUE(StartThread(
      &simulator,
      [](void* argument) -> uint32_t {
        auto* both = static_cast<Shared*>(argument);
        while (both->run->load() != 0) {
          const uint32_t frame = ++*both->frames;
          LockScope lock(&offsetLock);
          Store<uint32_t>(0x0238 + frame % 512 * 128, frame);
        }
        return 0;
      },
      &shared));
  for (int round = 0; round < 3; ++round) {
    ConnectAll();
    for (Client& client : clients) {
      EXPECT_TRUE(WritesArrive(&client, 0x66C0, static_cast<uint8_t>(round + 1)));
      if (round % 2 == 0) {
        EXPECT_FALSE(net::ReceiveType(&client, 103).empty());
      }
      net::Disconnect(&client);
    }
    ASSERT_TRUE(net::WaitUntil([] { return ConnectedClients() == 0; })) << Log();
    ASSERT_TRUE(net::WaitUntil([&] {
      const std::string log = Log();
      return CountText(log, "Release OK") == CountText(log, "Maximum of clients");
    }));
  }
  run = 0;
  JoinThread(&simulator);
  EXPECT_GT(frames.load(), 0u);
}

struct FailureCase {
  const char* address;
  uint16_t taken;  // TCP port that another program holds, 0 for none
  const char* line;
  const char* advice;
};

TEST_F(NetServerThreads, AStartThatFailsNamesWhatWasTriedAndWhatToChange) {
  const FailureCase cases[] = {
      {"192.0.2.77", 0, "TAVFARNET->Can`t init UDP multicast; tried 192.0.2.77.....\n",
       "address 192.0.2.77, TCP port 65000: this computer does not have it; set \"Server Address\""},
      {"cockpit", 0, "TAVFARNET->Can`t init TCP.....\n", "address cockpit, TCP port 65000: not an address"},
      {"127.0.0.1", 65000, "TAVFARNET->Can`t init TCP.....\n", "TCP port 65000: the port is taken; close"},
  };
  for (const FailureCase& test : cases) {
    SCOPED_TRACE(test.address);
    Socket other;
    if (test.taken != 0) {
      ASSERT_TRUE(OpenSocket(&other, Transport::Stream) && BindSocket(&other, {net::loopback, test.taken}));
      ASSERT_TRUE(ListenSocket(&other, 1));
    }
    PrepareNetwork(test.address);
    EXPECT_FALSE(OpenNetworkServer());
    EXPECT_TRUE(LogHas("TAVFARNET->Bind failed\n"));
    EXPECT_TRUE(LogHas(test.line)) << Log();
    EXPECT_TRUE(LogHas(test.advice)) << Log();
    EXPECT_STREQ(networkStatusText, " FAILED ! Wrong IP address");
    EXPECT_NE(std::string(networkReasonText).find(test.taken ? "TCP port 65000 is taken" : test.address),
              std::string::npos);
    EXPECT_NE(std::string(networkAlertText).find(test.taken ? "port 65000" : test.address), std::string::npos);
    CloseSocket(&other);
  }
  StopNetworkServer();  // nothing runs: nothing happens
  PrepareNetwork("127.0.0.1");
  EXPECT_STREQ(networkStatusText, "");
  Start();
  EXPECT_TRUE(LogHas(" Granting multicast to 127.0.0.1\n"));
}

}  // namespace
