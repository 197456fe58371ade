"""The page of the web cockpit in a real Chromium, against a synthetic cockpit."""
import functools
import json
import time
import urllib.request

import pytest
from selenium import webdriver
from selenium.webdriver import ActionChains
from selenium.webdriver.common.keys import Keys

import conftest
import fake_cockpit
from conftest import TOP

VIEWS = ("watch", "find", "plot", "panel", "recordings", "own")
wait_for = functools.partial(conftest.wait_for, deadline=20)
AXE = TOP / "web/node_modules/axe-core/axe.min.js"


class Page:
    """One browser tab, sized and themed at will."""

    def __init__(self, profile):
        options = webdriver.ChromeOptions()
        for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-background-networking",
                         "--disable-component-update", "--disable-sync", "--no-first-run", f"--user-data-dir={profile}"):
            options.add_argument(argument)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        self.driver = webdriver.Chrome(options=options)
        self.size(1440, 900)

    def size(self, width, height):
        self.cdp("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1,
                 mobile=width < 700)

    def theme(self, name):
        """Colours, without transitions: what axe looks at is how it stays."""
        self.cdp("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": name},
                                                         {"name": "prefers-reduced-motion", "value": "reduce"}])

    def cdp(self, command, **parameters):
        return self.driver.execute_cdp_cmd(command, parameters)

    def js(self, code, *arguments):
        return self.driver.execute_script(code, *arguments)

    def all(self, selector):
        return self.driver.find_elements("css selector", selector)

    def one(self, selector):
        return wait_for(selector, lambda: self.all(selector))[0]

    def text(self, selector):
        return self.js("return document.querySelector(arguments[0])?.textContent ?? ''", selector)

    def button(self, text, within="main"):
        return wait_for(text, lambda: self.js(
            "return [...document.querySelectorAll(arguments[1] + ' button')].find(one => one.checkVisibility()"
            " && (one.textContent.trim() === arguments[0] || one.getAttribute('aria-label') === arguments[0]))", text, within))

    def open(self, server, place="", kept=None):
        self.driver.get(server.url + "icon.svg")
        self.js("localStorage.clear(); for (const [k, v] of Object.entries(arguments[0]))"
                " localStorage.setItem('tavrix.' + k, JSON.stringify(v))", kept or {})
        self.driver.get(server.url + "#" + place)
        wait_for("the connection", lambda: self.all(".status .dot.good"))

    def keys(self, *keys):
        ActionChains(self.driver).send_keys(*keys).perform()

    def shows_values(self):
        return self.js("const one = document.querySelector('main > :not([hidden]) :is(.number, .readout, td.n)');"
                       "return document.querySelector('main > :not([hidden]) h2') && one?.textContent !== '–'")

    def value(self, name):
        """What a row of the watch list shows; only rows in sight are drawn."""
        row = f"[data-name='{name}']"
        self.js("document.querySelector(arguments[0])?.scrollIntoView({block: 'nearest'})", row)
        return self.text(row + " .number")


@pytest.fixture(scope="module")
def page(tmp_path_factory):
    made = Page(tmp_path_factory.mktemp("chromium"))
    yield made
    made.driver.quit()


@pytest.fixture(scope="module")
def server():
    made = fake_cockpit.serve()
    yield made
    made.shutdown()


def ask(server, **body):
    urllib.request.urlopen(urllib.request.Request(server.url + "fake", json.dumps(body).encode(), method="POST")).read()


