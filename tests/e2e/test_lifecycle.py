"""Start, enable, disable, stop and reload on the real plug-in file."""
import os
import re
from pathlib import Path

import pytest

from conftest import TOP, wait_for

STAMP = r"\d\d:\d\d:\d\d:\d\d\d"


@pytest.fixture(params=["linux", pytest.param("win32", marks=pytest.mark.wine)])
def build(request):
    return request.getfixturevalue(request.param)


def unstamped(text):
    return re.sub(f"^{STAMP} ", "* ", text, flags=re.M).splitlines()


def test_log_lines_in_order(start, build):
    standin = start(build, "--rate", "0", "--flight", "none")
    standin.ask("frames 5")
    standin.quit()
    word = "32 bit" if build.preset == "win32" else "64 bit"
    lines = [line for line in unstamped(standin.log()) if "joystickcapturewindow" not in line]
    begin = [f"TAVRIX Version 2.0.5.25 {word}", f"TAVFARNET Version 2.0.0.3 {word}", "Start Init!",
             "Init Mem Blocks OK!", "Init DataRefMemBlock & VariablesAccessMemBlock OK!", "Init Command Block OK!"]
    assert lines[:6] == begin
    assert re.match(r"X-Plane Version: \d+$", lines[6])
    assert lines[7:10] == ["-" * 50, "* TAVRIX Enable !", "TAVFARSERVER Enable !"]
    text = "\n".join(lines)
    order = ["TAVRIX->Initialise critical sections", "TAVRIX->TAVRIX2TAVRIX mode not active, init flightloops"]
    if build.wine:
        order += ["Starting KORLMain Thread!", "Create KORLMain Window OK!", "Register KORLMain Call message OK!"]
    order += ["-" * 50 + "\n* TAVRIX->Starting deinit", "* TAVRIX->Closing KORL main window....."]
    if build.wine:
        order += ["* TAVRIX->Closing KORLMain Thread......", "TAVRIX->Closing Window",
                  "TAVRIX->Closed KORLMain Thread!"]
    order += ["TAVRIX->Release critical sections", "* TAVRIX deinit OK!", "* TAVRIX Disable !"]
    places = [text.find(line) for line in order]
    assert -1 not in places and places == sorted(places), dict(zip(order, places))
    trace = standin.log("TAVRIX.log").splitlines()
    assert trace[:2] == begin[:2] and re.match(r"X-Plane Version: \d+$", trace[2])


def test_client_mode_starts_nothing_else(start, build, tmp_path):
    root = tmp_path / "X-Plane client"
    folder = root / "Resources" / "plugins" / "TAVRIX"
    folder.mkdir(parents=True)
    (folder / "TAVRIX.ini").write_text("[TAVRIX SETTINGS]\nTAVRIX2TAVRIX Client mode = Yes\n")
    standin = start(build, "--rate", "0", root=root)
    standin.ask("frames 70")
    assert "TAVRIX->TAVRIX2TAVRIX mode active" in standin.log()
    for line in ("init flightloops", "KORL Thread", "KORLMain"):
        assert line not in standin.log()
    standin.quit()


def test_reload_and_enable_again(start, build):
    standin = start(build, "--rate", "0", "--flight", "none")
    for _ in range(3):
        standin.ask("frames 70")
        standin.ask("reload")
    standin.ask("frames 2")
    loops = standin.ask("loops").count("next=")
    standin.ask("disable")
    assert standin.say("loops") == "ok"
    standin.ask("enable")
    standin.ask("frames 2")
    assert standin.ask("loops").count("next=") == loops
    if build.wine:
        wait_for("the line", lambda: "Threads already started once, reload the plug-in" in standin.log())
    standin.quit()


def test_unwritable_files_are_one_line_and_no_failure(start, build, tmp_path):
    root = tmp_path / "X-Plane bad"
    for name in ("TAVRIX.txt", "TAVRIX.log", "TAVRIX.ini"):  # folders where the files should be
        (root / "Resources" / "plugins" / "TAVRIX" / name).mkdir(parents=True)
    standin = start(build, "--rate", "0", root=root)
    standin.ask("frames 70")
    standin.quit()
    assert len([line for line in standin.errors if "TAVRIX" in line]) == 1, standin.errors


PLUGIN_FILES = ("TAVRIX.ini", "TAVRIX.txt", "TAVRIX.log", "TAVRIXOffsets.cfg", "httpLog.txt")


def put_in_the_way(path, kind):
    """Something under the name that is no plain file."""
    path.parent.mkdir(parents=True, exist_ok=True)
    if kind == "pipe":
        os.mkfifo(path)
    elif kind == "device":
        path.symlink_to("/dev/zero")
    else:
        path.mkdir()


