// Offsets that ask for something to be done once.
#pragma once
#include "bridge/catalogue.h"

// Puts a request that was taken back to 0: one that stayed in the memory could not be made again, because an
// equal value counts as no change. Simulator's thread, no lock held.
inline void ClearRequest(const OffsetRow& row) {
  constexpr uint8_t zeros[8] = {};
  CopyToMemory(row.offset, StoredWidth(row), zeros);
}
