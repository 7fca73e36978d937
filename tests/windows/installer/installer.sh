#!/usr/bin/env bash
# The installer as an administrator runs it without a screen: a set of its own, a list from the simulated exchange, what
# is registered, an upgrade over an older release, one that is refused, a removal, a suite that is there. Its exit codes
# say what became of it, and what stands on the disk says whether that is true.
set -euo pipefail -f
export LC_ALL=C.UTF-8

drive="$WINEPREFIX/drive_c"
installer="$VORDANE_BUILD/installer/setup.exe"
fail() { printf 'FAILED: %s\n' "$*"; cat "$drive/setup.log" 2>/dev/null; exit 1; }
quick() { timeout --kill-after=5 120 wine "$@"; }
expect() { [ "$2" = "$3" ] || fail "$1: expected '$2', got '$3'"; printf 'ok: %s\n' "$1"; }
# setup CODE ARGUMENTS: word by word, since a folder with blanks must reach the installer without quotes.
setup() {
  local code=0
  quick "$installer" $2 >/dev/null 2>&1 || code=$?
  [ "$1" = "$code" ] || find "$drive" -maxdepth 1 -name '*.log' -newer "$installer" -exec tail -n 4 {} +
  expect "exit code of $2" "$1" "$code"
}
remove() {  # CODE ROOT ARGUMENTS: in place, since a remover that copies itself ends at once
  local code=0
  quick "$2\\ADDINS\\SETUP\\remove.exe" $3 /LOG=C:\\setup.log _?=$2\\ADDINS\\SETUP >/dev/null 2>&1 || code=$?
  [ "$1" = "$code" ] || tail -n 4 "$drive/setup.log"
  expect "exit code of the removal $3" "$1" "$code"
}
registered() {  # into file $1
  local key
  for key in 'HKLM\Software\Classes' 'HKCU\Software\Classes' "$sources" "$dumps"; do
    for view in 64 32; do
      rm -f "$drive/out.reg"
      quick reg export "$key" 'C:\out.reg' /y "/reg:$view" >/dev/null 2>&1 || continue
      iconv -f UTF-16 -t UTF-8 "$drive/out.reg" | tr -d '\r' | sed "s/^\[/[$view /"
    done
  done > "$1"
  [ -s "$1" ] || fail "the registry could not be read"
}
snapshot() { ( cd "$1" && find . -type f -exec sha256sum {} + | sort -k2 ); }
tools() { quick "$addins\\vordane-tools.exe" "$@" | tr -d '\r'; }

sources='HKLM\SYSTEM\CurrentControlSet\Services\EventLog\Application'
reporting='HKLM\Software\Microsoft\Windows\Windows Error Reporting'
dumps="$reporting\LocalDumps"
# The console has not every letter of the folder above.
below_base() { LC_ALL=C sed 's/.*\\QUILMAR32/QUILMAR32/'; }
value() { quick reg query "$1" /v "$2" /reg:64 2>/dev/null | tr -d '\r' | sed -n "s/^ *$2 *REG_[A-Z_]* *//p"; }

[ -s "$installer" ] || fail "there is no installer"
# Below the sources others stand, of a workstation whatever: made here, so that a removal leaves them. The error
# reporting's key is on every Windows, the one of the images is not: it goes with the removal when it came with us.
quick reg add "$sources\Others" /f >/dev/null
quick reg add "$reporting" /f /reg:64 >/dev/null
registered "$drive/nothing"

# A set of its own, in a folder with blanks and letters of several scripts.
base='C:\Pläne und 計画'
root="$base\\QUILMAR32\\30000" addins="$base\\QUILMAR32\\30000\\ADDINS"
here="$drive/Pläne und 計画/QUILMAR32/30000"
setup 0 "/S /AllUsers /Demonstration /Language=ru /LOG=C:\\setup.log /D=$base"
grep -q 'nothing is missing' "$drive/setup.log" || fail "the doctor is not content"
for file in ADDINS/VORDANE.EXE ADDINS/DATABASE/FAULT.MDB ADDINS/SETUP/remove.exe SIM/Zulsim.exe SIM/scenarios/demo.zul; do
  [ -s "$here/$file" ] || fail "$file is not there"
done
cmp "$here/ADDINS/VORDANE.EXE" "$VORDANE_BUILD/programs/vordane/VORDANE.EXE" || fail "another add-in is installed"
[ ! -e "$here/ADDINS/~SETUP" ] || fail "it leaves files"
entry='HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\Vordane 30000'
# Where a system of both word sizes shows it first, whatever the installer's own.
quick reg query "$entry" /reg:64 > "$drive/entry" 2>/dev/null || fail "it is not in the list of programs"
for value in DisplayVersion UninstallString QuietUninstallString EstimatedSize InstallLocation; do
  grep -q "$value" "$drive/entry" || fail "the list of programs lacks $value"