@pytest.mark.parametrize("kind", ["folder", "pipe", "device"])
@pytest.mark.parametrize("name", PLUGIN_FILES)
def test_what_is_no_file_is_refused_and_left_alone(start, linux, tmp_path, name, kind):
    root = tmp_path / "X-Plane"
    place = (root if name == "httpLog.txt" else root / "Resources" / "plugins" / "TAVRIX") / name
    put_in_the_way(place, kind)
    before = os.lstat(place)
    standin = start(linux, "--rate", "0", "--flight", "none", root=root)
    standin.ask("frames 70")
    standin.ask("disable")
    standin.ask("enable")
    if name in ("TAVRIX.txt", "TAVRIX.log"):
        text = "\n".join(standin.errors)
    else:
        wait_for("the line", lambda: f"{name} (" in standin.log() or f"{name}: " in standin.log())
        text = standin.log()
    lines = [line for line in text.splitlines() if name in line and "TAVRIX->" in line and f"it is a {kind}" in line]
    assert lines, text
    assert len(lines) <= 2, lines  # once at each enable
    standin.quit()
    after = os.lstat(place)
    assert (before.st_ino, before.st_mode) == (after.st_ino, after.st_mode)


@pytest.mark.wine
@pytest.mark.parametrize("kind", ["folder", "pipe"])
def test_what_is_no_file_is_refused_on_windows(start, win32, tmp_path, kind):
    root = tmp_path / "X-Plane"
    own = root / "Resources" / "plugins" / "TAVRIX"
    for name in ("TAVRIX.ini", "TAVRIXOffsets.cfg"):
        put_in_the_way(own / name, kind)
    standin = start(win32, "--rate", "0", "--flight", "none", root=root)
    standin.ask("frames 70")
    log = standin.log()
    for name in ("TAVRIX.ini", "TAVRIXOffsets.cfg"):
        assert [line for line in log.splitlines() if "TAVRIX->Can't read" in line and name in line], log
    standin.quit()
    for name in ("TAVRIX.ini", "TAVRIXOffsets.cfg"):
        assert not (own / name).is_file()


def test_enable_tells_addresses_and_aircraft(start, build):
    standin = start(build, "--rate", "0", "--flight", "none", "--aircraft", "x737")
    standin.ask("frames 400")
    lines = [line for line in standin.log().splitlines() if "TAVRIX->This computer" in line]
    assert len(lines) == 1 and re.match(f"{STAMP} TAVRIX->This computer", lines[0])
    assert "Server Address = 127.0.0.1" in lines[0]
    aircraft = [line for line in standin.log().splitlines() if "TAVRIX->Aircraft " in line]
    assert len(aircraft) == 1 and aircraft[0].endswith("served by the adapter for x737"), aircraft
    standin.ask("aircraft jet")
    standin.ask("frames 400")
    aircraft = [line for line in standin.log().splitlines() if "TAVRIX->Aircraft " in line]
    assert len(aircraft) == 2 and "no adapter of its own" in aircraft[1], aircraft
    standin.quit()


def counts(standin):
    """Threads, open files and memory of its own (KiB; clean pages count for whoever maps a file alone)."""
    process = Path(f"/proc/{standin.process.pid}")
    private = re.findall(r"^Private_Dirty:\s+(\d+)", (process / "smaps_rollup").read_text(), re.M)
    return len(list((process / "task").iterdir())), len(list((process / "fd").iterdir())), sum(map(int, private))


def things(standin):
    """Menu items, number of flight loops, files."""
    files = {str(path.relative_to(standin.root)) for path in standin.root.rglob("*")}
    return standin.ask("menu"), standin.ask("loops").count("next="), files


OFFSETS_FILE = (TOP / "docs" / "TAVRIXOffsets.example.cfg").read_text()


@pytest.mark.slow
@pytest.mark.parametrize("console", [["disable", "enable"], ["reload"], ['press "Reload TAVRIXOffsets.cfg"']],
                         ids=["enable", "reload", "offsets"])
def test_a_hundred_rounds_leave_nothing(start, build, tmp_path, console):
    root = tmp_path / "X-Plane"
    folder = root / "Resources" / "plugins" / "TAVRIX"
    folder.mkdir(parents=True)
    (folder / "TAVRIXOffsets.cfg").write_text(OFFSETS_FILE)
    standin = start(build, "--rate", "0", "--flight", "none", root=root)
    standin.ask('menu "Performance settings"')
    standin.ask("frames 3")
    wait_for("the last of the files", lambda: (root / "httpLog.txt").exists())
    seen, before = [], things(standin)
    for _ in range(100):
        for line in console:
            standin.ask(line)
        standin.ask("frames 3")  # the threads have started, and run
        seen.append(counts(standin))
    assert things(standin) == before
    # Worker threads open and close their sockets while we look: what counts is that nothing adds up.
    for kind in range(2):
        values = [entry[kind] for entry in seen]
        assert max(values[50:]) <= max(values[1:50]) + 3, values
    # The first rounds fill what the allocators keep; later ones that leave 10 KiB each are seen. A thread's stack
    # comes and goes while we look, so that of each stretch the upper quarter counts.
    memory = [entry[2] for entry in seen]
    early, late = (sorted(stretch)[len(stretch) * 3 // 4] for stretch in (memory[10:40], memory[70:]))
    assert 3000 < late < early + 400, memory
    assert standin.log().count("Reload TAVRIXOffsets.cfg") == (100 if "Reload" in console[0] else 0)
    standin.quit()
