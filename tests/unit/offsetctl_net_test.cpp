// The client tool's network side without a network: frames, the picture that lost datagrams leave and later
// ones mend, echoes of writes, and the frames of requests.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>

#include "net/frame.h"
#include "offsetctl/picture.h"

namespace {

using ctl::Echo;
using ctl::FrameKind;
using ctl::Picture;
using ctl::Transfer;
using Bytes = std::vector<uint8_t>;

// Frames as the product itself builds them.
Bytes ProductFrame(uint8_t type, const Bytes& payload, uint16_t endMarker) {
  Bytes frame(payload.size() + ctl::frameOverhead);
  std::copy(payload.begin(), payload.end(), frame.begin() + ctl::frameHeader);
  FinishFrame(frame.data(), type, payload.size(), endMarker);
  return frame;
}

Bytes BlockFrame(const uint8_t* memory, uint32_t block) {
  const uint8_t* first = memory + block * ctl::pictureBlockSize;
  return ProductFrame(static_cast<uint8_t>(frameFirstBlock + block),
                      Bytes(first, first + ctl::pictureBlockSize), endBlock);
}

void AddEntry(Bytes* payload, uint32_t offset, uint8_t value) {
  for (const uint32_t byte : {offset >> 16, 0u, offset & 0xFF, offset >> 8 & 0xFF, uint32_t{value}, 0u}) {
    payload->push_back(static_cast<uint8_t>(byte));
  }
}

Bytes ChangeFrame(std::initializer_list<std::pair<uint32_t, uint8_t>> changes) {
  Bytes payload;
  for (const auto& [offset, value] : changes) AddEntry(&payload, offset, value);
  return ProductFrame(frameChanges, payload, endChanges);
}

FrameKind KindOf(const Bytes& datagram) { return ctl::ReadFrame(datagram.data(), datagram.size()).kind; }

void Apply(const Bytes& datagram, Picture* picture) {
  ctl::ApplyFrame(ctl::ReadFrame(datagram.data(), datagram.size()), picture);
}

TEST(OffsetctlFrame, TakesWholeFramesOnly) {
  const Bytes memory(ctl::offsetMemorySize, 0x5A);
  const Bytes block = BlockFrame(memory.data(), 7);
  const Bytes changes = ChangeFrame({{0x0580, 1}, {0x1FFFF, 2}});
  Bytes spare = block;
  spare[0] = 14;
  const Bytes announce = ProductFrame(frameAnnounce, {}, endAnnounce);
  EXPECT_EQ(KindOf(block), FrameKind::Block);
  EXPECT_EQ(KindOf(spare), FrameKind::Spare);
  EXPECT_EQ(KindOf(changes), FrameKind::Changes);
  EXPECT_EQ(KindOf(announce), FrameKind::Announce);
  for (const Bytes& good : {changes, announce}) {
    for (size_t size = 0; size < good.size(); ++size) {
      const Bytes cut(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size));
      EXPECT_EQ(KindOf(cut), FrameKind::None) << size;
    }
    Bytes longer = good;
    longer.push_back(0);
    EXPECT_EQ(KindOf(longer), FrameKind::None);
  }
  const struct {
    const char* what;
    Bytes frame;
    size_t at;
    uint8_t value;
  } broken[] = {
      {"length", changes, 2, 6},
      {"length copy", changes, changes.size() - 4, 6},
      {"end marker", changes, changes.size() - 1, 0xFB},
      {"bank 2", changes, 6, 2},
      {"bank 2 in the last entry", changes, 12, 2},
      {"type of a request", changes, 0, frameRequestList},
      {"type behind the spare block", block, 0, 15},
      {"type before the first block", block, 0, 5},
      {"a block's end marker on changes", changes, changes.size() - 2, 0x2B},
  };
  for (const auto& row : broken) {
    Bytes frame = row.frame;
    frame[row.at] = row.value;
    EXPECT_EQ(KindOf(frame), FrameKind::None) << row.what;
  }
  EXPECT_EQ(KindOf(ProductFrame(frameChanges, Bytes(7), endChanges)), FrameKind::None) << "half an entry";
  EXPECT_EQ(KindOf(ProductFrame(frameChanges, {}, endChanges)), FrameKind::None) << "no entry";
  EXPECT_EQ(KindOf(ProductFrame(frameFirstBlock, Bytes(0x3FFF), endBlock)), FrameKind::None) << "short block";
  EXPECT_EQ(KindOf(ProductFrame(frameAnnounce, Bytes(1), endAnnounce)), FrameKind::None) << "long announcement";
}

