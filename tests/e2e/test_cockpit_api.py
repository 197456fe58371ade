"""The web cockpit's interface: a real server before the stand-in with the plug-in, asked as browsers, scripts and
attackers ask."""
import json
import os
import random
import resource
import shutil
import socket
import statistics
import struct
import subprocess
import threading
import time

import pytest

from cockpit import Cockpit, Events
from conftest import DEADLINE, wait_for
from network import BLOCK, Client, ScriptedServer, block_frame, change_frame, request, write_record

SETTINGS = "[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\n"
HOST = b"Host: 127.0.0.1:%d\r\n"


@pytest.fixture
def serve(tmp_path):
    """serve(build, *options) -> Cockpit, with folders of its own; ended at the end."""
    running = []

    def begin(build, *options):
        for name in ("panels", "recordings"):
            (tmp_path / name).mkdir(exist_ok=True)
        cockpit = Cockpit(build, "--panels", build.path(tmp_path / "panels"), "--recordings",
                          build.path(tmp_path / "recordings"), *options)
        running.append(cockpit)
        return cockpit

    yield begin
    for cockpit in running:
        cockpit.process.kill()
        cockpit.process.wait(timeout=DEADLINE)


@pytest.fixture
def fly(start, tmp_path):
    """fly(build, *options) -> a stand-in with the plug-in that serves."""
    def begin(build, *options):
        folder = tmp_path / "X-Plane" / "Resources" / "plugins" / "TAVRIX"
        folder.mkdir(parents=True, exist_ok=True)
        (folder / "TAVRIX.ini").write_text(SETTINGS)
        (folder / "TAVRIX.txt").unlink(missing_ok=True)
        standin = start(build, *options, root=tmp_path / "X-Plane")
        standin.wait_log("TAVFARNET->Waiting for clients")
        return standin
    return begin


@pytest.fixture
def scripted():
    """A server whose every datagram the test sends."""
    server = ScriptedServer("127.0.0.1")
    yield server
    server.close()


def begin_scripted(scripted, cockpit, memory=bytes(8 * BLOCK)):
    wait_for("the connection", lambda: scripted.accepted)
    scripted.send(*(block_frame(memory, index) for index in range(8)))
    cockpit.connected()


def test_values_and_writes(serve, fly, linux):
    cockpit = serve(linux)
    status = cockpit.status()
    assert status["source"] == "network 127.0.0.1" and not status["connected"] and status["age"] is None
    assert cockpit.ask("GET", "/api/values?names=heading")[0] == 503
    standin = fly(linux)
    cockpit.connected()
    entry, raw = cockpit.get("/api/values?names=heading,0x0330:u16")["values"]
    assert abs((entry["value"] - 250 + 180) % 360 - 180) < 40 and entry["unit"] == "deg" and entry["offset"] == 0x580
    assert raw["raw"] == raw["value"].to_bytes(2, "little").hex(" ").upper()
    pause, only, request_ = cockpit.put({"name": "pause", "value": True}, {"name": "indicator_pitch", "value": 3},
                                        {"name": "0x66C0:u32", "value": 77}, wait=5)
    assert (pause["value"], pause["written"], pause["confirmed"]) == (1, True, True)
    assert only["confirmed"] is None and request_["value"] == 77 and request_["confirmed"] is True
    assert standin.number("sim/time/paused") == 1
    cockpit.put({"name": "pause", "value": "off"}, wait=5)
    # Nothing of a request with a fault is written.
    status, _, refusal = cockpit.ask("PUT", "/api/values", {"values": [
        {"name": "pause", "value": 1}, {"name": "hedding", "value": 1}]})
    assert (status, refusal["where"], refusal["remedy"]) == (404, "values[1].name", "did you mean heading?")
    assert cockpit.value("pause") == 0 and standin.number("sim/time/paused") == 0
    assert cockpit.end() < 1


