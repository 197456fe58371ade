#!/usr/bin/env python3
"""Writes what the client libraries know of the offsets from docs/offsets.json: the names of the Python package with
their types, and the marked parts of the C files. `generate.py --check` compares and names the first stale file."""
import json
import re
import sys
from pathlib import Path

TOP = Path(__file__).resolve().parents[1]
DATA = json.loads((TOP / "docs/offsets.json").read_text())
ROWS = DATA["offsets"]
MARK = "Written by clients/generate.py from docs/offsets.json"


def identifier(text):
    return re.sub(r"\W+", "_", text).strip("_").upper()


def choice_lists():
    """Lists of values and bits: class name -> (form, [(identifier, number, text)]); and each row's class."""
    lists, by_content, of_row = {}, {}, {}
    for row in ROWS:
        members = [(identifier(one["name"]), one["value"], one["name"]) for one in row["values"] or []] or [
            (identifier(one["name"]), (1 << one["width"]) - 1 << one["bit"], one["name"]) for one in row["bits"] or []]
        if not members:
            continue
        key = row["form"], tuple(members)
        if key not in by_content:
            base = re.sub(r"\d+$", "", row["name"])
            by_content[key] = "".join(word.capitalize() for word in base.split("_"))
            lists[by_content[key]] = row["form"], members
        of_row[row["name"]] = by_content[key]
    return lists, of_row


LISTS, LIST_OF = choice_lists()


def python_number(value):
    return "None" if value is None else repr(value)


def python_names():
    text = f'"""{MARK}; do not edit."""\nfrom .offset import Bits, Choice, Offset\n'
    for name, (form, members) in LISTS.items():
        text += f"\n\nclass {name}({'Bits' if form == 'Bits' else 'Choice'}):\n"
        text += "".join(f"    {member} = {number}\n" for member, number, _ in members)
    text += "\n\n_ROWS = (\n"
    for row in ROWS:
        limits, near = row["range"] or {}, row["tolerance"] or {}
        fields = [row["name"], row["offset"], row["type"], row["size"], row["form"], row["unit"],
                  (row["scale"]["numerator"], row["scale"]["denominator"], row["bias"]),
                  tuple(limits.get(end) for end in ("low", "high", "step")), row["write"], row["readsBack"],
                  (near.get("absolute", 0), near.get("share", 0), near.get("wraps", False)), row["meaning"]]
        text += f"    ({', '.join(map(repr, fields))}, {LIST_OF.get(row['name'], 'None')}),\n"
    return text + """)
ALL = {row[0]: Offset(*row) for row in _ROWS}  # by name
globals().update(ALL)
"""


def python_type(row):
    if row["name"] in LIST_OF:
        return LIST_OF[row["name"]]
    scale = row["scale"]
    is_whole = row["type"][0] in "us" and scale["fraction"] == "1" and not row["bias"]
    return {"Text": "str", "Flag": "bool", "Bits": "int", "Bcd": "float" if row["unit"] == "MHz" else "int",
            "Number": "int" if is_whole else "float"}[row["form"]]


def note(row):
    """What an editor shows beside the name."""
    parts = [row["meaning"] + (f", positive {row['positive']}" if row["positive"] else "")
             + (f", from {row['reference']}" if row["reference"] else "")]
    if row["unit"]:
        parts.append(row["unit"])
    parts.append({"yes": "for writing", "no": "reads only", "read-only": "read-only"}[row["write"]])
    return f"{row['hex']} {'; '.join(parts)}"


def python_stub():
    text = f"# {MARK}; do not edit.\nfrom typing import Any, Dict\n\nfrom .offset import Bits, Choice, Offset\n"
    for name, (form, members) in LISTS.items():
        text += f"\nclass {name}({'Bits' if form == 'Bits' else 'Choice'}):\n"
        text += "".join(f"    {member} = {number}\n" for member, number, _ in members)
    text += "\nALL: Dict[str, Offset[Any]]\n\n"
    return text + "".join(f'{row["name"]}: Offset[{python_type(row)}]\n"""{note(row)}"""\n' for row in ROWS)


def c_header_part():
    text = "enum tavrix_offset {\n"
    text += "".join(f"  TAVRIX_{row['name'].upper()}, /* {note(row)} */\n" for row in ROWS)
    text += "  TAVRIX_OFFSETS\n};\n"
    for name, (_, members) in LISTS.items():
        base = re.sub(r"(?<!^)(?=[A-Z])", "_", name).upper()
        text += f"enum tavrix_{base.lower()} {{\n"
        text += ",\n".join(f"  TAVRIX_{base}_{member} = {number}" for member, number, _ in members) + "\n};\n"
    return text


def c_number(value):
    return repr(float(value)) if value is not None else "0"


def c_source_part():
    forms = {"Number": "NUMBER", "Flag": "FLAG", "Bcd": "BCD", "Bits": "BITS", "Text": "TEXT"}
    backs = {"same": "SAME", "switch": "SAME", "limited": "SAME", "near": "SAME", "own": "SAME", "request": "UNSEEN",
             "none": "UNSEEN"}
    text = ""
    for row in ROWS:
        limits, near = row["range"] or {}, row["tolerance"] or {}
        kind = row["type"].split(":")[0].upper()
        flags = [name for name, is_set in (("WRITABLE", row["write"] == "yes"), ("LOW", limits.get("low") is not None),
                                           ("HIGH", limits.get("high") is not None), ("WRAPS", near.get("wraps")), ("LISTED", row["values"]),
                                           (backs[row["readsBack"]], backs[row["readsBack"]] != "SAME")) if is_set]
        text += (f'  {{"{row["name"]}", "{row["unit"]}", {row["hex"]}, {row["size"]}, T_{kind}, F_{forms[row["form"]]}, '
                 f'{" | ".join("H_" + flag for flag in flags) or "0"}, {c_number(row["scale"]["numerator"])}, {c_number(row["scale"]["denominator"])}, '
                 f'{c_number(row["bias"])}, {c_number(limits.get("low"))}, {c_number(limits.get("high"))}, '
                 f'{c_number(limits.get("step"))}, {c_number(near.get("absolute", 0))}, {c_number(near.get("share", 0))}}},\n')
    return text


def with_part(path, part):
    """The file's text with what stands between its marks replaced."""
    text = (TOP / path).read_text()
    begin, end = f"/* {MARK}; do not edit. */\n", "/* End of the written part. */\n"
    before, rest = text.split(begin)
    return before + begin + part + end + rest.split(end)[1]


OUTPUTS = {
    "clients/python/tavrix/names.py": python_names,
    "clients/python/tavrix/names.pyi": python_stub,
    "clients/c/tavrix.h": lambda: with_part("clients/c/tavrix.h", c_header_part()),
    "clients/c/tavrix.c": lambda: with_part("clients/c/tavrix.c", c_source_part()),
}


def main():
    for path, make in OUTPUTS.items():
        text = make()
        if "--check" not in sys.argv:
            (TOP / path).write_text(text)
        elif not (TOP / path).exists() or (TOP / path).read_text() != text:
            sys.exit(f"generate.py: {path} is stale: run clients/generate.py and keep its result")


if __name__ == "__main__":
    main()
