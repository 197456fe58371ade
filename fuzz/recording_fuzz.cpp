// Fuzz target: the client tool's reader of recordings. Whatever the file holds, reading stays inside it; what
// it takes for frames are frames in the order of their times, and writing them again gives the same file up to
// where it was cut off.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "offsetctl/picture.h"
#include "offsetctl/recording.h"
#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // An allocation of its own, so that the sanitizer sees the smallest step outside.
  const std::vector<uint8_t> file(data, data + size);
  ctl::Recording recording;
  std::string error;
  const bool isWhole = ctl::ReadRecording(file.data(), file.size(), &recording, &error);
  Require(isWhole == error.empty());
  uint64_t last = 0;
  size_t at = isWhole ? ctl::recordingStartSize : 0;
  if (!isWhole) return 0;
  for (const ctl::RecordedFrame& frame : recording.frames) {
    Require(frame.microseconds >= last);
    last = frame.microseconds;
    Require(ctl::ReadFrame(frame.bytes.data(), frame.bytes.size()).kind != ctl::FrameKind::None);
    const std::vector<uint8_t> bytes = ctl::RecordedFrameBytes(frame);
    Require(at + bytes.size() <= size && std::memcmp(bytes.data(), file.data() + at, bytes.size()) == 0);
    at += bytes.size();
  }
  Require((at == size) == recording.cutOff.empty());
  return 0;
}
