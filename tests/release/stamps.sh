#!/usr/bin/env bash
# With VORDANE_SIGN_TIMESTAMP the signature carries the time of a time stamp server, and holds when the certificate has
# run out; a server that does not answer is a failure that leaves the file. With a server of the test's own.
set -euo pipefail
repository=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
server=
trap '[ -z "$server" ] || kill "$server"; rm -rf "$work"' EXIT
fail() { echo "FAILED: $*"; exit 1; }
cd "$work"
export no_proxy=127.0.0.1
unset http_proxy HTTP_PROXY

. "$repository/tests/release/authority.sh"

# The server's certificate, of an authority that signs no programs.
openssl req -x509 -newkey rsa:2048 -nodes -subj '/CN=Authority of stamps' -days 3650 -keyout time-ca.key -out time-ca.pem 2>/dev/null
openssl req -newkey rsa:2048 -nodes -subj '/CN=Time of a test' -keyout time.key -out time.csr 2>/dev/null
printf 'extendedKeyUsage=critical,timeStamping\nkeyUsage=digitalSignature\n' > time.extensions
openssl x509 -req -in time.csr -CA time-ca.pem -CAkey time-ca.key -CAcreateserial -days 3650 -extfile time.extensions -out time.pem 2>/dev/null
cat > stamps <<'SETTINGS'
[tsa]
default_tsa = stamper
[stamper]
serial = serial
signer_cert = time.pem
certs = time-ca.pem
signer_key = time.key
signer_digest = sha256
default_policy = 1.2.3.4.1
digests = sha256, sha384, sha512
ess_cert_id_alg = sha256
SETTINGS
echo 01 > serial

coproc SERVER { exec python3 "$repository/tests/release/stamper.py" 2> server.log; }
server=$SERVER_PID
read -r port <&"${SERVER[0]}" || fail "the server ended: $(cat server.log)"
address="http://127.0.0.1:$port/"

program=/usr/share/nsis/Stubs/zlib-amd64-unicode
export VORDANE_SIGN_CERT=signer.pem VORDANE_SIGN_KEY=signer.key
cp "$program" plain.exe
cp "$program" stamped.exe
"$repository/tools/sign.sh" plain.exe
VORDANE_SIGN_TIMESTAMP=$address "$repository/tools/sign.sh" stamped.exe || fail "it does not sign: $(cat server.log)"
verify() { osslsigncode verify -CAfile ca.pem -TSA-CAfile time-ca.pem "${@:2}" -in "$1" > said 2>&1; }
verify stamped.exe || fail "a stamped file is refused: $(cat said)"
# Five weeks on the signer's certificate has run out.
later=$(( $(date +%s) + 35 * 24 * 3600 ))
! verify plain.exe -time "$later" || fail "a certificate that has run out is accepted"
verify stamped.exe -time "$later" || fail "with a time stamp it is refused when the certificate has run out: $(cat said)"

kill "$server" && wait "$server" || true
server=
cp "$program" unsigned.exe
! VORDANE_SIGN_TIMESTAMP=$address "$repository/tools/sign.sh" unsigned.exe > said 2>&1 || fail "no answer counts as a time stamp"
cmp -s "$program" unsigned.exe || fail "a failed signing changes the file"
echo "stamps: everything passed"
