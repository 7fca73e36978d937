#!/usr/bin/env bash
# Makes the second server of with-server.sh a replica of the first and starts it. Ends when it follows.
set -euo pipefail
programs=/usr/lib/postgresql/15/bin
"$VORDANE_SECOND/as-server" "$programs/pg_basebackup" -h "$VORDANE_SERVER/socket" -U administrator \
  -D "$VORDANE_SECOND/data" --checkpoint=fast --no-sync --write-recovery-conf --create-slot --slot=second
"$VORDANE_SECOND/start"
for ((tries = 0; tries < 1000; ++tries)); do
  follows=$("$programs/psql" -qAtX -h "$VORDANE_SERVER/socket" -U administrator -d postgres \
    -c "select 1 from pg_stat_replication where state = 'streaming'")
  [ "$follows" != 1 ] || exit 0
  sleep 0.02
done
echo 'the replica does not follow' >&2
exit 1
