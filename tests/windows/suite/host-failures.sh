#!/usr/bin/env bash
# What a host is told when a log-in is refused, a request is not taken, an answer carries an error code or no
# entry at all, and when the host itself lacks members or fails in them. Each leaves the window usable: the
# next request goes through the same window.
set -euo pipefail
. "$(dirname "$0")/suite.sh"

install_suite
use_scenario failures

start_host failures
for exchange in BUSY SEND-ERROR CODE-61 CODE-200 NO-ENTRIES; do press_request "$exchange"; done
box=$(click --wait 30 --box 1) || fail "no box after a list without entries"
printf 'the box says: %s\n' "$box"
expect_trace failures
expect_gone
expect "stored of the code 200" 2 "$(stored)"

start_host poor-host
press_request PLAIN
expect_trace poor-host
expect_gone
expect "stored with a poor host" 3 "$(stored)"
