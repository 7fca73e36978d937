#!/usr/bin/env bash
# Packs a folder into a zip that depends on nothing but names and contents: pack.sh FOLDER OUT.zip. The folder's own name
# stands at the head of every path; all times are SOURCE_DATE_EPOCH, or the first day of 2026.
set -euo pipefail

folder=$(realpath "$1") out=$(realpath -m "$2")
stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
cp -r "$folder" "$stage/"
cd "$stage"
find . -type f -perm /111 -exec chmod 755 {} +
find . -type f ! -perm /111 -exec chmod 644 {} +
find . -exec touch -h -d "@${SOURCE_DATE_EPOCH:-1767225600}" {} +
mkdir -p "$(dirname "$out")"
rm -f "$out"
find "$(basename "$folder")" -type f | LC_ALL=C sort | TZ=UTC zip -q -X -D "$out" -@
