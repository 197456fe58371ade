"""The plug-in file in a second, independent host, whose datarefs and commands throw when they are told to."""
import json
import re
import subprocess

import pytest

from conftest import wait_for

# 66C8 and 66D0 stand behind the dataref that throws: in its own group and in another one.
OFFSETS = """\
Dataref bad other/bad float
Dataref good other/good float
Offset 66C0 SINT32 2 r $bad
Offset 66C8 SINT32 2 r $good
Offset 66D0 SINT32 3 r $good
Offset 66D4 SINT32 0 w >bad @
Command 66D8 UINT8 0 1 other/held _
                   0 1 other/second
"""
HEADING, ALTITUDE = "sim/cockpit/autopilot/heading_mag", "sim/cockpit/autopilot/altitude"
DEFINED = {"other/bad": 1, "other/good": 5, "other/held": 0, "other/second": 0, HEADING: 90, ALTITUDE: 1000}


class Host:
    """tiny_host with lin.xpl, driven through its console."""

    def __init__(self, linux, root):
        folder = root / "Resources" / "plugins" / "TAVRIX"
        folder.mkdir(parents=True)
        (folder / "TAVRIX.ini").write_text("[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\n")
        (folder / "TAVRIXOffsets.cfg").write_text(OFFSETS)
        self.linux = linux
        self.process = subprocess.Popen(linux.command("tiny_host", linux.plugin, root), stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, text=True, bufsize=1)
        for name, value in DEFINED.items():
            assert self.ask(f"define {name} {value}") == "ok"
        assert self.ask("start") == "1" and self.ask("enable") == "1"
        assert self.caught(5) == 0
        self.log = folder / "TAVRIX.txt"
        self.wait_log("Waiting for clients")

    def wait_log(self, text):
        wait_for(f"the line '{text}'", lambda: text in self.log.read_text(errors="replace"))

    def ask(self, line):
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()
        return self.process.stdout.readline().rstrip("\n")

    def caught(self, frames):
        """Runs frames; how many exceptions have come to the host."""
        return int(self.ask(f"frames {frames}").removeprefix("caught "))

    def offsetctl(self, *words):
        result = self.linux.run("offsetctl", *words, "--net", "127.0.0.1")
        assert result.returncode == 0, result.stderr
        return result.stdout

    def read(self, *items):
        return [item["value"] for item in json.loads(self.offsetctl("read", *items, "--json"))]

    def quit(self):
        assert self.ask("quit") == "ok"
        assert self.process.stdout.read() == "unloaded, loops left: 0\n"
        assert self.process.wait(timeout=20) == 0


@pytest.fixture
def host(linux, tmp_path):
    running = Host(linux, tmp_path / "X-Plane other")
    yield running
    running.process.kill()
    running.process.wait()


def test_host_defines_what_the_plugin_imports(linux):
    def names(file, kind):
        table = subprocess.run(["nm", "-D", str(file)], capture_output=True, text=True, check=True).stdout
        return set(re.findall(rf" {kind} (XP\w+)", table))
    missing = names(linux.plugin, "U") - names(linux.bin / "tiny_host", "T")
    assert not missing, f"tests/hosts/tiny_host.cpp does not define what the plug-in imports: {sorted(missing)}"


def test_accessors_that_throw(host):
    items = ("0x66C0:s32", "0x66C8:s32", "0x66D0:s32")
    assert host.caught(3) == 0
    assert host.read(*items) == [1, 5, 5]

    # Every second run of the group asks the dataref; the runs between serve the offsets behind it.
    host.ask("throw other/bad on")
    assert host.caught(20) == 10
    host.ask("define other/good 6")
    assert host.caught(20) == 10
    wait_for("the other offsets", lambda: host.read(*items) == [1, 6, 6])

    assert host.ask("message") == "ok"
    assert "pluginID" not in host.log.read_text(errors="replace")  # the host answers 0 for plug-ins that are not there
    assert host.ask("disable") == "ok" and host.caught(5) == 0
    assert host.ask("enable") == "1" and host.caught(20) == 10
    host.ask("throw other/bad off")
    assert host.caught(20) == 0
    # A dataref of the simulator's own: its cycle comes to nothing, and the next one is whole again.
    host.ask(f"throw {HEADING} on")
    assert host.caught(5) >= 5
    host.ask(f"throw {HEADING} off")
    assert host.caught(5) == 0
    host.quit()


