"""Joystick axes from the stick to the simulator: two throttle quadrants, toe brakes, choosing by moving, and a
device that is unplugged. Linux has the simulator's list of axes; under Wine a winmm.dll plays the devices."""
import os
import shutil
import time

import pytest
from conftest import DEADLINE, Build, wait_for

CALIBRATION = "Joystick Calibration Assignments"
THROTTLES = "sim/cockpit2/engine/actuators/throttle_ratio"
OVERRIDE = "sim/operation/override/override_throttles"
LEFT_BRAKE = "sim/flightmodel/controls/l_brake_add"


def holds_within(seconds, condition):
    end = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > end:
            return False
        time.sleep(0.01)
    return True


class Sticks:
    """Four devices of six axes; on Linux they are the simulator's axes 0 to 23."""

    def __init__(self, build, folder):
        self.wine = build.wine
        self.file = folder / "joysticks.txt"
        self.standin = None
        self.axes = {device: [0.0] * 6 for device in range(4)}
        self.write()

    def write(self):
        low, high = 100, 10100  # not the usual range
        lines = [" ".join(map(str, [device, low, high, *(round(low + axis * (high - low)) for axis in axes)]))
                 for device, axes in self.axes.items()]
        scratch = self.file.with_suffix(".new")
        scratch.write_text("\n".join(lines) + "\n")
        os.replace(scratch, self.file)

    def name(self, device, axis):
        return f"{device},{axis}" if self.wine else f"0,{device * 6 + axis}"

    def move(self, device, axis, value):
        self.axes[device][axis] = value
        if self.wine:
            self.write()
        else:
            self.standin.ask(f"axis {device * 6 + axis} {value}")
        self.standin.ask("frames 1")

    def put(self, device, axis, value, what, condition):
        """Moves the axis there, to and fro, until the condition holds. Between the moves stands a while: a
        reading on the way, applied after the condition held, would undo it."""
        def look():
            self.move(device, axis, value + (0.05 if value < 0.5 else -0.05))
            self.move(device, axis, value)
            return holds_within(1, lambda: self.standin.ask("frames 1") == "" and condition())
        wait_for(what, look)


@pytest.fixture(params=["linux", pytest.param("win32", marks=pytest.mark.wine)])
def build(request, tmp_path, monkeypatch):
    return prepared(request.getfixturevalue(request.param), tmp_path, monkeypatch)


def prepared(build, tmp_path, monkeypatch):
    """For Wine: the program in a folder with the winmm.dll of the tests."""
    if not build.wine:
        return build
    program = tmp_path / "program"
    program.mkdir()
    top = build.bin.parent
    for file in (*build.bin.glob("XP*.dll"), build.bin / "standin.exe", build.plugin,
                 top / "joystick_player" / "winmm.dll"):
        shutil.copy(file, program)
    moved = Build(build.preset)
    moved.bin, moved.plugin = program, program / "win.xpl"
    overrides = os.environ.get("WINEDLLOVERRIDES", "mscoree,mshtml=")
    monkeypatch.setenv("WINEDLLOVERRIDES", overrides + ";winmm=n,b")
    monkeypatch.setenv("TAVRIX_TEST_JOYSTICKS", build.path(tmp_path / "joysticks.txt"))
    return moved


def begin(start, build, tmp_path, keys=""):
    sticks = Sticks(build, tmp_path)
    root = tmp_path / "X-Plane"
    folder = root / "Resources" / "plugins" / "TAVRIX"
    folder.mkdir(parents=True)
    lines = keys(sticks.name) if keys else ""
    (folder / "TAVRIX.ini").write_text(
        f"[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\n[TAVRIX AXIS SETTINGS]\n{lines}")
    standin = start(build, "--rate", "0", "--flight", "none", root=root)
    sticks.standin = standin
    standin.ask("frames 70")
    standin.wait_log("Create Joystick Thread OK!")
    return standin, sticks


def throttles(standin):
    return [round(float(ratio), 2) for ratio in standin.ask(f"get {THROTTLES}").split()[:4]]


def two_quadrants(name):
    return (f"Assign Throttle 1 Axis = {name(1, 0)}\nEngines Throttle 1 Axis = 1,2\n"
            f"Assign Throttle 2 Axis = {name(2, 2)}\nEngines Throttle 2 Axis = 3,4\n"
            f"Invert Throttle 2 Axis = Yes\nAssign Left Toebrake Axis = {name(3, 5)}\n")


