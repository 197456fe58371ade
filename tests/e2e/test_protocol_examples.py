"""What the protocol documents show is what the servers do: the worked examples are replayed byte by byte, and the
sample clients run."""
import re
import socket
import subprocess
import sys
import time

import pytest

from conftest import DEADLINE, TOP, wait_for
from network import CHANGES, Client, change_frame, entries_of, hex_file

EXAMPLES = TOP / "docs" / "examples"
CLIENTS = TOP / "clients"
GOLDEN = EXAMPLES / "golden"
DOCUMENTS = ["network-protocol.md", "local-protocol.md", "conformance.md"]


def golden(name):
    return hex_file(GOLDEN / name)


@pytest.fixture
def server(start, tmp_path, linux):
    """The Linux build with its network server on 127.0.0.1, its simulated world at rest."""
    root = tmp_path / "X-Plane"
    folder = root / "Resources" / "plugins" / "TAVRIX"
    folder.mkdir(parents=True)
    (folder / "TAVRIX.ini").write_text("[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\n")
    standin = start(linux, "--rate", "0", "--flight", "none", root=root)
    standin.ask("set sim/cockpit/autopilot/heading_mag 0")
    standin.ask("frames 70")
    standin.wait_log("TAVFARNET->Waiting for clients.....0")
    yield standin
    standin.quit()


def test_documents_show_the_files():
    """Every example stands in one document, in a block ```hex FILE, byte by byte as in its file."""
    shown = {}
    for document in DOCUMENTS:
        text = (TOP / "docs" / document).read_text()
        for name, block in re.findall(r"^```hex (\S+)\n(.*?)^```", text, re.M | re.S):
            assert name not in shown, f"{document} shows {name} again"
            shown[name] = block
    assert sorted(shown) == sorted(path.name for path in GOLDEN.iterdir())
    for name, block in shown.items():
        assert block == (GOLDEN / name).read_text(), f"{name} differs from its document"


def test_documents_name_the_samples():
    text = "".join((TOP / "docs" / document).read_text() for document in DOCUMENTS)
    for path in EXAMPLES.glob("*.*"):
        assert f"(examples/{path.name})" in text, path.name


def changes_of(client, offsets):
    """The first change of each of these offsets as one frame, in the order of one scan."""
    entries, end = {}, time.monotonic() + DEADLINE
    while len(entries) < len(offsets):
        assert time.monotonic() < end, f"changes of {sorted(set(offsets) - set(entries))} have not come"
        datagram = client.take(1)
        if datagram is not None and datagram[0] == CHANGES:
            for at, value in entries_of(datagram):
                if at in offsets:  # others move by themselves
                    entries.setdefault(at, value)
    return change_frame(*sorted(entries.items()))


def test_write_and_its_changes(server):
    client = Client().complete()
    client.send(golden("network_write.request.hex"))
    answer = golden("network_write.answer.hex")
    # A scan between the two records shows them in two frames, with the same entries.
    assert changes_of(client, {offset for offset, _ in entries_of(answer)}) == answer
    server.ask("frames 2")
    assert abs(server.number("sim/cockpit/autopilot/heading_mag") - 90) < 0.05
    client.close()


def test_requests_without_answer(server):
    def counters():
        server.ask('menu "Performance settings"')
        found = re.search(r"Requests: (\d+), bytes read: (\d+)", server.ask("widgets"))
        server.ask('close "Performance settings"')
        return [int(figure) for figure in found.groups()]

    client = Client().complete()
    requests, size = counters()
    client.send(golden("network_read.request.hex"))
    wait_for("the served read", lambda: counters() == [requests + 1, size + 8])
    client.send(golden("network_subscribe.request.hex") + golden("network_read.request.hex"))
    # The frame behind the subscription in the same send is served: the subscription was well-formed.
    wait_for("the frame behind it", lambda: counters() == [requests + 2, size + 16])
    client.tcp.settimeout(0.3)
    with pytest.raises(TimeoutError):  # nothing comes back on the connection
        client.tcp.recv(1)
    client.close()


