// Recordings: what a network server has sent, each frame with its time. docs/recordings.md describes the file.
// Pure; any thread.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace ctl {

constexpr size_t recordingHeaderSize = 32;

struct RecordedFrame {
  uint64_t microseconds;  // since the recording began; never less than that of the frame before
  std::vector<uint8_t> bytes;
};

struct Recording {
  uint64_t startedAt = 0;  // microseconds since 1970, UTC
  std::vector<RecordedFrame> frames;
  std::string cutOff;  // where the file ends within a frame, which is left out; "" when it is whole
};

// The first bytes of a file.
std::vector<uint8_t> RecordingHeader(uint64_t startedAt);
// One frame as it stands in a file. The frame has at most 65,535 bytes.
std::vector<uint8_t> RecordedFrameBytes(const RecordedFrame& frame);
// Reads a whole file. One that was cut off, as by a full disk or a loss of power, gives the frames before that
// place and says so in `cutOff`. Returns true, or false with a sentence in `error` that says where what is
// wrong.
bool ReadRecording(const uint8_t* bytes, size_t size, Recording* recording, std::string* error);
// How long it takes, in microseconds.
uint64_t RecordingLength(const Recording& recording);

}  // namespace ctl