done
echo "ok: it is in the list of programs"
quick "$addins\\vordane-tools.exe" doctor "$root" > "$drive/doctor" 2>/dev/null || true
grep -q "nothing is missing" "$drive/doctor" || fail "the doctor: $(cat "$drive/doctor")"

# The source of its entries in the event log names the program that holds their texts.
expect "the texts of the event log" 'QUILMAR32\30000\ADDINS\VORDANE.EXE' \
  "$(value "$sources\Vordane" EventMessageFile | below_base)"
expect "images of crashes at first" "" "$(value "$dumps\VORDANE.EXE" DumpType)"

# What it has registered is what the programs register by themselves.
registered "$drive/by-installer"
quick "$addins\\VORDANE.EXE" /UnregServer >/dev/null
quick "$base\\QUILMAR32\\30000\\SIM\\Zulsim.exe" /UnregServer >/dev/null
registered "$drive/taken"
cmp "$drive/taken" "$drive/nothing" || fail "$(diff "$drive/taken" "$drive/nothing" | head)"
quick "$base\\QUILMAR32\\30000\\SIM\\Zulsim.exe" /RegServer >/dev/null
quick "$addins\\VORDANE.EXE" /RegServer >/dev/null
registered "$drive/by-programs"
diff "$drive/by-installer" "$drive/by-programs" > "$drive/differs" || fail "$(head "$drive/differs")"
echo "ok: the registration is that of /RegServer"

# A list, fetched by an unattended run from the simulated exchange.
printf '%s\n' 'pbx create' create 'register "PBX-1" 1' 'run 1' 'wait UnloadChild within 120000' release > "$here/ADDINS/demo.txt"
( cd "$here/ADDINS" && timeout 180 wine devhost.exe demo.txt ) > "$drive/host" 2>/dev/null || fail "the host: $(tail -n 5 "$drive/host")"
rm "$here/ADDINS/demo.txt"
faults() { quick "$addins\\vordane-tools.exe" list "$addins\\DATABASE\\FAULT.MDB" --csv | tr -d '\r' > "$1"; }
faults "$drive/stored"
count=$(wc -l < "$drive/stored")
[ "$count" -gt 1 ] || fail "no fault was stored"
echo "ok: $((count - 1)) faults were fetched"

# An upgrade over the release before: other programs, and a file that is no longer part of it.
printf 'older' >> "$here/ADDINS/VORDANE.EXE"
echo 'no longer part of it' > "$here/ADDINS/HELP/old.txt"
sed -i 's/^version\t.*/version\t0.9.0/; s#^end$#file\tADDINS/HELP/old.txt\nend#' "$here/ADDINS/SETUP/installed.tsv"
# The databases live while the add-in runs.
programs() { snapshot "$here" | grep -v /DATABASE/; }
older=$(programs)

# While the add-in runs it is not touched, and not ended.
( cd "$here/SIM" && exec wine "$addins\\VORDANE.EXE" PBX-1 ) >/dev/null 2>&1 &
quick "$VORDANE_BUILD/programs/click/click.exe" --wait 60 --find cmdClose >/dev/null || fail "the window did not appear"
setup 10 "/S /AllUsers /Wait=1 /LOG=C:\\used.log /D=$base"
grep -q 'is in use' "$drive/used.log" || fail "it does not say what is in use"
quick "$VORDANE_BUILD/programs/click/click.exe" --wait 5 --find cmdClose >/dev/null || fail "the window is gone"
expect "what stands there while it is in use" "$older" "$(programs)"
# It waits for the end of what is in use.
setup 0 "/S /AllUsers /LOG=C:\\waited.log /D=$base" & waiting=$!
until grep -q 'waiting for' "$drive/waited.log" 2>/dev/null; do sleep 0.2; kill -0 $waiting 2>/dev/null || break; done
quick "$VORDANE_BUILD/programs/click/click.exe" --wait 5 --press cmdClose >/dev/null || true
wait "$waiting" || fail "$(cat "$drive/waited.log")"
cmp "$here/ADDINS/VORDANE.EXE" "$VORDANE_BUILD/programs/vordane/VORDANE.EXE" || fail "the add-in was not renewed"
[ ! -e "$here/ADDINS/HELP/old.txt" ] || fail "a file of the release before is left"
faults "$drive/after"
cmp "$drive/stored" "$drive/after" || fail "faults were lost"
grep -q "$(printf 'language\tru')" "$here/ADDINS/SETUP/installed.tsv" || fail "the language changed"
echo "ok: upgraded, with every fault"

# Images of crashes, when they are asked for, and by an upgrade of the same set.
setup 0 "/S /AllUsers /CrashDumps /LOG=C:\\dumps.log /D=$base"
expect "images of crashes" '0x1 0x5 QUILMAR32\30000' \
  "$(value "$dumps\VORDANE.EXE" DumpType) $(value "$dumps\VORDANE.EXE" DumpCount) $(value "$dumps\VORDANE.EXE" InstallLocation | below_base)"

