#!/usr/bin/python3
"""What the web cockpit costs with many browsers: the share of one core that `offsetctl serve` takes for 50 streams at
20 events a second, every value of which changes 60 times a second. bench/report.py takes these for docs/performance.md; in a
network of its own, or with port 65000 free:

  bench/cockpit_streams.py [SECONDS]"""
import json
import os
import selectors
import socket
import sys
import threading
import time
from pathlib import Path

TOP = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(TOP / "tests" / "e2e"))
from cockpit import Cockpit  # noqa: E402
from conftest import Build, wait_for  # noqa: E402
from network import BLOCK, ScriptedServer, block_frame, change_frame  # noqa: E402

STREAMS = 50


def cpu(process):
    """Seconds of processor time so far."""
    fields = Path(f"/proc/{process.pid}/stat").read_text().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def measure_streams(cockpit, names, seconds):
    """(share of one core, events a second of one stream, bytes a second of all) with these names."""
    streams, selector = [], selectors.DefaultSelector()
    for _ in range(STREAMS if names else 0):
        stream = socket.create_connection(("127.0.0.1", cockpit.port))
        stream.sendall(f"GET /api/stream?names={','.join(names)} HTTP/1.1\r\nHost: 127.0.0.1:{cockpit.port}\r\n\r\n".encode())
        stream.setblocking(False)
        selector.register(stream, selectors.EVENT_READ)
        streams.append(stream)
    wait_for("the streams", lambda: cockpit.status()["clients"] == len(streams))
    time.sleep(1)
    events = size = 0
    before, began = cpu(cockpit.process), time.monotonic()
    while time.monotonic() < began + seconds:
        for key, _ in selector.select(0.1):
            part = key.fileobj.recv(1 << 18)
            events += part.count(b"event: values")
            size += len(part)
    took = time.monotonic() - began
    used = cpu(cockpit.process) - before
    for stream in streams:
        stream.close()
    wait_for("no streams", lambda: cockpit.status()["clients"] == 0)
    return used / took, events / took / max(len(streams), 1), size / took


def measure(seconds):
    rows = [row for row in json.loads((TOP / "docs" / "offsets.json").read_text())["offsets"]
            if row["type"] in ("u8", "s8", "u16", "s16", "u32", "s32", "f32", "f64")]
    free = [f"0x{0x10000 + 4 * i:X}:s32" for i in range(500 - len(rows) if len(rows) < 500 else 0)]
    server, cockpit = ScriptedServer("127.0.0.1"), Cockpit(Build("linux"), "--net", "127.0.0.1")
    wait_for("the connection", lambda: server.accepted)
    server.send(*(block_frame(bytes(8 * BLOCK), index) for index in range(8)))
    cockpit.connected()
    ending = threading.Event()

    def change():
        due, value = time.monotonic(), 0
        while not ending.is_set():
            value = value % 250 + 1
            for first in range(0, len(places), 8000):
                server.send(change_frame(*((place, value) for place in places[first:first + 8000])))
            due = max(due + 1 / 60, time.monotonic())
            time.sleep(max(due - time.monotonic(), 0))

    places = sorted({row["offset"] for row in rows} | {0x10000 + 4 * i for i in range(500)})
    sender = threading.Thread(target=change, daemon=True)
    sender.start()
    names = [row["name"] for row in rows] + free
    figures = {}
    for count in (0, 75, 500):
        share, rate, size = measure_streams(cockpit, names[:count], seconds)
        figures |= {f"cockpit.{count}.share": 100 * share, f"cockpit.{count}.events": rate, f"cockpit.{count}.bytes": size / 1e6}
    ending.set()
    sender.join()
    cockpit.end()
    server.close()
    return figures


if __name__ == "__main__":
    for what, value in measure(float(sys.argv[1]) if len(sys.argv) > 1 else 10).items():
        print(f"{what}: {value:.1f}")
