"""The check of the rooms can fail: each fault put into a copy of the sources gives one line that names its place."""
import importlib.util
import shutil

import pytest

from conftest import TOP

spec = importlib.util.spec_from_file_location("check_rooms", TOP / "cmake" / "check_rooms.py")
check_rooms = importlib.util.module_from_spec(spec)
spec.loader.exec_module(check_rooms)

FAULTS = {
    "a higher room": ("src/offsets/memory.cpp", '#include "custom/custom.h"', "room offsets must not include room custom"),
    "a room beside it": ("src/net/net.h", "#  include \"traffic/traffic.h\"", "room net must not include room traffic"),
    "the stand-in": ("src/shell/menu.cpp", '#include "core/sim.h"', "src must not include simulator/"),
    "a test, by a way up": ("src/shell/menu.cpp", '#include "../../tests/row_harness.h"', "src must not include tests/"),
    "a tool": ("src/custom/custom.h", '#include "tools/offsetctl/net.h"', "src must not include tools/"),
    "a name without its room": ("src/net/net.h", '#include "frame.h"', '"frame.h" is no file'),
    "a macro": ("src/net/net.h", "#include SOMETHING", "names no file"),
    "a circle": ("src/bridge/catalogue.h", '#include "bridge/cycles.h"', "circle of includes"),
    "a system's header": ("src/net/server.cpp", "#include <sys/socket.h>", "header of the operating system"),
    "a system's name": ("src/base/log.cpp", "#ifdef _WIN32\n#endif", "_WIN32 stands outside"),
    "a second room header": ("src/net/frame.h", "// The room net/: once more", "2 headers begin with"),
    "a new folder": ("src/weather/weather.h", "#pragma once", "this folder is no room"),
    "a room that the page lacks": ("docs/architecture.md", "", "room shell stands where the list has panels"),
}
HARMLESS = ('// #include "shell/menu.h"', '/* _WIN32\n#include "panels/panels.h" */', 'char text[] = "_WIN32";')


@pytest.fixture(scope="module")
def copy(tmp_path_factory):
    root = tmp_path_factory.mktemp("rooms")
    for folder in ("src", "sdk", "docs", "simulator", "tests/unit", "tools"):
        shutil.copytree(TOP / folder, root / folder)
    shutil.copy(TOP / "tests" / "row_harness.h", root / "tests")
    return root


def faults_with(root, path, line):
    file = root / path
    before = file.read_text() if file.exists() else None
    file.parent.mkdir(exist_ok=True)
    if path.endswith(".md"):
        file.write_text("".join(each for each in before.splitlines(True) if "`src/panels/`" not in each))
    else:
        file.write_text(f"{line}\n{before or ''}")
    try:
        return check_rooms.check(root)
    finally:
        if before is None:
            shutil.rmtree(file.parent)
        else:
            file.write_text(before)


def test_each_fault_makes_one_line(copy):
    known = check_rooms.check(copy)
    for what, (path, line, told) in FAULTS.items():
        new = [fault for fault in faults_with(copy, path, line) if told in fault and fault not in known]
        assert len(new) == 1, (what, new)
        assert new[0].startswith("src/" if what == "a circle" else path.rsplit("/", 1)[0]), (what, new)


def test_comments_and_texts_are_none(copy):
    known = len(check_rooms.check(copy))
    for line in HARMLESS:
        assert len(faults_with(copy, "src/offsets/memory.cpp", line)) == known, line
