// The offsets file: grammar, limits, tables, loading with its log lines, and the check for authors.
#include <algorithm>

#include "custom/custom_parser.h"
#include "custom/custom_state.h"
#include "custom_harness.h"
#include "offsetctl/check.h"
#include "time_growth.h"

namespace {

struct Parsed : CustomTables {
  explicit Parsed(const std::string& file) { result = ParseCustomFile(file, this); }
  int result;
};

TEST(CustomFile, OffsetLines) {
  struct Case {
    const char* text;
    uint16_t offset;
    CustomType type;
    uint8_t size;
    int32_t number;
    CustomAccess access;
    int32_t tokenCount;
  };
  using enum CustomType;
  using enum CustomAccess;
  const Case cases[] = {{"Offset 0x66C0 UINT8 1 r @", 0x66C0, CustomType::U8, 1, 1, Read, 1},
                        {"Offset 66C0 SINT16 -3 w 1 2 +\r\n", 0x66C0, S16, 2, -3, Write, 3},
                        {"  Offsets\tfFfe FLOAT64 7x rw", 0xFFFE, F64, 8, 7, ReadWrite, 0},
                        {"Offset 123456 uint8 5 R 1", 0x3456, CustomType::U8, 0, 5, Read, 1},
                        {"Offset xyz UINT64 99999999999 rw # 1 2", 0, U64, 8, 2147483647, ReadWrite, 0},
                        {"Offset", 0, CustomType::U8, 0, 0, Read, -4},
                        {"Offset 66C0 SINT32 1 r a#b #c d", 0x66C0, S32, 4, 1, Read, 1},
                        {"Off_\nset 66_\r\nC0 FLOAT32_\n 2 r 1_ \n_\n2", 0x66C0, F32, 4, 2, Read, 1},
                        {"\xEF\xBB\xBFOffset 10 UINT32 1 r 1", 0x10, U32, 4, 1, Read, 1},
                        {"#Offset 1\n\n \t\nOffset 11 SINT8 1 r\v", 0x11, S8, 1, 1, Read, 0},
                        {"Offset 12 SINT64 1 r 1_", 0x12, S64, 8, 1, Read, 1},
                        {"Offset 13 UINT16 1 r __", 0x13, U16, 2, 1, Read, 0}};
  for (const Case& c : cases) {
    const Parsed parsed(c.text);
    ASSERT_EQ(parsed.offsets.size(), 1u) << c.text;
    const CustomOffsetEntry& entry = parsed.offsets[0];
    EXPECT_EQ(entry.offset, c.offset) << c.text;
    EXPECT_EQ(entry.type, c.type) << c.text;
    EXPECT_EQ(entry.size, c.size) << c.text;
    EXPECT_EQ(entry.number, c.number) << c.text;
    EXPECT_EQ(entry.access, c.access) << c.text;
    EXPECT_EQ(entry.tokenCount, c.tokenCount) << c.text;
  }
  EXPECT_EQ(Parsed("Offset 1 UINT8 1 r 1_\n_\n2").tokens, std::vector<std::string_view>{"12"});
  EXPECT_EQ(Parsed("offset 1\n\"Offset\" 1\nOffse 1\nX Offset\n").offsets.size(), 0u);
}

TEST(CustomFile, DatarefsAndCommands) {
  const Parsed parsed(
      "Dataref b sim/x/y[3] floatarray\nDataref ab sim/z[-1 int\nDataref a sim/x Int\nDataref \xE9 p[ data\n"
      "Command 0x9000 UINT8 0 1 cmd/a 1 2.5 cmd/b\nCommand 1000 SINT16 2 3\nCommand 2 UINT8 0 1 c 1 5\nCommand "
      "3\n");
  ASSERT_EQ(parsed.datarefs.size(), 4u);
  const std::string_view order[] = {"a", "ab", "b", "\xE9"};
  const char* paths[] = {"sim/x", "sim/z", "sim/x/y", "p"};
  const int indices[] = {0, -1, 3, 0};
  const Accessor kinds[] = {Accessor::None, Accessor::Int, Accessor::FloatArray, Accessor::Bytes};
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(parsed.datarefs[i].alias, order[i]);
    EXPECT_STREQ(parsed.datarefs[i].path, paths[i]);
    EXPECT_EQ(parsed.datarefs[i].index, indices[i]);
    EXPECT_EQ(parsed.datarefs[i].kind, kinds[i]);
  }
  EXPECT_EQ(FindCustomAlias(parsed.datarefs, "ab"), &parsed.datarefs[1]);
  EXPECT_EQ(FindCustomAlias(parsed.datarefs, "abc"), nullptr);
  ASSERT_EQ(parsed.commands.size(), 4u);
  const int offsets[] = {2, 3, 0x1000, 0x9000}, counts[] = {3, -3, 0, 4}, groups[] = {2, 0, 1, 2};
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(parsed.commands[i].offset, offsets[i]);
    EXPECT_EQ(parsed.commands[i].actionCount, counts[i]);
    EXPECT_EQ(parsed.commands[i].groupCount, static_cast<uint32_t>(groups[i]));
  }
  const CommandAction& second = parsed.actions[parsed.commands[3].firstGroup + 1];
  EXPECT_STREQ(second.name, "cmd/b");
  EXPECT_EQ(second.mode, 1);
  EXPECT_EQ(second.value, 2.5);
}

