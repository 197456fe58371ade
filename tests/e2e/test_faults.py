"""What the system, the simulator and clients can do to the plug-in, each at every place: it says so in a line, goes on,
and leaves nothing behind. The file under test is tavrix_faults: the product's objects with a system that fails on the
console's word."""
import os
import re
import resource
import socket
import subprocess
import time
from pathlib import Path

import pytest

from conftest import Build, wait_for
from network import Client, request, write_record

SETTINGS = "[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\nTAVRIX2TAVRIX Client mode = {}\n"
REMEDY = re.compile("close other programs|make room on|leave it where it is")

pytestmark = pytest.mark.slow
as_root = pytest.mark.skipif(os.geteuid() != 0, reason="mounts of one's own need root")


@pytest.fixture(params=["linux", pytest.param("win32", marks=pytest.mark.wine)])
def build(request):
    return request.getfixturevalue(request.param)


def faulty(build):
    """The same build with the plug-in of the fault tests."""
    other = Build(build.preset)
    other.plugin = build.plugin.parent / "faults" / build.plugin.name
    return other


def begin(start, build, tmp_path, *options, mode="No", rate=0, **more):
    root = tmp_path / "X-Plane"
    folder = root / "Resources" / "plugins" / "TAVRIX"
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "TAVRIX.ini").write_text(SETTINGS.format(mode))
    return start(build, "--rate", str(rate), "--flight", "none", *options, root=root, **more)


def served(tries=10):
    """Whether a client gets the whole memory; one that is sent away comes again, as clients do."""
    for _ in range(tries):
        try:
            client = Client()
        except OSError:
            return False
        client.tcp.settimeout(0)
        end = time.monotonic() + 5
        while len(client.blocks) < 8 and time.monotonic() < end:
            client.take(0.05)
            try:
                if client.tcp.recv(1) == b"":
                    break
            except BlockingIOError:
                pass
            except OSError:
                break
        client.close()
        if len(client.blocks) == 8:
            return True
    return False


def told(standin, known):
    """Lines with advice since the start, and what the simulator's own log got since `known` lines."""
    return [line for line in standin.log().splitlines() + standin.errors[known:] if REMEDY.search(line)]


# --- The system ---------------------------------------------------------------------------------------------

def test_only_the_test_build_can_be_made_to_fail(start, build, tmp_path):
    standin = begin(start, build, tmp_path)
    for line in ("fail system thread 1", "clock 1"):
        assert "no plug-in that is loaded is built for that" in standin.say(line)
    for line, why in (("fail XPLMSetDatai 1", "XPLMSetDatai cannot fail; these can: XPLMFindDataRef, "),
                      ("fail XPLMFindCommand 0", "fail FUNCTION N"), ("fail system lamp 1", "thread, event, socket")):
        assert why in standin.say(line)
    standin.ask("fail XPLMFindCommand 3 2")
    assert standin.ask("fail") == "XPLMFindCommand 3"
    standin.ask("fail off")
    assert standin.say("fail") == "ok"
    standin.quit()
    for word in (b"FaultHooks", b"SystemFails"):
        assert word not in build.plugin.read_bytes()
    assert b"UseFaultHooks" in faulty(build).plugin.read_bytes()


@pytest.mark.parametrize("mode, kind, least", [
    ("No", "thread", 9), ("No", "event", 40), ("No", "socket", 6), ("No", "file", 25), ("Yes", "thread", 2),
    ("Yes", "event", 20), ("Yes", "socket", 4)])
def test_what_the_system_refuses_at_each_place(start, linux, tmp_path, mode, kind, least):
    standin = begin(start, faulty(linux), tmp_path, "--planes", "2", mode=mode)
    for place in range(1, 200):
        standin.ask("disable")  # nobody else creates anything meanwhile
        (standin.folder / "TAVRIX.txt").unlink(missing_ok=True)
        known = len(standin.errors)
        standin.ask(f"fail system {kind} {place}")
        standin.ask("reload")  # begins the log anew
        standin.ask("frames 30")
        if mode == "No":
            served(tries=2)  # wanted for what is created then; whether it can be served hangs on the place
        standin.ask("disable")
        enabled = standin.say("enable")
        assert enabled == "ok" or "refuses the locks" in standin.log(), enabled
        standin.ask("frames 3")
        if standin.ask("fail"):
            break
        lines = told(standin, known)
        assert len(lines) == 1, f"place {place}: " + "\n".join(lines + standin.errors)
    assert place > least
    standin.ask("fail off")
    standin.ask("reload")
    standin.ask("frames 30")
    assert mode == "Yes" or served()
    assert told(standin, len(standin.errors)) == []
    standin.quit()


@pytest.mark.wine
def test_what_windows_refuses_for_the_window(start, win32, tmp_path):
    standin = begin(start, faulty(win32), tmp_path)
    answers = []
    for place in (1, 2, 3):
        standin.ask(f"fail system window {place}")
        standin.ask("reload")
        standin.ask("frames 3")
        standin.wait_log("Create Socket thread OK")
        answers.append([line for line in standin.log().splitlines() if "local clients cannot" in line])
        if standin.ask("fail"):
            break
        if place == 2:  # made once a second until it can be
            standin.wait_log("Create KORLMain Window OK!")
    assert [len(lines) for lines in answers] == [1, 1, 0], answers
    assert "class" in answers[0][0] and "tried again" in answers[1][0]
    standin.ask("fail off")
    standin.quit()


