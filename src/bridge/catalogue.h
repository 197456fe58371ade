// The catalogue: one offset, one row. Meaning, source, conversion, cycle and what a client's write does
// stand side by side, so that anyone can see that one direction is the inverse of the other.
//
// Rows are grouped by cockpit subject, one file each in catalogue/. Everything else is derived from them:
// the readers of each refresh cycle and their order, the fixed order of the writers, the widths of the
// dispatcher, the reference page for client authors and the names that the client tool knows.
//
// Row functions run on the simulator's thread with no lock held, unless the field says otherwise.
#pragma once
#include <cstdint>
#include <limits>
#include <span>

#include "bridge/sources.h"

enum class Stored : uint8_t { U8, S8, U16, S16, U32, S32, S64, F32, F64, Text };

// Refresh cycles, by frames. Navigation is the 31-frame cycle that tunes the stations first.
enum class Cycle : uint8_t { None, C1, C3, C7, C13, C31Navigation, C31, C59, C157, C313, Count };

// How the client tool and the reference page show a stored number.
enum class Show : uint8_t {
  Number,  // stored x unitScale + unitBias, with unit
  Flag,    // 0 off, else on
  Bcd,     // four BCD digits: 0x1870 is 118.70 with unit MHz, 0x7000 is 7000 without
  Bits,    // bit field, shown in hexadecimal
  Text,
};

struct OffsetRow;

// A client's value as the writer gets it.
struct Staged {
  double number;         // the value in the row's stored type
  int64_t integer;       // the same for integer types
  const uint8_t* bytes;  // staged bytes, width of them
  uint32_t width;
};

// What a client's write does. Three forms: a target with a conversion, an `apply` function for this row
// alone, or a `group` function that serves several rows and tests their flags itself.
struct WriteRule {
  Source target = {};
  double factor = 1;  // dataref = value x factor, then limited
  double low = -std::numeric_limits<double>::infinity();
  double high = std::numeric_limits<double>::infinity();
  double (*convert)(double value) = nullptr;  // instead of factor
  void (*apply)(const OffsetRow& row, const Staged& staged) = nullptr;
  void (*group)() = nullptr;
  bool staged = false;  // dispatchable without any effect of its own (the flag is consumed)
  uint16_t width = 0;   // bytes that are dispatched, when not the type's own width
};

struct OffsetRow {
  uint32_t offset = 0;
  Stored type = Stored::U8;
  uint16_t length = 0;       // Stored::Text: bytes, zero padded
  const char* name = "";     // for offsetctl: lower case words joined by "_"; "" for parts of others
  int member = 0;            // 1..n of a family (engine, layer): appended to the name
  const char* meaning = "";  // a few words
  const char* unit = "";
  double unitScale = 1;  // unit value = stored x unitScale + unitBias
  double unitBias = 0;
  Show show = Show::Number;

  Cycle cycle = Cycle::None;  // None: never refreshed
  Source source = {};         // the dataref that is read
  double factor = 1;          // stored = trunc(value x factor + add), saturated, NaN as 0
  double add = 0;
  double (*convert)(double value) = nullptr;  // instead of factor and add
  // Instead of `source`: derives the value from several. Returns 0 to leave the offset as it is.
  int (*read)(const OffsetRow& row, double* value) = nullptr;
  // Stored::Text: fills `length` bytes (zeroed before). Returns 0 to leave the offset as it is.
  int (*readText)(const OffsetRow& row, char* text) = nullptr;

  WriteRule write = {};
  const char* lossy = "";  // why a written value does not read back within one step; "" when it does
  const char* note = "";   // further facts for the reference page
};

struct RowTable {
  const char* subject;  // heading in the reference page
  std::span<const OffsetRow> rows;
};

// One table per subject, defined in catalogue/.
extern const RowTable timeRows, positionRows, speedRows, forceRows, autopilotRows, controlRows, slewRows;
extern const RowTable throttleRows, engineRows, iceRows, lightRows, electricRows, fuelRows, weightRows,
    pressurisationRows, failureRows;
extern const RowTable radioRows, navigationRows, identityRows, airRows, cloudRows, windRows, situationRows,
    miscRows;

// All tables in the order in which readers and writers run.
std::span<const RowTable* const> Catalogue();

// Bytes of a row's stored value.
uint32_t StoredWidth(const OffsetRow& row);
// Converts a number into the row's stored bytes (up to 8): 8 and 16 bit values are rounded to single
// precision first, integers truncated toward zero and saturated, NaN is 0. Pure.
void EncodeNumber(const OffsetRow& row, double value, uint8_t bytes[8]);
// The number that stored bytes of this type mean. Pure; used on staged values and by the tools.
double DecodeNumber(Stored type, const uint8_t* bytes);
int64_t DecodeInteger(Stored type, const uint8_t* bytes);

// Writers' services. Takes the staged value of an offset: enters the offset lock, and when the flag is up
// clears it, copies `width` bytes and returns 1; when no flag is up, copies what the offset memory holds
// there instead and returns 0. Simulator's thread, no lock held.
int TakePending(uint32_t offset, uint32_t width, void* value);
// Copies bytes of the offset memory under the offset lock (blocking; for writers), and stores some.
void CopyFromMemory(uint32_t offset, uint32_t size, void* bytes);
void CopyToMemory(uint32_t offset, uint32_t size, const void* bytes);
// The same for readers: only tries the lock; returns 0 when it is busy.
int TryCopyFromMemory(uint32_t offset, uint32_t size, void* bytes);
