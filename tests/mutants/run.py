#!/usr/bin/env python3
"""Changes one line of the product at a time, in a copy of the tree, and looks whether the tests notice.

  tests/mutants/run.py                        every change of listed.txt
  tests/mutants/run.py shell "ATC texts"      those of a room, or whose name holds the text
  tests/mutants/run.py --sample 60 --seed 1   as many drawn by a mechanical rule, over all rooms (or those named, also
                                              offsetctl, cockpit, simulator; with `log.cpp:126` behind it, that one of
                                              them again)
  --check finds the listed texts only, --dry shows what would be changed. Exit status: 0 when nothing survives of the
  list, or less than a tenth of a sample."""
import argparse
import fcntl
import hashlib
import os
import re
import resource
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from itertools import islice
from pathlib import Path

from mutate import BESIDE, Mutant, draw, room_of

TOP = Path(__file__).resolve().parents[2]
LIST = Path(__file__).with_name("listed.txt")
# The unit tests of each room.
FILTERS = {
    "aircraft": "Adapters.*",
    "base": "Log*:Bounded.*:Files.*:Plugin.*:Locks*:Request.*",
    "bridge": "FlightRows.*:EngineRows.*:RadioRows.*:Stations.*:WeatherArea.*:Catalogue*:Readers*:*RowOrders*:StartNames.*:"
              "Versions.*:VersionedRows.*:Adapters.*:CustomRuntime.Client*",
    "controls": "Axis*:Axes*:Button*",
    "custom": "Custom*",
    "net": "Net*:Frames.*:Relay*:Permissions.*",
    "offsets": "Request*:NetworkFolder.*:WeatherArea.*:Catalogue*:Lifecycle.*",
    "panels": "Panels*:AxisPanels*:ButtonPanel*",
    "platform": "Locks*:Events.*:Thread*:System.*:Exceptions.*:RequestMemory.*:Files.*:Advice.*:Net*",
    "pushback": "Pushback.*",
    "settings": "Settings*:AtcText*",
    "shell": "Lifecycle*:*EntryPoints*:Plugin*:AtcText*:Advice*:Panels.Menu",
    "status": "StatusPage*",
    "traffic": "Traffic*",
    "offsetctl": "Offsetctl*",
    "cockpit": "Cockpit*",
    "simulator": "Sim*",
}
# Without optimisation and warnings; with the sanitizers and the assertions of the offset lock, as in `./test`.
CONFIGURE = ["-G", "Ninja", "-DCMAKE_BUILD_TYPE=", "-DCMAKE_CXX_FLAGS=-O0 -w", "-DTAVRIX_CHECK_LOCKS=ON",
             "-DTAVRIX_SANITIZE=address,undefined"]
# A changed program must not fill the machine's memory.
SANITIZERS = {"ASAN_OPTIONS": "detect_leaks=1:hard_rss_limit_mb=4000", "UBSAN_OPTIONS": "print_stacktrace=0"}
PARTS = 4  # of the unit tests at a time: most of them wait most of the time
NETWORK = 'ip link set lo up && ip link set lo multicast on && ip route add 224.0.0.0/4 dev lo && exec "$@"'
PATIENCE = 30  # seconds that tests may take beyond five times of what they need on the unchanged tree


def read_list(text):
    """The entries of listed.txt, whose head tells their form."""
    mutants, held = [], {"group": "", "file": "", "tests": ""}
    for block in re.sub(r"^#.*\n", "", text, flags=re.M).strip().split("\n\n"):
        entry = dict(line.split(": ", 1) for line in block.splitlines())
        held.update((key, entry.pop(key)) for key in held.keys() & entry.keys())
        if not {"old", "new"} <= entry.keys() <= {"old", "new", "after"}:
            sys.exit(f"listed.txt: an entry needs old and new:\n{block}")
        mutants.append(Mutant(f"{held['group']}: {entry['old']}", room_of(held["file"]), held["file"], entry["old"],
                              entry["new"], held["tests"], 0, entry.get("after", "")))
    return mutants


def place_of(mutant, text):
    """Where the old text begins, -1 when it is gone or stands twice."""
    if mutant.line:
        at = sum(len(line) + 1 for line in text.split("\n")[:mutant.line - 1])
        return at if text.startswith(mutant.old, at) else -1
    once = mutant.after or mutant.old
    return text.find(mutant.old, text.index(once)) if text.count(once) == 1 else -1


