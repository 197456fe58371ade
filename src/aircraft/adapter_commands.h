// Command handles of recognised add-ons. Null while the add-on is not loaded or does not publish the
// command; firing a null handle does nothing (bridge/sources.h). Simulator's thread only.
#pragma once
#include "XPLMUtilities.h"

struct B738Commands {
  XPLMCommandRef vorlocPress;            // laminar/B738/autopilot/vorloc_press
  XPLMCommandRef altHldPress;            // laminar/B738/autopilot/alt_hld_press
  XPLMCommandRef vsPress;                // laminar/B738/autopilot/vs_press
  XPLMCommandRef cmdAPress;              // laminar/B738/autopilot/cmd_a_press
  XPLMCommandRef disconnectToggle;       // laminar/B738/autopilot/disconnect_toggle
  XPLMCommandRef autothrottleArmToggle;  // laminar/B738/autopilot/autothrottle_arm_toggle
  XPLMCommandRef yawDamper;              // laminar/B738/toggle_switch/yaw_dumper
  XPLMCommandRef parkBrakeOnOff;         // laminar/B738/push_button/park_brake_on_off
  XPLMCommandRef flaps[9];  // laminar/B738/push_button/flaps_0, _1, _2, _5, _10, _15, _25, _30, _40
};
struct PilotEdgeCommands {
  XPLMCommandRef connect, disconnect;  // PilotEdge/Connect, PilotEdge/Disconnect
};
extern B738Commands b738Commands;
extern PilotEdgeCommands pilotEdgeCommands;
