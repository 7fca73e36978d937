#!/usr/bin/env bash
# A host and an exchange server that misbehave, in processes of their own, against the installed suite; then a host
# that behaves. The short version; the long one: VORDANE_HOSTILE_CALLS=20000 VORDANE_TEST_TIMEOUT=3000.
set -euo pipefail
. "$(dirname "$0")/../suite/suite.sh"

install_suite
mkdir -p "$drive/EVIL"
for program in EvilHost EvilExchange; do
  cp "$VORDANE_BUILD/tests/windows/hostile/$program.exe" "$drive/EVIL/"
  quick wine "C:\\EVIL\\$program.exe" /RegServer >/dev/null || fail "$program.exe was not registered"
done
quick wine reg add 'HKCU\Software\VB and VBA Program Settings\QUILMAR32\30000' /v ZUL /t REG_SZ /d 30666 /f >/dev/null
timeout --kill-after=10 5000 wine "$VORDANE_BUILD/tests/windows/hostile/director.exe" \
  "${VORDANE_HOSTILE_CALLS:-2000}" "${VORDANE_HOSTILE_SEED:-1}" || fail "what hostile programs leave behind"
expect "the database, looked at by another program" ok "$(sql "$faults" 'PRAGMA integrity_check')"
