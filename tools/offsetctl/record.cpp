// offsetctl record: what the network server sends, into a file.
#include <chrono>
#include <cstdio>

#include "commands.h"
#include "console.h"
#include "net_client.h"
#include "numbers.h"

namespace ctl {

namespace {

constexpr int sliceMs = 50;

uint64_t MicrosecondsNow() {
  const auto since = std::chrono::system_clock::now().time_since_epoch();
  return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::microseconds>(since).count());
}

bool Append(FILE* file, const std::vector<uint8_t>& bytes) {
  return std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
}

struct Tally {
  size_t frames = 0, bytes = recordingHeaderSize;
  uint64_t microseconds = 0;
};

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point time) {
  return std::chrono::duration<double>(Clock::now() - time).count();
}

// Returns false when the disk is full.
bool AppendFrames(FILE* file, const std::vector<RecordedFrame>& frames, Tally* tally) {
  for (const RecordedFrame& frame : frames) {
    const std::vector<uint8_t> bytes = RecordedFrameBytes(frame);
    if (!Append(file, bytes)) return false;
    ++tally->frames;
    tally->bytes += bytes.size();
    tally->microseconds = frame.microseconds;
  }
  return std::fflush(file) == 0;
}

}  // namespace

int RunRecord(const Options& options, const Transport& transport) {
  const std::string& path = options.items[0];
  const Clock::time_point began = Clock::now();
  const uint64_t startedAt = MicrosecondsNow();
  std::string error;
  // All blocks first: without the whole memory nothing can be replayed, and an older file stays. What comes
  // meanwhile is kept.
  bool isServed = transport.readOffsets({}, &error);
  if (!isServed) return ReportFailure(error);
  FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return Report(exitUsage, "cannot write " + path);
  bool isWritten = Append(file, RecordingHeader(startedAt));
  Tally tally;
  std::vector<RecordedFrame> frames;
  while (isServed && isWritten) {
    isServed = TakeFrames(sliceMs, &frames, &error);
    isWritten = AppendFrames(file, frames, &tally);
    if (StopRequested() || (options.seconds > 0 && SecondsSince(began) >= options.seconds)) break;
  }
  isWritten = std::fclose(file) == 0 && isWritten;
  if (!isWritten) return Report(exitUsage, "cannot write all of " + path + ": is the disk full?");
  if (tally.frames > 0) {
    std::printf("%s: %s s, %zu frames, %zu bytes\n", path.c_str(),
                FixedText(static_cast<double>(tally.microseconds) / 1e6, 1).c_str(), tally.frames, tally.bytes);
  }
  const double quiet = transport.silence();
  if (isServed && quiet > options.timeout) {
    error = "nothing came from the server in the last " + FixedText(quiet, 1) +
            " s: the simulator stands still, or the network is cut";
    return Report(exitNoAnswer, error);
  }
  return isServed ? exitDone : ReportEnd(error);
}

}  // namespace ctl
