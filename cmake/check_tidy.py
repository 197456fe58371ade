"""clang-tidy over our own code, with the settings in .clang-tidy: check_tidy.py [--deep] [--changed] [FILE...]

Takes the commands of the Linux release build (build/linux, configured). --changed: only files that differ from the last
commit, or were changed by it. A file that passed is not looked at again until it, a header, or the settings change
(build/tidy). Without --deep or --changed the analyzer's checks are left out, which take half of the time. Code for
Windows alone is not compiled here and not looked at."""
import hashlib
import json
import os
import re
import shutil
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

TOP = Path(__file__).resolve().parents[1]
ROOMS = ("src/", "tools/", "simulator/")
WORK = TOP / "build" / "tidy"
# What GCC alone understands, and its precompiled headers.
FOREIGN = re.compile(r" -(fno-gnu-unique|fno-optimize-strlen|Wno-restrict|Winvalid-pch|include \S*cmake_pch\S*|Werror)(?= )")


def commands():
    """The compile commands of our own files, by path from the top."""
    found = {}
    for entry in json.loads((TOP / "build" / "linux" / "compile_commands.json").read_text()):
        name = os.path.relpath(entry["file"], TOP)
        if name.startswith(ROOMS) and name not in found:
            entry["command"] = FOREIGN.sub("", entry["command"])
            found[name] = entry
    return found


def git(*words):
    return subprocess.run(["git", *words], cwd=TOP, capture_output=True, text=True).stdout.splitlines()


def changed():
    return set(git("diff", "--name-only", "HEAD") + git("diff", "--name-only", "HEAD~1") +
               git("ls-files", "--others", "--exclude-standard"))


def digest_of_headers():
    digest = hashlib.sha256((TOP / ".clang-tidy").read_bytes())
    for header in sorted(path for room in ROOMS for path in (TOP / room).rglob("*.h")):
        digest.update(header.read_bytes())
    return digest


def main(words):
    if not shutil.which("clang-tidy"):
        print("clang-tidy is not installed: ./test installs it")
        return 1
    entries = commands()
    names = [os.path.relpath(word, TOP) for word in words if not word.startswith("--")] or sorted(entries)
    checks = [] if "--deep" in words or "--changed" in words else ["--checks=-clang-analyzer-*"]
    if "--changed" in words:
        names = sorted(changed() & set(entries))
    for name in names:
        if name not in entries:
            print(f"{name} is none of the files that the Linux build compiles (configure it: cmake --preset linux)")
            return 1
    WORK.mkdir(parents=True, exist_ok=True)
    (WORK / "compile_commands.json").write_text(json.dumps(list(entries.values())))
    headers = digest_of_headers()

    def check(name):
        digest = headers.copy()
        digest.update("".join(checks).encode() + entries[name]["command"].encode() + (TOP / name).read_bytes())
        mark = WORK / digest.hexdigest()
        if mark.exists():
            return True
        result = subprocess.run(["clang-tidy", "-p", str(WORK), "--quiet", *checks, name], cwd=TOP, capture_output=True, text=True)
        if result.returncode != 0:
            print(result.stdout.strip() or result.stderr.strip(), flush=True)
            return False
        mark.touch()
        return True

    with ThreadPoolExecutor(os.cpu_count() or 1) as pool:
        passed = list(pool.map(check, names))
    if not all(passed):
        print(f"clang-tidy: {passed.count(False)} of {len(names)} files have findings")
    return 0 if all(passed) else 1


sys.exit(main(sys.argv[1:]))
