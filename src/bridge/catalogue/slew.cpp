#include "bridge/slew.h"

#include "bridge/catalogue.h"
#include "bridge/catalogue/losses.h"

namespace {

constexpr Source localX = Double<"sim/flightmodel/position/local_x">,
                 localZ = Double<"sim/flightmodel/position/local_z">;
constexpr Source planePathOverride =
    IntElement<"sim/operation/override/override_planepath">(0);  // element 0: the user's aircraft

bool slewing = false;
bool frozen = false;
bool pathTaken = false;  // the override is on because we set it
double frozenX = 0, frozenZ = 0;
PushbackHooks pushbackHooks = {[] { return 3; }, [](uint32_t) {}};  // off, until the room is connected

void UpdatePlanePath() {
  const bool wanted = slewing || frozen;
  if (wanted == pathTaken) return;
  SetSource(planePathOverride, wanted);
  pathTaken = wanted;
}

void ApplySlew(const OffsetRow&, const Staged& staged) {
  slewing = staged.integer != 0;
  UpdatePlanePath();
}

bool ReadFreeze(const OffsetRow&, double* value) {
  *value = frozen;
  return true;
}

void ApplyFreeze(const OffsetRow&, const Staged& staged) {
  frozen = staged.integer != 0;
  if (frozen) {
    frozenX = ReadSource(localX);
    frozenZ = ReadSource(localZ);
  }
  UpdatePlanePath();
}

bool ReadPushback(const OffsetRow&, double* value) {
  *value = pushbackHooks.state();
  return true;
}

void ApplyPushback(const OffsetRow&, const Staged& staged) {
  pushbackHooks.command(static_cast<uint32_t>(staged.integer));
}

constexpr Choice pushbackStates[] = {
    {0, "straight"}, {1, "turning, tail to the left"}, {2, "turning, tail to the right"}, {3, "off"}};
constexpr Choice pushbackCommands[] = {
    {0, "straight"}, {1, "tail to the left"}, {2, "tail to the right"}, {3, "stop"}};

constexpr OffsetRow rows[] = {
    {.offset = 0x05DC,
     .type = Stored::U16,
     .name = "slew",
     .meaning = "slew mode",
     .show = Show::Flag,
     .write = {.apply = ApplySlew},
     .note = "not refreshed: holds what the last client wrote"},
    {.offset = 0x3541,
     .type = Stored::U8,
     .name = "position_freeze",
     .meaning = "holds the place over ground; height and attitude stay free",
     .show = Show::Flag,
     .cycle = Cycle::C1,
     .read = ReadFreeze,
     .write = {.apply = ApplyFreeze},
     .lossy = flagLoss,
     .note = "any changed value but 0 takes the place of that moment"},
    {.offset = 0x31F0,
     .type = Stored::U32,
     .name = "pushback_state",
     .meaning = "pushback",
     .choices = pushbackStates,
     .cycle = Cycle::C31Navigation,
     .read = ReadPushback},
    {.offset = 0x31F4,
     .type = Stored::U32,
     .name = "pushback",
     .meaning = "pushback command",
     .choices = pushbackCommands,
     .cycle = Cycle::C31Navigation,
     .read = ReadPushback,
     .write = {.apply = ApplyPushback},
     .limits = {0, 3},
     .lossy = "above 3 counts as 0",
     .note = "shows the pushback state again after a stop, so that the next command differs"},
};

}  // namespace

const RowTable slewRows = {"Slew, freeze, pushback", rows};

void ConnectPushbackRows(const PushbackHooks& hooks) { pushbackHooks = hooks; }

void SlewStep() {
  if (!frozen) return;
  if (ReadSource(localX) == frozenX && ReadSource(localZ) == frozenZ) return;
  SetSource(localX, frozenX);
  SetSource(localZ, frozenZ);
}

void MoveFreeze(double x, double z) {
  frozenX = x;
  frozenZ = z;
}

void ClearSlew() {
  slewing = false;
  frozen = false;
  UpdatePlanePath();
  const uint8_t off[2] = {};
  CopyToMemory(0x05DC, 2, off);
  CopyToMemory(0x3541, 1, off);
}
