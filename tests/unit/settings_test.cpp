// The settings file: its text and its life on the disk.
#include "settings/settings.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "base/log.h"
#include "platform/system.h"
#include "settings/settings_text.h"
#include "test_tools.h"
#include "time_growth.h"

namespace {

TEST(SettingsText, SetsOneKeyAndKeepsTheRestByteForByte) {
  const std::string longValue(140, 'v'), cutLine = "[A]\nx = " + std::string(130, 'v') + "\n";
  // Text, section, key, value, text afterwards.
  const std::tuple<std::string, const char*, const char*, std::string, std::string> cases[] = {
      {"", "A", "x", "1", "[A]\nx = 1\n"},
      {"[A]", "A", "x", "1", "[A]\nx = 1\n"},
      {"[A]\nx=0", "A", "x", "1", "[A]\nx = 1\n"},
      {"; c\n\n[A]\n x=0 \ny = 2\njunk\n=\n", "A", "x", "1", "; c\n\n[A]\nx = 1\ny = 2\njunk\n=\n"},
      {"[A]\ny = 2\n\n[B]\nx = 3\n", "A", "x", "1", "[A]\ny = 2\nx = 1\n\n[B]\nx = 3\n"},
      {"[A]\n\n\n[B]\n", "B", "x", "1", "[A]\n\n\n[B]\nx = 1\n"},
      {"[A]\n\n\n[B]\n", "A", "x", "1", "[A]\nx = 1\n\n\n[B]\n"},
      {"x = 0\n[A]", "C", "x", "1", "x = 0\n[A]\n[C]\nx = 1\n"},
      {"[A]\r\nx = 0\r\ny = 2\r\n", "A", "x", "1", "[A]\r\nx = 1\r\ny = 2\r\n"},
      {"[A]\r\nx = 0\r\n", "A", "y", "1", "[A]\r\nx = 0\r\ny = 1\r\n"},
      {"\xEF\xBB\xBF[A]\nx = 0\n", "A", "x", "1", "\xEF\xBB\xBF[A]\nx = 1\n"},
      {"[A]\n;x = 0\n#x = 0\n", "A", "x", "1", "[A]\n;x = 0\n#x = 0\nx = 1\n"},
      {"[a]\nX = 0\n", "A", "x", "1", "[a]\nx = 1\n"},
      {"[A]\nX = 0\nx = 0\n", "A", "x", "1", "[A]\nX = 0\nx = 1\n"},
      {"[A]\nx = 0\n[B]\ny = 0\ny = 0\n[A]\nx = 2\n", "A", "x", "1",
       "[A]\nx = 1\n[B]\ny = 0\ny = 0\n[A]\nx = 1\n"},
      {"[A]\n[B]\n[A]\nx = 2\n", "A", "x", "1", "[A]\n[B]\n[A]\nx = 1\n"},
      {"[A\nx = 0\n", "A", "x", "1", "[A\nx = 0\n[A]\nx = 1\n"},
      {"[A]\nx = 0\n", "A", "x", "1\n[B]\ny = 2", "[A]\nx = 1\n"},
      {"[A]\n", "A", "x", longValue, cutLine},
      {"[A]\nx = 5\n", "A", "x", "", "[A]\nx = \n"}};
  for (const auto& [text, section, key, value, expected] : cases) {
    const std::string changed = SetSettingInText(text, section, key, value);
    EXPECT_EQ(changed, expected);
    EXPECT_EQ(SetSettingInText(changed, section, key, value), changed) << "set twice";
    std::string_view found;
    EXPECT_TRUE(FindSetting(changed, section, key, &found));
    EXPECT_EQ(found, CutSettingValue(value));
  }
}

TEST(SettingsText, ManyKeysAtOnceAreTheSameAsOneAfterTheOther) {
  const SettingChange changes[] = {{"A", "x", "1"}, {"C", "k", "2"}, {"B", "z", "3"}, {"a", "y", "4"},
                                   {"D", "m", "5"}, {"C", "l", "6"}, {"c", "n", "7"}, {"A", "w", "8"}};
  const char texts[] =  // between bars, the first one empty
      "|\r\n|[A]|[A]\r\nx=0|[A]\r\nx=0\r\n\r\n\r\n[B]\r\n|[a]\nX=0\n[A]\ny=0\n[b]\nZ=1\nz=2|"
      "[B]\nz=1\n[A]\n[B]\nz=2\n[A]\ny=1\n;end\n\n|\xEF\xBB\xBF[c]\nk=1\n[C]\n\n[c]\nl=2\nl=3\nn|"
      "x=1\n[D\n[ D ]\nm = \n";
  std::istringstream all(texts);
  for (std::string text; std::getline(all, text, '|');) {
    std::string oneByOne = text;
    std::vector<SettingQuery> queries;
    for (const SettingChange& change : changes) {
      oneByOne = SetSettingInText(oneByOne, change.section, change.key, change.value);
      queries.push_back({change.section, change.key, "?", false});
    }
    EXPECT_EQ(SetSettingsInText(text, changes), oneByOne) << text;
    FindSettings(oneByOne, queries);
    for (size_t i = 0; i < std::size(changes); ++i) {
      EXPECT_TRUE(queries[i].found);
      EXPECT_EQ(queries[i].value, changes[i].value) << changes[i].key << "\n" << oneByOne;
    }
  }
}

TEST(SettingsText, FindsValues) {
  constexpr std::pair<const char*, const char*> cases[] = {{"[A]\nx=1", "1"},
                                                           {"[A]\n\tx \t=\t 1 2 \t\r\n", "1 2"},
                                                           {"[A]\nx = a=b\n", "a=b"},
                                                           {"[A]\nx =\n", ""},
                                                           {"[ A ]\nx = 1\n", "1"},
                                                           {"[A]\nx = 1\x01zz\n", "1"},
                                                           {"[A]\nX = 2\nx = 1\n", "1"},
                                                           {"[a]\nX = 2\n", "2"},
                                                           {"[A] tail\nx = 1", "1"},
                                                           {"[B]\nx = 1\n", "missing"},
                                                           {"x = 1\n[A]\n", "missing"},
                                                           {"[A]\nx1 = 1\n", "missing"},
                                                           {"[A]\nx\n", "missing"}};
  for (const auto& [text, expected] : cases) {
    std::string_view value = "?";
    EXPECT_EQ(FindSetting(text, "A", "x", &value) ? value : "missing", expected) << text;
  }
}

TEST(SettingsText, ParsesValues) {
  for (const auto& [text, value] : {std::pair{" 12abc", 12},
                                    {"+7", 7},
                                    {"-3", -3},
                                    {"x9", 0},
                                    {"+-5", 0},
                                    {"99999999999", 2147483647},
                                    {"-99999999999", -2147483647 - 1}}) {
    EXPECT_EQ(ParseInteger(text), value) << text;
  }
  for (const auto& [text, value] :
       {std::pair{"-1.5", -1.5}, {" +0.10 m", 0.10}, {"nan", 0.0}, {"1e999", 0.0}, {"", 0.0}}) {
    EXPECT_EQ(ParseNumber(text), value) << text;
  }
  for (const char* yes : {"Yes", "YES"}) EXPECT_EQ(ParseYesNo(yes), 1);
  for (const char* no : {"yes", "No", "", "Yes.", "1"}) EXPECT_EQ(ParseYesNo(no), 0);
  const FlapDetent full = ParseFlapDetent("0.25, 1,-2,9"), one = ParseFlapDetent("5"),
                   none = ParseFlapDetent("");
  EXPECT_TRUE(full.count == 3 && full.values[0] == 0.25 && full.values[1] == 1 && full.values[2] == -2);
  EXPECT_TRUE(one.count == 1 && one.values[0] == 5 && none.count == 0 && none.values[0] == 0);
  EXPECT_TRUE(std::isnan(ParseFlapDetent("0.5,,0.6").values[1]));
  for (const char* faulty : {"abc", "1.0x", "0.5,nan", "1e999"}) EXPECT_EQ(ParseFlapDetent(faulty).count, 0);
}

struct SettingsFile : testing::Test {
  std::filesystem::path root = std::filesystem::path(testing::TempDir()) / "tavrix_settings_test";
  std::string path = (root / "TAVRIX.ini").string();
  std::string logFolder = (root / "log").string() + pathSeparator;

