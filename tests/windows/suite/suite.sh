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

# A statement on a database file, as another program would run it.
sql() { win "$programs/suiteprobe/suiteprobe.exe" sql "$@"; }

# A job of the scheduler: key, wait, error stop (0 or -1), runs, its log's name without the key (ENDS), the
# thousands of bytes that the log may take (100).
add_job() {
  sql 'C:\QUILMAR32\30000\QUIL32\DATABASE\Schedule.mdb' \
    "INSERT INTO Options (Key, Wait, ErrorStop, Count, Log, Log2, FileByte, File, Kind)
     VALUES ($1, $2, $3, $4, -1, -1, ${6:-100}, '${5:-ENDS}', 2)" >/dev/null
}

# A job's log $1, line by line, with the times masked.
expect_log() {
  local file
  file=$(find "$drive/QUILMAR32" -iname "$1.tlg")
  [ -n "$file" ] || fail "no log $1.tlg"
  tr -d '\r' < "$file" | sed -E 's/[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}/TIME/g' > "$file.masked"
  diff -u "$repository/tests/windows/suite/host/$1.log" "$file.masked" || fail "the log $1.tlg differs"
  echo "ok: $1.tlg"
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

# Lets the simulated exchanges answer from `scenarios/$1.zul` beside this file.
use_scenario() { cp "$repository/tests/windows/suite/scenarios/$1.zul" "$drive/SIM/Zulsim.zul"; }

# Starts the add-in by hand in the simulator's folder.
start_alone() {
  ( cd "$drive/SIM" && exec wine 'C:\QUILMAR32\30000\ADDINS\VORDANE.EXE' "$1" ) >/dev/null 2>&1 &
  addin=$!
}

# A host in a process of its own: runs the script `host/$1.txt`; its trace goes to `$trace`.
start_host() {
  trace="$WINEPREFIX/$1.trace"
  cp "$repository/tests/windows/suite/host/$1.txt" "$drive/SIM/$1.txt"
  : > "$trace"
  ( cd "$drive/SIM" && exec wine 'C:\QUILMAR32\30000\ADDINS\devhost.exe' "C:\\SIM\\$1.txt" ) \
    > "$trace" 2>/dev/null &
  host=$!
}

# Waits until a line like `$1` stands in the host's trace.
wait_for_line() {
  local i
  for i in $(seq 300); do
    grep -q "$1" "$trace" && return 0
    sleep 0.2
  done
  fail "$(cat "$trace"; echo "no line '$1'")"
}

# Presses the request button of a host's window, once the host notes that it is ready (for exchange `$1`).
press_request() {
  local i
  for i in $(seq 300); do grep -q "^# READY.*${1:-}" "$trace" && break; sleep 0.2; done
  click --wait 30 --press cmdRequest >/dev/null || fail "$(cat "$trace"; echo 'no window with a request button')"
}

# Masks what differs from run to run: identifiers and the window's place.
mask() {
  tr -d '\r' | sed -E -e 's/(SIM|ACCEPTED)-[0-9]+/\1-N/g' -e 's/("MOVE" )"-?[0-9.]+,-?[0-9.]+"/\1"LEFT,TOP"/'
}

# Waits for the host's end and compares its trace, line by line, with `host/$1.expected`.
expect_trace() {
  local code=0
  wait "$host" || code=$?
  mask < "$trace" > "$trace.masked"
  diff -u "$repository/tests/windows/suite/host/$1.expected" "$trace.masked" || fail "the trace of $1 differs"
  expect "exit code of the host $1" 0 "$code"
}

# Whether an add-in's process runs in this prefix.
addin_runs() {
  local process
  for process in /proc/[0-9]*; do
    grep -qa 'VORDANE\.EXE' "$process/cmdline" 2>/dev/null || continue
    tr '\0' '\n' 2>/dev/null < "$process/environ" | grep -qx "WINEPREFIX=$WINEPREFIX" && return 0
  done
  return 1
}

# The add-in's process ends with its last object, or when its host has died; $1 seconds are given (10).
expect_gone() {
  local i
  for i in $(seq $((5 * ${1:-10}))); do
    addin_runs || { echo "ok: the add-in's process is gone"; return 0; }
    sleep 0.2
  done
  fail "VORDANE.EXE still runs"
}
