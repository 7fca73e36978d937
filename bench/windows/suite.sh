# Sourced by the measurements: an installed suite in this Wine prefix, with the programs of this build registered.
# Expects WINEPREFIX and VORDANE_BUILD; sets `drive` and `addins`.

repository=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
programs="$VORDANE_BUILD/programs"
drive="$WINEPREFIX/drive_c"
addins="$drive/QUILMAR32/30000/ADDINS"

fail() { printf 'FAILED: %s\n' "$*"; exit 1; }
quick() { timeout --kill-after=5 90 "$@"; }

install_suite() {
  mkdir -p "$addins" "$drive/SIM"
  cp "$programs/vordane/VORDANE.EXE" "$programs/devhost/devhost.exe" "$addins/"
  cp "$programs/zulsim/Zulsim.exe" "$drive/SIM/"
  cp -r "$repository/data/scenarios" "$drive/SIM/"
  quick wine "$programs/tools/vordane-tools.exe" suite 'C:\QUILMAR32\30000' --language en --source "Z:${repository//\//\\}\\data" >/dev/null 2>&1
  [ -f "$addins/DATABASE/FAULT.MDB" ] || fail "the suite's files were not made"
  local key='HKCU\Software\VB and VBA Program Settings\QUILMAR32\30000' value
  for value in 'InstallPath C:\QUILMAR32\30000\' 'QUILMAR32 30000' 'ZUL 30001'; do
    quick wine reg add "$key" /v "${value%% *}" /t REG_SZ /d "${value#* }" /f >/dev/null
  done
  quick wine 'C:\QUILMAR32\30000\ADDINS\VORDANE.EXE' /RegServer >/dev/null || fail "VORDANE.EXE was not registered"
  quick wine 'C:\SIM\Zulsim.exe' /RegServer >/dev/null || fail "Zulsim.exe was not registered"
}
