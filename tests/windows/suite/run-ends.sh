#!/usr/bin/env bash
# Jobs that are given up: a run cancelled by its host, whether the exchange server heeds it or not, a run whose
# window a person closes, and the creation of a job that is cancelled, closed or finished.
set -euo pipefail
. "$(dirname "$0")/suite.sh"

install_suite
use_scenario run-ends
for key in 21 22 23; do add_job "$key" 0 -1 3; done

start_host run-cancelled
wait_for_line '^# READY to be closed'
click --wait 30 --close >/dev/null || fail 'no window to close'
wait_for_line '^# READY for the job to be closed'
click --wait 30 --close >/dev/null || fail 'no window to close'
wait_for_line '^# READY for the job to be chosen'
click --wait 30 --press cmdRequest >/dev/null || fail 'no request button'
expect_trace run-cancelled
expect_gone
for log in ENDS21 ENDS22 ENDS23; do expect_log "$log"; done
