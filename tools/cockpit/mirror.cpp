#include "cockpit/mirror.h"

#include <algorithm>
#include <cmath>

#include "base/version.h"
#include "offsetctl/numbers.h"
#include "offsetctl/show.h"

namespace ctl {

namespace {

constexpr double burstGap = 0.3, toldWithin = 0.5;  // seconds

std::string ReplayJson(const ReplayState& replay) {
  return "{\"file\":" + JsonString(replay.file) + ",\"position\":" + SecondsJson(replay.position) +
         ",\"length\":" + SecondsJson(replay.length) + ",\"speed\":" + RealText(replay.speed) +
         ",\"playing\":" + (replay.playing ? "true" : "false") + "}";
}

}  // namespace

void ApplyBatch(const Batch& batch, double now, Mirror* mirror) {
  const bool isFirst = batch.connected && !mirror->isKnown;
  if (isFirst || !batch.changes.empty()) ++mirror->serial;
  if (isFirst) {
    mirror->isKnown = true;
    std::fill(mirror->changedAt.begin(), mirror->changedAt.end(), now);
    std::fill(mirror->changedIn.begin(), mirror->changedIn.end(), mirror->serial);
  }
  for (const ByteChange& change : batch.changes) {
    mirror->memory[change.offset] = change.value;
    mirror->changedIn[change.offset] = mirror->serial;
    mirror->changedAt[change.offset] = now;
  }
  if (batch.isNew) ++mirror->pictures;
  mirror->connected = batch.connected;
  mirror->source = batch.source;
  mirror->frames = batch.frames;
  mirror->lost = batch.lost;
  mirror->heardAt = batch.heardAt;
  mirror->recording = batch.recording;
  mirror->recordingFault = batch.recordingFault;
  mirror->replay = batch.replay;
}

std::string SecondsJson(double seconds) {
  // Digits by hand: a stream's every entry has one.
  const auto thousandths = static_cast<uint64_t>(std::llround(std::clamp(seconds, 0.0, 1e12) * 1000));
  std::string text = std::to_string(thousandths / 1000);
  const unsigned rest = static_cast<unsigned>(thousandths % 1000);
  if (rest == 0) return text;
  text += '.';
  text += static_cast<char>('0' + rest / 100);
  text += static_cast<char>('0' + rest / 10 % 10);
  text += static_cast<char>('0' + rest % 10);
  return text;
}

std::string StatusJson(const Mirror& mirror, size_t clients, double now) {
  return "{\"source\":" + JsonString(mirror.source) +
         ",\"connected\":" + (mirror.connected ? "true" : "false") +
         ",\"frames\":" + std::to_string(mirror.frames) + ",\"lost\":" + std::to_string(mirror.lost) +
         ",\"age\":" + (mirror.heardAt < 0 ? "null" : SecondsJson(now - mirror.heardAt)) +
         ",\"clients\":" + std::to_string(clients) +
         ",\"recording\":" + (mirror.recording.empty() ? "null" : JsonString(mirror.recording)) +
         ",\"recordingFault\":" + (mirror.recordingFault.empty() ? "null" : JsonString(mirror.recordingFault)) +
         ",\"replay\":" + (mirror.replay ? ReplayJson(*mirror.replay) : "null") +
         ",\"time\":" + SecondsJson(now) + ",\"version\":" + JsonString(pluginVersion) + "}";
}

void WatchFrame(const NetFrame& frame, const Picture& picture, double now, LossWatch* watch) {
  SettleLosses(now, watch);
  if (frame.kind == FrameKind::Block) {
    const bool isAlone = now - watch->blockAt > burstGap;
    watch->blockAt = now;
    watch->untold.clear();
    if (!isAlone || !IsComplete(picture)) return;
    const uint32_t first = frame.block * pictureBlockSize;
    for (uint32_t i = 0; i < pictureBlockSize; ++i) {
      if (picture.bytes[first + i] != frame.payload[i]) watch->untold[first + i] = frame.payload[i];
    }
  } else if (frame.kind == FrameKind::Changes && !watch->untold.empty()) {
    for (const ByteChange& told : ChangesOf(frame)) watch->untold.erase(told.offset);
  }
}

void SettleLosses(double now, LossWatch* watch) {
  if (watch->untold.empty() || now - watch->blockAt < toldWithin) return;
  watch->untold.clear();
  ++watch->lost;
}

}  // namespace ctl
