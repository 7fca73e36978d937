#!/usr/bin/env bash
# A suite that keeps Access files. The add-in works on them as they are, through DAO; the tools list and export
# them; an import brings them over, losing nothing, and the add-in goes on with what was brought over. What
# answers to DAO's name here is the tests' stand-in, whose Access files are embedded ones behind a first page
# of Access's.
set -euo pipefail
. "$(dirname "$0")/suite.sh"

shared="$drive/QUILMAR32/30000/QUIL32/DATABASE"
own="$addins/DATABASE"
mine='C:\QUILMAR32\30000\ADDINS\DATABASE\'
theirs='C:\QUILMAR32\30000\QUIL32\DATABASE\'

make_access() {
  { printf '\0\1\0\0Standard Jet DB\0'; head -c 4076 /dev/zero; cat "$1"; } > "$1.tmp"
  mv "$1.tmp" "$1"
}

# Fetches the list with the add-in started by hand.
fetch() {
  start_alone PBX-1
  click --wait 60 --press cmdRequest >/dev/null || fail "no window with a request button"
  "$@"
  for _ in $(seq 30); do
    click --press cmdClose >/dev/null || true  # dropped while the last action still runs
    for _ in 1 2 3 4; do kill -0 "$addin" 2>/dev/null || return 0; sleep 0.5; done
  done
  fail "the close button did not end the program"
}
nothing_new() {
  local box
  box=$(click --wait 60 --box 1) || fail "no box after a list without new faults"
  printf 'the box says: %s\n' "$box"
}
export_all() {
  local file
  for file in "${mine}FAULT.MDB" "${mine}VORDANE.LNG" "${theirs}Common.LNG" "${theirs}Register.mdb" "${theirs}Schedule.mdb"; do
    tools export "$file" --csv "C:\\$1" >/dev/null 2>"$WINEPREFIX/export.txt" ||
      fail "$file was not exported: $(cat "$WINEPREFIX/export.txt")"
  done
}

install_suite ru
cp "$VORDANE_BUILD/tests/windows/dao/daoserver.exe" "$drive/"
quick wine 'C:\daoserver.exe' /RegServer >/dev/null || fail "the stand-in for DAO was not registered"
for file in "$own/FAULT.MDB" "$own/VORDANE.LNG" "$shared/Common.LNG" "$shared/Register.mdb" "$shared/Schedule.mdb"; do
  make_access "$file"
done

fetch wait_stored 0
expect "FAULT.MDB after the add-in" '....Standard Jet DB' "$(head -c 19 "$own/FAULT.MDB" | tr '\0\1' '..')"
first=$(stored)
[ "${first:-0}" -ge 52 ] || fail "only '$first' faults came of a list that covers every kind"
echo "ok: the add-in stored $first faults in an Access file"

export_all access
before=$(sha256sum "$own/FAULT.MDB" | cut -d' ' -f1)
tools import 'C:\QUILMAR32\30000' > "$drive/import.txt" || fail "nothing was imported"
cat "$drive/import.txt"
expect "faults brought over" "  FaultDisplay: $first rows" "$(grep FaultDisplay "$drive/import.txt")"
expect "files brought over" 5 "$(grep -c 'brought over' "$drive/import.txt")"
expect "the kept Access file" "$before" "$(sha256sum "$own/FAULT.MDB.access" | cut -d' ' -f1)"
expect "FAULT.MDB after the import" 'SQLite format 3' "$(head -c 15 "$own/FAULT.MDB")"
export_all embedded
diff -r "$drive/access" "$drive/embedded" || fail "the tables differ after the import"
echo "ok: every table is the same, $(ls "$drive/access" | wc -l) of them"
grep -q 'PBX-1' "$drive/access/PBXList.csv" || fail "the exchange is missing"
[ "$(tools import 'C:\QUILMAR32\30000' | grep -c 'no Access files')" = 1 ] || fail "a second import found something"

fetch nothing_new
expect "stored after the same list" "$first" "$(stored)"

# The stand-in leaves what was called wrongly beside it.
[ ! -e "$drive/daoserver.exe.misuse" ] || fail "$(cat "$drive/daoserver.exe.misuse")"
echo "ok: no call that DAO would refuse"
