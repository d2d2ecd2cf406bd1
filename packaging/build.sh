#!/usr/bin/env bash
# build.sh [--compare]: builds the Debian packages into build/packages/, their debug symbols into
# debug/ there, the source package and the record of the build into source/, and checks them with
# lintian; with --compare builds them a second time, elsewhere, and fails unless they are equal byte
# for byte.
set -euo pipefail
cd "$(dirname "$0")/.."
packages=$PWD/build/packages

# The files of the tree, with new ones, without what was built. An unpacked source package has no git.
list_files() {
  if [ -e .git ]; then
    git ls-files --cached --others --exclude-standard | while read -r file; do
      [ ! -e "$file" ] || printf '%s\n' "$file"
    done
  else
    find . -path './build*' -prune -o ! -type d -print
  fi
}

# dpkg-buildpackage writes into the tree and beside it, so it works on a copy.
build_copy() { # FOLDER
  rm -rf "$1"
  mkdir -p "$1/quarry-config"
  list_files | tar -cf - -T - | tar -xf - -C "$1/quarry-config"
  (cd "$1/quarry-config" && dpkg-buildpackage --build=full --no-sign)
}

packaging/agree.sh
echo '== building the Debian packages'
build_copy build/package
echo '== checking them with lintian'
lintian --fail-on error,warning build/package/*.changes
rm -rf "$packages"
mkdir -p "$packages/debug" "$packages/source"
mv build/package/*-dbgsym_*.deb "$packages/debug"
mv build/package/*.dsc build/package/*.tar.* build/package/*.buildinfo "$packages/source"
mv build/package/*.deb "$packages"
sums=$(cd "$packages" && find . -type f -printf '%P\n' | LC_ALL=C sort | xargs sha256sum)
printf '%s\n' "$sums" >"$packages/SHA256SUMS"
echo '== the packages are in build/packages:'
cut -d' ' -f3 "$packages/SHA256SUMS"

[ "${1:-}" = --compare ] || exit 0
echo '== building them a second time, elsewhere'
build_copy build/package-again
for package in "$packages"/*.deb "$packages"/debug/*.deb "$packages"/source/*.dsc "$packages"/source/*.tar.*; do
  cmp "$package" "build/package-again/${package##*/}"
done
rm -r build/package-again
echo '== both builds are equal byte for byte'
