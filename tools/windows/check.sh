#!/bin/bash
# check.sh x64|x86: builds the product for Windows and runs its tests under Wine. Says why, and
# succeeds, where compiler, libraries or Wine cannot be had; --required makes that a failure.
set -euo pipefail
cd "$(dirname "$0")/../.."
machine=${1:?x64 or x86}
required=${2:-}

skip() {
  echo "Windows $machine SKIPPED: $1"
  [[ $required == --required ]] && exit 1
  exit 0
}

tools/install_packages.sh --windows ||
  skip "the packages of mingw-w64 and Wine cannot be installed here"
tools/windows/build_dependencies.sh "$machine" ||
  skip "the third-party libraries cannot be built here"
cmake --preset "windows-$machine"
cmake --build --preset "windows-$machine"
if [[ $machine == x86 ]]; then
  tools/windows/install_wine32.sh ||
    skip "built, but not tested: a system of 32 bit for its Wine cannot be made here"
fi
ctest --preset "windows-$machine"
