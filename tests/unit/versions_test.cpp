// What is served in which version of the simulator: the pages say it of each row, and the rows follow.
#include "reference/versions.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <set>

#include "base/version.h"
#include "bridge/catalogue/versions.h"
#include "bridge/stations.h"
#include "row_harness.h"
#include "traffic/traffic.h"

namespace {

using rows::Get;
using rows::Set;

std::vector<uint8_t> BytesOfAllCycles() {
  ForgetStations();
  TuneStations();
  for (auto cycle = static_cast<int>(Cycle::Count) - 1; cycle > 0; --cycle) {
    RunReaders(static_cast<Cycle>(cycle));
  }
  std::vector<uint8_t> bytes(offsetMemorySize);
  CopyFromMemory(0, offsetMemorySize, bytes.data());
  return bytes;
}

bool Differ(const OffsetRow& row, const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
  return std::memcmp(a.data() + row.offset, b.data() + row.offset, StoredWidth(row)) != 0;
}

// A row that changes when a dataref vanishes says so on its page.
TEST(Versions, RowsNameTheDatarefsThatSomeVersionLacks) {
  rows::Start();
  std::minstd_rand random(7);
  for (int look = 0; look < 4; ++look) {
    for (sim::DataRef* ref : sim::AllDataRefs()) {
      const auto draw = [&](int most) { return static_cast<int>(random() >> 8) % most; };
      for (int& value : ref->ints) value = look == 0 ? 1 : look == 1 ? 6 : draw(8);
      for (float& value : ref->floats) value = static_cast<float>(draw(2000) + 1) / 1024;
      for (double& value : ref->doubles) value = (draw(2000) + 1) / 16.0;
      for (uint8_t& value : ref->bytes) value = static_cast<uint8_t>('A' + draw(26));
    }
    BytesOfAllCycles();
    for (const char* name : LimitedNames()) {
      sim::DataRef* const ref = sim::FindLive(name);
      if (ref == nullptr) continue;
      const std::vector<uint8_t> before = BytesOfAllCycles(), again = BytesOfAllCycles();
      sim::DataRef kept = *ref;
      sim::Withdraw(ref);
      const std::vector<uint8_t> without = BytesOfAllCycles();
      sim::Publish(name, kept.kind, kept.count, kept.writable);
      *ref = kept;
      for (const RowTable* table : Catalogue()) {
        for (const OffsetRow& row : table->rows) {
          if (row.cycle == Cycle::None || Differ(row, before, again) || !Differ(row, again, without)) continue;
          const auto named = DataRefsOf(row);
          EXPECT_TRUE(std::any_of(named.begin(), named.end(),
                                  [&](const DataRef* one) { return std::strcmp(one->name, name) == 0; }))
              << std::hex << "0x" << row.offset << " " << row.name << " reads " << name;
        }
      }
    }
  }
  rows::Stop();
}

// The simulator says a version, publishes some datarefs otherwise, and is started anew.
class VersionedRows : public testing::Test {
 protected:
  void TearDown() override {
    rows::Stop();
    simulatorVersion = 0;
  }
  static void Start(int version, std::initializer_list<const char*> missing,
                    std::initializer_list<const char*> defined) {
    rows::Start("prop", missing);
    for (const char* one : defined) ASSERT_EQ(sim::SimCommand(std::string("define ") + one), "ok") << one;
    simulatorVersion = version;
    rows::LookUp();
  }
};

TEST_F(VersionedRows, WindCountsInMetresASecondFrom1140On) {
  for (const int version : {11330, 11400, 12100}) {
    Start(version, {}, {});
    const double unit = version < 11400 ? 1 : 3600.0 / 1852;
    rows::CheckReads(
        "sim/weather/wind_speed_kt", Cycle::C1,
        {{0x0E90, rows::U16, 10.3, std::floor(10.3 * unit)}, {0x3488, rows::F64, 10, 10 * unit, 1e-5}});
    for (const auto& [name, offset] : {std::pair{"[0]", 0x0F72U}, {"[1]", 0x0F68U}, {"[2]", 0x0F5CU}}) {
      const std::string dataref = std::string("sim/weather/wind_speed_kt") + name;
      // Every speed that a client sets is there to be read.
      for (int knots = 300; knots >= 0; --knots) {
        rows::WriteAs(rows::U16, offset, knots);
        RunWriters();
        EXPECT_NEAR(Get(dataref), knots / unit, 1e-4);
        rows::Refresh(Cycle::C13);
        rows::Refresh(Cycle::C157);
        ASSERT_EQ(rows::Read<uint16_t>(offset), knots) << version << dataref;
      }
    }
    if (version != 12100) rows::Stop();
  }
}

TEST_F(VersionedRows, WeatherIsReadAndSetByTheTypeThatIsPublished) {
  Start(1004, {"sim/weather/temperature_sealevel_c", "sim/weather/turbulence[1]"},
        {"sim/weather/temperature_sealevel_c int", "sim/weather/turbulence[1] int"});
  rows::CheckReads("sim/weather/temperature_sealevel_c", Cycle::C313, {{0x0EC0, rows::S16, -7, -7 * 256}});
  rows::CheckReads("sim/weather/turbulence[1]", Cycle::C157, {{0x0F6C, rows::U16, 9, 255}});
  rows::WriteAs(rows::U16, 0x0F6C, 128);
  RunWriters();
  EXPECT_EQ(Get("sim/weather/turbulence[1]"), 4);
}

TEST_F(VersionedRows, NamesOfOtherVersionsServe) {
  Start(1004,
        {"sim/cockpit2/ice/ice_inlet_heat_on_per_engine", "sim/operation/failures/rel_g_comrad1",
         "sim/operation/failures/rel_g_comrad2", "sim/cockpit/switches/anti_ice_surf_heat_left"},
        {});
  // One switch for all engines.
  rows::CheckReads("sim/cockpit/switches/anti_ice_inlet_heat", Cycle::C59,
                   {{0x08B2, rows::U16, 1, 1}, {0x0A7A, rows::U16, 1, 1}, {0x0A7A, rows::U16, 0, 0}});
  rows::WriteAs(rows::U16, 0x094A, 1);
  rows::WriteAs(rows::U8, 0x0B68, 1);
  rows::WriteAs(rows::U8, 0x6F0B, 1);
  RunWriters();
  rows::ExpectAll({{"sim/cockpit/switches/anti_ice_inlet_heat", 1},
                   {"sim/operation/failures/rel_com1", 6},
                   {"sim/cockpit/switches/anti_ice_surf_heat", 1}});
  Set("sim/operation/failures/rel_com1", 0);
  rows::CheckReads("sim/operation/failures/rel_com2", Cycle::C13, {{0x3BE6, rows::U16, 6, 0x10}});
}

TEST_F(VersionedRows, WhatIsNotSaidIsFoundOut) {
  Start(955, {"sim/aircraft/view/acf_has_mixture", "sim/cockpit2/radios/indicators/nav1_nav_id"}, {});
  rows::CheckReads("sim/aircraft/prop/acf_en_type[0]", Cycle::C313,
                   {{0x0780, rows::U32, 0, 1}, {0x0780, rows::U32, 1, 1}, {0x0780, rows::U32, 5, 0}});
  sim::SimCommand("navaid clear");
  const std::string place = std::to_string(Get("sim/flightmodel/position/latitude")) + " " +
                            std::to_string(Get("sim/flightmodel/position/longitude"));
  ASSERT_EQ(sim::SimCommand("navaid vor ABC 11030 " + place + " 100 0 \"ALPHA\""), "ok");
  rows::SetAll({{"sim/cockpit/radios/nav1_freq_hz", 11030}, {"sim/cockpit/radios/nav_type[0]", 3}});
  TuneStations();
  rows::Refresh(Cycle::C31Navigation);
  EXPECT_STREQ(reinterpret_cast<const char*>(offsetMemory.bytes) + 0x3000, "ABC");
  EXPECT_STREQ(reinterpret_cast<const char*>(offsetMemory.bytes) + 0x3006, "ALPHA");
}

TEST_F(VersionedRows, NoAgeIsAskedForNamesInTheSteadyState) {
  for (const int version : {860, 1004, 1110, 1210}) {
    rows::Start("b738", {}, "", version);
    FillTrafficPositions();
    BytesOfAllCycles();
    const uint64_t lookUps = sim::LookUps(), nullHandles = sim::NullHandles();
    for (int look = 0; look < 3; ++look) {
      rows::WriteAs(rows::U16, 0x0F72, 10 + look);
      BytesOfAllCycles();
      RunWriters();
      FillTrafficPositions();
    }
    EXPECT_EQ(sim::LookUps(), lookUps) << version;
    EXPECT_EQ(sim::NullHandles(), nullHandles) << version;
    if (version != 1210) rows::Stop();
  }
}

// A dataref stands with the same other names everywhere: it is one object.
TEST(Versions, EveryNameIsOneObject) {
  std::vector<std::string> names;
  for (const DataRef* ref = firstDataRef; ref != nullptr; ref = ref->next) names.emplace_back(ref->name);
  std::sort(names.begin(), names.end());
  const auto twice = std::adjacent_find(names.begin(), names.end());
  EXPECT_EQ(twice, names.end()) << *twice;
}

// What nobody publishes reads 0 for ever: a misspelt name would.
TEST(Versions, EveryNameOfTheSimulatorIsPublishedBySomeVersion) {
  std::set<std::string> missing;
  for (const DataRef* ref = firstDataRef; ref != nullptr; ref = ref->next) missing.insert(ref->name);
  for (const Command* command = firstCommand; command != nullptr; command = command->next) {
    missing.insert(command->name);
  }
  std::erase_if(missing, [](const std::string& name) { return !name.starts_with("sim/"); });
  for (const int version : {0, 1210}) {
    rows::Start("b738-extended", {}, "", version);  // which brings a few of the simulator's names
    std::erase_if(missing, [](const std::string& name) {
      return sim::FindLive(name) != nullptr || XPLMFindCommand(name.c_str()) != nullptr;
    });
    rows::Stop();
  }
  // Asked for at start as they always were, and known by no version.
  EXPECT_EQ(missing,
            (std::set<std::string>{"sim/aircraft/weight/acf_m_empty/ac", "sim/operation/failures/?????"}));
}

}  // namespace
