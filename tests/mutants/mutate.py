"""Mechanical one-line changes of C++ sources: where they can be made, and which of them a seed draws."""
import hashlib
import random
import re
from collections import namedtuple
from pathlib import Path

# A change: `old` stands once in `file`, or is the first behind `after`, or is the whole of `line`; `tests` are those that
# must notice it.
Mutant = namedtuple("Mutant", "name room file old new tests line after")

# What this system does not compile, or the test program does not link.
LEFT_OUT = re.compile(r"src/platform/win32/|src/platform/module_end\.cpp|src/offsets/window_server\.cpp|_win32\.cpp|"
                      r"main\.cpp$|^simulator/host/")
QUIET = re.compile(r"\b(?:Log(?:Line|Own|Both|Network|Stamped)|TraceLine|static_assert|assert)\(")
OPPOSITE = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==", "&&": "||", "||": "&&"}
TEXTS = re.compile(r'//[^\n]*|/\*.*?\*/|R"(\w*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|(?<!\w)\'(?:\\.|[^\'\\])\'', re.S)
SIMPLE = r"[&*]?\w+(?:(?:\.|->)\w+|\[\w+\])*"
# What is the same by its form: functions that take their arguments in either order (when only equality counts of a
# comparison), and memory that is asked for ahead.
EITHER_ORDER = re.compile(r"(?:std::)?(?:min|max|hypot)\(")
EITHER_ORDER_EQUAL = re.compile(r"(?:std::)?(?:strcmp|memcmp|strcasecmp)\(")
AHEAD = re.compile(r"\.(?:reserve|shrink_to_fit)\(")
# What lies beside the rooms, and is sampled when it is named.
BESIDE = {"offsetctl": "tools/offsetctl", "cockpit": "tools/cockpit", "simulator": "simulator"}


def closing(text, at):
    """The place behind the bracket that closes the one at `at`."""
    depth = 0
    for place in range(at, len(text)):
        depth += (text[place] in "([{") - (text[place] in ")]}")
        if depth == 0:
            return place + 1
    return len(text)


def code_of(text):
    """The text with everything that is not to be changed blanked out, character for character."""
    def blank(part):
        return re.sub(r"[^\n]", "\0", part)

    text = TEXTS.sub(lambda match: blank(match[0]), text)
    text = re.sub(r"^[ \t]*#[^\n]*(?:\\\n[^\n]*)*", lambda match: blank(match[0]), text, flags=re.M)
    for match in list(QUIET.finditer(text)):
        end = closing(text, match.end() - 1)
        text = text[:match.start()] + blank(text[match.start():end]) + text[end:]
    # Buffers that are only declared, how many are declared of what follows, and what a declaration says of its type.
    text = re.sub(r"^([ \t]*(?:inline |static |const |constexpr )*[\w:<>]+ \w+\[)(\d+)(?=\] = )",
                  lambda match: match[1] + blank(match[2]), text, flags=re.M)
    text = re.sub(r"^[ \t]*(?:inline |static |extern )*[\w:<>]+ [&(]*\w+\)?\[[^\n\]]*\](?: = \{\})?;",
                  lambda match: blank(match[0]), text, flags=re.M)
    return re.sub(r"^[ \t]*(?:using|template|typedef|enum|friend|namespace)\b[^\n]*", lambda match: blank(match[0]), text, flags=re.M)


def larger(number):
    match = re.fullmatch(r"(0[xX][0-9A-Fa-f]+|[0-9]+)([uUlL]*)", number)
    if match:
        if match[1][:2] in ("0x", "0X"):
            return f"0x{int(match[1], 16) + 1:0{len(match[1]) - 2}X}" + match[2]
        # A thousandth of a time is no fault.
        return str(2 * int(match[1]) if int(match[1]) >= 1000 else int(match[1]) + 1) + match[2]
    match = re.fullmatch(r"([0-9]+)(\.[0-9]*(?:[eE][-+]?[0-9]+)?[fF]?)", number)
    return str(int(match[1]) + 1) + match[2] if match else None


