#!/usr/bin/env bash
# What is shipped is compiled to the same bytes in whatever folder and time zone, with a compiler cache on the machine
# and without, debuggers' information included: a few sources, as release-x64 has them. `tools/release --verify` does it
# with everything.
set -euo pipefail
repository=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAILED: $*"; exit 1; }

compiled() {  # FOLDER VARIABLE=VALUE ...
  mkdir -p "$1"
  (cd "$repository" && git ls-files -z | xargs -0 cp --parents -t "$1")
  (cd "$1" && export "${@:2}" && cmake --preset release-x64 && cmake --build --preset release-x64 --target vordane_text) \
    > "$work/log" 2>&1 || { tail -n 20 "$work/log"; fail "it could not be built"; }
}
compiled "$work/one" TZ=UTC
compiled "$work/another folder/below" TZ=Asia/Tokyo CCACHE_DISABLE=1
objects=$(cd "$work/one/build/release-x64" && find . -name '*.obj')
[ -n "$objects" ] || fail "nothing was compiled"
for object in $objects; do
  cmp "$work/one/build/release-x64/$object" "$work/another folder/below/build/release-x64/$object" ||
    fail "the folder or the time shows in $object"
done
