#!/usr/bin/env bash
# Backups of a store that are taken while a station takes a list in, each restored on a second server
# (docs/central-store.md): what it holds is what the first server held first, and the next fetch adds exactly what is
# missing. Runs beside with-server.sh with VORDANE_SECOND. Arguments: as station.sh says.
set -u
. "$(dirname "$0")/station.sh"

# The oldest faults of a server, as they are; in the order in which they were stored.
oldest() { # FOLDER NUMBER
  on "$1" -d faults -c "select row(f.*) from vordane.\"FaultDisplay\" f order by \"Count\" limit $2"
}
proves() { # NAME
  local found
  found=$(stored "$second")
  echo "$1: $found faults of $(stored "$first")"
  [ "$found" -gt $((2 * in_list)) ] || fail "$1: faults are missing"
  oldest "$second" "$found" >restored
  oldest "$first" "$found" | diff - restored >difference || fail "$1: other faults: $(head -n 4 difference)"
  source_for second.dsn administrator "$second/socket"
  run 0 store check second.dsn
  says out 'the index agrees with the faults'
  source_for second.dsn ws01 "$second/socket"
  completes "$second" second.dsn "$found"
}

start_station station.dsn
"$second/as-server" "$programs/pg_basebackup" -h "$first/socket" -U administrator -D "$second/data" --checkpoint=fast \
  --no-sync || fail 'no copy of the server'
"$programs/pg_dumpall" -h "$first/socket" -U administrator --roles-only >roles || fail 'no copy of the roles'
"$programs/pg_dump" -h "$first/socket" -U administrator -d faults -Fc -f dump || fail 'no copy of the database'
! tail -n 1 reports | grep -qx done || fail 'all lists were stored before the copies were made'
end_station

"$second/start" || fail 'the second server does not start'
proves 'copy of the server'

on "$second" -d postgres -c 'drop database faults' -c 'drop role ws01, vordane_station, vordane_reader, vordane_administrator'
on "$second" -d postgres -f roles 2>/dev/null # who restores is there already
"$programs/pg_restore" -h "$second/socket" -U administrator -d postgres --create --exit-on-error dump ||
  fail 'the copy of the database can not be restored'
proves 'copy of the database'
exit $failed
