#!/usr/bin/env bash
# exports_test.sh LIBRARY SONAME: the library exports our classes, nothing of
# others, and has the versioned name.
set -euo pipefail
names=$(nm -DC --defined-only "$1" | cut -d' ' -f3-)
grep -qF 'quarry::storage::dmconfig::DMConfigFile::LoadConfig(' <<<"$names"
foreign=$(grep -vE '^quarry::storage::dmconfig::DMConfig(File)?::' <<<"$names" || true)
[ -z "$foreign" ] || { printf 'exported too: %s\n' "$foreign"; exit 1; }
objdump -p "$1" | grep -qE "SONAME +$2\$"
