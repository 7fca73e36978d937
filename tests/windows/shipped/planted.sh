#!/usr/bin/env bash
# Libraries that somebody has put beside the programs, and into the folder that they are started in, under the names
# of the system's own, are not loaded.
set -euo pipefail
. "$(dirname "$0")/../suite/suite.sh"

install_suite
built="$VORDANE_BUILD/tests/windows/shipped"
log="$drive/planted.log"
cp "$built/careless.exe" "$addins/"
names="msftedit riched20 dwmapi cryptbase propsys profapi"
for name in $names; do
  cp "$built/libplanted.dll" "$addins/$name.dll"
  cp "$built/libplanted.dll" "$drive/SIM/$name.dll"
done

# Wine takes its own before a file of the same name, Windows does not. (Nothing is planted that libraries of Wine itself
# are linked with: there it is loaded for them.)
export WINEDLLOVERRIDES="$WINEDLLOVERRIDES;${names// /,}=n,b"

# That it can be seen: a program that loads a library by its bare name gets the planted one.
quick wine "$addins/careless.exe" >/dev/null 2>&1 || fail "nothing was loaded"
[ -s "$log" ] || fail "a planted library that is loaded does not tell"
rm -f "$log"

nothing_planted() {
  [ ! -e "$log" ] || fail "$1 loaded $(tr -d '\0' < "$log" | sort -u)"
  echo "ok: $1 loads nothing from beside itself"
}
quick wine 'C:\QUILMAR32\30000\ADDINS\VORDANE.EXE' /RegServer >/dev/null
nothing_planted "a registration"
use_scenario host
start_host fetch
press_request
wait "$host" || fail "$(cat "$trace")"
expect_gone
nothing_planted "the add-in under a host"
start_alone PBX-1
click --wait 30 --press cmdRequest >/dev/null || fail "no window with a request button"
wait_stored 0
nothing_planted "the window"