TEST(OffsetctlPicture, IsCompleteWithAllEightBlocks) {
  const Bytes memory(ctl::offsetMemorySize, 0x77);
  Picture picture;
  Bytes spare = BlockFrame(memory.data(), 0);
  spare[0] = 14;
  for (const uint32_t block : {3u, 0u, 7u, 1u, 2u, 2u, 6u, 5u}) {
    Apply(BlockFrame(memory.data(), block), &picture);
    Apply(spare, &picture);
    Apply(ChangeFrame({{0x10123, 0x99}}), &picture);
    EXPECT_FALSE(IsComplete(picture)) << block;
  }
  EXPECT_EQ(ArrivedBlocks(picture), 7u);
  EXPECT_EQ(picture.bytes[0x10123], 0x99);
  Apply(BlockFrame(memory.data(), 4), &picture);
  EXPECT_TRUE(IsComplete(picture));
  EXPECT_EQ(picture.bytes[0x10123], 0x77) << "the block is newer than the change";
}

TEST(OffsetctlPicture, RollingBlocksMendWhatWasLost) {
  std::mt19937 random(20);
  Bytes memory(ctl::offsetMemorySize);
  Picture picture;
  for (uint32_t block = 0; block < ctl::pictureBlocks; ++block)
    Apply(BlockFrame(memory.data(), block), &picture);
  uint32_t lost = 0;
  for (int cycle = 0; cycle < 500; ++cycle) {
    Bytes payload;
    for (uint32_t count = 1 + static_cast<uint32_t>(random() % 40); count > 0; --count) {
      const uint32_t offset = static_cast<uint32_t>(random() % ctl::offsetMemorySize);
      memory[offset] = static_cast<uint8_t>(random());
      AddEntry(&payload, offset, memory[offset]);
    }
    if (random() % 5 == 0) {
      ++lost;
    } else {
      Apply(ProductFrame(frameChanges, payload, endChanges), &picture);
    }
  }
  ASSERT_GT(lost, 0u);
  ASSERT_NE(std::memcmp(picture.bytes.data(), memory.data(), memory.size()), 0);
  for (uint32_t block = 0; block < ctl::pictureBlocks; ++block) {
    Apply(BlockFrame(memory.data(), block), &picture);
    EXPECT_EQ(std::memcmp(picture.bytes.data(), memory.data(), (block + 1) * ctl::pictureBlockSize), 0)
        << block;
  }
}

TEST(OffsetctlEcho, NamesWhatIsMissing) {
  Picture picture;
  picture.bytes[0x101] = 2;
  uint8_t first[] = {1, 2, 3}, last[] = {9}, far[] = {0xFF};
  Echo echo = ctl::ExpectEcho({{0x100, 3, first}, {0x102, 1, last}, {0x1FFFF, 1, far}}, picture);
  EXPECT_EQ(echo, (Echo{{0x100, 1}, {0x102, 9}, {0x1FFFF, 0xFF}}));
  const auto take = [&echo](const Bytes& frame) {
    ctl::TakeEcho(ctl::ReadFrame(frame.data(), frame.size()), &echo);
  };
  take(ChangeFrame({{0x102, 3}, {0x103, 9}, {0x0FFFF, 0xFF}}));
  EXPECT_EQ(echo.size(), 3u) << "other values and other offsets are no echo";
  take(ChangeFrame({{0x102, 9}, {0x102, 0}}));
  EXPECT_EQ(echo, (Echo{{0x100, 1}, {0x1FFFF, 0xFF}})) << "a value that was replaced at once has been shown";
  Bytes memory(ctl::offsetMemorySize);
  memory[0x100] = 1;
  memory[0x1FFFF] = 0xFF;
  take(BlockFrame(memory.data(), 0));
  EXPECT_EQ(echo, (Echo{{0x1FFFF, 0xFF}}));
  take(BlockFrame(memory.data(), 7));
  EXPECT_TRUE(echo.empty());
}

