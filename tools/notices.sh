#!/usr/bin/env bash
# Prints the notices of everything that is linked into the shipped programs, with the whole text of each licence, as the
# installed packages carry it: notices.sh PROGRAM ... (the programs are searched for what nobody has listed here).
set -euo pipefail

# What is linked in: name, and the file that holds its copyright and licence.
notices=(
  "SQLite|/usr/share/doc/libsqlite3-0/copyright"
  "mingw-w64 run-time|/usr/share/doc/mingw-w64-common/copyright"
  "GCC run-time libraries (libgcc, libstdc++), with the GCC Runtime Library Exception|/usr/share/doc/gcc-mingw-w64-base/copyright"
  "Unicode character data|/usr/share/doc/unicode-data/copyright"
  "NSIS, which the installer is made with|/usr/share/doc/nsis-common/copyright"
)
printf 'Vordane holds parts of others. Their notices and licences follow.\n'
for notice in "${notices[@]}"; do
  name=${notice%%|*} file=${notice#*|}
  [ -s "$file" ] || { printf 'vordane: %s: the notices of %s are missing\n' "$file" "$name" >&2; exit 1; }
  printf '\n%s\n%s\n%s\n\n' "$(printf '=%.0s' $(seq 78))" "$name" "$(printf '=%.0s' $(seq 78))"
  cat "$file"
  # A text that the package only points at.
  for common in $(grep -o '/usr/share/common-licenses/[A-Za-z0-9.+-]*[A-Za-z0-9]' "$file" | sort -u); do
    [ -s "$common" ] || { printf 'vordane: %s is missing\n' "$common" >&2; exit 1; }
    printf '\n--- %s ---\n\n' "$(basename "$common")"
    cat "$common"
  done
done