def test_a_change_comes_at_once(serve, fly, linux):
    cockpit = serve(linux)
    fly(linux)
    cockpit.connected()
    events = Events(cockpit, "/api/stream?names=0x66C0:u32,com1&rate=50")
    assert events.take()[0] == "status"
    first = events.take("values")[1]["values"]
    assert [entry["name"] for entry in first] == ["0x66C0:u32", "com1"]
    client = Client().complete()
    took = []
    for value in range(1, 41):
        sent = time.monotonic()
        client.send(request(write_record(0x66C0, struct.pack("<I", value))))
        while events.until("values", lambda data: any(e["offset"] == 0x66C0 for e in data["values"]))["values"][0]["value"] != value:
            pass
        took.append(time.monotonic() - sent)
        time.sleep(random.random() / 50)
    print(f"write to event: median {statistics.median(took) * 1000:.0f} ms, most {max(took) * 1000:.0f} ms")
    assert statistics.median(took) < 0.15
    client.close()
    began = time.monotonic()
    status = [events.take("status") for _ in range(4)]
    assert 2 < status[-1][2] - began < 6 and status[0][1]["clients"] == 1
    events.close()
    wait_for("the stream's end", lambda: cockpit.status()["clients"] == 0)


def test_finds_what_moves_and_merges(serve, scripted, linux):
    cockpit = serve(linux)
    begin_scripted(scripted, cockpit)
    changes = Events(cockpit, "/api/changes?rate=5")
    values = Events(cockpit, "/api/stream?names=0x1000:u8&rate=1")
    values.take("values")
    changes.take("status")
    began = time.monotonic()
    for value in range(1, 101):
        scripted.send(change_frame((0x1000, value), (0x1FFFF, value)))
        time.sleep(0.01)
    moved = []
    while not moved or moved[-1][-1][2] != 100:
        moved.append(changes.take("changes")[1]["changes"])
    assert moved[0][0][:2] == [0x1000, 0] and moved[0][1][:2] == [0x1FFFF, 0] and 2 <= len(moved) <= 20
    assert all(later[0][1] == earlier[0][2] for earlier, later in zip(moved, moved[1:]))
    seen = [values.until("values", lambda data: True)["values"][0]["value"]]
    while seen[-1] != 100:
        seen.append(values.until("values", lambda data: True)["values"][0]["value"])
    assert len(seen) <= time.monotonic() - began + 2, "one event a second"


def test_connects_again_and_tells_at_once(serve, fly, linux):
    cockpit = serve(linux)
    standin = fly(linux)
    cockpit.connected()
    events = Events(cockpit, "/api/stream?names=activity")
    events.take("values")
    standin.quit()
    gone = time.monotonic()
    events.until("status", lambda data: not data["connected"])
    assert time.monotonic() - gone < 1
    assert cockpit.ask("GET", "/api/values?names=activity")[0] == 503
    fly(linux)
    events.until("status", lambda data: data["connected"])
    events.take("values")
    wait_for("what was said", lambda: len(cockpit.errors) >= 2)
    assert len(cockpit.errors) <= 3, cockpit.errors  # one line a reason, not one a second


def test_counts_losses(serve, scripted, linux):
    cockpit = serve(linux)
    begin_scripted(scripted, cockpit)
    other = bytearray(8 * BLOCK)
    other[BLOCK + 5] = 1
    time.sleep(0.4)  # the burst is over
    scripted.send(block_frame(other, 1))
    wait_for("the loss", lambda: cockpit.status()["lost"] == 1)
    assert cockpit.status()["frames"] == 9


