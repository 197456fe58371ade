#!/usr/bin/env python3
"""The pictures of the user guide, from the stand-in simulator with the Linux plug-in.

    /usr/bin/python3 tests/e2e/make_pictures.py           writes docs/pictures/*.svg anew
    /usr/bin/python3 tests/e2e/make_pictures.py FOLDER    the same there, as .png too, and crowded.svg, which the
                                                          guide does not show: the version window at its highest

The scenario is the same each time, in a network of its own with fixed addresses: what the windows show is the same
on every computer, but for the count of refreshes."""
import os
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree
from pathlib import Path

from conftest import TOP, Build, Standin, wait_for
from network import Client

COMMAND = "/usr/bin/python3 tests/e2e/make_pictures.py"
PICTURES = TOP / "docs" / "pictures"
VERSION, CROWDED = "TAVRIX Version and Info", "crowded"
# File -> place in the menu. The alert comes by itself.
WINDOWS = {
    "version": VERSION,
    "atc": "ATC Menu",
    "buttons": "TAVRIX+ > Joystick functions > Joystick Button Assignments",
    "calibration": "TAVRIX+ > Joystick functions > Joystick Calibration Assignments",
    "combining": "TAVRIX+ > Joystick functions > Joystick Axis Combining Assignments",
    "pushback": "TAVRIX+ > Misc. functions > Push Back Settings",
    "flaps": "TAVRIX+ > Misc. functions > Flaps settings",
    "performance": "TAVRIX settings > Performance settings",
}
ALERT = "alert"
ADDRESS, MORE_ADDRESSES = "192.168.0.10", ("192.168.100.110", "192.168.200.210")
SETTINGS = f"""[TAVRIX SETTINGS]
Server Address = {ADDRESS}
[TAVRIX AXIS SETTINGS]
Assign Elevator Axis = 0,1
Combine Elevator Axis = 0,7
Calibrate Elevator Axis = 0.02,0.5,0.98
Nullzone Elevator Axis = 0.05
[TAVRIX FLAPS SETTINGS]
Number of Detends = 04
Flap detend 1 = 0
Flap detend 2 = 0.33,0.25,0.4
Flap detend 3 = 0.66,0.6,0.75
Flap detend 4 = 1
[JOYSTICK BUTTON SETTINGS]
21 = 0BC8,2,32767,0,0,0,0,0,0,0,0,0
"""
OFFSETS = (TOP / "docs" / "TAVRIXOffsets.example.cfg").read_text()
MISSING = "".join(f"Dataref missing{i} another/plug-in/that/is/not/there/dataref_number_{i} int\n" for i in range(6))


def read_svg(path):
    """The picture's own box, and the attributes of every widget without data-; boxes are (left, top, right, bottom)."""
    def facts(element):
        named = {name.removeprefix("data-"): value for name, value in element.attrib.items()}
        return {name: tuple(map(int, value.split())) if name.endswith("box") else value
                for name, value in named.items()}
    top = ElementTree.parse(path).getroot()
    return facts(top)["box"], [facts(each) for each in top.iter() if each.get("class") == "widget"]


def begin(root, settings, offsets=OFFSETS):
    folder = root / "Resources" / "plugins" / "TAVRIX"
    folder.mkdir(parents=True)
    (folder / "TAVRIX.ini").write_text(settings)
    (folder / "TAVRIXOffsets.cfg").write_text(offsets)
    standin = Standin(Build("linux"), root, "--rate", "0", "--flight", "none", "--planes", "1")
    standin.ask("frames 70")
    standin.wait_log("Create ATC thread")
    return standin


def wait_shown(standin, *texts):
    for text in texts:
        wait_for(text, lambda: standin.ask("frames 1") == "" and text in standin.ask("widgets"))


def draw(standin, name, target):
    for kind in ("svg",) if target == PICTURES else ("svg", "png"):
        standin.ask(f'picture "{target / name}.{kind}"')


def draw_windows(root, target):
    standin = begin(root, SETTINGS)
    places = {place for place in standin.ask("menu").replace("TAVRIX > ", "").split("; ") if place != "-"}
    assert places == set(WINDOWS.values()), f"WINDOWS of {__file__} and docs/user-guide.md need every item of the menu"
    for name, place in WINDOWS.items():
        standin.ask(f'menu "{place.split(" > ")[-1]}"')
        if name == "buttons":
            standin.ask("set sim/joystick/joystick_button_values[21] 1")
            wait_shown(standin, "0BC8, 2 bytes")
        if name in ("calibration", "combining"):
            for axis, value in ((1, 0.75), (7, 0.5)):
                standin.ask(f"axis {axis} {value}")
            wait_shown(standin, "0.496 |")  # what the control moves to
        if name == "version":
            wait_shown(standin, "ready, Network", "once a second", "http://")
        draw(standin, name, target)
        title = standin.ask("widgets").split('"')[1]
        standin.ask(f'close "{title}"')
    standin.quit()


def draw_alert(root, target):
    standin = begin(root, "")  # the address of the default is another computer's
    draw(standin, ALERT, target)
    standin.quit()


def draw_crowded(root, target):
    for address in MORE_ADDRESSES:
        subprocess.run(["ip", "address", "add", f"{address}/24", "dev", "here"], check=True)
    standin = begin(root, SETTINGS, OFFSETS + MISSING)
    standin.ask("plugin vatsim.protodev.clients.xsquawkbox on")
    standin.ask("frames 400")  # within which it is recognised
    clients = [Client(ADDRESS) for _ in range(8)]
    standin.ask(f'menu "{VERSION}"')
    wait_shown(standin, "Network clients: 8", "once a second", "http://", "XSquawkBox (")
    draw(standin, CROWDED, target)
    for client in clients:
        client.close()
    standin.quit()


def make_pictures(target):
    with tempfile.TemporaryDirectory() as scratch:
        draw_windows(Path(scratch, "good"), target)
        draw_alert(Path(scratch, "bad"), target)
        if target != PICTURES:
            draw_crowded(Path(scratch, "crowded"), target)


OWN_NETWORK = (f"ip link set lo up && ip link add here type veth peer name there && ip link set there up && "
               f"ip address add {ADDRESS}/24 dev here && ip link set here up && "
               f"ip route add 224.0.0.0/4 dev here && exec \"$@\"")
ALONE = ["unshare", "-n" if os.geteuid() == 0 else "-rn", "sh", "-c", OWN_NETWORK, "sh"]


def can_be_alone():
    return shutil.which("unshare") and subprocess.run([*ALONE, "true"], capture_output=True).returncode == 0


if __name__ == "__main__":
    if sys.argv[1:2] == ["--inside"]:
        make_pictures(Path(sys.argv[2]))
    elif can_be_alone():
        folder = Path(sys.argv[1]).resolve() if sys.argv[1:] else PICTURES
        folder.mkdir(exist_ok=True)
        sys.exit(subprocess.run([*ALONE, sys.executable, __file__, "--inside", folder]).returncode)
    else:
        sys.exit("a network of one's own is not to be had here (unshare -n): the pictures would show its addresses")
