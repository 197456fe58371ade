// Fuzz target: one received buffer of a network client. Nothing outside the buffer is touched, every counted
// request stands for a frame of its own, and only well-formed frames are taken.
#include <cstdint>
#include <memory>

#include "bridge/cycles.h"
#include "bridge/registry.h"
#include "net/frame.h"
#include "net/server.h"
#include "offsets/dispatcher.h"
#include "require.h"

namespace {

RequestScratch scratch;

void SetUp() {
  static const int ready = [] {
    CreateLocks();
    InitMemoryBlocks();
    BuildCycles();
    AddDispatchEntry(0x0BC8, 2, DispatchAction::Stage);
    AddDispatchEntry(0x3F00, 250, DispatchAction::StageText);
    return 1;
  }();
  (void)ready;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  SetUp();
  // Exactly as large as the input, so that the sanitizer sees every step beyond it.
  const std::unique_ptr<uint8_t[]> buffer(new uint8_t[size]);
  std::copy(data, data + size, buffer.get());
  ReceivedFrame first{};
  const bool whole = ParseFrame(buffer.get(), size, 0, &first);
  if (whole) Require(first.payload + first.length + 4 <= buffer.get() + size);
  const uint32_t before = requestCounters.requests;
  ServeFrames(buffer.get(), size, &scratch);
  const uint32_t served = requestCounters.requests - before;
  Require(served <= size / frameOverhead);
  Require(whole || served == 0);
  return 0;
}
