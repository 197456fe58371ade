"""./run from a terminal, as somebody does who has just got the source; and what of the scripts can be tested by itself."""
import json
import os
import re
import shutil
import signal
import socket
import subprocess
import sys
import urllib.request

import pytest

from conftest import TOP, wait_for
from terminal import Terminal

BUILDS = [pytest.param((), marks=pytest.mark.wine, id="wine"), pytest.param(("--native",), id="native")]


@pytest.fixture
def run(tmp_path):
    """run(*words, top=checkout) -> Terminal with ./run in it; its temporary files lie in tmp_path / "tmp"."""
    opened = []
    (tmp_path / "tmp").mkdir()

    def begin(*words, top=TOP, env=None, **more):
        opened.append(Terminal(["./run", *words], cwd=top, env={"TMPDIR": str(tmp_path / "tmp"), **(env or {})}, **more))
        return opened[-1]

    yield begin
    for terminal in opened:
        terminal.end()
    assert list((tmp_path / "tmp").glob("tmp.*")) == []


def check_over(terminal):
    terminal.check_restored()
    terminal.check_nothing_left()


COCKPIT = re.compile(r"Web cockpit: (http://127\.0\.0\.1:\d+/)")


def browser(top):
    """A browser that notes what it is told to open, {environment}, and the path of the note."""
    write_script(top / "browser", f'echo "$@" >"{top}/opened.tmp"; mv "{top}/opened.tmp" "{top}/opened"')
    return {"BROWSER": str(top / "browser")}, top / "opened"


@pytest.mark.parametrize("words", BUILDS)
def test_ends_by_itself(run, words, tmp_path):
    environment, opened = browser(tmp_path)
    terminal = run("--seconds", "8", "--web", *words, env=environment)
    terminal.wait_text("Standin Twin Jet")
    address = COCKPIT.search(terminal.plain)[1]
    # Connected to the same simulator, while the table shows.
    wait_for("the cockpit's simulator", lambda: json.load(urllib.request.urlopen(address + "api/status"))["connected"])
    aircraft = json.load(urllib.request.urlopen(address + "api/values?names=aircraft"))["values"][0]["value"]
    assert terminal.wait() == 0, terminal.plain[-3000:]
    check_over(terminal)
    title = "network, 127.0.0.1" if words else "local window server"
    assert f"TAVRIX  {title}" in terminal.plain and "Standin Twin Jet" in terminal.plain
    assert aircraft.startswith("Standin Twin Jet") and opened.read_text() == address + "\n"
    # In the head of each table, too.
    assert terminal.plain.count(f"Web cockpit: {address}") > 5


@pytest.mark.parametrize("words", BUILDS)
@pytest.mark.parametrize("way", ["key", "signal"])
def test_is_stopped_while_the_table_shows(run, words, way):
    terminal = run(*words)
    terminal.wait_text("TAVRIX  ")
    terminal.type("\x03") if way == "key" else os.kill(terminal.process.pid, signal.SIGTERM)
    assert terminal.wait() == 0, terminal.plain[-3000:]
    check_over(terminal)
    assert "offsetctl:" not in terminal.plain


def test_terminal_is_closed(run):
    terminal = run("--native")
    terminal.wait_text("TAVRIX  ")
    os.killpg(terminal.process.pid, signal.SIGHUP)
    terminal.wait()
    terminal.check_nothing_left()


def test_another_simulator_runs(run):
    with socket.create_server(("127.0.0.1", 65000)):
        terminal = run("--native", "--seconds", "5")
        assert terminal.wait() == 1
    check_over(terminal)
    assert "does another simulator run?" in terminal.text and "port 65000: the port is taken" in terminal.text


def test_port_of_the_cockpit_is_taken(run):
    with socket.create_server(("127.0.0.1", 8440)):
        terminal = run("--native", "--seconds", "1")
        assert terminal.wait() == 0, terminal.plain[-3000:]
    check_over(terminal)
    assert COCKPIT.search(terminal.plain) and ":8440/" not in terminal.plain


def test_no_place_for_temporary_files(run, tmp_path):
    terminal = run("--native", "--seconds", "1", env={"TMPDIR": str(tmp_path / "missing")})
    assert terminal.wait() == 1
    assert "Building" not in terminal.text  # else its files would lie in the root folder


