#!/usr/bin/env bash
# Hosts written as scripts drive an unattended run: every notification reaches them, and the faults are stored.
# The second one is its own exchange server and answers with plain script objects.
set -euo pipefail
. "$(dirname "$0")/suite.sh"

run_script() {  # file, its expected lines, arguments
  local trace="$WINEPREFIX/js-host.trace" script="$1" expected="$repository/tests/windows/suite/host/$2" code=0
  shift 2
  cp "$script" "$addins/"
  ( cd "$addins" && quick wine cscript //nologo "$(basename "$script")" "$@" ) > "$trace" 2>/dev/null || code=$?
  mask < "$trace" | diff -u "$expected" - || fail "the script's trace differs"
  expect "exit code of the script" 0 "$code"
  expect_gone
}

install_suite
use_scenario jobs
run_script "$repository/examples/host.js" js-host.expected PBX-1 1 60
expect "stored by the script's run" 2 "$(stored)"
run_script "$repository/tests/windows/suite/host/js-exchange.js" js-exchange.expected
expect "stored with the script's exchange" 3 "$(stored)"