@pytest.mark.parametrize("theme", ["light", "dark"])
def test_accessible_and_clean_in_every_view(page, server, theme):
    page.theme(theme)
    ask(server, set={"gear": 100})
    for view in (*VIEWS, "panel/bare"):
        page.open(server, view)
        if view == "watch":
            page.button("Change ias").click()
            page.one("#query").send_keys("engine")
        if view == "find":
            page.button("Start: hold still").click()
        if view == "panel":
            page.one(".trafficList summary").click()
            page.one(".trafficList tbody tr")
        if view == "recordings":
            page.button("Replay ILS 26L.tavrec").click()
            page.one(".player:not([hidden])")
        wait_for("values", lambda: page.shows_values())
        page.js(AXE.read_text())
        found = page.driver.execute_async_script(
            "axe.run(document, {resultTypes: ['violations']}).then(r => arguments[0](r.violations))")
        told = [f"{one['id']}: {node['html'][:160]} {node['failureSummary']}" for one in found for node in one["nodes"]]
        assert not told, f"{view}: " + "\n".join(told[:12])
        assert page.js("return document.documentElement.dataset.theme") == theme
        if view == "recordings":
            page.button("Back to live", "body").click()
    wrong = [one["message"] for one in page.driver.get_log("browser")
             if one["level"] == "SEVERE" and "favicon.ico" not in one["message"]]
    assert not wrong


@pytest.mark.parametrize("width, height", [(360, 740), (768, 1024), (3840, 2160)])
def test_nothing_scrolls_sideways_or_is_cut(page, server, width, height):
    page.size(width, height)
    for view in VIEWS:
        page.open(server, view)
        wait_for("values", lambda: page.shows_values())
        assert page.js("return document.documentElement.scrollWidth") <= width, view
        cut = page.js("return [...document.querySelectorAll('main *, header *, .status *')].filter(one =>"
                      " one.checkVisibility() && one.scrollWidth > one.clientWidth + 1 && one.clientWidth > 1"
                      " && getComputedStyle(one).overflowX !== 'visible' && !one.closest('.scroll, pre, .sr, input, select'))"
                      ".map(one => one.outerHTML.slice(0, 120))")
        assert not cut, (view, cut)
    page.size(1440, 900)


def test_keyboard_alone(page, server):
    page.open(server, "watch")
    page.keys(Keys.TAB)
    assert page.js("return document.activeElement.id") == "skip"
    assert page.js("return document.activeElement.getBoundingClientRect().left") >= 0, "the skip link shows with the focus"
    page.keys(Keys.TAB, Keys.ARROW_RIGHT, Keys.ARROW_RIGHT, Keys.ARROW_RIGHT)
    wait_for("the panel", lambda: page.js("return location.hash === '#panel' && document.activeElement.id === 'tab-panel'"))
    assert page.js("return getComputedStyle(document.activeElement).outlineStyle") != "none"
    page.driver.refresh()
    assert "panel" in page.one("[aria-selected=true]").get_attribute("id")
    page.js("document.querySelector('[aria-label^=\"NAV 1 standby\"]').focus()")
    page.keys(Keys.ENTER, "109.5", Keys.ENTER)
    wait_for("the frequency", lambda: "109.50" in page.text(".panelTop .outcome"))
    page.js("document.querySelector('[aria-label^=\"Swap NAV 1\"]').focus()")
    page.keys(Keys.ENTER)
    wait_for("the swap", lambda: page.all("[aria-label^='NAV 1 active: 109.50']"))
    for _ in range(60):  # every stop of the tab key can be seen
        page.keys(Keys.TAB)
        seen = page.js("const r = document.activeElement.getBoundingClientRect(); return r.width > 0 && r.height > 0")
        assert seen, page.js("return document.activeElement.outerHTML.slice(0, 200)")


