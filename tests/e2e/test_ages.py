"""The plug-in in every age of the simulator: whatever an age publishes otherwise, the same flight gives the same
offsets, and the same writes of a client reach the same datarefs. What it is compared with is the age-less
stand-in, whose rows have expectations of their own in the unit tests."""
import json
import re
import struct

import pytest

from conftest import TOP

NAMES = sorted(set(re.findall(r'"(sim/[^"]+)"', (TOP / "src/bridge/start_names.cpp").read_text())) |
               {"sim/operation/failures/rel_com1", "sim/operation/failures/rel_com2",
                "sim/cockpit/switches/anti_ice_inlet_heat"})
ROWS = json.loads((TOP / "docs/offsets.json").read_text())["offsets"]
KNOT = 1852 / 3600
MIXTURE, ENGINES = "sim/aircraft/view/acf_has_mixture", "sim/aircraft/prop/acf_en_type"
# Setting these is an action, or they count by themselves.
LEFT_ALONE = re.compile(r"override|sim/joystick/joystick_|total_running|frame_rate_period|time/paused|sim_speed|"
                        r"failures/failures|autopilot_state|sim/multiplayer|sim/time/")
# In older versions another dataref serves; both hold the same here.
OLDER = {"sim/cockpit2/engine/actuators/throttle_ratio": "sim/flightmodel/engine/ENGN_thro",
         "sim/cockpit2/engine/actuators/mixture_ratio": "sim/flightmodel/engine/ENGN_mixt",
         "sim/cockpit2/controls/aileron_trim": "sim/flightmodel/controls/ail_trim",
         "sim/cockpit2/controls/rudder_trim": "sim/flightmodel/controls/rud_trim",
         "sim/cockpit2/electrical/APU_generator_on": "sim/cockpit/electrical/generator_apu_on",
         "sim/cockpit2/ice/ice_inlet_heat_on_per_engine": "sim/cockpit/switches/anti_ice_inlet_heat",
         "sim/cockpit/switches/anti_ice_surf_heat_left": "sim/cockpit/switches/anti_ice_surf_heat",
         "sim/cockpit/switches/anti_ice_surf_heat_right": "sim/cockpit/switches/anti_ice_surf_heat",
         "sim/operation/failures/rel_g_comrad1": "sim/operation/failures/rel_com1",
         "sim/operation/failures/rel_g_comrad2": "sim/operation/failures/rel_com2"}


def value_of(name, element, look):
    """What a dataref holds: whole numbers at the first look, shares of 1 at the second."""
    name = OLDER.get(name, name)
    number = sum(name.encode()) + (element if name not in OLDER.values() else 0) + 7 * look
    if name == ENGINES:
        return [5, 1][look]
    if "_freq_hz" in name:
        return 11000 + number % 800
    return number % 40 + 1 if look == 0 else number % 2


def is_wind(name):
    return name.startswith("sim/weather/wind_speed_kt")


# What a client writes in one request: every row whose write sets or fires something, but for those that move the
# aircraft, stop the simulator, take files or work for seconds.
NOT_WRITTEN = re.compile(r"pause|reposition|sim_rate|situation|custom|reload|slew|latitude|longitude|altitude|pitch$|bank$|heading$|"
                         r"pushback|zulu|day_of|year|message|crash|weather|velocity|vertical_speed$")
WRITABLE = [row for row in ROWS if row["write"] == "yes" and row["type"][0] in "usf" and row["form"] != "Text"
            and not NOT_WRITTEN.search(row["name"])]
WRITES = [f"{row['offset']:#x}:{row['type']}={[0.5, 3][row['type'][0] != 'f']}" for row in WRITABLE]


class Age:
    """A running stand-in with what it publishes: name -> number of elements, 0 for a text."""

    def __init__(self, start, build, root, version):
        (root / "Resources/plugins/TAVRIX").mkdir(parents=True, exist_ok=True)
        (root / "Resources/plugins/TAVRIX/TAVRIX.ini").write_text("[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\n")
        options = ["--version", str(version)] if version else []
        self.build, self.version = build, version
        self.standin = start(build, "--rate", "0", "--flight", "none", "--planes", "1", *options, root=root)
        self.published, self.whole = {}, set()
        for name in NAMES:
            answer = self.standin.say(f"get {name}")
            if answer.startswith("ok"):
                words = answer[3:].split(" ")
                self.published[name] = 0 if answer[3:4] == '"' else len(words)
                if all(re.fullmatch(r"-?\d+", word) for word in words):
                    self.whole.add(name)
        self.standin.ask("navaid clear")
        self.standin.ask("frames 30")

    def set_all(self, look, like):
        """The flight of this look, as far as `like`, an age, can show it."""
        for name, count in self.published.items():
            if LEFT_ALONE.search(name):
                continue
            known = name in like.published or OLDER.get(name) in like.published
            if name == MIXTURE:
                values = [1 if value_of(ENGINES, 0, look) <= 1 else 0]
            elif count == 0:
                values = ['"TEXT"' if known else '""']
            else:
                there = like.published.get(name, 8) if known else 0
                values = [value_of(name, i, look) if i < there else 0 for i in range(min(count, 8))]
                if is_wind(name) and self.version >= 1140:
                    values = [value * KNOT for value in values]
            self.standin.ask(f"set {name} " + " ".join(map(str, values)))

    def memory(self, path):
        self.standin.ask("frames 700")
        result = self.build.run("offsetctl", "dump", self.build.path(path))
        assert result.returncode == 0, result.stderr
        return path.read_bytes()

    def write(self, items):
        """What the writes of a client do: {name: value} and what is fired."""
        self.standin.ask("writes"), self.standin.ask("calls")
        result = self.build.run("offsetctl", "write", *items)
        assert result.returncode == 0, result.stderr
        self.standin.ask("frames 3")
        pairs = [pair.rsplit("=", 1) for pair in self.standin.ask("writes").split("; ") if "=" in pair]
        return dict(pairs), self.standin.ask("calls")


