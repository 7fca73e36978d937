#!/usr/bin/env bash
# What the programs for people say on their command lines: help and version as output, mistakes as errors, each with its
# exit code, and names in every letter.
set -u
export LC_ALL=C.UTF-8  # the arguments below are UTF-8
root=$(cd "$(dirname "$0")/../../.." && pwd)
programs="$VORDANE_BUILD/programs"
version=$1
work="$WINEPREFIX/drive_c/work"
mkdir -p "$work/Станция 故障"
cd "$work" || exit 1
failed=0
fail() { echo "FAILED: $*"; cat out errors; failed=1; }

# run CODE PROGRAM ARGUMENT ...: its output stands in `out` and `errors`.
run() {
  local expected=$1 program=$2 code=0
  shift 2
  timeout --kill-after=5 120 wine "$programs/$program" "$@" > out.raw 2> errors.raw < /dev/null || code=$?
  tr -d '\r' < out.raw > out
  tr -d '\r' < errors.raw > errors
  [ "$code" = "$expected" ] || fail "$program $* ends with $code, not $expected"
}
says() { grep -qF -- "$2" "$1" || fail "'$2' is not in $1"; }
silent() { [ ! -s "$1" ] || fail "$1 is not empty"; }

# PROGRAM NAME CODE-OF-MISTAKES USAGE
for row in 'devhost/devhost.exe;devhost;1;[--reports DIRECTORY] [--times] SCRIPT' \
  'zulsim/Zulsim.exe;Zulsim;2;[SCENARIO]' \
  'click/click.exe;click;2;[--wait SECONDS] (--find CONTROL | --press CONTROL |' \
  'kit/kit.exe;run-all.cmd;2;[--only PROGRAM[:TESTS]] ... [--report FOLDER] [--list | --put-back]'; do
  IFS=';' read -r program name mistaken usage <<< "$row"
  run 0 "$program" --help; silent errors; says out "usage: $name $usage"; says out "       $name --help | --version"; says out 'Exit code: 0'
  cp out "$name.txt"
  run 0 "$program" --version; silent errors; [ "$(cat out)" = "$name $version" ] || fail "the version of $name"
  run "$mistaken" "$program" --Ошибка; silent out; says errors "$name: unknown option --Ошибка"; says errors "usage: $name $usage"
done
# The guide describes the options of those that technicians get.
run 0 tools/vordane-tools.exe guide check "Z:$root/docs/guide" "Z:$root/data/language" --described-by devhost.txt \
  --described-by Zulsim.txt; silent errors
run 1 devhost/devhost.exe; silent out; says errors 'devhost: the script is missing'
run 1 devhost/devhost.exe a b; silent out; says errors 'devhost: b is one argument too many'
run 2 zulsim/Zulsim.exe a b; silent out; says errors 'Zulsim: b is one argument too many'
run 2 click/click.exe; silent out; says errors '--box is missing'
run 1 click/click.exe --find cmdClose; silent out; says errors 'click: no such control'
run 2 kit/kit.exe --report; silent out; says errors 'run-all.cmd: --report needs FOLDER behind it'

printf 'say done\n' > 'Станция 故障/скрипт.txt'
run 2 devhost/devhost.exe 'Станция 故障/скрипт.txt'; silent out; says errors 'Станция 故障/скрипт.txt:1: '
run 2 devhost/devhost.exe 'Станция 故障/нет.txt'; silent out; says errors "devhost: Станция 故障/нет.txt: can't be read"
exit $failed
