"""Several hosts: network namespaces, each with an address of its own, joined by a bridge. Servers, remote clients
and client-mode instances run in them as on computers of a local network."""
import os
import re
import shutil
import struct
import subprocess
import sys
import time
from pathlib import Path

import pytest

from conftest import DEADLINE, TOP, wait_for
from network import hex_file

HELPER = Path(__file__).with_name("network.py")
LOSS = 0.2


def ip(*words, check=True):
    return subprocess.run(["ip", *words], capture_output=True, text=True, check=check)


class Host:
    """One namespace with a network card. It stands in for a build where programs are started."""

    def __init__(self, namespace, address):
        self.namespace, self.address = namespace, address

    def prefix(self):
        return ["ip", "netns", "exec", self.namespace]

    def on(self, build, **environment):
        """The build as it is run on this host."""
        settings = ["env", *(f"{key}={value}" for key, value in environment.items())] if environment else []
        copy = type(build)(build.preset)
        copy.command = lambda program, *words: self.prefix() + settings + build.command(program, *words)
        return copy

    def offsetctl(self, linux, *words, expect=0):
        result = self.on(linux).run("offsetctl", *words)
        assert result.returncode == expect, result.stdout + result.stderr
        return result.stdout if expect == 0 else result.stderr

    def card(self, state):
        ip("-n", self.namespace, "link", "set", "lan", state)


class Network:
    """A bridge in a namespace of its own and hosts 10.91.7.1, .2, ... on it."""

    def __init__(self):
        self.name = f"tavrix{os.getpid()}"
        self.hosts = []
        self.namespaces = []

    def add(self, name):
        ip("netns", "add", name)
        self.namespaces.append(name)
        ip("-n", name, "link", "set", "lo", "up")

    def build(self, count):
        middle = f"{self.name}-bridge"
        self.add(middle)
        ip("-n", middle, "link", "add", "bridge", "type", "bridge")
        ip("-n", middle, "link", "set", "bridge", "up")
        for number in range(1, count + 1):
            host = Host(f"{self.name}-{number}", f"10.91.7.{number}")
            self.add(host.namespace)
            ip("link", "add", "lan", "netns", host.namespace, "type", "veth", "peer", "name", f"to{number}",
               "netns", middle)
            ip("-n", host.namespace, "address", "add", f"{host.address}/24", "brd", "+", "dev", "lan")
            ip("-n", host.namespace, "link", "set", "lan", "up")
            ip("-n", middle, "link", "set", f"to{number}", "master", "bridge", "up")
            self.hosts.append(host)

    def remove(self):
        """Takes everything away, cards included, also when it was built in part."""
        for name in self.namespaces:
            for pid in ip("netns", "pids", name, check=False).stdout.split():
                subprocess.run(["kill", "-9", pid], check=False)
        for name in self.namespaces:
            ip("netns", "del", name, check=False)


@pytest.fixture
def hosts():
    """hosts(count) -> that many hosts."""
    if not shutil.which("ip"):
        pytest.fail("the program ip is missing: ./test installs it (package iproute2)")
    probe = subprocess.run(["unshare", "--net", "true"], capture_output=True, text=True)
    if probe.returncode != 0:
        pytest.skip(f"this system refuses network namespaces: {probe.stderr.strip()}")
    network = Network()

    def begin(count):
        network.build(count)
        return network.hosts

    yield begin
    network.remove()


@pytest.fixture
def place(start, tmp_path):
    """place(host, build, *options, client_mode=False) -> a running Standin with the host's address."""
    def begin(host, build, *options, client_mode=False, **environment):
        root = tmp_path / f"X-Plane {host.address}"
        folder = root / "Resources" / "plugins" / "TAVRIX"
        folder.mkdir(parents=True)
        (folder / "TAVRIX.ini").write_text(
            f"[TAVRIX SETTINGS]\nServer Address = {host.address}\n"
            f"TAVRIX2TAVRIX Client mode = {'Yes' if client_mode else 'No'}\n")
        standin = start(host.on(build, **environment), *options, root=root)
        standin.wait_log("mode active" if client_mode else "TAVFARNET->Waiting for clients.....0")
        return standin
    return begin


@pytest.fixture
def wine_prefix():
    """A Wine prefix whose server runs on one of the hosts: sockets belong to the server's network."""
    prefix = TOP / "build" / "wine-hosts"
    environment = {"WINEPREFIX": str(prefix), "WINEDEBUG": "-all", "WINEDLLOVERRIDES": "mscoree,mshtml="}
    if not (prefix / "system.reg").exists():
        subprocess.run(["wineboot", "-i"], env={**os.environ, **environment}, capture_output=True, timeout=180)
    finish = ["wineserver", "-k"]
    subprocess.run(finish, env={**os.environ, **environment}, capture_output=True, timeout=DEADLINE)
    yield environment
    subprocess.run(finish, env={**os.environ, **environment}, capture_output=True, timeout=DEADLINE)


