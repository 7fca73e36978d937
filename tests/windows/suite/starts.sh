#!/usr/bin/env bash
# Whole starts of the program with one piece missing or damaged, each followed by one with everything in its place.
#
#   starts.sh host    a host creates the add-in, registers an exchange and runs a job
#   starts.sh hand    a technician starts it by hand and asks for the list
#
# What the host, the person and the run's log are told, and how each process ends, stands in host/starts-*.expected;
# docs/reliability.md holds the same as a table.
set -euo pipefail
. "$(dirname "$0")/suite.sh"

mode="$1"
shared="$drive/QUILMAR32/30000/QUIL32/DATABASE"
own="$addins/DATABASE"
suite='C:\QUILMAR32\30000'
expected="$repository/tests/windows/suite/host/starts-$mode.expected"
got="$WINEPREFIX/starts-$mode"

say() { printf '%s\n' "$*" | tee -a "$got"; }
spoil() { echo 'no database at all' > "$1"; }
own_sql() { sql "$suite\\ADDINS\\DATABASE\\$1" "$2" >/dev/null; }
shared_sql() { sql "$suite\\QUIL32\\DATABASE\\$1" "$2" >/dev/null; }

# What is wrong before a start, by name; the suite's databases are as installed before each.
damage() {
  case "$1" in
    'nothing') ;;
    'Common.LNG is missing') rm "$shared/Common.LNG" ;;
    'Common.LNG is no database') spoil "$shared/Common.LNG" ;;
    'VORDANE.LNG is missing') rm "$own/VORDANE.LNG" ;;
    'VORDANE.LNG is no database') spoil "$own/VORDANE.LNG" ;;
    'VORDANE.LNG without its messages') own_sql VORDANE.LNG 'DROP TABLE tMessages' ;;
    'VORDANE.LNG without its project texts') own_sql VORDANE.LNG 'DELETE FROM tProject' ;;
    'VORDANE.LNG without texts of controls') own_sql VORDANE.LNG 'DROP TABLE tControls' ;;
    'Register.mdb is missing') rm "$shared/Register.mdb" ;;
    'Register.mdb is no database') spoil "$shared/Register.mdb" ;;
    'Register.mdb without its table') shared_sql Register.mdb 'DROP TABLE Registry' ;;
    'FAULT.MDB is missing') rm "$own/FAULT.MDB" ;;
    'FAULT.MDB is no database') spoil "$own/FAULT.MDB" ;;
    'FAULT.MDB without exchanges') own_sql FAULT.MDB 'DROP TABLE PBXList' ;;
    'FAULT.MDB without faults') own_sql FAULT.MDB 'DROP TABLE FaultDisplay' ;;
    'Schedule.mdb is missing') rm "$shared/Schedule.mdb" ;;
    'Schedule.mdb is no database') spoil "$shared/Schedule.mdb" ;;
    *) fail "no such damage: $1" ;;
  esac
}
restore() {
  rm -rf "$own" "$shared"
  cp -a "$WINEPREFIX/own" "$own"
  cp -a "$WINEPREFIX/shared" "$shared"
}

run_log() {
  local file
  file=$(find "$drive/QUILMAR32" -iname '*.tlg')
  [ -n "$file" ] || { say 'no run log'; return; }
  say "the run log:"
  tr -d '\r' < "$file" | cut -c 21- | sed 's/^/  /' | tee -a "$got"
  rm "$file"
}

# The host's own lines: what it did, what it was answered, what the add-in told it. Which error a creation ends with when
# the program goes is the workstation's affair.
host_lines() { mask < "$trace" | sed 's|^! 0x.*|! an error|' | grep -v '^oPBX\|^TurnO\|^GetComData\|^REGComData\|^GetMPVersion\|^getsysinfo\|^ShowMessage "Exchange'; }

start_by_host() {
  local code=0
  start_host starts
  if [ "$1" = 'FAULT.MDB without faults' ]; then
    box=$(click --wait 60 --box 1) || fail "$(cat "$trace"; echo 'no box about the missing table')"
    say "a box: $(printf '%s' "$box" | tr '\n' ' ')"
  fi
  wait "$host" || code=$?
  host_lines | tee -a "$got"
  say "the host ends with $code"
  expect_gone 20 >/dev/null
  run_log
}

# Answers each box until the window stands alone; prints what comes. False when the program ends instead.
await_window() {
  local i
  for i in $(seq 200); do
    kill -0 "$addin" 2>/dev/null || return 1
    if box=$(click --box 1); then
      say "a box: $(printf '%s' "$box" | tr '\n' ' ')"
      while click --box >/dev/null; do sleep 0.2; done
    elif click cmdRequest >/dev/null; then
      return 0
    fi
    sleep 0.2
  done
  fail 'neither a window nor the end'
}
ask_for_list() {
  click --wait 30 --press cmdRequest >/dev/null || fail 'no request button'
  case "$1" in
    'FAULT.MDB '*)
      box=$(click --wait 60 --box 1) || fail 'no box about a list that could not be stored'
      say "the list is asked for, a box: $(printf '%s' "$box" | tr '\n' ' ')" ;;
    *)
      wait_stored 0
      say "the list is asked for: $(stored) stored" ;;
  esac
}
close_window() {
  local i
  for i in $(seq 30); do
    click --press cmdClose >/dev/null || true  # dropped while the last action still runs
    for _ in 1 2 3 4; do kill -0 "$addin" 2>/dev/null || return 0; sleep 0.5; done
  done
  fail 'the close button did not end the program'
}
start_by_hand() {
  local code=0
  start_alone PBX-1
  if await_window; then
    say 'the window'
    ask_for_list "$1"
    close_window
  fi
  wait "$addin" || code=$?
  say "the program ends with $code"
}

install_suite
use_scenario run-ends
add_job 41 0 -1 1
sql "$suite\\QUIL32\\DATABASE\\Register.mdb" "UPDATE Registry SET Version = '0.0.0'" >/dev/null
cp -a "$own" "$WINEPREFIX/own"
cp -a "$shared" "$WINEPREFIX/shared"

: > "$got"
mapfile -t damages < <(sed -n 's/^## //p' "$expected")
for what in "${damages[@]}"; do
  damage "$what"
  say "## $what"
  case "$mode" in
    host) start_by_host "$what" ;;
    hand) start_by_hand "$what" ;;
  esac
  if [ "$mode $what" = 'host nothing' ]; then
    version=$(sed -n 's/^project(Vordane VERSION \([0-9.]*\).*/\1/p' "$repository/CMakeLists.txt")
    expect 'the registered version' "$version" \
      "$(sql "$suite\\QUIL32\\DATABASE\\Register.mdb" "SELECT Version FROM Registry WHERE AppName = 'VORDANE.WRX'")"
  fi
  restore
done
diff -u "$expected" "$got" || fail 'a start went another way'
echo 'ok: every start went as it should'
