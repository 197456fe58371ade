"""Figures of the 32-bit build under Wine, which has the local window server: bench/report.py takes them for
docs/performance.md."""
import re
import subprocess
import tempfile
from pathlib import Path

from network_figures import begin, measure_idle, measure_load
from trouble_figures import measure_slots

from conftest import Build

LOCAL_PLACE = 0x13000  # an offset without meaning, beside the network clients' own


def numbers(build, program, *words, timeout=120):
    """What a program printed, as numbers; it must end well."""
    result = build.run(program, *words, timeout=timeout)
    assert result.returncode == 0, f"{program}: {result.stdout}{result.stderr}"
    return [float(number) for number in re.findall(r"(?<![\w.])\d+\.?\d*", result.stdout)]


def measure_scan(build, runs):
    scans, compares = zip(*(numbers(build, "scan_win32") for _ in range(runs)))
    return {"wine.scan.ratio": min(scans) / min(compares)}


def measure_requests(build, runs, requests):
    """Medians of requests and of bare messages, in turn in each run; the best run of each side counts."""
    figures = {}
    for records in (1, 10, 50):
        told = [numbers(build, "request_latency_win32", requests, records)[1:3] for _ in range(runs)]
        request, bare = (min(side) for side in zip(*told))
        key = f"wine.request_{records}"
        figures |= {f"{key}.request": request, f"{key}.bare": bare, f"{key}.ratio": request / bare}
    return figures


def measure_drops(build, standin, seconds):
    """Eight network clients that write 50 times a second each, and a local one that never pauses."""
    lifetime = seconds + 15
    local = subprocess.Popen(build.command("steady_writer_win32", hex(LOCAL_PLACE), lifetime), stdout=subprocess.PIPE, text=True)
    figures = measure_load(standin, "drops", seconds, writes=True, still=lambda: local.poll() is None)
    told = local.communicate(timeout=60)[0]
    assert local.returncode == 0, f"the local client: {told}"
    return {**figures, "drops.local": int(told.split()[0]) / lifetime}


def measure(runs, requests, drop_seconds, idle_seconds):
    build = Build("win32")
    figures = measure_scan(build, runs)
    with tempfile.TemporaryDirectory() as folder:
        standin = begin(build, Path(folder) / "X-Plane")
        try:
            figures["idle.wine"] = measure_idle(standin, idle_seconds)
            figures |= measure_requests(build, runs, requests)
            figures |= measure_drops(build, standin, drop_seconds)
        finally:
            standin.quit(expect=None)
    return {**figures, **measure_slots("win32")}
