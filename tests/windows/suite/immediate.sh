#!/usr/bin/env bash
# An exchange that answers at once: whatever overtakes what, the host hears of every step of each request, and
# its flow is never left turned on.
set -euo pipefail
. "$(dirname "$0")/suite.sh"

# Every request of the trace, from its log-in to its end; prints how many there were.
check_requests() {
  tr -d '\r' < "$1" | awk '
    function wrong(what) { print "request " count ": " what; bad = 1; exit }
    /^oPBX\.Login = "SIM-/ { ++count; told = on = done = code = 0; open = 1 }
    !open { next }
    /^ShowMessage ".*ACCEPTED-/ { ++told }
    /^TurnOnFlow/ { ++on }
    /^ShowMessage "Request done"/ { ++done }
    /^ShowCode 0/ { ++code }
    /^TurnOffFlow/ { ++off }
    /^(oPBX\.Login "|EndProcess|>)/ && off {
      if (told != 1) wrong("the acceptance was told " told " times")
      if (done != 1 || code != 1) wrong("the answer was told " done " and " code " times")
      if (on > 1 || off != 1) wrong("the flow was turned on " on " and off " off " times")
      open = off = 0
    }
    /^TurnOnFlow/ && off { wrong("the flow was turned on behind its end") }
    END { if (!bad) print count }'
}

install_suite
use_scenario immediate
start_host overtaken
expect_trace overtaken
expect_gone

start_host immediate
wait "$host" || fail "$(cat "$trace"; echo 'the host ended with an error')"
expect "requests answered at once" 24 "$(check_requests "$trace")"
expect_gone
expect "stored" 3 "$(stored)"
