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
# Faults of an Access file: broken off, brought over, and once more; in another language never.
access=$data/../tests/data/access/FAULT-10k.MDB
stored() { sql -d faults -c 'select count(*), count(distinct ("ID", "Fault", "Alarm", "CPU", "Date", "Description")) from vordane."FaultDisplay"'; }
is() { [ "$1" = "$2" ] || { echo "FAILED: $1, not $2"; failed=1; }; }
run 1 store import station.dsn "$access" --language ru.LNG
says errors 'the store is kept in English ('; says errors 'Nothing was brought over'
is "$(stored)" '2|2'; is "$(sql -d faults -c 'select count(*) from vordane."PBXList"')" 1
run 2 store import station.dsn "$access"; says errors '--language'
run 1 store import en.LNG "$access" --language en.LNG; says errors 'en.LNG: this is no data source of a store'
run 1 store import reader.dsn "$access" --language en.LNG; says errors 'reader.dsn: No permission'
run 1 store import station.dsn none.MDB --language en.LNG; says errors 'none.MDB: there is no such file'
timeout -s KILL 0.5 "$tool" store import station.dsn "$access" --language en.LNG >/dev/null 2>&1
run 0 store import station.dsn "$access" --language en.LNG
says out '4 faults of no exchange were left where they are'
is "$(stored)" '9998|9998'
run 0 store import station.dsn "$access" --language en.LNG
says out 'Harbour House: 0 faults brought over, 5003 known already'
says out 'Северный узел: 0 faults brought over, 3087 known already'
says out '東京支店: 0 faults brought over, 1906 known already'
is "$(stored)" '9998|9998'
is "$(sql -d faults -c "select \"TimeStamp\", \"MJ\", \"MN\" from vordane.\"PBXList\" where \"PBXName\" = 'Harbour House'")" '2004-03-17 08:15:22|-1|0'

# Of a file of the embedded engine: an exchange that is known, with a newer list, and texts with quotes.
run 0 suite embedded --language en --source "$data"
python3 - embedded/ADDINS/DATABASE/FAULT.MDB <<'PYTHON'
import sqlite3, sys
file = sqlite3.connect(sys.argv[1])
file.execute("insert into PBXList (ID, PBXName, TimeStamp, MJ, MN) values (7, 'PBX-1', '2026-11-23 08:00:00', 0, -1)")
file.executemany("insert into FaultDisplay (ID, Fault, Alarm, CPU, Date, Description) values (7, ?, ?, ?, ?, ?)",
    [("3B", "MN", "LP 1", "2026/11/22 10:15", "SECOND  "), ("15", "MJ", "M'P", "2026/11/22 10:16", 'a "quoted" one'),
     ("15", "MJ", "MP", "2026/11/22 10:16", "back\\slash, {brace}"), ("15", "MJ", "MP", "2026/11/22 10:16", "")])
file.commit()
PYTHON
run 0 store import station.dsn embedded/ADDINS/DATABASE/FAULT.MDB --language en.LNG
says out 'PBX-1: 3 faults brought over, 1 known already'
run 0 store import station.dsn embedded/ADDINS/DATABASE/FAULT.MDB --language en.LNG
says out 'PBX-1: 0 faults brought over, 4 known already'
is "$(sql -d faults -c "select \"ID\", \"TimeStamp\", \"MJ\", \"MN\" from vordane.\"PBXList\" where \"PBXName\" = 'PBX-1'")" '1|2026-11-23 08:00:00|0|-1'
is "$(sql -d faults -c "select string_agg(\"Description\", '|' order by \"Count\") from vordane.\"FaultDisplay\" where \"ID\" = 1")" \
  'first|second|a "quoted" one|back\slash, {brace}|'
run 0 store check admin.dsn --language en.LNG

# And out of the store again.
run 0 export reader.dsn --csv exported
is "$(python3 -c 'import csv; print(len(list(csv.reader(open("exported/FaultDisplay.csv", newline="", encoding="utf-8")))))')" 10002
says exported/PBXList.csv '1,PBX-1,2026-11-23 08:00:00,False,True'
run 0 export reader.dsn --json chosen --exchange pbx-1; says chosen/FaultDisplay.json '"a \"quoted\" one"'
! grep -q MN,MN chosen/FaultDisplay.json || { echo 'FAILED: another exchange'; failed=1; }
sql -d faults -c "delete from vordane.\"FaultDisplay\" where \"ID\" <> 1 or \"Description\" not in ('first', 'second')"

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
