#!/usr/bin/env bash
# The programs tell neither when nor where they were built, and nothing is linked into them whose notices a release would
# lack: programs.sh PROGRAMS SOURCES (two folders).
set -euo pipefail
fail() { echo "FAILED: $*"; exit 1; }
number() { od -An -tu4 -j "$2" -N 4 "$1" | tr -d ' '; }
for program in vordane/VORDANE.EXE zulsim/Zulsim.exe devhost/devhost.exe tools/vordane-tools.exe; do
  file="$1/$program"
  [ -s "$file" ] || fail "$file is not built"
  header=$(number "$file" 60)
  [ "$(number "$file" $((header + 8)))" = 0 ] || fail "$program tells when it was linked"
  ! grep -qaF -- "$2/" "$file" || fail "$program tells where it was built: $(grep -aoF -m1 -- "$2/" "$file")"
done
# The type library's compiler names the time in it, here that of a set clock.
compiled=$(grep -aoE 'Created by WIDL version [0-9.]+ at [A-Za-z0-9: ]+' "$1/vordane/VORDANE.EXE") ||
  fail "the type library does not name its compiler, so nobody knows about its time"
case "$compiled" in *" at Thu Jan  1 00:00:00 2026") ;; *) fail "the type library tells when it was compiled: $compiled" ;; esac
said=$("$2/tools/notices.sh" "$(dirname "$1")" 2>&1 >/dev/null) || fail "$said"
echo "programs: everything passed"
