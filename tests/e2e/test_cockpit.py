"""The web cockpit in a real browser: stand-in, plug-in, offsetctl serve, Chromium."""
import base64
import statistics
import time

import pytest
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

from web_cockpit import CheckedCockpit, begin_simulator, open_browser
from conftest import TOP, Build, wait_for

pytestmark = pytest.mark.slow
VIEWS = ["watch", "find", "plot", "panel", "recordings", "own"]
AXE = TOP / "web" / "node_modules" / "axe-core" / "axe.min.js"
POSITION = "sim/flightmodel/position/"
LATENCY = 0.150  # seconds, median; changes are sent 20 times a second


class World:
    """One simulator at a time, at rest (what the console sets stays) or in flight; the web cockpit; a browser."""

    def __init__(self, folder):
        self.build, self.folder, self.kind, self.standin = Build("linux"), folder, None, None
        self.cockpit = CheckedCockpit(self.build, folder=folder)
        self.browser = open_browser(folder / "profile")

    def simulator(self, kind):
        if self.kind != kind:
            self.stop()
            options = ["--flight", "none"] if kind == "rest" else []
            self.standin = begin_simulator(self.build, self.folder / "X-Plane", "--planes", "5", *options)
            self.kind = kind
        self.cockpit.post("/api/replay", file=None)  # what a failed test has left
        self.cockpit.connected()
        return self.standin

    def stop(self):
        if self.standin:
            self.standin.quit()
        self.kind = self.standin = None

    def open(self, view, **kept):
        """The view, from a page that is loaded anew and remembers this alone."""
        self.browser.get(self.cockpit.address + "licences.txt")
        self.browser.execute_script("localStorage.clear(); for (const [key, value] of Object.entries(arguments[0])) "
                                    "localStorage.setItem('tavrix.' + key, JSON.stringify(value))", {"theme": "light", **kept})
        self.browser.get(self.cockpit.address + "#" + view)
        name = view.split("/")[0]
        wait_for(f"view {name}", lambda: self.script(
            "const view = document.getElementById('view-' + arguments[0]); return view && !view.hidden && view.children.length", name))
        wait_for("the connection", lambda: self.script("return document.querySelector('.dot.good') !== null"))
        return self.browser

    def script(self, text, *given):
        return self.browser.execute_script(text, *given)

    def find(self, selector):
        return self.browser.find_element(By.CSS_SELECTOR, selector)

    def press(self, text):
        wait_for(f"button {text}", lambda: self.script(
            "const button = [...document.querySelectorAll('button')].find((one) => one.checkVisibility() && !one.disabled && "
            "(one.textContent === arguments[0] || one.ariaLabel === arguments[0])); button?.click(); return Boolean(button)", text))

    def shown(self, name):
        """A watched value as the page writes it."""
        return self.script("return document.querySelector(`.row[data-name='${arguments[0]}'] .number`)?.textContent", name)

    def number(self, name):
        try:
            return float(self.shown(name).replace("−", "-"))
        except (AttributeError, ValueError):
            return None


@pytest.fixture(scope="module")
def world(tmp_path_factory):
    one = World(tmp_path_factory.mktemp("cockpit"))
    yield one
    one.browser.quit()
    one.cockpit.end()
    one.stop()


def test_values_arrive_within_150_ms(world):
    """From before the console's line is sent until the page's text is changed; both by this computer's clock. A value
    beside it changes with every frame, so that nothing comes before the stream's next beat."""
    standin = world.simulator("rest")
    standin.ask(f"set {POSITION}psi 5")
    world.open("watch/Busy", lists=[["Busy", [{"name": "heading"}, {"name": "activity"}]]])
    wait_for("the heading", lambda: world.number("activity") and world.number("heading") == pytest.approx(5, abs=0.1))
    world.script("""
        window.seen = [];
        const value = document.querySelector(".row[data-name='heading'] .number");
        new MutationObserver(() => seen.push([Date.now() / 1000, Number(value.textContent)]))
          .observe(value, { childList: true, characterData: true, subtree: true });""")
    delays = []
    for i in range(20):
        time.sleep(0.1 + (i * 0.0377) % 0.1)  # at every phase of the frames' and the updates' beat
        wanted, began = 10 + 17 * i % 360, time.time()
        standin.ask(f"set {POSITION}psi {wanted}")
        came = wait_for(f"heading {wanted}", lambda: world.script(
            "return seen.find(([, value]) => Math.abs(value - arguments[0]) < 0.1)", wanted))
        delays.append(came[0] - began)
    told = f"median {statistics.median(delays) * 1000:.0f} ms, worst {max(delays) * 1000:.0f} ms"
    print(f"from the simulator to the page: {told}")
    assert min(delays) > 0 and statistics.median(delays) < LATENCY, told


