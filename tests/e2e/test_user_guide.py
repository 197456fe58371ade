"""The user guide is true: its pictures are what the windows look like, its keys, log lines, names on the windows and
recipes are the program's. `make_pictures.py` makes the pictures anew."""
import json
import re
import subprocess
import sys

import pytest
from conftest import TOP, wait_for
from make_cockpit_pictures import PICTURES as COCKPIT_PICTURES
from make_pictures import ALERT, COMMAND, CROWDED, PICTURES, WINDOWS, can_be_alone, read_svg

GUIDE = (TOP / "docs" / "user-guide.md").read_text()
SOURCES = [path.read_text() for path in sorted((TOP / "src").rglob("*")) if path.suffix in (".cpp", ".h")]
SCREEN = (1024, 768)  # the smallest one that the windows are made for
SHOWN = sorted([*WINDOWS, ALERT])


# --- Pictures ----------------------------------------------------------------------------------------------------
@pytest.fixture(scope="module")
def fresh(tmp_path_factory):
    if not can_be_alone():
        pytest.skip("networks of one's own need rights")
    folder = tmp_path_factory.mktemp("pictures")
    subprocess.run([sys.executable, PICTURES.parents[1] / "tests" / "e2e" / "make_pictures.py", folder], check=True,
                   timeout=120)
    return folder


def steady(widget):
    """Without what differs from run to run: how often values were refreshed, and the length of that text."""
    widget = dict(widget)
    if widget["text"].startswith("Refreshes stored: "):
        widget["text"] = re.sub(r"\d+", "N", widget["text"])
        del widget["text-box"]
    return widget


@pytest.mark.parametrize("name", SHOWN)
def test_pictures_are_current(fresh, name):
    now = [steady(each) for each in read_svg(fresh / f"{name}.svg")[1]]
    shown = [steady(each) for each in read_svg(PICTURES / f"{name}.svg")[1]]
    if now == shown:
        return
    differences = [f"shown: {a}\nnow:   {b}" for a, b in zip(shown, now) if a != b] or [f"{len(shown)} and {len(now)}"]
    pytest.fail(f"the window of docs/pictures/{name}.svg looks otherwise now. Look whether it should, make the "
                f"pictures anew with\n    {COMMAND}\nand see what docs/user-guide.md says of it\n" +
                "\n".join(differences[:5]), pytrace=False)


def ink(widget):
    """What a widget fills: a caption its letters, others their rectangle. None for an empty caption."""
    return widget.get("text-box") if widget["class"] in ("caption", "window") else widget["box"]


def is_within(inner, outer):
    return inner[0] >= outer[0] and inner[1] <= outer[1] and inner[2] <= outer[2] and inner[3] >= outer[3]


def faults_of(widgets):
    """What nobody could read: texts over each other, beyond their place, their window or the screen."""
    window, faults = widgets[0], []
    if not is_within(window["box"], (0, SCREEN[1], SCREEN[0], 0)):
        faults.append("the window leaves the screen")
    drawn = [each for each in widgets if ink(each)]
    for i, one in enumerate(drawn):
        a = ink(one)
        if not is_within(a, window["box"]) or not is_within(one.get("text-box", a), one["box"]):
            faults.append(f'"{one["text"]}" runs out of its place')
        for other in drawn[:i]:
            b = ink(other)
            if a[0] < b[2] and b[0] < a[2] and a[3] < b[1] and b[3] < a[1]:
                faults.append(f'"{one["text"]}" lies over "{other["text"]}"')
    return faults


@pytest.mark.parametrize("name", [*SHOWN, CROWDED])
def test_windows_can_be_read(fresh, name):
    widgets = read_svg(fresh / f"{name}.svg")[1]
    assert sum(each["class"] == "window" for each in widgets) == 1 and len(widgets) > 2
    assert faults_of(widgets) == []


def section(title):
    found = re.search(rf"^### {re.escape(title)}\n(.*?)(?=^##)", GUIDE, re.M | re.S)
    assert found, f'docs/user-guide.md has no section "### {title}"'
    return found[1]


