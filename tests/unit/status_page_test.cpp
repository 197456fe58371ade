// The status page: its bytes, its log, silent browsers, a taken port, stopping.
#include "status/status_page.h"

#include <clocale>
#include <cmath>
#include <limits>

#include "net_harness.h"
#include "offsets/memory.h"
#include "platform/clock.h"

namespace {

using net::Client;

std::string Join(const std::vector<std::string>& pieces) {
  std::string all;
  for (const std::string& piece : pieces) all += piece;
  return all;
}

constexpr char expectedPage[] =
    "HTTP/1.1 200 OK\nContent-Type: text/html\nConnection: close\nRefresh: 1\n<!DOCTYPE HTML>\n"
    "\n<html>\n<body>\n"
    "<h1>TAVRIX version: 2.0.5.25 </h1>\n"
    "\n<tr>\n"
    "TAVRIX Datarate: 30 1/sec<br/>"
    "Ground elevation: -2 m<br/>"
    "Ground speed: 100 m/sec<br/>"
    "Vertical speed: -1 m/sec<br/>"
    "Aircraft pitch: -2.500000 degrees<br/>"
    "Aircraft bank: 2.500000 degrees<br/>"
    "Aircraft heading: 180 degrees<br/>"
    "\n</tr>\n"
    "\n</body>\n</html>\n";

void StoreValues() {
  LockScope lock(&offsetLock);
  Store<uint16_t>(0x0274, 1092);
  Store<int32_t>(0x0020, -3 * 256 + 1);
  Store<int32_t>(0x02B4, 100 * 65536 + 65535);
  Store<int32_t>(0x02C8, -511);
  Store<double>(0x2F70, 2.5);
  Store<double>(0x2F78, 2.5);
  Store<uint32_t>(0x0580, 0x80000000);
}

TEST(StatusPage, ValuesAtTheirLimits) {
  struct {
    StatusValues values;
    const char* part;
  } const cases[] = {
      {{}, "Datarate: 0 1/sec<br/>"},
      {{}, "pitch: -0.000000 degrees<br/>Aircraft bank: 0.000000 "},
      {{.framePeriod = 1}, "Datarate: 32768 1/sec"},
      {{.framePeriod = 65535}, "Datarate: 0 1/sec"},
      {{.groundElevation = std::numeric_limits<int32_t>::min()}, "elevation: -8388608 m<"},
      {{.groundSpeed = -65535}, "Ground speed: 0 m/sec"},
      {{.verticalSpeed = 256}, "Vertical speed: 1 m/sec"},
      {{.pitch = -1e300}, "pitch: 10000000000000000525047602552044202487044685811081591549"},
      {{.bank = 1234.5678915}, "bank: 1234.567892 degrees"},
      {{.heading = 0xFFFFFFFF}, "heading: 360 degrees"},
      {{.heading = 0x40000000}, "heading: 90 degrees"},
  };
  for (const auto& test : cases) {
    const std::string page = Join(StatusPagePieces(test.values));
    EXPECT_NE(page.find(test.part), std::string::npos) << test.part << " is not in " << page;
  }
  EXPECT_EQ(StatusPagePieces({}).size(), 13u);
}

struct StatusPageThread : net::Network {
  Client browser;
  void Start() {
    ASSERT_TRUE(StartStatusPage(Folder().c_str()));
    ASSERT_TRUE(net::WaitUntil([&] { return net::Connect(&browser, statusPort); })) << Log();
  }
  void TearDown() override {
    net::Disconnect(&browser);
    StopStatusPage();
    net::Network::TearDown();
  }
};

TEST_F(StatusPageThread, EveryRequestGetsThePageAndABrowserALineAMinute) {
  StoreValues();
  ASSERT_NO_FATAL_FAILURE(Start());
  // The third is longer than the buffer, the last one never comes.
  for (const std::string& request : {std::string("GET / HTTP/1.1\r\nHost: \x1b[2Jx\r\n\r\n"),
                                     std::string("nonsense"), std::string(5000, 'x'), std::string()}) {
    ASSERT_TRUE(request.empty() || SendStream(&browser.tcp, request.data(), request.size()));
    EXPECT_EQ(net::ReceiveText(&browser), expectedPage);
    net::Disconnect(&browser);
    ASSERT_TRUE(net::Connect(&browser, statusPort));
  }
  EXPECT_TRUE(StatusPageRuns());
  StopStatusPage();
  EXPECT_FALSE(StatusPageRuns());
  // What a browser sends can neither begin lines of its own nor steer the terminal of who reads the log.
  EXPECT_EQ(Log("httpLog.txt"),
            "http log\nhttp command=GET / HTTP/1.1\\r\\nHost: \\x1B[2Jx\\r\\n\\r\\n\nClosing http thread\n");
}

TEST_F(StatusPageThread, FiftySilentBrowsersDoNotDelayTheEnd) {
  ASSERT_NO_FATAL_FAILURE(Start());
  std::vector<Client> silent(50);
  for (Client& one : silent) {
    one = {};
    ASSERT_TRUE(OpenSocket(&one.tcp, Transport::Stream));
    net::BeginConnect(&one, {net::loopback, statusPort});  // the system queues some of them
  }
  // The page's thread has been through with one silent browser: the next one keeps it when the end comes.
  EXPECT_EQ(net::ReceiveText(&browser).substr(0, 15), "HTTP/1.1 200 OK");
  net::Disconnect(&browser);
  const int64_t started = MonotonicNanoseconds();
  StopStatusPage();
  EXPECT_LT((MonotonicNanoseconds() - started) / 1000000, 1000);
  for (Client& one : silent) CloseSocket(&one.tcp);
}

TEST_F(StatusPageThread, ShownToThisComputerAloneWhenTheUserWantsThat) {
  ASSERT_TRUE(StartStatusPage(Folder().c_str(), true));
  ASSERT_TRUE(net::WaitUntil([&] { return net::Connect(&browser, statusPort); })) << Log();
  const std::string request = "GET /";
  ASSERT_TRUE(SendStream(&browser.tcp, request.data(), request.size()));
  EXPECT_NE(net::ReceiveText(&browser).find("TAVRIX version"), std::string::npos);
  // Another address of this computer, which the page for everybody answers at, too.
  Client other{};
  ASSERT_TRUE(OpenSocket(&other.tcp, Transport::Stream));
  EXPECT_FALSE(net::ConnectTo(&other, {0x7F000002, statusPort}));
  CloseSocket(&other.tcp);
}

TEST_F(StatusPageThread, ATakenPortIsLoggedAndStopEndsTheWait) {
  Socket other;
  ASSERT_TRUE(OpenSocket(&other, Transport::Stream) && BindSocket(&other, {0, statusPort}) &&
              ListenSocket(&other, 1));
  ASSERT_TRUE(StartStatusPage(Folder().c_str()));
  EXPECT_TRUE(net::WaitUntil([&] { return LogHas("error bind\n") && LogHas("cannot use TCP port 4321"); }));
  StopStatusPage();
  EXPECT_FALSE(StatusPageRuns());
  CloseSocket(&other);
}

}  // namespace
