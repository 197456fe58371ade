// Network frames and what they carry, without sockets: parsing, request lists, subscriptions, the change scan.
#include <algorithm>
#include <random>

#include "base/log.h"
#include "bridge/registry.h"
#include "net/address.h"
#include "net/change_scan.h"
#include "net/frame.h"
#include "net/server.h"
#include "net_harness.h"
#include "offsets/dispatcher.h"

namespace {

using net::Bytes;
using net::Frame;
using net::Join;
using net::Word32;
using net::WriteRecord;

RequestScratch scratch;

void Serve(Bytes bytes) { ServeFrames(bytes.data(), bytes.size(), &scratch); }

Bytes Memory(uint32_t offset, uint32_t size) {
  LockScope lock(&offsetLock);
  return {offsetMemory.bytes + offset, offsetMemory.bytes + offset + size};
}

uint32_t Requests() {
  LockScope lock(&offsetLock);
  return requestCounters.requests;
}

struct NetFrame : net::Network {
  void SetUp() override {
    net::Network::SetUp();
    ClearShadow();
    ClearSubscriptions();
  }
};

// Each case is one read: a fault of the first frame, then a good one that must not be served either.
TEST_F(NetFrame, FaultyFramesDropTheRestOfTheRead) {
  const Bytes good = net::Request({WriteRecord(0x66C0, {9})});
  struct {
    const char* what;
    size_t at;
    uint8_t value;
  } const faults[] = {
      {"unknown type", 0, 17},
      {"relay type", 0, 0},
      {"longer than the read", 3, 1},
      {"length copy", good.size() - 4, 16},
      {"length copy, high byte", good.size() - 3, 1},
      {"end marker", good.size() - 2, 0xFF},
      {"end marker, high byte", good.size() - 1, 0xFA},
      {"marker of the other type", 0, 86},
  };
  for (const auto& fault : faults) {
    SCOPED_TRACE(fault.what);
    Bytes bad = good;
    bad[fault.at] = fault.value;
    Serve(Join({bad, good}));
    EXPECT_EQ(Requests(), 0u);
    EXPECT_EQ(Memory(0x66C0, 1), Bytes{0});
  }
  for (size_t cut = 0; cut < good.size(); ++cut)
    Serve({good.begin(), good.begin() + static_cast<ptrdiff_t>(cut)});
  EXPECT_EQ(Requests(), 0u);
  Serve(Join({good, net::Request({WriteRecord(0x66C1, {8})}), {18, 0, 200}}));
  EXPECT_EQ(Requests(), 2u);
  EXPECT_EQ(Memory(0x66C0, 2), (Bytes{9, 8}));
}

TEST_F(NetFrame, AnEmptyListCountsARequestAndAnEmptyPayloadIsNone) {
  Serve(net::Request({}));
  EXPECT_EQ(Requests(), 1u);
  Serve(Join({Frame(18, 0, {}, 0xAFFE), net::Request({})}));
  EXPECT_EQ(Requests(), 2u);  // counted, but without an end: the frame behind it is dropped
}

// Short lists in a row must not keep the lock to themselves: each takes it, so each counts for giving way.
TEST_F(NetFrame, EmptyListsGiveWayLikeRecords) {
  const uint32_t before = scratch.served;
  Bytes row;
  for (int i = 0; i < 100; ++i) row = Join({row, net::Request({})});
  Serve(row);
  EXPECT_EQ(Requests(), 100u);
  EXPECT_GE(scratch.served - before, 100u);
}

// The next frame is looked for behind the list's own end, wherever the payload ends.
TEST_F(NetFrame, TheListsEndDecidesWhereTheNextFrameBegins) {
  const Bytes second = net::Request({WriteRecord(0x66C0, {5})});
  // The first frame's payload: end of list, six bytes (they count as trailer and header room), then a frame.
  const Bytes payload = Join({Word32(0), Bytes(4), second, Bytes(64)});
  Serve(Frame(18, 0, payload, 0xAFFE));
  EXPECT_EQ(Memory(0x66C0, 1), Bytes{5});
  EXPECT_EQ(Requests(), 2u);
}

TEST_F(NetFrame, RequestListsKeepTheirBounds) {
  std::fill(VariablesAccessMemBlock + 0x0238, VariablesAccessMemBlock + 0x023B, accessReadOnly);
  struct {
    const char* what;
    Bytes list;
    uint8_t first, last;  // what 0x66C0 and 0x66C1 hold afterwards
  } const cases[] = {
      {"read-only record is skipped",
       Join({WriteRecord(0x66C0, {1}), WriteRecord(0x0238, {7}), WriteRecord(0x66C1, {1}), Word32(0)}), 1, 1},
      {"unknown kind stops", Join({WriteRecord(0x66C0, {2}), Word32(3), WriteRecord(0x66C1, {2}), Word32(0)}),
       2, 0},
      {"data beyond the payload",
       Join({WriteRecord(0x66C0, {3}), Word32(2), Word32(0x66C1), Word32(5), Word32(0)}), 3, 0},
      {"no end", Join({WriteRecord(0x66C0, {6}), WriteRecord(0x66C1, {6})}), 6, 6},
      {"read of everything needs room",
       Join({WriteRecord(0x66C0, {7}), Word32(1), Word32(0), Word32(0x20000), Word32(0), Word32(0)}), 7, 0},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.what);
    InitMemoryBlocks();
    std::fill(VariablesAccessMemBlock + 0x0238, VariablesAccessMemBlock + 0x023B, accessReadOnly);
    Serve(Frame(18, 0, test.list, 0xAFFE));
    EXPECT_EQ(Memory(0x66C0, 2), (Bytes{test.first, test.last}));
    EXPECT_EQ(Memory(0x0238, 1), Bytes{0});
  }
}

