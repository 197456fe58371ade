"""What people do with offsetctl: words and units, confirmed writes, offsets of their own, a look at an installation."""
import resource
import shutil
import signal
import socket
import subprocess
import time

import pytest

from conftest import wait_for
from network import PORT, ScriptedServer, block_frame, change_frame

SETTINGS = "[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\n"


@pytest.fixture(params=["linux", pytest.param("win32", marks=pytest.mark.wine)])
def build(request):
    return request.getfixturevalue(request.param)


@pytest.fixture
def serve(start, tmp_path):
    """serve(build, *options) -> Standin whose plug-in lies in its folder and accepts clients."""
    def begin(build, *options):
        root = tmp_path / "X-Plane"
        folder = root / "Resources" / "plugins" / "TAVRIX"
        (folder / "64").mkdir(parents=True)
        (folder / "TAVRIX.ini").write_text(SETTINGS)
        shutil.copy(build.plugin, folder / ("win.xpl" if build.wine else "64"))
        standin = start(build, *options, root=root)
        if "--rate" in options:  # no frames by themselves
            standin.ask("frames 70")
        standin.wait_log("TAVFARNET->Waiting for clients.....0")
        return standin
    return begin


def offsetctl(build, *words, expect=0):
    result = build.run("offsetctl", *words)
    assert result.returncode == expect, result.stdout + result.stderr
    return result.stdout if expect == 0 else result.stderr


def test_help_and_version_need_no_server(linux):
    everything = offsetctl(linux, "help")
    assert offsetctl(linux, "--help") == everything
    for command in ("read", "write", "map", "doctor", "record", "replay", "conform", "check"):
        assert f"  offsetctl {command} " in everything
        assert offsetctl(linux, "help", command) == offsetctl(linux, command, "--help") == offsetctl(
            linux, "-h", command)
    assert offsetctl(linux, "version") == offsetctl(linux, "--version")
    assert "no command \"raed\"" in offsetctl(linux, "raed", expect=2)


@pytest.mark.parametrize("words, told", [
    (["read", "headng"], "did you mean heading"),
    (["write", "heading=5000ft"], "does not convert to its unit, deg"),
    (["write", "gear=sideways"], "0 up, 16383 down"),
    (["write", "com1=99"], "outside 100 to 199.99 MHz"),
    (["write", "autobrake=landing"], "landing 1"),
    (["list", "nothing", "like", "this"], "no offset's name"),
    (["map", "psi", "float"], "no dataref"),
    (["map", "sim/a/b", "float", "0580"], "fixed meaning"),
    (["map", "sim/a/b", "float", "D850"], "area flight_records"),
    (["write", "lights=taxi+fog"], "none of navigation + beacon"),
    (["record", "/nowhere/x", "--local"], ""),
    (["conform", "luck", "--", "true"], "no situation \"luck\": there are plain"),
    (["doctor", "/nowhere"], "offsetctl doctor FOLDER"),
])
def test_wrong_words_are_told_in_one_line(linux, words, told):
    errors = offsetctl(linux, *words, expect=2)
    assert told in errors and errors.count("\n") == 1


def test_list_finds_by_all_its_words(linux):
    found = offsetctl(linux, "list", "autobrake")
    assert found.startswith("autobrake ") and "1 off, 2 landing 1" in found
    assert all("MHz" in line for line in offsetctl(linux, "list", "radio", "mhz", "standby").splitlines())


def test_writes_units_and_words(serve, build):
    standin = serve(build, "--flight", "none")
    standin.ask("frames 70")
    shown = offsetctl(build, "write", "com1=118.705MHz", "ap_altitude_set=10000ft", "--confirm", "gear=down",
                      "--net", "127.0.0.1").splitlines()
    assert shown[0].endswith("-> 118.70 MHz (118.705 MHz asked: steps of 0.01 MHz)")
    assert "-> 3047.96" in shown[1] and "-> 100.000 %" in shown[2]
    assert standin.number("sim/cockpit/radios/com1_freq_hz") == 11870
    assert abs(standin.number("sim/cockpit/autopilot/altitude") - 10000) < 1
    standin.quit()


