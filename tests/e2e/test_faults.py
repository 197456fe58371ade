"""What the system refuses the plug-in, each thing at every place: it says so in a line, goes on, and leaves nothing
behind."""
import os
import resource
import socket
import subprocess
from pathlib import Path

import pytest

from conftest import Build, wait_for
from fault_tests import SETTINGS, begin, faulty, served, told
from network import Client, request, write_record

pytestmark = pytest.mark.slow
as_root = pytest.mark.skipif(os.geteuid() != 0, reason="mounts of one's own need root")


@pytest.fixture(params=["linux", pytest.param("win32", marks=pytest.mark.wine)])
def build(request):
    return request.getfixturevalue(request.param)


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
    for client in clients:
        client.close()
    # At the edge, where every other one finds a handle, the lines are not told without end.
    ends = ("Handles or memory ran out more than 3 times", "The status page could not answer more than 3 times")
    for _ in range(20):
        if all(end in standin.log() for end in ends):
            break
        resource.prlimit(pid, resource.RLIMIT_NOFILE, (4, before[1]))
        client, browser = Client(), socket.create_connection(("127.0.0.1", 4321))
        standin.ask("frames 60")
        resource.prlimit(pid, resource.RLIMIT_NOFILE, before)
        client.complete().close()
        assert browser.recv(1000).startswith(b"HTTP/1.1 200")
        browser.close()
    log = standin.log()
    assert [log.count(text) for text in (*ends, "no handles or memory left", "status page cannot answer")] == [1, 1, 3, 3]
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
