"""Real processes for the end-to-end tests: the stand-in simulator with the built plug-in file, separate
client programs, the real window. Everything waits for conditions with a deadline."""
import os
import queue
import shutil
import subprocess
import threading
import time
from pathlib import Path

import pytest

TOP = Path(__file__).resolve().parents[2]
DEADLINE = 60  # seconds; a hang, not a slow machine, reaches it


def pytest_configure(config):
    config.addinivalue_line("markers", "wine: needs the Windows builds and Wine")
    config.addinivalue_line("markers", "slow: takes half a minute, left out by ./test quick")


def wait_for(what, condition, deadline=DEADLINE):
    """Calls condition until it is true; fails naming `what` at the deadline."""
    end = time.monotonic() + deadline
    while time.monotonic() < end:
        result = condition()
        if result:
            return result
        time.sleep(0.02)
    raise AssertionError(f"not within {deadline} s: {what}")


class Build:
    """One build preset: where its programs are and how they are started."""

    def __init__(self, preset):
        self.preset = preset
        self.wine = preset.startswith("win")
        self.bin = TOP / "build" / preset / "bin"
        self.plugin = TOP / "build" / preset / "plugin" / ("win.xpl" if self.wine else "lin.xpl")

    def command(self, program, *arguments):
        if self.wine:
            return ["wine", str(self.bin / f"{program}.exe"), *map(str, arguments)]
        return [str(self.bin / program), *map(str, arguments)]

    def path(self, path):
        """A path as a program of this build takes it."""
        return "Z:" + str(path).replace("/", "\\") if self.wine else str(path)

    def run(self, program, *arguments, timeout=DEADLINE):
        return subprocess.run(self.command(program, *arguments), capture_output=True, text=True, timeout=timeout)


class Standin:
    """A running stand-in simulator, driven through its console."""

    def __init__(self, build, root, *options, plugin=None):
        self.build = build
        self.root = root
        command = build.command(
            "standin", "--plugin", build.path(plugin or build.plugin), "--root", build.path(root), *options)
        self.process = subprocess.Popen(
            command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, bufsize=1)
        self.answers = queue.Queue()
        self.errors = []
        self.readers = [threading.Thread(target=self._read_answers, daemon=True),
                        threading.Thread(target=self._read_errors, daemon=True)]
        for reader in self.readers:
            reader.start()

    def _read_answers(self):
        for line in self.process.stdout:
            self.answers.put(line.rstrip("\r\n"))
        self.answers.put(None)

    def _read_errors(self):
        for line in self.process.stderr:
            self.errors.append(line.rstrip("\r\n"))

    def say(self, line, deadline=DEADLINE):
        """One console line; returns its whole answer."""
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()
        answer = self.answers.get(timeout=deadline)
        assert answer is not None, f"the stand-in ended at '{line}': {self.errors[-10:]}"
        return answer

    def ask(self, line):
        """One console line that must succeed; returns what follows `ok`."""
        answer = self.say(line)
        assert answer == "ok" or answer.startswith("ok "), f"{line}: {answer}"
        return answer[3:]

    def number(self, name):
        return float(self.ask(f"get {name}"))

    @property
    def folder(self):
        return self.root / "Resources" / "plugins" / "TAVRIX"

    def log(self, name="TAVRIX.txt"):
        path = self.folder / name
        return path.read_text(errors="replace") if path.exists() else ""

    def wait_log(self, text):
        wait_for(f"log line '{text}'", lambda: text in self.log())

    def quit(self, expect=0):
        started = time.monotonic()
        if self.process.poll() is None:
            try:
                self.say("quit")
            except (AssertionError, BrokenPipeError):
                pass
        status = self.process.wait(timeout=DEADLINE)
        if expect is not None:
            assert status == expect, f"exit status {status}: {self.errors[-10:]}"
        return time.monotonic() - started

    def end(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait(timeout=DEADLINE)


@pytest.fixture
def start(request, tmp_path):
    """start(build, *options) -> Standin; whatever still runs at the end of the test is ended."""
    running = []

    def begin(build, *options, root=None, **more):
        standin = Standin(build, root or tmp_path / f"X-Plane {len(running)}", *options, **more)
        running.append(standin)
        return standin

    yield begin
    for standin in running:
        standin.end()


@pytest.fixture
def begin_process():
    """begin_process(words...) -> a process of the test with pipes to and from it; ended with the test."""
    running = []

    def begin(words):
        process = subprocess.Popen(words, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        running.append(process)
        return process

    yield begin
    for process in running:
        if process.poll() is None:
            process.kill()
        process.communicate(timeout=DEADLINE)


@pytest.fixture(scope="session")
def linux():
    return Build("linux")


@pytest.fixture(scope="session")
def win32():
    build = Build("win32")
    if not shutil.which("wine"):
        pytest.fail("wine is missing: ./test installs it")
    return build


@pytest.fixture(scope="session")
def win64():
    return Build("win64")


@pytest.fixture(autouse=True)
def wine_environment(monkeypatch):
    monkeypatch.setenv("WINEDEBUG", os.environ.get("WINEDEBUG", "-all"))
