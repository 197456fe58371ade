"""The client libraries: what they know of the offsets, what their page shows, how they bear losses, restarts and
refusals, and how they are installed and compiled."""
import ctypes
import json
import os
import re
import shutil
import signal
import socket
import struct
import subprocess
import sys
import threading
import time

import pytest

from conftest import DEADLINE, TOP, wait_for
from network import DroppingProxy, ScriptedServer, block_frame, change_frame

sys.path.insert(0, str(TOP / "clients/python"))
import tavrix  # noqa: E402
from tavrix import names  # noqa: E402
from tavrix.local import BLOCK_SIZE  # noqa: E402
from tavrix.mirror import Mirror  # noqa: E402

C = TOP / "clients/c"
ROWS = json.loads((TOP / "docs/offsets.json").read_text())["offsets"]
PAGE = (TOP / "docs/clients.md").read_text()
TASKS = dict(re.findall(r"^```(?:python|c) (\S+)\n(.*?)^```", PAGE, re.M | re.S))
COMPILERS = {"gcc": ["gcc"], "clang": ["clang"], "win32": ["i686-w64-mingw32-gcc-posix"], "win64": ["x86_64-w64-mingw32-gcc-posix"]}


def compile_c(compiler, program, *sources):
    libraries = ["-lws2_32"] if compiler.startswith("win") else ["-lm"]
    subprocess.run([*COMPILERS[compiler], "-std=c99", "-O2", "-Wall", "-Wextra", "-Werror", f"-I{C}", "-o", str(program),
                    *map(str, sources), str(C / "tavrix.c"), *libraries], check=True)
    return program


@pytest.fixture
def world(start, linux, tmp_path):
    """world(*ini lines): a Linux build in flight whose network server listens on 127.0.0.1."""
    def begin(*lines, options=("--flight", "none")):
        folder = tmp_path / "X-Plane" / "Resources" / "plugins" / "TAVRIX"
        folder.mkdir(parents=True, exist_ok=True)
        (folder / "TAVRIX.ini").write_text("\n".join(["[TAVRIX SETTINGS]", "Server Address = 127.0.0.1", *lines, ""]))
        (folder / "TAVRIX.txt").unlink(missing_ok=True)
        standin = start(linux, *options, root=tmp_path / "X-Plane")
        standin.wait_log("TAVFARNET->Waiting for clients.....0")
        return standin
    return begin


class Program:
    """A client program: lines in, lines out."""

    def __init__(self, *command, cwd=None):
        environment = {**os.environ, "PYTHONPATH": str(TOP / "clients/python")}
        self.process = subprocess.Popen([str(word) for word in command], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
                                        bufsize=1, env=environment, cwd=cwd)
        self.lines = []
        self.reader = threading.Thread(target=self._read, daemon=True)
        self.reader.start()

    def _read(self):
        for line in self.process.stdout:
            self.lines.append(line.rstrip("\r\n"))

    def say(self, line):
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()

    def ask(self, line):
        count = len(self.lines)
        self.say(line)
        wait_for(f"the answer to '{line}'", lambda: len(self.lines) > count)
        return self.lines[count]

    def sees(self, *lines):
        """Waits for each of the lines, in any order, and forgets them."""
        end = time.monotonic() + DEADLINE
        while not all(line in self.lines for line in lines):
            assert time.monotonic() < end, f"{lines} not in {self.lines}"
            time.sleep(0.02)
        self.lines.clear()

    def end(self):
        if not self.process.stdin.closed and self.process.poll() is None and "probe" in str(self.process.args[0]):
            self.process.stdin.close()  # its sanitizers have the last word
            assert self.process.wait(timeout=DEADLINE) == 0
        self.process.kill()
        self.process.wait(timeout=DEADLINE)


@pytest.fixture
def run():
    running = []

    def begin(*command):
        running.append(Program(*command))
        return running[-1]
    yield begin
    for program in running:
        program.end()


@pytest.fixture(scope="session")
def probe(tmp_path_factory):
    folder = tmp_path_factory.mktemp("probe")
    return compile_c("gcc", folder / "probe", TOP / "tests/clients/tavrix_probe.c", "-fsanitize=address,undefined",
                     "-fno-sanitize-recover=all")


# --- Offsets ------------------------------------------------------------------------------------------------------------

