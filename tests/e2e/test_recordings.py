"""Recording a flight, showing it again without a simulator, and trying clients."""
import os
import signal
import struct
import subprocess
import sys
import time

import pytest

from conftest import DEADLINE, TOP, wait_for
from network import Client, request, write_record

SETTINGS = "[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\n"
CONFORM_SAMPLE = ["--", sys.executable, TOP / "docs" / "examples" / "conform_client.py"]


@pytest.fixture(params=["linux", pytest.param("win32", marks=pytest.mark.wine)])
def build(request):
    return request.getfixturevalue(request.param)


@pytest.fixture
def recording(start, linux, tmp_path):
    """Two seconds in which 0x12000 counts from 1 to 20."""
    root = tmp_path / "X-Plane"
    folder = root / "Resources" / "plugins" / "TAVRIX"
    folder.mkdir(parents=True)
    (folder / "TAVRIX.ini").write_text(SETTINGS)
    standin = start(linux, "--flight", "none", "--rate", "0", root=root)
    standin.ask("frames 70")
    standin.wait_log("TAVFARNET->Waiting for clients.....0")
    path = tmp_path / "flight.rec"
    recorder = subprocess.Popen(linux.command("offsetctl", "record", path), stdout=subprocess.PIPE, text=True)
    wait_for("the first frames", lambda: path.exists() and path.stat().st_size > 0x20000)
    client = Client().complete()
    for value in range(1, 21):
        client.send(request(write_record(0x12000, bytes([value]))))
        client.until("the echo", lambda value=value: client.read(0x12000, 1)[0] == value)
        time.sleep(0.1)
    client.close()
    recorder.send_signal(signal.SIGINT)
    told, _ = recorder.communicate(timeout=DEADLINE)
    assert recorder.returncode == 0 and told.startswith(f"{path}: ")
    standin.quit()
    return path


