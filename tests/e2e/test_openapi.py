"""web/openapi.json is a sound description, and what the running program answers is what it says."""
import json
import re
import subprocess

import jsonschema
import pytest

from web_cockpit import DESCRIPTION, METHODS, CheckedCockpit, begin_simulator, check_value, resolved
from conftest import TOP, wait_for


def nodes(node, path=()):
    yield path, node
    for key, child in (node.items() if isinstance(node, dict) else enumerate(node) if isinstance(node, list) else ()):
        yield from nodes(child, (*path, key))


def operations():
    for path, item in DESCRIPTION["paths"].items():
        for method, operation in item.items():
            assert method in METHODS, f"{path}: {method}"
            yield path, method, operation


STATUS = re.compile(r"[1-5]\d\d")
MEDIA = {"type": "object", "additionalProperties": {"type": "object", "properties": {
    "schema": {"type": "object"}, "example": {}, "examples": {"type": "object"}}, "additionalProperties": False}}
# What the standard asks of the parts that this description uses.
FORM = {
    "type": "object", "required": ["openapi", "info", "paths"], "additionalProperties": False,
    "properties": {
        "openapi": {"pattern": r"^3\.1\.\d+$"},
        "info": {"type": "object", "required": ["title", "version"]},
        "servers": {"type": "array", "items": {"type": "object", "required": ["url"]}},
        "security": {"type": "array"}, "tags": {"type": "array", "items": {"required": ["name"]}},
        "paths": {"type": "object", "propertyNames": {"pattern": "^/"}, "additionalProperties": {
            "type": "object", "additionalProperties": {"$ref": "#/$defs/operation"}}},
        "components": {"type": "object", "additionalProperties": False, "properties": {
            "schemas": {"type": "object"}, "securitySchemes": {"type": "object"},
            "responses": {"additionalProperties": {"$ref": "#/$defs/response"}}}}},
    "$defs": {
        "operation": {
            "type": "object", "required": ["summary", "responses", "tags"], "additionalProperties": False,
            "properties": {
                "operationId": {"type": "string"}, "summary": {"type": "string"}, "description": {"type": "string"},
                "tags": {"type": "array", "items": {"enum": [tag["name"] for tag in DESCRIPTION["tags"]]}},
                "parameters": {"type": "array", "items": {
                    "type": "object", "required": ["name", "in", "schema"],
                    "properties": {"in": {"enum": ["query", "path"]}, "schema": {"type": "object"}},
                    "if": {"properties": {"in": {"const": "path"}}},
                    "then": {"required": ["required"], "properties": {"required": {"const": True}}}}},
                "requestBody": {"type": "object", "required": ["content"], "properties": {"content": MEDIA}},
                "responses": {"type": "object", "minProperties": 1, "propertyNames": {"pattern": f"^{STATUS.pattern}$"},
                              "additionalProperties": {"anyOf": [{"required": ["$ref"]}, {"$ref": "#/$defs/response"}]}}}},
        "response": {"type": "object", "required": ["description"], "additionalProperties": False, "properties": {
            "description": {"type": "string"}, "content": MEDIA, "headers": {"type": "object"}, "x-events": {"type": "object"}}},
    },
}


def test_form():
    jsonschema.validate(DESCRIPTION, FORM, cls=jsonschema.Draft202012Validator)
    names = [operation["operationId"] for _, _, operation in operations() if "operationId" in operation]
    assert len(set(names)) == len(names)
    for path, _, operation in operations():
        declared = {each["name"] for each in operation.get("parameters", []) if each["in"] == "path"}
        assert declared == set(re.findall(r"\{(\w+)\}", path)), path
    for name, schema in DESCRIPTION["components"]["schemas"].items():
        jsonschema.Draft202012Validator.check_schema(schema), name


def test_references_and_examples():
    used = set()
    for path, node in nodes(DESCRIPTION):
        if isinstance(node, dict) and isinstance(node.get("$ref"), str):
            resolved(node)
            used.add(node["$ref"])
        if isinstance(node, dict) and "schema" in node and not path[-1:] == ("properties",):
            examples = [node["example"]] if "example" in node else []
            for example in examples + [each["value"] for each in node.get("examples", {}).values()]:
                check_value(example, node["schema"])
    for kind in ("schemas", "responses"):
        for name in DESCRIPTION["components"][kind]:
            assert f"#/components/{kind}/{name}" in used, f"{name} is described and not used"


def test_rows_are_those_of_the_data_file():
    """One form, told in two files."""
    shared = json.loads((TOP / "docs/offsets.schema.json").read_text())["$defs"]
    names = {name: "Offset" if name == "offset" else "Offset" + name[0].upper() + name[1:] for name in shared}
    text = re.sub(r"#/\$defs/(\w+)", lambda match: f"#/components/schemas/{names[match[1]]}", json.dumps(shared))
    told = json.loads(text)
    for name, schema in told.items():
        if names[name] in DESCRIPTION["components"]["schemas"]:
            assert DESCRIPTION["components"]["schemas"][names[name]] == schema, name


def test_every_file_of_the_page_is_described():
    for line in (TOP / "web" / "files.txt").read_text().splitlines():
        path = line.split()[0]
        if not path.startswith("/js/"):
            assert path in DESCRIPTION["paths"], path


@pytest.fixture
def cockpit(linux, tmp_path):
    standin = begin_simulator(linux, tmp_path / "X-Plane")
    running = CheckedCockpit(linux, folder=tmp_path)
    running.connected()
    yield running
    running.end()
    standin.quit()


