#include "recording.h"

#include <algorithm>
#include <cstring>

#include "base/bytes.h"
#include "picture.h"

namespace ctl {

namespace {

// Header: magic, version, its own size, when it began, size of the offset memory, 8 bytes of 0.
constexpr char magic[8] = {'T', 'A', 'V', 'R', 'I', 'X', 'R', 'C'};
constexpr uint16_t version = 1;
constexpr size_t versionAt = 8, headerSizeAt = 10, startedAtAt = 12, memorySizeAt = 20;
// Before each frame: its time in microseconds, its size.
constexpr size_t timeSize = 8;
constexpr size_t prefixSize = timeSize + 4;
constexpr uint32_t mostFrameBytes = 65535;

bool Fail(const std::string& text, std::string* error) {
  *error = text;
  return false;
}

bool ReadHeader(const uint8_t* bytes, size_t size, Recording* recording, size_t* at, std::string* error) {
  if (size < sizeof magic || std::memcmp(bytes, magic, sizeof magic) != 0) {
    return Fail("it is no recording: it does not begin with TAVRIXRC", error);
  }
  if (size < recordingHeaderSize) return Fail("it ends within its header: it was cut off", error);
  const uint16_t found = LoadFrom<uint16_t>(bytes + versionAt);
  if (found != version) {
    return Fail("it has version " + std::to_string(found) + " and this offsetctl reads version " +
                    std::to_string(version) + ": use a newer one",
                error);
  }
  *at = LoadFrom<uint16_t>(bytes + headerSizeAt);
  if (*at < recordingHeaderSize || *at > size || LoadFrom<uint32_t>(bytes + memorySizeAt) != offsetMemorySize) {
    return Fail("its header is damaged", error);
  }
  recording->startedAt = LoadFrom<uint64_t>(bytes + startedAtAt);
  return true;
}

// A file system may fill what was not written any more with zeros.
bool IsZero(const uint8_t* bytes, size_t size) {
  return std::all_of(bytes, bytes + size, [](uint8_t byte) { return byte == 0; });
}

std::string Place(const Recording& recording, size_t at) {
  return "frame " + std::to_string(recording.frames.size() + 1) + " (byte " + std::to_string(at) + ")";
}

}  // namespace

std::vector<uint8_t> RecordingHeader(uint64_t startedAt) {
  std::vector<uint8_t> header(recordingHeaderSize);
  std::memcpy(header.data(), magic, sizeof magic);
  StoreTo(header.data() + versionAt, version);
  StoreTo(header.data() + headerSizeAt, static_cast<uint16_t>(recordingHeaderSize));
  StoreTo(header.data() + startedAtAt, startedAt);
  StoreTo(header.data() + memorySizeAt, offsetMemorySize);
  return header;
}

std::vector<uint8_t> RecordedFrameBytes(const RecordedFrame& frame) {
  std::vector<uint8_t> bytes(prefixSize + frame.bytes.size());
  StoreTo(bytes.data(), frame.microseconds);
  StoreTo(bytes.data() + timeSize, static_cast<uint32_t>(frame.bytes.size()));
  std::copy(frame.bytes.begin(), frame.bytes.end(), bytes.begin() + static_cast<std::ptrdiff_t>(prefixSize));
  return bytes;
}

bool ReadRecording(const uint8_t* bytes, size_t size, Recording* recording, std::string* error) {
  *recording = {};
  size_t at = 0;
  if (!ReadHeader(bytes, size, recording, &at, error)) return false;
  uint64_t last = 0;
  while (at < size) {
    const std::string place = Place(*recording, at);
    const std::string cutOff = "it was cut off: it ends within " + place;
    if (size - at < prefixSize || IsZero(bytes + at, size - at)) {
      recording->cutOff = cutOff;
      return true;
    }
    const uint64_t time = LoadFrom<uint64_t>(bytes + at);
    const uint32_t length = LoadFrom<uint32_t>(bytes + at + timeSize);
    if (length > mostFrameBytes || time < last) return Fail("it is damaged at " + place, error);
    at += prefixSize;
    if (length > size - at) {
      recording->cutOff = cutOff;
      return true;
    }
    const FrameKind kind = ReadFrame(bytes + at, length).kind;
    if (kind == FrameKind::None || kind == FrameKind::Announce) {
      return Fail("it is damaged at " + place + ", which is nothing that a server sends", error);
    }
    recording->frames.push_back({time, {bytes + at, bytes + at + length}});
    at += length;
    last = time;
  }
  return true;
}

uint64_t RecordingLength(const Recording& recording) {
  return recording.frames.empty() ? 0 : recording.frames.back().microseconds;
}

}  // namespace ctl
