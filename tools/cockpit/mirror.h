// The offset memory as the web cockpit shows it: what the thread that owns the source hands over, and what the
// HTTP thread knows from it. The records are plain; ApplyBatch is pure. The mirror belongs to the HTTP thread
// alone.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "offsetctl/picture.h"

namespace ctl {

// What the source's thread is asked to do. `id` comes back with the result.
enum class OrderKind { Write, StartRecording, StopRecording, Replay };
struct OrderedWrite {
  uint32_t offset;
  std::vector<uint8_t> bytes;
};
struct SourceOrder {
  OrderKind kind = OrderKind::Write;
  uint64_t id = 0;
  std::vector<OrderedWrite> writes = {};
  double seconds = 0;  // how long the echo of a write is looked for
  // StartRecording: a file of the recordings' folder. Replay: that file; "" back to the simulator; without, the
  // replay that runs is steered.
  std::optional<std::string> file = {};
  std::optional<double> position = {};  // seconds
  std::optional<double> speed = {};
  std::optional<bool> playing = {};
};
struct OrderResult {
  uint64_t id;
  unsigned status;  // 200 when it was done
  std::string error, where, remedy;
};

struct ReplayState {
  std::string file;
  double position = 0, length = 0;  // seconds
  double speed = 1;
  bool playing = false;
};

// What has come since the batch before, and how the source stands.
struct Batch {
  std::vector<ByteChange> changes;
  bool isNew = false;  // the changes lead to another picture: of a new connection, or of another source
  bool connected = false;
  std::string source;
  uint64_t frames = 0, lost = 0;
  double heardAt = -1;         // seconds since the program's start; below 0 before anything came
  std::string recording;       // the file's name; "" when none runs
  std::string recordingFault;  // why the last one ended by itself; "" when it did not, or another one began
  std::optional<ReplayState> replay;
  std::vector<OrderResult> results;
  std::vector<uint64_t> echoed;  // writes of which every byte has been shown
};

struct Mirror {
  std::vector<uint8_t> memory = std::vector<uint8_t>(offsetMemorySize);
  std::vector<uint32_t> changedIn =
      std::vector<uint32_t>(offsetMemorySize);                            // the batch's number, for each byte
  std::vector<double> changedAt = std::vector<double>(offsetMemorySize);  // seconds since the program's start
  uint32_t serial = 0;                                                    // of the last batch with changes
  uint32_t pictures = 0;  // how often the source was another one
  bool isKnown = false;   // a whole picture has come
  bool connected = false;
  std::string source;
  uint64_t frames = 0, lost = 0;
  double heardAt = -1;
  std::string recording, recordingFault;
  std::optional<ReplayState> replay;
};

// `now` in seconds since the program's start, never less than before.
void ApplyBatch(const Batch& batch, double now, Mirror* mirror);
// {"source": ..., ...} as GET /api/status answers it; `clients` is the number of open streams.
std::string StatusJson(const Mirror& mirror, size_t clients, double now);
// Seconds with three digits after the point.
std::string SecondsJson(double seconds);

// Counts datagrams that are known to be lost: nothing numbers them. A block that comes around by itself shows
// bytes that no change list has told; when none tells them within half a second either (a list may be under
// way), one was lost. A block within 0.3 s of another one belongs to the burst for a new client and counts for
// nothing.
struct LossWatch {
  Echo untold;  // of the last block
  double blockAt = -1000;
  uint64_t lost = 0;
};
// Before the frame goes into the picture; `now` in seconds.
void WatchFrame(const NetFrame& frame, const Picture& picture, double now, LossWatch* watch);
// Counts what nothing has told in time.
void SettleLosses(double now, LossWatch* watch);

}  // namespace ctl
