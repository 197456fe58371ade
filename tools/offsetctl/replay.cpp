// offsetctl replay: a network server that shows a recording.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>

#include "commands.h"
#include "console.h"
#include "numbers.h"
#include "picture.h"
#include "recording.h"
#include "server.h"

namespace ctl {

namespace {

using Clock = std::chrono::steady_clock;

constexpr char defaultAddress[] = "127.0.0.1";
constexpr int sliceMs = 5;  // how exactly the recorded times are kept
constexpr int resolveMs = 2000;
constexpr size_t largestRecording = size_t{1} << 30;

bool ReadAll(const std::string& path, std::vector<uint8_t>* bytes) {
  const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
  if (!file) return false;
  std::vector<uint8_t> part(1 << 16);
  size_t size = 0;
  while ((size = std::fread(part.data(), 1, part.size(), file.get())) > 0 && bytes->size() < largestRecording) {
    bytes->insert(bytes->end(), part.begin(), part.begin() + static_cast<std::ptrdiff_t>(size));
  }
  return std::ferror(file.get()) == 0 && bytes->size() < largestRecording;
}

struct Replay {
  Recording recording;
  Picture first;     // when all eight blocks had come
  Picture recorded;  // as the recording has it now; the server's memory also holds what clients wrote
  size_t begin = 0;  // the frame behind that moment
  size_t next = 0;
  uint64_t beginsAt = 0;
  Server server;
};

// The memory at the moment from which it is known as a whole. Returns false when the recording has none.
bool FindBeginning(Replay* replay) {
  const std::vector<RecordedFrame>& frames = replay->recording.frames;
  while (replay->begin < frames.size() && !IsComplete(replay->first)) {
    const RecordedFrame& frame = frames[replay->begin++];
    ApplyFrame(ReadFrame(frame.bytes.data(), frame.bytes.size()), &replay->first);
    replay->beginsAt = frame.microseconds;
  }
  return IsComplete(replay->first);
}

// Shows what differs between the recording before and now; what a client wrote elsewhere stays.
void ShowDifferences(Replay* replay, const Picture& now) {
  for (size_t at = 0; at < offsetMemorySize; ++at) {
    if (now.bytes[at] == replay->recorded.bytes[at]) continue;
    replay->server.memory[at] = now.bytes[at];
  }
  replay->recorded = now;
}

void ShowFrame(Replay* replay, const RecordedFrame& recorded) {
  const NetFrame frame = ReadFrame(recorded.bytes.data(), recorded.bytes.size());
  if (frame.kind == FrameKind::Block) {
    Picture now = replay->recorded;
    ApplyFrame(frame, &now);
    ShowDifferences(replay, now);
  } else if (frame.kind == FrameKind::Changes) {
    // A told change counts even where the recording had the value already: the simulator set it.
    ApplyFrame(frame, &replay->recorded);
    for (const ByteChange& change : ChangesOf(frame)) replay->server.memory[change.offset] = change.value;
  }
}

void Begin(Replay* replay) {
  ShowDifferences(replay, replay->first);
  replay->next = replay->begin;
}

// Serves until Ctrl-C or the end of the time.
void Run(Replay* replay, const Options& options) {
  const std::vector<RecordedFrame>& frames = replay->recording.frames;
  const Clock::time_point opened = Clock::now();
  Clock::time_point started = opened;
  bool told = false;
  const auto secondsSince = [](Clock::time_point time) {
    return std::chrono::duration<double>(Clock::now() - time).count();
  };
  while (!StopRequested() && !(options.seconds > 0 && secondsSince(opened) >= options.seconds)) {
    const uint64_t now = replay->beginsAt + static_cast<uint64_t>(secondsSince(started) * options.speed * 1e6);
    while (replay->next < frames.size() && frames[replay->next].microseconds <= now) {
      ShowFrame(replay, frames[replay->next++]);
    }
    if (replay->next == frames.size() && options.loop && replay->begin < frames.size()) {
      Begin(replay);
      started = Clock::now();
    } else if (replay->next == frames.size() && !told) {
      std::printf("the recording has ended, its last values stay\n");
      std::fflush(stdout);
      told = true;
    }
    Serve(&replay->server, sliceMs);
  }
}

}  // namespace

int RunReplay(const Options& options) {
  const std::string& path = options.items[0];
  std::vector<uint8_t> bytes;
  std::string error;
  if (!ReadAll(path, &bytes)) {
    return Report(exitUsage, path + " cannot be read: check its name and whether you may read it");
  }
  Replay replay;
  if (!ReadRecording(bytes.data(), bytes.size(), &replay.recording, &error)) {
    return Report(exitUsage, path + ": " + error);
  }
  if (!replay.recording.cutOff.empty()) {
    Report(exitDone, path + ": " + replay.recording.cutOff + "; the " +
                         std::to_string(replay.recording.frames.size()) + " whole frames before are replayed");
  }
  if (!FindBeginning(&replay)) {
    return Report(exitUsage, path + ": only " + std::to_string(ArrivedBlocks(replay.first)) + " of " +
                                 std::to_string(pictureBlocks) +
                                 " blocks of the memory were recorded: record again, a second or longer");
  }
  WatchForStop();
  uint32_t ip = 0;
  if (!StartSockets(&error)) return Report(exitNoAnswer, error);
  const std::string address = options.listen.empty() ? defaultAddress : options.listen;
  bool isOpen = ResolveHost(address, resolveMs, &ip, &error);
  // The picture of the server begins as the recording's: nothing has changed yet.
  replay.server.memory.assign(replay.first.bytes.begin(), replay.first.bytes.end());
  replay.server.told = replay.server.memory;
  replay.recorded = replay.first;
  isOpen = isOpen && OpenServer(ip, &replay.server, &error);
  if (!isOpen) {
    StopSockets();
    return Report(exitNoAnswer, error);
  }
  std::printf("replaying %s (%s s, %zu frames) at %s, TCP port 65000, until Ctrl-C\n", path.c_str(),
              FixedText(static_cast<double>(RecordingLength(replay.recording)) / 1e6, 1).c_str(),
              replay.recording.frames.size(), IpText(ip).c_str());
  std::fflush(stdout);
  Begin(&replay);
  Run(&replay, options);
  CloseServer(&replay.server);
  StopSockets();
  return exitDone;
}

}  // namespace ctl
