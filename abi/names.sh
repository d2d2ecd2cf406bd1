#!/usr/bin/env bash
# names.sh LIBRARY: prints the public names that it exports.
set -euo pipefail
nm -DC --defined-only "$1" | cut -d' ' -f3- | grep -v '_PRIVATE_[0-9.]*$' | LC_ALL=C sort
