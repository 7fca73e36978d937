#!/usr/bin/env bash
# The tests of the shared store as a Windows program: Wine's driver manager hands on to this machine's, and so to its
# driver and to a server of the test's own. Called by tests/windows/run.sh.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
exec "$here/with-server.sh" wine "$VORDANE_BUILD/tests/odbc/odbc_tests.exe" "$@"
