#!/usr/bin/env bash
# Installs what building, testing and running need on Debian or Ubuntu; quick when everything is there.
# Sourced by ./run and ./test; sets WINEPREFIX, starts nothing.
set -u

need_packages=(cmake ninja-build g++ make python3 python3-pytest python3-jsonschema python3-venv libgtest-dev libbenchmark-dev
  g++-mingw-w64-i686-posix g++-mingw-w64-x86-64-posix zlib1g-dev libz-mingw-w64-dev
  xvfb binutils-mingw-w64-i686 binutils-mingw-w64-x86-64 procps iproute2)
need_wine=(wine wine64 wine32:i386)

# `command -v` with several names is content with one of them: ask for each.
have_everything() {
  local program
  for program in cmake ninja g++ python3 Xvfb ip i686-w64-mingw32-g++-posix x86_64-w64-mingw32-g++-posix wine; do
    command -v "$program" >/dev/null 2>&1 || return 1
  done
  [ -d /usr/src/googletest/googletest ] || return 1
  [ -e /usr/include/benchmark/benchmark.h ] || return 1
  local tree
  for tree in /usr /usr/i686-w64-mingw32 /usr/x86_64-w64-mingw32; do
    [ -e "$tree/include/zlib.h" ] || return 1
  done
  /usr/bin/python3 -c 'import pytest, jsonschema, ensurepip' 2>/dev/null || return 1
  dpkg -s wine32:i386 >/dev/null 2>&1 || return 1
}

install_everything() {
  local as_root=""
  [ "$(id -u)" = 0 ] || as_root="sudo"
  export DEBIAN_FRONTEND=noninteractive
  echo "Installing compilers, Wine and test tools (once, a few minutes) ..."
  $as_root dpkg --add-architecture i386
  # An index that is being refreshed makes the update fail: the install below decides.
  $as_root apt-get update -qq || true
  # One release for both architectures, else they can resolve to different versions and conflict.
  local release=()
  . /etc/os-release
  [ "${ID:-}" = debian ] && [ -n "${VERSION_CODENAME:-}" ] && release=(-t "$VERSION_CODENAME")
  $as_root apt-get install -y -qq "${release[@]}" --no-install-recommends "${need_packages[@]}" "${need_wine[@]}" >/tmp/tavrix-setup.log 2>&1 ||
    $as_root apt-get install -y -qq --no-install-recommends "${need_packages[@]}" "${need_wine[@]}" >>/tmp/tavrix-setup.log 2>&1
}

# The browser of the tests and what drives it; ./run does without them.
setup_browser() {
  command -v chromium >/dev/null 2>&1 && command -v chromedriver >/dev/null 2>&1 &&
    /usr/bin/python3 -c 'import selenium' 2>/dev/null && return 0
  local as_root=""
  [ "$(id -u)" = 0 ] || as_root="sudo"
  $as_root apt-get update -qq >/dev/null 2>&1 || true
  DEBIAN_FRONTEND=noninteractive $as_root apt-get install -y -qq --no-install-recommends chromium \
    chromium-driver python3-selenium >>/tmp/tavrix-setup.log 2>&1
}

# What looks at the code without running it, and the fuzz targets' compiler; ./run does without them.
setup_checkers() {
  command -v clang-format >/dev/null 2>&1 && command -v clang-tidy >/dev/null 2>&1 && command -v clang++ >/dev/null 2>&1 && return 0
  local as_root=""
  [ "$(id -u)" = 0 ] || as_root="sudo"
  $as_root apt-get update -qq >/dev/null 2>&1 || true
  DEBIAN_FRONTEND=noninteractive $as_root apt-get install -y -qq --no-install-recommends clang clang-format clang-tidy >>/tmp/tavrix-setup.log 2>&1
}

