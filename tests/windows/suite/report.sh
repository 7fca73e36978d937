#!/usr/bin/env bash
# What a user does with the shown faults through a host: the report in every order of the grid, one that the
# host refuses, the reset of the alarm, the deletion, the help. Every click is made from outside in the real
# window; the host's trace shows what came of it.
set -euo pipefail
. "$(dirname "$0")/suite.sh"

# Waits until the trace holds `$2` lines that begin with `$1`.
heard() {
  local i
  for i in $(seq 150); do [ "$(grep -c "^$1" "$trace")" -ge "$2" ] && return 0; sleep 0.2; done
  fail "$(cat "$trace"; echo "'$1' did not come $2 times")"
}
press() { click --wait 10 --press "$1" >/dev/null || fail "no $1"; }
# Presses a button behind which a box comes, again when the press was dropped, since the last action still ran;
# answers the box and prints its text.
answer_box() {  # button, answer
  local i text
  for i in 1 2 3; do
    press "$1"
    text=$(click --wait 10 --box "$2") && { tail -n +2 <<< "$text"; return 0; }
  done
  return 0
}

prints=0
# A press while the last action still runs is dropped, as a person's would be: a moment between them.
print_report() {
  sleep 1
  press cmdPrint
  prints=$((prints + 1))
  heard 'PrintReport = ' $prints
}
lamps() { tools list "$faults" | sed -n '1s/.*, \(major.*\)/\1/p'; }
# Prints a report and compares the order of its faults, by the numbers they were stored under.
expect_order() {  # what, order
  print_report
  expect "$1" "$2" "$(tr -d '\r' < "$addins/REPORT/FAULT-PBX-1.html" | sed -nE 's/^.*<td class="number">([0-9]+)<.td><.tr>$/\1/p' | xargs)"
}
# The same behind a click on a heading.
expect_clicked() {  # column, its name, order
  sleep 1
  click --heading "$1" || fail "no heading $1"
  expect_order "the report by $2" "$3"
}
# The pop-up that explains a control, by the right button and the menu; VORDANE_PICTURE names a file for a
# picture of it.
whats_this() {  # control, text
  click --wait 10 --right "$1" >/dev/null
  sleep 1
  click --key 40 >/dev/null
  click --key 13 >/dev/null
  expect "the help of $1" "$2" "$(click --wait 10 --help)"
  [ -z "${VORDANE_PICTURE:-}" ] || import -window root "$VORDANE_PICTURE"
  click --key 27 >/dev/null
}

install_suite
use_scenario report
start_host report
press_request
heard '# FETCHED' 1
expect "stored" 4 "$(stored)"

expect_order "the report as the list came" "2 1 4 3"
expect_clicked 0 'fault' "2 1 4 3"
expect_clicked 0 'fault, last first' "3 4 1 2"
expect_clicked 1 'class' "1 2 4 3"
expect_clicked 1 'class, last first' "3 4 2 1"
expect_clicked 2 'date, newest first' "2 1 4 3"
expect_clicked 2 'date' "3 4 1 2"
expect_clicked 3 'processor' "4 1 3 2"
expect_clicked 3 'processor, last first' "2 3 1 4"
expect_clicked 4 'description' "1 2 4 3"
expect_clicked 4 'description, last first' "3 4 2 1"

mv "$addins/REPORT/FAULT.RPT" "$addins/REPORT/away"
expect "the box of a refused report" \
  "The report was not printed.The report file C:\QUILMAR32\30000\ADDINS\REPORT\FAULT.RPT can't be read." "$(answer_box cmdPrint 1)"
mv "$addins/REPORT/away" "$addins/REPORT/FAULT.RPT"

expect "the stored lamps" "major alarm, minor alarm" "$(lamps)"
expect "the box of the reset" "The alarms of the exchange are reset." "$(answer_box cmdReset 1)"
for _ in $(seq 50); do [ "$(lamps)" = "major clear, minor clear" ] && break; sleep 0.2; done
expect "the stored lamps" "major clear, minor clear" "$(lamps)"
whats_this lblMJ "The major alarm lamp of this exchange: red while a major alarm stands, white when there is none. It shows the state the exchange last reported."

question="Delete this exchange and all its stored faults?"
expect "the question" "$question" "$(answer_box cmdClear 7)"
expect "stored when the deletion was declined" 4 "$(stored)"
expect "the question" "$question" "$(answer_box cmdClear 6)"
for _ in $(seq 50); do [ "$(stored)" = 0 ] && break; sleep 0.2; done
expect "stored behind the deletion" 0 "$(stored)"
expect "exchanges behind the deletion" "" "$(tools list "$faults")"
click --key 112
heard DisplayHelp 1
expect_trace report
expect_gone
expect "the database" ok "$(win "$VORDANE_BUILD/tests/windows/suite/whole.exe" "$faults")"
