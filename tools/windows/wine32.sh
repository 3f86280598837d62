#!/bin/bash
# wine32.sh PROGRAM [ARGUMENT]...: as wine.sh, for programs of 32 bit, which run in the system that
# install_wine32.sh makes. The project is seen there under the path it has here.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
system=$root/build/windows/i386

enter() {
  mkdir -p "$system$root"
  mount --bind "$root" "$system$root"
  mount -t proc proc "$system/proc"
  mount --bind /dev "$system/dev"
  exec chroot "$system" env -C "$PWD" HOME=/root QTO_WINE_PREFIX="$root/build/windows/wine32" \
    "$root/tools/windows/wine.sh" "$@"
}

if [[ ${1:-} == --inside ]]; then
  shift
  enter "$@"
fi
# The mounts end with the program.
exec unshare --mount "$0" --inside "$@"
