// What becomes of an axis's reading on its way to an offset, as pure functions, for any thread: calibration,
// inversion, null zone, curve, combining, detents, encoding.
//
// A reading is a device's own number, 0 to 1 from end to end. A deflection is what it means: 0 at rest and 1 at
// the end of its way, and on the other side down to -1 for controls that have one.
#pragma once
#include <cstddef>
#include <cstdint>
#include <span>

#include "settings/settings.h"

enum class Travel : uint8_t {
  OneSided,   // from one end to the other: brakes, levers
  Centred,    // either way from the calibrated centre
  Reversing,  // a lever whose lowest part is reverse: either way from the idle gate
};

struct Calibration {
  double low = 0, centre = 0.5, high = 1;  // readings, low < centre < high
  bool operator==(const Calibration&) const = default;
};

struct AxisTune {
  Calibration calibration;
  bool inverted = false;
  double nullZone = 0;  // share of full travel around rest without effect, 0 to mostNullZone
  double curve = 0;     // 0 straight, above it gentle at rest, below it lively
  double reverse = 0;   // of Travel::Reversing: share of the lever's way below the idle gate
  bool operator==(const AxisTune&) const = default;
};
constexpr double mostNullZone = 0.9;
constexpr double leastCurve = -0.5, mostCurve = 1;  // between them the curve rises everywhere
constexpr double mostReverse = 0.9;

// Whether a number can be a reading at all.
bool IsReading(double number);
// The deflection of a reading, which may lie outside the calibrated ends: the ends count then.
double Deflect(const AxisTune& tune, Travel travel, double reading);
// Two axes of one control, whichever comes first: of one-sided ones the larger deflection, else the sum,
// limited.
double Combine(Travel travel, double one, double other);

enum class NumberType : uint8_t { Unsigned, Signed, Float };

// Where a control goes: `low` and `high` are the numbers at the ends of its way; what has two sides rests at 0
// between them.
struct AxisTarget {
  uint32_t offset = 0;
  uint32_t size = 0;  // bytes: 1, 2, 4 or 8; 0 for none
  NumberType type = NumberType::Signed;
  double low = 0, high = 0;
  bool operator==(const AxisTarget&) const = default;
};

// The target's number for a deflection, not rounded yet.
double NumberOf(const AxisTarget& target, Travel travel, double deflection);
// Whether the number is news after `last`, the one that was written: for an integer more than 0.6 away, which
// is a tenth behind the place where rounding changes, so that trembling there is silent and a lever that comes
// close to an end reaches it; for a float a 32768th of its way; or at an end or at rest.
bool IsNews(const AxisTarget& target, double last, double number);
// As it is stored: integers rounded to the nearest. Of what EncodeNumber stores and IsNews compares with.
double Rounded(const AxisTarget& target, double number);
// Writes size bytes.
void EncodeNumber(const AxisTarget& target, double number, uint8_t (&bytes)[8]);

// Where a flap lever has to be for a detent, as shares of its way; ordered, with a gap between neighbours in
// which the lever stays in the detent that it comes from.
struct DetentBounds {
  double lower, upper;
  bool operator==(const DetentBounds&) const = default;
};
constexpr double leastDetentGap = 0.01;
// The bounds of `count` detents from the settings: each has its position, and perhaps lower and upper bound;
// what is missing (NaN) lies where it does by default: a position where even spacing puts it, a bound two
// fifths of the way to the neighbour, or less where the gap needs it. Returns null, or in words that follow a
// colon why they cannot be used; `bounds` are even then.
const char* PlaceDetents(std::span<const FlapDetent> detents, DetentBounds (&bounds)[maxFlapDetents]);
// The detent (from 0) that the lever is in, coming from `present`.
int NextDetent(std::span<const DetentBounds> bounds, int present, double lever);
