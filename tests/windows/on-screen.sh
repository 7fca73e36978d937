#!/usr/bin/env bash
# The inner half of run.sh: gives a test its screen, runs it within its time and ends what is left of it.
#
#   on-screen.sh PROGRAM [ARGUMENT ...]
set -euo pipefail
unavailable() { printf 'the test can not start: %s\n' "$*" >&2; exit 125; }

work=$(dirname "$WINEPREFIX")
mkfifo "$work/display"
Xvfb -displayfd 7 -screen 0 1400x1000x24 -nolisten tcp 7<>"$work/display" 2>"$work/screen.log" &
screen=$!
# The number comes when the screen is ready; nothing comes from one that has ended.
read -r -t 60 number <>"$work/display" || { cat "$work/screen.log" >&2; unavailable "Xvfb gave no screen within 60 s"; }
export DISPLAY=":$number"

# The server stays between two programs: one that is started while it goes would fail.
wineserver -p || unavailable "no Wine server"

# What a test leaves in its current folder is its own too.
program=$(realpath "$1"); shift
mkdir -p "$work/here"
cd "$work/here"

code=0
case "$program" in
  *.sh) timeout --kill-after=10 "$VORDANE_TEST_TIMEOUT" bash "$program" "$@" || code=$? ;;
  *) timeout --kill-after=10 "$VORDANE_TEST_TIMEOUT" wine "$program" "$@" || code=$? ;;
esac
[ "$code" != 124 ] || echo "the test had not ended after $VORDANE_TEST_TIMEOUT s" >&2
kill "$screen" 2>/dev/null || true
exit "$code"