def test_confirms_what_a_refresh_makes_of_it(serve, linux):
    standin = serve(linux)
    for step in range(24):  # the refresh comes before the echo in one of four
        offsetctl(linux, "write", f"0x0330:u16={16211 - step * 9}", "--confirm", "--timeout", "3")
    # A request that goes back is confirmed by the server's taking it.
    offsetctl(linux, "write", "radio_exchange:u8=8", "--confirm")
    standin.quit()


def test_confirms_only_what_a_refresh_leaves(serve, linux):
    standin = serve(linux, "--flight", "none")
    for words, status, told in (
            ("zulu_hour=25", 1, "zulu_hour shows 23 h (above 23"), ("zulu_hour=14", 0, ""),
            ("autobrake=77", 1, "shows 5 (above"), ("aircraft=hello", 1, "nothing in the simulator follows it"),
            ("message_text=hello", 0, ""), ("heading=45", 1, "heading shows "), ("ap_heading_bug=-10", 0, ""),
            ("lights=taxi+beacon", 0, ""), ("lights=off", 0, "")):
        result = linux.run("offsetctl", "write", words, "--confirm", "--timeout", "1.5")
        assert result.returncode == status and told in result.stderr, (words, result.stderr)
    standin.quit()


def test_confirms_nothing_where_no_frames_run(serve, linux):
    standin = serve(linux, "--flight", "none", "--rate", "0")
    assert "no frames have run" in offsetctl(linux, "write", "com1=118.30", "--confirm", "--timeout", "1", expect=1)
    standin.quit()


def test_tells_when_the_simulator_does_not_follow(linux):
    server = ScriptedServer("127.0.0.2")
    memory = bytearray(0x20000)
    try:

        client = subprocess.Popen(linux.command("offsetctl", "write", "flaps=100", "--confirm", "--net", "127.0.0.2",
                                                "--timeout", "2"), stderr=subprocess.PIPE, text=True)
        wait_for("the connection", lambda: server.accepted)
        server.send(*(block_frame(memory, index) for index in range(8)))
        connection = server.accepted[0][0]
        connection.settimeout(10)
        assert connection.recv(100)
        server.send(change_frame((0x0BDC, 0xFF), (0x0BDD, 0x3F)), change_frame((0x0BDC, 0), (0x0BDD, 0)))
        _, errors = client.communicate(timeout=20)
        assert client.returncode == 1 and "does not follow" in errors and "flaps shows 0.000 %" in errors, errors
    finally:
        server.close()


def test_maps_datarefs_to_offsets(serve, build):
    standin = serve(build, "--flight", "none")
    standin.ask("set sim/cockpit/radios/nav1_freq_hz 11030")
    words = ["map", "sim/cockpit/radios/nav1_freq_hz", "int"]
    assert "is added: 0x66C0:s32 = 11030 " in offsetctl(build, *words)
    assert "is there already: 0x66C0:s32 = 11030 " in offsetctl(build, *words)
    offsetctl(build, "write", "0x66C0:s32=11150", "--confirm")
    wait_for("the dataref", lambda: standin.number("sim/cockpit/radios/nav1_freq_hz") == 11150)
    text = (standin.folder / "TAVRIXOffsets.cfg").read_text()
    assert "has no dataref sim/none/such" in offsetctl(build, "map", "sim/none/such", "float", expect=2)
    assert (standin.folder / "TAVRIXOffsets.cfg").read_text() == text
    for wrong, told in ((["sim/cockpit/radios/nav1_freq_hz", "float"], "is kept as int, not as float"),
                        (["sim/flightmodel/engine/ENGN_N1_[99]", "floatarray"], "none of number 99")):
        assert told in offsetctl(build, "map", *wrong, expect=2)
        assert (standin.folder / "TAVRIXOffsets.cfg").read_text() == text
    assert "taken by line" in offsetctl(build, *words[:2], "float", "66C2", expect=2)
    offsetctl(build, "check", build.path(standin.folder / "TAVRIXOffsets.cfg"))
    standin.quit()


