// Names that recognised add-ons publish, and where their handles go. Only names that are known from public
// documentation stand here; what else an add-on offers stays unused.
#include "aircraft/adapters_table.h"

namespace {

constexpr AdapterDataRef x737DataRefs[] = {
    {x737LeftCutoffLeverPos, "x737/cockpit/tq/leftCutoffLeverPos"},
    {x737LeftTOGABtn, "x737/cockpit/tq/left_TOGA_btn"},
    {x737RightCutoffLeverPos, "x737/cockpit/tq/rightCutoffLeverPos"},
    {x737RightTOGABtn, "x737/cockpit/tq/right_TOGA_btn"},
    {x737Viblevel1, "x737/engine/viblevel_1"},
    {x737Viblevel2, "x737/engine/viblevel_2"},
    {x737LEDLVLCHGOn, "x737/systems/MCP/LED_LVLCHG_on"},
    {x737LEDVNAVOn, "x737/systems/MCP/LED_VNAV_on"},
    {x737PFDTOGAModeOn, "x737/systems/PFD/PFD_TOGA_mode_on"},
    {x737ALTHLD, "x737/systems/afds/ALTHLD"},
    {x737ALTHLDBaroalt, "x737/systems/afds/ALTHLD_baroalt"},
    {x737APP, "x737/systems/afds/APP"},
    {x737APAPitch, "x737/systems/afds/AP_A_pitch"},
    {x737APARoll, "x737/systems/afds/AP_A_roll"},
    {x737APengaged, "x737/systems/afds/APengaged"},
    {x737CMDA, "x737/systems/afds/CMD_A"},
    {x737CMDB, "x737/systems/afds/CMD_B"},
    {x737HDG, "x737/systems/afds/HDG"},
    {x737HDGMagnhdg, "x737/systems/afds/HDG_magnhdg"},
    {x737VORLOC, "x737/systems/afds/VORLOC"},
    {x737VS, "x737/systems/afds/VS"},
    {x737VSArm, "x737/systems/afds/VS_arm"},
    {x737VSVvi, "x737/systems/afds/VS_vvi"},
    {x737FdAStatus, "x737/systems/afds/fdA_status"},
    {x737FdBStatus, "x737/systems/afds/fdB_status"},
    {x737FdMaster, "x737/systems/afds/fd_master"},
    {x737MCPSPDIsmach, "x737/systems/athr/MCPSPD_ismach"},
    {x737MCPSPDMode, "x737/systems/athr/MCPSPD_mode"},
    {x737MCPSPDSpd, "x737/systems/athr/MCPSPD_spd"},
    {x737MCPSPDSpdkias, "x737/systems/athr/MCPSPD_spdkias"},
    {x737MCPSPDSpdmach, "x737/systems/athr/MCPSPD_spdmach"},
    {x737N1Mode, "x737/systems/athr/N1_mode"},
    {x737AthrArmed, "x737/systems/athr/athr_armed"},
    {x737ToggleTOGA, "x737/systems/athr/toggle_TOGA"},
    {x737SwBatBusPowered, "x737/systems/electrics/swBatBusPowered"},
    {x737BeaconLightSwitch, "x737/systems/exteriorLights/beaconLightSwitch"},
    {x737FuelCenterTankKg, "x737/systems/fuel/fuelCenterTank_kg"},
    {x737FuelCenterTankPerc, "x737/systems/fuel/fuelCenterTank_perc"},
    {x737FuelLeftMainTankKg, "x737/systems/fuel/fuelLeftMainTank_kg"},
    {x737FuelLeftMainTankPerc, "x737/systems/fuel/fuelLeftMainTank_perc"},
    {x737FuelRightMainTankKg, "x737/systems/fuel/fuelRightMainTank_kg"},
    {x737FuelRightMainTankPerc, "x737/systems/fuel/fuelRightMainTank_perc"},
    {x737SpdbrkIsArmed, "x737/systems/speedbrake/spdbrkIsArmed"},
    {x737SpdbrkIsArmedLight, "x737/systems/speedbrake/spdbrkIsArmedLight"},
    {x737SpdbrkLeverPos, "x737/systems/speedbrake/spdbrkLeverPos"},
};

constexpr AdapterDataRef ixegDataRefs[] = {
    {ixegMcpACommAnn, "ixeg/733/MCP/mcp_a_comm_ann"},
    {ixegMcpACwsAnn, "ixeg/733/MCP/mcp_a_cws_ann"},
    {ixegMcpAtArmAnn, "ixeg/733/MCP/mcp_at_arm_ann"},
    {ixegMcpBCommAnn, "ixeg/733/MCP/mcp_b_comm_ann"},
    {ixegMcpBCwsAnn, "ixeg/733/MCP/mcp_b_cws_ann"},
    {ixegTavrixThro1, "ixeg/733/hardware/tavrix_thro1"},
    {ixegTavrixThro2, "ixeg/733/hardware/tavrix_thro2"},
    {ixegSpeedbrakeAct, "ixeg/733/hydraulics/speedbrake_act"},
    {ixegSeatbeltAct, "ixeg/733/misc/seatbelt_act"},
};

constexpr AdapterDataRef b738DataRefs[] = {
    {b738ParkingBrake, "laminar/B738/annunciator/parking_brake"},
    {b738YawDamp, "laminar/B738/annunciator/yaw_damp"},
    {b738AltHldStatus, "laminar/B738/autopilot/alt_hld_status"},
    {b738AppStatus, "laminar/B738/autopilot/app_status"},
    {b738AutothrottleStatus, "laminar/B738/autopilot/autothrottle_status"},
    {b738CmdAStatus, "laminar/B738/autopilot/cmd_a_status"},
    {b738CmdBStatus, "laminar/B738/autopilot/cmd_b_status"},
    {b738CwsAStatus, "laminar/B738/autopilot/cws_a_status"},
    {b738CwsBStatus, "laminar/B738/autopilot/cws_b_status"},
    {b738DisconnectPos, "laminar/B738/autopilot/disconnect_pos"},
    {b738HdgSelStatus, "laminar/B738/autopilot/hdg_sel_status"},
    {b738LvlChgStatus, "laminar/B738/autopilot/lvl_chg_status"},
    {b738N1Status, "laminar/B738/autopilot/n1_status"},
    {b738SpeedStatus1, "laminar/B738/autopilot/speed_status1"},
    {b738VnavStatus1, "laminar/B738/autopilot/vnav_status1"},
    {b738VorlocStatus, "laminar/B738/autopilot/vorloc_status"},
    {b738VsStatus, "laminar/B738/autopilot/vs_status"},
    {b738GearHandleDown, "laminar/B738/controls/gear_handle_down"},
    {b738Eng1Egt, "laminar/B738/engine/eng1_egt"},
    {b738Eng2Egt, "laminar/B738/engine/eng2_egt"},
    {b738MixtureRatio1, "laminar/B738/engine/mixture_ratio1"},
    {b738MixtureRatio2, "laminar/B738/engine/mixture_ratio2"},
    {b738SpeedbrakeLever, "laminar/B738/flt_ctrls/speedbrake_lever"},
    {b738Credits, "laminar/B738/tab/credits"},
    {b738Page, "laminar/B738/tab/page"},
    {b738Power, "laminar/B738/tab/power"},
};

constexpr AdapterDataRef pilotEdgeDataRefs[] = {
    {pilotEdgeRxStatus, "pilotedge/radio/rx_status"},
    {pilotEdgeTxStatus, "pilotedge/radio/tx_status"},
    {pilotEdgeConnected, "pilotedge/status/connected"},
};

constexpr AdapterDataRef xSquawkBoxDataRefs[] = {
    {xsbCallsign, "xsquawkbox/atc/callsign"}, {xsbFreq, "xsquawkbox/atc/freq"},
    {xsbString, "xsquawkbox/input/string"},   {xsbUserMsg, "xsquawkbox/input/user_msg"},
    {xsbFrom, "xsquawkbox/text/from"},        {xsbMsg, "xsquawkbox/text/msg"},
    {xsbNumber, "xsquawkbox/vers/number"},    {xsbVersString, "xsquawkbox/vers/string"},
    {xsbMetar, "xsquawkbox/weather/metar"},
};

constexpr AdapterCommand b738CommandNames[] = {
    {&b738Commands.vorlocPress, "laminar/B738/autopilot/vorloc_press"},
    {&b738Commands.altHldPress, "laminar/B738/autopilot/alt_hld_press"},
    {&b738Commands.vsPress, "laminar/B738/autopilot/vs_press"},
    {&b738Commands.cmdAPress, "laminar/B738/autopilot/cmd_a_press"},
    {&b738Commands.disconnectToggle, "laminar/B738/autopilot/disconnect_toggle"},
    {&b738Commands.autothrottleArmToggle, "laminar/B738/autopilot/autothrottle_arm_toggle"},
    {&b738Commands.yawDamper, "laminar/B738/toggle_switch/yaw_dumper"},
    {&b738Commands.parkBrakeOnOff, "laminar/B738/push_button/park_brake_on_off"},
    {&b738Commands.flaps[0], "laminar/B738/push_button/flaps_0"},
    {&b738Commands.flaps[1], "laminar/B738/push_button/flaps_1"},
    {&b738Commands.flaps[2], "laminar/B738/push_button/flaps_2"},
    {&b738Commands.flaps[3], "laminar/B738/push_button/flaps_5"},
    {&b738Commands.flaps[4], "laminar/B738/push_button/flaps_10"},
    {&b738Commands.flaps[5], "laminar/B738/push_button/flaps_15"},
    {&b738Commands.flaps[6], "laminar/B738/push_button/flaps_25"},
    {&b738Commands.flaps[7], "laminar/B738/push_button/flaps_30"},
    {&b738Commands.flaps[8], "laminar/B738/push_button/flaps_40"},
};

constexpr AdapterCommand pilotEdgeCommandNames[] = {
    {&pilotEdgeCommands.connect, "PilotEdge/Connect"},
    {&pilotEdgeCommands.disconnect, "PilotEdge/Disconnect"},
};

}  // namespace

const AdapterNames x737Names = {x737DataRefs, {}};
const AdapterNames xSquawkBoxNames = {xSquawkBoxDataRefs, {}};
const AdapterNames pilotEdgeNames = {pilotEdgeDataRefs, pilotEdgeCommandNames};
const AdapterNames ixegNames = {ixegDataRefs, {}};
const AdapterNames b738Names = {b738DataRefs, b738CommandNames};
