#!/usr/bin/env bash
# Hosts that are killed in the middle of an unattended job: while the answer is waited for, in the pause before
# a request, inside a call of theirs, in the middle of the answer, while a job is being made. The add-in goes
# too, the database stays whole, and the log says what happened and no more.
set -euo pipefail
. "$(dirname "$0")/suite.sh"

# Runs lines of a host's script and waits until host and add-in are gone. $1 names the case, $2 the lines.
kill_host() {
  trace="$WINEPREFIX/$1.trace"
  printf 'pbx create\ngive heard on TurnOnFlow\ncreate\n%s\nwait UnloadChild within 60000\n' "$2" > "$drive/SIM/$1.txt"
  : > "$trace"
  ( cd "$drive/SIM" && exec wine 'C:\QUILMAR32\30000\ADDINS\devhost.exe' "C:\\SIM\\$1.txt" ) \
    > "$trace" 2>/dev/null || true
  ! grep -q '^EndProcess\|^UnloadChild' "$trace" || fail "$(cat "$trace"; echo "the host $1 lived on")"
  expect_gone 40
  expect "the database after $1" ok "$(sql "$faults" 'PRAGMA integrity_check')"
}

# The lines of job $1's log without their times.
log_lines() {
  local file
  file=$(find "$drive/QUILMAR32" -iname "$1.tlg")
  [ -n "$file" ] || fail "no log $1.tlg"
  tr -d '\r' < "$file" | cut -c 21-
}
expect_last() {
  local last
  last=$(log_lines "$1" | tail -n 1)
  expect "the last line of $1.tlg" "$2" "$last"
}
broken_off='The run was broken off: no program uses the fault display any more'

install_suite
use_scenario run-ends
for key in 31 33 34; do add_job "$key" 0 -1 1; done
add_job 32 5 0 1000

kill_host waiting $'register SLOW 1\nrun 31\nwait TurnOnFlow within 60000\ndie'
expect 'the log of a run whose host died while it waited for the answer' "$broken_off" "$(log_lines ENDS31)"

kill_host pausing $'register SLOW 1\nrun 32\nsleep 500\ndie'
expect_last ENDS32 "$broken_off"
log_lines ENDS32 | grep -q '^Run 1$' || fail 'the first run has no number'
other=$(log_lines ENDS32 | grep -v "^Run [0-9]*\$\|^No list received: the exchange server can't be reached (error 0x[0-9A-F]*)\$" | grep -vxF "$broken_off" || true)
expect 'what else stands in the log of a run whose host died in its pause' '' "$other"

kill_host calling $'register SLOW 1\ndie SendRequest\nrun 33'
expect 'the log of a run whose host died inside a call' \
  $'No list received: the exchange server did not take the request\n...' "$(log_lines ENDS33)"

kill_host answering $'register PBX-1 1\ndie ShowCode\nrun 34'
log_lines ENDS34 > "$WINEPREFIX/answering.log"
grep -qx 'List complete: 1 received, 1 new, 0 already stored, 0 refused' "$WINEPREFIX/answering.log" ||
  fail "$(cat "$WINEPREFIX/answering.log"; echo 'the list that came is not in the log')"
grep -q '^No list received' "$WINEPREFIX/answering.log" && fail 'a list that came is called not received'
grep -q "^List not acknowledged: the exchange server can't be reached" "$WINEPREFIX/answering.log" ||
  fail "$(cat "$WINEPREFIX/answering.log"; echo 'the missing acknowledgement is not in the log')"
expect 'stored of the list that came' 1 "$(stored)"

kill_host creating $'register SLOW 1\ncreate-schedule 35 3\ndie'

# What was left behind hinders nobody.
start_host after-deaths
expect_trace after-deaths
expect_gone
