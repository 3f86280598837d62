#!/bin/bash
# Builds the third-party libraries of the Windows build from Debian's source packages, static, into
# build/windows/third_party/x64 or x86, with links to what consists of headers only. Done once; a
# folder that is complete is left alone.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)

case "${1:-}" in
  x64) toolchain=x86_64 ;;
  x86) toolchain=i686 ;;
  *) echo "usage: $0 x64|x86" >&2; exit 1 ;;
esac
prefix=$root/build/windows/third_party/$1
sources=$root/build/windows/sources
work=$root/build/windows/work-$1
stamp=$prefix/complete

if [[ -e $stamp && ! $0 -nt $stamp ]]; then exit 0; fi
started=$SECONDS
"$(dirname "$0")/fetch_sources.sh" "$sources" expat libzip pcre2

rm -rf "$prefix" "$work"
mkdir -p "$prefix"/{include,lib} "$work"

# install_library <source folder> <option>...
install_library() {
  local source=$1 name
  shift
  name=$(basename "$source")
  if ! {
    cmake -G Ninja -S "$source" -B "$work/$name" -Wno-dev \
      -DCMAKE_TOOLCHAIN_FILE="$root/cmake/toolchains/mingw-$toolchain.cmake" \
      -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$prefix" -DBUILD_SHARED_LIBS=OFF "$@" &&
      cmake --build "$work/$name" && cmake --install "$work/$name"
  } > "$work/$name.log" 2>&1; then
    tail -n 30 "$work/$name.log" >&2
    echo "build_dependencies: $name does not build for $toolchain; all it said: $work/$name.log" >&2
    exit 1
  fi
}

# Debian's patches of expat count on what its configure script writes, which CMake's file says less
# exactly.
build_expat() {
  local library=$sources/expat/expat/lib object=$work/expat
  mkdir -p "$object"
  printf '#define %s\n' "BYTEORDER 1234" "XML_CONTEXT_BYTES 1024" "XML_DTD 1" "XML_GE 1" "XML_NS 1" \
    > "$object/expat_config.h"
  for file in xmlparse xmlrole xmltok; do
    "$toolchain-w64-mingw32-gcc-posix" -O2 -DNDEBUG -DXML_STATIC -I"$object" -I"$library" \
      -c "$library/$file.c" -o "$object/$file.o"
  done
  "$toolchain-w64-mingw32-ar" rcs "$prefix/lib/libexpat.a" "$object"/*.o
  cp "$library"/expat{,_external}.h "$prefix/include"
}

build_expat
install_library "$sources"/libzip -DBUILD_TOOLS=OFF -DBUILD_REGRESS=OFF -DBUILD_EXAMPLES=OFF \
  -DBUILD_DOC=OFF -DENABLE_COMMONCRYPTO=OFF -DENABLE_GNUTLS=OFF -DENABLE_MBEDTLS=OFF \
  -DENABLE_OPENSSL=OFF -DENABLE_WINDOWS_CRYPTO=OFF -DENABLE_BZIP2=OFF -DENABLE_LZMA=OFF
install_library "$sources"/pcre2 -DPCRE2_BUILD_PCRE2_8=OFF -DPCRE2_BUILD_PCRE2_16=ON \
  -DPCRE2_BUILD_PCRE2GREP=OFF -DPCRE2_BUILD_TESTS=OFF -DPCRE2_SHOW_REPORT=OFF

# Only these of /usr/include, which holds headers of this machine's own system.
for library in fmt CLI nlohmann boost; do
  ln -s "/usr/include/$library" "$prefix/include/$library"
done
touch "$stamp"
echo "Third-party libraries for $1 built in $((SECONDS - started)) s: $prefix"
