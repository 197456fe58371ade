"""Other aircraft and pushback, end to end: what a separate client program sees of them."""
import math
import os
import re
import struct
import time
from pathlib import Path

import pytest

from conftest import wait_for

HEADER, ENTRIES, RECORDS = 0xF000, 0xF080, 0xD840
OVERRIDES = ["joystick", "gearbrake", "artstab"]


@pytest.fixture(params=["linux", pytest.param("win32", marks=pytest.mark.wine)])
def build(request):
    return request.getfixturevalue(request.param)


def begin(start, build, *options, root=None):
    """With a root, its network server takes clients at 127.0.0.1: where the Linux build is read."""
    if root is not None:
        (root / "Resources" / "plugins" / "TAVRIX").mkdir(parents=True)
        (root / "Resources" / "plugins" / "TAVRIX" / "TAVRIX.ini").write_text(
            "[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\n")
    standin = start(build, *options, root=root)
    if standin.number("sim/time/total_running_time_sec") == 0:
        standin.ask("frames 2")
    standin.wait_log("TAVRIX->Create ATC thread OK!")
    return standin


class Table:
    """The traffic table as a client reads it."""

    def __init__(self, build, tmp_path):
        file = tmp_path / "memory.bin"
        result = build.run("offsetctl", "dump", build.path(file))
        assert result.returncode == 0, result.stderr
        memory = file.read_bytes()
        self.size, self.capacity, self.active, self.changes = struct.unpack_from("<4H", memory, HEADER)
        self.mark, self.nearest = memory[HEADER + 0x68], struct.unpack_from("<H", memory, HEADER + 0x7E)[0]
        self.entries = [struct.unpack_from("<IfffHHh14sHH", memory, ENTRIES + 40 * i) for i in range(96)]
        self.records = [struct.unpack_from("<IHh4s4sHh", memory, RECORDS + 20 * i) for i in range(96)]

    def shown(self):
        return [i for i, entry in enumerate(self.entries) if entry[0] != 0]


@pytest.mark.slow
def test_counts_come_and_go(start, build, tmp_path):
    standin = begin(start, build, root=tmp_path / "X-Plane")
    serials = set()
    for planes in (1, 5, 2, 120):
        standin.ask(f"planes {planes}")
        slots = min(planes - 1, 96)
        table = wait_for(f"{slots} slots", lambda: (t := Table(build, tmp_path)).active == slots and
                         len(t.shown()) == slots and t)
        assert (table.size, table.capacity, table.mark) == (40, 96, ord("P"))
        assert table.shown() == list(range(slots))
        for entry, record in zip(table.entries[:slots], table.records[:slots]):
            assert entry[7].rstrip(b"\0") and entry[8] == 0x8C00
            assert record[0] == entry[0] and record[1] == 14 and record[3:6] == (b"EDDM", b"EDDT", 0)
        serials |= {entry[0] for entry in table.entries[:slots]}
        assert bool(table.nearest) == (slots != 0)
    assert serials == set(range(1, len(serials) + 1))  # each new slot had a new one
    later = wait_for("rounds go on", lambda: (t := Table(build, tmp_path)).changes != table.changes and t)
    assert (later.changes - table.changes) % 10 == 0
    standin.quit()


def test_nearest_changes_as_aircraft_pass(start, build, tmp_path):
    standin = begin(start, build, "--rate", "0", "--flight", "none", "--planes", "4",
                    root=tmp_path / "X-Plane")
    latitude = standin.number("sim/flightmodel/position/latitude")
    longitude = standin.number("sim/flightmodel/position/longitude")
    for away, nearest in (([0.3, 0.2, 0.1], 2), ([0.3, 0.0, 0.1], 1), ([0.05, 0.2, 0.1], 0), ([20, 11, 12], None)):
        for number, degrees in enumerate(away, 1):
            standin.ask(f"set sim/multiplayer/position/plane{number}_lat {latitude - degrees}")
            standin.ask(f"set sim/multiplayer/position/plane{number}_lon {longitude}")
        standin.ask("frames 30")
        wanted = 0 if nearest is None else ENTRIES + 40 * nearest
        table = wait_for(f"nearest {nearest}", lambda: (t := Table(build, tmp_path)).nearest == wanted and t)
        assert math.isclose(table.entries[0][1], latitude - away[0], abs_tol=1e-4)
    standin.quit()