def test_answers_are_as_described(cockpit, tmp_path):
    """Each request's answer is held against the description by Cockpit.ask; here is what it must be, too."""
    (tmp_path / "panels" / "one.html").write_text("<title>One and only</title>")
    wide = ",".join(["ias"] * 1001)
    put = lambda *values, **more: ("PUT", "/api/values", {"values": list(values), **more})
    for status, method, path, *body in [
            (200, "GET", "/api"), (200, "GET", "/api/offsets"), (200, "GET", "/api/offsets?query=radio+com&subject=rADIOS"),
            (200, "GET", "/api/values?names=ias,aircraft,latitude,0x0560:s64,0x0330:hex:4,gear,com1,lights"),
            (400, "GET", "/api/values"), (404, "GET", "/api/values?names=heding"), (413, "GET", f"/api/values?names={wide}"),
            (400, "GET", "/api/stream?names=ias&rate=51"), (404, "GET", "/api/stream?names=heding"),
            (400, "GET", "/api/changes?rate=0"),
            (200, *put({"name": "com1", "value": 119.3}, {"name": "gear", "value": "down"}, wait=0.1)),
            (200, *put({"name": "ap_altitude_set", "value": 5000, "unit": "ft"}, {"name": "ap", "value": True}, wait=0)),
            (200, *put({"name": "radio_exchange", "value": "COM1"}, wait=0.1)),
            (400, *put({"name": "com1", "value": "loud"})), (404, *put({"name": "heding", "value": 1})),
            (403, *put({"name": "local_hour", "value": 1})), (400, "PUT", "/api/values", "{"),
            (413, "PUT", "/api/values", " " * 70000), (200, "GET", "/api/status"), (200, "GET", "/api/panels"),
            (200, "GET", "/panels/one.html"), (404, "GET", "/panels/two.html"), (409, "POST", "/api/replay", {"position": 1}),
            (404, "POST", "/api/replay", {"file": "none.tavrec"}), (200, "POST", "/api/recording", {"file": "one.tavrec"}),
            (409, "POST", "/api/recording", {"file": "two.tavrec"}), (200, "POST", "/api/recording", {"file": None}),
            (400, "POST", "/api/recording", {"file": "../one"}), (200, "GET", "/api/recordings"),
            (200, "GET", "/"), (200, "GET", "/tavrix.js"), (200, "GET", "/licences.txt")]:
        got, _, answer = cockpit.ask(method, path, *body)
        assert got == status, f"{method} {path[:80]}: {got} {answer}"
        if status >= 400:
            assert answer["remedy"] and answer["where"], answer
    assert cockpit.get("/api") == DESCRIPTION
    assert cockpit.get("/api/panels")["panels"] == [{"file": "one.html", "title": "One and only"}]
    rows = json.loads((TOP / "docs/offsets.json").read_text())["offsets"]
    assert cockpit.get("/api/offsets")["offsets"] == rows
    name, = [each["file"] for each in cockpit.get("/api/recordings")["recordings"]]
    assert cockpit.post("/api/replay", file=name, playing=False)["replay"]["file"] == name
    assert cockpit.ask(*put({"name": "com1", "value": 119.3}))[0] == 409
    assert cockpit.post("/api/replay", file=None)["replay"] is None


def test_streams_are_as_described(cockpit):
    """Each event is held against the description by Cockpit.events."""
    for path, wanted in (("/api/stream?names=activity,aircraft&rate=50", "values"), ("/api/changes", "changes")):
        seen = []
        for event, data in cockpit.events(path, 10):
            seen.append(event)
            if event == "values" and seen.count("values") == 1:
                assert [entry["name"] for entry in data["values"]] == ["activity", "aircraft"]
            elif event == "values":
                assert [entry["name"] for entry in data["values"]] == ["activity"]
            if seen.count(wanted) > 5 and seen.count("status") > 1:
                break
        assert seen.count(wanted) > 5 and seen.count("status") > 1, seen


# --- What the page for users shows -----------------------------------------------------------------------------
PAGE = (TOP / "docs" / "web-cockpit.md").read_text()


def test_curl_examples(cockpit):
    """They run in the order of the page, against this program in place of 127.0.0.1:8440; a shown answer is like it."""
    told = re.findall(r"^```sh\n(.*?)^```\n(?:\n```json\n(.*?)^```)?", PAGE, re.M | re.S)
    assert len(told) > 5
    lines = 0
    for commands, answer in told:
        for line in re.sub(r"\\\n\s*", "", commands).splitlines():
            lines += 1
            streams = " -N " in line
            line = line.replace("127.0.0.1:8440", f"127.0.0.1:{cockpit.port}").replace("curl ", "curl -sS ", 1)
            done = subprocess.run(line if not streams else line.replace("-N", "-N -m 0.6"), shell=True, text=True,
                                  capture_output=True, timeout=20)
            assert done.returncode == (28 if streams else 0), f"{line}: {done.stderr}"
            if streams:
                assert "event: " in done.stdout, line
            elif not answer:
                assert "error" not in json.loads(done.stdout), f"{line}: {done.stdout}"
            if '"file": null' in line and "recording" in line:  # it has a length, then
                wait_for("the file", lambda: cockpit.get("/api/recordings")["recordings"])
        if answer:
            shown, got = json.loads(answer), json.loads(done.stdout)
            if "error" in shown:
                assert shown == got
            else:
                facts = ("name", "offset", "unit")
                assert [[each[fact] for fact in facts] for each in shown["values"]] == [
                    [each[fact] for fact in facts] for each in got["values"]]
    assert lines > 10


def test_example_panel_is_the_file():
    shown = re.search(r"^```html example-panel.html\n(.*?)^```", PAGE, re.M | re.S)[1]
    assert shown == (TOP / "docs" / "example-panel.html").read_text() and shown.count("\n") <= 40
