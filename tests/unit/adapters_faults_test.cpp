// Add-ons of other versions and clients in a hurry: names that are missing, of another type or hold bad
// numbers, and writes that follow each other fast.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "adapters_harness.h"
#include "bridge/held_presses.h"

namespace {

#include "incomplete_aircraft.inc"

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts(1);
  for (const char c : text) {
    if (c == separator)
      parts.emplace_back();
    else
      parts.back() += c;
  }
  return parts;
}
// The names in full.
std::string Expanded(std::string text) {
  const std::pair<std::string, std::string> starts[] = {{"S/", "x737/systems/"},
                                                        {"L/", "laminar/B738/"},
                                                        {"A/", "laminar/B738/autopilot/"},
                                                        {"I/", "ixeg/733/"},
                                                        {"G/", "ixeg/733/lighting/"}};
  for (const auto& [shortened, full] : starts) {
    for (size_t i = 0; (i = text.find(shortened, i)) != std::string::npos; i += full.size()) {
      if (i == 0 || text[i - 1] == ' ' || text[i - 1] == '-') text.replace(i, shortened.size(), full);
    }
  }
  return text;
}

TEST_F(Adapters, IncompleteAircraft) {
  const std::pair<std::string, Stored> types[] = {
      {"u8", Stored::U8}, {"u16", Stored::U16}, {"u32", Stored::U32}, {"s32", Stored::S32}};
  int count = 0;
  for (const std::string& line : Split(incompleteAircraft, '\n')) {
    if (line.empty() || line[0] == '#') continue;
    SCOPED_TRACE(line);
    std::vector<std::string> column = Split(line, '|');
    ASSERT_EQ(column.size(), 9u);
    for (std::string& each : column) each = Expanded(each);
    const auto values = [&column](size_t n) {  // of NAME=NUMBER
      std::vector<rows::Value> list;
      for (const std::string& each : Split(column[n], ' ')) {
        const size_t sign = each.find('=');
        if (sign != std::string::npos)
          list.push_back({each.substr(0, sign), std::stod(each.substr(sign + 1)), 0.05});
      }
      return list;
    };
    rows::Restart(column[0].c_str());
    for (const std::string& name : Split(column[1], ' ')) {
      if (name.empty()) continue;
      const size_t colon = name.find(':');
      const std::string command = name[0] == '-'
                                      ? "undefine " + name.substr(1)
                                      : "define " + name.substr(0, colon) + ' ' + name.substr(colon + 1) + " 0";
      ASSERT_EQ(sim::SimCommand(command), "ok") << command;
    }
    DetectLoadedAircraft();
    for (const rows::Value& value : values(2)) rows::Set(value.name, value.value);
    const auto offset = static_cast<uint32_t>(std::stoul(column[3], nullptr, 16));
    const std::string typeName = Split(column[3], ' ')[1];
    const Stored type = std::find_if(std::begin(types), std::end(types), [&](const auto& t) {
                          return t.first == typeName;
                        })->second;
    for (int cycle = 1; cycle < static_cast<int>(Cycle::Count); ++cycle)
      rows::Refresh(static_cast<Cycle>(cycle));
    if (!column[4].empty()) {
      EXPECT_EQ(rows::ReadAs(type, offset), std::stod(column[4]));
    }
    const bool isTold = !column[8].empty();
    const int told = isTold ? Logged(column[8]) : 0, unserved = Logged("writes to 0x");
    std::string calls = column[6];
    if (!calls.empty() && calls[0] <= '9') {  // so many times
      const std::string call = "once " + calls.substr(2);
      const int times = calls[0] - '0';
      calls = call;
      for (int i = 1; i < times; ++i) calls += "; " + call;
    }
    rows::Calls();
    for (int i = 0; i < 1 + isTold && !column[5].empty(); ++i) {
      rows::WriteNew(offset, type, std::stod(column[5]));
      EXPECT_EQ(rows::Calls(), calls);
    }
    for (const rows::Value& value : values(7))
      EXPECT_NEAR(rows::Get(value.name), value.value, value.tolerance) << value.name;
    EXPECT_EQ(isTold ? Logged(column[8]) : 0, told + isTold) << "told once";
    EXPECT_EQ(Logged("writes to 0x"), unserved + isTold);
    ++count;
  }
  EXPECT_EQ(count, 42);
}

// The publishers' types are not known: no add-on's name may be read as one type only.
TEST_F(Adapters, AddOnsNamesGoByTheirType) {
  int count = 0;
  const auto check = [&](const Source& source) {
    if (source.ref == nullptr || std::string(source.ref->name).starts_with("sim/")) return;
    EXPECT_EQ(source.accessor, Accessor::Any) << source.ref->name;
    ++count;
  };
  for (const RowTable* table : Catalogue()) {
    for (const OffsetRow& row : table->rows) {
      for (const Variant& variant : row.variants) {
        for (const Source& source : {variant.source, variant.target}) check(source);
        for (const auto& list :
             {std::span<const Source>(variant.lights), std::span<const Source>(variant.marks), variant.together,
              variant.reads, variant.sets}) {
          for (const Source& source : list) check(source);
        }
        for (const Button& button : variant.buttons) {
          check(button.light);
          check(button.standIn);
        }
      }
    }
  }
  EXPECT_GT(count, 150);
}

// What a client writes last counts, however fast it writes.
TEST_F(Adapters, TheNewestWriteCounts) {
  const std::string apu = "laminar/B738/spring_toggle_switch/APU_start_pos";
  struct Case {
    uint32_t offset;
    std::vector<std::pair<int, int>> writes;  // in this frame, this number
    const char* shown;
    double end;
  };
  std::vector<std::pair<int, int>> flood;
  for (int frame = 0; frame < 160; ++frame) flood.emplace_back(frame, frame % 2);
  for (const Case& c : {Case{0x6DA9, {{0, 2}, {4, 0}}, apu.c_str(), 0},
                        {0x6DA9, {{0, 2}, {4, 0}, {6, 2}}, apu.c_str(), 1},
                        {0x6DA9, {{0, 2}, {1, 2}, {2, 2}, {3, 2}, {4, 0}}, apu.c_str(), 0},
                        {0x6DA9, {{0, 2}, {12, 0}, {14, 1}}, apu.c_str(), 1},
                        {0x3101, flood, "sim/cockpit/electrical/generator_on[0]", 1}}) {
    ASSERT_EQ(sim::SimCommand("aircraft b738-extended"), "ok");
    DetectLoadedAircraft();
    rows::Set(c.shown, 0);
    auto write = c.writes.begin();
    int frame = 0, stepsAfter = 0;
    while (write != c.writes.end() || heldPresses != 0) {
      RunWriters();
      if (write != c.writes.end() && write->first == frame)
        rows::WriteNew(c.offset, Stored::U8, (write++)->second);
      stepsAfter += write == c.writes.end();
      ASSERT_LT(++frame, 400);
    }
    EXPECT_EQ(rows::Get(c.shown), c.end) << std::hex << c.offset << ' ' << c.writes.size();
    EXPECT_LE(stepsAfter, 35) << "presses do not heap up";
  }
}

}  // namespace
