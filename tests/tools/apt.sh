#!/usr/bin/env bash
# What a root that set-up makes is told about this machine's mirrors: what apt itself goes by, whatever files say
# it, and nothing else of apt's settings.
set -u
root=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cat > "$work/apt-config" <<'SETTINGS'
#!/bin/sh
cat <<'DUMP'
APT::Architecture "amd64";
Dir::Etc::parts "apt.conf.d";
Acquire "";
Acquire::http "";
Acquire::http::Proxy "http://gateway:3128/";
Acquire::HTTPS::Proxy::mirror.example "DIRECT";
Acquire::Retries "3";
Acquire::Check-Valid-Until "false";
Acquire::ForceIPv4 "true";
Acquire::cdrom::mount "/media/cdrom/";
DUMP
SETTINGS
chmod +x "$work/apt-config"
export PATH="$work:$PATH" XDG_CACHE_HOME="$work/cache"

(set -euo pipefail; . "$root/tools/setup/common.sh"; apt_settings) > "$work/settings" 2> "$work/errors" \
  || { echo 'FAILED: apt_settings ends with an error'; exit 1; }
cat > "$work/expected" <<'EXPECTED'
Acquire::http "";
Acquire::http::Proxy "http://gateway:3128/";
Acquire::HTTPS::Proxy::mirror.example "DIRECT";
Acquire::Retries "3";
Acquire::Check-Valid-Until "false";
Acquire::ForceIPv4 "true";
EXPECTED
diff "$work/expected" "$work/settings" || { echo 'FAILED: other settings'; cat "$work/errors"; exit 1; }

# A machine that sets nothing of the kind is no failure.
printf '#!/bin/sh\necho %s\n' "'APT::Architecture \"amd64\";'" > "$work/apt-config"
(set -euo pipefail; . "$root/tools/setup/common.sh"; apt_settings) > "$work/settings" 2> "$work/errors" \
  || { echo 'FAILED: nothing set is a failure'; exit 1; }
if [ -s "$work/settings" ] || [ -s "$work/errors" ]; then cat "$work/settings" "$work/errors"; exit 1; fi

# The scripts ask apt, and read none of its files by their names.
grep -q 'apt_settings > "$out/etc/apt/apt.conf.d/' "$root/tools/setup/wine-root.sh" \
  || { echo 'FAILED: the root is told nothing of the settings'; exit 1; }
if grep -nE '(^|[^$a-z"])/etc/apt/apt\.conf' "$root"/tools/setup/*.sh; then echo 'FAILED: a file of this machine by its name'; exit 1; fi
