#!/usr/bin/env bash
# Makes a small root of the next Debian, once per machine, with the newer of the two Wines that the tests use and
# with both of its word sizes. (Installing the 32-bit half beside an amd64 machine's own packages fails where
# some of them are newer than Debian's, a root of its own does not.) Prints its path.
set -euo pipefail
. "$(dirname "$0")/common.sh"

release=trixie
out="$cache/wine-root-$release"

make_root() {
  [ -f "$out/.complete" ] && return 0
  local mirror; mirror=$(debian_mirror)
  [ -n "$mirror" ] || fail "no Debian mirror found in /etc/apt/sources.list.d/*.sources"
  umount "$out/proc" 2>/dev/null || true
  rm -rf "$out"
  {
    debootstrap --force-check-gpg --keyring=/usr/share/keyrings/debian-archive-keyring.gpg --variant=minbase \
      --arch=amd64 "$release" "$out" "$mirror"
    mount -t proc proc "$out/proc"
    apt_settings > "$out/etc/apt/apt.conf.d/90machine"
    rm -f "$out/etc/apt/sources.list"
    printf 'Types: deb\nURIs: %s\nSuites: %s\nComponents: main\nSigned-By: %s\n' "$mirror" "$release" \
      /usr/share/keyrings/debian-archive-keyring.gpg > "$out/etc/apt/sources.list.d/debian.sources"
    [ ! -d /etc/apt/keyrings ] || cp -r /etc/apt/keyrings "$out/etc/apt/"
    chroot "$out" dpkg --add-architecture i386
    chroot "$out" apt-get -qq update
    DEBIAN_FRONTEND=noninteractive chroot "$out" apt-get install -y --no-install-recommends \
      wine wine64 wine32:i386 xvfb xauth xdotool procps fonts-dejavu-core fonts-vlgothic
    chroot "$out" apt-get clean
    umount "$out/proc"
  } >"$cache/wine-root.log" 2>&1 || { tail -n 20 "$cache/wine-root.log" >&2; fail "the root for the newer Wine could not be made"; }
  touch "$out/.complete"
}

locked wine-root make_root
echo "$out"