def test_block_frames(server):
    client = Client()
    blocks = [datagram for datagram in client.until("all blocks", lambda: len(client.blocks) == 8)
              if datagram[0] != CHANGES]
    first, header, trailer = golden("network_block.header.hex"), 6, golden("network_block.trailer.hex")
    for datagram in blocks:
        assert datagram[1:header] == first[1:] and datagram[-4:] == trailer and len(datagram) == 16394
        assert first[0] <= datagram[0] <= first[0] + 7
    client.close()


def test_relay(server):
    receiver = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    receiver.bind(("", 54945))
    receiver.settimeout(DEADLINE)
    client = Client().complete()
    client.send(golden("relay.request.hex"))
    client.until("the record", lambda: client.read(0x11125, 3) == b"sim")
    server.ask("frames 3")
    assert receiver.recv(1000) == golden("relay.answer.hex")
    assert server.number("sim/cockpit/autopilot/altitude") == 5500
    receiver.close()
    client.close()


def compiled(compiler, program, library):
    subprocess.run([compiler, "-Wall", "-Wextra", "-Werror", f"-I{CLIENTS / 'c'}", "-o", str(program),
                    str(EXAMPLES / "client.c"), str(CLIENTS / "c/tavrix.c"), library], check=True)
    return program


@pytest.fixture(params=["python", "c"])
def sample(request, tmp_path, monkeypatch):
    if request.param == "python":
        monkeypatch.setenv("PYTHONPATH", str(CLIENTS / "python"))
        return [sys.executable, str(EXAMPLES / "client.py")]
    return [str(compiled("gcc", tmp_path / "client", "-lm"))]


def run(command, *words):
    result = subprocess.run([*command, *words], capture_output=True, text=True, timeout=DEADLINE)
    assert result.returncode == 0, result.stderr
    return result.stdout.strip()


def test_network_sample(server, sample):
    def set_to(name, value):
        return run(sample, "127.0.0.1", *([f"{name}={value}"] if sample[-1].endswith(".py") else [name, value]))

    assert run(sample, "127.0.0.1", "activity").split()[0] == "activity"
    assert set_to("ap_heading_bug", "90").split() in (["ap_heading_bug", "90", "deg"], ["ap_heading_bug", "90.0", "deg"])
    server.ask("frames 2")
    assert abs(server.number("sim/cockpit/autopilot/heading_mag") - 90) < 0.05
    assert set_to("com1", "118.7").split() == ["com1", "118.7", "MHz"] == run(sample, "127.0.0.1", "com1").split()


def test_network_sample_without_server(sample):
    result = subprocess.run([*sample, "127.0.0.2", "heading"], capture_output=True, text=True, timeout=DEADLINE)
    assert result.returncode != 0 and "does the simulator run there" in result.stderr


@pytest.mark.wine
def test_local_blocks(start, win32):
    standin = start(win32, "--rate", "0", "--flight", "none")
    standin.ask("frames 70")
    standin.wait_log("Create KORL Thread OK!")
    for name, answer in (("local_block", "1"), ("local_unknown", "0")):
        result = win32.run("replay_block_win32", win32.path(GOLDEN / f"{name}.before.hex"))
        assert result.returncode == 0, result.stdout
        answered, block = result.stdout.splitlines()
        assert answered == answer
        assert bytes.fromhex(block) == golden(f"{name}.after.hex"), name
    standin.quit()


@pytest.mark.wine
def test_local_sample(start, win32, tmp_path):
    program = compiled("i686-w64-mingw32-gcc-posix", tmp_path / "client.exe", "-lws2_32")
    standin = start(win32, "--rate", "0", "--flight", "none")
    standin.ask("frames 70")
    standin.wait_log("Create KORL Thread OK!")
    assert run(["wine", str(program)], "local", "ap_heading_bug", "90") == "ap_heading_bug 90 deg"
    standin.ask("frames 2")
    assert abs(standin.number("sim/cockpit/autopilot/heading_mag") - 90) < 0.05
    standin.quit()
    missing = subprocess.run(["wine", str(program), "local", "heading"], capture_output=True, text=True, timeout=DEADLINE)
    assert missing.returncode == 1 and "no simulator" in missing.stderr
