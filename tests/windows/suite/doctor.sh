#!/usr/bin/env bash
# What the doctor says of an installed suite on its own workstation, whole and with damage of each kind.
set -euo pipefail
. "$(dirname "$0")/suite.sh"

suite='C:\QUILMAR32\30000'
own='C:\QUILMAR32\30000\ADDINS\DATABASE\VORDANE.LNG'
schedule='C:\QUILMAR32\30000\QUIL32\DATABASE\Schedule.mdb'
settings='HKCU\Software\VB and VBA Program Settings\QUILMAR32\30000'

# What the doctor says, and that its exit code is $1. In a prefix the account that runs the tests owns every file, so
# it may replace the registered programs, and the doctor warns of that each time: that stands in `warnings` alone.
diagnosis() {
  local code=0
  quick wine "$programs/tools/vordane-tools.exe" doctor "$suite" > "$WINEPREFIX/diagnosis" 2>/dev/null || code=$?
  tr -d '\r' < "$WINEPREFIX/diagnosis" | grep '^unsafe: ' > "$WINEPREFIX/warnings" || true
  tr -d '\r' < "$WINEPREFIX/diagnosis" | grep -v '^unsafe: '
  [ "$code" = "$1" ] || { echo "(exit code $code)"; return 1; }
}
# $1 damage, $2 all that the doctor must say of it.
expect_words() {
  local said
  said=$(diagnosis 1) || true
  expect "what the doctor says of $1" "$2" "$said"
}
reg() { quick wine reg "$@" >/dev/null; }
# Takes a file out of the suite and brings it back as it was.
keep() { cp "$1" "$WINEPREFIX/kept"; }
bring_back() { cp "$WINEPREFIX/kept" "$1"; rm -f "$1-wal" "$1-shm"; }

install_suite
expect 'what the doctor says of a whole suite' 'nothing is missing' "$(diagnosis 1)"

expect 'the warnings of registrations for every user' 'Vordane10013.cOLELayer CalderinProj30001.cPBXOle' \
  "$(sed -nE 's/^unsafe: ([^ ]+) is registered for every user, but .* may write to C:.*: let administrators alone write there$/\1/p' "$WINEPREFIX/warnings" | xargs)"
expect 'what it says of the directory as InstallPath has it' 'nothing is missing' "$(suite='C:\QUILMAR32\30000\' diagnosis 1)"

# Settings.
reg delete "$settings" /v InstallPath /f
expect_words 'no InstallPath' 'incomplete: the setting InstallPath of version 30000 is missing: the program looks below its own directory'
reg add "$settings" /v InstallPath /t REG_SZ /d 'C:\windows\' /f
expect_words 'an InstallPath elsewhere' 'stops the program: the setting InstallPath leads to C:\windows\, not to this suite'
reg add "$settings" /v InstallPath /t REG_SZ /d 'C:\QUILMAR32\30000\' /f
reg delete "$settings" /v QUILMAR32 /f
expect_words 'no QUILMAR32' 'incomplete: the setting QUILMAR32 is missing: options and logs of scheduled jobs are not found'
reg add "$settings" /v QUILMAR32 /t REG_SZ /d 30000 /f
reg delete "$settings" /v ZUL /f
expect_words 'no ZUL' 'incomplete: the setting ZUL is missing: started alone, the program finds no exchange server'
reg add "$settings" /v ZUL /t REG_SZ /d 30001 /f

