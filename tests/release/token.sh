#!/usr/bin/env bash
# The key may live in a token: tools/sign.sh takes it by its URI through the token's module. A token in software, of the
# test's own, stands for the card.
set -euo pipefail
repository=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAILED: $*"; exit 1; }
cd "$work"

. "$repository/tests/release/authority.sh"

mkdir tokens
printf 'directories.tokendir = %s\nlog.level = ERROR\n' "$work/tokens" > softhsm.conf
export SOFTHSM2_CONF="$work/softhsm.conf"
{
  softhsm2-util --init-token --free --label card --so-pin 87654321 --pin 1234
  softhsm2-util --import signer.key --token card --label signer --id A1 --pin 1234
} > made 2>&1 || fail "the token could not be made: $(cat made)"
module=$(find /usr/lib -name libsofthsm2.so -print -quit)
echo 1234 > pin
rm signer.key  # it is in the token alone

program=/usr/share/nsis/Stubs/zlib-amd64-unicode
cp "$program" a.exe
export VORDANE_SIGN_CERT=signer.pem VORDANE_SIGN_PKCS11=$module
verify() { osslsigncode verify -CAfile ca.pem -in "$1" > said 2>&1; }
VORDANE_SIGN_KEY='pkcs11:token=card;object=signer;type=private' VORDANE_SIGN_PASSWORD=pin "$repository/tools/sign.sh" a.exe ||
  fail "the token's key does not sign"
verify a.exe || fail "what the token's key has signed is refused: $(cat said)"

refused() {  # WHAT KEY PASSWORD
  cp "$program" b.exe
  ! VORDANE_SIGN_KEY=$2 VORDANE_SIGN_PASSWORD=$3 "$repository/tools/sign.sh" b.exe > said 2>&1 < /dev/null || fail "it signs with $1"
  cmp -s "$program" b.exe || fail "with $1 it changes the file"
}
echo 4321 > wrong
refused 'another PIN' 'pkcs11:token=card;object=signer;type=private' wrong
refused 'a key that is not there' 'pkcs11:token=card;object=another;type=private' pin
echo "token: everything passed"
