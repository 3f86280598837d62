#!/bin/bash
# Installs the Debian 12 packages that building and testing need and that are missing.
# --dev adds the tools of `make check`, `make format` and `make tidy`, --fuzz clang with libFuzzer,
# --windows the compilers for Windows and Wine, --office LibreOffice Calc and its headers, for the host
# over it. Asks for no input and calls apt only when something is missing.
set -euo pipefail

packages=(
  make g++ cmake ninja-build ccache pkg-config python3 python3-venv
  libexpat1-dev zlib1g-dev libicu-dev libfmt-dev libcli11-dev nlohmann-json3-dev
  # Debian's CMake package of libzip refuses to load unless its three command line tools are there.
  libzip-dev zipcmp zipmerge ziptool
  libssl-dev libpcre2-dev libboost-dev
  libgtest-dev libgmock-dev libbenchmark-dev
)

for argument in "$@"; do
  case "$argument" in
    --dev) packages+=(clang clang-format clang-tidy) ;;
    --fuzz) packages+=(clang libclang-rt-14-dev) ;;
    --office) packages+=(libreoffice-calc libreoffice-dev) ;;
    --windows)
      packages+=(g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix mingw-w64-tools
        libz-mingw-w64-dev googletest dpkg-dev patch xz-utils wine wine64 debootstrap)
      ;;
    *) echo "usage: $0 [--dev] [--fuzz] [--windows] [--office]" >&2; exit 1 ;;
  esac
done

if ! command -v dpkg-query > /dev/null || ! command -v apt-get > /dev/null; then
  echo "install_packages: this is not a Debian system (no apt-get). Install by other means what" >&2
  echo "corresponds to: ${packages[*]}" >&2
  exit 1
fi

missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2> /dev/null || true)
  [[ "$status" == installed ]] || missing+=("$package")
done
if [[ ${#missing[@]} -eq 0 ]]; then
  exit 0
fi

as_root=()
if [[ $(id -u) -ne 0 ]]; then
  if ! command -v sudo > /dev/null; then
    echo "install_packages: run as root, or install sudo. Missing: ${missing[*]}" >&2
    exit 1
  fi
  as_root=(sudo)
fi

echo "Installing missing packages: ${missing[*]}"
apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq -o Dpkg::Use-Pty=0)
"${apt[@]}" update
"${apt[@]}" install -y --no-install-recommends "${missing[@]}" < /dev/null > /dev/null
