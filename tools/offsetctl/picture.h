// What a client on the network knows of the offset memory: datagrams in, bytes out. Pure; any thread, callers
// lock a picture that several threads share.
//
// Every message of the network protocol is a frame, all fields little-endian:
//
//   0        type            4  auxiliary        6+L  length copy (L again)
//   1        reserved, 0     6  payload (L)      8+L  end marker
//   2        length L
//
// The server sends each frame as one datagram: the eight blocks of the memory after a client has connected,
// lists of changed bytes from then on, and a single block again every 1,000 change cycles. Nothing numbers
// the datagrams: one that is lost leaves old bytes in the picture until they change again or their block
// comes around.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "names.h"
#include "transport.h"

namespace ctl {

constexpr size_t frameHeader = 6;
constexpr size_t frameOverhead = 10;  // header, length copy, end marker
constexpr uint32_t pictureBlockSize = 0x4000;
constexpr uint32_t pictureBlocks = offsetMemorySize / pictureBlockSize;

enum class FrameKind {
  None,      // broken, or nothing that a server sends
  Block,     // a block of the memory
  Spare,     // a ninth block, which belongs to no offset
  Changes,   // changed bytes
  Announce,  // a server shows that it is there
};

// A frame within a datagram; `payload` points into it.
struct NetFrame {
  FrameKind kind;
  uint32_t block;  // of a block: 0 to 7
  const uint8_t* payload;
  size_t size;  // of the payload
};

// Takes a datagram apart. Anything but exactly one whole frame, well-formed down to its entries, is None.
NetFrame ReadFrame(const uint8_t* datagram, size_t size);

struct ByteChange {
  uint32_t offset;
  uint8_t value;
};

// What a change frame tells, in its order; nothing of other kinds.
std::vector<ByteChange> ChangesOf(const NetFrame& frame);

struct Picture {
  std::array<uint8_t, offsetMemorySize> bytes = {};
  uint32_t arrived = 0;  // bit k: block k has come
};

// Puts a block or changes into the picture; nothing happens with other kinds.
void ApplyFrame(const NetFrame& frame, Picture* picture);
bool IsComplete(const Picture& picture);
uint32_t ArrivedBlocks(const Picture& picture);

// Written bytes that the server has not shown yet, by offset.
using Echo = std::map<uint32_t, uint8_t>;

// What must come back for these writes; bytes that stand in the picture already are not told again.
Echo ExpectEcho(const std::vector<Transfer>& writes, const Picture& picture);
// Takes out what the frame shows.
void TakeEcho(const NetFrame& frame, Echo* echo);

// Frames as the server sends them; a change frame tells mostChanges at most.
constexpr size_t mostChanges = 10900;
std::vector<uint8_t> MakeFrame(uint8_t type, const uint8_t* payload, size_t size, uint16_t endMarker);
std::vector<uint8_t> BlockFrame(const std::vector<uint8_t>& memory, uint32_t block);
std::vector<uint8_t> ChangeFrame(const std::vector<ByteChange>& changes);

// The request list frames for these transfers, in order. Each fits into one TCP segment, because the server
// drops a frame that it receives in two parts: long transfers are cut at multiples of 16.
std::vector<std::vector<uint8_t>> BuildRequestFrames(bool writing, const std::vector<Transfer>& transfers);

}  // namespace ctl
