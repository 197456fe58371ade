// What clients' writes do, with the simulator's own aircraft and with each add-on: which datarefs are set and
// which commands are fired.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "adapters_harness.h"
#include "bridge/held_presses.h"

namespace {

#include "row_writes.inc"

void Shorten(std::string* text, const std::string& what, const std::string& with) {
  for (size_t at = 0; (at = text->find(what, at)) != std::string::npos;) text->replace(at, what.size(), with);
}

// What has been set and fired since the last call, in the short form of the list.
std::string Effects() {
  std::string all = sim::SimCommand("writes").substr(2) + "; " + rows::Calls() + "; ";
  for (const auto& [what, with] : {std::pair{"; ", " "},
                                   {"once ", "!"},
                                   {"begin ", "+"},
                                   {"laminar/B738/autopilot/", "A/"},
                                   {"laminar/B738/", "L/"},
                                   {"ixeg/733/", "I/"},
                                   {"rotorsim/ec135/", "R/"},
                                   {"x737/systems/", "S/"},
                                   {"sim/cockpit2/switches/", "C/"},
                                   {"sim/cockpit/electrical/", "E/"},
                                   {"  ", " "}}) {
    Shorten(&all, what, with);
  }
  all.erase(all.find_last_not_of(' ') + 1);
  return all;
}

// Of the simulator's own those that are set without more ado: what else is done has tests of its own.
bool IsServed(const OffsetRow& row, bool isAddOn) {
  const auto acts = [](std::span<const Variant> variants) {
    return ActingVariant(variants).addOn != AddOn::None;
  };
  if (!HasWriter(row)) return false;
  if (isAddOn) return acts(row.variants) || std::any_of(row.parts.begin(), row.parts.end(), acts);
  const Variant& variant = ActingVariant(row);
  return variant.target.ref != nullptr || (!ActsOn(variant) && row.write.target.ref != nullptr);
}

double On(const OffsetRow& row) {
  if (row.show == Show::Bits) return 0x3F;
  return row.type == Stored::U8 || row.show == Show::Flag || row.limits.high <= 10 ? 1 : 8192;
}
// The largest number that fits.
double Most(const OffsetRow& row) {
  uint8_t bytes[8];
  const bool isReal = row.type == Stored::F32 || row.type == Stored::F64;
  std::fill_n(bytes, sizeof bytes, uint8_t{0xFF});
  if (row.type == Stored::S8 || row.type == Stored::S16 || row.type == Stored::S32)
    bytes[StoredWidth(row) - 1] = 0x7F;
  return isReal ? 1e6 : DecodeNumber(row.type, bytes);
}

TEST_F(Adapters, EveryWriteDoesWhatTheListSays) {
  std::ostringstream done;
  done << std::uppercase;
  for (const char* aircraft : {"jet", "x737", "b738-extended", "b738", "ixeg733", "ec135"}) {
    done << '\n' << aircraft << '\n';
    const bool isAddOn = std::string(aircraft) != "jet";
    rows::Restart(aircraft);
    DetectLoadedAircraft();
    // Tanks tell their size unless they are empty.
    for (const std::string tank : {"Center", "LeftMain", "RightMain"}) {
      if (std::string(aircraft) != "x737") break;
      rows::SetAll({{"x737/systems/fuel/fuel" + tank + "Tank_kg", 3000},
                    {"x737/systems/fuel/fuel" + tank + "Tank_perc", 0.6}});
    }
    for (int cycle = 1; cycle < static_cast<int>(Cycle::Count); ++cycle) {
      rows::Refresh(static_cast<Cycle>(cycle));
    }
    for (const RowTable* table : Catalogue()) {
      for (const OffsetRow& row : table->rows) {
        if (!IsServed(row, isAddOn)) continue;
        done << std::hex << row.offset << ':';
        std::vector<double> values = {On(row), 0};
        if (On(row) == 8192) values.insert(values.begin() + 1, 4800);  // an armed speed brake
        if (!isAddOn) values.push_back(Most(row));
        std::string before;
        for (const double value : values) {
          for (int frame = 0; frame < 40 && heldPresses != 0; ++frame) RunWriters();
          Effects();
          rows::WriteNew(row.offset, row.type, value);
          const std::string now = Effects();
          // The same dataref again is not named again.
          const size_t sign = now.find('=');
          const bool isSame = sign != std::string::npos && sign == now.rfind('=') &&
                              before.starts_with(now.substr(0, sign + 1));
          done << (isSame ? ' ' + now.substr(sign) : now) << " |";
          before = now;
        }
        done << '\n';
      }
    }
  }
  std::string list = rowWrites;
  Shorten(&list, "\n    ", " ");
  std::istringstream expected(list), seen(done.str());
  for (std::string wanted, line; std::getline(expected, wanted) && std::getline(seen, line);) {
    EXPECT_EQ(line, wanted);
  }
  EXPECT_EQ(done.str().size(), list.size());
}

}  // namespace
