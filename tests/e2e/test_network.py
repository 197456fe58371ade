"""offsetctl and plain clients against the network server of the real plug-in on this computer."""
import json
import re
import socket
import struct
import subprocess
import threading
import time

import pytest

from conftest import wait_for
from network import (PORT, Client, DroppingProxy, ScriptedServer, block_frame, change_frame, frame, request,
                     write_record)

SETTINGS = "[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\n"
ELSEWHERE = "127.0.0.2"  # another address of this computer, for servers and proxies of the tests


@pytest.fixture(params=["linux", pytest.param("win32", marks=pytest.mark.wine)])
def build(request):
    return request.getfixturevalue(request.param)


@pytest.fixture
def serve(start, tmp_path):
    """serve(build, *options) -> Standin whose network server accepts clients."""
    def begin(build, *options):
        root = tmp_path / "X-Plane network"
        folder = root / "Resources" / "plugins" / "TAVRIX"
        folder.mkdir(parents=True)
        (folder / "TAVRIX.ini").write_text(SETTINGS)
        standin = start(build, *options, root=root)
        if "0" in options:
            standin.ask("frames 70")
        standin.wait_log("TAVFARNET->Waiting for clients.....0")
        return standin
    return begin


def still(serve, build):
    return serve(build, "--rate", "0", "--flight", "none")


def offsetctl(linux, *words, expect=0, host="127.0.0.1"):
    result = linux.run("offsetctl", *words, "--net", host)
    assert result.returncode == expect, result.stdout + result.stderr
    return result.stdout if expect == 0 else result.stderr


def test_reads_what_the_simulator_shows(serve, build, linux):
    standin = still(serve, build)
    standin.ask("set sim/cockpit/autopilot/heading_mag 90")
    standin.ask("frames 40")
    items = json.loads(offsetctl(linux, "read", "0x07CC:u16", "0x3304:u32", "0x1FFFF:u8", "--json"))
    assert [item["value"] for item in items] == [16384, 0x50000008, 0]
    # Names that this client has never asked for are there too: everything comes in the bursts.
    folder = offsetctl(linux, "read", "0x3E00:text:256")
    assert "X-Plane network" in folder
    standin.quit()


def test_writes_reach_the_simulator(serve, build, linux):
    standin = still(serve, build)
    offsetctl(linux, "write", "com1=118.70")
    standin.ask("frames 2")
    assert standin.number("sim/cockpit/radios/com1_freq_hz") == 11870
    offsetctl(linux, "write", "0x07CC:u16=0x2000")
    offsetctl(linux, "write", "0x12345:u8=7", "--confirm")  # nobody's offset: no frame has to show it
    standin.ask("frames 2")
    assert abs(standin.number("sim/cockpit/autopilot/heading_mag") - 45) < 0.05
    # A value that stands there already needs no echo.
    offsetctl(linux, "write", "0x12345:u8=7", "--confirm")
    refused = offsetctl(linux, "write", "0x0238:u8=7", expect=2)
    assert "0x0238" in refused
    standin.quit()


def test_long_write_and_dump(serve, linux, tmp_path):
    standin = still(serve, linux)
    pattern = bytes((i * 7 + (i >> 8)) & 0xFF for i in range(20000))
    offsetctl(linux, "write", f"0x18003:hex:20000=hex:{pattern.hex()}", "--confirm")
    assert "covers 0x16020, which is read-only" in offsetctl(linux, "write", "0x1601F:u32=1", expect=2)
    offsetctl(linux, "dump", tmp_path / "memory")
    memory = (tmp_path / "memory").read_bytes()
    assert len(memory) == 0x20000 and memory[0x18003:0x18003 + 20000] == pattern
    standin.quit()


def test_watch_and_monitor(serve, linux):
    standin = still(serve, linux)
    watch = subprocess.Popen(linux.command("offsetctl", "watch", "0x12000:u16", "--rate", "50", "--count", "3"),
                             stdout=subprocess.PIPE, text=True)
    assert watch.stdout.readline() == "0x12000 = 0 (00 00)\n"
    for value in (17, 4711):
        offsetctl(linux, "write", f"0x12000:u16={value}")
        assert watch.stdout.readline().startswith(f"0x12000 = {value} ")
    assert watch.wait(timeout=20) == 0
    table = offsetctl(linux, "monitor", "--seconds", "0.5")
    assert table.startswith("TAVRIX  network, 127.0.0.1") and "Heading" in table
    standin.quit()


