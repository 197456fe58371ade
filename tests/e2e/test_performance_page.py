"""The report of bench/: what it says of goals, of figures that are not there and of rare events, and that the page is what
template and figures give. Nothing is measured here."""
import fcntl
import json
import re
import subprocess
import sys

import pytest

from conftest import TOP

sys.path.insert(0, str(TOP / "bench"))
import goals  # noqa: E402
import native_figures  # noqa: E402

TEMPLATE = (TOP / "bench/performance.template.md").read_text()
NAMES = sorted(set(re.findall(r"\{(?!run:|table:)([\w./]+)", TEMPLATE + "".join(goal.measured for goal in goals.GOALS))))


def made_up(missing=(), **figures):
    """A run in which every figure is 0.5 but these."""
    known = {name: 0.5 for name in NAMES if not any(name.startswith(start) for start in missing)}
    facts = dict.fromkeys(re.findall(r"\{run:(\w+)\}", TEMPLATE), "a fact")
    return {"run": facts, "figures": {**known, **share("drops", 0, 100_000), **figures}, "missing": dict(missing)}


def share(key, dropped, total):
    return goals.share_figures(key, dropped, total)


@pytest.mark.parametrize("change, goal, told, met", [
    ({"frame.ratio": 0.75}, "all callbacks", "0.750 times", "yes"),
    ({"frame.ratio": 0.7512}, "all callbacks", "0.751 times", "**no**"),
    ({"frame.all.calls": 101.0}, "simulator calls", "101", "**no**"),
    ({"idle.linux": 1.0}, "idle", "1.00 %", "**no**"),  # "below"
    ({"idle.linux": 0.99}, "idle", "0.99 %", "yes"),
    ({"trouble.silent.disable": 1.7}, "disable while", "1.70 s", "**no**"),
    (share("drops", 0, 100_000), "dropped", "interval 0.0000 to 0.0037 %, all below the goal", "yes"),
    (share("drops", 2, 50_000), "dropped", "0.0040 % (2 of 50,000; 95 % interval 0.0005 to 0.0144 %, which reaches", "yes"),
    (share("drops", 3, 50_000), "dropped", "0.0060 %", "**no**"),
    (share("drops", 30, 50_000), "dropped", "%, all beyond the goal)", "**no**"),
])
def test_a_goal_is_judged(change, goal, told, met):
    run = made_up(**change)
    text = goals.page(TEMPLATE, run)
    row = next(line for line in text.split("\n") if line.startswith("|") and goal in line)
    assert told in row and row.endswith(f"| {met} |"), row
    missed = [line for line in text.split("\n") if line.startswith("- Missed: ")]
    assert [goal in line for line in missed] == ([True] if met != "yes" else []), missed
    assert f"{len(goals.GOALS) - len(missed)} of {len(goals.GOALS)} goals are met" in text
    assert ("| no" in goals.text_table(run)) == (met != "yes")


@pytest.mark.parametrize("missing, rows", [
    ({"reference.": "no history", "frame.ratio": "no history"}, ["all callbacks"]),
    ({"wine.": "no Wine", "drops.": "no Wine at all"}, ["32 bits", "local request", "dropped"]),
])
def test_what_was_not_measured_is_told(missing, rows):
    run = made_up(missing)
    run["figures"] = {key: value for key, value in run["figures"].items() if not any(map(key.startswith, missing))}
    text = goals.page(TEMPLATE, run)
    told = [line for line in text.split("\n") if line.startswith("|") and "not measured: no" in line]
    assert len(told) == len(rows) and all(row in line for row, line in zip(rows, told)), told
    for why in missing.values():
        starts = ", ".join(f"`{start}`" for start in missing if missing[start] == why)
        assert f"- Not measured, as {why}: the figures {starts}." in text
    assert "Missed" not in text and "{" not in text


@pytest.mark.parametrize("events, trials, low, high", [
    (0, 49_167, 0, 7.50e-5), (2, 98_339, 2.46e-6, 7.35e-5), (659, 11_357, 0.0537, 0.0626)])
def test_interval_of_rare_events(events, trials, low, high):
    assert goals.interval(events, trials) == pytest.approx((low, high), rel=0.01, abs=1e-12)


def test_the_best_run_of_each_side_counts():
    def run(ours, bare):
        return [{"name": "BM_WholeFrame/iterations:9/manual_time", "ours_ns": ours, "bare_ns": bare, "calls": 88},
                {"name": "BM_Cycle/31/iterations:9/manual_time", "ours_ns": 2 * ours, "bare_ns": bare, "calls": 8}]

    figures = {}
    for side, ours, bare in (("frame", 90, 40), ("reference", 100, 50), ("reference", 120, 45), ("frame", 80, 45)):
        native_figures.take_frames(figures, side, run(ours, bare))
    native_figures.add_ratios(figures)
    assert figures["frame.ratio"] == 0.8 and figures["frame.31.ratio"] == 0.8
    assert figures["frame.all.bare"] == 40 and figures["reference.all.bare"] == 45 and figures["frame.31.calls"] == 8


def report(*words):
    return subprocess.run([sys.executable, TOP / "bench/report.py", *words], capture_output=True, text=True, timeout=60)


def test_what_cannot_be_measured_is_refused():
    """Before anything is built."""
    (TOP / "build").mkdir(exist_ok=True)
    with open(TOP / "build/bench.lock", "w") as other:
        fcntl.flock(other, fcntl.LOCK_EX)
        second = report("--quick")
    assert second.returncode == 1 and "another run measures in this checkout" in second.stderr
    assert report("--runs", "0").returncode == 2


def test_the_page_is_of_the_last_run():
    result = report("--check")
    assert result.returncode == 0, result.stderr
    absent = json.loads((TOP / "bench/figures.json").read_text())["missing"]
    page = (TOP / "docs/performance.md").read_text()
    assert "not measured: this run has no such figure" not in page and all(why in page for why in absent.values())
