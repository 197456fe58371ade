// The session frame, the envelope of every network message, TCP and UDP alike. All fields little-endian:
//
//   0        type            4  auxiliary        6+L  length copy (L again)
//   1        reserved, 0     6  payload (L)      8+L  end marker
//   2        length L
//
// A frame is L + 10 bytes long. Pure functions, any thread.
#pragma once
#include <cstddef>
#include <cstdint>

constexpr size_t frameHeaderSize = 6;
constexpr size_t frameOverhead = 10;

constexpr uint8_t frameRelay = 0;
constexpr uint8_t frameFirstBlock = 6;  // block k of the synchronised area has type 6 + k
constexpr uint8_t frameRequestList = 18;
constexpr uint8_t frameAnnounce = 20;
constexpr uint8_t frameSubscription = 86;
constexpr uint8_t frameChanges = 103;

constexpr uint16_t endRequestList = 0xAFFE;
constexpr uint16_t endSubscription = 0xABCD;
constexpr uint16_t endBlock = 0x1A2B;
constexpr uint16_t endChanges = 0xFADE;
constexpr uint16_t endAnnounce = 0xDEFA;
constexpr uint16_t endRelay = 0;

constexpr uint16_t subscribeMode = 0xABCD;
constexpr uint16_t unsubscribeMode = 0xDCBA;

// A frame that a client sent, found within a received buffer.
struct ReceivedFrame {
  uint8_t type;  // frameRequestList or frameSubscription
  uint16_t length;
  uint16_t auxiliary;
  uint8_t* payload;
};

// Looks at the frame that begins at buffer + at. Returns true when it is a whole and well-formed request or
// subscription list, false for anything else.
bool ParseFrame(uint8_t* buffer, size_t size, size_t at, ReceivedFrame* frame);
// How many of the bytes that have come so far can be served: whole frames, and everything from the first header
// on that begins no frame a client may send or one that could never fit into `capacity` bytes. A frame whose
// end has not come yet stays behind.
size_t ServableSize(const uint8_t* buffer, size_t size, size_t capacity);
// Writes header, length copy and end marker around a payload that already stands at frame + 6. The length
// fields hold the low 16 bits of a payload that is larger. Returns the size of the frame.
size_t FinishFrame(uint8_t* frame, uint8_t type, size_t payloadSize, uint16_t endMarker);
