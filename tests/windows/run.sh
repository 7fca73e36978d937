#!/usr/bin/env bash
# Runs one Windows test in a Wine prefix and on a screen of its own:
#
#   run.sh x64|x86 PROGRAM [ARGUMENT ...]
#
# PROGRAM is a Windows program or a shell script that starts several. A script finds WINEPREFIX, DISPLAY and
# VORDANE_ARCH set and calls `wine`. x64 runs with this machine's Wine; x86 runs in the small root that holds
# Wine for both word sizes, where the repository and /tmp are mounted at the same places. Ends with the
# program's exit code, or 124 after VORDANE_TEST_TIMEOUT seconds (240).
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
repository=$(cd "$here/../.." && pwd)
arch="$1"; shift
limit="${VORDANE_TEST_TIMEOUT:-240}"
. "$repository/tools/setup/common.sh"

if [ "$arch" = x86 ] && [ -z "${VORDANE_INSIDE_ROOT:-}" ]; then
  exec "$repository/tools/setup/in-root.sh" "$here/run.sh" x86 "$@"
fi

base="$cache/prefix-$arch"
locked "prefix-$arch" "$repository/tools/setup/wine-prefix.sh" "$base"

prefix=$(mktemp -d "$cache/prefix-XXXXXX")
export WINEPREFIX="$prefix" WINEDEBUG="${WINEDEBUG:--all}" VORDANE_ARCH="$arch"
export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe="
screen=
finish() {
  timeout 20 wineserver -k >/dev/null 2>&1 || true
  [ -z "$screen" ] || kill "$screen" 2>/dev/null || true
  rm -rf "$prefix"
}
trap finish EXIT

# Programs and libraries are shared with the base by hard links; what tests change is copied.
cp -al "$base/drive_c" "$prefix/drive_c"
cp -a "$base"/*.reg "$base/dosdevices" "$base"/.update-timestamp "$prefix/" 2>/dev/null || true

Xvfb -displayfd 7 -screen 0 1400x1000x24 -nolisten tcp 7>"$prefix/display" 2>/dev/null &
screen=$!
for _ in $(seq 100); do [ -s "$prefix/display" ] && break; sleep 0.1; done
DISPLAY=":$(cat "$prefix/display")"
export DISPLAY

case "$1" in
  *.sh) timeout --kill-after=10 "$limit" bash "$@" ;;
  *) timeout --kill-after=10 "$limit" wine "$@" ;;
esac
