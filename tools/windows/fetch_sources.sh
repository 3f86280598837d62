#!/bin/bash
# fetch_sources.sh FOLDER PACKAGE...: unpacks Debian's source packages, patches applied, into
# FOLDER/PACKAGE. Source packages are looked for where this machine's binary packages come from; the
# machine's own settings stay as they are, and nothing asks for root.
set -euo pipefail
folder=$1
shift
missing=()
for package in "$@"; do
  [[ -d $folder/$package ]] || missing+=("$package")
done
if [[ ${#missing[@]} -eq 0 ]]; then exit 0; fi

apt=$folder/apt
mkdir -p "$apt"/{sources,lists/partial,archives/partial}
for list in /etc/apt/sources.list /etc/apt/sources.list.d/debian.{sources,list}; do
  if [[ -e $list ]]; then
    sed -e 's/^Types:.*/Types: deb-src/' -e 's/^deb /deb-src /' "$list" \
      > "$apt/sources/$(basename "${list/sources.list/debian.list}")"
  fi
done
options=(-qq -o "Dir::Etc::sourcelist=/dev/null" -o "Dir::Etc::sourceparts=$apt/sources"
  -o "Dir::State::lists=$apt/lists" -o "Dir::Cache=$apt" -o "APT::Sandbox::User=")

cd "$folder"
echo "Fetching source packages: ${missing[*]}"
apt-get "${options[@]}" update
# Mirrors that carry no sources of security updates are met with the release itself.
release=$(. /etc/os-release && echo "$VERSION_CODENAME")
apt-get "${options[@]}" source --download-only "${missing[@]}" 2> newest.log || {
  echo "The newest sources cannot be had here (newest.log in $folder); taking those of $release"
  apt-get "${options[@]}" source -t "$release" --download-only "${missing[@]}"
}
for package in "${missing[@]}"; do
  rm -rf "$package.part"
  dpkg-source --extract "$package"_*.dsc "$package.part" > "$package.log" 2>&1 ||
    { cat "$package.log" >&2; exit 1; }
  mv "$package.part" "$package"
done