class Slot:
    """A copy of the tree with a build folder of its own, taken by one run at a time; the next one finds it built."""

    def __init__(self, folder):
        number = 0
        while True:
            (folder / str(number)).mkdir(parents=True, exist_ok=True)
            self.lock = open(folder / str(number) / "lock", "w")
            try:
                fcntl.flock(self.lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
                break
            except BlockingIOError:
                number += 1
        self.tree = folder / str(number) / "tree"
        self.build = self.tree / "build" / "linux"  # where the end-to-end tests look
        self.update()

    def update(self):
        names = subprocess.run(["git", "-C", TOP, "ls-files", "-co", "--exclude-standard", "-z"], check=True,
                               capture_output=True, text=True).stdout.split("\0")
        wanted = {name for name in names if name and (TOP / name).is_file()}
        for name in wanted:
            target = self.tree / name
            if not target.exists() or target.read_bytes() != (TOP / name).read_bytes():
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(TOP / name, target)
        for path in self.tree.rglob("*"):
            name = path.relative_to(self.tree).as_posix()
            if path.is_file() and name not in wanted and not name.startswith("build/"):
                path.unlink()

    def configure(self):
        more = []
        if shutil.which("ccache"):
            more += ["-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"]
        if shutil.which("ld.lld"):
            more += [f"-DCMAKE_{kind}_LINKER_FLAGS=-fuse-ld=lld" for kind in ("EXE", "SHARED", "MODULE")]
        subprocess.run(["cmake", "-S", self.tree, "-B", self.build, *CONFIGURE, *more], check=True, stdout=subprocess.DEVNULL)

    def make(self, targets):
        """What the compiler said when it fails, else nothing."""
        ended = subprocess.run(["cmake", "--build", self.build, "--target", *targets], stdout=subprocess.PIPE,
                               stderr=subprocess.STDOUT, text=True, errors="replace")
        return "" if ended.returncode == 0 else ended.stdout or "failed"

    def program(self, targets):
        """What the targets have become, to compare."""
        files = {"unit_tests": "bin/unit_tests", "tavrix": "plugin/lin.xpl", "offsetctl": "bin/offsetctl",
                 "standin": "bin/standin"}
        return [hashlib.sha256((self.build / files[target]).read_bytes()).digest() for target in targets]

    def test(self, tests, patience):
        """(passed, what happened): a hang, a crash and a failure are three ways of noticing."""
        apart = subprocess.run(["unshare", "--net", "true"], capture_output=True).returncode == 0
        network = ["unshare", "--net", "sh", "-c", NETWORK, "sh"] if apart else []
        with tempfile.TemporaryDirectory(prefix="tavrix-mutant-") as top:
            runs = []
            try:
                for part in range(PARTS if apart and not tests.startswith("e2e ") else 1):
                    folder = Path(top) / str(part)
                    folder.mkdir()
                    runs.append(self.begin(tests, folder, network, part if apart else None))
                return self.follow(runs, time.monotonic() + patience)
            finally:  # what the tests have started, too: they are a session of their own
                for process, _ in runs:
                    try:
                        os.killpg(process.pid, signal.SIGKILL)
                    except ProcessLookupError:
                        pass
                    process.wait()

    def begin(self, tests, folder, network, part):
        environment = dict(os.environ, PYTHONDONTWRITEBYTECODE="1", TEST_TMPDIR=str(folder), TMPDIR=str(folder), **SANITIZERS)
        if tests.startswith("e2e "):
            cwd = self.tree / "tests" / "e2e"
            command = ["/usr/bin/python3", "-m", "pytest", "-x", "-q", "-p", "no:cacheprovider", "-m", "not wine",
                       f"--basetemp={folder}/e2e", *shlex.split(tests)[1:]]
        else:
            cwd = folder
            command = [self.build / "bin" / "unit_tests", "--gtest_brief=1", "--gtest_fail_fast", f"--gtest_filter={tests}"]
            if part is not None:
                environment.update(GTEST_TOTAL_SHARDS=str(PARTS), GTEST_SHARD_INDEX=str(part))
        with open(folder / "output", "w") as output:
            return subprocess.Popen([*network, *command], cwd=cwd, env=environment, stdin=subprocess.DEVNULL, stdout=output,
                                    stderr=subprocess.STDOUT, start_new_session=True, preexec_fn=bounds), folder / "output"

    def follow(self, runs, until):
        """Ends with the first part that fails."""
        waiting = list(runs)
        while waiting:
            for run in list(waiting):
                status = run[0].poll()
                if status is not None:
                    waiting.remove(run)
                    if status != 0:
                        return False, self.told(status, run[1].read_text(errors="replace"))
            if time.monotonic() > until:
                return False, "hangs"
            time.sleep(0.02)
        return True, ""

    @staticmethod
    def told(status, text):
        failed = [line.split()[3 if "FAILED" in line else 1].rstrip(",") for line in text.splitlines()
                  if line.startswith(("[  FAILED  ] ", "FAILED test_")) and "." in line]
        if failed:
            return "fails " + failed[0]
        found = re.search(r"ERROR: (\w+Sanitizer: [\w-]+)|(runtime error: .*)", text)
        return "stops: " + (found[1] or found[2]) if found else "crashes" if status != 1 else "fails " + text[-200:]


def bounds():
    """A changed program must not fill the machine's disk; its memory is the sanitizer's to limit, which reserves more
    than there is."""
    resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 30, 1 << 30))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def targets_of(tests):
    return ("tavrix", "standin", "offsetctl") if tests.startswith("e2e ") else ("unit_tests",)


