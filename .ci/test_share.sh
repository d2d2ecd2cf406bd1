#!/usr/bin/env bash
# test_share.sh: prints the share of the tests in tests and product together, counted in lines that
# are neither blank nor a comment alone. Fails above 0.36.
set -euo pipefail
cd "$(dirname "$0")/.."

count() { # PATH...
  git ls-files -z -- "$@" | xargs -0 cat | grep -acvE '^\s*((//|#).*)?$'
}
tests=$(count tests fuzz ':!fuzz/corpus')
product=$(count dmconfig settings config platform tools dev)
all=$((tests + product))
printf 'tests: %d of %d lines, a share of 0.%03d\n' "$tests" "$all" $((tests * 1000 / all))
[ $((tests * 100)) -gt $((all * 36)) ] || exit 0
echo 'test_share: tests are more than 0.36 of the code. Merge cases into tables and remove tests that catch no fault of their own; aim at 0.33 (CONTRIBUTING.md).' >&2
exit 1
