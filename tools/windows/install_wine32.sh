#!/bin/bash
# Installs the 32 bit Wine, which comes from the packages of another architecture, as root. Fails
# where that architecture's packages are not those of the same versions as this machine's.
set -euo pipefail
if [[ -x /usr/lib/wine/wine ]]; then exit 0; fi
export DEBIAN_FRONTEND=noninteractive
dpkg --add-architecture i386
apt-get -qq update
apt-get -qq install -y --no-install-recommends wine32:i386 < /dev/null
