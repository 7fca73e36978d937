#!/usr/bin/env bash
# A command beside a database server that is broken off as a test driver does it, with this script's program and all of
# its children killed at once, leaves neither a server nor its folder.
#
#   broken-off.sh
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkfifo "$work/begun"

descendants() {
  local child
  for child in $(pgrep -P "$1"); do echo "$child"; descendants "$child"; done
}

"$here/with-server.sh" bash -c 'echo "$VORDANE_SERVER" > "$1"; exec sleep infinity' - "$work/begun" & caller=$!
read -r -t 120 folder < "$work/begun" || { echo "the server did not start"; exit 1; }
read -r server < "$folder/data/postmaster.pid"
# Those that were stopped first can't bring up others meanwhile.
kill -STOP "$caller"
all=$(descendants "$caller")
[ -n "$all" ] || { echo "nothing runs beside the server"; exit 1; }
kill -KILL "$caller" $all
wait "$caller" || true
timeout 60 tail --pid="$server" -f /dev/null || { echo "the server is left behind"; exit 1; }
timeout 60 bash -c 'while [ -e "$1" ]; do sleep 0.02; done' - "$folder" || { echo "$folder is left behind"; exit 1; }
echo "broken off: the server and its folder have gone"
