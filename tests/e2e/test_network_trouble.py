"""What the network does to the plug-in, and what it must not do to the simulator: links that stand still, name
servers that are silent, clients that never pause."""
import json
import os
import socket
import struct
import subprocess
import sys
import time
from pathlib import Path

import pytest

from conftest import wait_for
from network import Client, request, silent_resolver, write_record

SETTINGS = "[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\n"
# What disable sleeps by design, with everything running, and one second for all the rest.
STATED_SLEEPS = 0.6
IN_TIME = 1.0 + STATED_SLEEPS

pytestmark = pytest.mark.skipif(os.geteuid() != 0, reason="networks and mounts of one's own need root")


def on_another_network(scenario, build, root):
    result = subprocess.run(
        ["unshare", "-n", sys.executable, str(Path(__file__).with_name("other_network.py")), scenario, build.preset,
         str(root)], capture_output=True, text=True, timeout=120)
    assert result.returncode == 0, result.stdout + result.stderr
    return json.loads(result.stdout.splitlines()[-1])


def test_a_link_that_stands_still_holds_nobody_up(linux, tmp_path):
    measured = on_another_network("stall", linux, tmp_path)
    assert measured["disable"] < IN_TIME, measured
    assert measured["frames"] > 50, measured


def test_eight_clients_that_never_pause_over_small_segments(linux, tmp_path):
    measured = on_another_network("flood", linux, tmp_path)
    assert measured["served"] == measured["sent"] and measured["last"] == [3000] * 8
    assert measured["simulator"] == [11870, 3000], measured


@pytest.fixture
def unanswered(tmp_path):
    server, command = silent_resolver(tmp_path)
    yield command
    server.close()


@pytest.fixture(params=["linux", pytest.param("win32", marks=pytest.mark.wine)])
def build(request):
    return request.getfixturevalue(request.param)


def test_a_silent_name_server_holds_nobody_up(start, build, unanswered, tmp_path, monkeypatch):
    root = tmp_path / "X-Plane"
    folder = root / "Resources" / "plugins" / "TAVRIX"
    folder.mkdir(parents=True)
    (folder / "TAVRIX.ini").write_text(SETTINGS)
    command = build.command
    monkeypatch.setattr(build, "command", lambda *words: unanswered + command(*words))
    standin = start(build, "--tolerant", root=root)
    standin.wait_log("TAVFARNET->Waiting for clients.....0")
    monkeypatch.undo()

    # Three at once, each from an address whose name is unknown: nobody waits for a name, his or another's.
    started = time.monotonic()
    clients = [Client("127.0.0.1", source=f"127.0.0.{10 + i}") for i in range(3)]
    for client in clients:
        client.complete()
    assert time.monotonic() - started < 4, "the first data waited for a name"
    clients[0].send(request(write_record(0x12000, b"\7")))
    clients[2].until("the write", lambda: clients[2].read(0x12000, 1) == b"\7")

    started = time.monotonic()
    standin.ask("disable")
    assert time.monotonic() - started < IN_TIME + 0.5  # half a second is granted to the look-ups
    for client in clients:
        client.close()
    # The look-ups run on, and their code stays in memory for them: the plug-in starts again with it as it is.
    assert standin.say("reload") == "error: a module stays in memory"
    standin.wait_log("TAVFARNET->Waiting for clients.....0")
    again = Client("127.0.0.1", source="127.0.0.20").complete()
    again.send(request(write_record(0x12000, b"\x2A")))
    again.until("the write", lambda: again.read(0x12000, 1) == b"\x2A")
    again.close()
    assert standin.quit(expect=None) < 2 * IN_TIME
    breaches = [line for line in standin.errors if "breach" in line]
    assert breaches and all("stays in memory" in line for line in breaches), standin.errors


def test_clients_that_vanish_before_they_are_accepted(start, build, tmp_path):
    root = tmp_path / "X-Plane"
    folder = root / "Resources" / "plugins" / "TAVRIX"
    folder.mkdir(parents=True)
    (folder / "TAVRIX.ini").write_text(SETTINGS)
    standin = start(build, root=root)
    standin.wait_log("TAVFARNET->Waiting for clients.....0")
    # The pause after an acceptance lets some of them be gone when their turn comes.
    for _ in range(30):
        try:
            with socket.create_connection(("127.0.0.1", 65000), timeout=3) as passing:
                passing.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))  # closing resets
        except TimeoutError:
            pass
    client = Client("127.0.0.1").complete()
    assert "accept failed" not in standin.log()
    client.close()
    standin.quit()


def test_refusals_stand_in_the_log(start, linux, tmp_path):
    root = tmp_path / "X-Plane"
    folder = root / "Resources" / "plugins" / "TAVRIX"
    folder.mkdir(parents=True)
    (folder / "TAVRIX.ini").write_text(SETTINGS + "Allowed clients = 127.0.0.1\nNetwork writes = No\n"
                                                  "Status page = Off\n")
    standin = start(linux, root=root)
    standin.wait_log("TAVFARNET->Waiting for clients.....0")
    standin.wait_log("TAVRIX->Allowed clients: 127.0.0.1; network writes: No; status page: Off")
    assert not (root / "httpLog.txt").exists()
    with pytest.raises(OSError):
        socket.create_connection(("127.0.0.1", 4321), timeout=5)
    allowed = Client("127.0.0.1").complete()
    allowed.send(request(write_record(0x12000, b"\7")))
    standin.wait_log("Refused what 127.0.0.1 writes")
    stranger = socket.create_connection(("127.0.0.1", 65000), source_address=("127.0.0.5", 0), timeout=5)
    assert stranger.recv(10) == b""
    standin.wait_log("Refused 127.0.0.5")
    assert allowed.read(0x12000, 1) == b"\0"
    wait_for("the flight goes on", lambda: allowed.take(1) is not None)
    stranger.close()
    allowed.close()
    standin.quit()
