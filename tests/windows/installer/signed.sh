#!/usr/bin/env bash
# The remover that a signed release leaves on a workstation is signed too, and works: signed.sh ICON
set -euo pipefail
repository=$(cd "$(dirname "$0")/../../.." && pwd)

drive="$WINEPREFIX/drive_c"
fail() { printf 'FAILED: %s\n' "$*"; cat "$drive/setup.log" 2>/dev/null; exit 1; }
quick() { timeout --kill-after=5 120 wine "$@"; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
. "$repository/tests/release/authority.sh"
verify() { osslsigncode verify -CAfile ca.pem -in "$1" > said 2>&1; }

cp -r "$VORDANE_BUILD/installer/package" package
export VORDANE_SIGN_CERT="$work/signer.pem" VORDANE_SIGN_KEY="$work/signer.key"
remover="$drive/Set/QUILMAR32/30000/ADDINS/SETUP/remove.exe"
for option in --sign ''; do
  "$repository/installer/make.sh" package 9.9.9 amd64 "$1" "$drive/setup.exe" --quick $option >/dev/null
  quick 'C:\setup.exe' /S /CurrentUser /NoShortcuts '/LOG=C:\setup.log' '/D=C:\Set' || fail "it was not installed: $?"
  [ -s "$remover" ] || fail "there is no remover"
  if [ -n "$option" ]; then
    verify "$remover" || fail "the remover is not signed: $(cat said)"
    quick 'C:\Set\QUILMAR32\30000\ADDINS\SETUP\remove.exe' /S '_?=C:\Set\QUILMAR32\30000\ADDINS\SETUP' ||
      fail "the signed remover ends with $?"
  else
    ! verify "$remover" || fail "a remover is signed that was not to be"
  fi
done
echo "signed: everything passed"
