// What belongs to no other subject.
#include "bridge/catalogue/misc_actions.h"

#include <numbers>

#include "XPLMUtilities.h"
#include "bridge/catalogue.h"

namespace {

int contactAtcHeld = 0;

int ReadOne(const OffsetRow&, double* value) {
  *value = 1;
  return 1;
}
int ReadZero(const OffsetRow&, double* value) {
  *value = 0;
  return 1;
}

// Begin and end stay in pairs: a value that changes from 1 to 2 does not begin a second time.
void ApplyContactAtc(const OffsetRow&, const Staged& staged) {
  if (staged.integer == 0) {
    ReleaseContactAtc();
  } else if (!contactAtcHeld && commandBlock.contactAtc != nullptr) {
    contactAtcHeld = 1;
    XPLMCommandBegin(commandBlock.contactAtc);
  }
}

// Total and jettisonable load are extended offsets, for this program's own windows and clients that know it.
constexpr Source jettison = FloatAt(0x16024);

constexpr OffsetRow rows[] = {
    {.offset = 0x6F0D,
     .type = Stored::U8,
     .name = "custom_reload",
     .meaning = "write 1 to read the custom offsets file again",
     .cycle = Cycle::C1,
     .read = ReadZero},
    {.offset = 0x10708,
     .type = Stored::U16,
     .name = "engine_speed_eng",
     .member = 1,
     .meaning = "engine speed",
     .unit = "rpm",
     .cycle = Cycle::C1,
     .source = FloatElementAt(0x10708, 0)},
    {.offset = 0x1070A,
     .type = Stored::U16,
     .name = "engine_speed_eng",
     .member = 2,
     .meaning = "engine speed",
     .unit = "rpm",
     .cycle = Cycle::C1,
     .source = FloatElementAt(0x1070A, 1)},

    {.offset = 0x2E98,
     .type = Stored::F64,
     .name = "elevator_trim_position",
     .meaning = "elevator trim position, radians at ten degrees a unit",
     .unit = "rad",
     .cycle = Cycle::C3,
     .source = FloatAt(0x0BC2),
     .factor = std::numbers::pi / 18},

    {.offset = 0x079C,
     .type = Stored::U32,
     .name = "has_toe_brakes",
     .meaning = "toe brakes available, always 1",
     .cycle = Cycle::C157,
     .read = ReadOne},

    {.offset = 0x0764,
     .type = Stored::U32,
     .name = "has_autopilot",
     .meaning = "autopilot available, always 1",
     .cycle = Cycle::C313,
     .read = ReadOne},
    {.offset = 0x077C,
     .type = Stored::U32,
     .name = "has_stall_warning",
     .meaning = "stall warning available",
     .show = Show::Flag,
     .cycle = Cycle::C313,
     .source = IntAt(0x077C)},
    {.offset = 0x0780,
     .type = Stored::U32,
     .name = "has_mixture",
     .meaning = "mixture control available",
     .show = Show::Flag,
     .cycle = Cycle::C313,
     .source = IntAt(0x0780)},
    {.offset = 0x02C4,
     .type = Stored::U32,
     .name = "vne",
     .meaning = "never-exceed speed",
     .unit = "kt",
     .unitScale = 1.0 / 128,
     .cycle = Cycle::C313,
     .source = FloatAt(0x02C4),
     .factor = 128},
    {.offset = 0x16020,
     .type = Stored::F32,
     .name = "jettison_total",
     .meaning = "jettisonable load, total",
     .unit = "kg",
     .cycle = Cycle::C313,
     .source = jettison},
    {.offset = 0x16024,
     .type = Stored::F32,
     .name = "jettison",
     .meaning = "jettisonable load",
     .unit = "kg",
     .cycle = Cycle::C313,
     .source = jettison},

    {.offset = 0x6F16,
     .type = Stored::U8,
     .name = "contact_atc",
     .meaning = "contact traffic control (push to talk), held while not 0",
     .show = Show::Flag,
     .write = {.apply = ApplyContactAtc}},
    {.offset = 0x3380,
     .type = Stored::Text,
     .length = 128,
     .name = "message_text",
     .meaning = "text of the message that 0x32FA shows, at most 127 characters",
     .show = Show::Text},
};

}  // namespace

void ReleaseContactAtc() {
  if (!contactAtcHeld) return;
  contactAtcHeld = 0;
  XPLMCommandEnd(commandBlock.contactAtc);
}

const RowTable miscRows = {"Other", rows};
