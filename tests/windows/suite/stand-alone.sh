#!/usr/bin/env bash
# A technician starts the add-in by hand: the exchange's list is fetched through the simulator's process,
# decoded, stored and shown; a second fetch adds nothing and says so; a killed and restarted program still
# shows what was stored.
set -euo pipefail
. "$(dirname "$0")/suite.sh"

install_suite
expect "stored before" 0 "$(stored)"

start_alone PBX-1
click --wait 60 --press cmdRequest >/dev/null || fail "no window with a request button"
wait_stored 0
first=$(stored)
tools list "$faults" --exchange PBX-1 | sed -n 1,6p
[ "$first" -ge 52 ] || fail "only $first faults came of a list that covers every kind"
expect "exchange shown" PBX-1 "$(click --text drpPBXList)"
received=$(click --text txtTimeTag)
[ -n "$received" ] || fail "the window does not say when the list was received"

click --press cmdRequest >/dev/null
box=$(click --wait 30 --box 1) || fail "no box after a list without new faults"
printf 'the box says: %s\n' "$box"
sleep 2
expect "stored after the same list" "$first" "$(stored)"

quick wine taskkill /F /IM VORDANE.EXE >/dev/null 2>&1 || true
wait "$addin" 2>/dev/null || true
start_alone PBX-1
click --wait 60 cmdRequest >/dev/null || fail "no window after the restart"
expect "exchange shown after a kill" PBX-1 "$(click --text drpPBXList)"
expect "stored after a kill" "$first" "$(stored)"

click --press cmdClose >/dev/null
for _ in $(seq 30); do kill -0 "$addin" 2>/dev/null || break; sleep 0.5; done
! kill -0 "$addin" 2>/dev/null || fail "the close button did not end the program"
echo "ok: the close button ends the program"

# Closed while an answer is waited for: the exchange is let go, once.
use_scenario silent
: > "$drive/SIM/Zulsim.log"
start_alone PBX-1
click --wait 60 --press cmdRequest >/dev/null || fail "no window with a request button"
for _ in $(seq 100); do grep -q SendRequest "$drive/SIM/Zulsim.log" && break; sleep 0.2; done
grep -q SendRequest "$drive/SIM/Zulsim.log" || fail "the request never came"
expect "log-outs while the answer is waited for" 0 "$(grep -c LogOut "$drive/SIM/Zulsim.log" || true)"
quick wine taskkill /IM VORDANE.EXE >/dev/null 2>&1 || fail "the window could not be asked to close"
for _ in $(seq 30); do kill -0 "$addin" 2>/dev/null || break; sleep 0.5; done
! kill -0 "$addin" 2>/dev/null || fail "the title bar did not end the program"
expect "log-outs behind the close" 1 "$(grep -c LogOut "$drive/SIM/Zulsim.log" || true)"