# A release that is newer stays.
sed -i 's/^version\t.*/version\t9.0.0/' "$here/ADDINS/SETUP/installed.tsv"
before=$(snapshot "$here")
setup 13 "/S /AllUsers /LOG=C:\\newer.log /D=$base"
expect "what stands there after a downgrade" "$before" "$(snapshot "$here")"
sed -i 's/^version\t.*/version\t0.9.0/' "$here/ADDINS/SETUP/installed.tsv"

# No room and no rights: nothing is left.
mkdir -p "$drive/small"
mount -t tmpfs -o size=1m tmpfs "$drive/small"
setup 12 '/S /AllUsers /LOG=C:\full.log /D=C:\small\QUILMAR32\40000'
grep -q 'MB are needed, [01] MB are free' "$drive/full.log" || fail "it does not say how much room is needed"
expect "what a full disk holds" "" "$(ls -A "$drive/small")"
mount -o remount,size=100m,ro "$drive/small"
setup 11 '/S /AllUsers /LOG=C:\rights.log /D=C:\small\QUILMAR32\40000'
umount "$drive/small"

# A removal keeps what work has made, also what an engine holds beside a database; told otherwise, nothing stays.
remove 0 "$root" "/S"
expect "what a removal keeps" \
  "ADDINS/DATABASE/FAULT.MDB ADDINS/DATABASE/VORDANE.LNG ADDINS/SETUP/installed.tsv QUIL32/DATABASE/FAULT1.tlg QUIL32/DATABASE/Register.mdb QUIL32/DATABASE/Schedule.mdb" \
  "$(cd "$here" && find . -type f ! -name remove.exe ! -name 'FAULT.MDB-*' | sed 's/^..//' | LC_ALL=C sort | paste -sd ' ')"
registered "$drive/removed"
cmp "$drive/removed" "$drive/nothing" || fail "$(diff "$drive/removed" "$drive/nothing" | head)"
! quick reg query "$entry" /reg:64 >/dev/null 2>&1 || fail "it is still in the list of programs"
setup 0 "/S /AllUsers /LOG=C:\\setup.log /D=$base"
faults "$drive/after"
cmp "$drive/stored" "$drive/after" || fail "a later installation does not go on with the faults"
remove 0 "$root" "/S /Everything"
[ -z "$(find "$here" -type f ! -name remove.exe 2>/dev/null)" ] || fail "$(find "$here" -type f)"
for application in 'QUILMAR32\30000' VORDANE; do
  ! quick reg query "HKCU\\Software\\VB and VBA Program Settings\\$application" >/dev/null 2>&1 || fail "settings of $application are left"
done

# A suite that is there is found by its setting, and nothing of it is overwritten.
suite="$drive/Suite/QUILMAR32/31000"
mkdir -p "$suite/QUIL32/DATABASE"
echo 'the texts of the suite' > "$suite/QUIL32/DATABASE/Common.LNG"
quick reg add 'HKCU\Software\VB and VBA Program Settings\QUILMAR32\31000' /v InstallPath /d 'C:\Suite\QUILMAR32\31000\' /f >/dev/null
setup 0 '/S /CurrentUser /NoShortcuts /LOG=C:\suite.log'
[ -s "$suite/ADDINS/VORDANE.EXE" ] || fail "it does not go into the suite"
expect "the suite's own texts" 'the texts of the suite' "$(cat "$suite/QUIL32/DATABASE/Common.LNG")"
grep -q "$(printf 'situation\tsuite')" "$suite/ADDINS/SETUP/installed.tsv" || fail "it is taken for a set of its own"
quick reg query 'HKCU\Software\Classes\Vordane10013.cOLELayer' /reg:64 >/dev/null 2>&1 || fail "it is not registered for this user"
! quick reg query 'HKLM\Software\Classes\Vordane10013.cOLELayer' /reg:64 >/dev/null 2>&1 || fail "it is registered for everybody"
# Removed as the list of programs does it: the remover copies itself and ends at once, and goes too.
own='HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall\Vordane 31000'
listed() { quick reg query "$own" /reg:64 >/dev/null 2>&1; }
listed || fail "it is not in this user's list of programs"
quick 'C:\Suite\QUILMAR32\31000\ADDINS\SETUP\remove.exe' /S /Everything /LOG=C:\\setup.log >/dev/null 2>&1 || true
while listed; do sleep 0.2; done
expect "what is left of the suite" QUIL32/DATABASE/Common.LNG \
  "$(cd "$suite" && find . -type f | sed 's/^..//' | LC_ALL=C sort | paste -sd ' ')"
expect "the suite's own texts" 'the texts of the suite' "$(cat "$suite/QUIL32/DATABASE/Common.LNG")"
echo "everything passed"
