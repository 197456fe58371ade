// Fuzz target: the C library for client authors, held against the client tool's own reader. The input is a
// series of datagrams, each behind its size in two bytes; then all values of the offsets are read, and what can
// be written reads back.
#include <cmath>
#include <cstring>
#include <vector>

#include "../clients/c/tavrix.h"
#include "offsetctl/picture.h"
#include "require.h"

extern "C" {
tavrix* client_begin(void);
void client_take(tavrix* sim, const uint8_t* datagram, int size, uint32_t now);
const uint8_t* client_memory(const tavrix* sim);
uint32_t client_missing(const tavrix* sim);
}

namespace {

// What it gives for bytes is what it makes of the same number, but for the rounding of a step.
void CheckValues(const uint8_t* memory) {
  for (int number = 0; number < TAVRIX_OFFSETS; ++number) {
    const auto offset = static_cast<tavrix_offset>(number);
    const tavrix_info* info = tavrix_info_of(offset);
    Require(tavrix_by_name(info->name) == offset);
    const double value = tavrix_decode(offset, memory + info->offset);
    std::vector<uint8_t> bytes(info->size);  // of its own, so that the sanitizer sees the smallest step outside
    if (!std::isfinite(value) || tavrix_encode(offset, value, bytes.data()) != 0) continue;
    const double again = tavrix_decode(offset, bytes.data());
    const double step = std::max({info->step, std::fabs(value) * 1e-6, 1e-6});
    Require(std::fabs(again - value) <= step || std::fabs(std::fabs(again - value) - 360) <= step);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static ctl::Picture picture;
  picture = {};
  tavrix* sim = client_begin();
  uint32_t now = 0, taken = 0;
  while (size > 2) {
    const size_t length = std::min<size_t>(static_cast<size_t>(data[0] | data[1] << 8), size - 2);
    client_take(sim, data + 2, static_cast<int>(length), now += length % 512);
    const ctl::NetFrame frame = ctl::ReadFrame(data + 2, length);
    ctl::ApplyFrame(frame, &picture);
    taken += frame.kind != ctl::FrameKind::None && frame.kind != ctl::FrameKind::Announce;
    data += 2 + length;
    size -= 2 + length;
  }
  const uint32_t datagrams = tavrix_counters_of(sim).datagrams;
  Require(datagrams >= taken && client_missing(sim) == (~picture.arrived & 0xFF));
  const bool isSame = std::memcmp(client_memory(sim), picture.bytes.data(), picture.bytes.size()) == 0;
  Require(isSame || datagrams > taken);
  CheckValues(client_memory(sim));
  return 0;
}
