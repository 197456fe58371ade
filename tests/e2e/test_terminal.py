"""The live table in a terminal, as a person sees it."""
import os
import signal
import subprocess
import time

import pytest

from conftest import wait_for
from terminal import CLEAR, HIDE, HOME, SHOW, Terminal, check_fits

SETTINGS = "[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\n"


@pytest.fixture
def open_terminal():
    opened = []

    def begin(*words, **more):
        opened.append(Terminal(*words, **more))
        return opened[-1]

    yield begin
    for terminal in opened:
        terminal.end()


@pytest.fixture
def server(start, linux, tmp_path):
    folder = tmp_path / "X-Plane" / "Resources" / "plugins" / "TAVRIX"
    folder.mkdir(parents=True)
    (folder / "TAVRIX.ini").write_text(SETTINGS)
    standin = start(linux, root=tmp_path / "X-Plane")
    standin.wait_log("TAVFARNET->Waiting for clients.....0")
    return standin


@pytest.mark.parametrize("columns, rows, seconds", [(80, 24, 1.5), (100, 10, 0.3), (40, 24, 0.3), (200, 60, 0.05),
                                                    (5, 2, 0.3)])
def test_ends_by_itself_and_fits(server, linux, open_terminal, columns, rows, seconds):
    terminal = open_terminal(linux.command("offsetctl", "monitor", "--seconds", seconds, "--note", "At\33[2J 8440"), columns,
                             rows)
    assert terminal.wait(deadline=20) == 0
    terminal.check_restored()
    tables = check_fits(terminal.text, columns, rows)
    assert len(tables) >= (5 if seconds > 1 else 1)
    if columns >= 80:
        assert tables[-1].startswith("TAVRIX  network, 127.0.0.1")
        assert tables[-1].split("\n")[1].rstrip() == "At [2J 8440"
        assert ("Traffic" in tables[-1]) == (rows >= 24)
        assert ("(15 more lines in a higher window)" in tables[-1]) == (rows == 10)
    server.quit()


def test_ends_in_a_terminal_that_was_held(server, linux, open_terminal):
    terminal = open_terminal(linux.command("offsetctl", "monitor", "--seconds", "1", "--rate", "1000"))
    terminal.wait_text(HOME)
    terminal.shown.clear()
    # The terminal's buffer is soon full: the last second passes while a table is being printed.
    time.sleep(1.5)
    assert terminal.process.poll() is None
    terminal.shown.set()
    assert terminal.wait(deadline=10) == 0
    terminal.check_restored()
    server.quit()


@pytest.mark.parametrize("words", [("--rate", "0.01"), ("--seconds", "1000000"), ()])
@pytest.mark.parametrize("way", ["\x03", "q", "signal"])
def test_is_stopped(server, linux, open_terminal, words, way):
    terminal = open_terminal(linux.command("offsetctl", "monitor", *words))
    terminal.wait_text(HOME, 1 if "--rate" in words else 5)
    os.kill(terminal.process.pid, signal.SIGTERM) if way == "signal" else terminal.type("x" + way)
    assert terminal.wait(deadline=10) == 0
    terminal.check_restored()
    assert "offsetctl:" not in terminal.text
    server.quit()


def test_shows_a_pilots_units(server, linux):
    server.ask("set sim/flightmodel/position/elevation 1000")
    table = linux.run("offsetctl", "monitor", "--seconds", "1.5").stdout.split("TAVRIX  ")[-1]
    units = {line[:12].strip(): line[:38].split()[-1] for line in table.splitlines()[2:19] if line[:38].strip()}
    assert [units[name] for name in ("Altimeter", "Above sea", "Above ground", "IAS", "Ground speed", "Vertical",
                                     "QNH", "Nose up")] == ["ft", "ft", "ft", "kt", "kt", "ft/min", "hPa", "deg"]
    server.quit()


def test_goes_on_after_a_stop(server, linux, open_terminal):
    # A shell with job control, as people have it: Ctrl-Z gives the terminal back, fg goes on.
    terminal = open_terminal(["bash", "--norc", "--noediting", "-im"], env={"PS1": "prompt> "})
    terminal.wait_text("prompt> ")
    terminal.type(" ".join(linux.command("offsetctl", "monitor")) + "\r")
    terminal.wait_text(HOME, 3)
    terminal.type("\x1a")
    terminal.wait_text("Stopped")
    assert terminal.text.rindex(SHOW) > terminal.text.rindex(HIDE)
    terminal.type("fg\r")
    terminal.wait_text(CLEAR, 2)
    terminal.type("q")
    terminal.wait_text("prompt> ", 3)
    terminal.type("exit\r")
    assert terminal.wait(deadline=10) == 0
    terminal.check_restored()
    server.quit()


