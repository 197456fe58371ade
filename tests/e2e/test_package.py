"""The release archive as a user gets it: the same bytes each time, whole, and its INSTALL.txt followed to the letter, over
an older installation with a user's own files, flown by its own stand-in, and removed."""
import hashlib
import json
import os
import re
import shlex
import shutil
import subprocess
import sys
import zipfile
from pathlib import Path

import pytest

from conftest import TOP, Build, wait_for

pytestmark = pytest.mark.wine  # it holds all three builds


def make(folder, **more):
    subprocess.run([sys.executable, str(TOP / "cmake" / "package.py"), str(folder)], check=True, **more)
    return next(folder.glob("*.zip"))


@pytest.fixture(scope="module")
def archive(tmp_path_factory):
    return make(tmp_path_factory.mktemp("archive"))


@pytest.fixture(scope="module")
def unpacked(archive, tmp_path_factory):
    """The archive's folder, unpacked with the modes that it tells."""
    folder = tmp_path_factory.mktemp("a user's downloads")
    with zipfile.ZipFile(archive) as opened:
        for entry in opened.infolist():
            os.chmod(opened.extract(entry, folder), entry.external_attr >> 16)
    return folder / archive.stem


def names_in(folder):
    return sorted(path.relative_to(folder).as_posix() for path in folder.rglob("*") if path.is_file())


# --- The archive -------------------------------------------------------------------------------------------------
def test_same_bytes_at_another_place_and_time(archive, tmp_path):
    environment = {**os.environ, "TZ": "Asia/Tokyo", "LC_ALL": "C", "HOME": str(tmp_path)}
    again = make(tmp_path / "elsewhere", cwd=tmp_path, umask=0o077, env=environment)
    assert again.read_bytes() == archive.read_bytes()


@pytest.mark.parametrize("preset, target", [("linux", "bin/offsetctl"), ("win32", "plugin/win.xpl"),
                                            ("win64", "plugin/win.xpl")])
def test_links_tell_no_time_and_no_place(tmp_path, preset, target):
    """The built objects linked again in a folder of another name; ./package --check compares whole builds."""
    build = TOP / "build" / preset
    for each in build.iterdir():
        if each.name not in ("bin", "plugin"):
            (tmp_path / each.name).symlink_to(each)
    (tmp_path / target).parent.mkdir()
    command = subprocess.run(["ninja", "-C", str(build), "-t", "commands", "-s", target], check=True, capture_output=True,
                             text=True).stdout.splitlines()[-1]
    subprocess.run(command, shell=True, cwd=tmp_path, check=True, capture_output=True)
    assert (tmp_path / target).read_bytes() == (build / target).read_bytes()


@pytest.mark.parametrize("preset", ["linux", "win32", "win64"])
def test_objects_tell_no_place(tmp_path, preset):
    """A source with texts and templates, compiled in a checkout of another name."""
    build, source, copy = TOP / "build" / preset, "tools/offsetctl/main.cpp", tmp_path / "a copy of another name"
    for folder in ("src", "tools"):
        shutil.copytree(TOP / folder, copy / folder)
    rows = json.loads((build / "compile_commands.json").read_text())
    row = next(each for each in rows if each["file"] == str(TOP / source) and "unit_tests" not in each["command"])
    words = [word.replace(str(TOP), str(copy)) for word in shlex.split(row["command"])]
    words[words.index("-o") + 1] = str(tmp_path / "made.o")
    subprocess.run(words, cwd=copy, check=True, capture_output=True)
    built = build / shlex.split(row["command"])[words.index("-o") + 1]
    assert (tmp_path / "made.o").read_bytes() == built.read_bytes()