def changes_of_line(line, before):
    """(kind, start, end, new text) of every change that the rule knows for a line of code."""
    def change(kind, match, group, new):
        return kind, match.start(group), match.end(group), new

    for match in re.finditer(r" (<=|>=|<|>|==|!=|&&|\|\|) ", line):
        yield change("logic" if match[1] in ("&&", "||") else "comparison", match, 1, OPPOSITE[match[1]])
    for match in re.finditer(r"(?<![\w.'])(?:0[xX][0-9A-Fa-f]+|[0-9]+(?:\.[0-9]*(?:[eE][-+]?[0-9]+)?)?)[uUlLfF]*(?![\w.'])", line):
        more = larger(match[0])
        if more:
            yield change("constant", match, 0, more)
    for match in re.finditer(r"\b(?:if|while) \(", line):
        end = closing(line, match.end() - 1)
        condition = line[match.end():end - 1]
        if end <= len(line) and line[end - 1] == ")" and ";" not in condition and not re.match(r"(?:const )?[\w:<>]+[ *&]+\w+ = ", condition):
            yield "condition", match.end(), end - 1, f"!({condition})"
    statement = re.fullmatch(r"( +)((?:\+\+|--|\*)?[\w:]+(?:<[\w:]+>)?(?:\.|->|\(|\[| [-+|&^]?= |\+\+|--).*;)\s*", line)
    if (statement and not AHEAD.search(statement[2]) and not re.match(r"(?:return|break|continue|case|default|delete|throw|goto|co_)\b", statement[2])
            and re.search(r"[;{})]\s*$", before) and statement[2].count("(") == statement[2].count(")")
            and statement[2].count("{") == statement[2].count("}")):
        yield "statement", statement.start(2), statement.end(2), ";"
    for match in re.finditer(rf"\b(?:std::)?\w+(?:<\w+>)?\(({SIMPLE}), ({SIMPLE})\)", line):
        equal = re.match(r" [!=]= 0\b", line[match.end():]) or line[:match.start()].endswith("!")
        if match[1] != match[2] and not EITHER_ORDER.match(match[0]) and not (equal and EITHER_ORDER_EQUAL.match(match[0])):
            yield "arguments", match.start(1), match.end(2), f"{match[2]}, {match[1]}"
    for match in re.finditer(r"\breturn ([^;{}]+);", line):
        value = match[1]
        new = {"true": "false", "false": "true"}.get(value, "{}")
        if not re.fullmatch(r"[0-9.xXa-fA-FuUlLF]+|nullptr|\0\0", value) or value in ("true", "false"):
            yield change("return value", match, 1, new)


def changes_of_file(path, text):
    """kind -> [(line number, whole old line, whole new line)]; only lines that can be told from all others."""
    found = {}
    lines, masked = text.split("\n"), code_of(text).split("\n")
    before = "{"
    for number, (line, code) in enumerate(zip(lines, masked), 1):
        code_only = code.replace("\0", " ")
        if not code_only.strip():
            continue
        for kind, start, end, new in changes_of_line(code, before):
            if "\0" in code[start:end] and kind != "statement":
                # Texts that stand in the changed part come back from the line itself.
                if kind == "condition":
                    new = f"!({line[start:end]})"
                elif kind != "return value":
                    continue
            found.setdefault(kind, []).append((number, line, line[:start] + new + line[end:]))
        before = code_only
    return found


def room_of(file):
    """src/net/server.cpp is of the room `net`."""
    return next((name for name, folder in BESIDE.items() if file.startswith(folder + "/")), file.split("/")[1])


def draw(top, filters, rooms, count, seed):
    """Endless supply of mutants a room, in the seed's order: {room: iterator}, and how many are wanted of each: two, and
    the rest by the room's share of all changes."""
    supply, sizes = {}, {}
    for room in rooms:
        by_kind = {}
        for path in sorted((Path(top) / BESIDE.get(room, f"src/{room}")).rglob("*")):
            file = path.relative_to(top).as_posix()
            if path.suffix not in (".h", ".cpp") or LEFT_OUT.search(file):
                continue
            for kind, changes in changes_of_file(file, path.read_text()).items():
                by_kind.setdefault(kind, []).extend((file, *change) for change in changes)
        sizes[room] = sum(map(len, by_kind.values()))
        supply[room] = order(room, by_kind, seed, filters[room])
    wanted = {room: min(2, count // len(rooms)) for room in rooms}
    rest = count - sum(wanted.values())
    shares = {room: rest * sizes[room] / sum(sizes.values()) for room in rooms}
    for room in rooms:
        wanted[room] += int(shares[room])
    for room in sorted(rooms, key=lambda room: int(shares[room]) - shares[room])[:count - sum(wanted.values())]:
        wanted[room] += 1
    return supply, wanted


def order(room, by_kind, seed, tests):
    """A kind by chance, then the one of its changes that the seed's hash of the text puts first: a line that is changed or
    comes in elsewhere draws no other ones. Never two of one line."""
    def rank(change):
        file, _, old, new = change
        return hashlib.sha256(f"{seed}\n{file}\n{old.strip()}\n{new.strip()}".encode()).digest()

    chance = random.Random(f"{seed} {room}")
    for changes in by_kind.values():
        changes.sort(key=rank, reverse=True)
    used = set()
    while by_kind:
        kind = chance.choice(sorted(by_kind))
        file, number, old, new = by_kind[kind].pop()
        if not by_kind[kind]:
            del by_kind[kind]
        if (file, number) in used:
            continue
        used.add((file, number))
        yield Mutant(f"{file}:{number} {kind}", room, file, old, new, tests, number, "")