def test_writing_says_what_became_of_it(page, server):
    page.open(server, "watch/Mine", {"lists": [["Mine", [{"name": name} for name in (
        "ap_heading_bug", "transponder", "ap_altitude_set", "autobrake", "lights", "landing_lights", "mach", "aircraft")]]]})

    def write(name, text):
        page.button(f"Change {name}").click()
        field = page.one(f"[data-name='{name}'] .editor input")
        field.clear()
        field.send_keys(text, Keys.ENTER)

    outcome = "[data-name='{}'] .outcome"
    write("ap_heading_bug", "123")
    wait_for("confirmed", lambda: "Written and confirmed: 123.00 deg" in page.text(outcome.format("ap_heading_bug")))
    wait_for("the value", lambda: page.value("ap_heading_bug") == "123.00")
    write("ap_heading_bug", "400")  # the page knows the range
    assert "outside 0 to 359.995 deg" in page.text("[data-name='ap_heading_bug'] .hint")
    page.keys(Keys.ESCAPE)
    write("ap_heading_bug", "north")  # a word is the server's to judge
    wait_for("refused", lambda: "Refused: 'north' is no number" in page.text(outcome.format("ap_heading_bug"))
             and "Write a number" in page.text(outcome.format("ap_heading_bug")))
    page.keys(Keys.ESCAPE)
    page.button("Change ap_altitude_set").click()
    page.js("const s = document.querySelector('[data-name=ap_altitude_set] .editor select'); s.value = 'ft';"
            "s.dispatchEvent(new Event('change'))")
    assert page.js("return document.querySelector('[data-name=ap_altitude_set] .editor input').value") == "7000"
    field = page.one("[data-name='ap_altitude_set'] .editor input")
    field.clear()
    field.send_keys("9000", Keys.ENTER)
    wait_for("feet", lambda: page.value("ap_altitude_set") == "9000")
    page.button("Change autobrake").click()
    page.js("document.querySelector('[data-name=autobrake] .editor select').value = '3'")
    page.button("Write").click()
    wait_for("the word", lambda: page.value("autobrake") == "landing 2")
    page.button("landing_lights").click()
    wait_for("the switch", lambda: page.button("landing_lights").get_attribute("aria-checked") == "true")
    assert page.value("lights") == "navigation + beacon + strobe"
    page.button("mach is read-only: why?").click()
    assert "overwritten" in page.text(outcome.format("mach"))
    assert page.value("aircraft").startswith("<b>Boeing</b>") and not page.all(".number b, .number img"), "markup is text"


def test_searching_and_lists(page, server):
    page.open(server, "watch/Flight")
    for query, name in (("gear lever", "gear"), ("0x0330", "altimeter_setting"), ("radios mhz nav", "nav1")):
        page.one("#query").clear()
        page.one("#query").send_keys(query)
        wait_for(name, lambda: name in page.js("return [...document.querySelectorAll('.result b')].map(b => b.textContent)"))
    page.one("#query").clear()
    page.one("#query").send_keys("0x0330:u16", Keys.ENTER)
    wait_for("the stored number", lambda: page.value("0x0330:u16") == "16212")
    page.driver.refresh()
    wait_for("the same list again", lambda: page.value("0x0330:u16") == "16212")
    page.button("New").click()
    page.keys("Night", Keys.ENTER)
    wait_for("an empty list", lambda: page.js("return location.hash") == "#watch/Night" and page.text(".empty"))
    # An offset that the server does not know must not take the others along.
    page.js("import('/tavrix.js').then(m => { window.got = {};"
            " m.watch(['ias', 'nowhere', 'com9'], part => Object.assign(got, part)); })")
    got = wait_for("answers", lambda: page.js("return window.got?.ias && window.got.nowhere && window.got.com9 && window.got"))
    assert got["ias"]["value"] > 0 and "did you mean com" in got["com9"]["error"]["remedy"]