class Run:
    def __init__(self, slot, mutants):
        self.slot = slot
        self.patience = {}
        print("building the unchanged tree ...", flush=True)
        slot.configure()
        self.unchanged = {}
        for targets in {targets_of(mutant.tests) for mutant in mutants}:
            failure = slot.make(targets)
            if failure:
                sys.exit(failure[-4000:])
            self.unchanged[targets] = slot.program(targets)
        for tests in dict.fromkeys(mutant.tests for mutant in mutants):  # only tests that pass now can notice a change
            started = time.monotonic()
            passed, told = slot.test(tests, 1800)
            if not passed:
                sys.exit(f"the tests {tests} do not pass on the unchanged tree: {told}")
            self.patience[tests] = PATIENCE + 5 * (time.monotonic() - started)

    def outcome(self, mutant):
        """(killed, survived, same or invalid; what happened)."""
        file = self.slot.tree / mutant.file
        before = file.read_text()
        at = place_of(mutant, before)
        if at < 0:
            sys.exit(f"{mutant.file}: not there, or not once: {mutant.old}")
        file.write_text(before[:at] + mutant.new + before[at + len(mutant.old):])
        try:
            targets = targets_of(mutant.tests)
            failure = self.slot.make(targets)
            if failure:
                return "invalid", next((line for line in failure.splitlines() if "error:" in line), failure[-200:])
            if self.slot.program(targets) == self.unchanged[targets]:
                return "same", "the compiler makes the same program of it"
            passed, told = self.slot.test(mutant.tests, self.patience[mutant.tests])
            return ("survived" if passed else "killed"), told
        finally:
            file.write_text(before)


def show(mutant, result, told, started):
    print(f"{result:8} {mutant.name}  [{time.monotonic() - started:.0f} s] {told}", flush=True)
    if result != "killed":
        print(f"         - {mutant.old.strip()}\n         + {mutant.new.strip()}", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("names", nargs="*", help="rooms, or parts of names")
    parser.add_argument("--sample", type=int, default=0)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--check", action="store_true")
    parser.add_argument("--dry", action="store_true")
    parser.add_argument("--scratch", type=Path, default=TOP / "build" / "mutants")
    options = parser.parse_args()
    listed = read_list(LIST.read_text())
    lost = [mutant for mutant in listed if place_of(mutant, (TOP / mutant.file).read_text()) < 0]
    for mutant in lost:
        print(f"listed.txt: not there, or not once in {mutant.file}: {mutant.old}")
    if lost or options.check:
        return 1 if lost else 0
    texts = [name for name in options.names if name not in FILTERS]
    if options.sample:
        rooms = ([room for room in FILTERS if room in options.names] or
                 [room for room in FILTERS if room not in BESIDE])
        supply, wanted = draw(TOP, FILTERS, rooms, options.sample, options.seed)
        if texts:  # of the same draw
            again = [mutant for room in rooms for mutant in islice(supply[room], 3 * wanted[room])
                     if any(text in mutant.name for text in texts)]
            supply, wanted = {"": iter(again)}, {"": len(again)}
        chosen = [Mutant("", room, "", "", "", FILTERS[room], 0, "") for room in rooms]
    else:
        chosen = [mutant for mutant in listed if not options.names or mutant.room in options.names or
                  any(text.lower() in mutant.name.lower() for text in texts)]
        supply, wanted = {"": iter(chosen)}, {"": len(chosen)}
    if options.dry:
        for room, count in wanted.items():
            for _, mutant in zip(range(count), supply[room]):
                print(f"{mutant.name}\n  - {mutant.old.strip()}\n  + {mutant.new.strip()}")
        return 0
    if not chosen:
        sys.exit("nothing of that name is listed")
    run = Run(Slot(options.scratch), chosen)
    counts = dict.fromkeys(("killed", "survived", "same", "invalid"), 0)
    survivors = []
    for room, count in wanted.items():
        while count > 0:
            mutant = next(supply[room], None)
            if mutant is None:
                break
            started = time.monotonic()
            result, told = run.outcome(mutant)
            show(mutant, result, told, started)
            counts[result] += 1
            survivors += [mutant] if result == "survived" else []
            # Of a sample, what cannot be built or changes nothing is replaced by the next one.
            count -= 1 if not options.sample or result in ("killed", "survived") else 0
    print(", ".join(f"{number} {result}" for result, number in counts.items()))
    for mutant in survivors:
        print(f"survived: {mutant.name}: {mutant.old.strip()} -> {mutant.new.strip()}")
    if options.sample:
        return 0 if counts["survived"] * 10 < counts["killed"] + counts["survived"] else 1
    return 0 if counts["killed"] == len(chosen) else 1


sys.exit(main())
