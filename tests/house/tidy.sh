#!/usr/bin/env bash
# Looks at the sources that a build has compiled, with the checks of .clang-tidy. What has passed is not looked at again
# until the source, a header of this house that it includes, its command line, the checks or the tool has changed; what a
# run that was broken off has passed counts too.
#
#   tests/house/tidy.sh BUILD [FILE ...]      all of src and programs that the build compiles, or these
#   tests/house/tidy.sh BUILD --count         looks at none, and says how many it would look at
set -euo pipefail
build=$(realpath "$1")
shift
cd "$(dirname "$0")/../.."
tool=clang-tidy-14
passed="$build/tidy"
mkdir -p "$passed"

# One source: what the processes below do. What it depends on was written down beforehand.
if [ "${1:-}" = --look ]; then
  record="$passed/${2//\//-}"
  if said=$("$tool" --quiet --warnings-as-errors='*' -p "$build" "$2" 2>/dev/null); then
    mv "$record.now" "$record"
    exit 0
  fi
  printf '%s\n' "${said:-$2: $tool can not read it}"
  exit 1
fi

command -v "$tool" >/dev/null || { echo "$tool is missing: tools/setup/packages.sh installs it" >&2; exit 2; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# "source TAB command", and "source TAB file" for each file of this house, or made by its build, that the source
# includes, itself among them.
here="$(realpath --relative-to="$PWD" "$build")/"
awk -v root="$PWD/" '
  /^  "command": / { command = $0 }
  /^  "file": / { gsub(/^  "file": "|",?$/, ""); sub(root, ""); print $0 "\t" command }
' "$build/compile_commands.json" | grep -P '^(src|programs)/' > "$work/commands"
{ cut -f 1 "$work/commands" | sed 's/.*/&\t&/'
ninja -C "$build" -t deps | awk -v root="$PWD/" -v here="$here" '
  /^[^ ]/ { source = ""; next }
  NF { sub(/^ +/, ""); if (!sub(root, "") && !sub(/^(\.\.\/)+/, "") && $0 !~ /^\//) $0 = here $0
       if (source == "") source = $0
       if ($0 !~ /^\//) print source "\t" $0 }
'; } | sort -u | grep -P '^(src|programs)/' > "$work/included"
cut -f 2 "$work/included" | sort -u | xargs -d '\n' sha256sum > "$work/sums"
{ "$tool" --version; cat .clang-tidy "$0"; } | sha256sum > "$work/checks"

# All that the answer about a source depends on, in a file for each.
awk -F '\t' -v passed="$passed/" -v checks="$(cat "$work/checks")" '
  FILENAME ~ /sums$/ { sums[substr($0, 67)] = substr($0, 1, 64); next }
  FILENAME ~ /commands$/ { record[$1] = checks "\n" $2 "\n"; next }
  { record[$1] = record[$1] sums[$2] " " $2 "\n" }
  END { for (source in record) { name = source; gsub("/", "-", name); printf "%s", record[source] > (passed name ".now")
                                 close(passed name ".now") } }
' "$work/sums" "$work/commands" "$work/included"

count=
if [ "${1:-}" = --count ]; then count=1; shift; fi
files=("$@")
[ $# -gt 0 ] || mapfile -t files < <(cut -f 1 "$work/commands" | sort -u)
changed=()
for file in "${files[@]}"; do
  record="$passed/${file//\//-}"
  cmp -s "$record" "$record.now" || changed+=("$file")
done
echo "${#changed[@]} of ${#files[@]} sources have changed since they passed"
[ -z "$count" ] || exit 0
[ ${#changed[@]} -eq 0 ] || printf '%s\0' "${changed[@]}" | nice -n 10 xargs -0 -n 1 -P "${VORDANE_TIDY_JOBS:-$(nproc)}" "$0" "$build" --look
