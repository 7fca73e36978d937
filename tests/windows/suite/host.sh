#!/usr/bin/env bash
# A host in its own process drives the add-in in its own, which talks to the exchange server in a third: every
# notification comes in its order, the last release ends the add-in, and the faults are in the database.
set -euo pipefail
. "$(dirname "$0")/suite.sh"

install_suite
use_scenario host
start_host fetch
press_request
addin_runs || fail "the add-in has no process of its own"
expect_trace fetch
expect_gone
expect "stored after the release" 80 "$(stored)"
