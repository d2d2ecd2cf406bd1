#!/usr/bin/env bash
# exports_test.sh LIBRARY SONAME NAMES: the library exports what is in the file
# NAMES and nothing else, and has the versioned name.
set -euo pipefail
if ! diff "$3" <("${3%/*}/names.sh" "$1"); then
  echo "the names exported are not those of $3; if that is meant: ./dev abi --renew"
  exit 1
fi
objdump -p "$1" | grep -qE "SONAME +$2\$"
