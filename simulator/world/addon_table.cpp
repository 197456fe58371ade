// What the add-ons of some aircraft publish: datarefs while the aircraft is loaded, and commands with their
// effect. Numbers made by aircraft scripts are floats here; switches that the add-on's own code reads as
// integers are integers.
#include "world/addon.h"

namespace sim {

namespace {

// Boeing 737-800 as delivered: the autopilot's lamps and its disconnect bar.
const DataRefRow stockBoeing[] = {
    {.name = "laminar/B738/autopilot/autothrottle_status", .kind = Kind::Float, .writable = true},
    {.name = "laminar/B738/autopilot/cmd_a_status", .kind = Kind::Float, .writable = true},
    {.name = "laminar/B738/autopilot/cmd_b_status", .kind = Kind::Float, .writable = true},
    {.name = "laminar/B738/autopilot/cws_a_status", .kind = Kind::Float, .writable = true},
    {.name = "laminar/B738/autopilot/cws_b_status", .kind = Kind::Float, .writable = true},
    {.name = "laminar/B738/autopilot/disconnect_pos", .kind = Kind::Float, .writable = true},
};

// The extended 737-800.
const DataRefRow extendedBoeing[] = {
    {.name = "laminar/B738/annunciator/parking_brake", .kind = Kind::Float, .writable = true},
    {.name = "laminar/B738/annunciator/yaw_damp", .kind = Kind::Float, .writable = true, .start = 1},
    {.name = "laminar/B738/autopilot/alt_hld_status", .kind = Kind::Float, .writable = true},
    {.name = "laminar/B738/autopilot/app_status", .kind = Kind::Float, .writable = true},
    {.name = "laminar/B738/autopilot/autothrottle_status", .kind = Kind::Float, .writable = true},
    {.name = "laminar/B738/autopilot/cmd_a_status", .kind = Kind::Float, .writable = true},
    {.name = "laminar/B738/autopilot/cmd_b_status", .kind = Kind::Float, .writable = true},
    {.name = "laminar/B738/autopilot/cws_a_status", .kind = Kind::Float, .writable = true},
    {.name = "laminar/B738/autopilot/cws_b_status", .kind = Kind::Float, .writable = true},
    {.name = "laminar/B738/autopilot/disconnect_pos", .kind = Kind::Float, .writable = true},
    {.name = "laminar/B738/autopilot/hdg_sel_status", .kind = Kind::Float, .writable = true},
    {.name = "laminar/B738/autopilot/lvl_chg_status", .kind = Kind::Float, .writable = true},
    {.name = "laminar/B738/autopilot/n1_status", .kind = Kind::Float, .writable = true},
    {.name = "laminar/B738/autopilot/speed_status1", .kind = Kind::Float, .writable = true},
    {.name = "laminar/B738/autopilot/vnav_status1", .kind = Kind::Float, .writable = true},
    {.name = "laminar/B738/autopilot/vorloc_status", .kind = Kind::Float, .writable = true},
    {.name = "laminar/B738/autopilot/vs_status", .kind = Kind::Float, .writable = true},
    {.name = "laminar/B738/controls/gear_handle_down", .kind = Kind::Float, .writable = true, .start = 1, .unit = "ratio: 0 up, 0.5 off, 1 down"},
    {.name = "laminar/B738/engine/eng1_egt", .kind = Kind::Float, .writable = true, .start = 420, .unit = "deg C"},
    {.name = "laminar/B738/engine/eng2_egt", .kind = Kind::Float, .writable = true, .start = 420, .unit = "deg C"},
    {.name = "laminar/B738/engine/mixture_ratio1", .kind = Kind::Float, .writable = true, .start = 1, .unit = "ratio"},
    {.name = "laminar/B738/engine/mixture_ratio2", .kind = Kind::Float, .writable = true, .start = 1, .unit = "ratio"},
    {.name = "laminar/B738/flt_ctrls/speedbrake_lever", .kind = Kind::Float, .writable = true, .unit = "ratio"},
    {.name = "laminar/B738/tab/credits", .kind = Kind::Float, .writable = true},
    {.name = "laminar/B738/tab/page", .kind = Kind::Float, .writable = true},
    {.name = "laminar/B738/tab/power", .kind = Kind::Float, .writable = true, .start = 1},
};

const DataRefRow x737[] = {
    {.name = "x737/cockpit/tq/leftCutoffLeverPos", .kind = Kind::Float, .writable = true, .start = 1, .unit = "ratio"},
    {.name = "x737/cockpit/tq/left_TOGA_btn", .kind = Kind::Int, .writable = true},
    {.name = "x737/cockpit/tq/rightCutoffLeverPos", .kind = Kind::Float, .writable = true, .start = 1, .unit = "ratio"},
    {.name = "x737/cockpit/tq/right_TOGA_btn", .kind = Kind::Int, .writable = true},
    {.name = "x737/engine/viblevel_1", .kind = Kind::Float, .writable = true, .start = 0.6},
    {.name = "x737/engine/viblevel_2", .kind = Kind::Float, .writable = true, .start = 0.7},
    {.name = "x737/systems/MCP/LED_LVLCHG_on", .kind = Kind::Int, .writable = true, .unit = "bool"},
    {.name = "x737/systems/MCP/LED_VNAV_on", .kind = Kind::Int, .writable = true, .unit = "bool"},
    {.name = "x737/systems/PFD/PFD_TOGA_mode_on", .kind = Kind::Int, .writable = true, .unit = "bool"},
    {.name = "x737/systems/afds/ALTHLD", .kind = Kind::Int, .writable = true, .unit = "bool"},
    {.name = "x737/systems/afds/ALTHLD_baroalt", .kind = Kind::Float, .writable = true, .start = 3000, .unit = "feet"},
    {.name = "x737/systems/afds/APP", .kind = Kind::Int, .writable = true, .unit = "bool"},
    {.name = "x737/systems/afds/AP_A_pitch", .kind = Kind::Float, .writable = true, .unit = "deg"},
    {.name = "x737/systems/afds/AP_A_roll", .kind = Kind::Float, .writable = true, .unit = "deg"},
    {.name = "x737/systems/afds/APengaged", .kind = Kind::Int, .writable = true, .unit = "bool"},
    {.name = "x737/systems/afds/CMD_A", .kind = Kind::Int, .writable = true, .unit = "bool"},
    {.name = "x737/systems/afds/CMD_B", .kind = Kind::Int, .writable = true, .unit = "bool"},
    {.name = "x737/systems/afds/HDG", .kind = Kind::Int, .writable = true, .unit = "bool"},
    {.name = "x737/systems/afds/HDG_magnhdg", .kind = Kind::Float, .writable = true, .unit = "degm"},
    {.name = "x737/systems/afds/VORLOC", .kind = Kind::Int, .writable = true, .unit = "bool"},
    {.name = "x737/systems/afds/VS", .kind = Kind::Int, .writable = true, .unit = "bool"},
    {.name = "x737/systems/afds/VS_arm", .kind = Kind::Int, .writable = true, .unit = "bool"},
    {.name = "x737/systems/afds/VS_vvi", .kind = Kind::Float, .writable = true, .unit = "fpm"},
    {.name = "x737/systems/afds/fdA_status", .kind = Kind::Int, .writable = true, .unit = "bool"},
    {.name = "x737/systems/afds/fdB_status", .kind = Kind::Int, .writable = true, .unit = "bool"},
    {.name = "x737/systems/afds/fd_master", .kind = Kind::Int, .writable = true},
    {.name = "x737/systems/athr/MCPSPD_ismach", .kind = Kind::Int, .writable = true},
    {.name = "x737/systems/athr/MCPSPD_mode", .kind = Kind::Int, .writable = true, .unit = "bool"},
    {.name = "x737/systems/athr/MCPSPD_spd", .kind = Kind::Float, .writable = true, .start = 200, .unit = "knots_mach"},
    {.name = "x737/systems/athr/MCPSPD_spdkias", .kind = Kind::Float, .writable = true, .start = 200},
    {.name = "x737/systems/athr/MCPSPD_spdmach", .kind = Kind::Float, .writable = true},
    {.name = "x737/systems/athr/N1_mode", .kind = Kind::Int, .writable = true},
    {.name = "x737/systems/athr/athr_armed", .kind = Kind::Int, .writable = true, .unit = "bool"},
    {.name = "x737/systems/athr/toggle_TOGA", .kind = Kind::Int, .writable = true},
    {.name = "x737/systems/electrics/swBatBusPowered", .kind = Kind::Int, .writable = true, .start = 1, .unit = "bool"},
    {.name = "x737/systems/exteriorLights/beaconLightSwitch", .kind = Kind::Int, .writable = true, .start = 1, .unit = "bool"},
    {.name = "x737/systems/fuel/fuelCenterTank_kg", .kind = Kind::Float, .writable = true, .unit = "kg"},
    {.name = "x737/systems/fuel/fuelCenterTank_perc", .kind = Kind::Float, .writable = true},
    {.name = "x737/systems/fuel/fuelLeftMainTank_kg", .kind = Kind::Float, .writable = true, .unit = "kg"},
    {.name = "x737/systems/fuel/fuelLeftMainTank_perc", .kind = Kind::Float, .writable = true},
    {.name = "x737/systems/fuel/fuelRightMainTank_kg", .kind = Kind::Float, .writable = true, .unit = "kg"},
    {.name = "x737/systems/fuel/fuelRightMainTank_perc", .kind = Kind::Float, .writable = true},
    {.name = "x737/systems/speedbrake/spdbrkIsArmed", .kind = Kind::Int, .writable = true, .unit = "bool"},
    {.name = "x737/systems/speedbrake/spdbrkIsArmedLight", .kind = Kind::Int, .writable = true},
    {.name = "x737/systems/speedbrake/spdbrkLeverPos", .kind = Kind::Float, .writable = true, .unit = "ratio"},
};

const DataRefRow ixeg[] = {
    {.name = "ixeg/733/MCP/mcp_a_comm_ann", .kind = Kind::Float, .writable = true},
    {.name = "ixeg/733/MCP/mcp_a_cws_ann", .kind = Kind::Float, .writable = true},
    {.name = "ixeg/733/MCP/mcp_at_arm_ann", .kind = Kind::Float, .writable = true},
    {.name = "ixeg/733/MCP/mcp_b_comm_ann", .kind = Kind::Float, .writable = true},
    {.name = "ixeg/733/MCP/mcp_b_cws_ann", .kind = Kind::Float, .writable = true},
    {.name = "ixeg/733/hardware/tavrix_thro1", .kind = Kind::Float, .writable = true},
    {.name = "ixeg/733/hardware/tavrix_thro2", .kind = Kind::Float, .writable = true},
    {.name = "ixeg/733/hydraulics/speedbrake_act", .kind = Kind::Float, .writable = true},
    {.name = "ixeg/733/misc/seatbelt_act", .kind = Kind::Float, .writable = true, .unit = "switch position"},
};

template <int N>
constexpr int Count(const DataRefRow (&)[N]) {
  return N;
}

}  // namespace

const AddonRows addonRows[] = {
    {.aircraft = "b738", .rows = stockBoeing, .count = Count(stockBoeing)},
    {.aircraft = "b738-extended", .rows = extendedBoeing, .count = Count(extendedBoeing)},
    {.aircraft = "x737", .rows = x737, .count = Count(x737)},
    {.aircraft = "ixeg733", .rows = ixeg, .count = Count(ixeg)},
};
const int addonRowsCount = static_cast<int>(sizeof addonRows / sizeof addonRows[0]);

const AddonCommand addonCommands[] = {
    {.aircraft = "b738", .name = "laminar/B738/autopilot/cmd_a_press", .status = "laminar/B738/autopilot/cmd_a_status", .effect = AddonEffect::Master},
    {.aircraft = "b738", .name = "laminar/B738/autopilot/disconnect_toggle", .status = "laminar/B738/autopilot/disconnect_pos", .effect = AddonEffect::Disconnect},
    {.aircraft = "b738", .name = "laminar/B738/autopilot/autothrottle_arm_toggle", .status = "laminar/B738/autopilot/autothrottle_status", .effect = AddonEffect::ArmThrottle},
    {.aircraft = "b738-extended", .name = "laminar/B738/autopilot/cmd_a_press", .status = "laminar/B738/autopilot/cmd_a_status", .effect = AddonEffect::Master},
    {.aircraft = "b738-extended", .name = "laminar/B738/autopilot/disconnect_toggle", .status = "laminar/B738/autopilot/disconnect_pos", .effect = AddonEffect::Disconnect},
    {.aircraft = "b738-extended", .name = "laminar/B738/autopilot/autothrottle_arm_toggle", .status = "laminar/B738/autopilot/autothrottle_status", .effect = AddonEffect::ArmThrottle},
    {.aircraft = "b738-extended", .name = "laminar/B738/autopilot/cmd_b_press", .status = "laminar/B738/autopilot/cmd_b_status", .effect = AddonEffect::Master},
    {.aircraft = "b738-extended", .name = "laminar/B738/autopilot/cws_a_press", .status = "laminar/B738/autopilot/cws_a_status", .effect = AddonEffect::Lamp},
    {.aircraft = "b738-extended", .name = "laminar/B738/autopilot/cws_b_press", .status = "laminar/B738/autopilot/cws_b_status", .effect = AddonEffect::Lamp},
    {.aircraft = "b738-extended", .name = "laminar/B738/autopilot/n1_press", .status = "laminar/B738/autopilot/n1_status", .effect = AddonEffect::Lamp},
    {.aircraft = "b738-extended", .name = "laminar/B738/autopilot/speed_press", .status = "laminar/B738/autopilot/speed_status1", .effect = AddonEffect::Mode, .number = apAutothrottle},
    {.aircraft = "b738-extended", .name = "laminar/B738/autopilot/lvl_chg_press", .status = "laminar/B738/autopilot/lvl_chg_status", .effect = AddonEffect::Mode, .number = apLevelChange},
    {.aircraft = "b738-extended", .name = "laminar/B738/autopilot/vnav_press", .status = "laminar/B738/autopilot/vnav_status1", .effect = AddonEffect::Mode, .number = apVnavArmed},
    {.aircraft = "b738-extended", .name = "laminar/B738/autopilot/vorloc_press", .status = "laminar/B738/autopilot/vorloc_status", .effect = AddonEffect::Mode, .number = apNavArmed},
    {.aircraft = "b738-extended", .name = "laminar/B738/autopilot/app_press", .status = "laminar/B738/autopilot/app_status", .effect = AddonEffect::Mode, .number = apNavArmed | apGlideArmed},
    {.aircraft = "b738-extended", .name = "laminar/B738/autopilot/hdg_sel_press", .status = "laminar/B738/autopilot/hdg_sel_status", .effect = AddonEffect::Mode, .number = apHeading},
    {.aircraft = "b738-extended", .name = "laminar/B738/autopilot/alt_hld_press", .status = "laminar/B738/autopilot/alt_hld_status", .effect = AddonEffect::Mode, .number = apAltitude},
    {.aircraft = "b738-extended", .name = "laminar/B738/autopilot/vs_press", .status = "laminar/B738/autopilot/vs_status", .effect = AddonEffect::Mode, .number = apVerticalSpeed},
    {.aircraft = "b738-extended", .name = "laminar/B738/autopilot/left_toga_press", .status = "laminar/B738/autopilot/n1_status", .effect = AddonEffect::Toga},
    {.aircraft = "b738-extended", .name = "laminar/B738/autopilot/right_toga_press", .status = "laminar/B738/autopilot/n1_status", .effect = AddonEffect::Toga},
    {.aircraft = "b738-extended", .name = "laminar/B738/toggle_switch/yaw_dumper", .status = "laminar/B738/annunciator/yaw_damp", .effect = AddonEffect::YawDamper},
    {.aircraft = "b738-extended", .name = "laminar/B738/push_button/park_brake_on_off", .status = "laminar/B738/annunciator/parking_brake", .effect = AddonEffect::ParkBrake},
    {.aircraft = "b738-extended", .name = "laminar/B738/push_button/flaps_0", .effect = AddonEffect::Flaps},
    {.aircraft = "b738-extended", .name = "laminar/B738/push_button/flaps_1", .effect = AddonEffect::Flaps, .number = 1},
    {.aircraft = "b738-extended", .name = "laminar/B738/push_button/flaps_2", .effect = AddonEffect::Flaps, .number = 2},
    {.aircraft = "b738-extended", .name = "laminar/B738/push_button/flaps_5", .effect = AddonEffect::Flaps, .number = 3},
    {.aircraft = "b738-extended", .name = "laminar/B738/push_button/flaps_10", .effect = AddonEffect::Flaps, .number = 4},
    {.aircraft = "b738-extended", .name = "laminar/B738/push_button/flaps_15", .effect = AddonEffect::Flaps, .number = 5},
    {.aircraft = "b738-extended", .name = "laminar/B738/push_button/flaps_25", .effect = AddonEffect::Flaps, .number = 6},
    {.aircraft = "b738-extended", .name = "laminar/B738/push_button/flaps_30", .effect = AddonEffect::Flaps, .number = 7},
    {.aircraft = "b738-extended", .name = "laminar/B738/push_button/flaps_40", .effect = AddonEffect::Flaps, .number = 8},
    {.aircraft = "b738-extended", .name = "laminar/B738/push_button/gear_up", .status = "laminar/B738/controls/gear_handle_down", .effect = AddonEffect::Gear},
    {.aircraft = "b738-extended", .name = "laminar/B738/push_button/gear_off", .status = "laminar/B738/controls/gear_handle_down", .effect = AddonEffect::Gear, .number = 1},
    {.aircraft = "b738-extended", .name = "laminar/B738/push_button/gear_down", .status = "laminar/B738/controls/gear_handle_down", .effect = AddonEffect::Gear, .number = 2},
    {.aircraft = "b738-extended", .name = "laminar/B738/engine/mixture1_cutoff", .status = "laminar/B738/engine/mixture_ratio1", .effect = AddonEffect::Cutoff, .number = 1},
    {.aircraft = "b738-extended", .name = "laminar/B738/engine/mixture1_idle", .status = "laminar/B738/engine/mixture_ratio1", .effect = AddonEffect::Idle, .number = 1},
    {.aircraft = "b738-extended", .name = "laminar/B738/engine/mixture2_cutoff", .status = "laminar/B738/engine/mixture_ratio2", .effect = AddonEffect::Cutoff, .number = 2},
    {.aircraft = "b738-extended", .name = "laminar/B738/engine/mixture2_idle", .status = "laminar/B738/engine/mixture_ratio2", .effect = AddonEffect::Idle, .number = 2},
    {.aircraft = "ixeg733", .name = "ixeg/733/autopilot/AP_CMD_A_toggle", .status = "ixeg/733/MCP/mcp_a_comm_ann", .effect = AddonEffect::Lamp},
    {.aircraft = "ixeg733", .name = "ixeg/733/autopilot/AP_CMD_B_toggle", .status = "ixeg/733/MCP/mcp_b_comm_ann", .effect = AddonEffect::Lamp},
    {.aircraft = "ixeg733", .name = "ixeg/733/autopilot/AP_CWS_A_toggle", .status = "ixeg/733/MCP/mcp_a_cws_ann", .effect = AddonEffect::Lamp},
    {.aircraft = "ixeg733", .name = "ixeg/733/autopilot/AP_CWS_B_toggle", .status = "ixeg/733/MCP/mcp_b_cws_ann", .effect = AddonEffect::Lamp},
    {.aircraft = "ixeg733", .name = "ixeg/733/autopilot/AT_arm_toggle", .status = "ixeg/733/MCP/mcp_at_arm_ann", .effect = AddonEffect::ArmThrottle},
    {.aircraft = "ixeg733", .name = "ixeg/733/autopilot/AP_SPD_toggle", .effect = AddonEffect::Mode, .number = apAutothrottle},
    {.aircraft = "ixeg733", .name = "ixeg/733/autopilot/AP_HDGSEL_toggle", .effect = AddonEffect::Mode, .number = apHeading},
    {.aircraft = "ixeg733", .name = "ixeg/733/autopilot/AP_LVLCHG_toggle", .effect = AddonEffect::Mode, .number = apLevelChange},
    {.aircraft = "ixeg733", .name = "ixeg/733/autopilot/AP_ALTHOLD_toggle", .effect = AddonEffect::Mode, .number = apAltitude},
    {.aircraft = "ixeg733", .name = "ixeg/733/autopilot/AP_VVI_toggle", .effect = AddonEffect::Mode, .number = apVerticalSpeed},
    {.aircraft = "ixeg733", .name = "ixeg/733/autopilot/AP_VORLOC_toggle", .effect = AddonEffect::Mode, .number = apNavArmed},
    {.aircraft = "ixeg733", .name = "ixeg/733/autopilot/AP_APP_toggle", .effect = AddonEffect::Mode, .number = apNavArmed | apGlideArmed},
    {.aircraft = "ixeg733", .name = "ixeg/733/autopilot/AP_VNAV_toggle", .effect = AddonEffect::Mode, .number = apVnavArmed},
};
const int addonCommandCount = static_cast<int>(sizeof addonCommands / sizeof addonCommands[0]);

// Switches that are set, not pressed: writing them works the stock control of the same meaning.
const AddonLink addonLinks[] = {
    {.name = "x737/systems/afds/HDG", .link = AddonLinkKind::Mode, .number = apHeading},
    {.name = "x737/systems/afds/VORLOC", .link = AddonLinkKind::Mode, .number = apNavArmed},
    {.name = "x737/systems/afds/APP", .link = AddonLinkKind::Mode, .number = apGlideArmed},
    {.name = "x737/systems/afds/ALTHLD", .link = AddonLinkKind::Mode, .number = apAltitude},
    {.name = "x737/systems/afds/VS", .link = AddonLinkKind::Mode, .number = apVerticalSpeed},
    {.name = "x737/systems/athr/MCPSPD_mode", .link = AddonLinkKind::Mode, .number = apAutothrottle},
    {.name = "x737/systems/afds/CMD_A", .link = AddonLinkKind::Master},
    {.name = "x737/systems/afds/APengaged", .link = AddonLinkKind::Master},
    {.name = "x737/systems/afds/HDG_magnhdg", .link = AddonLinkKind::Copy, .stock = "sim/cockpit/autopilot/heading_mag"},
    {.name = "x737/systems/afds/ALTHLD_baroalt", .link = AddonLinkKind::Copy, .stock = "sim/cockpit/autopilot/altitude"},
    {.name = "x737/systems/afds/VS_vvi", .link = AddonLinkKind::Copy, .stock = "sim/cockpit/autopilot/vertical_velocity"},
    {.name = "x737/systems/athr/MCPSPD_spd", .link = AddonLinkKind::Copy, .stock = "sim/cockpit/autopilot/airspeed"},
    {.name = "x737/systems/athr/MCPSPD_spdkias", .link = AddonLinkKind::Copy, .stock = "sim/cockpit/autopilot/airspeed"},
    {.name = "x737/systems/fuel/fuelLeftMainTank_kg", .link = AddonLinkKind::Tank, .number = 0},
    {.name = "x737/systems/fuel/fuelCenterTank_kg", .link = AddonLinkKind::Tank, .number = 1},
    {.name = "x737/systems/fuel/fuelRightMainTank_kg", .link = AddonLinkKind::Tank, .number = 2},
    {.name = "laminar/B738/engine/eng1_egt", .link = AddonLinkKind::Temperature, .number = 0},
    {.name = "laminar/B738/engine/eng2_egt", .link = AddonLinkKind::Temperature, .number = 1},
    {.name = "x737/systems/speedbrake/spdbrkLeverPos", .link = AddonLinkKind::Copy, .stock = "sim/flightmodel/controls/sbrkrqst"},
    {.name = "laminar/B738/flt_ctrls/speedbrake_lever", .link = AddonLinkKind::Copy, .stock = "sim/flightmodel/controls/sbrkrqst"},
    {.name = "ixeg/733/hydraulics/speedbrake_act", .link = AddonLinkKind::Copy, .stock = "sim/flightmodel/controls/sbrkrqst"},
    {.name = "x737/systems/exteriorLights/beaconLightSwitch", .link = AddonLinkKind::CopyInt, .stock = "sim/cockpit2/switches/beacon_on"},
    {.name = "x737/systems/electrics/swBatBusPowered", .link = AddonLinkKind::CopyInt, .stock = "sim/cockpit/electrical/battery_on"},
    {.name = "ixeg/733/hardware/tavrix_thro1", .link = AddonLinkKind::Throttle, .number = 0},
    {.name = "ixeg/733/hardware/tavrix_thro2", .link = AddonLinkKind::Throttle, .number = 1},
    {.name = "x737/cockpit/tq/leftCutoffLeverPos", .link = AddonLinkKind::Mixture, .number = 0},
    {.name = "x737/cockpit/tq/rightCutoffLeverPos", .link = AddonLinkKind::Mixture, .number = 1},
};
const int addonLinkCount = static_cast<int>(sizeof addonLinks / sizeof addonLinks[0]);

}  // namespace sim
