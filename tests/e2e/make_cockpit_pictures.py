#!/usr/bin/env python3
"""The pictures of the web cockpit in the documents, from the stand-in in flight, in a real browser.

    /usr/bin/python3 tests/e2e/make_cockpit_pictures.py [FOLDER]     writes docs/pictures/cockpit-*.png anew, a minute

A flight is never twice the same: tests look only whether each picture is there and shown."""
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

from selenium.webdriver.common.by import By

from web_cockpit import CheckedCockpit, begin_simulator, open_browser
from conftest import TOP, Build, wait_for
from make_pictures import ALONE, can_be_alone

PICTURES = ["cockpit-watch", "cockpit-find", "cockpit-plot", "cockpit-panel", "cockpit-phone", "cockpit-record",
            "cockpit-pages", "cockpit-example"]
SIZE, PHONE = (1280, 800), (390, 844)


def make_pictures(target, scratch):
    build = Build("linux")
    standin = begin_simulator(build, scratch / "X-Plane", "--planes", "8")
    cockpit = CheckedCockpit(build, folder=scratch)
    shutil.copy(TOP / "docs" / "example-panel.html", scratch / "panels")
    browser = open_browser(scratch / "profile", *SIZE)
    script, find = browser.execute_script, lambda selector: browser.find_element(By.CSS_SELECTOR, selector)

    def size(width, height):
        browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                                {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": width < 500})

    def view(name, theme="light"):
        browser.get(cockpit.address + "licences.txt")
        script("localStorage.setItem('tavrix.theme', JSON.stringify(arguments[0]))", theme)
        browser.get(cockpit.address + "#" + name)
        wait_for(name, lambda: script("const view = document.getElementById('view-' + arguments[0]);"
                                      "return view?.children.length && !view.hidden && document.querySelector('.dot.good') !== null",
                                      name.split("/")[0]))

    def press(text):
        wait_for(text, lambda: script("const one = [...document.querySelectorAll('button')].find((each) => !each.disabled && "
                                      "(each.textContent === arguments[0] || each.ariaLabel === arguments[0]));"
                                      "one?.click(); return Boolean(one)", text))

    def draw(name):
        (target / f"{name}.png").write_bytes(browser.get_screenshot_as_png())

    cockpit.connected()
    cockpit.put({"name": "com1", "value": 118.7}, {"name": "com_standby1", "value": 121.5})
    cockpit.post("/api/recording", file="evening circuit.tavrec")
    view("watch/Flight")
    find("#query").send_keys("radio standby")
    wait_for("values", lambda: script("return [...document.querySelectorAll('.row .number')].slice(0, 6).every((one) => one.textContent !== '–')"))
    draw("cockpit-watch")

    view("plot/altitude,ias")
    cockpit.put({"name": "ap", "value": True}, {"name": "ap_altitude", "value": True},
                {"name": "ap_altitude_set", "value": cockpit.value("altitude") + 200})
    script("plotWindow.value = 30; plotWindow.dispatchEvent(new Event('change'))")
    wait_for("half a minute", lambda: script("return tavrixPlot.times.at(-1) - tavrixPlot.times[0] > 29"))
    draw("cockpit-plot")

    view("find")
    press("Start: hold still")
    wait_for("enough", lambda: "enough" in find(".findState").text)
    press("Now I move it")
    lever = "sim/cockpit/switches/gear_handle_status"
    standin.ask(f"set {lever} {1 - standin.number(lever):.0f}")
    wait_for("the gear", lambda: script("return [...document.querySelectorAll('.findings b')].map((one) => one.textContent).includes('nose_gear')"))
    wait_for("the gear at rest", lambda: script("return [...document.querySelectorAll('.finding')].filter((one) => "
                                                "/came to rest|moved once/.test(one.textContent)).length >= 4"))
    press("Done moving")
    draw("cockpit-find")

    view("panel")
    standin.ask("frames 30")
    draw("cockpit-panel")
    size(*PHONE)
    view("panel", "dark")
    standin.ask("frames 30")
    draw("cockpit-phone")
    size(*SIZE)

    cockpit.post("/api/recording", file=None)
    cockpit.post("/api/replay", file="evening circuit.tavrec", position=12, playing=False)
    view("recordings")
    wait_for("the player", lambda: script("return document.querySelector('.player')?.checkVisibility()"))
    draw("cockpit-record")
    cockpit.post("/api/replay", file=None)
    cockpit.connected()
    view("own")
    wait_for("the list", lambda: script("return document.querySelector('.panels li') !== null"))
    draw("cockpit-pages")

    size(1040, 300)
    browser.get(cockpit.address + "panels/example-panel.html")
    wait_for("its values", lambda: find("#com1").text == "118.70" and find("#nose_gear").get_attribute("class") == "lamp down")
    draw("cockpit-example")
    browser.quit()
    cockpit.end()
    standin.quit()


if __name__ == "__main__":
    if sys.argv[1:2] == ["--inside"]:
        with tempfile.TemporaryDirectory() as scratch:
            make_pictures(Path(sys.argv[2]), Path(scratch))
    elif can_be_alone():
        folder = Path(sys.argv[1]).resolve() if sys.argv[1:] else TOP / "docs" / "pictures"
        folder.mkdir(exist_ok=True)
        sys.exit(subprocess.run([*ALONE, sys.executable, __file__, "--inside", folder]).returncode)
    else:
        sys.exit("a network of one's own is not to be had here (unshare -n): a running simulator would be in the way")