def test_a_climb_is_plotted_as_it_was(world):
    standin = world.simulator("rest")
    low, high, steps = 1000, 1600, 60
    standin.ask(f"set {POSITION}elevation {low}")
    wait_for("the altitude", lambda: world.cockpit.value("altitude") == pytest.approx(low, abs=1))
    world.open("plot/altitude")
    column = lambda: [value for value in world.script("return tavrixPlot.columns[0]") if value is not None]
    span = lambda: world.script("return tavrixPlot.times.at(-1) - tavrixPlot.times[0]")
    wait_for("level flight", lambda: len(column()) > 2 and span() > 1)
    for step in range(1, steps + 1):  # 3 s
        standin.ask(f"set {POSITION}elevation {low + (high - low) * step / steps}")
        standin.ask("frames 3")
    wait_for("the top", lambda: column()[-1] == pytest.approx(high, abs=1))
    wait_for("level flight", lambda: column()[-3] == pytest.approx(high, abs=1))
    values = column()
    assert values == sorted(values) and values[0] == pytest.approx(low, abs=1)
    assert len({round(value) for value in values}) > 25  # a slope, no jump
    world.press("Pause")
    # The line's pixels: for each column the middle one, counted upwards.
    world.script("return new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done)))")
    heights, data = world.script("""
        const canvas = document.querySelector(".plotArea canvas"), pen = canvas.getContext("2d");
        const { data, width, height } = pen.getImageData(0, 0, canvas.width, canvas.height);
        const heights = [];
        for (let x = 0; x < width; x++) {
          const hits = [];
          for (let y = 0; y < height; y++) {
            const at = 4 * (y * width + x);
            if (data[at + 3] > 200 && Math.abs(data[at] - 0x0a) + Math.abs(data[at + 1] - 0x66) + Math.abs(data[at + 2] - 0xb0) < 40) hits.push(y);
          }
          if (hits.length) heights.push([x, height - hits[hits.length >> 1]]);
        }
        const { times, columns } = tavrixPlot;
        return [heights, times.map((time, i) => [time, columns[0][i]])];""")
    assert len(heights) > 40, len(heights)
    # Time and value of each pixel by the ends of both; the line lies where the data does.
    (left, bottom), (right, top) = heights[0], heights[-1]
    data = [(when, value) for when, value in data if value is not None]
    begin, end = data[0][0], data[-1][0]
    assert top - bottom > 100
    for x, y in heights:
        when = begin + (x - left) / (right - left) * (end - begin)
        near = [value for at, value in data if abs(at - when) < 0.35]
        height = low + (y - bottom) / (top - bottom) * (high - low)
        assert not near or min(near) - 25 <= height <= max(near) + 25, (x, y, height, near)


def picture(world, selector="#view-panel"):
    """A picture of that part once it has come to rest; the banner of a replay would push it down."""
    world.script("document.getElementById('replay').style.display = 'none'")
    last, since = b"", time.monotonic()

    def rests():
        nonlocal last, since
        now = world.find(selector).screenshot_as_png
        if now != last:
            last, since = now, time.monotonic()
        return time.monotonic() - since > 0.6  # numbers are written less often than needles are turned
    wait_for("a picture at rest", rests)
    return last


