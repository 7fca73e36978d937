#!/usr/bin/env bash
# Disks that fill up. The database's: the fetch says so, what was saved stays, and with room again the next
# fetch completes the list. The run log's: the run does its work, and the log holds whole lines only.
set -euo pipefail

. "$(dirname "$0")/suite.sh"

# Puts the folder $1 on a disk of its own with $2 more kilobytes than its files take.
put_on_disk() {
  local used
  cp -a "$1" "$1.kept"
  used=$(du -sk --apparent-size "$1.kept" | cut -f1)
  mount -t tmpfs -o "size=$((used + $2 + 16))k" none "$1"
  cp -a "$1.kept/." "$1/"
}
make_room() { mount -o remount,size=64m "$1"; }
free_kilobytes() { df -k --output=avail "$1" | tail -1 | tr -d ' '; }

install_suite
use_scenario full-disk
add_job 31 0 -1 1 NIGHT

# The database's disk.
sql "$faults" 'PRAGMA journal_mode=WAL' >/dev/null
put_on_disk "$addins/DATABASE" 150
start_alone PBX-1
click --wait 60 --press cmdRequest >/dev/null || fail "no window with a request button"
wait_stored 0
expect 'stored while there is room' 100 "$(stored)"
# A press is dropped while the lamps are still asked for, as a person's would be: then once more.
for _ in 1 2 3 4; do
  click --wait 60 --press cmdRequest >/dev/null || fail "no request button after the first list"
  box=$(click --wait 25 --box 1) && break
done
[ -n "$box" ] || fail "no box about the full disk"
printf 'the box says: %s\n' "$box"
case "$box" in *'Not enough space on disk.'*) ;; *) fail 'the box says something else' ;; esac
first=$(stored)
[ "${first:-0}" -ge 100 ] && [ "$first" -lt 500 ] || fail "'$first' of 500 faults are stored on a full disk"
echo "ok: $first of 500 faults are stored"

make_room "$addins/DATABASE"
click --wait 60 --press cmdRequest >/dev/null || fail "no request button after the box"
wait_stored "$first"
expect 'stored with room again' 500 "$(stored)"
expect 'the database, looked at by another program' ok "$(sql "$faults" 'PRAGMA integrity_check')"
expect 'faults stored twice' 0 "$(sql "$faults" 'SELECT count(*) FROM (SELECT 1 FROM FaultDisplay
  GROUP BY ID, Fault, Alarm, CPU, Date, Description HAVING count(*) > 1)')"
click --press cmdClose >/dev/null
expect_gone

# The run log's disk.
shared="$drive/QUILMAR32/30000/QUIL32/DATABASE"
put_on_disk "$shared" 0
start_host full-disk
expect_trace full-disk
expect_gone
expect 'stored by a run whose log has no room' 600 "$(stored)"
log=$(find "$shared" -iname NIGHT31.tlg)
[ -s "$log" ] || fail 'nothing was logged before the disk was full'
expect 'free kilobytes' 0 "$(free_kilobytes "$shared")"
whole='^[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2} .*'$'\r''$'
expect 'lines of the log that are not whole' 0 "$(grep -cvE "$whole" "$log" || true)"
expect 'the end of the log' '\n' "$(tail -c 1 "$log" | tr '\n' n | sed 's/n/\\n/')"
lines=$(wc -l < "$log")
[ "$lines" -lt 380 ] || fail "$lines lines had room"
echo "ok: the log holds $lines whole lines"

make_room "$shared"
start_host full-disk
wait "$host" || fail "$(cat "$trace")"
expect_gone
expect 'lines of the log that are not whole, with room again' 0 "$(grep -cvE "$whole" "$log" || true)"
[ "$(wc -l < "$log")" -gt $((lines + 400)) ] || fail 'the next run left no log'
expect 'the last line' '...' "$(tail -n 1 "$log" | tr -d '\r' | cut -c 21-)"
