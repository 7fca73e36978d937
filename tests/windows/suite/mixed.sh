#!/usr/bin/env bash
# Programs of both word sizes together: a 32-bit host with the 64-bit add-in and the reverse, with the exchange
# server of the add-in's word size and of the host's.
set -euo pipefail
. "$(dirname "$0")/suite.sh"

builds=$(dirname "$VORDANE_BUILD")
for program in x64/programs/vordane/VORDANE.EXE x64/programs/devhost/devhost.exe x64/programs/zulsim/Zulsim.exe; do
  [ -f "$builds/windows-$program" ] || { echo "skipped: windows-$program is not built"; exit 77; }
done

# The machine type that a program was built for: 8664 or 014c.
machine() {
  local header
  header=$(od -An -tu4 -j60 -N4 "$1" | tr -d ' ')
  od -An -tx2 -j$((header + 4)) -N2 "$1" | tr -d ' '
}

# Installs the add-in, the host and the exchange server of those word sizes and registers them.
use() {
  cp "$builds/windows-$1/programs/vordane/VORDANE.EXE" "$addins/"
  cp "$builds/windows-$2/programs/devhost/devhost.exe" "$addins/"
  cp "$builds/windows-$3/programs/zulsim/Zulsim.exe" "$drive/SIM/"
  quick wine 'C:\QUILMAR32\30000\ADDINS\VORDANE.EXE' /RegServer >/dev/null || fail "the $1 add-in was not registered"
  quick wine 'C:\SIM\Zulsim.exe' /RegServer >/dev/null || fail "the $3 exchange server was not registered"
  echo "== add-in $1 ($(machine "$addins/VORDANE.EXE")), host $2 ($(machine "$addins/devhost.exe")), exchange server $3"
}

install_suite
use_scenario jobs
cp "$addins/DATABASE/FAULT.MDB" "$addins/DATABASE/empty"
for words in 'x64 x86 x64' 'x86 x64 x86' 'x64 x86 x86' 'x86 x64 x64'; do
  # shellcheck disable=SC2086
  use $words
  rm -f "$addins/DATABASE/FAULT.MDB"*
  cp "$addins/DATABASE/empty" "$addins/DATABASE/FAULT.MDB"
  start_host mixed
  expect_trace mixed
  expect_gone
  expect "stored" 2 "$(stored)"
  quick wine taskkill /F /IM Zulsim.exe >/dev/null 2>&1 || true
done
