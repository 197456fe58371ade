"""Own panels in a real browser: the module clients/js, and the example panel of docs/web-cockpit.md."""
import re
import shutil

import pytest
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

from web_cockpit import CheckedCockpit, begin_simulator, open_browser
from conftest import TOP, Build, wait_for

# What a test sees of its watches: {key: [{name: value or error}, ...]}.
PANEL = """<!doctype html><title>Test</title><script type="module">
import * as tavrix from "/tavrix.js";
window.calls = {}; window.stops = {}; window.states = []; window.tavrix = tavrix;
window.follow = (key, names, spoil) => {
  calls[key] = [];
  stops[key] = tavrix.watch(names, (changed) => {
    calls[key].push(Object.fromEntries(Object.values(changed).map((entry) => [entry.name, entry.error ?? entry.value])));
    if (spoil) throw new Error("spoilt " + key);
  });
};
tavrix.connection((state) => states.push([state.online, state.connected]));
</script>"""
RADIOS = "sim/cockpit/radios/"


@pytest.fixture(scope="module")
def world(tmp_path_factory):
    """A resting simulator, the web cockpit and a browser."""
    folder, build = tmp_path_factory.mktemp("panels"), Build("linux")
    standin = begin_simulator(build, folder / "X-Plane", "--flight", "none")
    cockpit = CheckedCockpit(build, folder=folder)
    (folder / "panels" / "test.html").write_text(PANEL)
    shutil.copy(TOP / "docs" / "example-panel.html", folder / "panels")
    browser = open_browser(folder / "profile")
    cockpit.connected()
    yield standin, cockpit, browser
    browser.quit()
    cockpit.end()
    standin.quit()


@pytest.fixture
def page(world):
    standin, cockpit, browser = world
    set_radios(standin, nav1_freq_hz=11030, nav2_freq_hz=11170, com1_freq_hz=11870, com1_stdby_freq_hz=12150)
    wait_for("the radios", lambda: [entry["value"] for entry in cockpit.get(
        "/api/values?names=nav1,nav2,com1,com_standby1")["values"]] == [110.3, 111.7, 118.7, 121.5])
    browser.get(cockpit.address + "panels/test.html")
    wait_for("the module", lambda: browser.execute_script("return window.states && states.length"))
    return browser


def set_radios(standin, **values):
    for name, value in values.items():
        standin.ask(f"set {RADIOS}{name} {value}")


def follow(page, key, names, spoil=False):
    page.execute_script("follow(...arguments)", key, names, spoil)


def calls(page, key):
    return page.execute_script("return calls[arguments[0]]", key)


def wait_calls(page, key, wanted):
    wait_for(f"{wanted} in {key}", lambda: calls(page, key) == wanted, 10)


def errors_of(page):
    return [entry["message"] for entry in page.get_log("browser") if "favicon" not in entry["message"]]


def test_watches_share_a_connection_and_get_what_is_theirs(world, page):
    standin, cockpit, _ = world
    follow(page, "one", ["com1", "nav1"])
    wait_calls(page, "one", [{"com1": 118.7, "nav1": 110.3}])
    follow(page, "two", ["nav1", "nav2", "nav1"])
    follow(page, "bad", ["nav1", "nav2"], True)
    follow(page, "text", "nav2")
    wait_calls(page, "two", [{"nav1": 110.3, "nav2": 111.7}])
    set_radios(standin, nav2_freq_hz=11500)
    wait_calls(page, "two", [{"nav1": 110.3, "nav2": 111.7}, {"nav2": 115}])
    wait_calls(page, "text", [{"nav2": 111.7}, {"nav2": 115}])
    # One that throws is called again all the same, and says so as any error does.
    assert calls(page, "bad") == calls(page, "two")
    wait_for("the errors", lambda: sum("spoilt bad" in line for line in errors_of(page)) == 2 or None)
    assert cockpit.status()["clients"] == 1
    page.execute_script("stops.two()")
    set_radios(standin, nav1_freq_hz=10890)
    wait_calls(page, "one", [{"com1": 118.7, "nav1": 110.3}, {"nav1": 108.9}])
    assert len(calls(page, "two")) == 2


def test_unknown_names_are_named_and_the_others_served(world, page):
    standin, _, _ = world
    follow(page, "one", ["com1", "heding", "nav1"])
    follow(page, "two", ["nav1"])
    wait_for("the first values", lambda: calls(page, "one"), 10)
    first, = calls(page, "one")
    assert first["com1"] == 118.7 and "heding" in first["heding"]["error"] and "heading" in first["heding"]["remedy"]
    assert any("heding" in line and "is not watched" in line for line in errors_of(page))
    set_radios(standin, nav1_freq_hz=10890)
    wait_calls(page, "two", [{"nav1": 110.3}, {"nav1": 108.9}])
    assert calls(page, "one")[1:] == [{"nav1": 108.9}]


def test_the_program_goes_and_comes_back(world, page):
    standin, cockpit, _ = world
    states = lambda: page.execute_script("return states")
    follow(page, "one", ["com1", "nav1"])
    wait_calls(page, "one", [{"com1": 118.7, "nav1": 110.3}])
    assert states()[-1] == [True, True]
    cockpit.end()
    wait_for("the loss", lambda: states()[-1] == [False, False], 5)
    set_radios(standin, nav1_freq_hz=10890)
    assert page.execute_async_script("tavrix.read(['com1']).catch((e) => e.status).then(arguments[0])") == 0
    cockpit.begin()
    cockpit.connected()
    wait_for("the return", lambda: states()[-1] == [True, True], 10)
    wait_for("all values anew", lambda: calls(page, "one")[-1].get("nav1") == 108.9, 10)
    assert {"com1": 118.7, "nav1": 108.9} in calls(page, "one")


