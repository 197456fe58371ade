// Accelerations, body velocities, turn rates and flow angles.
#include <numbers>

#include "bridge/catalogue.h"
#include "bridge/catalogue/reposition.h"

namespace {

constexpr double radians = std::numbers::pi / 180;
constexpr double feet = 1 / 0.3048;
constexpr double gravity = 32.1726;  // ft/s2

// Most of these are 64-bit floating point words of every frame.
constexpr OffsetRow Force(uint32_t offset, const char* name, const char* meaning, const char* unit,
                          Source source, double factor) {
  return {.offset = offset,
          .type = Stored::F64,
          .name = name,
          .meaning = meaning,
          .unit = unit,
          .cycle = Cycle::C1,
          .source = source,
          .factor = factor};
}

constexpr OffsetRow rows[] = {
    Force(0x3060, "accel_side", "acceleration to the side", "ft/s2", Float<"sim/flightmodel/forces/g_side">,
          gravity),
    Force(0x3068, "accel_vertical", "vertical acceleration", "ft/s2", Float<"sim/flightmodel/forces/g_nrml">,
          -gravity),
    Force(0x3070, "accel_forward", "acceleration along the fuselage", "ft/s2",
          Float<"sim/flightmodel/forces/g_axil">, -gravity),
    Force(0x3078, "accel_pitch", "pitch acceleration", "rad/s2", Float<"sim/flightmodel/position/Q_dot">,
          radians),
    Force(0x3080, "accel_roll", "roll acceleration", "rad/s2", Float<"sim/flightmodel/position/P_dot">,
          radians),
    Force(0x3088, "accel_yaw", "yaw acceleration", "rad/s2", Float<"sim/flightmodel/position/R_dot">, radians),
    {.offset = 0x3090,
     .type = Stored::F64,
     .name = "speed_forward",
     .meaning = "velocity along the fuselage",
     .unit = "ft/s",
     .cycle = Cycle::C1,
     .source = Float<"sim/flightmodel/forces/vz_acf_axis">,
     .factor = -feet,
     .write = {.apply = ApplyBodyVelocity},
     .lossy = "the simulator derives this word from the velocity that is set, one frame later",
     .note = "velocities to the side and up stay as they are"},
    Force(0x3098, "speed_side", "velocity to the side", "ft/s", Float<"sim/flightmodel/forces/vx_acf_axis">,
          feet),
    Force(0x30A0, "speed_vertical", "velocity along the vertical axis of the aircraft, positive down", "ft/s",
          Float<"sim/flightmodel/forces/vy_acf_axis">, -feet),
    Force(0x30A8, "pitch_rate", "pitch rate", "rad/s", Float<"sim/flightmodel/position/Qrad">, 1),
    Force(0x31A8, "pitch_rate_copy", "pitch rate, second copy", "rad/s", Float<"sim/flightmodel/position/Qrad">,
          1),
    Force(0x30B0, "roll_rate", "roll rate", "rad/s", Float<"sim/flightmodel/position/Prad">, 1),
    Force(0x31B0, "roll_rate_copy", "roll rate, second copy", "rad/s", Float<"sim/flightmodel/position/Prad">,
          1),
    Force(0x30B8, "yaw_rate", "yaw rate", "rad/s", Float<"sim/flightmodel/position/Rrad">, 1),
    Force(0x2ED0, "alpha", "angle of attack", "rad", Float<"sim/flightmodel/position/alpha">, radians),
    Force(0x2ED8, "beta", "sideslip", "rad", Float<"sim/flightmodel/position/beta">, radians),
    // Unsigned, so that negative angles, above 32767, survive.
    {.offset = 0x11BE,
     .type = Stored::U16,
     .name = "alpha_percent",
     .meaning = "relative angle of attack: 100 % less one per degree",
     .unit = "%",
     .unitScale = -100.0 / 32767,
     .unitBias = 100,
     .cycle = Cycle::C1,
     .source = Float<"sim/flightmodel/position/alpha">,
     .factor = -327.67,
     .add = 32767},
    {.offset = 0x11BA,
     .type = Stored::S16,
     .name = "load_factor",
     .meaning = "load factor",
     .unit = "g",
     .unitScale = 1.0 / 625,
     .cycle = Cycle::C3,
     .source = Float<"sim/flightmodel/position/local_ay">,
     .factor = 625 / 9.81,
     .add = 625},
};

}  // namespace

const RowTable forceRows = {"Forces and rates", rows};
