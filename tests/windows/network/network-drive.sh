#!/usr/bin/env bash
# A suite on a drive letter that stands for a share: the fault database keeps its rollback journal (nothing of a
# write-ahead log ever lies beside it), the faults are stored, and before the first list the window's status line says so. The same suite
# on a drive of this workstation has the log and says nothing.
set -euo pipefail
. "$(dirname "$0")/../suite/suite.sh"

notice='The fault database is on a network drive: storing takes longer.'
install_suite
share="$(dirname "$WINEPREFIX")/share"
mkdir -p "$share"
cp -r "$drive/QUILMAR32" "$share/"
ln -s "$share" "$WINEPREFIX/dosdevices/n:"
# Which letters stand for shares is read when the server starts.
quick wine reg add 'HKLM\Software\Wine\Drives' /v 'n:' /t REG_SZ /d network /f >/dev/null
wineserver -k && wineserver -w && wineserver -p || fail "the Wine server did not start again"

# $1 is the drive, $2 the number of faults to come.
fetch_on() {
  quick wine reg add 'HKCU\Software\VB and VBA Program Settings\QUILMAR32\30000' /v InstallPath /t REG_SZ \
    /d "$1:\\QUILMAR32\\30000\\" /f >/dev/null
  ( cd "$drive/SIM" && exec wine "$1:\\QUILMAR32\\30000\\ADDINS\\VORDANE.EXE" PBX-1 ) >/dev/null 2>&1 &
  addin=$!
  account=$(click --wait 60 --text account)
  click --press cmdRequest >/dev/null || fail "no window of the suite on drive $1"
  faults="$1:\\QUILMAR32\\30000\\ADDINS\\DATABASE\\FAULT.MDB"
  wait_stored 0
}
expect_closed() {
  click --close
  wait "$addin" || fail "the window on drive $1 ended with an error"
}
logs_beside() { find "$1/QUILMAR32/30000/ADDINS/DATABASE" -name '*-wal' -o -name '*-shm' | wc -l; }

use_scenario jobs
fetch_on C
expect "files of the write-ahead log on this workstation's drive" 2 "$(logs_beside "$drive")"
case "$account" in *"$notice"*) fail "a drive of this workstation is called a network drive: $account" ;; esac
echo "ok: on drive C the window says '$account'"
expect_closed C

fetch_on N
expect "files of a write-ahead log on the network drive" 0 "$(logs_beside "$share")"
case "$account" in "$notice "*) echo "ok: on drive N the window says '$account'" ;; *) fail "no notice: $account" ;; esac
expect "stored on the network drive" 2 "$(stored)"
expect_closed N
expect "the database on the network drive" ok "$(sql "$faults" 'PRAGMA integrity_check')"
