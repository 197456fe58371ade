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
};

// The check of an item that is about to be written over `before` (`size` bytes).
WriteCheck CheckOf(const Item& wanted, const NameTable& names, const uint8_t* before);
// Whether the bytes are what was written, or what a refresh of the row makes of it: for switches anything that
// is on or off alike, for scaled numbers a step aside. Where the row is lossy, its own step, or anything that
// is nearer to the written value than to the one before.
bool Follows(const WriteCheck& check, const uint8_t* shown);
// Whether the row is a request, which goes back once it is taken: what it shows then tells nothing.
bool IsRequest(const WriteCheck& check);
// Whether the old value stands there again though the simulator should have kept the new one.
bool IsSetBack(const WriteCheck& check, const uint8_t* shown);
// "heading shows 90.000 deg", and why if the row knows a reason; for the line that tells of a failure.
std::string ShownText(const WriteCheck& check, const uint8_t* shown);

}  // namespace ctl
