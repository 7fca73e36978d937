#!/usr/bin/env bash
# The packing steps of a release give the same bytes from the same files, whatever folder and hour, and others from others.
set -euo pipefail
repository=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAILED: $*"; exit 1; }
export SOURCE_DATE_EPOCH=1700000000

tree() {  # FOLDER DAY: the same files, made in another order
  mkdir -p "$1/thing/b" "$1/thing/a" "$1/package/x64/ADDINS" "$1/package/data"
  if [ "$2" = 1 ]; then order="a/1 b/2 計画"; else order="計画 b/2 a/1"; fi
  for name in $order; do echo "text of $name" > "$1/thing/$name"; done
  chmod "$([ "$2" = 1 ] && echo 755 || echo 775)" "$1/thing/b/2"
  chmod "$([ "$2" = 1 ] && echo 600 || echo 644)" "$1/thing/a/1"
  echo program > "$1/package/x64/ADDINS/VORDANE.EXE"
  echo text > "$1/package/data/a.tsv"
  find "$1" -exec touch -d "2026-0$2-01 12:00" {} +
}
icon="$work/an.ico"  # one transparent point
printf '\0\0\1\0\1\0\1\1\0\0\1\0\40\0\60\0\0\0\26\0\0\0\50\0\0\0\1\0\0\0\2\0\0\0\1\0\40\0\0\0\0\0\4\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0' > "$icon"
tree "$work/one" 1
TZ=UTC "$repository/tools/pack.sh" "$work/one/thing" "$work/one.zip"
TZ=UTC "$repository/installer/make.sh" "$work/one/package" 1.2.3 amd64 "$icon" "$work/one/setup.exe" --quick >/dev/null
tree "$work/another folder/below" 2
TZ=Asia/Tokyo "$repository/tools/pack.sh" "$work/another folder/below/thing" "$work/two.zip"
TZ=Asia/Tokyo "$repository/installer/make.sh" "$work/another folder/below/package" 1.2.3 amd64 "$icon" "$work/two.exe" --quick >/dev/null
cmp "$work/one.zip" "$work/two.zip" || fail "the zip files differ"
cmp "$work/one/setup.exe" "$work/two.exe" || fail "the installers differ"
unzip -l "$work/one.zip" > "$work/list" && grep -q 'thing/a/1' "$work/list" || fail "the zip file does not hold its files"

echo more >> "$work/one/thing/a/1"
echo more >> "$work/one/package/data/a.tsv"
"$repository/tools/pack.sh" "$work/one/thing" "$work/three.zip"
"$repository/installer/make.sh" "$work/one/package" 1.2.3 amd64 "$icon" "$work/three.exe" --quick >/dev/null
! cmp -s "$work/one.zip" "$work/three.zip" || fail "another file gives the same zip"
! cmp -s "$work/two.exe" "$work/three.exe" || fail "another file gives the same installer"

# The notices are whole.
"$repository/tools/notices.sh" > "$work/notices"
for part in 'public domain' 'mingw-w64 run-time' 'GNU GENERAL PUBLIC LICENSE' 'GCC RUNTIME LIBRARY EXCEPTION' 'zlib' \
  'Niels Lohmann' 'University of Cincinnati'; do
  grep -qi "$part" "$work/notices" || fail "the notices lack: $part"
done
echo "packing: everything passed"
