#!/usr/bin/env bash
# The simulated exchange as a registered server, called by a script in another process; afterwards its
# process has ended and unregistering leaves nothing behind.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
program="$1"
work="$WINEPREFIX/drive_c/SIM"
mkdir -p "$work"
cp "$program" "$work/Zulsim.exe"
cp "$here/server.zul" "$work/Zulsim.zul"
: > "$work/Zulsim.log"
failures=0
fail() { echo "FAILED: $1"; failures=$((failures + 1)); }

wine "$work/Zulsim.exe" /RegServer
wine cscript //nologo "$(winepath -w "$here/server.js")" | tr -d '\r' > "$work/out.txt"
diff -u "$here/server.expected" "$work/out.txt" || fail "the conversation differs"
grep -q 'CallBack LEA0 to "SIM-1"' "$work/Zulsim.log" || fail "the log lacks the answer"

# The last release ends the process.
for _ in $(seq 100); do
  wine tasklist 2>/dev/null | grep -qi zulsim || break
  sleep 0.2
done
wine tasklist 2>/dev/null | grep -qi zulsim && fail "the process is still there"

# A wrong scenario is told to the caller.
printf 'exchange A\nlogon\n' > "$work/Zulsim.zul"
wine cscript //nologo "$(winepath -w "$here/server.js")" | tr -d '\r' > "$work/out.txt"
grep -q 'Zulsim.zul:2: "logon" is no word of a scenario' "$work/out.txt" || { cat "$work/out.txt"; fail "the wrong line is not told"; }

wine "$work/Zulsim.exe" /UnregServer
wine reg query 'HKCR\CalderinProj30001.cPBXOLE' >/dev/null 2>&1 && fail "the class is still registered"
[ "$failures" = 0 ]
