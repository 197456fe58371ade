"""Pushback, joystick buttons and flaps set in their windows: the settings file, datarefs and log follow, and all
of it is there again after a restart."""
import re

import pytest
from conftest import wait_for

PUSHBACK, BUTTONS, FLAPS = "Push Back Settings", "Joystick Button -> Offset Assignments", "Flaps settings"
BRAKE = "sim/flightmodel/controls/parkbrake"


@pytest.fixture(params=["linux", pytest.param("win32", marks=pytest.mark.wine)])
def build(request):
    return request.getfixturevalue(request.param)


def begin(start, build, root):
    standin = start(build, "--rate", "0", "--flight", "none", root=root)
    standin.ask("frames 70")
    standin.wait_log("Create Joystick Thread OK!")
    for item in (PUSHBACK, "Joystick Button Assignments", FLAPS):
        standin.ask(f'menu "{item}"')
    return standin


def shows(standin, text):
    def look():
        standin.ask("frames 1")
        return f'"{text}"' in standin.ask("widgets")
    wait_for(text, look)


def stick(standin, button, state):
    standin.ask(f"set sim/joystick/joystick_button_values[{button}] {state}")
    standin.ask("frames 1")


def test_what_is_set_acts_and_stays(start, build, tmp_path):
    root = tmp_path / "X-Plane"
    standin = begin(start, build, root)

    standin.ask(f"set {BRAKE} 1")
    standin.ask('press "Straight"')
    shows(standin, "refused: the parking brake is set")
    standin.ask(f"set {BRAKE} 0")
    standin.ask("frames 40")  # the offset shows the state again
    standin.ask(f'type "{PUSHBACK}" "MaxSpeed" "-0.5"')
    standin.ask('press "Straight"')
    shows(standin, "straight")
    shows(standin, "-0.50 m/s")
    assert standin.number("sim/operation/override/override_joystick") == 1
    standin.ask('press "Stop"')
    shows(standin, "off")
    assert standin.number("sim/operation/override/override_joystick") == 0

    # The parking brake's own offset, from the stick.
    stick(standin, 21, 1)
    stick(standin, 21, 0)
    shows(standin, "21")
    for label, text in (("Offset to assign to joystick button", "0BC8"), ("Offset size", "2"),
                        ("Value or bit to send when pressed", "32767"),
                        ("Value or bit to send when released", "0")):
        standin.ask(f'type "{BUTTONS}" "{label}" "{text}"')
    standin.ask(f'press "{BUTTONS}" "SAVE"')
    shows(standin, "Saved button 21, in force now")
    stick(standin, 21, 1)
    wait_for("the brake", lambda: standin.ask("frames 1") == "" and standin.number(BRAKE) == 1)
    stick(standin, 21, 0)
    wait_for("its release", lambda: standin.ask("frames 1") == "" and standin.number(BRAKE) == 0)

    standin.ask(f'press "{FLAPS}" "Flap detents active"')
    standin.ask(f'type "{FLAPS}" "Number of detents" "3"')
    standin.ask(f'type "{FLAPS}" "Detent 3" "0.5,40"')
    standin.ask("reload")
    assert standin.ask("widgets") == ""
    standin.quit()

    settings = (root / "Resources" / "plugins" / "TAVRIX" / "TAVRIX.ini").read_text()
    for line in ("MaxSpeed = -0.5", "21 = BC8,2,32767,0,0,0,0,0,0,0,0,0", "Flap Settings = Active",
                 "Number of Detends = 03", "Flap detend 3 = 0.5,40"):
        assert re.search(f"^{re.escape(line)}$", settings, flags=re.M), settings
    standin = begin(start, build, root)
    for text in ("-0.5", "0.5,40", "Press a joystick button"):
        shows(standin, text)
    stick(standin, 21, 1)
    shows(standin, "0BC8, 2 bytes; pressed: write 32767; released: write 0")
    wait_for("the brake", lambda: standin.number(BRAKE) == 1 or standin.ask("frames 1"))
    standin.ask(f'press "{BUTTONS}" "CLEAR"')
    shows(standin, "not assigned")
    assert "Joystick button 21" not in standin.log()
    standin.quit()