TEST(CustomFile, OrderIsSigned) {
  const Parsed parsed(
      "Offset 1000 UINT8 1 r\nOffset 9000 UINT8 1 r\nOffset FFFF UINT8 1 r\nOffset 0 UINT8 1 r\n");
  std::vector<uint16_t> order;
  for (const CustomOffsetEntry& entry : parsed.offsets) order.push_back(entry.offset);
  EXPECT_EQ(order, (std::vector<uint16_t>{0x9000, 0xFFFF, 0, 0x1000}));
}

TEST(CustomFile, Limits) {
  CustomType type = CustomType::F64;
  uint8_t size = 8;
  EXPECT_FALSE(FindCustomType("uint8", &type, &size));
  EXPECT_TRUE(type == CustomType::U8 && size == 0) << "nothing of what stood there";
  const std::string good = "Offset 1 UINT8 1 r 1\n";
  EXPECT_EQ(Parsed(good + "#" + std::string(4094, 'x') + "\r\n" + good).offsets.size(), 2u);
  EXPECT_EQ(Parsed(good + "#" + std::string(4095, 'x') + "\n").result, 0);
  EXPECT_EQ(Parsed(good + "#" + std::string(4095, 'x') + "\n").offsets.size(), 0u);
  // Joined: 2000 + 2095 characters may stand, one more may not.
  const std::string joined = "#" + std::string(1999, 'x') + "_\n";
  EXPECT_EQ(Parsed(joined + std::string(2095, 'x') + "\n" + good).offsets.size(), 1u);
  EXPECT_EQ(Parsed(good + joined + std::string(2096, 'x') + "\n").result, 0);
  const auto numbers = [](size_t count) {
    std::string text = "Offset 2 UINT8 1 r";
    for (size_t i = 0; i < count; ++i) text += " 1";
    return text;
  };
  EXPECT_EQ(Parsed(numbers(251)).offsets.at(0).tokenCount, 251);
  EXPECT_EQ(Parsed(good + numbers(252) + "\n" + good).offsets.size(), 2u);
  EXPECT_EQ(Parsed("Dataref " + std::string(255, 'a') + " p int").datarefs.size(), 1u);
  EXPECT_EQ(Parsed("Dataref " + std::string(256, 'a') + " p int").datarefs.size(), 0u);
}

// Without the times of our own lines.
std::string Unstamped(std::string log) {
  for (size_t at = log.find("TAVRIX->"); at != std::string::npos; at = log.find("TAVRIX->", at + 1)) {
    if (at < timeStampSize || log[at - 1] != ' ') continue;
    at -= timeStampSize;
    log.erase(at, timeStampSize);
  }
  return log;
}

