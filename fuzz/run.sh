#!/usr/bin/env bash
# run.sh BUILD [TARGET [SECONDS]]: runs each fuzz target, or that one, for SECONDS (60), starting from
# its corpus. Inputs that reach new code are kept in BUILD/corpus/, an input that fails in BUILD/.
set -euo pipefail
build=$(realpath "$1")
cd "$(dirname "$0")"
targets=(corpus/*) seconds=${3:-60}
[ $# -lt 2 ] || targets=("corpus/$2")
[ -d "${targets[0]}" ] || {
  printf 'fuzz: no target "%s"; there are: %s\n' "$2" "$(cd corpus && echo *)" >&2
  exit 2
}
for target in "${targets[@]##*/}"; do
  echo "== fuzzing $target for $seconds seconds"
  mkdir -p "$build/corpus/$target"
  "$build/fuzz/fuzz_$target" -max_total_time="$seconds" -max_len=4096 -timeout=10 \
    -print_final_stats=1 -artifact_prefix="$build/$target-" "$build/corpus/$target" "corpus/$target"
done
