#!/usr/bin/env bash
# The processors that this process may use, a line each; with a number of slots, as the test driver wants them: so many
# tests that need one may run on each at once.
#
#   processors.sh [SLOTS]
set -euo pipefail

mine() {
  awk '/^Cpus_allowed_list/ { print $2 }' /proc/self/status | tr , '\n' |
    awk -F- '{ for (i = $1; i <= $NF; i++) print i }'
}
[ $# -gt 0 ] || { mine; exit; }
mine | sed "s/.*/{\"id\": \"&\", \"slots\": $1}/" | paste -sd , |
  sed 's/.*/{"version": {"major": 1, "minor": 0}, "local": [{"processors": [&]}]}/'
