// One named offset as the client tool knows it: the record of tools/offsetctl/offset_table.inc, which the
// reference generator writes from the plug-in's catalogue.
#pragma once
#include <cstddef>
#include <cstdint>
#include <span>

namespace ctl {

enum class ValueType : uint8_t { U8, S8, U16, S16, U32, S32, U64, S64, F32, F64, Hex, Text };

// How a stored number is shown.
enum class Form : uint8_t {
  Number,  // stored x unitScale + unitBias, with unit
  Flag,    // 0 off, else on
  Bcd,     // decimal digits, one per four bits: 0x1870 is 118.70 with unit MHz, 0x7000 is 7000 without
  Bits,    // hexadecimal
  Text,
};

// A stored number that means something of its own; of Form::Bits, a group of `width` bits from bit `number` on.
struct NamedNumber {
  int64_t number;
  const char* name;
  int width = 1;
};

struct OffsetName {
  uint32_t offset;
  ValueType type;
  uint16_t length;   // bytes of the value
  const char* name;  // "" when it has none
  const char* meaning;
  const char* unit;
  double unitScale;
  double unitBias;
  Form show;
  bool readOnly;           // the server drops writes to it
  bool writable;           // a write reaches the simulator
  uint16_t frames = 0;     // from one refresh to the next; 0: never refreshed
  const char* lossy = "";  // why a written value does not read back within one step; "" when it does
  // How far off it reads back then, at most: stored numbers, and a share of what was written. Both 0: not
  // known, or the reason is another one.
  double lossSteps = 0, lossShare = 0;
  std::span<const NamedNumber> choices = {};
};

// A stretch of offsets, both ends included.
struct OffsetRange {
  uint32_t first, last;
};

// A stretch with a layout of its own, which the plug-in or its clients fill as a whole; both ends included.
struct OffsetArea {
  const char* name;
  uint32_t first, last;
};

// A heading of the reference page and how many rows stand under it.
struct OffsetSubject {
  const char* name;
  size_t rows;
};

// What the tool knows about offsets: rows in the order of the catalogue, and everything read-only. The subjects
// follow each other as the rows do; there may be none.
struct NameTable {
  std::span<const OffsetName> rows;
  std::span<const OffsetRange> readOnly;
  std::span<const OffsetSubject> subjects = {};
  std::span<const OffsetArea> areas = {};
};

}  // namespace ctl
