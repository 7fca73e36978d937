#!/usr/bin/env bash
# Signs Windows programs in their places: sign.sh FILE ...
#
#   VORDANE_SIGN_CERT       the certificate (PEM), with those between it and its authority behind it
#   VORDANE_SIGN_KEY        its key: a PEM file, or with VORDANE_SIGN_PKCS11 the key's URI ("pkcs11:...")
#   VORDANE_SIGN_PKCS11     the module (.so) of the token that holds the key
#   VORDANE_SIGN_PASSWORD   a file that holds the key's password
#   VORDANE_SIGN_TIMESTAMP  the address of a time stamp server (RFC 3161)
#
# Without certificate and key it says that the files stay unsigned, and ends with 3.
set -euo pipefail
. "$(dirname "$0")/setup/common.sh"

if [ -z "${VORDANE_SIGN_CERT:-}" ] || [ -z "${VORDANE_SIGN_KEY:-}" ]; then
  say "UNSIGNED: VORDANE_SIGN_CERT and VORDANE_SIGN_KEY name no certificate and key"
  exit 3
fi
options=(-certs "$VORDANE_SIGN_CERT" -key "$VORDANE_SIGN_KEY" -n Vordane -h sha256)
[ -z "${VORDANE_SIGN_PASSWORD:-}" ] || options+=(-readpass "$VORDANE_SIGN_PASSWORD")
[ -z "${VORDANE_SIGN_TIMESTAMP:-}" ] || options+=(-ts "$VORDANE_SIGN_TIMESTAMP")
if [ -n "${VORDANE_SIGN_PKCS11:-}" ]; then
  # The engine is found by its name; a file named here would be refused by Debian 12's osslsigncode.
  [ -n "$(find /usr/lib/*/engines-3 -name pkcs11.so -print -quit 2>/dev/null)" ] ||
    fail "a key in a token needs the package libengine-pkcs11-openssl"
  options+=(-pkcs11module "$VORDANE_SIGN_PKCS11")
fi
for file in "$@"; do
  osslsigncode sign "${options[@]}" -in "$file" -out "$file.signed" >"$file.signing" 2>&1 ||
    { cat "$file.signing" >&2; rm -f "$file.signed" "$file.signing"; fail "$file could not be signed"; }
  mv "$file.signed" "$file"
  rm -f "$file.signing"
done
