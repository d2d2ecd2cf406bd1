#!/usr/bin/env bash
# guard.sh BUILD: counts the instructions of each operation in guard.txt with callgrind. Fails when
# one needs over 5 % more than that file says.
set -euo pipefail
kept_counts=$(dirname "$0")/guard.txt

count_instructions() { # OPERATION
  valgrind --tool=callgrind --collect-atstart=no --callgrind-out-file=/dev/null \
    "$build/benchmarks/guard" "$1" 2>&1 | sed -n 's/.*Collected : //p'
}

build=$1 counted=0 failed=0
echo '== counting instructions'
while read -r operation kept; do
  count=$(count_instructions "$operation")
  printf '%s %s (kept: %s)\n' "$operation" "$count" "$kept"
  counted=$((counted + 1))
  [ "${count:-0}" -gt 0 ] || failed=1
  [ "$((count * 100))" -le "$((kept * 105))" ] || failed=1
done <"$kept_counts"
[ $failed = 0 ] && [ $counted -gt 0 ] && exit
echo "guard: no instructions were counted, or more than $kept_counts allows; if that is meant, write the new counts there" >&2
exit 1
