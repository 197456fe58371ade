"""What the delivered files export and import."""
import re
import subprocess

import pytest

from conftest import TOP

ENTRY_POINTS = {"XPluginStart", "XPluginStop", "XPluginEnable", "XPluginDisable", "XPluginReceiveMessage"}
SYSTEM_DLLS = {"kernel32.dll", "user32.dll", "advapi32.dll", "winmm.dll", "ws2_32.dll", "msvcrt.dll"}


def declared(suffix=""):
    names = set()
    for library in ("XPLM", "XPWidgets"):
        lines = (TOP / "sdk" / f"{library}{suffix}.def").read_text().split()
        names |= {name for name in lines if name.startswith("XP") and "." not in name}
    return names


def windows_tables(file, tool):
    text = subprocess.run([tool, "-p", str(file)], capture_output=True, text=True, check=True).stdout
    exports = set(re.findall(r"^\s*\[\s*\d+\]\s+(?:\+base\[\s*\d+\]\s+[0-9a-f]+\s+)?(\w+)$",
                             text.split("[Ordinal/Name Pointer] Table")[1], re.M))
    imports = {}
    for block in text.split("DLL Name: ")[1:]:
        name = block.split("\n", 1)[0].strip().lower()
        imports[name] = set(re.findall(r"^\s+[0-9a-f]+\s+\d+\s+(\w+)$", block.split("\n\n", 1)[0], re.M))
    return exports, imports


@pytest.mark.wine
@pytest.mark.parametrize("preset, tool, suffix", [("win32", "i686-w64-mingw32-objdump", ""),
                                                  ("win64", "x86_64-w64-mingw32-objdump", "_64")])
def test_windows_plugin(preset, tool, suffix):
    exports, imports = windows_tables(TOP / "build" / preset / "plugin" / "win.xpl", tool)
    assert exports == ENTRY_POINTS
    simulator = {f"xplm{suffix}.dll", f"xpwidgets{suffix}.dll"}
    assert simulator <= set(imports)
    assert set(imports) - simulator <= SYSTEM_DLLS
    used = set().union(*(imports[library] for library in simulator))
    assert used and used <= declared(suffix)


def test_linux_plugin():
    file = TOP / "build" / "linux" / "plugin" / "lin.xpl"
    table = subprocess.run(["nm", "-D", str(file)], capture_output=True, text=True, check=True).stdout
    exports = set(re.findall(r"^[0-9a-f]+ [TWVBDRu] (\S+)$", table, re.M))
    assert exports == ENTRY_POINTS
    undefined = {name.split("@")[0] for name in re.findall(r"^\s+U (\S+)$", table, re.M)}
    used = {name for name in undefined if name.startswith("XP")}
    assert used and used <= declared()
    libraries = subprocess.run(["objdump", "-p", str(file)], capture_output=True, text=True, check=True).stdout
    needed = set(re.findall(r"NEEDED\s+(\S+)", libraries))
    assert {name.split(".")[0] for name in needed} <= {"libc", "libm", "ld-linux-x86-64"}
