// Tables of what add-on aircraft publish beside the stock datarefs, and how their switches act on the
// stock ones. The effects are applied in addon.cpp.
#pragma once
#include "flight/flight.h"
#include "world/world.h"

namespace sim {

struct AddonRows {
  const char* aircraft = "";
  std::span<const DataRefRow> rows = {};
};
extern const std::span<const AddonRows> addonRows;

enum class AddonEffect {
  Mode,         // presses the stock autopilot mode `number` and toggles the status
  Master,       // lights the status and engages the autopilot, unless the disconnect bar is down
  Disconnect,   // toggles the bar; pulled down it puts all autopilot lamps out
  ArmThrottle,  // toggles the status and the stock autothrottle
  YawDamper,    // the status is the "off" light
  ParkBrake,    // toggles the light and the brake
  Flaps,        // detent `number` of 0 to 8
};
struct AddonCommand {
  const char* aircraft = "";
  const char* name = "";
  const char* status = "";
  AddonEffect effect = AddonEffect::Mode;
  int number = 0;
};
extern const std::span<const AddonCommand> addonCommands;

enum class AddonLinkKind { Mode, Master, Copy, CopyInt, Tank, Temperature, Throttle, Mixture, Gear };
struct AddonLink {
  const char* name = "";
  AddonLinkKind link = AddonLinkKind::Copy;
  const char* stock = "";  // for the copies
  int number = 0;          // mode bits, tank or engine
};
extern const std::span<const AddonLink> addonLinks;

}  // namespace sim
