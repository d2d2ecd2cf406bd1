#!/usr/bin/env bash
# rules_test.sh ROOT: docs/ci.md lists the rules of check, and no others.
set -euo pipefail
cd "$1"
rules=$(grep -ohE '"[a-z]+(-[a-z]+)+"' settings/rules.h tools/check/program_rules.h | tr -d '"' | sort)
# shellcheck disable=SC2016 # backticks of the page
diff <(echo "$rules") <(grep -oE '^. `[a-z-]+` . (error|warning)' docs/ci.md | cut -d'`' -f2 | sort)
