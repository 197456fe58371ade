// What follows from a row of the catalogue: what the page, the data file and offsetctl's table say of it alike.
// Pure.
#pragma once
#include <optional>
#include <string>
#include <vector>

#include "bridge/catalogue.h"

// "u16", "text:24"; with `length` alone for texts.
std::string TypeText(Stored type, uint32_t length);
std::string TypeText(const OffsetRow& row);
// The enumerators of offsetctl.
const char* TypeCode(Stored type);
const char* FormName(const OffsetRow& row);
// Frames between two refreshes, 0 for none.
int CycleFrames(Cycle cycle);

// The unit's scale: unit value = stored x numerator / denominator + bias. The text has powers of two and pi as
// such: "360/2^32".
struct Scale {
  std::string text;
  double numerator = 1, denominator = 1;
  bool isExact = true;  // the fraction is the row's scale, to the last bit
};
Scale ScaleOf(double scale, const char* unit);
Scale ScaleOf(const OffsetRow& row);

// In the unit; no step for floating point. Nothing for texts, bit fields and unlimited floating point.
struct UnitRange {
  std::optional<double> low, high, step;
};
std::optional<UnitRange> RangeOf(const OffsetRow& row);

// What a written value becomes: "same" within one step of the encoding, "switch" 1 for anything but 0,
// "request" 0 once taken, "near" within the tolerance, "limited" the same inside the range, "own" what the
// simulator makes of it, "none" when nothing reads it.
const char* ReadBackOf(const OffsetRow& row);
// "yes", "no" or "read-only".
std::string AccessText(const OffsetRow& row);

// Stored bytes of a row and what they mean.
struct Example {
  std::vector<uint8_t> bytes;
  double number = 0;    // in the unit
  std::string text;     // of texts
  std::string meaning;  // "45 deg", "standby", "NAV1, COM1"
};
Example ExampleOf(const OffsetRow& row);

// The meaning with its sign and its numbers: "pitch, positive nose down", "season: 0 winter, 1 spring".
std::string FullMeaning(const OffsetRow& row);
// "0 winter, 1 spring", "bit 0 navigation".
std::string LegendOf(const OffsetRow& row);
// "dataref[0]", "derived" or "".
std::string SourceText(const OffsetRow& row);
// What the row's source is called in other versions of the simulator.
std::span<const char* const> OtherNames(const OffsetRow& row);

struct OffsetRange {
  uint32_t first, last;  // both included
};
// The offsets that clients may not write, as stretches.
std::vector<OffsetRange> ReadOnlyRanges();
