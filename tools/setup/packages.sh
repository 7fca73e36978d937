#!/usr/bin/env bash
# Installs the Debian packages that building and testing need, and nothing when they are all there.
set -euo pipefail
. "$(dirname "$0")/common.sh"

packages=(
  # building
  g++ cmake ninja-build make ccache gawk unicode-data
  g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix mingw-w64-tools libwine-dev faketime
  # SQLite from Debian's sources
  dpkg-dev tcl ca-certificates
  # importing Access files
  mdbtools mdbtools-dev libglib2.0-dev libseccomp-dev pkg-config
  # testing; clang builds what is sanitized, and looks at the form of every file and for mistakes
  googletest libgtest-dev libgmock-dev clang libclang-rt-14-dev clang-format-14 clang-tidy-14
  # a server for the tests of the shared store, made and removed by each of them, and the driver for it with its manager
  postgresql-15 odbc-postgresql libodbc2
  # what other systems are given is held against its schema by somebody else's validator
  python3 python3-jsonschema curl
  # libraries that are headers alone
  libcli11-dev nlohmann-json3-dev
  # the kit for Windows workstations
  zip unzip
  # the installer, and signing it, also with a key in a token
  nsis osslsigncode openssl softhsm2 libengine-pkcs11-openssl
  # the guide
  pandoc
  # running Windows programs without a screen, and looking at them
  wine wine64 xvfb xauth xdotool openbox imagemagick fonts-dejavu-core fonts-noto-core fonts-vlgothic
  # the root for the newer Wine
  debootstrap
)

missing=()
for package in "${packages[@]}"; do
  [ "$(dpkg-query -W -f '${Status}' "$package" 2>/dev/null)" = "install ok installed" ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

[ "$(id -u)" = 0 ] || fail "these packages are missing, run as root or install them: ${missing[*]}"
say "installing ${missing[*]}"
# The tests make servers of their own: no other one is to be made and started by the package.
if [ ! -e /etc/postgresql-common ]; then
  mkdir /etc/postgresql-common
  echo 'create_main_cluster = false' >/etc/postgresql-common/createcluster.conf
fi
export DEBIAN_FRONTEND=noninteractive
{
  apt-get update
  apt-get install -y --no-install-recommends -o Dpkg::Options::=--force-confold "${missing[@]}"
} >"$cache/packages.log" 2>&1 || { tail -n 20 "$cache/packages.log" >&2; fail "packages could not be installed"; }