def test_list_and_checksums_are_complete(archive, unpacked):
    subprocess.run(["sha256sum", "-c", "--quiet", f"{archive.name}.sha256"], cwd=archive.parent, check=True)
    sums = dict(reversed(line.split("  ")) for line in (unpacked / "SHA256SUMS").read_text().splitlines())
    listed = re.findall(r"^ *(\d+)  (\S+)  \((.*)\)$", (unpacked / "CONTENTS.txt").read_text(), re.M)
    names = names_in(unpacked)
    assert sorted(sums) == [name for name in names if name != "SHA256SUMS"]
    assert sorted(name for _, name, _ in listed) == [name for name in names if name not in ("SHA256SUMS", "CONTENTS.txt")]
    for size, name, owners in listed:
        data = (unpacked / name).read_bytes()
        assert (int(size), sums[name]) == (len(data), hashlib.sha256(data).hexdigest())
        terms = {f"licences/{owner}.txt" for owner in owners.split(", ")} - {"licences/own.txt"}
        assert terms <= set(names), f"{name}: {owners}"
    # What the built files hold of others is told.
    told = {name: owners for _, name, owners in listed}
    for mark, owner in ((b"need dictionary", "zlib"), (b"Mingw-w64 runtime", "mingw-w64"), (b"St9exception", "gcc"),
                        (b"uPlot", "web")):
        holding = [name for name in told if name.startswith(("TAVRIX", "programs")) and mark in (unpacked / name).read_bytes()]
        assert holding and all(owner in told[name].split(", ") for name in holding), f"{owner}: {holding}"
    assert sorted(holding) == [name for name in sorted(told) if "offsetctl" in name], "built without its web pages"


def test_pages_lead_to_what_is_there(unpacked):
    for page in [*(unpacked / "docs").glob("*.md"), unpacked / "CHANGELOG.md", TOP / "README.md", TOP / "CONTRIBUTING.md"]:
        for target in re.findall(r"\]\(([^)#:]+)(?:#[^)]*)?\)", page.read_text()):
            assert (page.parent / target).exists(), f"{page.name}: {target}"


def test_folder_is_what_the_guide_says(unpacked):
    table = re.search(r"^\| File in .*?\n\n", (unpacked / "docs" / "user-guide.md").read_text(), re.M | re.S)[0]
    told = [name for row in table.splitlines()[2:] for name in re.findall(r"`(.*?)`", row.split(" | ")[0])]
    assert sorted(told) == names_in(unpacked / "TAVRIX")
    plugin = unpacked / "TAVRIX"
    assert (plugin / "win.xpl").read_bytes() == (plugin / "32" / "win.xpl").read_bytes()


# --- INSTALL.txt -------------------------------------------------------------------------------------------------
class Installed(Build):
    """The programs of the archive, and the plug-in where it was copied to."""

    def __init__(self, preset, unpacked, xplane):
        super().__init__(preset)
        self.bin = unpacked / "programs" / preset
        self.plugin = xplane / "Resources/plugins/TAVRIX" / {"linux": "64/lin.xpl", "win32": "32/win.xpl",
                                                             "win64": "64/win.xpl"}[preset]


def step(lines, begin):
    found = [line.removeprefix(begin) for line in lines if line.startswith(begin)]
    assert len(found) == 1, f"INSTALL.txt: {begin}"
    return found[0].strip()


def follow(lines, what, preset, unpacked, xplane):
    """Runs a line of INSTALL.txt as a user of that system does."""
    if preset == "linux":
        command = step(lines, f"{what}, Linux:").replace("XPLANE", str(xplane))
        return subprocess.run(["bash", "-c", command], cwd=unpacked, check=True, timeout=60)
    command = step(lines, f"{what}, Windows:").replace("XPLANE", "Z:" + str(xplane).replace("/", "\\"))
    (unpacked / "step.bat").write_text(f"@echo off\r\n{command}\r\n")
    try:
        return subprocess.run(["wine", "cmd", "/c", "step.bat"], cwd=unpacked, check=True, timeout=60, capture_output=True)
    finally:
        (unpacked / "step.bat").unlink()


