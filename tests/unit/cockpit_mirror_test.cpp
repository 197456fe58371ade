// What the web cockpit knows of the memory: changes and their times, streams, writes that wait, losses,
// replays.
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>

#include "cockpit/player.h"
#include "cockpit_harness.h"
#include "offsetctl/recording.h"

namespace {

using namespace ctl;
using namespace cockpit_tests;
using Json = nlohmann::json;

ValueStream StreamOf(const std::string& names) {
  ValueStream stream;
  std::vector<Item> items;
  Refusal refusal;
  EXPECT_TRUE(ReadNames(names, KnownOffsets(), &items, &refusal)) << refusal.error;
  for (const Item& item : items) stream.values.push_back(std::make_shared<Watched>(Watched{.item = item}));
  return stream;
}

// The data of an event of that kind; null when the text is none.
Json DataOf(const std::string& text, const std::string& kind) {
  const std::string start = "event: " + kind + "\ndata: ";
  if (!text.starts_with(start) || !text.ends_with("\n\n")) return Json();
  return Json::parse(text.substr(start.size()));
}

TEST(CockpitMirror, StreamsTellWhatChanged) {
  Mirror mirror;
  ValueStream stream = StreamOf("0x0330:u16,com1,ias");
  EXPECT_FALSE(HasNews(stream, mirror)) << "nothing is known";
  mirror = MirrorOf(WordAt(0x034E, 0x1870));
  EXPECT_EQ(DataOf(ValuesEvent(mirror, 11, &stream), "values")["values"].size(), 3u);
  EXPECT_FALSE(HasNews(stream, mirror));
  ApplyBatch(BatchOf({{0x5000, 1}}), 12, &mirror);
  EXPECT_EQ(ValuesEvent(mirror, 12, &stream), "") << "another value";
  // Two batches between two events are one.
  ApplyBatch(BatchOf(WordAt(0x0330, 1)), 13, &mirror);
  ApplyBatch(BatchOf(WordAt(0x0330, 2)), 13.1, &mirror);
  const Json merged = DataOf(ValuesEvent(mirror, 13.2, &stream), "values");
  ASSERT_EQ(merged["values"].size(), 1u);
  EXPECT_EQ(merged["values"][0]["value"], 2);
  EXPECT_EQ(merged["values"][0]["age"], 0.1);
  EXPECT_EQ(merged["time"], 13.2);
  // One that shares a value has seen none of it.
  ValueStream late;
  late.values.push_back(stream.values[0]);
  EXPECT_EQ(DataOf(ValuesEvent(mirror, 14, &late), "values")["values"][0]["age"], 0.9);
}

TEST(CockpitMirror, ChangesTellSingleBytes) {
  Mirror mirror = MirrorOf({{0x100, 7}});
  ChangeStream stream;
  EXPECT_EQ(ChangesEvent(mirror, 11, &stream), "") << "the beginning";
  ApplyBatch(BatchOf({{0x100, 8}, {0x1FFFF, 1}}), 12, &mirror);
  ApplyBatch(BatchOf({{0x100, 9}, {0x1FFFF, 0}}), 12.1, &mirror);
  EXPECT_EQ(DataOf(ChangesEvent(mirror, 12.2, &stream), "changes")["changes"], Json::parse("[[256,7,9]]"));
  Batch other = BatchOf({{0x100, 1}});
  other.isNew = true;
  ApplyBatch(other, 13, &mirror);
  EXPECT_EQ(ChangesEvent(mirror, 13, &stream), "") << "another picture is no change";
  ApplyBatch(BatchOf({{0x100, 2}}), 14, &mirror);
  EXPECT_EQ(DataOf(ChangesEvent(mirror, 14, &stream), "changes")["changes"], Json::parse("[[256,1,2]]"));
}

TEST(CockpitMirror, StatusIsJson) {
  Mirror mirror;
  Json status = DataOf(StatusEvent(mirror, 3, 1.5), "status");
  EXPECT_TRUE(status["age"].is_null() && status["recording"].is_null() && status["replay"].is_null());
  EXPECT_TRUE(status["recordingFault"].is_null());
  EXPECT_EQ(status["clients"], 3);
  mirror.heardAt = 1;
  mirror.recording = "x";
  mirror.recordingFault = "the disk \"D\" is full";
  mirror.replay = ReplayState{"y", 1.25, 2, 0.5, true};
  status = Json::parse(StatusJson(mirror, 0, 1.5));
  EXPECT_EQ(status["age"], 0.5);
  EXPECT_EQ(status["recordingFault"], "the disk \"D\" is full");
  EXPECT_EQ(status["replay"],
            Json::parse(R"({"file":"y","position":1.25,"length":2,"speed":0.5,"playing":true})"));
}

TEST(CockpitMirror, WritesAreConfirmedByWhatShows) {
  // What shows at these seconds, with the frame counter going on; the answer's time and what it says.
  struct Step {
    double at;
    std::vector<ByteChange> shown;
    bool isEchoed = false;
  };
  const struct {
    const char* name;
    const char* entry;
    std::vector<Step> steps;
    double answeredAt;
    const char* confirmed;
  } cases[] = {
      {"follows", R"({"name":"pause","value":1})", {{20.05, {{0x0262, 1}}}}, 20.3, "true"},
      {"follows late", R"({"name":"pause","value":1})", {{20.6, {{0x0262, 1}}}}, 20.6, "true"},
      {"never follows", R"({"name":"pause","value":1})", {}, 21, "false"},
      {"snaps back",
       R"({"name":"pause","value":1})",
       {{20.05, {{0x0262, 1}}, true}, {20.1, {{0x0262, 0}}}},
       21,
       "false"},
      {"own memory", R"({"name":"0x66C0:u8","value":5})", {{20.05, {{0x66C0, 5}}, true}}, 20.3, "true"},
      {"own memory, lost", R"({"name":"0x66C0:u8","value":5})", {}, 21, "false"},
      {"only shows", R"({"name":"ground_altitude","value":5})", {{20.05, {{0x0020, 5}}, true}}, 20.3, "null"},
  };
  for (const auto& row : cases) {
    Mirror mirror = MirrorOf();
    PutRequest put;
    Refusal refusal;
    const std::string body = std::string("{\"values\":[") + row.entry + "]}";
    ASSERT_TRUE(ReadPut(body, KnownOffsets(), &put, &refusal)) << refusal.error;
    PendingWrite write = BeginWrite(put, KnownOffsets(), mirror, 20);
    EXPECT_FALSE(UpdateWrite(mirror, 20, false, &write)) << "the source has not sent it";
    WriteSent(mirror, 20, &write);
    double answered = 0;
    size_t next = 0;
    uint16_t frames = 0;
    for (double now = 20; answered == 0 && now < 30; now += 0.05) {
      std::vector<ByteChange> bytes = WordAt(activityOffset, ++frames);
      bool isEchoed = false;
      for (; next < row.steps.size() && row.steps[next].at <= now + 1e-9; ++next) {
        bytes.insert(bytes.end(), row.steps[next].shown.begin(), row.steps[next].shown.end());
        isEchoed = isEchoed || row.steps[next].isEchoed;
      }
      ApplyBatch(BatchOf(bytes), now, &mirror);
      if (UpdateWrite(mirror, now, isEchoed, &write)) answered = now;
    }
    EXPECT_NEAR(answered, row.answeredAt, 0.06) << row.name;
    const Json entry = Json::parse(WriteJson(write, mirror, answered))["values"][0];
    EXPECT_EQ(entry["confirmed"].dump(), row.confirmed) << row.name;
    EXPECT_EQ(entry["written"], true);
  }
}

TEST(CockpitMirror, CountsKnownLosses) {
  const std::vector<uint8_t> memory(offsetMemorySize);
  std::vector<uint8_t> other = memory;
  other[5] = other[6] = 1;
  // Frames with their times, onto a picture of zeros.
  const auto lost = [&](const std::vector<std::pair<double, std::vector<uint8_t>>>& frames) {
    Picture picture;
    picture.arrived = 0xFF;
    LossWatch watch;
    for (const auto& [time, bytes] : frames) {
      const NetFrame frame = ReadFrame(bytes.data(), bytes.size());
      WatchFrame(frame, picture, time, &watch);
      ApplyFrame(frame, &picture);
    }
    SettleLosses(100, &watch);
    return watch.lost;
  };
  const std::vector<uint8_t> differs = BlockFrame(other, 0), same = BlockFrame(memory, 0);
  const std::vector<uint8_t> five = ChangeFrame({{5, 1}}), both = ChangeFrame({{5, 9}, {6, 1}});
  EXPECT_EQ(lost({{1, same}}), 0u);
  EXPECT_EQ(lost({{1, differs}}), 1u);
  EXPECT_EQ(lost({{1, differs}, {1.1, five}}), 1u) << "one byte was not told";
  EXPECT_EQ(lost({{1, differs}, {1.1, both}}), 0u) << "the list was under way";
  EXPECT_EQ(lost({{1, differs}, {1.6, both}}), 1u) << "too late";
  EXPECT_EQ(lost({{1, BlockFrame(memory, 7)}, {1.01, differs}}), 0u) << "a burst";
  EXPECT_EQ(lost({{1, differs}, {1.01, BlockFrame(memory, 1)}}), 0u) << "a burst that begins with it";
  EXPECT_EQ(lost({{1, differs}, {21, BlockFrame(memory, 1)}, {41, same}, {61, differs}}), 3u);
}

TEST(CockpitPlayer, ShowsTheSameWhereverItComesFrom) {
  // 6 MB: byte 0x100 counts the hundredths of a second, others make it long enough for many marks.
  const std::string path = testing::TempDir() + "cockpit_player.tavrec";
  {
    std::ofstream file(path, std::ios::binary);
    const auto add = [&file](const std::vector<uint8_t>& bytes) {
      file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    };
    add(RecordingStart(std::vector<uint8_t>(offsetMemorySize)));
    std::vector<uint8_t> memory(offsetMemorySize);
    for (uint32_t i = 1; i <= 400; ++i) {
      memory[0x4000 + i] = static_cast<uint8_t>(i);
      add(RecordedFrameBytes({i * 10000 + 300, ChangeFrame({{0x100, static_cast<uint8_t>(i)},
                                                            {0x101, static_cast<uint8_t>(i >> 8)}})}));
      add(RecordedFrameBytes({i * 10000 + 300, BlockFrame(memory, 1)}));
    }
  }
  auto player = std::make_unique<Player>();
  std::string error;
  ASSERT_TRUE(OpenPlayer(path, "x", player.get(), &error)) << error;
  EXPECT_EQ(player->state.length, 4.001);
  EXPECT_GT(player->marks.size(), 3u);
  const auto count = [&player] { return LoadFrom<uint16_t>(player->now.picture.bytes.data() + 0x100); };
  EXPECT_EQ(count(), 0);
  AdvancePlayer(0.055, player.get());
  EXPECT_EQ(count(), 5);
  for (const double position : {3.005, 0.505, 2.505, 2.405, 0.0, 3.995, 4.001, 1e9, 1.005}) {
    SeekPlayer(position, player.get());
    const auto expected = static_cast<uint16_t>(std::min(position, 4.0) * 100);
    EXPECT_EQ(count(), expected) << position;
    EXPECT_EQ(player->now.picture.bytes[0x4000 + expected], static_cast<uint8_t>(expected) * (expected > 0));
    EXPECT_EQ(player->now.picture.bytes[0x4001 + expected], 0) << position;
  }
  SteerPlayer({.speed = 10.0}, player.get());
  AdvancePlayer(0.1, player.get());
  EXPECT_EQ(count(), 200);
  AdvancePlayer(1, player.get());
  EXPECT_FALSE(player->state.playing) << "the end";
  EXPECT_EQ(count(), 400);
  SteerPlayer({.playing = true}, player.get());
  EXPECT_TRUE(player->state.playing && player->state.position == 0) << "and again";
  SteerPlayer({.position = 1.001, .playing = false}, player.get());
  AdvancePlayer(1, player.get());
  EXPECT_EQ(count(), 100);
  player.reset();  // Windows changes no file that is open
  std::filesystem::resize_file(path, std::filesystem::file_size(path) - 1);
  auto cut = std::make_unique<Player>();
  EXPECT_TRUE(OpenPlayer(path, "x", cut.get(), &error) && cut->cutOff.find("frame 808") != std::string::npos)
      << cut->cutOff;
  cut.reset();
  std::filesystem::resize_file(path, 8 + 7 * (12 + 16394));
  auto part = std::make_unique<Player>();
  EXPECT_FALSE(OpenPlayer(path, "x", part.get(), &error));
  EXPECT_NE(error.find("whole memory"), std::string::npos) << error;
  part.reset();
  std::filesystem::remove(path);
}

}  // namespace
