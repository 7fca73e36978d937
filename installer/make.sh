#!/usr/bin/env bash
# Makes an installer of a package: make.sh PACKAGE VERSION amd64|x86 ICON OUT [--quick] [--sign]. --quick packs less
# tightly; --sign signs the remover that the installer holds (tools/sign.sh), which nobody can sign later.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)

package=$(realpath "$1") version=$2 cpu=$3 icon=$(realpath "$4") out=$(realpath -m "$5")
shift 5
options=()
for option in "$@"; do
  case "$option" in
    --quick) options+=(-DQUICK) ;;
    --sign) options+=("-DSIGN=$(realpath "$here/../tools/sign.sh")") ;;
    *) echo "make.sh does not know $option" >&2; exit 2 ;;
  esac
done
[ ! -d "$package/x64" ] || [ ! -d "$package/x86" ] || options+=(-DBOTH_WORDS)
mkdir -p "$(dirname "$out")"
# The same files in the same order with the same times, so that the same package gives the same bytes.
find "$package" -exec touch -h -d "@${SOURCE_DATE_EPOCH:-1767225600}" {} +
cd "$here"
makensis -V2 -WX "${options[@]}" "-DVERSION=$version" "-DCPU=$cpu" "-DPACKAGE=$package" "-DICON=$icon" "-DOUT=$out" vordane.nsi
