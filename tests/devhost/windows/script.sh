#!/usr/bin/env bash
# A script of the development host against a server in another process: what it prints and answers.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
work="$WINEPREFIX/drive_c/SIM"
mkdir -p "$work"
cp "$1" "$work/Zulsim.exe"
cp "$2" "$work/devhost.exe"
cp "$here/script.txt" "$work/"
printf 'exchange PBX-1\n' > "$work/Zulsim.zul"
wine "$work/Zulsim.exe" /RegServer
code=0
wine "$work/devhost.exe" 'C:\SIM\script.txt' > "$work/out.txt" || code=$?
echo "code $code" >> "$work/out.txt"
diff -u "$here/script.expected" "$work/out.txt"
