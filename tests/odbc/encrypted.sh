#!/usr/bin/env bash
# Stations that reach their server over a network: encrypted, and only the one that is meant (docs/central-store.md). Runs
# beside a server of the test's own (with-server.sh), which it starts anew on the loopback network with a certificate of an
# authority that it makes. Argument: vordane-tools.
set -u
tool=$1 psql=/usr/lib/postgresql/15/bin/psql folder=$VORDANE_SERVER
data=$(cd "$(dirname "$0")/../../data" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failed=0
export HOME=$work # where a station's own certificates would be looked for

fail() { echo "FAILED: $*"; failed=1; }
run() {
  local expected=$1 code=0
  shift
  "$tool" "$@" >out 2>errors </dev/null || code=$?
  [ "$code" = "$expected" ] || { fail "'$*' ends with $code, not $expected"; cat out errors; }
}
says() { grep -qF -- "$2" "$1" || { fail "'$2' is not in:"; cat "$1"; }; }

authority() { # NAME
  openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj "/CN=$1" -keyout "$1.key" -out "$1.crt" 2>/dev/null ||
    fail "no certificate authority $1"
}
authority ours
authority others
openssl req -newkey rsa:2048 -nodes -subj /CN=localhost -keyout server.key -out server.request 2>/dev/null
printf 'subjectAltName=DNS:localhost\n' >names
openssl x509 -req -in server.request -CA ours.crt -CAkey ours.key -CAcreateserial -days 2 -extfile names \
  -out server.crt 2>/dev/null || fail 'no certificate of the server'
cp server.crt server.key "$folder/data/"
chmod 600 "$folder/data/server.key"
[ "$(id -u)" != 0 ] || chown postgres: "$folder/data/server.crt" "$folder/data/server.key"

port=$(python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
restart() { # "on" or "off"
  local server
  read -r server <"$folder/data/postmaster.pid"
  kill -INT "$server"
  timeout 30 tail --pid="$server" -s 0.05 -f /dev/null || fail 'the server does not end'
  VORDANE_SERVER_OPTIONS="-c listen_addresses=127.0.0.1 -c port=$port -c ssl=$1" "$folder/start" || fail 'no server'
}
restart on

sql() { "$psql" -qAt -h "$folder/socket" -p "$port" -U administrator "$@"; }
source_for() { # FILE SERVER LINE ...
  local file=$1 server=$2
  shift 2
  printf '[ODBC]\nDRIVER=PostgreSQL Unicode\nSERVER=%s\nPORT=%s\nDATABASE=faults\nUID=administrator\n' "$server" "$port" >"$file"
  [ $# = 0 ] || printf '%s\n' "$@" >>"$file"
}
"$tool" language build "$data/language/en" en.LNG || failed=1
sql -d postgres -c 'create database faults'
source_for good.dsn localhost "pqopt=sslrootcert=$work/ours.crt"
run 0 store create good.dsn --language en.LNG
run 0 store check good.dsn --language en.LNG
says out 'the connection is encrypted (TLSv1.3), the server'\''s name is verified'
sql -d faults -c "insert into vordane.\"PBXList\" (\"PBXName\") values ('PBX-1')"
sql -d faults -c "insert into vordane.\"FaultDisplay\" (\"ID\", \"Description\") values (1, 'x')"
run 0 list good.dsn --count; [ "$(cat out)" = 1 ] || fail "counts $(cat out)"
[ "$(sql -d postgres -c "select count(*) from pg_hba_file_rules where type = 'host'")" -gt 0 ] ||
  fail 'the server takes encrypted connections alone: what follows shows nothing'

# Another server, or one with somebody else's certificate, is none.
source_for name.dsn 127.0.0.1 "pqopt=sslrootcert=$work/ours.crt"
run 1 store check name.dsn; says errors 'does not match host name "127.0.0.1"'
source_for authority.dsn localhost "pqopt=sslrootcert=$work/others.crt"
run 1 store check authority.dsn; says errors 'certificate verify failed'
source_for none.dsn localhost
run 1 store check none.dsn; says errors 'root certificate file'
mkdir -p .postgresql && cp ours.crt .postgresql/root.crt
run 0 store check none.dsn --language en.LNG; says out 'the server'\''s name is verified'
rm -r .postgresql

# In so many words it may be otherwise, and whoever looks is told.
source_for require.dsn 127.0.0.1 SSLmode=require
run 1 store check require.dsn --language en.LNG
says out 'wrong: the connection is encrypted (TLSv1.3), but the server'\''s name is not verified: the data source says SSLmode=require'
source_for disable.dsn 127.0.0.1 SSLmode=disable
run 1 store check disable.dsn --language en.LNG
says out 'wrong: the connection is not encrypted: the data source says SSLmode=disable'
run 0 list disable.dsn --count
source_for hidden.dsn localhost "pqopt=sslrootcert=$work/ours.crt sslmode=disable"
run 1 store check hidden.dsn; says errors 'conflicts' # among the settings the driver takes no mode

run 0 suite made --language en --source "$data"
cp good.dsn made/ADDINS/DATABASE/FAULT.MDB
run 0 doctor made; says out 'nothing is missing'
cp disable.dsn made/ADDINS/DATABASE/FAULT.MDB
run 1 doctor made; says out 'the store of FAULT.MDB: the connection is not encrypted: the data source says SSLmode=disable'

# A server without certificates is not spoken to.
restart off
run 1 store check good.dsn; says errors 'server does not support SSL'
exit $failed
