#!/usr/bin/env bash
# Every figure of docs/performance.md: sets up the machine, builds the releases and the program's first complete form,
# measures, prints the figures against their goals, and writes the page anew.
#   bench/run.sh [--runs N] [--quick]   the best of N runs counts (default 7); --quick: short samples, for a look
# Exit status 0 when it ran, also with goals missed; 1 when something failed, then the page is as it was. Nothing else
# should be busy meanwhile. Ends the processes that it starts, no others.
cd "$(dirname "$0")/.." || exit 2
options=() runs=7
while [ $# -gt 0 ]; do
  case "$1" in
    --runs) runs=${2:-}; shift; [[ "$runs" =~ ^[1-9][0-9]*$ ]] || { echo "--runs needs a number" >&2; exit 2; } ;;
    --quick) options+=(--quick) ;;
    -h | --help) sed -n '2,6s/^# \{0,1\}//p' "$0"; exit 0 ;;
    *) echo "usage: bench/run.sh [--runs N] [--quick]" >&2; exit 2 ;;
  esac
  shift
done
. cmake/setup.sh
export WINEPREFIX="$PWD/build/wine-bench"  # no others' programs run in it
trap stop_wine_and_display EXIT
trap 'exit 130' INT TERM

setup_machine && setup_web || echo "Going on with what is here."
echo "Building (Linux) ..."
build_preset linux bench tavrix standin offsetctl || exit 1
no_wine=""
if ! command -v wine >/dev/null || ! command -v Xvfb >/dev/null; then
  no_wine="there is no Wine here"
elif ! command -v i686-w64-mingw32-g++-posix >/dev/null; then
  no_wine="there is no compiler for Windows here"
else
  echo "Building (Windows, 32 bits) ..."
  build_preset win32 tavrix standin request_latency_win32 scan_win32 steady_writer_win32 || exit 1
  start_display && prepare_wine || exit 1
fi
[ -n "$no_wine" ] && options+=(--no-wine "$no_wine")

# In a network of its own, so that nobody else has the servers' ports; where that may not be, in everybody's.
network=()
if unshare --net true 2>/dev/null; then
  network=(unshare --net sh -c 'ip link set lo up && ip link set lo multicast on && ip route add 224.0.0.0/4 dev lo && exec "$@"' sh)
fi
"${network[@]}" /usr/bin/python3 bench/report.py --runs "$runs" "${options[@]}" 8>&-
