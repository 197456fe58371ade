"""The web cockpit for test code: a running `offsetctl serve` whose every answer is held against web/openapi.json, and a
real browser."""
import http.client
import json
import re
import subprocess
import time
from urllib.parse import quote, urlsplit

import jsonschema

from conftest import DEADLINE, TOP, Standin, wait_for

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
    assert str(status) in answers, f"{method} {path}: {status} is not described: {body[:300]}"
    content = resolved(answers[str(status)]).get("content")
    if content:
        assert kind.split(";")[0] in content, f"{method} {path}: {kind}"
        if kind.startswith("application/json"):
            check_value(json.loads(body), content["application/json"].get("schema", {}))


class Cockpit:
    """offsetctl serve on a free port, until end()."""

    def __init__(self, build, *options, folder):
        self.command = build.command("offsetctl", "serve", "--panels", build.path(folder / "panels"),
                                     "--recordings", build.path(folder / "recordings"), *options)
        for name in ("panels", "recordings"):
            (folder / name).mkdir(parents=True, exist_ok=True)
        self.port = 0
        self.begin()

    def begin(self):
        self.process = subprocess.Popen([*self.command, "--port", str(self.port)], stdin=subprocess.DEVNULL,
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        line = self.process.stdout.readline()
        assert line.startswith("Web cockpit: http://"), line + self.process.stderr.read()
        self.address = line.split()[2]
        self.host, self.port = urlsplit(self.address).hostname, urlsplit(self.address).port

    def end(self):
        self.process.terminate()
        try:
            self.process.wait(timeout=10)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait(timeout=DEADLINE)

    def ask(self, method, path, body=None, headers=None):
        """(status, JSON or bytes) of a request whose answer is as described."""
        connection = http.client.HTTPConnection(self.host, self.port, timeout=DEADLINE)
        data = None if body is None else body if isinstance(body, str) else json.dumps(body)
        connection.request(method, path, data, {**({"Content-Type": "application/json"} if data else {}), **(headers or {})})
        answer = connection.getresponse()
        text, kind = answer.read(), answer.headers["Content-Type"] or ""
        connection.close()
        check_answer(method, path, answer.status, kind, text)
        return answer.status, json.loads(text) if kind.startswith("application/json") else text

    def get(self, path):
        status, body = self.ask("GET", path)
        assert status == 200, body
        return body

    def change(self, method, path, body):
        status, answer = self.ask(method, path, body)
        assert status == 200, answer
        return answer

    def status(self):
        return self.get("/api/status")

    def value(self, name):
        return self.get(f"/api/values?names={quote(name)}")["values"][0]["value"]

    def wait_connected(self):
        wait_for("a connection to the simulator", lambda: self.status()["connected"])

    def events(self, path, seconds=DEADLINE):
        """Yields (event, data) of a stream for so long, each as described."""
        connection = http.client.HTTPConnection(self.host, self.port, timeout=seconds)
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
