// Tables of what add-on aircraft and network clients publish beside the stock datarefs, and how their switches
// act on the stock ones. The effects are applied in addon.cpp.
#pragma once
#include "flight/flight.h"
#include "world/world.h"

namespace sim {

// The owner is an aircraft's name or a plug-in's signature.
struct AddonRows {
  const char* owner = "";
  std::span<const DataRefRow> rows = {};
};
extern const std::span<const AddonRows> addonRows;

// What a command does. `status` is the dataref that it moves, `value` where to or by how much. Commands act
// when they begin; those that are said to be held do something at their end, too.
enum class AddonEffect {
  Nothing,              // that can be seen
  Mode,                 // presses the stock autopilot mode `number` and toggles the status
  ThrustMode,           // the same, if the autothrottle is armed
  Engage,               // toggles the status unless the disconnect bar is down, and the stock autopilot with it
  Disconnect,           // toggles the bar; pulled down it puts all autopilot lamps out
  LampsOut,             // puts all autopilot lamps out
  ArmThrottle,          // toggles the status and the stock autothrottle
  ArmThrottleOfServos,  // the same, but arms only while the stock autopilot is on
  DisarmThrottle,
  Toga,       // presses the stock take-off and go-around modes and lights the status
  YawDamper,  // toggles the status and the stock yaw damper
  ParkBrake,  // toggles the status and the stock brake
  Flaps,      // detent `number` of 0 to 8
  Toggle,
  Put,
  Step,            // by `value` between `low` and `high`
  Turn,            // by `value` degrees, round and round
  Generator,       // stock generator `number`
  Battery,         // the status and the stock battery
  Stock,           // puts the stock dataref
  ApuDown,         // off to on, then on to start while it is held
  ApuUp,           // on to off
  SpeedBrakeDown,  // puts the status out and the stock lever down
  WhileHeld,       // the status is 1 while it is held
};
// A flight director that has to be on for a press to act.
enum class AddonDirector { None, Any, Captain, Other };
struct AddonCommand {
  const char* owner = "";
  const char* name = "";
  const char* status = "";
  int element = 0;  // of an array
  AddonEffect effect = AddonEffect::Nothing;
  int number = 0;
  double value = 0, low = 0, high = 0;
  const char* stock = "";
  AddonDirector director = AddonDirector::None;
};
extern const std::span<const AddonCommand> addonCommands;

// A switch that the aircraft looks at once a frame. Without a position a change from 0 to 1 fires the command,
// else a change that leaves it elsewhere than the position does.
struct AddonPoll {
  const char* name = "";
  const char* position = "";
  const char* command = "";
};
extern const std::span<const AddonPoll> addonPolls;

enum class AddonLinkKind {
  Mode,
  Copy,
  CopyInt,
  Tank,
  Temperature,
  Throttle,
  Mixture,
  Gear,
  Show,      // what the stock dataref has
  ShowOwn,   // 1 while another one of the add-on is above 0.5
  ShowDark,  // 1 while it is not
};
struct AddonLink {
  const char* name = "";
  AddonLinkKind link = AddonLinkKind::Copy;
  const char* stock = "";  // for the copies and what is shown
  int number = 0;          // mode bits, tank or engine
};
extern const std::span<const AddonLink> addonLinks;

}  // namespace sim
