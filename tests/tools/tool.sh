#!/bin/bash
# What vordane-tools says to a person: help, versions, mistakes, missing files. Arguments: the program, then its
# version. A Windows program is started under Wine.
set -u
tool=("$1") version=$2 data=$(cd "$(dirname "$0")/../../data" && pwd)
case "$1" in *.exe) tool=(wine "$1") ;; esac
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

# run CODE ARGUMENT ...: runs it and compares the exit code; what it wrote stands in $work/out and $work/errors.
run() {
  local expected=$1 code=0
  shift
  "${tool[@]}" "$@" > "$work/out.raw" 2> "$work/errors.raw" < /dev/null || code=$?
  tr -d '\r' < "$work/out.raw" > "$work/out"
  tr -d '\r' < "$work/errors.raw" > "$work/errors"
  [ "$code" = "$expected" ] || { echo "FAILED: '$*' ends with $code, not $expected"; cat "$work/out" "$work/errors"; failed=1; }
}
says() { grep -qF -- "$2" "$work/$1" || { echo "FAILED: '$2' is not in:"; cat "$work/$1"; failed=1; }; }
silent() { [ ! -s "$work/$1" ] || { echo "FAILED: not silent:"; cat "$work/$1"; failed=1; }; }

for help in --help -h; do
  run 0 $help; silent errors; says out 'usage: vordane-tools COMMAND'; says out 'vordane-tools language build [--common]'
done
run 0 --version; silent errors
[ "$(cat "$work/out")" = "vordane-tools $version" ] || { echo "FAILED: the version is $(cat "$work/out")"; failed=1; }
for command in capsule decode doctor follow guide language export import install list store suite uninstall; do
  run 0 $command --help; silent errors; says out "usage: vordane-tools $command "
done
run 0 export --help; says out 'vordane-tools export FILE (--csv DIR | --json DIR | --texts DIR) [--spreadsheet]'; says out 'hold every value as it stands'; says out '--spreadsheet '
run 0 language build --help; silent errors; says out 'usage: vordane-tools language build [--common] FOLDER OUT.LNG'; says out '--common '
run 0 list --csv -h; silent errors; says out 'usage: vordane-tools list FAULT.MDB [--exchange NAME] [--since TIME]'; says out '[--csv | --json | --count]'

run 2; silent out; says errors 'a command is missing'
run 2 lst; silent out; says errors 'there is no command lst'
run 2 list; silent out; says errors 'the fault database is missing'; says errors 'usage: vordane-tools list FAULT.MDB'
run 2 list x --csv --count; silent out; says errors '--csv and --json and --count exclude each other'
run 2 list x --exchange; says errors '--exchange needs NAME behind it'
run 2 list x y; says errors 'vordane-tools list: y is one argument too many'
run 2 list x --cvs; says errors 'unknown option --cvs'
run 2 doctor; says errors 'vordane-tools doctor: the version directory'
run 2 import a b; says errors 'b is one argument too many'; says errors 'usage: vordane-tools import SUITE_DIR'
run 2 language; says errors 'vordane-tools language check FOLDER'
run 2 language chek x; says errors 'vordane-tools language: there is no command chek'
run 2 export x; says errors 'vordane-tools export: --csv or --json or --texts is missing'
run 2 list x --json --csv; silent out; says errors 'exclude each other'
run 1 export x --texts y --kind 01; silent out; says errors '--texts writes no faults, so none of them can be chosen'
run 2 suite x --language; says errors '--language needs NAME behind it'
run 2 suite; says errors 'the directory of the suite is missing'

run 2 store; says errors 'vordane-tools store create FILE.dsn [--language VORDANE.LNG]'
run 2 store create; says errors 'the file data source of the store is missing'
run 1 store check none.dsn; silent out; says errors 'none.dsn: there is no such file. Check the path'

run 2 install x; silent out; says errors '--package is missing'
run 2 install --package x; says errors 'the version directory is missing'
run 1 install x --package y --words x65; says errors '--words is x64 or x86, not x65'
run 2 install x --package y --wait long; silent out; says errors '--wait'
run 2 uninstall; says errors 'the version directory is missing'
run 2 uninstall x --all; says errors 'unknown option --all'
run 17 uninstall no-such-folder; says out 'the add-in is not installed there'

