#include "cockpit/source.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <utility>

#include "cockpit/folders.h"
#include "cockpit/player.h"
#include "offsetctl/console.h"
#include "offsetctl/files.h"
#include "offsetctl/net_client.h"
#include "offsetctl/recording.h"

namespace ctl {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int attemptMs = 800;        // to connect, and until the whole memory has come
constexpr int findMs = 1300;          // announcements come once a second
constexpr double retryPause = 1;      // seconds, between two attempts
constexpr int sliceMs = 10;           // how soon an order is seen
constexpr double tick = 0.02;         // between two batches, when nothing comes
constexpr double leastPause = 0.005;  // between two batches when frames come
constexpr double localPause = 0.05;   // between two readings of the local window
constexpr double lookPause = 1;       // between two looks whether the recording's file is still there
constexpr uint32_t folderOffset = 0x3E00, folderSize = 0x100;  // filled in when a client asks for it

// A write whose echo is looked for.
struct Echoing {
  uint64_t id;
  double until;
  Echo missing;
};

// What only the source's thread knows.
struct Work {
  Source* source;
  const Transport* way = nullptr;  // while it is open
  bool isComplete = false;         // the whole memory has come since
  double openedAt = 0, nextTry = 0, nextRead = 0;
  std::string told;  // why there is no connection, as it was printed last
  Picture picture;
  std::vector<uint8_t> shown = std::vector<uint8_t>(offsetMemorySize);  // as the batches have told it
  LossWatch losses;
  std::vector<Echoing> echoes;
  std::unique_ptr<Player> player;
  double playedAt = 0;
  FILE* recording = nullptr;
  std::string recordingName, recordingPath;
  std::string recordingFault;  // why the last one ended by itself
  std::string untoldRemedy;    // against that, until a stop has been answered with both
  double lookedAt = 0;         // for its file
  double recordingAt = 0;      // when it began
  uint64_t recordedTime = 0;   // of its last frame
  bool isDirty = false;        // the picture may differ from `shown`
  bool isNew = false;
  double heardAt = -1, deliveredAt = -1;
  uint64_t frames = 0;
  Batch batch;  // what is gathered for the next one
};

double Now(const Work& work) {
  return std::chrono::duration<double>(Clock::now() - work.source->settings.start).count();
}

std::string SourceTitle(const Work& work) {
  const SourceSettings& settings = work.source->settings;
  if (work.player) return "recording " + work.player->state.file;
  if (settings.local) return "local window";
  return settings.host.empty() ? "network" : "network " + settings.host;
}

// --- Recording ---------------------------------------------------------------------------------------------

// Closes the file. Returns false when not all of it could be written.
bool EndRecording(Work* work) {
  const bool isWhole = std::fclose(work->recording) == 0;
  work->recording = nullptr;
  work->recordingName.clear();
  return isWhole;
}

// The recording has ended by itself: whoever asks for the status or stops it is told.
void FailRecording(const std::string& fault, const std::string& remedy, Work* work) {
  work->recordingFault = fault;
  work->untoldRemedy = remedy;
  std::fprintf(stderr, "offsetctl: %s: %s\n", fault.c_str(), remedy.c_str());
  if (work->recording != nullptr) EndRecording(work);
}

void FailWriting(const std::string& name, Work* work) {
  FailRecording("the recording has ended, not all of " + name + " could be written",
                "make room on the disk, then start another one", work);
}

// Ends the recording when nobody could find its file.
void LookForFile(Work* work) {
  work->lookedAt = Now(*work);
  if (work->recording == nullptr || IsStillAt(work->recording, work->recordingPath)) return;
  FailRecording("the recording has ended, " + work->recordingName + " was removed or renamed meanwhile",
                "leave the file alone while it is recorded, and start another one", work);
}

void CloseRecording(Work* work) {
  LookForFile(work);
  if (work->recording == nullptr) return;
  const std::string name = work->recordingName;
  if (!EndRecording(work)) FailWriting(name, work);
}

void AppendRecording(const std::vector<uint8_t>& bytes, Work* work) {
  const bool isWritten = std::fwrite(bytes.data(), 1, bytes.size(), work->recording) == bytes.size();
  if (!isWritten) FailWriting(work->recordingName, work);
}

// What other programs can read of it is up to date.
void FlushRecording(Work* work) {
  if (work->recording == nullptr) return;
  if (std::fflush(work->recording) != 0) return FailWriting(work->recordingName, work);
  if (Now(*work) - work->lookedAt >= lookPause) LookForFile(work);
}

// `time` in seconds since the program's start.
void RecordFrame(double time, const std::vector<uint8_t>& frame, Work* work) {
  if (work->recording == nullptr) return;
  const double since = std::max(time - work->recordingAt, 0.0);
  work->recordedTime = std::max(work->recordedTime, static_cast<uint64_t>(since * 1e6));
  AppendRecording(RecordedFrameBytes({work->recordedTime, frame}), work);
}

OrderResult StartRecording(const SourceOrder& order, Work* work) {
  const std::string& name = *order.file;
  if (work->recording != nullptr) {
    return {order.id, 409, "a recording runs already: " + work->recordingName, "file", "stop it first"};
  }
  if (work->player)
    return {order.id, 409, "a recording is replayed", "source", "go back to the simulator first"};
  if (!work->isComplete) return {order.id, 503, "not connected", "source", "start the simulator"};
  const std::string folder = work->source->settings.recordings, path = Joined(folder, name);
  std::error_code fault;
  std::filesystem::create_directories(folder, fault);
  if (std::filesystem::exists(std::filesystem::symlink_status(path, fault))) {
    return {order.id, 409, "the file exists already: " + name, "file", "choose another name"};
  }
  work->recording = std::fopen(path.c_str(), "wb");
  if (work->recording == nullptr) {
    return {order.id, 409, "the file cannot be written: " + path, "file",
            "check the recordings' folder (--recordings)"};
  }
  work->recordingName = name;
  work->recordingPath = path;
  work->recordingAt = work->lookedAt = Now(*work);
  work->recordedTime = 0;
  const std::vector<uint8_t> start = RecordingStart({work->picture.bytes.begin(), work->picture.bytes.end()});
  if (std::fwrite(start.data(), 1, start.size(), work->recording) == start.size() &&
      std::fflush(work->recording) == 0) {
    work->recordingFault.clear();
    work->untoldRemedy.clear();
    return {order.id, 200, "", "", ""};
  }
  EndRecording(work);
  std::remove(path.c_str());  // the stump
  return {order.id, 409, "the file cannot be written: " + path, "file", "make room on the disk"};
}

OrderResult StopRecording(const SourceOrder& order, Work* work) {
  CloseRecording(work);
  if (work->untoldRemedy.empty()) return {order.id, 200, "", "", ""};
  return {order.id, 409, work->recordingFault, "file", std::exchange(work->untoldRemedy, "")};
}

// --- The simulator -----------------------------------------------------------------------------------------

void Disconnect(const std::string& reason, Work* work) {
  if (work->way != nullptr) work->way->close();
  work->way = nullptr;
  work->isComplete = false;
  work->echoes.clear();
  work->nextTry = Now(*work) + retryPause;
  if (reason.empty() || reason == work->told || StopRequested()) return;
  work->told = reason;
  std::fprintf(stderr, "offsetctl: not connected: %s\n", reason.c_str());
}

// Which way there is. Null with a line in `error` when no server announces itself.
const Transport* ChooseWay(Work* work, std::string* error) {
  SourceSettings& settings = work->source->settings;
  if (settings.local) return LocalTransport();
  if (settings.find) {
    const std::vector<std::string> found = FindServers(0, findMs, StopRequested, error);
    if (found.empty()) return nullptr;
    settings.host = found[0];
  }
  return NetTransport({settings.host, StopRequested, true});
}

void Connect(Work* work) {
  std::string error;
  const Transport* way = ChooseWay(work, &error);
  work->openedAt = Now(*work);
  if (way == nullptr || !way->open(attemptMs, &error)) return Disconnect(error, work);
  work->way = way;
  work->nextRead = 0;
  work->losses.untold.clear();
  if (work->source->settings.local) return;
  work->picture = {};
  uint8_t folder[folderSize];
  if (!way->readOffsets({{folderOffset, folderSize, folder}}, &error)) Disconnect(error, work);
}

void Completed(Work* work) {
  if (work->isComplete) return;
  work->isComplete = work->isNew = true;
  work->told.clear();
}

void TakeFrame(const RecordedFrame& recorded, Work* work) {
  const NetFrame frame = ReadFrame(recorded.bytes.data(), recorded.bytes.size());
  const double time = work->openedAt + static_cast<double>(recorded.microseconds) / 1e6;
  WatchFrame(frame, work->picture, time, &work->losses);
  ApplyFrame(frame, &work->picture);
  for (Echoing& echo : work->echoes) TakeEcho(frame, &echo.missing);
  ++work->frames;
  work->heardAt = Now(*work);
  work->isDirty = true;
  if (IsComplete(work->picture)) Completed(work);
  RecordFrame(time, recorded.bytes, work);
}

void RunNetwork(Work* work) {
  std::vector<RecordedFrame> frames;
  std::string error;
  const bool isThere = TakeFrames(sliceMs, &frames, &error);
  for (const RecordedFrame& frame : frames) TakeFrame(frame, work);
  SettleLosses(Now(*work), &work->losses);
  if (!isThere) Disconnect(error, work);
}

// What differs, as the network server would tell it.
void RecordDifferences(const Picture& before, const Picture& after, Work* work) {
  std::vector<ByteChange> changes;
  for (uint32_t at = 0; at < offsetMemorySize && work->recording != nullptr; ++at) {
    if (before.bytes[at] != after.bytes[at]) changes.push_back({at, after.bytes[at]});
    if (changes.size() < mostChanges && at + 1 < offsetMemorySize) continue;
    if (!changes.empty()) RecordFrame(work->heardAt, ChangeFrame(changes), work);
    changes.clear();
  }
}

void WaitForOrders(double seconds, Work* work) {
  Source* source = work->source;
  std::unique_lock<std::mutex> hold(source->lock);
  source->news.wait_for(hold, std::chrono::duration<double>(std::max(seconds, 0.0)),
                        [source] { return source->isEnding || !source->orders.empty(); });
}

void RunLocal(Work* work) {
  const double now = Now(*work);
  if (now < work->nextRead) return WaitForOrders(std::min(work->nextRead - now, tick), work);
  work->nextRead = now + localPause;
  const auto read = std::make_unique<Picture>();
  std::string error;
  if (!work->way->readOffsets({{0, offsetMemorySize, read->bytes.data()}}, &error))
    return Disconnect(error, work);
  read->arrived = (1u << pictureBlocks) - 1;
  ++work->frames;
  work->heardAt = Now(*work);
  RecordDifferences(work->picture, *read, work);
  work->picture = *read;
  work->isDirty = true;
  Completed(work);
}

void RunSimulator(Work* work) {
  if (work->way == nullptr) {
    if (Now(*work) < work->nextTry) return WaitForOrders(tick, work);
    return Connect(work);
  }
  if (work->source->settings.local) return RunLocal(work);
  RunNetwork(work);
}

OrderResult Write(const SourceOrder& order, Work* work) {
  if (work->player)
    return {order.id, 409, "a recording is replayed", "source", "go back to the simulator first"};
  if (!work->isComplete) return {order.id, 503, "not connected", "source", "start the simulator"};
  std::vector<OrderedWrite> writes = order.writes;
  std::vector<Transfer> transfers;
  transfers.reserve(writes.size());
  for (OrderedWrite& write : writes) {
    transfers.push_back({write.offset, static_cast<uint32_t>(write.bytes.size()), write.bytes.data()});
  }
  std::string error;
  const bool isLocal = work->source->settings.local;
  const Echo missing = ExpectEcho(transfers, work->picture);
  const bool isSent = isLocal ? work->way->writeOffsets(transfers, &error) : SendWrites(transfers, &error);
  if (!isSent) {
    if (!isLocal) Disconnect(error, work);
    return {order.id, 503, error, "source", "write again when the status says connected"};
  }
  // The local window's server has served the write when it answers.
  work->echoes.push_back({order.id, Now(*work) + order.seconds, isLocal ? Echo() : missing});
  return {order.id, 200, "", "", ""};
}

// --- Replays -----------------------------------------------------------------------------------------------

OrderResult Replay(const SourceOrder& order, Work* work) {
  if (!order.file) {
    if (!work->player) return {order.id, 409, "no recording is replayed", "file", "name the file"};
    SteerPlayer(order, work->player.get());
  } else if (order.file->empty()) {
    work->nextTry = work->player ? 0 : work->nextTry;
    work->player.reset();
  } else {
    if (work->recording != nullptr) {
      return {order.id, 409, "a recording runs: " + work->recordingName, "file", "stop it first"};
    }
    const std::string path = Joined(work->source->settings.recordings, *order.file);
    if (!IsPlainFile(path)) return {order.id, 404, "there is no such recording", "file", "see /api/recordings"};
    auto player = std::make_unique<Player>();
    std::string error;
    if (!OpenPlayer(path, *order.file, player.get(), &error)) {
      return {order.id, 400, error, "file", "choose another one of /api/recordings"};
    }
    SteerPlayer(order, player.get());
    Disconnect("", work);
    work->player = std::move(player);
    work->isNew = true;
  }
  work->playedAt = Now(*work);
  work->isDirty = true;
  return {order.id, 200, "", "", ""};
}

void RunPlayer(Work* work) {
  WaitForOrders(tick, work);
  const double now = Now(*work), passed = now - work->playedAt;
  work->playedAt = now;
  const uint64_t before = work->player->shown;
  AdvancePlayer(passed, work->player.get());
  if (work->player->shown == before) return;
  work->frames += work->player->shown - before;
  work->heardAt = now;
  work->isDirty = true;
}

// --- Batches -----------------------------------------------------------------------------------------------

OrderResult Follow(const SourceOrder& order, Work* work) {
  switch (order.kind) {
    case OrderKind::Write:
      return Write(order, work);
    case OrderKind::StartRecording:
      return StartRecording(order, work);
    case OrderKind::StopRecording:
      return StopRecording(order, work);
    default:
      return Replay(order, work);
  }
}

void FollowOrders(Work* work) {
  std::vector<SourceOrder> orders;
  {
    const std::lock_guard<std::mutex> hold(work->source->lock);
    orders.swap(work->source->orders);
  }
  for (const SourceOrder& order : orders) {
    OrderResult result = {order.id, 503, "the computer has no memory left for that", "source",
                          "close other programs"};
    try {
      result = Follow(order, work);
    } catch (...) {  // whoever asked waits for an answer
    }
    work->batch.results.push_back(result);
  }
}

void GatherChanges(const Picture& picture, Work* work) {
  constexpr uint32_t part = 256;  // most of the memory is the same
  for (uint32_t first = 0; first < offsetMemorySize; first += part) {
    uint8_t* shown = work->shown.data() + first;
    const uint8_t* now = picture.bytes.data() + first;
    if (std::memcmp(shown, now, part) == 0) continue;
    for (uint32_t i = 0; i < part; ++i) {
      if (shown[i] == now[i]) continue;
      work->batch.changes.push_back({first + i, now[i]});
      shown[i] = now[i];
    }
  }
}

void Deliver(Work* work) {
  const double now = Now(*work);
  const double pause = work->isDirty || !work->batch.results.empty() ? leastPause : tick;
  if (now - work->deliveredAt < pause || !work->source->isTaken.exchange(false)) return;
  work->deliveredAt = now;
  Batch& batch = work->batch;
  const bool isShown = work->player || work->isComplete;
  if (work->isDirty && isShown) {
    GatherChanges(work->player ? work->player->now.picture : work->picture, work);
    work->isDirty = false;
  }
  FlushRecording(work);
  std::erase_if(work->echoes, [&batch, now](const Echoing& echo) {
    if (echo.missing.empty()) batch.echoed.push_back(echo.id);
    return echo.missing.empty() || now > echo.until;
  });
  batch.isNew = work->isNew && isShown;
  if (batch.isNew) work->isNew = false;
  batch.connected = isShown;
  batch.source = SourceTitle(*work);
  batch.frames = work->frames;
  batch.lost = work->losses.lost;
  batch.heardAt = work->heardAt;
  batch.recording = work->recordingName;
  batch.recordingFault = work->recordingFault;
  if (work->player) batch.replay = work->player->state;
  work->source->settings.deliver(std::move(batch));
  work->batch = {};
}

bool IsEnding(Source* source) {
  const std::lock_guard<std::mutex> hold(source->lock);
  return source->isEnding;
}

void Run(Work* work) {
  while (!IsEnding(work->source)) {
    FollowOrders(work);
    Deliver(work);
    if (work->player) {
      RunPlayer(work);
    } else {
      RunSimulator(work);
    }
    Deliver(work);
  }
  CloseRecording(work);
  Disconnect("", work);
}

}  // namespace