def test_examples_in_both_languages(run, probe):
    program = run(probe)
    examples = [row for row in ROWS if row["form"] != "Text"]
    for row in examples:
        program.say(f"code {row['name']} {row['example']['bytes'].replace(' ', '')}")
    wait_for("all answers", lambda: len(program.lines) == len(examples))
    for row, line in zip(examples, program.lines):
        shown, encoded = line.split()
        assert (float(shown), encoded) == (pytest.approx(row["example"]["value"], rel=1e-14),
                                           row["example"]["bytes"].replace(" ", "")), row["name"]
    for row in ROWS:
        offset, example = names.ALL[row["name"]], row["example"]
        data = bytes.fromhex(example["bytes"]).ljust(row["size"], b"\0")
        value = offset.decode(data)
        assert value == pytest.approx(example["value"], rel=1e-14), row["name"]
        assert offset.encode(value) == data, row["name"]
    # What an editor completes is what there is.
    stub = (TOP / "clients/python/tavrix/names.pyi").read_text()
    assert re.findall(r"^([a-z]\w*): Offset\[", stub, re.M) == [row["name"] for row in ROWS]


def test_values():
    assert names.ap_heading_bug.encode(360) == b"\0\0" and names.ap_heading_bug.encode(-90) == b"\0\xC0"
    assert names.com1.encode(118.7) == b"\x70\x18" and names.transponder.encode(1200) == b"\0\x12"
    assert names.season.decode(b"\2\0") is names.Season.SUMMER and names.season.decode(b"\x09\0") == 9
    assert names.lights.decode(b"\x03\0") == names.Lights.NAVIGATION | names.Lights.BEACON
    assert names.transponder_mode.encode(5) == b"\5"  # newer simulators have more than the list
    for offset, value in ((names.zulu_hour, 24), (names.message_text, "x" * 128), (names.throttle1, 101),
                          (names.qnh, float("nan")), (names.com1, 99.9), (names.lights, -1)):
        with pytest.raises(ValueError, match=offset.name):
            offset.encode(value)
    bug = names.ap_heading_bug
    assert bug.is_shown(bug.encode(90), bug.encode(90.08)) and not bug.is_shown(bug.encode(90), bug.encode(90.2))
    assert bug.is_shown(bug.encode(359.99), bug.encode(0.05)), "a full turn is no distance"
    assert names.ap.is_shown(b"\5\0\0\0", b"\1\0\0\0") and not names.ap.is_shown(b"\0\0\0\0", b"\1\0\0\0")
    assert names.radio_exchange.is_shown(b"\1", b"\0") is None
    for whole, wanted, shown in ((names.autobrake, 2, 3), (names.zulu_hour, 12, 11), (names.obs1, 90, 91)):
        assert not whole.is_shown(whole.encode(wanted), whole.encode(shown)), "a step away is another number"
    assert names.altitude_m.is_shown(names.altitude_m.encode(100), names.altitude_m.encode(101))


CODED = {("com1", 118.025): "0218", ("com1", 118.775): "7718", ("com1", 199.995): "9999", ("transponder", 7777): "7777",
         ("ap_heading_bug", 360): "0000", ("transponder_mode", 5): "05", ("latitude", 90): "00000000569D9800"}
REFUSED = [("com1", 99.995), ("com1", 200), ("transponder", 8000), ("transponder", 1680), ("latitude", 90.1), ("longitude", -181),
           ("heading", "inf"), ("jettison", 1e40), ("jettison", "inf"), ("n2_eng1", "inf"), ("pause", "nan"), ("lights", "nan"),
           ("lights", 2.5), ("autobrake", 2.5), ("autobrake", 300), ("typo", 1)]


def test_values_alike_in_both_languages(run, probe):
    program = run(probe)
    for (name, value), stored in CODED.items():
        assert program.ask(f"encode {name} {value}") == stored == names.ALL[name].encode(value).hex().upper(), (name, value)
    for name, value in REFUSED:
        assert ("no offset" if name == "typo" else f"{name}: ") in program.ask(f"encode {name} {value}"), (name, value)
        if name != "typo":
            with pytest.raises(ValueError, match=name):
                names.ALL[name].encode(float(value))


# --- The page ------------------------------------------------------------------------------------------------------------

def test_page_is_short_and_complete():
    assert sorted(TASKS) == ["fuel.c", "fuel.py", "knob.c", "knob.py", "lamps.c", "lamps.py", "radios.c", "radios.py"]
    for name, text in TASKS.items():
        assert text.count("\n") < (25 if name.endswith(".py") else 40), name


