#!/bin/bash
# Makes the 32 bit Wine as root: Debian of 32 bit in a folder of the build tree (about 1 GB), for its
# packages beside those of this machine demand the very same versions of everything they share.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
system=$root/build/windows/i386

if [[ -e $system/complete ]]; then exit 0; fi
# Either of the places that hold lists may be missing.
mirror=$({ cat /etc/apt/sources.list /etc/apt/sources.list.d/* 2> /dev/null || true; } |
  sed -nE 's/^(URIs: *|deb (\[[^]]*\] )?)([a-z]+:[^ ]+).*/\3/p' | grep -v security | head -n 1 || true)
if [[ -z $mirror ]]; then
  echo "install_wine32: apt's lists name no place to take packages from" >&2
  exit 1
fi
rm -rf "$system"
mkdir -p "$system"
debootstrap --arch=i386 --variant=minbase --include=wine,wine32 bookworm "$system" "$mirror" \
  > "$system.log" 2>&1 || { tail -n 5 "$system.log" >&2; exit 1; }
touch "$system/complete"
