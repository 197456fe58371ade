// The system refuses each thing that a start creates, in its turn: whoever starts says so, leaves nothing
// behind, and starts the next time.
#include "shortage.h"

#include <cstring>

#include "base/log.h"
#include "controls/axes.h"
#include "controls/buttons.h"
#include "net/frame.h"
#include "net/net.h"
#include "net/relay.h"
#include "net/server.h"
#include "net_harness.h"
#include "platform/detached.h"
#include "settings/settings.h"
#include "status/status_page.h"
#include "traffic/traffic.h"
#include "traffic/traffic_state.h"

namespace {

using shortage::Order, shortage::RefuseEach;
using tools::CountText, tools::WaitUntil;

uint32_t Return7(void*) { return 7; }

TEST(Threads, AreRefusedWhole) {
  Thread thread{};
  const auto start = [&] { return StartThread(&thread, Return7, nullptr); };
  const auto join = [&] { EXPECT_EQ(JoinThread(&thread), 7U); };
  RefuseEach("thread", SystemKind::Thread, 1, start, join);
  RefuseEach("what it waits with", SystemKind::Event, onWindows ? 0 : 2, start, join);
}

TEST(Threads, DetachedWorkIsFinishedOrLeftAlone) {
  static std::atomic<int> stage;
  struct Data {
    int number;
  };
  constexpr auto work = +[](void* data) {
    WaitUntil([] { return stage.load() != 0; });
    static_cast<Data*>(data)->number += 1;
    stage = 2;
  };
  Data data = {41};
  DetachedWork* running = nullptr;
  const auto start = [&] { return (running = StartDetached(work, &data, sizeof data)) != nullptr; };
  for (const SystemKind kind : {SystemKind::Thread, SystemKind::Event}) {
    stage = 0;
    RefuseEach("detached work", kind, kind == SystemKind::Thread || !onWindows, start, [&] {
      EXPECT_FALSE(FinishDetached(&running, 0, &data)) << "does not wait";
      EXPECT_FALSE(FinishDetached(&running, 20, &data)) << "waits no longer";
      EXPECT_NE(running, nullptr);
      stage = 1;
      EXPECT_TRUE(FinishDetached(&running, tools::patienceMs, &data));
    });
    EXPECT_EQ(running, nullptr);
  }
  EXPECT_EQ(data.number, 43);
  EXPECT_FALSE(FinishDetached(&running, 0, &data)) << "none";
  uint8_t large[maxDetachedData + 1] = {};
  EXPECT_EQ(StartDetached(work, large, sizeof large), nullptr);
  const int threads = tools::CountThreads();
  for (const bool done : {true, false}) {
    stage = done ? 1 : 0;
    ASSERT_TRUE(start());
    ASSERT_TRUE(WaitUntil([&] { return !done || stage.load() == 2; }));
    LeaveDetached(&running);
    EXPECT_EQ(running, nullptr);
    stage = 1;
    ASSERT_TRUE(WaitUntil([&] { return tools::CountThreads() == threads; }));
  }
  EXPECT_EQ(data.number, 43) << "their copies were their own";
}

TEST(Events, AreRefusedWhole) {
  Event event;
  RefuseEach(
      "event", SystemKind::Event, 1, [&] { return CreateAutoEvent(&event); }, [&] { CloseEvent(&event); });
  SocketWaker waker;
  ASSERT_TRUE(OpenSocketLibrary());
  RefuseEach(
      "waker", SystemKind::Event, 1, [&] { return CreateWaker(&waker); }, [&] { CloseWaker(&waker); });
  CloseSocketLibrary();
}

TEST(System, FilesAreRefusedWithAReason) {
  const std::string folder = testing::TempDir() + "tavrix_shortage", path = folder + "/a";
  std::filesystem::remove_all(folder);
  RefuseEach(
      "folder", SystemKind::File, 1, [&] { return CreateFolders(folder.c_str()); }, [] {});
  for (const OpenMode mode : {OpenMode::Empty, OpenMode::Append, OpenMode::Read}) {
    FILE* file = nullptr;
    OpenFailure failure;
    const auto open = [&] {
      failure = {};
      file = OpenPlainFile(path.c_str(), mode, &failure);
      if (file != nullptr) return true;
      EXPECT_FALSE(failure.missing);
      EXPECT_NE(failure.reason, "");
      EXPECT_STREQ(failure.remedy, shortageRemedy);
      return false;
    };
    RefuseEach("file", SystemKind::File, 1, open, [&] { EXPECT_EQ(std::fclose(file), 0); });
  }
  tools::WriteFile(path, "new");
  tools::WriteFile(folder + "/b", "old");
  const auto replace = [&] {
    if (ReplaceFile(path.c_str(), (folder + "/b").c_str())) return true;
    EXPECT_STREQ(SystemErrorRemedy(), fullDiskRemedy);
    EXPECT_EQ(tools::ReadFile(folder + "/b"), "old");
    return false;
  };
  RefuseEach("name", SystemKind::File, 1, replace, [] {});
  EXPECT_EQ(tools::ReadFile(folder + "/b"), "new");
  std::filesystem::remove_all(folder);
}

using SettingsFileShortage = net::Network;

TEST_F(SettingsFileShortage, TheOldFileStaysAndTheReasonIsTold) {
  const std::string path = Folder() + "TAVRIX.ini";
  tools::WriteFile(path, "[A]\nb=1\n");
  SetSettingsPath(path.c_str());
  int lines = 0;
  const auto write = [&] {
    if (WriteSetting("A", "b", "2")) return true;
    EXPECT_STRNE(SettingsFault(), "");
    EXPECT_EQ(tools::ReadFile(path), "[A]\nb=1\n");
    EXPECT_EQ(CountText(Log(), path), ++lines) << Log();
    EXPECT_FALSE(LogHas(fullDiskRemedy) && std::filesystem::exists(path + ".tmp")) << "the name was refused";
    return false;
  };
  RefuseEach("settings", SystemKind::File, 3, write, [] {});
  EXPECT_STREQ(SettingsFault(), "");
  EXPECT_EQ(tools::ReadFile(path), "[A]\nb = 2\n");
  EXPECT_TRUE(LogHas(shortageRemedy) && LogHas(fullDiskRemedy)) << Log();
  SetSettingsPath("");
}

using LocksShortage = net::Network;

TEST_F(LocksShortage, AllOrNone) {
  DeleteLocks();
  RefuseEach("locks", SystemKind::Event, 6, CreateLocks, DeleteLocks);
  ASSERT_TRUE(CreateLocks());
}

using ButtonShortage = net::Network;

TEST_F(ButtonShortage, ButtonsAndAxes) {
  RefuseEach("buttons", SystemKind::Event, 2, CreateButtons, DeleteButtons);
  RefuseEach("axes", SystemKind::Event, 1, CreateAxes, DeleteAxes);
  ASSERT_TRUE(CreateButtons() && CreateAxes());
  RefuseEach("thread", SystemKind::Thread, 1, StartButtonThread, StopButtonThread);
  DeleteAxes();
  DeleteButtons();
}

using TrafficShortage = net::Network;

TEST_F(TrafficShortage, ThreadsAndSlots) {
  RefuseEach("list", SystemKind::Event, 1, InitTraffic, ReleaseTraffic);
  ASSERT_TRUE(InitTraffic());
  const auto slot = [] { return StartSlot(5); };
  const auto endSlot = [] {
    EndSlot(5);
    JoinSlot(5);
  };
  const auto manager = [] {
    const bool started = StartTrafficThread();
    EXPECT_EQ(TrafficRuns(), started);
    return started;
  };
  for (const SystemKind kind : {SystemKind::Thread, SystemKind::Event}) {
    RefuseEach("slot", kind, 1, slot, endSlot);
    RefuseEach("manager", kind, 1, manager, StopTrafficThread);
    RefuseEach("models", kind, 1, StartAircraftModelThread, StopAircraftModelThread);
  }
  const char line[] = "TAVRIX->The system gives no thread for slot 00: ";
  aircraftCount = 3;
  {
    const Order order(SystemKind::Thread, 1, 3);
    BeginManager();
    RunManagerRound();
    EXPECT_EQ(activeSlots, 0U);
    EXPECT_EQ(CountText(Log(), line), 1) << "told once while it lasts\n" << Log();
    RunManagerRound();
  }
  for (uint32_t slots = 1; slots <= 2; ++slots) {
    RunManagerRound();
    EXPECT_EQ(activeSlots, slots) << "one a round";
  }
  RunManagerRound();
  EXPECT_EQ(activeSlots, 2U);
  const int handles = CountProcessHandles();
  EndManager();
  EXPECT_EQ(activeSlots, 0U);
  EXPECT_LE(CountProcessHandles(), handles);
  ReleaseTraffic();
}

struct StatusPageShortage : net::Network {};

TEST_F(StatusPageShortage, SaysSoAndAnswersWhenItCan) {
  const auto start = [this] {
    const bool started = StartStatusPage(Folder().c_str());
    EXPECT_EQ(StatusPageRuns(), started);
    return started;
  };
  RefuseEach("thread", SystemKind::Thread, 1, start, StopStatusPage);
  RefuseEach("waker", SystemKind::Event, 1, start, StopStatusPage);
  {
    const Order order(SystemKind::Socket, 1);
    ASSERT_TRUE(start());
    EXPECT_TRUE(WaitUntil([this] { return LogHas("TAVRIX->The status page gets no socket ("); }));
    StopStatusPage();
    EXPECT_FALSE(StatusPageAnswers());
    EXPECT_EQ(Log("httpLog.txt"), "http log\nerror socket\n");
  }
  {
    const Order order(SystemKind::File, 1);
    ASSERT_TRUE(start());
    ASSERT_TRUE(WaitUntil(StatusPageAnswers));
    EXPECT_EQ(CountText(Log(), "TAVRIX->Can't write the status page's log "), 1) << "and the page works";
  }
  for (int times = 1; times <= 2; ++times) {
    net::Client browser{};
    ASSERT_TRUE(OpenSocket(&browser.tcp, Transport::Stream));
    const Order order(SystemKind::Socket, 1, 2);
    ASSERT_TRUE(net::ConnectTo(&browser, {net::loopback, statusPort}));
    const std::string request = "GET /";
    ASSERT_TRUE(SendStream(&browser.tcp, request.data(), request.size()));
    EXPECT_NE(net::ReceiveText(&browser).find("TAVRIX version"), std::string::npos);
    EXPECT_EQ(CountText(Log(), "TAVRIX->The status page cannot answer ("), times) << "told once while it lasts";
    net::Disconnect(&browser);
  }
  StopStatusPage();
}

struct NetShortage : net::Network {
  void SetUp() override {
    net::Network::SetUp();
    PrepareNetwork("127.0.0.1");
  }
};

TEST_F(NetShortage, TheServerStartsWholeOrNotAtAll) {
  const auto stop = [] {
    ASSERT_TRUE(StartNetworkServer());
    StopNetworkServer();
  };
  const char* const ports[] = {"TCP port 65000: ", "UDP port 54942: "};
  int refused = 0;
  const auto open = [&] {
    if (OpenNetworkServer()) return true;
    EXPECT_STREQ(networkStatusText, " FAILED ! Wrong IP address");
    EXPECT_EQ(std::string(networkReasonText).rfind(ports[refused], 0), 0U) << networkReasonText;
    EXPECT_STRNE(networkAlertText, "");
    EXPECT_EQ(CountText(Log(), std::string(ports[refused])), 1) << Log();
    EXPECT_TRUE(LogHas(std::string("; ") + shortageRemedy + "\n"));
    PrepareNetwork("127.0.0.1");
    ++refused;
    return false;
  };
  RefuseEach("sockets", SystemKind::Socket, 2, open, stop);
  EXPECT_EQ(refused, 2);
  const auto start = [] {
    const bool started = OpenNetworkServer() && StartNetworkServer();
    EXPECT_EQ(NetworkServerRuns(), started);
    return started;
  };
  for (const SystemKind kind : {SystemKind::Thread, SystemKind::Event}) {
    RefuseEach("server", kind, 1, start, StopNetworkServer);
  }
  {
    const Order order(SystemKind::Thread, 2);
    ASSERT_TRUE(start());
    EXPECT_TRUE(WaitUntil([this] { return LogHas("no thread or event to announce the server with"); }));
    EXPECT_FALSE(AnnouncementRuns());
    StopNetworkServer();
  }
}

TEST_F(NetShortage, ClientsAreTurnedAwayAndTheNextIsServed) {
  ASSERT_TRUE(OpenNetworkServer() && StartNetworkServer());
  // Who serves a client has started the announcement's thread.
  const auto isIdle = [] { return ConnectedClients() == 0 && burstRunning.load() == 0; };
  net::Client first;
  ASSERT_TRUE(net::Connect(&first));
  ASSERT_TRUE(WaitUntil([] { return ConnectedClients() == 1; }));
  net::Disconnect(&first);
  ASSERT_TRUE(WaitUntil(isIdle));
  const char* const lines[] = {"TAVFARNET->Creating burst thread failed\n",
                               "TAVFARNET->Creating thread no. 1 failed\n"};
  for (int number = 1; number <= 2; ++number) {
    net::Client refused, served;
    {
      // The bursts' thread, then the session's; the bursts may ask for one for the name before it.
      const Order order(SystemKind::Thread, number, number);
      ASSERT_TRUE(net::Connect(&refused));
      EXPECT_TRUE(net::WaitForClose(&refused));
      EXPECT_TRUE(WaitUntil(IsShortOfResources));
    }
    EXPECT_EQ(ConnectedClients(), 0U);
    EXPECT_TRUE(
        WaitUntil([&] { return CountText(Log(), "no handles or memory left for another client") == number; }));
    EXPECT_EQ(CountText(Log(), lines[number - 1]), 1) << Log();
    ASSERT_TRUE(net::Connect(&served));
    EXPECT_TRUE(WaitUntil([] { return ConnectedClients() == 1; }));
    EXPECT_TRUE(WaitUntil([] { return !IsShortOfResources(); }));
    EXPECT_FALSE(net::ReceiveType(&served, frameFirstBlock).empty()) << "blocks come";
    net::Disconnect(&served);
    net::Disconnect(&refused);
    EXPECT_TRUE(WaitUntil(isIdle));
  }
  StopNetworkServer();
}

TEST_F(NetShortage, AClientsNameIsLookedUpOnce) {
  ASSERT_TRUE(OpenNetworkServer() && StartNetworkServer());
  const auto lines = [this] {
    return CountText(Log(), "no thread to look up the name of 127.0.0.1: it stays \"unknown\"; ");
  };
  // Behind those of the bursts and of the session, mostly: the session's may be the later one, and is refused
  // then.
  for (int attempt = 0, number = 1000; lines() == 0; ++attempt, number = 3) {
    ASSERT_LT(attempt, 20);
    net::Client client;
    const Order order(SystemKind::Thread, number, 1000);
    ASSERT_TRUE(net::Connect(&client));
    EXPECT_TRUE(WaitUntil([] {
      const LockScope lock(&clientListLock);
      return (clientSlots[0].inUse && !clientSlots[0].nameWanted) || IsShortOfResources();
    }));
    net::Disconnect(&client);
    EXPECT_TRUE(WaitUntil([] { return ConnectedClients() == 0 && burstRunning.load() == 0; }));
  }
  StopNetworkServer();
}

struct RelayShortage : NetShortage {};

TEST_F(RelayShortage, IsTold) {
  int failed = 0;
  for (const RelayRole role : {RelayRole::Sender, RelayRole::Receiver}) {
    RefuseEach(
        "socket", SystemKind::Socket, 1,
        [&] {
          const bool opened = OpenRelay(role);
          EXPECT_EQ(std::string(relayReasonText).rfind("UDP port ", 0) == 0, !opened) << relayReasonText;
          failed += opened ? 0 : 1;
          return opened;
        },
        CloseRelay);
  }
  EXPECT_EQ(CountText(Log(), "TAVRIX->UDP Broadcast server init FAILED\n"), failed);
  for (const SystemKind kind : {SystemKind::Thread, SystemKind::Event}) {
    const int before = CountText(Log(), "nothing comes from the other simulator");
    int refused = 0;
    RefuseEach(
        "thread", kind, 1,
        [&] {
          if (StartRelayThread()) return true;
          EXPECT_STREQ(relayReasonText, "the system gives no thread to receive with");
          ++refused;
          return false;
        },
        StopRelayThread);
    EXPECT_EQ(CountText(Log(), "nothing comes from the other simulator"), before + refused);
  }
}

}  // namespace
