"""Add-on aircraft end to end: what a network client writes moves the add-on's own controls, and what these show the
client reads. One simulator an aircraft, many cases each; the stand-in's add-ons do what the aircraft are known to do."""
import struct

import pytest

from network import Client, request, write_record

SETTINGS = "[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\n"
WIDTHS = {"u8": "<B", "u16": "<H", "u32": "<I", "s16": "<h", "s32": "<i", "f32": "<f"}
A, L = "laminar/B738/autopilot/", "laminar/B738/"
I, IM = "ixeg/733/", "ixeg/733/MCP/mcp_"
X, E = "x737/systems/", "rotorsim/ec135/"
MODES = {0x07C4: "vorloc", 0x07C8: "hdg_sel", 0x07D0: "alt_hld", 0x07EC: "vs", 0x0800: "app"}

# What is set in the simulator first, then (offset, type, written, where it shows, its value, calls). A write that must
# not do anything shows nothing and calls nothing; calls None: whatever they are.
BOEING = [f"set {A}flight_director_pos 1", f"set {A}flight_director_fo_pos 0"]
MODE_CASES = [case for offset, mode in MODES.items() for case in (
    (offset, "u32", 1, A + mode + "_status", 1, f"once {A}{mode}_press"),
    (offset, "u32", 0, A + mode + "_status", 0, f"once {A}{mode}_press"))]
EXTENDED = MODE_CASES + [
    (0x2EE0, "u32", 0, A + "flight_director_pos", 0, f"once {A}flight_director_toggle"),
    (0x2EE0, "u32", 1, A + "flight_director_fo_pos", 1,
     f"once {A}flight_director_toggle; once {A}flight_director_fo_toggle"),
    (0x0810, "u32", 1, A + "autothrottle_arm_pos", 1, f"once {A}autothrottle_arm_toggle"),
    (0x07DC, "u32", 1, A + "speed_status1", 1, f"once {A}speed_press"),
    (0x07E4, "u32", 0, A + "speed_status1", 0, f"once {A}speed_press"),
    (0x080C, "u32", 1, A + "n1_status", 1, f"begin {A}left_toga_press"),
    (0x0810, "u32", 0, A + "autothrottle_arm_pos", 0, f"once {A}autothrottle_arm_toggle"),
    (0x07BC, "u32", 1, A + "cmd_a_status", 1, f"once {A}cmd_a_press"),
    (0x07BC, "u32", 0, A + "disconnect_pos", 1, f"once {A}disconnect_toggle"),
    (0x07BC, "u32", 1, A + "cmd_a_status", 1, f"once {A}disconnect_toggle; once {A}cmd_a_press"),
    (0x07CC, "u16", 0x4000, A + "mcp_hdg_dial", 90.02, ""),
    (0x07D4, "s32", 100 << 16, A + "mcp_alt_dial", 328.08, ""),
    (0x07E2, "u16", 250, A + "mcp_speed_dial_kts_mach", 250, ""),
    (0x07F2, "s16", -900, A + "ap_vvi_pos", -900, ""),
    (0x0808, "u32", 1, L + "toggle_switch/yaw_dumper_pos", 1, f"once {L}toggle_switch/yaw_dumper"),
    (0x2F80, "u8", 4, L + "autobrake/autobrake_pos", 4, ""),
    (0x0BC8, "u16", 32767, L + "parking_brake_pos", 1, f"once {L}push_button/park_brake_on_off"),
    (0x0BD0, "u32", 4800, L + "flt_ctrls/speedbrake_lever", 0.0889, ""),
    (0x0BDC, "u32", 8192, L + "flt_ctrls/flap_lever", 0.5, f"once {L}push_button/flaps_10"),
    (0x0BE8, "u32", 0, L + "controls/gear_handle_down", 0, ""),
    (0x0890, "u16", 0, L + "engine/mixture_ratio1", 0, f"begin {L}engine/mixture1_cutoff"),
    (0x0890, "u16", 16383, L + "engine/mixture_ratio1", 1, f"begin {L}engine/mixture1_idle"),
    (0x092A, "u16", 1, L + "engine/starter2_pos", 0, f"once {L}rotary/eng2_start_grd"),
    (0x092A, "u16", 2, L + "engine/starter2_pos", 2, f"once {L}rotary/eng2_start_cont"),
    (0x0D0C, "u16", 0x15, L + "toggle_switch/position_light_pos", 1, None),
    (0x0D0C, "u16", 0x05, L + "toggle_switch/position_light_pos", -1,
     "; ".join([f"once {L}toggle_switch/position_light_down"] * 2)),
    (0x028C, "u16", 0, "sim/cockpit2/switches/landing_lights_on", 0, None),
    (0x3101, "u8", 1, "sim/cockpit/electrical/generator_on[1]", 1,
     f"begin {L}toggle_switch/gen1_dn; begin {L}toggle_switch/gen2_dn"),
    (0x3102, "u8", 0, L + "electric/battery_pos", 0, f"once {L}switch/battery_up"),
    (0x3104, "u8", 1, L + "fuel/fuel_tank_pos_ctr2", 1, ""),
    (0x0B51, "u8", 1, "sim/cockpit2/electrical/APU_generator_on", 1, None),
    (0x0B58, "f32", 1, "sim/cockpit/engine/APU_running", 1, None),
    (0x6DA9, "u8", 0, L + "spring_toggle_switch/APU_start_pos", 0, f"once {L}spring_toggle_switch/APU_start_pos_up"),
    (0x6D8C, "u8", 2, L + "knob/transponder_pos", 3, "; ".join([f"once {L}knob/transponder_mode_up"] * 2)),
    (0x07C0, "u32", 1, None, None, ""), (0x0804, "u32", 1, None, None, ""), (0x0804, "u32", 2, None, None, "")]
