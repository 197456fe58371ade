"""Figures of the benchmark programs: the present one, and the frame benchmark of the first complete form, which is built
from the repository's own history and run in turn. bench/report.py takes them for docs/performance.md."""
import json
import shutil
import subprocess
from pathlib import Path

TOP = Path(__file__).resolve().parents[1]
FIRST_FORM = "b48f0ae"
FRAMES = "BM_WholeFrame|BM_Cycle"
# They take their seconds, however often they run.
LONG = "ProcessorShareOf96Slots|OffsetLockHeldBy96Slots|BM_AxisLatency"
SIDES = ("ours", "bare")
# What the library says of every benchmark, besides its figures.
USUAL = {"family_index", "per_family_instance_index", "repetitions", "repetition_index", "threads", "iterations", "real_time",
         "cpu_time", "items_per_second"}


def cached(name, build=TOP / "build/linux"):
    """A variable of a build's configuration."""
    cache = build / "CMakeCache.txt"
    for line in cache.read_text().splitlines() if cache.exists() else ():
        if line.startswith(f"{name}:"):
            return line.split("=", 1)[1]
    return ""


def build_first_form():
    """(its benchmark program, None), or (None, why there is none); by the compiler and with the flags of the present build.
    Raises when it is there and does not build."""
    wanted = ["git", "-C", TOP, "cat-file", "-e", FIRST_FORM + "^{commit}"]
    if shutil.which("git") is None or subprocess.run(wanted, capture_output=True).returncode != 0:
        return None, f"the first complete form is commit {FIRST_FORM} of the repository's history, which is not here"
    folder = TOP / "build" / f"reference-{FIRST_FORM}"
    build, program = folder / "build", folder / "build/bin/bench"
    if cached("CMAKE_HOME_DIRECTORY", build) != str(folder):  # none yet, or of a checkout that was moved
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        archive = subprocess.run(["git", "-C", TOP, "archive", FIRST_FORM], capture_output=True, check=True).stdout
        subprocess.run(["tar", "-x", "-C", folder], input=archive, check=True)
    # The present build asks for these itself.
    compiler = ["-DCMAKE_CXX_FLAGS=" + cached("CMAKE_CXX_FLAGS") + " -ffunction-sections -fdata-sections",
                "-DCMAKE_EXE_LINKER_FLAGS=-Wl,--gc-sections -static-libstdc++"]
    compiler += [f"-D{name}={cached(name)}" for name in ("CMAKE_BUILD_TYPE", "CMAKE_CXX_COMPILER", "CMAKE_CXX_FLAGS_RELEASE")]
    for words in (["cmake", "-S", folder, "-B", build, "-G", "Ninja", "-DTAVRIX_TESTS=OFF", *compiler],
                  ["cmake", "--build", build, "--target", "bench"]):
        result = subprocess.run(words, capture_output=True, text=True)
        if result.returncode != 0:
            raise RuntimeError(f"the first complete form ({folder}) did not build:\n{result.stdout[-3000:]}{result.stderr[-3000:]}")
    return program, None


def run(program, only):
    result = subprocess.run([program, "--benchmark_format=json", "--benchmark_min_time=0.1", f"--benchmark_filter={only}"],
                            capture_output=True, text=True)
    if result.returncode != 0:
        raise RuntimeError(f"{program} failed: {result.stderr[-2000:]}")
    return json.loads(result.stdout)["benchmarks"]


def best(figures, key, value):
    figures[key] = min(value, figures.get(key, value))


def take_frames(figures, side, benchmarks):
    """The fastest run of each cycle counts, of ours and of the bare calls by themselves."""
    for one in benchmarks:
        name = one["name"].split("/iterations")[0].removeprefix("BM_")
        key = f"{side}.{'all' if name == 'WholeFrame' else name.removeprefix('Cycle/')}"
        for what in SIDES:
            best(figures, f"{key}.{what}", one[f"{what}_ns"])
        figures[f"{key}.calls"] = one["calls"]


def take_others(figures, benchmarks):
    """Every figure of these is a cost: the least counts. The time is in the benchmark's own unit."""
    for one in benchmarks:
        key = "native." + one["name"].split("/iterations")[0]
        best(figures, key, one["cpu_time"])
        for what, value in one.items():
            if what not in USUAL and isinstance(value, (int, float)):
                best(figures, f"{key}.{what}", value)


def add_ratios(figures):
    for key in [key.removesuffix(".ours") for key in figures if key.startswith("frame.") and key.endswith(".ours")]:
        first = figures.get(key.replace("frame.", "reference.", 1) + ".ours")
        if first:
            figures["frame.ratio" if key == "frame.all" else key + ".ratio"] = figures[key + ".ours"] / first


def measure(runs, first_form):
    figures, program = {}, TOP / "build/linux/bin/bench"
    sides = [("frame", program)] + ([("reference", first_form)] if first_form else [])
    for turn in range(runs):
        for side, bench in sides if turn % 2 == 0 else sides[::-1]:
            take_frames(figures, side, run(bench, FRAMES))
    for _ in range(min(runs, 3)):
        take_others(figures, run(program, f"-{FRAMES}|{LONG}"))
    take_others(figures, run(program, LONG))
    add_ratios(figures)
    return figures
