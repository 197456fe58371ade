#!/usr/bin/env bash
# All benchmark figures: builds the release for Linux and prints a table; where Wine and the 32-bit release
# (build/win32) are, also what a local client's request takes.
#   bench/run.sh [--runs N]   the best of N runs counts (default 3)
# Figures of one line belong together: look at the ratio. Ends the processes that it starts, no others.
cd "$(dirname "$0")/.." || exit 1
. cmake/setup.sh
set -o pipefail
export WINEPREFIX="$PWD/build/wine-bench"  # no others' programs run in it

runs=3
while [ $# -gt 0 ]; do
  case "$1" in
    --runs) runs=${2:-}; shift; [[ "$runs" =~ ^[1-9][0-9]*$ ]] || { echo "--runs needs a number" >&2; exit 2; } ;;
    -h | --help) sed -n '2,5s/^# \{0,1\}//p' "$0"; exit 0 ;;
    *) echo "usage: bench/run.sh [--runs N]" >&2; exit 2 ;;
  esac
  shift
done

work=$(mktemp -d)
standin_pid=""
cleanup() {
  trap - EXIT INT TERM
  exec 7>&- 2>/dev/null
  if [ -n "$standin_pid" ]; then
    for _ in $(seq 100); do kill -0 "$standin_pid" 2>/dev/null || break; sleep 0.1; done
    kill "$standin_pid" 2>/dev/null
    wait "$standin_pid" 2>/dev/null
  fi
  stop_wine_and_display
  rm -rf "$work"
}
trap cleanup EXIT
trap 'exit 130' INT TERM

echo "Building (Linux) ..."
build_preset linux bench || exit 1
echo "Measuring, $runs runs; nothing else should be busy (load now: $(cut -d' ' -f1 /proc/loadavg)) ..."
for run in $(seq "$runs"); do
  build/linux/bin/bench --benchmark_format=json --benchmark_out="$work/$run.json" >/dev/null 2>"$work/errors" ||
    { echo "The benchmarks failed:" >&2; tail -n 20 "$work/errors" >&2; exit 1; }
done

python3 - "$work"/*.json <<'PYTHON' || exit 1
import json
import sys

# Per benchmark: the fastest run of each side.
runs = {}
for path in sys.argv[1:]:
    with open(path) as file:
        for figure in json.load(file)["benchmarks"]:
            runs.setdefault(figure["name"].split("/iterations")[0], []).append(figure)

print(f"\n{'Simulator thread, per frame':32}{'calls':>8}{'callbacks':>12}{'bare calls':>12}{'ratio':>8}")
for name, figures in runs.items():
    if "bare_ns" not in figures[0]:
        continue
    ours = min(figure["ours_ns"] for figure in figures)
    bare = min(figure["bare_ns"] for figure in figures)
    calls = figures[0]["calls"]
    ratio = f"{ours / bare:.2f}" if calls >= 0.5 else "-"
    print(f"{name.removeprefix('BM_'):32}{calls:8.1f}{ours:9.0f} ns{bare:9.0f} ns{ratio:>8}")

shown = {"name", "family_index", "per_family_instance_index", "run_name", "run_type", "repetitions",
         "repetition_index", "threads", "iterations", "real_time", "cpu_time", "time_unit", "items_per_second"}
print(f"\n{'Other':32}{'time':>20}   figures")
for name, figures in runs.items():
    if "bare_ns" in figures[0]:
        continue
    best = min(figures, key=lambda figure: figure["cpu_time"])
    more = "  ".join(f"{key} {value:.6g}" for key, value in best.items()
                     if key not in shown and isinstance(value, (int, float)))
    print(f"{name.removeprefix('BM_'):32}{best['cpu_time']:17.1f} {best['time_unit']}   {more}")
PYTHON

client=build/win32/bin/request_latency_win32.exe
if ! command -v wine Xvfb >/dev/null 2>&1 || [ ! -e "$client" ] || [ ! -e build/win32/plugin/win.xpl ]; then
  printf '\nNo Wine or no 32-bit build (./test makes it): local requests are left out.\n'
  exit 0
fi

printf '\nLocal requests (32 bits, Wine)\n'
start_display && prepare_wine || exit 1
mkdir -p "$work/X-Plane"
mkfifo "$work/console"
wine build/win32/bin/standin.exe --plugin "$(winepath -w build/win32/plugin/win.xpl 2>/dev/null)" \
  --root "$(winepath -w "$work/X-Plane" 2>/dev/null)" <"$work/console" >"$work/answers" 2>"$work/errors" &
standin_pid=$!
exec 7>"$work/console"
log="$work/X-Plane/Resources/plugins/TAVRIX/TAVRIX.txt"
for _ in $(seq 600); do
  grep -q "Create KORL Thread OK" "$log" 2>/dev/null && break
  kill -0 "$standin_pid" 2>/dev/null || { echo "The stand-in ended early:" >&2; cat "$work/errors" >&2; exit 1; }
  sleep 0.1
done
status=0
for records in 1 10 50; do
  printf '%3d records: ' "$records"
  wine "$client" 2000 "$records" 2>/dev/null | tr -d '\r' || status=1
done
echo quit >&7
exit "$status"
