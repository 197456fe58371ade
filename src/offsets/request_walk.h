// Serving a request: the list of read and write records that a client puts into its shared block or sends
// over the network. Portable; the window server and the network server call it.
//
// The memory of a request may be changed by its client at any moment. Every header is therefore copied once
// before it is checked, and written bytes are copied once into private memory before they are dispatched
// and stored.
#pragma once
#include <atomic>
#include <cstddef>
#include <cstdint>

#include "offsets/memory.h"

constexpr uint32_t recordEnd = 0;
constexpr uint32_t recordRead = 1;
constexpr uint32_t recordWrite = 2;
constexpr uint32_t readHeaderSize = 16;   // type, offset, size, client word
constexpr uint32_t writeHeaderSize = 12;  // type, offset, size

// Private memory of one server thread, for the bytes of one record.
struct RequestScratch {
  uint8_t bytes[offsetMemorySize];
  // Its clients may only read: write records are passed over like those at read-only offsets. So many were;
  // whoever tells of them sets it back.
  bool refusesWrites = false;
  uint32_t refusedWrites = 0;
  uint32_t served = 0;                         // records, ends included, of all requests
  const std::atomic<uint32_t>* run = nullptr;  // the thread's run flag; null: requests are always served out
};

// Counts a request message and returns its number. Any server thread, no lock held.
uint32_t CountRequest();
// Serves the records of `block` (size bytes, readable and writable throughout) in order. Takes offset lock
// and trace lock for each record by itself. False when a record was unknown (its type word is
// zeroed) or would leave the offset memory or the block, when the list has no end, or when the thread's run
// flag has fallen meanwhile; records before it stay served, nothing of it is applied. `consumed` (may be null)
// gets the bytes up to and with the list's end, or up to the record that ended it. For PathSource::Network
// trace headers begin with '*', and an unknown record leaves no line.
bool ServeRecords(uint8_t* block, size_t size, PathSource source, uint32_t request, RequestScratch* scratch,
                  size_t* consumed = nullptr);
