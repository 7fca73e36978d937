#!/usr/bin/env bash
# Makes N: a drive letter that stands for a share, as far as Wine has such, and runs the program $1 with the suite on it.
# Which letters do is read when the Wine server starts.
set -euo pipefail

share="$(dirname "$WINEPREFIX")/share"
mkdir -p "$share"
ln -s "$share" "$WINEPREFIX/dosdevices/n:"
wine reg add 'HKLM\Software\Wine\Drives' /v 'n:' /t REG_SZ /d network /f >/dev/null
wineserver -k
wineserver -w
wineserver -p
VORDANE_SUITE_ROOT='N:\QUILMAR32\30000' wine "$1" --gtest_filter='Drive.OfANetwork*'
