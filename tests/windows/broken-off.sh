#!/usr/bin/env bash
# A test run that is killed in the middle, as by whoever loses patience with it, leaves none of its processes behind,
# nor anything of its Wine server: neither when run.sh itself is killed nor when the program that has called it is.
#
#   broken-off.sh x64|x64-next|x86
set -euo pipefail
judge="$1"
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d /tmp/vordane-broken-XXXXXX)
trap 'rm -rf "$work"' EXIT
mkfifo "$work/begun"

# A test that has begun, and would never end.
cat > "$work/endless.sh" <<END
wine cmd /c exit
{ cat "\$WINEPREFIX/wineserver" 2>/dev/null || echo .wine-0; } > "$work/servers"
echo begun > "$work/begun"
sleep infinity
END

descendants() {
  local child
  for child in $(pgrep -P "$1"); do echo "$child"; descendants "$child"; done
}

# $1 what is killed: its caller, or run.sh.
break_off() {
  local caller victim all process
  bash -c '"$@" & wait' - "$here/run.sh" "$judge" "$work/endless.sh" & caller=$!
  read -r -t 120 < "$work/begun" || { echo "the test did not begin"; exit 1; }
  all=$(descendants "$caller")
  [ "$(wc -w <<< "$all")" -ge 5 ] || { echo "only these processes run: $all"; exit 1; }
  victim=$caller
  [ "$1" = caller ] || victim=$(head -n 1 <<< "$all")
  kill -9 "$victim"
  for process in $all; do
    timeout 60 tail --pid="$process" -f /dev/null || { echo "left behind: $(ps -o args= -p "$process")"; exit 1; }
  done
  wait "$caller" || true
  left=$(find "/tmp/$(cat "$work/servers")" -mindepth 1 -newer "$work/endless.sh")
  [ -z "$left" ] || { echo "left behind: $left"; exit 1; }
  echo "ok: the $1 is killed, and $(wc -w <<< "$all") processes have ended"
}

break_off caller
break_off run
