// Places in the registry where the datarefs of recognised add-ons stand, one named source each.
//
// The extended slots of the primary array and the numbered slots of the auxiliary one are this program's
// own choice; only their ranges are fixed by family. Types that no publisher states are asked of the
// simulator when the value is read (Accessor::Any). All handles are null while the add-on is not loaded.
#pragma once
#include "bridge/sources.h"

// --- x737/
constexpr Source x737LeftCutoffLeverPos = {Block::Primary, 0x10002, Accessor::Float,
                                           0};  // x737/cockpit/tq/leftCutoffLeverPos
constexpr Source x737LeftTOGABtn = {Block::Primary, 0x10003, Accessor::Int,
                                    0};  // x737/cockpit/tq/left_TOGA_btn
constexpr Source x737RightCutoffLeverPos = {Block::Primary, 0x10004, Accessor::Float,
                                            0};  // x737/cockpit/tq/rightCutoffLeverPos
constexpr Source x737RightTOGABtn = {Block::Primary, 0x10005, Accessor::Int,
                                     0};  // x737/cockpit/tq/right_TOGA_btn
constexpr Source x737Viblevel1 = {Block::Primary, 0x10006, Accessor::Float, 0};  // x737/engine/viblevel_1
constexpr Source x737Viblevel2 = {Block::Primary, 0x10007, Accessor::Float, 0};  // x737/engine/viblevel_2
constexpr Source x737LEDLVLCHGOn = {Block::Primary, 0x10008, Accessor::Int,
                                    0};                                        // x737/systems/MCP/LED_LVLCHG_on
constexpr Source x737LEDVNAVOn = {Block::Primary, 0x10009, Accessor::Int, 0};  // x737/systems/MCP/LED_VNAV_on
constexpr Source x737PFDTOGAModeOn = {Block::Primary, 0x1000A, Accessor::Int,
                                      0};                                   // x737/systems/PFD/PFD_TOGA_mode_on
constexpr Source x737ALTHLD = {Block::Primary, 0x1000B, Accessor::Int, 0};  // x737/systems/afds/ALTHLD
constexpr Source x737ALTHLDBaroalt = {Block::Primary, 0x1000C, Accessor::Float,
                                      0};                                // x737/systems/afds/ALTHLD_baroalt
constexpr Source x737APP = {Block::Primary, 0x1000D, Accessor::Int, 0};  // x737/systems/afds/APP
constexpr Source x737APAPitch = {Block::Primary, 0x1000E, Accessor::Float, 0};  // x737/systems/afds/AP_A_pitch
constexpr Source x737APARoll = {Block::Primary, 0x1000F, Accessor::Float, 0};   // x737/systems/afds/AP_A_roll
constexpr Source x737APengaged = {Block::Primary, 0x10010, Accessor::Int, 0};   // x737/systems/afds/APengaged
constexpr Source x737CMDA = {Block::Primary, 0x10011, Accessor::Int, 0};        // x737/systems/afds/CMD_A
constexpr Source x737CMDB = {Block::Primary, 0x10012, Accessor::Int, 0};        // x737/systems/afds/CMD_B
constexpr Source x737HDG = {Block::Primary, 0x10013, Accessor::Int, 0};         // x737/systems/afds/HDG
constexpr Source x737HDGMagnhdg = {Block::Primary, 0x10014, Accessor::Float,
                                   0};                                         // x737/systems/afds/HDG_magnhdg
