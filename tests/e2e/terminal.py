"""A program in a pseudo-terminal of its own, as a person starts it, and what it leaves behind."""
import fcntl
import os
import pty
import re
import signal
import struct
import subprocess
import termios
import threading
import time
import uuid
from pathlib import Path

from conftest import DEADLINE, wait_for

HIDE, SHOW, HOME, CLEAR = "\x1b[?25l", "\x1b[?25h", "\x1b[H", "\x1b[2J"


class Terminal:
    """Runs a command in a terminal of that size. Whatever it starts carries a mark, by which it is found again."""

    def __init__(self, command, columns=80, rows=24, **more):
        self.mark = f"TAVRIX_TEST_MARK={uuid.uuid4()}"
        name, value = self.mark.split("=")
        environment = {**os.environ, **more.pop("env", {}), name: value}
        self.master, self.slave = pty.openpty()
        self.resize(columns, rows)
        self.settings = termios.tcgetattr(self.slave)
        self.bytes = b""
        self.shown = threading.Event()  # cleared: a terminal that takes no output for a while
        self.shown.set()
        self.process = subprocess.Popen(
            command, stdin=self.slave, stdout=self.slave, stderr=self.slave, start_new_session=True,
            env=environment, preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0), **more)
        self.reader = threading.Thread(target=self._read, daemon=True)
        self.reader.start()

    def _read(self):
        while True:
            self.shown.wait()
            try:
                got = os.read(self.master, 65536)
            except OSError:
                return
            if not got:
                return
            self.bytes += got

    @property
    def text(self):
        return self.bytes.decode(errors="replace").replace("\r\n", "\n")

    @property
    def plain(self):
        """The text without escapes; blanks for moves to the right, which Wine writes for them."""
        moved = re.sub(r"\x1b\[(\d*)C", lambda match: " " * int(match[1] or 1), self.text)
        return re.sub(r"\x1b\[[0-9;?]*[A-Za-z]", "", moved)

    def resize(self, columns, rows):
        fcntl.ioctl(self.slave, termios.TIOCSWINSZ, struct.pack("HHHH", rows, columns, 0, 0))

    def wait_text(self, text, count=1):
        wait_for(f"'{text}' {count} times in the terminal: {self.text[-2000:]!r}",
                 lambda: self.seen(text) >= count or self.process.poll() is not None)
        assert self.seen(text) >= count, self.text[-2000:]

    def seen(self, text):
        return max(self.text.count(text), self.plain.count(text))

    def type(self, keys):
        os.write(self.master, keys.encode())

    def wait(self, deadline=DEADLINE):
        """The exit status; all output is there then: a mark that is written behind it has come."""
        status = self.process.wait(timeout=deadline)
        mark = b"<all output until here>"
        os.write(self.slave, mark)
        wait_for("the end of the output", lambda: mark in self.bytes)
        before, self.bytes = None, self.bytes.replace(mark, b"")
        while before != len(self.bytes):  # of Wine's own processes, which live on for a moment
            before = len(self.bytes)
            time.sleep(0.05)
        return status

    def left_over(self):
        """{process id: command line} of what runs with this terminal's mark."""
        found = {}
        for entry in Path("/proc").iterdir():
            try:
                if entry.name.isdigit() and self.mark.encode() in (entry / "environ").read_bytes().split(b"\0"):
                    line = (entry / "cmdline").read_bytes().replace(b"\0", b" ").decode(errors="replace")
                    found[int(entry.name)] = line
            except OSError:  # it has ended meanwhile, or is another user's
                pass
        return found

    def check_restored(self):
        """The terminal is as it was: settings, cursor visible, nothing but text after that."""
        assert termios.tcgetattr(self.slave) == self.settings
        rest = self.text
        if HIDE in rest:
            rest = rest[rest.rindex(HIDE) + len(HIDE):]
            assert SHOW in rest, f"the cursor stays hidden: {rest!r}"
            rest = rest[rest.rindex(SHOW) + len(SHOW):]
            assert "\x1b" not in rest, repr(rest)

    def check_nothing_left(self):
        wait_for(f"the end of {self.left_over()}", lambda: not self.left_over())

    def end(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait(timeout=DEADLINE)
        for process in self.left_over():
            os.kill(process, signal.SIGKILL)
        os.close(self.slave)
        os.close(self.master)


def check_fits(text, columns, rows):
    """No table scrolls the terminal or wraps a line; only the escapes that we know. Returns the tables."""
    rest = re.sub("|".join(map(re.escape, (HIDE, SHOW, CLEAR))), "", text)
    tables = rest.split(HOME)[1:]
    assert tables
    for table in tables:
        assert "\x1b" not in table, repr(table)
        assert table.count("\n") <= rows - 1, f"{rows} lines: {table}"
        assert all(len(line) < columns for line in table.split("\n")), f"{columns} columns: {table}"
    return tables
