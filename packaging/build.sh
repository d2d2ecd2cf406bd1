#!/usr/bin/env bash
# build.sh [--compare]: builds the Debian packages into build/packages/ and checks them with lintian;
# with --compare builds them a second time, elsewhere, and fails unless they are equal byte for byte.
set -euo pipefail
cd "$(dirname "$0")/.."

# dpkg-buildpackage writes into the tree and beside it, so it works on a copy.
build_copy() { # FOLDER
  rm -rf "$1"
  mkdir -p "$1/quarry-config"
  tar -cf - --exclude='./build*' --exclude=./.git . | tar -xf - -C "$1/quarry-config"
  (cd "$1/quarry-config" && dpkg-buildpackage --build=binary --no-sign)
}

echo '== building the Debian packages'
build_copy build/package
rm -rf build/packages
mkdir -p build/packages/debug
mv build/package/*-dbgsym_*.deb build/packages/debug
mv build/package/*.deb build/packages
echo '== checking them with lintian'
lintian --fail-on error,warning build/packages/*.deb build/packages/debug/*.deb
echo '== the packages are in build/packages, their debug symbols in build/packages/debug:'
(cd build/packages && ls -1 ./*.deb)

[ "${1:-}" = --compare ] || exit 0
echo '== building them a second time, elsewhere'
build_copy build/package-again
for package in build/packages/*.deb build/packages/debug/*.deb; do
  cmp "$package" "build/package-again/${package##*/}"
done
rm -r build/package-again
echo '== both builds are equal byte for byte'