def own_display():
    """An X server for one test to end; the numbers below are other tests'. Returns it and its name."""
    for number in range(200, 260):
        if os.path.exists(f"/tmp/.X11-unix/X{number}"):
            continue
        reader, writer = os.pipe()
        server = subprocess.Popen(
            ["Xvfb", f":{number}", "-displayfd", str(writer), "-screen", "0", "640x480x24", "-nolisten", "tcp"],
            pass_fds=(writer,), stderr=subprocess.DEVNULL)
        os.close(writer)
        with os.fdopen(reader) as pipe:
            if pipe.readline().strip() == str(number):
                return server, f":{number}"
        server.wait()
    raise AssertionError("no X server")


@pytest.mark.wine
def test_a_display_that_goes_away(start, win32, tmp_path, monkeypatch):
    """Wine ends every program of a display that is gone: at once, with the settings whole and nothing in the next
    start's way. Where it does not, everything else goes on."""
    usual = os.environ["DISPLAY"]
    display, name = own_display()
    monkeypatch.setenv("DISPLAY", name)
    standin = begin(start, win32, tmp_path, rate=60)
    standin.wait_log("Register KORLMain Call message OK!")
    standin.wait_log("TAVFARNET->Waiting for clients.....0")
    settings = (standin.folder / "TAVRIX.ini").read_bytes()
    display.kill()
    display.wait()
    try:
        standin.ask("frames 120")
        standin.quit()
    except (AssertionError, BrokenPipeError):
        standin.process.wait(timeout=20)
        assert "X connection" in " ".join(standin.errors), standin.errors
    assert (standin.folder / "TAVRIX.ini").read_bytes() == settings
    monkeypatch.setenv("DISPLAY", usual)
    (standin.folder / "TAVRIX.txt").unlink()
    again = start(win32, "--rate", "60", "--flight", "none", root=standin.root)
    again.wait_log("Register KORLMain Call message OK!")
    again.wait_log("TAVFARNET->Waiting for clients.....0")
    assert served()
    again.quit()


@as_root
def test_no_file_handles_left(start, linux, tmp_path):
    """Waited out with one line; what came meanwhile is served then."""
    standin = begin(start, linux, tmp_path, rate=60)
    standin.wait_log("TAVFARNET->Waiting for clients.....0")
    pid = standin.process.pid
    before = resource.prlimit(pid, resource.RLIMIT_NOFILE)
    resource.prlimit(pid, resource.RLIMIT_NOFILE, (4, before[1]))
    clients = [Client() for _ in range(3)]
    browser = socket.create_connection(("127.0.0.1", 4321))
    standin.wait_log("status page cannot answer")
    standin.wait_log("no handles or memory left")
    standin.ask("frames 90")  # a second and a half: no further line comes
    lines = told(standin, 0)
    assert len(lines) == 2, lines
    resource.prlimit(pid, resource.RLIMIT_NOFILE, before)
    for client in clients:
        client.complete()
    assert browser.recv(1000).startswith(b"HTTP/1.1 200")
    standin.quit()


def in_mount(monkeypatch, build, root, options):
    """A stand-in in a mount namespace of its own, where its folder is a small disk."""
    root.mkdir(exist_ok=True)
    command = build.command
    monkeypatch.setattr(build, "command", lambda *words: [
        "unshare", "-m", "sh", "-c", f'mount -t tmpfs -o {options} disk "{root}" && mkdir -p "{root}/Resources/plugins/TAVRIX" && '
        f'printf "{SETTINGS.format("No")}" >"{root}/Resources/plugins/TAVRIX/TAVRIX.ini" && '
        f'{{ [ -z "$READ_ONLY" ] || mount -o remount,ro "{root}"; }} && exec "$@"', "sh", *command(*words)])


def seen_inside(standin):
    standin.ask("frames 0")
    standin.root = Path(f"/proc/{standin.process.pid}/root{standin.root}")


@as_root
def test_a_full_disk_and_room_again(start, linux, tmp_path, monkeypatch):
    build = Build(linux.preset)
    in_mount(monkeypatch, build, tmp_path / "X-Plane", "size=300k")
    standin = start(build, "--rate", "60", "--flight", "none", root=tmp_path / "X-Plane")
    seen_inside(standin)
    standin.wait_log("TAVFARNET->Waiting for clients.....0")
    filler = standin.root / "filler"
    with pytest.raises(OSError), open(filler, "wb", buffering=0) as file:
        while True:
            file.write(bytes(4096))
    ini = (standin.folder / "TAVRIX.ini").read_text()
    client = Client().complete()
    client.send(request(write_record(0x3130, b"FULL1".ljust(12, b"\0"))))
    for _ in range(40):  # lines: more than fit into what the last block of the log leaves
        Client().complete().close()
    wait_for("the simulator's own log", lambda: [line for line in standin.errors if "TAVRIX.txt cannot be written" in line])
    standin.ask("frames 240")  # the number is saved two seconds after the change: that fails
    assert len([line for line in standin.errors if "TAVRIX" in line]) == 1 and "make room" in standin.errors[-1]
    assert (standin.folder / "TAVRIX.ini").read_text() == ini
    client.until("the number", lambda: client.read(0x3130, 5) == b"FULL1")
    filler.unlink()
    standin.ask("disable")
    assert "Lines before this one are missing" in standin.log()
    assert "FULL1" in (standin.folder / "TAVRIX.ini").read_text()
    standin.quit()