def test_remote_clients(hosts, place, linux):
    server, near, far = hosts(3)
    standin = place(server, linux, "--flight", "none")
    assert near.offsetctl(linux, "--find", "--timeout", "10") == server.address + "\n"
    heard = subprocess.run(near.prefix() + [sys.executable, str(HELPER), "listen", near.address],
                           capture_output=True, text=True, timeout=DEADLINE)
    assert bytes.fromhex(heard.stdout) == hex_file(TOP / "docs/examples/golden/announce.answer.hex"), heard.stderr
    for client in (near, far):
        shown = client.offsetctl(linux, "read", "0x3304:u32", "--net", server.address)
        assert shown == f"0x3304 = {0x50000008} (08 00 00 50)\n"
    near.offsetctl(linux, "write", "com1=118.70", "--net", server.address)
    wait_for("the frequency", lambda: standin.number("sim/cockpit/radios/com1_freq_hz") == 11870)
    found = far.on(linux).run("offsetctl", "read", "com1", "--find")
    assert found.stdout.startswith("com1 = 118.70 MHz") and server.address in found.stderr
    # What one client writes, a watching one on another host sees.
    watch = subprocess.Popen(far.on(linux).command("offsetctl", "watch", "0x12000:u8", "--net", server.address,
                                                   "--count", "2"), stdout=subprocess.PIPE, text=True)
    assert watch.stdout.readline() == "0x12000 = 0 (00)\n"
    near.offsetctl(linux, "write", "0x12000:u8=9", "--net", server.address, "--confirm")
    assert watch.stdout.readline() == "0x12000 = 9 (09)\n"
    assert watch.wait(timeout=DEADLINE) == 0
    assert f"no server at {far.address}" in near.offsetctl(linux, "read", "ias", "--net", far.address, expect=1)
    standin.quit()


def test_no_server_announces_itself(hosts, linux):
    alone, = hosts(1)
    started = time.monotonic()
    assert "no server announces itself" in alone.offsetctl(linux, "--find", "--timeout", "1.5", expect=1)
    assert 1.4 < time.monotonic() - started < 5


def test_two_servers_are_found(hosts, place, linux):
    first, second, client = hosts(3)
    standins = [place(host, linux, "--flight", "none") for host in (first, second)]
    found = client.offsetctl(linux, "--find", "--timeout", "20")
    assert sorted(found.split()) == [first.address, second.address]
    assert re.search(rf'"address": "{re.escape(first.address)}"', client.offsetctl(linux, "--find", "--json"))
    for standin in standins:
        standin.quit()


def relay_record(linux, host, server, name, index, integer, real):
    record = name.encode().ljust(100, b"\0") + bytes([1, index, 0, 0])
    record += integer.to_bytes(4, "little", signed=True) + struct.pack("<fd", real, real)
    host.offsetctl(linux, "write", f"0x11125:hex:120=hex:{record.hex()}", "--net", server.address)


@pytest.mark.wine
def test_relay_to_two_client_mode_instances(hosts, place, linux, win32, wine_prefix):
    server, native, windows, client = hosts(4)
    sender = place(server, linux, "--flight", "none")
    native_receiver = place(native, linux, "--flight", "none", client_mode=True)
    windows_receiver = place(windows, win32, "--flight", "none", client_mode=True, **wine_prefix)
    receivers = [native_receiver, windows_receiver]
    for receiver in receivers:
        receiver.ask("frames 70")  # the receive thread starts with the first frame, the frame loop after a second
        receiver.ask("writes")
    altitude, radio = "sim/cockpit/autopilot/altitude", "sim/cockpit/radios/com1_freq_hz"
    relay_record(linux, client, server, altitude, 0, 0, 7300.0)
    for standin in [sender, *receivers]:
        wait_for(f"the altitude at {standin.root}", lambda standin=standin: standin.number(altitude) == 7300)
    relay_record(linux, client, server, radio, 0, 11865, 0)
    for standin in [sender, *receivers]:
        wait_for(f"the frequency at {standin.root}", lambda standin=standin: standin.number(radio) == 11865)
    for receiver in receivers:  # each record once: a receiver passes nothing on
        written = receiver.ask("writes").split("; ")
        assert [entry.split("=")[0] for entry in written] == [altitude, radio]
        assert "TAVFARNET->Waiting" not in receiver.log()
        receiver.quit()
    sender.quit()