def test_guide_shows_every_window():
    assert sorted(re.findall(r"\(pictures/(\w+)\.svg\)", GUIDE)) == SHOWN
    assert sorted(path.name for path in PICTURES.glob("*.svg")) == [f"{name}.svg" for name in SHOWN]
    for name, place in WINDOWS.items():
        steps = place.split(" > ")
        text = section(steps[-1])
        assert f"(pictures/{name}.svg)" in text
        assert "Menu: " + ", ".join(f"`{step}`" for step in steps) + "." in text
        # Names in bold stand in the window.
        texts = [each["text"] for each in read_svg(PICTURES / f"{name}.svg")[1]]
        for label in re.findall(r"\*\*(.+?)\*\*", text):
            for part in label.split(", "):
                assert any(part in each for each in texts), f'"{part}" is not in the window "{steps[-1]}"'


def test_pictures_of_the_web_cockpit():
    """Each is there, as a small PNG, is shown somewhere and tells in words what it shows; none is left over."""
    shown = [found for page in ("user-guide.md", "web-cockpit.md") for found in re.findall(
        r"!\[(.+)\]\(pictures/(cockpit-\w+)\.png\)", (TOP / "docs" / page).read_text())]
    assert sorted(name for _, name in shown) == sorted(COCKPIT_PICTURES)
    assert sorted(path.name for path in PICTURES.glob("*.png")) == sorted(f"{name}.png" for name in COCKPIT_PICTURES)
    for text, name in shown:
        data = (PICTURES / f"{name}.png").read_bytes()
        assert data.startswith(b"\x89PNG") and 5000 < len(data) < 400_000 and len(text) > 15, name


# --- Text ----------------------------------------------------------------------------------------------------
@pytest.mark.parametrize("page", ["user-guide.md", "web-cockpit.md", "reliability.md"])
def test_links_lead_somewhere(page):
    for target, anchor in re.findall(r"\]\(([\w./-]*)(?:#([\w-]+))?\)", (TOP / "docs" / page).read_text()):
        path = TOP / "docs" / (target or page)
        assert path.exists(), target
        titles = re.findall(r"^#+ (.*)", path.read_text(), re.M) if anchor else []
        assert not anchor or anchor in [re.sub(r"[^\w -]", "", t).lower().replace(" ", "-") for t in titles], anchor


def test_keys_of_the_settings_file(start, linux, tmp_path):
    standin = start(linux, "--rate", "0", "--flight", "none", root=tmp_path)
    standin.ask("frames 70")
    text = (standin.folder / "TAVRIX.ini").read_text()
    standin.quit()
    sections = re.findall(r"^\[(.*)\]", text, re.M) + ["JOYSTICK BUTTON SETTINGS"]
    keys = re.findall(r"^(.+?) =", text, re.M)
    assert len(keys) > 30
    for source in SOURCES:  # what is asked for or kept when somebody does something
        keys += re.findall(r'\b(?:Read|Write|Keep)Setting\([^,]+,\s*"([^"]+)"', source)
        keys += re.findall(r'legacy\w*Key\[\] = "([^"]+)"', source)
    table = GUIDE[GUIDE.index("\n## The settings file\n"):GUIDE.index("\n## Five recipes")]
    lost = [name for name in sections if f"\n| {name} |" not in table]
    lost += [key for key in dict.fromkeys(keys)
             if f"`{key}`" not in table and not re.fullmatch(r"Flap detend [2-9]", key)]
    assert not lost, f'docs/user-guide.md, "The settings file", does not name {lost}'


def pieces_of_texts():
    """Texts of the sources between the values that are put in, neighbouring literals as one."""
    pieces = set()
    for source in SOURCES:
        for joined in re.findall(r'(?:"(?:[^"\\\n]|\\.)*"\s*)+', re.sub(r"^\s*#.*|//.*", "", source, flags=re.M)):
            text = "".join(re.findall(r'"((?:[^"\\\n]|\\.)*)"', joined)).replace('\\"', '"').replace("\\n", "")
            pieces |= set(re.split(r"%[-+0-9.]*(?:ll|z)?[a-zA-Z]", text))
    return {piece for piece in pieces if len(piece) > 3}


