#!/usr/bin/env bash
# Reference counts balance: objects created and let go of beside one that is held, and add-ins created and
# released to the end of their processes, leave no process, handle or memory behind. The short version; the
# long one: VORDANE_KEEPER_ROUNDS=10000 VORDANE_ENDINGS=200 VORDANE_TEST_TIMEOUT=5000.
set -euo pipefail
. "$(dirname "$0")/suite.sh"

install_suite
rounds() { timeout --kill-after=10 5000 wine "$VORDANE_BUILD/tests/windows/rounds/rounds.exe" "$@" 2>/dev/null || fail "rounds $*"; }
rounds keeper "${VORDANE_KEEPER_ROUNDS:-200}"
expect_gone
rounds endings "${VORDANE_ENDINGS:-10}"
expect_gone
tools list "$faults" --count >/dev/null || fail "the fault database can't be read"