# Not of the flight: the table of other aircraft has threads of its own; paths are those of a system, and so is the
# mark that a network client has been there. The unrounded wind is looked at by itself.
PASSED_OVER = [range(0xD840, 0xE000), range(0xF000, 0xFF80), range(0x3488, 0x3490)]
OF_THE_SYSTEM = [range(0x3C00, 0x3D00), range(0x3E00, 0x3F00), range(0x3520, 0x3524)]


# Made of another dataref before 9.55, and looked at by itself.
PROPELLERS = [range(0x2408, 0x2410), range(0x2508, 0x2510)]
TACHOMETER, REDLINE = "sim/flightmodel/engine/POINT_tacrad", "sim/aircraft/engine/acf_RSC_redline_eng"


def is_passed_over(offset, linux, version):
    return any(offset in one for one in PASSED_OVER + ([] if linux else OF_THE_SYSTEM) +
               (PROPELLERS if version < 955 else []))


def row_at(offset):
    return [f"{row['offset']:#06x} {row['name']}" for row in ROWS if row["offset"] <= offset < row["offset"] + row["size"]]


AGES = [860, 920, 955, 1004, 1042, 1110, 1140, 1200, 1210]


@pytest.mark.parametrize("preset, version", [
    *[("linux", version) for version in AGES],
    *[pytest.param("win32", version, marks=[pytest.mark.wine, pytest.mark.slow]) for version in AGES[:5]],
    *[pytest.param("win64", version, marks=[pytest.mark.wine, pytest.mark.slow]) for version in AGES[3:]]])
def test_every_offset_in_every_age(start, request, tmp_path, preset, version):
    build, linux = request.getfixturevalue(preset), request.getfixturevalue("linux")
    # One after the other: both serve the same port.
    age = Age(start, build, tmp_path / "X-Plane", version)
    shown = []
    for look in (0, 1):
        age.set_all(look, age)
        shown.append(age.memory(tmp_path / f"age{look}"))
    writes, calls = age.write(WRITES)
    age.standin.quit()
    plain = Age(start, linux, tmp_path / "X-Plane", 0)
    for look in (0, 1):
        plain.set_all(look, age)
        expected = plain.memory(tmp_path / f"plain{look}")
        differing = [offset for offset in range(len(expected)) if expected[offset] != shown[look][offset]
                     and not is_passed_over(offset, preset == "linux", version)]
        assert not differing, [(hex(offset), row_at(offset)) for offset in differing[:20]]
        # Unrounded: through another unit in single precision.
        wind, wind_expected = (struct.unpack_from("<d", memory, 0x3488)[0] for memory in (shown[look], expected))
        assert abs(wind - wind_expected) < 1e-5 * (1 + abs(wind_expected))
        if version < 955:
            share = value_of(TACHOMETER, 1, look) / (value_of(REDLINE, 0, look) or float("inf"))
            assert abs(struct.unpack_from("<d", shown[look], 0x2508)[0] - share) < 1e-6
    expected_writes, expected_calls = plain.write(WRITES)
    plain.standin.quit()
    assert calls == expected_calls
    wanted = {}
    for item, value in expected_writes.items():
        name, bracket, element = item.partition("[")
        if item in plain.published:
            name, element = item, ""
        older = OLDER.get(name)
        if name in age.published:
            wanted[item] = value
        elif older in age.published:
            wanted[older + ("[" + element if age.published[older] > 1 else "")] = value
    assert len(wanted) > 120  # what is written does reach the simulator
    assert set(writes) == set(wanted)
    for item, value in wanted.items():
        got, value = float(writes[item].removesuffix(" (ignored)")), float(value.removesuffix(" (ignored)"))
        if is_wind(item) and version >= 1140:
            got /= KNOT
        if item in age.whole and item not in plain.whole:
            value = int(value)
        assert abs(got - value) <= 1e-5 * (1 + abs(value)), item
    # Every row with a dataref of this age for its writes has set it.
    for row in WRITABLE:
        target = next((name for name in [row["target"], *row["otherNames"]]
                       if name and name.partition("[")[0] in age.published or name in age.published), None)
        if target is not None:
            assert any(item == target or item.startswith(target + "[") for item in writes), (hex(row["offset"]), target)
