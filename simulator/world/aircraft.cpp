// The aircraft that can be flown: one row each, and what changes when another one is chosen.
#include <cstring>

#include "flight/flight.h"
#include "world/refs.h"
#include "world/world.h"

namespace sim {

namespace {

constexpr Aircraft Jet() {
  return {.name = "jet",
          .title = "Standin Twin Jet",
          .file = "TwinJet.acf",
          .folder = "Aircraft/Standin/Twin Jet",
          .engineType = 5,
          .icao = "A320",
          .engines = 2,
          .tanks = 3,
          .tankShare = {0.27, 0.46, 0.27},
          .emptyKg = 39000,
          .payloadKg = 9000,
          .fuelMaxKg = 18000,
          .fuelStartKg = 9000,
          .maxKg = 75000,
          .wingArea = 125,
          .maxThrust = 105000,
          .fuelFlow = 1.15,
          .vne = 340,
          .circuitKt = 200,
          .approachKt = 145,
          .circuitHeight = 3000 * ftToM - fieldElevation,
          .gearHeight = 2.8,
          .wheelBase = 15,
          .retractable = true,
          .redlineRad = 480,
          .torqueMaxNm = 2000};
}

// What one aircraft of a family calls itself.
struct Naming {
  const char* name = "";
  const char* title = "";
  const char* file = "";
  const char* folder = "";
  const char* signature = "";
  const char* icao = "B738";
};

constexpr Aircraft Named(Aircraft it, const Naming& naming) {
  it.name = naming.name;
  it.title = naming.title;
  it.file = naming.file;
  it.folder = naming.folder;
  it.signature = naming.signature;
  it.icao = naming.icao;
  return it;
}

constexpr Aircraft Boeing(const Naming& naming) {
  Aircraft it = Named(Jet(), naming);
  it.emptyKg = 41400;
  it.payloadKg = 12000;
  it.fuelMaxKg = 20800;
  it.fuelStartKg = 8000;
  it.maxKg = 79000;
  it.maxThrust = 117000;
  it.hydraulicPsi = true;
  return it;
}

constexpr Aircraft Helicopter() {
  return {.name = "helicopter",
          .title = "Standin Helicopter",
          .file = "Helicopter.acf",
          .folder = "Aircraft/Standin/Helicopter",
          .engineType = 2,
          .icao = "B06",
          .engines = 1,
          .tanks = 1,
          .emptyKg = 1300,
          .payloadKg = 300,
          .fuelMaxKg = 450,
          .fuelStartKg = 320,
          .maxKg = 2300,
          .wingArea = 24,
          .dragZero = 0.06,
          .dragLift = 0.06,
          .liftMax = 2.6,
          .flapLift = 0,
          .flapDrag = 0,
          .flapDegrees = 0,
          .gearDrag = 0,
          .brakeDrag = 0,
          .maxThrust = 9000,
          .thrustFade = 0.8,
          .fuelFlow = 0.05,
          .vne = 155,
          .circuitKt = 85,
          .approachKt = 55,
          .circuitHeight = 300,
          .gearHeight = 1.5,
          .wheelBase = 2,
          .redlineRad = 41,
          .torqueMaxNm = 3000};
}

constexpr Aircraft Ec135() {
  Aircraft it = Named(Helicopter(), {.name = "ec135",
                                     .title = "EC135 V5",
                                     .file = "EC135.acf",
                                     .folder = "Aircraft/Helicopters/EC135",
                                     .signature = "rotorsim.ec135.management",
                                     .icao = "EC35"});
  it.engines = 2;
  it.emptyKg = 1650;
  it.fuelMaxKg = 560;
  it.fuelStartKg = 400;
  it.maxKg = 2910;
  it.wingArea = 30;
  it.maxThrust = 6000;
  it.fuelFlow = 0.033;
  return it;
}

const Aircraft rows[] = {
    Jet(),
    {.name = "prop",
     .title = "Standin Single Prop",
     .file = "SingleProp.acf",
     .folder = "Aircraft/Standin/Single Prop",
     .engineType = 0,
     .icao = "C172",
     .engines = 1,
     .tanks = 2,
     .tankShare = {0.5, 0.5},
     .emptyKg = 780,
     .payloadKg = 160,
     .fuelMaxKg = 150,
     .fuelStartKg = 110,
     .maxKg = 1150,
     .wingArea = 16.2,
     .dragZero = 0.032,
     .dragLift = 0.055,
     .flapLift = 0.6,
     .flapDrag = 0.06,
     .flapDegrees = 30,
     .gearDrag = 0,
     .brakeDrag = 0,
     .maxThrust = 3200,
     .thrustFade = 0.9,
     .fuelFlow = 0.011,
     .vne = 160,
     .circuitKt = 100,
     .approachKt = 65,
     .circuitHeight = 305,
     .gearHeight = 1.2,
     .wheelBase = 1.7,
     .mixture = true,
     .redlineRad = 282.7,
     .torqueMaxNm = 500},
    {.name = "turboprop",
     .title = "Standin Twin Turboprop",
     .file = "TwinTurboprop.acf",
     .folder = "Aircraft/Standin/Twin Turboprop",
     .engineType = 2,
     .fixedTurbine = true,
     .icao = "JS31",
     .engines = 2,
     .tanks = 2,
     .tankShare = {0.5, 0.5},
     .emptyKg = 3600,
     .payloadKg = 700,
     .fuelMaxKg = 1650,
     .fuelStartKg = 1000,
     .maxKg = 5700,
     .wingArea = 28,
     .flapDegrees = 35,
     .maxThrust = 12000,
     .thrustFade = 0.85,
     .fuelFlow = 0.06,
     .vne = 260,
     .circuitKt = 140,
     .approachKt = 100,
     .circuitHeight = 457,
     .gearHeight = 1.6,
     .wheelBase = 4.5,
     .retractable = true,
     .redlineRad = 209.4,
     .torqueMaxNm = 3000},
    Helicopter(),
    Boeing({.name = "b738",
            .title = "Boeing B737-800 by Standin",
            .file = "b738.acf",
            .folder = "Aircraft/Laminar Research/Boeing B737-800"}),
    Boeing({.name = "b738-extended",
            .title = "Boeing 737-800X",
            .file = "b738x.acf",
            .folder = "Aircraft/Extra Aircraft/B737-800X"}),
    Boeing({.name = "x737",
            .title = "x737-800",
            .file = "x737_800.acf",
            .folder = "Aircraft/Heavy Metal/x737",
            .signature = "bs.x737.plugin"}),
    Boeing({.name = "ixeg733",
            .title = "Boeing 737-300",
            .file = "B733.acf",
            .folder = "Aircraft/X-Aviation/IXEG 737 Classic",
            .icao = "B733"}),
    Ec135(),
};

}  // namespace

const std::span<const Aircraft> aircraftTable = rows;
const Aircraft* aircraft = &rows[0];

namespace {

const Aircraft* FindAircraft(const char* name) {
  for (const Aircraft& it : aircraftTable) {
    if (std::strcmp(it.name, name) == 0) return &it;
  }
  return nullptr;
}

// A dataref that tells a plug-in what is being flown, and its element i for an aircraft.
struct FigureRow {
  const char* name = "";
  double (*of)(const Aircraft&, int i) = nullptr;
};
const FigureRow figureRows[] = {
    {.name = "sim/aircraft/prop/acf_en_type",
     .of = [](const Aircraft& it, int i) -> double {
       if (i >= it.engines) return 0;
       constexpr int fixedTurbine = 8, longerListFrom = 1140;
       return it.fixedTurbine && age >= longerListFrom ? fixedTurbine : it.engineType;
     }},
    {.name = "sim/aircraft/engine/acf_num_engines",
     .of = [](const Aircraft& it, int) -> double { return it.engines; }},
    {.name = "sim/aircraft/overflow/acf_num_tanks",
     .of = [](const Aircraft& it, int) -> double { return it.tanks; }},
    {.name = "sim/aircraft/overflow/acf_tank_rat",
     .of = [](const Aircraft& it, int i) { return i < it.tanks ? it.tankShare[i] : 0; }},
    {.name = "sim/aircraft/gear/acf_gear_is_skid",
     .of = [](const Aircraft& it, int) -> double { return it.redlineRad < 50; }},
    {.name = "sim/aircraft/view/acf_has_mixture",
     .of = [](const Aircraft& it, int) -> double { return it.mixture; }},
    {.name = "sim/aircraft/view/acf_Vne", .of = [](const Aircraft& it, int) { return it.vne; }},
    {.name = "sim/aircraft/engine/acf_RSC_redline_eng",
     .of = [](const Aircraft& it, int) { return it.redlineRad; }},
    {.name = "sim/aircraft/limits/red_hi_TRQ",
     .of = [](const Aircraft& it, int) { return it.torqueMaxNm / 1.3558; }},
    {.name = "sim/aircraft/weight/acf_m_empty", .of = [](const Aircraft& it, int) { return it.emptyKg; }},
    {.name = "sim/aircraft/weight/acf_m_max", .of = [](const Aircraft& it, int) { return it.maxKg; }},
    {.name = "sim/aircraft/weight/acf_m_fuel_tot", .of = [](const Aircraft& it, int) { return it.fuelMaxKg; }},
    {.name = "sim/flightmodel/weight/m_fixed", .of = [](const Aircraft& it, int) { return it.payloadKg; }},
    {.name = "sim/aircraft/parts/acf_gear_leglen",
     .of = [](const Aircraft& it, int i) { return i < 3 ? it.gearHeight : 0; }},
    {.name = "sim/cockpit2/hydraulics/indicators/hydraulic_pressure_1",
     .of = [](const Aircraft& it, int) -> double { return it.hydraulicPsi ? 3000 : 1; }},
    {.name = "sim/aircraft/view/acf_livery_index", .of = [](const Aircraft&, int) { return 0.0; }},
};

void DescribeAircraft(const Aircraft& it) {
  for (const FigureRow& row : figureRows) {
    DataRef* ref = FindLive(row.name);
    for (int i = 0; ref != nullptr && i < ref->count; i++) StoreElement(ref, i, row.of(it, i));
  }
  if (DataRef* title = FindLive("sim/aircraft/view/acf_descrip")) SetText(title, it.title);
  if (DataRef* livery = FindLive("sim/aircraft/view/acf_livery_path")) SetText(livery, "");
}

}  // namespace

bool WorldKnowsAircraft(const std::string& name) { return FindAircraft(name.c_str()) != nullptr; }

const char* WorldAircraftPluginSignature() { return aircraft->signature; }

void WorldSelectAircraft(const std::string& name) {
  const Aircraft* found = FindAircraft(name.c_str());
  if (found == nullptr) return;
  aircraft = found;
  DescribeAircraft(*aircraft);
  FlightAircraftChanged();
  PublishAddon(*aircraft);
  ShowOwnTarget();
}

}  // namespace sim