def test_records_and_replays(serve, scripted, linux, tmp_path):
    cockpit = serve(linux)
    begin_scripted(scripted, cockpit)
    scripted.send(change_frame((0x1000, 9)))
    wait_for("the value", lambda: cockpit.value("0x1000:u8") == 9)
    assert cockpit.post("/api/recording", file="flight 1.tavrec")["recording"] == "flight 1.tavrec"
    assert cockpit.ask("POST", "/api/recording", {"file": "b"})[0] == 409
    assert cockpit.ask("POST", "/api/replay", {"file": "flight 1.tavrec"})[0] == 409
    for value in range(10, 31):
        scripted.send(change_frame((0x1000, value)))
        time.sleep(0.05)
    wait_for("the last value", lambda: cockpit.value("0x1000:u8") == 30)
    assert cockpit.post("/api/recording", file=None)["recording"] is None
    assert cockpit.ask("POST", "/api/recording", {"file": "flight 1.tavrec"})[0] == 409
    [entry] = cockpit.get("/api/recordings")["recordings"]
    data = (tmp_path / "recordings" / "flight 1.tavrec").read_bytes()
    assert entry["file"] == "flight 1.tavrec" and entry["bytes"] == len(data) and entry["modified"].endswith("Z")
    # The whole memory as it stood, then what came.
    assert data[:8] == b"TAVRIXR1" and data[8 + 12 + 6 + 0x1000] == 9
    assert data[8:].count(change_frame((0x1000, 20))) == 1
    changes = Events(cockpit, "/api/changes")
    status = cockpit.post("/api/replay", file="flight 1.tavrec", speed=0.5)
    assert status["source"] == "recording flight 1.tavrec" and status["connected"]
    assert status["replay"]["speed"] == 0.5 and 1 < status["replay"]["length"] < 10
    assert changes.take("changes")[1]["changes"][0][0] == 0x1000
    assert cockpit.ask("PUT", "/api/values", {"values": [{"name": "0x1000:u8", "value": 1}]})[0] == 409
    length = status["replay"]["length"]
    assert cockpit.post("/api/replay", position=length, playing=False)["replay"]["position"] == length
    wait_for("the end", lambda: cockpit.value("0x1000:u8") == 30)
    cockpit.post("/api/replay", position=0, speed=100, playing=False)
    wait_for("the beginning", lambda: cockpit.value("0x1000:u8") == 9)
    cockpit.post("/api/replay", playing=True)
    wait_for("the end again", lambda: cockpit.status()["replay"] == {
        "file": "flight 1.tavrec", "position": length, "length": length, "speed": 100, "playing": False})
    (tmp_path / "recordings" / "link.tavrec").symlink_to("flight 1.tavrec")
    for name in ("none", "link.tavrec"):
        assert cockpit.ask("POST", "/api/replay", {"file": name})[0] == 404
    (tmp_path / "recordings" / "no.tavrec").write_bytes(b"TAVRIXR1" + b"\1" * 100)
    assert cockpit.ask("POST", "/api/replay", {"file": "no.tavrec"})[0] == 400
    assert cockpit.post("/api/replay", file=None)["replay"] is None
    assert cockpit.ask("POST", "/api/replay", {"speed": 2})[0] == 409
    # The program can begin with it, and other ways to show it understand it.
    cockpit.end()
    replay = serve(linux, tmp_path / "recordings" / "flight 1.tavrec")
    assert replay.status()["replay"]["file"] == "flight 1.tavrec"
    wait_for("a value", lambda: replay.value("0x1000:u8") > 9)
    scripted.close()
    assert linux.run("offsetctl", "replay", tmp_path / "recordings" / "flight 1.tavrec", "--seconds", "0.1").returncode == 0


def test_tells_when_a_recording_ends_by_itself(serve, scripted, linux, tmp_path):
    cockpit = serve(linux)
    begin_scripted(scripted, cockpit)

    def stop():
        return cockpit.ask("POST", "/api/recording", {"file": None})

    def limit(size):
        resource.prlimit(cockpit.process.pid, resource.RLIMIT_FSIZE, (size, resource.RLIM_INFINITY))

    for size in (1000, 8 * BLOCK + 100):  # within the start; only when it is flushed
        limit(size)
        assert cockpit.ask("POST", "/api/recording", {"file": "stump"})[0] == 409
        assert not (tmp_path / "recordings" / "stump").exists()
    assert stop()[0] == 200 and cockpit.status()["recordingFault"] is None, "it never began"
    for name, harm in (("full", lambda path: limit(path.stat().st_size)), ("gone", lambda path: path.unlink()),
                       ("moved", lambda path: path.rename(tmp_path / "moved"))):
        limit(resource.RLIM_INFINITY)
        assert cockpit.post("/api/recording", file=name)["recordingFault"] is None
        harm(tmp_path / "recordings" / name)
        scripted.send(change_frame((0x1000, 1)))
        wait_for("the end of " + name, lambda: cockpit.status()["recording"] is None)
        fault = cockpit.status()["recordingFault"]
        assert name in fault
        status, _, refusal = stop()
        assert (status, refusal["error"], refusal["where"]) == (409, fault, "file") and refusal["remedy"]
        assert stop()[0] == 200 and cockpit.status()["recordingFault"] == fault
    limit(resource.RLIM_INFINITY)
    cockpit.post("/api/recording", file="last")
    (tmp_path / "recordings" / "last").unlink()
    assert stop()[0] == 409, "the stop looks for it, too"


