// offsetctl record: what the network server sends, into a file.
#include <chrono>
#include <cstdio>

#include "commands.h"
#include "console.h"
#include "net_client.h"
#include "numbers.h"
#include "picture.h"

namespace ctl {

namespace {

constexpr int sliceMs = 50;

bool Append(FILE* file, const std::vector<uint8_t>& bytes) {
  return std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
}

struct Tally {
  size_t frames = 0, bytes = 0;
  uint64_t beganAt = 0;  // since the connection was opened
  uint64_t microseconds = 0;
};

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point time) {
  return std::chrono::duration<double>(Clock::now() - time).count();
}

// The eight blocks as they stand after the frames that have come so far, at time 0. Returns false when the disk
// is full.
bool AppendStart(FILE* file, const std::vector<RecordedFrame>& frames, Tally* tally) {
  Picture picture;
  for (const RecordedFrame& frame : frames) {
    ApplyFrame(ReadFrame(frame.bytes.data(), frame.bytes.size()), &picture);
    tally->beganAt = frame.microseconds;
  }
  const std::vector<uint8_t> start = RecordingStart({picture.bytes.begin(), picture.bytes.end()});
  tally->frames = pictureBlocks;
  tally->bytes = start.size();
  return Append(file, start);
}

// Returns false when the disk is full.
bool AppendFrames(FILE* file, const std::vector<RecordedFrame>& frames, Tally* tally) {
  for (const RecordedFrame& frame : frames) {
    tally->microseconds = frame.microseconds - tally->beganAt;
    const std::vector<uint8_t> bytes = RecordedFrameBytes({tally->microseconds, frame.bytes});
    if (!Append(file, bytes)) return false;
    ++tally->frames;
    tally->bytes += bytes.size();
  }
  return std::fflush(file) == 0;
}

}  // namespace

int RunRecord(const Options& options, const Transport& transport) {
  const std::string& path = options.items[0];
  const Clock::time_point began = Clock::now();
  std::string error;
  // All blocks first: without the whole memory nothing can be replayed, and an older file stays.
  bool isServed = transport.readOffsets({}, &error);
  if (!isServed) return ReportFailure(error);
  std::vector<RecordedFrame> frames;
  isServed = TakeFrames(0, &frames, &error);
  FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return Report(exitUsage, "cannot write " + path);
  Tally tally;
  bool isWritten = AppendStart(file, frames, &tally);
  while (isServed && isWritten) {
    isServed = TakeFrames(sliceMs, &frames, &error);
    isWritten = AppendFrames(file, frames, &tally);
    if (StopRequested() || (options.seconds > 0 && SecondsSince(began) >= options.seconds)) break;
  }
  isWritten = std::fclose(file) == 0 && isWritten;
  if (!isWritten) return Report(exitUsage, "cannot write all of " + path + ": is the disk full?");
  std::printf("%s: %s s, %zu frames, %zu bytes\n", path.c_str(),
              FixedText(static_cast<double>(tally.microseconds) / 1e6, 1).c_str(), tally.frames, tally.bytes);
  const double quiet = transport.silence();
  if (isServed && quiet > options.timeout) {
    error = "nothing came from the server in the last " + FixedText(quiet, 1) +
            " s: the simulator stands still, or the network is cut";
    return Report(exitNoAnswer, error);
  }
  return isServed ? exitDone : ReportEnd(error);
}

}  // namespace ctl
