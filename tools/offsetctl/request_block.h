// The request block of the local window server: a list of read or write records in the block's memory, in
// order, closed by a record of type 0. All words are 32 bits, little-endian, without alignment. Pure; any
// thread.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

#include "transport.h"

namespace ctl {

enum class RecordKind : uint32_t { Read = 1, Write = 2 };

// Bytes that a block needs for all of them.
size_t BlockSize(RecordKind kind, const std::vector<Transfer>& transfers, size_t first);
// Puts transfers from `first` on into the block, as many as fit with the closing record; write records
// carry their bytes. Returns the index behind the last one; `first` when not even one fits.
size_t PackRecords(RecordKind kind, const std::vector<Transfer>& transfers, size_t first, uint8_t* block,
                   size_t capacity);
// Copies what the server put into the read records of first..last-1 to their transfers.
void UnpackReads(const std::vector<Transfer>& transfers, size_t first, size_t last, const uint8_t* block);

}  // namespace ctl