def test_ctrl_c_closes_the_recording(serve, fly, linux, tmp_path):
    cockpit = serve(linux)
    fly(linux)
    cockpit.connected().post("/api/recording", file="a")
    stream = Events(cockpit, "/api/stream?names=ias")
    idle = socket.create_connection(("127.0.0.1", cockpit.port))
    stream.take("values")
    assert cockpit.end() < 1
    data, at = (tmp_path / "recordings" / "a").read_bytes(), 8
    while at < len(data):
        at += 12 + struct.unpack_from("<I", data, at + 8)[0]
    assert at == len(data)
    idle.close()


# --- What should not be possible ----------------------------------------------------------------------------------

REFUSED = {
    "garbage": (b"\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03\r\n\r\n", 400),
    "no version": (b"GET /\r\n\r\n", 400),
    "bad length": (b"PUT /api/values HTTP/1.1\r\n%sContent-Length: -1\r\n\r\n", 400),
    "two lengths": (b"PUT /api/values HTTP/1.1\r\n%sContent-Length: 1\r\nContent-Length: 2\r\n\r\nxx", 400),
    "no host": (b"GET /api/status HTTP/1.1\r\nConnection: close\r\n\r\n", 400),
    "foreign host": (b"GET /api/status HTTP/1.1\r\nHost: evil.example:8440\r\nConnection: close\r\n\r\n", 403),
    "foreign origin": (b"GET /api/status HTTP/1.1\r\n%sOrigin: http://evil.example\r\nConnection: close\r\n\r\n", 403),
    "no JSON": (b"PUT /api/values HTTP/1.1\r\n%sContent-Type: text/plain\r\nContent-Length: 2\r\nConnection: close\r\n\r\n{}", 400),
    "traversal": (b"GET /panels/../recordings/x HTTP/1.1\r\n%sConnection: close\r\n\r\n", 404),
    "coded traversal": (b"GET /panels/%%2e%%2e%%2frecordings%%2fx HTTP/1.1\r\n%sConnection: close\r\n\r\n", 404),
    "whole address": (b"GET http://127.0.0.1/ HTTP/1.1\r\n%sConnection: close\r\n\r\n", 400),
    "other coding": (b"PUT /api/values HTTP/1.1\r\n%sTransfer-Encoding: gzip, chunked\r\n\r\n0\r\n\r\n", 400),
    "no coding": (b"GET /api/status HTTP/1.1\r\n%sTransfer-Encoding: identity\r\n\r\n", 400),
    "trailer": (b"GET /api/status HTTP/1.1\r\nConnection: close\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n%s\r\n", 400),
    "long header": (b"GET / HTTP/1.1\r\n%sX: " + b"a" * 40000 + b"\r\n\r\n", 413),
    "many headers": (b"GET / HTTP/1.1\r\n%s" + b"X: a\r\n" * 10000 + b"\r\n", 413),
    "long target": (b"GET /" + b"a" * 40000 + b" HTTP/1.1\r\n%s\r\n", 413),
    "long body": (b"PUT /api/values HTTP/1.1\r\n%sContent-Length: 65537\r\n\r\n" + b"a" * 65537, 413),
    "long chunks": (b"PUT /api/values HTTP/1.1\r\n%sTransfer-Encoding: chunked\r\n\r\n" + (b"1000\r\n" + b"a" * 4096 + b"\r\n") * 20, 413),
}


def test_bad_requests_are_refused(serve, linux, tmp_path):
    cockpit = serve(linux)
    (tmp_path / "recordings" / "x").write_text("secret")
    for name, (data, expected) in REFUSED.items():
        data = data.replace(b"%s", HOST % cockpit.port).replace(b"%%", b"%")
        answer = cockpit.raw(data)
        head, _, body = answer.partition(b"\r\n\r\n")
        assert head.split()[1:2] == [str(expected).encode()], (name, answer[:200])
        assert set(json.loads(body)) == {"error", "where", "remedy"} and b"nosniff" in head, name
    chaos = random.Random(1)
    for _ in range(200):
        data = bytearray(b"PUT /api/values?names=ias HTTP/1.1\r\n" + HOST % cockpit.port + b"Content-Length: 9\r\n\r\n{\"a\":[1]}")
        for _ in range(chaos.randrange(1, 8)):
            data[chaos.randrange(len(data))] = chaos.randrange(256)
        with socket.create_connection(("127.0.0.1", cockpit.port)) as connection:
            connection.sendall(data)
    assert cockpit.status()["frames"] == 0 and cockpit.process.poll() is None


