#!/usr/bin/env bash
# On a window station that nobody sees, as in a service's session: no box waits for an answer that can't come,
# and unattended runs do their work.
set -euo pipefail
. "$(dirname "$0")/suite.sh"

# Runs host/$1.txt where nobody sees it; the trace goes to $trace.
start_unseen_host() {
  trace="$WINEPREFIX/$1.trace"
  cp "$repository/tests/windows/suite/host/$1.txt" "$drive/SIM/$1.txt"
  ( cd "$drive/SIM" && exec timeout 120 wine "$programs/suiteprobe/suiteprobe.exe" unseen \
      'C:\QUILMAR32\30000\ADDINS\devhost.exe' "C:\\SIM\\$1.txt" ) > "$trace" 2>/dev/null &
  host=$!
}

install_suite
use_scenario run-ends

start_unseen_host unseen-run
expect_trace unseen-run
expect_gone
expect 'stored by a run that nobody sees' 1 "$(stored)"

# A database without faults is told in a box when an exchange is registered, which a person sees ...
sql "$faults" 'DROP TABLE FaultDisplay'
start_host unseen-box
box=$(click --wait 30 --box 1) || fail 'no box about the missing table'
case "$box" in *faultdisplay*) ;; *) fail "the box says: $box" ;; esac
expect_trace unseen-box
expect_gone
# ... and which nobody waits for where nobody is.
start_unseen_host unseen-box
expect_trace unseen-box
expect_gone
