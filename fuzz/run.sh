#!/usr/bin/env bash
# Builds the fuzz targets with clang and runs each for N seconds (default 10) on its corpus; new inputs are
# kept in the build folder only. Exit status 1 when one finds a fault.
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
status=0
for source in "${sources[@]}"; do
  name=$(basename "$source" .cpp)
  mkdir -p "$build/corpus/$name"
  if ! "$build/bin/$name" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -artifact_prefix="$build/" -verbosity=0 \
    -print_final_stats=0 "$build/corpus/$name" "fuzz/corpus/${name%_fuzz}" >"$build/$name.log" 2>&1; then
    echo "$name found a fault:"
    tail -n 30 "$build/$name.log"
    status=1
  fi
done
exit $status
