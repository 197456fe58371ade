// Fuzz target: a request list, against a plain model of what it does to the offset memory.
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "base/bytes.h"
#include "bridge/cycles.h"
#include "bridge/registry.h"
#include "offsets/dispatcher.h"
#include "offsets/request_walk.h"
#include "require.h"

namespace {

constexpr uint32_t readOnlyFirst = 0x0238;
constexpr uint32_t readOnlyLast = 0x023A;
constexpr uint32_t pathFirst = 0x3E00;
constexpr uint32_t pathSize = 0x100;

RequestScratch scratch;
std::vector<uint8_t> model(offsetMemorySize);

struct Outcome {
  bool result;
  size_t consumed;
};

// The list as its definition reads; the model's memory takes the writes.
Outcome Expected(const std::vector<uint8_t>& list) {
  const auto word = [&](size_t place) { return LoadFrom<uint32_t>(&list[place]); };
  size_t at = 0;
  while (at + 4 <= list.size()) {
    const uint32_t kind = word(at);
    if (kind == 0) return {true, at + 4};
    const size_t header = kind == 1 ? 16 : 12;
    if (kind > 2 || at + header > list.size()) return {false, at};
    const uint64_t offset = word(at + 4);
    const uint64_t bytes = word(at + 8);
    if (offset + bytes > offsetMemorySize || at + header + bytes > list.size()) return {false, at};
    if (kind == 2 && (offset < readOnlyFirst || offset > readOnlyLast)) {
      for (size_t i = 0; i < bytes; ++i) model[offset + i] = list[at + header + i];
    }
    at += header + bytes;
  }
  return {false, at};
}

void SetUp() {
  static const int ready = [] {
    CreateLocks();
    InitMemoryBlocks();
    BuildCycles();
    AddDispatchEntry(0x0BC8, 2, DispatchAction::Stage);
    std::fill(VariablesAccessMemBlock + readOnlyFirst, VariablesAccessMemBlock + readOnlyLast + 1,
              accessReadOnly);
    return 1;
  }();
  (void)ready;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  SetUp();
  const std::unique_ptr<uint8_t[]> list(new uint8_t[size]);
  std::copy(data, data + size, list.get());
  const Outcome expected = Expected({data, data + size});
  size_t consumed = 0;
  Require(ServeRecords(list.get(), size, PathSource::Network, CountRequest(), &scratch, &consumed) ==
          expected.result);
  Require(consumed == expected.consumed);
  // Reads fill the path block only when they walk through it; what it holds does not matter here.
  std::memcpy(&model[pathFirst], offsetMemory.bytes + pathFirst, pathSize);
  Require(std::memcmp(model.data(), offsetMemory.bytes, offsetMemorySize) == 0);
  return 0;
}
