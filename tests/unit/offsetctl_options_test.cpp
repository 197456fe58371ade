// The client tool's command line, and the names that it looks up.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <sstream>

#include "offsetctl/command_lines.h"
#include "offsetctl/item.h"
#include "offsetctl/names.h"
#include "offsetctl/options.h"

namespace {

using namespace ctl;

TEST(OffsetctlOptions, ReadsTheCommandLine) {
  const char* const good[] = {
      "read a --json --timeout 2.5",
      "watch a --count=3 --rate 20",
      "write -- -odd=1",
      "list",
      "list standby radio",
      "--help",
      "dump --help",
      "--json read a",
      "--timeout 3 --net host read a",
      "help",
      "help write",
      "version",
      "check file --log=x",
      "map a/b float 66C0 --folder /x",
      "doctor",
      "replay f --speed 0.5 --listen 1.2.3.4 --loop",
      "serve --port 0 --token 12345678 --listen 0.0.0.0 --panels p --recordings r flight",
      "serve --find",
      "monitor --note text --seconds 2",
      "conform -- client --json -x",
      "conform loss late --listen 1.2.3.4 -- client",
      "--find",
      "--find --timeout 2 --json"};
  const char* const bad[] = {"",
                             "read",
                             "raed a",
                             "dump a b",
                             "write a=1 --json",
                             "watch a --count 0",
                             "watch a --rate",
                             "read a --timeout nan",
                             "read a --timeout 0",
                             "list --timeout 1",
                             "help nothing",
                             "version 2",
                             "check",
                             "map a/b",
                             "map a b c d",
                             "read a --loop",
                             "read a --nonsense",
                             "read a --json=1",
                             "replay f --speed 0",
                             "serve --port 65536",
                             "serve --timeout 2",
                             "serve --local --find",
                             "serve a b",
                             "list --port 1",
                             "conform loss",
                             "conform --",
                             "monitor --seconds 1s",
                             "read ias --net",
                             "read ias --net --json",
                             "read ias --net=",
                             "read ias --net a --local",
                             "read ias --find --net a",
                             "read ias --confirm",
                             "--find ias",
                             "--find --net a",
                             "list --find"};
  const auto check = [](const std::string& line, bool isGood, const char* net = nullptr) {
    std::istringstream stream(line);
    const std::vector<std::string> words{std::istream_iterator<std::string>(stream), {}};
    Options options;
    std::string error;
    EXPECT_EQ(ParseOptions(words, &options, &error), isGood) << line << ": " << error;
    EXPECT_EQ(error.empty(), isGood) << line;
    if (net != nullptr) {
      EXPECT_EQ(options.net, net) << line;
    }
  };
  for (const char* line : good) check(line, true);
  for (const char* line : bad) check(line, false);
  check("read ias --net 192.168.0.7", true, "192.168.0.7");
  check("read --net=cockpit ias", true, "cockpit");
  check("read ias --find", true, "");
  check("write gear=1 --net cockpit --confirm", true, "cockpit");
  check("--net cockpit --confirm write gear=1", true, "cockpit");
}

TEST(OffsetctlOptions, HelpKnowsEveryCommand) {
  const std::string all = HelpText(Command::None);
  for (const CommandLine& line : CommandLines()) {
    EXPECT_NE(all.find(std::string("  offsetctl ") + line.usage), std::string::npos) << line.word;
    Options options;
    std::string error;
    ASSERT_TRUE(ParseOptions({"help", line.word}, &options, &error) || line.command == Command::Find) << error;
    if (line.command != Command::Find) {
      EXPECT_TRUE(options.help && options.command == line.command) << line.word;
    }
    EXPECT_EQ(HelpText(line.command).rfind(std::string("offsetctl ") + line.usage, 0), 0u) << line.word;
  }
}

TEST(OffsetctlNames, TableOfTheCatalogueHoldsTogether) {
  const NameTable known = KnownOffsets();
  size_t inSubjects = 0;
  for (const OffsetSubject& subject : known.subjects) inSubjects += subject.rows;
  EXPECT_EQ(inSubjects, known.rows.size());
  for (const OffsetName& row : known.rows) {
    EXPECT_LE(row.offset + row.length, offsetMemorySize) << row.name;
    EXPECT_NE(row.unitScale, 0) << row.name;
    if (row.name[0] != 0) {
      EXPECT_EQ(FindByName(known, row.name), &row) << row.name << " is not unique";
    }
    EXPECT_EQ(FirstReadOnly(known, row.offset, 1) == row.offset, row.readOnly) << row.name;
  }
}

TEST(OffsetctlNames, NearestNames) {
  const struct {
    const char* wanted;
    const char* first;
  } cases[] = {{"headng", "heading"},
               {"altitud", "altitude"},
               {"HAEDING", "heading"},
               {"lattitude", "latitude"},
               {"com_1", "com1"},
               {"autopilot_heading_bug", "ap_heading_bug"},
               {"squawk7", ""},
               {"zzzz", ""},
               {"parkingbrake", "parking_brake"},
               {"", ""}};
  for (const auto& row : cases) {
    const std::vector<std::string> found = NearestNames(KnownOffsets(), row.wanted, 3);
    EXPECT_EQ(found.empty() ? "" : found[0], row.first) << row.wanted;
    EXPECT_LE(found.size(), 3u);
  }
  Item item;
  std::string error;
  EXPECT_FALSE(ParseItem("headng", KnownOffsets(), &item, &error));
  EXPECT_EQ(error, "no offset is named \"headng\": did you mean heading?");
}

TEST(OffsetctlNames, SearchesNamesMeaningsUnitsAndSubjects) {
  constexpr OffsetName some[] = {
      {0x0238, ValueType::U8, 1, "hour", "local hour", "h", 1, 0, Form::Number, true, false},
      {0x0239, ValueType::U8, 1, "", "local radio minute", "min", 1, 0, Form::Number, true, false},
      {0x034E, ValueType::U16, 2, "com1", "COM1 frequency", "MHz", 1, 0, Form::Bcd, false, true},
      {0x034C, ValueType::U16, 2, "adf1", "ADF frequency", "kHz", 1, 0, Form::Bcd, false, true},
      {0x0354, ValueType::U16, 2, "squawk", "transponder", "", 1, 0, Form::Bcd, false, true},
      {0x0580, ValueType::U32, 4, "radio_altitude", "height", "m", 1, 0, Form::Number, false, true},
  };
  constexpr OffsetSubject subjects[] = {{"Time", 2}, {"Nothing", 0}, {"Radios", 3}, {"Position", 1}};
  const struct {
    std::vector<std::string> words;
    std::vector<std::string> found;
  } cases[] = {
      {{"radio"}, {"com1", "adf1", "squawk", "radio_altitude"}},
      {{"RADIOS"}, {"com1", "adf1", "squawk"}},
      {{"position"}, {"radio_altitude"}},
      {{"time"}, {"hour"}},
      {{"nothing"}, {}},
      {{"radios", "frequency"}, {"com1", "adf1"}},
      {{"frequency", "mhz"}, {"com1"}},
      {{"0x0354"}, {"squawk"}},
      {{"852", "com"}, {}},
      {{"squawk transponder"}, {}},  // one word, and no part holds it
      {{}, {"hour", "com1", "adf1", "squawk", "radio_altitude"}},
  };
  for (const auto& row : cases) {
    std::vector<std::string> found;
    for (const OffsetName* name : Search({some, {}, subjects}, row.words)) found.push_back(name->name);
    EXPECT_EQ(found, row.found) << testing::PrintToString(row.words);
  }
  // What a cockpit builder looks for first.
  std::vector<std::string> radios;
  for (const OffsetName* name : Search(KnownOffsets(), {"radio"})) radios.push_back(name->name);
  for (const char* name : {"com1", "com_standby2", "nav1", "adf1", "transponder"}) {
    EXPECT_NE(std::find(radios.begin(), radios.end(), name), radios.end()) << name;
  }
}

}  // namespace