def test_the_terminal_is_closed(server, linux, open_terminal):
    terminal = open_terminal(linux.command("offsetctl", "monitor", "--rate", "0.01"))
    terminal.wait_text(HOME)
    os.killpg(terminal.process.pid, signal.SIGHUP)
    assert terminal.wait(deadline=10) == 0
    terminal.check_nothing_left()
    server.quit()


def test_follows_the_size_of_the_terminal(server, linux, open_terminal):
    terminal = open_terminal(linux.command("offsetctl", "monitor", "--rate", "50"), 80, 24)
    terminal.wait_text("Traffic", 2)
    terminal.resize(80, 10)
    terminal.wait_text("(15 more lines in a higher window)", 2)
    assert terminal.text.count(CLEAR) == 2
    check_fits(terminal.text[terminal.text.rindex(CLEAR):], 80, 10)
    terminal.type("\x03")
    assert terminal.wait(deadline=10) == 0


def test_server_goes_away(server, linux, open_terminal):
    terminal = open_terminal(linux.command("offsetctl", "monitor"))
    terminal.wait_text(HOME, 3)
    server.quit()
    assert terminal.wait(deadline=20) == 1
    terminal.check_restored()
    last = terminal.text.split(HOME)[-1]
    assert "the server at 127.0.0.1 has closed the connection" in last.splitlines()[-1]


def test_tells_of_a_silent_server(server, linux, open_terminal):
    running = {words: linux.command("offsetctl", *words) for words in (
        ("watch", "activity", "--timeout", "2"), ("record", server.root / "x", "--seconds", "4", "--timeout", "2"))}
    running = {words[0]: subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
               for words, command in running.items()}
    terminal = open_terminal(linux.command("offsetctl", "monitor", "--timeout", "2"))
    terminal.wait_text(HOME, 2)
    wait_for("the recording", lambda: (server.root / "x").exists())
    assert running["watch"].stdout.readline().startswith("activity = ")
    server.process.send_signal(signal.SIGSTOP)
    for words, told in (("watch", "nothing has come from the server"), ("record", "nothing came from the server")):
        _, errors = running[words].communicate(timeout=10)
        assert running[words].returncode == 1 and told in errors and errors.count("\n") == 1, errors
    terminal.wait_text("no news for ")
    server.process.send_signal(signal.SIGCONT)
    terminal.type("q")
    assert terminal.wait(deadline=10) == 0


def test_ends_when_nobody_reads(server, linux):
    started = time.monotonic()
    pipe = subprocess.Popen(linux.command("offsetctl", "watch", "com1"), stdout=subprocess.PIPE)
    assert pipe.stdout.readline().startswith(b"com1 = ")
    pipe.stdout.close()
    assert pipe.wait(timeout=10) == 0 and time.monotonic() - started < 10
    with open("/dev/full", "w") as full:
        for words in (["list"], ["read", "com1"], ["watch", "com1", "--count", "1"]):
            result = subprocess.run(linux.command("offsetctl", *words), stdout=full, stderr=subprocess.PIPE, text=True)
            assert result.returncode == 1 and "cannot be written" in result.stderr, words


@pytest.fixture
def local_server(start, win32, tmp_path):
    standin = start(win32, root=tmp_path / "X-Plane")
    standin.wait_log("Register KORLMain Call message OK")
    return standin


@pytest.mark.wine
def test_local_server_goes_away(local_server, win32, open_terminal):
    terminal = open_terminal(win32.command("offsetctl", "monitor"))
    terminal.wait_text("TAVRIX  local window server")
    local_server.quit()
    assert terminal.wait() == 1
    terminal.check_restored()
    assert "the server has gone" in terminal.plain


@pytest.mark.wine
def test_windows_ends_in_a_terminal_that_was_held(local_server, win32, open_terminal):
    terminal = open_terminal(win32.command("offsetctl", "monitor", "--seconds", "2"))
    terminal.wait_text("TAVRIX  local window server")
    console = [pid for pid, line in terminal.left_over().items() if "conhost" in line]
    assert len(console) == 1, terminal.left_over()
    os.kill(console[0], signal.SIGSTOP)
    time.sleep(2.5)  # the end falls into the output of a table, which stands still
    os.kill(console[0], signal.SIGCONT)
    assert terminal.wait(deadline=20) == 0
    terminal.check_restored()
    local_server.quit()
