// Whether the simulator has followed a write, from what the server shows. Pure; any thread.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "item.h"
#include "names.h"

namespace ctl {

// One written item that waits for its confirmation.
struct WriteCheck {
  Item wanted;                  // with the written bytes
  const OffsetName* row;        // what the plug-in knows of it, also when a type was given; null for nothing
  std::vector<uint8_t> before;  // what stood there
  std::vector<uint8_t> shown;   // what stands there now
  bool done;                    // it has been shown since, exactly or as Follows() accepts it
  uint32_t frames;              // from one refresh of what stands there to the next; 0 when nothing is known
};

// The check of an item that is about to be written over `before` (`size` bytes).
WriteCheck CheckOf(const Item& wanted, const NameTable& names, const uint8_t* before);
// Whether the bytes are what was written, or what a refresh of the row makes of it: for switches anything that
// is on or off alike, for texts the same up to the first zero, for scaled numbers a step aside. Where the row
// is lossy, what it is known to be off by; where it also moves on by itself with every frame, a tenth of the
// way more.
bool Follows(const WriteCheck& check, const uint8_t* shown);
// Whether the row is a request, which goes back once it is taken: what it shows then tells nothing.
bool IsRequest(const WriteCheck& check);
// Whether what stands there shows that the simulator has not followed: another value than the written one, or
// one that nothing in the simulator looks at. Of bytes that the plug-in knows in part or not at all, only the
// old ones tell that.
bool IsRefused(const WriteCheck& check, const uint8_t* shown);
// The first check that is not done, or refused; null when there is none. Requests are passed over.
const WriteCheck* FindFailed(const std::vector<WriteCheck>& checks);

// A write has settled when every refresh of its values has come around, counted by the frames that the plug-in
// counts at `activityOffset`, and 250 ms have passed.
constexpr uint32_t activityOffset = 0x337E;
struct Settling {
  uint32_t wanted;         // frames
  uint32_t seen = 0;       // frames since
  uint16_t activity = 0;   // as it was last
  double lastFrameAt = 0;  // seconds
  double startedAt = 0;    // seconds
};
Settling BeginSettling(const std::vector<WriteCheck>& checks, uint16_t activity, double now);
// Takes note of the counter as it is now. Returns whether the write has settled.
bool Settle(Settling* settling, uint16_t activity, double now);
// Seconds without a frame, when frames are waited for; else 0.
double SecondsWithoutFrames(const Settling& settling, double now);
// "no frames run for 5 s", for the line of a write that cannot settle.
std::string StandstillText(double seconds);

// "heading shows 90.000 deg", and why if the row knows a reason; for the line that tells of a failure.
std::string ShownText(const WriteCheck& check, const uint8_t* shown);

}  // namespace ctl
