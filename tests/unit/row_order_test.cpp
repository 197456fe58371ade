// No row depends on the one before it: every cycle gives the same bytes whatever the order of its rows.
#include <algorithm>
#include <cstring>
#include <random>

#include "bridge/reader_groups.h"
#include "bridge/reader_layout.h"
#include "bridge/stations.h"
#include "row_harness.h"

namespace {

uint32_t orderSeed;

void Reverse(std::vector<Laid>* rows) { std::reverse(rows->begin(), rows->end()); }
void Shuffle(std::vector<Laid>* rows) { std::shuffle(rows->begin(), rows->end(), std::minstd_rand(orderSeed)); }

// Every number of the simulator: another one for every seed, the same for the same seed.
void SetAll(uint32_t seed) {
  std::minstd_rand random(seed);
  const auto draw = [&](int most) { return static_cast<int>(random() >> 8) % most; };
  for (sim::DataRef* ref : sim::AllDataRefs()) {
    for (int& value : ref->ints) value = draw(2) * draw(8);
    for (float& value : ref->floats) value = static_cast<float>(draw(2000)) / 16 - 20;
    for (double& value : ref->doubles) value = draw(2000) / 16.0 - 20;
    for (uint8_t& value : ref->bytes) value = static_cast<uint8_t>('A' + draw(26));
  }
}

// What stands in the memory after each of some looks at different values, the rows of each cycle run in this
// order.
std::vector<uint8_t> BytesOfLooks(RowOrder order) {
  constexpr uint32_t activity = 0x337E;  // counts runs
  BuildReaders(order);
  ForgetStations();
  {
    const LockScope lock(&offsetLock);
    std::memset(offsetMemory.bytes, 0, offsetMemorySize);
  }
  std::vector<uint8_t> bytes;
  for (uint32_t seed = 1; seed <= 6; ++seed) {
    SetAll(seed);
    TuneStations();
    // The rare cycles first: some of the frequent ones look at what they keep.
    for (auto cycle = static_cast<int>(Cycle::Count) - 1; cycle > 0; --cycle) {
      RunReaders(static_cast<Cycle>(cycle));
    }
    CopyToMemory(activity, 2, "\0");
    bytes.resize(bytes.size() + offsetMemorySize);
    CopyFromMemory(0, offsetMemorySize, bytes.data() + bytes.size() - offsetMemorySize);
  }
  return bytes;
}

class RowOrders : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override { rows::Start(GetParam()); }
  void TearDown() override { rows::Stop(); }
};

TEST_P(RowOrders, EveryOrderGivesTheSameBytes) {
  const std::vector<uint8_t> asListed = BytesOfLooks(nullptr);
  ASSERT_GT(std::count_if(asListed.begin(), asListed.end(), [](uint8_t byte) { return byte != 0; }), 300);
  const auto expectSame = [&](RowOrder order, const std::string& name) {
    const std::vector<uint8_t> bytes = BytesOfLooks(order);
    const auto differs = std::mismatch(asListed.begin(), asListed.end(), bytes.begin()).first;
    EXPECT_EQ(differs, asListed.end())
        << name << ", offset 0x" << std::hex << (differs - asListed.begin()) % offsetMemorySize;
  };
  expectSame(Reverse, "in reverse");
  for (orderSeed = 1; orderSeed <= 6; ++orderSeed) {
    expectSame(Shuffle, "shuffled with seed " + std::to_string(orderSeed));
  }
}

INSTANTIATE_TEST_SUITE_P(Aircraft, RowOrders, testing::Values("jet", "x737", "b738-extended", "ixeg733"),
                         [](const auto& aircraft) {
                           std::string name = aircraft.param;
                           std::erase(name, '-');
                           return name;
                         });

}  // namespace
