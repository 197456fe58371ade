// The catalogue: one offset, one row. Meaning, source, conversion, cycle and what a client's write does
// stand side by side, so that anyone can see that one direction is the inverse of the other.
//
// Rows are grouped by cockpit subject, one file each in catalogue/. Everything else is derived from them:
// the readers of each refresh cycle and their order, the fixed order of the writers, the widths of the
// dispatcher, the reference page for client authors and the names that the client tool knows.
//
// Row functions run on the simulator's thread with no lock held, unless the field says otherwise.
#pragma once
#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>

#include "bridge/add_ons.h"
#include "bridge/sources.h"
#include "offsets/dispatcher.h"

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
struct Staged;

// A stored number that means something of its own, or, with Show::Bits, a bit, or several that hold a number.
// The identifiers of the client libraries are made of the name.
struct Choice {
  int number;
  const char* name;
  int width = 1;  // of a group of bits
};
// What clients may store, in stored numbers, where the type holds more.
struct StoredLimits {
  double low = -std::numeric_limits<double>::infinity();
  double high = std::numeric_limits<double>::infinity();
};
// How far from what was written it reads back at most: stored numbers, and a share of what was written.
struct Tolerance {
  double steps = 0;
  double share = 0;
  bool wraps = false;  // a full turn is no distance
};

// The functions that a row may point to. They run on the simulator's thread with no lock held.
// Derives the row's number from several sources. Returns false to leave the offset as it is.
using ReadRow = bool (*)(const OffsetRow& row, double* value);
// Fills the row's `length` bytes, zeroed before. Returns false to leave the offset as it is.
using ReadRowText = bool (*)(const OffsetRow& row, char* text);
using Convert = double (*)(double value);
// What a client's write does when it is more than a conversion.
using ApplyWrite = void (*)(const OffsetRow& row, const Staged& staged);
// Takes what several rows of a cycle need into a snapshot with a name, before any of them is read.
using Prepare = void (*)();

// A client's value as the writer gets it.
struct Staged {
  double number;         // the value in the row's stored type
  int64_t integer;       // the same for integer types
  const uint8_t* bytes;  // staged bytes, width of them
  uint32_t width;
  bool own = false;  // no client's, but one of our own (DispatchOwnWrite)
};

// What a client's write does. Three forms: a target with a conversion, an `apply` function for this row
// alone, or a `group` function that serves several rows and tests their flags itself.
struct WriteRule {
  Source target = {};
  double factor = 1;  // dataref = value x factor, then limited
  double low = -std::numeric_limits<double>::infinity();
  double high = std::numeric_limits<double>::infinity();
  Convert convert = nullptr;  // instead of factor
  ApplyWrite apply = nullptr;
  void (*group)() = nullptr;
  bool staged = false;  // dispatchable without any effect of its own (the flag is consumed)
  uint16_t width = 0;   // bytes that are dispatched, when not the type's own width
};

// From a version of the simulator on, as it tells it (11.40 is 11400), a row's source counts in another unit.
struct UnitChange {
  int since = 0;      // 0: never
  double factor = 1;  // what the row calls the source's unit = published x factor
};

// A button of an add-on's panel.
struct Button {
  // Lit while what it selects is on, the other way round with `dark`; none, or not published: as the row shows
  // it.
  Source light = {};
  const Command* press = nullptr;
  Source standIn = {};  // says the same where the light is not published
};

