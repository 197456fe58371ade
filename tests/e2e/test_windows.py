"""The plug-in's windows in a running simulator: set something, see it in files and logs, and find it there again."""
import re
import subprocess

import pytest
from conftest import wait_for

TITLES = ["TAVRIX Version and Info", "ATC Menu", "Joystick Button Assignments", "Joystick Calibration Assignments",
          "Joystick Axis Combining Assignments", "Push Back Settings", "Flaps settings", "Performance settings"]
# Of the one window whose menu item says something else.
WINDOW_OF = {"Joystick Button Assignments": "Joystick Button -> Offset Assignments"}


@pytest.fixture(params=["linux", pytest.param("win32", marks=pytest.mark.wine)])
def build(request):
    return request.getfixturevalue(request.param)


def place(tmp_path):
    root = tmp_path / "X-Plane"
    folder = root / "Resources" / "plugins" / "TAVRIX"
    folder.mkdir(parents=True)
    (folder / "TAVRIX.ini").write_text("; mine\n[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\n")
    return root


def test_what_is_set_stays(start, build, tmp_path):
    root = place(tmp_path)
    standin = start(build, "--rate", "0", "--flight", "none", root=root)
    standin.ask("frames 70")
    for title, label, text in (("ATC Menu", "Number", "AB 1"), ("Performance settings", "Tune value", "12")):
        standin.ask(f'menu "{title}"')
        standin.ask(f'type "{title}" "{label}" "{text}"')
    standin.ask('type "Tune value" "12 13"')
    assert "The tune value is a whole number" in standin.ask("widgets")
    standin.ask('press "Log writes"')
    assert re.search(r"Start Writelogging \d+\.\d+ sec\n", standin.log("TAVRIX.log"))
    on = r'checkbox "[^"]*" on'
    assert re.search(on, standin.ask("widgets"))
    standin.ask("disable")
    assert not re.search(on, standin.ask("widgets"))
    standin.quit()

    settings = (root / "Resources" / "plugins" / "TAVRIX" / "TAVRIX.ini").read_text()
    assert settings.startswith("; mine\n")
    assert "ATC Number = AB 1\n" in settings and "Tune value = 12\n" in settings
    standin = start(build, "--rate", "0", "--flight", "none", root=root)
    standin.ask("frames 70")
    for title in ("ATC Menu", "Performance settings"):
        standin.ask(f'menu "{title}"')
    shown = standin.ask("widgets")
    assert 'textfield "AB 1"' in shown and 'textfield "12"' in shown
    standin.quit()


def test_files_that_refuse(start, build, tmp_path):
    """Without logs and settings file: the windows say why, and the simulator's own log does."""
    root = place(tmp_path)
    folder = root / "Resources" / "plugins" / "TAVRIX"
    (folder / "TAVRIX.ini").unlink()
    for name in ("TAVRIX.ini", "TAVRIX.txt", "TAVRIXOffsets.cfg"):
        (folder / name).mkdir()
    standin = start(build, "--rate", "0", "--flight", "none", root=root)
    standin.ask("frames 70")
    standin.ask('close "TAVRIX Alert"')
    standin.ask('menu "Performance settings"')

    def message():
        return " ".join(re.findall(r'caption "([^"]*)"', standin.ask("widgets"))[-2:])

    standin.ask('type "Performance settings" "Tune value" "12"')
    assert "Not saved: TAVRIX.ini cannot be read (it is a folder" in message()
    standin.ask('press "Log writes"')
    assert "Not switched on: TAVRIX.log cannot be written (it could" in message()
    standin.ask('press "Reload TAVRIXOffsets.cfg"')
    assert "Not loaded: TAVRIXOffsets.cfg cannot be read: it is a folder" in message()
    assert '" on' not in standin.ask("widgets")
    standin.quit()
    errors = "\n".join(standin.errors)
    assert "TAVRIX->Can't write the log file" in errors
    assert "TAVRIX->Not saved: TAVRIX.ini cannot be read (it is a folder" in errors


def test_rounds_leave_nothing(start, build, tmp_path):
    """The stand-in ends with a breach when a widget is left, or a call comes from another thread."""
    standin = start(build, "--rate", "0", "--flight", "none", root=place(tmp_path))
    standin.ask("frames 70")
    for title in TITLES:
        standin.ask(f'menu "{title}"')
    widgets = len(re.findall(r'[a-z]+ "', standin.ask("widgets")))
    for _ in range(100):
        for title in TITLES:
            standin.ask(f'close "{WINDOW_OF.get(title, title)}"')
        for title in TITLES:
            standin.ask(f'menu "{title}"')
        standin.ask("frames 1")
    assert abs(len(re.findall(r'[a-z]+ "', standin.ask("widgets"))) - widgets) <= 2  # lines that came or went
    standin.ask("reload")
    assert standin.ask("widgets") == ""
    standin.quit()


def test_clients_come_and_go(start, linux, tmp_path):
    standin = start(linux, "--flight", "none", root=place(tmp_path))
    standin.ask("frames 70")
    standin.ask('menu "TAVRIX Version and Info"')
    line = re.search(r'textfield "offsetctl ([^"]+)"', standin.ask("widgets"))[1]
    client = subprocess.Popen(linux.command("offsetctl", *line.split(), "--seconds", "3"), stdout=subprocess.DEVNULL)
    wait_for("the client", lambda: re.search('Network clients: 1".*"127.0.0.1 ', standin.ask("widgets")))
    assert client.wait(timeout=60) == 0, "the line works as it stands"
    wait_for("its end", lambda: re.search('Network clients: 0".*caption "Clients"; caption "none"',
                                          standin.ask("widgets")))
    standin.quit()
