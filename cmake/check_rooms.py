#!/usr/bin/env python3
"""Holds the order of the rooms: a file of src/ includes only its own room and rooms that stand above it.

  cmake/check_rooms.py [FOLDER]   of the checkout; without it the one this script lies in

Prints one line a fault and ends with 1, or prints nothing and ends with 0. Reads includes, no more: what one room
tells another to call (the Connect... functions) is no include and no fault.
"""
import re
import sys
from pathlib import Path

# From the ground up. Rooms on one line do not know each other. This is the one place where the order stands.
ORDER = [
    ["platform"],
    ["base"],
    ["settings"],
    ["offsets"],
    ["bridge"],
    ["custom"],
    ["aircraft"],
    ["controls"],
    ["pushback", "traffic", "net", "status"],
    ["panels"],
    ["shell"],
]
LINE_OF = {room: line for line, rooms in enumerate(ORDER) for room in rooms}

# Where the operating system may be known.
SYSTEM_PLACES = ("src/platform/", "src/offsets/window_server.cpp")
SYSTEM_WORDS = re.compile(r"\b(_WIN32|_WIN64|WIN32|__MINGW32__|__MINGW64__|__CYGWIN__|__linux__|__linux|linux|"
                          r"__unix__|__unix|_POSIX_VERSION|__APPLE__)\b")
INCLUDE = re.compile(r"\s*#\s*include(?:_next)?\s*(.*)")
NOT_FOR_SRC = ("simulator", "tests", "tools", "bench", "fuzz", "clients")
SDK = ("sdk/XPLM", "sdk/Widgets")
ROOM_HEADER = re.compile(r"// The room (\w+)/: ")


def without_comments(text):
    """Comments become blanks, lines stay where they are."""
    pattern = r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\''
    def blank(match):
        found = match.group(0)
        return found if found[0] in "\"'" else "\n" * found.count("\n")
    return re.sub(pattern, blank, text, flags=re.DOTALL)


def includes_of(lines):
    """(line number, what stands behind #include) of each include."""
    for number, line in enumerate(lines, 1):
        match = INCLUDE.match(line)
        if match:
            yield number, match.group(1).strip()


def room_of(path):
    return path.split("/")[1]


def check_include(root, path, target, faults, graph):
    """Appends what is wrong with one include, without its place; notes arrows between files of src/."""
    system = re.fullmatch(r"<(.+)>", target)
    if system:
        if not path.startswith(SYSTEM_PLACES) and re.search(r"[./]", system.group(1)):
            faults.append(f"<{system.group(1)}> is a header of the operating system: "
                          "only src/platform/ and src/offsets/window_server.cpp know it")
        return
    own = re.fullmatch(r'"(.+)"', target)
    if not own:
        faults.append(f"#include {target} names no file")
        return
    name = own.group(1)
    upwards = ".." in name.split("/")
    if not upwards and (root / "src" / name).is_file():
        other = room_of("src/" + name)
        graph.setdefault(path, []).append("src/" + name)
        room = room_of(path)
        if room in LINE_OF and other in LINE_OF and room != other and LINE_OF[other] >= LINE_OF[room]:
            faults.append(f"room {room} must not include room {other} ({name})")
        return
    if not upwards and any((root / folder / name).is_file() for folder in SDK):
        return
    # Whatever an include path may lead to: no name of ours has steps upwards, and all begin in src/.
    here = (root / path).parent / name
    for folder in NOT_FOR_SRC:
        found = (root / folder / name).is_file() or (root / folder).resolve() in here.resolve().parents
        if found or name.startswith(folder + "/"):
            faults.append(f"src must not include {folder}/ ({name})")
            return
    faults.append(f'"{name}" is no file below src/ or sdk/: name it from src/ on')


def find_circles(graph):
    """Each circle once, as a list of files that ends where it begins."""
    circles, done, way = [], set(), []

    def walk(path):
        if path in way:
            circles.append(way[way.index(path):] + [path])
            return
        if path in done:
            return
        way.append(path)
        for other in graph.get(path, []):
            walk(other)
        way.pop()
        done.add(path)

    for path in sorted(graph):
        walk(path)
    return circles


def check_documents(root):
    """The table of rooms in the architecture page is this list: same rooms, same order."""
    page = "docs/architecture.md"
    rooms = [room for line in ORDER for room in line]
    told, at = [], 1
    for number, line in enumerate((root / page).read_text(encoding="utf-8").splitlines(), 1):
        cell = re.match(r"\|([^|]*)\|", line)
        names = re.findall(r"`src/(\w+)/`", cell.group(1)) if cell else []
        told += names
        if names and told != rooms[:len(told)]:
            return [f"{page}:{number}: room {told[-1]} stands where the list has "
                    f"{rooms[len(told) - 1] if len(told) <= len(rooms) else 'no more rooms'}"]
        at = number if names else at
    return [f"{page}:{at}: room {room} is missing behind this line" for room in rooms[len(told):len(told) + 1]]


def check(root):
    faults, graph, headers = [], {}, {room: [] for room in LINE_OF}
    files = sorted(path for path in (root / "src").rglob("*") if path.suffix in (".h", ".cpp", ".inc"))
    for file in files:
        path = file.relative_to(root).as_posix()
        if path.count("/") < 2 or room_of(path) not in LINE_OF:
            faults.append(f"{path}:1: this folder is no room of the list in cmake/check_rooms.py")
        text = file.read_text(encoding="utf-8")
        lines = without_comments(text).split("\n")
        for number, target in includes_of(lines):
            found = []
            check_include(root, path, target, found, graph)
            faults += [f"{path}:{number}: {fault}" for fault in found]
        if not path.startswith(SYSTEM_PLACES):
            for number, line in enumerate(lines, 1):
                word = SYSTEM_WORDS.search(re.sub(r'"(?:\\.|[^"\\])*"', '""', line))
                if word and not INCLUDE.match(line):
                    faults.append(f"{path}:{number}: {word.group(1)} stands outside src/platform/ and "
                                  "src/offsets/window_server.cpp")
        title = ROOM_HEADER.match(text)
        if title and file.suffix == ".h":
            headers.setdefault(title.group(1), []).append(path)
    for circle in find_circles(graph):
        faults.append(f"{circle[0]}:1: circle of includes: {' -> '.join(circle)}")
    for room, found in headers.items():
        wrong = [path for path in found if room_of(path) != room]
        if len(found) != 1 or wrong:
            faults.append(f"{(wrong or found or [f'src/{room}/'])[-1]}:1: {len(found)} headers begin with "
                          f"\"// The room {room}/: \", one of src/{room}/ should")
    return faults + check_documents(root)


def main():
    root = Path(sys.argv[1] if len(sys.argv) > 1 else Path(__file__).parent.parent).resolve()
    faults = check(root)
    print("\n".join(faults), end="\n" if faults else "")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