TEST_F(NetFrame, ReadsAnswerIntoThePayloadAndTraceWithAStar) {
  PublishRunningTime(12.5F);
  Serve(net::Request({WriteRecord(0x66C0, {0xAB, 0xCD})}));
  readTrace = writeTrace = 1;
  Bytes read = net::Request({net::ReadRecord(0x66C0, 2), WriteRecord(0x66C4, {1})});
  ServeFrames(read.data(), read.size(), &scratch);
  EXPECT_EQ(read[frameHeaderSize + 16], 0xAB);
  EXPECT_EQ(read[frameHeaderSize + 17], 0xCD);
  Serve(Frame(18, 0, Join({Word32(9), Word32(0)}), 0xAFFE));  // an unknown kind leaves no line
  EXPECT_EQ(Log("TAVRIX.log"),
            "*0012.50 Req: 000002 READ  Offset: 66C0 Bytes: 002 value: AB CD \n"
            "*0012.50 Req: 000002 WRITE Offset: 66C4 Bytes: 001 value: 01 \n");
}

TEST_F(NetFrame, SubscriptionsAreMarkedByMode) {
  const Bytes offsets = {0x00, 0x00, 0xFF, 0xFF, 0x34, 0x12, 0x77};  // three and a half
  struct {
    uint16_t mode, marker;
    int expected;
  } const steps[] = {
      {0xABCD, 0xAFFE, 0}, {0, 0xABCD, 0}, {0xABCD, 0xABCD, 1}, {1, 0xABCD, 1}, {0xDCBA, 0xABCD, 0}};
  for (const auto& step : steps) {
    Serve(Frame(86, step.mode, offsets, step.marker));
    for (const uint32_t offset : {0x0000U, 0xFFFFU, 0x1234U}) EXPECT_EQ(IsSubscribed(offset), step.expected);
    EXPECT_FALSE(IsSubscribed(0x0077));
  }
}

TEST(NetAddress, TakesDottedAddressesOnly) {
  struct {
    const char* text;
    uint32_t ip;  // 0: none
  } const cases[] = {{"192.168.0.1", 0xC0A80001},
                     {"10.0.5.7", 0x0A000507},
                     {"255.255.255.255", 0xFFFFFFFF},
                     {"", 0},
                     {"1.2.3", 0},
                     {"1.2.3.4.5", 0},
                     {"1.2.3.256", 0},
                     {"1.2.3.-4", 0},
                     {" 1.2.3.4", 0},
                     {"1.2.3.4 ", 0},
                     {"1..2.3", 0},
                     {"a.b.c.d", 0},
                     {"1.2.3.0004", 0},
                     {"localhost", 0}};
  for (const auto& test : cases) {
    uint32_t ip = 0;
    EXPECT_EQ(ParseAddress(test.text, &ip), test.ip != 0) << test.text;
    EXPECT_EQ(ip, test.ip) << test.text;
    if (test.ip != 0) {
      EXPECT_EQ(AddressText(ip), test.text);
    }
  }
  EXPECT_EQ(AddressText(BroadcastAddress(0x0A000507)), "10.0.5.255");
}

TEST(NetFrameBuild, LengthFieldsHoldTheLowBitsOfALargePayload) {
  std::vector<uint8_t> frame(changeEntriesSize + frameOverhead);
  EXPECT_EQ(FinishFrame(frame.data(), frameChanges, changeEntriesSize, endChanges), frame.size());
  EXPECT_EQ(Bytes(frame.begin(), frame.begin() + 6), (Bytes{103, 0, 2, 0, 0, 0}));
  EXPECT_EQ(Bytes(frame.end() - 4, frame.end()), (Bytes{2, 0, 0xDE, 0xFA}));
}

