// What the user asks for on the command line: OFFSET:TYPE, NAME, NAME:TYPE, each with =VALUE for writing.
// Pure; any thread.
//
// An item without a type is a known offset and speaks in its engineering units (knots, degrees, MHz); with
// a type it is the stored number.
#pragma once
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "offset_names.h"

namespace ctl {

struct Item {
  std::string shown;  // as typed, without type and value
  uint32_t offset = 0;
  ValueType type = ValueType::U8;
  uint32_t size = 0;
  const OffsetName* row = nullptr;  // the known offset when no type was given, else null
  std::vector<uint8_t> bytes = {};  // the value in memory order, `size` of them
  // What was asked for in the row's unit, before it was rounded to `bytes`; NaN when nothing was.
  double asked = std::numeric_limits<double>::quiet_NaN();
};

// "u16", "hex:4" ...
std::string TypeText(ValueType type, uint32_t size);
// Reads an item. Returns true, or false with a sentence in `error`. `bytes` is `size` zeros then.
bool ParseItem(std::string_view text, const NameTable& names, Item* item, std::string* error);
// Reads ITEM=VALUE and encodes the value into `bytes`. Values that the type cannot hold and read-only
// offsets are errors. Returns true, or false with a sentence in `error`.
bool ParseAssignment(std::string_view text, const NameTable& names, Item* item, std::string* error);

}  // namespace ctl
