// Fuel: capacity and level of nine tanks, total and density.
//
// Levels are shares of the capacity in whole gallons as it is stored beside them, so that level times
// capacity gives a client the true gallons. The capacities are kept here as well, because clients can
// overwrite some of the stored ones. Until they have been read once, they and the levels are 0.
#include <algorithm>
#include <cmath>
#include <limits>

#include "bridge/catalogue.h"
#include "bridge/catalogue/units.h"

namespace {

enum class Tank { Centre, LeftMain, LeftAux, LeftTip, RightMain, RightAux, RightTip, Centre2, Centre3 };

constexpr size_t maxTanks = 9;
constexpr double fullLevel = 128 * 65536;  // 8388608
constexpr double poundsPerGallon = 6.82;
constexpr double levelPoundsPerKg = 2.205;  // in the levels that clients read
constexpr double gallonsPerKg = 0.323415;   // of the stock aircraft's tanks: 1 / 3.092
constexpr double gallonsPerKgX737 = 0.323254;

int tankCount;
double fullFuel;              // kg in all tanks together
double capacities[maxTanks];  // whole gallons

// Element of a tank in the simulator's arrays; -1 when an aircraft with so many tanks has no such tank.
int ElementOf(Tank tank, int count) {
  constexpr int of3AndMore[maxTanks] = {1, 0, 3, 5, 2, 4, 6, 7, 8};
  if (count <= 0) return -1;
  if (count == 1) return tank == Tank::Centre ? 0 : -1;
  if (count == 2) return tank == Tank::LeftMain ? 0 : tank == Tank::RightMain ? 1 : -1;
  const int element = of3AndMore[static_cast<size_t>(tank)];
  return element < count ? element : -1;
}

struct X737Tank {
  Source kg, share;
};
// The x737 publishes its three main tanks only; the others have no source.
constexpr X737Tank X737TankOf(Tank tank) {
  switch (tank) {
    case Tank::Centre:
      return {Float<"x737/systems/fuel/fuelCenterTank_kg">, Fitting<"x737/systems/fuel/fuelCenterTank_perc">};
    case Tank::LeftMain:
      return {Float<"x737/systems/fuel/fuelLeftMainTank_kg">,
              Fitting<"x737/systems/fuel/fuelLeftMainTank_perc">};
    case Tank::RightMain:
      return {Float<"x737/systems/fuel/fuelRightMainTank_kg">,
              Fitting<"x737/systems/fuel/fuelRightMainTank_perc">};
    default:
      return {};
  }
}

double Gallons(Tank tank) {
  const int element = ElementOf(tank, tankCount);
  return element < 0 ? 0
                     : fullFuel * ReadSource(FloatElement<"sim/aircraft/overflow/acf_tank_rat">(element)) *
                           gallonsPerKg;
}
double GallonsX737(Tank tank) {
  const X737Tank x737 = X737TankOf(tank);
  if (x737.kg.ref == nullptr) return 0;
  const double share = ReadSource(x737.share);
  // An empty tank does not tell its size.
  return share == 0 ? capacities[static_cast<size_t>(tank)] : ReadSource(x737.kg) / share * gallonsPerKgX737;
}

// Of all tanks at once: the arrays' layout hangs on their number. Which aircraft counts is asked here and not
// in the rows, because capacities and levels, of different cycles, share what is found.
void TakeTankSizes() {
  const auto gallonsOf = IsLoaded(AddOn::X737) ? GallonsX737 : Gallons;
  constexpr double most = std::numeric_limits<uint32_t>::max();
  fullFuel = ReadSource(Float<"sim/aircraft/weight/acf_m_fuel_tot">);
  tankCount = ReadInt(Int<"sim/aircraft/overflow/acf_num_tanks">);
  for (size_t tank = 0; tank < maxTanks; ++tank) {
    const double gallons = gallonsOf(static_cast<Tank>(tank));
    capacities[tank] = gallons > 0 ? std::trunc(std::min(gallons, most)) : 0;
  }
}

// A tank whose size is not known is empty, and takes nothing: NaN is set nowhere.
template <Tank tank>
double LevelOf(double kg) {
  const double capacity = capacities[static_cast<size_t>(tank)];
  const double gallons = kg * levelPoundsPerKg / poundsPerGallon;
  return capacity == 0 ? 0 : gallons / capacity * fullLevel;
}
template <Tank tank>
double KgOf(double level) {
  const double capacity = capacities[static_cast<size_t>(tank)];
  if (capacity == 0) return std::numeric_limits<double>::quiet_NaN();
  return std::max(level / fullLevel * capacity * poundsPerGallon * kgPerPound, 0.0);
}

// Where a tank's kilograms stand; without a dataref when the aircraft has no such tank.
Source ContentsOf(Tank tank) {
  const int element = ElementOf(tank, tankCount);
  return element < 0 ? Source{} : FloatElement<"sim/flightmodel/weight/m_fuel">(element);
}

template <Tank tank>
bool ReadLevel(const OffsetRow&, double* value) {
  *value = LevelOf<tank>(ReadSource(ContentsOf(tank)));
  return true;
}

template <Tank tank>
void ApplyLevel(const OffsetRow&, const Staged& staged) {
  SetSource(ContentsOf(tank), KgOf<tank>(staged.number));
}

// What the capacities have in common, and the levels.
template <Tank tank>
constexpr OffsetRow Capacity(OffsetRow row) {
  row.type = Stored::U32;
  row.unit = "US gal";
  row.cycle = Cycle::C313;
  row.prepared = &capacities[static_cast<size_t>(tank)];
  row.prepare = TakeTankSizes;
  constexpr bool isMain = tank == Tank::Centre || tank == Tank::LeftMain || tank == Tank::RightMain;
  if (!isMain) row.elsewhere = "8.60 has three tanks: 0 there";
  return row;
}
template <Tank tank>
constexpr OffsetRow Level(OffsetRow row) {
  row.type = Stored::S32;
  row.unit = "%";
  row.unitScale = 100 / fullLevel;
  row.cycle = Cycle::C59;
  row.inputs = sourcesOf<FloatElement<"sim/flightmodel/weight/m_fuel">(0)>;
  row.variants = variantsOf<[] {
    return std::array{Variant{.addOn = AddOn::X737,
                              .source = X737TankOf(tank).kg,
                              .convert = LevelOf<tank>,
                              .target = X737TankOf(tank).kg,
                              .targetConvert = KgOf<tank>},
                      Variant{.read = ReadLevel<tank>, .apply = ApplyLevel<tank>}};
  }>;
  row.limits = {0, fullLevel};
  row.tolerance = {.steps = 1, .share = 0.00018};
  row.lossy = "reads back 0.017 % higher; an aircraft without this tank ignores it";
  row.note = "8388608 full; a full small tank may read slightly above";
  return row;
}

constexpr OffsetRow rows[] = {
    Capacity<Tank::Centre>({.offset = 0x0B78,
                            .name = "fuel_centre_capacity",
                            .meaning = "capacity of the centre tank",
                            .readOnly = true}),
    Capacity<Tank::LeftMain>({.offset = 0x0B80,
                              .name = "fuel_left_capacity",
                              .meaning = "capacity of the left main tank",
                              .readOnly = true}),
    Capacity<Tank::LeftAux>(
        {.offset = 0x0B88, .name = "fuel_left_aux_capacity", .meaning = "capacity of the left auxiliary tank"}),
    Capacity<Tank::LeftTip>(
        {.offset = 0x0B90, .name = "fuel_left_tip_capacity", .meaning = "capacity of the left tip tank"}),
    Capacity<Tank::RightMain>({.offset = 0x0B98,
                               .name = "fuel_right_capacity",
                               .meaning = "capacity of the right main tank",
                               .readOnly = true}),
    Capacity<Tank::RightAux>({.offset = 0x0BA0,
                              .name = "fuel_right_aux_capacity",
                              .meaning = "capacity of the right auxiliary tank"}),
    Capacity<Tank::RightTip>(
        {.offset = 0x0BA8, .name = "fuel_right_tip_capacity", .meaning = "capacity of the right tip tank"}),
    Capacity<Tank::Centre2>(
        {.offset = 0x1248, .name = "fuel_centre2_capacity", .meaning = "capacity of the second centre tank"}),
    Capacity<Tank::Centre3>(
        {.offset = 0x1250, .name = "fuel_centre3_capacity", .meaning = "capacity of the third centre tank"}),
    {.offset = 0x0AF4,
     .type = Stored::U16,
     .name = "fuel_density",
     .meaning = "fuel weight",
     .unit = "lb/US gal",
     .unitScale = 1.0 / 256,
     .cycle = Cycle::C313,
     .factor = 256,
     .prepared = &poundsPerGallon},
    Level<Tank::Centre>({.offset = 0x0B74, .name = "fuel_centre", .meaning = "level of the centre tank"}),
    Level<Tank::LeftMain>({.offset = 0x0B7C, .name = "fuel_left", .meaning = "level of the left main tank"}),
    Level<Tank::LeftAux>(
        {.offset = 0x0B84, .name = "fuel_left_aux", .meaning = "level of the left auxiliary tank"}),
    Level<Tank::LeftTip>({.offset = 0x0B8C, .name = "fuel_left_tip", .meaning = "level of the left tip tank"}),
    Level<Tank::RightMain>({.offset = 0x0B94, .name = "fuel_right", .meaning = "level of the right main tank"}),
    Level<Tank::RightAux>(
        {.offset = 0x0B9C, .name = "fuel_right_aux", .meaning = "level of the right auxiliary tank"}),
    Level<Tank::RightTip>(
        {.offset = 0x0BA4, .name = "fuel_right_tip", .meaning = "level of the right tip tank"}),
    Level<Tank::Centre2>(
        {.offset = 0x1244, .name = "fuel_centre2", .meaning = "level of the second centre tank"}),
    Level<Tank::Centre3>(
        {.offset = 0x124C, .name = "fuel_centre3", .meaning = "level of the third centre tank"}),
    {.offset = 0x126C,
     .type = Stored::S32,
     .name = "fuel_total",
     .meaning = "total fuel",
     .unit = "lb",
     .cycle = Cycle::C313,
     .source = Float<"sim/flightmodel/weight/m_fuel_total">,
     .factor = poundsPerKg,
     .write = {.target = Float<"sim/flightmodel/weight/m_fuel_total">, .factor = 1 / poundsPerKg},
     .lossy = "the simulator adds the tanks up itself and ignores a write"},
};

}  // namespace

const RowTable fuelRows = {"Fuel", rows};
