"""docs/offsets.json is what its schema says, its examples are what its own rules make of their bytes, its layouts
are what the plug-in writes, and the page tells the same."""
import json
import math
import re
import struct
from fractions import Fraction

import jsonschema
import pytest

from conftest import TOP, wait_for
from network import Client, request, write_record

DATA = json.loads((TOP / "docs/offsets.json").read_text())
ROWS, AREAS = DATA["offsets"], {area["name"]: area for area in DATA["areas"]}
BY_NAME = {row["name"]: row for row in ROWS}
CODES = {"u8": "<B", "s8": "<b", "u16": "<H", "s16": "<h", "u32": "<I", "s32": "<i", "s64": "<q", "f32": "<f", "f64": "<d"}


def test_schema():
    schema = json.loads((TOP / "docs/offsets.schema.json").read_text())
    jsonschema.Draft202012Validator.check_schema(schema)
    jsonschema.validate(DATA, schema, cls=jsonschema.Draft202012Validator)
    for spoilt in ({"version": 3}, {"offsets": [{**ROWS[0], "extra": 1}]}, {"offsets": [{**ROWS[0], "name": ""}]}):
        with pytest.raises(jsonschema.ValidationError):
            jsonschema.validate({**DATA, **spoilt}, schema, cls=jsonschema.Draft202012Validator)


def fraction_of(text):
    """The number that a scale's text means."""
    if text.endswith("/pi"):
        return int(text[:-3]) / math.pi
    above, _, below = text.partition("/")
    product = Fraction(1)
    for factor in below.strip("()").split(" x ") if below else []:
        base, _, power = factor.partition("^")
        product *= Fraction(base) ** int(power or 1)
    return float(Fraction(above) / product)


def meant(row):
    """What the example's bytes mean by the row's own rules."""
    data = bytes.fromhex(row["example"]["bytes"])
    if row["form"] == "Text":
        return data.split(b"\0")[0].decode()
    stored, = struct.unpack(CODES[row["type"]], data)
    if row["form"] == "Bcd":
        digits = f"{stored:04X}"
        return round(100 + int(digits) / 100, 2) if row["unit"] == "MHz" else int(digits)
    return stored * fraction_of(row["scale"]["fraction"]) + row["bias"]


def test_examples():
    for row in ROWS:
        name, example = row["name"], row["example"]
        assert meant(row) == pytest.approx(example["value"], rel=1e-14, abs=1e-12), name
        if row["form"] != "Text":
            assert struct.calcsize(CODES[row["type"]]) == row["size"] == len(bytes.fromhex(example["bytes"])), name
        assert fraction_of(row["scale"]["fraction"]) == row["scale"]["numerator"] / row["scale"]["denominator"], name
        if row["range"] and row["form"] != "Text":
            low, high = (row["range"][end] if row["range"][end] is not None else example["value"] for end in ("low", "high"))
            assert low <= example["value"] <= high, name
        for one in row["values"] or []:
            assert (one["value"] == example["value"]) == (one["name"] == example["meaning"]), name


def test_names_and_places():
    names = [row["name"] for row in ROWS]
    assert len(set(names)) == len(names) and not set(names) & set(AREAS)
    assert all(int(row["hex"], 16) == row["offset"] for row in ROWS + DATA["areas"] + DATA["words"])
    for name in ("custom_reload", "custom_clear", "message_text", "weather_selector", "atc_number", "atc_tail_number"):
        assert BY_NAME[name]["write"] == "yes", name
    assert AREAS["traffic_own_entry"]["write"] == "yes"
    for area in DATA["areas"]:
        end = 0
        for field in area["fields"]:
            assert field["at"] >= end, (area["name"], field["name"])
            end = field["at"] + field["size"]
        assert end <= area["size"] and area["count"] == 1 or area["size"] <= area["step"]


