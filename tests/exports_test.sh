#!/usr/bin/env bash
# exports_test.sh LIBRARY SONAME NAME PATTERN: the library exports NAME, nothing
# that the pattern does not allow, and has the versioned name.
set -euo pipefail
names=$(nm -DC --defined-only "$1" | cut -d' ' -f3-)
grep -qF "$3" <<<"$names"
foreign=$(grep -vE "$4" <<<"$names" || true)
[ -z "$foreign" ] || { printf 'exported too: %s\n' "$foreign"; exit 1; }
objdump -p "$1" | grep -qE "SONAME +$2\$"
