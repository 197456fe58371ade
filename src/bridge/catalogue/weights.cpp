// Weights, payload and balance. The simulator counts in kilograms, clients in pounds.
#include <algorithm>

#include "bridge/aircraft_state.h"
#include "bridge/catalogue.h"

namespace {

constexpr double poundsPerKg = 2.2046;
constexpr double poundsTimes256 = 256 * poundsPerKg;

constexpr Source emptyWeight = AuxFloatAt(0x0034);
constexpr Source payload = FloatAt(0x1400);
constexpr Source defaultBalance = FloatAt(0x2EF8);

int ReadOne(const OffsetRow&, double* value) {
  *value = 1;
  return 1;
}

int ReadZeroFuelWeight(const OffsetRow&, double* value) {
  *value = (ReadSource(emptyWeight) + ReadSource(payload)) * poundsTimes256;
  return 1;
}
// The empty weight is the aircraft's own: what is above it is payload.
void ApplyZeroFuelWeight(const OffsetRow&, const Staged& staged) {
  constexpr double kgPerPound = 0.453592;
  const double kg = staged.number / 256 * kgPerPound;
  SetSource(payload, std::max(kg - ReadSource(emptyWeight), 0.0));
}

// Centre of gravity of the 737-800s as a share of the mean aerodynamic chord, from the loads and their arms
// in metres behind the reference point. Cut to the limits of the type.
double ChordShare737() {
  constexpr double operatingEmptyKg = 41413;
  constexpr double cabinArm = 16.8783, wingTankArm = 16.9164, centreTankArm = 15.3924;
  constexpr double leadingEdge = 15.9283;
  constexpr double perChord = 1 / 3.95732;
  const double cabin = operatingEmptyKg + ReadSource(payload);
  const double wingTanks = ReadSource(FloatElementAt(0x0B74, 0)) + ReadSource(FloatElementAt(0x0B74, 2));
  const double centreTank = ReadSource(FloatElementAt(0x0B74, 1));
  const double arm = (cabin * cabinArm + wingTanks * wingTankArm + centreTank * centreTankArm) /
                     (cabin + wingTanks + centreTank);
  return std::clamp((arm - leadingEdge) * perChord, 0.06, 0.36);
}
int ReadBalance(const OffsetRow&, double* value) {
  const bool is737 = adapters.x737 || adapters.b738Extended || adapters.b738Stock;
  *value = is737 ? ChordShare737() : ReadSource(defaultBalance);
  return 1;
}

constexpr OffsetRow rows[] = {
    {.offset = 0x1330,
     .type = Stored::S32,
     .name = "empty_weight",
     .meaning = "empty weight",
     .unit = "lb",
     .unitScale = 1.0 / 256,
     .cycle = Cycle::C313,
     .source = FloatAt(0x1330),
     .factor = poundsTimes256,
     .write = {.target = FloatAt(0x1330), .factor = 1 / poundsTimes256},
     .lossy = "the dataref's single precision",
     .note = "0 where the simulator does not publish it"},
    {.offset = 0x1334,
     .type = Stored::S32,
     .name = "max_weight",
     .meaning = "maximum gross weight",
     .unit = "lb",
     .unitScale = 1.0 / 256,
     .cycle = Cycle::C313,
     .source = FloatAt(0x1334),
     .factor = poundsTimes256,
     .write = {.target = FloatAt(0x1334), .factor = 1 / poundsTimes256},
     .lossy = "the dataref's single precision"},
    {.offset = 0x13FC,
     .type = Stored::U32,
     .name = "payload_stations",
     .meaning = "number of payload stations",
     .cycle = Cycle::C313,
     .read = ReadOne},
    {.offset = 0x1400,
     .type = Stored::F64,
     .name = "payload",
     .meaning = "weight at payload station 1",
     .unit = "lb",
     .write = {.target = payload, .factor = 1 / poundsPerKg, .low = 0},
     .note = "keeps what a client wrote"},
    {.offset = 0x3BFC,
     .type = Stored::S32,
     .name = "zero_fuel_weight",
     .meaning = "zero-fuel weight",
     .unit = "lb",
     .unitScale = 1.0 / 256,
     .cycle = Cycle::C313,
     .read = ReadZeroFuelWeight,
     .write = {.apply = ApplyZeroFuelWeight},
     .lossy = "reads back 0.0011 % lower, and never below the empty weight"},
    {.offset = 0x30C0,
     .type = Stored::F64,
     .name = "gross_weight",
     .meaning = "gross weight",
     .unit = "lb",
     .cycle = Cycle::C157,
     .source = FloatAt(0x30C0),
     .factor = poundsPerKg},
    {.offset = 0x2EF8,
     .type = Stored::F64,
     .name = "centre_of_gravity",
     .meaning = "centre of gravity",
     .cycle = Cycle::C59,
     .read = ReadBalance,
     .write = {.target = defaultBalance},
     .lossy = "single precision; a 737-800 reads back its own balance",
     .note = "share of the mean aerodynamic chord on a 737-800, else metres from the default position"},
    {.offset = 0x16020,
     .type = Stored::F32,
     .name = "jettison_total",
     .meaning = "jettisonable load, total",
     .unit = "kg",
     .cycle = Cycle::C157,
     .source = FloatAt(0x16024)},
    {.offset = 0x16024,
     .type = Stored::F32,
     .name = "jettison",
     .meaning = "jettisonable load",
     .unit = "kg",
     .cycle = Cycle::C157,
     .source = FloatAt(0x16024),
     .write = {.target = FloatAt(0x16024), .low = 0},
     .lossy = "below 0 counts as 0"},
};

}  // namespace

const RowTable weightRows = {"Weights, balance, payload", rows};
