// Cabin pressure, doors, undercarriage type, runway condition.
#include "bridge/catalogue/engine_families.h"

namespace {

// A float in most versions of the simulator, an integer in some.
constexpr Source runwayFriction = {Block::Primary, 0x6DA8, Accessor::Any, 0};

constexpr OffsetRow rows[] = {
    // The simulator's names say metres; the values are feet.
    {.offset = 0x0318,
     .type = Stored::S32,
     .name = "cabin_altitude",
     .meaning = "cabin altitude",
     .unit = "ft",
     .cycle = Cycle::C1,
     .source = FloatAt(0x0318)},
    {.offset = 0x031C,
     .type = Stored::S32,
     .name = "cabin_altitude_goal",
     .meaning = "cabin altitude goal",
     .unit = "ft",
     .cycle = Cycle::C13,
     .source = FloatAt(0x031C),
     .write = {.target = FloatAt(0x031C)},
     .lossy = "single precision above 16777216"},
    {.offset = 0x0320,
     .type = Stored::S32,
     .name = "cabin_rate",
     .meaning = "cabin rate of change",
     .cycle = Cycle::C13,
     .source = FloatAt(0x0320),
     .write = {.target = FloatAt(0x0320)},
     .lossy = "single precision above 16777216"},
    {.offset = 0x3367,
     .type = Stored::U8,
     .name = "exits",
     .meaning = "exits open",
     .show = Show::Bits,
     .cycle = Cycle::C59,
     .source = IntAt(0x3367),
     .convert = OnOff,
     .note = "bit 0 cabin door"},
    {.offset = 0x6DA8,
     .type = Stored::U8,
     .name = "runway_condition",
     .meaning = "runway condition",
     .cycle = Cycle::C59,
     .source = runwayFriction,
     .write = {.target = runwayFriction, .high = 2},
     .lossy = "above 2 reads back 2",
     .note = "0 good, 1 fair, 2 poor"},
    {.offset = 0x6F02,
     .type = Stored::U8,
     .name = "skids",
     .meaning = "undercarriage has skids",
     .show = Show::Flag,
     .cycle = Cycle::C313,
     .source = IntAt(0x6F02),
     .convert = OnOff},
};

}  // namespace

const RowTable pressurisationRows = {"Pressurisation, doors, runway", rows};