@pytest.mark.parametrize("words", [("--seconds",), ("--seconds", "0"), ("--seconds", "1e9"), ("--seconds", "1000000"),
                                   ("--seconds", "-5"), ("--fast",), ("--web=yes",)])
def test_wrong_words(run, words):
    terminal = run(*words)
    assert terminal.wait(deadline=10) == 2
    assert "Building" not in terminal.text


@pytest.fixture
def checkout(tmp_path):
    """A checkout whose programs are scripts of the test; building does nothing."""
    top = tmp_path / "checkout"
    (top / "cmake").mkdir(parents=True)
    (top / "build" / "linux" / "bin").mkdir(parents=True)
    (top / "path").mkdir()
    shutil.copy(TOP / "run", top)
    shutil.copy(TOP / "cmake" / "setup.sh", top / "cmake")
    write_script(top / "path" / "cmake", "exit 0")
    write_script(top / "build" / "linux" / "bin" / "offsetctl", OFFSETCTL)
    return top


# Their words stand in the files serve and monitor of the checkout.
OFFSETCTL = """echo "${@:2}" >"$1"
[ "$1" != serve ] || [ -z "${NO_COCKPIT:-}" ] || { echo "offsetctl: $NO_COCKPIT" >&2; exit 2; }
[ "$1" != serve ] || echo "Web cockpit: http://127.0.0.1:8440/"
[ "$1" != monitor ] || echo TAVRIX
exec sleep 1000"""
STANDIN = """trap '' INT; echo "TAVFARNET->Waiting for clients" >"$4/Resources/plugins/TAVRIX/TAVRIX.txt"; read -r end"""


def write_script(path, text):
    path.write_text(f"#!/bin/bash\n{text}\n")
    path.chmod(0o755)


def first_in_path(top):
    return {"PATH": f"{top / 'path'}:{os.environ['PATH']}"}


def test_standin_ends_early(run, checkout):
    write_script(checkout / "build" / "linux" / "bin" / "standin", "echo no such plug-in >&2; exit 1")
    terminal = run("--native", top=checkout, env=first_in_path(checkout))
    assert terminal.wait(deadline=20) == 1
    check_over(terminal)
    assert "ended early" in terminal.text and "no such plug-in" in terminal.text


@pytest.mark.parametrize("trouble, note", [("", "Web cockpit: http://127.0.0.1:8440/"),
                                           ("this build has no web cockpit: Boost is missing", "No web cockpit: Boost is missing")])
def test_table_shows_with_and_without_cockpit(run, checkout, trouble, note):
    """No browser here, as on a server: it is said, and the table shows."""
    (checkout / "docs").mkdir()
    write_script(checkout / "build" / "linux" / "bin" / "standin", STANDIN)
    terminal = run("--native", "--web", top=checkout, env={
        **first_in_path(checkout), "NO_COCKPIT": trouble, "BROWSER": "", "DISPLAY": "", "WAYLAND_DISPLAY": ""})
    terminal.wait_text("TAVRIX")
    assert note in terminal.text and ("no browser here" in terminal.text) == (not trouble)
    assert (checkout / "monitor").read_text().startswith(f"--note {note}")
    terminal.type("\x03")
    assert terminal.wait(deadline=20) == 0
    check_over(terminal)


@pytest.mark.parametrize("way", ["key", "signal"])
def test_is_stopped_while_it_waits(run, checkout, way):
    write_script(checkout / "build" / "linux" / "bin" / "standin", "echo started >started; read -r end")
    terminal = run("--native", top=checkout, env=first_in_path(checkout))
    wait_for("the stand-in", lambda: (checkout / "started").exists())
    terminal.type("\x03") if way == "key" else os.kill(terminal.process.pid, signal.SIGTERM)
    assert terminal.wait(deadline=20) == (130 if way == "key" else 143)
    check_over(terminal)


def test_standin_that_does_not_end_is_ended(run, checkout):
    write_script(checkout / "build" / "linux" / "bin" / "standin",
                 "trap '' INT TERM HUP; echo started >started; exec sleep 1000")
    terminal = run("--native", top=checkout, env=first_in_path(checkout))
    wait_for("the stand-in", lambda: (checkout / "started").exists())
    terminal.type("\x03")
    assert terminal.wait(deadline=30) == 130
    check_over(terminal)


