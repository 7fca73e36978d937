#!/usr/bin/env bash
# Mounts small disks in the places of the suite's databases and runs the tests of full disks on them; run by run.sh.
#
#   full-disk.sh SUITE_TESTS_EXE
set -euo pipefail

suite="$WINEPREFIX/drive_c/QUILMAR32/30000"
for folder in ADDINS/DATABASE QUIL32/DATABASE; do
  mkdir -p "$suite/$folder"
  mount -t tmpfs -o size=8m none "$suite/$folder"
done
VORDANE_SMALL_DISKS=yes exec wine "$1" --gtest_filter='FullDisk.*'