using CustomLoad = custom::Harness;

TEST_F(CustomLoad, LogsWhatIsNotFound) {
  const std::string path =
      std::filesystem::path(custom::Folder() + "TAVRIXOffsets.cfg").make_preferred().string();
  const std::string error = "Error reading TAVRIXOffsets.cfg\n";
  LoadCustomOffsets();
  EXPECT_EQ(Unstamped(custom::Log()), error + "TAVRIX->There is no file " + path +
                                          ": that is fine unless you want offsets of your own\n");
  custom::Load("# nothing\n");
  EXPECT_EQ(custom::Log(), "");
  custom::Load(
      "Dataref p sim/time/paused int\nDataref no no/such[2] intarray\n"
      "Dataref q sim/time/paused floatarray\nDataref r sim/flightmodel/engine/ENGN_N1_[7] floatarray\n"
      "Dataref s sim/flightmodel/engine/ENGN_N1_[8] floatarray\n"
      "Command 10 UINT8 0 1 no/command 1 2 sim/flight_controls/rudder_ctr\n"
      "Offset 1 UINT8 1 r $p\nOffset 2 UINT8 1 r " +
      std::string(256, '1') + "\n");
  EXPECT_EQ(
      Unstamped(custom::Log()),
      "TAVRIX->TAVRIXOffsets.cfg line 8: the word has more than 255 characters, the line is left out: "
      "shorten it\n"
      "Dataref no/such not found.\n"
      "TAVRIX->Dataref sim/time/paused of the alias \"q\" in TAVRIXOffsets.cfg is kept as int, not as "
      "floatarray: it reads 0\n"
      "TAVRIX->Dataref sim/flightmodel/engine/ENGN_N1_ of the alias \"s\" in TAVRIXOffsets.cfg has 8 elements, "
      "counted from 0, and none of number 8: it reads 0\n"
      "Command no/command not found.\nCommand  not found.\nCommand  not found.\n"
      "TAVRIX->Commands without a name are the blanks between the groups of a Command line, which is "
      "normal; here of offset 0x0010\n");
  ASSERT_NE(loadedTables, nullptr);
  EXPECT_NE(loadedTables->datarefs[1].handle, nullptr);
  custom::Load("Offset 1 UINT8 1 r 1\n" + std::string(4096, 'x'));
  EXPECT_EQ(Unstamped(custom::Log()),
            error + "TAVRIX->Can't read " + path +
                ": line 2 has more than 4095 characters, make it shorter; there are no "
                "offsets of your own until the file is read again\n");
  EXPECT_EQ(loadedTables, nullptr);
  // An editor's doing: the file loads, as nothing.
  const std::pair<std::string, const char*> strange[] = {
      {std::string("\xFF\xFE#\0\n\0", 6), "it is stored as UTF-16, save it as ANSI or UTF-8 text"},
      {"# one\rOffset 1 UINT8 1 r 1\r", "save it with the line ends of Windows or Unix"},
  };
  for (const auto& [text, told] : strange) {
    custom::Load(text);
    EXPECT_NE(custom::Log().find(told), std::string::npos) << custom::Log();
  }
  std::filesystem::remove(path);
  std::filesystem::create_directories(path);
  OpenLogs(custom::Folder().c_str(), nullptr);
  LoadCustomOffsets();
  EXPECT_TRUE(Unstamped(custom::Log()).starts_with(error + "TAVRIX->Can't read " + path + ": it is a folder"))
      << custom::Log();
  std::filesystem::remove_all(path);
}