def knob(program, standin):
    def settles():
        """Until the clients' copies of the memory have followed the simulator."""
        running = standin.number("sim/time/total_running_time_sec")
        wait_for("frames", lambda: standin.number("sim/time/total_running_time_sec") > running + 0.5)

    standin.ask("set sim/cockpit/autopilot/heading_mag 0")
    for clicks, heading in (("+", "001"), ("---", "358"), ("+" * 92, "090")):
        settles()
        program.say(clicks)
        program.sees(heading)
        wait_for("the bug", lambda degrees=int(heading): abs(standin.number("sim/cockpit/autopilot/heading_mag") - degrees) < 0.2)


def fuel(program, standin):
    standin.ask("set sim/flightmodel/weight/m_fuel[0] 100")
    wait_for("a line", lambda: program.lines)
    standin.ask("set sim/flightmodel/weight/m_fuel[0] 1000")  # kilograms in the left tank
    wait_for("2205 pounds on the left", lambda: any(re.fullmatch(r"LEFT 220[3-6] CENTRE \d+ RIGHT \d+", line)
                                                    for line in program.lines))


def lamps(program, standin):
    program.sees("STALL off", "PITOT HEAT OFF on", "TAXI off")
    standin.ask("set sim/flightmodel/failures/stallwarning 1")
    standin.ask("set sim/cockpit/switches/pitot_heat_on 1")
    standin.ask("set sim/cockpit2/switches/taxi_light_on 1")
    program.sees("STALL on", "PITOT HEAT OFF off", "TAXI on")
    standin.quit()
    program.sees("NO SIMULATOR on")


def radios(program, standin):
    wait_for("the first lines", lambda: len(program.lines) >= 4)
    program.lines.clear()
    for nonsense in ("", "ADF", "COM x", "NAV 110.3 1"):  # neither ends the program nor exchanges
        program.say(nonsense)
    program.say("COM 124.30")
    program.sees("COM standby 124.30")
    program.say("COM")
    program.sees("COM active 124.30")
    wait_for("the frequency", lambda: standin.number("sim/cockpit/radios/com1_freq_hz") == 12430)


CHECKS = {"knob": knob, "fuel": fuel, "lamps": lamps, "radios": radios}


@pytest.mark.parametrize("language", ["py", "c"])
@pytest.mark.parametrize("task", CHECKS)
def test_task(task, language, world, run, tmp_path):
    source = tmp_path / f"{task}.{language}"
    source.write_text(TASKS[source.name])
    command = [sys.executable, source] if language == "py" else [compile_c("gcc", tmp_path / task, source)]
    standin = world()
    program = run(*command, "127.0.0.1")
    CHECKS[task](program, standin)
    if "sim.run()" in TASKS[source.name]:
        program.process.send_signal(signal.SIGINT)
        assert program.process.wait(timeout=DEADLINE) == 0


@pytest.mark.wine
@pytest.mark.parametrize("task, compiler, host", [(task, "win32", "local") for task in CHECKS] +
                         [("knob", "win64", "local"), ("radios", "win64", "127.0.0.1")])
def test_task_under_wine(task, compiler, host, start, win32, run, tmp_path):
    source = tmp_path / f"{task}.c"
    source.write_text(TASKS[source.name])
    program = compile_c(compiler, tmp_path / f"{task}.exe", source)
    folder = tmp_path / "X-Plane" / "Resources" / "plugins" / "TAVRIX"
    folder.mkdir(parents=True)
    (folder / "TAVRIX.ini").write_text("[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\n")
    standin = start(win32, "--flight", "none", root=tmp_path / "X-Plane")
    standin.wait_log("Create KORL Thread OK!")
    standin.wait_log("TAVFARNET->Waiting for clients.....0")
    # The first of the plug-in's cycles run within the first second: until then a refresh may hide what was written.
    wait_for("the cycles", lambda: standin.number("sim/time/total_running_time_sec") > 2)
    CHECKS[task](run("wine", program, host), standin)


# --- Compiling and installing ------------------------------------------------------------------------------------------------

@pytest.mark.parametrize("compiler", COMPILERS)
def test_compiles_without_a_warning(compiler, tmp_path):
    if not shutil.which(COMPILERS[compiler][0]):
        pytest.skip(f"{compiler} is not installed")
    compile_c(compiler, tmp_path / "probe", TOP / "tests/clients/tavrix_probe.c")
    for name in ("knob.c", "fuel.c", "lamps.c", "radios.c"):
        (tmp_path / name).write_text(TASKS[name])
        subprocess.run([*COMPILERS[compiler], "-Wall", "-Wextra", "-Werror", "-fsyntax-only", f"-I{C}", str(tmp_path / name)],
                       check=True)


