#!/usr/bin/env bash
# An administrator makes a store by the page (docs/central-store.md), beside a server of the test's own (with-server.sh).
# Argument: vordane-tools. What is looked for is what a person reads.
set -u
tool=$1 psql=/usr/lib/postgresql/15/bin/psql socket=$VORDANE_SERVER/socket
data=$(cd "$(dirname "$0")/../../data" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failed=0

sql() { "$psql" -qAt -h "$socket" -U administrator "$@"; }
run() {
  local expected=$1 code=0
  shift
  "$tool" "$@" >out 2>errors </dev/null || code=$?
  [ "$code" = "$expected" ] || { echo "FAILED: '$*' ends with $code, not $expected"; cat out errors; failed=1; }
}
says() { grep -qF -- "$2" "$1" || { echo "FAILED: '$2' is not in:"; cat "$1"; failed=1; }; }
source_for() { # FILE USER [DATABASE]
  printf '[ODBC]\nDRIVER=PostgreSQL Unicode\nSERVER=%s\nDATABASE=%s\nUID=%s\n' "$socket" "${3:-faults}" "$2" >"$1"
}

"$tool" language build "$data/language/en" en.LNG && "$tool" language build "$data/language/ru" ru.LNG || failed=1
source_for admin.dsn administrator
source_for station.dsn ws01
source_for reader.dsn office
source_for nowhere.dsn administrator none

run 1 store create nowhere.dsn; says errors 'nowhere.dsn: No connection to the database server:'
run 1 store create en.LNG; says errors 'en.LNG: this is no database'
sql -d postgres -c 'create database faults'
run 1 store check admin.dsn; says out "wrong: there is no store in this database: 'vordane-tools store create' makes it"
run 0 store create admin.dsn --language en.LNG
says out 'made the role vordane_station'; says out 'Language: English'
run 0 store create admin.dsn --language en.LNG; says out 'the tables are there'; says out 'Language: English, as before'
sql -d postgres -c 'create role ws01 login in role vordane_station; create role office login in role vordane_reader'
run 0 store check station.dsn --language en.LNG; says out 'Language: English, as the texts given here'
run 1 store check station.dsn --language ru.LNG
says out 'wrong: Language: the store is kept in English ('; says out 'the texts given here are Русский ('
run 1 store create station.dsn; says errors 'station.dsn: No permission to open file'

sql -d faults <<'SQL'
set role ws01;
insert into vordane."PBXList" ("PBXName", "TimeStamp") values ('PBX-1', '2026-11-22 10:15:00');
insert into vordane."FaultDisplay" ("ID", "Fault", "Alarm", "CPU", "Date", "Description")
values (1, '15', 'MJ', 'MP   ', '2026/11/22 10:14', 'first'), (1, '3B', 'MN', 'LP 1', '2026/11/22 10:15', 'second');
SQL
for who in admin station reader; do
  run 0 list $who.dsn --count; [ "$(cat out)" = 2 ] || { echo "FAILED: $who counts $(cat out)"; failed=1; }
done
run 0 list reader.dsn --exchange pbx-1 --minor; says out second; ! grep -q first out || { echo 'FAILED: first is shown'; failed=1; }
run 0 list station.dsn --csv; says out '"PBX-1","15","MJ","2026/11/22 10:14","MP   ","first",1'
run 1 list nowhere.dsn; says errors 'nowhere.dsn: No connection to the database server:'
run 1 store create admin.dsn --language ru.LNG
says errors "Language: the store is kept in English and holds faults; it can't change to Русский"
run 0 store check admin.dsn --language en.LNG

# The doctor of a suite whose fault database is the store.
run 0 suite made --language en --source "$data"
cp station.dsn made/ADDINS/DATABASE/FAULT.MDB; chmod a-w made/ADDINS/DATABASE/FAULT.MDB
run 0 doctor made; says out 'nothing is missing'
sql -d faults -c 'grant truncate on vordane."FaultDisplay" to vordane_station'
run 1 doctor made
says out 'incomplete: the store of FAULT.MDB: the role vordane_station has the rights (SELECT, INSERT, UPDATE, DELETE, TRUNCATE)'
run 0 store create admin.dsn
run 0 doctor made
cp ru.LNG made/ADDINS/DATABASE/VORDANE.LNG
run 1 doctor made; says out 'incomplete: the store of FAULT.MDB: Language: the store is kept in English ('
cp en.LNG made/ADDINS/DATABASE/VORDANE.LNG
cp --remove-destination reader.dsn made/ADDINS/DATABASE/FAULT.MDB
run 1 doctor made; says out "stops the program: "; says out "FAULT.MDB can't be opened: no faults can be stored or shown (No permission to open file"
cp nowhere.dsn made/ADDINS/DATABASE/FAULT.MDB
run 1 doctor made; says out "FAULT.MDB can't be opened: no faults can be stored or shown (No connection to the database server:"
exit $failed
