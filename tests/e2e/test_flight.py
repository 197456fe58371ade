"""A second program reads a live flight and steers it, through the real window (Windows builds) and, where
there is no window, through the plug-in's own offset memory as the log and datarefs show it."""
import math
import re
import subprocess
import time

import pytest

from conftest import wait_for

pytestmark = pytest.mark.wine


def heading_gap(a, b):
    return abs((a - b + 180) % 360 - 180)


@pytest.fixture(params=["win32", "win64"])
def build(request):
    return request.getfixturevalue(request.param)


def read_raw(build, item):
    """Integer value that offsetctl prints for one typed offset."""
    result = build.run("offsetctl", "read", item)
    assert result.returncode == 0, result.stderr
    match = re.match(r"\S+ = (-?\d+) \(", result.stdout)
    assert match, result.stdout
    return int(match.group(1))


def write(build, *items, expect=0):
    result = build.run("offsetctl", "write", *items)
    assert result.returncode == expect, result.stdout + result.stderr
    return result


def flying(start, build, *options):
    standin = start(build, *options)
    standin.ask("frames 120")  # the refresh cycles begin within the first second
    standin.wait_log("Create KORL Thread OK!")
    return standin


def test_second_program_reads_and_turns_the_aircraft(start, build):
    standin = flying(start, build)
    latitude = read_raw(build, "0x0560:s64") * 90 / (10001750 * 2**32)
    assert abs(latitude - standin.number("sim/flightmodel/position/latitude")) < 0.05
    current = standin.number("sim/flightmodel/position/psi") + standin.number(
        "sim/flightmodel/position/magnetic_variation")
    wanted = (current + 90) % 360
    write(build, f"0x07CC:u16={round(wanted * 65536 / 360) % 65536}")
    wait_for("heading bug", lambda: heading_gap(standin.number("sim/cockpit/autopilot/heading_mag"), wanted) < 0.5)
    write(build, "0x07BC:u32=1")
    wait_for("autopilot", lambda: standin.number("sim/cockpit/autopilot/autopilot_mode") == 2)
    write(build, "0x07C8:u32=1")
    wait_for("heading mode", lambda: int(standin.number("sim/cockpit/autopilot/autopilot_state")) & 2)

    def turned():
        magnetic = standin.number("sim/flightmodel/position/psi") + standin.number(
            "sim/flightmodel/position/magnetic_variation")
        return heading_gap(magnetic, wanted) < 3
    wait_for("the aircraft on its new heading", turned, deadline=120)
    # The client sees the turn too: true heading word against the simulator's own.
    shown = read_raw(build, "0x0580:u32") * 360 / 2**32
    assert heading_gap(shown, standin.number("sim/flightmodel/position/psi")) < 3
    standin.quit()


def test_read_only_offsets_keep_their_value(start, win32):
    standin = flying(start, win32, "--rate", "0", "--flight", "none")
    standin.ask("frames 60")
    refused = win32.run("offsetctl", "write", "0x0238:u8=7")
    assert refused.returncode == 2 and "0x0238" in refused.stderr
    hour = read_raw(win32, "0x0238:u8")
    result = win32.run("rude_client_win32", "readonly-write")
    assert result.returncode == 0, result.stdout + result.stderr
    assert read_raw(win32, "0x0238:u8") == hour
    standin.quit()


def test_rude_clients_neither_stop_nor_corrupt_anything(start, win32):
    standin = flying(start, win32)
    # Each mode sends a plain request afterwards and checks its answer.
    result = win32.run("rude_client_win32", "all", timeout=180)
    assert result.returncode == 0, result.stdout + result.stderr
    result = win32.run("rude_client_win32", "change-while-served", 3)
    assert result.returncode == 0, result.stdout + result.stderr
    assert read_raw(win32, "0x3304:u32") == 0x50000008  # start values untouched
    assert "default, headesize=16 void*=4" in standin.log("TAVRIX.log")
    result = win32.run("rude_client_win32", "garbage", 7, 300)  # writes anywhere: last
    assert result.returncode == 0, result.stdout + result.stderr
    standin.ask("frames 30")
    standin.quit()


def test_eight_clients_at_once(start, win32):
    standin = flying(start, win32)
    clients = [subprocess.Popen(win32.command("rude_client_win32", "hammer", 5, 50, number), stdout=subprocess.PIPE,
                                stderr=subprocess.STDOUT, text=True) for number in range(8)]
    outputs = [client.communicate(timeout=90)[0] for client in clients]
    assert [client.returncode for client in clients] == [0] * 8, outputs
    assert read_raw(win32, "0x3304:u32") == 0x50000008
    standin.quit()


def test_stop_while_a_client_hammers(start, win32):
    standin = flying(start, win32)
    client = subprocess.Popen(win32.command("rude_client_win32", "hammer", 60, 50, 0), stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True)
    wait_for("requests", lambda: read_raw(win32, "0x3304:u32"))
    started = time.monotonic()
    standin.ask("disable")
    assert time.monotonic() - started < 1 + 0.7  # stated sleeps are 0.1 s each
    assert "TAVRIX->Closed KORLMain Thread!" in standin.log()
    standin.quit()
    client.kill()
    client.communicate()


def test_repositioning(start, win32):
    standin = flying(start, win32, "--rate", "0", "--flight", "none")
    standin.ask("frames 120")
    latitude, longitude, altitude = 47.25, 8.5, 1500.0
    raw = [f"0x0560:s64={round(latitude * 10001750 / 90 * 2**32)}",
           f"0x0568:s64={round(longitude * 2**64 / 360)}", f"0x0570:s64={round(altitude * 2**32)}"]
    standin.ask("writes")
    write(win32, *raw)
    standin.ask("frames 1")
    expected = [float(word) for word in standin.ask(f"local {latitude} {longitude} {altitude}").split()]
    written = dict(entry.split("=") for entry in standin.ask("writes").split("; "))
    for axis, value in zip("xyz", expected):
        assert math.isclose(float(written[f"sim/flightmodel/position/local_{axis}"]), value, abs_tol=0.01)
    standin.quit()


def test_pause_and_right_brake_line(start, win32):
    standin = flying(start, win32, "--rate", "0", "--flight", "none")
    standin.ask("frames 60")
    standin.ask("calls")
    write(win32, "0x0262:u16=1")
    standin.ask("frames 1")
    assert standin.ask("calls") == "key 0"
    write(win32, "0x0BC4:s16=100")
    write(win32, "0x0BC6:s16=8000")
    write(win32, "0x0BC6:s16=16383")
    standin.ask("frames 1")
    lines = re.findall(r"Offset 0x0BC6 .*", standin.log())
    assert lines == ["Offset 0x0BC6 tavrixWriteValue = 16383 bc6Value = 100 FSVar = 1.000000"]
    assert standin.number("sim/flightmodel/controls/r_brake_add") == 1.0
    standin.ask("frames 3")  # the refresh has put the simulator's value back
    write(win32, "0x0BC6:s16=16383")
    standin.ask("frames 1")
    assert len(re.findall(r"Offset 0x0BC6 ", standin.log())) == 1
    standin.quit()
