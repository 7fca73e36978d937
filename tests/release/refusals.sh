#!/usr/bin/env bash
# What tools/release does not make: another version than the project's, one without an entry in the change log, a checkout
# with changes. It stops before it builds anything.
set -euo pipefail
repository=$(cd "$(dirname "$0")/../.." && pwd)
version=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAILED: $*"; exit 1; }

mkdir -p "$work/tools/setup"
cp "$repository/tools/release" "$work/tools/"
cp "$repository/tools/setup/common.sh" "$work/tools/setup/"
cp "$repository/CMakeLists.txt" "$repository/CHANGELOG.md" "$work/"
# Whatever it would build with is not there, so that going on shows.
git -C "$work" init -q
git -C "$work" -c user.name=test -c user.email=test@localhost add -A
git -C "$work" -c user.name=test -c user.email=test@localhost commit -qm all

refused() {  # WORDS ARGUMENT ...
  local words=$1; shift
  ! "$work/tools/release" "$@" > "$work.said" 2>&1 || fail "it takes: $*"
  grep -qF -- "$words" "$work.said" || fail "of '$*' it says: $(cat "$work.said")"
  [ ! -e "$work/dist" ] || fail "it began: $*"
}
refused "the project's version is $version, not 9.9.9" 9.9.9
refused 'usage: tools/release' --quick
refused 'usage: tools/release' "$version" more
refused 'setup/packages.sh' "$version"  # everything is right: it goes on to what is not there
echo change >> "$work/CMakeLists.txt"
refused 'changes that are in no commit' "$version"
git -C "$work" checkout -q CMakeLists.txt
sed -i "s/^## $version/## 0.0.1/" "$work/CHANGELOG.md"
refused "no entry '## $version'"
rm -f "$work.said"
echo "refusals: everything passed"
