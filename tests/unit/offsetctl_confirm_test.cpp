// What the client tool takes for a simulator that has followed a write.
#include <gtest/gtest.h>

#include <cstring>

#include "offsetctl/confirm.h"
#include "offsetctl/encode.h"

namespace {

using namespace ctl;

OffsetName Row(const char* name, uint32_t offset, ValueType type, const char* unit, double scale, Form show,
               const char* lossy = "", double steps = 0, double share = 0) {
  return {.offset = offset,
          .type = type,
          .length = 2,
          .name = name,
          .meaning = "",
          .unit = unit,
          .unitScale = scale,
          .unitBias = 0,
          .show = show,
          .readOnly = false,
          .writable = offset != 0x20,
          .frames = static_cast<uint16_t>(offset == 0x22 ? 1 : 31),
          .lossy = lossy,
          .lossSteps = steps,
          .lossShare = share,
          .choices = {}};
}

const OffsetName rows[] = {
    Row("plain", 0x10, ValueType::U16, "", 1, Form::Number),
    Row("scaled", 0x12, ValueType::U16, "%", 100.0 / 16383, Form::Number),
    Row("setting", 0x14, ValueType::U16, "mb", 1.0 / 16, Form::Number, "in steps of its own", 3),
    Row("bug", 0x16, ValueType::U16, "deg", 360.0 / 65536, Form::Number, "up to 16 higher", 17),
    Row("switch", 0x18, ValueType::U16, "", 1, Form::Flag, "a switch: anything but 0 reads back 1"),
    Row("limited", 0x1A, ValueType::U16, "", 1, Form::Number, "above 23 counts as 23"),
    Row("asked", 0x1C, ValueType::U16, "", 1, Form::Number, "a request: back at 0 once taken"),
    Row("radio", 0x1E, ValueType::U16, "MHz", 1, Form::Bcd),
    Row("shown", 0x20, ValueType::U16, "", 1, Form::Number),
    Row("place", 0x22, ValueType::U16, "m", 1.0 / 16, Form::Number, "in axes of its own", 3),
    Row("text", 0x24, ValueType::Text, "", 1, Form::Text),
};

WriteCheck CheckFor(const char* name, uint16_t wanted, uint16_t before) {
  const NameTable table = {rows, {}};
  Item item;
  std::string error;
  const std::string type = std::string(name) == "text" ? "" : ":u16";
  EXPECT_TRUE(ParseItem(name + type, table, &item, &error)) << error;
  std::memcpy(item.bytes.data(), &wanted, 2);
  uint8_t bytes[2];
  std::memcpy(bytes, &before, 2);
  return CheckOf(item, table, bytes);
}

TEST(OffsetctlConfirm, FollowsWithinTheRowsOwnStep) {
  const struct {
    const char* name;
    uint16_t wanted, before, shown;
    bool follows;
  } cases[] = {
      {"plain", 7, 3, 7, true},
      {"plain", 7, 3, 8, false},
      {"plain", 7, 3, 3, false},
      {"scaled", 8000, 0, 7999, true},
      {"scaled", 8000, 0, 7998, false},
      {"setting", 16211, 16000, 16208, true},
      {"setting", 16211, 16208, 16208, true},   // as near as it gets, and there before
      {"setting", 16211, 16100, 16200, false},  // nearer to the new value than to the old one is not enough
      {"place", 1000, 100, 1090, true},         // which goes on moving
      {"place", 1000, 100, 1094, false},
      {"text", 0x0041, 0x4242, 0x0041, true},
      {"text", 0x4100, 0x4242, 0x4200, true},  // behind the end of the text
      {"text", 0x0041, 0x4242, 0x0042, false},
      {"bug", 65530, 100, 10, true},  // a full turn is no distance
      {"bug", 65530, 100, 90, false},
      {"switch", 255, 0, 1, true},
      {"switch", 255, 0, 0, false},
      {"switch", 0, 1, 0, true},
      {"limited", 30, 0, 23, false},
      {"radio", 0x1870, 0x1850, 0x1871, false},
  };
  for (const auto& row : cases) {
    const WriteCheck check = CheckFor(row.name, row.wanted, row.before);
    uint8_t shown[2];
    std::memcpy(shown, &row.shown, 2);
    EXPECT_EQ(Follows(check, shown), row.follows) << row.name << " " << row.wanted << " " << row.shown;
    EXPECT_EQ(IsRefused(check, shown), !row.follows) << row.name << " " << row.shown;
  }
  const uint8_t kept[] = {7, 0};
  EXPECT_TRUE(IsRefused(CheckFor("shown", 7, 0), kept)) << "nothing follows it";
}

TEST(OffsetctlConfirm, SettlesWithTheSlowestRefresh) {
  const WriteCheck quick = CheckFor("place", 1, 0), slow = CheckFor("plain", 1, 0),
                   asked = CheckFor("asked", 1, 0);
  Settling settling = BeginSettling({quick, asked, slow}, 65530, 10);
  EXPECT_FALSE(Settle(&settling, 65535, 10.5)) << "5 frames";
  EXPECT_EQ(SecondsWithoutFrames(settling, 12.5), 2);
  EXPECT_FALSE(Settle(&settling, 25, 13)) << "31 frames, the first of which may have been under way";
  EXPECT_TRUE(Settle(&settling, 26, 13));
  settling = BeginSettling({asked}, 0, 10);
  EXPECT_FALSE(Settle(&settling, 0, 10.2));
  EXPECT_EQ(SecondsWithoutFrames(settling, 20), 0) << "none are waited for";
  EXPECT_TRUE(Settle(&settling, 0, 10.3));
}

TEST(OffsetctlConfirm, KnowsRowsBehindTypes) {
  EXPECT_TRUE(IsRequest(CheckFor("asked", 1, 0)));
  EXPECT_FALSE(IsRequest(CheckFor("plain", 1, 0)));
  Item bytes;
  std::string error;
  const NameTable table = {rows, {}};
  ASSERT_TRUE(ParseItem("setting:hex:2", table, &bytes, &error));
  const uint8_t before[] = {0, 0};
  EXPECT_EQ(CheckOf(bytes, table, before).row, nullptr) << "another type than the row's";
  const uint8_t shown[] = {0x50, 0x3F};
  EXPECT_EQ(ShownText(CheckFor("setting", 1, 0), shown), "setting shows 16208 (in steps of its own)");
}

}  // namespace
