#!/usr/bin/env bash
# rpm.sh: builds the RPM packages into build/rpms/ from the source package that build.sh has made, and
# fails unless they hold the same programs, libraries, headers and pages as the Debian packages, and
# the program in them runs. Needs rpm, cpio and what the Debian packages are built with.
set -euo pipefail
cd "$(dirname "$0")/.."
top=$PWD/build/rpm
sources=(build/packages/source/quarry-config_*.tar.xz)
[ -e "${sources[0]}" ] || {
  echo 'rpm: there is no source package; make it first: ./dev package' >&2
  exit 1
}

echo '== building the RPM packages'
rm -rf "$top" build/rpms
mkdir -p "$top/SOURCES" "$top/tree"
cp "${sources[0]}" "$top/SOURCES"
# The packages that it requires have other names on Debian.
rpmbuild -ba --nodeps --define "_topdir $top" --define 'debug_package %{nil}' packaging/quarry-config.spec
mkdir build/rpms
mv "$top"/RPMS/*/*.rpm "$top"/SRPMS/*.rpm build/rpms
echo '== comparing them with the Debian packages'
binaries=(build/rpms/*.x86_64.rpm)
# Without documents and links to build folders; folders as each system names them.
comparable() { sed -E '/\/$/d; s|^\./|/|; s|/usr/lib(64)?/(x86_64-linux-gnu/)?|/usr/lib/|; s|/vendor-completions/|/site-functions/|; s|\.gz$||; /^\/usr\/(share\/doc|share\/lintian|share\/licenses|lib\/\.build-id)/d' | LC_ALL=C sort -u; }
for package in build/packages/*.deb; do dpkg-deb --fsys-tarfile "$package" | tar -t; done | comparable >"$top/debian"
for package in "${binaries[@]}"; do (cd "$top/tree" && rpm2cpio "../../../$package" | cpio -idm --quiet); done
(cd "$top/tree" && find . ! -type d) | comparable >"$top/rpm"
diff "$top/debian" "$top/rpm"
wc -l <"$top/rpm"
echo '== running the program'
libraries=$(dirname "$(find "$top/tree" -name 'libquarry_config.so.0')")
run() { LD_LIBRARY_PATH=$libraries "$top/tree/usr/bin/quarry-config" "$@"; }
run --version | grep -F "$libraries/libquarry_settings.so.0"
run check examples/agent.conf
echo '== the packages are in build/rpms:'
(cd build/rpms && sha256sum ./*.rpm | tee SHA256SUMS)
