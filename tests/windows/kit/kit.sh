#!/usr/bin/env bash
# The kit on a workstation where a suite is installed: it refuses while the suite runs, runs and reports, and leaves
# everything that was registered as it was, also when it is broken off.
set -euo pipefail

drive="$WINEPREFIX/drive_c"
kit="$drive/kit"
programs="$VORDANE_BUILD/programs"
fail() { printf 'FAILED: %s\n' "$*"; exit 1; }
expect() {  # what, expected, got
  [ "$2" = "$3" ] || fail "$1: expected '$2', got '$3'; it said: $(cat "$kit/said"; grep -A3 '"output"' "$kit/report.json")"
  printf 'ok: %s is %s\n' "$1" "$2"
}
quick() { timeout --kill-after=5 120 wine "$@"; }
# Whether a program runs here: this test's processes are the only ones that it sees.
runs() { cat /proc/[0-9]*/cmdline 2>/dev/null | tr '\0' '\n' | grep -q "[\\/]$1\$"; }
run_all() {  # arguments; prints into $kit/said, answers the exit code
  local code=0
  ( cd "$kit" && wine cmd /c run-all.cmd "$@" ) < /dev/null > "$kit/said" 2>/dev/null || code=$?
  echo "$code"
}
registered() {  # into file $1: everything that is registered, and all settings
  local key
  for key in 'HKLM\Software\Classes' 'HKCU\Software\Classes' 'HKCU\Software\VB and VBA Program Settings' \
    'HKLM\SYSTEM\CurrentControlSet\Services\EventLog\Application'; do
    for view in 64 32; do
      rm -f "$drive/out.reg"
      quick reg export "$key" 'C:\out.reg' /y "/reg:$view" >/dev/null 2>&1 || continue
      iconv -f UTF-16 -t UTF-8 "$drive/out.reg" | tr -d '\r' | sed "s/^\[/[$view /"
    done
  done > "$1"
  [ -s "$1" ] || fail "the registry could not be read"
}
unchanged() {
  registered "$drive/now"
  diff -u "$drive/before" "$drive/now" || fail "$1: something is registered otherwise"
  echo "ok: $1: all is registered as before"
}

cp -r "$VORDANE_BUILD/kit/vordane-kit" "$kit"
state=$(find "$drive/users" -maxdepth 3 -iname Local -path '*AppData*' | head -n 1)"/Vordane kit/registration.json"

# A suite that is installed.
mkdir -p "$drive/QUILMAR32/30000/ADDINS" "$drive/SIM"
cp "$programs/vordane/VORDANE.EXE" "$drive/QUILMAR32/30000/ADDINS/"
cp "$programs/zulsim/Zulsim.exe" "$drive/SIM/"
cp -r "$kit/sources/data/scenarios" "$drive/SIM/"
quick 'C:\QUILMAR32\30000\ADDINS\VORDANE.EXE' /RegServer >/dev/null || fail "the installed add-in was not registered"
quick 'C:\SIM\Zulsim.exe' /RegServer >/dev/null || fail "the installed simulator was not registered"
quick reg add 'HKCU\Software\VB and VBA Program Settings\QUILMAR32\30000' /v InstallPath /d 'C:\QUILMAR32\30000\' /f >/dev/null
quick reg add 'HKCU\Software\VB and VBA Program Settings\VORDANE\Window' /v Place /d 'mine' /f >/dev/null
quick reg add 'HKLM\Software\Classes\AppID\{A075C3FD-C044-4FB3-B4E3-5596C07EB160}' /v Mine /t REG_BINARY /d 00ff /f >/dev/null
registered "$drive/before"

# While a program of it runs, here one that does not end, nothing is touched.
addins='C:\QUILMAR32\30000\ADDINS'
cp "$VORDANE_BUILD/tests/windows/kit/kit_windows_tests.exe" "$drive/QUILMAR32/30000/ADDINS/devhost.exe"
wine "$addins\devhost.exe" --as=hang >/dev/null 2>&1 &
until runs devhost.exe; do sleep 0.2; done
expect "the exit code while the suite runs" 3 "$(run_all --only text_tests)"
grep -qF "A program of an installed suite runs and could meet the tests: $addins\devhost.exe" "$kit/said" ||
  fail "$(cat "$kit/said")"
quick taskkill /F /IM devhost.exe >/dev/null 2>&1
while runs devhost.exe; do sleep 0.2; done
unchanged "refused"
[ ! -e "$kit/report.json" ] || fail "it reports what was not run"

# A selection that registers programs of its own, installs a suite and drives it.
expect "the exit code of the run" 0 "$(run_all --only text_tests --only shipped_test --only 'com_tests:Registrar.*' \
  --only 'suite_tests:DrivenByAHost.*' --only 'hosts_tests:Hosts.InCppOfThisWordSize')"
cat "$kit/said"
unchanged "run"
[ ! -e "$state" ] && [ ! -e "$kit/work" ] || fail "it leaves files"
for part in '"allPassed": true' '"putBack": true' "\"wordSize\": \"$VORDANE_ARCH\"" '"program": "suite_tests"' \
    '"name": "Registrar.ServesOneUserWhereTheMachineCantBeWritten"' '"name": "Hosts.InCppOfThisWordSize"' '"checklist"'; do
  grep -q "$part" "$kit/report.json" || fail "report.json has no $part"
done
grep -q 'Everything passed' "$kit/report.html" || fail "report.html does not say so"

# Broken off without a word, in the middle of a program that has registered its own.
( cd "$kit" && exec wine cmd /c run-all.cmd --only com_tests ) < /dev/null >/dev/null 2>&1 &
broken=$!
until quick reg query 'HKLM\Software\Classes\VordaneProbe.cBag' >/dev/null 2>&1; do
  kill -0 "$broken" 2>/dev/null || fail "it ended by itself"
  sleep 0.2
done
[ -s "$state" ] || fail "what was registered is not kept while it runs"
quick taskkill /F /IM kit.exe >/dev/null 2>&1
wait "$broken" || true
while runs com_tests.exe; do sleep 0.2; done
[ -s "$state" ] || fail "what was registered is not kept"
expect "the exit code of putting back" 0 "$(run_all --put-back)"
grep -q 'An earlier run was broken off' "$kit/said" || fail "it does not say that it was broken off"
unchanged "broken off"
[ ! -e "$state" ] || fail "it would be put back once more"

# A file that was damaged meanwhile is not guessed at.
mkdir -p "$(dirname "$state")"
echo '{"vordaneKitState": 1, "keys": [{' > "$state"
expect "the exit code with a damaged file" 3 "$(run_all --only text_tests)"
grep -q "the saved registration can't be read" "$kit/said" || fail "$(cat "$kit/said")"
unchanged "damaged"