def test_page_tells_the_same():
    page = (TOP / "docs/offsets.md").read_text()
    anchors = {re.sub(r"[^a-z0-9_ -]", "", line.lower()).replace(" ", "-") for line in re.findall(r"^#+ (.*)$", page, re.M)}
    for link in re.findall(r"\]\(#([^)]*)\)", page):
        assert link in anchors, link
    by_offset, by_name = (page.split(f"## By {what}\n")[1].split("\n## ")[0] for what in ("offset", "name"))
    for row in ROWS:
        assert f"| {row['hex']} | `{row['name']}` |" in by_offset and f"| `{row['name']}` |" in by_name
        for one in row["values"] or row["bits"] or []:
            assert re.search(rf"^- .*`{row['name']}`.*{re.escape(one['name'])}", page, re.M), (row["name"], one)


def field(client, area, index, name):
    """A field of the live memory, in its unit."""
    layout = AREAS[area]
    entry = next(one for one in layout["fields"] if one["name"] == name)
    data = client.read(layout["offset"] + layout["step"] * index + entry["at"], entry["size"])
    if entry["type"].startswith("text"):
        return data.split(b"\0")[0].decode()
    return struct.unpack(CODES[entry["type"]], data)[0] * entry["scale"]["numerator"] / entry["scale"]["denominator"]


def test_layouts_are_what_the_plug_in_keeps(start, linux, tmp_path):
    folder = tmp_path / "X-Plane" / "Resources" / "plugins" / "TAVRIX"
    folder.mkdir(parents=True)
    (folder / "TAVRIX.ini").write_text("[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\n")
    standin = start(linux, "--flight", "none", "--planes", "3", root=tmp_path / "X-Plane")
    standin.ask("set sim/multiplayer/position/plane1_psi 90")
    standin.ask("set sim/multiplayer/position/plane1_the 10")
    standin.ask("set sim/multiplayer/position/plane1_phi 20")
    standin.wait_log("TAVFARNET->Waiting for clients.....0")
    client = Client().complete()
    client.until("two aircraft", lambda: field(client, "traffic_header", 0, "slots") == 2)
    client.until("the first one", lambda: field(client, "traffic_entries", 0, "id") != 0
                 and abs(field(client, "traffic_entries", 0, "heading") - 90) < 0.01
                 and abs(field(client, "flight_records", 0, "pitch") - 10) < 0.01
                 and abs(field(client, "flight_records", 0, "bank") - 20) < 0.01)
    assert field(client, "traffic_header", 0, "entry_size") == AREAS["traffic_entries"]["size"]
    assert field(client, "traffic_header", 0, "capacity") == AREAS["traffic_entries"]["count"]
    assert field(client, "flight_records", 0, "departure") == "EDDM"

    weather, clouds, winds = (AREAS[name] for name in ("weather", "weather_clouds", "weather_winds"))
    area = bytearray(weather["size"])

    def put(layout, index, name, value):
        entry = next(one for one in layout["fields"] if one["name"] == name)
        at = layout["offset"] - weather["offset"] + layout["step"] * index + entry["at"]
        data = value if isinstance(value, bytes) else struct.pack(
            CODES[entry["type"]], round(value * entry["scale"]["denominator"] / entry["scale"]["numerator"]))
        area[at:at + len(data)] = data

    put(weather, 0, "selector", 1), put(weather, 0, "station", b"GLOB"), put(weather, 0, "pressure", 1000)
    put(weather, 0, "visibility", 10), put(clouds, 1, "base", 3000), put(clouds, 1, "type", 3)
    put(winds, 0, "speed", 25), put(winds, 0, "direction", 270)
    client.send(request(write_record(weather["offset"], bytes(area))))
    wait_for("the weather", lambda: standin.number("sim/weather/cloud_base_msl_m[1]") == 3000)
    assert standin.number("sim/weather/cloud_type[1]") == 3
    assert standin.number("sim/weather/wind_direction_degt[0]") == pytest.approx(270, abs=0.01)
    assert standin.number("sim/weather/visibility_reported_m") == pytest.approx(18520)
    assert standin.number("sim/weather/barometer_sealevel_inhg") == pytest.approx(1000 / 33.86, rel=1e-4)
    client.close()
    standin.quit()
