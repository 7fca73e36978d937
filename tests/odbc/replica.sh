#!/usr/bin/env bash
# A store whose server has a replica that it waits for, and the day on which it is killed (docs/central-store.md): what
# was told to be stored is on the replica, and once that is promoted the next fetch completes the list. Runs beside
# with-server.sh with VORDANE_SECOND. Arguments: as station.sh says.
set -u
. "$(dirname "$0")/station.sh"

"$here/make-replica.sh" || fail 'no replica'
# Not before the copy: once promoted, the second server has nobody to wait for.
on "$first" -d postgres -c "alter system set synchronous_standby_names = '*'" -c 'select pg_reload_conf()' >reloaded
waits() { [ "$(on "$first" -d postgres -c 'select sync_state from pg_stat_replication')" = sync ]; }
until_true 20 waits
source_for both.dsn ws01 "$first/socket,$second/socket"
source_for replica.dsn ws01 "$second/socket"
source_for admin.dsn administrator "$second/socket"
refused="Box 102 No permission to open file 'the server is a replica, which takes no changes'."

# The replica shows, and stores nothing.
run 0 list replica.dsn --count; is "$(cat out)" $in_list
run 1 store check admin.dsn
says out 'wrong: the server is a replica: stations show faults and can store none until it is promoted'
take_list replica.dsn 1
says report "$refused"
! grep -qx Acknowledge report || fail 'a list was acknowledged that was not stored'
is "$(stored "$second")" $in_list

start_station both.dsn
read -r server <"$first/data/postmaster.pid"
mapfile -t processes < <(pgrep -P "$server")
kill -KILL "$server" "${processes[@]}" # between them nothing is handed on any more
is_refused() { grep -qxF "$refused" reports; }
until_true 60 is_refused # at its next lists the station has found the replica
end_station
told=$(awk -F'[=+]' '/^Account/ { sum += $2 } END { print sum + 0 }' reports)
says reports 'Box 102 No connection to the database server:'
run 0 list both.dsn --count
[ "$(cat out)" -gt $((2 * in_list)) ] || fail "only $(cat out) faults are shown"

"$second/as-server" "$programs/pg_ctl" promote -D "$second/data" -w >/dev/null || fail 'the replica is not promoted'
found=$(stored "$second")
echo "$((in_list + told)) faults told to be stored, $found on the replica"
[ "$found" -ge $((in_list + told)) ] || fail 'what was told to be stored is lost'
completes "$second" both.dsn "$found"

# A first server that takes connections and says nothing, as a machine that hangs: the data source bounds how long.
rm -f "$first"/socket/.s.PGSQL.5432*
setpriv --pdeathsig KILL python3 -c 'import socket, sys, time
silent = socket.socket(socket.AF_UNIX)
silent.bind(sys.argv[1])
silent.listen()
print("listens", flush=True)
time.sleep(60)' "$first/socket/.s.PGSQL.5432" >silent &
silent=$!
chmod 777 "$first/socket"
until_true 10 grep -q listens silent
source_for quick.dsn ws01 "$first/socket,$second/socket" 'pqopt=connect_timeout=2'
run 0 list quick.dsn --count; is "$(cat out)" "$(stored "$second")"
kill "$silent"; wait "$silent" 2>/dev/null
exit $failed