constexpr Source x737VORLOC = {Block::Primary, 0x10015, Accessor::Int, 0};     // x737/systems/afds/VORLOC
constexpr Source x737VS = {Block::Primary, 0x10016, Accessor::Int, 0};         // x737/systems/afds/VS
constexpr Source x737VSArm = {Block::Primary, 0x10017, Accessor::Int, 0};      // x737/systems/afds/VS_arm
constexpr Source x737VSVvi = {Block::Primary, 0x10018, Accessor::Float, 0};    // x737/systems/afds/VS_vvi
constexpr Source x737FdAStatus = {Block::Primary, 0x10019, Accessor::Int, 0};  // x737/systems/afds/fdA_status
constexpr Source x737FdBStatus = {Block::Primary, 0x1001A, Accessor::Int, 0};  // x737/systems/afds/fdB_status
constexpr Source x737FdMaster = {Block::Primary, 0x1001B, Accessor::Int, 0};   // x737/systems/afds/fd_master
constexpr Source x737MCPSPDIsmach = {Block::Primary, 0x1001C, Accessor::Any,
                                     0};  // x737/systems/athr/MCPSPD_ismach
constexpr Source x737MCPSPDMode = {Block::Primary, 0x1001D, Accessor::Int, 0};  // x737/systems/athr/MCPSPD_mode
constexpr Source x737MCPSPDSpd = {Block::Primary, 0x1001E, Accessor::Float, 0};  // x737/systems/athr/MCPSPD_spd
constexpr Source x737MCPSPDSpdkias = {Block::Primary, 0x1001F, Accessor::Any,
                                      0};  // x737/systems/athr/MCPSPD_spdkias
constexpr Source x737MCPSPDSpdmach = {Block::Primary, 0x10020, Accessor::Any,
                                      0};                                   // x737/systems/athr/MCPSPD_spdmach
constexpr Source x737N1Mode = {Block::Primary, 0x10021, Accessor::Any, 0};  // x737/systems/athr/N1_mode
constexpr Source x737AthrArmed = {Block::Primary, 0x10022, Accessor::Int, 0};   // x737/systems/athr/athr_armed
constexpr Source x737ToggleTOGA = {Block::Primary, 0x10023, Accessor::Int, 0};  // x737/systems/athr/toggle_TOGA
constexpr Source x737SwBatBusPowered = {Block::Primary, 0x10024, Accessor::Int,
                                        0};  // x737/systems/electrics/swBatBusPowered
constexpr Source x737BeaconLightSwitch = {Block::Primary, 0x10025, Accessor::Int,
                                          0};  // x737/systems/exteriorLights/beaconLightSwitch
constexpr Source x737FuelCenterTankKg = {Block::Primary, 0x10026, Accessor::Float,
                                         0};  // x737/systems/fuel/fuelCenterTank_kg
constexpr Source x737FuelCenterTankPerc = {Block::Primary, 0x10027, Accessor::Any,
                                           0};  // x737/systems/fuel/fuelCenterTank_perc
constexpr Source x737FuelLeftMainTankKg = {Block::Primary, 0x10028, Accessor::Float,
                                           0};  // x737/systems/fuel/fuelLeftMainTank_kg
constexpr Source x737FuelLeftMainTankPerc = {Block::Primary, 0x10029, Accessor::Any,
                                             0};  // x737/systems/fuel/fuelLeftMainTank_perc
constexpr Source x737FuelRightMainTankKg = {Block::Primary, 0x1002A, Accessor::Float,
                                            0};  // x737/systems/fuel/fuelRightMainTank_kg
constexpr Source x737FuelRightMainTankPerc = {Block::Primary, 0x1002B, Accessor::Any,
                                              0};  // x737/systems/fuel/fuelRightMainTank_perc
constexpr Source x737SpdbrkIsArmed = {Block::Primary, 0x1002C, Accessor::Int,
                                      0};  // x737/systems/speedbrake/spdbrkIsArmed
constexpr Source x737SpdbrkIsArmedLight = {Block::Primary, 0x1002D, Accessor::Any,
                                           0};  // x737/systems/speedbrake/spdbrkIsArmedLight
constexpr Source x737SpdbrkLeverPos = {Block::Primary, 0x1002E, Accessor::Float,
                                       0};  // x737/systems/speedbrake/spdbrkLeverPos

