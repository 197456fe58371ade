#!/usr/bin/env bash
# Replays the corpora in the tree in a build that counts, and shows how much of the files that each target is about they
# reach, as rows of the table in docs/fuzzing.md. The lines one by one: build/fuzz-coverage/NAME.txt.
#   fuzz/coverage.sh [NAME ...]
cd "$(dirname "$0")/.." || exit 1
build=build/fuzz-coverage
declare -A files=(
  [client_library]="clients/c/tavrix.c"
  [cockpit]="tools/cockpit/answers.cpp tools/cockpit/http_rules.cpp tools/cockpit/values.cpp"
  [custom_expression]="src/custom/expression.cpp src/custom/custom_values.cpp"
  [custom_file]="src/custom/custom_parser.cpp src/custom/custom_tables.cpp"
  [frame]="src/net/frame.cpp"
  [frames]="src/bridge src/aircraft src/offsets/dispatcher.cpp src/traffic/targets.cpp src/traffic/positions.cpp"
  [offsetctl_files]="src/custom/custom_check.cpp tools/offsetctl/mapping.cpp tools/offsetctl/check.cpp
    tools/offsetctl/doctor.cpp tools/offsetctl/traffic_rows.cpp"
  [offsetctl_frame]="tools/offsetctl/picture.cpp"
  [recording]="tools/offsetctl/recording.cpp"
  [relay]="src/net/relay.cpp"
  [request_walk]="src/offsets/request_walk.cpp"
  [settings]="src/settings/settings_text.cpp"
  [settings_file]="src/settings/settings.cpp src/controls/axis_settings.cpp src/controls/axis_pipeline.cpp
    src/controls/button_settings.cpp src/net/permissions.cpp"
  [stand_in]="simulator/core/console.cpp simulator/core/text.cpp simulator/core/datarefs.cpp simulator/core/faults.cpp
    simulator/widgets/widget_console.cpp src/panels"
  [texts]="tools/offsetctl/item.cpp tools/offsetctl/encode.cpp tools/offsetctl/numbers.cpp tools/offsetctl/units.cpp
    tools/offsetctl/words.cpp tools/offsetctl/options.cpp tools/offsetctl/show.cpp tools/offsetctl/names.cpp
    src/net/address.cpp src/offsets/path_block.cpp"
)
names=("$@")
[ $# -gt 0 ] || mapfile -t names < <(printf '%s\n' "${!files[@]}" | sort)
mkdir -p "$build/tmp"
if ! { cmake -S . -B "$build" -G Ninja -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_C_FLAGS="-fprofile-instr-generate -fcoverage-mapping" -DTAVRIX_FUZZ=ON -DTAVRIX_TESTS=OFF \
  -DCMAKE_CXX_FLAGS="-fprofile-instr-generate -fcoverage-mapping" &&
  cmake --build "$build" --target "${names[@]/%/_fuzz}"; } >"$build.log" 2>&1; then
  tail -n 30 "$build.log" >&2
  exit 1
fi
for name in "${names[@]}"; do
  profile=$build/$name.profile program=$build/bin/${name}_fuzz
  TMPDIR=$build/tmp LLVM_PROFILE_FILE=$profile.raw "$program" -runs=0 "fuzz/corpus/$name" >"$build/$name.log" 2>&1 &&
    llvm-profdata merge -o "$profile" "$profile.raw" &&
    llvm-cov show "$program" -instr-profile="$profile" >"$build/$name.txt" &&
    llvm-cov report "$program" -instr-profile="$profile" >"$build/$name.report" || exit 1
  # Of the report's files those that are asked for, folders with all that is in them.
  awk -v name="$name" -v inputs="$(find "fuzz/corpus/$name" -type f | wc -l)" -v files="$(echo ${files[$name]})" '
    BEGIN { count = split(files, wanted) }
    { for (i = 1; i <= count; i++) if ($1 ~ "(^|/)" wanted[i]) { regions += $2; noRegions += $3; lines += $8; noLines += $9 } }
    END { printf "| %s | %s | %d | %d of %d, %d %% | %d %% |\n", name, files, inputs, lines - noLines, lines,
          100 * (lines - noLines) / lines, 100 * (regions - noRegions) / regions }' "$build/$name.report"
done
