#!/usr/bin/env bash
# Runs a command beside a database server of its own, and with an administrator's data source for it:
#
#   with-server.sh COMMAND [ARGUMENT ...]
#
# The server lives in a folder among the temporary ones, listens on a Unix socket in it and on nothing else, and runs as a user
# without rights. The command finds in VORDANE_SERVER that folder: `socket` is where to connect, `driver` what to set
# ODBCSYSINI to (set already), `data/postmaster.pid` begins with the server's process, `start` starts it again after
# its end; `as-server` runs a program as the server's user. VORDANE_SERVER_OPTIONS are further options of the server;
# `-c fsync=on` where durability is the subject.
#
# With VORDANE_SECOND=yes the command finds in it the folder of a second server, which is like the first one but for its
# `data`: the command makes it (a backup, a replica) and runs its `start`.
#
# Whatever ends the command, or this script (a signal that nobody can catch included), the servers end and their
# folders go: a keeper in a session of its own, no child of anybody who may be ended together with his children, waits
# for the end of a pipe that only this script holds.
# Ends with the command's exit code, or 125 with a reason when the server can't be had.
set -euo pipefail

programs=/usr/lib/postgresql/15/bin
driver=/usr/lib/x86_64-linux-gnu/odbc/psqlodbcw.so
unavailable() { printf 'the server can not start: %s\n' "$*" >&2; exit 125; }

# The server refuses to run as root.
as_server=()
[ "$(id -u)" != 0 ] || as_server=(setpriv --reuid=postgres --regid=postgres --init-groups)

if [ "${1:-}" = --keep ]; then
  shift
  cat >/dev/null || true # until nobody holds the other end
  for folder; do
    # A server that is just being started again has no file yet, or another one soon.
    exec 8>"$folder/starting" && flock 8
    if read -r server 2>/dev/null <"$folder/data/postmaster.pid"; then
      kill -QUIT "$server" 2>/dev/null || true
      timeout 20 tail --pid="$server" -s 0.05 -f /dev/null || kill -KILL "$server" 2>/dev/null || true
    fi
    rm -rf "$folder"
  done
  exit
fi

if [ "${1:-}" = --start ]; then
  folder=$2
  exec 8>"$folder/starting" && flock 8
  rm -f "$folder/data/postmaster.pid" "$folder"/socket/.s.PGSQL.* # of a server that was killed
  # Its other processes end by themselves, on a busy machine later; no server starts while one is left.
  written=$(stat -c %s "$folder/log" 2>/dev/null || echo 0)
  "${as_server[@]}" setsid "$programs/postgres" -D "$folder/data" -k "$folder/socket" -c listen_addresses= \
    -c fsync=off -c full_page_writes=off -c max_connections=200 -c shared_buffers=64MB ${VORDANE_SERVER_OPTIONS:-} \
    >>"$folder/log" 2>&1 </dev/null 8>&- &
  server=$!
  until [ "$(sed -n 8p "$folder/data/postmaster.pid" 2>/dev/null | tr -d ' ')" = ready ]; do
    if ! kill -0 "$server" 2>/dev/null; then
      why=$(tail -c "+$((written + 1))" "$folder/log")
      [[ $why != *"pre-existing shared memory block"* ]] || { sleep 0.1; exec 8>&-; exec "$0" --start "$folder"; }
      unavailable "$why"
    fi
    sleep 0.02
  done
  exit
fi

[ $# -gt 0 ] || { echo "usage: with-server.sh COMMAND [ARGUMENT ...]" >&2; exit 2; }
[ -x "$programs/initdb" ] && [ -e "$driver" ] || unavailable "PostgreSQL 15 and its ODBC driver are not installed"

folder=$(mktemp -dt vordane-server-XXXXXX) folders=("$folder")
if [ -n "${VORDANE_SECOND:-}" ]; then
  VORDANE_SECOND=$(mktemp -dt vordane-server-XXXXXX)
  folders+=("$VORDANE_SECOND")
fi
exec {life}> >(exec setsid --fork "$0" --keep "${folders[@]}" >/dev/null 2>&1)
for each in "${folders[@]}"; do
  mkdir "$each/socket"
  chmod 755 "$each"
  [ ${#as_server[@]} = 0 ] || chown postgres: "$each" "$each/socket"
  printf '#!/bin/sh\nexec %q --start %q\n' "$(readlink -f "$0")" "$each" >"$each/start"
  printf '#!/bin/sh\ncd /\nexec %s "$@"\n' "${as_server[*]}" >"$each/as-server"
  chmod +x "$each/start" "$each/as-server"
done
# Wine hands on to this machine's driver manager, which looks the driver's name up here.
mkdir "$folder/driver"
printf '[PostgreSQL Unicode]\nDriver=%s\n' "$(basename "$driver")" >"$folder/driver/odbcinst.ini"
: >"$folder/driver/odbc.ini"
# Texts are ordered by the rules of English here, which are not those of the stored faults.
"${as_server[@]}" "$programs/initdb" -D "$folder/data" -U administrator --auth=trust --no-sync -E UTF8 \
  --locale=C.UTF-8 --locale-provider=icu --icu-locale=en >"$folder/log" 2>&1 {life}>&- ||
  unavailable "$(tail -n 5 "$folder/log")"
"$folder/start" {life}>&- || exit 125

set +e
VORDANE_SERVER="$folder" VORDANE_SECOND="${VORDANE_SECOND:-}" ODBCSYSINI="$folder/driver" setpriv --pdeathsig KILL "$@" {life}>&-
code=$?
# The keeper is waited for, so that nothing is left when the caller goes on.
exec {life}>&-
for each in "${folders[@]}"; do
  timeout 30 bash -c 'while [ -e "$1" ]; do sleep 0.02; done' - "$each"
done
exit "$code"
