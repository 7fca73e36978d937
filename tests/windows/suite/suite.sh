# Sourced by the tests of the whole suite: an installed layout in the test's Wine prefix, with the programs of
# this build registered. Expects WINEPREFIX, VORDANE_BUILD and VORDANE_ARCH; sets `drive`, `addins`, `faults`.

repository=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../.." && pwd)
programs="$VORDANE_BUILD/programs"
drive="$WINEPREFIX/drive_c"
addins="$drive/QUILMAR32/30000/ADDINS"
faults='C:\QUILMAR32\30000\ADDINS\DATABASE\FAULT.MDB'

fail() { printf 'FAILED: %s\n' "$*"; exit 1; }
expect() {  # what, expected, got
  [ "$2" = "$3" ] || fail "$1: expected '$2', got '$3'"
  printf 'ok: %s is %s\n' "$1" "$2"
}
quick() { timeout --kill-after=5 90 "$@"; }
# Programs on Windows end their lines with CR LF.
win() { quick wine "$@" 2>/dev/null | tr -d '\r'; }
tools() { win "$programs/tools/vordane-tools.exe" "$@"; }
click() { win "$programs/click/click.exe" "$@"; }
stored() { tools list "$faults" --count; }

install_suite() {
  mkdir -p "$addins" "$drive/SIM"
  cp "$programs/vordane/VORDANE.EXE" "$programs/devhost/devhost.exe" "$addins/"
  cp "$programs/zulsim/Zulsim.exe" "$drive/SIM/"
  cp -r "$repository/data/scenarios" "$drive/SIM/"
  tools suite 'C:\QUILMAR32\30000' --language "${1:-en}" --source "Z:${repository//\//\\}\\data" >/dev/null
  [ -f "$addins/DATABASE/FAULT.MDB" ] || fail "the suite's files were not made"
  local key='HKCU\Software\VB and VBA Program Settings\QUILMAR32\30000' value
  for value in 'InstallPath C:\QUILMAR32\30000\' 'QUILMAR32 30000' 'ZUL 30001'; do
    quick wine reg add "$key" /v "${value%% *}" /t REG_SZ /d "${value#* }" /f >/dev/null
  done
  quick wine 'C:\QUILMAR32\30000\ADDINS\VORDANE.EXE' /RegServer >/dev/null || fail "VORDANE.EXE was not registered"
  quick wine 'C:\SIM\Zulsim.exe' /RegServer >/dev/null || fail "Zulsim.exe was not registered"
}

# Waits until the number of stored faults stands still above `$1`.
wait_stored() {
  local last=-1 now i
  for i in $(seq 40); do
    now=$(stored)
    [ "$now" = "$last" ] && [ "${now:-0}" -gt "$1" ] && return 0
    last="$now"
    sleep 1
  done
  fail "the number of stored faults stayed at '$now'"
}

# Starts the add-in by hand in the simulator's folder.
start_alone() {
  ( cd "$drive/SIM" && exec wine 'C:\QUILMAR32\30000\ADDINS\VORDANE.EXE' "$1" ) >/dev/null 2>&1 &
  addin=$!
}