def differences(world, one, other):
    """How many pixels of two pictures differ by more than how their edges are smoothed, which is never twice the same."""
    return world.browser.execute_async_script("""
        const done = arguments[2];
        const pixels = async (text) => {
          const image = await createImageBitmap(new Blob([Uint8Array.from(atob(text), (letter) => letter.charCodeAt(0))]));
          const pen = new OffscreenCanvas(image.width, image.height).getContext("2d");
          pen.drawImage(image, 0, 0);
          return pen.getImageData(0, 0, image.width, image.height).data;
        };
        Promise.all([pixels(arguments[0]), pixels(arguments[1])]).then(([a, b]) => {
          let count = Math.abs(a.length - b.length);
          for (let i = 0; i < a.length; i += 4) {
            if ([0, 1, 2].some((k) => Math.abs(a[i + k] - b[i + k]) > 48)) count++;
          }
          done(count);
        });""", base64.b64encode(one).decode(), base64.b64encode(other).decode())


def test_a_recording_replays_to_the_same_picture(world):
    standin = world.simulator("rest")
    names = ("heading", "altitude", "com1", "ias", "pitch")

    def be(psi, elevation, com1, theta):
        for name, value in ((POSITION + "psi", psi), (POSITION + "elevation", elevation), (POSITION + "theta", theta),
                            ("sim/cockpit/radios/com1_freq_hz", com1)):
            standin.ask(f"set {name} {value}")
        standin.ask("frames 70")  # within which everything is refreshed
        wait_for("the values", lambda: world.cockpit.value("com1") == com1 / 100 and
                 world.cockpit.value("heading") == pytest.approx(psi, abs=0.1))

    def values():
        return {entry["name"]: entry["raw"] for entry in world.cockpit.get("/api/values?names=" + ",".join(names))["values"]}

    def steer(**how):
        world.cockpit.post("/api/replay", **how)
        position = how.get("position", 0)
        wait_for("the place", lambda: world.cockpit.status()["replay"]["position"] == pytest.approx(position, abs=0.2))
        world.find("#tab-panel").click()
        return values(), picture(world)

    be(40, 1000, 11870, 3)
    world.open("recordings")
    world.find("#recordName").clear()
    world.find("#recordName").send_keys("steps", Keys.ENTER)
    wait_for("the recording", lambda: world.cockpit.status()["recording"] == "steps.tavrec")
    world.find("#tab-panel").click()
    first = values(), picture(world)
    be(123, 2500, 12345, -8)
    second = values(), picture(world)
    world.find("#tab-recordings").click()
    world.press("Stop")
    wait_for("the end of the recording", lambda: world.cockpit.status()["recording"] is None)
    world.stop()  # a replay needs no simulator
    world.press("Replay steps.tavrec")
    replay = wait_for("the replay", lambda: world.cockpit.status()["replay"])
    assert replay["file"] == "steps.tavrec" and replay["length"] > 0.5
    end = replay["length"]
    assert first[0] != second[0] and differences(world, first[1], second[1]) > 1000
    for position, wanted in ((end, second), (0, first), (end, second)):
        got = steer(position=position, playing=False)
        assert got[0] == wanted[0], position
        assert differences(world, got[1], wanted[1]) == 0, f"the picture at {position} s is another one"


def test_a_cut_connection_shows_and_heals(world):
    world.simulator("rest").ask(f"set {POSITION}psi 77")
    world.open("watch/Flight")
    wait_for("the heading", lambda: world.number("heading") == pytest.approx(77, abs=0.1))
    lost = lambda: world.script("const place = document.getElementById('lost'); return place.hidden ? '' : place.textContent")
    assert lost() == ""
    world.stop()
    wait_for("the loss of the simulator", lambda: "No simulator" in lost(), 5)
    assert world.number("heading") == pytest.approx(77, abs=0.1)  # the last known value
    world.simulator("rest").ask(f"set {POSITION}psi 211")
    wait_for("the return", lambda: lost() == "" and world.number("heading") == pytest.approx(211, abs=0.1), 15)
    world.cockpit.end()
    wait_for("the loss of the program", lambda: "web cockpit lost" in lost(), 5)
    world.cockpit.begin()
    wait_for("the return", lambda: lost() == "", 15)
    world.simulator("rest").ask(f"set {POSITION}psi 33")
    wait_for("the new heading", lambda: world.number("heading") == pytest.approx(33, abs=0.1), 15)


