#!/bin/bash
# Makes the 32 bit Wine as root: Debian of 32 bit in a folder of the build tree (about 1 GB), for its
# packages beside those of this machine demand the very same versions of everything they share.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
system=$root/build/windows/i386

if [[ -e $system/complete ]]; then exit 0; fi
mirror=$(grep -hoE '^(URIs: *|deb (\[[^]]*\] )?)[a-z]+://[^ ]+' /etc/apt/sources.list \
  /etc/apt/sources.list.d/* 2> /dev/null | grep -oE '[a-z]+://.*' | head -n 1)
rm -rf "$system"
mkdir -p "$system"
debootstrap --arch=i386 --variant=minbase --include=wine,wine32 bookworm "$system" "$mirror" \
  > "$system.log" 2>&1 || { tail -n 5 "$system.log" >&2; exit 1; }
touch "$system/complete"