// --- ixeg/733/
constexpr Source ixegMcpACommAnn = {Block::Auxiliary, 0x13000, Accessor::Any,
                                    0};                                           // ixeg/733/MCP/mcp_a_comm_ann
constexpr Source ixegMcpACwsAnn = {Block::Auxiliary, 0x13001, Accessor::Any, 0};  // ixeg/733/MCP/mcp_a_cws_ann
constexpr Source ixegMcpAtArmAnn = {Block::Auxiliary, 0x13002, Accessor::Any,
                                    0};  // ixeg/733/MCP/mcp_at_arm_ann
constexpr Source ixegMcpBCommAnn = {Block::Auxiliary, 0x13003, Accessor::Any,
                                    0};                                           // ixeg/733/MCP/mcp_b_comm_ann
constexpr Source ixegMcpBCwsAnn = {Block::Auxiliary, 0x13004, Accessor::Any, 0};  // ixeg/733/MCP/mcp_b_cws_ann
constexpr Source ixegTavrixThro1 = {Block::Auxiliary, 0x13005, Accessor::Any,
                                    0};  // ixeg/733/hardware/tavrix_thro1
constexpr Source ixegTavrixThro2 = {Block::Auxiliary, 0x13006, Accessor::Any,
                                    0};  // ixeg/733/hardware/tavrix_thro2
constexpr Source ixegSpeedbrakeAct = {Block::Auxiliary, 0x13007, Accessor::Any,
                                      0};  // ixeg/733/hydraulics/speedbrake_act
constexpr Source ixegSeatbeltAct = {Block::Auxiliary, 0x13008, Accessor::Float,
                                    0};  // ixeg/733/misc/seatbelt_act

// --- laminar/B738/
constexpr Source b738ParkingBrake = {Block::Auxiliary, 0x07000, Accessor::Float,
                                     0};  // laminar/B738/annunciator/parking_brake
constexpr Source b738YawDamp = {Block::Auxiliary, 0x07001, Accessor::Float,
                                0};  // laminar/B738/annunciator/yaw_damp
constexpr Source b738AltHldStatus = {Block::Auxiliary, 0x07002, Accessor::Float,
                                     0};  // laminar/B738/autopilot/alt_hld_status
constexpr Source b738AppStatus = {Block::Auxiliary, 0x07003, Accessor::Float,
                                  0};  // laminar/B738/autopilot/app_status
constexpr Source b738AutothrottleStatus = {Block::Auxiliary, 0x07004, Accessor::Float,
                                           0};  // laminar/B738/autopilot/autothrottle_status
constexpr Source b738CmdAStatus = {Block::Auxiliary, 0x07005, Accessor::Float,
                                   0};  // laminar/B738/autopilot/cmd_a_status
constexpr Source b738CmdBStatus = {Block::Auxiliary, 0x07006, Accessor::Float,
                                   0};  // laminar/B738/autopilot/cmd_b_status
constexpr Source b738CwsAStatus = {Block::Auxiliary, 0x07007, Accessor::Float,
                                   0};  // laminar/B738/autopilot/cws_a_status
constexpr Source b738CwsBStatus = {Block::Auxiliary, 0x07008, Accessor::Float,
                                   0};  // laminar/B738/autopilot/cws_b_status
constexpr Source b738DisconnectPos = {Block::Auxiliary, 0x07009, Accessor::Float,
                                      0};  // laminar/B738/autopilot/disconnect_pos
constexpr Source b738HdgSelStatus = {Block::Auxiliary, 0x0700A, Accessor::Float,
                                     0};  // laminar/B738/autopilot/hdg_sel_status
constexpr Source b738LvlChgStatus = {Block::Auxiliary, 0x0700B, Accessor::Float,
                                     0};  // laminar/B738/autopilot/lvl_chg_status
constexpr Source b738N1Status = {Block::Auxiliary, 0x0700C, Accessor::Float,
                                 0};  // laminar/B738/autopilot/n1_status