@pytest.mark.parametrize("preset", ["linux", pytest.param("win64", marks=pytest.mark.wine)])
def test_newer_simulators_tell_who_flies(start, request, tmp_path, preset):
    build = request.getfixturevalue(preset)
    standin = begin(start, build, "--version", "1200", "--rate", "0", "--flight", "none", "--planes", "4",
                    root=tmp_path / "X-Plane")
    stem = "sim/cockpit2/tcas/targets/"

    def shown(texts):
        standin.ask("frames 30")
        return wait_for(f"{texts}", lambda: (t := Table(build, tmp_path)).active == len(texts) and [
            entry[7].rstrip(b"\0").decode() for entry in t.entries[:t.active]] == texts and t)

    table = shown(["TVX001", "TVX002", "TVX003"])
    for slot, (entry, record) in enumerate(zip(table.entries[:3], table.records), 1):
        place = lambda name: standin.number(f"{stem}{name}[{slot}]")
        assert math.isclose(entry[1], place("position/lat"), abs_tol=1e-5)
        assert math.isclose(entry[2], place("position/lon"), abs_tol=1e-5)
        assert math.isclose(entry[3], place("position/ele") / 0.3048, rel_tol=1e-4)
        assert abs(entry[4] * 360 / 65536 - place("position/psi")) < 1.1
        assert abs(entry[5] - math.hypot(place("position/vx"), place("position/vz")) * 3600 / 1852) < 1.1
        assert abs(record[2] * 360 / 65536 - place("position/the")) < 1.1
        assert entry[9] & 0xFF == place("position/weight_on_wheels") and record[3:5] == (b"EDDM", b"EDDT")
    # A network client takes the arrays over: its own number, one without a call sign, one on the ground.
    standin.ask("set sim/cockpit2/tcas/indicators/tcas_num_acf 3")
    standin.ask(f'set {stem}flight_id "--------DLH4KP  "')
    standin.ask(f'set {stem}icao_type "--------A320----B738"')
    standin.ask(f"set {stem}modeS_id[3] 0")
    for name in ("lat", "lon"):
        standin.ask(f"set {stem}position/{name}[3] 0")
    standin.ask(f"set {stem}position/weight_on_wheels[2] 1")
    later = shown(["DLH4KP", "B738"])
    assert [entry[0] for entry in later.entries[:3]] == [table.entries[0][0], table.entries[1][0], 0]
    assert later.entries[1][9] & 0xFF == 1
    standin.ask("planes 8")  # the simulator has them again, but for the place that was emptied
    wait_for("6 others", lambda: (standin.ask("frames 12"), Table(build, tmp_path).active == 6)[1])
    standin.quit()


def test_disable_while_96_slots_run(start, build):
    standin = begin(start, build, "--planes", "97")
    tasks = Path(f"/proc/{standin.process.pid}/task")
    if not build.wine:
        wait_for("96 threads and more", lambda: len(os.listdir(tasks)) > 96)
    else:
        wait_for("96 slots", lambda: "= 96 " in build.run("offsetctl", "read", "0xF004:u16").stdout)
    before = time.monotonic()
    standin.ask("disable")
    # Pauses by design: joystick 0.1, traffic 0.1 + 0.3 + 0.1, network 0.2 s.
    assert time.monotonic() - before < 1 + 0.8
    log = standin.log()
    closed = re.findall(r"^\d{3}\.\d{3} TAVRIX->Closing Slot Thread No\. (\d\d)\.{6}$", log, flags=re.M)
    assert sorted(map(int, closed)) == list(range(96))
    order = ["Init pushback functions", "Create ATC thread OK!", "Stopping pushback.....", "Closing ATC Thread......",
             "TAVRIX->96 ATC Threads active......", "\nDone\n", "Release critical sections"]
    places = [log.find(line) for line in order]
    assert -1 not in places and places == sorted(places)
    if not build.wine:
        assert len(os.listdir(tasks)) < 5
    standin.quit()


