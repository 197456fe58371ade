"""The settings file against kills: the stand-in with the plug-in is killed (SIGKILL; what TerminateProcess is on Windows)
at random moments while settings are rewritten as fast as it goes. The file is the old or the new one each time, and the
next start has nothing to say about it."""
import os
import random
import re
import signal
import time

import pytest

from conftest import DEADLINE, wait_for

# Kills of each kind; a hundred times as many, by hand: TAVRIX_KILLS=5000 with pytest and this file.
KILLS = int(os.environ.get("TAVRIX_KILLS", 0))
# What rewrites the file at once: the window, its field, the key, and the n-th value as it stands in the file.
FIELDS = [("Push Back Settings", "MaxSpeed", "MaxSpeed", lambda n: f"{-(n % 4000 + 1) / 1000:g}"),
          ("Performance settings", "Tune value", "Tune value", str),
          ("ATC Menu", "Number", "ATC Number", lambda n: f"N{n}"),
          ("ATC Menu", "Airline", "ATC Airline name", lambda n: f"Airline {n}")]
# What the log says of a settings file that it cannot use, or of a key in it.
COMPLAINTS = re.compile(r'the settings file|" in TAVRIX\.ini is|Not saved')


@pytest.fixture(params=[("linux", 25), pytest.param(("win32", 5), marks=pytest.mark.wine)], ids=lambda param: param[0])
def build_and_kills(request):
    name, kills = request.param
    return request.getfixturevalue(name), KILLS or kills


def with_key(text, key, value):
    changed, count = re.subn(f"(?m)^{re.escape(key)} =.*$", lambda _: f"{key} = {value}", text)
    assert count == 1, (key, text)
    return changed


def kill(standin):
    os.kill(standin.process.pid, signal.SIGKILL)
    assert standin.process.wait(timeout=DEADLINE) == -signal.SIGKILL
    standin.readers[0].join(timeout=DEADLINE)  # what it had answered


def begin(start, build, root):
    standin = start(build, "--rate", "0", "--flight", "none", root=root)
    standin.ask("frames 2")
    return standin


def files_of(standin):
    return sorted(path.name for path in standin.folder.iterdir())


def test_of_many_kills_none_tears_it(start, build_and_kills, tmp_path):
    build, kills = build_and_kills
    root = tmp_path / "X-Plane"
    standin = begin(start, build, root)
    standin.quit()
    ini, usual = standin.folder / "TAVRIX.ini", files_of(standin)
    with open(ini, "a", encoding="ascii") as file:
        file.write("; of the user\n" * 3000)  # so that writing it takes a while
    text, chance = ini.read_text(), random.Random(1)
    within = number = rewrites = 0
    for _ in range(kills):
        standin = begin(start, build, root)
        assert not COMPLAINTS.search(standin.log()), standin.log()
        assert ini.read_text() == text, "a start changed what was whole"
        for window in dict.fromkeys(field[0] for field in FIELDS):
            standin.ask(f'menu "{window}"')
        states, lines = [text], []
        for _ in range(150):
            number += 1
            window, label, key, value = FIELDS[number % len(FIELDS)]
            lines.append(f'type "{window}" "{label}" "{value(number)}"\n')
            states.append(with_key(states[-1], key, value(number)))
        standin.process.stdin.write("".join(lines))
        standin.process.stdin.flush()
        done = chance.randrange(1, 40)
        for _ in range(done):
            assert standin.answers.get(timeout=DEADLINE) == "ok"
        time.sleep(chance.random() * 0.004)  # any moment of a rewrite, which takes less than that
        kill(standin)
        while (answer := standin.answers.get(timeout=DEADLINE)) is not None:
            assert answer == "ok", answer
            done += 1
        rewrites += done
        text = ini.read_text()
        assert text in states[done:done + 2], (done, text[:2000])
        within += "TAVRIX.ini.tmp" in files_of(standin)
        assert set(files_of(standin)) <= {*usual, "TAVRIX.ini.tmp"}, files_of(standin)
    print(f"{kills} kills in {rewrites} rewrites; {within} left a file that was begun")
    assert build.wine or within > 0, "no kill fell into a rewrite"
    standin = begin(start, build, root)
    standin.ask(f'menu "{FIELDS[0][0]}"')
    standin.ask(f'type "{FIELDS[0][0]}" "{FIELDS[0][1]}" "-0.5"')
    assert files_of(standin) == usual, "the next rewrite takes the remainder away"
    standin.quit()


def test_a_kill_while_a_start_makes_or_completes_it(start, build_and_kills, tmp_path):
    build, kills = build_and_kills
    standin = begin(start, build, tmp_path / "X-Plane")
    standin.quit()
    ini, usual = standin.folder / "TAVRIX.ini", files_of(standin)
    whole, chance = ini.read_text(), random.Random(2)
    old = whole[:whole.index("Status page")]  # as an earlier version may have left it
    # The defaults come in one rewrite, then the keys of pushback, each in one of its own.
    pushback = re.search(r"(?<=\[PUSHBACK SETTINGS\]\n)(.+ = .*\n)+", whole)[0].splitlines(keepends=True)
    steps = [whole.replace("".join(pushback), "".join(pushback[:count])) for count in range(len(pushback) + 1)]
    took = 0.0
    for index in range(kills):
        before = old if index % 2 else ""
        ini.write_text(before) if before else ini.unlink(missing_ok=True)
        started = time.monotonic()
        standin = start(build, "--rate", "0", "--flight", "none", root=standin.root)
        if index < 2:
            standin.ask("frames 2")
            took = time.monotonic() - started
            assert ini.read_text() == whole
        time.sleep(chance.random() * took if index > 1 else 0)
        kill(standin)
        assert (ini.read_text() if ini.exists() else "") in (before, *steps)
        assert set(files_of(standin)) <= {*usual, "TAVRIX.ini", "TAVRIX.ini.tmp"}, files_of(standin)