def test_a_typed_heading_turns_the_aircraft(world):
    standin = world.simulator("flight")
    world.open("watch/Autopilot")

    def gap(a, b):
        return abs((a - b + 180) % 360 - 180)

    def magnetic():
        return standin.number(POSITION + "psi") + standin.number(POSITION + "magnetic_variation")

    def outcome(name):
        return world.script("return document.querySelector(`.row[data-name='${arguments[0]}'] .outcome`)?.textContent", name)

    wanted = round(magnetic() + 10) % 360
    world.press("Change ap_heading_bug")
    field = world.find(".row[data-name='ap_heading_bug'] .editor input")
    field.clear()
    field.send_keys("370")
    wait_for("the reason", lambda: "outside" in world.find(".row[data-name='ap_heading_bug'] .hint").text)
    field.send_keys(Keys.BACKSPACE * 3, str(wanted), Keys.ENTER)
    wait_for("the confirmation", lambda: "confirmed" in (outcome("ap_heading_bug") or ""), 10)
    assert gap(standin.number("sim/cockpit/autopilot/heading_mag"), wanted) < 0.1
    for name in ("ap", "ap_heading"):
        if world.script("return document.querySelector(`.row[data-name='${arguments[0]}'] .switch`).ariaChecked", name) != "true":
            world.find(f".row[data-name='{name}'] .switch").click()
            wait_for(name, lambda: world.number(name) == 1 or world.shown(name) == "on", 10)
    wait_for("the aircraft on its new heading", lambda: gap(magnetic(), wanted) < 2)


def test_find_by_moving_names_the_gear_lever(world):
    """In flight, where some hundred bytes change all the time."""
    standin = world.simulator("flight")
    lever = "sim/cockpit/switches/gear_handle_status"
    before = standin.number(lever)
    world.open("find")
    world.press("Start: hold still")
    wait_for("enough", lambda: "enough" in world.find(".findState").text, 15)
    world.press("Now I move it")
    standin.ask(f"set {lever} {1 - before:.0f}")
    names = lambda: world.script("return [...document.querySelectorAll('.findings b')].map((one) => one.textContent)")
    wait_for(f"the gear's offset in {names()}", lambda: {"gear", "nose_gear"} <= set(names()), 20)
    world.press("Done moving")
    wait_for("the list", lambda: "left out" in world.find(".findState").text)
    assert "gear" in names()[:3], names()
    line = world.script("return [...document.querySelectorAll('.finding')].find((one) => one.querySelector('b').textContent === 'gear').textContent")
    assert "0x0BE8" in line and "gear lever" in line and ("100.0 to 0.0 %" in line or "0.0 to 100.0 %" in line)


def test_a_token_opens_the_page_once(world):
    world.simulator("rest")
    guarded = CheckedCockpit(world.build, "--token", "FourWordsFromABook", folder=world.folder)
    try:
        said = lambda: world.script("return document.body.textContent")
        plain, given = guarded.address.split("?")
        world.browser.get(plain)
        assert "token" in said() and world.script("return document.querySelector('main')") is None
        world.browser.get(f"{plain}?{given[:-1]}")
        assert "token" in said() and world.script("return document.querySelector('main')") is None
        world.browser.get(guarded.address)
        wait_for("values", lambda: world.number("heading") is not None)  # streams carry it, too
        assert world.browser.current_url.split("#")[0] == plain
        assert world.script("return document.cookie") == ""
        world.browser.get(plain + "#watch")
        wait_for("values", lambda: world.number("heading") is not None)
    finally:
        world.browser.delete_all_cookies()
        guarded.end()


def test_no_accessibility_fault(world):
    world.simulator("flight")
    world.open("watch/Flight")
    wait_for("values", lambda: world.number("ias"))
    world.script(AXE.read_text())
    for view in VIEWS:
        world.find(f"#tab-{view}").click()
        wait_for(view, lambda: world.script("return document.getElementById('view-' + arguments[0]).children.length", view))
        found = world.browser.execute_async_script(
            "const done = arguments[0]; axe.run().then((result) => done(result.violations.map((one) => "
            "[one.id, one.help, one.nodes.map((node) => node.html.slice(0, 200)).slice(0, 3)])))")
        assert found == [], view
