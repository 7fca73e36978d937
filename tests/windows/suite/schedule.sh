#!/usr/bin/env bash
# Unattended runs of a host's scheduler: the codes that come back, how often the list is fetched, and what each
# job's log says.
set -euo pipefail
. "$(dirname "$0")/suite.sh"

# Each run of a job waits before its request: between a log's line "Run N" and the next one lie `$2` seconds.
expect_waits() {
  local waits
  waits=$(tr -d '\r' < "$(find "$drive/QUILMAR32" -iname "$1.tlg")" | awk -v least="$2" '
    { split($2, t, ":"); now = 3600 * t[1] + 60 * t[2] + t[3] }
    started { if ((now - before + 86400) % 86400 >= least) ++waits; started = 0 }
    $3 == "Run" { started = 1; before = now }
    END { print waits + 0 }')
  expect "runs of $1 that waited $2 seconds" "$3" "$waits"
}

install_suite
use_scenario jobs
start_host jobs
expect_trace jobs
expect_gone
expect "stored by three runs over the same list" 2 "$(stored)"
expect_log FAULT2
expect_log FAULT3
expect_waits FAULT2 2 4
expect_waits FAULT3 2 4