def test_watch_ends_when_the_server_goes(serve, linux):
    standin = still(serve, linux)
    watch = subprocess.Popen(linux.command("offsetctl", "watch", "0x12000:u16"), stdout=subprocess.PIPE,
                             stderr=subprocess.PIPE, text=True)
    watch.stdout.readline()
    standin.quit()
    _, errors = watch.communicate(timeout=20)
    assert watch.returncode == 1 and "closed the connection" in errors


@pytest.mark.parametrize("words", [["read", "ias"], ["write", "gear=0"], ["dump", "/nowhere"], ["monitor"],
                                   ["watch", "ias"]])
def test_without_a_server(linux, words):
    started = time.monotonic()
    assert "no server at 127.0.0.2" in offsetctl(linux, *words, expect=1, host=ELSEWHERE)
    assert time.monotonic() - started < 5


@pytest.mark.parametrize("words, told", [(["read", "ias"], "1 of 8 blocks"), (["dump", "/nowhere"], "1 of 8 blocks"),
                                         (["write", "gear=0"], "does not take the write")])
def test_a_server_that_shows_too_little(linux, words, told):
    server = ScriptedServer(ELSEWHERE)
    try:
        client = subprocess.Popen(linux.command("offsetctl", *words, "--net", ELSEWHERE, "--timeout", "1.5"),
                                  stderr=subprocess.PIPE, text=True)
        started = time.monotonic()
        wait_for("the connection", lambda: server.accepted)
        server.send(block_frame(bytes(0x20000), 3))
        _, errors = client.communicate(timeout=20)
        assert client.returncode == 1 and told in errors, errors
        assert time.monotonic() - started < 4
    finally:
        server.close()


def test_rolling_blocks_mend_a_lost_change(linux):
    server = ScriptedServer(ELSEWHERE)
    memory = bytearray(0x20000)
    watch = subprocess.Popen(linux.command("offsetctl", "watch", "0x0330:u16", "0x10330:u8", "--net", ELSEWHERE,
                                           "--rate", "200"), stdout=subprocess.PIPE, text=True)
    try:
        wait_for("the connection", lambda: server.accepted)
        outsider = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        outsider.bind(("127.0.0.3", 0))
        outsider.sendto(block_frame(b"\xEE" * 0x20000, 0), server.accepted[0][1])  # not from the server
        server.send(*(block_frame(memory, index) for index in (7, 0, 1, 2, 3, 4, 6, 5)))
        assert [watch.stdout.readline() for _ in range(2)] == ["0x0330 = 0 (00 00)\n", "0x10330 = 0 (00)\n"]
        server.send(change_frame((0x10330, 5)), change_frame((0x0330, 1))[:-1], b"", b"\x67" * 9)
        assert watch.stdout.readline() == "0x10330 = 5 (05)\n"
        # The change of 0x0330 was broken on its way, as if it had been lost: its block comes around.
        memory[0x0330], memory[0x10330] = 1, 5
        server.send(frame(14, bytes(0x4000), 0x1A2B), block_frame(memory, 0))
        assert watch.stdout.readline() == "0x0330 = 1 (01 00)\n"
        outsider.close()
    finally:
        server.close()
        watch.communicate(timeout=20)


def test_a_fifth_of_the_datagrams_lost(serve, linux):
    standin = serve(linux)
    proxy = DroppingProxy(ELSEWHERE, "127.0.0.1", 0.2)
    try:
        for value in range(1, 6):
            offsetctl(linux, "write", f"0x12000:u16={value}", "--confirm", "--timeout", "20", host=ELSEWHERE)
            shown = offsetctl(linux, "read", "0x12000:u16", "--timeout", "20", host=ELSEWHERE)
            assert shown.startswith(f"0x12000 = {value} ")
        assert proxy.dropped > 5 and proxy.passed > proxy.dropped
    finally:
        proxy.close()
    standin.quit()