def test_is_stopped_while_it_builds(run, checkout):
    write_script(checkout / "path" / "cmake", "echo started >started; exec sleep 1000")
    terminal = run("--native", top=checkout, env=first_in_path(checkout))
    wait_for("cmake", lambda: (checkout / "started").exists())
    terminal.type("\x03")
    assert terminal.wait(deadline=20) == 130
    check_over(terminal)


@pytest.mark.parametrize("home, kept", [("{top}", True), ("{top}/../link", True), ("{top}/..", False),
                                        ("/where/it/was/before", False), (None, False)])
def test_build_folder_of_another_place_is_made_anew(checkout, home, kept):
    (checkout.parent / "link").symlink_to(checkout)
    folder = checkout / "build" / "linux"
    line = f"CMAKE_HOME_DIRECTORY:INTERNAL={home.format(top=checkout)}\n" if home else ""
    (folder / "CMakeCache.txt").write_text(f"CMAKE_GENERATOR:INTERNAL=Ninja\n{line}CMAKE_PLATFORM_INFO:INTERNAL=1\n")
    # What stands there when cmake configures.
    write_script(checkout / "path" / "cmake", "ls build/linux >>seen 2>/dev/null; exit 0")
    result = subprocess.run(["bash", "-c", ". cmake/setup.sh; build_preset linux all"], cwd=checkout, text=True,
                            env={**os.environ, **first_in_path(checkout)}, capture_output=True, timeout=20)
    assert result.returncode == 0, result.stderr
    assert ("CMakeCache.txt" in (checkout / "seen").read_text()) == kept
    assert ("made anew" in result.stdout) != kept


def test_folder_without_cache_is_left_alone(checkout):
    subprocess.run(["bash", "-c", ". cmake/setup.sh; renew_moved_build build/linux"], cwd=checkout, check=True)
    assert (checkout / "build" / "linux" / "bin" / "offsetctl").exists()


@pytest.mark.parametrize("deaths", [1, 3])
def test_a_display_that_dies_is_named_and_replaced(tmp_path, deaths):
    """What the display's end has let fail runs again on another one of its number; after the third the run ends."""
    shutil.copy(TOP / "tests" / "e2e" / "run.py", tmp_path)
    (tmp_path / "wine").mkdir()
    (tmp_path / "test_window.py").write_text(
        "import os, pathlib, signal, socket, struct\n"
        "def test_window():\n"
        "    runs = pathlib.Path(__file__).with_name('runs')\n"
        "    runs.write_text((runs.read_text() if runs.exists() else '') + 'x')\n"
        f"    if len(runs.read_text()) <= {deaths}:\n"
        "        server = socket.socket(socket.AF_UNIX)\n"
        "        server.connect('/tmp/.X11-unix/X' + os.environ['DISPLAY'][1:])\n"
        "        peer = server.getsockopt(socket.SOL_SOCKET, socket.SO_PEERCRED, 12)\n"
        "        os.kill(struct.unpack('3i', peer)[0], signal.SIGKILL)\n"
        "        assert False, 'no window'\n")
    script = (f". {TOP}/cmake/setup.sh; start_display && {sys.executable} run.py --wine --workers 1; stop_wine_and_display;"
              ' rm -f "/tmp/.X11-unix/X${DISPLAY#:}" "/tmp/.X${DISPLAY#:}-lock"')
    environment = {**os.environ, "WINEPREFIX": str(tmp_path / "wine")}
    result = subprocess.run(["bash", "-c", script], cwd=tmp_path, env=environment, capture_output=True, text=True, timeout=60)
    assert (tmp_path / "runs").read_text() == "x" * min(deaths + 1, 3), result.stdout + result.stderr
    assert result.stdout.count("(Xvfb) has died") == deaths
    assert ("test_window.py: 1 passed" in result.stdout) == (deaths < 3) and "no window" not in result.stdout
    assert ("failed: test_window.py (not run)" in result.stdout) == (deaths == 3)
