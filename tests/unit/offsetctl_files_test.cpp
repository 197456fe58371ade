// What the client tool reads and writes beside values: recordings, its additions to an offsets file, and what
// it tells of an installation.
#include <gtest/gtest.h>

#include <algorithm>

#include "offsetctl/check.h"
#include "offsetctl/doctor.h"
#include "offsetctl/files.h"
#include "offsetctl/mapping.h"
#include "offsetctl/picture.h"
#include "offsetctl/recording.h"
#include "offsetctl/server.h"

namespace {

using namespace ctl;
using Bytes = std::vector<uint8_t>;

constexpr size_t startSize = 8 + 8 * (12 + 16394);

// A whole memory, and a change 20 ms later.
Bytes SmallRecording() {
  Bytes file = RecordingStart(Bytes(offsetMemorySize, 0x5A));
  const Bytes bytes = RecordedFrameBytes({20000, ChangeFrame({{0x0580, 1}, {0x1FFFF, 2}})});
  file.insert(file.end(), bytes.begin(), bytes.end());
  return file;
}

TEST(OffsetctlRecording, ComesBack) {
  const Bytes file = SmallRecording();
  Recording recording;
  std::string error;
  ASSERT_TRUE(ReadRecording(file.data(), file.size(), &recording, &error)) << error;
  ASSERT_EQ(recording.frames.size(), 9u);
  EXPECT_EQ(RecordingLength(recording), 20000u);
  Picture picture;
  for (const RecordedFrame& frame : recording.frames) {
    ApplyFrame(ReadFrame(frame.bytes.data(), frame.bytes.size()), &picture);
  }
  EXPECT_TRUE(IsComplete(picture));
  EXPECT_EQ(picture.bytes[0x0580], 1);
  EXPECT_EQ(picture.bytes[0x0581], 0x5A);
}

TEST(OffsetctlRecording, TellsWhatIsWrong) {
  const Bytes good = SmallRecording();
  Recording recording;
  std::string error;
  size_t whole = 0;
  for (size_t size = 0; size < good.size(); size += size < 64 || size > good.size() - 64 ? 1 : 97) {
    EXPECT_EQ(ReadRecording(good.data(), size, &recording, &error), size >= recordingStartSize)
        << size << error;
    whole += size >= recordingStartSize && recording.cutOff.empty();
    EXPECT_LE(recording.frames.size(), 8u) << size;
  }
  EXPECT_LE(whole, 2u) << "only an end between two frames is none";
  Bytes filled = good;
  filled.resize(good.size() + 100);
  EXPECT_TRUE(ReadRecording(filled.data(), filled.size(), &recording, &error)) << error;
  EXPECT_EQ(recording.frames.size(), 9u);
  EXPECT_NE(recording.cutOff.find("within frame 10"), std::string::npos) << recording.cutOff;
  const struct {
    size_t at;
    uint8_t value;
    const char* told;
  } cases[] = {{0, 'X', "no recording"},
               {7, 'C', "no recording"},
               {8 + 8, 1, "frame 1 (byte 8)"},
               {8 + 11, 0x7F, "frame 1"},
               {8 + 12, 99, "nothing that a server sends"},
               {8 + 3, 1, "frame 2"},          // the first frame comes after the second
               {startSize + 6, 4, "frame 9"},  // after 35 years
               {startSize + 11, 0x7F, "frame 9 (byte 131256)"}};
  for (const auto& row : cases) {
    Bytes broken = good;
    broken[row.at] = row.value;
    EXPECT_FALSE(ReadRecording(broken.data(), broken.size(), &recording, &error)) << row.at;
    EXPECT_NE(error.find(row.told), std::string::npos) << row.at << ": " << error;
  }
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
      {"Dataref map66C0\n", {"sim/a/b", "double", ""}, 0x66C0, false},
      {"Command 66F0 UINT8 0 0 sim/x__", {"sim/a/b", "double", ""}, 0x66C0, false},
      {"Command 66C0 UINT8 1 1 sim/x", {"sim/a/b[3]", "data", ""}, 0x66C1, false},
      {"", {"sim/a/b[3]", "intarray", "0x66FC"}, 0x66FC, false},
      {"", {"sim/a/b", "float", "FFFD"}, 0, false},
      {"", {"sim/a/b", "float", "0580"}, 0, false},
      {"", {"sim/a/b", "float", "66G0"}, 0, false},
      {"", {"sim/a/b", "float", "166E8"}, 0, false},
      {"", {"sim/a/b", "float", "C87F"}, 0, false},
      {"", {"sim/a/b", "float", "1F7D"}, 0, false},
      {"", {"sim/a/b", "float", "F100"}, 0, false},
      {"", {"sim/a/b", "float", "DFBF"}, 0, false},
      {"", {"sim/a/b[x]", "floatarray", ""}, 0, false},
      {"", {"sim/a/b[", "floatarray", ""}, 0, false},
      {"", {"sim/a/b[-1]", "floatarray", ""}, 0, false},
      {"", {"sim/a/b[1]c", "floatarray", ""}, 0, false},
      {"", {"sim/a/b", "float32", ""}, 0, false},
      {"", {"sim/a/b[3]", "float", ""}, 0, false},
      {"", {"psi", "float", ""}, 0, false},
      {"", {"sim/a b", "float", ""}, 0, false},
      {"", {"sim/a\x1b[31m/b", "float", ""}, 0, false},
      {"", {std::string("sim/a\0b", 7), "float", ""}, 0, false},
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

TEST(OffsetctlMapping, KnowsWhatTheLoadSaidAndTakesItsLinesOut) {
  const std::string old = "Dataref sim/a not found.\n12:00 Reload TAVRIXOffsets.cfg\r\n";
  const std::string misfit =
      "12:00 TAVRIX->Dataref sim/a of the alias \"map66C0\" in TAVRIXOffsets.cfg is kept as int, not as float: "
      "it "
      "reads 0\r\n";
  EXPECT_EQ(LoadFault(old, "sim/a", "map66C0"), "");
  EXPECT_NE(LoadFault(old + "Dataref sim/a not found.\n", "sim/a[2]", "x").find("no dataref sim/a:"),
            std::string::npos);
  EXPECT_EQ(LoadFault(old + misfit, "sim/a", "map66C0"), "sim/a is kept as int, not as float: it reads 0");
  EXPECT_EQ(LoadFault(old + misfit, "sim/a", "map66C4"), "");
  std::string text = "# mine\n\n# ours\n# somebody else's\n";
  EXPECT_TRUE(TakeOut("\n# ours\n", &text));
  EXPECT_EQ(text, "# mine\n# somebody else's\n");
  EXPECT_FALSE(TakeOut("\n# ours\n", &text));
}

TEST(OffsetctlFiles, SeeWhatIsMissingFromAProgram) {
  // Headers with one part of 100 bytes behind them.
  Bytes portable(300);
  portable[0] = 'M', portable[1] = 'Z', portable[0x3C] = 0x40;
  portable[0x44] = 0x64, portable[0x45] = 0x86, portable[0x46] = 1;  // 64 bits, one section
  portable[0x58 + 16] = 100, portable[0x58 + 20] = 200;
  Bytes elf(300);
  elf[0] = 0x7F, elf[1] = 'E', elf[2] = 'L', elf[3] = 'F', elf[4] = 2, elf[18] = 62;
  elf[32] = 64, elf[56] = 1;  // one segment
  elf[64 + 8] = 200, elf[64 + 32] = 100;
  EXPECT_EQ(KindOfBytes(portable), BinaryKind::Windows64);
  EXPECT_EQ(KindOfBytes(elf), BinaryKind::Linux64);
  for (size_t size = 64; size < 300; ++size) {
    EXPECT_EQ(KindOfBytes(Bytes(portable.begin(), portable.begin() + static_cast<std::ptrdiff_t>(size))),
              BinaryKind::Damaged);
    EXPECT_EQ(KindOfBytes(Bytes(elf.begin(), elf.begin() + static_cast<std::ptrdiff_t>(size))),
              BinaryKind::Damaged);
  }
  EXPECT_EQ(KindOfBytes(Bytes(300, 'x')), BinaryKind::Other);
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
  binaries[3].found = BinaryKind::Damaged;
  EXPECT_EQ(Count(DiagnoseLayout(binaries), Health::Bad, "64/lin.xpl is damaged"), 1u);
  EXPECT_EQ(Count(DiagnoseCopies({"a/win.xpl", "b.xpl"}), Health::Bad, "second copy"), 2u);
  EXPECT_EQ(Count(DiagnoseLog(""), Health::Bad, "has not loaded the plug-in"), 1u);
  const std::vector<Diagnosis> told = DiagnoseLog(
      "12:00:00 TAVFARNET->Tried address 10.0.0.1, TCP port 65000: the port is taken; close it\r\n"
      "Command  not found.\r\nDataref sim/x not found.\r\n");
  EXPECT_EQ(Count(told, Health::Note, "the port is taken"), 1u);
  EXPECT_EQ(Count(told, Health::Note, "not found"), 1u);
  EXPECT_EQ(Count(told, Health::Bad, "does not say that the network server was started"), 1u);
}

}  // namespace
