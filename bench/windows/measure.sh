#!/usr/bin/env bash
# Run by tests/windows/run.sh in a Wine prefix of its own, with the suite installed: what only Windows programs
# show, the decoder, and a tenth of what is stored. Expects VORDANE_BUILD, and in BENCH_FAULTS and
# BENCH_FEW a FAULT.MDB each with an exchange PBX-1, of STORED and of 1,000 faults.
#   measure.sh ENTRIES EXCHANGES STORED
set -euo pipefail
. "$(dirname "$0")/suite.sh"

install_suite
cp "$BENCH_FAULTS" "$addins/DATABASE/FAULT.MDB"
cp "$VORDANE_BUILD"/bench/*/*.exe "$addins/"
cd "$addins"
# Into a file: what a program starts would keep a pipe open. No measurement takes longer than $limit seconds.
limit=1200
measure() {
  timeout --kill-after=5 "$limit" wine "$@" >"$WINEPREFIX/bench.lines" 2>"$WINEPREFIX/bench.errors" ||
    echo "$1: ended with $?" >>"$WINEPREFIX/bench.lines"
  tr -d '\r' <"$WINEPREFIX/bench.lines"
  grep '^failed' "$WINEPREFIX/bench.errors" || true
}

measure window_bench.exe 'C:\QUILMAR32\30000\ADDINS\DATABASE\FAULT.MDB' "$2"
measure automation_bench.exe call
limit=3600 measure automation_bench.exe record "$1"
# The exchange server runs already, as it does on a workstation.
wine 'C:\SIM\Zulsim.exe' >/dev/null 2>&1 &
cp "$BENCH_FEW" "$addins/DATABASE/FEW.MDB"
mv "$addins/DATABASE/FAULT.MDB" "$addins/DATABASE/MANY.MDB"
suite='C:\QUILMAR32\30000\ADDINS'
measure start_bench.exe "$suite\VORDANE.EXE" PBX-1 "$suite\DATABASE\FAULT.MDB" "$suite\DATABASE\FEW.MDB" \
  "$suite\DATABASE\MANY.MDB" "$3" empty_window.exe
measure bench_decode.exe
measure ingest_bench.exe --quick
measure store_bench.exe --quick