TEST_F(CustomLoad, NamesThatAreNotFoundAreListedOnce) {
  custom::Load(
      "Dataref a no/b int\nDataref c no/b int\nDataref e no/e int\nDataref p sim/time/paused int\nCommand 10 "
      "UINT8 0 1 no/d 1 2 "
      "no/d\n");
  const auto names = SummariseCustomOffsets().unresolved;
  EXPECT_EQ(std::vector<std::string>(names.begin(), names.end()),
            (std::vector<std::string>{"no/b", "no/e", "no/d"}));
}

// Each fault has a line up to a limit, notes have none, and what is loaded does not depend on them.
TEST_F(CustomLoad, TellsFaultsOfLines) {
  const std::string at = "TAVRIX->TAVRIXOffsets.cfg line ";
  custom::Load(
      "Offset 1 UINT8 0 w >a @\nOfset 2 UINT8 1 r 1\nOffset 3 UINT9 1 r 1\nDataref a sim/time/paused int\n");
  EXPECT_EQ(
      Unstamped(custom::Log()),
      at + "2: unknown word \"Ofset\", the line is ignored: lines begin with Offset, Dataref, Command or #\n" +
          at +
          "3: unknown type \"UINT9\", the line has no effect: write UINT8, SINT8, UINT16, SINT16, "
          "UINT32, SINT32, UINT64, SINT64, FLOAT32 or FLOAT64\n");
  CustomSummary summary = SummariseCustomOffsets();
  EXPECT_EQ(summary.offsets, 2u) << "a line with a fault counts as it always did";
  EXPECT_EQ(summary.faultyLines, 2u);
  EXPECT_STREQ(summary.fault, "");
  std::string text;
  for (int line = 1; line <= 2000; ++line) text += "x y\n";
  custom::Load(text);
  EXPECT_EQ(tools::CountText(custom::Log(), at), 20);
  EXPECT_NE(custom::Log().find("has 1980 faults more: run offsetctl check"), std::string::npos);
  EXPECT_EQ(SummariseCustomOffsets().faultyLines, 2000u);
  custom::Load(text + std::string(1u << 20, '\n'));
  EXPECT_NE(custom::Log().find("larger than 1 MB"), std::string::npos);
  ClearCustomOffsets();
  std::filesystem::remove(custom::Folder() + "TAVRIXOffsets.cfg");
  LoadCustomOffsets();
  EXPECT_STREQ(SummariseCustomOffsets().fault, "there is no file TAVRIXOffsets.cfg");
}

TEST_F(CustomLoad, LinesWithoutANameAreExplained) {
  std::string text = "Dataref x\nDataref e sim/\x1B\\a int\n";
  // Runs of blanks that nothing interrupts share a line, which names no more offsets than can be read.
  for (int i = 0; i < 10; ++i) {
    text += "Command " + std::to_string(70 + i) +
            " UINT8 1 1 sim/flight_controls/rudder_ctr 1 2 sim/flight_controls/rudder_ctr\n";
  }
  text += "Command 90 UINT8 1 1 no/a 1 2 no/b 1 3 sim/flight_controls/rudder_ctr\n";
  custom::Load(text);
  const std::string blank = "Command  not found.\n";
  const std::string why =
      "TAVRIX->Commands without a name are the blanks between the groups of a Command line, which is normal; "
      "here "
      "of offset ";
  std::string expected =
      "TAVRIX->TAVRIXOffsets.cfg line 1: a Dataref line has four words: Dataref ALIAS PATH KIND, 2 found\n"
      "Dataref sim/\\x1B\\a not found.\nDataref  not found.\n"
      "TAVRIX->The Dataref line of the alias \"x\" in TAVRIXOffsets.cfg names no dataref\n";
  for (int i = 0; i < 20; ++i) expected += blank;
  expected += why + "0x0070, 0x0071, 0x0072, 0x0073, 0x0074, 0x0075, 0x0076, 0x0077 and 2 more\n";
  expected += "Command no/a not found.\n" + blank + blank + why + "0x0090\n";
  expected += "Command no/b not found.\n" + blank + blank + why + "0x0090\n";
  EXPECT_EQ(Unstamped(custom::Log()), expected);
}