def fly(start, build, xplane, lines, unpacked, ours):
    """Flies the stand-in as INSTALL.txt says, reads a value as it says, and quits; the value's line."""
    told = step(lines, "Likewise, Windows, 32 for win32:" if build.wine else "Without X-Plane fly the stand-in, Linux:")
    told = told.replace("WIN", build.preset).replace("XPLANE", str(xplane)).replace("\\", "/")
    if build.preset == "win32":
        told = told.replace("/64/", "/32/")
    words = shlex.split(told)
    assert words == [f"programs/{build.preset}/standin", "--plugin", str(build.plugin), "--root", str(xplane)]
    standin = start(build, root=xplane)
    standin.wait_log("Waiting for clients")
    if build.wine:
        standin.wait_log("Register KORLMain Call message OK")
    found = re.search(r"programs/linux/(offsetctl .*?) \(Windows: programs\\WIN\\(.*?)\)",
                      step(lines, "While it flies, or X-Plane does:"))
    assert found[1] == found[2]
    wait_for("frames", lambda: float(standin.ask("get sim/time/total_running_time_sec")) > 3)
    read = build.run(*found[1].split())
    assert read.returncode == 0, read.stdout + read.stderr
    answers = [read.stdout]
    if ours:
        answers.append(build.run("offsetctl", "read", "0x66C0:u16", "--json").stdout)
    standin.quit()
    return answers


@pytest.mark.parametrize("preset", ["linux", "win32", "win64"])
def test_install_fly_update_remove(start, unpacked, tmp_path, preset):
    lines = (unpacked / "INSTALL.txt").read_text().splitlines()
    assert len(lines) == 10
    before = names_in(unpacked)
    if preset == "linux":
        follow(lines, "Check", preset, unpacked, tmp_path)
    xplane = tmp_path / "X-Plane 12"
    (xplane / "Resources" / "plugins").mkdir(parents=True)
    folder, build = xplane / "Resources" / "plugins" / "TAVRIX", Installed(preset, unpacked, xplane)

    # A fresh one.
    follow(lines, "Install or update", preset, unpacked, xplane)
    assert names_in(folder) == names_in(unpacked / "TAVRIX")
    first = start(build, root=xplane)
    first.wait_log("TAVRIX")
    first.quit()
    line = re.search(r"change the line in TAVRIX.ini to (Server Address = 127.0.0.1)", "\n".join(lines))[1]
    changed, count = re.subn(r"(?m)^Server Address = .*$", line, (folder / "TAVRIX.ini").read_text())
    assert count == 1
    (folder / "TAVRIX.ini").write_text(changed)
    assert re.search(r"heading.*\d", fly(start, build, xplane, lines, unpacked, False)[0])

    # An older one, with a user's own settings and offsets.
    settings, count = re.subn(r"(?m)^MaxSpeed = .*$", "; mine\nMaxSpeed = 3.25", (folder / "TAVRIX.ini").read_text())
    assert count == 1
    (folder / "TAVRIX.ini").write_text(settings)
    (folder / "TAVRIXOffsets.cfg").write_text("# mine\nOffset 66C0 UINT16 1 r 4711\n")
    mine = {name: (folder / name).read_bytes() for name in ("TAVRIX.ini", "TAVRIXOffsets.cfg")}
    for name in names_in(unpacked / "TAVRIX"):
        (folder / name).write_bytes(b"of an older version")
    follow(lines, "Install or update", preset, unpacked, xplane)
    for name in names_in(unpacked / "TAVRIX"):
        assert (folder / name).read_bytes() == (unpacked / "TAVRIX" / name).read_bytes(), name
    value = json.loads(fly(start, build, xplane, lines, unpacked, True)[1])[0]["value"]
    assert value == 4711
    assert {name: (folder / name).read_bytes() for name in mine} == mine

    # Gone, but what is the user's.
    gone, away = re.match(r"delete (.*) there, and (\S+) in X-Plane's folder; what is left is yours",
                          step(lines, "Remove:")).groups()
    for path in [*(folder / name for name in gone.split()), xplane / away]:
        shutil.rmtree(path) if path.is_dir() else path.unlink(missing_ok=True)
    assert names_in(xplane) == [f"Resources/plugins/TAVRIX/{name}" for name in sorted(mine)]
    assert names_in(unpacked) == before