def test_token_guards_other_addresses(serve, linux):
    for options in (("--listen", "0.0.0.0"), ("--listen", "0.0.0.0", "--token", "short"), ("--listen", "a host"),
                    ("--token", "with a space")):
        ended = linux.run("offsetctl", "serve", "--port", "0", *options)
        assert ended.returncode == 2 and ended.stderr.startswith("offsetctl: "), ended
    cockpit = serve(linux, "--listen", "0.0.0.0", "--token", "a.long-token")
    assert cockpit.address.endswith("/?token=a.long-token")
    assert cockpit.ask("GET", "/api/status")[0] == 403 and cockpit.ask("GET", "/")[0] == 403
    assert cockpit.ask("GET", "/api/status", headers={"Authorization": "Bearer a.long-tokem"})[0] == 403
    assert cockpit.ask("GET", "/api/status", headers={"Authorization": "Bearer a.long-token"})[0] == 200
    status, headers, _ = cockpit.ask("GET", "/?token=a.long-token")
    assert (status, headers["Location"]) == (303, "/")
    cookie = headers["Set-Cookie"]
    assert cookie == "tavrix_token=a.long-token; SameSite=Strict; HttpOnly; Path=/"
    stream = Events(cockpit, "/api/changes", {"Cookie": cookie.split(";")[0]})
    assert stream.take()[0] == "status"


def test_slow_and_silent_clients(serve, scripted, linux):
    cockpit = serve(linux)
    begin_scripted(scripted, cockpit)
    slow = socket.create_connection(("127.0.0.1", cockpit.port))
    slow.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4096)
    slow.sendall(b"GET /api/changes?rate=50 HTTP/1.1\r\n" + HOST % cockpit.port + b"\r\n")
    half = socket.create_connection(("127.0.0.1", cockpit.port))
    half.sendall(b"GET /api/status HTT")
    reader = Events(cockpit, "/api/stream?names=0x2000:u8&rate=50")
    wait_for("both streams", lambda: cockpit.status()["clients"] == 2)
    before, value = cockpit.memory(), 0
    end = time.monotonic() + DEADLINE
    while cockpit.status()["clients"] > 1:  # some 60 KB of text with each event
        value = value % 250 + 1
        scripted.send(change_frame(*((0x2000 + i, value) for i in range(4000))))
        time.sleep(0.02)
        assert time.monotonic() < end, "the slow reader is never dropped"
    assert cockpit.memory() - before < 20000
    reader.until("values", lambda data: data["values"][0]["value"] == value)  # nobody else has waited
    half.settimeout(DEADLINE)
    assert half.recv(100) == b""  # half a request for 10 s
    slow.close()


def test_two_hundred_connections(serve, linux):
    cockpit = serve(linux)
    get = b"GET /api/status HTTP/1.1\r\n" + HOST % cockpit.port + b"\r\n"

    def connect(data=b""):
        connection = socket.create_connection(("127.0.0.1", cockpit.port), timeout=DEADLINE)
        if data:
            connection.sendall(data)
            assert connection.recv(9999).startswith(b"HTTP/1.1 200 ")
        return connection

    kept = connect(get)
    silent = [connect() for _ in range(300)]
    assert cockpit.ask("GET", "/api/status")[0] == 200, "the silent ones gave way"
    kept.sendall(get)
    assert kept.recv(9999).startswith(b"HTTP/1.1 200 ")
    began = time.monotonic()
    assert all(connection.recv(1) == b"" for connection in silent)
    assert time.monotonic() - began < 6, "a first request comes soon or never"
    stream = b"GET /api/changes HTTP/1.1\r\n" + HOST % cockpit.port + b"\r\n"
    held = [connect(stream) for _ in range(199)]
    wait_for("the streams", lambda: cockpit.status()["clients"] == 199)  # the last place changes hands
    held.append(connect(stream))
    answer = wait_for("the refusal", lambda: cockpit.raw(get))
    assert answer.startswith(b"HTTP/1.1 503 ") and b'"remedy"' in answer
    held.pop().close()
    wait_for("a free place", lambda: cockpit.ask("GET", "/api/status")[0] == 200)
    for connection in held + silent + [kept]:
        connection.close()


