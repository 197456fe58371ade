// Requests as clients send them: the record list walked, its bounds, counters and traces; the path block.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "base/log.h"
#include "bridge/registry.h"
#include "offsets/dispatcher.h"
#include "offsets/request_walk.h"
#include "row_harness.h"
#include "test_tools.h"

namespace {

RequestScratch scratch;

uint8_t Byte(uint32_t offset) {
  LockScope lock(&offsetLock);
  return Load<uint8_t>(offset);
}
void SetByte(uint32_t offset, uint8_t value) {
  LockScope lock(&offsetLock);
  Store<uint8_t>(offset, value);
}
// A request block, built record by record.
struct Block {
  std::vector<uint8_t> bytes;

  Block& Word(uint32_t word) {
    const auto* from = reinterpret_cast<const uint8_t*>(&word);
    bytes.insert(bytes.end(), from, from + sizeof word);
    return *this;
  }
  Block& ReadRecord(uint32_t offset, uint32_t size) {
    Word(recordRead).Word(offset).Word(size).Word(0xC0FFEE);
    bytes.resize(bytes.size() + size, 0xEE);
    return *this;
  }
  Block& WriteRecord(uint32_t offset, const std::vector<uint8_t>& data) {
    Word(recordWrite).Word(offset).Word(static_cast<uint32_t>(data.size()));
    bytes.insert(bytes.end(), data.begin(), data.end());
    return *this;
  }
  Block& End() { return Word(recordEnd); }
  bool Serve(PathSource source = PathSource::Local) {
    return ServeRecords(bytes.data(), bytes.size(), source, CountRequest(), &scratch);
  }
};

struct Request : testing::Test {
  std::filesystem::path folder = std::filesystem::temp_directory_path() / "tavrix-request-test";
  void SetUp() override {
    rows::Start("jet");
    std::filesystem::create_directories(folder);
    OpenLogs((folder / "").string().c_str(), [](const char*) {});
    requestCounters = {};
  }
  void TearDown() override {
    readTrace = 0;
    writeTrace = 0;
    CloseLogs();
    std::filesystem::remove_all(folder);
    rows::Stop();
  }
  std::string Trace() const { return tools::ReadFile(folder / "TAVRIX.log"); }
};

TEST_F(Request, RecordsAreServedInOrderWithoutAlignment) {
  Block block;
  block.WriteRecord(0x66C0, {1, 2, 3})
      .ReadRecord(0x66C0, 3)
      .ReadRecord(0x66C1, 0)
      .WriteRecord(0x66C1, {})
      .End();
  EXPECT_TRUE(block.Serve());
  EXPECT_EQ(std::memcmp(block.bytes.data() + 15 + 16, "\1\2\3", 3), 0);
  EXPECT_EQ(requestCounters.requests, 1U);
  EXPECT_EQ(requestCounters.bytesRead, 3U);
  EXPECT_EQ(requestCounters.bytesWritten, 3U);
  Block empty;
  EXPECT_TRUE(empty.End().Serve());
  EXPECT_EQ(requestCounters.requests, 2U);
}

// What a record that does not fit does: 0, nothing of it applied, records before it stay served.
TEST_F(Request, BoundsAreCheckedBeforeAnythingIsApplied) {
  struct Case {
    const char* what;
    uint32_t type, offset, size;
    size_t room;  // bytes of data that the block really holds
  };
  const Case cases[] = {
      {"read past the memory", recordRead, 0x1FFFF, 2, 2},
      {"write past the memory", recordWrite, 0x1FFFF, 2, 2},
      {"offset far outside", recordWrite, 0xFFFFFFF0, 4, 4},
      {"sum wraps to a small number", recordWrite, 0x100, 0xFFFFFF10, 16},
      {"read larger than the block", recordRead, 0x100, 64, 63},
      {"write larger than the block", recordWrite, 0x100, 64, 63},
      {"size of everything", recordRead, 0, 0xFFFFFFFF, 16},
  };
  for (const Case& test : cases) {
    Block block;
    block.WriteRecord(0x66D0, {7});
    const size_t start = block.bytes.size();
    block.Word(test.type).Word(test.offset).Word(test.size);
    if (test.type == recordRead) block.Word(0);
    block.bytes.resize(block.bytes.size() + test.room, 0x5A);
    SetByte(0x66D0, 0);
    const auto before = offsetMemory;
    const auto sent = block.bytes;
    EXPECT_FALSE(block.Serve()) << test.what;
    EXPECT_EQ(Byte(0x66D0), 7) << test.what;
    SetByte(0x66D0, 0);
    EXPECT_EQ(std::memcmp(&before, &offsetMemory, sizeof before), 0) << test.what;
    EXPECT_TRUE(std::equal(sent.begin() + static_cast<ptrdiff_t>(start), sent.end(),
                           block.bytes.begin() + static_cast<ptrdiff_t>(start)))
        << test.what;
  }
  Block last;
  EXPECT_TRUE(last.WriteRecord(0x1FFFF, {9}).End().Serve()) << "the last byte is inside";
  EXPECT_EQ(Byte(0x1FFFF), 9);
  for (const uint32_t offset : {0x20000U, 0x20001U}) {
    Block none;
    EXPECT_EQ(none.WriteRecord(offset, {}).ReadRecord(offset, 0).End().Serve(), offset == 0x20000)
        << "no bytes";
  }
}

TEST_F(Request, ListsWithoutEndFailAtTheBlocksEnd) {
  for (size_t cut = 1; cut <= 20; ++cut) {
    Block block;
    block.WriteRecord(0x66E0, {1}).ReadRecord(0x66E0, 1).End();
    block.bytes.resize(block.bytes.size() - cut);
    EXPECT_FALSE(block.Serve()) << cut << " bytes cut off";
  }
  Block nothing;
  EXPECT_FALSE(nothing.Serve());
}

TEST_F(Request, UnknownRecordStopsTheWalkAndIsZeroed) {
  PublishRunningTime(12.345F);
  Block block;
  block.ReadRecord(0x3304, 4).Word(7).WriteRecord(0x66F0, {1}).End();
  EXPECT_FALSE(block.Serve());
  uint32_t word = 0;
  std::memcpy(&word, block.bytes.data() + 20, sizeof word);
  EXPECT_EQ(word, 0U);
  EXPECT_EQ(Byte(0x66F0), 0);
  const std::string pointer = std::to_string(sizeof(void*));
  EXPECT_NE(Trace().find(" 0012.35 default, headesize=16 void*=" + pointer + "\n"), std::string::npos)
      << Trace();
}

TEST_F(Request, ReadOnlyRecordsAreSkippedWhole) {
  writeTrace = 1;
  Block block;
  block.WriteRecord(0x0238, {9, 9, 9}).WriteRecord(0x6700, {5}).End();
  SetByte(0x0238, 1);
  EXPECT_TRUE(block.Serve());
  EXPECT_EQ(Byte(0x0238), 1);
  EXPECT_EQ(Byte(0x6700), 5);
  EXPECT_EQ(requestCounters.bytesWritten, 1U);
  EXPECT_EQ(Trace().find("Offset: 0238"), std::string::npos);
  EXPECT_NE(Trace().find("Req: 000001 WRITE Offset: 6700 Bytes: 001 value: 05 \n"), std::string::npos)
      << Trace();
}

// What a refresh does to the memory while a value waits for the write cycle.
void Refresh(uint32_t offset, const std::vector<uint8_t>& bytes) {
  CopyToMemory(offset, static_cast<uint32_t>(bytes.size()), bytes.data());
}

TEST_F(Request, WaitingValueIsTheOneToCompareWith) {
  using Bytes = std::vector<uint8_t>;
  struct Write {
    uint32_t offset;
    Bytes bytes;
    bool refreshedBefore;  // the simulator's value, all zero, is in the memory again
  };
  struct Case {
    const char* what;
    std::vector<Write> writes;
    uint32_t offset;
    Bytes staged;  // none: no flag
  };
  const Case cases[] = {
      {"back to the old value", {{0x07CC, {1, 2}, false}, {0x07CC, {0, 0}, false}}, 0x07CC, {0, 0}},
      {"back, refreshed", {{0x07CC, {1, 2}, false}, {0x07CC, {0, 0}, true}}, 0x07CC, {0, 0}},
      {"the same again, refreshed", {{0x07CC, {1, 2}, false}, {0x07CC, {1, 2}, true}}, 0x07CC, {1, 2}},
      {"only the old value", {{0x07CC, {0, 0}, true}}, 0x07CC, {}},
      {"part of it", {{0x07CC, {1, 2}, false}, {0x07CC, {0}, true}}, 0x07CC, {0, 2}},
      {"part of four bytes", {{0x07D4, {1, 2, 3, 4}, false}, {0x07D4, {0, 2}, true}}, 0x07D4, {0, 2, 3, 4}},
      {"text",
       {{0x3F04, {'a', '.', 's'}, false}, {0x3F04, {}, true}, {0x3F04, {'a'}, true}},
       0x3F04,
       {'a', 0, 0}},
      {"text back to nothing", {{0x3F04, {'a', 'b'}, false}, {0x3F04, {0}, true}}, 0x3F04, {0, 0, 0}},
      // The whole metres are the upper half of the altitude.
      {"half of a wider one",
       {{0x0570, {1, 2, 3, 4, 5, 6, 7, 8}, false}, {0x0574, {0, 0, 0, 0}, true}},
       0x0570,
       {1, 2, 3, 4, 0, 0, 0, 0}},
      {"whole of a narrower one",
       {{0x0574, {5, 6, 7, 8}, false}, {0x0570, {0, 0, 0, 0, 0, 0, 0, 0}, true}},
       0x0570,
       {0, 0, 0, 0, 0, 0, 0, 0}},
  };
  for (const Case& c : cases) {
    for (const uint32_t offset : {0x07CCU, 0x07D4U, 0x3F04U, 0x0570U, 0x0574U}) {
      Refresh(offset, Bytes(offset == 0x3F04 ? 252 : 8));
      pendingFlags.flags[offset] = 0;
    }
    for (const Write& write : c.writes) {
      if (write.refreshedBefore) Refresh(c.offset, Bytes(8));
      if (write.bytes.empty()) continue;
      Block block;
      EXPECT_TRUE(block.WriteRecord(write.offset, write.bytes).End().Serve()) << c.what;
    }
    EXPECT_EQ(pendingFlags.flags[c.offset], c.staged.empty() ? 0U : 1U) << c.what;
    EXPECT_TRUE(std::equal(c.staged.begin(), c.staged.end(), pendingValues.bytes + c.offset)) << c.what;
    const LockScope lock(&offsetLock);
    for (const Write& write : c.writes) pendingFlags.flags[write.offset] = 0;
  }
}

// Every offset that clients may stage, in any order of writes, refreshes and frames: the simulator ends with
// what was written last. The simulator is a second memory here that takes staged values as they are.
TEST_F(Request, LastWriteWinsForEveryOffsetInAnyOrder) {
  struct Row {
    uint32_t offset, width;
    bool text, twoOrFour;
  };
  std::vector<Row> all;
  for (const RowTable* table : Catalogue()) {
    for (const OffsetRow& row : table->rows) {
      if (!HasWriter(row)) continue;
      const uint32_t width = row.write.width != 0 ? row.write.width : StoredWidth(row);
      all.push_back({row.offset, width, row.type == Stored::Text, row.offset == 0x0558});
    }
  }
  ASSERT_GT(all.size(), 150U);
  std::vector<uint8_t> simulated(offsetMemorySize), wanted(offsetMemorySize);
  CopyFromMemory(0, offsetMemorySize, simulated.data());
  wanted = simulated;
  uint32_t random = 12345;
  const auto pick = [&](uint32_t count) {
    random = random * 1664525 + 1013904223;
    return (random >> 8) % count;
  };
  const auto refresh = [&](const Row& row) {
    CopyToMemory(row.offset, row.width, simulated.data() + row.offset);
  };
  for (int round = 0; round < 60000; ++round) {
    // Few rows at a time, so that writes to one offset meet; all of them in the course of the test.
    const Row& row = all[(static_cast<size_t>(round) / 200 + pick(4)) % all.size()];
    const uint32_t what = pick(10);
    if (what < 5) {
      uint32_t size = pick(4) == 0 ? 1 + pick(row.width) : row.width;
      if (row.twoOrFour) size = size < 4 ? 2 : 4;
      std::vector<uint8_t> bytes(size);
      for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(pick(2));  // often what stands there already
      if (pick(3) == 0) std::copy_n(simulated.begin() + row.offset, size, bytes.begin());
      EXPECT_TRUE(rows::WriteBytes(row.offset, bytes.data(), size));
      std::copy(bytes.begin(), bytes.end(), wanted.begin() + row.offset);
      if (row.text) std::fill_n(wanted.begin() + row.offset + size, row.width - size, uint8_t{0});
    } else if (what < 8) {
      refresh(row);
    } else {
      for (const Row& staged : all) {
        const LockScope lock(&offsetLock);
        if (pendingFlags.flags[staged.offset] == 0) continue;
        pendingFlags.flags[staged.offset] = 0;
        std::copy_n(pendingValues.bytes + staged.offset, staged.width, simulated.begin() + staged.offset);
      }
      for (const Row& staged : all) refresh(staged);  // and shows what it has
      for (const Row& staged : all) {
        ASSERT_TRUE(std::equal(wanted.begin() + staged.offset, wanted.begin() + staged.offset + staged.width,
                               simulated.begin() + staged.offset))
            << "offset 0x" << std::hex << staged.offset << std::dec << " in round " << round;
      }
    }
  }
}

// It is acted on after the request that wrote it, however that ended, and after no other one.
TEST_F(Request, WeatherAreaIsMarkedByTheRequestThatWroteIt) {
  struct Case {
    uint32_t offset;
    bool ends;
    uint32_t marked;
  };
  for (const Case& test : {Case{0x66C0, true, 0}, {0xC800, true, 1}, {0xC800, false, 1}}) {
    weatherBlockReady = 0;
    Block block;
    block.WriteRecord(test.offset, std::vector<uint8_t>(128, 1)).WriteRecord(0x66D0, {1});
    if (test.ends) block.End();
    EXPECT_EQ(block.Serve(), test.ends);
    EXPECT_EQ(weatherBlockReady, test.marked) << std::hex << test.offset;
  }
  ClearRequestMarks();
}

TEST_F(Request, PathBlockFollowsTheServer) {
  PrepareFolders("C:\\X-Plane 9\\");
  Block whole;
  whole.ReadRecord(0x3C00, 0x300).End();
  EXPECT_TRUE(whole.Serve());
  EXPECT_STREQ(reinterpret_cast<const char*>(whole.bytes.data() + 16 + 0x200), "C:\\X-Plane 9\\");
  struct Case {
    uint32_t offset, size;
    int fills;
  };
  for (const Case& test : {Case{0x3E00, 0x100, 1},
                           {0x3E10, 16, 0},
                           {0x3C01, 0x2FF, 0},
                           {0x3D00, 0x200, 1},
                           {0x3BFC, 4, 0},
                           {0x3E00, 1, 1}}) {
    std::memset(offsetMemory.bytes + 0x3E00, '?', 256);
    FillPathBlock(test.offset, test.size, PathSource::Local);
    EXPECT_EQ(Byte(0x3E00) == 'C', test.fills != 0) << test.offset;
  }
  EXPECT_FALSE(FillPathBlock(0x3E10, 4, PathSource::Local));
  EXPECT_TRUE(FillPathBlock(0x1234, 0, PathSource::Local));
}

TEST(NetworkFolder, ShortestExistingShareWins) {
  struct Case {
    const char* what;
    std::vector<SharedFolder> shares;
    const char* result;
  };
  const std::string folder = "C:\\Games\\X-Plane 9\\";
  const Case cases[] = {
      {"no share", {}, "C:\\Games\\X-Plane 9\\"},
      {"a folder above", {{"games", "C:\\Games"}}, "\\\\SIM\\games\\X-Plane 9\\"},
      {"another case", {{"games", "c:\\GAMES"}}, "\\\\SIM\\games\\X-Plane 9\\"},
      {"only half a name", {{"g", "C:\\Gam"}}, "C:\\Games\\X-Plane 9\\"},
      {"a drive needs no boundary", {{"C", "C:\\"}}, "\\\\SIM\\C\\Games\\X-Plane 9\\"},
      {"the shortest",
       {{"C", "C:\\"}, {"games", "C:\\Games"}, {"longer name", "C:\\Games"}},
       "\\\\SIM\\games\\X-Plane 9\\"},
      {"not there", {{"missing", "C:\\Games"}}, "C:\\Games\\X-Plane 9\\"},
  };
  for (const Case& test : cases) {
    const auto exists = [](const char* path) { return std::strstr(path, "missing") == nullptr; };
    EXPECT_EQ(NetworkFolder(folder, "SIM", test.shares, exists), test.result) << test.what;
  }
  const std::string longFolder = "C:\\" + std::string(300, 'x');
  EXPECT_EQ(NetworkFolder(longFolder, "SIM", {}, [](const char*) { return true; }).size(), 255U);
}

}  // namespace