# Databases.
fault="$addins/DATABASE/FAULT.MDB"
keep "$fault"
rm "$fault"
expect_words 'no FAULT.MDB' 'stops the program: C:\QUILMAR32\30000\ADDINS\DATABASE\FAULT.MDB is missing: no faults can be stored or shown'
echo 'no database at all' > "$fault"
expect_words 'a FAULT.MDB that is a text' 'stops the program: C:\QUILMAR32\30000\ADDINS\DATABASE\FAULT.MDB is no database: no faults can be stored or shown'
bring_back "$fault"
dd if=/dev/urandom of="$fault" bs=4096 seek=1 count=2 conv=notrunc 2>/dev/null
diagnosis 1 | grep -q 'stops the program: .*FAULT.MDB is damaged: ' || fail "$(cat "$WINEPREFIX/diagnosis")"
bring_back "$fault"
sql "$faults" 'DROP TABLE PBXList'
expect_words 'no table PBXList' 'stops the program: C:\QUILMAR32\30000\ADDINS\DATABASE\FAULT.MDB: table PBXList is missing'
bring_back "$fault"
sql "$faults" 'ALTER TABLE FaultDisplay DROP COLUMN CPU'
expect_words 'no column CPU' 'stops the program: C:\QUILMAR32\30000\ADDINS\DATABASE\FAULT.MDB: table FaultDisplay lacks the column CPU'
bring_back "$fault"
keep "$drive/QUILMAR32/30000/QUIL32/DATABASE/Schedule.mdb"
sql "$schedule" 'ALTER TABLE Options DROP COLUMN Kind'
expect 'what the doctor says of jobs without kinds' 'nothing is missing' "$(diagnosis 1)"
sql "$schedule" 'ALTER TABLE Options DROP COLUMN File'
expect_words 'no column File' 'incomplete: C:\QUILMAR32\30000\QUIL32\DATABASE\Schedule.mdb: table Options lacks the column File'
bring_back "$drive/QUILMAR32/30000/QUIL32/DATABASE/Schedule.mdb"

# Texts and pictures.
keep "$addins/DATABASE/VORDANE.LNG"
sql "$own" 'DELETE FROM tMessages WHERE ID = 89'
expect_words 'a missing message' 'incomplete: VORDANE.LNG/messages: message 89 is missing'
sql "$own" 'DROP TABLE tMsgBox'
diagnosis 1 | grep -q 'VORDANE.LNG: table tMsgBox is missing' || fail "$(cat "$WINEPREFIX/diagnosis")"
bring_back "$addins/DATABASE/VORDANE.LNG"
mv "$drive/QUILMAR32/30000/BACKGRND/VORDPANE.BMP" "$WINEPREFIX/picture"
expect_words 'a missing picture' 'incomplete: C:\QUILMAR32\30000\BACKGRND\VORDPANE.BMP is missing: no background there'
mv "$WINEPREFIX/picture" "$drive/QUILMAR32/30000/BACKGRND/VORDPANE.BMP"

# Registration.
mv "$addins/VORDANE.EXE" "$addins/MOVED.EXE"
expect_words 'a program that is gone' 'stops the program: Vordane10013.cOLELayer is registered to C:\QUILMAR32\30000\ADDINS\VORDANE.EXE, which is not there: no host can start the add-in (VORDANE.EXE /RegServer)'
mkdir -p "$drive/OTHER"
cp "$addins/MOVED.EXE" "$drive/OTHER/VORDANE.EXE"
mv "$addins/MOVED.EXE" "$addins/VORDANE.EXE"
quick wine 'C:\OTHER\VORDANE.EXE' /RegServer >/dev/null
expect_words 'another program registered' 'incomplete: Vordane10013.cOLELayer is registered to C:\OTHER\VORDANE.EXE: hosts start that one, not this suite'\''s C:\QUILMAR32\30000\ADDINS\VORDANE.EXE'
quick wine 'C:\OTHER\VORDANE.EXE' /UnregServer >/dev/null
expect_words 'no registration' 'stops the program: Vordane10013.cOLELayer is not registered: no host can start the add-in (VORDANE.EXE /RegServer)'
quick wine 'C:\QUILMAR32\30000\ADDINS\VORDANE.EXE' /RegServer >/dev/null
quick wine 'C:\SIM\Zulsim.exe' /UnregServer >/dev/null
expect_words 'no exchange server' 'incomplete: CalderinProj30001.cPBXOle is not registered: no exchange can be reached'
quick wine 'C:\SIM\Zulsim.exe' /RegServer >/dev/null
expect 'what the doctor says in the end' 'nothing is missing' "$(diagnosis 1)"
