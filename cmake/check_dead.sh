#!/usr/bin/env bash
# Fails when a function of src/ or tools/ is reached from no entry point, so that at most tests call it: links the
# objects of a finished sanitizer build once more, plug-in and client tool together, and asks the linker what it
# leaves out.
#   cmake/check_dead.sh [FOLDER]   FOLDER: build/linux-asan, whose -O1 calls every function that is not inline
#                                  (the release build's inlining would leave bodies that nobody calls any more);
#                                  its targets unit_tests and offsetctl are built
cd "$(dirname "$0")/.." || exit 1
build=${1:-build/linux-asan}
export LC_ALL=C

# What nobody calls and stays all the same: NAME, then why.
exceptions=(
  "CountProcessHandles what leak tests count, different on every system"
  "CountProcessThreads what leak tests count, different on every system"
  "ProcessMemoryBytes what leak tests count, different on every system"
  "IsShortOfResources how tests see it when no log can be opened for want of handles"
  "IsSubscribed the marks of subscriptions are kept, and nothing acts on them"
  "ctl::UnpackReads of the Windows transport"
)

ninja -C "$build" -t cleandead >/dev/null  # objects of rules that are no more
# Of files that are still there: what an earlier build left behind does not count.
objects=$(find "$build"/CMakeFiles/{tavrix_objects,tavrix,offsetctl,offsetctl_parts}.dir -name '*.o' 2>/dev/null |
  grep -v '/offsetctl\.dir/src/' |  # the plug-in's own
  while read -r object; do
    source=${object#*.dir/}
    [ -e "${source%.o}" ] && echo "$object"
  done)
for needed in tavrix_objects.dir/src/shell/plugin.cpp.o offsetctl.dir/tools/offsetctl/main.cpp.o; do
  [ -e "$build/CMakeFiles/$needed" ] || { echo "check_dead.sh: $build is not built: $needed is missing" >&2; exit 2; }
done

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
roots=()
for entry in XPluginStart XPluginStop XPluginEnable XPluginDisable XPluginReceiveMessage; do
  roots+=("-Wl,--undefined=$entry")  # beside the client tool's main
done
sanitizers=$(sed -n 's/^TAVRIX_SANITIZE:STRING=\(..*\)/-fsanitize=\1/p' "$build/CMakeCache.txt")
# shellcheck disable=SC2086
if ! "${CXX:-g++}" $sanitizers -o "$scratch/linked" $objects "${roots[@]}" -Wl,--unresolved-symbols=ignore-all \
  -Wl,--gc-sections,--print-gc-sections -pthread >"$scratch/log" 2>&1; then
  grep -v 'removing unused section' "$scratch/log" >&2
  exit 2
fi
grep -c 'removing unused section' "$scratch/log" >/dev/null || {
  echo "check_dead.sh: the linker names nothing that it leaves out, not even of its own libraries" >&2
  exit 2
}

# Whole functions of ours: neither pieces of one (.cold, .part), nor inline ones (with their group in brackets),
# nor what the compiler makes of templates and lambdas.
sed -n "s/.*removing unused section '\.text\.\([^']*\)' in file '[^']*\.dir\/\(src\|tools\)\/\([^']*\)\.o'.*/\2\/\3 \1/p" \
  "$scratch/log" | grep -v '\[' | sed 's/ \(unlikely\|hot\|startup\|exit\)\./ /' | c++filt |
  grep -vE '\[clone|\{lambda|operator|_FUN|_GLOBAL__|__static_init|^[^ ]+ [^(]*\b(std|__gnu_cxx)::' |
  sort -u >"$scratch/dead"

failed=0
while read -r file name; do
  plain=${name%%(*}
  for exception in "${exceptions[@]}"; do
    [ "${exception%% *}" = "$plain" ] && continue 2
  done
  echo "$file: nothing but tests calls $name"
  failed=1
done <"$scratch/dead"
for exception in "${exceptions[@]}"; do
  grep -qE "^[^ ]+ ${exception%% *}(\(|\[|$)" "$scratch/dead" && continue
  echo "cmake/check_dead.sh: ${exception%% *} is called by now, or gone: take it out of the exceptions"
  failed=1
done
exit "$failed"
