#!/usr/bin/env bash
# Fails when a Windows header or a _WIN32 test stands outside the Windows folder and the programs' Windows
# halves: the rules of the system must build and be tested everywhere.
set -u
cd "$1" || exit 2
hits=$(grep -rnE '#[[:space:]]*include[[:space:]]*<(windows|winuser|windowsx|commctrl|ole2|objbase|oleauto|oaidl|objidl|unknwn|shlobj|winreg|uxtheme)\.h>|_WIN32\b|_WIN64\b|__MINGW' \
  src tests bench programs --include='*.h' --include='*.cpp' |
  grep -vE '^src/platform/windows/|^tests/windows/|^programs/[^:]*/windows/|^bench/windows/')
[ -z "$hits" ] && exit 0
printf 'Windows code outside the Windows folders:\n%s\n' "$hits"
exit 1
