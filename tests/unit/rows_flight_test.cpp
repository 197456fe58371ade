// Time, position, attitude, speeds, forces, autopilot, flight controls, slew: what clients read for a state
// of the simulator, and what the simulator gets from a client's write. Expected values come from the units
// (a quarter turn, a hundred knots), not from the rows.
#include <cmath>
#include <filesystem>
#include <limits>
#include <numbers>

#include "base/log.h"
#include "bridge/catalogue/reposition.h"
#include "bridge/slew.h"
#include "row_harness.h"
#include "test_tools.h"

namespace {

using namespace rows;
using enum Cycle;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double pi = std::numbers::pi;
constexpr double quarterTurn = 0x40000000;

#define POSITION "sim/flightmodel/position/"
#define AUTOPILOT "sim/cockpit/autopilot/"
#define CONTROLS "sim/flightmodel/controls/"
#define LAMINAR "laminar/B738/"
#define PANEL "x737/systems/"

using FlightRows = Harness;

// --- Readers ----------------------------------------------------------------------------------------

TEST_F(FlightRows, ReadsSimpleValues) {
  CheckReads(
      "sim/time/local_time_sec", C13,
      {{0x0238, U8, 45296.9, 12}, {0x0239, U8, 45296.9, 34}, {0x023A, U8, 45296.9, 56}, {0x0238, U8, nan, 0}});
  CheckReads("sim/time/zulu_time_sec", C31Navigation, {{0x023B, U8, 86399, 23}, {0x023C, U8, 86399, 59}});
  CheckReads("sim/time/local_date_days", C313,
             {{0x023E, U16, 0, 1},
              {0x0248, U16, 58, 0},
              {0x0248, U16, 59, 1},
              {0x0248, U16, 151, 2},
              {0x0248, U16, 242, 2},
              {0x0248, U16, 243, 3},
              {0x0248, U16, 334, 0}});
  CheckReads("sim/operation/misc/frame_rate_period", C31Navigation,
             {{0x0274, U16, 0.02, 655}, {0x0274, U16, 3, 65535}});
  CheckReads("sim/time/sim_speed", C31, {{0x0C1A, U16, 2, 512}});
  CheckReads(POSITION "theta", C1,
             {{0x0578, S32, 90, -quarterTurn}, {0x0578, S32, nan, 0}, {0x2F70, F64, 12.5, -12.5}});
  // The second one is a step short of half a turn.
  CheckReads(POSITION "phi", C1,
             {{0x057C, S32, -45, quarterTurn / 2}, {0x057C, S32, -180, 2147483647}, {0x2F78, F64, -30, 30}});
  CheckReads(POSITION "psi", C1,
             {{0x0580, U32, 90, quarterTurn}, {0x0580, U32, -90, 3 * quarterTurn}, {0x0580, U32, 360, 0}});
  CheckReads(POSITION "magnetic_variation", C313, {{0x02A0, S16, 90, -16384}});
  CheckReads(POSITION "y_agl", C1, {{0x31E4, S32, 100, 6553600}, {0x31E4, S32, 40000, 2147483647}});
  CheckReads(POSITION "true_airspeed", C1, {{0x02B8, S32, 51.44444, 12800, 1}});
  CheckReads(POSITION "indicated_airspeed", C1, {{0x02BC, S32, 100, 12800}, {0x02BC, S32, nan, 0}});
  CheckReads(POSITION "vh_ind", C1,
             {{0x02C8, S32, -5, -1280}, {0x0842, S16, -5, 300}, {0x0842, S16, 600, -32768}});
  CheckReads(POSITION "vh_ind_fpm", C1, {{0x31A0, F64, 600, 10, 1e-9}});
  CheckReads("sim/flightmodel/misc/machno", C1, {{0x11C6, U16, 0.75, 15360}, {0x11C6, U16, -1, 0}});
  CheckReads("sim/flightmodel/misc/slip", C1, {{0x036E, S8, 1, -30}, {0x036E, S8, 10, -128}});
  CheckReads("sim/cockpit2/gauges/indicators/turn_rate_heading_deg_pilot", C1, {{0x037C, S16, -20, -512}});
  CheckReads(POSITION "groundspeed", C3, {{0x02B4, S32, 10, 655360}, {0x6030, F64, 10, 10}});
  CheckReads("sim/flightmodel/failures/onground_any", C3, {{0x0366, U16, 3, 1}});
  CheckReads("sim/flightmodel/forces/g_nrml", C1, {{0x3068, F64, 1, -32.1726, 1e-9}});
  CheckReads("sim/flightmodel/forces/vz_acf_axis", C1, {{0x3090, F64, -30.48, 100, 1e-5}});
  CheckReads(POSITION "Qrad", C1, {{0x30A8, F64, 0.25, 0.25}, {0x31A8, F64, 0.25, 0.25}});
  CheckReads(POSITION "alpha", C1,
             {{0x2ED0, F64, 180, pi, 1e-9},
              {0x11BE, U16, 100, 0},
              {0x11BE, U16, 0, 32767},
              {0x11BE, U16, -200, 65535}});
  CheckReads(POSITION "local_ay", C3, {{0x11BA, S16, 9.81, 1250, 1}, {0x11BA, S16, -9.81, 0, 1}});
  CheckReads(AUTOPILOT "heading_mag", C7,
             {{0x07CC, U16, 270, 49152}, {0x07CC, U16, 360, 0}, {0x07CC, U16, -90, 49152}});
  CheckReads(AUTOPILOT "altitude", C7, {{0x07D4, S32, 10000, 3048 * 65536.0}});
  CheckReads(AUTOPILOT "vertical_velocity", C7, {{0x07F2, S16, -1800, -1800}});
  CheckReads(CONTROLS "hstab1_elv1def", C1, {{0x0BB4, S16, 15, -16363}});
  CheckReads(CONTROLS "lail1def", C1, {{0x0BB8, S16, 30, -16383}, {0x2EA8, F64, 18, -pi, 1e-9}});
  CheckReads(CONTROLS "ldruddef", C1, {{0x0BBC, S16, -30, -16383}});
  CheckReads(CONTROLS "elv_trim", C13, {{0x2EA0, F64, 1, 10 * pi / 180, 1e-9}});
  CheckReads(
      CONTROLS "sbrkrqst", C13,
      {{0x0BD0, U32, -0.5, 4800}, {0x0BD0, U32, 0, 0}, {0x0BD0, U32, 0.5, 10591}, {0x0BD0, U32, 1, 16383}});
  CheckReads(CONTROLS "sbrkrat", C13, {{0x0BD4, U32, -0.5, 0}, {0x0BD8, U32, 1, 16383}});
  CheckReads(CONTROLS "wing1r_fla1def", C7, {{0x30F4, S16, 40, 10240}});
  CheckReads("sim/cockpit/switches/gear_handle_status", C3, {{0x0BE8, U32, 1, 16383}});
  CheckReads("sim/aircraft/parts/acf_gear_deploy[2]", C3, {{0x0BF0, U32, 0.5, 8191}});
  CheckReads("sim/aircraft/parts/acf_gear_deploy[1]", C3, {{0x0BF4, U32, 0.25, 4095}});
  CheckReads("sim/flightmodel/parts/tire_steer_act", C3, {{0x6D8A, S16, -12.5, -1250}});
  CheckReads(CONTROLS "r_brake_add", C3, {{0x0BCA, U16, 0.25, 16383}});
  CheckReads(CONTROLS "parkbrake", C3,
             {{0x0BC8, U16, 1, 32767}, {0x0BC4, S16, 1, 16383}, {0x0BC4, S16, 0.5, 0}});
  CheckReads(CONTROLS "l_brake_add", C3, {{0x3416, S16, 0.5, 8191}});
  CheckReads("sim/cockpit/switches/auto_brake_settings", C31, {{0x2F80, U8, 4, 4}});

  Set("sim/time/local_time_sec", 45296);
  Refresh(C13);
  EXPECT_EQ(ReadString(0x0C20, 9), "12:34:56");
}

TEST_F(FlightRows, PositionKeepsAllItsBits) {
  const struct {
    double latitude, longitude, altitude;
    int64_t latitudeWord, longitudeWord, altitudeWord;
  } cases[] = {
      {90, 90, 1000.5, int64_t{10001750} << 32, 0x4000000000000000, (int64_t{1000} << 32) + 0x80000000},
      {-45, -90, -0.25, -(int64_t{5000875} << 32), -0x4000000000000000, -0x40000000},
      {0, 180, 0, 0, std::numeric_limits<int64_t>::min(), 0},
      {nan, nan, nan, 0, 0, 0},
      {0, -180, 3e9, 0, std::numeric_limits<int64_t>::min(), std::numeric_limits<int64_t>::max()},
  };
  for (const auto& test : cases) {
    Set(POSITION "latitude", test.latitude);
    Set(POSITION "longitude", test.longitude);
    Set(POSITION "elevation", test.altitude);
    Set(POSITION "y_agl", 2);
    Refresh(C1);
    EXPECT_EQ(Read<int64_t>(0x0560), test.latitudeWord) << test.latitude;
    EXPECT_EQ(Read<int64_t>(0x0568), test.longitudeWord) << test.longitude;
    EXPECT_EQ(Read<int64_t>(0x0570), test.altitudeWord) << test.altitude;
    EXPECT_EQ(Read<int32_t>(0x0574), test.altitudeWord >> 32) << test.altitude;
    if (test.altitude != 1000.5) continue;
    EXPECT_EQ(Read<int32_t>(0x0020), 255616);  // 998.5 m
    EXPECT_EQ(Read<int16_t>(0x0B4C), 998);
  }
}

TEST_F(FlightRows, ReadsDerivedValues) {
  const struct {
    double zulu, local;
    int hours;
  } zones[] = {{64800, 43200.008, 6}, {3600, 82800, 2}, {82800, 3600, -2}, {43200, 0, 12},
               {0, 43200, 12},        {7199.99, 0, 2},  {0, 19800, -5}};  // half hours toward 0
  for (const auto& zone : zones) {
    Set("sim/time/zulu_time_sec", zone.zulu);
    Set("sim/time/local_time_sec", zone.local);
    Refresh(C31Navigation);
    EXPECT_EQ(Read<int16_t>(0x0246), zone.hours) << zone.zulu;
  }

  // The last vertical speed in the air stays on the ground.
  SetAll({{"sim/flightmodel/failures/onground_any", 0}, {POSITION "vh_ind", -2}});
  Refresh(C1);
  SetAll({{"sim/flightmodel/failures/onground_any", 1}, {POSITION "vh_ind", 0}});
  Refresh(C1);
  ExpectShown({{0x030C, S32, -512}, {0x02C8, S32, 0}});

  CheckReads("sim/cockpit2/gauges/indicators/altitude_ft_pilot", C1, {{0x3324, S32, 5000, 5000}});
  Write<uint16_t>(0x0C18, 2);
  CheckReads("sim/cockpit2/gauges/indicators/altitude_ft_pilot", C1, {{0x3324, S32, 5000, 1524}});

  const uint16_t runs = Read<uint16_t>(0x337E);
  Refresh(C1);
  EXPECT_EQ(Read<uint16_t>(0x337E), static_cast<uint16_t>(runs + 1));

  // Mach 0.5 (170 m/s) and knots are two forms of one selection; with no air there is no Mach number.
  SetAll({{"sim/weather/speed_sound_ms", 340}, {"sim/weather/sigma", 1}, {AUTOPILOT "airspeed_is_mach", 1}});
  CheckReads(AUTOPILOT "airspeed", C7, {{0x07E2, U16, 0.5, 330}, {0x07E8, S32, 0.5, 32768}});
  SetAll({{"sim/weather/sigma", 0}, {AUTOPILOT "airspeed_is_mach", 0}});
  CheckReads(AUTOPILOT "airspeed", C7, {{0x07E2, U16, 250, 250}, {0x07E8, S32, 250, 0}});
}

// --- Writers ----------------------------------------------------------------------------------------

TEST_F(FlightRows, WritesSimpleValues) {
  CheckWrites("sim/time/local_date_days",
              {{0x023E, U16, 1, 0, 0, 200}, {0x023E, U16, 0, 0, 0, 200}, {0x023E, U16, 65535, 365, 0, 200}});
  CheckWrites("sim/time/sim_speed", {{0x0C1A, U16, 0, 1, 0, 3}, {0x0C1A, U16, 1023, 3, 0, 1}});
  CheckWrites("sim/joystick/yolk_pitch_ratio", {{0x0BB2, S16, -16383, -1}});
  CheckWrites(CONTROLS "elv_trim", {{0x0BC0, S16, 16384, 1}, {0x2EA0, F64, 5 * pi / 180, 0.5, 1e-6}});
  CheckWrites(CONTROLS "ail_trim", {{0x2EB0, F64, -1e300, -1}});
  CheckWrites(CONTROLS "rud_trim", {{0x2EC0, F64, nan, 0.37, 1e-6}});
  CheckWrites(CONTROLS "l_brake_add", {{0x0BC4, S16, 16383, 1}});
  CheckWrites(CONTROLS "parkbrake", {{0x0BC8, U16, 65535, 1}});
  CheckWrites(CONTROLS "flaprqst", {{0x0BDC, U32, 4294967295.0, 1}});
  CheckWrites(CONTROLS "sbrkrqst", {{0x0BCC, U32, 1, -0.5},
                                    {0x0BD0, U32, 4799, 0},
                                    {0x0BD0, U32, 4800, -0.5},
                                    {0x0BD0, U32, 5619, -0.5},
                                    {0x0BD0, U32, 5620, 0},
                                    {0x0BD0, U32, 16383, 1}});
  CheckWrites(AUTOPILOT "heading_mag", {{0x07CC, U16, 16380, 90}, {0x07CC, U16, 65520, 0}});
  CheckWrites(AUTOPILOT "altitude", {{0x07D4, S32, 3048 * 65536.0, 10000, 0.2}});
  CheckWrites(AUTOPILOT "vertical_velocity", {{0x07F2, S16, -700, -700}});
  CheckWrites("sim/cockpit/switches/auto_brake_settings", {{0x2F80, U8, 200, 5}});
  CheckWrites("sim/flightmodel/engine/POINT_pitch_deg", {{0x0BBE, U16, 32768, 15}});
  CheckWrites(POSITION "local_vy", {{0x02BC, S32, 12800, 0}});
  CheckWrites("sim/cockpit/switches/yaw_damper_on", {{0x0808, U32, 7, 1}});
  CheckWrites("sim/cockpit2/autopilot/autothrottle_enabled", {{0x0810, U32, 7, 1}});

  // Hour and minute leave each other and the seconds alone.
  Set("sim/time/zulu_time_sec", 45296.5);
  WriteAndRun<uint8_t>(0x023B, 200);
  EXPECT_NEAR(Get("sim/time/zulu_time_sec"), 23 * 3600 + 34 * 60 + 56.5, 0.01);
  WriteAndRun<uint8_t>(0x023C, 7);
  EXPECT_NEAR(Get("sim/time/zulu_time_sec"), 23 * 3600 + 7 * 60 + 56.5, 0.01);
}

TEST_F(FlightRows, EveryControlValueReadsBack) {
  const struct {
    uint32_t offset;
    Cycle cycle;
  } axes[] = {{0x0BB2, C1}, {0x0BB6, C3}, {0x0BBA, C1}, {0x0C02, C3}, {0x0C04, C3}, {0x0BC0, C3}};
  for (const auto& axis : axes) {
    for (int value = -16383; value <= 16383; value += 7) {
      Write<int16_t>(axis.offset, static_cast<int16_t>(value));
      RunWriters();
      Refresh(axis.cycle);
      ASSERT_EQ(Read<int16_t>(axis.offset), value) << std::hex << axis.offset;
    }
  }
}

TEST_F(FlightRows, MovesTheAircraftOnce) {
  const struct Place { double latitude, longitude, altitude; } place = {47, 8, 1500.5};
  uint8_t record[24];
  const int64_t words[3] = {static_cast<int64_t>(10001750.0 / 90 * place.latitude * 4294967296.0),
                            static_cast<int64_t>(place.longitude / 360 * 18446744073709551616.0),
                            static_cast<int64_t>(place.altitude * 4294967296.0)};
  std::memcpy(record, words, sizeof record);
  ASSERT_TRUE(WriteBytes(0x0560, record, sizeof record));
  RunWriters();
  const auto expect = [](const Place& at) {
    double x, y, z;
    sim::WorldToLocal(at.latitude, at.longitude, at.altitude, &x, &y, &z);
    ExpectAll({{POSITION "local_x", x, 0.01}, {POSITION "local_y", y, 0.01}, {POSITION "local_z", z, 0.01}});
  };
  expect(place);
  // Whole metres alone drop the fraction; four bytes at the fine altitude change the fraction alone.
  WriteAndRun<int32_t>(0x0574, 2000);
  expect({place.latitude, place.longitude, 2000});
  WriteAndRun<uint32_t>(0x0570, 0x40000000);
  expect({place.latitude, place.longitude, 2000.25});
  WriteAndRun<int64_t>(0x0560, std::numeric_limits<int64_t>::max());
  EXPECT_EQ(repositionRecord.latitude, 90);
  WriteAndRun<uint32_t>(0x0558, 1);
  EXPECT_EQ(repositionRecord.latitude, 0);
}

// Two bytes or four, whichever the record has: what it holds beyond them has no meaning there.
TEST_F(FlightRows, NewRepositionTakesTwoOrFourBytes) {
  for (const auto& [size, known] : {std::pair{1U, true}, {2U, true}, {3U, false}, {4U, true}, {5U, false}}) {
    const uint8_t bytes[5] = {static_cast<uint8_t>(size)};  // another value each time
    repositionRecord.latitude = 50;
    EXPECT_EQ(rows::WriteBytes(0x0558, bytes, size), known) << size;
    RunWriters();
    EXPECT_EQ(repositionRecord.latitude, 0) << size;
  }
}

TEST_F(FlightRows, QuaternionAndEulerAngles) {
  const double half = std::sqrt(0.5);
  const struct {
    Attitude attitude;
    double q[4];
  } quarters[] = {{{0, 0, 0}, {1, 0, 0, 0}},
                  {{0, 90, 0}, {half, half, 0, 0}},
                  {{90, 0, 0}, {half, 0, half, 0}},
                  {{0, 0, 90}, {half, 0, 0, half}}};
  for (const auto& quarter : quarters) {
    const Quaternion q = EulerToQuaternion(quarter.attitude);
    const double got[4] = {q.e0, q.e1, q.e2, q.e3};
    for (int i = 0; i < 4; i++) EXPECT_NEAR(got[i], quarter.q[i], 1e-12);
  }
  for (double pitch = -80; pitch <= 80; pitch += 20) {
    for (double bank = -170; bank <= 170; bank += 20) {
      for (double heading = -170; heading <= 170; heading += 20) {
        const Attitude back = QuaternionToEuler(EulerToQuaternion({pitch, bank, heading}));
        ASSERT_NEAR(back.pitch, pitch, 1e-9);
        ASSERT_NEAR(back.bank, bank, 1e-9);
        ASSERT_NEAR(back.heading, heading, 1e-9);
      }
    }
  }
}

TEST_F(FlightRows, VelocityFollowsTheNewHeading) {
  SetAll({{"sim/flightmodel/forces/vx_acf_axis", 0}, {"sim/flightmodel/forces/vy_acf_axis", 0}});
  Write<int32_t>(0x0578, 1);
  WriteAndRun<int32_t>(0x057C, 1);
  // One request, velocity first: level, due east, 100 ft/s.
  Write<double>(0x3090, 100);
  Write<int32_t>(0x0578, 0);
  Write<int32_t>(0x057C, 0);
  WriteAndRun<uint32_t>(0x0580, 0x40000000);
  ExpectAll(
      {{POSITION "local_vx", 30.48, 1e-4}, {POSITION "local_vy", 0, 1e-4}, {POSITION "local_vz", 0, 1e-4}});
  // 30 degrees nose up, north: half of the speed climbs.
  Write<int32_t>(0x0578, static_cast<int32_t>(-quarterTurn / 3));
  Write<uint32_t>(0x0580, 0);
  WriteAndRun<double>(0x3090, 200);
  ExpectAll({{POSITION "local_vy", 30.48, 1e-4}, {POSITION "local_vz", -60.96 * std::sqrt(0.75), 1e-4}});
  // Due south at 100 knots: 51.44 m/s along the southward axis.
  Write<uint32_t>(0x0580, 0x80000000);
  WriteAndRun<int32_t>(0x02BC, 12800);
  ExpectAll({{POSITION "local_vx", 0, 1e-4}, {POSITION "local_vz", 51.444, 1e-2}});
}

TEST_F(FlightRows, KeysFireOnlyWhenTheStateDiffers) {
  const struct {
    uint32_t offset;
    const char* dataref;
    double state;
    uint32_t value;
    const char* calls;
  } cases[] = {
      {0x07C4, AUTOPILOT "autopilot_state", 0, 1, "key 15"},
      {0x07C4, AUTOPILOT "autopilot_state", 0x100, 2, ""},  // armed counts as on
      {0x07C8, AUTOPILOT "autopilot_state", 2, 0, "key 12"},
      {0x07D0, AUTOPILOT "autopilot_state", 0x20, 1, "key 16"},  // armed is not held
      {0x07DC, AUTOPILOT "autopilot_state", 1, 1, ""},
      {0x07EC, AUTOPILOT "autopilot_state", 0, 5, "key 17"},
      {0x0800, AUTOPILOT "autopilot_state", 0, 1, "once sim/autopilot/approach"},
      {0x0804, AUTOPILOT "autopilot_state", 0, 1, "once sim/autopilot/back_course"},
      {0x080C, AUTOPILOT "autopilot_state", 0, 1, ""},
      {0x0BE8, "sim/cockpit/switches/gear_handle_status", 1, 8191, "press 52; release 52"},
      {0x0BE8, "sim/cockpit/switches/gear_handle_status", 0, 8192, "press 53; release 53"},
      {0x0BE8, "sim/cockpit/switches/gear_handle_status", 1, 16383, ""},
  };
  for (const auto& test : cases) {
    Set(test.dataref, test.state);
    Write<uint32_t>(test.offset, test.value ^ 0x100);
    RunWriters();
    Set(test.dataref, test.state);
    Calls();
    WriteAndRun<uint32_t>(test.offset, test.value);
    EXPECT_EQ(Calls(), test.calls) << std::hex << test.offset << " = " << test.value;
  }
  Set("sim/time/paused", 0);
  WriteAndRun<uint16_t>(0x0262, 2);
  EXPECT_EQ(Calls(), "key 0");
}

TEST_F(FlightRows, AutopilotModes) {
  const struct {
    uint32_t offset;
    int bits;
  } modes[] = {{0x07C4, 0x100}, {0x07C4, 0x200}, {0x07C8, 0x2},    {0x07D0, 0x4000},
               {0x07DC, 0x1},   {0x07E4, 0x1},   {0x07EC, 0x10},   {0x07F4, 0x40},
               {0x0800, 0x400}, {0x0800, 0x800}, {0x080C, 0x8000}, {0x080C, 0x10000}};
  for (const auto& mode : modes) {
    for (const int state : {mode.bits, 0x7FFFF, 0}) {
      Set(AUTOPILOT "autopilot_state", state);
      Refresh(C7);
      EXPECT_EQ(Read<uint32_t>(mode.offset), state != 0 ? 1u : 0u) << std::hex << mode.offset;
    }
  }
  // Off leaves the flight director as the client knows it.
  const char* mode = AUTOPILOT "autopilot_mode";
  Set(mode, 0);
  const struct {
    uint32_t offset, value;
    double mode;
  } writes[] = {{0x07BC, 1, 2}, {0x2EE0, 1, 2}, {0x07BC, 0, 1}, {0x2EE0, 0, 0}};
  for (const auto& write : writes) {
    WriteAndRun<uint32_t>(write.offset, write.value);
    EXPECT_EQ(Get(mode), write.mode) << std::hex << write.offset;
  }
}

TEST_F(FlightRows, MessageIsSpokenOnceAndCanBeRepeated) {
  WriteBytes(0x3380, "Hello", 6);
  for (int round = 0; round < 2; round++) {
    WriteAndRun<int16_t>(0x32FA, 5);
    EXPECT_EQ(Calls(), "speak \"Hello\"");
    EXPECT_EQ(Read<int16_t>(0x32FA), 0);
  }
  WriteBytes(0x3380, "", 1);
  WriteAndRun<int16_t>(0x32FA, 5);
  EXPECT_EQ(Calls(), "");
}

TEST_F(FlightRows, RightBrakeAppliesTheLastValueAndLogsIt) {
  const std::string folder = testing::TempDir() + "rows_flight_log/";
  std::filesystem::create_directories(folder);
  ASSERT_TRUE(OpenLogs(folder.c_str(), nullptr));
  Write<int16_t>(0x0BC4, -7);
  Write<int16_t>(0x0BC6, 100);
  WriteAndRun<int16_t>(0x0BC6, 8192);
  CloseLogs();
  EXPECT_NEAR(Get(CONTROLS "r_brake_add"), 0.500031, 1e-6);
  EXPECT_EQ(tools::ReadFile(folder + "TAVRIX.txt"),
            "Offset 0x0BC6 tavrixWriteValue = 8192 bc6Value = -7 FSVar = 0.500031\n");
}

// --- Slew, freeze, overrides ------------------------------------------------------------------------

TEST_F(FlightRows, FreezeHoldsThePlaceUntilItEnds) {
  const char* path = "sim/operation/override/override_planepath";
  Set(POSITION "local_x", 100);
  Set(POSITION "local_z", 200);
  WriteAndRun<uint8_t>(0x3541, 5);
  EXPECT_EQ(Get(path), 1);
  Set(POSITION "local_x", 110);
  Set(POSITION "local_y", 77);
  SlewStep();
  EXPECT_EQ(Get(POSITION "local_x"), 100);
  EXPECT_EQ(Get(POSITION "local_y"), 77);
  Refresh(C1);
  EXPECT_EQ(Read<uint8_t>(0x3541), 1);
  // A client that moves the frozen aircraft moves the place that is held.
  WriteAndRun<int64_t>(0x0560, int64_t{5000875} << 32);
  const double z = Get(POSITION "local_z");
  SlewStep();
  EXPECT_EQ(Get(POSITION "local_z"), z);
  // The override is given back by the last of the two.
  WriteAndRun<uint16_t>(0x05DC, 1);
  WriteAndRun<uint8_t>(0x3541, 0);
  EXPECT_EQ(Get(path), 1);
  ClearSlew();
  EXPECT_EQ(Get(path), 0);
  EXPECT_EQ(Read<uint16_t>(0x05DC), 0);
  Set(path, 1);  // somebody else's
  ClearSlew();
  EXPECT_EQ(Get(path), 1);
}

TEST_F(FlightRows, OverridesThatAreNotOursStay) {
  const std::string name = "sim/operation/override/override_";
  Set(name + "joystick_roll", 1);
  WriteAndRun<uint8_t>(0x310A, 0x0B);
  ExpectAll({{name + "joystick_pitch", 1}, {name + "joystick_heading", 0}, {name + "throttles", 1}});
  ReleaseOverrides();
  ExpectAll({{name + "joystick_pitch", 0}, {name + "joystick_roll", 1}, {name + "throttles", 0}});
  EXPECT_EQ(Read<uint8_t>(0x310A), 0);
}

// --- Add-on aircraft --------------------------------------------------------------------------------

TEST_F(FlightRows, ExtendedBoeingUsesItsOwnPanel) {
  Restart("b738-extended");
  CheckReads(LAMINAR "autopilot/vorloc_status", C7, {{0x07C4, U32, 1, 1}});
  CheckReads(LAMINAR "autopilot/vnav_status1", C7, {{0x07DC, U32, 1, 1}, {0x07DC, U32, 0.4, 0}});
  CheckReads(LAMINAR "annunciator/yaw_damp", C31, {{0x0808, U32, 0, 1}});
  // the light says off
  CheckReads(LAMINAR "annunciator/yaw_damp", C31, {{0x0808, U32, 1, 0}});
  CheckReads(LAMINAR "annunciator/parking_brake", C3, {{0x0BC8, U16, 0.3, 32767}, {0x0BC4, S16, 0.6, 16383}});
  CheckReads(LAMINAR "flt_ctrls/speedbrake_lever", C13,
             {{0x0BD0, U32, 0.07, 0},
              {0x0BD0, U32, 0.0889, 4800},
              {0x0BD0, U32, 0.2, 4800},
              {0x0BD0, U32, 1, 16383},
              {0x0BCC, U32, 0.0889, 1}});
  CheckReads(LAMINAR "controls/gear_handle_down", C3, {{0x0BE8, U32, 0.4, 0}});
  CheckWrites(LAMINAR "flt_ctrls/speedbrake_lever",
              {{0x0BD0, U32, 5000, 0.0889, 1e-6}, {0x0BD0, U32, 16384, 1}});
  CheckWrites(LAMINAR "controls/gear_handle_down", {{0x0BE8, U32, 8192, 1}});
  CheckCalls({{0x0BDC, U32, 1023, "once " LAMINAR "push_button/flaps_0"},
              {0x0BDC, U32, 1025, "once " LAMINAR "push_button/flaps_1"},
              {0x0BDC, U32, 16383, "once " LAMINAR "push_button/flaps_40"},
              {0x0BDC, U32, 4000000000, "once " LAMINAR "push_button/flaps_40"},
              {0x0BDC, U32, 8192, "once " LAMINAR "push_button/flaps_10"}});
  Set(LAMINAR "autopilot/disconnect_pos", 1);
  Set(LAMINAR "autopilot/cmd_a_status", 0);
  WriteAndRun<uint32_t>(0x07BC, 1);
  EXPECT_EQ(Calls(), "once " LAMINAR "autopilot/disconnect_toggle; once " LAMINAR "autopilot/cmd_a_press");
}

TEST_F(FlightRows, StockYawDamperIsOnWhenNotZero) {
  CheckReads("sim/cockpit/switches/yaw_damper_on", C31, {{0x0808, U32, -1, 1}, {0x0808, U32, 0, 0}});
}

TEST_F(FlightRows, X737UsesItsOwnPanel) {
  Restart("x737");
  CheckReads(PANEL "afds/CMD_B", C13, {{0x07BC, U32, 1, 1}, {0x07BC, U32, -1, 1}});  // on when not 0
  CheckReads(PANEL "afds/VS_arm", C7, {{0x07EC, U32, 1, 1}});
  CheckReads(PANEL "afds/HDG_magnhdg", C7, {{0x07CC, U16, 90, 16384}});
  CheckReads(PANEL "speedbrake/spdbrkLeverPos", C13,
             {{0x0BD0, U32, 0.1, 0}, {0x0BD0, U32, 0.12, 4800}, {0x0BD0, U32, 0.5, 8191}});
  CheckReads(CONTROLS "elv_trim", C3, {{0x0BC0, S16, -1, -6230}, {0x0BC2, S16, 1, 16270}});
  CheckWrites(PANEL "afds/HDG", {{0x07C8, U32, 3, 1}});
  CheckWrites(PANEL "afds/CMD_A", {{0x07BC, U32, 1, 1}});
  CheckWrites(PANEL "athr/MCPSPD_spd", {{0x07E2, U16, 180, 180}});
  CheckWrites(PANEL "afds/VS", {{0x07F2, S16, -900, 1}});
  CheckWrites(PANEL "afds/VS_vvi", {{0x07F2, S16, -900, -900}});
  CheckWrites(PANEL "speedbrake/spdbrkLeverPos", {{0x0BD0, U32, 4800, 0.125}});
  CheckWrites(CONTROLS "elv_trim", {{0x0BC0, S16, 5020, 0}});
}

}  // namespace
