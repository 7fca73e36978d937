#!/usr/bin/env bash
# What is made once for a machine is what it is said to be, each time it is taken: a SQLite that was changed in the
# cache is not used, no archive but the pinned one is compiled, the newer Wine's root is made only from signed
# packages, and nobody can foresee the folder that any of it is made in. The package tools are stand-ins: nothing is
# fetched.
set -euo pipefail
setup=$(cd "$(dirname "$0")/../../tools/setup" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAILED: $*"; exit 1; }

# An apt-get that notes the folder it works in and brings an archive of somebody else's.
mkdir "$work/bin"
cat > "$work/bin/apt-get" <<'END'
#!/bin/sh
case " $* " in *" source "*) ;; *) exit 0 ;; esac
pwd >> "$NOTES/folders"; stat -c %a . >> "$NOTES/rights"
mkdir sqlite3-1; echo other > sqlite3_1.orig.tar.xz
echo 'touch "$NOTES/configured"; exit 1' > sqlite3-1/configure; chmod +x sqlite3-1/configure
END
printf '#!/bin/sh\necho "$@" >> "$NOTES/debootstrap"; exit 1\n' > "$work/bin/debootstrap"
chmod +x "$work/bin/"*
export NOTES="$work" XDG_CACHE_HOME="$work/cache" PATH="$work/bin:$PATH"

folder="$work/cache/vordane/sqlite-$(sed -n 's/^upstream_sha256=\(.\{12\}\).*/\1/p' "$setup/sqlite.sh")"
make_whole() {
  local file
  rm -rf "$folder"; mkdir -p "$folder"
  for file in sqlite3.c sqlite3.h sqlite3ext.h; do echo "$file" > "$folder/$file"; done
  (cd "$folder" && sha256sum sqlite3.c sqlite3.h sqlite3ext.h > SHA256SUMS)
}
refused() { ! "$setup/sqlite.sh" > "$work/said" 2>&1 && ! grep -qxF "$folder" "$work/said"; }

make_whole
[ "$("$setup/sqlite.sh")" = "$folder" ] || fail "a whole SQLite is not taken"
[ ! -e "$work/folders" ] || fail "a whole SQLite is made again"
for file in sqlite3.c sqlite3.h sqlite3ext.h; do
  make_whole; echo "changed" >> "$folder/$file"
  refused || fail "a changed $file is taken"
done
make_whole; rm "$folder/SHA256SUMS"
refused || fail "a SQLite that nobody answers for is taken"
grep -q 'not the pinned one' "$work/said" || fail "an archive of somebody else's is not called so"
[ ! -e "$work/configured" ] || fail "an archive of somebody else's is run"

while read -r made; do
  [ ! -e "$made" ] || fail "the folder that SQLite is made in is left behind"
done < "$work/folders"
[ "$(sort "$work/folders" | uniq -d | wc -l)" = 0 ] || fail "two runs work in the same folder"
[ "$(sort -u "$work/rights")" = 700 ] || fail "others may look into the folder"

! "$setup/wine-root.sh" > "$work/said" 2>&1 || fail "a root that could not be made is taken"
grep -q -- '--force-check-gpg' "$work/debootstrap" || fail "the root's packages need no signature"
keys=$(sed -n 's/.*--keyring=\([^ ]*\).*/\1/p' "$work/debootstrap")
[ -s "$keys" ] || fail "no keys to check the root's packages with"
echo "made once: everything passed"