def test_two_tabs_share_their_lists(page, server):
    page.open(server, "watch/Mine", {"lists": [["Mine", [{"name": "ias"}]]]})
    names = lambda: page.js("return [...document.querySelectorAll('.table [data-name]')].map(one => one.dataset.name)")
    add = lambda name: page.one("#query").send_keys(Keys.CONTROL, "a", Keys.NULL, name, Keys.ENTER)
    first = page.driver.current_window_handle
    page.driver.switch_to.new_window("tab")
    page.driver.get(server.url + "#watch/Mine")
    add("heading")
    wait_for("the row", lambda: names() == ["ias", "heading"])
    second = page.driver.current_window_handle
    page.driver.switch_to.window(first)
    wait_for("the other tab's row", lambda: names() == ["ias", "heading"])
    # What is stored counts, also before this tab has heard of it: here it hears nothing of its own storage.
    page.js("const lists = JSON.parse(localStorage['tavrix.lists']); lists[0][1].push({name: 'mach'});"
            "localStorage['tavrix.lists'] = JSON.stringify([...lists, ['Night', []]])")
    page.button("Remove ias").click()
    add("pitch")
    stored = lambda: [[item["name"] for item in items]
                      for _, items in page.js("return JSON.parse(localStorage['tavrix.lists'])")]
    wait_for("all changes", lambda: stored() == [["heading", "mach", "pitch"], []])
    page.driver.switch_to.window(second)
    wait_for("the first tab's changes", lambda: names() == ["heading", "mach", "pitch"])
    page.button("Delete").click()
    page.driver.close()
    page.driver.switch_to.window(first)
    wait_for("another list", lambda: page.js("return document.querySelector('#lists').value") == "Night")


def test_what_is_remembered_or_addressed_wrongly_leaves_no_blank_page(page, server):
    """{what is remembered: its texts}, {address: the view that shows}; view and address of no use: the first view."""
    kept = {"view": ('"nonsense"', "null", '"constructor"', "5", '["plot"]', "{"), "theme": ('"__proto__"', "{}", '["dark"]'),
            "lists": ("[1]", "[null]", "{}", '[["A", [{"name": 5}, null, {"name": "ias", "unit": "constructor"}]]]'),
            "list": ("{}", "null"), "plot": ("5", "{}", "[1]", "[null]", '[{"name": 5}]', '[{"name": "ias", "unit": "toString"}]'),
            "plotWindow": ('"x"', "null"), "range": ('"x"', "0"), "northUp": ("5",)}
    cases = [(key, text, {"plot": "plot", "plotWindow": "plot", "range": "panel", "northUp": "panel"}.get(key, ""))
             for key, texts in kept.items() for text in texts]
    cases += [("none", "0", place) for place in ("constructor", "toString", "__proto__", "watch/%", "watch/%E0", "plot/%", "%",
                                                 "plot/constructor,ias,ias", "watch/__proto__")]
    page.driver.get_log("browser")
    for key, text, place in cases:
        page.driver.get(server.url + "icon.svg")
        page.js("localStorage.clear(); localStorage.setItem('tavrix.' + arguments[0], arguments[1])", key, text)
        page.driver.get(server.url + "#" + place)
        wait_for(f"values with {key} {text} at #{place}", lambda: page.shows_values() and page.all("#theme svg"))
        view = place.split("/")[0] if place.split("/")[0] in VIEWS else "watch"
        assert page.one("[aria-selected=true]").get_attribute("id") == "tab-" + view, (key, text, place)
        assert page.js("return document.documentElement.dataset.theme") in ("light", "dark")
    wrong = [one["message"] for one in page.driver.get_log("browser") if one["level"] == "SEVERE" and "favicon" not in one["message"]]
    assert not wrong


def test_rates_and_a_refused_stream(page, server):
    page.open(server, "own")
    page.js("import('/tavrix.js').then(m => { window.tavrix = m; m.connection(state => { window.state = state; }); })")
    wait_for("the module", lambda: page.js("return window.state"))
    for given, asked in (("'x'", 20), ("NaN", 20), ("null", 20), ("0", 1), ("-5", 1), ("1000", 50), ("Infinity", 50), ("'30'", 30)):
        page.js(f"window.got = null; window.stop = tavrix.watch(['ias'], part => {{ window.got = part; }}, {{rate: {given}}})")
        wait_for(f"values at {given}", lambda: page.js("return window.got") and server.fake.rate == str(asked))
        page.js("stop()")
    page.driver.get_log("browser")
    ask(server, refusal="too much is watched")
    page.js("window.told = []; tavrix.watch(['ias', 'mach'], () => {}, {onStatus: status => told.push(status.error?.message)})")
    wait_for("the reason", lambda: page.js("return told.filter(Boolean).length > 1 && state.error?.remedy") == "leave it out")
    assert "Too much is watched. Leave it out" == page.text("#lost")
    ask(server, refusal=None)
    wait_for("the stream", lambda: page.js("return state.online && !state.error"))
    lines = [one["message"] for one in page.driver.get_log("browser") if "the stream is refused" in one["message"]]
    assert len(lines) == 1 and "400" in lines[0] and "too much is watched" in lines[0]


