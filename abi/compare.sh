#!/usr/bin/env bash
# compare.sh BUILD [--renew]: compares the interfaces of the built libraries and the layouts of their
# public types with those kept in this folder; with --renew keeps the new ones instead. Needs
# abigail-tools and clang.
set -euo pipefail
build=$(realpath "$1")
cd "$(dirname "$0")/.."
libraries=(libquarry_config libquarry_platform libquarry_settings)

# Writes the interface as abidiff compares it, and the exported names.
describe() { # LIBRARY FOLDER
  local inside=()
  [ ! -e "abi/$1.ini" ] || inside=(--suppressions "abi/$1.ini")
  abidw --no-corpus-path --no-comp-dir-path --no-show-locs --drop-private-types --headers-dir . \
    "${inside[@]}" --exported-interfaces-only --type-id-style hash "$build/$1.so" |
    sed "s|$PWD/||g; /<elf-symbol .*_PRIVATE_/d" >"$2/$1.abi"
  abi/names.sh "$build/$1.so" >"$2/$1.names"
}

if [ "${2:-}" = --renew ]; then
  for library in "${libraries[@]}"; do describe "$library" abi; done
  abi/layouts.sh "$build/include" >abi/layouts.txt
  echo '== abi/ now describes the libraries as built'
  exit
fi
echo '== comparing the interfaces with abi/'
failed=0
diff -u abi/layouts.txt <(abi/layouts.sh "$build/include") || failed=1
for library in "${libraries[@]}"; do
  describe "$library" "$build"
  abidiff "abi/$library.abi" "$build/$library.abi" || failed=1
  diff -u "abi/$library.names" "$build/$library.names" || failed=1
done
[ $failed = 1 ] || exit 0
echo 'abi: the interface has changed. Unless it only grew, programs that were linked before break: give' >&2
echo '     the libraries another SOVERSION then. Keep the new interface with: ./dev abi --renew' >&2
exit 1
