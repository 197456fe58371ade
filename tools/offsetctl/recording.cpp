#include "recording.h"

#include <algorithm>
#include <cstring>

#include "base/bytes.h"
#include "picture.h"

namespace ctl {

namespace {

constexpr char mark[recordingStartSize] = {'T', 'A', 'V', 'R', 'I', 'X', 'R', '1'};
// Before each frame: its time in microseconds, its size.
constexpr size_t timeSize = 8;
constexpr size_t prefixSize = timeSize + 4;
constexpr uint64_t mostMicroseconds = 1'000'000'000'000'000;  // 1e9 s: some thirty years
constexpr uint32_t mostFrameBytes = mostRecordedBytes - prefixSize;

// A file system may fill what was not written any more with zeros.
bool IsZero(const uint8_t* bytes, size_t size) {
  return std::all_of(bytes, bytes + size, [](uint8_t byte) { return byte == 0; });
}

}  // namespace

std::vector<uint8_t> RecordingStart(const std::vector<uint8_t>& memory) {
  std::vector<uint8_t> start(mark, mark + sizeof mark);
  for (uint32_t block = 0; block < pictureBlocks; ++block) {
    const std::vector<uint8_t> bytes = RecordedFrameBytes({0, BlockFrame(memory, block)});
    start.insert(start.end(), bytes.begin(), bytes.end());
  }
  return start;
}

std::vector<uint8_t> RecordedFrameBytes(const RecordedFrame& frame) {
  std::vector<uint8_t> bytes(prefixSize + frame.bytes.size());
  StoreTo(bytes.data(), frame.microseconds);
  StoreTo(bytes.data() + timeSize, static_cast<uint32_t>(frame.bytes.size()));
  std::copy(frame.bytes.begin(), frame.bytes.end(), bytes.begin() + static_cast<std::ptrdiff_t>(prefixSize));
  return bytes;
}

bool IsRecording(const uint8_t* bytes, size_t size) {
  return size >= sizeof mark && std::memcmp(bytes, mark, sizeof mark) == 0;
}

NextFrame TakeRecordedFrame(const uint8_t* bytes, size_t size, uint64_t last, FrameInFile* frame) {
  if (size == 0) return NextFrame::End;
  if (size < prefixSize || IsZero(bytes, size)) return NextFrame::CutOff;
  const uint32_t length = LoadFrom<uint32_t>(bytes + timeSize);
  *frame = {LoadFrom<uint64_t>(bytes), bytes + prefixSize, length, prefixSize + length};
  if (length > mostFrameBytes || frame->microseconds < last || frame->microseconds > mostMicroseconds)
    return NextFrame::Damaged;
  if (length > size - prefixSize) return NextFrame::CutOff;
  const FrameKind kind = ReadFrame(frame->bytes, length).kind;
  return kind == FrameKind::None || kind == FrameKind::Announce ? NextFrame::Damaged : NextFrame::Found;
}

std::string FramePlace(size_t frames, uint64_t at) {
  return "frame " + std::to_string(frames + 1) + " (byte " + std::to_string(at) + ")";
}

bool ReadRecording(const uint8_t* bytes, size_t size, Recording* recording, std::string* error) {
  *recording = {};
  if (!IsRecording(bytes, size)) {
    *error = "it is no recording: it does not begin with TAVRIXR1";
    return false;
  }
  uint64_t last = 0;
  for (size_t at = sizeof mark;;) {
    FrameInFile frame = {};
    switch (TakeRecordedFrame(bytes + at, size - at, last, &frame)) {
      case NextFrame::End:
        return true;
      case NextFrame::CutOff:
        recording->cutOff = "it was cut off: it ends within " + FramePlace(recording->frames.size(), at);
        return true;
      case NextFrame::Damaged:
        *error = "it is damaged at " + FramePlace(recording->frames.size(), at) +
                 ", which is nothing that a server sends";
        return false;
      case NextFrame::Found:
        break;
    }
    recording->frames.push_back({frame.microseconds, {frame.bytes, frame.bytes + frame.size}});
    at += frame.used;
    last = frame.microseconds;
  }
}

uint64_t RecordingLength(const Recording& recording) {
  return recording.frames.empty() ? 0 : recording.frames.back().microseconds;
}

}  // namespace ctl
