// Add-on aircraft at work: their datarefs come and go with the aircraft, their commands and switches act
// on the stock controls of the same meaning.
#include "world/addon.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "core/table.h"
#include "world/refs.h"

namespace sim {

namespace {

std::vector<DataRef*> published;  // by the add-on in use
struct Linked {
  const AddonLink* row;
  DataRef* own;
  DataRef* stock;  // null for the kinds without
};
std::vector<Linked> linked;
bool hasLamps = false;  // mode lamps of the extended 737-800

float Value(const char* name) {
  DataRef* ref = FindLive(name);
  if (ref == nullptr) return 0;
  return ref->kind == Kind::Int ? static_cast<float>(I(ref)) : F(ref);
}

void SetValue(const char* name, double value) {
  if (DataRef* ref = FindLive(name)) StoreElement(ref, 0, value);
}

void PutLampsOut() {
  for (const char* lamp : {"laminar/B738/autopilot/cmd_a_status", "laminar/B738/autopilot/cmd_b_status",
                           "laminar/B738/autopilot/cws_a_status", "laminar/B738/autopilot/cws_b_status"}) {
    SetValue(lamp, 0);
  }
  if (circuitFlight) DisconnectAutopilot();
}

// --- What commands do ------------------------------------------------------------------------------
// `on` is the status before the command.

void Toggle(const AddonCommand& row, bool on) { SetValue(row.status, on ? 0 : 1); }

void RunMode(const AddonCommand& row, bool on) {
  Toggle(row, on);
  if (circuitFlight) PressModes(row.number);
}

void RunMaster(const AddonCommand& row, bool) {
  if (Value("laminar/B738/autopilot/disconnect_pos") > 0.5F) return;
  SetValue(row.status, 1);
  if (circuitFlight) I(refs.apMode) = 2;
}

void RunDisconnect(const AddonCommand& row, bool on) {
  Toggle(row, on);
  if (!on) PutLampsOut();
}

void RunArmThrottle(const AddonCommand& row, bool on) {
  Toggle(row, on);
  if (circuitFlight && ((I(refs.apState) & apAutothrottle) != 0) == on) PressModes(apAutothrottle);
}

void RunYawDamper(const AddonCommand& row, bool on) {
  Toggle(row, on);
  I(refs.yawDamper) = on ? 1 : 0;
}

void RunParkBrake(const AddonCommand& row, bool on) {
  Toggle(row, on);
  F(refs.parkBrake) = on ? 0.0F : 1.0F;
}

void RunFlaps(const AddonCommand& row, bool) { RequestFlaps(row.number / 8.0); }

struct EffectRow {
  AddonEffect effect;
  void (*run)(const AddonCommand& row, bool on) = nullptr;
};
constexpr EffectRow effectRows[] = {
    {.effect = AddonEffect::Mode, .run = RunMode},
    {.effect = AddonEffect::Master, .run = RunMaster},
    {.effect = AddonEffect::Disconnect, .run = RunDisconnect},
    {.effect = AddonEffect::ArmThrottle, .run = RunArmThrottle},
    {.effect = AddonEffect::YawDamper, .run = RunYawDamper},
    {.effect = AddonEffect::ParkBrake, .run = RunParkBrake},
    {.effect = AddonEffect::Flaps, .run = RunFlaps},
};
static_assert(IsTableOf<&EffectRow::effect>(effectRows, AddonEffect::Flaps));

void RunCommand(int phase, int tag) {
  if (phase != 0) return;
  const AddonCommand& row = addonCommands[static_cast<size_t>(tag)];
  bool on = *row.status != '\0' && Value(row.status) > 0.5F;
  effectRows[static_cast<int>(row.effect)].run(row, on);
}

// --- What switches do, and what they show ------------------------------------------------------------

// The bits of a switch's mode, armed or engaged.
int BothBits(int mode) {
  return mode | (mode == apNavArmed ? apNav : 0) | (mode == apGlideArmed ? apGlide : 0);
}
bool ModeIsOn(int mode) { return (I(refs.apState) & BothBits(mode)) != 0; }

void SetMode(const Linked& it) {
  if (ModeIsOn(it.row->number) != (I(it.own) != 0)) PressModes(it.row->number);
}
void ShowMode(const Linked& it) { I(it.own) = ModeIsOn(it.row->number) ? 1 : 0; }

void SetMaster(const Linked& it) {
  bool on = I(it.own) != 0;
  I(refs.apMode) = on ? 2 : 0;
  if (!on) DisconnectAutopilot();
  for (const char* lamp : {"x737/systems/afds/CMD_A", "x737/systems/afds/APengaged"})
    SetValue(lamp, on ? 1 : 0);
  if (!on) SetValue("x737/systems/afds/CMD_B", 0);
}

void SetCopy(const Linked& it) {
  if (it.stock != nullptr) F(it.stock) = F(it.own);
}
void SetCopyInt(const Linked& it) {
  if (it.stock != nullptr) I(it.stock) = I(it.own);
}

void SetTank(const Linked& it) { F(refs.fuel, it.row->number) = F(it.own); }
void ShowTank(const Linked& it) { F(it.own) = F(refs.fuel, it.row->number); }

void ShowTemperature(const Linked& it) { F(it.own) = F(refs.egt, it.row->number); }

void SetThrottle(const Linked& it) {
  int engine = it.row->number;
  F(refs.throttle, engine) = F(refs.engineThrottle, engine) = std::clamp(F(it.own), 0.0F, 1.0F);
  I(refs.propMode, engine) = F(it.own) < 0 ? 3 : 1;
  hands.throttle = true;
}

void SetMixture(const Linked& it) { F(refs.mixture, it.row->number) = F(it.own); }

void SetGear(const Linked& it) {
  float handle = F(it.own);
  if (handle < 0.25F || handle > 0.75F) RequestGear(handle > 0.75F);  // between: the "off" notch
}

struct LinkRow {
  AddonLinkKind link;
  void (*set)(const Linked&) = nullptr;   // after a plug-in or the console has set the switch
  void (*show)(const Linked&) = nullptr;  // each frame
};
constexpr LinkRow linkRows[] = {
    {.link = AddonLinkKind::Mode, .set = SetMode, .show = ShowMode},
    {.link = AddonLinkKind::Master, .set = SetMaster},
    {.link = AddonLinkKind::Copy, .set = SetCopy},
    {.link = AddonLinkKind::CopyInt, .set = SetCopyInt},
    {.link = AddonLinkKind::Tank, .set = SetTank, .show = ShowTank},
    {.link = AddonLinkKind::Temperature, .show = ShowTemperature},
    {.link = AddonLinkKind::Throttle, .set = SetThrottle},
    {.link = AddonLinkKind::Mixture, .set = SetMixture},
    {.link = AddonLinkKind::Gear, .set = SetGear},
};
static_assert(IsTableOf<&LinkRow::link>(linkRows, AddonLinkKind::Gear));

const LinkRow& RowOf(const Linked& it) { return linkRows[static_cast<int>(it.row->link)]; }

void SwitchSet(DataRef* self, int, int) {
  for (const Linked& it : linked) {
    if (it.own == self && RowOf(it).set != nullptr) RowOf(it).set(it);
  }
}

// The lamps of pressed modes follow captures.
struct LampRow {
  const char* lamp = "";
  int modes = 0;
};
constexpr LampRow lampRows[] = {
    {.lamp = "laminar/B738/autopilot/alt_hld_status", .modes = apAltitude},
    {.lamp = "laminar/B738/autopilot/hdg_sel_status", .modes = apHeading},
    {.lamp = "laminar/B738/autopilot/vs_status", .modes = apVerticalSpeed},
    {.lamp = "laminar/B738/autopilot/lvl_chg_status", .modes = apLevelChange},
    {.lamp = "laminar/B738/autopilot/vorloc_status", .modes = apNavArmed | apNav},
};

}  // namespace

void ForgetAddon() {
  published.clear();
  linked.clear();
  hasLamps = false;
}

void PublishAddon(const Aircraft& which) {
  for (DataRef* ref : published) {
    if (ref->live) Withdraw(ref);
  }
  ForgetAddon();
  for (const AddonRows& addon : addonRows) {
    if (std::strcmp(addon.aircraft, which.name) != 0) continue;
    for (const DataRefRow& row : addon.rows) {
      DataRef* ref = PublishRow(row);
      if (ref != nullptr) published.push_back(ref);
    }
  }
  for (size_t i = 0; i < addonCommands.size(); i++) {
    if (std::strcmp(addonCommands[i].aircraft, which.name) == 0)
      PublishCommand(addonCommands[i].name, RunCommand, static_cast<int>(i));
  }
  if (!circuitFlight) return;
  hasLamps = FindLive("laminar/B738/autopilot/alt_hld_status") != nullptr;
  for (const AddonLink& row : addonLinks) {
    DataRef* own = FindLive(row.name);
    if (own == nullptr) continue;
    own->onSet = SwitchSet;
    linked.push_back({.row = &row, .own = own, .stock = *row.stock != '\0' ? FindLive(row.stock) : nullptr});
  }
}

void StepAddon() {
  for (const Linked& it : linked) {
    if (RowOf(it).show != nullptr) RowOf(it).show(it);
  }
  if (!hasLamps) return;
  for (const LampRow& row : lampRows) SetValue(row.lamp, (I(refs.apState) & row.modes) != 0 ? 1 : 0);
}

}  // namespace sim
