#include "request_block.h"

#include <cstring>

#include "base/bytes.h"

namespace ctl {

namespace {

constexpr size_t readHeaderSize = 16;  // type, offset, size, a word of the client's own
constexpr size_t writeHeaderSize = 12;
constexpr size_t endSize = 4;

size_t HeaderSize(RecordKind kind) { return kind == RecordKind::Read ? readHeaderSize : writeHeaderSize; }

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
    StoreTo(block + at, kind);
    StoreTo(block + at + 4, transfer.offset);
    StoreTo(block + at + 8, transfer.size);
    if (kind == RecordKind::Read) StoreTo<uint32_t>(block + at + 12, 0);
    at += HeaderSize(kind);
    if (kind == RecordKind::Write) std::memcpy(block + at, transfer.bytes, transfer.size);
    at += transfer.size;
  }
  StoreTo<uint32_t>(block + at, 0);
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
