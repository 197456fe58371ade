// Recordings: what a network server has sent, each frame with its time. docs/recordings.md describes the file.
// Pure; any thread.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace ctl {

constexpr size_t recordingStartSize = 8;  // the mark at the beginning of a file
// No frame takes more of a file, its time and length included.
constexpr size_t mostRecordedBytes = 12 + 65535;

struct RecordedFrame {
  uint64_t microseconds;  // since the recording began; never less than that of the frame before
  std::vector<uint8_t> bytes;
};

struct Recording {
  std::vector<RecordedFrame> frames;
  std::string cutOff;  // where the file ends within a frame, which is left out; "" when it is whole
};

// A frame within a file's bytes; `bytes` points into them.
struct FrameInFile {
  uint64_t microseconds;
  const uint8_t* bytes;
  size_t size;
  size_t used;  // by it in the file
};
enum class NextFrame {
  Found,
  End,      // no byte is left
  CutOff,   // the file ends within a frame, or in zeros
  Damaged,  // what stands there is no frame
};

// The first bytes of a file: the mark, and the whole memory (131,072 bytes) as eight blocks at time 0.
std::vector<uint8_t> RecordingStart(const std::vector<uint8_t>& memory);
// One frame as it stands in a file. The frame has at most 65,535 bytes.
std::vector<uint8_t> RecordedFrameBytes(const RecordedFrame& frame);
// Whether these are a recording's first bytes.
bool IsRecording(const uint8_t* bytes, size_t size);
// Takes the frame at the beginning of these bytes, which reach to the file's end or hold mostRecordedBytes.
// `last` is the time of the frame before.
NextFrame TakeRecordedFrame(const uint8_t* bytes, size_t size, uint64_t last, FrameInFile* frame);
// Reads a whole file. One that was cut off, as by a full disk or a loss of power, gives the frames before that
// place and says so in `cutOff`. Returns true, or false with a sentence in `error` that says where what is
// wrong.
bool ReadRecording(const uint8_t* bytes, size_t size, Recording* recording, std::string* error);
// "frame 3 (byte 32820)", for a message; frames before it, and where it begins.
std::string FramePlace(size_t frames, uint64_t at);
// How long it takes, in microseconds.
uint64_t RecordingLength(const Recording& recording);

}  // namespace ctl
