"""Whatever bytes arrive at whatever port: the plug-in and the web cockpit, built with sanitizers, report nothing, serve
on and end in time."""
import os
import random
import socket
import time
import urllib.request
from pathlib import Path

import pytest

from cockpit import Cockpit
from conftest import TOP, Build, wait_for
from fault_tests import served
from network import Client, hex_file, request, write_record

pytestmark = pytest.mark.slow

SECONDS = 2  # for each port
# What is said properly at one port or another; a rare one keeps a browser's connection open.
SAID = [hex_file(TOP / "docs" / "examples" / "golden" / name) for name in (
    "network_read.request.hex", "network_write.request.hex", "network_subscribe.request.hex", "relay.request.hex",
    "relay.answer.hex", "announce.answer.hex")] + [
    request(*(write_record(0x12000 + 100 * i, bytes(90)) for i in range(40))), b"GET / HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n",
    b"GET /api/changes?rate=50 HTTP/1.1\r\nHost: 127.0.0.1\r\nAccept: text/event-stream\r\n\r\n",
    b'PUT /api/values HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: application/json\r\nContent-Length: 46\r\n\r\n'
    b'{"values": [{"name": "com1", "value": 119.3}]}']
REPORTS = ("Sanitizer", "runtime error:", "standin: breach", "Assertion")


def ports_of(process):
    """(kind, port) of every port that a process listens or receives at."""
    links = {os.path.realpath(path).rsplit("/", 1)[-1] for path in Path(f"/proc/{process.pid}/fd").iterdir()}
    rows = [(kind, line.split()) for kind in ("tcp", "udp")
            for line in Path(f"/proc/{process.pid}/net/{kind}").read_text().splitlines()[1:]]
    return {(kind, int(words[1].split(":")[1], 16)) for kind, words in rows
            if f"socket:[{words[9]}]" in links and words[3] in ("0A", "07")}


def spoilt(chance):
    data = bytearray(chance.choice(SAID) * chance.choice((1, 1, 1, 30)))
    for _ in range(chance.randrange(8)):
        at = chance.randrange(len(data))
        data[at:at + chance.choice((0, 1, 1, 2, 40))] = chance.randbytes(chance.choice((1, 1, 2, 60)))
    return bytes(data[:chance.choice((60000, 60000, chance.randrange(len(data)) + 1))])


def shout(kind, port):
    """Sends rubbish to a port and now and then waits for what comes back; returns how often it was taken."""
    chance, sent, end = random.Random(port), 0, time.monotonic() + SECONDS
    while time.monotonic() < end:
        with socket.socket(type=socket.SOCK_STREAM if kind == "tcp" else socket.SOCK_DGRAM) as speaker:
            speaker.settimeout(0.1)
            try:
                speaker.connect(("127.0.0.1", port))
                for _ in range(chance.randrange(1, 40)):
                    speaker.send(spoilt(chance))
                    sent += 1
                speaker.recv(1000)
            except OSError:
                pass  # closed on us, or silent
    return sent


def begin(start, root, mode):
    folder = root / "Resources" / "plugins" / "TAVRIX"
    folder.mkdir(parents=True)
    (folder / "TAVRIX.ini").write_text(f"[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\nTAVRIX2TAVRIX Client mode = {mode}\n")
    return start(Build("linux-asan"), "--planes", "5", root=root)


@pytest.mark.parametrize("mode, wanted", [("No", {("tcp", 65000), ("tcp", 4321), ("udp", 54942)}), ("Yes", {("udp", 54945)})])
def test_no_bytes_at_any_port_stop_the_plugin(start, tmp_path, monkeypatch, mode, wanted):
    monkeypatch.setenv("ASAN_OPTIONS", "detect_leaks=1:detect_odr_violation=0")
    standin = begin(start, tmp_path / "X-Plane", mode)
    wait_for(f"the ports {wanted}", lambda: ports_of(standin.process) == wanted)
    for kind, port in sorted(wanted):
        assert shout(kind, port) > 50, port
        standin.ask("frames 2")
    if mode == "No":
        assert served()
        client = Client().complete()
        client.send(request(write_record(0x1FF00, b"\x2A")))
        client.until("the write", lambda: client.read(0x1FF00, 1) == b"\x2A")
        client.close()
        with urllib.request.urlopen("http://127.0.0.1:4321/", timeout=5) as answer:
            assert b"TAVRIX" in answer.read()
    assert len(standin.log().splitlines()) < 400
    assert standin.quit(expect=None) < 20
    found = [line for line in standin.errors if any(word in line for word in REPORTS)]
    assert not found and standin.process.returncode == 0, standin.errors[-60:]


def test_no_bytes_stop_the_web_cockpit(start, tmp_path, monkeypatch):
    monkeypatch.setenv("ASAN_OPTIONS", "detect_leaks=1:detect_odr_violation=0")
    standin = begin(start, tmp_path / "X-Plane", "No")
    standin.wait_log("TAVFARNET->Waiting for clients.....0")
    cockpit = Cockpit(Build("linux-asan")).connected()
    ports = ports_of(cockpit.process)
    assert ("tcp", cockpit.port) in ports
    for kind, port in sorted(ports):
        assert shout(kind, port) > 50, port
        standin.ask("frames 2")
    assert cockpit.connected().put({"name": "0x1FF00:u8", "value": 42})[0]["confirmed"]
    assert cockpit.end() < 20 and cockpit.errors == []
    standin.quit()
