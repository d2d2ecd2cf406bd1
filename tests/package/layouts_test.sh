#!/usr/bin/env bash
# layouts_test.sh ROOT BUILD: the public types have the sizes and members that programs were linked with.
set -euo pipefail
layouts=$("$1/abi/layouts.sh" "$2/include")
diff -u "$1/abi/layouts.txt" - <<<"$layouts" || {
  echo 'the layout of a public type has changed: programs linked before break; if that is meant: ./dev abi --renew'
  exit 1
}
