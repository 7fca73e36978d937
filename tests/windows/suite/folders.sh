#!/usr/bin/env bash
# A suite in folders whose names have letters without a capital in file systems, letters of other scripts, and
# blanks: started there by hand, with and without the setting that names the folder, the program finds all its
# files, and so says the doctor.
set -euo pipefail
export LC_ALL=C.UTF-8  # or the names never reach Wine
. "$(dirname "$0")/suite.sh"

install_suite
settings='HKCU\Software\VB and VBA Program Settings\QUILMAR32\31000'

# A copy of the suite as version 31000 in folder $1.
move_suite() {
  there="$drive/$1/QUILMAR32/31000"
  mkdir -p "$drive/$1/QUILMAR32"
  cp -r "$drive/QUILMAR32/30000" "$there"
  quick wine reg delete "$settings" /f >/dev/null 2>&1 || true
}

# Starts the copy in folder $1 by hand and closes it again. Without its texts or its faults it shows no window.
start_there() {
  ( cd "$drive/SIM" && exec wine "C:\\$1\\QUILMAR32\\31000\\ADDINS\\VORDANE.EXE" PBX-1 ) >/dev/null 2>&1 &
  addin=$!
  click --wait 60 cmdRequest >/dev/null || fail "no window in $1 ($2)"
  echo "ok: a start in $1 ($2)"
  click --press cmdClose >/dev/null
  wait "$addin" || true
  expect_gone
}

diagnosis() {
  win "$programs/tools/vordane-tools.exe" doctor "C:\\$1\\QUILMAR32\\31000" > "$WINEPREFIX/diagnosis" || true
  cat "$WINEPREFIX/diagnosis"
}

for folder in 'Yazılım µ' 'Программы связи' 'საქართველო' '障害 表示' 'Πίνακας'; do
  move_suite "$folder"
  start_there "$folder" 'by its own place'
  quick wine reg add "$settings" /v InstallPath /t REG_SZ /d "C:\\$folder\\QUILMAR32\\31000\\" /f >/dev/null
  start_there "$folder" 'by the setting'
  ! diagnosis "$folder" | grep -q 'stops the program\|looks for' || fail "$(cat "$WINEPREFIX/diagnosis")"
  rm -r "${drive:?}/$folder"
done
