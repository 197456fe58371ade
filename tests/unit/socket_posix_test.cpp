// What the system is told about our sockets, and how waits end. Linux alone: the options are read back.
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "net_harness.h"
#include "platform/addresses.h"
#include "platform/clock.h"
#include "platform/socket.h"
#include "platform/system.h"

namespace {

struct NetSockets : testing::Test {
  Socket stream, datagram;
  SocketWaker waker;
  void SetUp() override {
    ASSERT_TRUE(OpenSocket(&stream, Transport::Stream) && OpenSocket(&datagram, Transport::Datagram) &&
                CreateWaker(&waker));
  }
  void TearDown() override {
    CloseSocket(&stream);
    CloseSocket(&datagram);
    CloseWaker(&waker);
  }
  static int Option(const Socket& socket, int level, int option) {
    int value = -1;
    socklen_t size = sizeof value;
    EXPECT_EQ(getsockopt(static_cast<int>(socket.handle), level, option, &value, &size), 0);
    return value;
  }
};

TEST_F(NetSockets, Options) {
  EXPECT_TRUE(SetKeepAlive(&stream) && AllowBroadcast(&datagram) && SetSendQueue(&datagram, 10000));
  EXPECT_TRUE(SetMulticastInterface(&datagram, net::loopback));
  EXPECT_FALSE(SetMulticastInterface(&datagram, 0x01020304)) << "not this computer's";
  const std::tuple<const Socket*, int, int, int> wanted[] = {
      {&stream, SOL_SOCKET, SO_KEEPALIVE, 1},
      {&stream, IPPROTO_TCP, TCP_KEEPIDLE, 10},
      {&stream, IPPROTO_TCP, TCP_KEEPINTVL, 5},
      {&stream, IPPROTO_TCP, TCP_KEEPCNT, 3},
      {&datagram, SOL_SOCKET, SO_BROADCAST, 1},
      {&datagram, SOL_SOCKET, SO_SNDBUF, 20000},  // the system doubles it
      {&datagram, IPPROTO_IP, IP_MULTICAST_LOOP, 0}};
  for (const auto& [socket, level, option, value] : wanted)
    EXPECT_EQ(Option(*socket, level, option), value) << option;
  for (const intptr_t handle : {stream.handle, datagram.handle, waker.handle}) {
    EXPECT_EQ(fcntl(static_cast<int>(handle), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
  }
  EXPECT_FALSE(SetKeepAlive(&datagram)) << "is no stream";
}

TEST_F(NetSockets, ListenersShareNoPortAndDoNotBlock) {
  EXPECT_TRUE(BindSocket(&stream, {net::loopback, 0}) && ListenSocket(&stream, 3));
  EXPECT_EQ(Option(stream, SOL_SOCKET, SO_REUSEADDR), 1);
  EXPECT_NE(fcntl(static_cast<int>(stream.handle), F_GETFL) & O_NONBLOCK, 0);
  EXPECT_TRUE(BindSocket(&datagram, {net::loopback, 0}));
  EXPECT_EQ(Option(datagram, SOL_SOCKET, SO_REUSEADDR), 0);
  EXPECT_FALSE(ListenSocket(&datagram, 3));
  Socket second;
  ASSERT_TRUE(OpenSocket(&second, Transport::Datagram));
  EXPECT_FALSE(BindSocket(&second, {net::loopback, net::LocalPort(datagram)}));
  EXPECT_EQ(ClassifySocketError(SocketErrorNumber()), SocketFault::PortTaken);
  EXPECT_FALSE(OpenBroadcastReceiver(&second, {net::loopback, net::LocalPort(datagram)}));
  EXPECT_EQ(SocketErrorNumber(), EADDRINUSE);
  EXPECT_EQ(second.handle, -1);
  EXPECT_FALSE(ListenSocket(&second, 3)) << "none";
  Socket accepted;
  SocketAddress peer;
  WakeSocket(&waker);
  EXPECT_EQ(AcceptSocket(&stream, &waker, &accepted, &peer), 0);
}

// A socket for all addresses of this computer, which tells apart where a datagram was sent to.
TEST_F(NetSockets, BroadcastReceiversPassOverWhatIsForOthers) {
  ASSERT_TRUE(OpenBroadcastReceiver(&datagram, {net::loopback, 0}));
  Socket sender;
  ASSERT_TRUE(OpenSocket(&sender, Transport::Datagram) && BindSocket(&sender, {net::loopback, 0}));
  const uint16_t port = net::LocalPort(datagram);
  uint8_t number = 0, got = 0;
  for (const uint32_t to : {0x7F000002U, net::loopback, 0x7F000003U, 0x7FFFFFFFU, 0x7F000002U, 0x7F0000FFU}) {
    ++number;
    AllowBroadcast(&sender);
    ASSERT_TRUE(SendDatagram(&sender, &number, 1, {to, port})) << to;
  }
  SocketAddress from = {};
  const auto receive = [&](int timeoutMs) {
    return ReceiveBroadcast(&datagram, {.waker = &waker,
                                        .timeoutMs = timeoutMs,
                                        .address = net::loopback,
                                        .buffer = &got,
                                        .size = 1,
                                        .from = &from});
  };
  for (const int expected : {2, 4, 6}) {
    EXPECT_EQ(receive(net::patienceMs), 1);
    EXPECT_EQ(got, expected);
    EXPECT_EQ(from.ip, net::loopback);
    EXPECT_EQ(from.port, net::LocalPort(sender));
  }
  EXPECT_EQ(receive(20), receiveTimedOut);
  WakeSocket(&waker);
  EXPECT_EQ(receive(-1), receiveWoken);
  CloseSocket(&sender);
}

TEST_F(NetSockets, WaitsEndInTime) {
  ASSERT_TRUE(BindSocket(&datagram, {net::loopback, 0}));
  uint8_t buffer[100];
  const auto lasts = [](int least, const std::function<void()>& wait) {
    const int64_t began = MonotonicNanoseconds();
    wait();
    EXPECT_GE((MonotonicNanoseconds() - began) / 1000000, least);
  };
  lasts(30, [&] { EXPECT_FALSE(WaitWaker(&waker, 30)); });
  lasts(30, [&] { EXPECT_EQ(ReceiveSocket(&datagram, &waker, 30, buffer, sizeof buffer), receiveTimedOut); });
  lasts(30, [] { SleepMilliseconds(30); });
  lasts(1000, [] { SleepMilliseconds(1000); });
  WakeSocket(&waker);
  for (int i = 0; i < 2; ++i) EXPECT_TRUE(WaitWaker(&waker, -1)) << "stays awake";
  EXPECT_EQ(ReceiveSocket(&datagram, &waker, -1, buffer, sizeof buffer), receiveWoken);
  EXPECT_TRUE(SendDatagram(&datagram, buffer, 10, {net::loopback, net::LocalPort(datagram)}));
  CloseWaker(&waker);
  ASSERT_TRUE(CreateWaker(&waker));
  EXPECT_EQ(ReceiveSocket(&datagram, &waker, -1, buffer, 4), 4) << "the rest of a datagram is lost";
  EXPECT_FALSE(SendStream(&stream, buffer, 10)) << "not connected";
  EXPECT_EQ(ReceiveSocket(&stream, &waker, 30, buffer, 4), receiveFailed);
}

TEST(NetErrors, AreClassified) {
  const std::pair<int, SocketFault> cases[] = {{EADDRINUSE, SocketFault::PortTaken},
                                               {EACCES, SocketFault::PortTaken},
                                               {EADDRNOTAVAIL, SocketFault::AddressNotHere},
                                               {EMFILE, SocketFault::NoResources},
                                               {ENFILE, SocketFault::NoResources},
                                               {ENOBUFS, SocketFault::NoResources},
                                               {ENOMEM, SocketFault::NoResources},
                                               {ECONNRESET, SocketFault::Other},
                                               {0, SocketFault::Other}};
  for (const auto& [number, fault] : cases) {
    EXPECT_EQ(ClassifySocketError(number), fault) << number;
    errno = number;
    EXPECT_EQ(SocketErrorNumber(), number);
    EXPECT_EQ(SystemErrorNumber(), number);
  }
  const std::pair<int, const char*> remedies[] = {{EMFILE, shortageRemedy}, {ENFILE, shortageRemedy},
                                                  {ENOMEM, shortageRemedy}, {ENOSPC, fullDiskRemedy},
                                                  {EDQUOT, fullDiskRemedy}, {EFBIG, fullDiskRemedy}};
  for (const auto& [number, remedy] : remedies) {
    errno = number;
    EXPECT_STREQ(SystemErrorRemedy(), remedy) << number;
  }
  errno = EACCES;
  EXPECT_EQ(SystemErrorRemedy(), nullptr);
}

// Nothing but plain files is opened, and no wait for who may be at a pipe's other end.
TEST(System, WhatIsNoPlainFileIsLeftAlone) {
  const std::string folder = testing::TempDir() + "tavrix_no_files/", pipe = folder + "pipe",
                    none = folder + "none";
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const OpenMode mode : {OpenMode::Read, OpenMode::Empty, OpenMode::Append}) {
    for (const std::string& path : {pipe, folder, std::string("/dev/null")}) {
      OpenFailure failure;
      EXPECT_EQ(OpenPlainFile(path.c_str(), mode, &failure), nullptr) << path;
      EXPECT_NE(failure.reason, "") << path;
      EXPECT_FALSE(failure.missing);
      EXPECT_FALSE(IsFileOrNothing(path.c_str())) << path;
    }
  }
  OpenFailure failure;
  EXPECT_EQ(OpenPlainFile(none.c_str(), OpenMode::Read, &failure), nullptr);
  EXPECT_TRUE(failure.missing);
  EXPECT_TRUE(IsFileOrNothing(none.c_str()));
  for (const auto& [mode, text] :
       {std::pair{OpenMode::Empty, "ab"}, {OpenMode::Append, "abab"}, {OpenMode::Empty, "ab"}}) {
    FILE* file = OpenPlainFile(none.c_str(), mode, &failure);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(fcntl(fileno(file), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    EXPECT_EQ(std::fputs("ab", file), 1);
    EXPECT_TRUE(FlushToDisk(file));
    EXPECT_EQ(std::fclose(file), 0);
    EXPECT_EQ(tools::ReadFile(none), text);
  }
  FILE* full = std::fopen("/dev/full", "wb");
  if (full != nullptr) {
    std::fputs("x", full);
    EXPECT_FALSE(FlushToDisk(full));
    std::fclose(full);
  }
  EXPECT_TRUE(IsDirectory(folder.c_str()));
  EXPECT_FALSE(IsDirectory(none.c_str()));
  EXPECT_FALSE(IsDirectory((none + "x").c_str()));
  EXPECT_EQ(WithSeparator("a") + WithSeparator("a/") + WithSeparator(""), "a/a/");
  int here = 0;
  EXPECT_EQ(ModuleOf(&here), nullptr) << "on the stack";
  EXPECT_NE(ModuleOf(reinterpret_cast<const void*>(&IsDirectory)), nullptr);
  std::filesystem::remove_all(folder);
}

}  // namespace
