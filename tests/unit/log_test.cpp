// Main log and trace log: format of the lines, reopening, failure of the folder, use by several threads.
#include "base/log.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

#include "base/locks.h"
#include "base/log_quiet.h"
#include "platform/clock.h"
#include "platform/system.h"
#include "platform/thread.h"
#include "test_tools.h"

namespace {

std::vector<std::string> reports;
void Report(const char* line) { reports.emplace_back(line); }

using tools::ReadFile;

struct Log : testing::Test {
  std::filesystem::path root = std::filesystem::path(testing::TempDir()) / "tavrix_log_test";
  std::string folder = (root / "plugins" / "TAVRIX").string() + pathSeparator;

  void SetUp() override {
    std::filesystem::remove_all(root);
    reports.clear();
    readTrace = writeTrace = 0;
    PublishRunningTime(0);
    ASSERT_TRUE(CreateLocks());
    ASSERT_TRUE(OpenLogs(folder.c_str(), Report));
  }
  void TearDown() override {
    CloseLogs();
    DeleteLocks();
    readTrace = writeTrace = 0;
    std::filesystem::remove_all(root);
  }
  std::string MainText() const { return ReadFile(folder + "TAVRIX.txt"); }
  std::string TraceText() const { return ReadFile(folder + "TAVRIX.log"); }
  static void Trace(int isWrite, uint32_t request, uint32_t offset, uint32_t size, const uint8_t* bytes) {
    const LockScope scope(&traceLock);
    TraceRecord(isWrite, request, offset, size, bytes);
    FlushTrace();
  }
};

TEST_F(Log, RecordsAreDumpedSixteenBytesALine) {
  struct Case {
    int isWrite;
    float time;
    uint32_t request, offset, size;
    const char* expected;
  };
  constexpr Case cases[] = {
      {0, 1.5f, 1, 0x0840, 0, " 0001.50 Req: 000001 READ  Offset: 0840 Bytes: 000 value: \n"},
      {1, 123456.789f, 1234567, 0x1F000, 2,
       " 123456.79 Req: 1234567 WRITE Offset: 1F000 Bytes: 002 value: F0 F1 \n"},
      {0, -1.0f, 0, 0x2, 16,
       " -001.00 Req: 000000 READ  Offset: 0002 Bytes: 016 value: F0 F1 F2 F3 F4 F5 F6 F7 F8 F9 FA FB FC FD FE "
       "FF "
       "\n\n"},
      {1, 0.0f, 12, 0x3130, 17,
       " 0000.00 Req: 000012 WRITE Offset: 3130 Bytes: 017 value: F0 F1 F2 F3 F4 F5 F6 F7 F8 F9 FA FB FC FD FE "
       "FF "
       "\n00 \n"},
  };
  std::vector<uint8_t> bytes;
  for (int i = 0; i < 17; ++i) bytes.push_back(static_cast<uint8_t>(0xF0 + i));
  readTrace = writeTrace = 1;
  std::string expected;
  for (const Case& c : cases) {
    PublishRunningTime(c.time);
    Trace(c.isWrite, c.request, c.offset, c.size, bytes.data());
    expected += c.expected;
    EXPECT_EQ(TraceText(), expected);
  }
  readTrace = 0;
  Trace(0, 1, 2, 3, bytes.data());
  EXPECT_EQ(TraceText(), expected) << "switched off";
}

TEST_F(Log, TraceIsReopenedOnlyWhenBothSwitchesWereOff) {
  PublishRunningTime(2.25f);
  SwitchTrace(0, 1);
  EXPECT_EQ(TraceText(), "Start Readlogging 2.250000 sec\n");
#if !defined(_WIN32)  // an open file cannot be moved away on Windows
  std::filesystem::rename(folder + "TAVRIX.log", folder + "moved");
  SwitchTrace(1, 1);
  EXPECT_FALSE(std::filesystem::is_regular_file(folder + "TAVRIX.log"))
      << "reading was on: the same file goes on";
  SwitchTrace(0, 0);
  SwitchTrace(1, 0);
  EXPECT_EQ(ReadFile(folder + "moved"),
            "Start Readlogging 2.250000 sec\nStart Writelogging 2.250000 sec\nStop Readlogging 2.250000 sec\n"
            "Stop Writelogging 2.250000 sec\n");
  SwitchTrace(1, 1);
  EXPECT_EQ(TraceText(), "Start Writelogging 2.250000 sec\n");
#endif
}

TEST_F(Log, LinesOfAnyLengthAndNumbersOfEveryKindStandAtOnce) {
  const std::string longText(5000, 'x');
  LogLine("%s|\n", longText.c_str());
  EXPECT_EQ(MainText(), longText + "|\n");
  LogBoth("%s %05.1f %i %lld %zu %02X %-4s|%*d %c %.3s %% %g\n", longText.c_str(), 2.5, -3, 1LL << 40,
          size_t{7}, 0xABu, "ab", 4, 42, 'c', "abcdef", 1e20);
  const std::string expected = longText + " 002.5 -3 1099511627776 7 AB ab  |  42 c abc % 1e+20\n";
  EXPECT_EQ(MainText(), longText + "|\n" + expected);
  EXPECT_EQ(TraceText(), expected);
}

// Beside a number with decimals the line is put together piece by piece: as the C library does it at once.
template <typename... Values>
void ExpectAsPrinted(const char* format, Values... values) {
  char expected[400];
  std::snprintf(expected, sizeof expected, format, values...);
  const size_t before = ReadFile(reports[0]).size();
  LogLine(format, values...);
  EXPECT_EQ(ReadFile(reports[0]).substr(before), expected) << format;
}
TEST_F(Log, PiecesAreWrittenAsTheLibraryDoes) {
  reports = {folder + "TAVRIX.txt"};
  ExpectAsPrinted("%f %ld %lld|%zu %td %jd %hd %hhd\n", -0.5, -70000L, 1LL << 40, size_t{9}, ptrdiff_t{-9},
                  intmax_t{1} << 50, 3, 4);
  ExpectAsPrinted("%p %c %x %X %o %u %+d %e\n", static_cast<void*>(&reports), 'x', 255U, 255U, 8U, 3000000000U,
                  5, 12345.678);
  ExpectAsPrinted("%Lf %Lg%%|\n", 1.25L, 0.5L);
  ExpectAsPrinted("%-9.3f|%*.*f|% f|%.0f|%G|%s\n", 1.5, 9, 2, -2.25, 3.0, 4.0, 1e-30, "end");
  ExpectAsPrinted("%200.2f|%150s|\n", 1.5, "wide");
  ExpectAsPrinted("%f %F %E|\n", std::numeric_limits<double>::quiet_NaN(),
                  -std::numeric_limits<double>::infinity(), 0.0);
  reports.clear();
}

TEST_F(Log, DecimalCommasOfTheLocaleDoNotReachTheFile) {
  const std::string before = std::setlocale(LC_NUMERIC, nullptr);
  int found = 0;
  for (const char* name :
       {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "German", "German_Germany.1252", "fr_FR.UTF-8"}) {
    if (std::setlocale(LC_NUMERIC, name) && *std::localeconv()->decimal_point == ',') {
      found = 1;
      break;
    }
  }
  LogLine("a,b %s %07.2f %g %e %f\n", "1,5", -2.5, 0.125, 1234.5, std::numeric_limits<double>::infinity());
  std::setlocale(LC_NUMERIC, before.c_str());
  EXPECT_EQ(MainText(), "a,b 1,5 -002.50 0.125 1.234500e+03 inf\n");
  if (!found) GTEST_SKIP() << "no locale with a decimal comma here, checked with the point";
}

TEST_F(Log, OwnLinesCarryTheTime) {
  LogLine("plain\n");
  LogOwn("TAVRIX->%s %i %.1f\n", "text", 7, 2.5);
  const std::string text = MainText();
  ASSERT_TRUE(text.starts_with("plain\n")) << text;
  const std::string line = text.substr(6);
  EXPECT_EQ(line.substr(timeStampSize), "TAVRIX->text 7 2.5\n");
  const std::string form = "dd:dd:dd:ddd ";
  for (size_t i = 0; i < form.size(); ++i) {
    EXPECT_TRUE(form[i] == 'd' ? line[i] >= '0' && line[i] <= '9' : line[i] == form[i]) << line;
  }
}

TEST_F(Log, LinesThatOthersCauseAreCounted) {
  constexpr int64_t minute = 60'000'000'000;
  const char rest[] = "Knocks more than 2 times within a minute: the rest of the minute is not told\n";
  QuietMinute knocks = {.what = "Knocks", .most = 2, .began = 0, .turns = 0};
  const auto due = [&] {
    int lines = 0;
    for (int i = 0; i < 5; ++i) lines += TakeLogTurn(&knocks) ? 1 : 0;
    return lines;
  };
  const auto told = [&] { return tools::CountText(MainText(), rest); };
  EXPECT_EQ(due(), 2);
  EXPECT_EQ(told(), 1);
  EXPECT_EQ(due(), 0);
  EXPECT_EQ(told(), 1);
  CloseLogs();
  ASSERT_TRUE(OpenLogs(folder.c_str(), Report));
  EXPECT_EQ(due(), 2) << "a log that was begun anew";

  static QuietTable table;
  table = {};
  for (int round = 0; round < 2; ++round) {
    for (uint64_t key = 0; key < std::size(table.entries) + 1; ++key) {
      EXPECT_EQ(TakeLogTurn(&table, key), round == 0 && key < std::size(table.entries)) << key;
    }
  }
  table.entries[5].time -= minute;
  table.entries[6].time -= minute / 2;
  EXPECT_FALSE(TakeLogTurn(&table, 6));
  EXPECT_TRUE(TakeLogTurn(&table, 99)) << "in the place of the fifth";
  EXPECT_FALSE(TakeLogTurn(&table, 5)) << "which has none any longer";
}

TEST(LogText, ForeignTextsAreEscaped) {
  struct Case {
    std::string_view text;
    const char* foreign;  // of a client
    const char* own;      // of the user's own file
  };
  const Case cases[] = {
      {"", "", ""},
      {"Cessna 172 \"SP\" ~", "Cessna 172 \"SP\" ~", "Cessna 172 \"SP\" ~"},
      {"a\nTAVRIX->b\r\t", "a\\nTAVRIX->b\\r\\t", "a\\nTAVRIX->b\\r\\t"},
      {"C:\\x", "C:\\\\x", "C:\\x"},
      {"\x1B[2J\x7F", "\\x1B[2J\\x7F", "\\x1B[2J\\x7F"},
      {{"a\0b", 3}, "a\\x00b", "a\\x00b"},
      {"\xC3\xA4\xFF", "\\xC3\\xA4\\xFF", "\xC3\xA4\xFF"},
      {"%s%n", "%s%n", "%s%n"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(EscapedForLog(c.text), c.foreign);
    EXPECT_EQ(EscapedControls(c.text), c.own);
  }
}

// A file of text that grows beyond the bound: the lines of both files together are those that were logged.
struct Bounded : Log {
  void Fill(uint64_t bytes) {
    const std::string filler(65535, 'f');
    for (uint64_t at = 0; at < bytes; at += filler.size() + 1) LogLine("%s\n", filler.c_str());
  }
};

TEST_F(Bounded, AFullLogIsKeptOnceAndBegunAnew) {
  const std::string old = folder + "TAVRIX.txt.old";
  std::ofstream(old, std::ios::binary) << "older\n";
  LogLine("first\n");
  Fill(largestLog / 2);
  ASSERT_TRUE(ReopenMainLog()) << "what was before counts, too";
  Fill(largestLog / 2 - 70000);
  EXPECT_EQ(ReadFile(old), "older\n");
  Fill(140000);
  LogLine("last\n");
  const std::string before = ReadFile(old), now = MainText();
  EXPECT_TRUE(before.starts_with("first\n"));
  EXPECT_LE(before.size(), largestLog);
  EXPECT_GT(before.size(), largestLog - 66000);
  EXPECT_LT(now.size(), 200000u);
  EXPECT_NE(now.find("the lines before are in "), std::string::npos) << now.substr(0, 300);
  EXPECT_TRUE(now.ends_with("f\nlast\n"));
}

TEST_F(Bounded, ALogThatCannotBeRenamedDoesNotGrowEither) {
  std::filesystem::create_directories(folder + "TAVRIX.txt.old" + pathSeparator + "in the way");
  for (int i = 0; i < 3; ++i) {
    Fill(largestLog);
    EXPECT_LE(std::filesystem::file_size(folder + "TAVRIX.txt"), largestLog);
  }
  LogLine("last\n");
  EXPECT_TRUE(MainText().ends_with("last\n"));
  EXPECT_NE(MainText().find("could not be kept"), std::string::npos);
  EXPECT_TRUE(std::filesystem::is_directory(folder + "TAVRIX.txt.old"));
}

TEST_F(Bounded, TraceRecordsAreNotTornApart) {
  static uint8_t bytes[60000];
  SwitchTrace(0, 1);
  const uint32_t lines = sizeof bytes / 16 + 1;  // with the header's, and an empty one
  uint32_t request = 0;
  while (!std::filesystem::is_regular_file(folder + "TAVRIX.log.old") && request < 1000)
    Trace(0, ++request, 0, sizeof bytes, bytes);
  ASSERT_LT(request, 1000u);
  for (int i = 0; i < 3; ++i) Trace(0, ++request, 0, sizeof bytes, bytes);
  uint32_t seen = 0;
  for (const char* name : {"TAVRIX.log.old", "TAVRIX.log"}) {
    const std::string text = ReadFile(folder + name);
    EXPECT_LE(text.size(), largestLog);
    const size_t begin = text.find("\n") + 1;  // the switch's line, or the one that says that the file goes on
    uint32_t records = 0;
    for (size_t at = text.find("Req: "); at != std::string::npos; at = text.find("Req: ", at + 1)) {
      EXPECT_EQ(text.compare(at + 5, 6,
                             std::string(6 - std::to_string(seen + 1).size(), '0') + std::to_string(seen + 1)),
                0);
      ++seen;
      ++records;
    }
    EXPECT_EQ(std::count(text.begin() + static_cast<long>(begin), text.end(), '\n'), records * lines) << name;
  }
  EXPECT_EQ(seen, request);
}

uint32_t LogLongLines(void*) {
  const std::string filler(99990, 'w');
  for (int i = 0; i < 100; ++i) LogLine("%s\n", filler.c_str());
  return 0;
}

TEST_F(Log, ThreadsThatLogAndReopeningWhileTheFileFillsTearNoLine) {
  Thread threads[3]{};
  for (Thread& thread : threads) ASSERT_TRUE(StartThread(&thread, LogLongLines, nullptr));
  for (int i = 0; i < 50; ++i) EXPECT_TRUE(ReopenMainLog());
  for (Thread& thread : threads) JoinThread(&thread);
  size_t lines = 0;
  for (const char* name : {"TAVRIX.txt.old", "TAVRIX.txt"}) {
    const std::string text = ReadFile(folder + name);
    size_t at = 0;
    for (size_t end = text.find('\n'); end != std::string::npos; at = end + 1, end = text.find('\n', at)) {
      if (text[at] != 'w') continue;
      EXPECT_EQ(end - at, 99990u);
      ++lines;
    }
    EXPECT_EQ(at, text.size());
  }
  EXPECT_EQ(lines, 300u) << "30 MB, of which two files hold all";
}

TEST_F(Log, OpenedAgainItStartsEmptyAndClosedItIsSilent) {
  LogLine("first\n");
  ReopenMainLog();
  LogLine("second\n");
  EXPECT_EQ(MainText(), "first\nsecond\n");
  CloseLogs();
  LogLine("lost\n");
  SwitchTrace(0, 1);
  FlushLogs();
  EXPECT_FALSE(ReopenMainLog());
  EXPECT_EQ(MainText(), "first\nsecond\n");
  ASSERT_TRUE(OpenLogs(folder.c_str(), Report));
  EXPECT_EQ(MainText(), "");
  EXPECT_TRUE(reports.empty());
}

TEST_F(Log, UnusableFolderGivesOneReportAndNoMore) {
  CloseLogs();
  const std::string blocked = (root / "file").string();
  std::ofstream(blocked) << "not a folder";
  std::filesystem::create_directories(root / "trace" / "TAVRIX.log");
  const std::string folders[] = {blocked + pathSeparator + "TAVRIX" + pathSeparator,
                                 (root / "trace").string() + pathSeparator,
                                 root.string() + pathSeparator + std::string(5000, 'x') + pathSeparator};
  for (const std::string& unusable : folders) {
    reports.clear();
    EXPECT_FALSE(OpenLogs(unusable.c_str(), Report));
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_NE(reports[0].find(unusable.substr(0, 20)), std::string::npos) << reports[0];
    EXPECT_EQ(reports[0].find('\n'), reports[0].size() - 1);
    LogLine("nowhere\n");
    LogBoth("nowhere %f\n", 1.0);
    SwitchTrace(1, 1);
    EXPECT_FALSE(ReopenMainLog());
    FlushLogs();
    EXPECT_EQ(reports.size(), 1u);
    EXPECT_FALSE(OpenLogs(unusable.c_str(), nullptr)) << "with nobody to tell";
  }
}

}  // namespace
