// Add-on aircraft at work: their datarefs come and go with the aircraft, their commands and switches act
// on the stock controls of the same meaning.
#include "world/addon.h"

#include <algorithm>
#include <cstring>
#include <string>

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
  return ref == nullptr ? 0 : F(ref) + static_cast<float>(I(ref)) * (ref->kind == Kind::Int ? 1.0F : 0.0F);
}

void SetValue(const char* name, double value) {
  DataRef* ref = FindLive(name);
  if (ref == nullptr) return;
  if (ref->kind == Kind::Int) {
    I(ref) = static_cast<int>(value);
  } else {
    F(ref) = static_cast<float>(value);
  }
}

void PutLampsOut() {
  for (const char* lamp : {"laminar/B738/autopilot/cmd_a_status", "laminar/B738/autopilot/cmd_b_status",
                           "laminar/B738/autopilot/cws_a_status", "laminar/B738/autopilot/cws_b_status"}) {
    SetValue(lamp, 0);
  }
  if (circuitFlight) DisconnectAutopilot();
}

void Run(const AddonCommand& row) {
  bool on = *row.status != '\0' && Value(row.status) > 0.5F;
  auto toggle = [&] { SetValue(row.status, on ? 0 : 1); };
  switch (row.effect) {
    case AddonEffect::Mode:
      toggle();
      if (circuitFlight) PressModes(row.number);
      break;
    case AddonEffect::Master:
      if (Value("laminar/B738/autopilot/disconnect_pos") > 0.5F) break;
      SetValue(row.status, 1);
      if (circuitFlight) I(refs.apMode) = 2;
      break;
    case AddonEffect::Disconnect:
      toggle();
      if (!on) PutLampsOut();
      break;
    case AddonEffect::ArmThrottle:
      toggle();
      if (circuitFlight && ((I(refs.apState) & apAutothrottle) != 0) == on) PressModes(apAutothrottle);
      break;
    case AddonEffect::YawDamper:
      toggle();
      SetValue("sim/cockpit/switches/yaw_damper_on", on ? 1 : 0);
      break;
    case AddonEffect::ParkBrake:
      toggle();
      F(refs.parkBrake) = on ? 0.0F : 1.0F;
      break;
    case AddonEffect::Flaps:
      RequestFlaps(row.number / 8.0);
      break;
  }
}

void RunCommand(int phase, int tag) {
  if (phase == 0) Run(addonCommands[tag]);
}

// A switch of the add-on was set by a plug-in or the console.
void SwitchSet(DataRef* self, int, int) {
  for (const Linked& it : linked) {
    if (it.own != self) continue;
    bool on = I(self) != 0;
    switch (it.row->link) {
      case AddonLinkKind::Mode: {
        int both = it.row->number | (it.row->number == apNavArmed ? apNav : 0) |
                   (it.row->number == apGlideArmed ? apGlide : 0);
        if (((I(refs.apState) & both) != 0) != on) PressModes(it.row->number);
        break;
      }
      case AddonLinkKind::Master:
        I(refs.apMode) = on ? 2 : 0;
        if (!on) DisconnectAutopilot();
        for (const char* lamp : {"x737/systems/afds/CMD_A", "x737/systems/afds/APengaged"})
          SetValue(lamp, on ? 1 : 0);
        if (!on) SetValue("x737/systems/afds/CMD_B", 0);
        break;
      case AddonLinkKind::Copy:
        if (it.stock != nullptr) F(it.stock) = F(self);
        break;
      case AddonLinkKind::CopyInt:
        if (it.stock != nullptr) I(it.stock) = I(self);
        break;
      case AddonLinkKind::Tank:
        F(refs.fuel, it.row->number) = F(self);
        break;
      case AddonLinkKind::Throttle: {
        float ratio = std::clamp(F(self), 0.0F, 1.0F);
        F(refs.throttle, it.row->number) = F(refs.engineThrottle, it.row->number) = ratio;
        I(refs.propMode, it.row->number) = F(self) < 0 ? 3 : 1;
        hands.throttle = true;
        break;
      }
      case AddonLinkKind::Mixture:
        F(refs.mixture, it.row->number) = F(self);
        break;
      case AddonLinkKind::Gear:
        if (F(self) < 0.25F || F(self) > 0.75F) RequestGear(F(self) > 0.75F);  // between: the "off" notch
        break;
      case AddonLinkKind::Temperature:
        break;
    }
  }
}

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
  for (int i = 0; i < addonRowsCount; i++) {
    if (std::strcmp(addonRows[i].aircraft, which.name) != 0) continue;
    for (int j = 0; j < addonRows[i].count; j++) {
      DataRef* ref = PublishRow(addonRows[i].rows[j]);
      if (ref != nullptr) published.push_back(ref);
    }
  }
  for (int i = 0; i < addonCommandCount; i++) {
    if (std::strcmp(addonCommands[i].aircraft, which.name) == 0)
      PublishCommand(addonCommands[i].name, RunCommand, i);
  }
  if (!circuitFlight) return;
  hasLamps = FindLive("laminar/B738/autopilot/alt_hld_status") != nullptr;
  for (int i = 0; i < addonLinkCount; i++) {
    const AddonLink& row = addonLinks[i];
    DataRef* own = FindLive(row.name);
    if (own == nullptr) continue;
    own->onSet = SwitchSet;
    linked.push_back({&row, own, *row.stock != '\0' ? FindLive(row.stock) : nullptr});
  }
}

void StepAddon() {
  for (const Linked& it : linked) {
    switch (it.row->link) {
      case AddonLinkKind::Temperature:
        F(it.own) = F(refs.egt, it.row->number);
        break;
      case AddonLinkKind::Tank:
        F(it.own) = F(refs.fuel, it.row->number);
        break;
      case AddonLinkKind::Mode: {
        int both = it.row->number | (it.row->number == apNavArmed ? apNav : 0) |
                   (it.row->number == apGlideArmed ? apGlide : 0);
        I(it.own) = (I(refs.apState) & both) != 0 ? 1 : 0;
        break;
      }
      default:
        break;
    }
  }
  // The lamps of pressed modes follow captures.
  if (!hasLamps) return;
  const struct {
    const char* lamp;
    int modes;
  } lamps[] = {
      {"laminar/B738/autopilot/alt_hld_status", apAltitude},
      {"laminar/B738/autopilot/hdg_sel_status", apHeading},
      {"laminar/B738/autopilot/vs_status", apVerticalSpeed},
      {"laminar/B738/autopilot/lvl_chg_status", apLevelChange},
      {"laminar/B738/autopilot/vorloc_status", apNavArmed | apNav},
  };
  for (const auto& it : lamps) SetValue(it.lamp, (I(refs.apState) & it.modes) != 0 ? 1 : 0);
}

}  // namespace sim
