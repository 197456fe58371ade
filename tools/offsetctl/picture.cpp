#include "picture.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "base/bytes.h"
#include "net/frame.h"
#include "request_block.h"

namespace ctl {

namespace {

constexpr uint8_t typeFirstBlock = 6;
constexpr uint8_t typeSpareBlock = typeFirstBlock + pictureBlocks;
constexpr uint8_t typeRequests = 18;
constexpr uint8_t typeAnnounce = 20;
constexpr uint8_t typeChanges = 103;
constexpr uint16_t endBlock = 0x1A2B;
constexpr uint16_t endRequests = 0xAFFE;
constexpr uint16_t endAnnounce = 0xDEFA;
constexpr uint16_t endChanges = 0xFADE;
constexpr size_t entrySize = 6;  // bank, 0, low 16 bits of the offset, value, 0

constexpr size_t largestFrame = 1200;  // Ethernet carries 1,448 in a segment, tunnels less
constexpr uint32_t largestPart = 1024;
constexpr uint32_t cutUnit = 16;

uint32_t EntryOffset(const uint8_t* entry) {
  return static_cast<uint32_t>(entry[0]) << 16 | LoadFrom<uint16_t>(entry + 2);
}

bool AreEntries(const uint8_t* payload, size_t size) {
  if (size == 0 || size % entrySize != 0) return false;
  for (size_t at = 0; at < size; at += entrySize) {
    if (payload[at] > 1) return false;
  }
  return true;
}

// Pieces of at most largestPart bytes that end at multiples of cutUnit.
std::vector<Transfer> Cut(const std::vector<Transfer>& transfers) {
  std::vector<Transfer> parts;
  for (Transfer rest : transfers) {
    while (rest.size > largestPart) {
      const uint32_t end = (rest.offset + largestPart) / cutUnit * cutUnit;
      const uint32_t size = end - rest.offset;
      parts.push_back({rest.offset, size, rest.bytes});
      rest = {end, rest.size - size, rest.bytes + size};
    }
    parts.push_back(rest);
  }
  return parts;
}

}  // namespace

NetFrame ReadFrame(const uint8_t* datagram, size_t size) {
  NetFrame frame = {FrameKind::None, 0, nullptr, 0};
  if (size < frameOverhead) return frame;
  const size_t length = LoadFrom<uint16_t>(datagram + 2);
  if (size != length + frameOverhead || LoadFrom<uint16_t>(datagram + frameHeader + length) != length)
    return frame;
  const uint8_t type = datagram[0];
  const uint16_t end = LoadFrom<uint16_t>(datagram + frameHeader + length + 2);
  frame.payload = datagram + frameHeader;
  frame.size = length;
  if (type >= typeFirstBlock && type <= typeSpareBlock && end == endBlock && length == pictureBlockSize) {
    frame.block = type - typeFirstBlock;
    frame.kind = type == typeSpareBlock ? FrameKind::Spare : FrameKind::Block;
  } else if (type == typeChanges && end == endChanges && AreEntries(frame.payload, length)) {
    frame.kind = FrameKind::Changes;
  } else if (type == typeAnnounce && end == endAnnounce && length == 0) {
    frame.kind = FrameKind::Announce;
  }
  return frame;
}

std::vector<ByteChange> ChangesOf(const NetFrame& frame) {
  std::vector<ByteChange> changes;
  if (frame.kind != FrameKind::Changes) return changes;
  for (size_t at = 0; at < frame.size; at += entrySize) {
    changes.push_back({EntryOffset(frame.payload + at), frame.payload[at + 4]});
  }
  return changes;
}

void ApplyFrame(const NetFrame& frame, Picture* picture) {
  if (frame.kind == FrameKind::Block) {
    std::memcpy(picture->bytes.data() + frame.block * pictureBlockSize, frame.payload, frame.size);
    picture->arrived |= 1u << frame.block;
  } else if (frame.kind == FrameKind::Changes) {
    for (size_t at = 0; at < frame.size; at += entrySize) {
      picture->bytes[EntryOffset(frame.payload + at)] = frame.payload[at + 4];
    }
  }
}

bool IsComplete(const Picture& picture) { return picture.arrived == (1u << pictureBlocks) - 1; }

uint32_t ArrivedBlocks(const Picture& picture) { return static_cast<uint32_t>(std::popcount(picture.arrived)); }

Echo ExpectEcho(const std::vector<Transfer>& writes, const Picture& picture) {
  Echo echo;
  for (const Transfer& write : writes) {
    for (uint32_t i = 0; i < write.size; ++i) echo[write.offset + i] = write.bytes[i];
  }
  std::erase_if(echo, [&picture](const auto& byte) { return picture.bytes[byte.first] == byte.second; });
  return echo;
}

void TakeEcho(const NetFrame& frame, Echo* echo) {
  if (frame.kind == FrameKind::Block) {
    const uint32_t first = frame.block * pictureBlockSize;
    for (auto byte = echo->lower_bound(first); byte != echo->end() && byte->first < first + pictureBlockSize;) {
      byte = frame.payload[byte->first - first] == byte->second ? echo->erase(byte) : std::next(byte);
    }
  } else if (frame.kind == FrameKind::Changes) {
    for (size_t at = 0; at < frame.size; at += entrySize) {
      const auto byte = echo->find(EntryOffset(frame.payload + at));
      if (byte != echo->end() && byte->second == frame.payload[at + 4]) echo->erase(byte);
    }
  }
}

std::vector<uint8_t> MakeFrame(uint8_t type, const uint8_t* payload, size_t size, uint16_t endMarker) {
  std::vector<uint8_t> frame(size + frameOverhead);
  if (size != 0) std::memcpy(frame.data() + frameHeader, payload, size);
  FinishFrame(frame.data(), type, size, endMarker);
  return frame;
}

std::vector<uint8_t> BlockFrame(const std::vector<uint8_t>& memory, uint32_t block) {
  return MakeFrame(static_cast<uint8_t>(typeFirstBlock + block), memory.data() + block * pictureBlockSize,
                   pictureBlockSize, endBlock);
}

std::vector<uint8_t> ChangeFrame(const std::vector<ByteChange>& changes) {
  std::vector<uint8_t> payload(changes.size() * entrySize);
  for (size_t i = 0; i < changes.size(); ++i) {
    uint8_t* entry = payload.data() + i * entrySize;
    entry[0] = static_cast<uint8_t>(changes[i].offset >> 16);
    StoreTo(entry + 2, static_cast<uint16_t>(changes[i].offset));
    entry[4] = changes[i].value;
  }
  return MakeFrame(typeChanges, payload.data(), payload.size(), endChanges);
}

std::vector<std::vector<uint8_t>> BuildRequestFrames(bool writing, const std::vector<Transfer>& transfers) {
  const RecordKind kind = writing ? RecordKind::Write : RecordKind::Read;
  const std::vector<Transfer> parts = Cut(transfers);
  std::vector<std::vector<uint8_t>> frames;
  for (size_t first = 0; first < parts.size();) {
    std::vector<uint8_t> frame(largestFrame);
    uint8_t* payload = frame.data() + frameHeader;
    const size_t last = PackRecords(kind, parts, first, payload, largestFrame - frameOverhead);
    const std::vector<Transfer> packed(parts.begin() + static_cast<std::ptrdiff_t>(first),
                                       parts.begin() + static_cast<std::ptrdiff_t>(last));
    const auto length = static_cast<uint16_t>(BlockSize(kind, packed, 0));
    frame[0] = typeRequests;
    StoreTo(frame.data() + 2, length);
    StoreTo(payload + length, length);
    StoreTo(payload + length + 2, endRequests);
    frame.resize(length + frameOverhead);
    frames.push_back(frame);
    first = last;
  }
  return frames;
}

}  // namespace ctl