// How one aircraft shows and takes a row's value: an add-on that counts while it is loaded, or the simulator's
// own (AddOn::None), which stands last or in the row itself. The first one that is loaded and shows the value
// serves reading, the first one that takes it serves writing. An add-on that is loaded and publishes none of
// the names that it is shown by is passed over; one that publishes none of those by which it would take a value
// does nothing with it and the log says so, as it would not look at the simulator's own control either.
struct Variant {
  AddOn addOn = AddOn::None;
  AddOn alsoFor = AddOn::None;  // a relative that publishes the same names
  Source source = {};           // of a number; converted as the row says
  Convert convert = nullptr;    // of what is read, instead of the row's
  ReadRow read = nullptr;
  // Of a switch: on while one of these lights is lit, one of these marks is not 0, or one of these bits of the
  // autopilot's state is set. Where none of the lights is published those of the buttons count.
  Source lights[4] = {};
  Source marks[2] = {};
  int stateBits = 0;
  bool dark = false;                      // the lights are lit while it is off
  Source target = {};                     // set by a write; converted as the row says, a switch to 0 or 1
  Convert targetConvert = nullptr;        // of what is written, instead of the row's; limits it, too
  std::span<const Source> together = {};  // set to the same as the target
  ApplyWrite apply = nullptr;
  // What turns a switch over, fired only when the wanted state differs from the shown one: the first one given.
  const Command* press = nullptr;
  int key = -1;      // of the simulator's keys
  int stateBit = 0;  // of the autopilot's state, set to press it
  // An add-on's way to take a value, before `apply` and `target` when it publishes them. Buttons: on presses
  // the first one unless one of them is on, off presses each that is on. With `everyButton` each is pressed
  // whose state differs. One of several whose lamp is not published is not pressed for either, as nobody knows
  // its state. A momentary button knows no off and is pressed for each on, unless it is being held.
  Button buttons[4] = {};
  bool everyButton = false, momentary = false;
  // The commands of a lever's or knob's places; the place is the written number, by targetConvert if given.
  std::span<const Command* const> places = {};
  bool held = false;  // begun and ended some frames later, for what acts while it is pressed
  bool silent =
      false;  // the add-on has no such control and does not look at the simulator's: writes do nothing
  // What the functions above read, set and fire beyond what stands here, for the reference page and for telling
  // whether the add-on has the control at all.
  std::span<const Source> reads = {}, sets = {};
  std::span<const Command* const> fires = {};
};
// A row's variants in the row itself: .variants = variantsOf<[] { return std::array{Variant{...},
// Variant{...}}; }>.
template <auto list>
constexpr auto variantsOf = list();
// Commands by their names, for a variant's `places` and `fires`.
template <NameText... names>
constexpr const Command* commandsOf[] = {&commandOf<names>...};

struct OffsetRow {
  uint32_t offset = 0;
  Stored type = Stored::U8;
  uint16_t length = 0;    // Stored::Text: bytes, zero padded
  const char* name = "";  // for clients: lower case words joined by "_"; "" where no page lists it
  int member = 0;         // 1..n of a family (engine, layer): appended to the name
  int copy = 0;  // 1..n: the same value at another place: "_copy" is appended, from 2 on with the number
  const char* meaning = "";              // a few words
  const char* positive = "";             // where positive numbers point: "nose down"
  const char* reference = "";            // what an angle or a height counts from: "true north"
  std::span<const Choice> choices = {};  // what its numbers or bits stand for
  const char* unit = "";
  double unitScale = 1;  // unit value = stored x unitScale + unitBias
  double unitBias = 0;
  Show show = Show::Number;

  Cycle cycle = Cycle::None;  // None: never refreshed
  Source source = {};         // the dataref that is read
  double factor = 1;          // stored = trunc(value x factor + add), saturated, NaN as 0
  double add = 0;
  UnitChange unitChange = {};      // of source and target; for rows with a factor
  Convert convert = nullptr;       // instead of factor and add
  ReadRow read = nullptr;          // instead of `source`
  ReadRowText readText = nullptr;  // Stored::Text
  // Instead of `source`: a number of the snapshot that `prepare` takes, or a constant; converted like a
  // source's.
  const double* prepared = nullptr;
  // Datarefs that `read` or `prepare` looks at in every run: asked for in one go with those of the other rows.
  // An array is asked for up to the element given. The page tells from them in which versions of the simulator
  // the row is served: the first is the one that it cannot do without.
  std::span<const Source> inputs = {};
  Prepare prepare = nullptr;               // the snapshot that the row looks at
  std::span<const Variant> variants = {};  // how each aircraft shows and takes the value
  // The same of the switches that the row's functions look at, for the reference page.
  std::span<const std::span<const Variant>> parts = {};

  WriteRule write = {};
  bool readOnly = false;                            // clients' writes that begin here are passed over
  DispatchAction dispatch = DispatchAction::Stage;  // other than Stage: dispatched so, whatever `write` says
  bool isInput = false;  // no effect of its own: other rows look at what clients leave here
  StoredLimits limits = {};
  Tolerance tolerance = {};  // of a lossy row whose values come back nearly
  const char* lossy = "";    // why a written value does not read back within one step; "" when it does
  const char* note = "";     // further facts for the reference page
  // What stands there in versions of the simulator that lack one of its datarefs, when that does not just count
  // as 0; "" when it does.
  const char* elsewhere = "";
};