def test_other_ways_of_http(serve, linux):
    cockpit = serve(linux)
    with socket.create_connection(("127.0.0.1", cockpit.port), timeout=DEADLINE) as old:
        old.sendall(b"GET /api/changes HTTP/1.0\r\n" + HOST % cockpit.port + b"\r\n")
        text = b""
        while text.count(b"\n\n") < 2:
            text += old.recv(65536)
    head, _, body = text.partition(b"\r\n\r\n")
    assert b"chunked" not in head and all(part.startswith(b"event: status\ndata: {") for part in body.split(b"\n\n")[:2])
    whole = b"GET http://127.0.0.1:%d/api/status HTTP/1.1\r\nConnection: close\r\n" % cockpit.port + HOST % cockpit.port
    assert cockpit.raw(whole + b"\r\n").startswith(b"HTTP/1.1 200 ")


def test_all_addresses_of_both_kinds(serve, linux):
    cockpit = serve(linux, "--listen", "::", "--token", "a.long-token")
    assert cockpit.address == f"http://[::1]:{cockpit.port}/?token=a.long-token"
    for host in ("127.0.0.1", "127.0.0.2", "::1"):
        assert cockpit.ask("GET", "/api/status", headers={"Authorization": "Bearer a.long-token"}, host=host)[0] == 200


def test_memory_is_flat(serve, scripted, linux):
    cockpit = serve(linux)
    begin_scripted(scripted, cockpit)

    def connect(times):
        for i in range(times):
            if i % 4 == 0:
                stream = Events(cockpit, "/api/stream?names=ias,heading,com1")
                stream.take("values")
                stream.close()
            elif i % 4 == 1:
                cockpit.raw(b"x\r\n\r\n")
            else:
                cockpit.get("/api/values?names=ias")
        wait_for("the streams' ends", lambda: cockpit.status()["clients"] == 0)
        return cockpit.memory()

    first = connect(500)
    last = connect(int(os.environ.get("TAVRIX_CONNECTS", 1500)))
    print(f"resident: {first} KB after 500 connections, {last} KB at the end")
    assert last - first < 2000


def test_writes_of_many_at_once(serve, fly, linux):
    cockpit = serve(linux)
    fly(linux)
    cockpit.connected()
    told = []

    def write(place):
        told.append(cockpit.put({"name": f"0x{0x66C0 + place:X}:u8", "value": place + 1}, wait=5)[0])

    writers = [threading.Thread(target=write, args=(place,)) for place in range(20)]
    for writer in writers:
        writer.start()
    for writer in writers:
        writer.join(timeout=DEADLINE)
    assert len(told) == 20 and all(entry["confirmed"] for entry in told), told
    assert cockpit.value("0x66C0:hex:20") == " ".join(f"{i + 1:02X}" for i in range(20))


def test_missing_port_is_told(serve, linux):
    cockpit = serve(linux)
    ended = linux.run("offsetctl", "serve", "--port", cockpit.port)
    assert ended.returncode == 1 and "choose another --port" in ended.stderr
    assert linux.run("offsetctl", "serve", "--local").returncode == 2


@pytest.mark.wine
def test_local_window(serve, fly, win32, tmp_path):
    cockpit = serve(win32)
    assert cockpit.status()["source"] == "local window" and not cockpit.status()["connected"]
    standin = fly(win32)
    cockpit.connected()
    events = Events(cockpit, "/api/stream?names=pause,activity")
    events.take("values")
    assert cockpit.post("/api/recording", file="w.tavrec")["recording"] == "w.tavrec"
    [entry] = cockpit.put({"name": "pause", "value": True}, wait=5)
    assert entry["confirmed"] is True
    events.until("values", lambda data: any(e["name"] == "pause" and e["value"] == 1 for e in data["values"]))
    assert standin.number("sim/time/paused") == 1
    cockpit.post("/api/recording", file=None)
    cockpit.post("/api/replay", file="w.tavrec")
    wait_for("the recorded pause", lambda: cockpit.value("pause") == 1)
    cockpit.post("/api/replay", file=None)
    cockpit.connected()
    standin.quit()
    wait_for("the loss", lambda: not cockpit.status()["connected"])
