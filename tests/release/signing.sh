#!/usr/bin/env bash
# A signed file is accepted, one changed byte of it is not; without a certificate it is said that nothing is signed. With a
# certificate authority of the test's own.
set -euo pipefail
repository=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAILED: $*"; exit 1; }
cd "$work"

. "$repository/tests/release/authority.sh"

program=/usr/share/nsis/Stubs/zlib-amd64-unicode  # a Windows program that is on every machine that makes releases
cp "$program" a.exe
cp "$program" b.exe
VORDANE_SIGN_CERT=signer.pem VORDANE_SIGN_KEY=signer.key "$repository/tools/sign.sh" a.exe b.exe
verify() { osslsigncode verify -CAfile ca.pem -in "$1" > said 2>&1; }
verify a.exe || fail "a signed file is refused: $(cat said)"
verify b.exe || fail "only the first file is signed"
! verify "$program" || fail "an unsigned file is accepted"
# Another authority does not know the signer.
openssl req -x509 -newkey rsa:2048 -nodes -subj '/CN=Another authority' -days 30 -keyout other.key -out other.pem 2>/dev/null
! osslsigncode verify -CAfile other.pem -in a.exe >/dev/null 2>&1 || fail "any authority will do"

middle=$(( $(stat -c %s "$program") / 2 ))
byte=$(od -An -tu1 -j $middle -N 1 a.exe | tr -d ' ')
printf "\\$(printf %03o $(( (byte + 1) % 256 )))" | dd of=a.exe bs=1 seek=$middle conv=notrunc status=none
! verify a.exe || fail "a changed file is accepted"

cp "$program" c.exe
code=0
env -u VORDANE_SIGN_CERT -u VORDANE_SIGN_KEY "$repository/tools/sign.sh" c.exe > said || code=$?
[ $code = 3 ] && grep -q UNSIGNED said || fail "it does not say that nothing is signed"
cmp -s "$program" c.exe || fail "it changes what it does not sign"
# A key that does not fit is no signature, and leaves the file.
code=0
VORDANE_SIGN_CERT=signer.pem VORDANE_SIGN_KEY=other.key "$repository/tools/sign.sh" c.exe > said 2>&1 || code=$?
[ $code != 0 ] && [ $code != 3 ] || fail "a key of another certificate is taken"
cmp -s "$program" c.exe || fail "a failed signing changes the file"
echo "signing: everything passed"
