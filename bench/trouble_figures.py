"""How long disable takes when the network is in trouble, and with much traffic: bench/report.py takes these for
docs/performance.md. Networks and mounts of one's own need root."""
import json
import os
import subprocess
import sys
import tempfile
import time
from pathlib import Path

from network_figures import MARK, TOP, begin

from conftest import Build, wait_for
from network import Client, request, silent_resolver, write_record

HAMMERS = 8
SLOTS_FIELD, SLOTS = 0xF004, 96  # how many traffic slots there are


def hammer(source):
    """A client that writes without a pause until its input ends, whatever becomes of its connection."""
    started = time.monotonic()
    client = Client(source=source).complete()
    print(time.monotonic() - started, flush=True)
    data = b"".join(request(write_record(MARK + i % 64 * 4, os.urandom(4))) for i in range(500))
    try:
        while True:
            client.send(data)
    except OSError:
        sys.stdin.read()


def timed_disable(standin):
    started = time.monotonic()
    standin.ask("disable")
    return time.monotonic() - started


def disable_without_names(folder):
    """(seconds until eight clients with unknown names have all their first data, seconds that disable takes)."""
    server, command = silent_resolver(folder)
    build, plain = Build("linux"), Build("linux").command
    build.command = lambda *words: command + plain(*words)
    standin = begin(build, folder / "X-Plane", "--tolerant")
    hammers = [subprocess.Popen([sys.executable, __file__, f"127.0.0.{10 + i}"], stdin=subprocess.PIPE,
                                stdout=subprocess.PIPE, text=True) for i in range(HAMMERS)]
    try:
        first = max(float(one.stdout.readline()) for one in hammers)
        standin.ask("frames 60")
        return first, timed_disable(standin)
    finally:
        for one in hammers:
            one.kill()
            one.communicate()
        standin.end()  # its code stays in memory for the look-ups, which disable has not waited for
        server.close()


def measure_silent(rounds):
    first, disable = [], []
    for _ in range(rounds):
        with tempfile.TemporaryDirectory() as folder:
            for times, took in zip((first, disable), disable_without_names(Path(folder))):
                times.append(took)
    return {"trouble.silent.first": max(first), "trouble.silent.disable": max(disable), "trouble.silent.rounds": rounds}


def measure_stall():
    with tempfile.TemporaryDirectory() as folder:
        result = subprocess.run(["unshare", "-n", sys.executable, str(TOP / "tests/e2e/other_network.py"), "stall", "linux",
                                 folder + "/X-Plane"], capture_output=True, text=True, timeout=120)
    assert result.returncode == 0, result.stdout + result.stderr
    return {"trouble.stall.disable": json.loads(result.stdout.splitlines()[-1])["disable"]}


def measure_slots(preset):
    """Disable while 96 traffic slots run."""
    with tempfile.TemporaryDirectory() as folder:
        standin = begin(Build(preset), Path(folder) / "X-Plane", "--flight", "none")
        try:
            client = Client().complete()
            standin.ask(f"planes {SLOTS + 1}")

            def all_there():
                client.take(0.05)
                return client.read(SLOTS_FIELD, 2) == SLOTS.to_bytes(2, "little")

            wait_for("96 slots", all_there)
            client.close()
            return {f"slots.disable.{preset}": timed_disable(standin)}
        finally:
            standin.quit(expect=None)


if __name__ == "__main__":
    hammer(sys.argv[1])
