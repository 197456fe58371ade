// What belongs to no other subject.
#include "XPLMUtilities.h"
#include "bridge/catalogue.h"
#include "bridge/catalogue/conversions.h"
#include "bridge/catalogue/losses.h"
#include "bridge/catalogue/misc_actions.h"

namespace {

bool contactAtcHeld = false;

// Begin and end stay in pairs: a value that changes from 1 to 2 does not begin a second time.
void ApplyContactAtc(const OffsetRow&, const Staged& staged) {
  if (staged.integer == 0) {
    ReleaseContactAtc();
  } else if (!contactAtcHeld && commandOf<"sim/operation/contact_atc">.handle != nullptr) {
    contactAtcHeld = true;
    XPLMCommandBegin(commandOf<"sim/operation/contact_atc">.handle);
  }
}

constexpr Source hasMixture = Int<"sim/aircraft/view/acf_has_mixture">;
constexpr Source engineTypes = IntElement<"sim/aircraft/prop/acf_en_type">(0);

bool ReadHasMixture(const OffsetRow&, double* value) {
  constexpr int injected = 1;  // 0 with a carburettor; all others are no piston engines
  *value = HandleOf(hasMixture) != nullptr                                        ? ReadInt(hasMixture)
           : HandleOf(engineTypes) != nullptr && ReadInt(engineTypes) <= injected ? 1
                                                                                  : 0;
  return true;
}

constexpr OffsetRow rows[] = {
    {.offset = 0x6F0D,
     .type = Stored::U8,
     .name = "custom_reload",
     .meaning = "write 1 to read the custom offsets file again",
     .cycle = Cycle::C1,
     .prepared = &zero,
     .dispatch = DispatchAction::CustomReload,
     .limits = {0, 1},
     .lossy = requestLoss},

    {.offset = 0x079C,
     .type = Stored::U32,
     .name = "has_toe_brakes",
     .meaning = "toe brakes available, always 1",
     .cycle = Cycle::C157,
     .prepared = &one},

    {.offset = 0x0764,
     .type = Stored::U32,
     .name = "has_autopilot",
     .meaning = "autopilot available, always 1",
     .cycle = Cycle::C313,
     .prepared = &one},
    {.offset = 0x077C,
     .type = Stored::U32,
     .name = "has_stall_warning",
     .meaning = "stall warning available",
     .show = Show::Flag,
     .cycle = Cycle::C313,
     .source = Int<"sim/aircraft/view/acf_has_stallwarn">},
    {.offset = 0x0780,
     .type = Stored::U32,
     .name = "has_mixture",
     .meaning = "mixture control available",
     .show = Show::Flag,
     .cycle = Cycle::C313,
     .read = ReadHasMixture,
     .inputs = sourcesOf<hasMixture, engineTypes>,
     .elsewhere = "from 9.55 on the simulator does not say: piston engines have one"},
    {.offset = 0x02C4,
     .type = Stored::U32,
     .name = "vne",
     .meaning = "never-exceed speed",
     .unit = "kt",
     .unitScale = 1.0 / 128,
     .cycle = Cycle::C313,
     .source = Float<"sim/aircraft/view/acf_Vne">,
     .factor = 128,
     .readOnly = true},
    {.offset = 0x6F16,
     .type = Stored::U8,
     .name = "contact_atc",
     .meaning = "contact traffic control (push to talk), held while not 0",
     .show = Show::Flag,
     .write = {.apply = ApplyContactAtc}},
    {.offset = 0x0840,
     .type = Stored::U16,
     .name = "crashed",
     .meaning = "1 for about five seconds after the aircraft has crashed",
     .show = Show::Flag},
    {.offset = 0x6F0E,
     .type = Stored::U8,
     .name = "custom_clear",
     .meaning = "write 1 to drop the custom offsets and read their file again",
     .show = Show::Flag,
     .dispatch = DispatchAction::CustomReload},
    {.offset = 0xC800,
     .type = Stored::U16,
     .name = "weather_selector",
     .meaning = "1 to 4 apply the weather area 0xC800-0xC87F, once the whole request has been read",
     .write = {.width = 1},
     .dispatch = DispatchAction::WeatherArea,
     .limits = {0, 4},
     .lossy = requestLoss},
    {.offset = 0x3380,
     .type = Stored::Text,
     .length = 128,
     .name = "message_text",
     .meaning = "text of the message that 0x32FA shows, at most 127 characters",
     .show = Show::Text,
     .isInput = true},
};

}  // namespace

void ReleaseContactAtc() {
  if (!contactAtcHeld) return;
  contactAtcHeld = false;
  XPLMCommandEnd(commandOf<"sim/operation/contact_atc">.handle);
}

const RowTable miscRows = {"Other", rows};