STOCK = MODE_CASES + [
    (0x0810, "u32", 1, A + "autothrottle_arm_pos", 1, f"once {A}autothrottle_arm_toggle"),
    (0x07DC, "u32", 1, A + "speed_status1", 1, f"once {A}speed_press"),
    (0x07BC, "u32", 1, A + "cmd_a_status", 1, f"once {A}cmd_a_press"),
    (0x07BC, "u32", 0, A + "cmd_a_status", 0, f"once {A}disconnect_toggle"),
    (0x080C, "u32", 1, A + "n1_status", 1, f"begin {A}capt_toga_press"),
    (0x0890, "u16", 0, L + "engine/slider/condition_lever1_target", 0, ""),
    (0x3101, "u8", 1, "sim/cockpit/electrical/generator_on[0]", 1, f"begin {L}switch/gen1_dn; begin {L}switch/gen2_dn"),
    (0x0BCC, "u32", 1, L + "flt_ctrls/speedbrake_lever", 0.0889, ""),
    # The simulator's own controls serve the rest.
    (0x07C0, "u32", 1, "sim/cockpit/autopilot/autopilot_state", 4, "")]
IXEG = [case for offset, lamp, name in (
    (0x07C4, "vor_loc", "VORLOC_mode"), (0x07C8, "hdg", "HDG_mode"), (0x07D0, "alt_hold", "ALTHLD_mode"),
    (0x07E4, "speed", "SPEED_mode"), (0x07EC, "vs", "VS_mode"), (0x0800, "app", "APP_mode"), (0x07BC, "a_comm", "AP_A_cmd"))
        for case in ((offset, "u32", value, f"{IM}{lamp}_ann", value, f"once {I}autopilot/{name}_toggle")
                     for value in (1, 0))] + [
    (0x2EE0, "u32", 1, IM + "cplt_fd_act", 1, ""),
    (0x0810, "u32", 1, IM + "at_arm_ann", 1, ""),
    (0x080C, "u32", 1, None, None, "once sim/engines/TOGA_power"),
    (0x0808, "u32", 1, I + "hydraulics/yaw_damper_act", 1, ""),
    (0x2F80, "u8", 0, I + "hydraulics/hyd_auto_brake_act", -1, ""),
    (0x0BD0, "u32", 4800, I + "hydraulics/speedbrake_act", 0.15, ""),
    (0x0BDC, "u32", 8300, I + "hydraulics/hyd_flap_lever_act", 0.5, ""),
    (0x0928, "u16", 0, I + "fuel/fuel_start_lever2_act", 0, ""),
    (0x0892, "u16", 1, I + "engine/eng1_start_act", -1, ""),
    (0x088C, "s16", 8192, I + "hardware/tavrix_thro1", 0.5, ""),
    (0x0D0C, "u16", 0x0F, I + "lighting/r_outboard_ll_act", 2, ""),
    (0x0281, "u8", 0, I + "lighting/anti_col_lt_act", 0, ""),
    (0x3101, "u8", 1, I + "electrical/elec_gen2_onoff_act", 1, ""),
    (0x3102, "u8", 0, I + "electrical/elec_batt_on_act", 0, ""),
    (0x3104, "u8", 1, I + "fuel/fuel_ctr_right_act", 1, ""),
    (0x0B58, "f32", 1, I + "apu/apu_start_switch_act", 1, ""),
    (0x07C0, "u32", 1, None, None, ""), (0x0804, "u32", 1, None, None, "")]