// Writes of all frames, as the product's frame parser and the record layout find them.
void CollectWrites(Bytes frame, Bytes* memory, std::vector<uint32_t>* starts) {
  ReceivedFrame found;
  ASSERT_LE(frame.size(), 1200u);
  ASSERT_TRUE(ParseFrame(frame.data(), frame.size(), 0, &found));
  ASSERT_EQ(found.type, frameRequestList);
  ASSERT_EQ(found.length + ctl::frameOverhead, frame.size());
  const uint8_t* at = found.payload;
  const auto word = [&at](size_t index) {
    uint32_t value;
    std::memcpy(&value, at + 4 * index, sizeof value);
    return value;
  };
  while (word(0) == 2) {
    starts->push_back(word(1));
    std::memcpy(memory->data() + word(1), at + 12, word(2));
    at += 12 + word(2);
  }
  EXPECT_EQ(word(0), 0u);
  EXPECT_EQ(at + 4, found.payload + found.length);
}

TEST(OffsetctlRequest, EveryFrameFitsIntoOneSegment) {
  const struct {
    const char* what;
    std::vector<std::pair<uint32_t, uint32_t>> stretches;
    size_t frames;
  } cases[] = {
      {"one value", {{0x07CC, 2}}, 1},
      {"a part's size", {{0x10, 1024}}, 1},
      {"one more", {{0x10, 1025}}, 1},
      {"all of it", {{0, 0x20000}}, 128},
      {"at an odd offset", {{0x4003, 3000}}, 3},
      {"many values", std::vector<std::pair<uint32_t, uint32_t>>(100, {0x66C0, 4}), 2},
  };
  std::mt19937 random(4);
  for (const auto& row : cases) {
    Bytes wanted(ctl::offsetMemorySize), got(ctl::offsetMemorySize);
    Bytes source(ctl::offsetMemorySize);
    for (uint8_t& byte : source) byte = static_cast<uint8_t>(random());
    std::vector<Transfer> transfers;
    for (const auto& [offset, size] : row.stretches) {
      transfers.push_back({offset, size, source.data() + offset});
      std::memcpy(wanted.data() + offset, source.data() + offset, size);
    }
    const std::vector<Bytes> frames = ctl::BuildRequestFrames(1, transfers);
    EXPECT_EQ(frames.size(), row.frames) << row.what;
    std::vector<uint32_t> starts;
    for (const Bytes& frame : frames) CollectWrites(frame, &got, &starts);
    EXPECT_EQ(got, wanted) << row.what;
    for (const uint32_t start : starts) {
      EXPECT_TRUE(start == row.stretches[0].first || start % 16 == 0) << row.what << " cut at " << start;
    }
  }
}

TEST(OffsetctlRequest, ReadRecordsKeepRoomForTheData) {
  uint8_t unused[256];
  const std::vector<Bytes> frames = ctl::BuildRequestFrames(0, {{0x3E00, 256, unused}});
  ASSERT_EQ(frames.size(), 1u);
  EXPECT_EQ(frames[0].size(), 16 + 256 + 4 + ctl::frameOverhead);
  EXPECT_EQ(frames[0][6], 1);
}

}  // namespace
