#!/usr/bin/env bash
# Makes N: a drive letter that stands for a share, as far as Wine has such, and runs NetworkDrive of the program $1.
# Which letters do is read when the Wine server starts.
set -euo pipefail

share="$(dirname "$WINEPREFIX")/share"
mkdir -p "$share"
ln -s "$share" "$WINEPREFIX/dosdevices/n:"
wine reg add 'HKLM\Software\Wine\Drives' /v 'n:' /t REG_SZ /d network /f >/dev/null
wineserver -k
wineserver -w
wineserver -p
VORDANE_NETWORK_DRIVE=N: wine "$1" --gtest_filter='NetworkDrive.*'