X737 = [case for offset, state, name in (
    (0x07BC, "afds/CMD_A", "CMDA"), (0x07C4, "afds/VORLOC", "VORLOC"), (0x07C8, "afds/HDG", "HDGSEL"),
    (0x07D0, "afds/ALTHLD", "ALTHLD"), (0x07DC, "athr/MCPSPD_mode", "MCPSPD_MODE"), (0x0800, "afds/APP", "APP"))
        for case in ((offset, "u32", value, X + state, value, f"once x737/mcp/{name}_TOGGLE") for value in (1, 0))] + [
    (0x07F2, "s16", 1200, X + "afds/VS_vvi", 1200, "once x737/mcp/VS_TOGGLE"),
    (0x07CC, "u16", 0x8000, X + "afds/HDG_magnhdg", 180.04, ""),
    (0x07E2, "u16", 190, X + "athr/MCPSPD_spd", 190, ""),
    (0x0810, "u32", 1, X + "athr/athr_armed", 1, ""),
    (0x2EE0, "u32", 1, X + "afds/fdB_status", 1, ""),
    (0x0BCC, "u32", 1, X + "speedbrake/spdbrkIsArmedLight", 1, "once x737/speedbrakes/SPEEDBRAKES_ARM"),
    (0x0890, "u16", 0, "x737/cockpit/tq/leftCutoffLeverPos", 0, ""),
    (0x07C0, "u32", 1, None, None, ""), (0x0804, "u32", 1, None, None, "")]
EC135 = [case for offset, place, name in (
    (0x07BC, 1, "ap_on"), (0x07C4, 6, "nav"), (0x07C8, 5, "hdg"), (0x07D0, 12, "alt"), (0x07DC, 11, "ias"),
    (0x07EC, 10, "vs"), (0x0800, 4, "app"))
         for case in ((offset, "u32", value, f"{E}afcs_indications[{place}]", value, f"once ec135/autopilot/{name}")
                      for value in (1, 0))] + [
    (0x0890, "u16", 0, E + "main_switch[0]", 0, ""),
    (0x0928, "u16", 8192, E + "main_switch[1]", 1, ""),
    (0x3102, "u8", 0, E + "battery", 1, ""),
    (0x3101, "u8", 1, E + "generator[1]", 2, ""),
    (0x0810, "u32", 1, None, None, ""), (0x07E4, "u32", 1, None, None, "")]