def test_two_quadrants_and_toe_brakes(start, build, tmp_path):
    standin, sticks = begin(start, build, tmp_path, two_quadrants)
    standin.ask("frames 5")
    assert standin.number(OVERRIDE) == 0
    sticks.put(1, 0, 0.7, "the first lever", lambda: throttles(standin)[:2] == [0.7, 0.7])
    assert standin.number(OVERRIDE) == 1
    sticks.put(2, 2, 0.75, "the second lever", lambda: throttles(standin) == [0.7, 0.7, 0.25, 0.25])
    sticks.put(3, 5, 0.55, "the brake", lambda: abs(standin.number(LEFT_BRAKE) - 0.5) < 0.001)
    sticks.put(3, 5, 0.1, "its null zone", lambda: standin.number(LEFT_BRAKE) == 0)
    standin.ask("writes")
    standin.ask("frames 50")
    assert "throttle" not in standin.ask("writes")
    standin.ask("disable")
    assert standin.number(OVERRIDE) == 0
    standin.quit()


def test_axis_is_chosen_and_calibrated_by_moving(start, build, tmp_path):
    standin, sticks = begin(start, build, tmp_path)

    def shows(text):
        wait_for(text, lambda: standin.ask("frames 1") == "" and f'"{text}"' in standin.ask("widgets"))

    standin.ask(f'menu "{CALIBRATION}"')
    for _ in range(6):
        standin.ask('press "NEXT"')
    shows("Throttle 1")
    standin.ask('press "Choose by moving an axis"')
    shows("Move the axis from one end to the other")

    def chosen():  # through its way until it is seen: devices may be read for the first time only now
        sticks.move(2, 1, 0.2)
        sticks.move(2, 1, 0.9)
        standin.ask("frames 1")
        return f'textfield "{sticks.name(2, 1)}"' in standin.ask("widgets")
    wait_for("the choice", chosen)

    def bar_shows(value):
        shows(f"{value:.3f} " + "|" * round(value * 40))

    bar_shows(0.9)
    standin.ask('press "Calibrate by moving"')
    for value in (0.2, 0.5, 0.8):
        sticks.move(2, 1, value)
        bar_shows(value)
    standin.ask('press "Calibrate by moving"')
    shows("0.2,0.55,0.9")
    standin.ask('press "SAVE"')
    shows("Saved Throttle 1, in force now")
    text = (standin.folder / "TAVRIX.ini").read_text()
    for line in (f"Assign Throttle 1 Axis = {sticks.name(2, 1)}", "Calibrate Throttle 1 Axis = 0.2,0.55,0.9"):
        assert line + "\n" in text
    assert "Assign Throttle 2" not in text and "Nullzone" not in text
    sticks.put(2, 1, 0.55, "the lever", lambda: throttles(standin)[0] == 0.5)
    standin.quit()


@pytest.mark.wine
def test_unplugged_and_plugged_in_again(start, win32, tmp_path, monkeypatch):
    standin, sticks = begin(start, prepared(win32, tmp_path, monkeypatch), tmp_path, two_quadrants)
    sticks.put(1, 0, 0.8, "the lever", lambda: throttles(standin)[0] == 0.8)
    lever = sticks.axes.pop(1)
    sticks.write()
    gone, back = "Joystick 1 gives no readings (Throttle 1)", "Joystick 1 is there again (Throttle 1)"
    wait_for("the log", lambda: standin.ask("frames 1") == "" and gone in standin.log())
    standin.ask("frames 20")
    assert throttles(standin)[0] == 0.8 and standin.log().count(gone) == 1
    sticks.put(2, 2, 0.75, "the other lever", lambda: throttles(standin)[2] == 0.25)
    lever[0] = 0.3
    sticks.axes[1] = lever
    sticks.write()
    wait_for("the device", lambda: standin.ask("frames 1") == "" and back in standin.log(), deadline=DEADLINE)
    assert throttles(standin)[0] == 0.8
    sticks.move(1, 0, 0.2)
    seen = [0.8]

    def caught_up():
        standin.ask("frames 1")
        seen.append(throttles(standin)[0])
        return seen[-1] == 0.2
    wait_for("the way to the lever", caught_up)
    assert all(0 <= a - b <= 0.21 for a, b in zip(seen, seen[1:])), seen
    assert standin.log().count(back) == 1
    standin.quit()