def stands(text, pieces, begun=False):
    """Whether the text is part of one piece, or the end of one, whole ones and the beginning of a last one."""
    if any(piece.startswith(text) if begun else text in piece for piece in pieces):
        return True
    for piece in pieces:
        for at in [0] if begun else range(len(piece) - 3):
            if text.startswith(piece[at:]) and stands(text[len(piece) - at:], pieces, True):
                return True
    return False


def test_log_lines_stand_in_the_sources():
    pieces = pieces_of_texts()
    blocks = re.findall(r"^```log\n(.*?)^```", GUIDE, re.M | re.S)
    lines = [line for block in blocks for line in block.splitlines()]
    assert len(lines) > 20
    for line in lines:
        for part in line.split("..."):
            part = part.strip(" :;,.")
            assert len(part) < 4 or stands(part, pieces), f'"{part}" of the quoted line "{line}" is in no source'


# --- Recipes -------------------------------------------------------------------------------------------------
BUTTONS = "Joystick Button -> Offset Assignments"
LIGHTS = "sim/cockpit2/switches/"
# Button -> what shows it, and what that is after a press, its release, and both once more.
DEEDS = {
    "10": (LIGHTS + "landing_lights_on", [1, 0, 1, 0]),
    "11": (LIGHTS + "taxi_light_on", [1, 0, 1, 0]),
    "12": (LIGHTS + "beacon_on", [1, 1, 0, 0]),
    "13": ("0x66C0:u16", [994, 995, 994, 995]),
    "14": ("0x66C0:u16", [996, 997, 996, 997]),
    "21": ("sim/flightmodel/controls/parkbrake", [1, 0, 1, 0]),
}


def test_recipes_work(start, linux, tmp_path):
    """What the guide's tables say is entered in the window: the file has the guide's lines then, and buttons act."""
    recipes = GUIDE[GUIDE.index("\n## Five recipes"):GUIDE.index("\n## Ports")]
    rows = [row.split(" | ") for row in re.findall(r"^\| (\d.*) \|$", recipes, re.M)]
    lines = [line for block in re.findall(r"^```ini\n(.*?)^```", recipes, re.M | re.S) for line in block.splitlines()]
    assert [row[0] for row in rows] == list(DEEDS)
    folder = tmp_path / "Resources" / "plugins" / "TAVRIX"
    folder.mkdir(parents=True)
    (folder / "TAVRIX.ini").write_text("[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\n")
    standin = start(linux, "--rate", "0", "--flight", "none", root=tmp_path)
    for name, _ in DEEDS.values():
        if name.startswith("sim/"):
            standin.ask(f"set {name} 0")
    standin.ask("frames 70")
    standin.wait_log("TAVFARNET->Waiting for clients.....0")
    standin.ask('menu "Joystick Button Assignments"')
    for button, offset, size, pressed, released, boxes in rows:
        for label, text in (("Button pressed is:", button), ("Offset to assign to joystick button", offset),
                            ("Offset size", size), ("Value or bit to send when pressed", pressed),
                            ("Value or bit to send when released", released.replace("empty", ""))):
            standin.ask(f'type "{BUTTONS}" "{label}" "{text}"')
        for box in boxes.split(", ") if boxes != "none" else ():
            standin.ask(f'press "{BUTTONS}" "{box}"')
        standin.ask(f'press "{BUTTONS}" "SAVE"')
        assert f"Saved button {button}, in force now" in standin.ask("widgets")
    assert re.findall(r"^\d+ = .*", (folder / "TAVRIX.ini").read_text(), re.M) == lines
    standin.ask("frames 1")  # buttons are seen up before they go down

    def shown(name):
        if name.startswith("sim/"):
            return standin.number(name)
        return json.loads(linux.run("offsetctl", "read", name, "--json", "--net", "127.0.0.1").stdout)[0]["value"]

    for button, (name, states) in DEEDS.items():
        for press, state in enumerate(states):
            standin.ask(f"set sim/joystick/joystick_button_values[{button}] {1 - press % 2}")
            standin.ask("frames 20")  # a release that does nothing would show within them
            wait_for(f"{name} {state} by button {button}",
                     lambda: standin.ask("frames 1") == "" and shown(name) == state)
    standin.quit()
