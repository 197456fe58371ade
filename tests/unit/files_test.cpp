// Files in the plug-in's folder: names under which something else stands, folders with odd names, what is told
// to clients and users, and that changes made by clients reach the settings file.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

#include "base/log.h"
#include "core/sim.h"
#include "net/address.h"
#include "offsets/dispatcher.h"
#include "offsets/memory.h"
#include "platform/addresses.h"
#include "platform/clock.h"
#include "platform/socket.h"
#include "platform/system.h"
#include "row_harness.h"
#include "settings/settings.h"
#include "shell/advice.h"
#include "shell/atc_texts.h"
#include "shell/lifecycle.h"
#include "test_tools.h"
#if !defined(_WIN32)
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

using tools::ReadFile;

struct Files : testing::Test {
  std::filesystem::path root = std::filesystem::path(testing::TempDir()) / "tavrix_files_test";

  void SetUp() override {
    std::filesystem::remove_all(root);
    std::filesystem::create_directories(root);
  }
  void TearDown() override { std::filesystem::remove_all(root); }
};

TEST_F(Files, OnlyPlainFilesAreOpenedAndNothingElseIsTouched) {
  struct Case {
    const char* what;
    std::function<void(const std::string& path)> make;
    int read, write;  // whether it can be opened
    bool missing;
    const char* reason;
  };
  std::vector<Case> cases = {
      {"nothing", [](const std::string&) {}, 0, 1, true, ""},
      {"file", [](const std::string& path) { std::ofstream(path) << "old"; }, 1, 1, false, ""},
      {"folder", [](const std::string& path) { std::filesystem::create_directories(path); }, 0, 0, false,
       "folder"},
  };
#if !defined(_WIN32)
  cases.push_back(
      {"pipe", [](const std::string& path) { ASSERT_EQ(mkfifo(path.c_str(), 0600), 0); }, 0, 0, false, "pipe"});
  cases.push_back({"device",
                   [](const std::string& path) { std::filesystem::create_symlink("/dev/zero", path); }, 0, 0,
                   false, "device"});
  cases.push_back({"link to a file",
                   [](const std::string& path) {
                     std::ofstream(path + ".real") << "old";
                     std::filesystem::create_symlink(path + ".real", path);
                   },
                   1, 1, false, ""});
#endif
  for (const Case& c : cases) {
    for (const OpenMode mode : {OpenMode::Read, OpenMode::Append, OpenMode::Empty}) {
      SCOPED_TRACE(testing::Message() << c.what << " mode " << static_cast<int>(mode));
      SetUp();
      const std::string path = (root / "f").string();
      c.make(path);
      const auto before = std::filesystem::symlink_status(path).type();
      const int opened = mode == OpenMode::Read ? c.read : c.write;
      EXPECT_EQ(IsFileOrNothing(path.c_str()), c.write);
      OpenFailure failure = {true, "?"};
      FILE* file = OpenPlainFile(path.c_str(), mode, &failure);
      ASSERT_EQ(file != nullptr, opened != 0) << failure.reason;
      if (file == nullptr) {
        EXPECT_EQ(failure.missing, c.missing && mode == OpenMode::Read);
        EXPECT_NE(failure.reason.find(c.reason), std::string::npos) << failure.reason;
        EXPECT_FALSE(failure.reason.empty());
        EXPECT_EQ(std::filesystem::symlink_status(path).type(), before);
        continue;
      }
      if (mode != OpenMode::Read) {
        std::fputs("a\n", file);
      }
      std::fclose(file);
      const std::string kept = mode == OpenMode::Empty || c.missing ? "" : "old";
      EXPECT_EQ(ReadFile(path), mode == OpenMode::Read ? "old" : kept + "a\n");
    }
  }
}

TEST_F(Files, SeparatorsAreAddedWhereNoneIs) {
  const std::string s(1, pathSeparator);
  EXPECT_EQ(WithSeparator(""), "");
  EXPECT_EQ(WithSeparator("/a"), "/a" + s);
  EXPECT_EQ(WithSeparator("/a/"), "/a/");
#if defined(_WIN32)
  EXPECT_EQ(WithSeparator("C:\\a\\"), "C:\\a\\");
#else
  EXPECT_EQ(WithSeparator("/a\\"), "/a\\/") << "a backslash is part of the name here";
#endif
}

