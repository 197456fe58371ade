// The client tool's reading of items and values, its output, and its request blocks.
#include <gtest/gtest.h>

#include <cstring>

#include "offsetctl/encode.h"
#include "offsetctl/item.h"
#include "offsetctl/names.h"
#include "offsetctl/request_block.h"
#include "offsetctl/show.h"
#include "offsetctl/units.h"

namespace {

using namespace ctl;

constexpr NamedNumber places[] = {{0, "rejected take-off"}, {1, "off"}, {2, "landing 1"}, {3, "landing 2"}};
constexpr NamedNumber bits[] = {{0, "navigation"}, {1, "beacon"}, {3, "taxi"}, {8, "rate", 8}};
constexpr OffsetName rows[] = {
    {0x0580, ValueType::U16, 2, "heading", "true heading", "deg", 360.0 / 65536, 0, Form::Number, false, true},
    {.offset = 0x0D0C,
     .type = ValueType::U16,
     .length = 2,
     .name = "lights",
     .meaning = "light switches",
     .unit = "",
     .unitScale = 1,
     .unitBias = 0,
     .show = Form::Bits,
     .readOnly = false,
     .writable = true,
     .lossy = "bit 1 is read-only there",
     .choices = bits},
    {0x0BC8, ValueType::U16, 2, "brake", "parking brake", "", 1, 0, Form::Flag, false, true},
    {0x034E, ValueType::U16, 2, "com1", "COM1", "MHz", 1, 0, Form::Bcd, false, true},
    {0x0354, ValueType::U16, 2, "squawk", "transponder", "", 1, 0, Form::Bcd, false, true},
    {0x0E8C, ValueType::S16, 2, "oat", "outside air", "degC", 1.0 / 256, -10, Form::Number, false, false},
    {0x0560, ValueType::S64, 8, "latitude", "latitude", "deg", 90.0 / (10001750.0 * 65536 * 65536), 0,
     Form::Number, false, true},
    {0x3130, ValueType::Text, 12, "tail", "tail number", "", 1, 0, Form::Text, false, true},
    {0x0238, ValueType::U8, 1, "hour", "local hour", "h", 1, 0, Form::Number, true, false},
    {0x07E2, ValueType::U16, 2, "speed", "selected speed", "kt", 1, 0, Form::Number, false, true},
    {0x0BE8, ValueType::U16, 2, "gear", "gear lever: 0 up, 16383 down", "%", 100.0 / 16383, 0, Form::Number,
     false, true},
    {0x0BD0, ValueType::U16, 2, "lever", "lever, 0 to 1", "%", 100.0 / 16383, 0, Form::Number, false, true},
    {.offset = 0x2F80,
     .type = ValueType::U8,
     .length = 1,
     .name = "brakes",
     .meaning = "autobrake",
     .unit = "",
     .unitScale = 1,
     .unitBias = 0,
     .show = Form::Number,
     .readOnly = false,
     .writable = true,
     .choices = places},
};
constexpr OffsetRange readOnly[] = {{0x0238, 0x023A}, {0x3304, 0x330B}};
constexpr NameTable names = {rows, readOnly};

Item Parsed(const char* text, const char* hex = nullptr) {
  Item item;
  std::string error;
  EXPECT_TRUE(ParseItem(text, names, &item, &error)) << text << ": " << error;
  if (hex != nullptr) {
    EXPECT_TRUE(ParseBytes(std::string("hex:") + hex, &item.bytes));
  }
  return item;
}

TEST(OffsetctlItem, ReadsPlacesAndTypes) {
  const struct {
    const char* text;
    uint32_t offset, size;
    const char* type;
  } cases[] = {
      {"0x0330:u16", 0x330, 2, "u16"},           {"816:s64", 816, 8, "s64"},
      {"0x1FFFF:u8", 0x1FFFF, 1, "u8"},          {"0x1FFF8:f64", 0x1FFF8, 8, "f64"},
      {"0:hex:131072", 0, 131072, "hex:131072"}, {"heading", 0x580, 2, "u16"},
      {"HEADING:s32", 0x580, 4, "s32"},          {"0x0580", 0x580, 2, "u16"},
      {"tail", 0x3130, 12, "text:12"},           {"0x3e00:text:256", 0x3E00, 256, "text:256"},
      {"heading:S32", 0x580, 4, "s32"},          {"0x0330:Hex:3", 0x330, 3, "hex:3"},
  };
  for (const auto& row : cases) {
    const Item item = Parsed(row.text);
    EXPECT_EQ(item.offset, row.offset) << row.text;
    EXPECT_EQ(item.size, row.size) << row.text;
    EXPECT_EQ(TypeText(item.type, item.size), row.type) << row.text;
    EXPECT_EQ(item.bytes.size(), row.size) << row.text;
  }
}

TEST(OffsetctlItem, RefusesBrokenItems) {
  const char* cases[] = {"",        "0x0330",      "0x20000:u8",   "0x1FFFF:u16",    "0x1FFF9:f64",
                         "0x0330:", "0x0330:u12",  "0x0330:hex:0", "0x0330:hex:",    "1:hex:131072",
                         "headin",  ":u16",        "0x:u8",        "0x0330:u16:u16", "4294967297:u8",
                         "-1:u8",   "0x10:hex:-1", "0x3 :u8"};
  for (const char* text : cases) {
    Item item;
    std::string error;
    EXPECT_FALSE(ParseItem(text, names, &item, &error)) << text;
    EXPECT_FALSE(error.empty()) << text;
  }
}

TEST(OffsetctlWrite, EncodesValues) {
  const struct {
    const char* text;
    const char* bytes;
  } cases[] = {
      {"0x0330:u16=16211", "53 3F"},
      {"0x0330:u16=0x3F53", "53 3F"},
      {"0x0330:s16=-32768", "00 80"},
      {"0x0330:u64=18446744073709551615", "FF FF FF FF FF FF FF FF"},
      {"0x0330:s64=-9223372036854775808", "00 00 00 00 00 00 00 80"},
      {"0x0330:f32=0.1", "CD CC CC 3D"},
      {"0x0330:f64=-1.5e3", "00 00 00 00 00 70 97 C0"},
      {"0x0330:u16=hex:53 3f", "53 3F"},
      {"0x0330:hex:3=010203", "01 02 03"},
      {"0x0330=hex:0102", "01 02"},
      {"0x0330:text:4=\"a\\\"\\x7f\"", "61 22 7F 00"},
      {"tail=D-EABC", "44 2D 45 41 42 43 00 00 00 00 00 00"},
      {"tail=", "00 00 00 00 00 00 00 00 00 00 00 00"},
      {"heading=270", "00 C0"},
      {"heading=359.997", "FF FF"},
      {"heading:u16=270", "0E 01"},
      {"oat=-10.002", "FF FF"},
      {"com1=118.705", "70 18"},
      {"squawk=7000", "00 70"},
      {"brake=on", "01 00"},
      {"brake=no", "00 00"},
      {"lights=0x8001", "01 80"},
      {"lights=TAXI", "08 00"},
      {"lights=nav+beacon", "03 00"},
      {"lights=on", "0B 00"},
      {"lights=off", "00 00"},
      {"heading=360", "00 00"},
      {"heading=359.9999", "00 00"},
      {"heading=-90", "00 C0"},
      {"heading=720", "00 00"},
      {"HEADING:U16=1", "01 00"},
      {"heading=4.71238898038469rad", "00 C0"},
      {"heading=270 DEG", "00 C0"},
      {"com1=118705kHz", "70 18"},
      {"oat=0 degF", "39 F8"},
      {"oat=-17.78degC", "38 F8"},
      {"speed=100.4", "64 00"},
      {"speed=185.2km/h", "64 00"},
      {"speed=0x64", "64 00"},
      {"gear=up", "00 00"},
      {"gear=DOWN", "FF 3F"},
      {"gear=50%", "00 20"},
      {"lever=full", "FF 3F"},
      {"lever=off", "00 00"},
      {"brakes=landing 2", "03"},
      {"brakes=rej", "00"},
      {"brakes=4", "04"},
  };
  for (const auto& row : cases) {
    Item item;
    std::string error;
    ASSERT_TRUE(ParseAssignment(row.text, names, &item, &error)) << row.text << ": " << error;
    std::vector<uint8_t> expected;
    ASSERT_TRUE(ParseBytes(std::string("hex:") + row.bytes, &expected));
    EXPECT_EQ(item.bytes, expected) << row.text;
  }
}

TEST(OffsetctlWrite, RefusesWhatDoesNotFit) {
  const char* cases[] = {"0x0330:u16",
                         "0x0330:u16=",
                         "0x0330:u16=65536",
                         "0x0330:u16=-1",
                         "0x0330:s16=32768",
                         "0x0330:u8=0x100",
                         "0x0330:u64=18446744073709551616",
                         "0x0330:u16=1.5",
                         "0x0330:u16=1 ",
                         "0x0330:f32=1e39",
                         "0x0330:f64=1,5",
                         "0x0330:u16=hex:53",
                         "0x0330:u16=hex:533",
                         "0x0330:hex:2=0102 03",
                         "0x0330=hex:",
                         "0x0330=5",
                         "heading=inf",
                         "heading=nan",
                         "lights=taxi+",
                         "lights=rate",
                         "lights=",
                         "heading=0xC000",
                         "com1=99.99",
                         "com1=200",
                         "squawk=10000",
                         "squawk=7080",
                         "squawk=0009",
                         "heading=-360.1",
                         "heading=721",
                         "heading=12.6rad",
                         "tail=\"D-EABCDEFGHIJ\"",
                         "tail=\"open",
                         "0x0238:u8=1",
                         "hour=5",
                         "0x0237:u16=0",
                         "0x3300:hex:8=0000000000000000",
                         "latitude=1e9",
                         "heading=5000ft",
                         "heading=270 furlongs",
                         "squawk=7000kHz",
                         "speed=-1",
                         "speed=70000",
                         "speed=fast",
                         "gear=sideways",
                         "gear=",
                         "brakes=landing",
                         "lights=1.5",
                         "brake=maybe",
                         "hour=on"};
  for (const char* text : cases) {
    Item item;
    std::string error;
    EXPECT_FALSE(ParseAssignment(text, names, &item, &error)) << text;
    EXPECT_FALSE(error.empty()) << text;
  }
}

TEST(OffsetctlShow, PrintsLinesAndJson) {
  const struct {
    const char* item;
    const char* bytes;
    const char* line;
    const char* value;  // in JSON
  } cases[] = {
      {"0x0330:u16", "53 3F", "0x0330 = 16211 (53 3F)", "16211"},
      {"0x0330:s8", "80", "0x0330 = -128 (80)", "-128"},
      {"0x0330:u64", "FFFFFFFFFFFFFFFF", "0x0330 = 18446744073709551615 (FF FF FF FF FF FF FF FF)",
       "\"18446744073709551615\""},
      {"0x0330:f32", "CDCCCC3D", "0x0330 = 0.1 (CD CC CC 3D)", "0.1"},
      {"0x0330:f32", "0000C07F", "0x0330 = nan (00 00 C0 7F)", "null"},
      {"0x0330:hex:2", "0A0B", "0x0330 = 0A 0B", "\"0A 0B\""},
      {"0x0330:text:4", "412200FF", "0x0330 = \"A\\\"\" (41 22 00 FF)", "\"A\\\"\""},
      {"0x0330:text:9", "C3A9E282ACF09F9880",
       "0x0330 = \"\\xC3\\xA9\\xE2\\x82\\xAC\\xF0\\x9F\\x98\\x80\" (C3 A9 E2 82 AC F0 9F 98 80)",
       "\"\\u00E9\\u20AC\\uD83D\\uDE00\""},
      {"0x0330:text:3", "EDA080", "0x0330 = \"\\xED\\xA0\\x80\" (ED A0 80)", "\"\\u00ED\\u00A0\\u0080\""},
      {"0x0330:text:2", "C080", "0x0330 = \"\\xC0\\x80\" (C0 80)", "\"\\u00C0\\u0080\""},
      {"0x0330:text:1", "E9", "0x0330 = \"\\xE9\" (E9)", "\"\\u00E9\""},
      {"heading", "FCBF", "heading = 269.978 deg, 49148 (FC BF)", "269.97802734375"},
      {"heading:u16", "FCBF", "heading = 49148 (FC BF)", "49148"},
      {"oat", "00F6", "oat = -20.000 degC, -2560 (00 F6)", "-20"},
      {"com1", "7018", "com1 = 118.70 MHz, 0x1870 (70 18)", "118.7"},
      {"com1", "7A18", "com1 = no decimal digits MHz, 0x187A (7A 18)", "null"},
      {"squawk", "2100", "squawk = 0021, 0x0021 (21 00)", "21"},
      {"brake", "FF7F", "brake = on, 32767 (FF 7F)", "32767"},
      {"lights", "0180", "lights = 0x8001 (01 80)", "32769"},
  };
  for (const auto& row : cases) {
    const Item item = Parsed(row.item, row.bytes);
    EXPECT_EQ(ItemLine(item), row.line);
    EXPECT_NE(ItemJson(item).find(std::string("\"value\": ") + row.value + ", \"raw\""), std::string::npos)
        << ItemJson(item);
  }
  EXPECT_EQ(ItemJson(Parsed("heading", "FCBF")),
            "{\"name\": \"heading\", \"offset\": 1408, \"type\": \"u16\", \"value\": 269.97802734375, "
            "\"raw\": \"FC BF\", \"unit\": \"deg\"}");
}

TEST(OffsetctlShow, TellsOldNewAndRounding) {
  const struct {
    const char* assignment;
    const char* before;
    const char* line;
    const char* after = "";  // "": what was written
  } cases[] = {
      {"heading=270", "0000", "heading: 0.000 -> 270.000 deg"},
      {"heading=360", "0040", "heading: 90.000 -> 0.000 deg (360 deg asked, the same as 0 deg)"},
      {"heading=-89.9", "0000",
       "heading: 0.000 -> 270.099 deg (-89.9 deg asked, the same as 270.1 deg: steps of 0.005493164 deg)"},
      {"lights=on", "0000",
       "lights: 0x0000 -> 0x0009 (navigation + taxi) (0x000B written, which the simulator changes: bit 1 is "
       "read-only there)",
       "0900"},
      {"speed=100.4", "0000",
       "speed: 0 -> 98 kt (100.4 kt asked: steps of 1 kt; 100 kt written, which the simulator changes)",
       "6200"},
      {"com1=118.705MHz", "7018", "com1: 118.70 -> 118.70 MHz (118.705 MHz asked: steps of 0.01 MHz)"},
      {"speed=100.4", "0000", "speed: 0 -> 100 kt (100.4 kt asked: steps of 1 kt)"},
      {"speed=185.2km/h", "0000", "speed: 0 -> 100 kt"},
      {"heading=271", "0000", "heading: 0.000 -> 271.000 deg"},
      {"heading=270.1", "0000", "heading: 0.000 -> 270.099 deg (270.1 deg asked: steps of 0.005493164 deg)"},
      {"brake=on", "0000", "brake: off -> on"},
      {"gear=up", "FF3F", "gear: 100.000 -> 0.000 % (up)"},
      {"0x0330:u16=7", "0500", "0x0330: 5 -> 7"},
      {"tail=AB", "", "tail: ? -> \"AB\""},
  };
  for (const auto& row : cases) {
    Item item;
    std::string error;
    ASSERT_TRUE(ParseAssignment(row.assignment, names, &item, &error)) << error;
    std::vector<uint8_t> before;
    ASSERT_TRUE(ParseBytes(std::string("hex:") + row.before, &before));
    std::vector<uint8_t> after = item.bytes;
    if (row.after[0] != 0) {
      ASSERT_TRUE(ParseBytes(std::string("hex:") + row.after, &after));
    }
    EXPECT_EQ(ChangeLine(item, before.empty() ? nullptr : before.data(), after.data()), row.line);
  }
}

TEST(OffsetctlUnits, Convert) {
  const struct {
    double value;
    const char *from, *to;
    double result;
  } cases[] = {
      {5000, "ft", "m", 1524},          {29.92, "inHg", "mb", 1013.207}, {1013, "hPa", "mb", 1013},
      {118.705, "MHz", "MHz", 118.705}, {1, "kt", "m/s", 0.514444},      {1000, "fpm", "m/s", 5.08},
      {59, "degF", "deg C", 15},        {288.15, "K", "degC", 15},       {1, "t", "lb", 2204.622},
      {60, "rpm", "deg/s", 360},        {50, "percent", "%", 50},        {1, "US gal", "l", 3.785412},
  };
  for (const auto& row : cases) {
    double result = 0;
    ASSERT_TRUE(ConvertUnit(row.value, row.from, row.to, &result)) << row.from << " " << row.to;
    EXPECT_NEAR(result, row.result, 1e-3) << row.from << " " << row.to;
    ASSERT_TRUE(ConvertUnit(result, row.to, row.from, &result));
    EXPECT_NEAR(result, row.value, 1e-9 * std::abs(row.value)) << "back to " << row.from;
  }
  double unused = 0;
  for (const auto& [from, to] : {std::pair{"ft", "deg"}, {"kt", "m"}, {"nothing", "m"}, {"m", ""}}) {
    EXPECT_FALSE(ConvertUnit(1, from, to, &unused)) << from << " " << to;
  }
  for (const OffsetName& row : KnownOffsets().rows) {
    EXPECT_TRUE(row.unit[0] == 0 || ConvertUnit(1, row.unit, row.unit, &unused)) << row.name;
  }
}

// Every stored value of a scaled type comes back when its engineering value is written.
TEST(OffsetctlWrite, TakesBackWhatJsonShows) {
  for (uint32_t stored = 0; stored < 0x10000; stored += 7) {
    for (const char* name : {"heading", "oat"}) {
      Item item = Parsed(name);
      item.bytes = {static_cast<uint8_t>(stored), static_cast<uint8_t>(stored >> 8)};
      double value = 0;
      ASSERT_TRUE(EngineeringNumber(item, &value));
      Item written;
      std::string error;
      ASSERT_TRUE(ParseAssignment(std::string(name) + "=" + std::to_string(value), names, &written, &error))
          << error;
      ASSERT_EQ(written.bytes, item.bytes) << name << " " << stored;
    }
  }
}

TEST(OffsetctlBlock, SplitsWhereTheBlockIsFull) {
  uint8_t data[40];
  for (size_t i = 0; i < sizeof data; ++i) data[i] = static_cast<uint8_t>(i);
  const std::vector<Transfer> transfers = {{0x10, 8, data}, {0x20, 8, data + 8}, {0x30, 8, data + 16}};
  EXPECT_EQ(BlockSize(RecordKind::Read, transfers, 0), 3 * 24u + 4);
  EXPECT_EQ(BlockSize(RecordKind::Write, transfers, 1), 2 * 20u + 4);
  for (const size_t capacity : {size_t{4}, size_t{27}, size_t{28}, size_t{75}, size_t{76}}) {
    std::vector<uint8_t> block(capacity + 8, 0xEE);
    const size_t last = PackRecords(RecordKind::Read, transfers, 0, block.data(), capacity);
    EXPECT_EQ(last, (capacity - 4) / 24) << capacity;
    uint32_t end = 1;
    std::memcpy(&end, block.data() + last * 24, 4);
    EXPECT_EQ(end, 0u);
    for (size_t i = 0; i < 8; ++i) EXPECT_EQ(block[capacity + i], 0xEE) << capacity;
  }
  // What the server fills in behind the headers goes to the transfers, the first of which was left out.
  std::vector<uint8_t> block(76);
  ASSERT_EQ(PackRecords(RecordKind::Read, transfers, 1, block.data(), block.size()), 3u);
  for (size_t i = 0; i < 8; ++i) block[16 + i] = 0xA1, block[24 + 16 + i] = 0xA2;
  UnpackReads(transfers, 1, 3, block.data());
  EXPECT_EQ(data[7], 7);
  EXPECT_EQ(data[8], 0xA1);
  EXPECT_EQ(data[23], 0xA2);
  EXPECT_EQ(data[24], 24);
}

}  // namespace
