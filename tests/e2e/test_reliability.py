"""docs/reliability.md names what is there: every promise has a test, and every fault and fuzz target its promise."""
import re

from conftest import TOP

PAGE = (TOP / "docs" / "reliability.md").read_text()
UNIT = r"^(?:TEST|TEST_F|TEST_P)\((\w+),\s*(\w+)\)"


def those_of(name):
    """The tests of a file of the repository; of a fuzz target there is one, the file itself."""
    if name.endswith("_fuzz.cpp"):
        return {name} if (TOP / "fuzz" / name).exists() else set()
    file = TOP / "tests" / ("e2e" if name.endswith(".py") else "unit") / name
    assert file.exists(), name
    if name.endswith(".py"):
        return set(re.findall(r"^def (test_\w+)", file.read_text(), re.M))
    return {".".join(pair) for pair in re.findall(UNIT, file.read_text(), re.M)}


def named_in(cell):
    """(file, test) of all that a cell names: files, each with its tests behind it."""
    named, file = [], None
    for word in re.findall(r"`([^`]+)`", cell):
        if re.search(r"\.(py|cpp)$", word):
            file = word
            if not word.endswith("_fuzz.cpp"):
                continue
        named.append((file, word))
    return named


def test_every_promise_names_tests_that_are_there():
    rows = re.findall(r"^\| (.+) \| (.+) \|$", PAGE[:PAGE.index("## Ten minutes")], re.M)
    rows = [row for row in rows if row[1] != "Kept by" and not row[1].startswith("---")]
    assert len(rows) > 40
    for promise, cell in rows:
        named = named_in(cell)
        assert named, f"no test keeps: {promise}"
        for file, test in named:
            assert test in those_of(file), f"{promise}: {file} has no {test}"


def test_no_fault_and_no_fuzz_target_is_left_out():
    named = set(named_in(PAGE))
    wanted = {(file.name, file.name) for file in (TOP / "fuzz").glob("*_fuzz.cpp")}
    wanted |= {(file.name, test) for file in (TOP / "tests" / "e2e").glob("test_faults*.py") for test in those_of(file.name)}
    wanted.remove(("test_faults.py", "test_only_the_test_build_can_be_made_to_fail"))
    assert wanted <= named, f"docs/reliability.md lacks {sorted(wanted - named)}"
