#!/bin/bash
# Asks vordane-tools, and each of its commands, what they know, and looks whether the guide describes exactly that.
# Argument: the program.
set -eu
tool=$1 root=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The commands that a help text names: the words behind the program's own in lines of usage.
commands_of() {
  awk '/^ *(usage: )?vordane-tools [a-z]/ { sub(/^ *(usage: )?/, ""); print $2 }' "$1" | sort -u
}

"$tool" --help > "$work/all"
named=$(commands_of "$work/all")
[ "$(wc -w <<< "$named")" -ge 8 ] || { echo "FAILED: the commands are not found in:"; cat "$work/all"; exit 1; }
helps=()
for command in $named; do
  help="$work/vordane-tools $command.txt"
  "$tool" "$command" --help > "$help"
  # Commands of a command have a help of their own; all of it belongs to the one.
  for further in $(awk -v command="$command" '/^ *(usage: )?vordane-tools [a-z]/ { sub(/^ *(usage: )?/, "")
      if ($2 == command && $3 ~ /^[a-z]+$/) print $3 }' "$help" | sort -u); do
    "$tool" "$command" "$further" --help >> "$help"
  done
  helps+=(--described-by "$help")
done
"$tool" guide check "$root/docs/guide" "$root/data/language" "${helps[@]}"

# The same check with an option more must fail, and say which.
echo '  --brand-new  an option that nobody described' >> "$work/vordane-tools list.txt"
if "$tool" guide check "$root/docs/guide" "$root/data/language" "${helps[@]}" 2> "$work/errors"; then
  echo "FAILED: an option that is not described passes"; exit 1
fi
for language in en ru ja; do
  grep -qxF "$language: the option --brand-new of vordane-tools list is not described" "$work/errors" ||
    { echo "FAILED: what is missing is not said for $language:"; cat "$work/errors"; exit 1; }
done