def test_recording_tells_its_fault_and_its_time_when_it_knows_it(page, server):
    page.open(server, "recordings")
    alerts = ("main .fault[role=alert]", ".status .fault[role=alert]:not([hidden])")
    ask(server, fault="The recording ended: the disk is full.")
    wait_for("the alerts", lambda: [page.text(one) for one in alerts] == ["The recording ended: the disk is full."] * 2)
    ask(server, fault=None, recording="dusk.tavrec")
    wait_for("the clock", lambda: page.text(".status .record").startswith("0:0") and not "".join(map(page.text, alerts)))
    assert page.text(".running").startswith("dusk.tavrec · 0:0")
    page.driver.refresh()  # a page that comes later does not know since when
    wait_for("the name", lambda: page.text(".status .record") == page.text(".running") == "dusk.tavrec")
    ask(server, recording=None)
    page.js("document.querySelector('[aria-label=\"Replay ILS 26L.tavrec\"]').click()")  # the list is made anew just now
    hint = wait_for("the hint", lambda: [one for one in page.all(".recordForm > .hint") if one.is_displayed()])[0]
    colour = "return getComputedStyle(document.querySelector(arguments[0])).color"
    assert "nothing can be recorded" in hint.text
    assert page.js(colour, ".recordForm > .hint") != page.js(colour, ".status .fault"), "it is no error"
    page.button("Back to live", "body").click()


def test_every_font_has_the_characters():
    """Beyond Latin-1 only dashes, the minus and the ellipsis; what else is to be seen is drawn."""
    for file in (*(TOP / "web").glob("*.*"), *(TOP / "web/js").glob("*.js"), *(TOP / "clients/js").glob("*.*")):
        odd = {one for one in file.read_text() if ord(one) > 0xFF} - set("–−…")
        assert not odd, f"{file.name}: {odd}"


def test_finding_by_moving(page, server):
    ask(server, set={"gear": 100, "autobrake": 1})
    page.open(server, "find")
    page.button("Start: hold still").click()
    wait_for("a baseline", lambda: "3 s:" in page.text(".findState"))
    page.button("Now I move it").click()
    ask(server, set={"gear": 0})
    wait_for("the lever", lambda: "gear" in page.text(".findings"))
    wait_for("the wheels", lambda: "nose_gear" in page.text(".findings"))
    page.button("Done moving").click()
    wait_for("values", lambda: "100.0 to 0.0 %" in page.text(".finding .beforeAfter"))
    names = page.js("return [...document.querySelectorAll('.findGrid > section:last-child > ol b')].map(b => b.textContent)")
    assert names[0] == "gear" and "moved once and stays" in page.text(".finding .evidence")
    assert {"nose_gear", "left_gear", "right_gear"} <= set(names) and "heading" not in names and "ias" not in names
    page.button("Add gear to the watch list").click()
    page.js("location.hash = 'watch/Flight'")
    wait_for("gear in the list", lambda: page.value("gear") == "0.0")


