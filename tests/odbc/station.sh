# What the administrator's tests of whole servers have in common; to be sourced, beside with-server.sh. Takes the arguments
# of the script: vordane-tools, and the test program that takes fault lists in as a station does (crash/lists.h). Makes a
# store on the first server, with the user ws01.
tool=$1 takes=$2 programs=/usr/lib/postgresql/15/bin first=$VORDANE_SERVER second=$VORDANE_SECOND
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
mkdir "$first/work" && cd "$first/work" || exit 1 # goes with the server, whatever ends this
failed=0 in_list=500

fail() { echo "FAILED: $*"; failed=1; }
is() { [ "$1" = "$2" ] || fail "$1, not $2"; }
says() { grep -qF -- "$2" "$1" || { fail "'$2' is not in:"; cat "$1"; }; }
run() { # CODE COMMAND OF THE TOOLS ...
  local expected=$1 code=0
  shift
  "$tool" "$@" >out 2>errors </dev/null || code=$?
  [ "$code" = "$expected" ] || { fail "'$*' ends with $code, not $expected"; cat out errors; }
}
on() { # FOLDER ARGUMENTS OF psql ...
  local server=$1
  shift
  "$programs/psql" -qAtX -h "$server/socket" -U administrator "$@"
}
source_for() { # FILE USER SERVER LINE ...
  local file=$1
  printf '[ODBC]\nDRIVER=PostgreSQL Unicode\nDATABASE=faults\nUID=%s\nSERVER=%s\n' "$2" "$3" >"$1"
  shift 3
  [ $# = 0 ] || printf '%s\n' "$@" >>"$file"
}
take_list() { # FILE NUMBER: what the station shows is in `report`
  rm -f report
  timeout 60 "$takes" --take-lists "$1" report "$2" 1 quick disk ends || fail "the station ends with $?"
}
stored() { on "$1" -d faults -c 'select count(*) from vordane."FaultDisplay"'; }
until_true() { # SECONDS COMMAND ...
  local last=$((SECONDS + $1))
  shift
  until "$@"; do
    [ $SECONDS -lt $last ] || { fail "never: $*"; return 1; }
    sleep 0.02
  done
}

# A station that has been taking slow lists in since list 1, and is in the middle of list 2.
start_station() { # FILE
  rm -f reports
  setpriv --pdeathsig KILL "$takes" --take-lists "$1" reports 1 50 slow disk stays 2>/dev/null &
  station=$!
  is_under_way() { [ "$(stored "$first")" -gt $((2 * in_list)) ]; }
  until_true 60 is_under_way
}
end_station() {
  kill -KILL "$station" 2>/dev/null
  wait "$station" 2>/dev/null
}

# The list that was cut short at so many stored faults comes again, then all lists before it: each fault is there, once.
completes() { # FOLDER FILE STORED
  local list=$(($3 / in_list)) known=$(($3 % in_list)) each
  take_list "$2" "$list"
  says report "Account $in_list=$((in_list - known))+$known+0"
  says report Acknowledge
  for ((each = 0; each < list; ++each)); do
    take_list "$2" "$each"
    says report "Account $in_list=0+$in_list+0"
  done
  is "$(stored "$1")" $(((list + 1) * in_list))
  source_for admin.dsn administrator "$1/socket"
  run 0 store check admin.dsn
  says out 'the index agrees with the faults'
}

on "$first" -d postgres -c 'create database faults'
source_for admin.dsn administrator "$first/socket"
run 0 store create admin.dsn # the first list says which language it is kept in
on "$first" -d postgres -c 'create role ws01 login in role vordane_station'
source_for station.dsn ws01 "$first/socket"
take_list station.dsn 0
says report "Account $in_list=$in_list+0+0"
