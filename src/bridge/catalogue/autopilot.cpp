// Autopilot, autothrottle, flight director, autobrake.
//
// Add-on aircraft have their own panels: each row uses the first loaded add-on that has the function, else
// the simulator's own autopilot. Where a writer can only toggle (a key, a command, a pressed bit), it
// compares the wanted state with the aircraft's and acts only when they differ.
#include <algorithm>
#include <cmath>

#include "XPLMUtilities.h"
#include "aircraft/adapter_commands.h"
#include "aircraft/adapter_slots.h"
#include "bridge/aircraft_state.h"
#include "bridge/catalogue.h"
#include "bridge/catalogue/losses.h"

namespace {

constexpr Source autopilotState = IntAt(0x07C0);
constexpr Source autopilotMode = IntAt(0x07BC);  // 0 off, 1 flight director, 2 on

// Bits of the simulator's autopilot state. A bit that is set acts as a press of that button.
constexpr int autothrottleSpeed = 0x1, headingSelect = 0x2, wingLeveler = 0x4, verticalSpeedHold = 0x10,
              levelChange = 0x40, navArmed = 0x100, navEngaged = 0x200, glideslopeArmed = 0x400,
              glideslopeEngaged = 0x800, altitudeHold = 0x4000, lateralToga = 0x8000, verticalToga = 0x10000;

// The 7-frame rows share one look at the autopilot state, taken by the first of them.
int stateOfRun = 0;

bool IsLit(const Source& source) { return ReadSource(source) > 0.5; }

// One mode: how each aircraft shows it, and what switches it. Empty fields: the aircraft has none.
struct Mode {
  Source x737Shown[2] = {};  // on when one is not 0
  Source b738Shown[3] = {};  // on when one is above 0.5
  int bits = 0;              // of the simulator's state, on when one is set
  Source x737Switch = {};    // set to 0 or 1
  XPLMCommandRef B738Commands::*b738Press = nullptr;
  XPLMCommandRef CommandBlock::*command = nullptr;
  int key = -1;
  int press = 0;  // bit that is pressed
};

constexpr Mode leveler = {.bits = wingLeveler, .press = wingLeveler};
constexpr Mode nav = {.x737Shown = {x737VORLOC},
                      .b738Shown = {b738VorlocStatus},
                      .bits = navArmed | navEngaged,  // armed counts, else a second write would disarm it
                      .x737Switch = x737VORLOC,
                      .b738Press = &B738Commands::vorlocPress,
                      .key = xplm_key_otto_hnav};
constexpr Mode heading = {.x737Shown = {x737HDG},
                          .b738Shown = {b738HdgSelStatus},
                          .bits = headingSelect,
                          .x737Switch = x737HDG,
                          .key = xplm_key_otto_hdg};
constexpr Mode altitude = {.x737Shown = {x737ALTHLD},
                           .b738Shown = {b738AltHldStatus},
                           .bits = altitudeHold,
                           .x737Switch = x737ALTHLD,
                           .b738Press = &B738Commands::altHldPress,
                           .key = xplm_key_otto_alt};
constexpr Mode speed = {.x737Shown = {x737MCPSPDMode, x737LEDVNAVOn},
                        .b738Shown = {b738SpeedStatus1, b738LvlChgStatus, b738VnavStatus1},
                        .bits = autothrottleSpeed,
                        .x737Switch = x737MCPSPDMode,
                        .key = xplm_key_otto_atr};
constexpr Mode mach = {.x737Shown = {x737MCPSPDMode},
                       .bits = autothrottleSpeed,
                       .x737Switch = x737MCPSPDMode,
                       .press = autothrottleSpeed};
constexpr Mode verticalSpeed = {.x737Shown = {x737VSArm, x737VS},
                                .b738Shown = {b738VsStatus},
                                .bits = verticalSpeedHold,
                                .x737Switch = x737VS,
                                .b738Press = &B738Commands::vsPress,
                                .key = xplm_key_otto_vvi};
constexpr Mode thrust = {
    .x737Shown = {x737N1Mode, x737LEDLVLCHGOn}, .b738Shown = {b738N1Status}, .bits = levelChange};
constexpr Mode approach = {.x737Shown = {x737APP},
                           .b738Shown = {b738AppStatus},
                           .bits = glideslopeArmed | glideslopeEngaged,
                           .x737Switch = x737APP,
                           .command = &CommandBlock::approach};
constexpr Mode goAround = {
    .x737Shown = {x737ToggleTOGA}, .b738Shown = {b738N1Status}, .bits = lateralToga | verticalToga};

bool IsModeOn(const Mode& mode, int state) {
  if (adapters.x737 && mode.x737Shown[0].block != Block::None) {
    return IsOn(mode.x737Shown[0]) || IsOn(mode.x737Shown[1]);
  }
  if (adapters.b738Extended && mode.b738Shown[0].block != Block::None) {
    return IsLit(mode.b738Shown[0]) || IsLit(mode.b738Shown[1]) || IsLit(mode.b738Shown[2]);
  }
  return (state & mode.bits) != 0;
}

template <const Mode& mode>
int ReadMode(const OffsetRow&, double* value) {
  *value = IsModeOn(mode, stateOfRun);
  return 1;
}

// For the first row of the 7-frame run, and for rows of other cycles.
template <const Mode& mode>
int ReadStateAndMode(const OffsetRow& row, double* value) {
  stateOfRun = ReadInt(autopilotState);
  return ReadMode<mode>(row, value);
}

void SwitchMode(const Mode& mode, bool wanted) {
  if (adapters.x737 && mode.x737Switch.block != Block::None) {
    SetSource(mode.x737Switch, wanted);
    return;
  }
  if (wanted == IsModeOn(mode, ReadInt(autopilotState))) return;
  if (mode.b738Press && adapters.b738Extended) {
    FireCommand(b738Commands.*mode.b738Press);
  } else if (mode.command) {
    FireCommand(commandBlock.*mode.command);
  } else if (mode.key >= 0) {
    XPLMCommandKeyStroke(mode.key);
  } else if (mode.press) {
    SetSource(autopilotState, mode.press);
  }
}

template <const Mode& mode>
void WriteMode(const OffsetRow&, const Staged& staged) {
  SwitchMode(mode, staged.integer != 0);
}

// --- Master switch and flight director ------------------------------------------------------------

bool IsMasterOn() {
  if (adapters.x737) return IsOn(x737CMDA) || IsOn(x737CMDB);
  if (adapters.b738Extended) {
    return IsLit(b738CmdAStatus) || IsLit(b738CmdBStatus) || IsLit(b738CwsAStatus) || IsLit(b738CwsBStatus);
  }
  return ReadInt(autopilotMode) == 2;
}

int ReadMaster(const OffsetRow&, double* value) {
  *value = IsMasterOn();
  return 1;
}

void WriteMasterB738(bool wanted) {
  if (wanted == IsMasterOn()) return;
  const bool disconnected = IsLit(b738DisconnectPos);
  if (wanted) {
    if (disconnected) FireCommand(b738Commands.disconnectToggle);
    FireCommand(b738Commands.cmdAPress);
  } else if (!disconnected) {
    FireCommand(b738Commands.disconnectToggle);
  }
}

void WriteMaster(const OffsetRow&, const Staged& staged) {
  const bool wanted = staged.integer != 0;
  if (adapters.x737) {
    SetSource(wanted ? x737CMDA : x737APengaged, wanted);
    return;
  }
  if (adapters.b738Extended) {
    WriteMasterB738(wanted);
    return;
  }
  if (adapters.ixeg733) {
    // Its panel tells by four lights whether one of its autopilots flies.
    const bool lit =
        IsLit(ixegMcpACommAnn) || IsLit(ixegMcpBCommAnn) || IsLit(ixegMcpACwsAnn) || IsLit(ixegMcpBCwsAnn);
    if (wanted == lit) return;
  }
  if (wanted) {
    SetSource(autopilotMode, 2);
    return;
  }
  uint32_t director = 0;
  CopyFromMemory(0x2EE0, sizeof(director), &director);
  SetSource(autopilotMode, director != 0);
}

int ReadDirector(const OffsetRow&, double* value) {
  *value = adapters.x737 ? IsOn(x737FdMaster) : ReadInt(autopilotMode) >= 1;
  return 1;
}

void WriteDirector(const OffsetRow&, const Staged& staged) {
  const bool wanted = staged.integer != 0;
  if (adapters.x737) {
    SetSource(x737FdAStatus, wanted);
    SetSource(x737FdBStatus, wanted);
    return;
  }
  // An autopilot that flies is not thrown out with its bars.
  const int mode = ReadInt(autopilotMode);
  if (wanted ? mode == 0 : mode == 1) SetSource(autopilotMode, wanted);
}

int ReadDirectorPitch(const OffsetRow&, double* value) {
  *value = adapters.x737 ? ReadSource(x737APAPitch) : ReadSource(FloatAt(0x2EE8));
  return 1;
}

int ReadDirectorBank(const OffsetRow&, double* value) {
  *value = adapters.x737 ? ReadSource(x737APARoll) : ReadSource(FloatAt(0x2EF0));
  return 1;
}

// --- Selected values ------------------------------------------------------------------------------

Source SelectedHeading() { return adapters.x737 ? x737HDGMagnhdg : FloatAt(0x07CC); }

int ReadSelectedHeading(const OffsetRow&, double* value) {
  // A full turn starts again at 0. The step to a whole word is taken here, in single precision as for all
  // 16-bit words, before the turn is taken off.
  const double word =
      std::fmod(std::trunc(static_cast<float>(ReadSource(SelectedHeading()) * (65536.0 / 360))), 65536);
  *value = word < 0 ? word + 65536 : word;
  return 1;
}

void WriteSelectedHeading(const OffsetRow&, const Staged& staged) {
  const double degrees = staged.number / 182;
  SetSource(SelectedHeading(), degrees >= 360 ? degrees - 360 : degrees);
}

void WriteSelectedAltitude(const OffsetRow&, const Staged& staged) {
  SetSource(adapters.x737 ? x737ALTHLDBaroalt : FloatAt(0x07D4), staged.number / 65536 * 3.2808);
}

// The simulator keeps one selected speed with a mark for its unit; clients see both forms.
bool SpeedIsMach() { return IsOn(adapters.x737 ? x737MCPSPDIsmach : AuxIntAt(0x003B)); }

// Indicated knots of Mach 1 here and now.
double KnotsPerMach() {
  return 1.94384 * ReadSource(AuxFloatAt(0x003C)) * std::sqrt(ReadSource(AuxFloatAt(0x0083)));
}

// Filled by the row of the knots, used by the row of the Mach number that follows it.
double machOfRun = 0;

int ReadSelectedSpeed(const OffsetRow&, double* value) {
  const bool isMach = SpeedIsMach();
  const double selected = ReadSource(!adapters.x737 ? FloatAt(0x07E2)
                                     : isMach       ? x737MCPSPDSpdmach
                                                    : x737MCPSPDSpdkias);
  const double knotsPerMach = KnotsPerMach();
  if (isMach) {
    machOfRun = selected;
    *value = selected * knotsPerMach;
  } else {
    machOfRun = knotsPerMach == 0 ? 0 : selected / knotsPerMach;
    *value = selected;
  }
  return 1;
}

int ReadSelectedMach(const OffsetRow&, double* value) {
  *value = machOfRun * 65536;
  return 1;
}

void SetSelectedSpeed(double selected) { SetSource(adapters.x737 ? x737MCPSPDSpd : FloatAt(0x07E2), selected); }

void WriteSelectedSpeed(const OffsetRow&, const Staged& staged) {
  if (!SpeedIsMach()) {
    SetSelectedSpeed(staged.number);
  } else if (const double knotsPerMach = KnotsPerMach(); knotsPerMach != 0) {
    SetSelectedSpeed(staged.number / knotsPerMach);
  }
}

void WriteSelectedMach(const OffsetRow&, const Staged& staged) {
  const double mach = staged.number / 65536;
  SetSelectedSpeed(SpeedIsMach() ? mach : mach * KnotsPerMach());
}

int ReadSelectedClimb(const OffsetRow&, double* value) {
  *value = ReadSource(adapters.x737 ? x737VSVvi : FloatAt(0x07F2));
  return 1;
}

void WriteSelectedClimb(const OffsetRow&, const Staged& staged) {
  if (!adapters.x737) {
    SetSource(FloatAt(0x07F2), staged.number);
    return;
  }
  if (staged.integer != 0) SetSource(x737VS, 1);
  SetSource(x737VSVvi, staged.number);
}

// --- Back course, yaw damper, thrust --------------------------------------------------------------

void PressBackCourse(const OffsetRow&, const Staged&) { FireCommand(commandBlock.backCourse); }

bool IsYawDamperOn() {
  // The add-on's light is the amber one that says off.
  return adapters.b738Extended ? !IsLit(b738YawDamp) : IsOn(IntAt(0x0808));
}

int ReadYawDamper(const OffsetRow&, double* value) {
  *value = IsYawDamperOn();
  return 1;
}

void WriteYawDamper(const OffsetRow&, const Staged& staged) {
  const bool wanted = staged.integer != 0;
  if (!adapters.b738Extended) {
    SetSource(IntAt(0x0808), wanted);
  } else if (wanted != IsYawDamperOn()) {
    FireCommand(b738Commands.yawDamper);
  }
}

void WriteGoAround(const OffsetRow&, const Staged& staged) {
  const bool wanted = staged.integer != 0;
  if (adapters.x737) {
    SetSource(x737LeftTOGABtn, wanted);
    SetSource(x737RightTOGABtn, wanted);
    SetSource(x737ToggleTOGA, wanted);
  } else if (wanted && (adapters.b738Extended || adapters.ixeg733) &&
             !IsModeOn(goAround, ReadInt(autopilotState))) {
    // The simulator's own command is what these aircraft's buttons are mapped to.
    FireCommand(commandBlock.takeOffGoAround);
  }
}

bool IsAutothrottleArmed() {
  if (adapters.x737) return IsOn(x737AthrArmed);
  if (adapters.b738Extended) return IsLit(b738AutothrottleStatus) || IsLit(b738SpeedStatus1);
  return ReadInt(IntAt(0x0810)) > 0;
}

int ReadAutothrottle(const OffsetRow&, double* value) {
  *value = IsAutothrottleArmed();
  return 1;
}

void WriteAutothrottle(const OffsetRow&, const Staged& staged) {
  const bool wanted = staged.integer != 0;
  if (adapters.x737) {
    SetSource(x737AthrArmed, wanted);
    if (!wanted && IsOn(x737PFDTOGAModeOn)) SetSource(x737ToggleTOGA, 1);
  } else if (adapters.b738Extended) {
    if (wanted != IsAutothrottleArmed()) FireCommand(b738Commands.autothrottleArmToggle);
  } else if (adapters.ixeg733) {
    if (wanted != IsLit(ixegMcpAtArmAnn)) FireCommand(commandBlock.autothrottleToggle);
  } else {
    SetSource(IntAt(0x0810), wanted);
  }
}

// --- Rows -----------------------------------------------------------------------------------------

constexpr OffsetRow ModeRow(uint32_t offset, const char* name, const char* meaning,
                            int (*read)(const OffsetRow&, double*),
                            void (*apply)(const OffsetRow&, const Staged&), Cycle cycle = Cycle::C7,
                            const char* lossy = flagLoss) {
  return {.offset = offset,
          .type = Stored::U32,
          .name = name,
          .meaning = meaning,
          .show = Show::Flag,
          .cycle = cycle,
          .read = read,
          .write = {.apply = apply},
          .lossy = lossy};
}

constexpr OffsetRow rows[] = {
    {.offset = 0x2EE8,
     .type = Stored::F64,
     .name = "fd_pitch",
     .meaning = "flight director pitch",
     .unit = "deg",
     .cycle = Cycle::C1,
     .read = ReadDirectorPitch},
    {.offset = 0x2EF0,
     .type = Stored::F64,
     .name = "fd_bank",
     .meaning = "flight director bank",
     .unit = "deg",
     .cycle = Cycle::C1,
     .read = ReadDirectorBank},
    ModeRow(0x07BC, "ap", "autopilot master", ReadMaster, WriteMaster, Cycle::C13),
    ModeRow(0x2EE0, "fd", "flight director", ReadDirector, WriteDirector, Cycle::C13),
    ModeRow(0x07C0, "ap_wing_leveler", "wing leveler", ReadStateAndMode<leveler>, WriteMode<leveler>,
            Cycle::C13),
    ModeRow(0x07C4, "ap_nav", "navigation hold, armed or engaged", ReadStateAndMode<nav>, WriteMode<nav>),
    ModeRow(0x07C8, "ap_heading", "heading hold", ReadMode<heading>, WriteMode<heading>),
    ModeRow(0x07D0, "ap_altitude", "altitude hold", ReadMode<altitude>, WriteMode<altitude>),
    ModeRow(0x07DC, "ap_speed", "airspeed hold", ReadMode<speed>, WriteMode<speed>),
    ModeRow(0x07E4, "ap_mach", "Mach hold", ReadMode<mach>, WriteMode<mach>),
    ModeRow(0x07EC, "ap_vertical_speed", "vertical speed hold", ReadMode<verticalSpeed>,
            WriteMode<verticalSpeed>),
    ModeRow(0x07F4, "ap_thrust", "thrust hold", ReadMode<thrust>, nullptr, Cycle::C7, ""),
    ModeRow(0x0800, "ap_approach", "approach hold, armed or engaged", ReadMode<approach>, WriteMode<approach>),
    {.offset = 0x080C,
     .type = Stored::U32,
     .name = "toga",
     .meaning = "take-off and go-around",
     .show = Show::Flag,
     .cycle = Cycle::C7,
     .read = ReadMode<goAround>,
     .write = {.apply = WriteGoAround},
     .lossy = "can be written with add-on aircraft only"},
    ModeRow(0x0810, "autothrottle", "autothrottle armed", ReadAutothrottle, WriteAutothrottle),
    {.offset = 0x07CC,
     .type = Stored::U16,
     .name = "ap_heading_bug",
     .meaning = "selected heading",
     .unit = "deg",
     .unitScale = 360.0 / 65536,
     .cycle = Cycle::C7,
     .read = ReadSelectedHeading,
     .write = {.apply = WriteSelectedHeading},
     .lossy = "written at 182 per degree: reads back up to 16 higher, and from 65520 on begins again at 0"},
    {.offset = 0x07D4,
     .type = Stored::S32,
     .name = "ap_altitude_set",
     .meaning = "selected altitude",
     .unit = "m",
     .unitScale = 1.0 / 65536,
     .cycle = Cycle::C7,
     .source = FloatAt(0x07D4),
     .factor = 0.3048 * 65536,
     .write = {.apply = WriteSelectedAltitude},
     .lossy = "written at 3.2808 feet per metre: reads back 0.0012 % lower"},
    {.offset = 0x07E2,
     .type = Stored::U16,
     .name = "ap_ias_set",
     .meaning = "selected airspeed",
     .unit = "kt",
     .cycle = Cycle::C7,
     .read = ReadSelectedSpeed,
     .write = {.apply = WriteSelectedSpeed},
     .note = "knots also while the selector stands at Mach"},
    {
        .offset = 0x07E8,
        .type = Stored::S32,
        .name = "ap_mach_set",
        .meaning = "selected Mach number",
        .unitScale = 1.0 / 65536,
        .cycle = Cycle::C7,
        .read = ReadSelectedMach,
        .write = {.apply = WriteSelectedMach},
        .lossy = "held in single precision: off by more than one step from Mach 100 on",
        .note = "Mach also while the selector stands at knots",
    },
    {.offset = 0x07F2,
     .type = Stored::S16,
     .name = "ap_vertical_speed_set",
     .meaning = "selected vertical speed",
     .unit = "ft/min",
     .cycle = Cycle::C7,
     .read = ReadSelectedClimb,
     .write = {.apply = WriteSelectedClimb}},
    ModeRow(0x0804, "ap_back_course", "back course", nullptr, PressBackCourse, Cycle::None, ""),
    ModeRow(0x0808, "yaw_damper", "yaw damper", ReadYawDamper, WriteYawDamper, Cycle::C31),
    {.offset = 0x2F80,
     .type = Stored::U8,
     .name = "autobrake",
     .meaning = "autobrake: 0 rejected take-off, 1 off, 2 to 5 landing",
     .cycle = Cycle::C31,
     .source = IntAt(0x2F80),
     .write = {.target = IntAt(0x2F80), .low = 0, .high = 5},
     .lossy = "above 5 counts as 5"},
};

}  // namespace

const RowTable autopilotRows = {"Autopilot", rows};
