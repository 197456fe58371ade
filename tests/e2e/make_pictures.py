#!/usr/bin/env python3
"""The pictures of the user guide, from the stand-in simulator with the Linux plug-in.

    python3 tests/e2e/make_pictures.py     writes docs/pictures anew

The scenario is the same each time. What still depends on the computer, its addresses, is kept out by a network of
its own where the system grants one (`unshare`)."""
import os
import shutil
import subprocess
import sys
from pathlib import Path

from conftest import TOP, Build, Standin, wait_for

PICTURES = TOP / "docs" / "pictures"
# File -> menu item and the window's title.
WINDOWS = {
    "version": ("TAVRIX Version and Info",) * 2,
    "atc": ("ATC Menu",) * 2,
    "buttons": ("Joystick Button Assignments", "Joystick Button -> Offset Assignments"),
    "calibration": ("Joystick Calibration Assignments",) * 2,
    "combining": ("Joystick Axis Combining Assignments",) * 2,
    "pushback": ("Push Back Settings",) * 2,
    "flaps": ("Flaps settings",) * 2,
    "performance": ("Performance settings",) * 2,
    "alert": (None, "TAVRIX Alert"),
}
SETTINGS = """[TAVRIX SETTINGS]
Server Address = {}
[TAVRIX FLAPS SETTINGS]
Number of Detends = 04
Flap detend 1 = 0
Flap detend 2 = 0.33,10
Flap detend 3 = 0.66,25
Flap detend 4 = 1,40
[JOYSTICK BUTTON SETTINGS]
21 = 0BC8,2,32767,0,0,0,0,0,0,0,0,0
"""
NOT_OURS = "192.0.2.1"  # kept for documents: no computer has it


def begin(start, folder, address):
    plugin = folder / "X-Plane" / "Resources" / "plugins" / "TAVRIX"
    plugin.mkdir(parents=True)
    (plugin / "TAVRIX.ini").write_text(SETTINGS.format(address))
    shutil.copy(TOP / "docs" / "TAVRIXOffsets.example.cfg", plugin / "TAVRIXOffsets.cfg")
    standin = start(Build("linux"), "--rate", "0", "--flight", "none", "--planes", "1", root=folder / "X-Plane")
    standin.ask("frames 70")
    standin.wait_log("Create ATC thread")
    return standin


def draw(standin, name, target):
    for kind in ("svg", "png"):
        standin.ask(f'picture "{target / name}.{kind}"')


def make_pictures(start, scratch, target):
    """NAME.svg and NAME.png of every window into `target`."""
    standin = begin(start, scratch / "good", "127.0.0.1")
    for name, (item, title) in WINDOWS.items():
        if item is None:
            continue
        standin.ask(f'menu "{item}"')
        if name == "buttons":
            standin.ask("set sim/joystick/joystick_button_values[21] 1")
            wait_for("the button", lambda: standin.ask("frames 1") == "" and "0BC8, 2" in standin.ask("widgets"))
        if name == "version":
            for text in ("ready, Network", "once a second", "http://"):
                wait_for(text, lambda: standin.ask("frames 1") == "" and text in standin.ask("widgets"))
        draw(standin, name, target)
        standin.ask(f'close "{title}"')
    standin.quit()
    standin = begin(start, scratch / "bad", NOT_OURS)
    draw(standin, "alert", target)
    standin.quit()


def main():
    import tempfile
    running = []

    def start(*words, root):
        running.append(Standin(words[0], root, *words[1:]))
        return running[-1]

    PICTURES.mkdir(exist_ok=True)
    try:
        with tempfile.TemporaryDirectory() as scratch:
            make_pictures(start, Path(scratch), PICTURES)
    finally:
        for standin in running:
            standin.end()


OWN_NETWORK = "ip link set lo up && ip route add 224.0.0.0/4 dev lo; exec \"$@\""
if __name__ == "__main__":
    inside = [sys.executable, __file__, "inside"]
    alone = ["unshare", "-rn", "sh", "-c", OWN_NETWORK, "sh"]
    if "inside" in sys.argv:
        main()
    elif shutil.which("unshare") and subprocess.run([*alone, "true"], capture_output=True).returncode == 0:
        sys.exit(subprocess.run([*alone, *inside], env=os.environ).returncode)
    else:
        sys.exit("a network of its own is not to be had here (unshare -rn): the pictures would show your addresses")