def test_count_changes_leave_no_threads(start, build):
    standin = begin(start, build, "--rate", "60", "--planes", "2")
    for planes in (6, 3, 6, 3):
        standin.ask(f"planes {planes}")
        if build.wine:
            wait_for("slots", lambda: f"= {planes - 1} " in build.run("offsetctl", "read", "0xF004:u16").stdout)
        else:
            standin.ask("frames 60")
    closed = r"Closing Slot Thread No\. (\d\d)"
    wait_for("slots closed", lambda: len(re.findall(closed, standin.log())) == 6)
    assert re.findall(closed, standin.log()) == ["04", "03", "02"] * 2
    standin.ask("reload")
    standin.ask("frames 10")
    assert standin.log().count("Create ATC thread OK!") == 1  # the log begins anew
    assert standin.quit() < 3


def on_the_ground(standin):
    """Puts the flying aircraft onto the field and lets it come to a stand."""
    standin.ask("set sim/operation/override/override_planepath[0] 0")
    words = standin.ask("local 47.80 9.29 0").split()
    for axis, value in zip("xyz", words):
        standin.ask(f"set sim/flightmodel/position/local_{axis} {value}")
        standin.ask(f"set sim/flightmodel/position/local_v{axis} 0")
    standin.ask("frames 3600")
    standin.ask("set sim/flightmodel/controls/parkbrake 0")
    assert standin.number("sim/flightmodel/failures/onground_any") == 1


def overridden(standin):
    return [standin.number(f"sim/operation/override/override_{name}") for name in OVERRIDES]


@pytest.mark.wine
@pytest.mark.parametrize("command, sign, end", [(1, 1, "stop"), (2, -1, "brake"), (1, 1, "crash"), (0, 0, "disable")])
def test_pushback_moves_and_turns_the_aircraft(start, win32, command, sign, end):
    standin = begin(start, win32, "--rate", "0")
    standin.ask("frames 120")
    on_the_ground(standin)
    number = lambda name: standin.number(f"sim/flightmodel/position/{name}")
    x, z, psi = number("local_x"), number("local_z"), number("psi")
    assert win32.run("offsetctl", "write", f"0x31F4:u32={command}").returncode == 0
    standin.ask("frames 600")
    assert overridden(standin) == [1, 1, 1]
    turned = (number("psi") - psi + 180) % 360 - 180
    assert math.copysign(1, turned) == sign if sign else abs(turned) < 0.5
    assert 60 < abs(turned) < 91 or not sign  # 0.15 degrees a frame
    moved = math.hypot(number("local_x") - x, number("local_z") - z)
    assert moved > 1
    backwards = (number("local_x") - x) * math.sin(math.radians(psi)) - (number("local_z") - z) * math.cos(
        math.radians(psi))
    assert backwards < 0
    state = win32.run("offsetctl", "read", "0x31F0:u32", "0x31F4:u32").stdout
    assert state.count(f"= {command} ") == 2, state
    shown = win32.run("offsetctl", "monitor", "--seconds", "1").stdout
    assert re.search(r"Pushback +" + ["straight", "nose right", "nose left"][command], shown), shown
    if end == "stop":
        assert win32.run("offsetctl", "write", "0x31F4:u32=3").returncode == 0
    elif end == "brake":
        standin.ask("set sim/flightmodel/controls/parkbrake 1")
    elif end == "crash":
        standin.ask("message 101 0")
    else:
        standin.ask("disable")
    standin.ask("frames 60")
    assert overridden(standin) == [0, 0, 0]
    if end != "disable":
        standin.ask("frames 60")
        assert win32.run("offsetctl", "read", "0x31F4:u32").stdout.count("= 3 ") == 1
    standin.ask("set sim/flightmodel/controls/parkbrake 1")
    standin.ask("frames 300")
    assert number("groundspeed") < 0.01
    standin.quit()


@pytest.mark.wine
def test_monitor_shows_traffic_with_ranges(start, win32, tmp_path):
    standin = begin(start, win32, "--planes", "4")
    wait_for("entries", lambda: len(Table(win32, tmp_path).shown()) == 3)
    shown = win32.run("offsetctl", "monitor", "--seconds", "2").stdout
    assert "3 aircraft" in shown
    ranges = [float(text) for text in re.findall(r"^  \S+ +(\d+\.\d) nm at", shown, flags=re.M)]
    ranges = ranges[-3:]  # the first sample may be older than the own position
    assert len(ranges) == 3 and ranges == sorted(ranges) and ranges[0] < 15, shown
    assert re.search(r"Pushback +off", shown)
    standin.quit()
