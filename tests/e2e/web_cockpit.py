"""The web cockpit for test code: a running `offsetctl serve` whose every answer is held against web/openapi.json, a
stand-in for it, and a real browser."""
import http.client
import json
import re
import time
from urllib.parse import urlsplit

import jsonschema

from cockpit import Cockpit
from conftest import DEADLINE, TOP, Standin

DESCRIPTION = json.loads((TOP / "web" / "openapi.json").read_text())
METHODS = ("get", "put", "post", "delete", "patch", "head", "options")


def resolved(node):
    """What a $ref within the description means."""
    while "$ref" in node:
        parts = node["$ref"].removeprefix("#/").split("/")
        node = DESCRIPTION
        for part in parts:
            node = node[part.replace("~1", "/").replace("~0", "~")]
    return node


def check_value(value, schema):
    """The value is what the description's schema says."""
    whole = {"$ref": schema["$ref"]} if "$ref" in schema else schema
    jsonschema.validate(value, {**whole, "components": DESCRIPTION["components"]}, cls=jsonschema.Draft202012Validator)


def operation_of(method, path):
    for template, item in DESCRIPTION["paths"].items():
        if re.fullmatch(re.sub(r"\\\{\w+\\\}", "[^/]+", re.escape(template)), path) and method.lower() in item:
            return item[method.lower()]
    raise AssertionError(f"{method} {path} is not in web/openapi.json")


def check_answer(method, path, status, kind, body):
    """The answer is one that the description has for this request."""
    answers = operation_of(method, urlsplit(path).path)["responses"]
    assert str(status) in answers, f"{method} {path}: {status} is not described: {body}"
    content = resolved(answers[str(status)]).get("content")
    if content:
        assert kind.split(";")[0] in content, f"{method} {path}: {kind}"
        if kind.startswith("application/json"):
            check_value(body, content["application/json"].get("schema", {}))


class CheckedCockpit(Cockpit):
    """A web cockpit with folders of its own, of which each answer is held against the description."""

    def __init__(self, build, *options, folder):
        self.words = build, "--panels", build.path(folder / "panels"), "--recordings", build.path(folder / "recordings"), *options
        self.panels = folder / "panels"
        for name in ("panels", "recordings"):
            (folder / name).mkdir(parents=True, exist_ok=True)
        super().__init__(*self.words)

    def begin(self):
        """Again, at the same port, after end()."""
        super().__init__(*self.words, port=self.port)

    def ask(self, method, target, body=None, headers=None, host="127.0.0.1"):
        status, got, answer = super().ask(method, target, body, headers, host)
        check_answer(method, target, status, got["Content-Type"] or "", answer)
        return status, got, answer

    def events(self, path, seconds=DEADLINE):
        """Yields (event, data) of a stream for so long, each as described."""
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=seconds)
        connection.request("GET", path)
        answer, kinds = connection.getresponse(), operation_of("GET", urlsplit(path).path)["responses"]["200"]["x-events"]
        assert answer.status == 200 and answer.headers["Content-Type"].startswith("text/event-stream"), answer.read()
        end, event, data = time.monotonic() + seconds, "", ""
        try:
            while time.monotonic() < end:
                line = answer.readline().decode().rstrip("\r\n")
                name, _, text = line.partition(":")
                if name == "event":
                    event = text.strip()
                elif name == "data":
                    data += text.strip()
                elif not line and data:
                    check_value(json.loads(data), kinds[event])
                    yield event, json.loads(data)
                    event = data = ""
        finally:
            connection.close()


def begin_simulator(build, root, *options):
    """A stand-in whose network server serves this computer."""
    folder = root / "Resources" / "plugins" / "TAVRIX"
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "TAVRIX.ini").write_text("[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\n")
    standin = Standin(build, root, *options)
    standin.wait_log("TAVFARNET->Waiting for clients.....0")
    return standin


def open_browser(folder, width=1280, height=800):
    """A real Chromium without a window."""
    from selenium import webdriver
    from selenium.webdriver.chrome.service import Service
    options = webdriver.ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    for word in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-background-networking",
                 "--disable-component-update", "--disable-sync", "--no-first-run", "--hide-scrollbars",
                 "--force-device-scale-factor=1", f"--window-size={width},{height}", f"--user-data-dir={folder}"):
        options.add_argument(word)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    browser = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
    browser.set_page_load_timeout(DEADLINE)
    browser.set_script_timeout(DEADLINE)
    # The page's own size is that of the picture.
    browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                            {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": False})
    return browser