def test_maps_at_once_and_stopped(serve, linux):
    standin = serve(linux, "--flight", "none")
    path = standin.folder / "TAVRIXOffsets.cfg"
    path.write_text("# mine\n")
    begun = [subprocess.Popen(linux.command("offsetctl", "map", f"sim/cockpit/radios/com{i}_freq_hz", "int"))
             for i in (1, 2)]
    assert [one.wait(timeout=20) for one in begun] == [0, 0]
    text = path.read_text()
    assert text.startswith("# mine\n") and "com1_freq_hz int" in text and "com2_freq_hz int" in text
    stopped = subprocess.Popen(linux.command("offsetctl", "map", "sim/none/such", "int"), stderr=subprocess.PIPE, text=True)
    wait_for("the lines", lambda: "sim/none/such" in path.read_text())
    stopped.send_signal(signal.SIGINT)
    _, errors = stopped.communicate(timeout=20)
    assert stopped.returncode in (1, 2) and "nothing was added" in errors and path.read_text() == text, errors

    def fill_disk():
        signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
        resource.setrlimit(resource.RLIMIT_FSIZE, (200, 200))
    full = subprocess.run(linux.command("offsetctl", "map", "sim/flightmodel/position/psi", "float"), text=True,
                          stderr=subprocess.PIPE, preexec_fn=fill_disk)
    assert full.returncode == 2 and "It is as before" in full.stderr and path.read_text() == text
    assert not list(standin.folder.glob("TAVRIXOffsets.cfg.*"))
    path.write_text("Dataref a sim/none/such int\nOffset 66C0 SINT32 1 r $a\n")
    before = len(standin.log())
    offsetctl(linux, "write", "0x6F0E:u8=1")
    wait_for("the load", lambda: "sim/none/such not found" in standin.log()[before:])
    assert "no dataref sim/none/such" in offsetctl(linux, "map", "sim/none/such", "int", expect=1)
    standin.quit()


def test_doctor_finds_what_is_wrong(serve, build, tmp_path):
    standin = serve(build, "--flight", "none")
    assert "0 problem(s)" in offsetctl(build, "doctor")  # the running plug-in tells where it lies
    told = offsetctl(build, "doctor", build.path(standin.root))
    assert "A server answers at TCP port 65000" in told and "PROBLEM" not in told
    if not build.wine:
        assert "held by standin (process " in told
    standin.quit()
    folder = standin.folder
    (folder / "TAVRIX.ini").write_text(SETTINGS.replace("127.0.0.1", "192.0.2.7"))
    (folder / "TAVRIXOffsets.cfg").write_text("Offset 66C0 UINT99 1 r 1\n")
    (folder / "64" / "win.xpl").write_bytes(b"no program" * 100)
    (folder / "TAVRIX").mkdir()
    binary = folder / ("win.xpl" if build.wine else "64/lin.xpl")
    (folder.parent / "Copy.xpl").write_bytes(binary.read_bytes())
    binary.write_bytes(binary.read_bytes()[:binary.stat().st_size // 2])
    result = build.run("offsetctl", "doctor", build.path(folder))
    assert result.returncode == 1
    for problem in ("64/win.xpl is no plug-in", "lin.xpl is damaged" if not build.wine else "win.xpl is damaged",
                    "second copy of the plug-in", "folder TAVRIX within", "192.0.2.7, which this computer does not have",
                    "TAVRIXOffsets.cfg has 1 problem(s)"):
        assert "PROBLEM  " in result.stdout and problem in result.stdout, result.stdout
    # A port that somebody else has.
    (folder / "TAVRIX.ini").write_text(SETTINGS)
    with socket.create_server(("127.0.0.3", PORT)):
        told = build.run("offsetctl", "doctor", build.path(folder)).stdout
        assert "Nobody answers at TCP port 65000 of 127.0.0.1" in told
        if not build.wine:
            assert "the port is taken. It is held by " in told
    with socket.create_server(("127.0.0.1", PORT)):
        assert "but no values come from it" in build.run("offsetctl", "doctor", build.path(folder)).stdout


def test_never_hangs_on_a_silent_server(linux, tmp_path):
    server = ScriptedServer("127.0.0.2")
    try:
        for words in (["write", "gear=up"], ["write", "gear=up", "--confirm"], ["record", tmp_path / "x"],
                      ["map", "sim/a/b", "int"]):
            started = time.monotonic()
            result = linux.run("offsetctl", *words, "--net", "127.0.0.2", "--timeout", "0.5")
            assert result.returncode == 1 and result.stderr.startswith("offsetctl: "), words
            assert time.monotonic() - started < 3, words
    finally:
        server.close()