def test_rules_for_what_a_client_sends(serve, build):
    standin = still(serve, build)
    client = Client().complete()

    def value():
        return client.read(0x12000, 4)

    two = request(write_record(0x12000, b"\1")) + request(write_record(0x12001, b"\2"))
    client.send(two)
    client.until("both frames of one send", lambda: value() == b"\1\2\0\0")
    # A frame in two parts is dropped, what follows in reads of its own is served.
    whole = request(write_record(0x12002, b"\3"))
    client.send(whole[:20])
    time.sleep(0.3)  # the server reads what is there: the parts must not meet in its buffer
    client.send(whole[20:])
    time.sleep(0.3)
    client.send(request(write_record(0x12003, b"\4")))
    client.until("the frame behind the split one", lambda: client.read(0x12003, 1) == b"\4")
    assert value() == b"\1\2\0\4"
    client.close()
    standin.quit()


@pytest.mark.parametrize("rate", [60, 15])
def test_a_client_that_waits_has_every_value_handed_over(serve, linux, rate):
    """The echo tells that the server has it, two steps of the frame counter that the simulator has it."""
    standin = serve(linux, "--rate", str(rate), "--flight", "none")
    standin.ask("frames 70")  # the write cycle begins a second after the start
    client = Client().complete()
    standin.ask("writes")

    def counter():
        return int.from_bytes(client.read(0x337E, 2), "little")

    for number in range(1, 21):
        wanted = bytes([number // 10 * 16 + number % 10, 0x18])
        client.send(request(write_record(0x034E, wanted)))
        client.until("the echo", lambda wanted=wanted: client.read(0x034E, 2) == wanted)
        seen = counter()
        client.until("two frames", lambda seen=seen: (counter() - seen) % 65536 >= 2)
    assert standin.ask("writes").split("; ") == [f"sim/cockpit/radios/com1_freq_hz={11800 + n}" for n in range(1, 21)]
    client.close()
    standin.quit()


def test_ninth_client_is_refused_until_a_place_is_free(serve, build, linux):
    standin = still(serve, build)
    clients = [Client().complete() for _ in range(8)]
    standin.wait_log("Maximum of clients reached 8")
    wait_for("the closed door", lambda: linux.run("offsetctl", "read", "0x3304:u32", "--net", "127.0.0.1",
                                                  "--timeout", "1").returncode == 1)
    assert "fewer than eight" in offsetctl(linux, "read", "0x3304:u32", expect=1)
    clients[3].send(request(write_record(0x12000, b"\x11")))
    for client in clients:  # a write by one is seen by all
        client.until("the echo", lambda client=client: client.read(0x12000, 1) == b"\x11")
    clients.pop().close()
    standin.wait_log("TAVFARNET->Release OK")
    wait_for("a free place", lambda: linux.run("offsetctl", "read", "0x12000:u8").returncode == 0)
    for client in clients:
        client.close()
    standin.quit()


def resources(pid):
    """Threads, open files and resident kilobytes of a process."""
    status = open(f"/proc/{pid}/status").read()
    files = len(subprocess.run(["ls", f"/proc/{pid}/fd"], capture_output=True, text=True).stdout.split())
    return [int(re.search(r"Threads:\s+(\d+)", status)[1]), files, int(re.search(r"VmRSS:\s+(\d+)", status)[1])]


def come_and_go(count):
    for _ in range(count):
        client = Client()
        client.send(request(write_record(0x12000, b"\1\2\3\4")))
        client.close()


@pytest.mark.slow
def test_200_connects_leave_nothing_behind(serve, build):
    standin = still(serve, build)
    pid = standin.process.pid

    def settled(clients):
        log = standin.log()  # the bursts end when everybody has left
        return (log.count("Client Creating thread No.") == clients and
                log.count("Creating burst thread OK") == log.count("Closing burst thread"))

    for client in [Client().complete() for _ in range(8)]:  # every place has been used once
        client.close()
    standin.wait_log("TAVFARNET->Release OK")
    wait_for("an empty table", lambda: settled(8))
    before = resources(pid)
    come_and_go(200)

    def unchanged():  # the lines about clients that come and go are limited by now
        same = resources(pid)[:2] == before[:2]
        time.sleep(0.5)
        return same and resources(pid)[:2] == before[:2]

    wait_for("the same threads and files", unchanged)
    assert standin.log().count("Client Creating thread No.") < 130
    after = resources(pid)
    assert after[2] - before[2] < 1024, f"kilobytes before and after: {before[2]}, {after[2]}"
    standin.quit()