struct RowTable {
  const char* subject;  // heading in the reference page; null for words that no page lists
  std::span<const OffsetRow> rows;
};

// One table per subject, defined in catalogue/.
extern const RowTable timeRows, positionRows, speedRows, forceRows, autopilotRows, controlRows, slewRows;
extern const RowTable throttleRows, engineRows, iceRows, lightRows, electricRows, fuelRows, weightRows,
    pressurisationRows, failureRows;
extern const RowTable radioRows, navigationRows, identityRows, airRows, cloudRows, windRows, situationRows,
    miscRows, ownRows;

// All tables in the order in which readers and writers run.
std::span<const RowTable* const> Catalogue();

// Bytes of a row's stored value.
uint32_t StoredWidth(const OffsetRow& row);
// The number that stored bytes of this type mean. Pure; used on staged values and by the tools.
double DecodeNumber(Stored type, const uint8_t* bytes);
int64_t DecodeInteger(Stored type, const uint8_t* bytes);

// The variant that shows a row's value at the moment, and the one that takes it; an empty one when none does.
// Simulator's thread.
const Variant& ShowingVariant(std::span<const Variant> variants);
inline const Variant& ShowingVariant(const OffsetRow& row) { return ShowingVariant(row.variants); }
const Variant& ActingVariant(std::span<const Variant> variants);
inline const Variant& ActingVariant(const OffsetRow& row) { return ActingVariant(row.variants); }
// Where a row's number is read at the moment: the source of the variant that serves it, else its own.
Source ActiveSource(const OffsetRow& row);
// The snapshot's number that a row shows at the moment; null when a variant's source takes its place.
const double* ActivePrepared(const OffsetRow& row);
// The function that makes a row's number at the moment; null when a source or a snapshot has it.
ReadRow ActiveRead(const OffsetRow& row);
// What converts a row's number at the moment; null when its factor does.
Convert ActiveConvert(const OffsetRow& row);
// What the published number is to be multiplied with at the moment, for a change of unit.
double UnitFactor(const UnitChange& change);
inline double UnitFactor(const OffsetRow& row) { return UnitFactor(row.unitChange); }
// A number for a dataref whose unit has changed. Rounded to single precision away from 0, so that what a client
// writes is still there when the product is truncated.
double InChangedUnit(double number, const UnitChange& change);
// What a client's number is for the row's target at the moment: converted and limited.
double TargetNumber(const OffsetRow& row, double number);
// Whether a variant shows a switch, by lights, marks or bits of the autopilot's state.
bool IsSwitch(const Variant& variant);
// Whether a switch's variant is on.
bool IsSwitchOn(const Variant& variant);
// Whether a light is lit: its number is above 0.5.
inline bool IsLit(const Source& source) { return ReadSource(source) > 0.5; }
// Whether a write is the variant's business and not that of the row's own rule.
bool ActsOn(const Variant& variant);
// Whether a client's write does something in the simulator, with one aircraft at least.
bool HasWriter(const OffsetRow& row);
// Does what a client's write of a row does as the variant that takes it says.
void ApplyVariant(const OffsetRow& row, const Staged& staged);
// The same of a switch that belongs to no row of its own; `offset` and `part` are for the log (TellUnserved).
void TurnSwitch(std::span<const Variant> variants, uint32_t offset, bool wanted, const char* part);
// Fires an add-on's command for a row's write; says in the log that the write does nothing when the add-on does
// not publish it.
void FireFor(const OffsetRow& row, const Command& command);
// The same held for some frames, so many times; `control` as in bridge/held_presses.h.
void HoldFor(const OffsetRow& row, const Command& command, const void* control = nullptr, int times = 1);
// Where an add-on's switch with places from `low` to `high` stands; none when it does not tell, and then nobody
// knows which way to turn it: the log says so for this offset.
std::optional<int> PlaceOf(AddOn addOn, uint32_t offset, const Source& source, int low, int high,
                           const char* part = "");

// How often the rows have taken their handles anew: who keeps a variant looks again when it has changed.
extern uint32_t readerBindings;

// Copies bytes of the offset memory under the offset lock (blocking; for writers), and stores some.
void CopyFromMemory(uint32_t offset, uint32_t size, void* bytes);
void CopyToMemory(uint32_t offset, uint32_t size, const void* bytes);
// The same for readers: only tries the lock; returns false when it is busy.
bool TryCopyFromMemory(uint32_t offset, uint32_t size, void* bytes);