bool StartSource(const SourceSettings& settings, Source* source, std::string* error) {
  source->settings = settings;
  auto work = std::make_shared<Work>();
  work->source = source;
  if (!settings.replay.empty()) {
    work->player = std::make_unique<Player>();
    const std::string name = std::filesystem::path(settings.replay).filename().string();
    if (!OpenPlayer(settings.replay, name, work->player.get(), error)) return false;
    if (!work->player->cutOff.empty()) {
      std::fprintf(stderr, "offsetctl: %s; what came before is shown\n", work->player->cutOff.c_str());
    }
    work->isNew = work->isDirty = true;
    work->playedAt = Now(*work);
  }
  Deliver(work.get());  // whoever asks first knows the source already
  source->thread = std::thread([work] { Run(work.get()); });
  return true;
}

void GiveOrder(const SourceOrder& order, Source* source) {
  const std::lock_guard<std::mutex> hold(source->lock);
  source->orders.push_back(order);
  source->news.notify_all();
}

void BatchTaken(Source* source) { source->isTaken = true; }

void StopSource(Source* source) {
  if (!source->thread.joinable()) return;
  {
    const std::lock_guard<std::mutex> hold(source->lock);
    source->isEnding = true;
    source->news.notify_all();
  }
  source->thread.join();
}

}  // namespace ctl
