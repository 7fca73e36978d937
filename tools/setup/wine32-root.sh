#!/usr/bin/env bash
# Makes a small Debian root that holds Wine for both word sizes, once per machine. Installing the
# 32-bit half beside an amd64 machine's own packages fails where some of them are newer than
# Debian's, a root of its own does not. Prints its path.
set -euo pipefail
. "$(dirname "$0")/common.sh"

out="$cache/wine32-root"

make_root() {
  [ -f "$out/.complete" ] && return 0
  local mirror; mirror=$(debian_mirror)
  [ -n "$mirror" ] || fail "no Debian mirror found in /etc/apt/sources.list.d/*.sources"
  umount "$out/proc" 2>/dev/null || true
  rm -rf "$out"
  {
    debootstrap --variant=minbase --arch=amd64 bookworm "$out" "$mirror"
    mount -t proc proc "$out/proc"
    cp /etc/apt/sources.list.d/*.sources "$out/etc/apt/sources.list.d/" 2>/dev/null || true
    # Only Debian's own entries are of use in there.
    local entry
    for entry in "$out"/etc/apt/sources.list.d/*.sources; do
      grep -q bookworm "$entry" || rm -f "$entry"
    done
    [ ! -d /etc/apt/keyrings ] || cp -r /etc/apt/keyrings "$out/etc/apt/"
    rm -f "$out/etc/apt/sources.list"
    [ ! -f /etc/apt/apt.conf.d/90proxy ] || cp /etc/apt/apt.conf.d/90proxy "$out/etc/apt/apt.conf.d/"
    chroot "$out" dpkg --add-architecture i386
    chroot "$out" apt-get -qq update
    DEBIAN_FRONTEND=noninteractive chroot "$out" apt-get install -y --no-install-recommends \
      wine wine64 wine32:i386 xvfb xauth fonts-dejavu-core fonts-vlgothic
    chroot "$out" apt-get clean
    umount "$out/proc"
  } >"$cache/wine32-root.log" 2>&1 || { tail -n 20 "$cache/wine32-root.log" >&2; fail "the root for 32-bit Wine could not be made"; }
  touch "$out/.complete"
}

locked wine32-root make_root
echo "$out"
