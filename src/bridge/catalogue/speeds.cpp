// Speeds, ground contact, stall, slip and turn.
#include "bridge/catalogue.h"
#include "bridge/catalogue/reposition.h"

namespace {

constexpr Source verticalSpeed = FloatAt(0x02C8);  // m/s
constexpr Source onGround = IntAt(0x0366);

double Flag(double value) { return value != 0; }

// The vertical speed stands still once a wheel touches: clients read the landing from it.
int ReadTouchdown(const OffsetRow&, double* value) {
  if (IsOn(onGround)) return 0;
  *value = ReadSource(verticalSpeed) * 256;
  return 1;
}

constexpr OffsetRow rows[] = {
    {.offset = 0x02B8, .type = Stored::S32, .name = "tas", .meaning = "true airspeed", .unit = "kt",
     .unitScale = 1.0 / 128, .cycle = Cycle::C1, .source = FloatAt(0x02B8), .factor = 1.94384 * 128},
    {.offset = 0x02BC, .type = Stored::S32, .name = "ias", .meaning = "indicated airspeed", .unit = "kt",
     .unitScale = 1.0 / 128, .cycle = Cycle::C1, .source = FloatAt(0x02BC), .factor = 128,
     .write = {.apply = ApplyAirspeed},
     .lossy = "sets the true speed along the heading in level flight; what the airspeed indicator makes of it "
              "depends on height and wind"},
    {.offset = 0x02C8, .type = Stored::S32, .name = "vertical_speed", .meaning = "vertical speed",
     .unit = "m/s", .unitScale = 1.0 / 256, .cycle = Cycle::C1, .source = verticalSpeed, .factor = 256},
    {.offset = 0x0842, .type = Stored::S16, .name = "vertical_speed_m_min",
     .meaning = "vertical speed, positive down", .unit = "m/min", .cycle = Cycle::C1,
     .source = verticalSpeed, .factor = -60},
    {.offset = 0x030C, .type = Stored::S32, .name = "touchdown_speed",
     .meaning = "vertical speed, kept from the last moment in the air", .unit = "m/s",
     .unitScale = 1.0 / 256, .cycle = Cycle::C1, .read = ReadTouchdown},
    {.offset = 0x31A0, .type = Stored::F64, .name = "vertical_speed_ft_s", .meaning = "vertical speed",
     .unit = "ft/s", .cycle = Cycle::C1, .source = FloatAt(0x31A0), .factor = 1.0 / 60},
    {.offset = 0x11C6, .type = Stored::U16, .name = "mach", .meaning = "Mach number",
     .unitScale = 1.0 / 20480, .cycle = Cycle::C1, .source = FloatAt(0x11C6), .factor = 20480},
    {.offset = 0x036E, .type = Stored::S8, .name = "slip", .meaning = "slip ball, -128 left to 127 right",
     .cycle = Cycle::C1, .source = FloatAt(0x036E), .factor = -30},
    {.offset = 0x037C, .type = Stored::S16, .name = "turn_rate",
     .meaning = "turn rate, 512 is a standard turn to the right", .cycle = Cycle::C1,
     .source = FloatAt(0x037C), .factor = 0.05 * 512},
    {.offset = 0x02B4, .type = Stored::S32, .name = "ground_speed", .meaning = "ground speed",
     .unit = "m/s", .unitScale = 1.0 / 65536, .cycle = Cycle::C3, .source = FloatAt(0x02B4),
     .factor = 65536},
    {.offset = 0x6030, .type = Stored::F64, .name = "ground_speed_m_s", .meaning = "ground speed",
     .unit = "m/s", .cycle = Cycle::C3, .source = FloatAt(0x02B4)},
    {.offset = 0x0366, .type = Stored::U16, .name = "on_ground", .meaning = "on the ground",
     .show = Show::Flag, .cycle = Cycle::C3, .source = onGround, .convert = Flag},
    {.offset = 0x036C, .type = Stored::U8, .name = "stall", .meaning = "stall warning", .show = Show::Flag,
     .cycle = Cycle::C13, .source = IntAt(0x036C), .convert = Flag},
};

}  // namespace

const RowTable speedRows = {"Speeds", rows};