# What the add-on shows: dataref, value, offset, type, read.
STATES = {
    "b738-extended": [(A + "cws_b_status", 1, 0x07BC, "u32", 1), (A + "vnav_status1", 1, 0x07DC, "u32", 1),
                      (A + "n1_status", 1, 0x07F4, "u32", 1), (A + "mcp_hdg_dial", 180, 0x07CC, "u16", 32768),
                      (A + "ap_vvi_pos", 700, 0x07F2, "s16", 700), (L + "annunciator/parking_brake", 1, 0x0BC8, "u16", 32767),
                      (L + "knob/transponder_pos", 0, 0x6D8C, "u8", 3), (L + "autobrake/autobrake_pos", 0, 0x2F80, "u8", 0),
                      (L + "engine/starter1_pos", 0, 0x0892, "u16", 1)],
    "b738": [(A + "cmd_b_status", 1, 0x07BC, "u32", 1), (A + "alt_hld_status", 1, 0x07D0, "u32", 1)],
    "ixeg733": [(IM + "b_cws_ann", 1, 0x07BC, "u32", 1), (IM + "n1_ann", 1, 0x07F4, "u32", 1),
                (I + "hydraulics/hyd_auto_brake_act", 4, 0x2F80, "u8", 5), (I + "lighting/taxi_lt_act", 1, 0x0D0C, "u16", 0xD)],
    "x737": [(X + "afds/CMD_B", 1, 0x07BC, "u32", 1), (X + "MCP/LED_LVLCHG_on", 1, 0x07F4, "u32", 1)],
    "ec135": [(E + "afcs_indications[1]", 2, 0x07BC, "u32", 1), (E + "battery", 2, 0x3102, "u8", 1)],
}
AIRCRAFT = {"b738-extended": (BOEING, EXTENDED), "ixeg733": ([], IXEG), "x737": ([], X737), "ec135": ([], EC135),
            "b738": (["set sim/cockpit/autopilot/autopilot_mode 2"], STOCK)}


@pytest.fixture(params=["linux", pytest.param("win32", marks=pytest.mark.wine)])
def build(request):
    return request.getfixturevalue(request.param)


def connect(start, build, tmp_path, aircraft, before=()):
    """A simulator that has recognised its aircraft, a client, and how this one reads and writes."""
    root = tmp_path / "X-Plane"
    folder = root / "Resources" / "plugins" / "TAVRIX"
    folder.mkdir(parents=True)
    (folder / "TAVRIX.ini").write_text(SETTINGS)
    standin = start(build, "--rate", "0", "--flight", "none", "--aircraft", aircraft, root=root)
    standin.ask("frames 400")  # recognised
    standin.wait_log("TAVFARNET->Waiting for clients.....0")
    for line in before:
        standin.ask(line)
    standin.ask("frames 70")
    client = Client().complete()

    def read(offset, kind):
        return struct.unpack(WIDTHS[kind], client.read(offset, struct.calcsize(WIDTHS[kind])))[0]

    # A write is in the plug-in's hands once the write behind it, to a place that nothing refreshes, has come back.
    marker = 0

    def send(offset, kind, value):
        nonlocal marker
        marker = marker % 250 + 1
        client.send(request(write_record(offset, struct.pack(WIDTHS[kind], value)),
                            write_record(0x12345, bytes([marker]))))
        client.until(f"0x{offset:04X} taken", lambda: client.read(0x12345, 1)[0] == marker)

    return standin, client, read, send


@pytest.mark.parametrize("aircraft", AIRCRAFT)
def test_client_and_add_on_follow_each_other(start, build, tmp_path, aircraft):
    before, cases = AIRCRAFT[aircraft]
    standin, client, read, send = connect(start, build, tmp_path, aircraft, before)
    failures = []
    for offset, kind, value, shown, expected, calls in cases:
        standin.ask("calls")
        standin.ask("writes")
        send(offset, kind, value)
        standin.ask("frames 1")
        fired, written = standin.ask("calls"), standin.ask("writes")
        early = standin.number(shown) if shown else None
        standin.ask("frames 70")  # held presses end, lamps and offsets follow
        what = f"0x{offset:04X} = {value}"
        if calls is not None and fired != calls:
            failures.append(f"{what}: fired '{fired}', not '{calls}'")
        # The simulator's own instrument lights are read-only.
        if "(ignored)" in written.replace("cockpit_lights_on=0 (ignored)", ""):
            failures.append(f"{what}: wrote what is read-only: {written}")
        if shown is None and (written or fired != calls):
            failures.append(f"{what}: changed '{written}'")
        if shown is not None and all(abs(now - expected) > 0.05 for now in (early, standin.number(shown))):
            failures.append(f"{what}: {shown} is {standin.number(shown)}, not {expected}")
    for name, value, offset, kind, expected in STATES[aircraft]:
        standin.ask(f"set {name} {value}")
        standin.ask("frames 70")
        try:
            client.until(name, lambda: read(offset, kind) == expected, deadline=3)
        except AssertionError:
            failures.append(f"{name} = {value}: 0x{offset:04X} reads {read(offset, kind)}, not {expected}")
    assert failures == []
    log = standin.log()
    silent = [offset for offset, _, _, shown, _, calls in cases if shown is None and calls == ""]
    for offset in set(silent):
        assert log.count(f"writes to 0x{offset:04X} do nothing") == 1
    assert log.count("writes to 0x") == len(set(silent)), log
    client.close()
    standin.quit()


