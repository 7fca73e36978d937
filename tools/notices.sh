#!/usr/bin/env bash
# Prints the notices of everything that is linked into the shipped programs, with the whole text of each licence, as the
# installed packages carry it: notices.sh [BUILD ...]. It fails when sources of src or programs in one of these builds
# have included a header of a package whose notices are not among them.
set -euo pipefail

# What is linked in: name, and the file that holds its copyright and licence.
notices=(
  "SQLite|/usr/share/doc/libsqlite3-0/copyright"
  "JSON for Modern C++|/usr/share/doc/nlohmann-json3-dev/copyright"
  "CLI11|/usr/share/doc/libcli11-dev/copyright"
  "mingw-w64 run-time|/usr/share/doc/mingw-w64-common/copyright"
  "GCC run-time libraries (libgcc, libstdc++), with the GCC Runtime Library Exception|/usr/share/doc/gcc-mingw-w64-base/copyright"
  "Unicode character data|/usr/share/doc/unicode-data/copyright"
  "NSIS, which the installer is made with|/usr/share/doc/nsis-common/copyright"
)

# The packages that the included headers come from.
packages() {  # BUILD
  ninja -C "$1" -t deps |
    awk '/^[^ ]/ { ours = /^(src|programs)\// } ours && sub(/^ +/, "") && !/^\.\.\//' | sort -u |
    ( cd "$1" && xargs -r -d '\n' realpath -e -- ) | grep '^/usr/' | sort -u |
    xargs -r -d '\n' dpkg -S | sed 's/: .*//' | sort -u
}
for build in "$@"; do
  found=$(packages "$build") || { printf 'vordane: %s does not tell what its sources include\n' "$build" >&2; exit 1; }
  for package in $found; do
    printf '%s\n' "${notices[@]#*|}" | grep -qxF "$(realpath -m "/usr/share/doc/$package/copyright")" ||
      { printf 'vordane: %s is linked in, and its notices are missing\n' "$package" >&2; exit 1; }
  done
done

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