// A line that is joined from very many costs no more than its text: four times the lines take about four times
// as long, and not sixteen times.
TEST(CustomFile, ManyLinesCostNoMoreThanTheirText) {
  for (const char* line : {"_\n", "\n", "x\n"}) {
    const auto textOf = [line](size_t lines) {
      std::string text = "Offset 1 UINT8 1 r 1 _\n";
      for (size_t i = 0; i < lines; ++i) text += line;
      for (int i = 0; i < 240; ++i) text += " 1";  // tokens that are looked up among the lines
      return text + "\nOffset 2 UINT8 1 r 1\n";
    };
    const std::string few = textOf(200'000), many = textOf(800'000);
    const auto parse = [line](const std::string& text) { EXPECT_EQ(Parsed(text).offsets.size(), 2u) << line; };
    EXPECT_LT(tools::TimeGrowth([&] { parse(few); }, [&] { parse(many); }, 10), 10) << line;
    CustomFileReader reader = {many, 0};
    CustomLine joined;
    ASSERT_EQ(NextCustomLine(&reader, &joined), 1);
    EXPECT_LE(joined.pieces.capacity(), maxCustomLineLength) << line;
  }
}

TEST(CustomFile, PlacesOfJoinedTokens) {
  struct Case {
    const char* text;
    std::vector<std::pair<uint32_t, uint32_t>> places;
  };
  const Case cases[] = {
      {"a _\n b_\n c", {{1, 1}, {2, 2}, {3, 2}}},
      {"a_\n_\n_\nb c", {{1, 1}, {4, 3}}},
      {"a b__\n\n", {{1, 1}, {1, 3}}},
      {"a bc__\n\nd e", {{1, 1}, {1, 3}, {3, 3}}},
      {"a b___\n_\n\n c", {{1, 1}, {1, 3}, {4, 2}}},
      {"_\n_\na", {{3, 1}}},
      {"a _\n  \t_\n b", {{1, 1}, {3, 2}}},
  };
  for (const Case& c : cases) {
    CustomFileReader reader = {c.text, 0};
    CustomLine line;
    ASSERT_EQ(NextCustomLine(&reader, &line), 1) << c.text;
    std::vector<std::pair<uint32_t, uint32_t>> places;
    for (const CustomToken& token : line.tokens) places.emplace_back(token.line, token.column);
    EXPECT_EQ(places, c.places) << c.text;
  }
}

std::string Findings(const std::string& text, const std::string& log = "") {
  static constexpr ctl::OffsetName rows[] = {{0x02BC, ctl::ValueType::U32, 4, "ias", "indicated airspeed", "kt",
                                              1, 0, ctl::Form::Number, false, true}};
  static constexpr ctl::OffsetRange readOnly[] = {{0x3304, 0x330B}};
  std::string list;
  for (const ctl::Finding& finding : ctl::CheckOffsetsFile(text, log, {rows, readOnly})) {
    list += std::to_string(finding.line) + ":" + std::to_string(finding.column) +
            (finding.note ? " note " : " ") + finding.text + "\n";
  }
  return list;
}

