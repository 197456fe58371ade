#include "request_block.h"

#include <cstring>

namespace ctl {

namespace {

constexpr size_t readHeaderSize = 16;  // type, offset, size, a word of the client's own
constexpr size_t writeHeaderSize = 12;
constexpr size_t endSize = 4;

size_t HeaderSize(RecordKind kind) { return kind == RecordKind::Read ? readHeaderSize : writeHeaderSize; }

void PutWord(uint32_t word, uint8_t* to) { std::memcpy(to, &word, sizeof word); }

}  // namespace

size_t BlockSize(RecordKind kind, const std::vector<Transfer>& transfers, size_t first) {
  size_t size = endSize;
  for (size_t i = first; i < transfers.size(); ++i) size += HeaderSize(kind) + transfers[i].size;
  return size;
}

size_t PackRecords(RecordKind kind, const std::vector<Transfer>& transfers, size_t first, uint8_t* block,
                   size_t capacity) {
  size_t at = 0;
  size_t i = first;
  for (; i < transfers.size(); ++i) {
    const Transfer& transfer = transfers[i];
    if (capacity - at < HeaderSize(kind) + transfer.size + endSize) break;
    PutWord(static_cast<uint32_t>(kind), block + at);
    PutWord(transfer.offset, block + at + 4);
    PutWord(transfer.size, block + at + 8);
    if (kind == RecordKind::Read) PutWord(0, block + at + 12);
    at += HeaderSize(kind);
    if (kind == RecordKind::Write) std::memcpy(block + at, transfer.bytes, transfer.size);
    at += transfer.size;
  }
  PutWord(0, block + at);
  return i;
}

void UnpackReads(const std::vector<Transfer>& transfers, size_t first, size_t last, const uint8_t* block) {
  size_t at = 0;
  for (size_t i = first; i < last; ++i) {
    at += readHeaderSize;
    std::memcpy(transfers[i].bytes, block + at, transfers[i].size);
    at += transfers[i].size;
  }
}

}  // namespace ctl
