// Weights, payload and balance. The simulator counts in kilograms, clients in pounds.
#include <algorithm>

#include "bridge/catalogue.h"
#include "bridge/catalogue/conversions.h"
#include "bridge/catalogue/units.h"

namespace {

constexpr double poundsTimes256 = 256 * poundsPerKg;

constexpr Source emptyWeight = Float<"sim/aircraft/weight/acf_m_empty">;
constexpr Source payload = Float<"sim/flightmodel/weight/m_fixed">;
constexpr Source defaultBalance = Float<"sim/flightmodel/misc/cgz_ref_to_default">;

bool ReadZeroFuelWeight(const OffsetRow&, double* value) {
  *value = (ReadSource(emptyWeight) + ReadSource(payload)) * poundsTimes256;
  return true;
}
// The empty weight is the aircraft's own: what is above it is payload.
void ApplyZeroFuelWeight(const OffsetRow&, const Staged& staged) {
  const double kg = staged.number / 256 * kgPerPound;
  SetSource(payload, std::max(kg - ReadSource(emptyWeight), 0.0));
}

// Centre of gravity of the 737-800s as a share of the mean aerodynamic chord, from the loads and their arms
// in metres behind the reference point. Cut to the limits of the type.
bool ReadChordShare737(const OffsetRow&, double* value) {
  constexpr double operatingEmptyKg = 41413;
  constexpr double cabinArm = 16.8783, wingTankArm = 16.9164, centreTankArm = 15.3924;
  constexpr double leadingEdge = 15.9283;
  constexpr double perChord = 1 / 3.95732;
  const double cabin = operatingEmptyKg + ReadSource(payload);
  const double wingTanks = ReadSource(FloatElement<"sim/flightmodel/weight/m_fuel">(0)) +
                           ReadSource(FloatElement<"sim/flightmodel/weight/m_fuel">(2));
  const double centreTank = ReadSource(FloatElement<"sim/flightmodel/weight/m_fuel">(1));
  const double arm = (cabin * cabinArm + wingTanks * wingTankArm + centreTank * centreTankArm) /
                     (cabin + wingTanks + centreTank);
  *value = std::clamp((arm - leadingEdge) * perChord, 0.06, 0.36);
  return true;
}

constexpr OffsetRow rows[] = {
    {.offset = 0x1330,
     .type = Stored::S32,
     .name = "empty_weight",
     .meaning = "empty weight",
     .unit = "lb",
     .unitScale = 1.0 / 256,
     .cycle = Cycle::C313,
     .source = Float<"sim/aircraft/weight/acf_m_empty/ac">,
     .factor = poundsTimes256,
     .write = {.target = Float<"sim/aircraft/weight/acf_m_empty/ac">, .factor = 1 / poundsTimes256},
     .tolerance = {.steps = 1, .share = 1e-7},
     .lossy = "the dataref's single precision",
     .note = "0 where the simulator does not publish it"},
    {.offset = 0x1334,
     .type = Stored::S32,
     .name = "max_weight",
     .meaning = "maximum gross weight",
     .unit = "lb",
     .unitScale = 1.0 / 256,
     .cycle = Cycle::C313,
     .source = Float<"sim/aircraft/weight/acf_m_max">,
     .factor = poundsTimes256,
     .write = {.target = Float<"sim/aircraft/weight/acf_m_max">, .factor = 1 / poundsTimes256},
     .tolerance = {.steps = 1, .share = 1e-7},
     .lossy = "the dataref's single precision"},
    {.offset = 0x13FC,
     .type = Stored::U32,
     .name = "payload_stations",
     .meaning = "number of payload stations",
     .cycle = Cycle::C313,
     .prepared = &one},
    {.offset = 0x1400,
     .type = Stored::F64,
     .name = "payload",
     .meaning = "weight at payload station 1",
     .unit = "lb",
     .write = {.target = payload, .factor = 1 / poundsPerKg, .low = 0},
     .limits = {.low = 0},
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
     .limits = {.low = 0},
     .tolerance = {.steps = 1, .share = 0.000012},
     .lossy = "reads back 0.0011 % lower, and never below the empty weight"},
    {.offset = 0x30C0,
     .type = Stored::F64,
     .name = "gross_weight",
     .meaning = "gross weight",
     .unit = "lb",
     .cycle = Cycle::C157,
     .source = Float<"sim/flightmodel/weight/m_total">,
     .factor = poundsPerKg},
    {.offset = 0x2EF8,
     .type = Stored::F64,
     .name = "centre_of_gravity",
     .meaning = "centre of gravity",
     .cycle = Cycle::C59,
     .variants = variantsOf<[] {
       return std::array{Variant{.addOn = AddOn::X737, .read = ReadChordShare737},
                         Variant{.addOn = AddOn::B738Extended, .read = ReadChordShare737},
                         Variant{.addOn = AddOn::B738Stock, .read = ReadChordShare737},
                         Variant{.source = defaultBalance}};
     }>,
     .write = {.target = defaultBalance},
     .tolerance = {.share = 1e-7},
     .lossy = "single precision; a 737-800 reads back its own balance",
     .note = "share of the mean aerodynamic chord on a 737-800, else metres from the default position"},
    {.offset = 0x16020,
     .type = Stored::F32,
     .name = "jettison_total",
     .meaning = "jettisonable load, total",
     .unit = "kg",
     .cycle = Cycle::C157,
     .source = Float<"sim/flightmodel/weight/m_jettison">,
     .readOnly = true},
    {.offset = 0x16024,
     .type = Stored::F32,
     .name = "jettison",
     .meaning = "jettisonable load",
     .unit = "kg",
     .cycle = Cycle::C157,
     .source = Float<"sim/flightmodel/weight/m_jettison">,
     .write = {.target = Float<"sim/flightmodel/weight/m_jettison">, .low = 0},
     .limits = {.low = 0},
     .lossy = "below 0 counts as 0"},
};

}  // namespace

const RowTable weightRows = {"Weights, balance, payload", rows};