run 2 follow x; silent out; says errors '--mark is missing'
run 2 follow x --mark m --to a --tcp b:1; says errors 'exclude each other'
none=none.mdb
run 1 follow $none --mark "$work/mark" --once; silent out; says errors "$none: there is no such file. Check the path"
run 1 list $none; silent out; says errors "$none: there is no such file. Check the path"
run 1 export $none --csv "$work/csv"; says errors "$none: there is no such file. Check the path"
run 1 import no-such-folder; silent out; says errors 'no-such-folder: there is no such directory. Name the version directory'
run 1 doctor no-such-folder; silent out; says errors 'no-such-folder: there is no such directory'
echo 'no database' > "$work/text.mdb"
cd "$work" || exit 1
run 1 list text.mdb; says errors 'text.mdb: this is no database. Name a database'
run 1 export text.mdb --csv csv; says errors 'text.mdb: this is no database'
run 1 decode --messages none.tsv; says errors "none.tsv: can't be opened. Check the path"

# A suite of its own: its report is in its language, and CSV has line ends of its own on every system.
run 0 suite made/ --language ru --source "$data"; says out 'made the data files of made/'
grep -q '<html lang="ru">' made/ADDINS/REPORT/FAULT.RPT || { echo 'FAILED: the report is not in Russian'; failed=1; }
run 0 list made/ADDINS/DATABASE/FAULT.MDB --csv
printf 'Exchange,Fault,Alarm,Date,CPU,Description,Count\r\n' | cmp - out.raw || failed=1
run 0 list made/ADDINS/DATABASE/FAULT.MDB --count; [ "$(cat out)" = 0 ] || failed=1
run 0 list made/ADDINS/DATABASE/FAULT.MDB --count --since 2026 --until 2026/11/22 --major --kind 3B --kind 01 --processor MP; [ "$(cat out)" = 0 ] || failed=1
run 0 list made/ADDINS/DATABASE/FAULT.MDB --receipts --json; silent errors
printf '{"format":"vordane receipt list","version":1,"receipts":[\n]}\n' | cmp - out.raw || failed=1
run 1 list made/ADDINS/DATABASE/FAULT.MDB --receipts --kind 3B; silent out; says errors '--receipts lists resets of alarms: only --exchange'
run 0 list made/ADDINS/DATABASE/FAULT.MDB --json --class MJ
printf '{"format":"vordane fault list","version":1,"exchanges":[\n],"faults":[\n]}\n' | cmp - out.raw || failed=1
run 1 export made/ADDINS/DATABASE/VORDANE.LNG --json tables --kind 01; silent out; says errors 'no faults are stored in it'
run 0 export made/ADDINS/DATABASE/FAULT.MDB --json tables --kind 01
printf '{"format":"vordane table","version":1,"table":"PBXList","columns":["ID","PBXName","TimeStamp","MJ","MN"],"rows":[\n]}\n' | cmp - tables/PBXList.json || failed=1
run 0 follow made/ADDINS/DATABASE/FAULT.MDB --mark mark --once --to lines; silent out; silent errors
run 0 follow made/ADDINS/DATABASE/FAULT.MDB --mark mark --once --syslog; silent out; silent errors
grep -q '"format":"vordane follow mark"' mark || { echo 'FAILED: no mark is kept'; failed=1; }
run 1 follow made/ADDINS/DATABASE/FAULT.MDB --mark lost --once --udp here; says errors 'here: this is no address. Write it as HOST:PORT'
run 1 list made/ADDINS/DATABASE/FAULT.MDB --since today; silent out; says errors '--since today: write the time as YYYY/MM/DD HH:MM'
run 1 list made/ADDINS/DATABASE/FAULT.MDB --exchange PBX-1; silent out; says errors 'there is no exchange "PBX-1"'
if [ "${tool[0]}" != wine ]; then run 0 doctor made/; says out 'nothing is missing'; silent errors; fi
run 2 doctor made/ --yes; says errors '--fix'
run 2 doctor made/ --fix --source "$data"; says errors '--language'
# A language file that is missing: asked for, and no answer is no.
rm made/ADDINS/DATABASE/VORDANE.LNG
run 1 doctor made/ --fix; says errors 'Shall it make VORDANE.LNG of its sources? [y/N]'; says out 'VORDANE.LNG is missing'
run 1 doctor made/ --fix --yes; says errors 'not done: make VORDANE.LNG of its sources: the texts have to come from somewhere'
[ ! -e made/ADDINS/DATABASE/VORDANE.LNG ] || { echo 'FAILED: it was made without being asked for'; failed=1; }
if [ "${tool[0]}" != wine ]; then
  printf 'yes\n' | "${tool[@]}" doctor made/ --fix --source "$data" --language ru > out 2> errors || { echo 'FAILED: not mended'; failed=1; }
  says out 'mended: make VORDANE.LNG of its sources'; says out 'nothing is missing'
  run 0 doctor made/ --json; silent errors
  grep -qx '{"format":"vordane doctor","version":1,"suite":".*made","mended":\[\],"findings":\[\]}' out || { echo 'FAILED: no JSON:'; cat out; failed=1; }
