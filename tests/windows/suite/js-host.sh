#!/usr/bin/env bash
# A host written as a script drives an unattended run: every notification reaches it, and the faults are stored.
set -euo pipefail
. "$(dirname "$0")/suite.sh"

install_suite
use_scenario jobs
cp "$repository/examples/host.js" "$addins/"
trace="$WINEPREFIX/js-host.trace"
code=0
( cd "$addins" && quick wine cscript //nologo host.js PBX-1 1 60 ) > "$trace" 2>/dev/null || code=$?
mask < "$trace" | diff -u "$repository/tests/windows/suite/host/js-host.expected" - || fail "the script's trace differs"
expect "exit code of the script" 0 "$code"
expect_gone
expect "stored by the script's run" 2 "$(stored)"