# The web cockpit's parts: Boost.Beast and the JSON library from Debian, the plotting library in web/node_modules as
# the lock file says, without running anybody's scripts. Quick when everything is there; without them offsetctl is
# built without `serve`. From the top of the checkout.
have_web() {
  [ -e /usr/include/boost/beast.hpp ] && [ -e /usr/include/nlohmann/json.hpp ] &&
    [ -d web/node_modules/uplot ] && [ ! web/package-lock.json -nt web/node_modules/.package-lock.json ]
}
setup_web() {
  have_web && return 0
  local as_root="" packages=() log=/tmp/tavrix-setup-web.log
  [ "$(id -u)" = 0 ] || as_root="sudo"
  [ -e /usr/include/boost/beast.hpp ] || packages+=(libboost-dev)
  [ -e /usr/include/nlohmann/json.hpp ] || packages+=(nlohmann-json3-dev)
  command -v npm >/dev/null 2>&1 || packages+=(npm)
  if [ ${#packages[@]} -gt 0 ]; then
    echo "Installing the web cockpit's parts: ${packages[*]} (once) ..."
    $as_root apt-get update -qq >/dev/null 2>&1 || true
    DEBIAN_FRONTEND=noninteractive $as_root apt-get install -y -qq --no-install-recommends "${packages[@]}" >"$log" 2>&1
  fi
  (cd web && npm ci --ignore-scripts --no-audit --no-fund --fetch-retries=1 --fetch-retry-mintimeout=1000 \
    --fetch-retry-maxtimeout=3000 --fetch-timeout=30000 && touch node_modules/.package-lock.json) >>"$log" 2>&1
  have_web && return 0
  echo "The web cockpit's parts are not all there, offsetctl is built without \`serve\`; the reason is in $log" >&2
  return 1
}

setup_machine() {
  have_everything && return 0
  install_everything
  if ! have_everything; then
    echo "Set-up failed; the package manager's output is in /tmp/tavrix-setup.log:" >&2
    tail -n 15 /tmp/tavrix-setup.log >&2
    return 1
  fi
}

# A display for Wine's windows, shared by everything the calling script starts. Sets DISPLAY and display_pid. The number
# is chosen by the sockets' files: a server that chooses by itself takes the file of one in another network namespace.
display_pid=""
start_display() {
  [ -n "$display_pid" ] && return 0
  local fifo line number jobs=$-
  fifo=$(mktemp -u) && mkfifo "$fifo"
  for number in {90..190}; do
    [ -e "/tmp/.X11-unix/X$number" ] && continue
    set -m  # a process group of its own: Ctrl-C at the terminal does not take the display from programs that end
    Xvfb ":$number" -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$fifo" >/dev/null 2>&1 &
    display_pid=$!
    [[ "$jobs" == *m* ]] || set +m
    line=""
    read -r -t 20 line <"$fifo"
    [ -n "$line" ] && break
    kill "$display_pid" 2>/dev/null && wait "$display_pid" 2>/dev/null  # another one was faster
    display_pid=""
  done
  rm -f "$fifo"
  [ -n "$display_pid" ] || { echo "Xvfb did not start: is the package xvfb complete?" >&2; return 1; }
  export DISPLAY=":$line"
}

# Whether the display's server runs; one that has just ended may still have its number.
display_lives() {
  local state
  [ -n "$display_pid" ] && read -r state 2>/dev/null <"/proc/$display_pid/stat" && [[ "$state" != *") Z "* ]]
}

# Says that the display has gone, if so, and starts another one. Fails when it lived: then nothing is to be done again.
replace_dead_display() {
  [ -n "$display_pid" ] && ! display_lives || return 1
  echo "The display $DISPLAY has died (Xvfb, process $display_pid); what failed meanwhile says nothing. Another one is started." >&2
  wait "$display_pid" 2>/dev/null
  display_pid=""
  start_display
}

# Wine with a prefix of our own in the build folder.
prepare_wine() {
  export WINEPREFIX="${WINEPREFIX:-$PWD/build/wine}" WINEDEBUG="${WINEDEBUG:--all}" WINEDLLOVERRIDES="mscoree,mshtml="
  mkdir -p "$(dirname "$WINEPREFIX")"
  # Held by all who use the prefix: only the last of them ends its server.
  exec 8>"$WINEPREFIX.lock" && flock -s 8
  [ -e "$WINEPREFIX/system.reg" ] || flock -x 8  # made by one at a time
  if [ ! -e "$WINEPREFIX/system.reg" ]; then
    echo "Preparing Wine (once, about half a minute) ..."
    wineboot -i >/dev/null 2>&1
    wineserver -w
  fi
  flock -s 8
}

# Ends the Wine processes of our prefix, unless another ./run or ./test uses it too, and the display; nothing else.
stop_wine_and_display() {
  if [ -n "${WINEPREFIX:-}" ] && [ -d "${WINEPREFIX}" ] && flock -n -x 8 2>/dev/null; then
    wineserver -k >/dev/null 2>&1
  fi
  [ -n "$display_pid" ] && kill "$display_pid" 2>/dev/null && wait "$display_pid" 2>/dev/null
  display_pid=""
}

# A build folder of a checkout that was copied or moved names files of the old place and does not configure: it is
# made anew. renew_moved_build FOLDER, from the top of the checkout.
renew_moved_build() {
  local cache="$1/CMakeCache.txt" home
  [ -e "$cache" ] || return 0
  home=$(sed -n 's/^CMAKE_HOME_DIRECTORY:INTERNAL=//p' "$cache")
  [ "$home" -ef . ] && return 0
  echo "$1 was made for ${home:-an unknown place}: it is made anew."
  rm -rf "$1"
}

# build PRESET TARGET... : configures and builds, quiet unless it fails.
build_preset() {
  local preset=$1 log="build/$1.log"
  shift
  mkdir -p build
  renew_moved_build "build/$preset"
  if ! { cmake --preset "$preset" && cmake --build --preset "$preset" --target "$@"; } >"$log" 2>&1; then
    echo "Building preset $preset failed:" >&2
    tail -n 40 "$log" >&2
    return 1
  fi
}
