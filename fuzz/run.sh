#!/usr/bin/env bash
# Builds the fuzz targets with clang and runs each for N seconds (default 10), two at a time: first every input of its
# corpus, then new ones, which are kept in the build folder only. With --target one alone, for so much CPU time; with
# --merge those of its kept inputs that reach what the corpus does not are put into the corpus. Exit status 1 when one
# finds a fault.
#   fuzz/run.sh [N | --build | --target NAME CPU_SECONDS | --merge NAME]
cd "$(dirname "$0")/.." || exit 1
seconds=${1:-10}
command -v clang++ >/dev/null || { echo "clang++ is not installed: fuzz targets are not run"; exit 0; }
. cmake/setup.sh
build=build/fuzz
sources=(fuzz/*_fuzz.cpp)
have_web || sources=($(printf '%s\n' "${sources[@]}" | grep -v cockpit))  # its libraries are not there
mkdir -p build
renew_moved_build "$build"
if ! { cmake -S . -B "$build" -G Ninja -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DTAVRIX_FUZZ=ON -DTAVRIX_TESTS=OFF -DTAVRIX_SANITIZE=fuzzer-no-link,address,undefined &&
  cmake --build "$build" --target $(for f in "${sources[@]}"; do basename "$f" .cpp; done); } >"$build.log" 2>&1; then
  tail -n 30 "$build.log" >&2
  exit 1
fi
[ "$seconds" = --build ] && exit 0

# Targets that write files do so in memory where they can: the settings file waits for the disk.
TMPDIR=$(mktemp -d /dev/shm/tavrix_fuzz.XXXXXX 2>/dev/null || mktemp -d)
export TMPDIR
trap 'rm -rf "$TMPDIR"' EXIT

fuzz_one() {  # fuzz_one NAME SECONDS [CPU_SECONDS]: says so when it finds a fault
  local name=$1 short=${1%_fuzz} dictionary=() program used
  [ -e "fuzz/$short.dict" ] && dictionary=("-dict=fuzz/$short.dict")
  mkdir -p "$build/corpus/$name"
  "$build/bin/$name" -max_total_time="$2" "${dictionary[@]}" -timeout=25 -rss_limit_mb=2048 -artifact_prefix="$build/" \
    -verbosity=0 "$build/corpus/$name" "fuzz/corpus/$short" >"$build/$name.log" 2>&1 &
  program=$!
  while [ -n "${3:-}" ] && used=$(ps -o cputimes= -p "$program"); do
    [ "$used" -ge "$3" ] && kill "$program"
    sleep 1
  done
  wait "$program"
  case $? in 0 | 72) return 0 ;; esac  # 72: its CPU time is over
  echo "$name found a fault:"
  tail -n 30 "$build/$name.log"
  return 1
}
case $seconds in
  --target)
    fuzz_one "$2_fuzz" 0 "$3"
    exit ;;
  --merge)
    "$build/bin/$2_fuzz" -merge=1 "fuzz/corpus/$2" "$build/corpus/$2_fuzz"
    exit ;;
esac
status=0 running=()
for source in "${sources[@]}"; do
  fuzz_one "$(basename "$source" .cpp)" "$seconds" &
  running+=($!)
  [ "${#running[@]}" -lt 2 ] && continue
  wait "${running[0]}" || status=1
  running=("${running[@]:1}")
done
for pid in "${running[@]}"; do wait "$pid" || status=1; done
exit $status
