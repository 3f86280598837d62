#!/bin/bash
# wine.sh PROGRAM [ARGUMENT]...: runs a program for Windows under Wine, without a display, in a prefix
# of the build tree (QTO_WINE_PREFIX names another), which is made at the first call. Its server
# stays for a minute after the last program, so that the next one starts at once.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
export WINEPREFIX=${QTO_WINE_PREFIX:-$root/build/windows/wine}
# Arguments and file names of this system are UTF-8.
export LC_ALL=C.UTF-8
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree=;mshtml="

make_prefix() {
  [[ -e $WINEPREFIX/complete ]] && return
  mkdir -p "$WINEPREFIX"
  wineserver -p60 < /dev/null > /dev/null 2>&1
  wine wineboot -i > "$WINEPREFIX/made.log" 2>&1
  wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f >> "$WINEPREFIX/made.log" 2>&1
  touch "$WINEPREFIX/complete"
}

if [[ ! -e $WINEPREFIX/complete ]]; then
  mkdir -p "$(dirname "$WINEPREFIX")"
  exec 9> "$WINEPREFIX.lock"
  flock 9
  make_prefix 9>&-
  exec 9>&-
fi
# Refused when it runs already. It outlives this script, so it must not hold a test's pipe open.
wineserver -p60 < /dev/null > /dev/null 2>&1 || true
# Nor must the system's services, which the first program starts: what is written goes through files.
said=$(mktemp -d)
trap 'rm -rf "$said"' EXIT
status=0
wine "$@" > "$said/out" 2> "$said/err" || status=$?
cat "$said/out"
cat "$said/err" >&2
exit "$status"