TEST(CustomCheck, PointsAtEveryProblem) {
  struct Case {
    const char* line;   // after two Dataref lines
    const char* place;  // "" for no finding
    const char* part;
  };
  const Case cases[] = {
      {"Offset 66C0 UINT8 1 rw $a 2 * >f @ 2 /", "", ""},
      {"Command 66C0 UINT8 0 1 sim/x 1 2 sim/y # c", "", ""},
      {"Ofset 66C0 UINT8 1 r 1", "3:1 ", "unknown word"},
      {"Offsets 66C0 UINT8 1 r 1", "3:1 note ", "\"Offsets\" counts as \"Offset\""},
      {"Offset 66C0 UINT8 1x r 1", "3:19 ", "\"1x\" is no whole number and is read as 1"},
      {"Offset 66G0 UINT8 1 r 1", "3:8 ", "read as 0x0066"},
      {"Offset 166C0 UINT8 1 r 1", "3:8 ", "cut to 0x66C0"},
      {"Offset 66C0 uint8 1 r 1", "3:13 ", "unknown type \"uint8\""},
      {"Offset 66C0 UINT8 9 r 1", "3:19 ", "never refreshed"},
      {"Offset 66C0 UINT8 1 w >f @", "3:19 note ", "shows 77"},
      {"Offset 66C0 UINT8 1 W 1", "3:21 ", "unknown access"},
      {"Offset 66C0 UINT8 1 rw 1", "3:21 ", "no target"},
      {"Offset 66C0 UINT8 1 r $x", "3:23 ", "111"},
      {"Offset 66C0 UINT8 1 r 1 +", "3:25 ", "222: \"+\" finds only 1"},
      {"Offset 66C0 UINT8 1 r 1 2", "3:23 ", "leaves 2 values"},
      {"Offset 66C0 UINT8 1 rw $a >f", "3:27 ", "88: it is empty"},
      {"Offset 66C0 UINT8 1 rw $a >x @", "3:27 ", "alias \"x\""},
      {"Offset 66C0 UINT8 1 r 3,5", "3:23 ", "only \"3\" is read"},
      {"Offset 66C0 UINT8_\n  1 r _\n   1 ABS *", "5:6 ", "\"ABS\" is neither"},
      {"Offset 02BE UINT8 1 r 1", "3:8 ", "hides the fixed offset 0x02BC (indicated airspeed)"},
      {"Offset 3300 UINT64 1 r 1", "3:8 ", "0x3304 is read-only"},
      {"Offset 6F0D UINT16 1 r 1", "3:8 ", "read again"},
      {"Offset 10 UINT16 1 r 1\nOffset 10 UINT8 1 r 1", "4:8 ", "defined in line 3 already"},
      {"Offset 10 UINT16 1 r 1\nOffset 11 UINT8 1 r 1", "4:8 ", "belong also to line 3"},
      {"Command 10 UINT8 0 1", "3:20 ", "5 words found"},
      {"Command 10 UINT8 2 1 sim/x", "3:18 ", "never ends"},
      {"Command 10 UINT8 0 256 sim/x", "3:20 ", "never has the value"},
      {"Command 10 UINT8 0 1 s\nCommand 10 UINT8 0 2 s", "4:9 ", "line 3"},
      {"Dataref a sim/q int", "3:9 ", "twice"},
      {"Dataref q sim/q Int\nOffset 1 UINT8 1 r $q", "3:17 ", "unknown kind"},
      {"Dataref q sim/q[1] int\nOffset 1 UINT8 1 r $q", "3:20 ", "write intarray"},
      {"Dataref q sim/q[x] data\nOffset 1 UINT8 1 r $q", "3:11 ", "[3]"},
      {"Dataref q sim/q int", "3:9 note ", "no expression uses"},
      {"# text_\nOffset 1 UINT8 1 r $x", "3:1 ", "belongs to the comment"},
      {"Offset 1 UINT8 1 r 1 _", "3:1 ", "announces another line"}};
  const std::string head = "Dataref a sim/a int\nDataref f sim/f[2] floatarray\n";
  const std::string use = "\nOffset 7FF0 FLOAT64 1 r $a $f +\n";
  for (const Case& c : cases) {
    const bool cutShort = std::string_view(c.line).ends_with('_');
    const std::string list = Findings(cutShort ? head + use.substr(1) + c.line : head + c.line + use);
    const std::string place = cutShort ? "4:1 " : c.place;
    EXPECT_TRUE(*c.place == 0 ? list.empty() : list.starts_with(place)) << c.line << "\n" << list;
    EXPECT_NE(list.find(c.part), std::string::npos) << c.line << "\n" << list;
    EXPECT_LE(std::count(list.begin(), list.end(), '\n'), 1) << c.line << "\n" << list;
  }
  for (const char* mark : {"\xFF\xFE", "\xFE\xFF"}) {
    EXPECT_EQ(Findings(mark + head),
              "1:1 the file is stored as UTF-16 and nothing of it is understood: save it as ANSI or UTF-8\n");
  }
  EXPECT_NE(Findings("\n#" + std::string(4096, 'x')).find("2:1 the line has more than 4095"),
            std::string::npos);
}

