// A byte-by-byte walk with a lock round trip for each byte costs milliseconds, and nearly all bytes are
// unchanged nearly always. So stretches of 64 bytes are compared as a whole, as many of them under one round
// trip as differ in nothing (up to 4 KiB, a fraction of a microsecond). One with a difference is copied in the
// same round trip and walked without the lock: whoever loses the processor while he holds it costs the
// simulator's thread a frame's values, so it is held seldom and shortly.
#include "net/change_scan.h"

#include <cstring>

#include "base/bytes.h"
#include "base/log.h"
#include "base/log_quiet.h"
#include "offsets/memory.h"

namespace {

constexpr uint32_t stretchSize = 64;
constexpr uint32_t batchSize = 4096;
static_assert(offsetMemorySize % batchSize == 0 && batchSize % stretchSize == 0);

uint8_t shadow[offsetMemorySize];

bool StretchDiffers(const uint8_t* now, const uint8_t* before) {
  uint64_t difference = 0;
  for (uint32_t i = 0; i < stretchSize; i += sizeof difference) {
    difference |= LoadFrom<uint64_t>(now + i) ^ LoadFrom<uint64_t>(before + i);
  }
  return difference != 0;
}

// First stretch at or behind `from` that differs, with its bytes as they are, or the end of the batch.
uint32_t TakeDiffering(uint32_t from, uint32_t end, uint8_t (&now)[stretchSize]) {
  const ServerLockScope lock;
  while (from < end && !StretchDiffers(offsetMemory.bytes + from, shadow + from)) from += stretchSize;
  if (from < end) std::memcpy(now, offsetMemory.bytes + from, stretchSize);
  return from;
}

// Clients can change so many bytes fifty times a second.
QuietMinute fullLines = {.what = "TAVFARNET->The delta buffer was full", .most = 10, .began = 0, .turns = 0};

void PutEntry(uint8_t* entry, uint32_t offset) {
  entry[0] = static_cast<uint8_t>(offset >> 16);
  entry[1] = 0;
  entry[2] = static_cast<uint8_t>(offset);
  entry[3] = static_cast<uint8_t>(offset >> 8);
  entry[4] = shadow[offset];
  entry[5] = 0;
}

}  // namespace

void ClearShadow() { std::memset(shadow, 0, sizeof shadow); }

uint32_t ScanChanges(uint8_t* entries) {
  uint32_t count = 0;
  uint32_t at = 0;
  while (at < offsetMemorySize) {
    const uint32_t batchEnd = at - at % batchSize + batchSize;
    uint8_t now[stretchSize];
    at = TakeDiffering(at, batchEnd, now);
    if (at == batchEnd) continue;
    for (const uint8_t value : now) {
      const uint32_t offset = at++;
      if (shadow[offset] == value) continue;
      shadow[offset] = value;
      PutEntry(entries + count * changeEntrySize, offset);
      if (++count <= wantedChangeEntries) continue;
      if (!TakeLogTurn(&fullLines)) return count;
      char stamp[timeStampSize];
      LogLine("%s Deltabuffer full maxData=%i deltaOffsetsCount=%u \n", TimeStamp(stamp),
              static_cast<int>(wantedChangeEntries), count);
      return count;
    }
  }
  return count;
}
