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

constexpr Aircraft Boeing() {
  Aircraft it = Jet();
  it.emptyKg = 41400;
  it.payloadKg = 12000;
  it.fuelMaxKg = 20800;
  it.fuelStartKg = 8000;
  it.maxKg = 79000;
  it.maxThrust = 117000;
  return it;
}

constexpr Aircraft Boeing(const char* name, const char* title, const char* file, const char* folder,
                          const char* signature) {
  Aircraft it = Boeing();
  it.name = name;
  it.title = title;
  it.file = file;
  it.folder = folder;
  it.signature = signature;
  return it;
}

constexpr Aircraft Helicopter() {
  return {.name = "helicopter",
          .title = "Standin Helicopter",
          .file = "Helicopter.acf",
          .folder = "Aircraft/Standin/Helicopter",
          .engineType = 2,
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
  Aircraft it = Helicopter();
  it.name = "ec135";
  it.title = "EC135 V5";
  it.file = "EC135.acf";
  it.folder = "Aircraft/Helicopters/EC135";
  it.signature = "rotorsim.ec135.management";
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

}  // namespace

const Aircraft aircraftTable[] = {
    Jet(),
    {.name = "prop",
     .title = "Standin Single Prop",
     .file = "SingleProp.acf",
     .folder = "Aircraft/Standin/Single Prop",
     .engineType = 0,
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
    Boeing("b738", "Boeing B737-800 by Standin", "b738.acf", "Aircraft/Laminar Research/Boeing B737-800", ""),
    Boeing("b738-extended", "Boeing 737-800X", "b738x.acf", "Aircraft/Extra Aircraft/B737-800X", ""),
    Boeing("x737", "x737-800", "x737_800.acf", "Aircraft/Heavy Metal/x737", "bs.x737.plugin"),
    Boeing("ixeg733", "Boeing 737-300", "B733.acf", "Aircraft/X-Aviation/IXEG 737 Classic", ""),
    Ec135(),
};
const int aircraftCount = static_cast<int>(sizeof aircraftTable / sizeof aircraftTable[0]);
const Aircraft* aircraft = &aircraftTable[0];

namespace {

const Aircraft* FindAircraft(const char* name) {
  for (const Aircraft& it : aircraftTable) {
    if (std::strcmp(it.name, name) == 0) return &it;
  }
  return nullptr;
}

void SetInt(const char* name, int value, int elements = 1) {
  DataRef* ref = FindLive(name);
  for (int i = 0; ref != nullptr && i < elements; i++) I(ref, i) = value;
}

void SetFloat(const char* name, double value) {
  DataRef* ref = FindLive(name);
  if (ref != nullptr) F(ref) = static_cast<float>(value);
}

void SetName(const char* name, const char* text) {
  DataRef* ref = FindLive(name);
  if (ref != nullptr) SetText(ref, text);
}

// The datarefs that tell a plug-in what is being flown.
void DescribeAircraft(const Aircraft& it) {
  for (int i = 0; i < 8; i++) {
    if (DataRef* types = FindLive("sim/aircraft/prop/acf_en_type"))
      I(types, i) = i < it.engines ? it.engineType : 0;
  }
  SetInt("sim/aircraft/engine/acf_num_engines", it.engines);
  SetInt("sim/aircraft/overflow/acf_num_tanks", it.tanks);
  if (DataRef* share = FindLive("sim/aircraft/overflow/acf_tank_rat")) {
    for (int i = 0; i < 9; i++) F(share, i) = static_cast<float>(i < it.tanks ? it.tankShare[i] : 0);
  }
  SetInt("sim/aircraft/gear/acf_gear_is_skid", it.redlineRad < 50 ? 1 : 0);
  SetInt("sim/aircraft/view/acf_has_mixture", it.mixture ? 1 : 0);
  SetFloat("sim/aircraft/view/acf_Vne", it.vne);
  SetFloat("sim/aircraft/engine/acf_RSC_redline_eng", it.redlineRad);
  SetFloat("sim/aircraft/limits/red_hi_TRQ", it.torqueMaxNm / 1.3558);
  SetFloat("sim/aircraft/weight/acf_m_empty", it.emptyKg);
  SetFloat("sim/aircraft/weight/acf_m_max", it.maxKg);
  SetFloat("sim/aircraft/weight/acf_m_fuel_tot", it.fuelMaxKg);
  SetFloat("sim/flightmodel/weight/m_fixed", it.payloadKg);
  if (DataRef* legs = FindLive("sim/aircraft/parts/acf_gear_leglen")) {
    for (int i = 0; i < 10; i++) F(legs, i) = static_cast<float>(i < 3 ? it.gearHeight : 0);
  }
  SetName("sim/aircraft/view/acf_descrip", it.title);
  SetName("sim/aircraft/view/acf_livery_path", "");
  SetInt("sim/aircraft/view/acf_livery_index", 0);
}

}  // namespace

int WorldKnowsAircraft(const std::string& name) { return FindAircraft(name.c_str()) != nullptr ? 1 : 0; }

const char* WorldAircraftPluginSignature() { return aircraft->signature; }

void WorldSelectAircraft(const std::string& name) {
  const Aircraft* found = FindAircraft(name.c_str());
  if (found == nullptr) return;
  aircraft = found;
  DescribeAircraft(*aircraft);
  FlightAircraftChanged();
  PublishAddon(*aircraft);
}

}  // namespace sim
