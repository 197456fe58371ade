// Relay records: frames, what they set in the simulator, passing on, and the receiver of client mode.
#include "net/relay.h"

#include <cmath>
#include <cstring>
#include <limits>

#include "base/locks.h"
#include "core/sim.h"
#include "net/net.h"
#include "net/permissions.h"
#include "net_harness.h"
#include "platform/clock.h"
#include "platform/system.h"

namespace {

using net::Bytes;

Bytes Record(const std::string& name, uint8_t forward, uint8_t index, int whole, float single, double wide) {
  Bytes record(relayRecordSize);
  std::memcpy(record.data(), name.data(), std::min(name.size(), relayNameSize));
  record[relayForwardAt] = forward;
  record[relayIndexAt] = index;
  std::memcpy(&record[relayIntAt], &whole, 4);
  std::memcpy(&record[relayFloatAt], &single, 4);
  std::memcpy(&record[relayDoubleAt], &wide, 8);
  return record;
}

Bytes RelayFrame(const Bytes& record) {
  Bytes frame(relayFrameSize);
  BuildRelayFrame(record.data(), frame.data());
  return frame;
}

// A client's write of the record; it reaches the store through the dispatcher.
void WriteRelay(const Bytes& record) {
  RequestMarks marks = {};
  LockScope lock(&offsetLock);
  EXPECT_TRUE(DispatchWrite(relayRecordOffset, relayRecordSize, record.data(), &marks));
}

Bytes Waiting() {
  LockScope lock(&offsetLock);
  if (relayRecordStore.waiting.load() == 0) return {};
  return {relayRecordStore.bytes, relayRecordStore.bytes + relayRecordSize};
}

TEST(RelayFrames, HaveOneShapeAndOnlyTheLengthsAreChecked) {
  const Bytes record = Record("sim/test", 1, 2, 3, 4, 5);
  const Bytes frame = RelayFrame(record);
  EXPECT_EQ(frame, net::Join({{0, 0, 120, 0, 0, 0}, record, {120, 0, 0, 0}}));
  struct {
    const char* what;
    size_t at;
    uint8_t value;
    int taken;
  } const cases[] = {{"type", 0, 9, 1},
                     {"end marker", 128, 9, 1},
                     {"auxiliary", 4, 9, 1},
                     {"length", 2, 121, 0},
                     {"length, high byte", 3, 1, 0},
                     {"copy", 126, 0, 0},
                     {"copy, high byte", 127, 1, 0}};
  Bytes got(relayRecordSize);
  for (const auto& test : cases) {
    Bytes changed = frame;
    changed[test.at] = test.value;
    EXPECT_EQ(ParseRelayFrame(changed.data(), changed.size(), got.data()), test.taken) << test.what;
    EXPECT_EQ(got, test.taken ? record : Bytes(relayRecordSize)) << test.what;
  }
  for (size_t size = 0; size <= frame.size(); ++size) {
    const Bytes cut(frame.begin(), frame.begin() + static_cast<ptrdiff_t>(size));
    EXPECT_EQ(ParseRelayFrame(cut.data(), cut.size(), got.data()), size >= 128) << size;
  }
}

struct RelayThread : net::Network {
  void SetUp() override {
    net::Network::SetUp();
    sim::Options options;
    options.rate = 0;
    options.circuit = false;
    ASSERT_EQ(sim::SimStart(options), 0);
    PrepareNetwork("127.0.0.1");
  }
  void TearDown() override {
    CloseRelay();
    sim::SimStop();
    net::Network::TearDown();
  }
};

TEST_F(RelayThread, ARecordSetsByTheExactType) {
  const struct {
    const char* define;
    const char* before;
    const char* after;
  } cases[] = {{"int", "ok 0", "ok 7"},
               {"float", "ok 0.0", "ok 1.5"},
               {"double", "ok 0.0", "ok 2.25"},
               {"int[5]", "ok 0 0 0 0 0", "ok 0 0 0 7 0"},
               {"float[5]", "ok 0.0 0.0 0.0 0.0 0.0", "ok 0.0 0.0 0.0 1.5 0.0"},
               {"byte[5]", "ok \"\"", "ok \"\""}};
  for (const auto& test : cases) {
    SCOPED_TRACE(test.define);
    ASSERT_EQ(sim::SimCommand(std::string("define net/value ") + test.define), "ok");
    EXPECT_EQ(sim::SimCommand("get net/value"), test.before);
    WriteRelay(Record("net/value", 0, 3, 7, 1.5F, 2.25));
    ApplyRelayRecord();
    EXPECT_EQ(sim::SimCommand("get net/value"), test.after);
    ApplyRelayRecord();  // taken once only
    ASSERT_EQ(sim::SimCommand("undefine net/value"), "ok");
  }
}

TEST_F(RelayThread, WhatCannotBeSetChangesNothing) {
  ASSERT_EQ(sim::SimCommand("define net/value float[2] 3"), "ok");
  const std::string full(relayNameSize, 'x');  // a name without terminator
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const std::string before = sim::SimCommand("get net/value");
  sim::SimCommand("writes");
  for (const Bytes& record :
       {Record("net/unknown", 0, 0, 7, 7, 7), Record(full, 0, 0, 7, 7, 7), Record("", 0, 0, 7, 7, 7),
        Record("net/value", 0, 0, 7, nan, 7), Record("net/value", 0, 255, 7, 7, 7)}) {
    WriteRelay(record);
    ApplyRelayRecord();
    EXPECT_TRUE(Waiting().empty());
  }
  EXPECT_EQ(sim::SimCommand("get net/value"), before);
}

TEST_F(RelayThread, OnlyAForwardedRecordIsBroadcastOnce) {
  // The broadcast address of 127.0.0.1 is one of this computer's own here.
  Socket receiver;
  SocketWaker waker;
  ASSERT_TRUE(CreateWaker(&waker));
  ASSERT_TRUE(OpenSocket(&receiver, Transport::Datagram) && BindSocket(&receiver, {0, relayPort}));
  ASSERT_TRUE(OpenRelay(RelayRole::Sender));
  EXPECT_TRUE(LogHas("TAVRIX->UDP Broadcast server init OK\n"));
  const Bytes forwarded = Record("net/unknown", 9, 0, 2, 2, 2);
  for (const Bytes& record :
       {Record("net/unknown", 0, 0, 1, 1, 1), forwarded, Record("net/unknown", 0, 0, 3, 3, 3)}) {
    WriteRelay(record);
    ApplyRelayRecord();
    ApplyRelayRecord();
  }
  Bytes datagram(1000);
  const int size = ReceiveSocket(&receiver, &waker, net::patienceMs, datagram.data(), datagram.size());
  ASSERT_EQ(size, static_cast<int>(relayFrameSize));
  datagram.resize(relayFrameSize);
  EXPECT_EQ(datagram, RelayFrame(forwarded));
  uint8_t more[relayFrameSize];
  EXPECT_EQ(ReceiveSocket(&receiver, &waker, 50, more, sizeof more), receiveTimedOut);
  CloseSocket(&receiver);
  CloseWaker(&waker);
}

TEST_F(RelayThread, ClientModeTakesRecordsAndStopsWhileItWaits) {
  ASSERT_TRUE(OpenRelay(RelayRole::Receiver)) << Log();
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(StartRelayThread());
    Socket sender;
    ASSERT_TRUE(OpenSocket(&sender, Transport::Datagram));
    const auto send = [&](const Bytes& bytes) {
      return SendDatagram(&sender, bytes.data(), bytes.size(), {net::loopback, relayPort});
    };
    Bytes record = Record("net/value", 7, 1, round, 1, 1);
    ASSERT_TRUE(send(RelayFrame(record)));
    ASSERT_TRUE(net::WaitUntil([] { return !Waiting().empty(); }));
    record[relayForwardAt] = 0;  // never passed on
    EXPECT_EQ(Waiting(), record);
    // A datagram that is no record does not take the waiting one's place; a later record does.
    Bytes last = Record("net/last", 0, 1, round, 1, 1);
    ASSERT_TRUE(send(Bytes(relayFrameSize, 1)));
    ASSERT_TRUE(send({}) || true);
    EXPECT_EQ(Waiting(), record);
    ASSERT_TRUE(send(RelayFrame(last)));
    ASSERT_TRUE(net::WaitUntil([&] { return Waiting() == last; }));
    CloseSocket(&sender);
    const int64_t started = MonotonicNanoseconds();
    StopRelayThread();
    EXPECT_LT(MonotonicNanoseconds() - started, INT64_C(1200000000));
    ApplyRelayRecord();
  }
}