TEST(CustomCheck, KnowsWhatBytesCanHold) {
  const std::tuple<const char*, std::vector<const char*>, std::vector<const char*>> cases[] = {
      // good, bad
      {"UINT8", {"0", "255"}, {"-1", "256", "1.5"}},
      {"SINT8", {"-128", "127"}, {"-129", "128"}},
      {"UINT16", {"65535"}, {"-1", "65536"}},
      {"SINT16", {"-32768", "32767"}, {"-32769", "32768"}},
      {"UINT32", {"4294967295"}, {"-1", "4294967296"}},
      {"SINT32", {"-2147483648", "2147483647"}, {"-2147483649", "2147483648"}},
      {"UINT64", {"9223372036854775808"}, {"-1", "18446744073709551616"}},
      {"SINT64", {"-9223372036854775808"}, {"9223372036854775808"}},
      {"FLOAT32", {"0.5", "-1024"}, {"0.1"}},
      {"FLOAT64", {"0.1", "1e300"}, {}}};
  for (const auto& [type, good, bad] : cases) {
    const auto fault = [type = type](const char* value) {
      return Findings(std::string("Command 66C0 ") + type + " 1 " + value + " sim/x\n")
                 .find("never has the value") != std::string::npos;
    };
    for (const char* value : good) EXPECT_FALSE(fault(value)) << type << ' ' << value;
    for (const char* value : bad) EXPECT_TRUE(fault(value)) << type << ' ' << value;
  }
}

TEST(CustomCheck, PointsAtWhatTheSimulatorDidNotFind) {
  const std::string text = "Dataref a sim/a[1] intarray\nOffset 1 UINT8 1 r $a\nCommand 1 UINT8 0 1 sim/c\n";
  const std::string old = "TAVRIX->Reading TAVRIXOffsets.cfg\nDataref sim/a not found.\nCommand  not found.\n";
  EXPECT_EQ(Findings(text, old + "Reload TAVRIXOffsets.cfg\n"), "") << "the last load counts";
  const std::string list =
      Findings(text, old + "Reload TAVRIXOffsets.cfg\r\nCommand  not found.\r\nCommand sim/c not found.\r\n");
  EXPECT_TRUE(list.starts_with("3:21 the simulator did not find the command \"sim/c\"")) << list;
  EXPECT_TRUE(Findings(text, old).starts_with("1:11 the simulator did not find the dataref \"sim/a\""));
}

// What the documents show works: no problem, and everything is found in the simulator.
TEST_F(CustomLoad, DocumentedFilesAreFaultless) {
  std::vector<std::string> files = custom::Blocks("custom-offsets.md", "offsets");
  EXPECT_GE(files.size(), 4u);
  files.push_back(tools::ReadFile(TAVRIX_SOURCE_DIR "/docs/TAVRIXOffsets.example.cfg"));
  for (const std::string& file : files) {
    EXPECT_FALSE(file.empty());
    for (const ctl::Finding& finding : ctl::CheckOffsetsFile(file, "", ctl::KnownOffsets())) {
      ADD_FAILURE() << finding.line << ":" << finding.column << " " << finding.text << "\n" << file;
    }
    custom::Load(file);
    const std::string log = custom::Log();
    for (size_t at = 0; at < log.size(); at = log.find('\n', at) + 1) {
      EXPECT_TRUE(log.compare(at, 19, "Command  not found.") == 0 ||
                  log.compare(at + timeStampSize, 8, "TAVRIX->") == 0)
          << log << file;
    }
  }
}

}  // namespace