struct Plugin : Files {
  void Start(const std::string& folder, const std::string& reported) {
    static const sim::PluginEntry entry = {StartPlugin, StopPlugin, EnablePlugin, DisablePlugin,
                                           [](int, int, void*) {}};
    sim::Options options;
    options.linked = &entry;
    options.rate = 0;
    options.circuit = false;
    options.root = folder;
    options.reportedRoot = reported;
    ASSERT_EQ(sim::SimStart(options), 0);
  }
  void Own(const std::filesystem::path& folder) {
    own = folder / "Resources" / "plugins" / "TAVRIX";
    std::filesystem::create_directories(own);
  }
  void TearDown() override {
    sim::SimStop();
    Files::TearDown();
  }
  std::string Log() const { return ReadFile(own / "TAVRIX.txt"); }

  std::filesystem::path own;
};

TEST_F(Plugin, FoldersWithOddNamesAreUsedAsTheSimulatorTellsThem) {
  std::vector<std::string> names = {"X-Plane", "X Plane {1} %s '2'"};
#if !defined(_WIN32)
  names.insert(names.end(), {"X\\", "X\\Plane", "X\nPlane", "X-Pl\xC3\xA4ne"});
#endif
  for (const std::string& name : names) {
    for (const bool separated : {true, false}) {
      SCOPED_TRACE(testing::Message() << name << (separated ? " with" : " without") << " separator");
      const std::string folder = (root / name).string();
      Own(folder);
      std::ofstream(own / "TAVRIXOffsets.cfg") << "Dataref a no/such int\n";
      const std::string reported = separated ? folder + pathSeparator : folder;
      Start(folder, reported);
      EXPECT_NE(Log().find("Dataref no/such not found.\n"), std::string::npos) << "logs and offsets file";
      EXPECT_TRUE(std::filesystem::is_regular_file(own / "TAVRIX.ini"));
      {
        LockScope lock(&offsetLock);
        FillPathBlock(0x3E00, 256, PathSource::Local);
        EXPECT_STREQ(reinterpret_cast<const char*>(offsetMemory.bytes + 0x3E00),
                     reported.substr(0, 255).c_str());
      }
      sim::SimStop();
    }
  }
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(root), {}), static_cast<long>(names.size()))
      << "no folder beside them";
}

// A client writes a text that the dispatcher takes as new.
void WriteText(uint32_t offset, const std::string& text) {
  uint8_t bytes[atcTextSize] = {};
  std::copy_n(text.begin(), std::min<size_t>(text.size(), sizeof bytes), bytes);
  LockScope lock(&offsetLock);
  RequestMarks marks = {};
  DispatchWrite(offset, sizeof bytes, bytes, &marks);
  std::copy_n(bytes, sizeof bytes, offsetMemory.bytes + offset);
}

constexpr int64_t frame = 1'000'000'000 / 60;

struct AtcTextSaving : Plugin {
  void SetUp() override {
    Files::SetUp();
    Own(root);
    Start(root.string(), "");
    now = MonotonicNanoseconds();
  }
  // What a frame's write cycle does about them. True when the file was written.
  bool Frame() {
    const std::string before = ReadFile(own / "TAVRIX.ini");
    TakeAtcTexts(now);
    SaveSettingsWhenDue(now);
    now += frame;
    return ReadFile(own / "TAVRIX.ini") != before;
  }
  std::string Saved(const char* key) const {
    const std::string text = ReadFile(own / "TAVRIX.ini");
    const std::string begin = std::string(key) + " = ";
    const size_t at = text.find(begin);
    return at == std::string::npos ? ""
                                   : text.substr(at + begin.size(), text.find('\n', at) - at - begin.size());
  }
  int64_t now;
};

TEST_F(AtcTextSaving, WhatWaitsAtDisableIsSaved) {
  WriteText(0x3130, "LAST");
  Frame();
  WriteText(0x313C, "SEEN BY NONE");  // no frame runs any more
  EXPECT_NE(Saved("ATC Number"), "LAST");
  sim::SimCommand("disable");
  EXPECT_EQ(Saved("ATC Number"), "LAST");
  EXPECT_EQ(Saved("ATC Tail Number"), "SEEN BY NONE");
  sim::SimCommand("enable");
  EXPECT_STREQ(settings.atcTailNumber, "SEEN BY NONE");
}