TEST_F(RelayThread, AReceiverWithoutSocketWaitsForStop) {
  Socket other;
  ASSERT_TRUE(OpenSocket(&other, Transport::Datagram) && BindSocket(&other, {net::loopback, relayPort}));
  EXPECT_FALSE(OpenRelay(RelayRole::Receiver));
  EXPECT_TRUE(LogHas("TAVRIX->UDP Broadcast server init FAILED\n"));
  EXPECT_TRUE(LogHas("address 127.0.0.1, UDP port 54945: the port is taken"));
  ASSERT_TRUE(StartRelayThread());
  StopRelayThread();
  CloseSocket(&other);
  PrepareNetwork("192.0.2.77");
  EXPECT_FALSE(OpenRelay(RelayRole::Receiver));
  EXPECT_TRUE(LogHas("address 192.0.2.77, UDP port 54945: this computer does not have it"));
}

// The receiver of client mode hears what was sent to the configured address or to its network, nothing that
// went to another address of this computer; and nobody whom the user's settings keep out.
TEST_F(RelayThread, TheReceiverTakesWhatIsMeantForItFromWhomItMay) {
  constexpr uint32_t other = 0x7F000002, network = 0x7F0000FF;
  const struct {
    const char* what;
    uint32_t to;
    const char* allowedClients;
    bool writes;
    bool taken;
  } cases[] = {{"the address", net::loopback, "", true, true},
               {"another address of this computer", other, "", true, false},
               {"its network", network, "", true, true},
               {"sender not allowed", net::loopback, "10.0.0.0/8", true, false},
               {"sender allowed", net::loopback, "127.0.0.0/8", true, true},
               {"no writes", net::loopback, "", false, false}};
  Socket sender;
  ASSERT_TRUE(OpenSocket(&sender, Transport::Datagram) && BindSocket(&sender, {net::loopback, 0}));
  int32_t mark = 0;
  for (const auto& test : cases) {
    SCOPED_TRACE(test.what);
    // Wine gives a socket that is bound to an address nothing that was sent to its network; Windows does.
    if (pathSeparator == '\\' && test.to == network) continue;
    PreparePermissions("", true);
    ASSERT_TRUE(OpenRelay(RelayRole::Receiver));
    ASSERT_TRUE(StartRelayThread());
    PreparePermissions(test.allowedClients, test.writes);
    // The datagram behind it, which is taken in any case, tells when the one before was passed over.
    const Bytes tried = RelayFrame(Record("net/value", 0, 0, ++mark, 0, 0));
    EXPECT_TRUE(SendDatagram(&sender, tried.data(), tried.size(), {test.to, relayPort}));
    if (test.taken) {
      EXPECT_TRUE(net::WaitUntil([&] { return Waiting() == Record("net/value", 0, 0, mark, 0, 0); }));
    } else if (test.to == other) {
      const Bytes next = RelayFrame(Record("net/value", 0, 0, -1, 0, 0));
      EXPECT_TRUE(SendDatagram(&sender, next.data(), next.size(), {net::loopback, relayPort}));
      EXPECT_TRUE(net::WaitUntil([&] { return Waiting() == Record("net/value", 0, 0, -1, 0, 0); }));
    } else {
      EXPECT_TRUE(net::WaitUntil([&] { return LogHas("TAVFARNET->Refused "); })) << Log();
    }
    StopRelayThread();
    CloseRelay();
    EXPECT_EQ(Waiting().empty(), !test.taken && test.to != other);
    relayRecordStore.waiting = 0;
  }
  CloseSocket(&sender);
  PreparePermissions("", true);
}

}  // namespace
