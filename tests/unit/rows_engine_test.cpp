// Engine, fuel, weight, light, electric and failure rows against the stand-in simulator. Expectations are
// worked out from the units, not from the rows' factors.
#include <algorithm>
#include <cmath>

#include "bridge/catalogue/throttle_actions.h"
#include "bridge/reader_groups.h"
#include "row_harness.h"

namespace {

using namespace rows;
using EngineRows = Harness;
using enum Cycle;

#define ENGINE "sim/flightmodel/engine/"
#define ACTUATORS "sim/cockpit2/engine/actuators/"
const std::string engine = ENGINE;
const std::string actuators = ACTUATORS;
const std::string cockpit = "sim/cockpit/engine/";
const std::string weight = "sim/flightmodel/weight/";
const std::string failure = "sim/operation/failures/";
const std::string throttleOverride = "sim/operation/override/override_throttles";

// By the number that clients know. The offset memory still shows something else, as right after a change of
// aircraft.
void SetEngineType(int type) {
  Set("sim/aircraft/prop/acf_en_type[0]", type == 0 ? 0 : type == 1 ? 4 : 2);
  const auto other = static_cast<uint8_t>(type == 0 ? 1 : 0);
  CopyToMemory(0x0609, sizeof other, &other);
}

// Element n of an array belongs to engine n + 1.
TEST_F(EngineRows, FamiliesTakeTheirEnginesElements) {
  for (const RowTable* table : {&throttleRows, &engineRows, &iceRows}) {
    for (const OffsetRow& row : table->rows) {
      if (row.member == 0) continue;
      for (const Source& source : {row.source, row.write.target}) {
        const bool isArray = IsArray(source.accessor) || source.accessor == Accessor::Any;
        EXPECT_EQ(source.element, isArray ? row.member - 1 : 0) << row.name << row.member;
      }
    }
  }
}

// --- Readings -----------------------------------------------------------------------------------------

TEST_F(EngineRows, ReadsOneDatarefEach) {
  // 16384 is 100 %, so 95.5 % is 15646.72 and the rest is cut; 400 % is more than 16 bits hold.
  CheckReads(ENGINE "ENGN_N1_", C1, {{0x0898, U16, 95.5, 15646}, {0x2000, F64, 95.5, 95.5, 1e-03}});
  CheckReads(ENGINE "ENGN_N1_[3]", C1, {{0x0A60, U16, 100, 16384}, {0x0A60, U16, -1, 0}});
  CheckReads(ENGINE "ENGN_N1_[2]", C1,
             {{0x09C8, U16, 401, 65535}, {0x09C8, U16, NAN, 0}, {0x2200, F64, NAN, 0}});
  CheckReads(ENGINE "ENGN_N2_[1]", C1, {{0x092E, U16, 50, 8192}, {0x2118, F64, 62.5, 62.5, 6e-04}});
  // One kilogram a second is 3600 kg an hour, 2.2046 lb each.
  CheckReads(ENGINE "ENGN_FF_", C1, {{0x08A0, U16, 0.5, 3968}, {0x0918, F64, 0.5, 3968.3, 4e-02}});
  CheckReads(ENGINE "ENGN_FF_[3]", C1, {{0x0A68, U16, 10, 65535}, {0x2360, F64, 10, 79366, 8e-01}});
  CheckReads(ENGINE "ENGN_oil_temp_c[1]", C1, {{0x0950, S16, -70, -8192}, {0x0950, S16, 300, 32767}});
  CheckReads(ENGINE "ENGN_oil_press_psi[2]", C1,
             {{0x09EA, U16, 55, 16384}, {0x09EA, U16, 230, 65535}, {0x39E0, F64, 10, 1440, 1e-02}});
  CheckReads(ENGINE "ENGN_EPR", C1, {{0x08BC, U16, 1.2, 12288}});
  CheckReads(ENGINE "ENGN_EPR[1]", C1, {{0x2130, F64, 1.5, 1.5, 2e-05}});
  CheckReads(ENGINE "ENGN_EGT_c", C1, {{0x08BE, S16, 860, 16383}});
  CheckReads(ENGINE "ENGN_EGT_c[1]", C1, {{0x3AB0, F64, 100, 671.67, 7e-03}});
  CheckReads(ENGINE "ENGN_ITT_c", C1, {{0x2038, F64, -273.15, 0, 1e-4}});
  CheckReads(ENGINE "ENGN_ITT_c[1]", C1, {{0x2138, F64, 500, 1391.67, 1e-02}});
  CheckReads("sim/cockpit2/engine/indicators/MPR_in_hg", C1, {{0x08C0, U16, 40, 40960}});
  // Standard pressure, 29.92 inches, is 2116.2 pounds per square foot.
  CheckReads("sim/cockpit2/engine/indicators/MPR_in_hg[1]", C1, {{0x3728, F64, 29.92, 2116.13, 2e-02}});
  CheckReads("sim/cockpit2/engine/indicators/oil_quantity_ratio[3]", C313, {{0x0A98, S32, 0.75, 12288}});
  CheckReads("sim/cockpit2/hydraulics/indicators/hydraulic_pressure_1", C13, {{0x0970, S32, 0.5, 6000}});
  CheckReads("sim/cockpit2/hydraulics/indicators/hydraulic_pressure_1", C1,
             {{0x0AA0, S32, 3000, 12000},  // psi
              {0x0AA0, S32, 2, 24000},
              {0x0AA0, S32, 2.001, 8}});
  CheckReads("sim/cockpit/misc/hydraulic_quantity", C313, {{0x0AA4, S32, 0.5, 8192}});
  CheckReads(ENGINE "ENGN_TRQ[3]", C1, {{0x0AE8, S32, -1000, -740}});
  CheckReads(ENGINE "POINT_thrust[1]", C1,
             {{0x214C, F64, 10000, 2248.09, 2e-02}, {0x2510, F64, 10000, 2250.11, 2e-02}});
  // 40 revolutions a second.
  CheckReads(ENGINE "POINT_tacrad", C1, {{0x2400, F64, 251.32741, 2400, 2e-02}});
  CheckReads("sim/cockpit2/engine/indicators/engine_speed_rpm[1]", C1, {{0x1070A, U16, 2450.5, 2450}});
  CheckReads(ENGINE "ENGN_running[2]", C7, {{0x09C4, U16, 1, 1}});
  CheckReads(ENGINE "ENGN_running[3]", C13, {{0x0A5C, U16, 1, 1}});
  CheckReads("sim/cockpit/engine/igniters_on[2]", C13, {{0x228C, S32, 1, 1}});
  CheckReads(ACTUATORS "mixture_ratio[1]", C13, {{0x3594, S32, 0.01, 1}, {0x3594, S32, 0, 0}});
  CheckReads(ENGINE "ENGN_mixt", C7, {{0x0890, U16, 1, 16383}, {0x0890, U16, 0.5, 8191}});
  CheckReads(ENGINE "ENGN_mixt[1]", C7, {{0x0928, U16, 1, 16383}, {0x0928, U16, 0.5, 8191}});
  CheckReads(ENGINE "ENGN_mixt[3]", C7, {{0x0A58, U16, 1, 16384}});
  CheckReads("sim/aircraft/engine/acf_num_engines", C313, {{0x0AEC, U16, 4, 4}});
  CheckReads("sim/cockpit2/ice/ice_inlet_heat_on_per_engine[2]", C59, {{0x09E2, U16, 1, 1}});
  CheckReads("sim/cockpit/switches/pitot_heat_on", C31Navigation, {{0x029C, U8, 1, 1}});
  CheckReads("sim/cockpit2/switches/wiper_speed", C31, {{0x6D88, U8, 3, 3}});
  CheckReads("sim/cockpit2/electrical/APU_N1_percent", C7, {{0x0B54, F32, 98.5, 98.5, 1e-03}});
  CheckReads("sim/cockpit/engine/APU_running", C7, {{0x0B58, F32, 1, 1, 1e-05}});
  CheckReads("sim/cockpit/misc/vacuum", C157, {{0x0B18, F64, 4.5, 4.5, 5e-05}});
  CheckReads("sim/cockpit/pressure/cabin_altitude_actual_m_msl", C1, {{0x0318, S32, -1200.9, -1200}});
  CheckReads("sim/weather/runway_friction", C59, {{0x6DA8, U8, 2, 2}});
  CheckReads("sim/flightmodel/weight/m_total", C157, {{0x30C0, F64, 1000, 2204.6, 2e-02}});
  CheckReads("sim/flightmodel/weight/m_fuel_total", C313, {{0x126C, S32, 1000, 2204}});
  CheckReads("sim/aircraft/weight/acf_m_max", C313, {{0x1334, S32, 1000, 564377}});
}

TEST_F(EngineRows, SharesOfLimitsSurviveAnAircraftWithoutLimits) {
  // Newton metres: 500 foot-pounds at 1.35; 20 turns a second of 40.
  for (const double present : {1.0, 0.0}) {
    SetAll({{engine + "ENGN_TRQ[1]", 675},
            {"sim/aircraft/limits/red_hi_TRQ", present * 1000},
            {"sim/cockpit2/engine/indicators/prop_speed_rpm[0]", 1200},
            {"sim/aircraft/engine/acf_RSC_redline_eng", present * 251.32741}});
    Refresh(C1);
    ExpectShown({{0x2128, F64, present / 2, 1e-6}, {0x2408, F64, present / 2, 1e-6}});
  }
}

// Carburettor, injection, free turbine, electric, two jets, two rockets, fixed turbine, unknown.
TEST_F(EngineRows, TranslatesTheEngineType) {
  const int expected[] = {0, 0, 5, 0, 1, 1, 4, 4, 5, 1};
  for (int type = 0; type < 10; type++)
    CheckReads("sim/aircraft/prop/acf_en_type[0]", C313, {{0x0609, U8, double(type), double(expected[type])}});
}

// --- Throttles ----------------------------------------------------------------------------------------

TEST_F(EngineRows, ThrottlesFollowLeverOverrideAndReverser) {
  for (const char* element : {"[0]", "[1]", "[2]", "[3]"}) Set(actuators + "throttle_ratio" + element, 0.5);
  SetAll({{engine + "ENGN_thro_use[0]", 0.25},
          {engine + "ENGN_thro_use[2]", 0.25},
          {"sim/cockpit/warnings/annunciators/reverse", 0b0101}});
  Refresh(C1);
  ExpectShown({{0x088C, S16, -2048},
               {0x0924, S16, 8192},
               {0x09BC, S16, -2048},
               {0x3334, S16, -2048},
               {0x0A54, S16, 8192},
               {0x3336, S16, 8192}});
  Set(throttleOverride, 1);
  Refresh(C1);
  ExpectShown({{0x088C, S16, -1024}}, "what the engine gets");
  ExpectShown({{0x09BC, S16, -2048}}, "engines 3 and 4 show the lever");
}

TEST_F(EngineRows, ThrottleWritesChooseRatioAndPropMode) {
  struct Case {
    int value, modeBefore;
    double ratio;
    int modeAfter;
  };
  const Case cases[] = {
      {16384, 1, 1, 1}, {8192, 3, 0.5, 1},   {0, 3, 0, 1},     {4096, 0, 0.25, 0}, {4096, 2, 0.25, 2},
      {32767, 1, 1, 1}, {-1024, 1, 0.25, 3}, {-4096, 3, 1, 3}, {-32768, 0, 1, 3},
  };
  const uint32_t offsets[] = {0x088C, 0x0924, 0x09BC, 0x0A54};
  for (int n = 0; n < 4; n++) {
    const std::string element = "[" + std::to_string(n) + "]";
    for (const Case& c : cases) {
      Set(actuators + "throttle_ratio" + element, 0.9);
      Set(engine + "ENGN_thro_use" + element, 0.9);
      Set(engine + "ENGN_propmode" + element, c.modeBefore);
      WriteNew(offsets[n], S16, c.value);
      EXPECT_NEAR(Get(actuators + "throttle_ratio" + element), c.ratio, 1e-6) << n << ": " << c.value;
      EXPECT_NEAR(Get(engine + "ENGN_thro_use" + element), 0.9, 1e-6) << "not overridden";
      EXPECT_EQ(Get(engine + "ENGN_propmode" + element), c.modeAfter) << n << ": " << c.value;
    }
    Set(throttleOverride, 1);
    WriteNew(offsets[n], S16, -2048);
    EXPECT_NEAR(Get(engine + "ENGN_thro_use" + element), 0.5, 1e-6);
    Set(throttleOverride, 0);
  }
}

TEST_F(EngineRows, DirectThrottlesPassTheCutOff) {
  WriteNew(0x0932, S16, 4096);
  Set(throttleOverride, 1);
  WriteNew(0x0932, S16, 8192);
  WriteNew(0x09CA, S16, -1024);
  WriteNew(0x0A62, S16, -32768);
  ExpectAll({{actuators + "throttle_ratio[1]", 0.25},
             {engine + "ENGN_thro_use[1]", 0.5},
             {engine + "ENGN_thro[2]", -0.25},
             {engine + "ENGN_thro[3]", -1}});
}

TEST_F(EngineRows, IxegLeversTakeSignedRatios) {
  Restart("ixeg733");
  Set(actuators + "throttle_ratio[2]", 0);
  WriteNew(0x088C, S16, -2048);
  WriteNew(0x0924, S16, 32767);
  ExpectAll({{"ixeg/733/hardware/tavrix_thro1", -0.5}, {"ixeg/733/hardware/tavrix_thro2", 1}});
  Restart("ixeg733", {"ixeg/733/hardware/tavrix_thro1"});  // without inputs of its own
  CheckWrites(ACTUATORS "throttle_ratio[0]", {{0x088C, S16, 4096, 0.25}});
}

TEST_F(EngineRows, MixtureStandsWhereTheAircraftHasIt) {
  CheckWrites(ENGINE "ENGN_mixt[1]", {{0x0928, U16, 16383, 1}});
  Restart("x737");
  CheckWrites("x737/cockpit/tq/rightCutoffLeverPos", {{0x0928, U16, 65535, 1}});
  CheckReads("x737/cockpit/tq/rightCutoffLeverPos", C7, {{0x0928, U16, 0.5, 8191}});
  Restart("b738-extended");
  CheckCalls({{0x0928, U16, 0, "begin laminar/B738/engine/mixture2_cutoff"}, {0x0928, U16, 8191, ""}});
}

// --- Magnetos -----------------------------------------------------------------------------------------

TEST_F(EngineRows, PistonMagnetosHoldTheStarterUntilTheNextPosition) {
  SetEngineType(0);
  CheckCalls({{0x092A, U16, 1, "once sim/magnetos/magnetos_right_2"},
              {0x092A, U16, 2, "once sim/magnetos/magnetos_left_2"},
              {0x092A, U16, 4, "once sim/magnetos/magnetos_both_2; press 3"},
              {0x092A, U16, 4, "once sim/magnetos/magnetos_both_2"},
              {0x092A, U16, 3, "release 3; once sim/magnetos/magnetos_both_2"},
              {0x092A, U16, 0, "once sim/magnetos/magnetos_off_2"},
              {0x092A, U16, 5, ""},
              {0x092A, U16, 4, "once sim/magnetos/magnetos_both_2; press 3"},
              {0x092A, U16, 9, "release 3"},
              {0x0A5A, U16, 4, "once sim/magnetos/magnetos_both_4; press 5"}});
  ReleaseStarters();
  EXPECT_EQ(Calls(), "release 5");
  ReleaseStarters();
  EXPECT_EQ(Calls(), "");
}

TEST_F(EngineRows, TurbineSwitchesStartWithIgniters) {
  SetEngineType(5);
  CheckCalls({{0x0892, U16, 1, "press 2"}, {0x0892, U16, 3, ""}});  // there is no position 3
  EXPECT_EQ(Get(cockpit + "igniters_on[0]"), 1);
  CheckCalls({{0x0892, U16, 2, "release 2"}, {0x0892, U16, 0, ""}});
  EXPECT_EQ(Get(cockpit + "igniters_on[0]"), 0);
}

TEST_F(EngineRows, MagnetoReadingDependsOnTheEngineType) {
  struct Case {
    int type, key;
    double starter;
    int expected;
  };
  const Case cases[] = {{0, 0, 0, 0}, {0, 1, 0, 2}, {0, 2, 0, 1}, {0, 3, 0, 3},  {0, 3, 0.5, 4},
                        {1, 0, 0, 0}, {1, 3, 0, 2}, {5, 1, 0, 2}, {5, 0, 12, 1}, {0, 7, 0, 0}};
  for (const Case& c : cases) {
    SetEngineType(c.type);
    Set(cockpit + "ignition_on[2]", c.key);
    Set(cockpit + "starter_duration[2]", c.starter);
    Refresh(C13);
    EXPECT_EQ(ReadAs(U16, 0x09C2), c.expected) << c.type << " " << c.key << " " << c.starter;
    ExpectShown({{0x0508, U8, c.starter > 0 ? 1.0 : 0}});
  }
}

// --- Plain writes -------------------------------------------------------------------------------------

TEST_F(EngineRows, WritesReachTheirDatarefs) {
  CheckWrites(ENGINE "ENGN_mixt[3]", {{0x0A58, U16, 8192, 0.5, 5e-06}, {0x0A58, U16, 65535, 1, 1e-05}});
  CheckWrites(ACTUATORS "mixture_ratio[1]", {{0x3594, S32, -7, 1, 1e-05}, {0x3594, S32, 0, 0, 1e-06}});
  CheckWrites("sim/cockpit/engine/igniters_on[3]", {{0x238C, S32, 256, 1, 0, 3}});
  CheckWrites("sim/cockpit/engine/igniters_on[1]", {{0x6D8F, U8, 200, 1, 0, 3}});
  CheckWrites("sim/cockpit2/ice/ice_inlet_heat_on_per_engine[3]", {{0x0A7A, U16, 2, 1, 0, 3}});
  CheckWrites("sim/cockpit/switches/anti_ice_surf_heat_right", {{0x6F0C, U8, 1, 1, 0, 3}});
  CheckWrites("sim/cockpit/electrical/generator_on[7]", {{0x3101, U8, 1, 1, 0, 3}});
  CheckWrites("sim/cockpit/engine/fuel_pump_on", {{0x3104, U8, 1, 1, 0, 3}});
  CheckWrites("sim/cockpit/electrical/battery_on", {{0x3102, U8, 9, 1, 0, 3}});
  CheckWrites("sim/cockpit/engine/APU_switch", {{0x6DA9, U8, 2, 2, 0, 3}});
  CheckWrites("sim/operation/sound/sound_on", {{0x0B20, U16, 0, 0, 0, 1}});
  CheckWrites("sim/weather/runway_friction", {{0x6DA8, U8, 200, 2, 2e-05}});
  CheckWrites("sim/cockpit/pressure/cabin_altitude_set_m_msl", {{0x031C, S32, -500, -500, 5e-03}});
  CheckWrites("sim/aircraft/weight/acf_m_max", {{0x1334, S32, 2204.6 * 256, 1000, 1e-02}});
  CheckWrites("sim/flightmodel/weight/m_fixed",
              {{0x1400, F64, 2204.6, 1000, 1e-02}, {0x1400, F64, -5, 0, 1e-06}});
  CheckWrites("sim/flightmodel/misc/cgz_ref_to_default", {{0x2EF8, F64, -0.25, -0.25, 3e-06}});
  WriteNew(0x2EF8, F64, 2e88);  // would be infinite there
  EXPECT_NEAR(Get("sim/flightmodel/misc/cgz_ref_to_default"), -0.25, 3e-6);
  CheckWrites("sim/flightmodel/weight/m_jettison", {{0x16024, F32, -1, 0, 1e-06}});
  CheckWrites("sim/operation/failures/rel_g_comrad1", {{0x0B68, U8, 1, 6}});
  CheckWrites("sim/operation/failures/rel_ss_asi", {{0x0B65, U8, 1, 6}, {0x0B65, U8, 0, 0, 0, 6}});
  Set(weight + "m_fixed", 50);
  EXPECT_EQ(rows::Write<double>(0x1400, NAN), 1);
  RunWriters();
  EXPECT_EQ(Get(weight + "m_fixed"), 50) << "no number is no weight";
}

// Clients write the float 1.0 or the integer 1: the latter is a denormal float.
TEST_F(EngineRows, ApuStartsAtAnyBitAndThenStaysOn) {
  const char* apu = "sim/cockpit/engine/APU_switch";
  Set(cockpit + "APU_running", 0);
  CheckWrites(apu, {{0x0B58, S32, 1, 2}});
  Set(cockpit + "APU_running", 1);
  CheckWrites(apu, {{0x0B58, F32, 1, 1}, {0x0B58, F32, 0, 0, 0, 1}});
}

TEST_F(EngineRows, LightWordAndSingleLightsAgree) {
  const std::string lights = "sim/cockpit2/switches/";
  WriteNew(0x0D0C, U16, 0xFFD5);  // bits 0, 2, 4 and all without a light; of the beacon's pair the strobe alone
  Refresh(C7);
  ExpectShown({{0x0D0C, U16, 0x15}, {0x0280, U8, 1}, {0x0281, U8, 1}, {0x028C, U16, 1}});
  ExpectAll({{lights + "beacon_on", 0}, {lights + "taxi_light_on", 0}});
  WriteNew(0x0281, U8, 0);
  WriteNew(0x028C, U16, 0);
  Refresh(C7);
  ExpectShown({{0x0D0C, U16, 1}});
  Restart("x737");
  Set(lights + "beacon_on", 0);
  WriteNew(0x0281, U8, 1);
  ExpectAll(
      {{"x737/systems/exteriorLights/beaconLightSwitch", 1}, {"sim/cockpit/electrical/strobe_lights_on", 1}});
}

// --- Fuel, weights, balance ---------------------------------------------------------------------------

void SetTanks(int count, double kg) {
  Set("sim/aircraft/overflow/acf_num_tanks", count);
  Set("sim/aircraft/weight/acf_m_fuel_tot", kg);
  for (int i = 0; i < 9; i++) {
    Set("sim/aircraft/overflow/acf_tank_rat[" + std::to_string(i) + "]", i < count ? 1.0 / count : 0);
  }
  Refresh(C313);
}

TEST_F(EngineRows, TanksAreChosenByTheirNumber) {
  struct Case {
    int tanks;
    uint32_t level;
    int element;  // -1: the aircraft has no such tank
  };
  const Case cases[] = {{1, 0x0B74, 0},  {1, 0x0B7C, -1}, {2, 0x0B7C, 0},  {2, 0x0B94, 1},
                        {2, 0x0B74, -1}, {3, 0x0B7C, 0},  {3, 0x0B74, 1},  {3, 0x0B94, 2},
                        {3, 0x0B84, -1}, {5, 0x0B9C, 4},  {5, 0x0B8C, -1}, {9, 0x0B8C, 5},
                        {9, 0x0BA4, 6},  {9, 0x1244, 7},  {9, 0x124C, 8},  {0, 0x0B74, -1}};
  for (const Case& c : cases) {
    SetTanks(c.tanks, 3092.0 * (c.tanks == 0 ? 1 : c.tanks));  // 1000 US gallons in each
    for (int i = 0; i < 9; i++) Set(weight + "m_fuel[" + std::to_string(i) + "]", 100 + i);
    WriteNew(c.level, S32, 128 * 65536);
    Refresh(C59);
    // A gallon weighs 6.82 lb. Full is 8388608; the two pound factors do not quite cancel.
    const uint32_t capacity = c.level + 4;
    EXPECT_NEAR(ReadAs(U32, capacity), c.element < 0 ? 0 : 1000, 1) << c.tanks << " " << c.level;
    EXPECT_NEAR(ReadAs(S32, c.level), c.element < 0 ? 0 : 8388608, 1700) << c.tanks << " " << c.level;
    for (int i = 0; i < 9; i++) {
      EXPECT_NEAR(Get(weight + "m_fuel[" + std::to_string(i) + "]"), i == c.element ? 3093.5 : 100 + i, 3.2);
    }
  }
  SetTanks(1, 3092);
  WriteNew(0x0B74, S32, -1);
  EXPECT_EQ(Get(weight + "m_fuel[0]"), 0);
  ExpectShown({{0x0AF4, U16, 1745}});
}

TEST_F(EngineRows, X737TanksTellTheirSizeUnlessEmpty) {
  Restart("x737");
  const std::string tank = "x737/systems/fuel/fuelCenterTank_";
  Set(tank + "kg", 1546.78);  // half of 1000 US gallons
  Set(tank + "perc", 0.5);
  SetTanks(3, 9276);
  ExpectShown({{0x0B78, U32, 1000, 1}});
  ExpectShown({{0x0B88, U32, 0}}, "tanks without a source");
  Set(tank + "kg", 0);
  Set(tank + "perc", 0);
  Refresh(C313);
  ExpectShown({{0x0B78, U32, 1000, 1}}, "the last known size");
  WriteNew(0x0B74, S32, 64 * 65536);
  EXPECT_NEAR(Get(tank + "kg"), 500 * 6.82 * 0.453592, 2);
}

TEST_F(EngineRows, ZeroFuelWeightNeverTakesTheEmptyWeightAway) {
  Set("sim/aircraft/weight/acf_m_empty", 1000);
  Set(weight + "m_fixed", 0);
  WriteNew(0x3BFC, S32, 2646 * 256);  // 1200.2 kg
  EXPECT_NEAR(Get(weight + "m_fixed"), 200.2, 0.1);
  Refresh(C313);
  ExpectShown({{0x3BFC, S32, 2646 * 256, 10}});
  WriteNew(0x3BFC, S32, 100 * 256);
  EXPECT_EQ(Get(weight + "m_fixed"), 0);
}

TEST_F(EngineRows, BalanceOfThe737IsAShareOfItsChord) {
  Set("sim/flightmodel/misc/cgz_ref_to_default", 0.125);
  for (const char* load : {"m_fixed", "m_fuel[0]", "m_fuel[1]", "m_fuel[2]"}) Set(weight + load, 0);
  Refresh(C59);
  ExpectShown({{0x2EF8, F64, 0.125}});
  loadedAddOns[static_cast<size_t>(AddOn::B738Stock)] = true;
  BindReaders();
  Refresh(C59);
  ExpectShown({{0x2EF8, F64, 0.95 / 3.95732, 1e-5}}, "empty: 0.95 m behind the leading edge");
  Set(weight + "m_fuel[1]", 1e9);
  Refresh(C59);
  ExpectShown({{0x2EF8, F64, 0.06}}, "only the centre tank counts: the forward limit");
}

// --- Failures -----------------------------------------------------------------------------------------

TEST_F(EngineRows, FailureWordsShowAndSetTheInoperativeCode) {
  WriteNew(0x0B6B, U8, 0b1010);
  ExpectAll({{failure + "rel_engfai0", 0}, {failure + "rel_engfai1", 6}});
  Set(failure + "rel_engfai3", 1);  // fails some day: works now
  Refresh(C13);
  ExpectShown({{0x0B6B, U8, 0b0010}, {0x3BE6, U16, 1 << 7}});
  SetAll({{failure + "rel_adf2", 6}, {failure + "rel_cop_vvi", 6}});
  Refresh(C13);
  ExpectShown({{0x3BE6, U16, 0x8081}});
  WriteNew(0x3BD6, U16, 1 << 3 | 1 << 14);
  Refresh(C13);
  ExpectShown({{0x3BE6, U16, 0x4008}}, "clear bits repair");
  ExpectAll({{failure + "rel_vacuum2", 6}, {failure + "rel_cop_ahz", 6}, {failure + "rel_engfai1", 0}});
}

TEST_F(EngineRows, FailureRequestsCanBeRepeated) {
  CheckCalls({{0x6DA4, U32, 256, "press 84; release 84"}});
  ExpectShown({{0x6DA4, U32, 0}});
  CheckCalls({{0x6DA4, U32, 0, ""}});
  const std::string all = failure + "failures";
  sim::Withdraw(sim::FindLive(all));
  sim::Publish(all.c_str(), sim::Kind::IntArray, 70, true);
  SetAll({{all + "[0]", 1}, {all + "[2]", 3}});
  WriteNew(0x6DAA, U8, 69);
  ExpectAll({{all + "[69]", 6}});
  ExpectShown({{0x6DAA, U8, 0}});
  WriteNew(0x6DAA, U8, 255);  // beyond the array
  WriteNew(0x6DAA, U8, 0);
  ExpectAll({{all + "[0]", 0}, {all + "[2]", 0}, {all + "[69]", 0}});
}

}  // namespace