@pytest.fixture
def replay(recording):
    """replay(build, *options) -> a running replay of that recording."""
    running = []

    def begin(build, *options):
        process = subprocess.Popen(build.command("offsetctl", "replay", build.path(recording), *options),
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        running.append(process)
        assert process.stdout.readline().startswith("replaying "), process.stderr.read()
        return process

    yield begin
    for process in running:
        process.kill()
        process.wait(timeout=DEADLINE)


def values_of(client, last):
    """The values of 0x12000 as they come, up to the last one."""
    seen = []

    def take():
        value = client.read(0x12000, 1)[0]
        if not seen or seen[-1] != value:
            seen.append(value)
        return value == last
    client.until(f"the value {last}", take)
    return seen


def test_file_begins_with_the_whole_memory(recording):
    data, at, times, kinds = recording.read_bytes(), 8, [], []
    assert data[:8] == b"TAVRIXR1"
    while at < len(data):
        time_, size = struct.unpack_from("<QI", data, at)
        times.append(time_)
        kinds.append(data[at + 12])
        at += 12 + size
    assert kinds[:8] == list(range(6, 14)) and set(times[:8]) == {0} and at == len(data)
    assert times == sorted(times) and 1e6 < times[-1] < 20e6 and kinds.count(103) > 20


def test_replay_shows_what_was_recorded(replay, build):
    process = replay(build)
    started = time.monotonic()
    client = Client().complete()
    seen = values_of(client, 20)
    assert seen == list(range(seen[0], 21)) and seen[0] < 10
    assert 1 < time.monotonic() - started < 8
    late = Client().complete()
    assert late.read(0x12000, 1)[0] == 20 and late.read(0x3304, 2) != b"\0\0"
    client.close()
    late.close()
    assert "its last values stay" in process.stdout.readline()


def test_what_clients_write_stays_until_the_recording_changes_it(replay, linux):
    replay(linux, "--speed", "0.5")
    client, other = Client().complete(), Client().complete()
    client.send(request(write_record(0x12000, b"\x63"), write_record(0x12010, b"\x2A"),
                        write_record(0x0238, b"\x63")))
    for one in (client, other):
        one.until("the echo", lambda one=one: one.read(0x12000, 1)[0] in range(99, 100) or
                  one.read(0x12010, 1) == b"\x2A")
    values_of(client, 20)
    assert client.read(0x12010, 1) == b"\x2A" and client.read(0x0238, 1) != b"\x63"
    client.close()
    other.close()


def test_replay_serves_eight_and_begins_again(replay, linux):
    replay(linux, "--speed", "2", "--loop")
    clients = [Client().complete() for _ in range(8)]
    with pytest.raises(OSError):
        Client()
    clients.pop().close()
    wait_for("a free place", lambda: linux.run("offsetctl", "read", "0x12000:u8").returncode == 0)
    for _ in range(2):
        values_of(clients[0], 18)  # the last one stands for a moment alone
        values_of(clients[0], 3)
    for client in clients:
        client.close()


def test_replay_ends_when_told(replay, linux):
    process = replay(linux)
    process.send_signal(signal.SIGINT)
    assert process.wait(timeout=10) == 0
    process = replay(linux, "--seconds", "0.5")  # the port is free at once
    assert process.wait(timeout=10) == 0


def test_broken_recordings_are_refused(recording, linux, tmp_path):
    whole = recording.read_bytes()
    damaged = whole[:8 + 12 + 16394 + 11] + b"\x7F" + whole[8 + 12 + 16394 + 12:]
    for name, data, told in (("damaged", damaged, "damaged at frame 2"), ("other", b"Hello" * 20, "no recording"),
                             ("short", whole[:8 + 12 + 16394], "1 of 8 blocks"), ("none", None, "cannot be read")):
        path = tmp_path / name
        if data is not None:
            path.write_bytes(data)
        result = linux.run("offsetctl", "replay", path)
        assert result.returncode == 2 and told in result.stderr, result.stderr


def test_a_cut_recording_plays_its_whole_frames(recording, linux, tmp_path):
    path = tmp_path / "cut"
    path.write_bytes(recording.read_bytes()[:-1])
    result = linux.run("offsetctl", "replay", path, "--seconds", "0.3")
    assert result.returncode == 0 and "cut off: it ends within frame" in result.stderr, result.stderr


def test_sample_conforms_where_it_is_quick(linux):
    result = linux.run("offsetctl", "conform", "plain", "late", "strange", *CONFORM_SAMPLE)
    assert result.returncode == 0 and "3 of 3 passed" in result.stdout, result.stdout + result.stderr


@pytest.mark.slow
def test_sample_and_libraries_conform(linux, tmp_path):
    program = tmp_path / "conform_c"
    subprocess.run(["gcc", "-std=gnu99", "-Wall", "-Wextra", "-Werror", f"-I{TOP}/clients/c", "-o", program,
                    TOP / "tests/clients/conform_c.c", TOP / "clients/c/tavrix.c", "-lm"], check=True)
    clients = {"127.0.0.1": CONFORM_SAMPLE, "127.0.0.2": ["--", program],
               "127.0.0.3": ["--", sys.executable, TOP / "tests/clients/conform_python.py"]}
    environment = {**os.environ, "PYTHONPATH": str(TOP / "clients/python")}
    running = [subprocess.Popen(linux.command("offsetctl", "conform", "--listen", address, *client), text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, env=environment)
               for address, client in clients.items()]
    for process in running:
        told, _ = process.communicate(timeout=3 * DEADLINE)
        assert process.returncode == 0 and "12 of 12 passed" in told, told


@pytest.mark.wine
def test_conform_on_windows(win32):
    # A Windows program that is no client: started, listened to, ended. Wine gives the ports of a program that was
    # killed back a moment later, and that of a connection which it had ended, a minute later.
    def result():
        ended = win32.run("offsetctl", "conform", "plain", "--", "cmd", "/c", "echo hello")
        return None if "cannot take" in ended.stderr else ended
    ended = wait_for("free ports", result, deadline=2 * DEADLINE)
    assert ended.returncode == 1 and 'it printed "hello"' in ended.stdout, ended.stdout + ended.stderr


BAD_CLIENTS = {
    "silent": ("plain", "import sys; sys.stdin.read()", "no line of it"),
    "never stops": ("plain", "while True: print('y' * 1000)", 'it printed "yyy'),
    "no line ends": ("plain", "while True: print('y' * 1000, end='')", "no line of it"),
    "gives up": ("plain", "import sys; sys.exit('no idea')", "status 1: no idea"),
    "gives up in silence": ("ninth", "raise SystemExit(0)", "without a line on standard error"),
    "knocks": ("refused", "import os, socket, time\nwhile True:\n  try: socket.create_connection((os.environ['TAVRIX_HOST'], "
                          "65000)).close()\n  except OSError: pass\n  time.sleep(0.02)", "once a second is enough"),
}


@pytest.mark.parametrize("name", BAD_CLIENTS)
def test_bad_clients_fail(linux, name):
    situation, program, told = BAD_CLIENTS[name]
    result = linux.run("offsetctl", "conform", situation, "--", sys.executable, "-c", program)
    assert result.returncode == 1 and told in result.stdout, result.stdout + result.stderr
    # Nothing of it is left, and the port is free again.
    assert linux.run("offsetctl", "conform", situation, "--", "/no/such/program").stderr.startswith(
        "offsetctl: cannot start")
