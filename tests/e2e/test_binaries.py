"""What the delivered files export and import."""
import re
import subprocess
from pathlib import Path

import pytest

from conftest import TOP

ENTRY_POINTS = {"XPluginStart", "XPluginStop", "XPluginEnable", "XPluginDisable", "XPluginReceiveMessage"}
SYSTEM_LIBRARIES = {"libc", "libm", "libgcc_s", "ld-linux-x86-64"}
NEWEST_GLIBC = (2, 34)  # of Ubuntu 22.04 (2.35) and Red Hat 9 (2.34), the older one
LINUX_FILES = ["plugin/lin.xpl", "bin/standin", "bin/XPLM_64.so", "bin/XPWidgets_64.so", "bin/offsetctl",
               "bin/offset_reference", "bin/tiny_host"]


def declared(suffix=""):
    names = set()
    for library in ("XPLM", "XPWidgets"):
        lines = (TOP / "sdk" / f"{library}{suffix}.def").read_text().split()
        names |= {name for name in lines if name.startswith("XP") and "." not in name}
    return names


def windows_tables(file, tool):
    text = subprocess.run([tool, "-p", str(file)], capture_output=True, text=True, check=True).stdout
    exports = set(re.findall(r"^\s*\[\s*\d+\]\s+(?:\+base\[\s*\d+\]\s+[0-9a-f]+\s+)?(\w+)$",
                             text.partition("[Ordinal/Name Pointer] Table")[2], re.M))
    imports = {}
    for block in text.split("DLL Name: ")[1:]:
        name = block.split("\n", 1)[0].strip().lower()
        imports[name] = set(re.findall(r"^\s+[0-9a-f]+\s+\d+\s+(\w+)$", block.split("\n\n", 1)[0], re.M))
    return exports, imports


def windows7():
    """Library -> its functions that Windows 7 has, of those that we use."""
    functions, library = {}, None
    for line in Path(__file__).with_name("windows7_functions.txt").read_text().splitlines():
        if line.startswith("["):
            library = functions.setdefault(line.strip("[]"), set())
        elif not line.startswith("#"):
            library |= set(line.split())
    return functions


def too_new(imports):
    known = windows7()
    return sorted(f"{library}: {name}" for library, names in imports.items() if not library.startswith("xp")
                  for name in names - known.get(library, set()))


@pytest.mark.wine
@pytest.mark.parametrize("preset, tool, suffix", [("win32", "i686-w64-mingw32-objdump", ""),
                                                  ("win64", "x86_64-w64-mingw32-objdump", "_64")])
def test_windows_plugin(preset, tool, suffix):
    exports, imports = windows_tables(TOP / "build" / preset / "plugin" / "win.xpl", tool)
    assert exports == ENTRY_POINTS
    simulator = {f"xplm{suffix}.dll", f"xpwidgets{suffix}.dll"}
    assert simulator <= set(imports)
    used = set().union(*(imports[library] for library in simulator))
    assert used and used <= declared(suffix)


@pytest.mark.wine
@pytest.mark.parametrize("preset, tool", [("win32", "i686-w64-mingw32-objdump"),
                                          ("win64", "x86_64-w64-mingw32-objdump")])
def test_windows_files_load_on_windows_7(preset, tool):
    folder = TOP / "build" / preset
    files = [folder / "plugin" / "win.xpl",
             *(file for name in ("standin", "offsetctl", "XP*") for file in (folder / "bin").glob(f"{name}.*"))]
    assert len(files) == 5
    for file in files:
        assert too_new(windows_tables(file, tool)[1]) == [], file


@pytest.mark.parametrize("name", LINUX_FILES)
def test_linux_files_load_on_older_systems(name):
    text = subprocess.run(["objdump", "-p", str(TOP / "build" / "linux" / name)], capture_output=True, text=True,
                          check=True).stdout
    needed = {library.split(".")[0] for library in re.findall(r"NEEDED\s+(\S+)", text)}
    assert needed <= SYSTEM_LIBRARIES | {"XPLM_64", "XPWidgets_64"}
    # Name and number, as in GLIBC_2.34; other names are marks of newer loaders.
    versions = re.findall(r"^\s+0x\w+ 0x\w+ \d+ (\w+?)_([\d.]+|\w+)$", text.split("Version References:")[1], re.M)
    assert versions and {family for family, _ in versions} <= {"GLIBC", "GCC"}, versions
    for family, number in versions:
        newest = NEWEST_GLIBC if family == "GLIBC" else (4, 2)
        assert tuple(int(part) for part in number.split("."))[:2] <= newest, f"needs {family}_{number}"


def test_linux_plugin():
    file = TOP / "build" / "linux" / "plugin" / "lin.xpl"
    table = subprocess.run(["nm", "-D", str(file)], capture_output=True, text=True, check=True).stdout
    exports = set(re.findall(r"^[0-9a-f]+ [TWVBDRu] (\S+)$", table, re.M))
    assert exports == ENTRY_POINTS
    undefined = {name.split("@")[0] for name in re.findall(r"^\s+U (\S+)$", table, re.M)}
    used = {name for name in undefined if name.startswith("XP")}
    assert used and used <= declared()


@pytest.mark.parametrize("library", ["XPLM", "XPWidgets"])
def test_standin_offers_what_is_declared(library):
    table = subprocess.run(["nm", "-D", "--defined-only", str(TOP / "build" / "linux" / "bin" / f"{library}_64.so")],
                           capture_output=True, text=True, check=True).stdout
    offered = set(re.findall(r" T (XP[A-Za-z0-9]+)$", table, re.M))
    for suffix in ("", "_64"):
        names = (TOP / "sdk" / f"{library}{suffix}.def").read_text().split("EXPORTS")[1].split()
        assert offered == set(names)
