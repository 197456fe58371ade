// Values as text: the lines of read and watch, JSON, and cells of the monitor. Pure; any thread.
#pragma once
#include <string>

#include "item.h"

namespace ctl {

// The stored value: shortest numbers that read back the same, text in quotes up to its first zero byte,
// hex as bytes.
std::string StoredText(const Item& item);
// The value in the units of the item's row, without the unit; the stored value for items without one.
std::string EngineeringText(const Item& item);
// "0x0330 = 16211 (53 3F)", "heading = 269.978 deg, 49148 (FC BF)"; without line end.
std::string ItemLine(const Item& item);
// "heading: 90.000 -> 270.000 deg", "gear: 0.000 -> 100.000 % (down)": what stood there before (null: not
// known) and what stands there after, each `item.size` bytes; says what rounding did to the value that was
// asked for.
std::string ChangeLine(const Item& item, const uint8_t* before, const uint8_t* after);
// A text as JSON writes it, in quotes and in ASCII alone: UTF-8 as the client libraries read it, other bytes
// taken for their Latin-1 characters.
std::string JsonString(const std::string& bytes);
// The item's value in JSON: a number in engineering units for items with a row that has them, else the stored
// one; integers of 64 bits and bytes are strings, what JSON has no number for is null.
std::string JsonValue(const Item& item);
// {"name": ..., "offset": ..., "type": ..., "value": ..., "raw": ..., "unit": ...}.
std::string ItemJson(const Item& item);

}  // namespace ctl
