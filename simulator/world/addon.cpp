// Add-ons at work: their datarefs come and go with the aircraft or the plug-in, their commands and switches act
// on the stock controls of the same meaning.
#include "world/addon.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <string>

#include "core/table.h"
#include "world/refs.h"

namespace sim {

namespace {

std::map<std::string, std::vector<DataRef*>> published;  // by owner
struct Linked {
  const AddonLink* row;
  DataRef* own;
  DataRef* stock;  // null for the kinds without
  double shown;    // what it had last
};
std::vector<Linked> linked;
struct Polled {
  const AddonPoll* row;
  DataRef* own;
  double last;
};
std::vector<Polled> polled;
bool hasLamps = false;  // mode lamps of the 737-800s

double ElementOf(const DataRef* ref, size_t i) {
  if (i < ref->ints.size()) return ref->ints[i];
  return i < ref->floats.size() ? static_cast<double>(ref->floats[i]) : 0;
}
double Value(const char* name, int element = 0) {
  const DataRef* ref = FindLive(name);
  return ref == nullptr ? 0 : ElementOf(ref, static_cast<size_t>(element));
}
bool IsUp(const char* name) { return Value(name) > 0.5; }

// As a hand moves it: what hangs on it follows.
void SetValue(const char* name, double value, int element = 0) {
  DataRef* ref = FindLive(name);
  if (ref == nullptr) return;
  StoreElement(ref, element, value);
  if (ref->onSet != nullptr) ref->onSet(ref, element, 1);
}
void Put(const AddonCommand& row, double value) { SetValue(row.status, value, row.element); }

#define B738 "laminar/B738/autopilot/"
constexpr const char* bar = B738 "disconnect_pos";
constexpr const char* armed = B738 "autothrottle_arm_pos";

void PutLampsOut() {
  for (const char* lamp :
       {B738 "cmd_a_status", B738 "cmd_b_status", B738 "cws_a_status", B738 "cws_b_status",
        "ixeg/733/MCP/mcp_a_comm_ann", "ixeg/733/MCP/mcp_b_comm_ann", "ixeg/733/MCP/mcp_a_cws_ann",
        "ixeg/733/MCP/mcp_b_cws_ann", "x737/systems/afds/CMD_A", "x737/systems/afds/CMD_B"}) {
    SetValue(lamp, 0);
  }
  if (circuitFlight) DisconnectAutopilot();
}

// --- What commands do ------------------------------------------------------------------------------
// `on` is the status before the command.

void Toggle(const AddonCommand& row, bool on) { Put(row, on ? 0 : 1); }

void RunMode(const AddonCommand& row, bool on) {
  Toggle(row, on);
  if (circuitFlight) PressModes(row.number);
}

void RunThrustMode(const AddonCommand& row, bool on) {
  if (!on && !IsUp(armed)) return;
  RunMode(row, on);
}

void RunEngage(const AddonCommand& row, bool on) {
  if (IsUp(bar)) return;
  Toggle(row, on);
  if (circuitFlight) I(refs.apMode) = on ? 0 : 2;
}

void RunDisconnect(const AddonCommand& row, bool on) {
  Toggle(row, on);
  if (!on) PutLampsOut();
}

void RunLampsOut(const AddonCommand&, bool) { PutLampsOut(); }

void RunArmThrottle(const AddonCommand& row, bool on) {
  Toggle(row, on);
  if (circuitFlight && ((I(refs.apState) & apAutothrottle) != 0) == on) PressModes(apAutothrottle);
}

void RunArmThrottleOfServos(const AddonCommand& row, bool on) {
  if (on || I(refs.apMode) == 2) RunArmThrottle(row, on);
}

void RunDisarmThrottle(const AddonCommand& row, bool on) {
  if (on) RunArmThrottle(row, on);
}

void RunToga(const AddonCommand& row, bool) {
  Put(row, 1);
  if (circuitFlight) PressModes(apTogaLateral | apTogaVertical);
}

void RunYawDamper(const AddonCommand& row, bool on) {
  Toggle(row, on);
  I(refs.yawDamper) = on ? 0 : 1;
}

void RunParkBrake(const AddonCommand& row, bool on) {
  Toggle(row, on);
  F(refs.parkBrake) = on ? 0.0F : 1.0F;
}

void RunFlaps(const AddonCommand& row, bool) {
  RequestFlaps(row.number / 8.0);
  Put(row, row.value);
}

void RunPut(const AddonCommand& row, bool) { Put(row, row.value); }
void RunStep(const AddonCommand& row, bool) {
  Put(row, std::clamp(Value(row.status) + row.value, row.low, row.high));
}
void RunTurn(const AddonCommand& row, bool) { Put(row, std::fmod(Value(row.status) + row.value + 360, 360)); }

void RunGenerator(const AddonCommand& row, bool) {
  SetValue("sim/cockpit/electrical/generator_on", row.value, row.number);
}
void RunBattery(const AddonCommand& row, bool) {
  Put(row, row.value);
  SetValue("sim/cockpit/electrical/battery_on", row.value);
}
void RunStock(const AddonCommand& row, bool) { SetValue(row.stock, row.value); }

void RunApuDown(const AddonCommand& row, bool) { Put(row, std::min(Value(row.status) + 1, 2.0)); }
void EndApuDown(const AddonCommand& row) {
  if (Value(row.status) <= 1.5) return;
  Put(row, 1);
  SetValue("sim/cockpit/engine/APU_running", 1);
}
void RunApuUp(const AddonCommand& row, bool) {
  if (Value(row.status) > 1.5) return;
  Put(row, 0);
  SetValue("sim/cockpit/engine/APU_running", 0);
}

void RunSpeedBrakeDown(const AddonCommand& row, bool) {
  Put(row, 0);
  F(refs.speedBrakeRequest) = 0;
}

void EndHeld(const AddonCommand& row) { Put(row, 0); }

struct EffectRow {
  AddonEffect effect;
  void (*run)(const AddonCommand& row, bool on) = nullptr;
  void (*end)(const AddonCommand& row) = nullptr;
};
constexpr EffectRow effectRows[] = {
    {.effect = AddonEffect::Nothing},
    {.effect = AddonEffect::Mode, .run = RunMode},
    {.effect = AddonEffect::ThrustMode, .run = RunThrustMode},
    {.effect = AddonEffect::Engage, .run = RunEngage},
    {.effect = AddonEffect::Disconnect, .run = RunDisconnect},
    {.effect = AddonEffect::LampsOut, .run = RunLampsOut},
    {.effect = AddonEffect::ArmThrottle, .run = RunArmThrottle},
    {.effect = AddonEffect::ArmThrottleOfServos, .run = RunArmThrottleOfServos},
    {.effect = AddonEffect::DisarmThrottle, .run = RunDisarmThrottle},
    {.effect = AddonEffect::Toga, .run = RunToga},
    {.effect = AddonEffect::YawDamper, .run = RunYawDamper},
    {.effect = AddonEffect::ParkBrake, .run = RunParkBrake},
    {.effect = AddonEffect::Flaps, .run = RunFlaps},
    {.effect = AddonEffect::Toggle, .run = Toggle},
    {.effect = AddonEffect::Put, .run = RunPut},
    {.effect = AddonEffect::Step, .run = RunStep},
    {.effect = AddonEffect::Turn, .run = RunTurn},
    {.effect = AddonEffect::Generator, .run = RunGenerator},
    {.effect = AddonEffect::Battery, .run = RunBattery},
    {.effect = AddonEffect::Stock, .run = RunStock},
    {.effect = AddonEffect::ApuDown, .run = RunApuDown, .end = EndApuDown},
    {.effect = AddonEffect::ApuUp, .run = RunApuUp},
    {.effect = AddonEffect::SpeedBrakeDown, .run = RunSpeedBrakeDown},
    {.effect = AddonEffect::WhileHeld,
     .run = [](const AddonCommand& row, bool) { Put(row, 1); },
     .end = EndHeld},
};
static_assert(IsTableOf<&EffectRow::effect>(effectRows, AddonEffect::WhileHeld));

bool HasDirector(AddonDirector director) {
  const bool captain = IsUp(B738 "flight_director_pos"), other = IsUp(B738 "flight_director_fo_pos");
  switch (director) {
    case AddonDirector::Any:
      return captain || other;
    case AddonDirector::Captain:
      return captain;
    case AddonDirector::Other:
      return other;
    case AddonDirector::None:
      break;
  }
  return true;
}

void RunCommand(int phase, int tag) {
  const AddonCommand& row = addonCommands[static_cast<size_t>(tag)];
  const EffectRow& effect = effectRows[static_cast<int>(row.effect)];
  if (phase == 2 && effect.end != nullptr) effect.end(row);
  if (phase != 0 || effect.run == nullptr) return;
  const bool on = *row.status != '\0' && Value(row.status, row.element) > 0.5;
  if (on || HasDirector(row.director)) effect.run(row, on);
}

void Press(const char* name) {
  for (size_t i = 0; i < addonCommands.size(); i++) {
    if (std::strcmp(addonCommands[i].name, name) == 0 &&
        std::strcmp(addonCommands[i].owner, aircraft->name) == 0) {
      RunCommand(0, static_cast<int>(i));
    }
  }
}

// --- What switches do, and what they show ------------------------------------------------------------

// The bits of a switch's mode, armed or engaged.
int BothBits(int mode) {
  return mode | (mode == apNavArmed ? apNav : 0) | (mode == apGlideArmed ? apGlide : 0);
}
bool ModeIsOn(int mode) { return (I(refs.apState) & BothBits(mode)) != 0; }

// Without a flight a switch's mode is what was set.
void SetMode(const Linked& it) {
  if (circuitFlight && ModeIsOn(it.row->number) != (I(it.own) != 0)) PressModes(it.row->number);
}
void ShowMode(const Linked& it) { I(it.own) = ModeIsOn(it.row->number) ? 1 : 0; }

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

void ShowStock(const Linked& it) { StoreElement(it.own, 0, it.shown); }
void ShowOwn(const Linked& it) { StoreElement(it.own, 0, it.shown > 0.5 ? 1 : 0); }
void ShowDark(const Linked& it) { StoreElement(it.own, 0, it.shown > 0.5 ? 0 : 1); }

struct LinkRow {
  AddonLinkKind link;
  void (*set)(const Linked&) = nullptr;   // after a plug-in or the console has set the switch
  void (*show)(const Linked&) = nullptr;  // each frame
};
constexpr LinkRow linkRows[] = {
    {.link = AddonLinkKind::Mode, .set = SetMode, .show = ShowMode},
    {.link = AddonLinkKind::Copy, .set = SetCopy},
    {.link = AddonLinkKind::CopyInt, .set = SetCopyInt},
    {.link = AddonLinkKind::Tank, .set = SetTank, .show = ShowTank},
    {.link = AddonLinkKind::Temperature, .show = ShowTemperature},
    {.link = AddonLinkKind::Throttle, .set = SetThrottle},
    {.link = AddonLinkKind::Mixture, .set = SetMixture},
    {.link = AddonLinkKind::Gear, .set = SetGear},
    {.link = AddonLinkKind::Show, .show = ShowStock},
    {.link = AddonLinkKind::ShowOwn, .show = ShowOwn},
    {.link = AddonLinkKind::ShowDark, .show = ShowDark},
};
static_assert(IsTableOf<&LinkRow::link>(linkRows, AddonLinkKind::ShowDark));

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
    {.lamp = "laminar/B738/autopilot/app_status", .modes = apGlideArmed | apGlide},
};

// What the add-on of an owner brings. What is there already under the same name stays somebody else's.
void PublishOwned(const char* owner) {
  for (const AddonRows& addon : addonRows) {
    if (std::strcmp(addon.owner, owner) != 0) continue;
    for (const DataRefRow& row : addon.rows) {
      const bool isNew = FindLive(row.name) == nullptr;
      DataRef* ref = PublishRow(row);
      if (isNew && ref != nullptr) published[owner].push_back(ref);
    }
  }
  for (size_t i = 0; i < addonCommands.size(); i++) {
    if (std::strcmp(addonCommands[i].owner, owner) == 0)
      PublishCommand(addonCommands[i].name, RunCommand, static_cast<int>(i));
  }
}

// Commands stay, as they do in the simulator.
void WithdrawOwned(const std::string& owner) {
  for (DataRef* ref : published[owner]) {
    if (ref->live) Withdraw(ref);
  }
  published.erase(owner);
}

std::string aircraftOwner;

}  // namespace