@pytest.mark.parametrize("bad, good, written", [(HEADING, ALTITUDE, 2000), (ALTITUDE, HEADING, 180)])
def test_what_is_written_beside_one_that_throws(host, bad, good, written):
    """Whatever the order: the write that throws is over, the other one is carried out at the latest a frame later."""
    host.ask(f"throw {bad} set")
    # One request holds both: 180 degrees, 2000 feet.
    host.offsetctl("write", "0x07CC:u16=32768", f"0x07D4:u32={round(2000 * 0.3048 * 65536)}")
    wait_for("the exception", lambda: host.caught(1) == 1)
    assert host.caught(3) == 0
    assert abs(int(host.ask(f"get {good}")) - written) <= 1
    host.offsetctl("write", "0x66D4:s32=7")
    wait_for("the custom write", lambda: host.caught(1) == 0 and host.ask("get other/bad") == "7")
    host.quit()


def test_commands_that_throw(host):
    host.ask("throw other/held begin")
    host.offsetctl("write", "0x66D8:u8=1")
    wait_for("the exception of the first command", lambda: host.caught(1) == 1)
    assert host.caught(3) == 0
    assert host.ask("get other/second") == "1"  # its turn comes in the next frame
    # What counts as held is let go at disable, all of it; the exception comes when disable is complete.
    host.ask("throw other/held end")
    assert host.ask("disable") == "threw other/held"
    assert host.ask("get other/second") == "0"
    assert host.caught(5) == 0
    assert host.ask("enable") == "1" and host.caught(5) == 0
    host.quit()


def test_exceptions_of_its_own_do_not_leave(host):
    """The plug-in file is told apart from others by the C++ run time that it holds: seen in the file itself alone."""
    host.ask("memory off")
    host.offsetctl("write", "0x6F0E:u8=1")
    wait_for("the load", lambda: host.caught(1) == 0 and "Out of memory" in host.log.read_text(errors="replace"))
    host.ask("memory on")
    assert host.caught(5) == 0
    host.quit()


def test_a_plugin_that_throws_beside_ours(start, linux, tmp_path):
    """The same in the stand-in, where the exception comes from another plug-in file."""
    root = tmp_path / "X-Plane thrower"
    folder = root / "Resources" / "plugins" / "TAVRIX"
    folder.mkdir(parents=True)
    (folder / "TAVRIX.ini").write_text("[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\n")
    (folder / "TAVRIXOffsets.cfg").write_text(
        OFFSETS.replace("other/bad", "thrower/value").replace("other/good", "test/good")
        .replace("other/held", "thrower/act").replace("other/second", "test/second"))
    (tmp_path / "defined").write_text("define test/good float 5\ncommand test/second\n")
    standin = start(linux, "--plugin", linux.plugin.with_name("thrower.xpl"), "--define", tmp_path / "defined",
                    "--rate", "0", "--flight", "none", root=root)

    def offsetctl(*words):
        result = linux.run("offsetctl", *words, "--net", "127.0.0.1")
        assert result.returncode == 0, result.stderr
        return result.stdout

    def read(*items):
        return [item["value"] for item in json.loads(offsetctl("read", *items, "--json"))]

    def told():
        return sum("an exception came out of a flight loop: thrown by thrower" in line for line in standin.errors)

    standin.ask("set thrower/value 3")
    standin.ask("frames 70")
    standin.wait_log("Waiting for clients")
    items = ("0x66C0:s32", "0x66C8:s32", "0x66D0:s32", "0x07CC:u16")
    standin.ask("set thrower/on 1")
    assert standin.say("get thrower/value") == "error: a plug-in threw an exception"
    standin.ask("set test/good 6")
    standin.ask("set sim/cockpit/autopilot/heading_mag 90")
    standin.ask("frames 70")
    wait_for("all but the one", lambda: read(*items) == [3, 6, 6, 16384])
    wait_for("the line", lambda: told() > 0)
    offsetctl("write", "0x66D8:u8=1")
    standin.ask("calls")
    wait_for("the second command", lambda: standin.ask("frames 2") == "" and "begin test/second" in
             standin.ask("calls"))
    standin.ask("disable")
    wait_for("the line", lambda: any("out of XPluginDisable: thrown by thrower" in line for line in standin.errors))
    assert "TAVRIX deinit OK!" in standin.log().splitlines()[-2]
    standin.ask("enable")
    standin.ask("set thrower/on 0")
    before = told()
    standin.ask("frames 70")
    assert told() == before
    standin.ask("reload")
    standin.quit()
