#!/usr/bin/python3
"""Makes every figure, prints them against their goals, and writes docs/performance.md from performance.template.md.
bench/run.sh builds what this needs and starts it, in a network of its own where that may be.

    report.py [--runs N] [--quick] [--no-wine REASON]     measure
    report.py --page       only the page anew, from figures.json of the last run
    report.py --check      only whether the page is what these figures give

Exit status: 0 when it ran (goals may be missed), 1 when a benchmark failed or was interrupted, or another run measures in
this checkout; then page and figures stay as they were."""
import argparse
import fcntl
import json
import os
import platform
import subprocess
import sys
import time
import traceback
from pathlib import Path

TOP = Path(__file__).resolve().parents[1]
TEMPLATE, FIGURES = TOP / "bench/performance.template.md", TOP / "bench/figures.json"
PAGE = TOP / "docs/performance.md"

sys.path.insert(0, str(TOP / "bench"))
import goals  # noqa: E402


def output(*words):
    """What a program says in one go, or nothing."""
    try:
        return subprocess.run(words, capture_output=True, text=True, cwd=TOP).stdout.strip()
    except OSError:
        return ""


def foreign_load(seconds):
    """Cores that are busy while this program only waits."""
    def busy():
        with open("/proc/stat") as file:
            ticks = [int(word) for word in file.readline().split()[1:9]]
        return sum(ticks) - ticks[3] - ticks[4]  # without idle and waiting for disks

    before, started = busy(), time.monotonic()
    time.sleep(seconds)
    return (busy() - before) / os.sysconf("SC_CLK_TCK") / (time.monotonic() - started)


def facts(runs, quick):
    """Machine and build in words."""
    import native_figures
    cpu = Path("/proc/cpuinfo").read_text()
    model = next((line.split(":", 1)[1].strip() for line in cpu.splitlines() if line.startswith("model name")), platform.machine())
    release = platform.freedesktop_os_release().get("PRETTY_NAME", "Linux")
    commit = output("git", "rev-parse", "--short=10", "HEAD")
    changed = output("git", "status", "--porcelain", "--", ".", f":!{PAGE.relative_to(TOP)}", f":!{FIGURES.relative_to(TOP)}")
    wine = output("wine", "--version")
    mingw = output("i686-w64-mingw32-g++-posix", "-dumpfullversion")
    return {
        "processor": model + (", a virtual machine" if " hypervisor" in cpu else ""),
        "cores": len(os.sched_getaffinity(0)),
        "system": f"{release}, kernel {platform.release()}" + (f", {wine}" if wine else ""),
        "compiler": output(native_figures.cached("CMAKE_CXX_COMPILER"), "--version").split("\n")[0] +
                    (f"; MinGW-w64 GCC {mingw}" if mingw else ""),
        "commit": (commit + (" with changes" if changed else "")) if commit else "unknown (no history here)",
        "date": time.strftime("%Y-%m-%d %H:%M UTC", time.gmtime()),
        "kind": f"{'a quick run: short samples, the page says less than after a full one' if quick else 'a full run'}, "
                f"the best of {runs} runs a side",
    }


def measure(options):
    """The whole run; raises when a benchmark fails."""
    import cockpit_streams
    import native_figures
    import network_figures
    import trouble_figures
    quick = options.quick
    figures, missing = {}, {}
    started = time.monotonic()

    def step(what, work, *words, **more):
        print(f"[{time.monotonic() - started:4.0f} s] {what} ...", flush=True)
        figures.update(work(*words, **more))

    print("Building the first complete form (once, minutes) ...", flush=True)
    first_form, reason = native_figures.build_first_form()
    started = time.monotonic()
    if reason:
        missing |= {"reference.": reason, "frame.ratio": reason}
    run = facts(options.runs, quick)
    load, foreign = os.getloadavg()[0], foreign_load(3)
    run["load"] = f"{load:.2f} as the system counts it; others kept {foreign:.2f} cores busy before the first measurement"
    step("benchmark programs, both in turn", native_figures.measure, options.runs, first_form)
    step("network", network_figures.measure, *((6, 60, 10) if quick else (15, 200, 50)))
    if os.geteuid() == 0:
        step("disable with silent name server", trouble_figures.measure_silent, 1 if quick else 3)
        step("disable with a link that stands still", trouble_figures.measure_stall)
    else:
        missing["trouble."] = "networks and mounts of one's own need root"
    step("disable with 96 aircraft", trouble_figures.measure_slots, "linux")
    if (TOP / "build/linux/bin/offsetctl").exists() and "serve" in output("build/linux/bin/offsetctl", "help"):
        step("web cockpit", cockpit_streams.measure, 3 if quick else 6)
    else:
        missing["cockpit."] = "offsetctl was built without `serve`"
    if options.no_wine:
        missing |= dict.fromkeys(("wine.", "drops.", "idle.wine", "slots.disable.win32"), options.no_wine)
    else:
        import wine_figures
        step("Windows build under Wine", wine_figures.measure, min(options.runs, 3), *((500, 15, 6) if quick else (1000, 200, 15)))
    run["load"] += f", {foreign_load(3):.2f} after the last"
    run["minutes"] = f"{(time.monotonic() - started) / 60:.1f}"
    rounded = {key: float(f"{value:.6g}") if isinstance(value, float) else value for key, value in figures.items()}
    return {"run": run, "figures": rounded, "missing": missing}


def alone():
    """A file that is locked while it is open. Two runs would measure each other, and build the first form in one place."""
    (TOP / "build").mkdir(exist_ok=True)
    file = open(TOP / "build/bench.lock", "w")
    try:
        fcntl.flock(file, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except BlockingIOError:
        raise RuntimeError("another run measures in this checkout: wait until it is done, or end it") from None
    return file


def count(text):
    if not text.isdecimal() or int(text) == 0:
        raise argparse.ArgumentTypeError("a number from 1 on")
    return int(text)


def main():
    options = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    options.add_argument("--runs", type=count, default=7)
    options.add_argument("--quick", action="store_true")
    options.add_argument("--no-wine", metavar="REASON", default="")
    options.add_argument("--page", action="store_true")
    options.add_argument("--check", action="store_true")
    chosen = options.parse_args()
    if not chosen.page and not chosen.check:
        try:
            with alone():
                run = measure(chosen)
        except KeyboardInterrupt:
            print(f"\nInterrupted; {PAGE.relative_to(TOP)} is as it was.", file=sys.stderr)
            return 1
        except Exception as error:  # whatever it was, the figures are not there
            traceback.print_exc()
            print(f"\nA benchmark failed: {error}\n{PAGE.relative_to(TOP)} is as it was.", file=sys.stderr)
            return 1
        FIGURES.write_text(json.dumps(run, indent=1) + "\n")
    run = json.loads(FIGURES.read_text())
    text = goals.page(TEMPLATE.read_text(), run)
    if chosen.check:
        if PAGE.read_text() == text:
            return 0
        print("docs/performance.md is not what template and figures give: bench/report.py --page", file=sys.stderr)
        return 1
    PAGE.write_text(text)
    print("\n" + goals.text_table(run) + "\n\n" + goals.verdict(run))
    print(f"\n{PAGE.relative_to(TOP)} has everything; {run['run']['minutes']} minutes.")
    return 0


if __name__ == "__main__":
    sys.exit(main())
