#!/usr/bin/env bash
# A night in fast motion: one unattended job of many runs, then many jobs of one run with an add-in of their
# own each. Memory and handles of the three programs stay flat, the log keeps to its limit, the database is
# sound and holds each fault once, and no process stays behind.
#
# VORDANE_NIGHT_RUNS (usual 40, a multiple of 4) and VORDANE_NIGHT_JOBS (usual 4, likewise) say how many; the
# long form is VORDANE_NIGHT_RUNS=1000 VORDANE_NIGHT_JOBS=100, see docs/reliability.md.
set -euo pipefail
. "$(dirname "$0")/suite.sh"

runs=${VORDANE_NIGHT_RUNS:-40} jobs=${VORDANE_NIGHT_JOBS:-4}
[ $((runs % 4)) = 0 ] && [ $((jobs % 4)) = 0 ] || fail "runs and jobs come in fours, as the exchange's answers do"
limit=20  # thousands of bytes that the log may take
between=$((runs > 200 ? 10 : 1))  # seconds from one sample of the figures to the next

figures() { win "$programs/suiteprobe/suiteprobe.exe" figures "$1"; }
asked() { grep -c "SendRequest $1 = \"ACC" "$drive/SIM/Zulsim.log" || true; }

# The host's script: a job of $runs runs under key 11, then $jobs jobs of one run under key 12.
write_script() {
  cat <<SCRIPT
quiet
pbx create
create
register NIGHT 1
show
run 11
wait EndProcess within forever
wait UnloadChild within 60000
release
loud
note the long job is over
quiet
sleep $((1000 * between + 5000))
repeat $jobs
create
register NIGHT 1
run 12
wait EndProcess within 120000
wait UnloadChild within 60000
release
end
loud
note the short jobs are over
sleep 2000
SCRIPT
}

# "seconds handles kilobytes" of each program in a file of its own, every so often while the host is in its
# long job.
watch_long_job() {
  local start=$SECONDS now program
  while ! grep -q 'long job is over' "$trace" && kill -0 "$host" 2>/dev/null; do
    for program in VORDANE.EXE Zulsim.exe devhost.exe; do
      now=$(figures "$program") && [ -n "$now" ] &&
        echo "$((SECONDS - start)) $now" >> "$WINEPREFIX/$program.figures"
    done
    sleep "$1"
  done
}

# What lasts does not grow: column $2 of $1 falls in its last third to where it was in the second, with $3 to
# spare. The lowest counts, since a run under way holds handles and memory for its time; the first third is the
# warming up. The spare memory is for threads: one is made when more calls meet than ever before, and its stack of
# 1 MB stays. What a run leaves behind shows in a long night, whose thirds are hundreds of runs apart.
expect_flat() {
  local early late
  read -r early late < <(awk -v column="$2" '
    function lowest(from, to,   i, least) {
      least = value[from]
      for (i = from; i <= to; ++i) if (value[i] < least) least = value[i]
      return least
    }
    { value[NR] = $column }
    END {
      third = int(NR / 3)
      if (third > 0) print lowest(third + 1, 2 * third), lowest(2 * third + 1, NR); else print 0, 0
    }' "$1")
  [ "$early" -gt 0 ] || fail "too little was measured in $1"
  [ $((late - early)) -le "$3" ] || { cat "$1"; fail "$4 grew from $early to $late"; }
  echo "ok: $4 went from $early to $late ($(wc -l < "$1") samples)"
}

install_suite
use_scenario fast-night
: > "$drive/SIM/Zulsim.log"
add_job 11 0 0 "$runs" NIGHT "$limit"
add_job 12 0 0 1 NIGHT "$limit"
trace="$WINEPREFIX/night.trace"
write_script > "$addins/night.txt"
: > "$trace"
started=$SECONDS
( cd "$addins" && exec wine 'C:\QUILMAR32\30000\ADDINS\devhost.exe' 'C:\QUILMAR32\30000\ADDINS\night.txt' ) > "$trace" 2>/dev/null &
host=$!

watch_long_job $between
echo "the job of $runs runs took $((SECONDS - started)) s"
expect "lists asked for by $runs runs" "$runs" "$(asked LEA0)"
expect "lists acknowledged" "$((runs / 4 * 3))" "$(asked EA1/00)"
for program in VORDANE.EXE Zulsim.exe devhost.exe; do
  expect_flat "$WINEPREFIX/$program.figures" 2 10 "handles of $program"
  expect_flat "$WINEPREFIX/$program.figures" 3 12000 "private kilobytes of $program"
done

log=$(find "$drive/QUILMAR32" -iname NIGHT11.tlg)
size=$(stat -c %s "$log")
[ "$size" -le $((limit * 1000 + 200)) ] || fail "the log took $size bytes"
echo "ok: the log of $runs runs takes $size bytes"
grep -q 'No list received: the exchange answered with error 60' "$log" || fail 'the log says nothing of the failed runs'

started=$SECONDS
code=0
wait "$host" || code=$?
expect 'exit code of the host' 0 "$code"
echo "$jobs jobs took $((SECONDS - started)) s"
expect "lists asked for by $runs runs and $jobs jobs" "$((runs + jobs))" "$(asked LEA0)"
expect_gone

expect 'the database, looked at by another program' ok "$(sql "$faults" 'PRAGMA integrity_check')"
expect 'faults without a place in the index' 0 "$(sql "$faults" 'SELECT count(*) FROM FaultDisplay f WHERE NOT EXISTS
  (SELECT 1 FROM VordaneFaultIndex x WHERE x.Count = f.Count AND x.ID = f.ID)')"
expect 'faults stored twice' 0 "$(sql "$faults" 'SELECT count(*) FROM (SELECT 1 FROM FaultDisplay
  GROUP BY ID, Fault, Alarm, CPU, Date, Description HAVING count(*) > 1)')"
expect 'exchanges' 1 "$(sql "$faults" 'SELECT count(*) FROM PBXList')"
echo "stored: $(stored)"
