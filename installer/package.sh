#!/usr/bin/env bash
# Lays out what an installer carries: package.sh OUT [--x64 DIR] [--x86 DIR] [--guide DIR]
# [--documents DIR]. The folders hold the built
# programs of one word size (a build's `programs`); the documents go beside the remover.
set -euo pipefail
repository=$(cd "$(dirname "$0")/.." && pwd)

out=$1; shift
rm -rf "$out"
mkdir -p "$out/common/SIM" "$out/common/ADDINS/SETUP" "$out/data"
while [ $# -gt 0 ]; do
  case "$1" in
    --x64 | --x86)
      words=${1#--}
      mkdir -p "$out/$words/ADDINS" "$out/$words/SIM"
      install -m 755 "$2/vordane/VORDANE.EXE" "$2/devhost/devhost.exe" "$2/tools/vordane-tools.exe" "$out/$words/ADDINS/"
      install -m 755 "$2/zulsim/Zulsim.exe" "$out/$words/SIM/" ;;
    --guide)
      mkdir -p "$out/data/guide"
      for pages in "$2"/*/; do
        install -D -m 644 -t "$out/data/guide/$(basename "$pages")" "$pages"*.html
      done ;;
    --documents) cp -r "$2/." "$out/common/ADDINS/SETUP/" ;;
    *) echo "package.sh does not know $1" >&2; exit 2 ;;
  esac
  shift 2
done
cp -r "$repository/data/language" "$repository/data/report" "$out/data/"
cp -r "$repository/data/scenarios" "$out/common/SIM/"
