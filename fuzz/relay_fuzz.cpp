// Fuzz target: a relay datagram, as it is received and then applied to the simulator.
#include <cstdint>
#include <cstring>
#include <memory>

#include "core/sim.h"
#include "net/relay.h"
#include "require.h"

namespace {

void SetUp() {
  static const int ready = [] {
    sim::Options options;
    options.rate = 0;
    options.circuit = false;
    Require(sim::SimStart(options) == 0);
    for (const char* type : {"i int", "f float", "d double", "I int[5]", "F float[5]", "b byte[5]"}) {
      Require(sim::SimCommand(std::string("define ") + type) == "ok");
    }
    return 1;
  }();
  (void)ready;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  SetUp();
  const std::unique_ptr<uint8_t[]> datagram(new uint8_t[size]);
  std::copy(data, data + size, datagram.get());
  uint8_t record[relayRecordSize];
  if (!ParseRelayFrame(datagram.get(), size, record)) {
    for (const uint8_t byte : record) Require(byte == 0);
    return 0;
  }
  uint8_t frame[relayFrameSize];
  uint8_t again[relayRecordSize];
  BuildRelayFrame(record, frame);
  Require(ParseRelayFrame(frame, sizeof frame, again) && std::memcmp(record, again, sizeof record) == 0);
  std::memcpy(relayRecordStore.bytes, record, relayRecordSize);
  relayRecordStore.waiting = 1;
  ApplyRelayRecord();
  Require(relayRecordStore.waiting == 0);
  return 0;
}
