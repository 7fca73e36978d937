#!/usr/bin/env bash
# Makes a Wine prefix: wine-prefix.sh DIR [alone]. Does nothing when DIR is one already. The fonts that a current
# Windows has are replaced by free ones that are installed here, so that windows show real text in every
# language. With `alone` it is for a screen without a window manager: windows stand by themselves there, where Wine
# would else wait two seconds for the manager each time that a window goes.
set -euo pipefail

prefix="$1"
alone="${2:-}"
[ -f "$prefix/.vordane-ready" ] && exit 0

export WINEPREFIX="$prefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe="
unset DISPLAY
mkdir -p "$(dirname "$prefix")"
# A new prefix hung a few times without a cause found: a second try has always worked.
for _ in 1 2 3; do
  if timeout 120 wineboot --init >/dev/null 2>&1; then break; fi
  timeout 20 wineserver -k || true
  rm -rf "$prefix"
done

replace() { timeout 60 wine reg add 'HKCU\Software\Wine\Fonts\Replacements' /v "$1" /d "$2" /f >/dev/null 2>&1; }
for face in 'Segoe UI' 'Segoe UI Semibold' 'Tahoma' 'MS Shell Dlg' 'MS Shell Dlg 2' 'Microsoft Sans Serif'; do
  replace "$face" 'DejaVu Sans'
done
for face in 'Consolas' 'Courier New' 'Cascadia Mono'; do replace "$face" 'DejaVu Sans Mono'; done
for face in 'Yu Gothic UI' 'Meiryo' 'Meiryo UI' 'MS UI Gothic' 'MS PGothic'; do replace "$face" 'VL PGothic'; done
for face in 'MS Gothic' 'Yu Gothic'; do replace "$face" 'VL Gothic'; done
# Message boxes stay in the system's own face, whatever their language: it borrows the letters it lacks.
timeout 60 wine reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\FontLink\SystemLink' /v 'DejaVu Sans' \
  /t REG_MULTI_SZ /d 'VL-PGothic-Regular.ttf,VL PGothic' /f >/dev/null 2>&1
if [ "$alone" = alone ]; then
  timeout 60 wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /t REG_SZ /d N /f >/dev/null 2>&1
fi
timeout 60 wineserver -w || timeout 20 wineserver -k
[ -f "$prefix/system.reg" ] || { echo "the Wine prefix $prefix could not be made" >&2; exit 1; }
touch "$prefix/.vordane-ready"