def test_pip_installs_without_a_network(tmp_path):
    source = tmp_path / "package"
    shutil.copytree(TOP / "clients/python", source, ignore=shutil.ignore_patterns("__pycache__"))
    subprocess.run([sys.executable, "-m", "venv", str(tmp_path / "own")], check=True, timeout=DEADLINE)
    python = tmp_path / "own/bin/python"
    environment = {**os.environ, "PIP_NO_INDEX": "1", "PIP_DISABLE_PIP_VERSION_CHECK": "1", "PYTHONPATH": ""}

    def pip(*words):
        result = subprocess.run([python, "-m", "pip", *words], capture_output=True, text=True, env=environment, cwd=tmp_path)
        assert result.returncode == 0, result.stderr

    def where():
        return subprocess.run([python, "-c", "import tavrix; print(tavrix.__file__, tavrix.names.heading.offset)"], check=True,
                              capture_output=True, text=True, env=environment, cwd=tmp_path).stdout
    pip("install", str(source))
    assert str(tmp_path / "own") in where() and where().split()[1] == str(0x0580)
    files = {path.name for path in (tmp_path / "own").rglob("site-packages/tavrix/*")}
    assert {"names.pyi", "py.typed", "local.py"} <= files
    pip("uninstall", "-y", "tavrix")
    pip("install", "-e", str(source))
    assert str(source) in where()
    sys.path.insert(0, str(source))
    try:
        import build_backend
        archive = build_backend.build_sdist(str(tmp_path))
    finally:
        sys.path.remove(str(source))
    pip("uninstall", "-y", "tavrix")
    pip("install", str(tmp_path / archive))
    assert str(tmp_path / "own") in where()


# --- Losses -----------------------------------------------------------------------------------------------------------------

