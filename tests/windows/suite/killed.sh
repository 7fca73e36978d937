#!/usr/bin/env bash
# A host dies: idle, inside a call of its own, inside one of the add-in's, in the middle of an answer, during
# the last release. No add-in stays, the database is whole and holds what it held, and the next host finds
# everything as ever.
set -euo pipefail
. "$(dirname "$0")/suite.sh"

install_suite
use_scenario killed
cp "$drive/SIM/Zulsim.zul" "$addins/killed.zul"

# Waits for the host's death, by its own hand or (with `kill`) by this script's when it notes that it is ready.
# `$2` is the beginning of the last line it printed.
host_dies() {
  local how="${3:-}" i last
  start_host "$1"
  if [ "$how" = kill ]; then
    for i in $(seq 300); do grep -q "^# READY" "$trace" && break; sleep 0.2; done
    addin_runs || fail "$(cat "$trace"; echo 'no add-in runs')"
    { kill -9 "$host"; } 2>/dev/null
  fi
  for i in $(seq 300); do kill -0 "$host" 2>/dev/null || break; sleep 0.2; done
  ! kill -0 "$host" 2>/dev/null || fail "$(cat "$trace"; echo 'the host did not die')"
  wait "$host" 2>/dev/null && fail "$(cat "$trace"; echo 'the host ended by itself')"
  last=$(tr -d '\r' < "$trace" | tail -n 1)
  case "$last" in "$2"*) echo "== $1: the host is dead behind '$last'" ;; *) fail "$1: it died behind '$last'" ;; esac
  expect_gone 40
  expect "stored behind $1" 20 "$(stored)"
  expect "the database behind $1" ok "$(win "$VORDANE_BUILD/tests/windows/suite/whole.exe" "$faults")"
}

start_host store-first
wait "$host" || fail "$(cat "$trace")"
expect_gone
expect "stored at first" 20 "$(stored)"

host_dies killed-idle '> sleep' kill
host_dies killed-registering GetComData
host_dies killed-told TurnOnFlow
host_dies killed-waiting '> sleep' kill
host_dies killed-answering TurnOnFlow
host_dies killed-releasing REGComData

start_host store-first
wait "$host" || fail "$(cat "$trace")"
expect_gone
expect "stored by the next host" 20 "$(stored)"