@pytest.mark.slow
def test_a_client_that_vanishes_frees_its_place(hosts, place, linux):
    server, lost, other = hosts(3)
    standin = place(server, linux)
    watches = [subprocess.Popen(lost.on(linux).command("offsetctl", "watch", "ias", "--net", server.address),
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) for _ in range(8)]
    standin.wait_log("Maximum of clients reached 8")
    assert "no server" in other.offsetctl(linux, "read", "ias", "--net", server.address, expect=1)
    started = time.monotonic()
    lost.card("down")
    wait_for("a free place", lambda: "TAVFARNET->Release OK" in standin.log())
    assert time.monotonic() - started < 45
    assert other.offsetctl(linux, "read", "0x3304:u32", "--net", server.address).startswith("0x3304 = ")
    for watch in watches:  # they notice, too
        assert watch.wait(timeout=DEADLINE) == 1
    standin.quit()


def can_lose_packets(host):
    """Packet loss by the system, where its kernel has it."""
    return subprocess.run(["tc", "-n", host.namespace, "qdisc", "add", "dev", "lan", "root", "netem", "loss",
                           f"{LOSS * 100}%"], capture_output=True).returncode == 0 if shutil.which("tc") else False


def test_a_fifth_of_the_packets_lost(hosts, place, linux):
    server, between, client = hosts(3)
    standin = place(server, linux)
    reached, proxy = server.address, None
    if not can_lose_packets(server):
        reached = between.address
        proxy = subprocess.Popen(between.prefix() + [sys.executable, str(HELPER), "proxy", between.address,
                                                     server.address, str(LOSS)],
                                 stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        assert proxy.stdout.readline() == "ready\n"
    words = ("--net", reached, "--timeout", "30")
    for value in range(1, 5):
        client.offsetctl(linux, "write", f"0x12000:u16={value}", "--confirm", *words)
        assert client.offsetctl(linux, "read", "0x12000:u16", *words).startswith(f"0x12000 = {value} ")
    if proxy is not None:
        passed, dropped = map(int, proxy.communicate("")[0].split())
        assert 0.1 < dropped / (passed + dropped) < 0.3
    standin.quit()


@pytest.mark.wine
def test_windows_client_on_another_host(hosts, place, linux, win32, wine_prefix):
    server, client = hosts(2)
    standin = place(server, linux, "--flight", "none")
    windows = client.on(win32, **wine_prefix)
    written = windows.run("offsetctl", "write", "com1=119.20", "--confirm", "--net", server.address)
    assert written.returncode == 0, written.stderr
    wait_for("the frequency", lambda: standin.number("sim/cockpit/radios/com1_freq_hz") == 11920)
    read = windows.run("offsetctl", "read", "com1", "--net", server.address)
    assert read.stdout.startswith("com1 = 119.20 MHz"), read.stderr
    assert windows.run("offsetctl", "--find").stdout.strip() == server.address
    standin.quit()


def library(host, program, *words):
    """A client library's program on the host: a line in, a line out."""
    environment = {**os.environ, "PYTHONPATH": str(TOP / "clients/python")}
    return subprocess.Popen(host.prefix() + [str(program), *words], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
                            bufsize=1, env=environment)


ALIVE = """import sys, tavrix
print(*tavrix.find(10))
sim = tavrix.connect()
for line in sys.stdin: print(int(sim.alive), flush=True)
"""


@pytest.mark.parametrize("language", ["python", "c"])
def test_client_libraries_find_the_server_and_bear_a_lost_card(language, hosts, place, linux, tmp_path):
    server, near = hosts(2)
    standin = place(server, linux, "--flight", "none")
    if language == "python":
        client = library(near, sys.executable, "-c", ALIVE)
        assert client.stdout.readline() == server.address + "\n"
    else:
        subprocess.run(["gcc", f"-I{TOP}/clients/c", "-o", str(tmp_path / "probe"), str(TOP / "tests/clients/tavrix_probe.c"),
                        str(TOP / "clients/c/tavrix.c"), "-lm"], check=True)
        client = library(near, tmp_path / "probe")
        client.stdin.write("connect\n")
        assert client.stdout.readline() == "\n"

    def alive():
        client.stdin.write("alive\n")
        return client.stdout.readline() == "1\n"
    wait_for("a living simulator", alive)
    near.card("down")
    wait_for("its end", lambda: not alive())
    near.card("up")
    wait_for("its return", alive)
    client.kill()
    client.wait(timeout=DEADLINE)
    standin.quit()
