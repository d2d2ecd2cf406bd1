#!/usr/bin/env bash
# lint.sh BUILD: checks that every place says the same version and licence, that the faults of
# mutants.txt fit the code, the style of all our files, new ones too, and the share of tests. BUILD
# holds the compile commands of the preset "dev".
set -euo pipefail
build=$(realpath "$1")
cd "$(dirname "$0")/.."

files() { git ls-files --cached --others --exclude-standard -- "$@"; }

echo '== the version and the licence'
packaging/agree.sh
echo '== mutants'
tests/campaign/mutants.sh --check
echo '== shellcheck'
files '*.sh' | xargs shellcheck dev .ci/run "$build/completions/quarry-config.bash"
echo '== clang-format'
files '*.h' '*.cc' | xargs clang-format --dry-run --Werror
echo '== clang-tidy'
files '*.cc' ':!benchmarks' | xargs -P "$(nproc)" -n 1 clang-tidy -p "$build" --quiet # benchmarks include others' code
echo '== the share of tests'
.ci/test_share.sh