def settled(memory, activity=0):
    """A mirror that has all blocks and knows the usual pace: 50 lists of changes a second, 60 frames."""
    mirror = Mirror()
    for block in range(8):
        mirror.take(block_frame(memory, block), 0.0)
    for n in range(1, 200):
        told(mirror, n * 0.02, activity + n * 6 // 5)
    return mirror, 199 * 0.02, activity + 199 * 6 // 5


def told(mirror, now, activity, *entries):
    mirror.take(change_frame((0x337E, activity & 255), (0x337F, activity >> 8), *entries), now)


def test_mirror_takes_only_whole_frames():
    mirror = Mirror()
    whole = change_frame((0x12345, 7), (0x100, 8))
    for spoilt in (whole[:-1], whole + b"x", whole[:2] + b"\7" + whole[3:], whole[:-1] + b"\xDE", b"", b"g", bytes(10)):
        mirror.take(spoilt, 0.0)
    assert mirror.malformed == 7 and not any(mirror.memory)
    mirror.take(whole, 0.0)
    assert (mirror.memory[0x12345], mirror.memory[0x100], mirror.malformed) == (7, 8, 7)


def test_missing_blocks_are_asked_for_once_a_second():
    mirror = Mirror()
    for block in (0, 1, 2, 4, 5, 6, 7):
        mirror.take(block_frame(bytes(0x20000), block), 0.1)
    assert not mirror.complete and not mirror.wants_blocks(0.9) and mirror.wants_blocks(1.1)
    mirror.ask(1.1)
    assert not mirror.wants_blocks(2.0) and mirror.wants_blocks(2.2)
    mirror.take(block_frame(bytes(0x20000), 3), 2.2)
    assert mirror.complete and not mirror.wants_blocks(9)


def test_jump_of_the_frame_counter_is_a_loss():
    mirror, now, activity = settled(bytearray(0x20000))
    assert not mirror.wants_blocks(now) and mirror.suspicions == 0
    told(mirror, now + 0.04, activity + 3)
    assert mirror.suspicions == 1 and mirror.wants_blocks(now + 0.04)
    # The blocks find nothing: the next question waits twice as long.
    mirror.ask(now + 0.04)
    for block in range(8):
        mirror.take(block_frame(mirror.memory, block), now + 0.05)
    assert not mirror.wants_blocks(now + 60)
    told(mirror, now + 0.06, activity + 4)
    told(mirror, now + 0.12, activity + 9)
    assert not mirror.wants_blocks(now + 1.9) and mirror.wants_blocks(now + 2.1)
    # A block that was lost, too, is asked for again.
    mirror.ask(now + 2.1)
    for block in range(7):
        mirror.take(block_frame(mirror.memory, block), now + 2.2)
    assert not mirror.wants_blocks(now + 6) and mirror.wants_blocks(now + 6.2)


@pytest.mark.parametrize("steps", [[(0.20, 1)], [(0.001, 1), (0.001, 1)], [(0.02, 2), (0.02, 1)]])
def test_pauses_of_the_simulator_are_no_loss(steps):
    mirror, now, activity = settled(bytearray(0x20000))
    for pause, frames in steps:
        now, activity = now + pause, activity + frames
        told(mirror, now, activity)
    assert mirror.suspicions == 0


def test_block_that_differs_is_a_loss_unless_the_changes_tell_the_same():
    memory = bytearray(0x20000)
    mirror, now, activity = settled(memory)
    memory[0x8001], memory[0x8002] = 5, 6
    memory[0x337E:0x3380] = struct.pack("<H", activity)
    mirror.take(block_frame(memory, 2), now)
    told(mirror, now + 0.02, activity + 1, (0x8001, 5), (0x8002, 6))
    assert not mirror.wants_blocks(now + 0.5) and mirror.repaired == 0, "the block was just earlier"
    memory[0x8003] = 7
    mirror.take(block_frame(memory, 2), now + 1)
    told(mirror, now + 1.02, activity + 50)
    assert mirror.memory[0x8003] == 7 and mirror.wants_blocks(now + 1.5) and mirror.repaired == 1


@pytest.mark.parametrize("language", ["python", "c"])
def test_lost_datagrams_are_made_up_for(language, world, run, probe):
    standin = world()
    proxy = DroppingProxy("127.0.0.2", "127.0.0.1", 0.2)
    direct = tavrix.connect("127.0.0.1")
    if language == "python":
        lossy = tavrix.connect("127.0.0.2")
        read, confirm = lambda: lossy.read_bytes((0x12340, 64))[0], lambda value: lossy.write(names.com1, value, confirm=5)
    else:
        program = run(probe)
        assert program.ask("connect 127.0.0.2") == ""
        read, confirm = lambda: bytes.fromhex(program.ask("bytes 0x12340")), lambda value: program.ask(f"confirm com1 {value}") == ""
    for n in range(1, 65):  # a byte every fiftieth of a second: some are lost for good
        direct.write_bytes((0x12340 + n - 1, bytes([n])))
        time.sleep(0.02)

    def repaired():
        if language == "c":
            program.ask("poll 100")
        return read() == bytes(range(1, 65))
    wait_for("the bytes that were lost", repaired, 40)
    assert confirm(118.7) and confirm(120.1)
    assert proxy.dropped > 10
    direct.close()
    if language == "python":
        lossy.close()
    proxy.close()
    standin.quit()


def test_cost_of_a_mirror(tmp_path):
    """Processor time of a client that takes 8 changes a frame, by the datagram: below 2 % of a core at 60 a second."""
    server = ScriptedServer("127.0.0.3")
    script = ("import sys, time, tavrix\nsim = tavrix.connect('127.0.0.3')\nbefore = time.process_time(), sim.mirror.datagrams\n"
              "print('ready', flush=True)\nsys.stdin.readline()\n"
              "print((time.process_time() - before[0]) / (sim.mirror.datagrams - before[1]), sim.mirror.datagrams - before[1])\n")
    program = Program(sys.executable, "-c", script)
    wait_for("the client", lambda: server.accepted)
    for block in range(8):
        server.send(block_frame(bytearray(0x20000), block))
    program.sees("ready")
    for n in range(600):
        server.send(change_frame(*((0x3000 + 100 * i, (n + i) & 255) for i in range(6)), (0x337E, n & 255), (0x337F, n >> 8)))
        time.sleep(0.002)
    program.say("")
    wait_for("its figures", lambda: program.lines)
    seconds, datagrams = map(float, program.lines[0].split())
    print(f"{seconds * 60 * 100:.2f} % of a core at 60 frames a second")
    program.end()
    server.close()
    assert datagrams > 500 and seconds * 60 < 0.02


# --- Connections ---------------------------------------------------------------------------------------------------------------

@pytest.mark.parametrize("language", ["python", "c"])
def test_restart_of_the_simulator(language, world, run, probe):
    standin = world()
    if language == "python":
        told_of = []

        def tell(is_there):
            told_of.append(is_there)
            raise RuntimeError("ends no thread")
        client = tavrix.NetworkClient("127.0.0.1", on_connection=tell)
        gears = []
        client.on_change(names.gear, gears.append)
        alive, pump = lambda: client.alive, lambda: client.poll(0.05)
        write = lambda: client.write(names.com1, 118.7)  # noqa: E731
    else:
        program = run(probe)
        assert program.ask("connect 127.0.0.1") == ""
        alive, pump = lambda: program.ask("alive") == "1", lambda: program.ask("poll 50")
        assert "reads only" not in program.ask("watch gear")

    def lives():
        pump()
        return alive()
    wait_for("a living simulator", lives)
    standin.quit()
    wait_for("its end", lambda: not lives())
    if language == "python":
        with pytest.raises(tavrix.Disconnected, match="127.0.0.1"):
            write()
    else:
        assert "127.0.0.1" in program.ask("set com1 118.7")
    standin = world()
    wait_for("the new one", lives)
    standin.ask("set sim/cockpit/switches/gear_handle_status 0")
    if language == "python":
        wait_for("the gear", lambda: client.poll(0.1) + 1 and gears and gears[-1] == 0)
        assert told_of[:3] == [True, False, True]
        client.close()
    else:
        wait_for("the gear", lambda: "changed gear 0" in program.ask("poll 100") or program.ask("get gear") == "0")
    standin.quit()


@pytest.mark.parametrize("language", ["python", "c"])
def test_datagrams_of_others_and_of_a_server_without_frames(language, run, probe):
    server = ScriptedServer("127.0.0.3")
    blocks = [block_frame(bytearray(0x20000), block) for block in range(8)]

    def fill():
        wait_for("the client", lambda: server.accepted)
        server.send(*blocks)
    sender = threading.Thread(target=fill)
    sender.start()
    if language == "python":
        sim, got = tavrix.connect("127.0.0.3"), []
        sim.on_change(names.autobrake, got.append)
        call_back = lambda: sim.poll(0.05) and got  # noqa: E731
        read = lambda: sim.read_bytes((0x12340, 1))[0]  # noqa: E731
    else:
        program = run(probe)
        assert program.ask("connect 127.0.0.3") == program.ask("watch autobrake") == ""
        call_back = lambda: "changed" in program.ask("poll 50")  # noqa: E731
        read = lambda: bytes.fromhex(program.ask("bytes 0x12340"))[:1]  # noqa: E731
    sender.join()
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as other:
        other.bind(("127.0.0.3", 0))
        other.sendto(change_frame((0x12340, 66)), server.accepted[0][1])
    server.send(change_frame((0x12341, 1), (0x337E, 1)))  # of the first frame: more of them may follow
    wait_for("a datagram", lambda: read() is not None and (sim.read_bytes((0x12341, 1))[0] if language == "python" else
                                                           bytes.fromhex(program.ask("bytes 0x12341"))[:1]) == b"\1")
    assert read() == b"\0" and not call_back(), "of another port; before the second frame"
    server.send(change_frame((0x337E, 2)))
    wait_for("the callback", call_back)
    if language == "python":
        sim.close()
    server.close()


def test_c_client_closed_by_its_callback(world, run, probe):
    standin = world()
    program = run(probe)
    assert program.ask("connect 127.0.0.1") == ""
    for line, answer in (("get typo", "nan"), ("set typo 1", "no offset"), ("watch typo", "no offset"),
                         ("confirm typo 1", "no offset"), ("settext typo x", "no offset"), ("text typo", "")):
        assert answer in program.ask(line) and program.ask("get pause") == "0", line
    assert program.ask("end com1") == program.ask("watch com1") == ""
    answers = []
    wait_for("the end", lambda: answers.append(program.ask("poll 100")) or "-9" in answers[-1])
    assert answers[-1] == "writes -9, -9" and program.ask("get com1") == "not connected"
    standin.quit()


def test_errors_say_what_to_do(world, run, probe):
    program = run(probe)
    assert "does the simulator run there" in program.ask("connect 127.0.0.1")
    with pytest.raises(tavrix.NoServer, match="does the simulator run there"):
        tavrix.connect("127.0.0.1")
    with pytest.raises(tavrix.NoServer, match="no such host"):
        tavrix.connect("no.such.host.invalid")
    with pytest.raises(tavrix.NoServer, match="for Windows"):
        tavrix.connect("local")
    assert "for Windows" in program.ask("connect local")
    standin = world("Allowed clients = 10.1.2.3")
    with pytest.raises(tavrix.Refused, match="Allowed clients"):
        tavrix.connect("127.0.0.1")
    assert "Allowed clients" in program.ask("connect 127.0.0.1")
    standin.quit()
    standin = world("Network writes = No")
    assert program.ask("connect 127.0.0.1") == "" and "Network writes" in program.ask("confirm com1 121.5")
    brake = int(program.ask("get autobrake"))
    assert "Network writes" in program.ask(f"confirm autobrake {brake + 1}"), "one step is not the same"
    for line, answer in (("set heading 90", ""), ("set tas 90", "not for writing"), ("set zulu_hour 25", "not within 0 to 23"),
                         ("set aircraft 1", "not for writing"), ("settext heading x", "no text")):
        assert answer in program.ask(line), line
    with tavrix.connect("127.0.0.1") as sim:
        with pytest.raises(tavrix.NotConfirmed, match="Network writes"):
            sim.write({names.com1: 121.5, names.nav1: 110.3}, confirm=0.5)
        with pytest.raises(tavrix.NotWritable, match="tas"):
            sim.write(names.tas, 90)
    standin.quit()


def test_batches_and_texts(world, run, probe):
    standin = world()
    with tavrix.connect("127.0.0.1") as sim:
        assert sim.write({names.com1: 118.7, names.ap_heading_bug: 90, names.ap: True}, confirm=True) is True
        assert sim.read(names.com1, names.ap) == (118.7, True)
        assert sim.write(names.radio_exchange, names.RadioExchange.COM1, confirm=True) is None
        sim.write_bytes((0x12340, bytes(range(250)) * 40))  # more than a packet holds
        sim.write(names.com1, 119.1, confirm=True)
        wait_for("all of it", lambda: sim.read_bytes((0x12340, 10000))[0] == bytes(range(250)) * 40)
        everything = {offset: offset.decode(bytes(offset.size)) for offset in names.ALL.values() if offset.write == "yes"
                      and offset.name.startswith(("fail_", "wind_", "cloud_", "fuel_", "throttle", "nav_", "deice", "igniti"))}
        assert len(everything) > 40 and sim.write(everything) is None  # more than one packet holds
        sim.write(names.message_text, "gear", confirm=True)
        assert sim[names.message_text] == "gear"
        sim.ask(names.simulator_folder)
        wait_for("the folder", lambda: sim[names.simulator_folder] != "")
        program = run(probe)
        assert program.ask("connect 127.0.0.1") == "" and program.ask("text message_text") == "gear"
        assert program.ask("settext message_text flaps") == ""
        wait_for("the text", lambda: sim[names.message_text] == "flaps")
    standin.quit()


# --- The local window, with the calls of Windows played ----------------------------------------------------------------------------

class Function:
    """A function of a library: declared by the client, then called with what its declaration allows."""

    def __init__(self, call):
        self.call, self.argtypes, self.restype = call, None, None

    def __call__(self, *words):
        assert self.argtypes is not None and len(words) == len(self.argtypes)
        for word, kind in zip(words, self.argtypes):
            kind.from_param(word)
        return self.call(*words)


class PlayedWindows:
    def __init__(self):
        self.memory, self.mappings, self.views, self.atoms, self.closed = bytearray(0x20000), {}, {}, {}, []
        self.window, self.answers = 7, []  # of the next messages: "late", "invalid", 0; else they are served
        self.messages = 0
        functions = {
            "FindWindowA": lambda name, title: self.window if (name, title) == (b"KORLMAIN", b"KORLMAIN") else None,
            "RegisterWindowMessageA": lambda name: 0xC123 if name == b"KELDOMAR:IPC" else 0,
            "SendMessageTimeoutA": self.send,
            "CreateFileMappingA": self.create, "MapViewOfFile": lambda handle, *_: ctypes.addressof(self.mappings[handle][1]),
            "UnmapViewOfFile": lambda address: self.closed.append("view") or 1,
            "CloseHandle": lambda handle: self.closed.append("handle") or 1,
            "GlobalAddAtomA": lambda name: self.atoms.setdefault(0xC000 + len(self.atoms), name) and 0xC000 + len(self.atoms) - 1,
            "GlobalDeleteAtom": lambda atom: self.closed.append("atom") or 0}
        for name, call in functions.items():
            setattr(self, name, Function(call))

    def create(self, file, security, protection, high, size, name):
        assert (file.value, protection, high, size) == (ctypes.c_void_p(-1).value, 4, 0, BLOCK_SIZE)
        assert name not in [each[0] for each in self.mappings.values()], "a name of its own for every block"
        self.mappings[len(self.mappings) + 1] = name, ctypes.create_string_buffer(size)
        return len(self.mappings)

    def send(self, window, message, atom, parameter, flags, patience, served):
        assert (message, parameter, flags) == (0xC123, 0, 1)
        self.messages += 1
        answer = self.answers.pop(0) if self.answers else 1
        if answer == "late":
            time.sleep(patience / 1000)
            return 0
        if answer == "invalid" or window is None or window != self.window:
            return 0
        block = next(buffer for name, buffer in self.mappings.values() if name == self.atoms[atom])
        at = 0
        while True:
            kind, offset, size = struct.unpack_from("<III", block, at)
            if kind == 0:
                break
            at += 16 if kind == 1 else 12
            if kind == 1:
                struct.pack_into(f"{size}s", block, at, bytes(self.memory[offset:offset + size]))
            else:
                self.memory[offset:offset + size] = block[at:at + size]
            at += size
        served._obj.value = answer
        return 1


def test_local_client():
    windows = PlayedWindows()
    windows.memory[0x0580:0x0584] = bytes.fromhex("00000040")
    with tavrix.LocalClient(timeout=0.2, calls=(windows, windows)) as sim:
        assert sim.read(names.heading) == 90 and sim.connected and sim.alive
        assert sim.read(names.heading, names.ap, names.aircraft) == (90, False, "") and windows.messages == 3
        assert sim.write({names.com1: 118.7, names.ap: True}, confirm=True) is True
        assert (windows.memory[0x034E], windows.memory[0x07BC]) == (0x70, 1)
        got = []
        sim.on_change(names.heading, got.append)
        sim.poll()
        windows.memory[0x0583] = 0x80
        assert sim.poll(1) == 1 and got == [90, 180] and sim.poll() == 0

        windows.answers = ["late"]
        with pytest.raises(tavrix.Disconnected, match="may still be applied"):
            sim.write(names.ap, False)
        assert len(windows.mappings) == 1 and windows.closed == [], "the old block is left alone"
        assert sim.read(names.heading) == 180 and len(windows.mappings) == 2
        windows.window = 8  # the simulator has been started anew
        assert sim.read(names.heading) == 180
        windows.answers = [0]
        with pytest.raises(tavrix.Disconnected, match="TAVRIX.txt"):
            sim.read(names.heading)
        windows.window = None
        with pytest.raises(tavrix.Disconnected, match="no simulator"):
            sim.read(names.heading)
        assert not sim.alive and sim.poll() == 0, "callbacks wait for a new one"
    assert sorted(windows.closed) == ["atom", "handle", "view"]
    with pytest.raises(tavrix.NoServer):
        tavrix.LocalClient(calls=(windows, windows))


def test_callbacks_and_bounds():
    windows, got = PlayedWindows(), []

    def failing(_):
        got.append("failing")
        raise KeyError("own")
    with tavrix.LocalClient(calls=(windows, windows)) as sim:
        sim.on_change(names.com1, failing)
        end = sim.on_change(names.com1, lambda value: got.append("second"))
        sim.on_change(names.nav1, lambda value: got.append("third"))
        with pytest.raises(KeyError, match="own"):
            sim.poll()
        assert got == ["failing", "second", "third"] and sim.poll() == 0
        end()
        end()
        sim.on_change(names.com1, lambda value: got.append("fourth"))
        assert sim.poll() == 1 and got[3:] == ["fourth"]
        for place in ((0x1FFFF, 2), (-2, 2), (0x20000, 1), (5, -1)):
            with pytest.raises(ValueError, match="the memory ends"):
                sim.read_bytes(place)
        with pytest.raises(ValueError, match="the memory ends"):
            sim.write_bytes((0x1FFFF, b"12"))
        for wrong in (float("nan"), -1):
            with pytest.raises(ValueError, match="confirm"):
                sim.write(names.com1, 118.7, confirm=wrong)
        sim.on_change(names.nav2, lambda value: sim.close())
        sim.on_change(names.adf1, lambda value: got.append("after close"))
        sim.run(DEADLINE)
        assert got[4:] == [] and sim.poll() == 0
        with pytest.raises(tavrix.Disconnected, match="closed"):
            sim.write(names.com1, 118.7)