fi
run 0 suite made/ --language ru --source "$data"
# A guide of its language comes along when there is one, and takes the place of another language's.
mkdir -p pages/ru made/ADDINS/HELP/GUIDE
echo '<p>все</p>' > pages/ru/guide.html; echo '<p>тема</p>' > pages/ru/request.html; echo old > made/ADDINS/HELP/GUIDE/old.html
# What a conversation would be played from is written on every system, and nothing beside it.
at='{"at":"2026-11-23T06:45:12.345678Z","event"'
{ printf '%s:"start","format":1,"version":"1","hosted":true,"interactive":true,"exchange":"","words":64}\n' "$at"
  printf '%s:"lent","object":1,"class":"cOLELayer"}\n%s:"released","obj' "$at" "$at"; } > one.jsonl
run 0 capsule play one.jsonl --only-write --source "$data"
says out 'line 3: this is no whole line of a trace'
says out 'it is played as far as line 3'
grep -qx 'try create layer-1' one.jsonl.play/stage/host.txt || { echo 'FAILED: no script'; failed=1; }
run 1 capsule play one.jsonl --only-write --source "$data" --folder made; says errors 'made holds something else. Name another folder, or an empty one'
run 1 capsule play none.jsonl; says errors 'none.jsonl: there is no such file. Name a capsule, a trace, or the folder of one'
run 1 capsule play one.jsonl --only-write --source "$data" --run 2; says errors 'one.jsonl: it tells of fewer starts of the add-in: 1'
sed 's/"format":1/"format":2/' one.jsonl > newer.jsonl
run 1 capsule play newer.jsonl --only-write --source "$data"; says errors 'the trace has the format 2, and this program reads format 1. Use a newer one'
run 1 capsule play one.jsonl --source "$data" --programs none
run 2 capsule play; run 2 capsule
run 0 suite made/ --language ru --source "$data" --guide pages; silent errors
diff -r pages/ru made/ADDINS/HELP/GUIDE || { echo 'FAILED: the guide did not come along'; failed=1; }
run 1 suite made/ --language en --source "$data" --guide pages; says errors 'there is no guide in it. Make it with tools/guide'
run 1 suite other --language xx --source "$data"; says errors 'xx/messages.tsv: missing'
mkdir trace
printf '%s\n' '{"at":"2026-11-23T06:45:12.000001Z","event":"start","exchange":"PBX-1"}' > trace/trace-20261123-064512-0123abcd-0001.jsonl
run 2 capsule make made it.capsule; says errors '--exchange'
run 1 capsule make made it.capsule --exchange PBX-1 --since yesterday; says errors 'a time is YYYY/MM/DD HH:MM'
run 3 capsule make made it.capsule --exchange PBX-1 --trace trace; says out 'it.capsule: 0 faults, 1 lines of 1 trace files'
says errors 'not in it: the stored faults: '; says errors 'there is no exchange "PBX-1"'
run 1 capsule make made it.capsule --exchange PBX-1 --trace trace; says errors 'it.capsule: '
run 0 capsule show it.capsule; silent errors; says out 'Exchange: PBX-1'; says out "Version: $version"; says out 'tMessages in VORDANE.LNG: '
run 3 capsule make made other.capsule --exchange PBX-1 --trace trace --anonymous; run 0 capsule show other.capsule; says out 'Exchange: Exchange-1'
run 1 capsule show trace/trace-20261123-064512-0123abcd-0001.jsonl; silent out; says errors 'this is no capsule'
if [ -e /dev/full ] && [ "${tool[0]}" != wine ]; then
  "${tool[@]}" --help > /dev/full 2> errors && { echo 'FAILED: a full disk goes unnoticed'; failed=1; }
  says errors "the output can't be written. Make room"
fi
exit $failed
