#include "cockpit/player.h"

#include <algorithm>

#include "offsetctl/recording.h"

namespace ctl {

namespace {

constexpr size_t windowSize = 1 << 20;
constexpr size_t mostMarks = 64;
constexpr uint64_t firstMarkEvery = 1 << 20;

// The bytes from `at` on: up to the file's end, or enough for any frame.
const uint8_t* BytesAt(uint64_t at, Player* player, size_t* size) {
  const uint64_t left = player->fileSize - std::min(at, player->fileSize);
  const uint64_t wanted = std::min<uint64_t>(left, mostRecordedBytes);
  if (at < player->windowAt || at + wanted > player->windowAt + player->window.size()) {
    player->window.resize(static_cast<size_t>(std::min<uint64_t>(left, windowSize)));
    player->windowAt = at;
    player->file.clear();
    player->file.seekg(static_cast<std::streamoff>(at));
    player->file.read(reinterpret_cast<char*>(player->window.data()),
                      static_cast<std::streamsize>(player->window.size()));
    player->window.resize(static_cast<size_t>(player->file.gcount()));
  }
  *size = static_cast<size_t>(player->windowAt + player->window.size() - at);
  return player->window.data() + (at - player->windowAt);
}

// The next frame, which is not applied. Its bytes hold until the next call.
NextFrame LookAhead(Player* player, FrameInFile* frame) {
  size_t size = 0;
  const uint8_t* bytes = BytesAt(player->now.at, player, &size);
  return TakeRecordedFrame(bytes, size, player->now.time, frame);
}

void Show(const FrameInFile& frame, Player* player) {
  ApplyFrame(ReadFrame(frame.bytes, frame.size), &player->now.picture);
  player->now.at += frame.used;
  player->now.time = frame.microseconds;
  ++player->now.frames;
  ++player->shown;
}

// Keeps a picture every so often; when there are too many, every other one goes.
void KeepMark(Player* player) {
  std::vector<PlayerMark>& marks = player->marks;
  if (!IsComplete(player->now.picture)) return;
  if (!marks.empty() && player->now.at - marks.back().at < player->markEvery) return;
  marks.push_back(player->now);
  if (marks.size() < mostMarks) return;
  for (size_t kept = 0; kept < mostMarks / 2; ++kept) marks[kept] = marks[2 * kept];
  marks.resize(mostMarks / 2);
  player->markEvery *= 2;
}

uint64_t Microseconds(double seconds) { return static_cast<uint64_t>(std::max(seconds, 0.0) * 1e6); }

void ShowUntil(uint64_t time, Player* player) {
  FrameInFile frame = {};
  while (LookAhead(player, &frame) == NextFrame::Found && frame.microseconds <= time) Show(frame, player);
}

}  // namespace

bool OpenPlayer(const std::string& path, const std::string& name, Player* player, std::string* error) {
  player->state.file = name;
  player->markEvery = firstMarkEvery;
  player->file.open(path, std::ios::binary | std::ios::ate);
  const std::streamoff end = player->file ? static_cast<std::streamoff>(player->file.tellg()) : -1;
  if (end < 0) {
    *error = name + " cannot be read";
    return false;
  }
  player->fileSize = static_cast<uint64_t>(end);
  size_t size = 0;
  const uint8_t* bytes = BytesAt(0, player, &size);
  if (!IsRecording(bytes, size)) {
    *error = name + " is no recording: it does not begin with TAVRIXR1";
    return false;
  }
  player->now.at = recordingStartSize;
  for (NextFrame next = NextFrame::Found; next == NextFrame::Found;) {
    FrameInFile frame = {};
    next = LookAhead(player, &frame);
    const std::string place = FramePlace(player->now.frames, player->now.at);
    if (next == NextFrame::Damaged) {
      *error = name + " is damaged at " + place;
      return false;
    }
    if (next == NextFrame::CutOff) player->cutOff = name + " was cut off: it ends within " + place;
    if (next != NextFrame::Found) continue;
    Show(frame, player);
    KeepMark(player);
  }
  if (player->marks.empty()) {
    *error = name + " never shows the whole memory: record again, a second or longer";
    return false;
  }
  player->shown = 0;
  // Up to whole milliseconds, as it is told: who goes there sees the last frame.
  player->state.length = static_cast<double>((player->now.time + 999) / 1000) / 1000;
  player->state.playing = true;
  SeekPlayer(0, player);
  return true;
}

void AdvancePlayer(double seconds, Player* player) {
  ReplayState& state = player->state;
  if (!state.playing) return;
  state.position = std::min(state.position + seconds * state.speed, state.length);
  state.playing = state.position < state.length;
  ShowUntil(state.playing ? Microseconds(state.position) : UINT64_MAX, player);
}

void SeekPlayer(double position, Player* player) {
  ReplayState& state = player->state;
  state.position = std::clamp(position, 0.0, state.length);
  const uint64_t time = state.position < state.length ? Microseconds(state.position) : UINT64_MAX;
  // The last picture that is not later; from the one that is shown when that is nearer.
  const auto isLater = [](uint64_t wanted, const PlayerMark& mark) { return wanted < mark.time; };
  auto mark = std::upper_bound(player->marks.begin(), player->marks.end(), time, isLater);
  if (mark != player->marks.begin()) --mark;
  const bool isBehind =
      player->now.time <= time && player->now.at >= mark->at && IsComplete(player->now.picture);
  if (!isBehind) player->now = *mark;
  ShowUntil(time, player);
}

void SteerPlayer(const SourceOrder& order, Player* player) {
  ReplayState& state = player->state;
  if (order.speed) state.speed = *order.speed;
  if (order.position) SeekPlayer(*order.position, player);
  if (!order.playing) return;
  if (*order.playing && !order.position && state.position >= state.length) SeekPlayer(0, player);
  state.playing = *order.playing && state.position < state.length;
}

}  // namespace ctl
