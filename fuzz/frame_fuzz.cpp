// Fuzz target: one received buffer of a network client. Nothing outside the buffer is touched, every counted
// request stands for a frame of its own, and only well-formed frames are taken; they are the same ones when the
// buffer comes in two parts.
#include <cstdint>
#include <memory>
#include <vector>

#include "bridge/cycles.h"
#include "bridge/registry.h"
#include "net/frame.h"
#include "net/server.h"
#include "offsets/dispatcher.h"
#include "require.h"

namespace {

constexpr size_t capacity = 65535;  // of a client's buffer

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

using Frames = std::vector<std::vector<uint8_t>>;

// Takes what can be served off the bytes that have come, as a client's thread does. Returns whether every frame
// was well-formed; what stands behind another one is dropped.
bool TakeFrames(std::vector<uint8_t>* bytes, Frames* frames) {
  const size_t whole = ServableSize(bytes->data(), bytes->size(), capacity);
  Require(whole <= bytes->size());
  bool good = true;
  for (size_t at = 0; good && at < whole;) {
    ReceivedFrame frame{};
    good = ParseFrame(bytes->data(), whole, at, &frame);
    if (!good) break;
    frames->emplace_back(frame.payload, frame.payload + frame.length);
    at += frame.length + frameOverhead;
  }
  bytes->erase(bytes->begin(), bytes->begin() + static_cast<std::ptrdiff_t>(whole));
  return good;
}

void CheckParts(const uint8_t* data, size_t size) {
  std::vector<uint8_t> all(data, data + size);
  Frames frames;
  if (!TakeFrames(&all, &frames)) return;
  for (size_t cut = 0; cut <= size; cut += 1 + size / 24) {
    std::vector<uint8_t> part(data, data + cut);
    Frames inParts;
    Require(TakeFrames(&part, &inParts));
    part.insert(part.end(), data + cut, data + size);
    Require(TakeFrames(&part, &inParts) && inParts == frames && part == all);
  }
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
  CheckParts(data, size);
  return 0;
}
