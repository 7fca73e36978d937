#!/usr/bin/env bash
# Runs a command inside the root that holds the newer Wine: in-root.sh COMMAND [ARGUMENT ...]. The repository, /tmp
# and the folders named in VORDANE_BIND (separated by ":") stand at the same places in there; the mounts live in a
# namespace of their own and go with it. Temporary files lie in /tmp: that Wine ends in free() where TMPDIR is set.
set -euo pipefail

repository=$(cd "$(dirname "$0")/../.." && pwd)
root=$("$repository/tools/setup/wine-root.sh")
folders="$repository:/tmp${VORDANE_BIND:+:$VORDANE_BIND}"
exec unshare --mount bash -c '
  set -e
  root="$1"; folders="$2"; place="$3"; shift 3
  mount -t proc proc "$root/proc"
  IFS=:
  for folder in $folders; do
    mkdir -p "$folder" "$root$folder"
    mount --bind "$folder" "$root$folder"
  done
  unset IFS
  exec chroot "$root" env -u TMPDIR HOME=/root VORDANE_INSIDE_ROOT=1 bash -c "cd \"\$1\" && shift && exec \"\$@\"" - "$place" "$@"
' - "$root" "$folders" "$repository" "$@"