  void SetUp() override {
    std::filesystem::remove_all(root);
    std::filesystem::create_directories(root);
    ASSERT_TRUE(OpenLogs(logFolder.c_str(), nullptr));
    SetSettingsPath(path.c_str());
  }
  void TearDown() override {
    CloseLogs();
    std::filesystem::remove_all(root);
  }
  static std::string Read(const std::string& name) { return tools::ReadFile(name); }
  void Put(const std::string& text) const { tools::WriteFile(path, text); }
  int LogLines() const { return tools::CountText(Read(logFolder + "TAVRIX.txt"), "\n"); }
};

TEST_F(SettingsFile, MissingFileIsCreatedWithEveryDefaultInOrder) {
  EXPECT_TRUE(ReadAllSettings());
  const std::string expected =
      "TAVRIX Version 2.0.5.25 ini file\n\n"
      "[TAVRIX SETTINGS]\nTune value = 0\nServer Address = 192.168.0.1\nTAVRIX2TAVRIX Client mode = No\n"
      "Allowed clients = \nNetwork writes = Yes\nStatus page = All\n"
      "[TAVRIX ATC SETTINGS]\nATC Number = LH 5363\nATC Tail Number = D-ABIB\nATC Airline name = Lufthansa\n"
      "ATC Aircraft type = Boeing 737-800\n"
      "[TAVRIX AXIS SETTINGS]\nInvert Elevator Axis = No\nInvert Aileron Axis = No\nInvert Rudder Axis = No\n"
      "Combine Rudder Axis = Not assigned\nCombine Aileron Axis = Not assigned\n"
      "Combine Elevator Axis = Not assigned\nCombine Tiller Axis = Not assigned\n"
      "Combine Left Toebrake Axis = Not assigned\nCombine Right Toebrake Axis = Not assigned\n"
      "[PUSHBACK SETTINGS]\nMaxSpeed = -1.5\n[OTHER SETTINGS]\nToeBrakeNullZonePercent = 0.10\n"
      "[TAVRIX FLAPS SETTINGS]\nFlap Settings = Inactive\nNumber of Detends = 02\nFlap detend 1 = \n"
      "Flap detend 2 = \nFlap detend 3 = \nFlap detend 4 = \nFlap detend 5 = \nFlap detend 6 = \n"
      "Flap detend 7 = \nFlap detend 8 = \nFlap detend 9 = \nFlap detend 10 = \n";
  EXPECT_EQ(Read(path), expected);
  EXPECT_EQ(std::string(settings.serverAddress) + settings.atcNumber, "192.168.0.1LH 5363");
  EXPECT_EQ(settings.pushbackMaxSpeed, -1.5);
  EXPECT_EQ(settings.toeBrakeNullZone, 0.10);
  EXPECT_EQ(settings.flapDetents, 2);
  EXPECT_EQ(LogLines(), 0);
}

TEST_F(SettingsFile, UserValuesAreReadAndMissingKeysCompleted) {
  Put("[TAVRIX SETTINGS]\r\nTune value=5x\r\nTAVRIX2TAVRIX Client mode = YES\r\n\r\nmine\r\n"
      "[TAVRIX ATC SETTINGS]\nATC Number =\n[TAVRIX AXIS SETTINGS]\nInvert Elevator Axis = yes\n"
      "Combine Tiller Axis = 2,3\n[TAVRIX FLAPS SETTINGS]\nFlap Settings = Active\nNumber of Detends = 11\n"
      "Flap detend 10 = 1,0.5");
  EXPECT_TRUE(ReadAllSettings());
  EXPECT_EQ(settings.tuneValue, 5);
  EXPECT_EQ(settings.clientMode, 1);
  EXPECT_STREQ(settings.atcNumber, "") << "an empty key is present";
  EXPECT_STREQ(settings.atcTailNumber, "D-ABIB");
  EXPECT_EQ(settings.flapsActive, 1);
  EXPECT_EQ(settings.flapDetents, 2) << "11 is not taken";
  EXPECT_EQ(settings.flapDetent[9].count, 2);
  const std::string text = Read(path);
  EXPECT_TRUE(
      text.starts_with("[TAVRIX SETTINGS]\r\nTune value=5x\r\nTAVRIX2TAVRIX Client mode = YES\r\n\r\nmine\r\n"
                       "Server Address = 192.168.0.1\r\nAllowed clients = \r\nNetwork writes = Yes\r\n"
                       "Status page = All\r\n[TAVRIX ATC SETTINGS]\nATC Number =\n"))
      << text;
  EXPECT_NE(text.find("\n[PUSHBACK SETTINGS]\nMaxSpeed = -1.5\n[OTHER SETTINGS]\nToe"), std::string::npos)
      << text;
  EXPECT_TRUE(ReadAllSettings());
  EXPECT_EQ(Read(path), text) << "nothing to complete any more";
}

TEST_F(SettingsFile, WhatOthersMayDoDefaultsToEverythingAndFailsClosed) {
  // Lines of the file; allowed clients, network writes, status page.
  const std::tuple<std::string, const char*, int, PageAccess> cases[] = {
      {"", "", 1, PageAccess::All},
      {"Allowed clients = 10.0.0.1, 192.168.0.0/24\nNetwork writes = No\nStatus page = Local\n",
       "10.0.0.1, 192.168.0.0/24", 0, PageAccess::Local},
      {"Network writes = perhaps\nStatus page = Off\n", "", 0, PageAccess::Off},
      {"Status page = nobody\n", "", 1, PageAccess::Off}};
  for (const auto& [lines, allowed, writes, page] : cases) {
    Put("[TAVRIX SETTINGS]\n" + lines);
    EXPECT_EQ(ReadAllSettings(), 1);
    EXPECT_EQ(settings.allowedClients, allowed) << lines;
    EXPECT_EQ(settings.networkWrites, writes) << lines;
    EXPECT_EQ(settings.statusPage, page) << lines;
  }
}

TEST_F(SettingsFile, MisspelledAddressOutlivesTheSecondStart) {
  const auto started = [] { return ReadAllSettings() ? std::string(settings.serverAddress) : "not read"; };
  Put("[TAVRIX SETTINGS]\nServer Adress = 10.0.0.5\n");
  for (int start = 1; start <= 2; ++start) {
    EXPECT_EQ(started(), "10.0.0.5") << "start " << start;
    char text[40];
    EXPECT_EQ(ReadSetting("TAVRIX SETTINGS", "Server Address", text, sizeof text), 11);
    EXPECT_STREQ(text, "192.168.0.1");
  }
  for (const std::string& address : {std::string("10.1.2.3"), std::string(60, '1')}) {
    EXPECT_EQ(WriteSetting("TAVRIX SETTINGS", "Server Address", address.c_str()), 1);
    EXPECT_EQ(started(), address.substr(0, 19));
  }
}

TEST_F(SettingsFile, ReadsSmallBuffersAndTellsMissingFromEmpty) {
  char text[4] = "zzz";
  EXPECT_EQ(ReadSetting("A", "x", text, sizeof text), -1) << "no file";
  EXPECT_STREQ(text, "");
  Put("[A]\nx = 12345\ny =\n");
  EXPECT_EQ(ReadSetting("A", "x", text, sizeof text), 5);
  EXPECT_STREQ(text, "123");
  EXPECT_EQ(ReadSetting("A", "y", text, sizeof text), 0);
  EXPECT_EQ(ReadSetting("A", "z", text, sizeof text), -1);
  EXPECT_EQ(ReadSetting("A", "x", nullptr, 0), 5);
  EXPECT_EQ(LogLines(), 0);
  EXPECT_FALSE(WriteSetting("A", "x=y", "1"));
  EXPECT_FALSE(WriteSetting("A]", "x", "1"));
  EXPECT_EQ(LogLines(), 2);
}

TEST_F(SettingsFile, KillDuringARewriteLeavesTheOldFileAndNoTrouble) {
  Put("[A]\nx = 1\n");
  std::ofstream(path + ".tmp") << "half a fi";  // what a killed program leaves
  EXPECT_TRUE(WriteSetting("A", "x", "2"));
  EXPECT_EQ(Read(path), "[A]\nx = 2\n");
  EXPECT_FALSE(std::filesystem::exists(path + ".tmp"));
}

TEST_F(SettingsFile, UnwritableFileGivesOneLineAndKeepsTheSettings) {
  std::filesystem::create_directories(path + ".tmp");  // nothing can be created under that name
  EXPECT_FALSE(ReadAllSettings()) << "neither read nor written";
  EXPECT_STREQ(settings.atcAircraftType, "Boeing 737-800");
  EXPECT_EQ(LogLines(), 1);
  EXPECT_FALSE(std::filesystem::exists(path));
  Put("[TAVRIX SETTINGS]\nTune value = 9\n");
  EXPECT_TRUE(ReadAllSettings());
  EXPECT_EQ(settings.tuneValue, 9);
  EXPECT_FALSE(WriteSetting("TAVRIX SETTINGS", "Tune value", "8"));
  EXPECT_EQ(Read(path), "[TAVRIX SETTINGS]\nTune value = 9\n");
  EXPECT_EQ(LogLines(), 2) << "told once at each enable";
}

TEST_F(SettingsFile, UnreadableFilesAreLeftAlone) {
  const std::string utf16("\xFF\xFE[\0A\0]\0", 8);
  const std::string huge((4u << 20) + 1, 'x');
  for (const std::string& content : {utf16, huge}) {
    Put(content);
    EXPECT_FALSE(ReadAllSettings());
    EXPECT_FALSE(WriteSetting("A", "x", "1"));
    EXPECT_EQ(Read(path), content);
  }
  std::filesystem::remove(path);
  std::filesystem::create_directories(path);
  EXPECT_FALSE(ReadAllSettings());
  EXPECT_EQ(settings.flapDetents, 2);
  EXPECT_FALSE(WriteSetting("A", "x", "1")) << "a folder is not replaced";
  EXPECT_TRUE(std::filesystem::is_directory(path));
  EXPECT_EQ(LogLines(), 3);
}

TEST_F(SettingsFile, NothingIsWrittenThatCouldNotBeReadAgain) {
  constexpr size_t largest = 4u << 20;
  const std::string head = "[TAVRIX SETTINGS]\nTune value = 9\n;";
  const std::string full = head + std::string(largest - head.size() - 8, 'x') + '\n';
  Put(full);
  EXPECT_TRUE(ReadAllSettings());
  EXPECT_EQ(settings.tuneValue, 9);
  EXPECT_EQ(Read(path), full) << "no room for the missing keys";
  EXPECT_EQ(LogLines(), 1);
  EXPECT_TRUE(WriteSetting("TAVRIX SETTINGS", "Tune value", "10")) << "room for one more digit";
  EXPECT_TRUE(ReadAllSettings());
  EXPECT_EQ(settings.tuneValue, 10);
  EXPECT_TRUE(WriteSetting("TAVRIX SETTINGS", "Tune value", "10000000"));
  EXPECT_EQ(std::filesystem::file_size(path), largest);
  EXPECT_TRUE(ReadAllSettings());
  EXPECT_EQ(settings.tuneValue, 10'000'000);
  EXPECT_FALSE(WriteSetting("TAVRIX SETTINGS", "Tune value", "100000000")) << "one byte too many";
}

// Four times the lines take about four times as long, and not sixteen times.
TEST_F(SettingsFile, ALargeFileCostsNoMoreThanItsText) {
  for (const char* line : {"\n", "x=1\n", "[a]\n", "[PUSHBACK SETTINGS]\nMaxSpeedy=1\n"}) {
    const auto read = [this, line](size_t size) {
      std::string text;
      while (text.size() < size) text += line;
      Put(text);
      EXPECT_TRUE(ReadAllSettings());
      EXPECT_EQ(settings.pushbackMaxSpeed, -1.5);
      EXPECT_TRUE(Read(path).ends_with("Flap detend 10 = \n"));
    };
    EXPECT_LT(tools::TimeGrowth([&] { read(250'000); }, [&] { read(1'000'000); }, 10), 10) << line;
  }
}

TEST_F(SettingsFile, ValuesWithoutAMeaningAreTold) {
  const std::string flaps = "[TAVRIX FLAPS SETTINGS]\n";
  const std::pair<std::string, const char*> cases[] = {
      {"[TAVRIX SETTINGS]\nStatus page = Some",
       "\"Status page\" in TAVRIX.ini is All, Local or Off, not Some: it counts as Off\n"},
      {"[TAVRIX SETTINGS]\nStatus page = Off", ""},
      {flaps + "Flap Settings = active",
       "\"Flap Settings\" in TAVRIX.ini is Active or Inactive, not active: it counts as Inactive\n"},
      {flaps + "Flap Settings = Inactive", ""},
      {flaps + "Number of Detends = 11", "is 2 to 10, not 11: what was in force stays\n"},
      {flaps + "Flap detend 3 = 1,x",
       "\"Flap detend 3\" in TAVRIX.ini is up to three numbers, not 1,x: it counts as empty\n"},
      {flaps + "Flap detend 3 = 1,2,3", ""}};
  int lines = 0;
  for (const auto& [text, told] : cases) {
    Put(text + "\n");
    EXPECT_TRUE(ReadAllSettings());
    EXPECT_EQ(LogLines(), lines += *told == 0 ? 0 : 1) << text;
    EXPECT_TRUE(Read(logFolder + "TAVRIX.txt").ends_with(told)) << text;
  }
}

TEST_F(SettingsFile, DetentsOutOfRangeLeaveThePreviousNumber) {
  settings.flapDetents = 0;  // never read before
  Put("[TAVRIX FLAPS SETTINGS]\nNumber of Detends = 11\n");
  ReadAllSettings();
  EXPECT_EQ(settings.flapDetents, 2);
  for (const auto& [value, expected] :
       {std::pair{"5", 5}, {"11", 5}, {"1", 5}, {"", 5}, {"10", 10}, {"-3", 10}, {"02", 2}, {"7", 7}}) {
    Put(std::string("[TAVRIX FLAPS SETTINGS]\nNumber of Detends = ") + value + "\n");
    ReadAllSettings();
    EXPECT_EQ(settings.flapDetents, expected) << value;
  }
  std::filesystem::remove(path);
  ReadAllSettings();
  EXPECT_EQ(settings.flapDetents, 2) << "a key that is missing gets its default";
}

constexpr int64_t second = 1'000'000'000;

TEST_F(SettingsFile, ChangesOfClientsWaitForQuiet) {
  Put("[A]\nx = 0\ny = 0\n");
  char text[10];
  const auto after = [this](int64_t now) { return SaveSettingsWhenDue(now), Read(path); };
  EXPECT_EQ(KeepSetting("A", "x", "1", 0), 1);
  EXPECT_EQ(KeepSetting("A", "y", "2", second), 1);
  EXPECT_EQ(ReadSetting("A", "x", text, sizeof text), 1);
  EXPECT_STREQ(text, "1") << "before it is in the file";
  EXPECT_EQ(after(3 * second - 1), "[A]\nx = 0\ny = 0\n");
  EXPECT_EQ(after(3 * second), "[A]\nx = 1\ny = 2\n");
  EXPECT_EQ(SettingsWait(), 0);

  KeepSetting("A", "x", "3", 100 * second);
  KeepSetting("a", "X", "4", 109 * second);  // the same key
  EXPECT_EQ(after(110 * second - 1), "[A]\nx = 1\ny = 2\n");
  EXPECT_EQ(after(110 * second), "[A]\nx = 4\ny = 2\n") << "the last value";

  KeepSetting("A", "x", "5", 200 * second);
  KeepSetting("A", "y", "6", 200 * second);
  EXPECT_EQ(WriteSetting("A", "x", "7"), 1);
  EXPECT_EQ(Read(path), "[A]\nx = 7\ny = 6\n") << "the newer one counts, the other is taken along";
  EXPECT_EQ(after(300 * second), "[A]\nx = 7\ny = 6\n");
  EXPECT_EQ(KeepSetting("A", "x=", "1", 0), 0);
  KeepSetting("A", "x", "1\n[B]", 400 * second);
  EXPECT_EQ(SaveWaitingSettings(), 1);
  EXPECT_EQ(Read(path), "[A]\nx = 1\ny = 6\n");
}

TEST_F(SettingsFile, ChangesThatCouldNotBeSavedCountAtTheNextEnable) {
  Put("[TAVRIX ATC SETTINGS]\nATC Number = OLD\n");
  std::filesystem::create_directories(path + ".tmp");
  KeepSetting("TAVRIX ATC SETTINGS", "ATC Number", "NEW", 0);
  EXPECT_FALSE(SaveWaitingSettings());
  EXPECT_TRUE(ReadAllSettings());
  EXPECT_STREQ(settings.atcNumber, "NEW");
  std::filesystem::remove_all(path + ".tmp");
  EXPECT_TRUE(ReadAllSettings());
  EXPECT_NE(Read(path).find("ATC Number = NEW\n"), std::string::npos);
  EXPECT_FALSE(SettingsWait());
}

}  // namespace
