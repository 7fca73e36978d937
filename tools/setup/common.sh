# Shared by the set-up scripts: where things that are made once are kept, and how we speak.
# Sourced, never run.

cache="${XDG_CACHE_HOME:-$HOME/.cache}/vordane"
mkdir -p "$cache"

say() { printf 'vordane: %s\n' "$*"; }
fail() { printf 'vordane: %s\n' "$*" >&2; exit 1; }

# The machine's own Debian source entries, whichever of the two notations it uses: prints the first
# mirror's URI for the main archive.
debian_mirror() {
  awk '
    /^URIs:/ && !found && $2 !~ /security/ { uri=$2 }
    /^Suites:/ && uri && / bookworm( |$)/ { print uri; found=1; exit }
  ' /etc/apt/sources.list.d/*.sources 2>/dev/null | head -n 1
}

# What this machine's apt is told about reaching its mirrors, whatever files say it: for a root's own apt.
apt_settings() { apt-config dump | sed -nE '/^Acquire::(http|https|Retries|Check-|ForceIPv)/Ip'; }

# Runs a command under a lock of its own, so that two runs that start at once make a thing once.
locked() {
  local name="$1"; shift
  exec 9>"$cache/$name.lock"
  flock 9
  "$@"
  exec 9>&-
}
