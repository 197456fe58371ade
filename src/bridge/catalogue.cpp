#include "bridge/catalogue.h"

#include <array>
#include <cmath>

#include "bridge/encode.h"

namespace {

// Position comes before attitude and attitude before the velocities, so that a client that sends all of
// them in one request gets its velocity along the new heading.
constexpr std::array<const RowTable*, 24> tables = {
    &timeRows,     &positionRows, &speedRows,          &forceRows,   &autopilotRows, &controlRows,
    &slewRows,     &throttleRows, &engineRows,         &iceRows,     &lightRows,     &electricRows,
    &fuelRows,     &weightRows,   &pressurisationRows, &failureRows, &radioRows,     &navigationRows,
    &identityRows, &airRows,      &cloudRows,          &windRows,    &situationRows, &miscRows};

template <typename T>
T Get(const uint8_t* bytes) {
  T value;
  std::memcpy(&value, bytes, sizeof value);
  return value;
}

}  // namespace

std::span<const RowTable* const> Catalogue() { return tables; }

uint32_t StoredWidth(const OffsetRow& row) {
  switch (row.type) {
    case Stored::U8:
    case Stored::S8:
      return 1;
    case Stored::U16:
    case Stored::S16:
      return 2;
    case Stored::U32:
    case Stored::S32:
    case Stored::F32:
      return 4;
    case Stored::S64:
    case Stored::F64:
      return 8;
    case Stored::Text:
      return row.length;
  }
  return 0;
}

void EncodeNumber(const OffsetRow& row, double value, uint8_t bytes[8]) {
  const uint64_t word = EncodedWord(row.type, value);
  std::memcpy(bytes, &word, sizeof word);
}

double DecodeNumber(Stored type, const uint8_t* bytes) {
  switch (type) {
    case Stored::F32:
      return static_cast<double>(Get<float>(bytes));
    case Stored::F64:
      return Get<double>(bytes);
    default:
      return static_cast<double>(DecodeInteger(type, bytes));
  }
}

int64_t DecodeInteger(Stored type, const uint8_t* bytes) {
  switch (type) {
    case Stored::U8:
      return Get<uint8_t>(bytes);
    case Stored::S8:
      return Get<int8_t>(bytes);
    case Stored::U16:
      return Get<uint16_t>(bytes);
    case Stored::S16:
      return Get<int16_t>(bytes);
    case Stored::U32:
      return Get<uint32_t>(bytes);
    case Stored::S32:
      return Get<int32_t>(bytes);
    case Stored::S64:
      return Get<int64_t>(bytes);
    case Stored::F32:
    case Stored::F64: {
      const double number = DecodeNumber(type, bytes);
      return std::isnan(number) ? 0 : Truncated<int64_t>(number);
    }
    case Stored::Text:
      break;
  }
  return 0;
}

int TakePending(uint32_t offset, uint32_t width, void* value) {
  LockScope lock(&offsetLock);
  if (pendingFlags.flags[offset] == 0) {
    std::memcpy(value, offsetMemory.bytes + offset, width);
    return 0;
  }
  pendingFlags.flags[offset] = 0;
  std::memcpy(value, pendingValues.bytes + offset, width);
  return 1;
}

void CopyFromMemory(uint32_t offset, uint32_t size, void* bytes) {
  LockScope lock(&offsetLock);
  std::memcpy(bytes, offsetMemory.bytes + offset, size);
}

void CopyToMemory(uint32_t offset, uint32_t size, const void* bytes) {
  LockScope lock(&offsetLock);
  std::memcpy(offsetMemory.bytes + offset, bytes, size);
}

int TryCopyFromMemory(uint32_t offset, uint32_t size, void* bytes) {
  if (!TryEnterLock(&offsetLock)) return 0;
  std::memcpy(bytes, offsetMemory.bytes + offset, size);
  LeaveLock(&offsetLock);
  return 1;
}