@as_root
def test_a_disk_that_may_only_be_read(start, linux, tmp_path, monkeypatch):
    monkeypatch.setenv("READ_ONLY", "1")
    build = Build(linux.preset)
    in_mount(monkeypatch, build, tmp_path / "X-Plane", "size=1m")
    standin = start(build, "--rate", "60", "--flight", "none", root=tmp_path / "X-Plane")
    standin.ask("frames 30")
    client = Client().complete()
    client.send(request(write_record(0x3130, b"RONLY".ljust(12, b"\0"))))
    client.until("the number", lambda: client.read(0x3130, 5) == b"RONLY")
    standin.ask("frames 200")
    standin.ask("disable")
    standin.ask("enable")
    standin.quit()
    lines = [line for line in standin.errors if "TAVRIX" in line]
    assert len(lines) == 1 and "Read-only file system" in lines[0] and "make it and its folder writable" in lines[0], lines


# --- The simulator --------------------------------------------------------------------------------------------

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
    standin.ask("stall 5")
    began = time.monotonic()
    for value in range(50):  # clients wait for nobody; the last one counts
        client.send(request(write_record(0x0B4C, bytes([value, 0])), write_record(0x12000, bytes([value]))))
    client.until("the memory", lambda: client.read(0x12000, 1) == b"\x31")
    assert time.monotonic() - began < 3
    standin.ask("frames 5")
    assert time.monotonic() - began > 4
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


# --- Clients --------------------------------------------------------------------------------------------------

def connect_often(standin):
    for _ in range(150):
        try:
            Client().close()
        except OSError:  # the table was full for a moment
            time.sleep(0.01)


def change_everything(standin):
    client = Client().complete()
    for value in range(100):
        client.send(request(*[write_record(offset, bytes([value]) * 2000) for offset in range(0x12000, 0x1F000, 2000)]))
        standin.ask("frames 1")
    client.close()


def write_often(offset, data):
    def act(standin):
        client = Client().complete()
        for value in range(300):
            client.send(request(write_record(offset, data(value))))
            standin.ask("frames 2")
        client.close()
    return act


def send_rubbish(standin):
    client = Client().complete()
    rubbish = [b"\xFF" * 40, request()[:-3] * 3, b"\x12\0\xFF\xFF" + bytes(30), os.urandom(64)]
    for i in range(100000 // 50):
        try:
            client.send(rubbish[i % 4] * 50)
        except OSError:
            client.close()
            client = Client().complete()
    client.close()


def browse_often(standin):
    for i in range(120):
        with socket.create_connection(("127.0.0.1", 4321)) as browser:
            browser.sendall(f"GET /{i} HTTP/1.1\r\n\r\n".encode())
            browser.recv(100)


def reload_often(standin):
    client = Client().complete()
    end = time.monotonic() + 12
    while time.monotonic() < end:
        client.send(request(write_record(0x6F0D, b"\1")))
        standin.ask("frames 2")
        time.sleep(0.02)
    client.close()


FLOODS = {
    "connections": (connect_often, 150), "change lists that are full": (change_everything, 16),
    "brake": (write_often(0x0BC6, lambda value: bytes([value & 0xFF, value >> 8])), 16),
    "situation files": (write_often(0x3F00, lambda value: bytes([value & 1, 0])), 11),
    "frames that are none": (send_rubbish, 60), "browsers": (browse_often, 2),
    "the offsets file": (reload_often, 5 * 25),
}


@pytest.mark.parametrize("cause", FLOODS)
def test_what_clients_repeat_is_not_told_without_end(start, linux, tmp_path, cause):
    act, most = FLOODS[cause]
    standin = begin(start, linux, tmp_path)
    faults = "".join(f"Offset {0xA000 + i:04X} int 4 1 rw $none{i}\nnonsense {i}\n" for i in range(10))
    (standin.folder / "TAVRIXOffsets.cfg").write_text(faults)
    standin.ask("frames 70")
    standin.wait_log("TAVFARNET->Waiting for clients.....0")
    before = len(standin.log().splitlines())
    act(standin)
    standin.ask("frames 20")
    lines = standin.log().splitlines()[before:]
    assert len(lines) <= most, lines[:10] + lines[-10:]
    page = standin.root / "httpLog.txt"
    assert page.read_text().count("http command") <= 1
    standin.quit()
