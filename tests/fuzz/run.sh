#!/usr/bin/env bash
# Runs one fuzz target: run.sh NAME PROGRAM SECONDS [CORPUS-FOLDER]. It starts from the recorded examples;
# with a corpus folder it also keeps what it finds there, for a long run. An input that breaks the target
# is written beside the program and named in the output.
set -euo pipefail
name=$1 program=$2 seconds=$3
data=$(cd "$(dirname "$0")/../data" && pwd)
[ -x "$program" ] || { echo "$program was not built"; exit 1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/seeds"
corpus=${4:-$work/corpus}
mkdir -p "$corpus"

# One file for each example.
case $name in
  decoder)
    grep -v '^#' "$data/faults/golden.tsv" | cut -f 3-5 | awk -v to="$work/seeds/" '{ printf "\377\377%s", $0 > (to NR) }' ;;
  responses)
    n=0
    for text in 'DIGIT ERROR' 'OK' 'COMMAND:OK' 'ZUL_STN' 'ZUL_STN_STATION' 'DATA NOT FOUND' 'X: OK' ':'; do
      printf '%s' "$text" > "$work/seeds/$((n += 1))"
    done ;;
  escapes)
    n=0
    for text in 'Cannot open&%SP&%ST&.&%CR&Retry\tFAULT.MDB' 'A & B' '%AND&%SP4&-1&x' '%ST&%ST\tab%cd%ef' '&&' '%ST\t%%'; do
      printf "${text//\%/%%}" > "$work/seeds/$((n += 1))"
    done ;;
  trace)
    at='"at":"2026-11-23T06:45:12.345678Z"'
    {
      echo "{$at,\"event\":\"start\",\"format\":1,\"version\":\"1.0.12\",\"hosted\":true,\"interactive\":true,\"exchange\":\"\",\"words\":64}"
      echo "{$at,\"event\":\"lent\",\"object\":1,\"class\":\"cOLELayer\"}"
      echo "{$at,\"event\":\"called\",\"number\":3,\"object\":1,\"member\":\"RegisterPBX\",\"as\":\"method\",\"arguments\":[\"PBX-1\",{\"object\":2},7]}"
      echo "{$at,\"event\":\"call\",\"number\":4,\"object\":2,\"member\":\"oPBX\",\"as\":\"method or get\",\"arguments\":[]}"
      echo "{$at,\"event\":\"answer\",\"number\":4,\"took\":5,\"answer\":{\"object\":5}}"
      echo "{$at,\"event\":\"call\",\"number\":6,\"object\":5,\"member\":\"Login\",\"as\":\"method\",\"arguments\":[\"PBX-1\",{\"object\":1}],\"references\":[0]}"
      echo "{$at,\"event\":\"answer\",\"number\":6,\"took\":5,\"answer\":\"BUSY\"}"
      echo "{$at,\"event\":\"returned\",\"number\":3,\"took\":5,\"answer\":false}"
      echo "{$at,\"event\":\"person\",\"what\":\"button\",\"which\":0}"
    } > "$work/seeds/1" ;;
  capsule) printf '\0\0\0\x20\0\x05' > "$work/seeds/1" ;;
esac
longest=512
[ "$name" != trace ] || longest=4096

TMPDIR=$work "$program" -max_total_time="$seconds" -max_len="$longest" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
  -artifact_prefix="$(dirname "$program")/$name-" "$corpus" "$work/seeds" > "$work/log" 2>&1 || {
  tail -n 60 "$work/log"
  exit 1
}
tail -n 8 "$work/log"