constexpr Source b738SpeedStatus1 = {Block::Auxiliary, 0x0700D, Accessor::Float,
                                     0};  // laminar/B738/autopilot/speed_status1
constexpr Source b738VnavStatus1 = {Block::Auxiliary, 0x0700E, Accessor::Float,
                                    0};  // laminar/B738/autopilot/vnav_status1
constexpr Source b738VorlocStatus = {Block::Auxiliary, 0x0700F, Accessor::Float,
                                     0};  // laminar/B738/autopilot/vorloc_status
constexpr Source b738VsStatus = {Block::Auxiliary, 0x07010, Accessor::Float,
                                 0};  // laminar/B738/autopilot/vs_status
constexpr Source b738GearHandleDown = {Block::Auxiliary, 0x07011, Accessor::Float,
                                       0};  // laminar/B738/controls/gear_handle_down
constexpr Source b738Eng1Egt = {Block::Auxiliary, 0x07012, Accessor::Float, 0};  // laminar/B738/engine/eng1_egt
constexpr Source b738Eng2Egt = {Block::Auxiliary, 0x07013, Accessor::Float, 0};  // laminar/B738/engine/eng2_egt
constexpr Source b738MixtureRatio1 = {Block::Auxiliary, 0x07014, Accessor::Float,
                                      0};  // laminar/B738/engine/mixture_ratio1
constexpr Source b738MixtureRatio2 = {Block::Auxiliary, 0x07015, Accessor::Float,
                                      0};  // laminar/B738/engine/mixture_ratio2
constexpr Source b738SpeedbrakeLever = {Block::Auxiliary, 0x07016, Accessor::Float,
                                        0};  // laminar/B738/flt_ctrls/speedbrake_lever
constexpr Source b738Credits = {Block::Auxiliary, 0x07017, Accessor::Any, 0};  // laminar/B738/tab/credits
constexpr Source b738Page = {Block::Auxiliary, 0x07018, Accessor::Any, 0};     // laminar/B738/tab/page
constexpr Source b738Power = {Block::Auxiliary, 0x07019, Accessor::Any, 0};    // laminar/B738/tab/power

// --- pilotedge/
constexpr Source pilotEdgeRxStatus = {Block::Primary, 0x14100, Accessor::Int, 0};  // pilotedge/radio/rx_status
constexpr Source pilotEdgeTxStatus = {Block::Primary, 0x14101, Accessor::Int, 0};  // pilotedge/radio/tx_status
constexpr Source pilotEdgeConnected = {Block::Primary, 0x14102, Accessor::Any,
                                       0};  // pilotedge/status/connected

// --- xsquawkbox/
constexpr Source xsbCallsign = {Block::Primary, 0x10200, Accessor::None, 0};    // xsquawkbox/atc/callsign
constexpr Source xsbFreq = {Block::Primary, 0x10201, Accessor::Int, 0};         // xsquawkbox/atc/freq
constexpr Source xsbString = {Block::Primary, 0x10202, Accessor::None, 0};      // xsquawkbox/input/string
constexpr Source xsbUserMsg = {Block::Primary, 0x10203, Accessor::None, 0};     // xsquawkbox/input/user_msg
constexpr Source xsbFrom = {Block::Primary, 0x10204, Accessor::None, 0};        // xsquawkbox/text/from
constexpr Source xsbMsg = {Block::Primary, 0x10205, Accessor::None, 0};         // xsquawkbox/text/msg
constexpr Source xsbNumber = {Block::Primary, 0x10206, Accessor::Int, 0};       // xsquawkbox/vers/number
constexpr Source xsbVersString = {Block::Primary, 0x10207, Accessor::None, 0};  // xsquawkbox/vers/string
constexpr Source xsbMetar = {Block::Primary, 0x10208, Accessor::None, 0};       // xsquawkbox/weather/metar
