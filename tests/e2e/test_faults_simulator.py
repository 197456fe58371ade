"""What the simulator refuses, takes away or does late, at every place: the plug-in goes on without."""
import re
import time

import pytest

from fault_tests import begin, faulty
from network import Client, request, write_record

pytestmark = pytest.mark.slow


@pytest.fixture(params=["linux", pytest.param("win32", marks=pytest.mark.wine)])
def build(request):
    return request.getfixturevalue(request.param)


def fly(standin):
    standin.ask("frames 320")


def reload(standin):
    standin.ask("reload")
    standin.ask("frames 2")


def restart(standin):
    standin.ask("reload")  # without a frame no thread is started


def fire(standin):
    standin.ask("message 102 0")
    standin.ask("planes 3")
    standin.ask("planes 2")
    standin.ask("frames 320")


# What fails, what makes it be called, the step from one place to the next, how many places at least, and the lines
# that tell of it (none: the simulator may well not have what is asked for, and the plug-in does without).
FUNCTIONS = [
    ("XPLMFindPluginsMenu", restart, 1, 1, "refuses a part of the menu"),
    ("XPLMCreateMenu", restart, 1, 5, "refuses a part of the menu"),
    ("XPLMAppendMenuItem", restart, 1, 13, "refuses a part of the menu"),
    ("XPLMCreateProbe", restart, 1, 1, "gives no terrain probe"),
    ("XPLMFindDataRef", restart, 1, 600, None),
    ("XPLMFindDataRef", reload, 97, 6, None),
    ("XPLMFindCommand", restart, 1, 20, None),
    ("XPLMFindPluginBySignature", reload, 1, 1, None),
    ("XPLMCountAircraft", fire, 1, 2, None),
    ("XPLMGetNthAircraftModel", fire, 1, 2, None),
    ("XPLMGetDataRefTypes", reload, 5, 1, None),
    ("XPLMGetDatavi", fly, 17, 10, None),
    ("XPLMGetDatavf", fly, 211, 10, None),
    ("XPLMGetDatab", fly, 1, 5, None),
    ("XPLMFindNavAid", fly, 1, 5, None),
]


@pytest.mark.parametrize("function, cause, step, least, line", FUNCTIONS,
                         ids=[f"{row[0]}-{row[1].__name__}" for row in FUNCTIONS])
def test_what_the_simulator_refuses_at_each_place(start, linux, tmp_path, function, cause, step, least, line):
    standin = begin(start, linux, tmp_path, "--planes", "2", "--aircraft", "b738")
    for name, frequency in (("nav1", 11410), ("nav2", 11570), ("adf1", 334)):
        standin.ask(f"set sim/cockpit/radios/{name}_freq_hz {frequency}")
    standin.ask("frames 70")
    cause(standin)
    usual = set(re.sub(r"[\d:.]+", "*", text) for text in standin.log().splitlines())
    usual |= {"* TAVFARNET->Client accept failed", "* TAVRIX->Closing Slot Thread No* *", "TAVRIX->* ATC Threads active*",
              "* TAVFARNET->Waiting for clients*"}
    places, place = 0, 1
    while True:
        standin.ask(f"fail {function} {place}")
        cause(standin)
        if standin.ask("fail"):
            break
        places, place = places + 1, place + step
        if line is not None:
            assert standin.log().count(line) == 1, (place, standin.log())
    assert places >= least
    standin.ask(f"fail {function} 1 100000000")  # all of them
    cause(standin)
    standin.ask("fail off")
    news = set(re.sub(r"[\d:.]+", "*", text) for text in standin.log().splitlines()) - usual
    assert len(news) < 4, news
    assert standin.errors == [], standin.errors[-5:]
    restart(standin)
    standin.ask("frames 70")
    standin.quit()


def test_windows_that_cannot_be_made(start, linux, tmp_path):
    standin = begin(start, linux, tmp_path)
    standin.ask("frames 10")
    items = [item for item in standin.ask("menu").split("; ") if not item.endswith("-")]
    items = [item for item in items if not any(other.startswith(item + " > ") for other in items)]
    assert len(items) == 8
    places = 0
    for item in items:
        standin.say("widgets")
        for place in range(1, 100):
            before = standin.log().count("cannot make the window")
            standin.ask(f"fail XPCreateWidget {place}")
            standin.ask(f'menu "{item}"')
            standin.ask("frames 1")
            if standin.ask("fail"):
                break
            places += 1
            assert standin.log().count("cannot make the window") == before + 1, (item, place)
            assert standin.say("widgets") == "ok", (item, place)
        standin.ask("fail off")
        title = re.search('window "([^"]*)"', standin.ask("widgets")).group(1)
        for function in ("XPGetWidgetDescriptor", "XPGetWidgetWithFocus", "XPFindRootWidget", "XPLMMeasureString"):
            standin.ask(f"fail {function} 1 1000")
            standin.ask("frames 30")
            standin.say("key tab")
            standin.ask("fail off")
        standin.ask(f'close "{title}"')
    assert places > 150
    standin.quit()


