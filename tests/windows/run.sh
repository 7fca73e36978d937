#!/usr/bin/env bash
# Runs one Windows test in a Wine prefix and on a screen of its own:
#
#   run.sh x64|x64-next|x86 PROGRAM [ARGUMENT ...]
#
# PROGRAM is a Windows program or a shell script that starts several. A script finds WINEPREFIX, DISPLAY and
# VORDANE_ARCH (x64 or x86) set and calls `wine`. x64 runs with this machine's Wine, x64-next and x86 with the
# newer one in the small root that holds both word sizes, where the repository and /tmp are mounted at the same
# places. Ends with the program's exit code, 124 after VORDANE_TEST_TIMEOUT seconds (240), or 125 with a reason
# when the prefix or the screen can't be had.
#
# The test lives in namespaces of its own: its processes end with this one however it ends, its prefix is a layer
# in memory over one that is made once, and neither its screen nor its Wine server can be another test's. So
# nothing is left behind, and as many tests as one likes run at once, also from several clones. One processor has
# them all: Wine's programs and its server hand each other the turn tens of thousands of times a second, which costs
# three times as much where it goes from one processor to another. VORDANE_PROCESSORS (a list as taskset takes it)
# gives them others.
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
repository=$(cd "$here/../.." && pwd)
. "$repository/tools/setup/common.sh"
unavailable() { printf 'the test can not start: %s\n' "$*" >&2; exit 125; }

# Debian's Wine would keep its servers' sockets there, and the newer one ends in free(): both keep to /tmp.
unset TMPDIR

judge="$1"; shift
limit="${VORDANE_TEST_TIMEOUT:-240}"
case "$judge" in
  x64) base="$cache/test-prefix-x64" root= ;;
  x64-next | x86) base="$cache/test-prefix-next" root=$("$repository/tools/setup/wine-root.sh") || unavailable "no root for the newer Wine" ;;
  *) echo "usage: run.sh x64|x64-next|x86 PROGRAM [ARGUMENT ...]" >&2; exit 2 ;;
esac

# Outside: what is made once, then the namespaces.
if [ -z "${VORDANE_OWN_NAMESPACES:-}" ]; then
  make=("$repository/tools/setup/wine-prefix.sh" "$base" alone)
  [ -z "$root" ] || make=(env VORDANE_BIND="$cache" "$repository/tools/setup/in-root.sh" "${make[@]}")
  locked "$(basename "$base")" "${make[@]}" >&2 || unavailable "the Wine prefix could not be made"
  mkdir -p "$cache/layer"
  unshare --mount --pid --net --ipc true 2>/dev/null || unavailable "namespaces need root here"
  export VORDANE_OWN_NAMESPACES=1
  # The test driver says which is the least busy one.
  one=${CTEST_RESOURCE_GROUP_0_PROCESSORS:-}
  one=${one#id:} one=${one%%,*}
  [ -n "$one" ] || one=$("$here/processors.sh" | shuf -n 1)
  # Whoever has called this may be killed: then it ends too, and the namespaces with it.
  exec taskset -c "${VORDANE_PROCESSORS:-$one}" \
    setpriv --pdeathsig KILL unshare --mount --pid --fork --kill-child --mount-proc --net --ipc \
    "$0" "$judge" "$@"
fi

layer="$root$cache/layer"
mkdir -p "$layer"
mount -t tmpfs tmpfs "$layer" || unavailable "no memory disk"
mkdir "$layer/changed" "$layer/work" "$layer/prefix"
mount -t overlay overlay -o "lowerdir=$base,upperdir=$layer/changed,workdir=$layer/work" "$layer/prefix" ||
  unavailable "no layer over $base"
# Debian's Wine keeps its servers' sockets in a folder that the prefix names.
servers=/tmp/$(cat "$base/wineserver" 2>/dev/null || echo .wine-0)
for own in /tmp/.X11-unix "$servers"; do
  mkdir -p "$own"
  mount -t tmpfs tmpfs "$own"
done
chmod 1777 /tmp/.X11-unix && chmod 700 "$servers"

arch=${judge%-next}
set -- env WINEPREFIX="$cache/layer/prefix" VORDANE_ARCH="$arch" "VORDANE_TEST_TIMEOUT=$limit" \
  WINEDEBUG="${WINEDEBUG:--all}" WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=" \
  bash "$here/on-screen.sh" "$@"
[ -n "$root" ] || exec "$@"

mount -t proc proc "$root/proc"
for folder in "$repository" /tmp ${VORDANE_BUILD:+"$VORDANE_BUILD"}; do
  mkdir -p "$root$folder"
  mount --rbind "$folder" "$root$folder"
done
exec chroot "$root" env HOME=/root VORDANE_INSIDE_ROOT=1 bash -c 'cd "$1" && shift && exec "$@"' - "$PWD" "$@"