// Both in one frame, which takes them; later ones save them; an enable shows them to clients.
TEST_F(AtcTextSaving, FramesTakeAndSaveThemAndEnableShowsThem) {
  sim::SimFrames(70);  // the first write cycle comes after a second
  WriteText(0x3130, "AB 12");
  WriteText(0x313C, "D-EXAMPLEXYZ");
  sim::SimFrames(1);
  EXPECT_STREQ(settings.atcNumber, "AB 12");
  EXPECT_STREQ(settings.atcTailNumber, "D-EXAMPLEXYZ");
  EXPECT_TRUE(tools::WaitUntil([&] {
    sim::SimFrames(1);
    return Saved("ATC Number") == "AB 12" && Saved("ATC Tail Number") == "D-EXAMPLEXYZ";
  }));
  sim::SimCommand("disable");
  std::fill_n(offsetMemory.bytes + 0x3130, 2 * atcTextSize, uint8_t{0xFF});
  sim::SimCommand("enable");
  EXPECT_EQ(rows::ReadString(0x3130, atcTextSize), "AB 12");
  EXPECT_EQ(rows::ReadString(0x313C, atcTextSize), "D-EXAMPLEXYZ");
}

TEST_F(AtcTextSaving, AFailingSaveIsToldOnceAndTriedAgain) {
  const std::string blocked = (own / "TAVRIX.ini.tmp").string();
  std::filesystem::create_directories(blocked);
  for (int i = 0; i < 60 * 60; ++i) {
    WriteText(0x3130, "N" + std::to_string(i));
    EXPECT_FALSE(Frame());
  }
  EXPECT_EQ(settings.atcNumber, std::string("N3599")) << "counts at once";
  EXPECT_EQ(tools::CountText(Log(), "Can't write"), 1);
  std::filesystem::remove_all(blocked);
  int frames = 0;
  while (!Frame() && frames < 60 * 120) ++frames;
  EXPECT_LE(frames, 60 * 60 + 1) << "a minute later";
  EXPECT_EQ(Saved("ATC Number"), "N3599");
}

TEST(Advice, NamesAddressesThatCanBePasted) {
  struct Case {
    std::vector<uint32_t> own;
    const char* configured;
    std::vector<const char*> parts;
    const char* absent;
  };
  const std::vector<uint32_t> two = {0xC0A8000A, 0x0A000005}, none;
  const Case cases[] = {
      {two,
       "192.168.0.1",
       {"addresses: 192.168.0.10, 10.0.0.5;", "192.168.0.1, which is not this computer's",
        "TAVRIX.ini: Server Address = 192.168.0.10,", "alone: Server Address = 127.0.0.1"},
       "one of them and"},
      {two, "10.0.0.5", {"Server Address = 10.0.0.5, which is one of them"}, "put one"},
      {two,
       "127.0.0.1",
       {"this computer alone can use", "TAVRIX.ini: Server Address = 192.168.0.10"},
       "no client"},
      {two, "10.0.0.5\n", {"10.0.0.5\\n, which is no address"}, "\n"},
      {two, "", {"which is no address"}, "one of them and"},
      {none, "192.168.0.1", {"no network address", "no client can connect", "127.0.0.1"}, "put one"},
      {none, "127.0.0.1", {"this computer alone can use"}, "put one"},
  };
  for (const Case& c : cases) {
    const std::string line = AddressAdvice(c.own, c.configured);
    for (const char* part : c.parts) EXPECT_NE(line.find(part), std::string::npos) << part << "\n" << line;
    EXPECT_EQ(line.find(c.absent), std::string::npos) << c.absent << "\n" << line;
  }
}

// Every address that is listed can be bound, and this computer alone is not listed.
TEST(Advice, ListedAddressesAreThisComputers) {
  ASSERT_TRUE(OpenSocketLibrary());
  for (const uint32_t ip : ListAddresses()) {
    EXPECT_NE(ip >> 24, 127u);
    Socket socket;
    ASSERT_TRUE(OpenSocket(&socket, Transport::Datagram));
    EXPECT_TRUE(BindSocket(&socket, {ip, 0})) << AddressText(ip);
    CloseSocket(&socket);
  }
  CloseSocketLibrary();
}

}  // namespace
