#!/usr/bin/env bash
# Makes the SQLite amalgamation from Debian's source package, security patches included, once per
# machine. Prints the folder that holds sqlite3.c and sqlite3.h.
set -euo pipefail
. "$(dirname "$0")/common.sh"

# The pin: the upstream archive that Debian's package is built from.
upstream_sha256=aaa776260ab4dc976db34aa7891819484c8676b5b2783123ebc6301e2ca5d655
out="$cache/sqlite-${upstream_sha256:0:12}"

# What lies in the cache is what was made there.
is_whole() { (cd "$out" 2>/dev/null && sha256sum --check --quiet --strict SHA256SUMS) >/dev/null 2>&1; }

make_amalgamation() {
  is_whole && return 0
  local work; work=$(mktemp -d)
  trap "rm -rf '$work'" EXIT  # also when it fails
  mkdir -p "$work/sources.d" "$work/lists/partial"
  local mirror security
  mirror=$(debian_mirror)
  [ -n "$mirror" ] || fail "no Debian mirror found in /etc/apt/sources.list.d/*.sources"
  # A private list of source packages: the machine's own lists stay as they are.
  local entry
  for entry in /etc/apt/sources.list.d/*.sources; do
    grep -q 'bookworm' "$entry" && sed 's/^Types:.*/Types: deb-src/' "$entry" > "$work/sources.d/$(basename "$entry")"
  done
  local options=(-o Dir::Etc::sourcelist=/dev/null -o "Dir::Etc::sourceparts=$work/sources.d"
                 -o "Dir::State::lists=$work/lists")
  (
    cd "$work"
    apt-get "${options[@]}" -qq update
    # As root, apt would fetch as a user who may not write here; that only costs a warning.
    apt-get "${options[@]}" -qq -o APT::Sandbox::User=root source sqlite3
    echo "$upstream_sha256  $(ls sqlite3_*.orig.tar.*z | head -n 1)" | sha256sum --check --quiet \
      || fail "the SQLite source archive is not the pinned one"
    cd sqlite3-*/
    ./configure --disable-tcl --disable-readline
    make sqlite3.c
    rm -rf "$out.new"; mkdir -p "$out.new"
    cp sqlite3.c sqlite3.h sqlite3ext.h "$out.new/"
    (cd "$out.new" && sha256sum sqlite3.c sqlite3.h sqlite3ext.h > SHA256SUMS)
  ) >"$cache/sqlite.log" 2>&1 || { tail -n 20 "$cache/sqlite.log" >&2; fail "SQLite could not be made"; }
  rm -rf "$out"; mv "$out.new" "$out"
}

locked sqlite make_amalgamation
echo "$out"
