#include "offsets/request_walk.h"

#include "base/bytes.h"
#include "base/log.h"
#include "offsets/dispatcher.h"
#include "platform/clock.h"

namespace {

constexpr uint32_t recordsAtOnce = 64;

struct RecordHeader {
  uint32_t type, offset, size;
};

bool WithinMemory(const RecordHeader& record) {
  return record.offset <= offsetMemorySize && record.size <= offsetMemorySize - record.offset;
}

void TraceServed(bool isWrite, uint32_t request, const RecordHeader& record, const uint8_t* bytes,
                 PathSource source) {
  LockScope lock(&traceLock);
  TraceRecord(isWrite, request, record.offset, record.size, bytes, source == PathSource::Network ? '*' : ' ');
}

void ServeRead(const RecordHeader& record, uint8_t* answer, PathSource source, uint32_t request,
               RequestScratch* scratch) {
  if (record.size == 0) return;
  const bool traced = readTrace.load(std::memory_order_relaxed) != 0;
  {
    const ServerLockScope lock;
    requestCounters.bytesRead += record.size;
    FillPathBlock(record.offset, record.size, source);
    std::memcpy(scratch->bytes, offsetMemory.bytes + record.offset, record.size);
  }
  // Not under the lock: a page of the client's memory may take its time to come.
  std::memcpy(answer, scratch->bytes, record.size);
  if (traced) TraceServed(false, request, record, scratch->bytes, source);
}

void ServeWrite(const RecordHeader& record, const uint8_t* data, PathSource source, uint32_t request,
                RequestScratch* scratch, RequestMarks* marks) {
  if (record.size == 0) return;
  std::memcpy(scratch->bytes, data, record.size);
  {
    const ServerLockScope lock;
    requestCounters.bytesWritten += record.size;
    DispatchWrite(record.offset, record.size, scratch->bytes, marks);
    std::memcpy(offsetMemory.bytes + record.offset, scratch->bytes, record.size);
  }
  if (writeTrace.load(std::memory_order_relaxed) != 0) {
    TraceServed(true, request, record, scratch->bytes, source);
  }
}

// What an unknown record leaves: its type zeroed and, for a local client, a line in the trace log whatever the
// switches say.
void RefuseUnknown(uint8_t* record, PathSource source) {
  if (source == PathSource::Local) {
    LockScope lock(&traceLock);
    TraceLine(" %07.2f default, headesize=%zi void*=%zi\n", static_cast<double>(PublishedRunningTime()),
              static_cast<ptrdiff_t>(readHeaderSize), static_cast<ptrdiff_t>(sizeof(void*)));
    FlushTrace();
  }
  StoreTo(record, recordEnd);
}

// Long lists, and short ones in a row, give way between their records, the end being one of them: a thread that
// is interrupted while it holds the lock keeps the simulator's thread waiting until it gets a processor again.
void GiveWayAtTimes(RequestScratch* scratch) {
  if (++scratch->served % recordsAtOnce == 0) GiveWay();
}

bool WalkRecords(uint8_t* block, size_t size, PathSource source, uint32_t request, RequestScratch* scratch,
                 RequestMarks* marks, size_t* position) {
  size_t& at = *position;
  for (;;) {
    // A local block may be as large as memory: its end is not waited for when the thread is to stop.
    if (scratch->run != nullptr && scratch->run->load(std::memory_order_relaxed) == 0) return false;
    if (size - at < sizeof(uint32_t)) return false;  // no end before the block's end
    const uint32_t type = LoadFrom<uint32_t>(block + at);
    if (type == recordEnd) {
      at += sizeof type;
      GiveWayAtTimes(scratch);
      return true;
    }
    if (type != recordRead && type != recordWrite) {
      RefuseUnknown(block + at, source);
      return false;
    }
    const uint32_t headerSize = type == recordRead ? readHeaderSize : writeHeaderSize;
    if (size - at < headerSize) return false;
    const RecordHeader record = {type, LoadFrom<uint32_t>(block + at + 4), LoadFrom<uint32_t>(block + at + 8)};
    if (!WithinMemory(record) || record.size > size - at - headerSize) return false;
    uint8_t* data = block + at + headerSize;
    if (type == recordRead) {
      ServeRead(record, data, source, request, scratch);
    } else if (scratch->refusesWrites) {
      ++scratch->refusedWrites;
    } else if (record.offset == offsetMemorySize || VariablesAccessMemBlock[record.offset] != accessReadOnly) {
      ServeWrite(record, data, source, request, scratch, marks);
    }
    at += headerSize + record.size;
    GiveWayAtTimes(scratch);
  }
}

}  // namespace

uint32_t CountRequest() {
  const ServerLockScope lock;
  return ++requestCounters.requests;
}

bool ServeRecords(uint8_t* block, size_t size, PathSource source, uint32_t request, RequestScratch* scratch,
                  size_t* consumed) {
  size_t position = 0;
  RequestMarks marks = {};
  const bool result = WalkRecords(block, size, source, request, scratch, &marks, &position);
  if (consumed != nullptr) *consumed = position;
  FinishRequest(marks);
  if (readTrace.load(std::memory_order_relaxed) != 0 || writeTrace.load(std::memory_order_relaxed) != 0) {
    LockScope lock(&traceLock);
    FlushTrace();
  }
  return result;
}
