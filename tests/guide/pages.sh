#!/bin/bash
# The pages that are made of the guide: the same bytes each time, nothing from elsewhere, and every page for a topic
# leads to a place that is there. Argument: vordane-tools.
set -eu
tool=$1 root=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0
complain() { echo "FAILED: $*"; failed=1; }

"$root/tools/guide" --tools "$tool" "$work/one" > "$work/said"
TZ=Asia/Tokyo LC_ALL=C "$root/tools/guide" --tools "$tool" "$work/of another name" > "$work/said"
diff -r "$work/one" "$work/of another name" || complain "a second time gives other bytes"

for language in en ru ja; do
  pages="$work/one/$language"
  [ "$(ls "$pages" | wc -l)" -gt 10 ] || complain "$language: only these pages: $(ls "$pages")"
  grep -q "<html lang=\"$language\">" "$pages/guide.html" || complain "$language: the guide does not name its language"
  # Pictures and styles are inside; links stay inside.
  ! grep -oE '(src|href)="[^"#d][^"]{0,40}' "$pages/guide.html" || complain "$language: the guide needs what is elsewhere"
  for page in "$pages"/*.html; do
    [ "$page" != "$pages/guide.html" ] || continue
    topic=$(basename "$page" .html)
    grep -qF "content=\"0; url=guide.html#$topic\"" "$page" || complain "$page does not lead to its topic"
    grep -qE "id=\"$topic\"" "$pages/guide.html" || complain "$language: the topic $topic is not in the guide"
  done
  # Every text was found: no mark is left.
  ! grep -oE '\{\{[^}]*\}\}' "$pages/guide.html" || complain "$language: marks are left"
done
exit $failed