def test_plot_has_the_data(page, server):
    page.open(server, "plot/altitude,ias")
    wait_for("three seconds of data", lambda: page.js("const t = tavrixPlot.times; return t.at(-1) - t[0] > 3"))
    page.js("const end = performance.now() + 1500; while (performance.now() < end);")  # a busy tablet
    wait_for("seven seconds of data", lambda: page.js("const t = tavrixPlot.times; return t.length > 60 && t.at(-1) - t[0] > 7"))
    times, altitude = page.js("return [tavrixPlot.times, tavrixPlot.columns[0]]")
    pairs = [(at, value) for at, value in zip(times, altitude) if value is not None]
    with server.fake.lock:
        now = server.fake.entry("altitude")["value"]
    assert abs(pairs[-1][1] - now) < 25
    slopes = [(b[1] - a[1]) / (b[0] - a[0]) for a, b in zip(pairs[::20], pairs[20::20])]
    assert all(abs(slope) < 20 for slope in slopes), f"as fast as the flight climbs, 15 m/s: {slopes}"
    drawn = page.js("const c = document.querySelector('.plotArea canvas'), d = c.getContext('2d')"
                    ".getImageData(0, 0, c.width, c.height).data; let n = 0;"
                    "for (let i = 3; i < d.length; i += 4) n += d[i] > 0; return n")
    assert drawn > 3000
    assert "altitude" in page.one(".plotArea").get_attribute("aria-label")


def test_connection_lost_and_healed(page, server):
    page.open(server, "watch/Flight")
    ask(server, down=True)
    wait_for("the banner", lambda: "lost" in page.text("#lost") and page.all("html.offline"), deadline=5)
    ask(server, down=False)
    wait_for("the connection again", lambda: page.all("html:not(.offline)") and page.all(".status .dot.good"), deadline=10)
    before = page.value("ias")
    wait_for("values again", lambda: page.value("ias") != before)


def test_replay_has_its_banner_and_controls(page, server):
    page.open(server, "recordings")
    page.button("Replay evening circuit.tavrec").click()
    wait_for("the banner", lambda: "evening circuit.tavrec" in page.text("#replay"))
    page.button("Pause").click()
    page.js("const r = document.querySelector('.scrub input'); r.focus()")
    page.keys(Keys.HOME, *[Keys.ARROW_RIGHT] * 5)
    wait_for("the position", lambda: server.fake.replay["position"] == pytest.approx(2.5, abs=0.01)
             and not server.fake.replay["playing"])
    page.js("location.hash = 'panel'")
    assert page.all("#replay:not([hidden])")
    page.button("Back to live", "body").click()
    wait_for("live", lambda: page.all("#replay[hidden]") and server.fake.replay is None)


def busy(page, seconds):
    """The share of the time in which the page's main thread had work."""
    page.cdp("Performance.enable", timeDomain="threadTicks")
    take = lambda: {one["name"]: one["value"] for one in page.cdp("Performance.getMetrics")["metrics"]}
    first, begin = take(), time.monotonic()
    time.sleep(seconds)
    return (take()["TaskDuration"] - first["TaskDuration"]) / (time.monotonic() - begin)


def test_sixty_updates_a_second_of_500_values(page):
    fast = fake_cockpit.serve(every=60)
    names = [*fake_cockpit.ROWS, "0x0330:u16", "0x07CC:u16", "0x0560:hex:8", "0x0898:s16", "0x088C:s16", "0x0BDC:u32"][:500]
    page.open(fast, "watch/All", {"lists": [["All", [{"name": name} for name in names]]]})
    wait_for("the values", lambda: page.value("pause") not in ("", "–"))
    page.js("import('/tavrix.js').then(m => { window.events = 0; m.watch(['ias'], () => { window.events++; }); })")
    wait_for("the stream", lambda: page.js("return window.events > 100"))
    before = page.js("return window.events")
    share = busy(page, 10)
    rate = (page.js("return window.events") - before) / 10
    print(f"\nmain thread busy {share:.1%} at {rate:.0f} updates a second of {len(names)} values")
    fast.shutdown()
    assert rate > 45 and share < 0.25
