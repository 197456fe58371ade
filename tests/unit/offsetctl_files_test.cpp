// What the client tool reads and writes beside values: recordings, its additions to an offsets file, and what
// it tells of an installation.
#include <gtest/gtest.h>

#include <algorithm>

#include "offsetctl/check.h"
#include "offsetctl/doctor.h"
#include "offsetctl/mapping.h"
#include "offsetctl/picture.h"
#include "offsetctl/recording.h"
#include "offsetctl/server.h"

namespace {

using namespace ctl;
using Bytes = std::vector<uint8_t>;

Bytes SmallRecording() {
  const Bytes memory(offsetMemorySize, 0x5A);
  Bytes file = RecordingHeader(1234567);
  const RecordedFrame frames[] = {{0, BlockFrame(memory, 3)},
                                  {20000, ChangeFrame({{0x0580, 1}, {0x1FFFF, 2}})}};
  for (const RecordedFrame& frame : frames) {
    const Bytes bytes = RecordedFrameBytes(frame);
    file.insert(file.end(), bytes.begin(), bytes.end());
  }
  return file;
}

TEST(OffsetctlRecording, ComesBack) {
  const Bytes file = SmallRecording();
  Recording recording;
  std::string error;
  ASSERT_TRUE(ReadRecording(file.data(), file.size(), &recording, &error)) << error;
  EXPECT_EQ(recording.startedAt, 1234567u);
  ASSERT_EQ(recording.frames.size(), 2u);
  EXPECT_EQ(RecordingLength(recording), 20000u);
  EXPECT_EQ(ReadFrame(recording.frames[0].bytes.data(), recording.frames[0].bytes.size()).block, 3u);
}

TEST(OffsetctlRecording, TellsWhatIsWrong) {
  const Bytes good = SmallRecording();
  Recording recording;
  std::string error;
  size_t whole = 0;
  for (size_t size = 0; size < good.size(); size += size < 64 || size > good.size() - 64 ? 1 : 97) {
    if (ReadRecording(good.data(), size, &recording, &error)) {
      ++whole;
    } else {
      EXPECT_TRUE(error.find("cut off") != std::string::npos || error.find("no recording") != std::string::npos)
          << size << ": " << error;
    }
  }
  EXPECT_LE(whole, 2u) << "only an end between two frames is none";
  const struct {
    size_t at;
    uint8_t value;
    const char* told;
  } cases[] = {{0, 'X', "no recording"},
               {8, 2, "version 2"},
               {10, 3, "header is damaged"},
               {20, 1, "header is damaged"},
               {32 + 8, 1, "frame 1 (byte 32)"},
               {32 + 11, 0x7F, "frame 1"},
               {44, 99, "nothing that a server sends"}};
  for (const auto& row : cases) {
    Bytes broken = good;
    broken[row.at] = row.value;
    EXPECT_FALSE(ReadRecording(broken.data(), broken.size(), &recording, &error)) << row.at;
    EXPECT_NE(error.find(row.told), std::string::npos) << row.at << ": " << error;
  }
  Bytes backwards = good;
  backwards[32 + 3] = 1;  // the first frame comes after the second
  EXPECT_FALSE(ReadRecording(backwards.data(), backwards.size(), &recording, &error));
  EXPECT_NE(error.find("frame 2"), std::string::npos) << error;
}

TEST(OffsetctlMapping, FindsAPlaceThatTheCheckLikes) {
  const struct {
    const char* file;
    MapRequest request;
    uint32_t offset;  // 0: refused
    bool exists;
  } cases[] = {
      {"", {"sim/a/b", "float", ""}, 0x66C0, false},
      {"Dataref x sim/a/b float\nOffset 66C0 FLOAT32 1 r $x", {"sim/a/b", "float", ""}, 0x66C0, true},
      {"Dataref x sim/a/b float\nOffset 66C0 FLOAT32 1 r $x 2 *\n", {"sim/a/b", "float", ""}, 0x66C4, false},
      {"Dataref x sim/a/b float\nOffset 66C0 FLOAT32 1 r $x", {"sim/a/b", "float", "66D0"}, 0x66D0, false},
      {"Dataref map66C4 sim/c int\nOffset 66C1 UINT8 1 r $map66C4\n# _",
       {"sim/a/b", "double", ""},
       0x66C8,
       false},
      {"Command 66C0 UINT8 1 1 sim/x", {"sim/a/b[3]", "data", ""}, 0x66C1, false},
      {"", {"sim/a/b[3]", "intarray", "0x66FC"}, 0x66FC, false},
      {"", {"sim/a/b", "float", "FFFD"}, 0, false},
      {"", {"sim/a/b", "float", "0580"}, 0, false},
      {"", {"sim/a/b", "float", "66G0"}, 0, false},
      {"", {"sim/a/b", "float32", ""}, 0, false},
      {"", {"sim/a/b[3]", "float", ""}, 0, false},
      {"", {"psi", "float", ""}, 0, false},
      {"", {"sim/a b", "float", ""}, 0, false},
      {"Offset 66C3 UINT8 1 r 1", {"sim/a/b", "float", "66C0"}, 0, false},
  };
  for (const auto& row : cases) {
    Mapping mapping;
    std::string error;
    const bool planned = PlanMapping(row.file, KnownOffsets(), row.request, &mapping, &error);
    EXPECT_EQ(planned, row.offset != 0) << row.file << ": " << error;
    EXPECT_EQ(error.empty(), planned);
    if (!planned) continue;
    EXPECT_EQ(mapping.offset, row.offset) << row.file;
    EXPECT_EQ(mapping.exists, row.exists) << row.file;
    if (row.exists) continue;
    const size_t before = CheckOffsetsFile(row.file, "", KnownOffsets()).size();
    const std::vector<Finding> after = CheckOffsetsFile(row.file + mapping.lines, "", KnownOffsets());
    EXPECT_LE(after.size(), before) << row.file << mapping.lines << (after.empty() ? "" : after.back().text);
  }
}

size_t Count(const std::vector<Diagnosis>& told, Health health, const char* text) {
  return static_cast<size_t>(std::count_if(told.begin(), told.end(), [&](const Diagnosis& one) {
    return one.health == health && one.text.find(text) != std::string::npos;
  }));
}

TEST(OffsetctlDoctor, TellsOfSettings) {
  constexpr uint32_t here = 0xC0A8000A;
  const struct {
    const char* ini;
    Health health;
    const char* told;
  } cases[] = {
      {"", Health::Bad, "192.168.0.1, which this computer does not have"},
      {"Server Address = 192.168.0.10", Health::Good, "an address of this computer"},
      {"Server Address = 127.0.0.1", Health::Good, "clients on this computer alone"},
      {"Server Address = here", Health::Bad, "which is no address"},
      {"Network writes = No", Health::Note, "may read and not write"},
      {"Network writes = no", Health::Note, "may read and not write"},
      {"Allowed clients = 10.0.0.1", Health::Note, "10.0.0.1"},
      {"TAVRIX2TAVRIX Client mode = Yes", Health::Note, "follows another simulator"},
  };
  for (const auto& row : cases) {
    const NetworkSettings settings = ReadNetworkSettings(std::string("[TAVRIX SETTINGS]\n") + row.ini + "\n");
    EXPECT_EQ(Count(DiagnoseSettings(settings, {0x7F000001, here}), row.health, row.told), 1u) << row.ini;
  }
  EXPECT_EQ(Count(DiagnoseFirewall(ReadNetworkSettings("")), Health::Note, "TCP port 65000"), 1u);
}

TEST(OffsetctlDoctor, TellsOfFilesAndLog) {
  std::vector<PlacedBinary> binaries = BinaryPlaces();
  EXPECT_EQ(Count(DiagnoseLayout(binaries), Health::Bad, "no plug-in in the folder"), 1u);
  binaries[2].found = BinaryKind::Windows32;  // in 64/
  binaries[3].found = BinaryKind::Linux64;
  EXPECT_EQ(Count(DiagnoseLayout(binaries), Health::Bad, "64/win.xpl is the Windows build of 32 bits"), 1u);
  EXPECT_EQ(Count(DiagnoseLayout(binaries), Health::Good, "64/lin.xpl"), 1u);
  EXPECT_EQ(Count(DiagnoseLog(""), Health::Bad, "has not loaded the plug-in"), 1u);
  const std::vector<Diagnosis> told = DiagnoseLog(
      "12:00:00 TAVFARNET->Tried address 10.0.0.1, TCP port 65000: the port is taken; close it\r\n"
      "Command  not found.\r\nDataref sim/x not found.\r\n");
  EXPECT_EQ(Count(told, Health::Note, "the port is taken"), 1u);
  EXPECT_EQ(Count(told, Health::Note, "not found"), 1u);
  EXPECT_EQ(Count(told, Health::Bad, "does not say that the network server was started"), 1u);
}

}  // namespace