void ForgetAddon() {
  published.clear();
  linked.clear();
  polled.clear();
  aircraftOwner.clear();
  hasLamps = false;
}

void WorldPluginPretended(const std::string& signature, bool on) {
  if (on) {
    PublishOwned(signature.c_str());
  } else {
    WithdrawOwned(signature);
  }
}

void PublishAddon(const Aircraft& which) {
  linked.clear();
  polled.clear();
  WithdrawOwned(aircraftOwner);
  aircraftOwner = which.name;
  PublishOwned(which.name);
  for (const AddonPoll& row : addonPolls) {
    if (DataRef* own = FindLive(row.name); own != nullptr) polled.push_back({&row, own, 0});
  }
  hasLamps = circuitFlight && FindLive("laminar/B738/autopilot/alt_hld_status") != nullptr;
  for (const AddonLink& row : addonLinks) {
    DataRef* own = FindLive(row.name);
    if (own == nullptr) continue;
    own->onSet = SwitchSet;
    linked.push_back(
        {.row = &row, .own = own, .stock = *row.stock != '\0' ? FindLive(row.stock) : nullptr, .shown = 0});
    if (linked.back().stock != nullptr) linked.back().shown = ElementOf(linked.back().stock, 0);
  }
}

void StepAddon() {
  for (Linked& it : linked) {
    const double now = it.stock != nullptr ? ElementOf(it.stock, 0) : it.shown;
    const bool changed = now != it.shown;
    it.shown = now;
    // Without a flight what was set stays, until something moves.
    if (RowOf(it).show != nullptr && (circuitFlight || changed)) RowOf(it).show(it);
  }
  for (Polled& it : polled) {
    const double now = ElementOf(it.own, 0);
    const bool changed = now != it.last;
    it.last = now;
    if (!changed) continue;
    if (*it.row->position != '\0' ? now != Value(it.row->position) : now > 0.5) Press(it.row->command);
  }
  if (!hasLamps) return;
  for (const LampRow& row : lampRows) SetValue(row.lamp, (I(refs.apState) & row.modes) != 0 ? 1 : 0);
}

}  // namespace sim