def used_datarefs(build):
    return sorted({name.decode() for name in re.findall(rb"sim/[a-z0-9_/]+", build.plugin.read_bytes())})


def test_datarefs_that_vanish_and_change_type(start, linux, tmp_path):
    standin = begin(start, linux, tmp_path, "--planes", "2", rate=0)
    standin.ask("frames 70")
    names = [name for name in used_datarefs(linux) if standin.say(f"get {name}").startswith("ok ")]
    assert len(names) > 300
    lines = len(standin.log().splitlines())
    client = Client().complete()
    for shape in ("float[3]", "int", "byte[2]", "double", "int[40]"):
        for name in names:
            standin.ask(f"undefine {name}")
        standin.ask("frames 320")
        for name in names:
            standin.ask(f"define {name} {shape}")
        standin.ask("frames 320")
        client.send(request(write_record(0x0BC6, b"\1\2"), write_record(0x0842, b"\7\7"), write_record(0x3F00, b"\1\0")))
        standin.ask("frames 20")
    client.close()
    assert len(standin.log().splitlines()) - lines < 40, standin.log()
    standin.ask("disable")
    standin.ask("enable")
    standin.ask("frames 3")
    standin.quit()


def test_a_navigation_database_that_returns_nothing(start, linux, tmp_path):
    standin = begin(start, linux, tmp_path)
    standin.ask("frames 100")
    lines = len(standin.log().splitlines())
    standin.ask("navaid clear")
    for frequency in range(10800, 11795, 25):
        standin.ask(f"set sim/cockpit/radios/nav1_freq_hz {frequency}")
        standin.ask("frames 32")
    assert len(standin.log().splitlines()) - lines <= 2, standin.log()
    standin.quit()


def test_a_frame_of_five_seconds(start, linux, tmp_path):
    standin = begin(start, linux, tmp_path, "--planes", "2", rate=60)
    standin.ask("frames 60")
    client = Client().complete()
    lines = len(standin.log().splitlines())
    standin.ask("late")
    standin.ask("stall 5")
    began = time.monotonic()
    for value in range(50):  # clients wait for nobody; the last one counts
        client.send(request(write_record(0x0B4C, bytes([value, 0])), write_record(0x12000, bytes([value]))))
    client.until("the memory", lambda: client.read(0x12000, 1) == b"\x31")
    assert time.monotonic() - began < 3
    standin.ask("frames 5")
    assert time.monotonic() - began > 4
    late, latest = re.search(r" late (\d+) latest-ns (\d+)", standin.ask("late")).groups()
    assert int(late) >= 1 and int(latest) > 4e9, "the stand-in tells of the frame behind it"
    assert len(standin.log().splitlines()) == lines
    assert standin.quit() < 2


def test_a_clock_that_jumps(start, build, tmp_path):
    """Stamps follow it, nothing else does: no wait, no pause, no loop of lines."""
    standin = begin(start, faulty(build), tmp_path, "--planes", "3", rate=60)
    standin.ask("frames 60")
    client = Client().complete()
    stamps = []
    for jump in (3 * 3600, -7 * 3600, 86400 * 400, -86400 * 800, 1):
        lines = len(standin.log().splitlines())
        standin.ask(f"clock {jump}")
        client.send(request(write_record(0x12000, bytes([jump & 0x7F]))))
        client.until("the write", lambda: client.read(0x12000, 1) == bytes([jump & 0x7F]))
        standin.ask("frames 40")
        assert len(standin.log().splitlines()) == lines, standin.log().splitlines()[lines:]
        took = time.monotonic()
        standin.ask("disable")
        assert time.monotonic() - took < 3
        stamps.append(re.findall(r"^(\d\d):\d\d:\d\d:\d\d\d TAVRIX Disable !", standin.log(), re.M)[-1])
        standin.ask("enable")
        standin.ask("reload")
        standin.ask("frames 60")
        client.close()
        client = Client().complete()
    hours = [int(stamp) for stamp in stamps]
    assert (hours[1] - hours[0]) % 24 in (16, 17, 18), hours
    client.close()
    standin.quit()