def test_a_hidden_page_has_no_connection(world, page):
    standin, cockpit, _ = world
    follow(page, "one", ["nav1"])
    wait_calls(page, "one", [{"nav1": 110.3}])
    own = page.current_window_handle
    page.switch_to.new_window("tab")
    wait_for("no stream", lambda: cockpit.status()["clients"] == 0, 10)
    set_radios(standin, nav1_freq_hz=10890)
    wait_for("the new value", lambda: cockpit.value("nav1") == 108.9)
    page.close()
    page.switch_to.window(own)
    wait_calls(page, "one", [{"nav1": 110.3}, {"nav1": 108.9}])


def test_read_and_write(world, page):
    standin, _, _ = world
    ask = lambda text: page.execute_async_script(
        f"{text}.catch((e) => [e.message, e.where, e.remedy, e.status]).then(arguments[0])")
    assert [entry["value"] for entry in ask("tavrix.read(['nav1', '0x034E:u16', 'com1'])")] == [110.3, 0x1870, 118.7]
    assert ask("tavrix.read('com1')")[0]["value"] == 118.7
    entry = ask("tavrix.write('ap_altitude_set', 5000, {unit: 'ft', wait: 5})")
    assert entry["written"] and entry["confirmed"] and entry["value"] == pytest.approx(1524, abs=0.1)
    assert standin.number("sim/cockpit/autopilot/altitude") == pytest.approx(5000, abs=1)
    message, where, remedy, status = ask("tavrix.write('heding', 5)")
    assert "heding" in message and where == "values[0].name" and "heading" in remedy and status == 404
    assert ask("tavrix.write('local_hour', 5)")[3] == 403


def test_example_panel(world, page):
    standin, cockpit, _ = world
    page.get(cockpit.address + "panels/example-panel.html")
    element = lambda name: page.find_element(By.ID, name)
    standby = lambda: element("com_standby1").get_property("value")
    wait_for("the values", lambda: (element("com1").text, standby()) == ("118.70", "121.50"), 10)
    element("com_standby1").clear()
    element("com_standby1").send_keys("133.35", Keys.ENTER)
    wait_for("the standby frequency", lambda: standin.number(RADIOS + "com1_stdby_freq_hz") == 13335, 10)
    element("exchange").click()
    wait_for("the exchange", lambda: (element("com1").text, standby()) == ("133.35", "118.70"), 10)
    element("com_standby1").clear()
    element("com_standby1").send_keys("loud", Keys.ENTER)
    wait_for("the reason", lambda: "loud" in element("trouble").text, 10)
    for place, lamp in ((1, "down"), (0.5, "moving"), (0, "up")):
        for wheel in range(3):
            standin.ask(f"set sim/aircraft/parts/acf_gear_deploy[{wheel}] {place}")
        wait_for(f"lamps {lamp}", lambda: all(element(each).get_attribute("class") == f"lamp {lamp}"
                                              for each in ("nose_gear", "left_gear", "right_gear")), 10)
    element("down").click()
    wait_for("the gear lever", lambda: standin.number("sim/cockpit/switches/gear_handle_status") == 1, 10)
    element("up").click()
    wait_for("the gear lever", lambda: standin.number("sim/cockpit/switches/gear_handle_status") == 0, 10)
    assert element("panel").get_attribute("class") == ""


def test_manual(world, page):
    """What docs/clients.md shows runs as it stands there."""
    _, cockpit, _ = world
    text = re.search(r"^```js\n(.*?)^```", (TOP / "docs" / "clients.md").read_text(), re.M | re.S)[1]
    (cockpit.panels / "manual.html").write_text(
        f"<!doctype html><script type='module'>{text}; window.result = [com1.value, raw.value, value, confirmed];"
        "function show(...given) { window.shown = given; } function lamp(...given) { window.lit = given; }</script>")
    page.get(cockpit.address + "panels/manual.html")
    wait_for("its end", lambda: page.execute_script("return window.result && window.shown"), 10)
    assert page.execute_script("return result") == [118.7, 0x1870, pytest.approx(1524, abs=0.1), True]
    shown, lit = page.execute_script("return [shown, lit]")
    assert shown[1] == "kt" and isinstance(shown[0], (int, float)) and lit == ["NO SIMULATOR", False]


def test_types_are_those_of_the_module():
    """tavrix.d.ts declares what tavrix.js exports, with as many parameters."""
    def count(given):
        """Parameters: what stands in brackets is of one, or of its type."""
        while (flat := re.sub(r"[{(<][^{}()<>]*[})>]", "", given.replace("=>", ""))) != given:
            given = flat
        return len(flat.split(",")) if flat else 0

    def exports(text):
        return sorted((kind, what, count(given)) for kind, what, given in re.findall(
            r"^export (?:async )?(function|class) (\w+)(?:\(((?:[^()]|\([^()]*\))*)\))?", text, re.M))
    module, types = (exports((TOP / "clients" / "js" / name).read_text()) for name in ("tavrix.js", "tavrix.d.ts"))
    assert module == types and len(module) == 6