# One aircraft after the other, brought by the console: writes of 0x6DA9 or another offset, each with the frames after
# it, then what was fired and where a dataref stands.
APU, KNOB = L + "spring_toggle_switch/APU_start_pos", L + "knob/transponder_pos"
HURRIES = [
    # Numbers that no switch has: a look at them must not take the simulator's time.
    (["define " + APU + " float -1e9"], [(0x6DA9, "u8", 2, 60)],
     f"begin {APU}_dn; end {APU}_dn; begin {APU}_dn; end {APU}_dn", None),
    (["define " + APU + " float nan"], [(0x6DA9, "u8", 2, 1)], "", None),
    (["define " + KNOB + " float nan"], [(0x6D8C, "u8", 1, 1)], "", None),
    (["define " + KNOB + " float 300"], [(0x6D8C, "u8", 1, 1)], "; ".join([f"once {L}knob/transponder_mode_dn"] * 4), None),
    # The newest write counts.
    (["define " + APU + " float 0"], [(0x6DA9, "u8", 2, 4), (0x6DA9, "u8", 0, 60)], None, (APU, 0)),
    (["define " + APU + " float 0"], [(0x6DA9, "u8", 2, 4), (0x6DA9, "u8", 0, 4), (0x6DA9, "u8", 2, 60)], None, (APU, 1)),
    ([], [(0x3101, "u8", frame % 2, 1) for frame in range(39)] + [(0x3101, "u8", 1, 30)], None,
     ("sim/cockpit/electrical/generator_on[0]", 1))]


def test_bad_numbers_late_names_and_hasty_clients(start, build, tmp_path):
    standin, client, read, send = connect(start, build, tmp_path, "b738-extended")
    failures = []
    for lines, writes, calls, shown in HURRIES:
        for line in lines:
            standin.ask("undefine " + line.split()[1])
            standin.ask(line)
        standin.ask("frames 320")
        standin.ask("calls")
        for offset, kind, value, frames in writes:
            send(offset, kind, value)
            standin.ask(f"frames {frames}")
        fired = standin.ask("calls")
        if calls is not None and fired != calls:
            failures.append(f"{lines}: fired '{fired}', not '{calls}'")
        if shown is not None and standin.number(shown[0]) != shown[1]:
            failures.append(f"{lines}: {shown[0]} is {standin.number(shown[0])}")
    # A plug-in without names hides nobody; when they come they are found.
    standin.ask("plugin bs.x737.plugin on")
    standin.ask("frames 320")
    standin.ask("calls")
    send(0x07C8, "u32", 1)
    standin.ask("frames 1")
    if standin.ask("calls") != f"once {A}hdg_sel_press":
        failures.append("0x07C8 is hidden")
    standin.ask(f"define {X}afds/CMD_A int 1")
    standin.ask(f"define {X}afds/HDG_magnhdg float 90")
    standin.ask("frames 700")
    client.until("CMD_A", lambda: read(0x07BC, "u32") == 1)
    send(0x07CC, "u16", 0x8000)
    standin.ask("frames 70")
    if abs(standin.number(X + "afds/HDG_magnhdg") - 180) > 0.05:
        failures.append("HDG_magnhdg is not set")
    assert failures == []
    client.close()
    standin.quit()