// The walk that the scan stands for: byte by byte from the first, until one entry more than wanted.
Bytes PlainWalk(Bytes* shadow) {
  Bytes entries;
  for (uint32_t i = 0; i < offsetMemorySize; ++i) {
    const uint8_t value = offsetMemory.bytes[i];
    if (value == (*shadow)[i]) continue;
    (*shadow)[i] = value;
    entries.insert(entries.end(), {static_cast<uint8_t>(i >> 16), 0, static_cast<uint8_t>(i),
                                   static_cast<uint8_t>(i >> 8), value, 0});
    if (entries.size() > 10922 * 6) break;
  }
  return entries;
}

TEST_F(NetFrame, TheScanFindsWhatThePlainWalkFinds) {
  std::mt19937 random(4711);
  Bytes shadow(offsetMemorySize);
  Bytes found(changeEntriesSize);
  size_t most = 0;
  for (int round = 0; round < 200; ++round) {
    // From a single byte to more than one frame holds; sometimes in clusters, sometimes nothing new.
    const uint32_t changes = round % 10 == 0 ? 0 : 1U << random() % 16;
    uint32_t at = random() % offsetMemorySize;
    for (uint32_t i = 0; i < changes; ++i) {
      at = round % 2 == 0 ? random() % offsetMemorySize : (at + random() % 3) % offsetMemorySize;
      offsetMemory.bytes[at] = static_cast<uint8_t>(random());
    }
    const Bytes expected = PlainWalk(&shadow);
    const uint32_t count = ScanChanges(found.data());
    ASSERT_EQ(count * 6, expected.size()) << "round " << round;
    ASSERT_TRUE(std::equal(expected.begin(), expected.end(), found.begin())) << "round " << round;
    most = std::max(most, expected.size());
  }
  EXPECT_EQ(most, 10923u * 6);
  EXPECT_TRUE(LogHas(" Deltabuffer full maxData=10922 deltaOffsetsCount=10923 \n"));
}

TEST_F(NetFrame, TheScanReportsEdgesAndForgetsWhatChangedBack) {
  Bytes found(changeEntriesSize);
  for (const uint32_t at : {0U, 63U, 64U, 4095U, 4096U, 0xFFFFU, 0x10123U, 0x1FFFFU}) {
    offsetMemory.bytes[at] = 7;
    ASSERT_EQ(ScanChanges(found.data()), 1u) << at;
    EXPECT_EQ(Bytes(found.begin(), found.begin() + 6),
              (Bytes{static_cast<uint8_t>(at >> 16), 0, static_cast<uint8_t>(at), static_cast<uint8_t>(at >> 8),
                     7, 0}));
    offsetMemory.bytes[at] = 8;
    offsetMemory.bytes[at] = 7;
    EXPECT_EQ(ScanChanges(found.data()), 0u);
  }
}

// Where a receive ends says nothing about the client's frames.
TEST(Frames, OnlyWholeOnesAndWhatIsNoneAreServed) {
  const Bytes small = net::Request({WriteRecord(0x66C0, {1})});  // 27 bytes
  const Bytes list = Frame(86, 0xABCD, {1, 2, 3, 4}, 0xABCD);
  const Bytes huge = {18, 0, 0xFF, 0xFF, 0, 0, 1, 2, 3};
  const Bytes largest = Frame(18, 0, Bytes(65525), 0xAFFE);
  const Bytes noFrame = {7, 0, 4, 0, 0, 0, 1};
  const auto start = [](const Bytes& frame, size_t size) {
    return Bytes(frame.begin(), frame.begin() + static_cast<ptrdiff_t>(size));
  };
  const struct {
    const char* what;
    Bytes bytes;
    size_t served;
  } cases[] = {
      {"nothing", {}, 0},
      {"two whole ones", Join({small, list}), small.size() + list.size()},
      {"the second without its last byte", Join({small, start(small, small.size() - 1)}), small.size()},
      {"a single byte", start(small, 1), 0},
      {"a header up to its length", Join({small, start(list, 3)}), small.size()},
      {"a header that is no frame's", Join({small, noFrame}), small.size() + noFrame.size()},
      {"a wrong end is a frame all the same", Join({Frame(18, 0, {1}, 7), start(small, 9)}), 11},
      {"longer than can ever be received", Join({small, huge}), small.size() + huge.size()},
      {"the longest that can", largest, largest.size()},
      {"the longest without its last byte", start(largest, largest.size() - 1), 0},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(ServableSize(test.bytes.data(), test.bytes.size(), 65535), test.served) << test.what;
  }
}

}  // namespace
