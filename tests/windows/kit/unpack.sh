#!/usr/bin/env bash
# Makes the kit of one build and unpacks it, as somebody does who has received it.
set -euo pipefail
repository=$(cd "$(dirname "$0")/../../.." && pwd)
"$repository/tools/windows-kit" --no-build --words "$VORDANE_ARCH" "$VORDANE_BUILD/kit.zip"
rm -rf "$VORDANE_BUILD/kit"
mkdir "$VORDANE_BUILD/kit"
unzip -q "$VORDANE_BUILD/kit.zip" -d "$VORDANE_BUILD/kit"
